// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

namespace orv {

/// The clauses of a statement as the pages give them, without their keywords.
struct StatementClauses {
    bool distinct = false;
    QString select;
    QString from;
    QString where;
    QString groupBy;
    QString having;
    QString orderBy;
    QString tail;
};

/// One SELECT statement of the clauses: always the select list and FROM, the others where they hold
/// more than blanks, HAVING only behind GROUP BY. Lines are separated by CR LF; lines of the select
/// list stand under its first column. No semicolon.
[[nodiscard]] ORV_EXPORT QString assembleStatement(const StatementClauses& clauses);

/// `text` with `indent` blanks behind each line feed but a final one.
[[nodiscard]] ORV_EXPORT QString indentLines(const QString& text, int indent);

}  // namespace orv
