// SPDX-License-Identifier: MIT
#include "database/ColumnTypes.h"

#include <QHash>

#include <array>
#include <utility>

namespace orvquery {

namespace {

const QHash<QString, TFieldType>& knownTypes() {
    static const QHash<QString, TFieldType> types = {
        {QStringLiteral("INT"), ftInteger},
        {QStringLiteral("INTEGER"), ftInteger},
        {QStringLiteral("SMALLINT"), ftSmallint},
        {QStringLiteral("TINYINT"), ftSmallint},
        {QStringLiteral("INT2"), ftSmallint},
        {QStringLiteral("BIGINT"), ftLargeint},
        {QStringLiteral("INT8"), ftLargeint},
        {QStringLiteral("UNSIGNED BIG INT"), ftLargeint},
        {QStringLiteral("BOOL"), ftBoolean},
        {QStringLiteral("BOOLEAN"), ftBoolean},
        {QStringLiteral("BIT"), ftBoolean},
        {QStringLiteral("DEC"), ftFloat},
        {QStringLiteral("DECIMAL"), ftFloat},
        {QStringLiteral("NUM"), ftFloat},
        {QStringLiteral("NUMBER"), ftFloat},
        {QStringLiteral("NUMERIC"), ftFloat},
        {QStringLiteral("MONEY"), ftCurrency},
        {QStringLiteral("SMALLMONEY"), ftCurrency},
        {QStringLiteral("CURRENCY"), ftCurrency},
        {QStringLiteral("DATE"), ftDate},
        {QStringLiteral("TIME"), ftTime},
        {QStringLiteral("CHAR"), ftFixedChar},
        {QStringLiteral("CHARACTER"), ftFixedChar},
        {QStringLiteral("NCHAR"), ftFixedChar},
        {QStringLiteral("CLOB"), ftMemo},
        {QStringLiteral("MEMO"), ftMemo},
        {QStringLiteral("NVARCHAR"), ftWideString},
        {QStringLiteral("BINARY"), ftBytes},
        {QStringLiteral("VARBINARY"), ftVarBytes},
        {QStringLiteral("IMAGE"), ftBlob},
    };
    return types;
}

// In the order of SQLite's own rules for what a column prefers to hold, with times before them.
constexpr std::array<std::pair<const char*, TFieldType>, 9> typesByPart = {{
    {"DATETIME", ftDateTime},
    {"TIMESTAMP", ftDateTime},
    {"INT", ftInteger},
    {"CHAR", ftString},
    {"CLOB", ftMemo},
    {"BLOB", ftBlob},
    {"REAL", ftFloat},
    {"FLOA", ftFloat},
    {"DOUB", ftFloat},
}};

// "  decimal ( 10, 2 ) " gives "DECIMAL".
QString bareType(const QString& declaredType) {
    return declaredType.section(u'(', 0, 0).simplified().toUpper();
}

}  // namespace

TFieldType fieldTypeOfDeclaration(const QString& declaredType) {
    const QString type = bareType(declaredType);
    const auto known = knownTypes().constFind(type);
    if (known != knownTypes().cend()) return *known;
    for (const auto& [part, fieldType] : typesByPart) {
        if (type.contains(QLatin1String(part))) return fieldType;
    }
    return ftString;
}

}  // namespace orvquery
