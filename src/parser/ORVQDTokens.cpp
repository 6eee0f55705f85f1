// SPDX-License-Identifier: MIT
#include "parser/ORVQDTokens.h"

#include "core/Text.h"
#include "parser/ORVQDKeywords.h"
#include "parser/ORVQDWordScan.h"

#include <algorithm>

namespace orv {

namespace {

constexpr qsizetype charactersPerToken = 4;  // about; for memory asked for in advance

bool isDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

bool isQuote(QChar character) {
    return character == u'"' || character == u'\'';
}

// The replacement character stands for a letter of a text in another encoding.
bool isLetter(QChar character) {
    return character.isLetter() || character == QChar::ReplacementCharacter;
}

// Characters of names, numbers and parameters (:NAME, @NAME, ?1, #TEMP).
bool isNamePart(QChar character) {
    const char16_t unit = character.unicode();
    if (unit >= 0x80) {
        return isLetter(character) || character.isNumber() || character.isMark() ||
               character.isSurrogate();
    }
    if ((unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || isDigit(character)) {
        return true;
    }
    switch (character.unicode()) {
    case u'_':
    case u'$':
    case u'#':
    case u'@':
    case u'?':
    case u':':
    case u'.': return true;
    default: return false;
    }
}

// "@" and "#" begin a name only where one follows; else they are part of a sign ("@>", "#>>").
bool isLooseSign(QStringView text, qsizetype position) {
    const QChar character = text[position];
    if (character != u'@' && character != u'#') return false;
    return position + 1 == text.size() || !isNamePart(text[position + 1]);
}

class Scanner {
public:
    explicit Scanner(QStringView text) : m_text(text) {}

    SqlTokens tokens() {
        m_tokens.reserve(std::size_t(m_text.size() / charactersPerToken));
        while (m_position < m_text.size()) {
            const QChar character = m_text[m_position];
            if (character.unicode() <= u' ') {
                ++m_position;
            } else if (isCastAt(m_position)) {
                m_position += 2;
                add(m_position - 2, SqlToken::Sign);
            } else if (isSignAt(m_position)) {
                readSigns();
            } else if (isQuote(character) || isNamePart(character)) {
                readWord();
            } else {
                readSingle(character);
            }
        }
        return std::move(m_tokens);
    }

private:
    void add(qsizetype start, SqlToken::Kind kind) {
        m_tokens.push_back({int(start), int(m_position), kind, m_depth});
    }

    // A::TEXT is a cast, not a name.
    [[nodiscard]] bool isCastAt(qsizetype position) const {
        return m_text[position] == u':' && position + 1 < m_text.size() &&
               m_text[position + 1] == u':';
    }

    [[nodiscard]] bool isSignAt(qsizetype position) const {
        return isSignCharacter(m_text[position]) || isLooseSign(m_text, position);
    }

    void skipQuoted() {
        const qsizetype close = m_text.indexOf(m_text[m_position], m_position + 1);
        m_position = close < 0 ? m_text.size() : close + 1;
    }

    void readWord() {
        const qsizetype start = m_position;
        const QChar first = m_text[start];
        const bool isNumber = isDigit(first) || (first == u'.' && start + 1 < m_text.size() &&
                                                 isDigit(m_text[start + 1]));
        bool hasText = false;
        while (m_position < m_text.size()) {
            const QChar character = m_text[m_position];
            if (isQuote(character)) {
                if (character == u'\'' && endsWithKeyword(start)) break;
                hasText = hasText || character == u'\'';
                skipQuoted();
                if (m_position < m_text.size() && isLetter(m_text[m_position])) break;
            } else if (isNamePart(character) && !isCastAt(m_position)) {
                ++m_position;
            } else {
                break;
            }
        }
        if (isNumber && !hasText) m_position -= gluedKeyword(start);
        add(start, hasText ? SqlToken::Text : isNumber ? SqlToken::Number : SqlToken::Word);
    }

    // A keyword may stand in front of a quote without a blank ("LIKE'x'"); other words are the
    // quote's own ("N'x'").
    [[nodiscard]] bool endsWithKeyword(qsizetype start) const {
        const QString word = m_text.mid(start, m_position - start).toString().toUpper();
        return wordInfo(word).traits != 0;
    }

    // A keyword may follow a number without a blank ("1OR"): its length, 0 without one.
    [[nodiscard]] qsizetype gluedKeyword(qsizetype start) const {
        qsizetype word = m_position;
        while (word > start && isLetter(m_text[word - 1])) --word;
        const QString letters = m_text.mid(word, m_position - word).toString().toUpper();
        return wordInfo(letters).traits != 0 ? letters.size() : 0;
    }

    void readSigns() {
        const qsizetype start = m_position;
        while (m_position < m_text.size() && isSignAt(m_position)) ++m_position;
        add(start, SqlToken::Sign);
    }

    void readSingle(QChar character) {
        const qsizetype start = m_position++;
        if (character == u'(') {
            m_opened.push_back(m_tokens.size());
            add(start, SqlToken::Open);
            ++m_depth;
        } else if (character == u')') {
            m_depth = std::max(0, m_depth - 1);
            add(start, SqlToken::Close);
            closeBracket();
        } else {
            add(start, character == u',' ? SqlToken::Comma : SqlToken::Sign);
        }
    }

    void closeBracket() {
        if (m_opened.empty()) return;
        const std::size_t open = m_opened.back();
        m_opened.pop_back();
        m_tokens[open].closeOffset = int(m_tokens.size() - 1 - open);
    }

    QStringView m_text;
    qsizetype m_position = 0;
    int m_depth = 0;
    std::vector<std::size_t> m_opened;  // brackets that are open
    SqlTokens m_tokens;
};

}  // namespace

SqlTokens tokenise(QStringView text) {
    return Scanner(text).tokens();
}

bool beginsParameter(QChar character) {
    static constexpr QStringView signs = u":@$?";
    return signs.contains(character);
}

bool isParameter(QStringView word) {
    if (word.isEmpty() || !beginsParameter(word.front())) return false;
    return word.front() != u'$' || !word.contains(u'.');  // "$T.A" is a field
}

QString TokenRun::sourceText() const {
    QString text;
    text.reserve(endPosition() - start());
    int copied = start();
    for (int index = 0; index < size(); ++index) {
        const QStringView word = textOf(index);
        text += m_text.mid(copied, m_first[index].start - copied);
        if (isParameter(word)) {
            text += word;
        } else {
            appendUpperOutsideQuotes(text, word);
        }
        copied = m_first[index].end;
    }
    return text;
}

std::vector<TokenRun> TokenRun::splitAtCommas() const {
    std::vector<TokenRun> runs;
    if (isEmpty()) return runs;
    const int level = m_first->depth;
    int first = 0;
    int square = 0;  // open square brackets: those of an array, not of a name
    for (int index = 0; index < size(); ++index) {
        if (is(index, u"[")) ++square;
        if (is(index, u"]") && square > 0) --square;
        const bool isOwn = m_first[index].kind == SqlToken::Comma && m_first[index].depth == level;
        if (!isOwn || square > 0) continue;
        runs.push_back(mid(first, index - first));
        first = index + 1;
    }
    runs.push_back(mid(first));
    return runs;
}

int TokenRun::behindBracket(int index) const {
    const int offset = m_first[index].closeOffset;
    return offset == 0 || index + offset >= size() ? size() : index + offset + 1;
}

TokenRun tokensBetween(QStringView text, const SqlTokens& tokens, int start, int end) {
    const auto before = [](const SqlToken& token, int position) { return token.start < position; };
    const auto first = std::lower_bound(tokens.begin(), tokens.end(), start, before);
    const auto last = std::lower_bound(first, tokens.end(), end, before);
    const SqlToken* base = tokens.data();
    return {text, base + (first - tokens.begin()), base + (last - tokens.begin())};
}

}  // namespace orv
