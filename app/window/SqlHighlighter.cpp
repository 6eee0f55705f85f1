// SPDX-License-Identifier: MIT
#include "window/SqlHighlighter.h"

#include "window/Contrast.h"

#include <QSet>

#include <algorithm>

namespace orvquery {

namespace {

// Laying out a line with tens of thousands of coloured ranges takes seconds.
constexpr qsizetype longestColouredLine = 10000;

const QSet<QString>& keywords() {
    static const QStringList words =
        QStringLiteral(
            "ALL AND ANY AS ASC BETWEEN BY CASE CAST COLLATE CROSS DESC DISTINCT ELSE END ESCAPE "
            "EXCEPT EXISTS FETCH FIRST FOR FROM FULL GROUP HAVING IN INNER INTERSECT IS JOIN LEFT "
            "LIKE LIMIT NATURAL NEXT NOT NULL OFFSET ON ONLY OR ORDER OUTER OVER PARTITION RIGHT "
            "ROWS SELECT THEN UNION USING VALUES WHEN WHERE WITH")
            .split(u' ');
    static const QSet<QString> set(words.begin(), words.end());
    return set;
}

bool isWordCharacter(QChar character) {
    return character.isLetterOrNumber() || character == u'_' || character == u'$';
}

}  // namespace

SqlHighlighter::SqlHighlighter(QTextDocument* document, const QColor& background)
    : QSyntaxHighlighter(document) {
    m_keyword.setFontWeight(QFont::DemiBold);
    chooseColours(background);
}

void SqlHighlighter::setBackground(const QColor& background) {
    chooseColours(background);
    rehighlight();
}

void SqlHighlighter::chooseColours(const QColor& background) {
    const bool isDark = background.lightness() < 128;
    const auto colour = [&](QRgb onDark, QRgb onLight) {
        return readableOn(background, QColor(isDark ? onDark : onLight));
    };
    m_keyword.setForeground(colour(0x8ab4f8, 0x1f4e8c));
    m_text.setForeground(colour(0xa5d6a7, 0x2e6b34));
    m_number.setForeground(colour(0xf0b37e, 0x9a4a00));
    m_comment.setForeground(colour(0x9aa0a6, 0x707780));
}

void SqlHighlighter::highlightBlock(const QString& text) {
    setCurrentBlockState(Plain);
    if (text.size() > longestColouredLine) return;
    qsizetype position = 0;
    const int before = previousBlockState();
    if (before == InComment || before == InText) {
        position = endOfSpan(text, 0, static_cast<State>(before));
    }
    while (position < text.size()) position = highlightAt(text, position);
}

// Colours up to the end of a comment or text that began on an earlier line or at `start`, and
// returns the position behind it; one without an end goes on on the next line.
qsizetype SqlHighlighter::endOfSpan(const QString& text, qsizetype start, State state) {
    const QString mark = state == InComment ? QStringLiteral("*/") : QStringLiteral("'");
    const bool opensHere = currentBlockState() == state;
    const qsizetype found = text.indexOf(mark, opensHere ? start + mark.size() : start);
    const qsizetype end = found < 0 ? text.size() : found + mark.size();
    setCurrentBlockState(found < 0 ? state : Plain);
    setFormat(int(start), int(end - start), state == InComment ? m_comment : m_text);
    return end;
}

qsizetype SqlHighlighter::highlightAt(const QString& text, qsizetype start) {
    const QStringView rest = QStringView(text).sliced(start);
    if (rest.startsWith(u"--")) {
        setFormat(int(start), int(rest.size()), m_comment);
        return text.size();
    }
    if (rest.startsWith(u"/*") || rest.front() == u'\'') {
        const State state = rest.front() == u'/' ? InComment : InText;
        setCurrentBlockState(state);
        return endOfSpan(text, start, state);
    }
    if (rest.front() == u'"') {
        const qsizetype close = text.indexOf(u'"', start + 1);
        return close < 0 ? text.size() : close + 1;
    }
    if (rest.front().isDigit()) return highlightNumber(text, start);
    return isWordCharacter(rest.front()) ? highlightWord(text, start) : start + 1;
}

qsizetype SqlHighlighter::highlightWord(const QString& text, qsizetype start) {
    qsizetype end = start;
    while (end < text.size() && isWordCharacter(text[end])) ++end;
    // Behind a full stop every word is a name.
    const bool isName = start > 0 && text[start - 1] == u'.';
    if (!isName && keywords().contains(text.mid(start, end - start).toUpper())) {
        setFormat(int(start), int(end - start), m_keyword);
    }
    return end;
}

qsizetype SqlHighlighter::highlightNumber(const QString& text, qsizetype start) {
    qsizetype end = start;
    while (end < text.size() && (isWordCharacter(text[end]) || text[end] == u'.')) ++end;
    setFormat(int(start), int(end - start), m_number);
    return end;
}

}  // namespace orvquery
