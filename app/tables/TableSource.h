// SPDX-License-Identifier: MIT
#pragma once

#include "core/Error.h"
#include "data/DataSet.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace orvquery {

enum class TableKind {
    Table,
    View,
    Procedure,  ///< somebody's own, which gives rows
    Function    ///< the database's own, which gives rows
};

/// Whether it stands in a statement with arguments behind its name.
[[nodiscard]] constexpr bool isCalled(TableKind kind) {
    return kind == TableKind::Procedure || kind == TableKind::Function;
}

/// Which table it is, in the source's own spelling and without quotes.
struct TableName {
    QString name;
    QString schema;  ///< empty where the source has no schemas

    // A name alone is how sources without schemas are asked.
    TableName() = default;
    TableName(QString tableName, QString schemaName = {})
        : name(std::move(tableName)), schema(std::move(schemaName)) {}

    friend bool operator==(const TableName&, const TableName&) = default;
};

[[nodiscard]] inline size_t qHash(const TableName& table, size_t seed = 0) {
    return qHashMulti(seed, table.name, table.schema);
}

/// One line of the list of tables.
struct TableEntry {
    QString name;  ///< as the source knows it
    TableKind kind = TableKind::Table;
    QStringList parameters = {};  ///< the names of a procedure's input parameters
    QString schema = {};          ///< empty where the source has no schemas

    [[nodiscard]] TableName tableName() const { return {name, schema}; }

    friend bool operator==(const TableEntry&, const TableEntry&) = default;
};

/// A table was listed and is not there any more.
class GoneTableError : public orv::Error {
public:
    explicit GoneTableError(const TableName& name);
};

/// A column as the source knows it.
struct ColumnEntry {
    QString name;
    TFieldType fieldType = ftUnknown;
    QString declaredType = {};  ///< as people write it: "NUMERIC(10,2)"; may be empty
    bool isKey = false;         ///< it is the table's primary key, or a part of it
    bool isRequired = false;    ///< it is never NULL

    friend bool operator==(const ColumnEntry&, const ColumnEntry&) = default;
};

/// A reference that the source declares: the columns of one table hold the values of another's.
struct ForeignKey {
    TableName table;
    QStringList columns;  ///< as the source knows them, in the order of the key
    TableName referenced;
    QStringList referencedColumns;  ///< as many, each for the one at its place

    friend bool operator==(const ForeignKey&, const ForeignKey&) = default;
};

/// A table as the control gets it: name and columns, and the parameters of a procedure.
struct TableDescription {
    QString name;
    TDataSet columns;
    std::optional<TParams> parameters;
    QString alias = {};     ///< what the statement is to call it; empty leaves that to the control
    TableName source = {};  ///< which table it is
    std::vector<ColumnEntry> entries = {};  ///< the columns again, as the source knows them
};

/// Where the tables of a query come from: a database, or a file that describes tables. Whoever
/// makes one owns it; it must outlive the control to which it is connected.
class TableSource {
public:
    TableSource() = default;
    TableSource(const TableSource&) = delete;
    TableSource& operator=(const TableSource&) = delete;
    virtual ~TableSource();

    /// What a person reads as the source's name.
    [[nodiscard]] virtual QString title() const = 0;

    /// All tables, sorted by schema and name ignoring case. Raises orv::Error when they cannot be
    /// read.
    [[nodiscard]] virtual std::vector<TableEntry> tables() const = 0;

    /// The table that a name means as it stands in a statement, with or without quotes and
    /// qualifiers; nothing when there is none. Raises orv::Error when its columns cannot be read.
    [[nodiscard]] virtual std::optional<TableDescription> find(
        const QString& nameInStatement) const = 0;

    /// The table of that very name, as tables() gives it.
    [[nodiscard]] virtual std::optional<TableDescription> describe(const TableName& name) const = 0;

    /// All references that are declared, in a fixed order. Raises orv::Error when they cannot be
    /// read.
    [[nodiscard]] virtual std::vector<ForeignKey> foreignKeys() const { return {}; }

    /// A statement as the control is to load it, which writes names without quotes in upper case:
    /// where the source would not find them so, they stand in quotes.
    [[nodiscard]] virtual QString forLoading(const QString& statement) const { return statement; }

    /// The table's name as a person writes it in a statement: with its schema where it needs that,
    /// and in quotes where it needs them.
    [[nodiscard]] virtual QString inStatement(const TableName& name) const;

    /// The words that must stand in quotes as names.
    [[nodiscard]] virtual QStringList reservedWords() const { return {}; }
};

/// Sorts by schema and name, ignoring case; those that differ in case alone stay in a fixed order.
void sortByName(std::vector<TableEntry>& entries);

/// What a host answers when the control asks for the fields of a table, named as it is written.
void answerTableFields(const TableSource& source, const QString& nameInStatement,
                       std::unique_ptr<TDataSet>& dataSet, std::unique_ptr<TParams>& params);

}  // namespace orvquery
