// SPDX-License-Identifier: MIT
#pragma once

#include "data/DataSet.h"
#include "meaning/Dice.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace orvtest {

struct RandomColumn {
    QString name;
    bool isText = false;
};

struct RandomTable {
    QString name;
    std::vector<RandomColumn> columns;

    [[nodiscard]] TDataSet dataSet() const;
    [[nodiscard]] bool has(const QString& column) const;
};

/// A few tables with few rows, many equal values and many NULLs, so that joins hit and miss. Some
/// tables are empty; several share the names of columns, and some names need quotes.
class RandomDatabase {
public:
    explicit RandomDatabase(quint32 seed);

    [[nodiscard]] const std::vector<RandomTable>& tables() const { return m_tables; }
    /// By its name as a statement may write it, ignoring case; none if there is no such table.
    [[nodiscard]] const RandomTable* find(const QString& name) const;
    /// Makes and fills the tables.
    [[nodiscard]] const QStringList& statements() const { return m_statements; }

private:
    void addTable(Dice& dice, const QString& name);
    void fill(Dice& dice, const RandomTable& table);

    std::vector<RandomTable> m_tables;
    QStringList m_statements;
};

}  // namespace orvtest
