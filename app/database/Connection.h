// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

namespace orvquery {

/// What it takes to connect to a database: a plain value, which may go to another thread.
struct ConnectionSettings {
    QString driver;        ///< as Qt SQL calls it: "QSQLITE"
    QString databaseName;  ///< for files the path
    QString options;       ///< the driver's options
};

/// One connection under a name of its own, which goes with it. Belongs to the thread that made it;
/// queries must be gone before it goes.
class Connection {
public:
    explicit Connection(const ConnectionSettings& settings);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Opens it; an invalid error means that it is open.
    [[nodiscard]] QSqlError open();

    [[nodiscard]] const QSqlDatabase& database() const { return m_database; }

private:
    QString m_name;
    QSqlDatabase m_database;
};

}  // namespace orvquery
