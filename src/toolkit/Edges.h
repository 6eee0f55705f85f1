// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QtGlobal>

class QPainter;
class QPalette;
class QRect;

namespace orv {

/// The kinds of border made of two rings, each raised or sunken.
enum class Bevel : quint8 {
    Bump,    ///< the outer ring raised, the inner one sunken
    Etched,  ///< the outer ring sunken, the inner one raised
    Raised,  ///< both raised
    Sunken   ///< both sunken
};

/// Draws a border two pixels wide along the inside of the rectangle, in the colours of the palette;
/// a flat one is a single ring of one colour, one pixel wide. The inside stays as it is.
ORV_EXPORT void drawBevel(QPainter& painter, const QRect& rect, const QPalette& palette,
                          Bevel bevel, bool isFlat);

}  // namespace orv
