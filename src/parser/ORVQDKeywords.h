// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "parser/ORVQDNodeKinds.h"

#include <QString>
#include <QStringList>
#include <QStringView>

/// The keyword lists by which words are recognised. Words are compared exactly; statements are
/// upper-cased before. Filled at first use and constant afterwards.
ORV_EXPORT const QStringList& lOperators();
ORV_EXPORT const QStringList& lMatching();
ORV_EXPORT const QStringList& lJoins();
ORV_EXPORT const QStringList& lConditionFuncs();

namespace orv {

/// What the parser knows of a word. A word has several of these at once rarely, but may.
enum WordTrait : quint16 {
    wordLogical = 1 << 0,        ///< in lOperators
    wordMatching = 1 << 1,       ///< in lMatching
    wordJoin = 1 << 2,           ///< in lJoins
    wordConditionFunc = 1 << 3,  ///< in lConditionFuncs
    wordClause = 1 << 4,         ///< opens a clause: SELECT ... ORDER BY
    wordFunction = 1 << 5,       ///< a function that the parser knows by name
    wordDirection = 1 << 6,      ///< ASC, ASCENDING, DESC, DESCENDING
    wordNeverAlias = 1 << 7,  ///< begins something else behind an item: UNION, LIMIT, NATURAL ...
    wordPair = 1 << 8,        ///< may be one word with the next: GROUP, ORDER, IS
    wordUnheldJoin = 1 << 9,  ///< CROSS, NATURAL, USING
    wordOn = 1 << 10,
    wordAs = 1 << 11,
};

/// All that the parser knows of one word. A plain value.
struct WordInfo {
    quint16 traits = 0;                 ///< a set of WordTrait
    const QString* spelling = nullptr;  ///< the word itself, to be shared; none without traits
    TLocationKinds clause = inUnknown;  ///< of a wordClause
    qint8 joinIndex = -1;               ///< position in lJoins

    /// Whether the word has the trait.
    [[nodiscard]] bool is(WordTrait trait) const { return (traits & trait) != 0; }
};

/// Length of the longest word that the parser knows.
inline constexpr qsizetype longestKnownWord = 11;  // "IS NOT NULL", "CONTAINING", "DESCENDING"

/// What the parser knows of an upper-case word; no traits for an ordinary one.
[[nodiscard]] ORV_EXPORT WordInfo wordInfo(QStringView upperWord);

}  // namespace orv
