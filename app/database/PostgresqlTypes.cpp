// SPDX-License-Identifier: MIT
#include "database/PostgresqlTypes.h"

#include "database/FirebirdTypes.h"

#include <QHash>
#include <QRegularExpression>

namespace orvquery {

TFieldType fieldTypeOfPostgresql(const QString& typeName, const QString& category) {
    static const QHash<QString, TFieldType> types = {
        {QStringLiteral("int2"), ftSmallint},      {QStringLiteral("int4"), ftInteger},
        {QStringLiteral("int8"), ftLargeint},      {QStringLiteral("oid"), ftLargeint},
        {QStringLiteral("float4"), ftFloat},       {QStringLiteral("float8"), ftFloat},
        {QStringLiteral("numeric"), ftFloat},      {QStringLiteral("money"), ftString},
        {QStringLiteral("bool"), ftBoolean},       {QStringLiteral("date"), ftDate},
        {QStringLiteral("time"), ftTime},          {QStringLiteral("timetz"), ftTime},
        {QStringLiteral("timestamp"), ftDateTime}, {QStringLiteral("timestamptz"), ftDateTime},
        {QStringLiteral("bpchar"), ftFixedChar},   {QStringLiteral("bytea"), ftBlob},
        {QStringLiteral("json"), ftMemo},          {QStringLiteral("jsonb"), ftMemo},
        {QStringLiteral("xml"), ftMemo},
    };
    const auto known = types.constFind(typeName);
    if (known != types.cend()) return *known;
    if (category == u"B") return ftBoolean;
    if (category == u"D") return ftDateTime;
    return ftString;
}

// A literal has its type behind it, which the parameter has anyway; numbers below zero are texts
// there.
QVariant postgresqlDefault(const QString& source) {
    static const QRegularExpression typed(
        QStringLiteral("^('(?:[^']|'')*'|NULL)::[\\w\\s.\"()\\[\\],]+$"));
    static const QRegularExpression number(QStringLiteral(
        "^'(-?[\\d.]+)'::(?:smallint|integer|bigint|numeric|real|double precision)"));
    if (const auto match = number.match(source); match.hasMatch()) {
        return firebirdDefault(match.captured(1));
    }
    const QRegularExpressionMatch match = typed.match(source);
    return firebirdDefault(match.hasMatch() ? match.captured(1) : source);
}

}  // namespace orvquery
