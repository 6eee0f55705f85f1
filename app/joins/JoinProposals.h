// SPDX-License-Identifier: MIT
#pragma once

#include "joins/JoinGraph.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

namespace orvquery {

/// A table of the diagram, or the one that is to come.
struct JoinTable {
    TableName table;
    QString alias;  ///< what the statement calls it
    std::vector<ColumnEntry> columns = {};
    QStringList written = {};  ///< the columns as the statement writes them, in the same order
};

/// That columns of two tables are linked already; -1 stands for a column that is not known.
struct JoinLink {
    int table1 = 0;
    int column1 = 0;
    int table2 = 0;
    int column2 = 0;
};

/// What stands on the diagram, in the order in which it came there.
struct JoinDiagram {
    std::vector<JoinTable> tables;
    std::vector<JoinLink> links;
};

/// The columns by which two tables are joined, as the source knows them.
struct JoinStep {
    QStringList columns;     ///< of the table nearer to the diagram
    QStringList newColumns;  ///< of the other, as many

    friend bool operator==(const JoinStep&, const JoinStep&) = default;
};

/// How a new table could be joined to one of the diagram, and what speaks for it. A plain value.
struct JoinProposal {
    /// What speaks for it, the best first.
    enum class Kind {
        ForeignKey,  ///< the database declares it
        UsedKey,     ///< it declares it, but another box of the same table is joined by it
        KeyByName,   ///< a column looks like the key of the other table
        Path,        ///< foreign keys lead there over tables that are not on the diagram
        SameName     ///< two columns have the same name and type
    };

    Kind kind = Kind::ForeignKey;
    int table = 0;                   ///< of the diagram, at which it begins
    std::vector<TableName> between;  ///< of a path, from there on
    std::vector<JoinStep> steps;     ///< from there to the new table; one more than `between`
    QString from;                    ///< what refers
    QString to;                      ///< what is referred to
    QString why;
    QString sentence;  ///< all of that in one line
};

struct JoinOffer {
    std::vector<JoinProposal> proposals;  ///< the best first
    /// Which of them to begin with when a person is asked: each of these joins the new table to
    /// others that nothing connects yet. None where no key is declared.
    std::vector<int> suggested;
    std::size_t keysSeen = 0;  ///< what it cost

    /// Whether there is one foreign key for one table: nobody needs to be asked.
    [[nodiscard]] bool isCertain() const {
        return proposals.size() == 1 && proposals[0].kind == JoinProposal::Kind::ForeignKey;
    }
};

/// What could join a new table to those of the diagram. Where foreign keys do, they are all that
/// is proposed.
[[nodiscard]] JoinOffer proposeJoins(const JoinGraph& graph, const JoinDiagram& diagram,
                                     const JoinTable& added);

/// The place of a column by its name, in any case when none has that very name; -1 when there is
/// none, or several.
[[nodiscard]] int columnIndex(const std::vector<ColumnEntry>& columns, const QString& name);

}  // namespace orvquery
