// SPDX-License-Identifier: MIT
#include "window/TextMarks.h"

#include <QHelpEvent>
#include <QPlainTextEdit>
#include <QStringList>
#include <QToolTip>

namespace orvquery {

namespace {

// With more of them the editor becomes slow.
constexpr std::size_t mostMarks = 5000;

}  // namespace

TextMarks::TextMarks(QPlainTextEdit* editor) : QObject(editor), m_editor(editor) {
    editor->viewport()->installEventFilter(this);
}

void TextMarks::setFindings(const orv::Findings& findings) {
    if (findings.empty() && m_findings.empty()) return;
    m_findings.clear();
    for (const orv::Finding& finding : findings) {
        if (m_findings.size() == mostMarks) break;
        m_findings.push_back({placeOf(finding.start, finding.length), finding.what});
    }
    show();
}

void TextMarks::setHits(const std::vector<int>& starts, int length) {
    if (starts.empty() && m_hits.empty()) return;
    m_hits.clear();
    for (const int start : starts) {
        if (m_hits.size() == mostMarks) break;
        m_hits.push_back(placeOf(start, length));
    }
    show();
}

// At least one character, or nothing would be seen.
QTextCursor TextMarks::placeOf(int start, int length) const {
    const int last = m_editor->document()->characterCount() - 1;
    const int begin = qBound(0, start, qMax(0, last - 1));
    QTextCursor place(m_editor->document());
    place.setPosition(begin);
    place.setPosition(qBound(begin, start + qMax(1, length), last), QTextCursor::KeepAnchor);
    return place;
}

void TextMarks::show() {
    const bool isDark = m_editor->palette().color(QPalette::Base).lightness() < 128;
    QTextCharFormat hit;
    hit.setBackground(isDark ? QColor(0x6b5900) : QColor(0xffe58f));
    QTextCharFormat wave;
    wave.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    wave.setUnderlineColor(isDark ? QColor(0xff8a80) : QColor(0xc62828));
    QList<QTextEdit::ExtraSelection> selections;
    for (const QTextCursor& place : m_hits) selections += {place, hit};
    for (const Mark& mark : m_findings) selections += {mark.place, wave};
    m_editor->setExtraSelections(selections);
}

QString TextMarks::tipAt(int position) const {
    QStringList tips;
    for (const Mark& mark : m_findings) {
        const bool isHere =
            position >= mark.place.selectionStart() && position <= mark.place.selectionEnd();
        if (isHere && !tips.contains(mark.tip)) tips += mark.tip;
    }
    return tips.join(u'\n');
}

bool TextMarks::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ToolTip || m_findings.empty()) {
        return QObject::eventFilter(watched, event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QTextCursor place = m_editor->cursorForPosition(help->pos());
    // Beside and below the text the nearest place is far away.
    const QRect reach = m_editor->cursorRect(place).adjusted(-20, 0, 20, 0);
    const QString tip = reach.contains(help->pos()) ? tipAt(place.position()) : QString();
    // Names in it are no markup.
    QToolTip::showText(help->globalPos(),
                       tip.isEmpty() ? QString()
                                     : QStringLiteral("<p style='white-space:pre-wrap'>") +
                                           tip.toHtmlEscaped() + QStringLiteral("</p>"),
                       m_editor->viewport());
    return true;
}

}  // namespace orvquery
