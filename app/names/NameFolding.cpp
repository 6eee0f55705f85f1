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

// The same for PostgreSQL 15, with the word that version 16 has reserved since. Those that are
// refused as names of functions alone are left out: a server has them as columns often.
constexpr const char* postgresqlReservedWords =
    "ALL ANALYSE ANALYZE AND ANY ARRAY AS ASC ASYMMETRIC AUTHORIZATION BINARY BOTH CASE CAST "
    "CHECK COLLATE COLLATION COLUMN CONCURRENTLY CONSTRAINT CREATE CROSS CURRENT_CATALOG "
    "CURRENT_DATE CURRENT_ROLE CURRENT_SCHEMA CURRENT_TIME CURRENT_TIMESTAMP CURRENT_USER DEFAULT "
    "DEFERRABLE DESC DISTINCT DO ELSE END EXCEPT FALSE FETCH FOR FOREIGN FREEZE FROM FULL GRANT "
    "GROUP HAVING ILIKE IN INITIALLY INNER INTERSECT INTO IS ISNULL JOIN LATERAL LEADING LEFT LIKE "
    "LIMIT LOCALTIME LOCALTIMESTAMP NATURAL NOT NOTNULL NULL OFFSET ON ONLY OR ORDER OUTER "
    "OVERLAPS PLACING PRIMARY REFERENCES RETURNING RIGHT SELECT SESSION_USER SIMILAR SOME "
    "SYMMETRIC SYSTEM_USER TABLE TABLESAMPLE THEN TO TRAILING TRUE UNION UNIQUE USER USING "
    "VARIADIC VERBOSE WHEN WHERE WINDOW WITH";

// The same for MariaDB 10.11, with those of MySQL 8 besides.
constexpr const char* mariadbReservedWords =
    "ACCESSIBLE ADD ALL ALTER ANALYZE AND AS ASC ASENSITIVE BEFORE BETWEEN BIGINT BINARY BLOB "
    "BOTH BY CALL CASCADE CASE CHANGE CHAR CHARACTER CHECK COLLATE COLUMN CONDITION "
    "CONSTRAINT CONTINUE CONVERT CREATE CROSS CUBE CUME_DIST CURRENT_DATE CURRENT_ROLE "
    "CURRENT_TIME CURRENT_TIMESTAMP CURRENT_USER CURSOR DATABASES DAY_HOUR DAY_MICROSECOND "
    "DAY_MINUTE DAY_SECOND DEC DECIMAL DECLARE DEFAULT DELAYED DELETE DELETE_DOMAIN_ID "
    "DENSE_RANK DESC DESCRIBE DETERMINISTIC DISTINCT DISTINCTROW DIV DOUBLE DO_DOMAIN_IDS "
    "DROP DUAL EACH ELSE ELSEIF EMPTY ENCLOSED ESCAPED EXCEPT EXISTS EXIT EXPLAIN FALSE FETCH "
    "FIRST_VALUE FLOAT FLOAT4 FLOAT8 FOR FORCE FOREIGN FROM FULLTEXT FUNCTION GENERATED GET "
    "GRANT GROUP GROUPING GROUPS HAVING HIGH_PRIORITY HOUR_MICROSECOND HOUR_MINUTE "
    "HOUR_SECOND IF IGNORE IGNORE_DOMAIN_IDS IN INDEX INFILE INNER INOUT INSENSITIVE INSERT "
    "INT INT1 INT2 INT3 INT4 INT8 INTEGER INTERSECT INTERVAL INTO IS ITERATE JOIN JSON_TABLE "
    "KEY KEYS KILL LAG LAST_VALUE LATERAL LEAD LEADING LEAVE LEFT LIKE LIMIT LINEAR LINES "
    "LOAD LOCALTIME LOCALTIMESTAMP LOCK LONG LONGBLOB LONGTEXT LOOP LOW_PRIORITY "
    "MASTER_DEMOTE_TO_REPLICA MASTER_DEMOTE_TO_SLAVE MASTER_SSL_VERIFY_SERVER_CERT MATCH "
    "MAXVALUE MEDIUMBLOB MEDIUMINT MEDIUMTEXT MIDDLEINT MINUTE_MICROSECOND MINUTE_SECOND MOD "
    "MODIFIES NATURAL NOT NO_WRITE_TO_BINLOG NTH_VALUE NTILE NULL NUMERIC OF OFFSET ON "
    "OPTIMIZE OPTIMIZER_COSTS OPTIONALLY OR ORDER OUT OUTER OUTFILE OVER PAGE_CHECKSUM "
    "PARSE_VCOL_EXPR PARTITION PERCENT_RANK PORTION PRECISION PRIMARY PROCEDURE PURGE RANGE "
    "RANK READ READS READ_WRITE REAL RECURSIVE REFERENCES REF_SYSTEM_ID REGEXP RELEASE RENAME "
    "REPEAT REPLACE REQUIRE RESIGNAL RESTRICT RETURN RETURNING REVOKE RIGHT RLIKE ROW ROWS "
    "ROW_NUMBER SCHEMAS SECOND_MICROSECOND SELECT SENSITIVE SEPARATOR SET SHOW SIGNAL "
    "SMALLINT SPATIAL SPECIFIC SQL SQLEXCEPTION SQLSTATE SQLWARNING SQL_BIG_RESULT "
    "SQL_CALC_FOUND_ROWS SQL_SMALL_RESULT SSL STARTING STATS_AUTO_RECALC STATS_PERSISTENT "
    "STATS_SAMPLE_PAGES STORED STRAIGHT_JOIN SYSTEM TABLE TERMINATED THEN TINYBLOB TINYINT "
    "TINYTEXT TO TRAILING TRIGGER TRUE UNDO UNION UNIQUE UNLOCK UNSIGNED UPDATE USAGE USE "
    "USING UTC_DATE UTC_TIME UTC_TIMESTAMP VALUES VARBINARY VARCHAR VARCHARACTER VARYING "
    "VIRTUAL WHEN WHERE WHILE WINDOW WITH WRITE XOR YEAR_MONTH ZEROFILL";

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

