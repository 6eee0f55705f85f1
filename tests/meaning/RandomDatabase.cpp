// SPDX-License-Identifier: MIT
#include "meaning/RandomDatabase.h"

#include "core/Text.h"

#include <algorithm>

namespace orvtest {

namespace {

const QStringList& tableNames() {
    static const QStringList names = {"EMP", "DEPT", "ORD", "PARTS", "T1", "Line Item"};
    return names;
}

const QStringList& numberColumns() {
    static const QStringList names = {"ID", "X", "Y", "QTY", "GROUP"};
    return names;
}

const QStringList& textColumns() {
    static const QStringList names = {"NAME", "C", "TAG", "my field"};
    return names;
}

QString numberValue(Dice& dice) {
    return dice.chance(25) ? QStringLiteral("NULL") : QString::number(dice.between(-2, 4));
}

QString textValue(Dice& dice) {
    static const QStringList values = {"NULL", "NULL", "NULL",  "'a'",     "'a'",  "'b'",
                                       "'ab'", "'A'",  "'x y'", "'it''s'", "'%_'", "''"};
    return dice.pick(values);
}

void addColumns(Dice& dice, RandomTable& table, const QStringList& names, int count, bool isText) {
    QStringList left = names;
    for (; count > 0; --count) {
        // The first names are drawn more often, so that tables share them.
        const int index = std::min(dice.below(int(left.size())), dice.below(int(left.size())));
        table.columns.push_back({left.takeAt(index), isText});
    }
}

}  // namespace

TDataSet RandomTable::dataSet() const {
    TDataSet dataSet;
    for (const RandomColumn& column : columns) {
        dataSet.FieldDefs.push_back({column.name, column.isText ? ftString : ftInteger});
    }
    return dataSet;
}

bool RandomTable::has(const QString& column) const {
    return std::any_of(columns.begin(), columns.end(),
                       [&](const RandomColumn& own) { return own.name == column; });
}

RandomDatabase::RandomDatabase(quint32 seed) {
    Dice dice(seed);
    QStringList names = tableNames();
    for (int count = dice.between(3, 5); count > 0; --count) {
        addTable(dice, names.takeAt(dice.below(int(names.size()))));
    }
}

const RandomTable* RandomDatabase::find(const QString& name) const {
    const QString wanted = name.toUpper();
    const auto found = std::find_if(m_tables.begin(), m_tables.end(), [&](const auto& table) {
        const QString own = table.name.toUpper();
        return own == wanted || QStringLiteral("MAIN.") + own == wanted;
    });
    return found == m_tables.end() ? nullptr : &*found;
}

void RandomDatabase::addTable(Dice& dice, const QString& name) {
    RandomTable table{name, {}};
    const int texts = dice.between(1, 2);
    addColumns(dice, table, numberColumns(), dice.between(3, 4) - texts, false);
    addColumns(dice, table, textColumns(), texts, true);
    QStringList columns;
    for (const RandomColumn& column : table.columns) {
        columns << orv::quotedName(column.name) +
                       (column.isText ? QStringLiteral(" TEXT") : QStringLiteral(" INTEGER"));
    }
    m_statements << QStringLiteral("CREATE TABLE %1 (%2)")
                        .arg(orv::quotedName(name), columns.join(QStringLiteral(", ")));
    fill(dice, table);
    m_tables.push_back(std::move(table));
}

void RandomDatabase::fill(Dice& dice, const RandomTable& table) {
    const int rows = dice.chance(12) ? 0 : dice.between(1, 6);
    for (int row = 0; row < rows; ++row) {
        QStringList values;
        for (const RandomColumn& column : table.columns) {
            values << (column.isText ? textValue(dice) : numberValue(dice));
        }
        m_statements << QStringLiteral("INSERT INTO %1 VALUES (%2)")
                            .arg(orv::quotedName(table.name), values.join(QStringLiteral(", ")));
    }
}

}  // namespace orvtest
