// SPDX-License-Identifier: MIT
#pragma once

#include "database/StopSwitch.h"

#include <QList>
#include <QSqlDatabase>
#include <QSqlError>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace orvquery {

/// The rows of one query of MariaDB as they come from the server; the driver would fetch all of
/// them first. The values are those that RowReader gives. Until it goes nothing else can be asked
/// on the connection; when it goes before the last row, it ends the query.
class MariadbRows {
public:
    /// Whether the rows of an open connection can be read so.
    [[nodiscard]] static bool canRead(const QSqlDatabase& database);

    /// The connection must be one whose rows can be read so.
    explicit MariadbRows(const QSqlDatabase& database);
    MariadbRows(const MariadbRows&) = delete;
    MariadbRows& operator=(const MariadbRows&) = delete;
    ~MariadbRows();

    /// Starts the one query of this object; false when it fails.
    [[nodiscard]] bool start(const QString& statement);
    [[nodiscard]] const QStringList& columns() const { return m_columns; }

    /// Goes to the next row; false behind the last one, and when that fails.
    [[nodiscard]] bool next();
    /// The values of the row.
    [[nodiscard]] QList<QVariant> row() const;

    /// Why something failed; invalid when nothing did.
    [[nodiscard]] const QSqlError& lastError() const { return m_error; }

private:
    enum class Kind {
        Text,
        Bytes,
        Number,
        Unsigned,
        Long,
        UnsignedLong,
        Float,
        Decimal,
        Bits,
        Date,
        DateTime
    };

    [[nodiscard]] static Kind kindOf(int type, unsigned flags, bool isText);
    [[nodiscard]] static QVariant value(Kind kind, const QByteArray& text);
    void readError(const char* what);

    void* m_connection = nullptr;
    void* m_result = nullptr;
    char** m_row = nullptr;
    StopCall m_stop;
    QStringList m_columns;
    QList<Kind> m_kinds;
    QSqlError m_error;
};

}  // namespace orvquery
