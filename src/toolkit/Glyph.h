// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QSize>
#include <QString>

#include <vector>

class QByteArray;
class QPainter;

namespace orv {

/// A small picture made of lines and areas, read from an SVG file. It knows the few elements that
/// the files in src/resources need, so that hosts need neither the SVG module nor its plugin.
/// Not shared between threads.
class ORV_EXPORT Glyph {
public:
    /// Reads a picture. Raises orv::Error for anything that is not drawn: elements other than svg,
    /// rect, circle, ellipse and path, path commands other than M L H V Z C, other attributes.
    [[nodiscard]] static Glyph fromSvg(const QByteArray& svg);

    /// Paints the picture into a rectangle. Its straight lines lie on whole pixels of the device at
    /// every scale; into a vector file go the lines themselves. A valid `ink` replaces every
    /// colour, for single-coloured pictures on a dark ground.
    void paint(QPainter& painter, const QRectF& rect, const QColor& ink = {}) const;

    /// The size at which it was drawn, in pixels.
    [[nodiscard]] QSize size() const { return m_size; }

private:
    friend class GlyphReader;

    struct Shape {
        QPainterPath path;    // unless it is a rectangle
        QRectF rect;          // when `isRect`
        qreal radius = 0;     // of the rectangle's corners
        bool isRect = false;  // with corners or without
        bool isSmooth = false;
        QColor fill = Qt::black;  // invalid: none
        QColor stroke;            // invalid: none
        qreal strokeWidth = 1;
        Qt::PenCapStyle cap = Qt::FlatCap;
        Qt::PenJoinStyle join = Qt::SvgMiterJoin;
    };
    struct Rendered {
        QSizeF size;  // in pixels of the device
        QRgb ink;
        QImage image;
    };

    [[nodiscard]] static QPainterPath outline(const Shape& shape);
    [[nodiscard]] static QPainterPath onPixels(const Shape& shape, const QTransform& toDevice,
                                               qreal penWidth);
    [[nodiscard]] const QImage& rendered(const QSizeF& size, const QColor& ink) const;
    void paintLines(QPainter& painter, const QRectF& rect, const QColor& ink) const;

    QSize m_size;
    QRectF m_viewBox;
    std::vector<Shape> m_shapes;
    mutable std::vector<Rendered> m_rendered;  // the newest last
};

/// Whether the painter writes a vector file or a printer's page instead of pixels.
[[nodiscard]] ORV_EXPORT bool paintsVectors(const QPainter& painter);

/// The picture of that name in the control's resources; an empty one, with a warning, when there
/// is none or it cannot be read.
[[nodiscard]] ORV_EXPORT const Glyph& glyph(const QString& name);

/// The same as an icon.
[[nodiscard]] ORV_EXPORT QIcon glyphIcon(const QString& name);

}  // namespace orv
