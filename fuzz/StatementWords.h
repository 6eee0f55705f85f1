// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvfuzz {

/// What one of two statements says and the other does not: words, numbers, quoted texts and signs,
/// counted clause by clause, each marked with "-" or "+" and its clause. Empty when both say the
/// same. It reads both by itself and shares nothing with the control.
///
/// This makes no difference:
///   - spacing, comments, brackets, commas and a final ";";
///   - the case of what is not quoted in apostrophes, and quotes around names;
///   - qualifiers in front of names: a field that is named alone is written with its table;
///   - AS, INNER, OUTER and ASC, which say nothing.
[[nodiscard]] QString wordsDifference(const QString& given, const QString& written);

}  // namespace orvfuzz
