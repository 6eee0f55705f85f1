// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>
#include <QString>

#include <optional>

class QIODevice;
class QPainter;
class TorvQDWorkArea;

namespace orvquery {

enum class PictureFormat { Png, Svg, Pdf };

/// The format of a picture by the end of the file's name; none when it is another.
[[nodiscard]] std::optional<PictureFormat> pictureFormatOfFile(const QString& file);

/// The diagram's size with the white margin around it, in the pixels of the diagram. Raises
/// orv::Error when there is nothing to draw.
[[nodiscard]] QSize pictureSize(const TorvQDWorkArea& workArea);

/// Paints the diagram and its margin, with the upper left corner at the painter's origin. The paint
/// device must have the resolution of the work area, by which the boxes were laid out.
void paintPicture(QPainter& painter, const TorvQDWorkArea& workArea);

/// Writes the diagram with a white margin into a file, by its name as PNG, SVG, or PDF of one page
/// as large as the picture. A file that is there stays as it is when that fails. Raises orv::Error
/// when there is nothing to draw, the name is none of these or the file cannot be written.
void writePicture(const TorvQDWorkArea& workArea, const QString& file);

}  // namespace orvquery
