// SPDX-License-Identifier: MIT
#include "values/ExactNumber.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace orvquery {

namespace {

// As many digits as a number of double precision holds in any case.
constexpr qsizetype mostDigits = 15;

void registerConverters() {
    static const bool isDone =
        QMetaType::registerConverter<ExactNumber, QString>(
            [](const ExactNumber& number) { return number.digits; }) &&
        QMetaType::registerConverter<ExactNumber, double>(
            [](const ExactNumber& number) { return number.digits.toDouble(); });
    Q_ASSERT(isDone);
}

// Servers fill the scale of a result with zeros.
QString withoutLastZeros(const QString& number) {
    if (!number.contains(u'.')) return number;
    qsizetype size = number.size();
    while (number[size - 1] == u'0') --size;
    if (number[size - 1] == u'.') --size;
    return number.left(size);
}

qsizetype digitCount(const QString& number) {
    qsizetype digits = 0;
    for (const QChar character : number) {
        if (character.isDigit() && (digits > 0 || character != u'0')) ++digits;
    }
    return digits;
}

QVariant numberOfName(const QString& text) {
    if (text == u"NaN") return std::numeric_limits<double>::quiet_NaN();
    if (text == u"Infinity") return std::numeric_limits<double>::infinity();
    if (text == u"-Infinity") return -std::numeric_limits<double>::infinity();
    return text;
}

}  // namespace

QVariant decimalValue(const QString& text) {
    static const QRegularExpression decimal(QStringLiteral("^-?[0-9]+(\\.[0-9]+)?$"));
    if (!decimal.match(text).hasMatch()) return numberOfName(text);
    if (digitCount(withoutLastZeros(text)) <= mostDigits) return text.toDouble();
    // Larger ones are of no use as numbers anywhere.
    if (!std::isfinite(text.toDouble())) return text;
    registerConverters();
    return QVariant::fromValue(ExactNumber{text});
}

bool isExactNumber(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<ExactNumber>();
}

}  // namespace orvquery
