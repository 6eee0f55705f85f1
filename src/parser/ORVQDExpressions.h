// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "parser/ORVQDTokens.h"

#include <QHash>
#include <QString>

#include <vector>

namespace orv {

/// An expression of a list and the alias behind it.
struct AliasedRun {
    TokenRun expression;
    TokenRun alias;  ///< the one token of the alias; empty without one
    TokenRun whole;  ///< both, with AS in between
};

/// Finds the alias of an output column: the last word behind AS or, without AS, a plain or
/// double-quoted word behind a complete operand; never a word that belongs to the expression (END,
/// NULL, a collation, the unit of an interval).
[[nodiscard]] ORV_EXPORT AliasedRun splitAlias(const TokenRun& run);

/// Whether the run can be one expression at its own level: operands joined by operators. False for
/// what other dialects put in front of a column (TOP 5, DISTINCT ON (A)), which would change its
/// meaning when it were taken for one.
[[nodiscard]] ORV_EXPORT bool isExpression(const TokenRun& run);

/// Splits a condition at the ANDs of its level into `parts`, a bracket around several of them
/// included; the AND of a BETWEEN and those of a CASE split nothing. False when the condition has
/// OR or NOT at that level: then it is no conjunction.
[[nodiscard]] ORV_EXPORT bool splitConjunction(const TokenRun& run, std::vector<TokenRun>& parts);

/// Where something stands behind a condition that is no part of its last operand: a clause of
/// another dialect (FOR READ ONLY, OPTION (...), MINUS SELECT ...), at the run's own level. The
/// size of the run when nothing does.
[[nodiscard]] ORV_EXPORT int endOfCondition(const TokenRun& run);

/// Whether the run stands for all fields, of all tables or of one: "*" or "T.*".
[[nodiscard]] ORV_EXPORT bool isStar(const TokenRun& run);

/// Whether the token names a field: a word that is no constant and no parameter.
[[nodiscard]] ORV_EXPORT bool namesField(const TokenRun& run, int index);

/// For each token of the run whether it stands inside a bracket that begins with SELECT.
[[nodiscard]] ORV_EXPORT std::vector<bool> insideSubQueries(const TokenRun& run);

/// Whether the text is one name of a field, qualified or not.
[[nodiscard]] ORV_EXPORT bool isFieldName(const QString& text);

/// The text with each qualified name in one piece: without blanks around its full stops.
[[nodiscard]] ORV_EXPORT QString withJoinedNames(const QString& text);

/// Whether the text is a whole number, with or without a sign.
[[nodiscard]] ORV_EXPORT bool isWholeNumber(const QString& text);

/// What a text says, whatever its spacing, case, brackets, qualifiers and quotes around names: how
/// often it has each word, number, text and sign. Two texts that differ in it differ in meaning.
using TokenCounts = QHash<QString, int>;
[[nodiscard]] ORV_EXPORT TokenCounts countTokens(const TokenRun& run);
[[nodiscard]] ORV_EXPORT TokenCounts countTokens(const QString& text);

/// The tokens of a text in order, brackets and signs included, as one text to compare: spacing and
/// the case outside quotes do not count.
[[nodiscard]] ORV_EXPORT QString tokenKey(const QString& text);

}  // namespace orv
