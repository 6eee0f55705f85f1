// SPDX-License-Identifier: MIT
#pragma once

#include "meaning/RandomDatabase.h"

namespace orvtest {

/// A table as a FROM clause mentions it.
struct Mention {
    const RandomTable* table;
    QString qualifier;  ///< as columns are qualified by it
    int item = 0;       ///< of the comma list
};

struct ColumnRef {
    int mention = 0;
    int column = 0;
};

/// Expressions and conditions over the tables of a FROM clause, as people and tools write them.
class ExpressionMaker {
public:
    ExpressionMaker(Dice& dice, const RandomDatabase& database) : m_dice(dice), m_data(database) {}

    std::vector<Mention> mentions;
    /// How often a column stands without its table where that is clear, in percent.
    int bareNames = 0;

    /// Any name, in one of the spellings that the databases know.
    [[nodiscard]] QString spelled(const QString& name);
    [[nodiscard]] QString text(ColumnRef ref);
    [[nodiscard]] const RandomColumn& column(ColumnRef ref) const;
    [[nodiscard]] ColumnRef anyColumn();
    [[nodiscard]] ColumnRef columnOf(int mention, bool isText);

    [[nodiscard]] QString number(int depth);
    [[nodiscard]] QString characters(int depth);
    [[nodiscard]] QString value(int depth);
    /// A value of columns of one table only.
    [[nodiscard]] QString numberOf(int mention);
    /// Comparisons with AND, OR, NOT and brackets between them.
    [[nodiscard]] QString condition(int depth);
    /// One comparison, without a connective of its own.
    [[nodiscard]] QString predicate(int depth);
    [[nodiscard]] QString numberConstant();
    [[nodiscard]] QString textConstant();
    [[nodiscard]] QString comparisonSign();
    [[nodiscard]] QString inBrackets(const QString& text) { return words({"(", text, ")"}); }

private:
    [[nodiscard]] bool isClear(const QString& column) const;
    [[nodiscard]] QString numberColumn();
    [[nodiscard]] QString textColumn();
    [[nodiscard]] QString caseOf(const QString& first, const QString& second);
    [[nodiscard]] QString term(int depth);
    [[nodiscard]] QString membership(int depth);
    [[nodiscard]] QString pattern();
    [[nodiscard]] QString oddPredicate(int depth);
    [[nodiscard]] QString subSelect(const QString& column, bool correlated, bool isText);
    [[nodiscard]] QString exists();
    [[nodiscard]] QString scalar();

    Dice& m_dice;
    const RandomDatabase& m_data;
};

}  // namespace orvtest
