// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"

namespace orvquery {

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
    [[nodiscard]] TFieldDefs readColumns(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<TParam> readParameters(const TableEntry& entry) const override;
    [[nodiscard]] bool isDefaultSchema(const QString& schema) const override;

private:
    void requireReadable() const;
    [[noreturn]] void fail(const QSqlError& error) const;

    QString m_path;
    std::vector<TableEntry> m_functions;  ///< the same as long as the file is open
};

}  // namespace orvquery
