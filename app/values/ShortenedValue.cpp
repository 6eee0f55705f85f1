// SPDX-License-Identifier: MIT
#include "values/ShortenedValue.h"

#include <QByteArray>
#include <QString>

namespace orvquery {

namespace {

// Enough to recognise the value.
constexpr qsizetype keptBytes = 4096;
constexpr qsizetype keptCharacters = keptBytes / qsizetype(sizeof(QChar));

// What an allocation takes beside its content.
constexpr qsizetype allocationBytes = 32;

QString beginningOf(const QString& text, qsizetype characters) {
    const bool isWithinPair =
        characters < text.size() && characters > 0 && text[characters - 1].isHighSurrogate();
    return text.left(isWithinPair ? characters - 1 : characters);
}

qsizetype contentBytes(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::QString:
        return static_cast<const QString*>(value.constData())->size() * qsizetype(sizeof(QChar));
    case QMetaType::QByteArray: return static_cast<const QByteArray*>(value.constData())->size();
    default: return 0;
    }
}

}  // namespace

QVariant shortened(const QVariant& value, qsizetype mostBytes) {
    if (contentBytes(value) <= mostBytes) return value;
    if (value.metaType().id() == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        return QVariant::fromValue(
            ShortenedValue{bytes.left(qMin(mostBytes, keptBytes)), bytes.size()});
    }
    const QString text = value.toString();
    const qsizetype most = qMin(mostBytes / qsizetype(sizeof(QChar)), keptCharacters);
    return QVariant::fromValue(ShortenedValue{beginningOf(text, most), text.size()});
}

bool isShortened(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<ShortenedValue>();
}

qsizetype bytesOf(const QVariant& value) {
    const qsizetype own = sizeof(QVariant);
    if (isShortened(value)) {
        return own + allocationBytes + bytesOf(value.value<ShortenedValue>().beginning);
    }
    const qsizetype content = contentBytes(value);
    return content == 0 ? own : own + allocationBytes + content;
}

}  // namespace orvquery
