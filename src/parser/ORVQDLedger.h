// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "parser/ORVQDFindings.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDTokens.h"

#include <QString>

#include <vector>

namespace orv {

/// Accounts for every token of a statement while it is loaded, so that nothing is lost silently:
/// whoever takes a token says so with place() or report(); what nobody took becomes a finding by
/// itself. Positions are those of the normalised text; findings are told in the given one.
class ORV_EXPORT LoadLedger {
public:
    /// The statement as it was given, and as the parser reads it.
    LoadLedger(const QString& given, NormalisedSQL normalised);

    /// The normalised text.
    [[nodiscard]] const QString& text() const { return m_normalised.text; }
    /// The tokens of the normalised text.
    [[nodiscard]] const SqlTokens& tokens() const { return m_tokens; }
    /// Those of them that begin inside [start, end).
    [[nodiscard]] TokenRun tokensIn(int start, int end) const;

    /// The characters of the given text that [start, end) came from.
    [[nodiscard]] QString givenText(int start, int end) const;

    /// The tokens of [start, end) are held by the control, or implied by what it holds.
    void place(int start, int end);
    void place(const TokenRun& run) { place(run.start(), run.endPosition()); }

    /// A finding, told once when it comes several times in a row: the control does not hold [start,
    /// end), or with another meaning.
    void report(int start, int end, const QString& what);
    void report(const TokenRun& run, const QString& what) {
        report(run.start(), run.endPosition(), what);
    }

    /// Reports texts in front of `end` that cannot be written as they were given: line breaks in
    /// quotes, and letters beyond ASCII that writing in upper case changes, except in names of
    /// parameters.
    void reportChangedTexts(int end);

    /// Reports letters beyond ASCII that writing this word in upper case changes.
    void reportUpperCase(const SqlToken& token);

    /// Reports the second word of a GROUP BY or ORDER BY clause when BY is only its beginning.
    void reportLongBy(const TokenRun& clause);

    /// Reports brackets and quotes in front of `end` that nothing closes, or nothing opened.
    void reportUnclosed(int end);

    /// Whether a finding lies in [start, end) so far.
    [[nodiscard]] bool hasFinding(int start, int end) const;

    /// All findings in the order of the text, tokens that nobody took among them.
    [[nodiscard]] Findings findings() const;

private:
    struct Loss {
        int start;
        int end;
        QString what;

        friend bool operator==(const Loss&, const Loss&) = default;
    };

    [[nodiscard]] std::vector<Loss> untakenTokens() const;
    void rememberBrokenLines();
    [[nodiscard]] Finding toFinding(const Loss& loss) const;
    [[nodiscard]] QStringView wordOf(const SqlToken& token) const;

    QString m_given;
    NormalisedSQL m_normalised;
    SqlTokens m_tokens;
    std::vector<bool> m_taken;  // by token
    std::vector<Loss> m_losses;
    std::vector<SqlToken> m_brokenLines;  // quoted texts with line breaks
};

}  // namespace orv
