// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "names/NameFolding.h"

namespace orvquery {

/// An SQLite database file, opened for reading only: it is never created and never changed.
class SqliteDatabase : public Database {
public:
    /// Opens the file. Raises orv::Error with one sentence that says what is wrong with it.
    explicit SqliteDatabase(const QString& path);

    [[nodiscard]] QString title() const override;
    [[nodiscard]] std::vector<TableEntry> tables() const override;
    [[nodiscard]] std::optional<TableDescription> find(
        const QString& nameInStatement) const override;
    [[nodiscard]] std::optional<TableDescription> describe(const QString& name) const override;
    [[nodiscard]] QStringList reservedWords() const override;
    [[nodiscard]] ConnectionSettings settings() const override { return m_settings; }

private:
    void requireReadable() const;
    [[nodiscard]] TDataSet columnsOf(const QString& table) const;
    [[noreturn]] void fail(const QSqlError& error) const;

    QString m_path;
    ConnectionSettings m_settings;
    Connection m_connection;
    NameFolding m_folding = NameFolding::sqlite();
};

}  // namespace orvquery
