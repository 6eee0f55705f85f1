// SPDX-License-Identifier: MIT
#include "database/MariadbRows.h"

#include "database/MariadbLibrary.h"
#include "database/ServerQuery.h"
#include "values/ExactNumber.h"

#include <QDateTime>
#include <QSqlDriver>

namespace orvquery {

namespace {

// Field types and flags of mysql_com.h.
enum Type {
    Decimal = 0,
    Tiny = 1,
    Short = 2,
    Long = 3,
    Float = 4,
    Double = 5,
    Timestamp = 7,
    LongLong = 8,
    Int24 = 9,
    Date = 10,
    Time = 11,
    DateTime = 12,
    Year = 13,
    Bit = 16,
    NewDecimal = 246,
    Enum = 247,
    Set = 248,
};
constexpr unsigned unsignedFlag = 32;
constexpr unsigned binaryFlag = 128;

void* connectionOf(const QSqlDatabase& database) {
    const QVariant handle = database.driver()->handle();
    if (qstrcmp(handle.typeName(), "st_mysql*") != 0) return nullptr;
    return *static_cast<void* const*>(handle.constData());
}

qulonglong numberOfBits(const QByteArray& bytes) {
    qulonglong number = 0;
    for (const char byte : bytes) number = (number << 8) | quint8(byte);
    return number;
}

}  // namespace

bool MariadbRows::canRead(const QSqlDatabase& database) {
    return database.isOpen() && connectionOf(database) != nullptr && mariadbLibrary().isWhole();
}

// While the rows come, the connection cannot be asked who it is.
MariadbRows::MariadbRows(const QSqlDatabase& database)
    : m_connection(connectionOf(database)), m_stop(mariadbQueryKill(database)) {}

// The library reads all the rest before it frees the result, so there had better be none.
MariadbRows::~MariadbRows() {
    if (m_result == nullptr) return;
    if (m_row != nullptr && m_stop) m_stop();
    mariadbLibrary().freeResult(m_result);
}

bool MariadbRows::start(const QString& statement) {
    const MariadbLibrary& library = mariadbLibrary();
    const QByteArray text = statement.toUtf8();
    if (library.realQuery(m_connection, text.constData(),
                          static_cast<unsigned long>(text.size())) != 0) {
        readError("Unable to execute query");
        return false;
    }
    m_result = library.useResult(m_connection);
    if (m_result == nullptr) {
        // A query INTO variables has no rows.
        readError("Unable to use result");
        return !m_error.isValid();
    }
    const unsigned count = library.fieldCount(m_result);
    for (unsigned column = 0; column < count; ++column) {
        const MariadbField& field = *library.field(m_result, column);
        m_columns += QString::fromUtf8(field.names[0], field.nameLengths[0]);
        m_kinds += kindOf(field.type, field.flags, field.isText());
    }
    return true;
}

bool MariadbRows::next() {
    if (m_result == nullptr) return false;
    const MariadbLibrary& library = mariadbLibrary();
    m_row = library.fetchRow(m_result);
    if (m_row == nullptr) readError("Unable to fetch row");
    return m_row != nullptr;
}

QList<QVariant> MariadbRows::row() const {
    const unsigned long* lengths = mariadbLibrary().fetchLengths(m_result);
    QList<QVariant> values;
    values.reserve(m_kinds.size());
    for (qsizetype column = 0; column < m_kinds.size(); ++column) {
        const char* text = m_row[column];
        values +=
            text == nullptr
                ? QVariant(QMetaType(QMetaType::QString))
                : value(m_kinds[column], QByteArray::fromRawData(text, qsizetype(lengths[column])));
    }
    return values;
}

MariadbRows::Kind MariadbRows::kindOf(int type, unsigned flags, bool isText) {
    const bool isUnsigned = (flags & unsignedFlag) != 0;
    switch (type) {
    case Tiny:
    case Short:
    case Long:
    case Int24: return isUnsigned ? Kind::Unsigned : Kind::Number;
    case Year: return Kind::Number;
    case LongLong: return isUnsigned ? Kind::UnsignedLong : Kind::Long;
    case Float:
    case Double: return Kind::Float;
    case Decimal:
    case NewDecimal: return Kind::Decimal;
    case Bit: return Kind::Bits;
    case Date: return Kind::Date;
    case Timestamp:
    case DateTime: return Kind::DateTime;
    case Time:
    case Enum:
    case Set: return Kind::Text;
    default: return (flags & binaryFlag) != 0 && !isText ? Kind::Bytes : Kind::Text;
    }
}

QVariant MariadbRows::value(Kind kind, const QByteArray& text) {
    switch (kind) {
    case Kind::Text: return QString::fromUtf8(text);
    // The library's memory goes with the row.
    case Kind::Bytes: return QByteArray(text.constData(), text.size());
    case Kind::Number: return text.toInt();
    case Kind::Unsigned: return text.toUInt();
    case Kind::Long: return text.toLongLong();
    case Kind::UnsignedLong: return text.toULongLong();
    case Kind::Float: return text.toDouble();
    case Kind::Decimal: return decimalValue(QString::fromLatin1(text));
    case Kind::Bits: return numberOfBits(text);
    case Kind::Date: return momentOrText(QDate::fromString(QString::fromLatin1(text), Qt::ISODate));
    case Kind::DateTime:
        return momentOrText(QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate));
    }
    Q_UNREACHABLE();
}

void MariadbRows::readError(const char* what) {
    const MariadbLibrary& library = mariadbLibrary();
    const unsigned number = library.errorNumber(m_connection);
    if (number == 0) return;
    m_error = QSqlError(QLatin1String(what), QString::fromUtf8(library.errorText(m_connection)),
                        QSqlError::StatementError, QString::number(number));
}

}  // namespace orvquery
