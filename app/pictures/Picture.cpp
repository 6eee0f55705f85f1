// SPDX-License-Identifier: MIT
#include "pictures/Picture.h"

#include "core/Error.h"
#include "text/SavedFile.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace orvquery {

namespace {

constexpr int marginPx = 20;
constexpr qreal pointsPerInch = 72;

QString pictureTitle() {
    return QStringLiteral("Query diagram");
}

void paint(QPaintDevice& device, const TorvQDWorkArea& workArea) {
    QPainter painter(&device);
    paintPicture(painter, workArea);
}

QByteArray svg(const TorvQDWorkArea& workArea) {
    QBuffer buffer;
    QSvgGenerator generator;
    const QSize size = pictureSize(workArea);
    generator.setOutputDevice(&buffer);
    generator.setTitle(pictureTitle());
    generator.setResolution(workArea.logicalDpiY());
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    paint(generator, workArea);
    return buffer.data();
}

QByteArray pdf(const TorvQDWorkArea& workArea) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(pictureTitle());
    writer.setResolution(workArea.logicalDpiY());
    const QSizeF points = QSizeF(pictureSize(workArea)) * pointsPerInch / workArea.logicalDpiY();
    // Always upright, so that no wide page is turned.
    writer.setPageLayout(
        QPageLayout(QPageSize(points, QPageSize::Point, pictureTitle(), QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF()));
    paint(writer, workArea);
    return buffer.data();
}

QByteArray png(const TorvQDWorkArea& workArea) {
    const QImage image = workArea.picture();
    if (image.isNull()) {
        throw orv::Error(
            QStringLiteral("The diagram is too large for a picture of pixels; a file "
                           "named .svg or .pdf can hold it."));
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray content(const TorvQDWorkArea& workArea, PictureFormat format) {
    switch (format) {
    case PictureFormat::Svg: return svg(workArea);
    case PictureFormat::Pdf: return pdf(workArea);
    case PictureFormat::Png: break;
    }
    return png(workArea);
}

}  // namespace

std::optional<PictureFormat> pictureFormatOfFile(const QString& file) {
    const QString suffix = QFileInfo(file).suffix().toLower();
    if (suffix == u"png") return PictureFormat::Png;
    if (suffix == u"svg") return PictureFormat::Svg;
    if (suffix == u"pdf") return PictureFormat::Pdf;
    return std::nullopt;
}

QSize pictureSize(const TorvQDWorkArea& workArea) {
    const QRect bounds = workArea.diagramBounds();
    if (bounds.isEmpty()) {
        throw orv::Error(QStringLiteral("There is nothing to draw: the statement has no tables."));
    }
    return bounds.size() + QSize(2, 2) * marginPx;
}

void paintPicture(QPainter& painter, const TorvQDWorkArea& workArea) {
    painter.save();
    painter.fillRect(QRect(QPoint(0, 0), pictureSize(workArea)), Qt::white);
    painter.translate(QPoint(marginPx, marginPx) - workArea.diagramBounds().topLeft());
    workArea.paintDiagram(painter);
    painter.restore();
}

void writePicture(const TorvQDWorkArea& workArea, const QString& file) {
    const std::optional<PictureFormat> format = pictureFormatOfFile(file);
    if (!format) {
        throw orv::Error(
            QStringLiteral("A picture is written into a file named .png, .svg or .pdf, not \"%1\".")
                .arg(QFileInfo(file).fileName()));
    }
    (void)pictureSize(workArea);  // raises when there is nothing to draw
    const QByteArray bytes = content(workArea, *format);
    SavedFile target(file);
    target.open();
    target.device().write(bytes);
    target.requireWritten();
    target.save();
}

}  // namespace orvquery
