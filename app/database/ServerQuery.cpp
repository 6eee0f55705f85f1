// SPDX-License-Identifier: MIT
#include "database/ServerQuery.h"

#include "core/Error.h"
#include "database/FirebirdBlobs.h"
#include "database/MariadbLibrary.h"
#include "database/PostgresqlMoments.h"
#include "parameters/ParameterText.h"
#include "text/SqlPieces.h"
#include "values/ExactNumber.h"

#include <QDateTime>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>
#include <QSqlResult>

#include <algorithm>
#include <optional>

namespace orvquery {

namespace {

// Oids of PostgreSQL's pg_type.dat, and field types of MariaDB's mysql_com.h.
constexpr int postgresqlNumeric = 1700;
constexpr int mariadbDecimal = 0;
constexpr int mariadbBit = 16;
constexpr int mariadbNewDecimal = 246;

// As Firebird's ibase.h has them, for columns that may hold NULL.
constexpr int firebirdText = 453;
constexpr int firebirdLong = 497;
constexpr int firebirdShort = 501;
constexpr int firebirdBlob = 521;
constexpr int firebirdInt64 = 581;
constexpr int firebirdBytesCharacterSet = 1;
constexpr int mostBytesOfCharacter = 4;

// The driver makes a text of the bytes, in which some are lost.
QVariant bits(const QVariant& value) {
    const QByteArray bytes = value.metaType().id() == QMetaType::QByteArray
                                 ? value.toByteArray()
                                 : value.toString().toUtf8();
    if (value.toString().contains(QChar::ReplacementCharacter)) {
        return QStringLiteral("(bits)");
    }
    qulonglong number = 0;
    for (const char byte : bytes) number = (number << 8) | quint8(byte);
    return number;
}

bool isMoment(int type) {
    return type == QMetaType::QDate || type == QMetaType::QTime || type == QMetaType::QDateTime;
}

// SQLite has no type for these, and keeps them as texts that compare rightly; servers read a text
// as the type that is wanted, without moving it to another time zone.
QVariant withoutMoments(const QVariant& value) {
    return isMoment(value.metaType().id()) && !value.isNull() ? QVariant(parameterText(value))
                                                              : value;
}

// Its driver tells the database behind it, but reads values in a way of its own.
bool isOdbc(const QSqlDriver& driver) {
    return driver.inherits("QODBCDriver");
}

std::optional<SqlRules> rulesOf(const QSqlDriver& driver) {
    if (isOdbc(driver)) return std::nullopt;
    switch (driver.dbmsType()) {
    case QSqlDriver::PostgreSQL: return SqlRules::Postgresql;
    case QSqlDriver::MySqlServer: return SqlRules::Mariadb;
    default: return std::nullopt;
    }
}

// These drivers hand several statements over, the others refuse them; the first alone is known to
// be a query.
void requireOneStatement(const QString& statement, SqlRules rules) {
    if (hasSecondStatement(statement, rules)) {
        throw orv::Error(QStringLiteral("Only one statement can be run at a time."));
    }
    if (rules != SqlRules::Mariadb) return;
    if (hasWord(statement, u"OUTFILE", rules) || hasWord(statement, u"DUMPFILE", rules)) {
        throw orv::Error(QStringLiteral("Files of the server are not written from here."));
    }
}

QString literal(const QVariant& value) {
    if (value.isNull()) return QStringLiteral("NULL");
    const QVariant plain = withoutMoments(value);
    switch (plain.metaType().id()) {
    case QMetaType::Bool: return plain.toBool() ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return plain.toString();
    case QMetaType::Double: return QString::number(plain.toDouble(), 'g', 17);
    default: return u'\'' + plain.toString().replace(u'\'', QLatin1String("''")) + u'\'';
    }
}

// Where a database names no character set, a text may be in any.
QVariant textOrBytes(const QVariant& value) {
    const QByteArray bytes = value.toByteArray();
    if (value.isNull() || !bytes.isValidUtf8()) return value;
    return QString::fromUtf8(bytes);
}

// The driver gives a text of fixed length as many blanks as it might have bytes.
QVariant withoutPadding(const QVariant& value, int characters) {
    if (value.isNull()) return value;
    QString text = value.toString();
    while (text.size() > characters && text.endsWith(u' ')) text.chop(1);
    return text;
}

// The driver multiplies a whole number by a power of ten, which is not quite 0.1 or 0.01: of 0.3 it
// makes 0.30000000000000004.
QVariant rounded(const QVariant& value, int places) {
    if (value.isNull()) return value;
    return QString::number(value.toDouble(), 'f', places).toDouble();
}

// A blank on either side: "-" before a negative number would begin a comment.
QString withLiterals(const QString& statement, const PlaceholderValues& values,
                     bool areOnlyNulls = false) {
    QString result = statement;
    std::vector<Placeholder> places = placeholders(statement);
    std::reverse(places.begin(), places.end());
    for (const Placeholder& place : places) {
        if (areOnlyNulls && !values.value(place.name).isNull()) continue;
        result.replace(place.start, place.length, u' ' + literal(values.value(place.name)) + u' ');
    }
    return result;
}

// What the server cannot tell of a value that stands elsewhere, it may see in the text.
bool isUndecided(const QSqlError& error) {
    static const QStringList codes = {QStringLiteral("42725"), QStringLiteral("42P08"),
                                      QStringLiteral("42P18")};
    return codes.contains(error.nativeErrorCode());
}

bool isValidMoment(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::QDate: return value.toDate().isValid();
    case QMetaType::QTime: return value.toTime().isValid();
    case QMetaType::QDateTime: return value.toDateTime().isValid();
    default: return true;
    }
}

}  // namespace

