// SPDX-License-Identifier: MIT
#include "parser/ORVQDLedger.h"

#include "core/Text.h"

#include <algorithm>
#include <utility>

namespace orv {

LoadLedger::LoadLedger(const QString& given, NormalisedSQL normalised)
    : m_given(given),
      m_normalised(std::move(normalised)),
      m_tokens(tokenise(m_normalised.text)),
      m_taken(m_tokens.size(), false) {
    rememberBrokenLines();
    m_normalised.text.replace(u'\n', u' ');
    m_normalised.text.replace(u'\r', u' ');
}

TokenRun LoadLedger::tokensIn(int start, int end) const {
    return tokensBetween(m_normalised.text, m_tokens, start, end);
}

QString LoadLedger::givenText(int start, int end) const {
    const int first = m_normalised.givenPosition(start);
    return m_given.mid(first, m_normalised.givenEnd(end) - first);
}

void LoadLedger::place(int start, int end) {
    const TokenRun run = tokensIn(start, end);
    const std::ptrdiff_t first = run.begin() - m_tokens.data();
    std::fill_n(m_taken.begin() + first, run.size(), true);
}

void LoadLedger::report(int start, int end, const QString& what) {
    const TokenRun run = tokensIn(start, end);
    place(start, end);
    Loss loss{run.isEmpty() ? start : run.start(), run.isEmpty() ? end : run.endPosition(), what};
    const bool isTold = !m_losses.empty() && m_losses.back() == loss;
    if (!isTold) m_losses.push_back(std::move(loss));
}

bool LoadLedger::hasFinding(int start, int end) const {
    return std::any_of(m_losses.begin(), m_losses.end(),
                       [&](const Loss& loss) { return loss.start < end && loss.end > start; });
}

Findings LoadLedger::findings() const {
    std::vector<Loss> losses = m_losses;
    for (Loss& loss : untakenTokens()) losses.push_back(std::move(loss));
    std::stable_sort(losses.begin(), losses.end(), [](const Loss& left, const Loss& right) {
        return std::pair(left.start, left.end) < std::pair(right.start, right.end);
    });
    Findings findings;
    for (const Loss& loss : losses) findings.push_back(toFinding(loss));
    return findings;
}

// Adjacent tokens that nobody took are one finding.
std::vector<LoadLedger::Loss> LoadLedger::untakenTokens() const {
    std::vector<Loss> losses;
    for (std::size_t first = 0; first < m_tokens.size(); ++first) {
        if (m_taken[first]) continue;
        std::size_t last = first;
        while (last + 1 < m_tokens.size() && !m_taken[last + 1]) ++last;
        losses.push_back({m_tokens[first].start, m_tokens[last].end,
                          QStringLiteral("This text was not understood and is not part of the "
                                         "query.")});
        first = last;
    }
    return losses;
}

// The text that is parsed has no line breaks, in quotes neither.
void LoadLedger::rememberBrokenLines() {
    const QStringView text = m_normalised.text;
    if (!text.contains(u'\n') && !text.contains(u'\r')) return;
    for (const SqlToken& token : m_tokens) {
        const QStringView piece = text.mid(token.start, token.end - token.start);
        if (piece.contains(u'\n') || piece.contains(u'\r')) m_brokenLines.push_back(token);
    }
}

namespace {

// Quotes of single dialects are read as SQL: words in them are written in upper case, and a quote
// or comma in them ends something.
void reportForeignQuotes(LoadLedger& ledger, int end) {
    const QStringView text = QStringView(ledger.text()).left(end);
    const auto isWordPart = [](QChar character) {
        return character.isLetterOrNumber() || character == u'_' || character == u'$';
    };
    const auto tell = [&](qsizetype first, qsizetype behind) {
        ledger.report(int(first), int(behind),
                      QStringLiteral("This kind of quoting is not known: the text can come back "
                                     "changed."));
    };
    for (qsizetype index = 0; index < text.size(); ++index) {
        const QChar character = text[index];
        const bool beginsWord = index == 0 || !isWordPart(text[index - 1]);
        if (character == u'\'' || character == u'"') {
            qsizetype close = text.indexOf(character, index + 1);
            if (close < 0) return;
            const QChar prefix = index > 0 ? text[index - 1].toUpper() : QChar();
            const bool isPrefixed = character == u'\'' && (prefix == u'E' || prefix == u'Q') &&
                                    (index == 1 || !isWordPart(text[index - 2]));
            if (isPrefixed && (prefix == u'Q' || text[close - 1] == u'\\')) {
                tell(index - 1, close + 1);
            }
            index = close;
        } else if (character == u'$' && beginsWord) {
            qsizetype tagEnd = index + 1;
            while (tagEnd < text.size() && text[tagEnd] != u'$' && isWordPart(text[tagEnd])) {
                ++tagEnd;
            }
            if (tagEnd >= text.size() || text[tagEnd] != u'$') continue;
            const QStringView tag = text.mid(index, tagEnd + 1 - index);
            const qsizetype close = text.indexOf(tag, tagEnd + 1);
            if (close < 0) continue;
            // One word comes back as it is, as names of parameters do.
            const QStringView inside = text.mid(tagEnd + 1, close - tagEnd - 1);
            if (!std::all_of(inside.begin(), inside.end(), isWordPart)) {
                tell(index, close + tag.size());
            }
            index = close + tag.size() - 1;
        }
    }
}

bool isForeign(QChar character) {
    return character.unicode() >= 0x80;
}

}  // namespace

void LoadLedger::reportChangedTexts(int end) {
    reportForeignQuotes(*this, end);
    for (const SqlToken& token : m_brokenLines) {
        if (token.start >= end) break;
        report(token.start, token.end,
               QStringLiteral("The line break inside this quoted text becomes a blank."));
    }
    if (std::none_of(m_normalised.text.begin(), m_normalised.text.end(), isForeign)) return;
    for (const SqlToken& token : m_tokens) {
        if (token.start >= end) break;
        if (!isParameter(wordOf(token))) reportUpperCase(token);
    }
}

void LoadLedger::reportUpperCase(const SqlToken& token) {
    const QStringView word = wordOf(token);
    const bool isOther = std::any_of(word.begin(), word.end(), isForeign);
    if (token.kind != SqlToken::Word || !isOther) return;
    const QString upper = upperOutsideQuotes(word);
    const bool sameForeign =
        upper.size() == word.size() &&
        std::equal(word.begin(), word.end(), upper.begin(), [](QChar given, QChar written) {
            return given == written || !isForeign(given);
        });
    if (sameForeign) return;
    report(token.start, token.end,
           QStringLiteral("Letters beyond ASCII are written in upper case here, which a database "
                          "may take for another name."));
}

QStringView LoadLedger::wordOf(const SqlToken& token) const {
    return QStringView(m_normalised.text).mid(token.start, token.end - token.start);
}

namespace {

/// The quote that is open behind the characters taken.
class OpenQuote {
public:
    void take(QChar character) {
        if (character == m_sign) {
            m_sign = QChar();
        } else if (isNone() && (character == u'"' || character == u'\'')) {
            m_sign = character;
        }
    }
    [[nodiscard]] bool isNone() const { return m_sign.isNull(); }

private:
    QChar m_sign;
};

bool hasBareBacktick(QStringView text) {
    OpenQuote quote;
    return std::any_of(text.begin(), text.end(), [&](QChar character) {
        quote.take(character);
        return quote.isNone() && character == u'`';
    });
}

// Whether a quote that stands in the text is still open at its end.
bool endsInQuote(QStringView text) {
    OpenQuote quote;
    for (const QChar character : text) quote.take(character);
    return !quote.isNone();
}

}  // namespace

// The parser takes "GROUP BYX A" for a clause all the same.
void LoadLedger::reportLongBy(const TokenRun& clause) {
    if (clause.size() < 2 || clause.is(1, u"BY")) return;
    report(clause.mid(1, 1), QStringLiteral("Only the BY of this word is read."));
}

void LoadLedger::reportUnclosed(int end) {
    int open = 0;
    // Pairs of them have become quotes: where the text is written twice, the others would, too.
    const bool hasBackticks = m_normalised.text.contains(u'`');
    const auto isBacktick = [&](const SqlToken& token) {
        return hasBackticks && hasBareBacktick(wordOf(token));
    };
    for (std::size_t index = 0; index < m_tokens.size(); ++index) {
        const SqlToken& token = m_tokens[index];
        if (token.start >= end) break;
        if (token.kind == SqlToken::Open) {
            ++open;
            const SqlToken* close = &token + token.closeOffset;
            if (token.closeOffset > 0 && close->start < end) continue;
            report(token.start, token.end, QStringLiteral("This bracket is not closed."));
        } else if (token.kind == SqlToken::Close && --open < 0) {
            open = 0;
            report(token.start, token.end, QStringLiteral("Nothing opened this bracket."));
        } else if (isBacktick(token)) {
            // A row of them is told of once.
            while (index + 1 < m_tokens.size() &&
                   m_tokens[index + 1].start == m_tokens[index].end &&
                   isBacktick(m_tokens[index + 1])) {
                ++index;
            }
            report(token.start, m_tokens[index].end, QStringLiteral("This quote is not closed."));
        } else if (token.end == int(m_normalised.text.size()) &&
                   endsInQuote(QStringView(m_normalised.text).mid(token.start))) {
            report(token.start, token.end, QStringLiteral("This quote is not closed."));
        }
    }
}

Finding LoadLedger::toFinding(const Loss& loss) const {
    const int start = m_normalised.givenPosition(loss.start);
    const int end = loss.end > loss.start ? m_normalised.givenEnd(loss.end) : start;
    return {start, end - start, m_given.mid(start, end - start), loss.what};
}

}  // namespace orv
