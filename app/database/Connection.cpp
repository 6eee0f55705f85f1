// SPDX-License-Identifier: MIT
#include "database/Connection.h"

#include "core/Error.h"
#include "database/SqlErrorText.h"

#include <QSqlDriver>
#include <QSqlQuery>

namespace orvquery {

namespace {

QString newConnectionName() {
    static std::atomic<int> number = 0;
    return QStringLiteral("orvquery-%1").arg(++number);
}

}  // namespace

Connection::Connection(ConnectionSettings settings)
    : m_settings(std::move(settings)),
      m_name(newConnectionName()),
      m_database(QSqlDatabase::addDatabase(m_settings.driver, m_name)) {
    m_database.setDatabaseName(m_settings.databaseName);
    m_database.setConnectOptions(m_settings.options);
    m_database.setHostName(m_settings.host);
    m_database.setPort(m_settings.port);
    m_database.setUserName(m_settings.user);
    m_database.setPassword(m_settings.password);
}

Connection::~Connection() {
    if (m_settings.isTakenBack && m_database.isOpen()) m_database.rollback();
    m_database.close();
    // Qt counts the handles of a name and warns when one is left.
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}

QSqlError Connection::open() {
    if (!m_database.open()) return m_database.lastError();
    for (const QString& statement : m_settings.afterOpening) {
        QSqlQuery query(m_database);
        if (!query.exec(statement)) return query.lastError();
    }
    // What has no transactions has nothing to take back, and is asked all the same.
    const bool isTakenBack =
        m_settings.isTakenBack && m_database.driver()->hasFeature(QSqlDriver::Transactions);
    if (isTakenBack && !m_database.transaction()) return m_database.lastError();
    return {};
}

void Connection::openOrRaise() {
    const QSqlError error = open();
    if (!error.isValid()) return;
    if (m_settings.raiseWhyClosed) m_settings.raiseWhyClosed(error);
    throw orv::Error(QStringLiteral("The database cannot be opened: %1").arg(sqlErrorText(error)));
}

StopCall Connection::letStop(const std::atomic<bool>& isStopped) const {
    return m_settings.makeStopSwitch ? m_settings.makeStopSwitch(m_database, isStopped)
                                     : StopCall();
}

}  // namespace orvquery
