// SPDX-License-Identifier: MIT
#pragma once

#include "parameters/Placeholders.h"

#include <QList>
#include <QSqlQuery>
#include <QVariant>

namespace orvquery {

/// Starts a query with the values for its placeholders. PostgreSQL's driver hands the rows over one
/// by one then; MariaDB's fetches all of them first, which MariadbRows avoid. False when it fails;
/// the query has the error. Raises orv::Error when the statement is not to be run here, or a
/// placeholder has no value.
[[nodiscard]] bool startQuery(QSqlQuery& query, const QString& statement,
                              const PlaceholderValues& values);

/// A query for MariaDB with the values in it. Raises orv::Error as startQuery() does.
[[nodiscard]] QString mariadbStatement(const QString& statement, const PlaceholderValues& values);

/// A date, time or moment; a text where Qt has none for it: infinity, a year before our era, month
/// zero.
[[nodiscard]] QVariant momentOrText(const QVariant& value);

/// Reads the rows of a query that was started.
class RowReader {
public:
    explicit RowReader(const QSqlQuery& query);

    /// A value of the row at which the query is; a null variant for NULL alone.
    [[nodiscard]] QVariant value(int column) const;

private:
    /// What the driver's own reading loses.
    enum class Kind { Plain, Decimal, Float, Bits, Text, Blob, Scaled, Padded, Moment };

    [[nodiscard]] Kind kindOf(int column) const;
    [[nodiscard]] bool isText(int column) const;
    [[nodiscard]] QVariant moment(int column, const QVariant& value) const;

    const QSqlQuery& m_query;
    QList<Kind> m_kinds;
    QList<int> m_places;  ///< behind the point; of what is padded: characters
};

}  // namespace orvquery
