// SPDX-License-Identifier: MIT
#include "toolkit/Edges.h"

#include <QPainter>
#include <QPalette>
#include <QRect>

namespace orv {

namespace {

// The right and bottom sides own the corners that they share with the others. Sides are filled, not
// drawn as lines, so that they lie on whole pixels at every scale.
void drawRing(QPainter& painter, const QRect& rect, const QColor& leftTop,
              const QColor& rightBottom) {
    if (rect.width() < 2 || rect.height() < 2) return;
    painter.fillRect(rect.left(), rect.top(), rect.width() - 1, 1, leftTop);
    painter.fillRect(rect.left(), rect.top(), 1, rect.height() - 1, leftTop);
    painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1, rightBottom);
    painter.fillRect(rect.right(), rect.top(), 1, rect.height(), rightBottom);
}

}  // namespace

void drawBevel(QPainter& painter, const QRect& rect, const QPalette& palette, Bevel bevel,
               bool isFlat) {
    if (isFlat) {
        const QColor mid = palette.color(QPalette::Mid);
        drawRing(painter, rect, mid, mid);
        return;
    }
    const QColor light = palette.color(QPalette::Light);
    const QColor midlight = palette.color(QPalette::Midlight);
    const QColor dark = palette.color(QPalette::Dark);
    const QColor shadow = palette.color(QPalette::Shadow);
    if (bevel == Bevel::Bump || bevel == Bevel::Raised) {
        drawRing(painter, rect, midlight, shadow);
    } else {
        drawRing(painter, rect, dark, light);
    }
    const QRect inner = rect.adjusted(1, 1, -1, -1);
    if (bevel == Bevel::Etched || bevel == Bevel::Raised) {
        drawRing(painter, inner, light, dark);
    } else {
        drawRing(painter, inner, shadow, midlight);
    }
}

}  // namespace orv
