// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QHash>

#include <vector>

namespace orvquery {

/// The tables of a database as its foreign keys connect them, found at once however many there
/// are. Made once for each listing. A plain value.
class JoinGraph {
public:
    /// A foreign key between two tables, by their numbers.
    struct Key {
        int table = 0;
        QStringList columns;
        int referenced = 0;
        QStringList referencedColumns;
    };

    JoinGraph() = default;
    /// Keys are written by people, in any case: a table that is not listed under that very name is
    /// the only one that is the same but for the case. Keys of tables that are not listed, or
    /// without columns, are left out; those that say the same count once.
    JoinGraph(const std::vector<ForeignKey>& keys, const std::vector<TableEntry>& tables);

    [[nodiscard]] int tableCount() const { return int(m_tables.size()); }
    [[nodiscard]] int keyCount() const { return int(m_keys.size()); }

    /// The number of a table; -1 when no key has to do with it.
    [[nodiscard]] int numberOf(const TableName& table) const { return m_numbers.value(table, -1); }
    [[nodiscard]] const TableName& table(int number) const { return m_tables[size_t(number)]; }

    /// The keys in which the table is on either side, each once; none for -1.
    [[nodiscard]] const std::vector<int>& keysOf(int table) const;
    [[nodiscard]] const Key& key(int number) const { return m_keys[size_t(number)]; }

private:
    [[nodiscard]] int addTable(const TableName& table);

    std::vector<TableName> m_tables;
    QHash<TableName, int> m_numbers;
    std::vector<Key> m_keys;
    std::vector<std::vector<int>> m_keysOfTable;
};

}  // namespace orvquery
