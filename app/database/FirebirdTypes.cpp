// SPDX-License-Identifier: MIT
#include "database/FirebirdTypes.h"

#include "data/SqlText.h"
#include "parser/ORVQDArgument.h"

namespace orvquery {

namespace {

// RDB$FIELD_TYPE, as Firebird's language reference lists it under RDB$FIELDS.
enum FirebirdType {
    SmallInt = 7,
    Integer = 8,
    Float = 10,
    Date = 12,
    Time = 13,
    Char = 14,
    BigInt = 16,
    Boolean = 23,
    DecFloat16 = 24,
    DecFloat34 = 25,
    Int128 = 26,
    Double = 27,
    TimeWithZone = 28,
    TimestampWithZone = 29,
    Timestamp = 35,
    VarChar = 37,
    Blob = 261
};

constexpr int textSubType = 1;

// One that cannot stand in a call, as it has a comment perhaps, is left to be asked for.
QVariant expressionValue(const QString& text) {
    return orv::argumentProblem(text).isEmpty() ? QVariant::fromValue(orv::SqlText{text})
                                                : QVariant();
}

}  // namespace

TFieldType fieldTypeOfFirebird(int type, int subType, int scale) {
    switch (type) {
    // NUMERIC and DECIMAL are stored as integers with a scale.
    case SmallInt: return scale < 0 ? ftFloat : ftSmallint;
    case Integer: return scale < 0 ? ftFloat : ftInteger;
    case BigInt: return scale < 0 ? ftFloat : ftLargeint;
    case Int128:
    case DecFloat16:
    case DecFloat34:
    case Float:
    case Double: return ftFloat;
    case Date: return ftDate;
    case Time:
    case TimeWithZone: return ftTime;
    case Timestamp:
    case TimestampWithZone: return ftDateTime;
    case Char: return ftFixedChar;
    case Boolean: return ftBoolean;
    case Blob: return subType == textSubType ? ftMemo : ftBlob;
    case VarChar:
    default: return ftString;
    }
}

QString firebirdDeclaration(const FirebirdField& field) {
    const auto number = [&](const char* plain) {
        if (field.scale >= 0) return QString::fromLatin1(plain);
        return QStringLiteral("NUMERIC(%1,%2)").arg(field.precision).arg(-field.scale);
    };
    const auto text = [&](const char* plain) {
        return QStringLiteral("%1(%2)").arg(QLatin1String(plain)).arg(field.characters);
    };
    switch (field.type) {
    case SmallInt: return number("SMALLINT");
    case Integer: return number("INTEGER");
    case BigInt: return number("BIGINT");
    case Int128: return number("INT128");
    case Float: return QStringLiteral("FLOAT");
    case Double: return QStringLiteral("DOUBLE PRECISION");
    case DecFloat16: return QStringLiteral("DECFLOAT(16)");
    case DecFloat34: return QStringLiteral("DECFLOAT(34)");
    case Date: return QStringLiteral("DATE");
    case Time: return QStringLiteral("TIME");
    case TimeWithZone: return QStringLiteral("TIME WITH TIME ZONE");
    case Timestamp: return QStringLiteral("TIMESTAMP");
    case TimestampWithZone: return QStringLiteral("TIMESTAMP WITH TIME ZONE");
    case Char: return text("CHAR");
    case VarChar: return text("VARCHAR");
    case Boolean: return QStringLiteral("BOOLEAN");
    case Blob:
        return field.subType == textSubType ? QStringLiteral("BLOB TEXT") : QStringLiteral("BLOB");
    default: return {};
    }
}

QVariant firebirdDefault(const QString& source) {
    QString text = source.trimmed();
    if (text.startsWith(u'=')) {
        text = text.mid(1).trimmed();
    } else if (text.startsWith(QLatin1String("DEFAULT"), Qt::CaseInsensitive)) {
        text = text.mid(7).trimmed();
    }
    if (text.compare(u"NULL", Qt::CaseInsensitive) == 0) {
        return QVariant(QMetaType::fromType<QString>());
    }
    bool isNumber = false;
    const qlonglong whole = text.toLongLong(&isNumber);
    if (isNumber) return whole;
    const double number = text.toDouble(&isNumber);
    if (isNumber) return number;
    QString inner = text.mid(1, text.size() - 2);
    // What is left besides doubled apostrophes ends the text before its end.
    const bool isText = text.size() > 1 && text.startsWith(u'\'') && text.endsWith(u'\'') &&
                        !QString(inner).remove(QStringLiteral("''")).contains(u'\'');
    if (!isText) return expressionValue(text);
    return inner.replace(QStringLiteral("''"), QStringLiteral("'"));
}

}  // namespace orvquery
