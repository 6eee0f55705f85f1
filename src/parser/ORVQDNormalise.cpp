// SPDX-License-Identifier: MIT
#include "parser/ORVQDNormalise.h"

#include "core/Text.h"
#include "parser/ORVQDWordScan.h"

#include <QSet>

#include <algorithm>
#include <numeric>

namespace orv {

namespace {

constexpr qsizetype longestOpenWord = 10;

// Keywords and connectives behind which an operand, a table or an alias is still to come.
const QSet<QString>& openWords() {
    static const QSet<QString> words = {
        "SELECT", "DISTINCT", "ALL",    "FROM",  "WHERE",   "BY",       "GROUP",      "ORDER",
        "HAVING", "ON",       "JOIN",   "INNER", "LEFT",    "RIGHT",    "FULL",       "OUTER",
        "CROSS",  "NATURAL",  "AND",    "OR",    "NOT",     "BETWEEN",  "LIKE",       "IN",
        "IS",     "AS",       "CASE",   "WHEN",  "THEN",    "ELSE",     "ESCAPE",     "USING",
        "ANY",    "SOME",     "EXISTS", "DIV",   "MOD",     "GLOB",     "REGEXP",     "RLIKE",
        "ILIKE",  "SIMILAR",  "TO",     "MATCH", "COLLATE", "INTERVAL", "CONTAINING", "STARTING",
        "WITH",   "XOR",      "OVER",   "FILTER"};
    return words;
}

class Normaliser {
public:
    Normaliser(const QString& text, SquareBrackets brackets)
        : m_given(text), m_squareNames(brackets == SquareBrackets::QuoteNames) {
        m_result.text.reserve(text.size());
        m_result.positions.reserve(std::size_t(text.size()) + 1);
    }

    NormalisedSQL run() {
        while (m_position < m_given.size()) readOne();
        dropFinalSemicolons();
        separateClauses();
        m_result.positions.push_back(m_result.positions.empty() ? 0
                                                                : m_result.positions.back() + 1);
        return std::move(m_result);
    }

private:
    void readOne() {
        const QChar character = m_given[m_position];
        if (isPlainCharacter(character)) {
            copyPlain();
            return;
        }
        const QChar next = m_position + 1 < m_given.size() ? m_given[m_position + 1] : QChar();
        if (character == u'\'' || character == u'"') {
            copyQuoted(character);
        } else if (character == u'-' && next == u'-') {
            skipComment(endOfLine());
        } else if (character == u'/' && next == u'*') {
            skipComment(endOfBlockComment());
        } else if (character == u'`' || (character == u'[' && m_squareNames && mayStartName())) {
            readForeignName(character == u'`' ? u'`' : u']');
        } else if (character == u'[' && m_squareNames && isBehindKeyword()) {
            append(u' ', m_position);
            readForeignName(u']');
        } else {
            append(isBlank(character) ? QChar(u' ') : character, m_position);
            ++m_position;
        }
    }

    static bool isBlank(QChar character) {
        return character.unicode() < u' ' || character.isSpace() || character == QChar(0xFEFF);
    }

    // Characters of names, numbers and blanks stay as they are: they are copied a run at a time.
    void copyPlain() {
        const qsizetype start = m_position;
        while (m_position < m_given.size() && isPlainCharacter(m_given[m_position])) ++m_position;
        m_result.text += QStringView(m_given).mid(start, m_position - start);
        const std::size_t before = m_result.positions.size();
        m_result.positions.resize(before + std::size_t(m_position - start));
        std::iota(m_result.positions.begin() + std::ptrdiff_t(before), m_result.positions.end(),
                  int(start));
    }

    static bool isPlainCharacter(QChar character) {
        const char16_t unit = character.unicode();
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
               (unit >= u'0' && unit <= u'9') || unit == u' ' || unit == u'.' || unit == u'_' ||
               unit == u',' || unit == u'(' || unit == u')' || unit == u'=';
    }

    void append(QChar character, qsizetype givenPosition) {
        m_result.text += character;
        m_result.positions.push_back(int(givenPosition));
    }

    void copyQuoted(QChar quote) {
        const qsizetype close = m_given.indexOf(quote, m_position + 1);
        const qsizetype end = close < 0 ? m_given.size() : close + 1;
        m_openQuote = close < 0;
        for (; m_position < end; ++m_position) append(m_given[m_position], m_position);
    }

    [[nodiscard]] qsizetype endOfLine() const {
        qsizetype end = m_position;
        while (end < m_given.size() && m_given[end] != u'\n' && m_given[end] != u'\r') ++end;
        return end;
    }

