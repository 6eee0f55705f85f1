// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

class QSqlQuery;

namespace orvquery {

/// The text that PostgreSQL sent for a value of the row at which the query is. The driver's own
/// reading loses offsets, microseconds and years before our era. A null text where its library is
/// missing or the query is of another engine.
[[nodiscard]] QString postgresqlText(const QSqlQuery& query, int column);

/// A date, a time or a moment without a time zone of that text, as PostgreSQL writes them in the
/// ISO style; the text itself where Qt's types would tell something else. `type` is that of the
/// driver: QMetaType::QDate, QTime or QDateTime.
[[nodiscard]] QVariant postgresqlMoment(const QString& text, int type);

}  // namespace orvquery
