// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <Qt>

namespace orv {

/// The unit step of an arrow key; null for any other key.
[[nodiscard]] inline QPoint arrowOf(int key) {
    switch (key) {
    case Qt::Key_Left: return {-1, 0};
    case Qt::Key_Right: return {1, 0};
    case Qt::Key_Up: return {0, -1};
    case Qt::Key_Down: return {0, 1};
    default: return {};
    }
}

/// Whether it is one of the two keys that people call Enter.
[[nodiscard]] inline bool isEnter(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace orv
