// SPDX-License-Identifier: MIT
// What a link does with the mouse and the keys that the canvas hands to it, and its menu.
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "diagram/Orvvisualutils.h"
#include "toolkit/ArrowKeys.h"
#include "toolkit/Services.h"

#include <QMenu>

#include <algorithm>

namespace {

constexpr int bandMarginPx = 2;
constexpr int coarseStepPx = 10;

}  // namespace

// --- the mouse ---

void TorvQDLink::MouseDown(TWMMouse& Message, TTableHitTest Hit) {
    const QPointer<TorvQDLink> self(this);
    TorvQDFloatObject::MouseDown(Message, Hit);
    if (!self) return;
    const QPoint mouse(Message.XPos, Message.YPos);
    const int last = GetCountPoints() - 1;
    if (Hit == htTPoint) {
        for (int index = 2; index < last - 1; ++index) {
            if (!isClose(GetPoint(index), mouse)) continue;
            DragIndex = index;
            DragPoint = GetPoint(index);
        }
    } else if (Hit == htTEndLine) {
        DragIndex = isClose(GetPoint(0), mouse) ? 0 : last;
    }
}

void TorvQDLink::MouseMove(TWMMouse& Message, TTableHitTest Hit) {
    const QPointer<TorvQDLink> self(this);
    TorvQDFloatObject::MouseMove(Message, Hit);
    if (!self || !canvas()) return;
    const bool isHeld = Message.Buttons & Qt::LeftButton;
    if (Hit != htTPoint || !isHeld || !isBendDragged()) return;
    canvas()->invalidate(bandRegion());
    DragPoint = {Message.XPos, Message.YPos};
    canvas()->invalidate(bandRegion());
}

void TorvQDLink::MouseUp(TWMMouse& Message, TTableHitTest Hit) {
    const QPointer<TorvQDLink> self(this);
    TorvQDFloatObject::MouseUp(Message, Hit);
    if (!self || !isBendDragged()) return;
    if (canvas()) canvas()->invalidate(bandRegion());
    invalidateLine();
    const QPoint point = toDiagram(DragPoint);
    TRect bounds = GetBounds();
    bounds.Left = std::min(bounds.Left, point.x() - boundsMarginPx);
    bounds.Top = std::min(bounds.Top, point.y() - boundsMarginPx);
    bounds.Right = std::max(bounds.Right, point.x() + boundsMarginPx);
    bounds.Bottom = std::max(bounds.Bottom, point.y() + boundsMarginPx);
    SetBounds(bounds);
    SetPoint(DragIndex, point);
    invalidateLine();
    DragIndex = -1;
}

bool TorvQDLink::isBendDragged() const {
    return DragIndex > 1 && DragIndex < GetCountPoints() - 2;
}

bool TorvQDLink::isEndDragged() const {
    return DragIndex == 0 || DragIndex == GetCountPoints() - 1;
}

void TorvQDLink::cancelDrag() {
    if (isBendDragged() && canvas()) canvas()->invalidate(bandRegion());
    DragIndex = -1;
}

QRegion TorvQDLink::bandRegion() const {
    QRegion region;
    for (const int neighbour : {DragIndex - 1, DragIndex + 1}) {
        const QRect segment = QRect(GetPoint(neighbour), DragPoint).normalized();
        region += segment.adjusted(-bandMarginPx, -bandMarginPx, bandMarginPx, bandMarginPx);
    }
    return region;
}

// Two colours, so that the band is seen on whatever it runs over.
void TorvQDLink::paintBand(QPainter& Painter) const {
    if (!isBendDragged() || DragPoint == GetPoint(DragIndex)) return;
    const QPoint band[] = {GetPoint(DragIndex - 1), DragPoint, GetPoint(DragIndex + 1)};
    Painter.save();
    Painter.setPen(QPen(Qt::white, 1));
    Painter.drawPolyline(band, 3);
    Painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    Painter.drawPolyline(band, 3);
    Painter.restore();
}

// --- the menu ---

