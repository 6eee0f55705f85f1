// SPDX-License-Identifier: MIT
// The work area as a view: painting, magnification, scrolling, what lies over a box.
#include "contract/ChangeScope.h"
#include "contract/DiagramEvents.h"
#include "toolkit/ExitEdit.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDArrange.h"
#include "workarea/ORVQDDiagramKeys.h"
#include "workarea/ORVQDFieldDrag.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDGestures.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace {

constexpr int extentMarginPx = 50;
constexpr int scrollStepPx = 20;
constexpr int pictureMarginPx = 20;
constexpr int searchHeightPx = 15;
constexpr int fitSlackPx = 4;
constexpr int mostFittedWidthPx = 300;
constexpr QSize preferredSize(300, 100);
constexpr qreal leastZoom = 0.05;  // shows the largest diagram whole in a small window
constexpr qreal mostZoom = 4;
constexpr qreal zoomStep = 1.25;

QFont magnified(QFont font, qreal zoom) {
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * zoom);
    } else {
        font.setPixelSize(std::max(1, int(std::lround(font.pixelSize() * zoom))));
    }
    return font;
}

}  // namespace

QSize TorvQDWorkArea::sizeHint() const {
    return preferredSize;
}

QPoint TorvQDWorkArea::scrollPosition() const {
    if (m_paintsAll) return {};
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

// --- magnification ---

QPoint TorvQDWorkArea::toViewPoint(const QPoint& viewportPoint) const {
    return {int(std::floor(viewportPoint.x() / m_zoom)),
            int(std::floor(viewportPoint.y() / m_zoom))};
}

QPoint TorvQDWorkArea::toViewport(const QPoint& viewPoint) const {
    return {int(std::lround(viewPoint.x() * m_zoom)), int(std::lround(viewPoint.y() * m_zoom))};
}

QRect TorvQDWorkArea::toViewport(const TRect& viewRect) const {
    const QPoint topLeft = toViewport(QPoint(viewRect.Left, viewRect.Top));
    const QPoint end = toViewport(QPoint(viewRect.Right, viewRect.Bottom));
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

QSize TorvQDWorkArea::viewSize() const {
    return {int(viewport()->width() / m_zoom), int(viewport()->height() / m_zoom)};
}

void TorvQDWorkArea::setZoom(qreal zoom) {
    setZoom(zoom, viewport()->rect().center());
}

void TorvQDWorkArea::setZoom(qreal zoom, const QPoint& viewportAnchor) {
    // Steps there and back end where they began.
    const qreal wanted = std::abs(zoom - 1) < 0.01 ? 1 : std::clamp(zoom, leastZoom, mostZoom);
    if (qFuzzyCompare(wanted, m_zoom)) return;
    const QPointF anchor = QPointF(scrollPosition()) + QPointF(viewportAnchor) / m_zoom;
    const QPoint mouse = toViewport(m_mouse);
    m_zoom = wanted;
    m_mouse = toViewPoint(mouse);
    m_gestures->setMouse(m_mouse);
    updateScrollRange();
    const QPointF position = anchor - QPointF(viewportAnchor) / m_zoom;
    scrollTo(position.toPoint());
    placeOverlays();
    viewport()->update();
    m_gestures->follow();
}

void TorvQDWorkArea::zoomIn() {
    setZoom(m_zoom * zoomStep);
}

void TorvQDWorkArea::zoomOut() {
    setZoom(m_zoom / zoomStep);
}

void TorvQDWorkArea::actualSize() {
    setZoom(1);
}

void TorvQDWorkArea::fit() {
    const QRect bounds = diagramBounds();
    if (bounds.isEmpty()) return setZoom(1);
    const QSize room = bounds.size() + QSize(2, 2) * pictureMarginPx;
    const qreal zoom = std::min(qreal(viewport()->width()) / room.width(),
                                qreal(viewport()->height()) / room.height());
    setZoom(std::min<qreal>(1, zoom));
    scrollTo(bounds.topLeft() - QPoint(pictureMarginPx, pictureMarginPx));
}

// --- painting ---

void TorvQDWorkArea::invalidate(const TRect& viewRect) {
    if (!viewRect.isEmpty()) invalidate(QRegion(viewRect.toQRect()));
}

// Magnified pixels that are touched in part are painted whole.
void TorvQDWorkArea::invalidate(const QRegion& viewRegion) {
    if (m_zoom == 1) return viewport()->update(viewRegion);
    for (const QRect& rect : viewRegion) {
        const QRectF magnified(rect.x() * m_zoom, rect.y() * m_zoom, rect.width() * m_zoom,
                               rect.height() * m_zoom);
        viewport()->update(magnified.toAlignedRect().adjusted(-1, -1, 1, 1));
    }
}

void TorvQDWorkArea::paintEvent(QPaintEvent* event) {
    orv::guarded([&] {
        QRegion region = event->region();
        QPainter painter(viewport());
        painter.setBackground(palette().color(QPalette::Window));
        // Where a pixel of the diagram is a whole number of pixels, boxes cover their ground fully.
        const qreal scale = m_zoom * devicePixelRatioF();
        const bool isWhole = scale == std::floor(scale);
        if (!isWhole) painter.fillRect(event->rect(), palette().color(QPalette::Window));
        if (m_zoom != 1) {
            painter.scale(m_zoom, m_zoom);
            region = QTransform::fromScale(1 / m_zoom, 1 / m_zoom)
                         .mapRect(QRectF(event->rect()))
                         .toAlignedRect();
        }
        paintTables(painter, region, isWhole);
        paintLinks(painter, region);
        m_gestures->paint(painter);
        m_keys->paint(painter);
        paintFocus(painter);
    });
}

// The boxes from the back to the front, so that each covers those behind it. Nothing is painted of
// what is covered wholly: not of a box, and not of the ground when `fillsGround`.
void TorvQDWorkArea::paintTables(QPainter& painter, const QRegion& region, bool fillsGround) {
    struct Visible {
        TorvQDTable* table;
        QRect part;
        bool isWhole;
    };
    std::vector<Visible> tables;
    QRegion rest = region;
    for (const auto& table : m_tables) {
        const QRect bounds = table->toView(table->GetBoundsRect()).toQRect();
        const QRect part = rest.intersected(bounds).boundingRect();
        if (part.isEmpty()) continue;
        tables.push_back({table.get(), part, part == bounds});
        rest -= bounds;
    }
    if (fillsGround) {
        const QColor ground = palette().color(QPalette::Window);
        for (const QRect& rect : rest) painter.fillRect(rect, ground);
    }
    for (auto visible = tables.rbegin(); visible != tables.rend(); ++visible) {
        if (!visible->isWhole) {
            painter.save();
            painter.setClipRect(visible->part, Qt::IntersectClip);
        }
        visible->table->Paint(painter);
        if (!visible->isWhole) painter.restore();
    }
}

void TorvQDWorkArea::setLinkColor(const QColor& color) {
    if (m_linkColor == color) return;
    m_linkColor = color;
    viewport()->update();
}

// What can be read on a dark ground cannot on the rows of a box.
void TorvQDWorkArea::paintLinks(QPainter& painter, const QRegion& region) {
    if (m_linkColor == Qt::black) return paintLinks(painter, region, m_linkColor);
    QRegion boxes;
    for (const auto& table : m_tables) {
        const QRect box = table->toView(table->GetBoundsRect()).toQRect();
        if (region.intersects(box)) boxes += box;
    }
    painter.save();
    painter.setClipRegion(region - boxes, Qt::IntersectClip);
    paintLinks(painter, region, m_linkColor);
    painter.restore();
    painter.save();
    painter.setClipRegion(region & boxes, Qt::IntersectClip);
    painter.setBackground(Qt::white);
    paintLinks(painter, region, Qt::black);
    painter.restore();
}

void TorvQDWorkArea::paintLinks(QPainter& painter, const QRegion& region, const QColor& ink) {
    m_linkInk = ink;
    const QPoint scroll = scrollPosition();
    for (const auto& [number, link] : m_links) {
        if (region.intersects(link->extent().translated(-scroll))) link->Paint(painter);
    }
    m_linkInk = Qt::black;
}

// A selected object shows by itself where the focus is. A frame of the style's would tint the whole
// diagram.
void TorvQDWorkArea::paintFocus(QPainter& painter) const {
    if (m_selected || !m_showsFocus || !hasFocus()) return;
    painter.resetTransform();
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
}

QRect TorvQDWorkArea::diagramBounds() const {
    QRect bounds;
    for (const auto& table : m_tables) bounds |= table->GetBoundsRect().toQRect();
    for (const auto& [number, link] : m_links) bounds |= link->extent();
    return bounds;
}

void TorvQDWorkArea::paintDiagram(QPainter& painter) const {
    m_paintsAll = true;
    for (std::size_t index = m_tables.size(); index-- > 0;) m_tables[index]->Paint(painter);
    for (const auto& [number, link] : m_links) link->Paint(painter);
    m_paintsAll = false;
}

QImage TorvQDWorkArea::picture() const {
    const QRect bounds = diagramBounds();
    if (bounds.isEmpty()) return {};
    const qreal scale = devicePixelRatioF();
    QImage image((bounds.size() + QSize(2, 2) * pictureMarginPx) * scale, QImage::Format_RGB32);
    if (image.isNull()) return image;  // too large a diagram
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(QPoint(pictureMarginPx, pictureMarginPx) - bounds.topLeft());
    paintDiagram(painter);
    return image;
}

void TorvQDWorkArea::copyAsPicture() {
    const QImage image = picture();
    if (!image.isNull()) QGuiApplication::clipboard()->setImage(image);
}

// --- scrolling ---

// The diagram is 5000 pixels wide and high, and grows with boxes that lie beyond.
void TorvQDWorkArea::updateScrollRange() {
    m_extent = {diagramExtentPx, diagramExtentPx};
    for (const auto& table : m_tables) {
        const TRect bounds = table->GetBoundsRect();
        if (bounds.Right > diagramExtentPx) {
            m_extent.rwidth() = std::max(m_extent.width(), bounds.Right + extentMarginPx);
        }
        if (bounds.Bottom > diagramExtentPx) {
            m_extent.rheight() = std::max(m_extent.height(), bounds.Bottom + extentMarginPx);
        }
    }
    const QSize page = viewSize();
    horizontalScrollBar()->setRange(0, std::max(0, m_extent.width() - page.width()));
    horizontalScrollBar()->setPageStep(page.width());
    horizontalScrollBar()->setSingleStep(scrollStepPx);
    verticalScrollBar()->setRange(0, std::max(0, m_extent.height() - page.height()));
    verticalScrollBar()->setPageStep(page.height());
    verticalScrollBar()->setSingleStep(scrollStepPx);
}

// The same after one box has changed its place or size; within the diagram there is nothing to do.
void TorvQDWorkArea::updateScrollRange(const TorvQDTable& moved) {
    const TRect bounds = moved.GetBoundsRect();
    const bool isInside = bounds.Right <= diagramExtentPx && bounds.Bottom <= diagramExtentPx;
    if (!isInside || m_extent != QSize(diagramExtentPx, diagramExtentPx)) updateScrollRange();
}

void TorvQDWorkArea::scrollTo(const QPoint& position) {
    horizontalScrollBar()->setValue(position.x());
    verticalScrollBar()->setValue(position.y());
}

void TorvQDWorkArea::scrollBy(int dx, int dy) {
    scrollTo(scrollPosition() + QPoint(dx, dy));
}

void TorvQDWorkArea::ensureVisible(const TRect& rect) {
    const auto show = [](QScrollBar* bar, int first, int end, int page) {
        const int last = std::max(bar->value(), end - page);
        bar->setValue(std::min(last, first));
    };
    const QSize page = viewSize();
    show(horizontalScrollBar(), rect.Left, rect.Right, page.width());
    show(verticalScrollBar(), rect.Top, rect.Bottom, page.height());
}

void TorvQDWorkArea::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollRange();
}

void TorvQDWorkArea::scrollContentsBy(int dx, int dy) {
    orv::guarded([&] {
        hideHint();
        moveRowScrollBar(dx, dy);
        placeOverlays();
        viewport()->update();
        // Another thing is under the mouse now.
        if (m_gestures->isIdle()) leaveHot();
        m_gestures->follow();
        m_fieldDrag->follow();
    });
}

// --- places ---

void TorvQDWorkArea::placeBox(TorvQDTable& box, const QPoint& wanted, const QPoint& before) {
    const int right = std::max(diagramExtentPx - box.Width, before.x());
    const int bottom = std::max(diagramExtentPx - box.CaptionHeight, before.y());
    const int left = std::clamp(wanted.x(), 0, std::max(0, right));
    const int top = std::clamp(wanted.y(), 0, std::max(0, bottom));
    box.MoveTable(left - box.Left, top - box.Top);
}

void TorvQDWorkArea::fitWidth(TorvQDTable& table) {
    const TRect caption = table.GetCaptionRect();
    int width = table.Width - caption.width() + boldTextWidth(table.GetCaption()) + fitSlackPx;
    const QFontMetrics metrics(GetFont());
    const TRect rows = table.GetClientRect();
    int beside = table.Width - rows.width() + table.ItemHeight + fitSlackPx;
    if (int(table.Items.size()) > table.VisibleCount) beside += table.ScrollBarWidth;
    for (const auto& item : table.Items) {
        width = std::max(width, beside + metrics.horizontalAdvance(item->caption()));
    }
    table.SetWidth(std::min(width, mostFittedWidthPx));
}

void TorvQDWorkArea::arrange() {
    cancelGesture();
    QHash<const TorvQDTable*, int> indices;
    std::vector<QSize> sizes;
    for (const TorvQDTable* table : m_creation) {
        indices.insert(table, int(sizes.size()));
        sizes.emplace_back(table->GetBoundsRect().width(), table->GetBoundsRect().height());
    }
    std::vector<orv::ArrangeJoin> joins;
    for (const TorvQDJoin* join : Joins()) {
        joins.emplace_back(indices.value(join->Table1), indices.value(join->Table2));
    }
    const std::vector<QPoint> places = orv::arrange(sizes, joins);
    for (const auto& [number, link] : m_links) link->setBendPoints({});
    for (std::size_t index = 0; index < places.size(); ++index) {
        TorvQDTable& table = *m_creation[index];
        table.MoveTable(places[index].x() - table.Left, places[index].y() - table.Top);
    }
    scrollTo({});
    viewport()->update();
}

void TorvQDWorkArea::tableMoved(TorvQDTable* table) {
    updateScrollRange(*table);
    reroute(table);
    placeOverlays();
    layoutTouched();
}

void TorvQDWorkArea::tableResized(TorvQDTable* table) {
    tableMoved(table);
}

void TorvQDWorkArea::linkBent(TorvQDLink* /*link*/) {
    layoutTouched();
}

// The owner is told when the present event is over: whoever moved something is not done yet, and
// what the owner does may remove what was moved.
void TorvQDWorkArea::layoutTouched() {
    if (!std::exchange(m_isLayoutTouched, true)) tellLayoutLater();
}

void TorvQDWorkArea::gestureEnded() {
    if (m_isLayoutTouched) tellLayoutLater();
}

void TorvQDWorkArea::tellLayoutLater() {
    const auto tell = [this] {
        if (m_gestures->movesThings() || !std::exchange(m_isLayoutTouched, false)) return;
        orv::guarded([this] { m_owner->layoutChanged(); });
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void TorvQDWorkArea::rowsScrolled(TorvQDTable* table) {
    reroute(table);
    if (m_keys->linkSource()) viewport()->update();
    if (table != m_selected || !isRowScrollBarVisible()) return;
    const QSignalBlocker silent(m_rowScrollBar);
    m_rowScrollBar->setValue(table->FirstVisibleItem);
}

void TorvQDWorkArea::bringToFront(TorvQDFloatObject* object) {
    TableToFront(object);
}

// --- what lies over a box ---

bool TorvQDWorkArea::isRowScrollBarVisible() const {
    return !m_paintsAll && !m_rowScrollBar->isHidden();
}

void TorvQDWorkArea::placeRowScrollBar(const RowScroll& scroll) {
    const QSignalBlocker silent(m_rowScrollBar);
    m_rowScrollRect = scroll.rect;
    m_rowScrollBar->setGeometry(toViewport(scroll.rect));
    m_rowScrollBar->setRange(0, scroll.maximum);
    m_rowScrollBar->setPageStep(std::max(1, scroll.pageStep));
    m_rowScrollBar->setValue(scroll.position);
}

void TorvQDWorkArea::showRowScrollBar(bool visible) {
    m_rowScrollBar->setVisible(visible);
}

void TorvQDWorkArea::moveRowScrollBar(int dx, int dy) {
    m_rowScrollRect = m_rowScrollRect.translated(dx, dy);
    m_rowScrollBar->setGeometry(toViewport(m_rowScrollRect));
}

void TorvQDWorkArea::placeOverlays() {
    m_rowScrollBar->setGeometry(toViewport(m_rowScrollRect));
    if (m_renamed) placeAliasEdit();
    if (m_searchEdit->table()) placeSearchEdit();
}

void TorvQDWorkArea::placeAliasEdit() {
    const TRect caption = m_renamed->toView(m_renamed->GetCaptionRect());
    m_aliasEdit->setFont(magnified(GetFont(), m_zoom));
    m_aliasEdit->setGeometry(toViewport(caption.translated(0, 1)));
}

// Below the box, or above it where that would be out of sight.
void TorvQDWorkArea::placeSearchEdit() {
    const TorvQDTable& table = *m_searchEdit->table();
    const TRect box = table.toView(table.GetBoundsRect());
    int top = box.Bottom + 1;
    if (top + searchHeightPx > viewSize().height()) top = box.Top - searchHeightPx - 1;
    m_searchEdit->setFont(magnified(GetFont(), m_zoom));
    m_searchEdit->setGeometry(toViewport({box.Left, top, box.Right, top + searchHeightPx}));
}

void TorvQDWorkArea::beginRename(TorvQDTable* table) {
    if (indexOf(table) < 0) return;
    const QPointer<TorvQDWorkArea> self(this);
    selectObject(table);
    if (!self || indexOf(table) < 0) return;
    m_renamed = table;
    placeAliasEdit();
    m_aliasEdit->open(table->GetAlias());
}

void TorvQDWorkArea::beginSearch(TorvQDTable* table, const QString& text) {
    const QPointer<TorvQDTable> box(table);
    selectObject(table);
    if (!box || indexOf(table) < 0) return;
    QPalette colors = m_searchEdit->palette();
    colors.setColor(QPalette::Base, palette().color(QPalette::Window));
    colors.setColor(QPalette::Text, palette().color(QPalette::WindowText));
    m_searchEdit->setPalette(colors);
    const QPointer<TorvQDWorkArea> self(this);
    m_searchEdit->open(table, text);
    // Another editor may have lost the focus, and what it told the host may have closed the box.
    if (self && m_searchEdit->table()) placeSearchEdit();
}

void TorvQDWorkArea::_EditNameKillFocus() {
    const QPointer<TorvQDTable> table = m_renamed;
    if (!table) return;
    discardPendingEdit();
    renameTable(table, m_aliasEdit->text());
}

void TorvQDWorkArea::commitPendingEdit() {
    _EditNameKillFocus();
}

void TorvQDWorkArea::discardPendingEdit() {
    m_renamed.clear();
    m_aliasEdit->discard();
}
