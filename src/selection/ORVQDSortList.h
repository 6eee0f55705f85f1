// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace orv {

/// The texts of a sort line's direction.
[[nodiscard]] ORV_EXPORT QString ascendingText();
[[nodiscard]] ORV_EXPORT QString descendingText();

/// The sorted output names and those that are not sorted, without widgets. Output names are counted
/// as the grid's rows are: from 1. A plain value.
class ORV_EXPORT SortList {
public:
    struct Line {
        QString name;
        QString direction;
        int row = 0;  ///< the output row that it was loaded for; 0 when it was chosen by name

        friend bool operator==(const Line&, const Line&) = default;
    };

    [[nodiscard]] const std::vector<Line>& lines() const { return m_lines; }
    [[nodiscard]] const QStringList& unsorted() const { return m_unsorted; }

    void append(const QString& name, const QString& direction, int row = 0);
    /// Sorts the unsorted name at an index, ascending.
    void add(int unsortedIndex);
    void remove(int line);
    void changeOrder(int line);
    /// Moves a line by one place; nothing at the ends.
    void moveUp(int line);
    void moveDown(int line);
    void clear();

    /// Drops lines whose name is no output name any more and lists the names that are not sorted.
    void refresh(const QStringList& outputNames);

    /// The output row of a line: the one it was loaded for while that still has its name, else the
    /// first of its name; 0 when there is none.
    [[nodiscard]] int rowOf(const Line& line, const QStringList& outputNames) const;

private:
    std::vector<Line> m_lines;
    QStringList m_unsorted;
};

}  // namespace orv