void TorvQDLink::addAction(QMenu& menu, const QString& text, void (TorvQDLink::*handler)()) {
    const QPointer<TorvQDLink> self(this);
    menu.addAction(text, &menu, [self, handler] {
        orv::guarded([&] {
            if (self) (self->*handler)();
        });
    });
}

void TorvQDLink::PopupMenu(QMenu& Menu, int X, int Y, TTableHitTest Hit) {
    if (Hit != htTPoint && Hit != htTClient) return;
    DragPoint = {X, Y};
    if (Hit == htTPoint) {
        addAction(Menu, QStringLiteral("Delete point"), &TorvQDLink::_DeletePoint);
    } else {
        addAction(Menu, QStringLiteral("Insert point"), &TorvQDLink::_InsertPoint);
    }
    Menu.addSeparator();
    addAction(Menu, QStringLiteral("Delete link"), &TorvQDLink::_DeleteLink);
    addAction(Menu, QStringLiteral("Property"), &TorvQDLink::_LinkProperties);
}

void TorvQDLink::_DeleteLink() {
    const QPointer<TorvQDLink> self(this);
    const orv::MessageAnswer answer = orv::showMessage(
        {Parent,
         QStringLiteral("Are you really want to delete link between \r\n%1 and %2")
             .arg(Join->GetTableName(0), Join->GetTableName(1)),
         QStringLiteral("Attention!"), orv::MessageIcon::Question, orv::MessageButtons::YesNo});
    if (answer == orv::MessageAnswer::No || !self || !canvas()) return;
    canvas()->postDeleteLink(this);
}

void TorvQDLink::_LinkProperties() {
    if (canvas()) canvas()->editLink(this);
}

// --- the keys ---

void TorvQDLink::KeyDown(int& Key, Qt::KeyboardModifiers Shift) {
    const QPointer<TorvQDLink> self(this);
    TorvQDFloatObject::KeyDown(Key, Shift);
    if (!self) return;
    const QPoint arrow = orv::arrowOf(Key);
    const bool hasControl = Shift & Qt::ControlModifier;
    if (!arrow.isNull()) {
        Key = 0;
        if (hasControl) {
            moveChosenBend(arrow * (Shift & Qt::ShiftModifier ? 1 : coarseStepPx));
        } else {
            chooseBend(arrow.x() + arrow.y());
        }
        return;
    }
    switch (Key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        Key = 0;
        _LinkProperties();
        break;
    case Qt::Key_Delete:
        Key = 0;
        if (!hasControl) return _DeleteLink();
        if (chosenBend() < 0) return;
        DragPoint = GetPoint(chosenBend());
        _DeletePoint();
        break;
    case Qt::Key_Insert:
        Key = 0;
        insertPointInTheMiddle();
        break;
    default: break;
    }
}

int TorvQDLink::chosenBend() const {
    return m_chosenBend > 1 && m_chosenBend < GetCountPoints() - 2 ? m_chosenBend : -1;
}

void TorvQDLink::chooseBend(int step) {
    const int last = GetCountPoints() - 3;
    if (last < 2) return;
    const int current = chosenBend();
    m_chosenBend = current < 0 ? (step > 0 ? 2 : last) : std::clamp(current + step, 2, last);
    invalidateLine();
}

void TorvQDLink::moveChosenBend(const QPoint& by) {
    const int bend = chosenBend();
    if (bend < 0) return;
    invalidateLine();
    const QPoint moved = m_points[std::size_t(bend)] + by;
    SetPoint(bend, {std::max(0, moved.x()), std::max(0, moved.y())});
    SetBoundaryRect();
    invalidateLine();
}

void TorvQDLink::insertPointInTheMiddle() {
    const auto length = [&](int segment) {
        return (GetPoint(segment + 1) - GetPoint(segment)).manhattanLength();
    };
    int longest = 1;
    for (int segment = 2; segment < GetCountPoints() - 2; ++segment) {
        if (length(segment) > length(longest)) longest = segment;
    }
    const int count = GetCountPoints();
    DragPoint = (GetPoint(longest) + GetPoint(longest + 1)) / 2;
    _InsertPoint();
    if (GetCountPoints() > count) m_chosenBend = longest + 1;
    invalidateLine();
}
