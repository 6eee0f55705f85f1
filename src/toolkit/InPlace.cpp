// SPDX-License-Identifier: MIT
#include "toolkit/InPlace.h"

#include "toolkit/Services.h"

namespace orv {

InPlace::InPlace(QWidget& editor, std::function<void()> closePopup)
    : m_editor(&editor), m_closePopup(std::move(closePopup)) {
    editor.hide();
}

void InPlace::open() {
    m_isOpen = true;
    m_editor->setFocusProxy(nullptr);
    m_editor->show();
    m_editor->setFocus();
}

// The focus goes first: hiding a focused widget would hand it to the next one of the tab chain. It
// tells others, who may destroy the editor and this with it.
void InPlace::discard() {
    m_isOpen = false;
    const QPointer<QWidget> editor = m_editor;
    if (m_closePopup) m_closePopup();
    if (editor && editor->hasFocus() && editor->parentWidget()) editor->parentWidget()->setFocus();
    if (editor) editor->hide();
}

void InPlace::leave(const std::function<void()>& handler) {
    if (!m_isOpen) return;
    const std::function<void()> copy = handler;
    const QPointer<QWidget> editor = m_editor;
    discard();
    if (editor && copy) guarded(copy);
}

}  // namespace orv
