// SPDX-License-Identifier: MIT
#include "parser/ORVQDExpressions.h"

#include "core/Text.h"
#include "parser/ORVQDNormalise.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace orv {

namespace {

using Words = QSet<QString>;

constexpr qsizetype longestWord = 20;  // longer ones are in no set

// It is asked for every word of a statement, several times: none of them is copied.
bool isOneOf(const TokenRun& run, int index, const Words& words) {
    if (index < 0 || index >= run.size() || run[index].kind != SqlToken::Word) return false;
    const QStringView word = run.textOf(index);
    if (word.size() > longestWord) return false;
    std::array<QChar, longestWord> upper;
    std::transform(word.begin(), word.end(), upper.begin(),
                   [](QChar letter) { return letter.toUpper(); });
    return words.contains(QString::fromRawData(upper.data(), word.size()));
}

// Words between two operands: an operand follows.
const Words& connectives() {
    static const Words words = {
        "AND",     "OR",     "XOR",     "IS",     "IN",     "LIKE",       "ILIKE",   "RLIKE",
        "NOT",     "DIV",    "MOD",     "GLOB",   "REGEXP", "MATCH",      "SIMILAR", "TO",
        "BETWEEN", "ESCAPE", "COLLATE", "OVER",   "FILTER", "WITHIN",     "WHEN",    "THEN",
        "ELSE",    "WITH",   "RESPECT", "IGNORE", "GROUP",  "CONTAINING", "STARTING"};
    return words;
}

// Words behind a complete operand that end it.
const Words& postfixWords() {
    static const Words words = {"END", "ISNULL", "NOTNULL", "NULLS"};
    return words;
}

// The last words of IS DISTINCT FROM and IS NOT DISTINCT FROM.
bool isInDistinctFrom(const TokenRun& run, int index) {
    if (index > 0 && index < run.size() && run.is(index, u"FROM")) --index;
    if (index < 1 || index >= run.size() || !run.is(index, u"DISTINCT")) return false;
    return run.is(index - 1, u"IS") ||
           (index > 1 && run.is(index - 1, u"NOT") && run.is(index - 2, u"IS"));
}

bool isConnective(const TokenRun& run, int index) {
    return isOneOf(run, index, connectives()) || isInDistinctFrom(run, index);
}

// Words that never begin an operand.
bool isInfix(const TokenRun& run, int index) {
    return isConnective(run, index) || isOneOf(run, index, postfixWords());
}

// A token of AT TIME ZONE or the one behind it.
bool isInTimeZonePhrase(const TokenRun& run, int index) {
    const auto phraseAt = [&](int first) {
        return first >= 0 && first + 2 < run.size() && run.is(first, u"AT") &&
               run.is(first + 1, u"TIME") && run.is(first + 2, u"ZONE");
    };
    return phraseAt(index) || phraseAt(index - 1) || phraseAt(index - 2) || phraseAt(index - 3);
}

const Words& unitWords() {
    static const Words words = {"YEAR",   "QUARTER", "MONTH",   "WEEK",        "DAY",        "HOUR",
                                "MINUTE", "SECOND",  "YEARS",   "MONTHS",      "WEEKS",      "DAYS",
                                "HOURS",  "MINUTES", "SECONDS", "MICROSECOND", "MILLISECOND"};
    return words;
}

// Words behind which an operand follows directly.
const Words& prefixWords() {
    static const Words words = {"NOT",      "CASE",  "DATE",     "TIME",  "TIMESTAMP",
                                "INTERVAL", "ALL",   "ANY",      "SOME",  "EXISTS",
                                "BINARY",   "PRIOR", "DISTINCT", "ARRAY", "ROW"};
    return words;
}

// Words that open something else than an expression.
const Words& foreignWords() {
    static const Words words = {"TOP",   "FIRST", "SKIP", "ON",       "SELECT", "FROM",
                                "WHERE", "INTO",  "BY",   "DISTINCT", "ALL",    "AS"};
    return words;
}

const Words& neverAliasWords() {
    static const Words words = {"END", "NULL", "TRUE", "FALSE", "ISNULL", "NOTNULL", "UNKNOWN"};
    return words;
}

const Words& constantWords() {
    static const Words words = {
        "NULL",         "USER",         "TRUE",          "FALSE",     "CURRENT_DATE",
        "CURRENT_TIME", "CURRENT_USER", "SESSION_USER",  "LOCALTIME", "CURRENT_TIMESTAMP",
        "SYSTEM_USER",  "CURRENT_ROLE", "LOCALTIMESTAMP"};
    return words;
}

bool endsWithUnit(const TokenRun& run, int index) {
    if (!isOneOf(run, index, unitWords()) || index < 2) return false;
    return isOneOf(run, index - 2, {"INTERVAL"}) || isOneOf(run, index - 1, {"TO"});
}

bool mayBeAlias(const TokenRun& run, int index) {
    const QStringView word = run.textOf(index);
    if (run[index].kind != SqlToken::Word || isOneOf(run, index, neverAliasWords())) return false;
    if (isInfix(run, index) || isInTimeZonePhrase(run, index)) return false;
    if (!isPlainIdentifier(word) && !isQuotedName(word)) return false;
    return !isConnective(run, index - 1) && !endsWithUnit(run, index) &&
           endsOperand(run, index - 1);
}

bool beginsOperand(const TokenRun& run, int index) {
    switch (run[index].kind) {
    case SqlToken::Word: return !isInfix(run, index);
    case SqlToken::Number:
    case SqlToken::Text:
    case SqlToken::Open: return true;
    case SqlToken::Sign:
    case SqlToken::Close:
    case SqlToken::Comma: break;
    }
    return false;
}

// Whether two neighbours of one level may stand side by side in an expression.
bool mayFollow(const TokenRun& run, int index) {
    const int before = index - 1;
    if (!beginsOperand(run, index) || !endsOperand(run, before)) return true;
    if (isConnective(run, before) || isOneOf(run, before, prefixWords())) return true;
    if (isInTimeZonePhrase(run, index)) return true;
    if (run[index].kind == SqlToken::Open) return run[before].kind == SqlToken::Word;
    return endsWithUnit(run, index);
}

// Behind a name some databases take it for an array index and others for an alias.
bool hasSquareBracket(const TokenRun& run) {
    for (int index = 0; index < run.size(); ++index) {
        if (run.is(index, u"[")) return true;
    }
    return false;
}

bool isBalanced(const TokenRun& run) {
    int open = 0;
    for (int index = 0; index < run.size() && open >= 0; ++index) {
        if (run[index].kind == SqlToken::Open) ++open;
        if (run[index].kind == SqlToken::Close) --open;
    }
    return open == 0;
}

// Signs that may begin an operand.
bool isUnarySign(const TokenRun& run, int index) {
    const QStringView signs = run.textOf(index);
    return run[index].kind == SqlToken::Sign &&
           std::all_of(signs.begin(), signs.end(),
                       [](QChar sign) { return QStringView(u"+-~").contains(sign); });
}

QString comparable(const TokenRun& run, int index) {
    QString text = run.textOf(index).toString();
    if (run[index].kind != SqlToken::Word) {
        return upperOutsideQuotes(text);
    }
    for (qsizetype stop = firstFullStop(text); stop >= 0; stop = firstFullStop(text)) {
        text = text.mid(stop + 1);
    }
    return unquotedName(text).toUpper();
}

}  // namespace

