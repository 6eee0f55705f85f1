// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <vector>

namespace orvtest {

using Row = QStringList;

/// What a statement gives, or why it does not run.
struct Answer {
    QString error;
    int columns = 0;
    std::vector<Row> rows;

    [[nodiscard]] bool isGiven() const { return error.isEmpty(); }
    /// The first rows, for messages.
    [[nodiscard]] QString text() const;
};

/// The rows in an order of their own.
[[nodiscard]] std::vector<Row> sorted(std::vector<Row> rows);

/// A database of SQLite in memory, for as long as it lives; one at a time.
class OpenDatabase {
public:
    /// Runs the statements, which make and fill tables.
    explicit OpenDatabase(const QStringList& statements);
    ~OpenDatabase();
    OpenDatabase(const OpenDatabase&) = delete;
    OpenDatabase& operator=(const OpenDatabase&) = delete;

    /// Why no statements can be run here; empty when they can.
    [[nodiscard]] static QString whatIsMissing();

    [[nodiscard]] Answer ask(const QString& statement) const;

    bool isOpen = false;

private:
    QSqlDatabase m_database;
};

}  // namespace orvtest
