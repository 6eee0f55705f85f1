// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlError>
#include <QString>

namespace orvquery {

/// What a database says about an error, without what the driver says around it; one line.
[[nodiscard]] QString sqlErrorText(const QSqlError& error);

/// Whether a server has ended the connection, or is gone itself.
[[nodiscard]] bool isConnectionLost(const QSqlError& error);

/// The errors of SQLite that are told in words of our own.
enum class SqliteError { Busy, NotADatabase, Corrupt, Other };

[[nodiscard]] SqliteError sqliteErrorCode(const QSqlError& error);

}  // namespace orvquery
