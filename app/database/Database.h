// SPDX-License-Identifier: MIT
#pragma once

#include "core/Error.h"
#include "database/CatalogWatch.h"
#include "database/Connection.h"
#include "database/QueryableSource.h"
#include "names/NameFolding.h"

#include <QHash>
#include <QSet>
#include <QSqlQuery>

#include <memory>

namespace orvquery {

/// The database refuses who asks: another user or password may help.
class LoginError : public orv::Error {
public:
    using orv::Error::Error;
};

/// A table source with rows behind the tables. One class for each kind of database tells what is
/// particular to it: how a connection is opened for reading and a query is stopped (its settings),
/// how its names travel (its NameFolding) and where its catalog stands. All else is done here.
/// Belongs to the thread that made it.
class Database : public QueryableSource {
public:
    [[nodiscard]] const ConnectionSettings& settings() const final { return m_settings; }
    [[nodiscard]] bool hasStrictTypes() const override { return true; }

    /// Lets another thread follow how the catalog is read, and end that: it sets the watch's flag
    /// and calls what this returns, as with Connection::letStop. To be called once, on an open
    /// database.
    [[nodiscard]] StopCall setWatch(std::shared_ptr<const CatalogWatch> watch);

    /// Reads the list anew; the others take what it was the last time. A name that it lacks makes
    /// find() read it once more, and is then unknown until this is called again.
    [[nodiscard]] std::vector<TableEntry> tables() const final;
    [[nodiscard]] std::optional<TableDescription> find(const QString& nameInStatement) const final;
    [[nodiscard]] std::optional<TableDescription> describe(const TableName& name) const final;
    [[nodiscard]] std::vector<ForeignKey> foreignKeys() const final;
    [[nodiscard]] QString forLoading(const QString& statement) const final;
    [[nodiscard]] QStringList reservedWords() const final { return m_folding.reservedWords(); }
    [[nodiscard]] QString inStatement(const TableName& name) const final;
    [[nodiscard]] const NameFolding& folding() const { return m_folding; }

protected:
    /// A connection for the catalog, not open yet; `settings` are those of queries.
    Database(ConnectionSettings settings, NameFolding folding);

    /// For what only an open connection tells of the names.
    void setFolding(NameFolding folding) { m_folding = std::move(folding); }

    /// All tables, views and procedures that a person may want, in any order. Raises orv::Error.
    [[nodiscard]] virtual std::vector<TableEntry> readEntries() const = 0;
    /// The columns of one of these, in order; none when it is gone meanwhile. Raises orv::Error.
    [[nodiscard]] virtual std::vector<ColumnEntry> readColumns(const TableEntry& entry) const = 0;
    /// The parameters of a procedure, in the order of a call, names as the database has them.
    /// Raises orv::Error.
    [[nodiscard]] virtual std::vector<TParam> readParameters(const TableEntry& entry) const = 0;
    /// All foreign keys of the database, in any order. Raises orv::Error.
    [[nodiscard]] virtual std::vector<ForeignKey> readForeignKeys() const = 0;
    /// Whether a call without arguments has brackets all the same: "P()". Where it has none, it
    /// stands like a table.
    [[nodiscard]] virtual bool takesEmptyBrackets() const { return true; }
    /// Opens the catalog's connection; an invalid error means that it is open.
    void openCatalog() { m_catalog.openOrRaise(); }
    [[nodiscard]] const QSqlDatabase& catalog() const { return m_catalog.database(); }
    /// Asks the catalog, once more on a new connection when a server has ended the old one; the
    /// values stand for the question marks. Raises orv::Error.
    [[nodiscard]] QSqlQuery ask(const QString& statement, const QVariantList& values = {}) const;
    /// Goes to the next row of such a query; false behind the last. While the list of tables is
    /// read, each counts as one. Raises orv::Error when the rows break off or are wanted no more.
    [[nodiscard]] bool next(QSqlQuery& query) const;
    /// The same for rows that are no tables and do not count.
    [[nodiscard]] bool nextUncounted(QSqlQuery& query) const;
    /// Counts one more table in the list; next() does so. Raises orv::Error when they are wanted no
    /// more.
    void countEntry() const;

private:
    [[noreturn]] void failToRead(const QSqlError& error) const;
    [[nodiscard]] const TableEntry* listed(const QString& nameInStatement) const;
    [[nodiscard]] const TableEntry* listed(const TableName& name) const;
    [[nodiscard]] bool isDefaultSchema(const QString& schema) const;
    [[nodiscard]] std::optional<TableDescription> described(const TableEntry* entry) const;
    [[nodiscard]] bool isFoundByNameAlone(const TableEntry& entry) const;
    [[nodiscard]] QString writtenName(const TableEntry& entry) const;
    [[nodiscard]] QString aliasOf(const TableEntry& entry) const;
    void list() const;
    void requireWanted() const;

    ConnectionSettings m_settings;
    std::shared_ptr<const CatalogWatch> m_watch;  ///< outlives the connection
    mutable Connection m_catalog;
    NameFolding m_folding;
    mutable bool m_isListed = false;
    mutable bool m_isListing = false;
    mutable int m_counted = 0;  ///< while listing
    mutable std::vector<TableEntry> m_entries;
    mutable QSet<QString> m_unknown;                    ///< names in statements that the list lacks
    mutable QMultiHash<QString, std::size_t> m_byName;  ///< by names whose case does not count
};

/// TableSource::forLoading() of a database with these tables and names.
[[nodiscard]] QString forLoading(const QString& statement, const NameFolding& folding,
                                 const std::vector<TableEntry>& entries);

/// TableSource::inStatement() of a database with these names.
[[nodiscard]] QString inStatement(const TableName& name, const NameFolding& folding,
                                  const QStringList& defaultSchemas);

}  // namespace orvquery
