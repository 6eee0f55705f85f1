// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace orv {

/// One token of a normalised statement. Tokens are finer than the parser's words: they are what is
/// compared, and what a load accounts for one by one.
struct SqlToken {
    /// What a token is.
    enum Kind : quint8 {
        Word,  ///< name or keyword, with its qualifiers and quoted parts: T."my field"
        Number,
        Text,  ///< in apostrophes, with a prefix when there is one: 'x', N'x'
        Sign,  ///< operator signs, one token for "<>" or "||"
        Open,
        Close,
        Comma,
    };

    int start;            ///< position in the normalised text
    int end;              ///< exclusive
    Kind kind;            ///< what it is
    int depth;            ///< open brackets around it; a bracket has the depth of what is around it
    int closeOffset = 0;  ///< of an Open: how many tokens behind it the Close stands; 0 without one

    /// Equal when all members are.
    friend bool operator==(const SqlToken&, const SqlToken&) = default;
};

/// The tokens of a text, in order.
using SqlTokens = std::vector<SqlToken>;

/// Whether a character can be the first one of the name of a parameter.
[[nodiscard]] ORV_EXPORT bool beginsParameter(QChar character);
/// Whether a word is written as the name of a parameter, which keeps its case: databases tell :a
/// from :A. "$A" can be the name of a field as well.
[[nodiscard]] ORV_EXPORT bool isParameter(QStringView word);

/// The tokens of a normalised statement, in order. Linear in the text.
[[nodiscard]] ORV_EXPORT SqlTokens tokenise(QStringView text);

/// The part of a token list that a loader looks at, with the text that it belongs to.
class ORV_EXPORT TokenRun {
public:
    /// No tokens, or those from `first` up to `last`, exclusive. Text and tokens are borrowed.
    TokenRun() = default;
    TokenRun(QStringView text, const SqlToken* first, const SqlToken* last)
        : m_text(text), m_first(first), m_last(last) {}

    /// How many tokens there are.
    [[nodiscard]] int size() const { return int(m_last - m_first); }
    [[nodiscard]] bool isEmpty() const { return m_first == m_last; }
    /// The token at an index from 0 on, which must be there.
    [[nodiscard]] const SqlToken& operator[](int index) const { return m_first[index]; }
    /// For loops over the tokens.
    [[nodiscard]] const SqlToken* begin() const { return m_first; }
    [[nodiscard]] const SqlToken* end() const { return m_last; }

    /// The run of `count` tokens from `first`.
    [[nodiscard]] TokenRun mid(int first, int count) const {
        return {m_text, m_first + first, m_first + first + count};
    }
    [[nodiscard]] TokenRun mid(int first) const { return mid(first, size() - first); }

    /// The characters of the token at an index.
    [[nodiscard]] QStringView textOf(int index) const {
        return m_text.mid(m_first[index].start, m_first[index].end - m_first[index].start);
    }
    /// Whether the token is this keyword or sign; `upper` is upper case.
    [[nodiscard]] bool is(int index, QStringView upper) const {
        const QStringView text = textOf(index);
        return text.size() == upper.size() && text.compare(upper, Qt::CaseInsensitive) == 0;
    }

    /// Span of the run in the text; an empty run has an empty span.
    [[nodiscard]] int start() const { return isEmpty() ? 0 : m_first->start; }
    [[nodiscard]] int endPosition() const { return isEmpty() ? 0 : (m_last - 1)->end; }

    /// The text from the first to the last character, upper-cased outside quotes and names of
    /// parameters.
    [[nodiscard]] QString sourceText() const;

    /// The runs between the commas of this run's own level, outside square brackets.
    [[nodiscard]] std::vector<TokenRun> splitAtCommas() const;

    /// Index behind the bracket that the token at `index` opens; size() when nothing closes it.
    [[nodiscard]] int behindBracket(int index) const;

private:
    QStringView m_text;
    const SqlToken* m_first = nullptr;
    const SqlToken* m_last = nullptr;
};

/// The tokens that begin inside [start, end) of the text.
[[nodiscard]] ORV_EXPORT TokenRun tokensBetween(QStringView text, const SqlTokens& tokens,
                                                int start, int end);

}  // namespace orv
