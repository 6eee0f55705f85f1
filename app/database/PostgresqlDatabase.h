// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/Engine.h"

namespace orvquery {

[[nodiscard]] Engine postgresqlEngine();

/// A database of a PostgreSQL server, with sessions that only read. What has parameters in it are
/// its functions that give rows.
class PostgresqlDatabase : public Database {
public:
    /// Connects to the server. Raises orv::Error with one sentence that says what is wrong,
    /// LoginError when another user or password may help.
    explicit PostgresqlDatabase(const DatabaseAddress& address);

    [[nodiscard]] QString title() const override;

protected:
    [[nodiscard]] std::vector<TableEntry> readEntries() const override;
    [[nodiscard]] std::vector<ColumnEntry> readColumns(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<TParam> readParameters(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<ForeignKey> readForeignKeys() const override;
    [[nodiscard]] QStringList defaultSchemas() const override { return m_searchPath; }

private:
    [[nodiscard]] std::vector<TableEntry> readFunctions() const;
    [[nodiscard]] QStringList readSearchPath() const;

    QString m_title;
    QStringList m_searchPath;
};

}  // namespace orvquery
