// SPDX-License-Identifier: MIT
#include "text/Refusal.h"

#include "text/SqlPieces.h"

namespace orvquery {

namespace {

QString hint(const QString& statement) {
    if (statement.trimmed().isEmpty()) return QStringLiteral("The text is empty.");
    SqlPieces pieces(statement, SqlRules::Postgresql);
    while (pieces.next()) {
        if (pieces.kind() == SqlPieces::Kind::Blank || pieces.kind() == SqlPieces::Kind::Comment) {
            continue;
        }
        if (pieces.text().compare(u"WITH", Qt::CaseInsensitive) != 0) return {};
        return QStringLiteral(
            "The text begins with WITH, and a common table expression is not read.");
    }
    return QStringLiteral("The text has nothing but comments.");
}

}  // namespace

QString refusalText(const QString& reason, const QString& statement) {
    const QString more = hint(statement);
    if (more.isEmpty()) return reason;
    const QString end = reason.endsWith(u'.') ? QString() : QStringLiteral(".");
    return reason + end + u' ' + more;
}

}  // namespace orvquery
