// SPDX-License-Identifier: MIT
#include "words/Explanation.h"

#include "core/Text.h"
#include "words/ConditionWords.h"
#include "words/JoinWords.h"
#include "words/QueryNames.h"
#include "words/ResultWords.h"
#include "words/TailWords.h"

namespace orvquery {

namespace {

std::vector<WordsLine> groupSentences(const QueryNames& names, const ResultWords& result) {
    std::vector<WordsLine> lines = ConditionWords(names).sentences(
        QStringLiteral("Of these groups only those are kept where"), names.state().having);
    if (lines.empty() || result.isGrouped()) return lines;
    return {{0, QStringLiteral("The conditions for groups are not part of the statement, because "
                               "it does not group rows.")}};
}

void listMuted(const ConditionWords& words, const orv::QueryState::Row& row, const QString& what,
               std::vector<WordsLine>& lines) {
    if (row.muted) {
        lines.push_back({1, what + words.bareLine(row)});
        return;
    }
    for (const orv::QueryState::Row& inner : row.rows) listMuted(words, inner, what, lines);
}

// In the order of the other parts.
std::vector<WordsLine> mutedParts(const QueryNames& names, const ResultWords& result,
                                  const JoinWords& joins) {
    const orv::QueryState& state = names.state();
    std::vector<WordsLine> lines;
    for (const orv::OutputColumn& column : state.columns) {
        if (column.muted) lines.push_back({1, QStringLiteral("column: ") + result.column(column)});
    }
    for (const orv::QueryState::Link& link : state.links) {
        if (link.muted) lines.push_back({1, QStringLiteral("link: ") + joins.linkWords(link)});
    }
    const ConditionWords conditions(names);
    listMuted(conditions, state.where, QStringLiteral("condition: "), lines);
    listMuted(conditions, state.having, QStringLiteral("condition for groups: "), lines);
    if (!lines.empty())
        lines.insert(lines.begin(), {0, QStringLiteral("Muted, and not asked for:")});
    return lines;
}

}  // namespace

Explanation explain(const orv::QueryState& state, bool keepMeaning) {
    Explanation explanation;
    const auto add = [&](const QString& title, std::vector<WordsLine> lines) {
        if (!lines.empty()) explanation.sections.push_back({title, std::move(lines)});
    };
    if (state.tables.empty()) {
        add(QStringLiteral("Tables"),
            {{0, QStringLiteral("There is no table yet, so there is nothing to ask for.")}});
        return explanation;
    }
    const QueryNames names(state);
    const ResultWords result(names);
    add(QStringLiteral("Result"), result.sentences());
    const JoinWords joins(names, keepMeaning);
    add(QStringLiteral("Tables"), joins.sentences());
    add(QStringLiteral("Conditions"),
        ConditionWords(names).sentences(QStringLiteral("Only rows count where"), state.where));
    add(QStringLiteral("Groups"), groupSentences(names, result));
    add(QStringLiteral("Order"), result.orderSentences());
    for (WordsSection& section : tailSections(state.tail)) {
        add(section.title, std::move(section.lines));
    }
    add(QStringLiteral("Muted"), mutedParts(names, result, joins));
    return explanation;
}

}  // namespace orvquery
