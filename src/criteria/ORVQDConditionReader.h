// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"
#include "core/Export.h"
#include "parser/ORVQDTokens.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace orv {

/// What a condition of a statement says: its left side, operator and operands, or, where no
/// operator of the list fits, its whole text.
struct ReadCondition {
    QString fieldFunc;               ///< function around the left side
    QString field;                   ///< the left side
    TOperatorList::Entry operation;  ///< expressionOperator() for a text as a whole
    QString argFunc;                 ///< function around the operand
    QStringList arguments;           ///< the operands
};

/// One element of a bracket's level: AND, OR, NOT, a bracketed sub-condition or a condition.
struct ConditionElement {
    /// What the element is.
    enum Kind : quint8 { And, Or, Not, Bracket, Condition };

    Kind kind = Condition;                   ///< what the element is
    TokenRun run;                            ///< its tokens
    ReadCondition condition;                 ///< of a Condition
    std::vector<ConditionElement> children;  ///< of a Bracket
};

/// By what a condition is read.
struct ConditionRules {
    const TOperatorList* operators = nullptr;  ///< borrowed
    const QStringList* functions = nullptr;    ///< functions of their own cells; none without
    bool andBindsTighter = false;              ///< AND before OR, as SQL has it
    bool structureOnly = false;                ///< conditions are found, but not taken apart
};

/// How many groups of conditions may stand one inside the other below the root, and how deep
/// sub-conditions may nest in a text; brackets around brackets do not count. A saved state has two
/// levels of JSON for each, and Qt reads 1,024 of them.
inline constexpr int deepestCondition = 500;

/// Raises the orv::Error that names this bound.
[[noreturn]] ORV_EXPORT void raiseTooDeep();

/// Reads the tokens of a WHERE or HAVING clause, without the keyword. Raises orv::Error when
/// sub-conditions nest deeper than deepestCondition.
[[nodiscard]] ORV_EXPORT std::vector<ConditionElement> readConditions(const TokenRun& run,
                                                                      const ConditionRules& rules);

/// Where something stands behind the condition that is no part of it, as orv::endOfCondition tells;
/// words of the operators are parts of conditions.
[[nodiscard]] ORV_EXPORT int conditionEnd(const TokenRun& condition,
                                          const TOperatorList* operators);

/// Upper bound of the groups that the condition becomes, one inside the other, in either reading of
/// AND and OR. Looks at brackets and connectives alone.
[[nodiscard]] ORV_EXPORT int mostGroupsBelow(const TokenRun& run);

/// The ANDs whose connective before is OR: where reading from left to right and reading AND first
/// differ. None when they agree.
[[nodiscard]] ORV_EXPORT std::vector<const ConditionElement*> andsBehindOr(
    const std::vector<ConditionElement>& level);

}  // namespace orv
