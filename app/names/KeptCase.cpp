// SPDX-License-Identifier: MIT
#include "names/KeptCase.h"

#include "text/SqlPieces.h"

namespace orvquery {

namespace {

using Kind = SqlPieces::Kind;

// The place in the statement of each place in the quoted one.
QList<qsizetype> placesBefore(const QString& quoted, const QString& statement) {
    QList<qsizetype> places;
    places.reserve(quoted.size() + 1);
    qsizetype before = 0;
    for (const QChar character : quoted) {
        places += before;
        if (before < statement.size() && statement[before] == character) ++before;
    }
    places += before;
    return places;
}

}  // namespace

QString withNamesInQuotes(const QString& statement, const QSet<QString>& tables,
                          const QSet<QString>& schemas) {
    const std::vector<SqlPiece> pieces = countingPieces(statement, SqlRules::Mariadb);
    const auto textAt = [&](std::size_t index) {
        return index < pieces.size() ? pieces[index].text : QStringView();
    };
    QString result;
    qsizetype done = 0;
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        const SqlPiece& piece = pieces[index];
        const QString word = piece.text.toString();
        if (piece.kind != Kind::Word || word == word.toUpper()) continue;
        const QStringView next = textAt(index + 1);
        if (next == u"(" || next.startsWith(u'\'') || next.startsWith(u'"')) continue;
        const bool isBehindStop = index > 0 && textAt(index - 1) == u".";
        const bool isOfSchema =
            isBehindStop && index > 1 &&
            schemas.contains(textAt(index - 2).toString().remove(u'"').remove(u'`'));
        const bool isSchema = next == u"." && !isBehindStop && schemas.contains(word);
        const bool isTable = tables.contains(word) && (!isBehindStop || isOfSchema);
        if (!isSchema && !isTable) continue;
        result += QStringView(statement).sliced(done, piece.start - done);
        result += u'"' + word + u'"';
        done = piece.start + word.size();
    }
    result += QStringView(statement).sliced(done);
    return result;
}

orv::Findings findingsBefore(const orv::Findings& findings, const QString& quoted,
                             const QString& statement) {
    if (quoted == statement) return findings;
    const QList<qsizetype> places = placesBefore(quoted, statement);
    orv::Findings result = findings;
    for (orv::Finding& finding : result) {
        const qsizetype last = places.size() - 1;
        const qsizetype start = places[qBound(qsizetype(0), qsizetype(finding.start), last)];
        const qsizetype end =
            places[qBound(qsizetype(0), qsizetype(finding.start) + finding.length, last)];
        const bool isSameText = quoted.mid(finding.start, finding.length) == finding.text;
        finding.start = int(start);
        finding.length = int(end - start);
        if (isSameText) finding.text = statement.mid(start, end - start);
    }
    return result;
}

}  // namespace orvquery
