// SPDX-License-Identifier: MIT
#include "documents/StatementLosses.h"

#include <QCoreApplication>
#include <QStringList>

namespace orvquery {

namespace {

constexpr qsizetype mostQuotes = 3;
constexpr qsizetype longestQuote = 40;

QString tr(const char* text) {
    return QCoreApplication::translate("orvquery", text);
}

int lostComments(const QString& before, const QString& after, SqlRules rules) {
    int count = 0;
    SqlPieces pieces(before, rules);
    while (pieces.next()) {
        const bool isComment = pieces.kind() == SqlPieces::Kind::Comment;
        if (isComment && !after.contains(pieces.text().trimmed())) ++count;
    }
    return count;
}

QString quoted(const QString& text) {
    const bool isLong = text.size() > longestQuote;
    return u'"' + (isLong ? text.left(longestQuote) + QChar(0x2026) : text) + u'"';
}

}  // namespace

QString statementLosses(const QString& before, const QString& after, const orv::Findings& findings,
                        SqlRules rules) {
    const bool hadStatement = !countingPieces(before, rules).empty();
    if (hadStatement && countingPieces(after, rules).empty()) return tr("its whole statement");
    QStringList losses;
    const int comments = lostComments(before, after, rules);
    if (comments > 0) {
        losses += comments == 1 ? tr("1 comment") : tr("%1 comments").arg(comments);
    }
    if (hasSecondStatement(before, rules) && !hasSecondStatement(after, rules)) {
        losses += tr("what stands behind the first statement");
    }
    QStringList parts;
    for (const orv::Finding& finding : findings) {
        // A second statement is a finding of its own.
        const QString text = finding.text.simplified();
        if (!text.isEmpty() && !text.startsWith(u';')) parts += quoted(text);
    }
    if (parts.size() > mostQuotes) parts = parts.mid(0, mostQuotes) + QStringList(QChar(0x2026));
    if (!parts.isEmpty()) {
        losses += tr("what the query does not hold: %1").arg(parts.join(QStringLiteral(", ")));
    }
    if (losses.size() < 2) return losses.join(QString());
    const QString last = losses.takeLast();
    return tr("%1 and %2").arg(losses.join(QStringLiteral(", ")), last);
}

}  // namespace orvquery
