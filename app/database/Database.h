// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "names/NameFolding.h"
#include "tables/TableSource.h"

namespace orvquery {

/// A table source with rows behind the tables. One class for each kind of database tells what is
/// particular to it: how a connection is opened for reading and a query is stopped (its settings),
/// how its names travel (its NameFolding) and where its catalog stands. All else is done here.
class Database : public TableSource {
public:
    /// How to open further connections that run queries.
    [[nodiscard]] const ConnectionSettings& settings() const { return m_settings; }

    /// Whether a comparison with a value of another type than the column's is an error, or worse,
    /// made into one of that type.
    [[nodiscard]] virtual bool hasStrictTypes() const { return true; }

    [[nodiscard]] std::vector<TableEntry> tables() const final;
    [[nodiscard]] std::optional<TableDescription> find(const QString& nameInStatement) const final;
    [[nodiscard]] std::optional<TableDescription> describe(const QString& name) const final;
    [[nodiscard]] QStringList reservedWords() const final { return m_folding.reservedWords(); }

protected:
    /// A connection for the catalog, not open yet; `settings` are those of queries.
    Database(ConnectionSettings settings, NameFolding folding);

    /// All tables, views and procedures that a person may want, in any order. Raises orv::Error.
    [[nodiscard]] virtual std::vector<TableEntry> readEntries() const = 0;
    /// The columns of one of these, names as the database has them. Raises orv::Error.
    [[nodiscard]] virtual TFieldDefs readColumns(const TableEntry& entry) const = 0;
    /// The parameters of a procedure, in the order of a call, names as the database has them.
    /// Raises orv::Error.
    [[nodiscard]] virtual std::vector<TParam> readParameters(const TableEntry& entry) const = 0;
    /// Whether a call without arguments has brackets all the same: "P()". Where it has none, it
    /// stands like a table.
    [[nodiscard]] virtual bool takesEmptyBrackets() const { return true; }
    /// Whether names without a schema mean what stands in this one.
    [[nodiscard]] virtual bool isDefaultSchema(const QString& schema) const = 0;

    /// Opens the catalog's connection; an invalid error means that it is open.
    [[nodiscard]] QSqlError openCatalog() { return m_catalog.open(); }
    [[nodiscard]] const QSqlDatabase& catalog() const { return m_catalog.database(); }
    [[nodiscard]] const NameFolding& folding() const { return m_folding; }

private:
    ConnectionSettings m_settings;
    Connection m_catalog;
    NameFolding m_folding;
};

}  // namespace orvquery
