// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <vector>

namespace orvquery {

/// Makes foreign keys of the rows in which catalogs have them: one for each pair of columns, those
/// of a key one after the other.
class ForeignKeyRows {
public:
    /// The rows of a key have the same id, which no other key of its table has.
    void add(const QString& id, const TableName& table, const QString& column,
             const TableName& referenced, const QString& referencedColumn) {
        if (m_keys.empty() || id != m_id || m_keys.back().table != table) {
            m_id = id;
            m_keys.push_back({table, {}, referenced, {}});
        }
        m_keys.back().columns += column;
        m_keys.back().referencedColumns += referencedColumn;
    }

    [[nodiscard]] const std::vector<ForeignKey>& keys() const { return m_keys; }

private:
    std::vector<ForeignKey> m_keys;
    QString m_id;  ///< of the last key
};

}  // namespace orvquery
