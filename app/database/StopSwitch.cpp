// SPDX-License-Identifier: MIT
#include "database/StopSwitch.h"

#include "database/Connection.h"

#include <QLibrary>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QVariant>

#include <array>
#include <cstdint>
#include <memory>

#ifdef ORVQUERY_HAS_SQLITE3
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
StopCall sqliteStopSwitch(const QSqlDatabase& database, const std::atomic<bool>& isStopped) {
    const QVariant handle = database.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0 || !isSameLibrary(database)) return {};
    sqlite3* connection = *static_cast<sqlite3* const*>(handle.constData());
    sqlite3_progress_handler(connection, stepsBetweenLooks, isToStop,
                             const_cast<std::atomic<bool>*>(&isStopped));
    return {};
}

#else

StopCall sqliteStopSwitch(const QSqlDatabase&, const std::atomic<bool>&) {
    return {};
}

#endif

namespace {

// As Firebird's ibase.h has them: a connection's handle is an unsigned int where pointers are wide,
// and a call writes its status into 20 words.
using FirebirdHandle = unsigned int;
using CancelOperation = std::intptr_t (*)(std::intptr_t* status, FirebirdHandle* handle,
                                          unsigned short option);
constexpr unsigned short cancelRaise = 3;

// The driver has loaded the library already; this finds it again.
CancelOperation cancelOperation() {
    static const auto function = [] {
        QLibrary library(QStringLiteral("fbclient"), 2);
        return reinterpret_cast<CancelOperation>(library.resolve("fb_cancel_operation"));
    }();
    return function;
}

}  // namespace

StopCall firebirdStopSwitch(const QSqlDatabase& database, const std::atomic<bool>&) {
    const QVariant handle = database.driver()->handle();
    const bool isKnown = database.driver()->dbmsType() == QSqlDriver::Interbase &&
                         handle.metaType() == QMetaType::fromType<FirebirdHandle>();
    const CancelOperation cancel = isKnown ? cancelOperation() : nullptr;
    if (cancel == nullptr) return {};
    return [cancel, value = *static_cast<const FirebirdHandle*>(handle.constData())] {
        std::array<std::intptr_t, 20> status = {};
        FirebirdHandle connection = value;
        cancel(status.data(), &connection, cancelRaise);
    };
}

namespace {

// As PostgreSQL's libpq-fe.h has them; its PGconn is a struct pg_conn.
struct PostgresqlCancel {
    using Get = void* (*)(void* connection);
    using Send = int (*)(void* cancel, char* errors, int size);
    using Free = void (*)(void* cancel);
    Get get = nullptr;
    Send send = nullptr;
    Free free = nullptr;
};

const PostgresqlCancel& postgresqlCancel() {
    static const PostgresqlCancel functions = [] {
        QLibrary library(QStringLiteral("pq"), 5);
        return PostgresqlCancel{
            reinterpret_cast<PostgresqlCancel::Get>(library.resolve("PQgetCancel")),
            reinterpret_cast<PostgresqlCancel::Send>(library.resolve("PQcancel")),
            reinterpret_cast<PostgresqlCancel::Free>(library.resolve("PQfreeCancel"))};
    }();
    return functions;
}

}  // namespace

StopCall postgresqlStopSwitch(const QSqlDatabase& database, const std::atomic<bool>&) {
    const QVariant handle = database.driver()->handle();
    const PostgresqlCancel& functions = postgresqlCancel();
    const bool isKnown = qstrcmp(handle.typeName(), "pg_conn*") == 0 && functions.get != nullptr &&
                         functions.send != nullptr && functions.free != nullptr;
    if (!isKnown) return {};
    void* const cancel = functions.get(*static_cast<void* const*>(handle.constData()));
    if (cancel == nullptr) return {};
    return [cancel = std::shared_ptr<void>(cancel, functions.free), send = functions.send] {
        std::array<char, 256> errors = {};
        send(cancel.get(), errors.data(), int(errors.size()));
    };
}

StopCall mariadbStopSwitch(const QSqlDatabase& database, const std::atomic<bool>&) {
    return mariadbQueryKill(database);
}

// Whoever calls it waits for the further connection, but not long.
StopCall mariadbQueryKill(const QSqlDatabase& database) {
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("SELECT CONNECTION_ID()")) || !query.next()) return {};
    ConnectionSettings settings;
    settings.driver = database.driverName();
    settings.options = database.connectOptions() + QStringLiteral(";MYSQL_OPT_CONNECT_TIMEOUT=2");
    settings.host = database.hostName();
    settings.port = database.port();
    settings.user = database.userName();
    settings.password = database.password();
    return [settings, kill = QStringLiteral("KILL QUERY ") + query.value(0).toString()] {
        Connection connection(settings);
        if (connection.open().isValid()) return;
        QSqlQuery(connection.database()).exec(kill);
    };
}

}  // namespace orvquery
