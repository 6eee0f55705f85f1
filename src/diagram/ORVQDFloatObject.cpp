// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatObject.h"

namespace {

// The last one present wins; without any, the left one counts.
Qt::MouseButton buttonOf(Qt::MouseButtons buttons) {
    Qt::MouseButton button = Qt::LeftButton;
    if (buttons & Qt::RightButton) button = Qt::RightButton;
    if (buttons & Qt::MiddleButton) button = Qt::MiddleButton;
    return button;
}

// The mouse never tells of Alt.
TShiftState shiftOf(const TWMMouse& message) {
    return {message.Modifiers & (Qt::ControlModifier | Qt::ShiftModifier),
            message.Buttons & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton)};
}

}  // namespace

TorvQDFloatObject::TorvQDFloatObject(QWidget* AParent)
    : Parent(AParent), m_canvas(dynamic_cast<IDiagramCanvas*>(AParent)) {}

TorvQDFloatObject::~TorvQDFloatObject() = default;

void TorvQDFloatObject::SetSelect(bool Value) {
    Selected = Value;
    if (Value && canvas()) canvas()->bringToFront(this);
}

void TorvQDFloatObject::MouseDown(TWMMouse& Message, TTableHitTest) {
    Message.Result = 1;
    if (const MouseEvent handler = OnMouseDown) {
        handler(this, buttonOf(Message.Buttons), shiftOf(Message), Message.XPos, Message.YPos);
    }
}

void TorvQDFloatObject::MouseMove(TWMMouse& Message, TTableHitTest) {
    Message.Result = 1;
    if (const MouseMoveEvent handler = OnMouseMove) {
        handler(this, shiftOf(Message), Message.XPos, Message.YPos);
    }
}

void TorvQDFloatObject::MouseUp(TWMMouse& Message, TTableHitTest) {
    Message.Result = 1;
    if (const MouseEvent handler = OnMouseUp) {
        handler(this, buttonOf(Message.Buttons), shiftOf(Message), Message.XPos, Message.YPos);
    }
}

void TorvQDFloatObject::KeyDown(int& Key, Qt::KeyboardModifiers Shift) {
    if (const KeyEvent handler = OnKeyDown) handler(this, Key, Shift);
}

bool TorvQDFloatObject::usesKey(int, Qt::KeyboardModifiers, const QString&) const {
    return false;
}

void TorvQDFloatObject::KeyUp(int& Key, Qt::KeyboardModifiers Shift) {
    if (const KeyEvent handler = OnKeyUp) handler(this, Key, Shift);
}

void TorvQDFloatObject::LeaveHit(TWMMouse&, TTableHitTest) {}
