// SPDX-License-Identifier: MIT
#pragma once

#include "words/Explanation.h"
#include "words/QueryNames.h"

namespace orvquery {

/// How the conditions of a group hold together in the statement that is written: "None" negates
/// that all hold, and "Not all" negates that any does.
enum class GroupKind { All, Any, NotAll, NotAny, Other };
[[nodiscard]] GroupKind groupKind(const QString& name);

/// "all of these are true", "each of these is false" and the like.
[[nodiscard]] QString groupWords(const QString& name);

/// The row without what is muted in it; none when nothing of it is written. A group without rows
/// is written, as a place that is not filled; one that is left with one row is that row.
[[nodiscard]] std::optional<orv::QueryState::Row> writtenPart(const orv::QueryState::Row& row);

/// The condition that a group negates, said without the negation: IS NOT NULL for NOT (... IS
/// NULL). None for a group of another kind.
[[nodiscard]] std::optional<orv::QueryState::Row> plainNegation(const orv::QueryState::Row& row);

/// Whether the words of a condition stay apart from others in one sentence: it has no such words as
/// would join it with them, and no comma but in brackets or apostrophes.
[[nodiscard]] bool joinsClearly(const QString& text);

/// What stands behind words of a part that is muted; nothing behind those of others.
[[nodiscard]] QString muteMark(bool isMuted);

/// Says conditions in words.
class ConditionWords {
public:
    explicit ConditionWords(const QueryNames& names) : m_names(names) {}

    /// One condition, without what is inside a group: "the CITY is 'Oslo'".
    [[nodiscard]] QString condition(const orv::QueryState::Row& row) const;

    /// A condition or group on one line; what is muted is marked.
    [[nodiscard]] QString onOneLine(const orv::QueryState::Row& row) const;
    /// The same without a mark of the row itself.
    [[nodiscard]] QString bareLine(const orv::QueryState::Row& row) const;

    /// All conditions below a root group that are not muted: a sentence that begins with `lead`,
    /// and a list where one sentence would not be clear. Nothing without conditions.
    [[nodiscard]] std::vector<WordsLine> sentences(const QString& lead,
                                                   const orv::QueryState::Row& given) const;

    /// A comparison of two sides that are words already.
    [[nodiscard]] QString comparison(const QString& left, Scale scale, const QString& operation,
                                     const QString& right, bool isConstant) const;

private:
    [[nodiscard]] QString leftSide(const orv::QueryState::Row& row) const;
    [[nodiscard]] QString predicate(const orv::QueryState::Row& row, Scale scale) const;
    [[nodiscard]] QString expression(const QString& sql) const;
    [[nodiscard]] QString membership(const QString& list, bool isNegated) const;
    [[nodiscard]] std::optional<QString> clearLine(const orv::QueryState::Row& row) const;
    void list(const orv::QueryState::Row& group, int depth, std::vector<WordsLine>& lines) const;

    const QueryNames& m_names;
};

}  // namespace orvquery
