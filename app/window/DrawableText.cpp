// SPDX-License-Identifier: MIT
#include "window/DrawableText.h"

#include <algorithm>

namespace orvquery {

namespace {

constexpr QChar lineFeed(0x240a);
constexpr QChar carriageReturn(0x240d);
constexpr QChar arrow(0x21b5);

bool isPicture(QChar character) {
    return character >= QChar(0x2400) && character <= QChar(0x2421);
}

}  // namespace

QString drawableText(QString text, const std::function<bool(QChar)>& isInFont) {
    if (std::none_of(text.cbegin(), text.cend(), isPicture)) return text;
    const QString lineBreak = isInFont(arrow) ? QString(arrow) : QStringLiteral(" / ");
    text.replace(QString(carriageReturn) + lineFeed, QString(lineFeed));
    QString result;
    for (const QChar character : text) {
        if (character == lineFeed || character == carriageReturn) {
            result += lineBreak;
        } else {
            result += isPicture(character) && !isInFont(character) ? QChar(u' ') : character;
        }
    }
    return result;
}

}  // namespace orvquery
