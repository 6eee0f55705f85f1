// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/Engine.h"

namespace orvquery {

[[nodiscard]] Engine odbcEngine();

/// A data source of ODBC: one that the system knows by name, or one that a connection string
/// describes. What is behind it is not known, so only what all have in common is used: tables and
/// views without schemas, whose names are found in any case.
class OdbcDatabase : public Database {
public:
    /// Connects to the data source. Raises orv::Error with one sentence that says what is wrong,
    /// LoginError when another user or password may help.
    explicit OdbcDatabase(const DatabaseAddress& address);

    [[nodiscard]] QString title() const override;

protected:
    [[nodiscard]] std::vector<TableEntry> readEntries() const override;
    [[nodiscard]] std::vector<ColumnEntry> readColumns(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<TParam> readParameters(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<ForeignKey> readForeignKeys() const override;
    [[nodiscard]] QStringList defaultSchemas() const override { return {}; }

private:
    QString m_title;
};

}  // namespace orvquery
