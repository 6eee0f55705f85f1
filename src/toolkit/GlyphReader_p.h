// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/Glyph.h"

#include <QXmlStreamReader>

namespace orv {

/// Reads one SVG file into a glyph. It raises orv::Error at the first thing that it does not know,
/// so that no file is drawn differently from what its author saw.
class GlyphReader {
public:
    explicit GlyphReader(const QByteArray& svg) : m_xml(svg) {}

    [[nodiscard]] Glyph read();

private:
    void readRoot(Glyph& glyph);
    [[nodiscard]] Glyph::Shape readShape();
    void readGeometry(Glyph::Shape& shape);
    void readPaint(Glyph::Shape& shape);
    [[nodiscard]] QString take(const char* name);
    [[nodiscard]] qreal takeNumber(const char* name, qreal absent);
    void requireNothingLeft() const;
    [[noreturn]] void fail(const QString& what) const;

    QXmlStreamReader m_xml;
    QXmlStreamAttributes m_attributes;  // of the element, less those that were taken
};

}  // namespace orv