bool startQuery(QSqlQuery& query, const QString& statement, const PlaceholderValues& values) {
    const QSqlDriver& driver = *query.driver();
    const std::optional<SqlRules> rules = rulesOf(driver);
    if (rules) query.setNumericalPrecisionPolicy(QSql::HighPrecision);
    if (rules == SqlRules::Mariadb) return query.exec(mariadbStatement(statement, values));
    if (rules) {
        requireOneStatement(statement, *rules);
    } else if (isOdbc(driver)) {
        requireOneStatement(statement, SqlRules::Postgresql);
        requireOneStatement(statement, SqlRules::Mariadb);
    }
    BoundStatement bound = boundStatement(statement, values);
    if (bound.values.isEmpty()) return query.exec(statement);
    // Where a column takes no NULL, Firebird's driver compares it with nought or nothing instead.
    if (driver.dbmsType() == QSqlDriver::Interbase) {
        bound = boundStatement(withLiterals(statement, values, true), values);
        if (bound.values.isEmpty()) return query.exec(bound.text);
    }
    if (!query.prepare(bound.text)) {
        const bool isWorthIt = rules && isUndecided(query.lastError());
        return isWorthIt && query.exec(withLiterals(statement, values));
    }
    const bool hasMoments = driver.dbmsType() == QSqlDriver::Interbase || isOdbc(driver);
    for (const QVariant& value : bound.values) {
        query.addBindValue(hasMoments ? value : withoutMoments(value));
    }
    return query.exec();
}

QString mariadbStatement(const QString& statement, const PlaceholderValues& values) {
    requireOneStatement(statement, SqlRules::Mariadb);
    // As literals the values are of the types that people see in the text.
    const bool hasValues = !boundStatement(statement, values).values.isEmpty();
    return hasValues ? withLiterals(statement, values) : statement;
}

QVariant momentOrText(const QVariant& value) {
    if (isValidMoment(value)) return value;
    const bool isTime = value.metaType().id() == QMetaType::QTime;
    return isTime ? QStringLiteral("(not a time)") : QStringLiteral("(not a date)");
}

