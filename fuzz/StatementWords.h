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
///   - "!=" for "<>", and a NOT directly in front of another one, with brackets between them or
///     not: two negations of the same are none.
/// In the select list:
///   - a name that the given column has not: computed columns are written with a name;
///   - a given name that is the column's own: it has it anyhow;
///   - how many fields stand in the place of a star, and which: it is written as those of its
///     tables. All other columns are compared.
/// In FROM:
///   - CROSS JOIN, which is written as a comma;
///   - an alias that is the table's own name, which a name with a schema is given;
///   - "a > b" for "b < a", and without `keepMeaning` "LEFT" for "RIGHT": a join is written from
///     the side of the table that is written first.
/// In GROUP BY and ORDER BY:
///   - a number or a name of an output column in the place of its expression; behind a star, the
///     number is that of a written column;
///   - the order of GROUP BY's items.
/// With a square bracket outside quotes nothing is compared: whether it quotes a name depends on
/// what is around it.
///
/// tools/sql_table asks the same for the tables of the documents, and answers "held" less often: a
/// person is told there what a statement is written as, so for it each of these is another wording
/// but spacing, letters, quotes, brackets, "!=" and the words that say nothing. Here a difference
/// has to be a fault, so what asks for the same rows is none.
[[nodiscard]] QString wordsDifference(const QString& given, const QString& written,
                                      bool keepMeaning);

}  // namespace orvfuzz