AliasedRun splitAlias(const TokenRun& run) {
    const int last = run.size() - 1;
    AliasedRun parts{run, run.mid(run.size(), 0), run};
    if (last < 1 || run[last].depth != run[0].depth) return parts;
    if (last >= 2 && run.is(last - 1, u"AS") && run[last - 1].depth == run[0].depth &&
        (run[last].kind == SqlToken::Word || run[last].kind == SqlToken::Text)) {
        return {run.mid(0, last - 1), run.mid(last), run};
    }
    if (mayBeAlias(run, last)) return {run.mid(0, last), run.mid(last), run};
    return parts;
}

bool isExpression(const TokenRun& run) {
    if (run.size() == 1) return beginsOperand(run, 0) || run[0].kind == SqlToken::Word;
    if (run.isEmpty() ||
        !(beginsOperand(run, 0) || isUnarySign(run, 0) || isOneOf(run, 0, prefixWords()))) {
        return false;
    }
    if (!isBalanced(run) || hasSquareBracket(run)) return false;
    const int level = run[0].depth;
    int before = -1;
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].depth != level) continue;
        const bool first = before < 0;
        before = index;
        if (isOneOf(run, index, foreignWords()) && !isInDistinctFrom(run, index)) return false;
        if (first || run[index].kind == SqlToken::Close) continue;
        if (!mayFollow(run, index)) return false;
    }
    return !isConnective(run, run.size() - 1);
}

bool isStar(const TokenRun& run) {
    if (run.isEmpty() || run.size() > 2 || run.textOf(run.size() - 1) != u"*") return false;
    return run.size() == 1 || run.textOf(0).endsWith(u'.');
}

namespace {

bool isBracketOfConditions(const TokenRun& run) {
    return run.size() > 2 && run[0].kind == SqlToken::Open && run.behindBracket(0) == run.size() &&
           run[run.size() - 1].kind == SqlToken::Close && !run.is(1, u"SELECT");
}

// The runs between the ANDs of one level; none when OR or NOT stands there.
std::vector<TokenRun> partsOfLevel(const TokenRun& run) {
    std::vector<TokenRun> parts;
    int first = 0;
    int betweens = 0;
    int cases = 0;
    for (int index = 0; index < run.size();) {
        if (run[index].kind == SqlToken::Open) {
            index = run.behindBracket(index);
            continue;
        }
        const bool isWord = run[index].kind == SqlToken::Word;
        if (isWord && run.is(index, u"CASE")) ++cases;
        if (isWord && run.is(index, u"END") && cases > 0) --cases;
        if (isWord && cases == 0) {
            if (run.is(index, u"OR") || (index == first && run.is(index, u"NOT"))) return {};
            if (run.is(index, u"BETWEEN")) ++betweens;
            if (run.is(index, u"AND") && --betweens < 0) {
                betweens = 0;
                parts.push_back(run.mid(first, index - first));
                first = index + 1;
            }
        }
        ++index;
    }
    parts.push_back(run.mid(first));
    return parts;
}

}  // namespace

