// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"

#include <QPoint>
#include <QPointer>

class QPainter;
class TorvQDWorkArea;

namespace orv {

/// What the left and the middle mouse button do on the diagram from press to release: everything in
/// between goes to the pressed object, whatever is under the mouse meanwhile. Part of the work
/// area; all positions are view coordinates.
class Gestures {
public:
    explicit Gestures(TorvQDWorkArea& area) : m_area(area) {}

    /// What is going on. `Pressed` has not become anything else yet.
    enum class Kind { Idle, Pressed, MovingBox, SizingBox, MovingBend, DraggingEnd, Panning };
    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] bool isIdle() const { return m_kind == Kind::Idle; }
    /// Whether something follows the mouse that may have to leave the view.
    [[nodiscard]] bool movesThings() const;
    [[nodiscard]] TTableHitTest pressedHit() const { return m_hit; }
    [[nodiscard]] TorvQDFloatObject* pressedObject() const { return m_object; }

    void press(TorvQDFloatObject* object, TWMMouse message);
    void doubleClick(TorvQDFloatObject* object, TWMMouse message);
    void move(TWMMouse message);
    void release(TWMMouse message);
    void beginPanning(const QPoint& viewPoint);

    /// The resting mouse has other view coordinates: the view was magnified.
    void setMouse(const QPoint& viewPoint);
    /// The diagram was scrolled or magnified under the resting mouse.
    void follow();
    /// Ends the gesture and restores what was at the press; false when nothing was going on.
    bool cancel();
    /// Ends the gesture where it is: the mouse is lost.
    void end();
    /// The object is about to go: a gesture that is about it ends.
    void forget(const TorvQDFloatObject* object);

    /// The row was pressed, and the mouse has moved far enough from there to take it along.
    [[nodiscard]] bool takesRow(const TorvQDListItem* item) const;

    /// What follows the mouse: the band of a bend point, the end of a link.
    void paint(QPainter& painter) const;

private:
    [[nodiscard]] TorvQDTable* table() const;
    [[nodiscard]] TorvQDLink* link() const;
    [[nodiscard]] QPoint toDiagram(const QPoint& viewPoint) const;
    [[nodiscard]] qreal wayOfHand(const QPoint& viewPoint) const;
    [[nodiscard]] bool hasLeftPress(const QPoint& viewPoint) const;
    void begin(TorvQDFloatObject* object, const TWMMouse& message);
    void moveBox(const QPoint& viewPoint);
    void sizeBox(const QPoint& viewPoint);
    void moveEnd(const QPoint& viewPoint);
    void dropEnd();
    void reattach(TorvQDLink& link, TorvQDListItem* item);
    void setTarget(TorvQDListItem* item);
    [[nodiscard]] bool takesEnd(const TorvQDListItem* item) const;
    [[nodiscard]] QPoint endBandStart() const;
    void invalidateEndBand() const;
    void pan(const QPoint& viewPoint);
    void giveUp();
    void reset();

    TorvQDWorkArea& m_area;
    Kind m_kind = Kind::Idle;
    QPointer<TorvQDFloatObject> m_object;
    TTableHitTest m_hit = htTOutSide;
    QPoint m_pressPoint;         // view coordinates
    QPoint m_pressInDiagram;     // diagram coordinates
    TWMMouse m_last;             // the last message, in view coordinates
    TorvQDTable::Shape m_shape;  // of the box at the press
    int m_pressedRow = -1;
    QPoint m_endPoint;               // where the dragged end of a link is, in view coordinates
    QPointer<TorvQDTable> m_target;  // of the end of a link
    int m_targetRow = -1;
};

}  // namespace orv
