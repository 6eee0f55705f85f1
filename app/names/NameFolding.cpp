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

// The same for Firebird 3, with the words that versions 4 and 5 have reserved since.
constexpr const char* firebirdReservedWords =
    "ADD ADMIN ALL ALTER AND ANY AS AT AVG BEGIN BETWEEN BIGINT BINARY BIT_LENGTH BLOB BOOLEAN "
    "BOTH BY CASE CAST CHAR CHARACTER CHARACTER_LENGTH CHAR_LENGTH CHECK CLOSE COLLATE COLUMN "
    "COMMIT CONNECT CONSTRAINT CORR COUNT COVAR_POP COVAR_SAMP CREATE CROSS CURRENT "
    "CURRENT_CONNECTION CURRENT_DATE CURRENT_ROLE CURRENT_TIME CURRENT_TIMESTAMP "
    "CURRENT_TRANSACTION CURRENT_USER CURSOR DATE DAY DEC DECFLOAT DECIMAL DECLARE DEFAULT "
    "DELETE DELETING DETERMINISTIC DISCONNECT DISTINCT DOUBLE DROP ELSE END ESCAPE EXECUTE "
    "EXISTS EXTERNAL EXTRACT FALSE FETCH FILTER FLOAT FOR FOREIGN FROM FULL FUNCTION GDSCODE "
    "GLOBAL GRANT GROUP HAVING HOUR IN INDEX INNER INSENSITIVE INSERT INSERTING INT INT128 "
    "INTEGER INTO IS JOIN LATERAL LEADING LEFT LIKE LOCALTIME LOCALTIMESTAMP LONG LOWER MAX "
    "MERGE MIN MINUTE MONTH NATIONAL NATURAL NCHAR NO NOT NULL NUMERIC OCTET_LENGTH OF OFFSET "
    "ON ONLY OPEN OR ORDER OUTER OVER PARAMETER PLAN POSITION POST_EVENT PRECISION PRIMARY "
    "PROCEDURE PUBLICATION RDB$DB_KEY RDB$ERROR RDB$GET_CONTEXT RDB$GET_TRANSACTION_CN "
    "RDB$RECORD_VERSION RDB$ROLE_IN_USE RDB$SET_CONTEXT RDB$SYSTEM_PRIVILEGE REAL "
    "RECORD_VERSION RECREATE RECURSIVE REFERENCES REGR_AVGX REGR_AVGY REGR_COUNT REGR_INTERCEPT "
    "REGR_R2 REGR_SLOPE REGR_SXX REGR_SXY REGR_SYY RELEASE RESETTING RETURN RETURNING_VALUES "
    "RETURNS REVOKE RIGHT ROLLBACK ROW ROWS ROW_COUNT SAVEPOINT SCROLL SECOND SELECT SENSITIVE "
    "SET SIMILAR SMALLINT SOME SQLCODE SQLSTATE START STDDEV_POP STDDEV_SAMP SUM TABLE THEN "
    "TIME TIMESTAMP TIMEZONE_HOUR TIMEZONE_MINUTE TO TRAILING TRIGGER TRIM TRUE UNBOUNDED UNION "
    "UNIQUE UNKNOWN UPDATE UPDATING UPPER USER USING VALUE VALUES VARBINARY VARCHAR VARIABLE "
    "VARYING VAR_POP VAR_SAMP VIEW WHEN WHERE WHILE WINDOW WITH WITHOUT YEAR";

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

NameFolding NameFolding::firebird() {
    return {Unquoted::FoldsUp, QString::fromLatin1(firebirdReservedWords).split(u' ')};
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
