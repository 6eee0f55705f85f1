// SPDX-License-Identifier: MIT
#include "database/StopSwitch.h"

#ifdef ORVQUERY_HAS_SQLITE3
#include <QSqlDriver>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>
#endif

namespace orvquery {

#ifdef ORVQUERY_HAS_SQLITE3

namespace {

// A step is some nanoseconds: often enough for a person, too seldom to be felt by the query.
constexpr int stepsBetweenLooks = 10000;

int isToStop(void* isStopped) {
    return static_cast<const std::atomic<bool>*>(isStopped)->load() ? 1 : 0;
}

// A driver may bring an SQLite of its own, whose handles must not meet this one.
bool isSameLibrary(const QSqlDatabase& database) {
    QSqlQuery query(database);
    return query.exec(QStringLiteral("SELECT sqlite_source_id()")) && query.next() &&
           query.value(0).toString() == QLatin1String(sqlite3_sourceid());
}

}  // namespace

// sqlite3_interrupt() would be lost when it comes just before the query starts.
void letStop(const QSqlDatabase& database, const std::atomic<bool>& isStopped) {
    const QVariant handle = database.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0 || !isSameLibrary(database)) return;
    sqlite3* connection = *static_cast<sqlite3* const*>(handle.constData());
    sqlite3_progress_handler(connection, stepsBetweenLooks, isToStop,
                             const_cast<std::atomic<bool>*>(&isStopped));
}

#else

void letStop(const QSqlDatabase&, const std::atomic<bool>&) {}

#endif

}  // namespace orvquery
