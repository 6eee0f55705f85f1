// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldEdit.h"

#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int marginPx = 1;

}  // namespace

TMemoEx::TMemoEx(QWidget* parent) : QPlainTextEdit(parent) {
    QFont arial = font();
    arial.setFamily(QStringLiteral("Arial"));
    setFont(arial);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    document()->setDocumentMargin(marginPx);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(true);
    setBackgroundRole(QPalette::Base);  // also around its lines
    setAutoFillBackground(true);
    setToolTip(tr("Press Shift+Enter to insert field"));
    setAccessibleName(tr("Text of the condition"));
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (isOpen()) call(changed);
    });
}

void TMemoEx::open(const QString& text) {
    m_place.disarm();
    setPlainText(text);
    selectAll();
    m_textAtOpening = this->text();
    m_place.open();
}

// The plain text of the base class has blanks for non-breaking ones.
QString TMemoEx::text() const {
    return document()->toRawText().replace(QChar(QChar::ParagraphSeparator),
                                           QStringLiteral("\r\n"));
}

void TMemoEx::replaceSelection(const QString& text) {
    textCursor().insertText(text);
    ensureCursorVisible();
}

// The size of the document would be no smaller than the view.
QSize TMemoEx::textSize() const {
    qreal width = 0;
    qreal height = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        height += blockBoundingRect(block).height();  // lays the line out
        width = std::max(width, block.layout()->lineAt(0).naturalTextWidth());
    }
    return {int(std::ceil(width)) + 2 * marginPx + cursorWidth(),
            viewportMargins().top() + int(std::ceil(height)) + 2 * marginPx};
}

void TMemoEx::setFirstLineHeight(int pixels) {
    const int line = fontMetrics().height() + 2 * marginPx;
    const QMargins margins(0, std::max(0, (pixels - line) / 2), 0, 0);
    if (margins != viewportMargins()) setViewportMargins(margins);
}

void TMemoEx::call(const std::function<void()>& handler) {
    const std::function<void()> copy = handler;
    if (copy) orv::guarded(copy);
}

// Its keys are its own, also where the window has shortcuts on them.
bool TMemoEx::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& pressed = static_cast<QKeyEvent&>(*event);
        const bool isPlain = !(pressed.modifiers() & ~Qt::KeypadModifier);
        if (orv::isEnter(pressed.key()) || (isPlain && pressed.key() == Qt::Key_Escape)) {
            event->accept();
            return true;
        }
    }
    return QPlainTextEdit::event(event);
}

void TMemoEx::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (isSwallowed(*event) || keyDown(*event)) return;
    QPlainTextEdit::keyPressEvent(event);
}

// Line breaks as characters come with keys such as Ctrl+M.
bool TMemoEx::isSwallowed(const QKeyEvent& event) {
    return !orv::isEnter(event.key()) && (event.text() == u"\r" || event.text() == u"\n");
}

bool TMemoEx::keyDown(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Escape) {
        m_place.leave(dropped);
    } else if (!orv::isEnter(event.key())) {
        return false;
    } else if (!modifiers) {
        m_place.leave(committed);
    } else if (modifiers == Qt::ShiftModifier) {
        call(insertField);
    } else {
        replaceSelection(QStringLiteral("\n"));
    }
    return true;
}

void TMemoEx::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (!orv::isExit(reason)) return;
    QWidget* newFocus = QApplication::focusWidget();
    const bool isCompanion =
        m_companion && newFocus && (m_companion == newFocus || m_companion->isAncestorOf(newFocus));
    if (isCompanion) return;
    orv::handOnFocus(*this, parentWidget(), reason);
    const auto handler = exited;
    const QPointer<QWidget> there(newFocus == this ? nullptr : newFocus);
    m_place.leave([handler, reason, there] {
        if (handler) handler(reason, there);
    });
}

void TMemoEx::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createStandardContextMenu(event->pos());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* insert = new QAction(tr("InsertField"), menu);
    connect(insert, &QAction::triggered, this, [this] { call(insertField); });
    QAction* first = menu->actions().value(0);
    menu->insertAction(first, insert);
    menu->insertSeparator(first);
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QPoint caret = viewport()->mapToGlobal(cursorRect().bottomLeft());
    menu->popup(isByKey ? caret : event->globalPos());
    event->accept();
}

// As long as it is as large as its text, what lies below scrolls.
void TMemoEx::wheelEvent(QWheelEvent* event) {
    const bool isHigher = verticalScrollBar()->maximum() > 0;
    isHigher ? QPlainTextEdit::wheelEvent(event) : event->ignore();
}
