// SPDX-License-Identifier: MIT
#include "values/ValueText.h"

#include "values/ExactNumber.h"
#include "values/ShortenedValue.h"

#include <cmath>

namespace orvquery {

namespace {

// Enough for every decimal number that was once written with so many; sums look as expected.
constexpr int shownDigits = 15;
// Enough to tell any two numbers of double precision apart.
constexpr int exactDigits = 17;

bool isFraction(const QVariant& value) {
    const int type = value.metaType().id();
    return type == QMetaType::Double || type == QMetaType::Float;
}

QString exactNumber(double number) {
    QString text = QString::number(number, 'g', shownDigits);
    if (text.toDouble() == number || std::isnan(number)) return text;
    return QString::number(number, 'g', exactDigits);
}

// The pictures of U+0000 to U+001F start at U+2400.
QString withPictures(QString text) {
    for (QChar& character : text) {
        if (character < u' ') character = QChar(0x2400 + character.unicode());
        if (character == QChar(0x7f)) character = QChar(0x2421);
    }
    return text;
}

// Databases have types of their own, which drivers may hand over as anything.
QString plainText(const QVariant& value) {
    if (value.canConvert<QString>()) return value.toString();
    return QStringLiteral("(a value of the type %1)").arg(QLatin1String(value.metaType().name()));
}

}  // namespace

bool isNumber(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong: return !value.isNull();
    default: return isExactNumber(value) || (isFraction(value) && !value.isNull());
    }
}

QString shownText(const QVariant& value) {
    if (value.isNull()) return QStringLiteral("NULL");
    if (isFraction(value)) return QString::number(value.toDouble(), 'g', shownDigits);
    if (value.metaType().id() == QMetaType::QByteArray) {
        const qsizetype size = value.toByteArray().size();
        return size == 1 ? QStringLiteral("(1 byte)") : QStringLiteral("(%1 bytes)").arg(size);
    }
    if (isShortened(value)) {
        const auto part = value.value<ShortenedValue>();
        if (part.beginning.metaType().id() == QMetaType::QByteArray) {
            return QStringLiteral("(%1 bytes)").arg(part.size);
        }
        return shownText(part.beginning) + QChar(0x2026);
    }
    return withPictures(plainText(value));
}

QString exactText(const QVariant& value) {
    if (value.isNull()) return {};
    if (isFraction(value)) return exactNumber(value.toDouble());
    if (value.metaType().id() == QMetaType::QByteArray) {
        return QString::fromLatin1(value.toByteArray().toHex());
    }
    if (isShortened(value)) return exactText(value.value<ShortenedValue>().beginning);
    return plainText(value);
}

}  // namespace orvquery
