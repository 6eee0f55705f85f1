// SPDX-License-Identifier: MIT
#include "toolkit/ExitEdit.h"

#include "toolkit/Keys.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace orv {

ExitEdit::ExitEdit(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
}

void ExitEdit::open(const QString& text) {
    setText(text);
    selectAll();
    m_place.open();
}

// Its keys are its own, also where the window has shortcuts on them.
bool ExitEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* pressed = static_cast<QKeyEvent*>(event);
        const bool isPlain = !(pressed->modifiers() & ~Qt::KeypadModifier);
        if (isPlain && (isEnter(pressed->key()) || pressed->key() == Qt::Key_Escape)) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void ExitEdit::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event->key())) {
        m_place.leave(committed);
    } else if (event->key() == Qt::Key_Escape) {
        m_place.leave(dropped);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void ExitEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (!isExit(event->reason())) return;
    handOnFocus(*this, parentWidget(), event->reason());
    m_place.leave(committed);
}

}  // namespace orv
