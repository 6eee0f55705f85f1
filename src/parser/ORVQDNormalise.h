// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "parser/ORVQDTokens.h"

#include <QString>

#include <vector>

namespace orv {

/// A statement as the parser reads it, with the way back to the text that was given.
struct NormalisedSQL {
    QString text;  ///< what the parser reads
    /// For each character of `text`, and for its end, the position in the given text.
    std::vector<int> positions;

    /// Position in the given text of a position in `text`.
    [[nodiscard]] int givenPosition(int position) const { return positions[std::size_t(position)]; }
    /// Where the span that ends at `end` (exclusive) ends in the given text: behind its last
    /// character, not in front of the next one.
    [[nodiscard]] int givenEnd(int end) const {
        return end == 0 ? positions.front() : positions[std::size_t(end - 1)] + 1;
    }
};

/// What square brackets are in a statement.
enum class SquareBrackets {
    QuoteNames,  ///< [my name] is a name
    AreSigns,    ///< an operator contains one: they stay as they are
};

/// Makes one kind of text of the ways in which people write SQL. Outside quotes, a comment and a
/// control blank (tab, line break) become one blank each and a final ";" is dropped; names in
/// backticks, and in square brackets where one starts a name or follows a full stop, become names
/// in double quotes. Comments are "--" to the end of the line and "/*" to "*/", as SQL has them.
[[nodiscard]] ORV_EXPORT NormalisedSQL
NormaliseSQL(const QString& text, SquareBrackets brackets = SquareBrackets::QuoteNames);

/// Where a normalised statement stops being one SELECT that the control can hold.
struct StatementParts {
    int bodyEnd = 0;    ///< the part to parse is [0, bodyEnd)
    int tailStart = 0;  ///< UNION ..., LIMIT ... and the like; equal to tailEnd when there is none
    int tailEnd = 0;    ///< exclusive
    int restStart = 0;  ///< text behind a ";", which is a statement of its own; to the end
};

/// Finds the tail: outside brackets, from the first of UNION, INTERSECT, EXCEPT (in front of
/// SELECT, ALL, DISTINCT or a bracket), LIMIT, OFFSET, FETCH FIRST, FETCH NEXT, FOR UPDATE, FOR
/// SHARE and WINDOW that follows a complete operand, table, alias or direction. Columns of these
/// names stay columns. `tokens` are those of `text`.
[[nodiscard]] ORV_EXPORT StatementParts splitStatement(QStringView text, const SqlTokens& tokens);

/// Whether an operand, table or alias may end with this token: the next word then is not its
/// continuation. Keywords that need something behind them do not.
[[nodiscard]] ORV_EXPORT bool endsOperand(const TokenRun& run, int index);

}  // namespace orv
