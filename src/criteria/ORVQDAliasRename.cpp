// SPDX-License-Identifier: MIT
#include "criteria/ORVQDAliasRename.h"

#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDTokens.h"

#include <algorithm>
#include <vector>

namespace orv {

namespace {

bool isAnyOf(const TokenRun& run, int index, std::initializer_list<QStringView> words) {
    if (index < 0 || index >= run.size()) return false;
    return std::any_of(words.begin(), words.end(),
                       [&](QStringView word) { return run.is(index, word); });
}

// The last part of a name, without its quotes and in upper case.
QString lastPart(QString name) {
    for (qsizetype stop = firstFullStop(name); stop >= 0; stop = firstFullStop(name)) {
        name = name.mid(stop + 1);
    }
    return unquotedName(name).toUpper();
}

/// Finds the brackets whose sub-select has a table of the alias.
class ScopeFinder {
public:
    ScopeFinder(const TokenRun& run, const QString& alias) : m_run(run), m_alias(lastPart(alias)) {}

    // For each token whether the alias means a table of a sub-select there.
    std::vector<bool> hiddenTokens() {
        std::vector<bool> hidden(std::size_t(m_run.size()), false);
        if (isAnyOf(m_run, 0, {u"SELECT"}) && declares(0, m_run.size())) hidden.flip();
        for (int index = 0; index < m_run.size();) {
            const bool isSelect =
                m_run[index].kind == SqlToken::Open && isAnyOf(m_run, index + 1, {u"SELECT"});
            const int end = isSelect ? m_run.behindBracket(index) : index + 1;
            if (!isSelect || !declares(index + 1, end)) {
                ++index;
                continue;
            }
            std::fill(hidden.begin() + index, hidden.begin() + end, true);
            index = end;
        }
        return hidden;
    }

private:
    // Whether the FROM list at the level of the select that begins at `first` has the alias.
    [[nodiscard]] bool declares(int first, int end) const {
        bool inFrom = false;
        for (int index = first; index < end; ++index) {
            if (m_run[index].kind == SqlToken::Open) {
                index = m_run.behindBracket(index) - 1;
                continue;
            }
            if (isAnyOf(m_run, index, {u"WHERE", u"GROUP", u"HAVING", u"ORDER", u"UNION"})) {
                inFrom = false;
            }
            if (isAnyOf(m_run, index, {u"FROM"})) inFrom = true;
            const bool beginsTable =
                m_run[index].kind == SqlToken::Comma || isAnyOf(m_run, index, {u"FROM", u"JOIN"});
            if (inFrom && beginsTable && tableName(index + 1, end) == m_alias) return true;
        }
        return false;
    }

    // The alias of the table, or its name when it has none.
    [[nodiscard]] QString tableName(int index, int end) const {
        if (index >= end) return {};
        const bool isBracket = m_run[index].kind == SqlToken::Open;
        int alias = isBracket ? m_run.behindBracket(index) : index + 1;
        if (isAnyOf(m_run, alias, {u"AS"})) ++alias;
        const bool hasAlias =
            alias < end && m_run[alias].kind == SqlToken::Word &&
            !isAnyOf(m_run, alias,
                     {u"ON", u"JOIN", u"INNER", u"LEFT", u"RIGHT", u"FULL", u"CROSS", u"NATURAL",
                      u"USING", u"WHERE", u"GROUP", u"HAVING", u"ORDER", u"UNION", u"LIMIT"});
        if (hasAlias) return lastPart(m_run.textOf(alias).toString());
        return isBracket ? QString() : lastPart(m_run.textOf(index).toString());
    }

    const TokenRun& m_run;
    const QString m_alias;
};

}  // namespace

QString renamedAlias(const QString& given, const QString& newAlias, const QString& oldAlias) {
    const QString prefix = oldAlias + u'.';
    const QString text = withJoinedNames(given);
    if (!text.contains(prefix)) return given;
    const SqlTokens tokens = tokenise(text);
    const TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    const std::vector<bool> hidden = ScopeFinder(run, oldAlias).hiddenTokens();
    QString result;
    int copied = 0;
    for (int index = 0; index < run.size(); ++index) {
        const bool isMeant = run[index].kind == SqlToken::Word && !hidden[std::size_t(index)] &&
                             run.textOf(index).startsWith(prefix);
        if (!isMeant) continue;
        result += QStringView(text).mid(copied, run[index].start - copied);
        result += newAlias;
        copied = run[index].start + int(oldAlias.size());
    }
    return result + text.mid(copied);
}

}  // namespace orv
