// SPDX-License-Identifier: MIT
#include "names/BareNames.h"

#include "text/SqlPieces.h"

namespace orvquery {

namespace {

using Kind = SqlPieces::Kind;

bool isWord(QStringView text, const char* word) {
    return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

bool isSelect(const SqlPiece& piece) {
    return piece.kind == Kind::Word && isWord(piece.text, "SELECT");
}

std::size_t behindBracket(const std::vector<SqlPiece>& pieces, std::size_t open) {
    int depth = 0;
    for (std::size_t index = open; index < pieces.size(); ++index) {
        if (pieces[index].text == u"(") ++depth;
        if (pieces[index].text == u")" && --depth == 0) return index + 1;
    }
    return pieces.size();
}

// Words that are no fields: behind a full stop, of a parameter (":NAME"), of a type ("CAST(X AS
// DATE)", "DATE '2024-01-31'"), of a unit ("INTERVAL '1' DAY", "EXTRACT(DAY FROM X)"), and what is
// called or a table.
bool isBareField(QStringView before, QStringView next) {
    return before != u"." && before != u":" && !before.startsWith(u'\'') && !isWord(before, "AS") &&
           next != u"(" && next != u"." && !next.startsWith(u'\'') && !isWord(next, "FROM");
}

}  // namespace

QString withBareNamesRenamed(const QString& text,
                             const std::function<QString(const QString&)>& rename) {
    const std::vector<SqlPiece> pieces = countingPieces(text, SqlRules::Mariadb);
    QString result;
    qsizetype done = 0;
    for (std::size_t index = 0; index < pieces.size();) {
        const SqlPiece& piece = pieces[index];
        if (isSelect(piece)) break;
        const bool hasNext = index + 1 < pieces.size();
        if (piece.text == u"(" && hasNext && isSelect(pieces[index + 1])) {
            index = behindBracket(pieces, index);
            continue;
        }
        const QStringView before = index > 0 ? pieces[index - 1].text : QStringView();
        const QStringView next = hasNext ? pieces[index + 1].text : QStringView();
        ++index;
        const bool isName = piece.kind == Kind::Word ||
                            (piece.kind == Kind::Quoted && !piece.text.startsWith(u'\''));
        if (!isName || !isBareField(before, next)) continue;
        const QString name = rename(piece.text.toString());
        if (name.isEmpty()) continue;
        result += QStringView(text).sliced(done, piece.start - done);
        result += name;
        done = piece.start + piece.text.size();
    }
    result += QStringView(text).sliced(done);
    return result;
}

}  // namespace orvquery
