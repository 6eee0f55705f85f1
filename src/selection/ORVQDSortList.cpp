// SPDX-License-Identifier: MIT
#include "selection/ORVQDSortList.h"

#include "core/Text.h"

#include <QSet>

#include <utility>

namespace orv {

QString ascendingText() {
    return QStringLiteral("Ascending");
}

QString descendingText() {
    return QStringLiteral("Descending");
}

void SortList::append(const QString& name, const QString& direction, int row) {
    m_lines.push_back({name, direction, row});
}

void SortList::add(int unsortedIndex) {
    if (unsortedIndex < 0 || unsortedIndex >= m_unsorted.size()) return;
    append(m_unsorted.takeAt(unsortedIndex), ascendingText());
}

void SortList::remove(int line) {
    if (line >= 0 && line < int(m_lines.size())) m_lines.erase(m_lines.begin() + line);
}

void SortList::changeOrder(int line) {
    if (line < 0 || line >= int(m_lines.size())) return;
    QString& direction = m_lines[std::size_t(line)].direction;
    direction = direction == ascendingText() ? descendingText() : ascendingText();
}

void SortList::moveUp(int line) {
    if (line <= 0 || line >= int(m_lines.size())) return;
    std::swap(m_lines[std::size_t(line)], m_lines[std::size_t(line - 1)]);
}

void SortList::moveDown(int line) {
    moveUp(line + 1);
}

void SortList::clear() {
    m_lines.clear();
}

void SortList::refresh(const QStringList& outputNames) {
    const QSet<QString> names(outputNames.begin(), outputNames.end());
    std::erase_if(m_lines, [&](const Line& line) { return !names.contains(line.name); });
    QSet<QString> sorted;
    for (const Line& line : m_lines) sorted.insert(line.name);
    m_unsorted.clear();
    for (const QString& name : outputNames) {
        if (!sorted.contains(name) && !orvTrim(QStringView(name)).isEmpty()) m_unsorted << name;
    }
}

int SortList::rowOf(const Line& line, const QStringList& outputNames) const {
    if (line.row >= 1 && line.row <= outputNames.size() && outputNames[line.row - 1] == line.name) {
        return line.row;
    }
    return int(outputNames.indexOf(line.name)) + 1;
}

}  // namespace orv
