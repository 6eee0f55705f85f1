// SPDX-License-Identifier: MIT
#include "pictures/Pages.h"

#include "core/Error.h"
#include "pictures/Picture.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>

#include <cmath>

namespace orvquery {

namespace {

constexpr qreal footerPoints = 8;

// Rounding must not make a page for nothing.
constexpr qreal tolerance = 1e-6;

int pagesFor(qreal length, qreal page) {
    return std::max(1, int(std::ceil(length / page - tolerance)));
}

QString footerNumber(std::size_t page, std::size_t pages) {
    return QStringLiteral("Page %1 of %2").arg(page).arg(pages);
}

void paintFooter(QPainter& painter, const QRectF& line, const QString& name,
                 const QString& number) {
    painter.setPen(Qt::black);
    painter.drawText(line, Qt::AlignRight | Qt::AlignBottom, number);
    const QFontMetricsF metrics(painter.font(), painter.device());
    const qreal room = line.width() - metrics.horizontalAdvance(number + QStringLiteral("    "));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine,
                     metrics.elidedText(name, Qt::ElideRight, room));
}

void paintPart(QPainter& painter, const TorvQDWorkArea& workArea, const QRectF& part,
               qreal factor) {
    painter.save();
    painter.scale(factor, factor);
    painter.setClipRect(QRectF(QPointF(0, 0), part.size()));
    painter.translate(-part.topLeft());
    paintPicture(painter, workArea);
    painter.restore();
}

}  // namespace

PageTiles tilesOf(const QSizeF& picture, const QSizeF& page, PrintScale scale) {
    PageTiles tiles;
    if (picture.isEmpty() || page.isEmpty()) return tiles;
    if (scale == PrintScale::FitWidth) {
        tiles.factor = std::min(1.0, page.width() / picture.width());
    }
    const QSizeF room = page / tiles.factor;
    const int columns = pagesFor(picture.width(), room.width());
    const int rows = pagesFor(picture.height(), room.height());
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const QPointF corner(column * room.width(), row * room.height());
            tiles.parts.emplace_back(
                corner, QSizeF(std::min(room.width(), picture.width() - corner.x()),
                               std::min(room.height(), picture.height() - corner.y())));
        }
    }
    return tiles;
}

void printDiagram(const TorvQDWorkArea& workArea, QPagedPaintDevice& device, PrintScale scale,
                  const QString& name) {
    const QSizeF picture(pictureSize(workArea));
    QPainter painter;
    if (!painter.begin(&device)) {
        throw orv::Error(QStringLiteral("The printer cannot be used."));
    }
    QFont font = painter.font();
    font.setPointSizeF(footerPoints);
    painter.setFont(font);
    const QRectF page(0, 0, device.width(), device.height());
    const qreal lineHeight = QFontMetricsF(font, &device).height();
    const QRectF footer = page.adjusted(0, page.height() - lineHeight, 0, 0);
    // A blank line between the two.
    const QSizeF room(page.width(), page.height() - 2 * lineHeight);
    const PageTiles tiles = tilesOf(picture, room, scale);
    if (tiles.parts.empty()) {
        throw orv::Error(QStringLiteral("The margins leave no room on the page."));
    }
    for (std::size_t index = 0; index < tiles.parts.size(); ++index) {
        if (index > 0 && !device.newPage()) {
            throw orv::Error(QStringLiteral("The printer takes no further page."));
        }
        paintPart(painter, workArea, tiles.parts[index], tiles.factor);
        paintFooter(painter, footer, name, footerNumber(index + 1, tiles.parts.size()));
    }
}

}  // namespace orvquery
