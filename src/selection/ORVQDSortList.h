// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace orv {

/// The texts of a sort line's direction.
[[nodiscard]] ORV_EXPORT QString ascendingText();
[[nodiscard]] ORV_EXPORT QString descendingText();

/// The sorted output names and those that are not sorted, without widgets. Output names are counted
/// as the grid's rows are: from 1. A plain value.
class ORV_EXPORT SortList {
public:
    /// One sorted output name.
    struct Line {
        QString name;       ///< the output name
        QString direction;  ///< ascendingText() or descendingText()
        int row = 0;        ///< the output row that it came from; 0 when only its name is known
        QString source;     ///< what that row puts out; empty when that is not known

        /// Equal when all members are.
        friend bool operator==(const Line&, const Line&) = default;
    };

    /// The sorted lines in the order of ORDER BY.
    [[nodiscard]] const std::vector<Line>& lines() const { return m_lines; }
    /// The output names that are not sorted.
    [[nodiscard]] const QStringList& unsorted() const { return m_unsorted; }

    /// Appends a sorted line.
    void append(const QString& name, const QString& direction, int row = 0,
                const QString& source = {});
    /// Sorts the unsorted name at an index, ascending.
    void add(int unsortedIndex);
    /// Takes a line off; refresh() lists its name again as one that is not sorted.
    void remove(int line);
    /// Turns the direction of a line round.
    void changeOrder(int line);
    /// Moves a line by one place; nothing at the ends.
    void moveUp(int line);
    void moveDown(int line);
    /// Removes all lines.
    void clear();

    /// Drops lines whose name is no output name any more and lists the names that are not sorted.
    /// `sources` tell output columns of one name apart, when there are as many as names. The result
    /// is the new position of the line `followed`; -1 when there is none any more.
    int refresh(const QStringList& outputNames, const QStringList& sources = {}, int followed = -1);

    /// The same when output names came behind those of the last refresh; `firstRow` is the row of
    /// the first of them. Costs what they cost.
    void appendOutputs(const QStringList& names, const QStringList& sources, int firstRow);

    /// The output row of a line: the one that it came from while that still has its name, wherever
    /// it was moved; else the first of its name; 0 when there is none.
    [[nodiscard]] static int rowOf(const Line& line, const QStringList& outputNames,
                                   const QStringList& sources = {});

private:
    void list(const QString& name, const QString& source, int row, const QSet<QString>& sorted);

    std::vector<Line> m_lines;
    QStringList m_unsorted;
    std::vector<Line> m_unsortedLines;  // as they will be when they are added
};

/// Finds the output rows of many sort lines, as SortList::rowOf does for one: what has to be looked
/// for is looked up. A plain value.
class ORV_EXPORT OutputRows {
public:
    /// The output names, and what their columns put out.
    explicit OutputRows(QStringList names, QStringList sources = {});

    /// The row of the line, from 1 on; 0 when there is none.
    [[nodiscard]] int rowOf(const SortList::Line& line);

private:
    [[nodiscard]] bool isNamed(const SortList::Line& line) const;
    [[nodiscard]] bool isSame(const SortList::Line& line) const;
    void index();

    QStringList m_names;
    QStringList m_sources;
    bool m_isIndexed = false;
    QHash<QString, int> m_byName;  // the first row of each
    QHash<std::pair<QString, QString>, int> m_byNameAndSource;
};

}  // namespace orv