    [[nodiscard]] qsizetype endOfBlockComment() const {
        const qsizetype close = m_given.indexOf(QStringLiteral("*/"), m_position + 2);
        return close < 0 ? m_given.size() : close + 2;
    }

    void skipComment(qsizetype end) {
        append(u' ', m_position);
        m_position = end;
    }

    // Behind a name, a quote or a bracket, "[" is an array index.
    [[nodiscard]] bool mayStartName() {
        if (m_result.text.isEmpty()) return true;
        const QChar before = m_result.text.back();
        if (before == u' ' && isIndexBehindBlanks()) return false;
        return before == u'.' || isSeparatorBefore(before);
    }

    // "B [1]": behind a complete operand only a select list and FROM can go on with a name, an
    // alias; ARRAY [1, 2] is a list of values anywhere.
    [[nodiscard]] bool isIndexBehindBlanks() {
        followClauses();
        const QStringView text = QStringView(m_result.text).trimmed();
        if (text.isEmpty()) return false;
        qsizetype start = text.size();
        while (start > 0 && text[start - 1].isLetterOrNumber()) --start;
        const QString word = text.mid(start).toString().toUpper();
        if (word == u"ARRAY") return true;
        const QChar last = text.back();
        const bool endsOperand = last.isLetterOrNumber() || last == u'_' || last == u'"' ||
                                 last == u'\'' || last == u')' || last == u']';
        return m_inCondition && endsOperand && !openWords().contains(word);
    }

    // Whether the text read so far ends inside a condition; each word is looked at once.
    void followClauses() {
        static const QSet<QString> lists = {"SELECT", "FROM", "JOIN"};
        static const QSet<QString> conditions = {"WHERE", "ON", "HAVING", "GROUP", "ORDER"};
        const QString& text = m_result.text;
        while (m_followed < text.size()) {
            const qsizetype start = m_followed;
            while (m_followed < text.size() && text[m_followed].isLetter()) ++m_followed;
            if (m_followed == start) {
                ++m_followed;
                continue;
            }
            if (m_followed - start > longestOpenWord) continue;
            const QString word = text.mid(start, m_followed - start).toUpper();
            if (lists.contains(word)) m_inCondition = false;
            if (conditions.contains(word)) m_inCondition = true;
        }
    }

    static bool isSeparatorBefore(QChar character) {
        return character != u')' && (isSeparator(character) || isSignCharacter(character));
    }

    // No keyword of a list has an index: a name may be glued to it.
    [[nodiscard]] bool isBehindKeyword() const {
        const QString& text = m_result.text;
        qsizetype start = text.size();
        while (start > 0 && text.size() - start <= longestOpenWord &&
               text[start - 1].isLetterOrNumber()) {
            --start;
        }
        const QChar before = start > 0 ? text[start - 1] : QChar(u' ');
        const bool isWholeWord =
            isSeparator(before) || isSignCharacter(before) || before == u'\'' || before == u'"';
        return isWholeWord && openWords().contains(text.mid(start).toUpper());
    }

    // `name` or [name]: the closing sign doubled stands for itself.
    void readForeignName(QChar close) {
        // Once nothing closes such a name, nothing closes those behind it either.
        bool& noneLeft = close == u']' ? m_noSquareLeft : m_noBacktickLeft;
        qsizetype end = noneLeft ? -1 : m_given.indexOf(close, m_position + 1);
        noneLeft = end < 0;
        while (end >= 0 && end + 1 < m_given.size() && m_given[end + 1] == close) {
            end = m_given.indexOf(close, end + 2);
        }
        if (end < 0) {
            // All signs of a row that nothing closes stay: a part of them would be read as a name.
            do {
                append(m_given[m_position], m_position);
                ++m_position;
            } while (m_position < m_given.size() && m_given[m_position] == close);
            return;
        }
        append(u'"', m_position);
        for (qsizetype at = m_position + 1; at < end; ++at) {
            append(m_given[at], at);
            if (m_given[at] == close) ++at;
            if (m_given[at] == u'"') append(u'"', at);
        }
        append(u'"', end);
        m_position = end + 1;
    }

    void dropFinalSemicolons() {
        if (m_openQuote) return;
        QStringView trimmed = trimmedEnd(m_result.text);
        while (trimmed.endsWith(u';')) {
            trimmed.chop(1);
            m_result.text.truncate(trimmed.size());
            trimmed = trimmedEnd(m_result.text);
        }
        m_result.positions.resize(std::size_t(m_result.text.size()));
    }

