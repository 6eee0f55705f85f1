// SPDX-License-Identifier: MIT
#include "batch/Picture.h"

#include "core/Error.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QSvgGenerator>

namespace orvquery {

namespace {

constexpr int marginPx = 20;

// Paints diagram coordinates so that the bounds lie at the margin.
void paint(QPaintDevice& device, const TorvQDWorkArea& workArea, const QRect& bounds) {
    QPainter painter(&device);
    painter.fillRect(QRect(QPoint(0, 0), bounds.size() + QSize(2, 2) * marginPx), Qt::white);
    painter.translate(QPoint(marginPx, marginPx) - bounds.topLeft());
    workArea.paintDiagram(painter);
}

QByteArray svg(const TorvQDWorkArea& workArea, const QRect& bounds) {
    QBuffer buffer;
    QSvgGenerator generator;
    const QSize size = bounds.size() + QSize(2, 2) * marginPx;
    generator.setOutputDevice(&buffer);
    generator.setTitle(QStringLiteral("Query diagram"));
    // The metrics by which the boxes were laid out.
    generator.setResolution(workArea.logicalDpiY());
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    paint(generator, workArea, bounds);
    return buffer.data();
}

QByteArray png(const TorvQDWorkArea& workArea) {
    QBuffer buffer;
    workArea.picture().save(&buffer, "PNG");
    return buffer.data();
}

}  // namespace

void writePicture(const TorvQDWorkArea& workArea, const QString& file) {
    const QRect bounds = workArea.diagramBounds();
    if (bounds.isEmpty()) {
        throw orv::Error(QStringLiteral("There is nothing to draw: the statement has no tables."));
    }
    const bool isSvg = file.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive);
    const QByteArray content = isSvg ? svg(workArea, bounds) : png(workArea);
    QSaveFile target(file);
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size() ||
        !target.commit()) {
        throw orv::Error(QStringLiteral("The picture \"%1\" cannot be written: %2.")
                             .arg(file, target.errorString()));
    }
}

}  // namespace orvquery
