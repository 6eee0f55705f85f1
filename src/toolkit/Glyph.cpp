// SPDX-License-Identifier: MIT
#include "toolkit/Glyph.h"

#include "core/Error.h"
#include "toolkit/GlyphReader_p.h"

#include <QFile>
#include <QIconEngine>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPathStroker>
#include <QPixmap>

#include <algorithm>
#include <cmath>
#include <map>

// Outside the namespace: a static library's resources are there only when they are asked for.
static void initialiseResources() {
    Q_INIT_RESOURCE(orv);
}

namespace orv {

namespace {

constexpr qreal svgMiterLimit = 4;  // the default of SVG; that of pens is 2
constexpr std::size_t mostRenderedSizes = 8;

// Enough pixels for the size; what is smaller than a hundredth of one is none.
QSize wholePixels(const QSizeF& size) {
    return {std::max(1, int(std::ceil(size.width() - 0.01))),
            std::max(1, int(std::ceil(size.height() - 0.01)))};
}

qreal snapped(qreal coordinate, qreal penWidth) {
    return std::round(coordinate - penWidth / 2) + penWidth / 2;
}

}  // namespace

Glyph Glyph::fromSvg(const QByteArray& svg) {
    return GlyphReader(svg).read();
}

QPainterPath Glyph::outline(const Shape& shape) {
    if (!shape.isRect) return shape.path;
    QPainterPath path;
    if (shape.radius > 0) {
        path.addRoundedRect(shape.rect, shape.radius, shape.radius);
    } else {
        path.addRect(shape.rect);
    }
    return path;
}

// The shape in pixels of the device, moved so that both sides of its straight lines lie between
// pixels. Curves and slanted lines stay where they are.
QPainterPath Glyph::onPixels(const Shape& shape, const QTransform& toDevice, qreal penWidth) {
    const auto snap = [&](const QPointF& point) {
        const QPointF at = toDevice.map(point);
        return QPointF(snapped(at.x(), penWidth), snapped(at.y(), penWidth));
    };
    if (shape.isRect) {
        Shape moved = shape;
        moved.rect = QRectF(snap(shape.rect.topLeft()), snap(shape.rect.bottomRight()));
        moved.radius = shape.radius * toDevice.m11();
        return outline(moved);
    }
    QPainterPath path = toDevice.map(shape.path);
    if (shape.isSmooth) return path;
    const int count = path.elementCount();
    const QPainterPath exact = path;
    for (int first = 0; first < count;) {
        int last = first;
        while (last + 1 < count && !exact.elementAt(last + 1).isMoveTo()) ++last;
        const bool isOpen = QPointF(exact.elementAt(first)) != QPointF(exact.elementAt(last));
        for (int index = first; index <= last; ++index) {
            const QPointF at = exact.elementAt(index);
            QSizeF pen(penWidth, penWidth);
            // A line that simply stops has no width along itself.
            if (isOpen && shape.cap == Qt::FlatCap && last > first &&
                (index == first || index == last)) {
                const QPointF next = exact.elementAt(index == first ? first + 1 : last - 1);
                (next.y() == at.y() ? pen.rwidth() : pen.rheight()) = 0;
            }
            path.setElementPositionAt(index, snapped(at.x(), pen.width()),
                                      snapped(at.y(), pen.height()));
        }
        first = last + 1;
    }
    return path;
}

const QImage& Glyph::rendered(const QSizeF& size, const QColor& ink) const {
    const QRgb inkKey = ink.isValid() ? ink.rgba() : 0;
    for (const Rendered& known : m_rendered) {
        if (known.size == size && known.ink == inkKey) return known.image;
    }
    QImage image(wholePixels(size), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const qreal scale = size.width() / m_viewBox.width();
    const QTransform toDevice = QTransform::fromScale(scale, size.height() / m_viewBox.height())
                                    .translate(-m_viewBox.left(), -m_viewBox.top());
    for (const Shape& shape : m_shapes) {
        const bool isStroked = shape.stroke.isValid();
        const bool isBent = shape.isSmooth && !shape.isRect;
        const qreal exact = shape.strokeWidth * scale;
        const qreal penWidth = !isStroked ? 0 : isBent ? exact : std::max(1.0, std::round(exact));
        const QPainterPath path = onPixels(shape, toDevice, penWidth);
        painter.setRenderHint(QPainter::Antialiasing, shape.isSmooth);
        if (shape.fill.isValid()) painter.fillPath(path, ink.isValid() ? ink : shape.fill);
        if (!isStroked) continue;
        // Lines are filled outlines: without smoothing those hit exactly the pixels between them.
        QPainterPathStroker stroker;
        stroker.setWidth(penWidth);
        stroker.setCapStyle(shape.cap);
        stroker.setJoinStyle(shape.join);
        stroker.setMiterLimit(svgMiterLimit);
        painter.fillPath(stroker.createStroke(path), ink.isValid() ? ink : shape.stroke);
    }
    painter.end();
    if (m_rendered.size() == mostRenderedSizes) m_rendered.erase(m_rendered.begin());
    m_rendered.push_back({size, inkKey, image});
    return m_rendered.back().image;
}

void Glyph::paintLines(QPainter& painter, const QRectF& rect, const QColor& ink) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.topLeft());
    painter.scale(rect.width() / m_viewBox.width(), rect.height() / m_viewBox.height());
    painter.translate(-m_viewBox.topLeft());
    for (const Shape& shape : m_shapes) {
        painter.setBrush(!shape.fill.isValid() ? QBrush()
                                               : QBrush(ink.isValid() ? ink : shape.fill));
        QPen pen(Qt::NoPen);
        if (shape.stroke.isValid()) {
            pen = QPen(ink.isValid() ? ink : shape.stroke, shape.strokeWidth, Qt::SolidLine,
                       shape.cap, shape.join);
            pen.setMiterLimit(svgMiterLimit);
        }
        painter.setPen(pen);
        painter.drawPath(outline(shape));
    }
    painter.restore();
}

