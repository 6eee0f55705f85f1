// SPDX-License-Identifier: MIT
#include "selection/ORVQDSortList.h"

#include "core/Text.h"

#include <utility>

namespace orv {

QString ascendingText() {
    return QStringLiteral("Ascending");
}

QString descendingText() {
    return QStringLiteral("Descending");
}

void SortList::append(const QString& name, const QString& direction, int row,
                      const QString& source) {
    m_lines.push_back({name, direction, row, source});
}

void SortList::add(int unsortedIndex) {
    if (unsortedIndex < 0 || unsortedIndex >= m_unsorted.size()) return;
    m_lines.push_back(m_unsortedLines[std::size_t(unsortedIndex)]);
    m_unsorted.removeAt(unsortedIndex);
    m_unsortedLines.erase(m_unsortedLines.begin() + unsortedIndex);
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

int SortList::refresh(const QStringList& outputNames, const QStringList& sources, int followed) {
    const QSet<QString> names(outputNames.begin(), outputNames.end());
    OutputRows rows(outputNames, sources);
    std::vector<Line> kept;
    int position = -1;
    QSet<QString> sorted;
    for (int index = 0; index < int(m_lines.size()); ++index) {
        Line& line = m_lines[std::size_t(index)];
        if (!names.contains(line.name)) continue;
        if (index == followed) position = int(kept.size());
        sorted.insert(line.name);
        if (line.row > 0) {
            line.row = rows.rowOf(line);
            line.source = sources.value(line.row - 1);
        }
        kept.push_back(std::move(line));
    }
    m_lines = std::move(kept);
    m_unsorted.clear();
    m_unsortedLines.clear();
    for (int row = 1; row <= int(outputNames.size()); ++row) {
        list(outputNames[row - 1], sources.value(row - 1), row, sorted);
    }
    return position;
}

void SortList::appendOutputs(const QStringList& names, const QStringList& sources, int firstRow) {
    QSet<QString> sorted;
    for (const Line& line : m_lines) sorted.insert(line.name);
    for (qsizetype index = 0; index < names.size(); ++index) {
        list(names[index], sources.value(index), firstRow + int(index), sorted);
    }
}

// Lists the output name of a row as unsorted, unless it is sorted or blank.
void SortList::list(const QString& name, const QString& source, int row,
                    const QSet<QString>& sorted) {
    if (sorted.contains(name) || isBlank(name)) return;
    m_unsorted << name;
    m_unsortedLines.push_back({name, ascendingText(), row, source});
}

int SortList::rowOf(const Line& line, const QStringList& outputNames, const QStringList& sources) {
    return OutputRows(outputNames, sources).rowOf(line);
}

OutputRows::OutputRows(QStringList names, QStringList sources)
    : m_names(std::move(names)), m_sources(std::move(sources)) {}

bool OutputRows::isNamed(const SortList::Line& line) const {
    return line.row >= 1 && line.row <= m_names.size() && m_names[line.row - 1] == line.name;
}

bool OutputRows::isSame(const SortList::Line& line) const {
    return isNamed(line) && m_sources.value(line.row - 1) == line.source;
}

int OutputRows::rowOf(const SortList::Line& line) {
    if (!line.source.isEmpty() && !isSame(line)) {
        index();
        const int row = m_byNameAndSource.value({line.name, line.source});
        if (row > 0) return row;
    }
    if (isNamed(line)) return line.row;
    index();
    return m_byName.value(line.name);
}

// Most lines have kept their rows: then nothing is looked up.
void OutputRows::index() {
    if (m_isIndexed) return;
    m_isIndexed = true;
    for (qsizetype row = m_names.size(); row >= 1; --row) {
        m_byName.insert(m_names[row - 1], int(row));
        m_byNameAndSource.insert({m_names[row - 1], m_sources.value(row - 1)}, int(row));
    }
}

}  // namespace orv
