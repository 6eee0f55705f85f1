// SPDX-License-Identifier: MIT
#pragma once

#include "parameters/Placeholders.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace orvquery {

/// The values of one row. A NULL is a null variant; an empty text is not.
using Row = QList<QVariant>;

/// Takes the rows of a query one by one. Whoever runs the query owns it.
class RowSink {
public:
    virtual ~RowSink();

    /// The names of the columns; comes once, before all rows.
    virtual void begin(const QStringList& columns) = 0;

    /// The next row; false ends the query early.
    virtual bool row(const Row& values) = 0;

    /// The query is to end: a row that waits is to be refused. Comes from another thread.
    virtual void stop() {}
};

/// The rows of a query, up to a number that a person can look at. A plain value.
class RowCollector : public RowSink {
public:
    explicit RowCollector(std::size_t mostRows) : m_mostRows(mostRows) {}

    void begin(const QStringList& columns) override { m_columns = columns; }
    bool row(const Row& values) override;

    [[nodiscard]] const QStringList& columns() const { return m_columns; }
    [[nodiscard]] const std::vector<Row>& rows() const { return m_rows; }
    /// Hands the rows over; none are left.
    [[nodiscard]] std::vector<Row> takeRows() { return std::move(m_rows); }
    /// Whether there were more rows than it takes.
    [[nodiscard]] bool isCut() const { return m_isCut; }

private:
    std::size_t m_mostRows;
    QStringList m_columns;
    std::vector<Row> m_rows;
    bool m_isCut = false;
};

/// Runs a query on an open connection and hands its rows to the sink; the values stand for the
/// placeholders in it. Raises orv::Error with the database's text when it fails, also in the midst
/// of the rows; statements that are no queries are refused, and those with placeholders that have
/// no value.
void runQuery(const QSqlDatabase& database, const QString& statement, RowSink& sink,
              const PlaceholderValues& values = {});

}  // namespace orvquery