void Glyph::paint(QPainter& painter, const QRectF& rect, const QColor& ink) const {
    if (m_shapes.empty() || rect.isEmpty()) return;
    const QTransform& toDevice = painter.deviceTransform();
    if (paintsVectors(painter) || toDevice.type() > QTransform::TxScale || toDevice.m11() <= 0 ||
        toDevice.m22() <= 0) {
        paintLines(painter, rect, ink);
        return;
    }
    const QSizeF size(rect.width() * toDevice.m11(), rect.height() * toDevice.m22());
    const QImage& image = rendered(size, ink);
    const QPointF corner = toDevice.map(rect.topLeft());
    const QPointF onPixel(std::round(corner.x()), std::round(corner.y()));
    if (toDevice.type() <= QTransform::TxTranslate) {
        painter.drawImage(onPixel - QPointF(toDevice.dx(), toDevice.dy()), image);
        return;
    }
    const QPointF from((onPixel.x() - toDevice.dx()) / toDevice.m11(),
                       (onPixel.y() - toDevice.dy()) / toDevice.m22());
    painter.drawImage(
        QRectF(from, QSizeF(image.width() / toDevice.m11(), image.height() / toDevice.m22())),
        image, QRectF(image.rect()));
}

bool paintsVectors(const QPainter& painter) {
    const QPaintEngine* engine = painter.paintEngine();
    if (!engine) return false;
    // The engines of printers of the system count as vector files.
    const QPaintEngine::Type type = engine->type();
    return type == QPaintEngine::SVG || type == QPaintEngine::Pdf ||
           type == QPaintEngine::Picture || type == QPaintEngine::Windows ||
           type == QPaintEngine::MacPrinter;
}

const Glyph& glyph(const QString& name) {
    static std::map<QString, Glyph> glyphs;
    const auto known = glyphs.find(name);
    if (known != glyphs.end()) return known->second;
    if (glyphs.empty()) initialiseResources();
    Glyph made;
    QFile file(QStringLiteral(":/orv/") + name + QStringLiteral(".svg"));
    try {
        if (!file.open(QIODevice::ReadOnly)) throw Error(file.errorString());
        made = Glyph::fromSvg(file.readAll());
    } catch (const Error& error) {
        qWarning("Glyph %s: %s", qUtf8Printable(name), qUtf8Printable(error.Message()));
    }
    return glyphs.emplace(name, made).first->second;
}

namespace {

class GlyphIconEngine : public QIconEngine {
public:
    explicit GlyphIconEngine(const QString& name) : m_name(name) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        glyph(m_name).paint(*painter, rect);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap made(size);
        made.fill(Qt::transparent);
        QPainter painter(&made);
        paint(&painter, made.rect(), mode, state);
        return made;
    }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {glyph(m_name).size()};
    }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        return glyph(m_name).size().scaled(size, Qt::KeepAspectRatio);
    }
    QIconEngine* clone() const override { return new GlyphIconEngine(m_name); }

private:
    QString m_name;
};

}  // namespace

QIcon glyphIcon(const QString& name) {
    return QIcon(new GlyphIconEngine(name));
}

}  // namespace orv
