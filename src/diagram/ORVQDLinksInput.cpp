// SPDX-License-Identifier: MIT
// What a link does with the mouse and the keys that the canvas hands to it, and its menu.
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "diagram/Orvvisualutils.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QMenu>
#include <QScopeGuard>

#include <algorithm>

namespace {

constexpr int bandMarginPx = 2;
constexpr int coarseStepPx = 10;
constexpr int firstBend = 2;  // index of the first bend point

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
    auto letGo = qScopeGuard([&] {
        if (self) cancelDrag();
    });
    TorvQDFloatObject::MouseUp(Message, Hit);
    letGo.dismiss();
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
    tellBent();
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
    addAction(Menu, Muted ? QStringLiteral("Unmute link") : QStringLiteral("Mute link"),
              &TorvQDLink::_MuteLink);
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

void TorvQDLink::_MuteLink() {
    if (canvas()) canvas()->muteLink(this, !Muted);
}

// --- the keys ---

bool TorvQDLink::usesKey(int key, Qt::KeyboardModifiers shift, const QString&) const {
    if (shift & (Qt::AltModifier | Qt::MetaModifier)) return false;
    const bool isPlain = !(shift & Qt::ControlModifier);
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Delete: return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
    case Qt::Key_Insert: return isPlain;
    case Qt::Key_M: return shift == Qt::ControlModifier;
    default: return false;
    }
}

void TorvQDLink::KeyDown(int& Key, Qt::KeyboardModifiers Shift) {
    const QPointer<TorvQDLink> self(this);
    TorvQDFloatObject::KeyDown(Key, Shift);
    if (!self || !usesKey(Key, Shift, QString())) return;
    const QPoint arrow = orv::arrowOf(Key);
    const bool hasControl = Shift & Qt::ControlModifier;
    switch (std::exchange(Key, 0)) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: return _LinkProperties();
    case Qt::Key_Delete: return hasControl ? deleteChosenBend() : _DeleteLink();
    case Qt::Key_Insert: return insertPointInTheMiddle();
    case Qt::Key_M: return _MuteLink();
    default: break;
    }
    if (hasControl) {
        moveChosenBend(arrow * (Shift & Qt::ShiftModifier ? 1 : coarseStepPx));
    } else {
        chooseBend(arrow.x() + arrow.y());
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
    tellBent();
}

// The longest segment between the stubs is meant, wherever else the line runs past its middle.
void TorvQDLink::insertPointInTheMiddle() {
    const auto length = [&](int segment) {
        return (GetPoint(segment + 1) - GetPoint(segment)).manhattanLength();
    };
    int longest = 1;
    for (int segment = 2; segment < GetCountPoints() - 2; ++segment) {
        if (length(segment) > length(longest)) longest = segment;
    }
    const QPoint middle = toDiagram((GetPoint(longest) + GetPoint(longest + 1)) / 2);
    invalidateLine();
    m_points.insert(m_points.begin() + longest + 1, middle);
    m_chosenBend = longest + 1;
    tellBent();
}

// The one before it is chosen then; without bend points there is none.
void TorvQDLink::deleteChosenBend() {
    const int bend = chosenBend();
    if (bend < 0) return;
    invalidateLine();
    m_points.erase(m_points.begin() + bend);
    m_chosenBend = GetCountPoints() > firstBend + 2 ? std::max(bend - 1, firstBend) : -1;
    tellBent();
}