bool splitConjunction(const TokenRun& run, std::vector<TokenRun>& parts) {
    std::vector<TokenRun> open = {run};  // in reverse order of the text
    bool outermost = true;
    while (!open.empty()) {
        TokenRun part = open.back();
        open.pop_back();
        TokenRun inside = part;
        while (isBracketOfConditions(inside)) {
            part = inside;  // of brackets around brackets one is enough
            inside = inside.mid(1, inside.size() - 2);
        }
        const std::vector<TokenRun> level = partsOfLevel(inside);
        if (level.empty() && outermost) return false;
        outermost = false;
        if (level.size() > 1) {
            open.insert(open.end(), level.rbegin(), level.rend());
        } else if (!part.isEmpty()) {
            parts.push_back(level.empty() ? part : level.front());
        }
    }
    return !parts.empty();
}

bool namesField(const TokenRun& run, int index) {
    if (run[index].kind != SqlToken::Word || isOneOf(run, index, constantWords())) return false;
    const QStringView word = run.textOf(index);
    if (!word.startsWith(u'$')) return !isParameter(word);
    return !std::all_of(word.begin() + 1, word.end(), [](QChar sign) { return sign.isDigit(); });
}

int endOfCondition(const TokenRun& run) {
    static const Words followers = {"UNION",   "INTERSECT", "EXCEPT", "MINUS", "FOR",
                                    "OPTION",  "WITH",      "LOCK",   "PLAN",  "ROWS",
                                    "QUALIFY", "CONNECT",   "START",  "INTO",  "PROCEDURE"};
    for (int index = 1; index < run.size(); ++index) {
        if (run[index].depth != run[0].depth || run[index].kind != SqlToken::Word) continue;
        if (isOneOf(run, index, followers) && endsOperand(run, index - 1)) return index;
    }
    return run.size();
}

std::vector<bool> insideSubQueries(const TokenRun& run) {
    std::vector<bool> inside(std::size_t(run.size()), false);
    for (int index = 0; index + 1 < run.size(); ++index) {
        if (run[index].kind != SqlToken::Open || !run.is(index + 1, u"SELECT")) continue;
        const int behind = run.behindBracket(index);
        std::fill(inside.begin() + index, inside.begin() + behind, true);
        index = behind - 1;
    }
    return inside;
}

bool isFieldName(const QString& text) {
    const SqlTokens tokens = tokenise(text);
    return tokens.size() == 1 && namesField({text, tokens.data(), tokens.data() + 1}, 0);
}

QString withJoinedNames(const QString& text) {
    if (!text.contains(QStringLiteral(" .")) && !text.contains(QStringLiteral(". "))) return text;
    QString joined;
    int copied = 0;
    const SqlToken* before = nullptr;
    const SqlTokens tokens = tokenise(text);
    for (const SqlToken& token : tokens) {
        const bool isOneName = before && before->kind == SqlToken::Word &&
                               token.kind == SqlToken::Word &&
                               (text[before->end - 1] == u'.' || text[token.start] == u'.');
        if (isOneName) {
            joined += QStringView(text).mid(copied, before->end - copied);
            copied = token.start;
        }
        before = &token;
    }
    return joined + text.mid(copied);
}

bool isWholeNumber(const QString& text) {
    bool isNumber = false;
    QString digits = text;
    digits.remove(u' ').toLongLong(&isNumber);
    return isNumber;
}

TokenCounts countTokens(const TokenRun& run) {
    TokenCounts counts;
    for (int index = 0; index < run.size(); ++index) {
        const SqlToken::Kind kind = run[index].kind;
        if (kind == SqlToken::Open || kind == SqlToken::Close || kind == SqlToken::Comma) continue;
        const QString text = comparable(run, index);
        static const Words silent = {"AS", "ASC", "ASCENDING", "INNER", "OUTER"};
        if (kind == SqlToken::Word && silent.contains(text)) continue;
        ++counts[text];
    }
    return counts;
}

TokenCounts countTokens(const QString& text) {
    const SqlTokens tokens = tokenise(text);
    return countTokens(TokenRun(text, tokens.data(), tokens.data() + tokens.size()));
}

QString tokenKey(const QString& text) {
    QString key;
    key.reserve(text.size() + 1);
    for (const SqlToken& token : tokenise(text)) {
        appendUpperOutsideQuotes(key, QStringView(text).mid(token.start, token.end - token.start));
        key += u' ';
    }
    return key;
}

}  // namespace orv
