// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDStatement.h"

#include "core/Text.h"

#include <QStringList>

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
    QStringList lines;
    lines << head + indentLines(clauses.select, int(head.size()));
    lines << QStringLiteral("FROM ") + clauses.from;
    if (!isBlank(clauses.where)) lines << QStringLiteral("WHERE ") + clauses.where;
    if (!isBlank(clauses.groupBy)) {
        lines << QStringLiteral("GROUP BY ") + clauses.groupBy;
        if (!isBlank(clauses.having)) lines << QStringLiteral("HAVING ") + clauses.having;
    }
    if (!isBlank(clauses.orderBy)) lines << QStringLiteral("ORDER BY ") + clauses.orderBy;
    if (!isBlank(clauses.tail)) lines << clauses.tail;
    return lines.join(QStringLiteral("\r\n"));
}

}  // namespace orv
