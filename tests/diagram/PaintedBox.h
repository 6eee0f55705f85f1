// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/ORVQDFloatTable.h"
#include "support/FakeCanvas.h"
#include "toolkit/Glyph.h"

#include <QImage>
#include <QPainter>
#include <QTest>

// What the tests of painted boxes share.
namespace orvtest {

inline const QColor behind(1, 2, 3);  // what lies around a box
inline const QColor face(0xE0, 0xE1, 0xE2);
inline const QColor light(250, 0, 0);
inline const QColor midlight(0, 250, 0);
inline const QColor dark(0, 0, 250);
inline const QColor shadow(0, 250, 250);
inline const QColor mid(250, 250, 0);
inline const QColor silver(0xC0, 0xC0, 0xC0);
inline const QColor grey(0x80, 0x80, 0x80);
inline const QColor teal(0, 128, 128);
inline const QColor white(Qt::white);
inline const QColor black(Qt::black);

inline constexpr QPoint oddScroll(17, 23);
inline constexpr int buttonPx = 11;  // the side of a caption button's glyph

/// A box of ten rows, six of them visible, on a canvas of its own whose palette has other colours
/// for everything. The box is at (30, 40), 160 wide and 128 high; its caption is 20 high, a row 16.
struct PaintedBox {
    explicit PaintedBox(int rows = 10) : fields(numberedFields(rows)), box(&canvas, &fields, "T") {
        QPalette palette;
        palette.setColor(QPalette::Button, face);
        palette.setColor(QPalette::ButtonText, black);
        palette.setColor(QPalette::Light, light);
        palette.setColor(QPalette::Midlight, midlight);
        palette.setColor(QPalette::Dark, dark);
        palette.setColor(QPalette::Shadow, shadow);
        palette.setColor(QPalette::Mid, mid);
        canvas.setPalette(palette);
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize(11);
        canvas.workAreaOptions.SetFont(font);
        box.SetLeft(30);
        box.SetTop(40);
        box.SetWidth(160);
    }
    TorvQDListItem* row(int index) const { return box.Items[std::size_t(index)].get(); }
    /// Selects without the scroll bar that would cover the ends of the rows.
    void select() {
        box.SetSelect(true);
        canvas.scrollBarVisible = false;
    }
    QImage paint(qreal scale = 1) {
        QImage image((QSizeF(300, 220) * scale).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(behind);
        QPainter painter(&image);
        box.Paint(painter);
        return image;
    }
    /// A pixel of the picture by its diagram coordinates.
    QColor at(const QImage& image, int x, int y) const {
        return image.pixelColor(QPoint(x, y) - canvas.scroll);
    }
    /// The part of the picture that a rectangle in diagram coordinates covers.
    QImage part(const QImage& image, const TRect& rect) const {
        return image.copy(box.toView(rect).toQRect());
    }
    QColor pixel(int x, int y) { return at(paint(), x, y); }
    /// The row area of a row as it is drawn, in view coordinates.
    TRect drawnRow(int index) const {
        TRect rect = box.GetItemRect(row(index));
        rect.Top += 1;
        return rect;
    }
    TRect textOf(int index) const {
        TRect rect = drawnRow(index);
        rect.Left += box.ItemHeight;
        return rect;
    }

    FakeCanvas canvas;
    TDataSet fields;
    TorvQDTable box;
};

inline QImage viewPart(const QImage& image, const TRect& viewRect) {
    return image.copy(viewRect.toQRect());
}

inline int pixelsOf(const QImage& image, const QColor& color) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

inline bool isPlain(const QImage& image, const QColor& color) {
    return pixelsOf(image, color) == image.width() * image.height();
}

/// How dark the picture is altogether: bold letters have more ink than regular ones.
inline int inkOf(const QImage& image) {
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) ink += 255 - qGray(image.pixel(x, y));
    }
    return ink;
}

inline QImage glyphOn(const QString& name, const QColor& ground) {
    const orv::Glyph& glyph = orv::glyph(name);
    QImage image(glyph.size(), QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    glyph.paint(painter, image.rect());
    return image;
}

inline void addScrollRows() {
    QTest::addColumn<QPoint>("scroll");
    QTest::newRow("not scrolled") << QPoint();
    QTest::newRow("scrolled") << oddScroll;
}

}  // namespace orvtest
