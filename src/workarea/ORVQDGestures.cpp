// SPDX-License-Identifier: MIT
#include "workarea/ORVQDGestures.h"

#include "contract/ChangeScope.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QPainter>
#include <QScopeGuard>

#include <algorithm>

namespace orv {

namespace {

// A hand that clicks is not quite still.
constexpr int moveThresholdPx = 3;
constexpr int endMarginPx = 4;

bool isEdge(TTableHitTest hit) {
    return hit >= htTLeft && hit <= htTRightBottom;
}

bool isLeft(TTableHitTest hit) {
    return hit == htTLeft || hit == htTLeftTop || hit == htTLeftBottom;
}

bool isRight(TTableHitTest hit) {
    return hit == htTRight || hit == htTRightTop || hit == htTRightBottom;
}

bool isTop(TTableHitTest hit) {
    return hit == htTTop || hit == htTLeftTop || hit == htTRightTop;
}

bool isBottom(TTableHitTest hit) {
    return hit == htTBottom || hit == htTLeftBottom || hit == htTRightBottom;
}

}  // namespace

TorvQDTable* Gestures::table() const {
    return qobject_cast<TorvQDTable*>(m_object.data());
}

TorvQDLink* Gestures::link() const {
    return qobject_cast<TorvQDLink*>(m_object.data());
}

QPoint Gestures::toDiagram(const QPoint& viewPoint) const {
    return viewPoint + m_area.scrollPosition();
}

bool Gestures::movesThings() const {
    return m_kind == Kind::MovingBox || m_kind == Kind::SizingBox || m_kind == Kind::MovingBend ||
           m_kind == Kind::DraggingEnd;
}

// What the hand has gone since the press, in pixels of the screen: it is as steady over a magnified
// view as over any other.
qreal Gestures::wayOfHand(const QPoint& viewPoint) const {
    return (viewPoint - m_pressPoint).manhattanLength() * m_area.zoom();
}

bool Gestures::hasLeftPress(const QPoint& viewPoint) const {
    return wayOfHand(viewPoint) >= moveThresholdPx;
}

// --- press, move, release ---

void Gestures::begin(TorvQDFloatObject* object, const TWMMouse& message) {
    m_last = message;
    m_pressPoint = {message.XPos, message.YPos};
    m_pressInDiagram = toDiagram(m_pressPoint);
    m_object = object;
    m_hit = object ? object->HitTest(m_pressPoint) : htTOutSide;
    m_kind = object ? Kind::Pressed : Kind::Idle;
    m_pressedRow = -1;
    TorvQDTable* box = table();
    if (!box) return;
    m_shape = box->shape();
    const TorvQDListItem* row =
        m_hit == htTClient ? box->GetItemAt(m_pressPoint.x(), m_pressPoint.y()) : nullptr;
    if (row) m_pressedRow = row->GetIndex();
}

void Gestures::press(TorvQDFloatObject* object, TWMMouse message) {
    giveUp();
    const QPointer<TorvQDFloatObject> pressed(object);
    const QPointer<TorvQDWorkArea> area(&m_area);
    m_area.selectObject(object);
    // The host may have closed it when it came to the front.
    if (!area || !pressed || !m_area.holds(pressed)) return;
    begin(pressed, message);
    pressed->MouseDown(message, m_hit);
}

// The second press of a double click does not arrive as one; its release does.
void Gestures::doubleClick(TorvQDFloatObject* object, TWMMouse message) {
    giveUp();
    begin(object, message);
    if (TorvQDTable* box = table()) {
        if (m_hit == htTRight) m_area.fitWidth(*box);
        box->DblClick(message, m_hit);
    } else if (TorvQDLink* line = link()) {
        reset();
        line->_LinkProperties();
    }
}

void Gestures::move(TWMMouse message) {
    const QPoint point(message.XPos, message.YPos);
    m_last = message;
    const bool pans = m_kind == Kind::Panning;
    const Qt::MouseButton button = pans ? Qt::MiddleButton : Qt::LeftButton;
    if (!(message.Buttons & button)) return end();  // released where nobody told of it
    if (pans) return pan(point);
    if (m_kind == Kind::Pressed && table() && hasLeftPress(point)) {
        if (m_hit == htTCaption) m_kind = Kind::MovingBox;
        if (isEdge(m_hit)) m_kind = Kind::SizingBox;
    }
    if (m_kind == Kind::Pressed && link() && hasLeftPress(point)) {
        if (link()->isBendDragged()) m_kind = Kind::MovingBend;
        if (link()->isEndDragged()) {
            m_kind = Kind::DraggingEnd;
            m_endPoint = m_pressPoint;
        }
    }
    const QPointer<TorvQDWorkArea> area(&m_area);
    switch (m_kind) {
    case Kind::MovingBox: moveBox(point); break;
    case Kind::SizingBox: sizeBox(point); break;
    case Kind::DraggingEnd: moveEnd(point); break;
    case Kind::MovingBend:
        // Bend points stay on the diagram.
        message.XPos = std::max(message.XPos, -m_area.scrollPosition().x());
        message.YPos = std::max(message.YPos, -m_area.scrollPosition().y());
        break;
    case Kind::Idle:
    case Kind::Pressed:
    case Kind::Panning: break;
    }
    if (!area || !m_object) return;
    const bool waits = m_kind == Kind::Pressed && link() && link()->isBendDragged();
    if (!waits) m_object->MouseMove(message, m_hit);
}

void Gestures::release(TWMMouse message) {
    const QPointer<TorvQDWorkArea> area(&m_area);
    const QPointer<TorvQDFloatObject> object(m_object);
    const TTableHitTest hit = m_hit;
    const Kind kind = m_kind;
    if (kind == Kind::DraggingEnd) {
        dropEnd();
    } else {
        // A bend point that was only clicked stays where it is.
        if (kind == Kind::Pressed && link()) link()->cancelDrag();
        m_kind = Kind::Idle;
        m_object.clear();
    }
    // Also when the host raises something: what was moved is told.
    const auto over = qScopeGuard([&] {
        if (area) reset();
    });
    if (area && object && kind != Kind::Panning) object->MouseUp(message, hit);
}

void Gestures::setMouse(const QPoint& viewPoint) {
    m_last.XPos = viewPoint.x();
    m_last.YPos = viewPoint.y();
}

void Gestures::follow() {
    if (movesThings()) move(m_last);
}

// --- ends ---

void Gestures::reset() {
    setTarget(nullptr);
    m_area.stopTimer(TorvQDWorkArea::edgeTimer);
    m_kind = Kind::Idle;
    m_object.clear();
    m_hit = htTOutSide;
    m_pressedRow = -1;
    m_area.gestureEnded();
}

void Gestures::end() {
    if (TorvQDTable* box = table()) {
        box->PressedButton = -1;
        m_area.invalidate(box->toView(box->GetButtonRect()));
    }
    if (TorvQDLink* line = link()) {
        invalidateEndBand();
        line->cancelDrag();
    }
    reset();
}

bool Gestures::cancel() {
    if (isIdle()) return false;
    const bool wasMoved = m_kind == Kind::MovingBox || m_kind == Kind::SizingBox;
    if (wasMoved && table()) table()->setShape(m_shape);
    if (m_kind == Kind::Panning) pan(m_pressPoint);
    end();
    return true;
}

// Another button takes over. A panned view stays: the press is meant for what it shows.
void Gestures::giveUp() {
    if (m_kind == Kind::Panning) return end();
    cancel();
}

void Gestures::forget(const TorvQDFloatObject* object) {
    if (m_object == object) end();
    if (m_target == object) setTarget(nullptr);
}

bool Gestures::takesRow(const TorvQDListItem* item) const {
    if (m_kind != Kind::Pressed || !item || item->GetIndex() != m_pressedRow) return false;
    return wayOfHand({m_last.XPos, m_last.YPos}) >= QApplication::startDragDistance();
}

// --- boxes ---

void Gestures::moveBox(const QPoint& viewPoint) {
    const QPoint before(m_shape.left, m_shape.top);
    m_area.placeBox(*table(), before + toDiagram(viewPoint) - m_pressInDiagram, before);
}

void Gestures::sizeBox(const QPoint& viewPoint) {
    TorvQDTable& box = *table();
    const QPoint way = toDiagram(viewPoint) - m_pressInDiagram;
    const auto limit = [](int edge, int before) {
        return std::min(edge, std::max(before, TorvQDWorkArea::diagramExtentPx));
    };
    if (isLeft(m_hit)) box.MoveLeft(std::max(0, m_shape.left + way.x()));
    if (isTop(m_hit)) box.MoveUpper(std::max(0, m_shape.top + way.y()));
    // A box that is smaller than anybody can size it grows at once, beyond its opposite edge where
    // there is no other room.
    box.MoveTable(std::max(0, box.Left) - box.Left, std::max(0, box.Top) - box.Top);
    const int right = m_shape.left + m_shape.width;
    const int bottom = m_shape.top + m_shape.height;
    if (isRight(m_hit)) box.SetWidth(limit(right + way.x(), right) - m_shape.left);
    if (isBottom(m_hit)) box.SetHeight(limit(bottom + way.y(), bottom) - m_shape.top);
}

// --- ends of links ---

bool Gestures::takesEnd(const TorvQDListItem* item) const {
    const TorvQDLink* line = link();
    if (!line || !item || item->ParamType != ptOutput) return false;
    const bool isStart = line->DragIndex == 0;
    const TorvQDListItem* other = isStart ? line->Item2 : line->Item1;
    if (item->Table == other->Table) return false;
    return !m_area.FindLink(item->Table, other->Table, item, other);
}

void Gestures::setTarget(TorvQDListItem* item) {
    TorvQDTable* table = item ? item->Table : nullptr;
    if (m_target && m_target != table) m_target->setDropItem(nullptr);
    m_target = table;
    m_targetRow = item ? item->GetIndex() : -1;
    if (table) table->setDropItem(item);
}

// The point of the line from which a straight line goes to the dragged end.
QPoint Gestures::endBandStart() const {
    const TorvQDLink& line = *link();
    return line.GetPoint(line.DragIndex == 0 ? 2 : line.GetCountPoints() - 3);
}

void Gestures::invalidateEndBand() const {
    if (m_kind != Kind::DraggingEnd || !link()) return;
    const QRect band = QRect(endBandStart(), m_endPoint).normalized();
    m_area.invalidate(QRegion(band.adjusted(-endMarginPx, -endMarginPx, endMarginPx, endMarginPx)));
}

void Gestures::moveEnd(const QPoint& viewPoint) {
    TorvQDListItem* item = m_area.rowAt(viewPoint);
    invalidateEndBand();
    m_endPoint = viewPoint;
    invalidateEndBand();
    setTarget(takesEnd(item) ? item : nullptr);
}

void Gestures::dropEnd() {
    const QPointer<TorvQDLink> line(link());
    TorvQDListItem* item = nullptr;
    if (m_target && m_targetRow >= 0 && m_targetRow < int(m_target->Items.size())) {
        item = m_target->Items[std::size_t(m_targetRow)].get();
    }
    const bool takes = takesEnd(item);
    const int index = line ? line->DragIndex : -1;
    end();
    if (!line || !takes) return;
    line->DragIndex = index;
    reattach(*line, item);
}

// To another row of the same box the link goes over; to another box goes a new link like it, when
// the host allows both.
void Gestures::reattach(TorvQDLink& line, TorvQDListItem* item) {
    const bool isStart = std::exchange(line.DragIndex, -1) == 0;
    TorvQDListItem*& end = isStart ? line.Item1 : line.Item2;
    if (item->Table == end->Table) {
        m_area.attachLink(&line, isStart, item);
    } else {
        m_area.replaceLink(&line, isStart, item);
    }
}

// --- panning ---

void Gestures::beginPanning(const QPoint& viewPoint) {
    cancel();
    m_kind = Kind::Panning;
    m_pressPoint = viewPoint;
    m_pressInDiagram = toDiagram(viewPoint);
}

void Gestures::pan(const QPoint& viewPoint) {
    m_area.scrollTo(m_pressInDiagram - viewPoint);
}

// --- painting ---

void Gestures::paint(QPainter& painter) const {
    const TorvQDLink* line = link();
    if (!line) return;
    if (m_kind == Kind::MovingBend) line->paintBand(painter);
    if (m_kind != Kind::DraggingEnd) return;
    painter.save();
    painter.setPen(QPen(Qt::white, 1));
    painter.drawLine(endBandStart(), m_endPoint);
    painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    painter.drawLine(endBandStart(), m_endPoint);
    painter.restore();
}

}  // namespace orv