    // A clause may begin behind a number without a blank ("1ORDER BY"), which its reader needs.
    void separateClauses() {
        const QString& text = m_result.text;
        const auto mayBegin = [&](qsizetype at) {
            return at > 0 && QStringView(u"FWGHOfwgho").contains(text[at]) &&
                   (text[at - 1].isDigit() || text[at - 1] == u'.');
        };
        qsizetype at = 0;
        while (at < text.size() && !mayBegin(at)) ++at;
        if (at == text.size()) return;
        const SqlTokens tokens = tokenise(text);
        const TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
        for (int index = run.size() - 1; index > 0; --index) {
            const int start = run[index].start;
            const bool isGlued =
                run[index - 1].kind == SqlToken::Number && run[index - 1].end == start;
            if (!isGlued || !beginsClause(run, index)) continue;
            m_result.text.insert(start, u' ');
            m_result.positions.insert(m_result.positions.begin() + start,
                                      m_result.positions[std::size_t(start)]);
        }
    }

    static bool beginsClause(const TokenRun& run, int index) {
        const auto is = [&](std::initializer_list<QStringView> words) {
            return std::any_of(words.begin(), words.end(),
                               [&](QStringView word) { return run.is(index, word); });
        };
        if (is({u"FROM", u"WHERE", u"HAVING"})) return true;
        return is({u"GROUP", u"ORDER"}) && index + 1 < run.size() && run.is(index + 1, u"BY");
    }

    static QStringView trimmedEnd(QStringView text) {
        while (!text.isEmpty() && text.back().unicode() <= u' ') text.chop(1);
        return text;
    }

    const QString& m_given;
    const bool m_squareNames;
    bool m_openQuote = false;
    bool m_noSquareLeft = false;
    bool m_noBacktickLeft = false;
    qsizetype m_position = 0;
    qsizetype m_followed = 0;    // up to here clauses were looked for
    bool m_inCondition = false;  // behind WHERE and its like
    NormalisedSQL m_result;
};

bool isAny(const TokenRun& run, int index, std::initializer_list<QStringView> words) {
    if (index >= run.size()) return false;
    return std::any_of(words.begin(), words.end(),
                       [&](QStringView word) { return run.is(index, word); });
}

bool isTailKeyword(const TokenRun& run, int index) {
    const int next = index + 1;
    if (isAny(run, index, {u"UNION", u"INTERSECT", u"EXCEPT"})) {
        return isAny(run, next, {u"SELECT", u"ALL", u"DISTINCT", u"("});
    }
    if (run.is(index, u"FETCH")) return isAny(run, next, {u"FIRST", u"NEXT"});
    if (run.is(index, u"FOR")) return isAny(run, next, {u"UPDATE", u"SHARE"});
    return isAny(run, index, {u"LIMIT", u"OFFSET", u"WINDOW"});
}

// Most words are told from the keywords of a tail by their length and first letter.
bool mayBeTailWord(QStringView word) {
    if (word.size() < 3 || word.size() > 9) return false;
    return QStringView(u"UIELOFWuielofw").contains(word.front());
}

bool startsTail(const TokenRun& run, int index) {
    if (index == 0 || run[index].kind != SqlToken::Word || !mayBeTailWord(run.textOf(index))) {
        return false;
    }
    return isTailKeyword(run, index) && endsOperand(run, index - 1);
}

}  // namespace

NormalisedSQL NormaliseSQL(const QString& text, SquareBrackets brackets) {
    return Normaliser(text, brackets).run();
}

bool endsOperand(const TokenRun& run, int index) {
    switch (run[index].kind) {
    case SqlToken::Number:
    case SqlToken::Text:
    case SqlToken::Close: return true;
    case SqlToken::Sign: return run.is(index, u"]");
    case SqlToken::Open:
    case SqlToken::Comma: return false;
    case SqlToken::Word: break;
    }
    const QStringView word = run.textOf(index);
    if (word.endsWith(u'.')) return false;
    return word.size() > longestOpenWord || !openWords().contains(word.toString().toUpper());
}

StatementParts splitStatement(QStringView text, const SqlTokens& tokens) {
    const int size = int(text.size());
    StatementParts parts{size, size, size, size};
    const TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    int tail = -1;
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].depth != 0) continue;
        if (run.textOf(index) == u";") {
            parts.restStart = run[index].start;
            break;
        }
        if (tail < 0 && startsTail(run, index)) tail = index;
    }
    parts.tailStart = tail < 0 ? parts.restStart : run[tail].start;
    parts.tailEnd = parts.restStart;
    parts.bodyEnd = parts.tailStart;
    return parts;
}

}  // namespace orv
