// SPDX-License-Identifier: MIT
#pragma once

#include "text/SqlPieces.h"

#include <QString>

namespace orvquery {

/// Languages in whose programs a statement may stand.
enum class CodeLanguage { Cpp, Python, Java };

/// The text as an expression of a program, one line of the text a line: adjacent literals in C++,
/// adjacent literals in parentheses in Python, literals joined by + in Java, and by String.join
/// where a constant would be too long for it. The program has the very text then, but for halves of
/// surrogate pairs. Characters that cannot be seen are escaped.
[[nodiscard]] QString codeOf(const QString& text, CodeLanguage language);

/// The statement with LF for each line break that stands in no quotes.
[[nodiscard]] QString withPlainBreaks(const QString& statement, SqlRules rules);

/// The statement with single blanks for line breaks, tabs and rows of blanks. Comments up to the
/// end of a line become comments with an end. What stands in quotes stays, line breaks too.
[[nodiscard]] QString onOneLine(const QString& statement, SqlRules rules);

}  // namespace orvquery
