// SPDX-License-Identifier: MIT
#include "database/SqlErrorText.h"

namespace orvquery {

QString sqlErrorText(const QSqlError& error) {
    QString text = error.databaseText().simplified();
    if (!text.isEmpty()) return text;
    const QString driverText = error.driverText().simplified();
    return driverText.isEmpty() ? QStringLiteral("unknown error") : driverText;
}

SqliteError sqliteErrorCode(const QSqlError& error) {
    // The primary result codes of sqlite.org/rescode.html; higher bits tell the variant.
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 5:
    case 6: return SqliteError::Busy;
    case 11: return SqliteError::Corrupt;
    case 26: return SqliteError::NotADatabase;
    default: return SqliteError::Other;
    }
}

}  // namespace orvquery
