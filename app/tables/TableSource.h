// SPDX-License-Identifier: MIT
#pragma once

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

/// One line of the list of tables: the name as the source knows it.
struct TableEntry {
    QString name;
    TableKind kind = TableKind::Table;
    QStringList parameters = {};  ///< the names of a procedure's input parameters

    friend bool operator==(const TableEntry&, const TableEntry&) = default;
};

/// A table as the control gets it: name and columns, and the parameters of a procedure.
struct TableDescription {
    QString name;
    TDataSet columns;
    std::optional<TParams> parameters;
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

    /// All tables, sorted by name ignoring case. Raises orv::Error when they cannot be read.
    [[nodiscard]] virtual std::vector<TableEntry> tables() const = 0;

    /// The table that a name means as it stands in a statement, with or without quotes and
    /// qualifiers; nothing when there is none. Raises orv::Error when its columns cannot be read.
    [[nodiscard]] virtual std::optional<TableDescription> find(
        const QString& nameInStatement) const = 0;

    /// The table of that very name, as tables() gives it.
    [[nodiscard]] virtual std::optional<TableDescription> describe(const QString& name) const = 0;

    /// The words that must stand in quotes as names.
    [[nodiscard]] virtual QStringList reservedWords() const { return {}; }
};

/// Sorts by name, ignoring case; names that differ in case alone stay in a fixed order.
void sortByName(std::vector<TableEntry>& entries);

/// What a host answers when the control asks for the fields of a table.
void answerTableFields(const TableSource& source, const QString& nameOfTable,
                       std::unique_ptr<TDataSet>& dataSet, std::unique_ptr<TParams>& params);

}  // namespace orvquery
