// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>
#include <QString>

#include <vector>

class QPagedPaintDevice;
class TorvQDWorkArea;

namespace orvquery {

/// How large a diagram is printed.
enum class PrintScale {
    FitWidth,  ///< as wide as the page when it would be wider; never larger than it is
    FullSize   ///< as large as it is, over as many pages as that takes
};

/// A picture spread over pages.
struct PageTiles {
    qreal factor = 1;           ///< by which the picture is made smaller
    std::vector<QRectF> parts;  ///< of the picture, one for each page: row by row, in its own size
};

/// How a picture is spread over pages with room for as much. The parts cover all of it and do not
/// overlap; none is larger than a page. None when either is empty.
[[nodiscard]] PageTiles tilesOf(const QSizeF& picture, const QSizeF& page, PrintScale scale);

/// Prints the diagram, within the margins of the device's pages; below it each page has the name
/// and its number. The device must have the resolution of the work area, by which the boxes were
/// laid out. Raises orv::Error when there is nothing to print or the device cannot be used.
void printDiagram(const TorvQDWorkArea& workArea, QPagedPaintDevice& device, PrintScale scale,
                  const QString& name);

}  // namespace orvquery
