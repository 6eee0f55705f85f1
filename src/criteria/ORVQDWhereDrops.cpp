// SPDX-License-Identifier: MIT
// Fields of the diagram that are dropped on a criteria panel.
#include "contract/IPagesHost.h"
#include "criteria/ORVQDWherePanel.h"
#include "data/DraggedField.h"
#include "toolkit/Services.h"

#include <QDragEnterEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QTimerEvent>

namespace {

constexpr int edgeBandPx = 12;
constexpr int edgeStepMs = 60;

}  // namespace

// --- what takes a field ---

// None for anything but a field of this builder's diagram over a field or an argument.
TorvQDControl* TorvQDWherePanel::dropElement(const QMimeData* data, const QPoint& viewPoint) {
    const IPagesHost* owner = host();
    const auto field = orv::draggedField(data);
    if (!owner || !field || field->builder != owner->dragIdentity()) return nullptr;
    TorvQDControl* element = elementAt(viewPoint);
    return element && element->Row->textOf(element->Kind) ? element : nullptr;
}

bool TorvQDWherePanel::_DragOver(const QMimeData* Data, const QPoint& Point) {
    const TorvQDControl* element = dropElement(Data, Point);
    markDropElement(element);
    return element;
}

// The drag is still going on: what follows may show a box, or end in the panel's destruction.
void TorvQDWherePanel::_DragDrop(const QMimeData* Data, const QPoint& Point) {
    const orv::ElementRef target(dropElement(Data, Point));
    if (!target.get()) return;
    const orv::DraggedField field = *orv::draggedField(Data);
    const auto drop = [this, target, field] {
        orv::guarded([&] {
            const QPointer<TorvQDWherePanel> self(this);
            commitEdit();
            const TorvQDControl* element = self ? target.get() : nullptr;
            if (!element || !element->Row->textOf(element->Kind)) return;
            // Its box may be gone by now.
            const IPagesHost* owner = host();
            if (!owner || !owner->tableAliases().contains(field.alias)) return;
            storeText(*element, field.qualifiedName());
            if (self) setFocus();
        });
    };
    QMetaObject::invokeMethod(this, drop, Qt::QueuedConnection);
}

// --- what is seen of it ---

void TorvQDWherePanel::markDropElement(const TorvQDControl* element) {
    const orv::ElementRef next(element);
    if (next == m_dropMark) return;
    updateRow(m_dropMark.row());
    m_dropMark = next;
    updateRow(m_dropMark.row());
}

void TorvQDWherePanel::drawDropMark(QPainter& painter) {
    const TorvQDControl* element = m_dropMark.get();
    const QRect rect = element ? elementRect(*element) : QRect();
    if (rect.isEmpty()) return;
    QColor veil = palette().color(QPalette::Highlight);
    painter.setPen(veil);
    veil.setAlphaF(0.25F);
    painter.setBrush(veil);
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
}

// While something is dragged near the edge of the view, the view follows.
void TorvQDWherePanel::watchEdge(const QPoint& viewPoint) {
    m_dragPoint = viewPoint;
    const QRect inside =
        viewport()->rect().adjusted(edgeBandPx, edgeBandPx, -edgeBandPx, -edgeBandPx);
    if (inside.contains(viewPoint)) {
        m_edgeTimer.stop();
    } else if (!m_edgeTimer.isActive()) {
        m_edgeTimer.start(edgeStepMs, this);
    }
}

void TorvQDWherePanel::scrollAtEdge() {
    const auto step = [](QScrollBar& bar, int place, int length) {
        if (place < edgeBandPx) bar.triggerAction(QAbstractSlider::SliderSingleStepSub);
        if (place >= length - edgeBandPx) bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    };
    step(*horizontalScrollBar(), m_dragPoint.x(), viewport()->width());
    step(*verticalScrollBar(), m_dragPoint.y(), viewport()->height());
    const TorvQDControl* element = elementAt(m_dragPoint);
    markDropElement(element && element->Row->textOf(element->Kind) ? element : nullptr);
}

void TorvQDWherePanel::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_edgeTimer.timerId()) {
        orv::guarded([this] { scrollAtEdge(); });
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

// --- events ---

// Over the wrong places it is refused move by move.
void TorvQDWherePanel::dragEnterEvent(QDragEnterEvent* event) {
    orv::guarded([&] {
        const IPagesHost* owner = host();
        const auto field = orv::draggedField(event->mimeData());
        const bool isOwn = owner && field && field->builder == owner->dragIdentity();
        event->setDropAction(Qt::CopyAction);
        event->setAccepted(isOwn);
    });
}

void TorvQDWherePanel::dragMoveEvent(QDragMoveEvent* event) {
    orv::guarded([&] {
        const QPoint point = event->position().toPoint();
        event->setDropAction(Qt::CopyAction);
        event->setAccepted(_DragOver(event->mimeData(), point));
        watchEdge(point);
    });
}

void TorvQDWherePanel::dragLeaveEvent(QDragLeaveEvent*) {
    m_edgeTimer.stop();
    markDropElement(nullptr);
}

void TorvQDWherePanel::dropEvent(QDropEvent* event) {
    orv::guarded([&] {
        const QPoint point = event->position().toPoint();
        m_edgeTimer.stop();
        markDropElement(nullptr);
        event->setDropAction(Qt::CopyAction);
        event->setAccepted(dropElement(event->mimeData(), point));
        _DragDrop(event->mimeData(), point);
    });
}