RowReader::RowReader(const QSqlQuery& query) : m_query(query) {
    const QSqlRecord record = query.record();
    const int count = record.count();
    for (int column = 0; column < count; ++column) {
        m_kinds += kindOf(column);
        const QSqlField field = record.field(column);
        const bool isPadded = m_kinds.last() == Kind::Padded;
        m_places += isPadded ? field.length() / mostBytesOfCharacter : field.precision();
    }
    if (!m_kinds.contains(Kind::Blob)) return;
    const QSet<int> texts = firebirdTextBlobs(query);
    for (int column = 0; column < count; ++column) {
        if (m_kinds[column] == Kind::Blob && !texts.contains(column)) m_kinds[column] = Kind::Plain;
    }
}

RowReader::Kind RowReader::kindOf(int column) const {
    const QSqlField field = m_query.record().field(column);
    if (isMoment(field.metaType().id())) return Kind::Moment;
    if (isOdbc(*m_query.driver())) return Kind::Plain;
    switch (m_query.driver()->dbmsType()) {
    case QSqlDriver::PostgreSQL:
        return field.typeID() == postgresqlNumeric ? Kind::Decimal : Kind::Plain;
    case QSqlDriver::MySqlServer:
        if (field.typeID() == mariadbBit) return Kind::Bits;
        if (field.metaType().id() == QMetaType::QByteArray && isText(column)) return Kind::Text;
        if (field.typeID() == mariadbDecimal || field.typeID() == mariadbNewDecimal) {
            return Kind::Decimal;
        }
        return field.metaType().id() == QMetaType::Double ? Kind::Float : Kind::Plain;
    case QSqlDriver::Interbase: {
        // Of a blob the precision is its character set.
        const int type = field.typeID() | 1;
        const bool isInteger =
            type == firebirdShort || type == firebirdLong || type == firebirdInt64;
        if (isInteger && field.precision() > 0) return Kind::Scaled;
        const bool isText = field.precision() != firebirdBytesCharacterSet;
        if (type == firebirdText && field.metaType().id() == QMetaType::QString) {
            return Kind::Padded;
        }
        return type == firebirdBlob && isText ? Kind::Blob : Kind::Plain;
    }
    default: return Kind::Plain;
    }
}

// JSON and other texts that are compared byte by byte pass for bytes with the driver.
bool RowReader::isText(int column) const {
    const auto fieldOf = mariadbLibrary().field;
    const QVariant handle = m_query.result()->handle();
    if (fieldOf == nullptr || qstrcmp(handle.typeName(), "st_mysql_res*") != 0) return false;
    void* const result = *static_cast<void* const*>(handle.constData());
    const MariadbField* field = result == nullptr ? nullptr : fieldOf(result, unsigned(column));
    return field != nullptr && field->isText();
}

QVariant RowReader::moment(int column, const QVariant& value) const {
    const QString text = postgresqlText(m_query, column);
    return text.isNull() ? momentOrText(value) : postgresqlMoment(text, value.metaType().id());
}

QVariant RowReader::value(int column) const {
    QVariant value = m_query.value(column);
    switch (m_kinds[column]) {
    case Kind::Plain: return value;
    case Kind::Decimal: return value.isNull() ? value : decimalValue(value.toString());
    case Kind::Float: return value.isNull() ? value : QVariant(value.toDouble());
    case Kind::Bits: return value.isNull() ? value : bits(value);
    case Kind::Text: return value.isNull() ? value : QString::fromUtf8(value.toByteArray());
    case Kind::Moment: return m_query.isNull(column) ? value : moment(column, value);
    case Kind::Blob: return textOrBytes(value);
    case Kind::Scaled: return rounded(value, m_places[column]);
    case Kind::Padded: return withoutPadding(value, m_places[column]);
    }
    Q_UNREACHABLE();
}

}  // namespace orvquery
