// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class TorvQDWorkArea;

namespace orvquery {

/// Writes the diagram with a white margin into a file, as SVG when its name ends so, else as PNG.
/// Raises orv::Error when there is nothing to draw or the file cannot be written.
void writePicture(const TorvQDWorkArea& workArea, const QString& file);

}  // namespace orvquery
