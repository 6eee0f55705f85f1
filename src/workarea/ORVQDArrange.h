// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QPoint>
#include <QSize>

#include <utility>
#include <vector>

namespace orv {

/// A join between two boxes, by their indices.
using ArrangeJoin = std::pair<int, int>;

/// Where the left top corners of boxes of these sizes go so that the joins between them can be
/// followed: what joins connect stands in columns from left to right, neighbours in neighbouring
/// columns, and in such an order that few lines cross; boxes without a join follow below. Nothing
/// overlaps, columns have room for lines between them, and the whole is about as broad as a window
/// and begins at 20,20.
///
/// Boxes and joins come in the order of their creation, which decides wherever nothing else does:
/// equal input gives equal places. Joins may form circles, repeat each other, or join a box with
/// itself. Costs about n log n, for n boxes and joins.
[[nodiscard]] ORV_EXPORT std::vector<QPoint> arrange(const std::vector<QSize>& boxes,
                                                     const std::vector<ArrangeJoin>& joins);

}  // namespace orv
