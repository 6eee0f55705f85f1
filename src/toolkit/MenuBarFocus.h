// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace orv {

/// A menu bar that is used by keys gives the focus back to the widget that it took it from, and to
/// nobody when that was closed by the loss. A widget that closes so hands the focus on, until it is
/// opened again and has no focus proxy.
inline void handOnFocus(QWidget& closing, QWidget* heir, Qt::FocusReason reason) {
    if (reason == Qt::MenuBarFocusReason) closing.setFocusProxy(heir);
}

}  // namespace orv
