// SPDX-License-Identifier: MIT
#include "names/NameFolding.h"

#include "core/Text.h"
#include "data/ProcessName.h"

#include <algorithm>

namespace orvquery {

namespace {

// What SQLite refuses, or takes for something else, as the bare name of a table, column or alias.
// Its other keywords can be names. FULL, LEFT and the like are refused as aliases only.
constexpr const char* sqliteReservedWords =
    "ADD ALL ALTER AND AS AUTOINCREMENT BETWEEN CASE CAST CHECK COLLATE COMMIT CONSTRAINT CREATE "
    "CROSS CURRENT_DATE CURRENT_TIME CURRENT_TIMESTAMP DEFAULT DEFERRABLE DELETE DISTINCT DROP "
    "ELSE ESCAPE EXCEPT EXISTS FOREIGN FROM FULL GROUP HAVING IN INDEX INDEXED INNER INSERT "
    "INTERSECT INTO IS ISNULL JOIN LEFT LIMIT NATURAL NOT NOTHING NOTNULL NULL ON OR ORDER OUTER "
    "PRIMARY RAISE REFERENCES RETURNING RIGHT SELECT SET TABLE THEN TO TRANSACTION UNION UNIQUE "
    "UPDATE USING VALUES WHEN WHERE WITH";

// ASCII only: that is how far databases agree on case.
QChar asciiUpper(QChar character) {
    const bool isLower = character >= u'a' && character <= u'z';
    return isLower ? QChar(character.unicode() - u'a' + u'A') : character;
}

QString asciiUpper(QString text) {
    std::transform(text.cbegin(), text.cend(), text.begin(),
                   [](QChar character) { return asciiUpper(character); });
    return text;
}

}  // namespace

NameFolding::NameFolding(Unquoted unquoted, QStringList reservedWords)
    : m_unquoted(unquoted), m_reservedWords(std::move(reservedWords)) {}

NameFolding NameFolding::sqlite() {
    return {Unquoted::IgnoresCase, QString::fromLatin1(sqliteReservedWords).split(u' ')};
}

QString NameFolding::handedOver(const QString& name) const {
    if (isFoundUnquoted(name)) return asciiUpper(name);
    // The control leaves some names without quotes that need them here ("2ND", "'A'"), and a full
    // stop outside quotes would be taken for the one behind an alias.
    const QString quoted = orv::quotedName(name);
    const bool isWrittenQuoted = !name.isEmpty() && ProcessName(name) == quoted;
    return isWrittenQuoted && !name.contains(u'.') ? name : quoted;
}

bool NameFolding::isSameName(const QString& left, const QString& right) const {
    if (m_unquoted == Unquoted::IgnoresCase) return asciiUpper(left) == asciiUpper(right);
    return left == right;
}

bool NameFolding::isFoundUnquoted(const QString& name) const {
    if (!orv::isPlainIdentifier(name)) return false;
    return m_unquoted == Unquoted::IgnoresCase || name == asciiUpper(name);
}

QStringList nameParts(const QString& nameInStatement) {
    QStringList parts;
    QString rest = nameInStatement;
    for (qsizetype stop = orv::firstFullStop(rest); stop >= 0; stop = orv::firstFullStop(rest)) {
        parts += orv::unquotedName(orv::orvTrim(rest.left(stop)));
        rest = rest.mid(stop + 1);
    }
    parts += orv::unquotedName(orv::orvTrim(rest));
    return parts;
}

}  // namespace orvquery
