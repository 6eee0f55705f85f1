// SPDX-License-Identifier: MIT
#include "joins/JoinGraph.h"

#include <QSet>

#include <algorithm>
#include <optional>

namespace orvquery {

namespace {

TableName withoutCase(const TableName& table) {
    return {table.name.toCaseFolded(), table.schema.toCaseFolded()};
}

// The listed tables, by their very names and by those without case.
class Listing {
public:
    explicit Listing(const std::vector<TableEntry>& entries) {
        for (const TableEntry& entry : entries) {
            const TableName table = entry.tableName();
            m_exact.insert(table);
            m_folded[withoutCase(table)].push_back(table);
        }
    }

    [[nodiscard]] std::optional<TableName> find(const TableName& written) const {
        if (m_exact.contains(written)) return written;
        const std::vector<TableName> found = m_folded.value(withoutCase(written));
        if (found.size() != 1) return std::nullopt;
        return found.front();
    }

private:
    QSet<TableName> m_exact;
    QHash<TableName, std::vector<TableName>> m_folded;
};

// A reference to a table that is missing has columns without a name.
bool hasColumns(const ForeignKey& key) {
    const auto isNamed = [](const QString& column) { return !column.isEmpty(); };
    return !key.columns.isEmpty() && key.columns.size() == key.referencedColumns.size() &&
           std::all_of(key.columns.begin(), key.columns.end(), isNamed) &&
           std::all_of(key.referencedColumns.begin(), key.referencedColumns.end(), isNamed);
}

bool isSameKey(const JoinGraph::Key& left, const JoinGraph::Key& right) {
    return left.table == right.table && left.referenced == right.referenced &&
           left.columns == right.columns && left.referencedColumns == right.referencedColumns;
}

}  // namespace

JoinGraph::JoinGraph(const std::vector<ForeignKey>& keys, const std::vector<TableEntry>& tables) {
    const Listing listing(tables);
    QHash<QStringList, std::vector<int>> byColumns;
    for (const ForeignKey& key : keys) {
        if (!hasColumns(key)) continue;
        const std::optional<TableName> from = listing.find(key.table);
        const std::optional<TableName> to = listing.find(key.referenced);
        if (!from || !to) continue;
        const Key added = {addTable(*from), key.columns, addTable(*to), key.referencedColumns};
        const QStringList marks{from->schema, from->name, key.columns.join(u',')};
        std::vector<int>& others = byColumns[marks];
        if (std::any_of(others.begin(), others.end(),
                        [&](int other) { return isSameKey(m_keys[size_t(other)], added); })) {
            continue;
        }
        const int number = keyCount();
        others.push_back(number);
        m_keysOfTable[size_t(added.table)].push_back(number);
        if (added.referenced != added.table) {
            m_keysOfTable[size_t(added.referenced)].push_back(number);
        }
        m_keys.push_back(added);
    }
}

int JoinGraph::addTable(const TableName& table) {
    const auto found = m_numbers.constFind(table);
    if (found != m_numbers.cend()) return *found;
    const int number = tableCount();
    m_numbers.insert(table, number);
    m_tables.push_back(table);
    m_keysOfTable.emplace_back();
    return number;
}

const std::vector<int>& JoinGraph::keysOf(int table) const {
    static const std::vector<int> none;
    return table < 0 ? none : m_keysOfTable[size_t(table)];
}

}  // namespace orvquery
