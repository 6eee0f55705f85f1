// SPDX-License-Identifier: MIT
#include "workarea/ORVQDFieldDrag.h"

#include "contract/ChangeScope.h"
#include "toolkit/Glyph.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QScopeGuard>

#include <cstdlib>
#include <utility>

namespace orv {

namespace {

constexpr int rowBandPx = 5;
// The part of the drag cursor that is not transparent: where nothing mixes windows, transparent
// pixels hide what is below them.
constexpr QRect plate(10, 17, 21, 12);
// Beside the pointer and below the row to which it points.
constexpr QPoint nameOffset(12, 14);
constexpr int labelMarginPx = 4;

// What hangs on the pointer: the name of the field, or a plate that stands for one.
QPixmap dragPicture(const TorvQDWorkArea& area, const DraggedField& field) {
    const qreal scale = area.devicePixelRatioF();
    const auto picture = [&](const QSize& size) {
        QPixmap pixmap(size * scale);
        pixmap.setDevicePixelRatio(scale);
        pixmap.fill(Qt::transparent);
        return pixmap;
    };
    if (!area.options().GetDragFieldName()) {
        const Glyph& cursor = glyph(QStringLiteral("DragCursor"));
        QPixmap pixmap = picture(plate.size());
        QPainter painter(&pixmap);
        cursor.paint(painter, QRectF(-plate.topLeft(), QSizeF(cursor.size())));
        return pixmap;
    }
    const QFontMetrics metrics(area.GetFont());
    const QString text = field.qualifiedName();
    const QSize size(metrics.horizontalAdvance(text) + 2 * labelMarginPx,
                     metrics.height() + labelMarginPx);
    QPixmap pixmap = picture(size);
    QPainter painter(&pixmap);
    painter.setFont(area.GetFont());
    painter.setBrush(area.palette().color(QPalette::ToolTipBase));
    painter.setPen(area.palette().color(QPalette::ToolTipText));
    painter.drawRect(QRect(QPoint(0, 0), size).adjusted(0, 0, -1, -1));
    painter.drawText(QRect(QPoint(0, 0), size), Qt::AlignCenter | Qt::TextSingleLine, text);
    return pixmap;
}

}  // namespace

// --- the drag ---

// The drag belongs to nobody who may die in it; it looks up again by name what it was about.
void FieldDrag::run(const TorvQDListItem& item) {
    const DraggedField field{m_area.dragIdentity(), item.Table->GetAlias(), item.Name};
    m_field = field;
    m_target.reset();
    const QPointer<TorvQDWorkArea> area(&m_area);
    // Also when the host raises something on the way.
    const auto over = qScopeGuard([&] {
        if (!area) return;
        leave();
        m_field.reset();
        m_target.reset();
    });
    m_area.fieldDragStarted(field);
    if (!area) return;
    auto* source = new QObject;
    const auto last = qScopeGuard([source] { source->deleteLater(); });
    auto* drag = new QDrag(source);
    drag->setMimeData(toMimeData(field).release());
    drag->setPixmap(dragPicture(m_area, field));
    drag->setHotSpot(m_area.options().GetDragFieldName() ? -nameOffset : -plate.topLeft());
    const QPointer<QDrag> running(drag);
    const Qt::DropAction action = runDrag(*drag);
    QObject* const target = action == Qt::IgnoreAction || !running ? nullptr : running->target();
    if (!area) return;
    leave();
    const std::optional<DraggedField> dropped = std::exchange(m_target, std::nullopt);
    if (dropped) guarded([&] { link(*dropped); });
    if (!area) return;
    m_field.reset();
    m_area.fieldDragEnded(dropped ? &m_area : target, dropped ? m_dropPoint : QPoint());
}

bool FieldDrag::isOwn(const QMimeData* data) const {
    const std::optional<DraggedField> field = draggedField(data);
    return field && m_field && field->builder == m_area.dragIdentity();
}

TorvQDListItem* FieldDrag::source() const {
    const TorvQDTable* table = m_field ? m_area.GetTable(m_field->alias) : nullptr;
    return table ? table->GetFieldItem(m_field->field) : nullptr;
}

bool FieldDrag::takes(const TorvQDListItem* item) const {
    const TorvQDListItem* from = source();
    if (!from || !item || item->ParamType != ptOutput || item->Table == from->Table) return false;
    return !m_area.FindLink(from->Table, item->Table, from, item);
}

void FieldDrag::setTarget(TorvQDListItem* item) {
    TorvQDTable* table = item ? item->Table : nullptr;
    if (m_marked && m_marked != table) m_marked->setDropItem(nullptr);
    m_marked = table;
    if (table) table->setDropItem(item);
}

void FieldDrag::link(const DraggedField& target) {
    TorvQDListItem* from = source();
    const TorvQDTable* table = m_area.GetTable(target.alias);
    TorvQDListItem* to = table ? table->GetFieldItem(target.field) : nullptr;
    if (!takes(to)) return;
    TorvQDTable* box = to->Table;
    const QPointer<TorvQDTable> chosen(box);
    ChangeScope change(&m_area, &m_area);
    const bool isLinked = m_area.AddLink(from->Table, box, from, to);
    if (chosen && isLinked) m_area.selectObject(box);
    change.finish();
}

// --- over the diagram ---

// A drag that is refused where it enters is not heard of again before it has left; here it depends
// on the place. The move that follows the entry tells what is refused.
void FieldDrag::enter(QDragMoveEvent& event, const QPoint& viewPoint) {
    const QPointer<TorvQDWorkArea> area(&m_area);
    over(event, viewPoint);
    if (!area) return;
    const QMimeData* data = event.mimeData();
    if (draggedField(data) ? isOwn(data) : m_area.takesForeignDrags()) {
        event.accept();
    } else {
        leave();
    }
}

void FieldDrag::over(QDragMoveEvent& event, const QPoint& viewPoint) {
    m_pointer = viewPoint;
    m_isOver = true;
    if (draggedField(event.mimeData())) {
        if (!isOwn(event.mimeData())) return event.ignore();
        overOwn(viewPoint);
        event.setDropAction(Qt::CopyAction);
        event.setAccepted(!m_marked.isNull());
        return;
    }
    const bool accepted = m_area.foreignDragOver(event.source(), viewPoint, *event.mimeData());
    event.setAccepted(accepted);
}

void FieldDrag::overOwn(const QPoint& viewPoint) {
    m_under = qobject_cast<TorvQDTable*>(m_area.objectAt(viewPoint));
    TorvQDListItem* item = m_area.rowAt(viewPoint);
    setTarget(takes(item) ? item : nullptr);
    startRowTimers(viewPoint);
}

// Near the upper or lower edge of its list a box scrolls its rows for as long as the pointer rests.
void FieldDrag::startRowTimers(const QPoint& viewPoint) {
    if (!m_under || !m_under->Expanded) return;
    const TRect list = m_under->toView(m_under->GetClientRect());
    const bool isUp = std::abs(viewPoint.y() - list.Top) <= rowBandPx;
    const bool isDown = std::abs(viewPoint.y() - list.Bottom) <= rowBandPx;
    if (!isUp && !isDown) return;
    const QPoint point = viewPoint + m_area.scrollPosition();
    const int timer = isUp ? TorvQDWorkArea::rowsUpTimer : TorvQDWorkArea::rowsDownTimer;
    if (point == m_restingPoint && m_area.isTimerActive(timer)) return;
    m_restingPoint = point;
    m_area.stopTimer(isUp ? TorvQDWorkArea::rowsDownTimer : TorvQDWorkArea::rowsUpTimer);
    m_area.startTimerNumber(timer);
}

void FieldDrag::scrollRows(int timer) {
    if (!m_under || m_pointer + m_area.scrollPosition() != m_restingPoint) {
        m_area.stopTimer(timer);
        return;
    }
    const int step = timer == TorvQDWorkArea::rowsUpTimer ? -1 : 1;
    m_under->SetFirstVisibleItem(m_under->FirstVisibleItem + step);
    TorvQDListItem* item = m_area.rowAt(m_pointer);
    setTarget(takes(item) ? item : nullptr);
}

// The diagram was scrolled under the resting pointer.
void FieldDrag::follow() {
    if (!m_isOver || !m_field) return;
    m_under = qobject_cast<TorvQDTable*>(m_area.objectAt(m_pointer));
    TorvQDListItem* item = m_area.rowAt(m_pointer);
    setTarget(takes(item) ? item : nullptr);
}

void FieldDrag::leave() {
    m_isOver = false;
    setTarget(nullptr);
    m_under.clear();
    m_area.stopTimer(TorvQDWorkArea::rowsUpTimer);
    m_area.stopTimer(TorvQDWorkArea::rowsDownTimer);
    m_area.stopTimer(TorvQDWorkArea::edgeTimer);
}

// The effect comes when the drag is over: a message in here would block the one that drags.
void FieldDrag::drop(QDropEvent& event, const QPoint& viewPoint) {
    if (draggedField(event.mimeData())) {
        if (!isOwn(event.mimeData())) return event.ignore();
        TorvQDListItem* item = m_area.rowAt(viewPoint);
        if (!takes(item)) {
            event.ignore();
        } else {
            m_target = DraggedField{m_field->builder, item->Table->GetAlias(), item->Name};
            m_dropPoint = viewPoint;
            event.setDropAction(Qt::CopyAction);
            event.accept();
        }
        leave();
        return;
    }
    leave();
    event.acceptProposedAction();
    m_area.foreignDrop(event.source(), viewPoint, *event.mimeData());
}

void FieldDrag::forget(const TorvQDFloatObject* object) {
    if (m_marked == object) setTarget(nullptr);
    if (m_under == object) m_under.clear();
}

}  // namespace orv
