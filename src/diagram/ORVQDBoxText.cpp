// SPDX-License-Identifier: MIT
#include "diagram/ORVQDBoxText.h"

#include "toolkit/Glyph.h"

#include <QFontMetrics>
#include <QPainter>

namespace orv {

namespace {

QString fittingText(const QString& text, const QFontMetrics& metrics, int width) {
    qsizetype fits = 0;
    qsizetype tooMuch = text.size() + 1;
    while (tooMuch - fits > 1) {
        const qsizetype middle = fits + (tooMuch - fits) / 2;
        (metrics.horizontalAdvance(text, int(middle)) <= width ? fits : tooMuch) = middle;
    }
    return text.left(fits);
}

}  // namespace

void BoxFonts::follow(const QFont& font) {
    if (m_isMade && m_source == font) return;
    m_isMade = true;
    m_source = regular = bold = font;
    regular.setBold(false);
    bold.setBold(true);
    regularHeight = QFontMetrics(regular).height();
    boldHeight = QFontMetrics(bold).height();
}

void TextLine::setText(const QString& text) {
    QString line = text;
    for (QChar& letter : line) {
        if (letter == u'\n' || letter == u'\r' || letter == QChar::LineSeparator ||
            letter == QChar::ParagraphSeparator) {
            letter = u' ';
        }
    }
    m_text.setTextFormat(Qt::PlainText);
    m_text.setText(line);
}

void TextLine::draw(QPainter& painter, const QRect& rect, int lineHeight) const {
    const int top = rect.top() + (rect.height() - lineHeight) / 2;
    if (!paintsVectors(painter)) {
        painter.drawStaticText(rect.left(), top, m_text);
        return;
    }
    const QFontMetrics metrics = painter.fontMetrics();
    painter.drawText(rect.left(), top + metrics.ascent(),
                     fittingText(m_text.text(), metrics, rect.width()));
}

}  // namespace orv
