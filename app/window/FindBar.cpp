// SPDX-License-Identifier: MIT
#include "window/FindBar.h"

#include "window/TextMarks.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QToolButton>

#include <algorithm>

namespace orvquery {

FindBar::FindBar(QPlainTextEdit* editor, TextMarks* marks, QWidget* pane)
    : QWidget(pane),
      m_editor(editor),
      m_marks(marks),
      m_text(new QLineEdit(this)),
      m_count(new QLabel(this)),
      m_find(makeAction(tr("&Find in statement"), QKeySequence::Find, pane, &FindBar::open)),
      m_next(makeAction(tr("Find &next"), QKeySequence(Qt::Key_F3), pane, &FindBar::findNext)),
      m_previous(makeAction(tr("Find pre&vious"), QKeySequence(QStringLiteral("Shift+F3")), pane,
                            &FindBar::findPrevious)) {
    buildBar();
    editor->installEventFilter(this);
    connect(m_text, &QLineEdit::textEdited, this, &FindBar::textTyped);
    connect(editor, &QPlainTextEdit::textChanged, this, &FindBar::searchAgain);
    connect(editor, &QPlainTextEdit::selectionChanged, this, &FindBar::showCount);
    hide();
}

// The keys may mean something else elsewhere in the window.
QAction* FindBar::makeAction(const QString& text, const QKeySequence& shortcut, QWidget* pane,
                             void (FindBar::*slot)()) {
    auto* action = new QAction(text, this);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    pane->addAction(action);
    connect(action, &QAction::triggered, this, slot);
    return action;
}

void FindBar::buildBar() {
    m_text->setObjectName(QStringLiteral("findText"));
    m_text->setPlaceholderText(tr("Find"));
    m_text->setAccessibleName(tr("Find in statement"));
    m_text->setClearButtonEnabled(true);
    m_count->setObjectName(QStringLiteral("findCount"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_count);
    const auto addButton = [&](Qt::ArrowType arrow, const QString& name, const QString& tip,
                               void (FindBar::*slot)()) {
        auto* button = new QToolButton(this);
        button->setObjectName(name);
        button->setArrowType(arrow);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        layout->addWidget(button);
        connect(button, &QToolButton::clicked, this, slot);
        return button;
    };
    addButton(Qt::UpArrow, QStringLiteral("findPrevious"), tr("Find previous (Shift+F3)"),
              &FindBar::findPrevious);
    addButton(Qt::DownArrow, QStringLiteral("findNext"), tr("Find next (F3)"), &FindBar::findNext);
    auto* closing =
        addButton(Qt::NoArrow, QStringLiteral("findClose"), tr("Close (Escape)"), &FindBar::leave);
    closing->setText(QStringLiteral("\u00d7"));
}

// With what is selected, as long as that is a part of one line.
void FindBar::open() {
    const QTextCursor cursor = m_editor->textCursor();
    const QString selected = cursor.selectedText();
    const bool isPart = !selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator);
    if (isPart && !m_text->hasFocus()) m_text->setText(selected);
    m_from = cursor.selectionStart();
    show();
    m_text->setFocus();
    m_text->selectAll();
    searchAgain();
}

void FindBar::leave() {
    const bool hadFocus = isAncestorOf(focusWidget()) || m_text->hasFocus();
    hide();
    searchAgain();
    if (hadFocus) m_editor->setFocus();
}

void FindBar::textTyped() {
    searchAgain();
    const auto hit = std::lower_bound(m_hits.begin(), m_hits.end(), m_from);
    if (!m_hits.empty()) select(hit == m_hits.end() ? 0 : std::size_t(hit - m_hits.begin()));
    showCount();
}

void FindBar::searchAgain() {
    m_hits.clear();
    const QString wanted = m_text->text();
    if (isVisibleTo(parentWidget()) && !wanted.isEmpty()) {
        // Each character at its place, also no-break spaces, which toPlainText() changes.
        const QString text = m_editor->document()->toRawText();
        for (qsizetype at = text.indexOf(wanted, 0, Qt::CaseInsensitive); at >= 0;
             at = text.indexOf(wanted, at + wanted.size(), Qt::CaseInsensitive)) {
            m_hits.push_back(int(at));
        }
    }
    m_marks->setHits(m_hits, int(wanted.size()));
    showCount();
}

void FindBar::findNext() {
    step(Direction::Forwards);
}

void FindBar::findPrevious() {
    step(Direction::Backwards);
}

// Round and round.
void FindBar::step(Direction direction) {
    if (m_text->text().isEmpty()) return open();
    if (!isVisible()) {
        show();
        searchAgain();
    }
    if (m_hits.empty()) return;
    const int start = m_editor->textCursor().selectionStart();
    const bool isOnHit = m_editor->textCursor().hasSelection();
    if (direction == Direction::Forwards) {
        const auto next = isOnHit ? std::upper_bound(m_hits.begin(), m_hits.end(), start)
                                  : std::lower_bound(m_hits.begin(), m_hits.end(), start);
        return select(next == m_hits.end() ? 0 : std::size_t(next - m_hits.begin()));
    }
    const auto here = std::lower_bound(m_hits.begin(), m_hits.end(), start);
    const auto index = std::size_t(here - m_hits.begin());
    select(index == 0 ? m_hits.size() - 1 : index - 1);
}

void FindBar::select(std::size_t hit) {
    QTextCursor cursor(m_editor->document());
    cursor.setPosition(m_hits[hit]);
    cursor.setPosition(m_hits[hit] + int(m_text->text().size()), QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
    m_editor->ensureCursorVisible();
    m_from = m_hits[hit];
}

void FindBar::showCount() {
    if (m_text->text().isEmpty()) return m_count->clear();
    if (m_hits.empty()) return m_count->setText(tr("Not found"));
    const QTextCursor cursor = m_editor->textCursor();
    const auto hit = std::lower_bound(m_hits.begin(), m_hits.end(), cursor.selectionStart());
    const bool isSelected = hit != m_hits.end() && *hit == cursor.selectionStart() &&
                            cursor.selectionEnd() == *hit + int(m_text->text().size());
    m_count->setText(isSelected ? tr("%1 of %2").arg(hit - m_hits.begin() + 1).arg(m_hits.size())
                     : m_hits.size() == 1 ? tr("1 hit")
                                          : tr("%1 hits").arg(m_hits.size()));
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (event->key() == Qt::Key_Escape && modifiers == Qt::NoModifier) {
        leave();
    } else if (isEnter && modifiers == Qt::NoModifier) {
        findNext();
    } else if (isEnter && modifiers == Qt::ShiftModifier) {
        findPrevious();
    } else {
        QWidget::keyPressEvent(event);
    }
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && isVisible() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        leave();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace orvquery
