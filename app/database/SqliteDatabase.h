// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/Engine.h"

namespace orvquery {

[[nodiscard]] Engine sqliteEngine();

/// An SQLite database file, opened for reading only: it is never created and never changed. What
/// has parameters in it are SQLite's own functions that give rows.
class SqliteDatabase : public Database {
public:
    /// Opens the file. Raises orv::Error with one sentence that says what is wrong with it.
    explicit SqliteDatabase(const QString& path);

    [[nodiscard]] QString title() const override;
    [[nodiscard]] bool hasStrictTypes() const override { return false; }

protected:
    [[nodiscard]] std::vector<TableEntry> readEntries() const override;
    [[nodiscard]] std::vector<ColumnEntry> readColumns(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<TParam> readParameters(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<ForeignKey> readForeignKeys() const override;
    [[nodiscard]] QStringList defaultSchemas() const override { return {QStringLiteral("main")}; }

private:
    void requireReadable() const;
    [[noreturn]] void fail(const QSqlError& error) const;

    QString m_path;
    std::vector<TableEntry> m_functions;  ///< the same as long as the file is open
};

}  // namespace orvquery
