// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace orv {

/// Whether a loss of focus is an exit from an editor: one to a popup or to another window is none.
[[nodiscard]] inline bool isExit(Qt::FocusReason reason) {
    return reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason;
}

/// A menu bar that is used by keys gives the focus back to the widget that it took it from, and to
/// nobody when that was closed by the loss. A widget that closes so hands the focus on, until it is
/// opened again and has no focus proxy.
inline void handOnFocus(QWidget& closing, QWidget* heir, Qt::FocusReason reason) {
    if (reason == Qt::MenuBarFocusReason) closing.setFocusProxy(heir);
}

/// The life of an editor that is placed over what it edits: it is opened, and left once. The editor
/// has one as a member; its parent is what the focus goes back to.
class ORV_EXPORT InPlace {
public:
    /// `closePopup` closes what the editor has opened besides itself, when there is such a thing.
    explicit InPlace(QWidget& editor, std::function<void()> closePopup = {});

    /// Shows the editor where it lies and gives it the focus.
    void open();
    /// Hides the editor without an exit; its parent gets the focus when the editor has it.
    void discard();
    /// From now on the editor is left without an exit: its owner is dying.
    void disarm() { m_isOpen = false; }
    /// Whether the editor was opened and not left since.
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    /// Hides the editor and calls the handler, which may destroy the editor: nothing of it is to be
    /// touched behind the call. Nothing happens unless it is open.
    void leave(const std::function<void()>& handler);

private:
    QPointer<QWidget> m_editor;
    std::function<void()> m_closePopup;
    bool m_isOpen = false;
};

}  // namespace orv
