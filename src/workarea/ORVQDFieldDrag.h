// SPDX-License-Identifier: MIT
#pragma once

#include "data/DraggedField.h"
#include "diagram/ORVQDFloatTable.h"

#include <QPoint>
#include <QPointer>

#include <optional>

class QDragMoveEvent;
class QDropEvent;
class QMimeData;
class TorvQDWorkArea;

namespace orv {

/// A field taken from its row: dropped on a row of another box it makes a link. Also what other
/// things do that are dragged over the diagram: the host decides about them. Part of the work area;
/// positions are view coordinates.
class FieldDrag {
public:
    explicit FieldDrag(TorvQDWorkArea& area) : m_area(area) {}

    /// Takes the row along until the drag is over; the work area may have died when this returns.
    void run(const TorvQDListItem& item);

    /// A drag came to the diagram, moved or left; it was dropped there.
    void enter(QDragMoveEvent& event, const QPoint& viewPoint);
    void over(QDragMoveEvent& event, const QPoint& viewPoint);
    void leave();
    /// The diagram was scrolled under it.
    void follow();
    void drop(QDropEvent& event, const QPoint& viewPoint);
    /// Whether something is being dragged over the diagram.
    [[nodiscard]] bool isOver() const { return m_isOver; }

    /// Scrolls the rows of the box under the resting pointer: the timers 1 (up) and 2 (down).
    void scrollRows(int timer);

    /// Nothing of the diagram is there any more.
    void forget(const TorvQDFloatObject* object);

private:
    [[nodiscard]] bool isOwn(const QMimeData* data) const;
    [[nodiscard]] TorvQDListItem* source() const;
    [[nodiscard]] bool takes(const TorvQDListItem* item) const;
    void setTarget(TorvQDListItem* item);
    void overOwn(const QPoint& viewPoint);
    void startRowTimers(const QPoint& viewPoint);
    void link(const DraggedField& target);

    TorvQDWorkArea& m_area;
    std::optional<DraggedField> m_field;   // what is being dragged
    std::optional<DraggedField> m_target;  // where it was dropped
    QPoint m_dropPoint;
    bool m_isOver = false;
    QPoint m_pointer;       // of the last move
    QPoint m_restingPoint;  // in diagram coordinates, when a row timer was started
    QPointer<TorvQDTable> m_under;
    QPointer<TorvQDTable> m_marked;
};

}  // namespace orv
