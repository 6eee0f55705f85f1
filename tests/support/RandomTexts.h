// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"

#include <QString>
#include <QStringList>

#include <vector>

// What random states are made of. {0,0} and {1,0} stand for two fields of the state; in texts of
// joins the first number is the table's place in the join.
namespace orvtest::texts {

/// Operators of a host's own: words and signs, with and without texts around their operands.
[[nodiscard]] const std::vector<TorvQDOperator>& ownOperators();

// Tables and what a user types for their aliases.
extern const QStringList reservedWords;
extern const QStringList plainTables;
extern const QStringList quotedTables;
extern const QString qualifiedTable;
extern const QStringList typedAliases;

// Operands: in front of an operator, behind one, behind "=" only, behind LIKE, lists.
extern const QString caseText;
extern const QStringList leftSides;
extern const QStringList rightSides;
extern const QStringList rightOfSigns;
extern const QStringList likeTexts;
extern const QStringList lists;

// Conditions that are one text as a whole; the second only without operators of the host.
extern const QStringList wholeTexts;
extern const QStringList wholeTextsOfDefaults;

// Columns.
extern const QStringList expressions;
extern const QStringList moreExpressions;
extern const QStringList numbers;
extern const QStringList aggregates;
extern const QStringList aggregateNames;

// The rest.
extern const QStringList tails;
extern const QStringList joinTexts;

}  // namespace orvtest::texts
