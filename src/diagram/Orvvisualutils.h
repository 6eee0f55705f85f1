// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QImage>
#include <QPoint>

#include <vector>

namespace orv {

/// The first segment (from point i to point i + 1) of a polyline that the point is near, -1 when it
/// is near none. Near a vertical or horizontal segment is at most `tolerance` beside it and not
/// beyond its ends; near any other one is a point of the segment whose horizontal and vertical
/// distances add up to at most `tolerance`. All points in one space, in pixels.
[[nodiscard]] ORV_EXPORT int IsPointNearLine(const std::vector<QPoint>& points, const QPoint& point,
                                             double tolerance);

/// Copies a rectangle of `src` onto `dst`, except where the mask is white: there the destination
/// stays. Pixels outside either image are left out. Always true.
ORV_EXPORT bool TransparentBlt(QImage& dst, int dstX, int dstY, int width, int height,
                               const QImage& src, int srcX, int srcY, const QImage& mask, int maskX,
                               int maskY);

}  // namespace orv
