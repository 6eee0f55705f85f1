// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvfuzz {

/// What one of two statements says and the other does not: words, numbers, quoted texts and signs,
/// compared clause by clause, and item by item in lists; each marked with "-" or "+". Empty when
/// both say the same. It reads both by itself and shares nothing with the control.
///
/// This makes no difference, in any clause:
///   - spacing, comments, brackets, commas and a final ";";
///   - the case of what is not quoted in apostrophes, and quotes around names;
///   - qualifiers in front of names: a field that is named alone may be written with its table;
///   - AS, INNER, OUTER and ASC, which say nothing;
///   - "!=" for "<>", and an even number of NOTs: two negations are none.
/// In the select list:
///   - a name that the given column has not: computed columns are written with a name;
///   - a given name that is the column's own: it has it anyhow;
///   - a star, which is written as the fields of its tables.
/// In FROM:
///   - CROSS JOIN, which is written as a comma;
///   - an alias that is the table's own name, which a name with a schema is given;
///   - "<" for ">", "LEFT" for "RIGHT": a join is written from the side of the table that is
///     written first. With `keepMeaning` this holds for the signs alone.
/// In GROUP BY and ORDER BY:
///   - a number or a name of an output column in the place of its expression;
///   - with a star, nothing of ORDER BY is compared but how many items it has.
/// Square brackets are not compared at all: whether one quotes a name depends on what is around it.
[[nodiscard]] QString wordsDifference(const QString& given, const QString& written,
                                      bool keepMeaning);

}  // namespace orvfuzz
