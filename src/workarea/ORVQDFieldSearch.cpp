// SPDX-License-Identifier: MIT
#include "workarea/ORVQDFieldSearch.h"

#include "toolkit/InPlace.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QKeyEvent>

TEditEx::TEditEx(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setAccessibleName(tr("Search a field"));
    hide();
    connect(this, &QLineEdit::textEdited, this, &TEditEx::_FindFieldChange);
}

void TEditEx::open(TorvQDTable* table, const QString& text) {
    m_table = table;
    setText(text);
    setFocusProxy(nullptr);
    show();
    raise();
    const QPointer<TEditEx> self(this);
    setFocus();
    if (self) _FindFieldChange();
}

// The focus goes first: hiding a focused widget would hand it to the next one of the tab chain.
void TEditEx::close() {
    m_table.clear();
    if (hasFocus() && parentWidget()) parentWidget()->setFocus();
    hide();
}

void TEditEx::find(int& key) {
    orv::guarded([&] {
        if (m_table) m_table->_FindField(text(), key);
    });
}

void TEditEx::_FindFieldChange() {
    int key = 0;
    find(key);
}

// Its keys are its own, also where the window has shortcuts on them.
bool TEditEx::event(QEvent* event) {
    const bool isKey = event->type() == QEvent::ShortcutOverride;
    const auto* key = isKey ? static_cast<QKeyEvent*>(event) : nullptr;
    if (key && !(key->modifiers() & ~Qt::KeypadModifier)) {
        switch (key->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Escape:
        case Qt::Key_Up:
        case Qt::Key_Down: event->accept(); return true;
        default: break;
        }
    }
    return QLineEdit::event(event);
}

void TEditEx::keyPressEvent(QKeyEvent* event) {
    int key = event->key();
    if (orv::isEnter(key) || key == Qt::Key_Escape) return close();
    if (key == Qt::Key_Up || key == Qt::Key_Down) return find(key);
    QLineEdit::keyPressEvent(event);
}

void TEditEx::_FindFieldKillFocus() {
    close();
}

void TEditEx::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (!orv::isExit(event->reason())) return;
    orv::handOnFocus(*this, parentWidget(), event->reason());
    _FindFieldKillFocus();
}
