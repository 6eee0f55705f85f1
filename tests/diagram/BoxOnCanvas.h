// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/ORVQDFloatTable.h"
#include "support/FakeCanvas.h"

#include <algorithm>
#include <vector>

namespace orvtest {

inline constexpr QPoint oddScroll(137, 53);

/// A box of `rows` rows on a canvas of its own, at (30, 40) and 100 wide. With the font of the
/// canvas the caption is 20 pixels high and a row 16; ten rows make a height of 128, six of them
/// visible.
struct BoxOnCanvas {
    explicit BoxOnCanvas(int rows = 10) : fields(numberedFields(rows)), box(&canvas, &fields, "T") {
        box.SetLeft(30);
        box.SetTop(40);
        canvas.moved = 0;
        canvas.invalidated.clear();
    }
    TorvQDListItem* row(int index) const { return box.Items[std::size_t(index)].get(); }

    FakeCanvas canvas;
    TDataSet fields;
    TorvQDTable box;
};

/// Whether the rectangle is one of them.
inline bool contains(const std::vector<TRect>& rects, const TRect& rect) {
    return std::find(rects.begin(), rects.end(), rect) != rects.end();
}

}  // namespace orvtest
