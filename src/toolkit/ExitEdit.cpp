// SPDX-License-Identifier: MIT
#include "toolkit/ExitEdit.h"

#include "toolkit/MenuBarFocus.h"
#include "toolkit/Services.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPointer>

namespace orv {

ExitEdit::ExitEdit(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    hide();
}

void ExitEdit::open(const QString& text) {
    setText(text);
    selectAll();
    m_open = true;
    setFocusProxy(nullptr);
    show();
    setFocus();
}

// The focus goes first: hiding a focused widget would hand it to the next one of the tab chain.
void ExitEdit::discard() {
    m_open = false;
    const QPointer<ExitEdit> self(this);
    if (hasFocus() && parentWidget()) parentWidget()->setFocus();
    if (self) hide();
}

void ExitEdit::leave(const std::function<void()>& handler) {
    if (!m_open) return;
    const std::function<void()> copy = handler;
    const QPointer<ExitEdit> self(this);
    discard();
    if (self && copy) guarded(copy);
}

// Its keys are its own, also where the window has shortcuts on them.
bool ExitEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* pressed = static_cast<QKeyEvent*>(event);
        const int key = pressed->key();
        const bool isPlain = !(pressed->modifiers() & ~Qt::KeypadModifier);
        const bool isExit = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape;
        if (isPlain && isExit) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void ExitEdit::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        leave(committed);
    } else if (event->key() == Qt::Key_Escape) {
        leave(dropped);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void ExitEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason) {
        return;
    }
    handOnFocus(*this, parentWidget(), event->reason());
    leave(committed);
}

}  // namespace orv
