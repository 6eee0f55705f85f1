// SPDX-License-Identifier: MIT
#include "database/Connection.h"

#include <atomic>

namespace orvquery {

namespace {

QString newConnectionName() {
    static std::atomic<int> number = 0;
    return QStringLiteral("orvquery-%1").arg(++number);
}

}  // namespace

Connection::Connection(const ConnectionSettings& settings)
    : m_name(newConnectionName()), m_database(QSqlDatabase::addDatabase(settings.driver, m_name)) {
    m_database.setDatabaseName(settings.databaseName);
    m_database.setConnectOptions(settings.options);
}

Connection::~Connection() {
    m_database.close();
    // Qt counts the handles of a name and warns when one is left.
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}

QSqlError Connection::open() {
    if (m_database.open()) return {};
    return m_database.lastError();
}

}  // namespace orvquery
