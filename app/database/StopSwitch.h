// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlDatabase>

#include <atomic>
#include <functional>

namespace orvquery {

/// Ends the query that runs on a connection; nothing when none runs. May be empty.
using StopCall = std::function<void()>;

/// Prepares an open connection so that its queries fail soon after the flag has become true and the
/// returned function was called. The flag must outlive the connection.
using StopSwitchMaker = StopCall (*)(const QSqlDatabase& database,
                                     const std::atomic<bool>& isStopped);

/// The way of SQLite, which looks at the flag while it works; nothing is to be called.
[[nodiscard]] StopCall sqliteStopSwitch(const QSqlDatabase& database,
                                        const std::atomic<bool>& isStopped);

/// The way of Firebird, which is told so from outside.
[[nodiscard]] StopCall firebirdStopSwitch(const QSqlDatabase& database,
                                          const std::atomic<bool>& isStopped);

/// The way of PostgreSQL, whose server is told so over a connection of its own.
[[nodiscard]] StopCall postgresqlStopSwitch(const QSqlDatabase& database,
                                            const std::atomic<bool>& isStopped);

/// The way of MariaDB, which is told so on a further connection.
[[nodiscard]] StopCall mariadbStopSwitch(const QSqlDatabase& database,
                                         const std::atomic<bool>& isStopped);

/// Ends the query that will run on an open connection of MariaDB. May be empty.
[[nodiscard]] StopCall mariadbQueryKill(const QSqlDatabase& database);

}  // namespace orvquery
