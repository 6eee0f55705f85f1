// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDStatement.h"

#include "core/Text.h"

namespace orv {

QString indentLines(const QString& text, int indent) {
    if (indent <= 0) return text;
    const QString blanks(indent, u' ');
    QString result;
    result.reserve(text.size());
    for (qsizetype position = 0; position < text.size(); ++position) {
        result += text[position];
        if (text[position] == u'\n' && position + 1 < text.size()) result += blanks;
    }
    return result;
}

QString assembleStatement(const StatementClauses& clauses) {
    const QString head =
        clauses.distinct ? QStringLiteral("SELECT DISTINCT ") : QStringLiteral("SELECT ");
    QString text = head + indentLines(clauses.select, int(head.size()));
    // One buffer: conditions of deep groups are long, because each line is indented by its depth.
    const auto append = [&text](const QString& keyword, const QString& clause) {
        text += QStringLiteral("\r\n");
        text += keyword;
        text += clause;
    };
    append(QStringLiteral("FROM "), clauses.from);
    if (!isBlank(clauses.where)) append(QStringLiteral("WHERE "), clauses.where);
    if (!isBlank(clauses.groupBy)) {
        append(QStringLiteral("GROUP BY "), clauses.groupBy);
        if (!isBlank(clauses.having)) append(QStringLiteral("HAVING "), clauses.having);
    }
    if (!isBlank(clauses.orderBy)) append(QStringLiteral("ORDER BY "), clauses.orderBy);
    if (!isBlank(clauses.tail)) append({}, clauses.tail);
    return text;
}

}  // namespace orv