QString asciiLower(QString text) {
    for (QChar& character : text) {
        const bool isUpper = character >= u'A' && character <= u'Z';
        if (isUpper) character = QChar(character.unicode() - u'A' + u'a');
    }
    return text;
}

}  // namespace

NameFolding::NameFolding(Unquoted unquoted, QStringList reservedWords)
    : NameFolding(unquoted, unquoted, std::move(reservedWords)) {}

NameFolding::NameFolding(Unquoted unquotedTables, Unquoted unquotedColumns,
                         QStringList reservedWords)
    : m_tables(unquotedTables),
      m_columns(unquotedColumns),
      m_reservedWords(std::move(reservedWords)) {}

NameFolding NameFolding::sqlite() {
    return {Unquoted::IgnoresCase, QString::fromLatin1(sqliteReservedWords).split(u' ')};
}

NameFolding NameFolding::firebird() {
    return {Unquoted::FoldsUp, QString::fromLatin1(firebirdReservedWords).split(u' ')};
}

NameFolding NameFolding::postgresql() {
    return {Unquoted::FoldsDown, QString::fromLatin1(postgresqlReservedWords).split(u' ')};
}

NameFolding NameFolding::mariadb(bool keepsCaseOfTables) {
    return {keepsCaseOfTables ? Unquoted::KeepsCase : Unquoted::IgnoresCase, Unquoted::IgnoresCase,
            QString::fromLatin1(mariadbReservedWords).split(u' ')};
}

// The words of PostgreSQL are close to the standard's.
NameFolding NameFolding::odbc() {
    return {Unquoted::IgnoresCase, QString::fromLatin1(postgresqlReservedWords).split(u' ')};
}

QString NameFolding::handedOver(const QString& name, Of of) const {
    if (isFoundUnquoted(name, of)) return asciiUpper(name);
    // The control leaves some names without quotes that need them here ("2ND", "'A'"), and a full
    // stop outside quotes would be taken for the one behind an alias.
    const QString quoted = orv::quotedName(name);
    const bool isWrittenQuoted = !name.isEmpty() && ProcessName(name) == quoted;
    return isWrittenQuoted && !name.contains(u'.') ? name : quoted;
}

bool NameFolding::isSameName(const QString& left, const QString& right, Of of) const {
    if (rule(of) == Unquoted::IgnoresCase) return asciiUpper(left) == asciiUpper(right);
    return left == right;
}

bool NameFolding::isMeant(const NamePart& inStatement, const QString& name, Of of) const {
    if (inStatement.isQuoted) return isSameName(inStatement.text, name, of);
    switch (rule(of)) {
    case Unquoted::IgnoresCase: return asciiUpper(inStatement.text) == asciiUpper(name);
    case Unquoted::FoldsUp: return asciiUpper(inStatement.text) == name;
    case Unquoted::FoldsDown: return asciiLower(inStatement.text) == name;
    case Unquoted::KeepsCase: return inStatement.text == name;
    }
    Q_UNREACHABLE();
}

// What the control writes without quotes is in upper case; a reserved word it puts in quotes as it
// was handed over.
bool NameFolding::isFoundUnquoted(const QString& name, Of of) const {
    if (!orv::isPlainIdentifier(name)) return false;
    switch (rule(of)) {
    case Unquoted::IgnoresCase: return true;
    case Unquoted::FoldsUp:
    case Unquoted::KeepsCase: return name == asciiUpper(name);
    case Unquoted::FoldsDown:
        return name == asciiLower(name) && !m_reservedWords.contains(asciiUpper(name));
    }
    Q_UNREACHABLE();
}

QString NameFolding::inStatement(const QString& name, Of of) const {
    const bool isPlain = isFoundUnquoted(name, of) && !m_reservedWords.contains(asciiUpper(name));
    return isPlain ? name : orv::quotedName(name);
}

QString NameFolding::plainAlias(const QString& name) const {
    const QString upper = asciiUpper(name);
    const bool isPlain = orv::isPlainIdentifier(name) && !m_reservedWords.contains(upper);
    return isPlain ? upper : QString();
}

QList<NamePart> nameParts(const QString& nameInStatement) {
    QList<NamePart> parts;
    const auto add = [&](const QString& part) {
        const QString text = orv::unquotedName(orv::orvTrim(part));
        parts += {text, text != orv::orvTrim(part)};
    };
    QString rest = nameInStatement;
    for (qsizetype stop = orv::firstFullStop(rest); stop >= 0; stop = orv::firstFullStop(rest)) {
        add(rest.left(stop));
        rest = rest.mid(stop + 1);
    }
    add(rest);
    return parts;
}

}  // namespace orvquery
