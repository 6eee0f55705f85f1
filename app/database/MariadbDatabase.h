// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/Engine.h"

namespace orvquery {

[[nodiscard]] Engine mariadbEngine();

/// The databases of a MariaDB or MySQL server, which are its schemas, with sessions that only read.
/// Names stand in double quotes there as they do everywhere else. Nothing has parameters in it.
class MariadbDatabase : public Database {
public:
    /// Connects to the server; the database of the address needs no name in front of its tables.
    /// Raises orv::Error with one sentence that says what is wrong, LoginError when another user or
    /// password may help.
    explicit MariadbDatabase(const DatabaseAddress& address);

    [[nodiscard]] QString title() const override;

protected:
    [[nodiscard]] std::vector<TableEntry> readEntries() const override;
    [[nodiscard]] std::vector<ColumnEntry> readColumns(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<TParam> readParameters(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<ForeignKey> readForeignKeys() const override;
    [[nodiscard]] QStringList defaultSchemas() const override { return m_defaultSchemas; }

private:
    QString m_title;
    QStringList m_defaultSchemas;
};

}  // namespace orvquery
