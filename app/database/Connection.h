// SPDX-License-Identifier: MIT
#pragma once

#include "database/StopSwitch.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>
#include <QStringList>

#include <functional>

namespace orvquery {

/// What it takes to connect to a database: a plain value, which may go to another thread.
struct ConnectionSettings {
    QString driver;        ///< as Qt SQL calls it: "QSQLITE"
    QString databaseName;  ///< for files the path
    QString options = {};  ///< the driver's options
    QString host = {};
    int port = -1;
    QString user = {};
    QString password = {};
    /// Statements that make an opened connection ready, each of which must succeed.
    QStringList afterOpening = {};
    /// Whether all that is done on the connection is taken back at its end: for databases that
    /// cannot be opened for reading only, whose queries may call what writes.
    bool isTakenBack = false;
    /// How a query on the connection is ended early; none when that takes its next row.
    StopSwitchMaker makeStopSwitch = nullptr;
    /// Raises what is wrong, as one sentence, when it cannot be opened.
    std::function<void(const QSqlError&)> raiseWhyClosed = nullptr;
};

/// One connection under a name of its own, which goes with it. Belongs to the thread that made it;
/// queries must be gone before it goes.
class Connection {
public:
    explicit Connection(ConnectionSettings settings);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Opens it; an invalid error means that it is open.
    [[nodiscard]] QSqlError open();
    /// Opens it, or raises orv::Error with one sentence.
    void openOrRaise();

    /// Lets queries on the open connection fail soon after the flag has become true. Whoever sets
    /// the flag calls what this returns, again and again until the query has ended: a query that
    /// begins at that moment would miss a single call. Any thread may call it as long as the
    /// connection is open.
    [[nodiscard]] StopCall letStop(const std::atomic<bool>& isStopped) const;

    [[nodiscard]] const QSqlDatabase& database() const { return m_database; }

private:
    ConnectionSettings m_settings;
    QString m_name;
    QSqlDatabase m_database;
};

}  // namespace orvquery
