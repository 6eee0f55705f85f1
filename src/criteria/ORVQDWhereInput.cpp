// SPDX-License-Identifier: MIT
// Mouse and keyboard of a criteria panel.
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWhereAccessible.h"
#include "criteria/ORVQDWherePanel.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>

namespace {

Qt::KeyboardModifiers modifiersOf(const QKeyEvent& event) {
    return event.modifiers() & ~Qt::KeypadModifier;
}

// The keys that the panel has a use for.
bool isCommand(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = modifiersOf(event);
    const bool isPlain = modifiers == Qt::NoModifier;
    const bool isCtrl = modifiers == Qt::ControlModifier;
    const bool isPlainOrCtrl = isPlain || isCtrl;
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Insert: return isPlainOrCtrl;
    case Qt::Key_Up:
    case Qt::Key_Down: return isPlain || modifiers == Qt::AltModifier;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: return isPlain;
    case Qt::Key_Delete:
    case Qt::Key_C:
    case Qt::Key_X:
    case Qt::Key_V:
    case Qt::Key_M:
    case Qt::Key_D: return isCtrl;
    default: return false;
    }
}

// Those that copy and move rows as they are.
bool isTextKey(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down: return modifiersOf(event) == Qt::AltModifier;
    case Qt::Key_C:
    case Qt::Key_X:
    case Qt::Key_V:
    case Qt::Key_M:
    case Qt::Key_D: return true;
    default: return false;
    }
}

}  // namespace

// --- mouse ---

void TorvQDWherePanel::mouseMoveEvent(QMouseEvent* event) {
    orv::guarded([&] { setHotElement(elementAt(event->pos())); });
}

// What is being typed is taken over before the click counts; the host may change all rows then.
void TorvQDWherePanel::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_layout) return;
    const QPointer<TorvQDWherePanel> self(this);
    const QPoint pos = event->pos();
    orv::guarded([&] {
        HideFieldList();
        if (!self) return;
        setFocus(Qt::MouseFocusReason);
        if (!self) return;
        const TorvQDControl* element = elementAt(pos);
        setHotElement(element);
        setCurrentElement(element);
        m_pressed = orv::ElementRef(element);
        if (element) {
            element->Kind == ekButton ? updateRow(element->Row) : setActiveElement(element);
            return;
        }
        // Beside its texts a row is meant as a whole.
        int top = 0;
        const TorvQDWhereRow* row = LookRows(pos.y() + contentOffset().y(), top);
        if (row && m_active.row() != row) setActiveElement(elementLike(*row, ekFieldName));
    });
}

void TorvQDWherePanel::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_layout) return;
    const QPoint pos = event->pos();
    orv::guarded([&] {
        const orv::ElementRef pressed = std::exchange(m_pressed, {});
        if (pressed.row()) updateRow(pressed.row());
        const TorvQDControl* element = elementAt(pos);
        if (!element) return;
        const int top = elementRect(*element).top();
        element->Kind == ekButton ? ButtonClick(*element, top) : TextClick(*element, top);
    });
}

void TorvQDWherePanel::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

// The commands about the row under the mouse, or about the active one.
void TorvQDWherePanel::contextMenuEvent(QContextMenuEvent* event) {
    if (!m_layout) return;
    const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
    const QPoint pos = event->pos();
    const QPointer<TorvQDWherePanel> self(this);
    orv::guarded([&] {
        HideFieldList();
        if (!self) return;
        int top = 0;
        const TorvQDControl* active = ActiveElement();
        const TorvQDWhereRow* row = active ? active->Row : nullptr;
        if (isByMouse) row = LookRows(pos.y() + contentOffset().y(), top);
        if (!row) return;
        if (!isByMouse) showElement(*row->Controls[ekButton]);
        const TorvQDControl& button = *row->Controls[ekButton];
        ButtonClick(button, elementRect(button).top());
    });
}

// --- keyboard ---

bool TorvQDWherePanel::event(QEvent* event) {
    // Its keys are its own, also where the window has shortcuts on them.
    if (event->type() == QEvent::ShortcutOverride && isCommand(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

// A command that is refused has used its key up all the same.
void TorvQDWherePanel::keyPressEvent(QKeyEvent* event) {
    bool isHandled = true;
    orv::guarded([&] { isHandled = handleKey(*event); });
    if (!isHandled) event->ignore();
}

// The rest goes to whoever is around the panel, the default button of a dialog included.
bool TorvQDWherePanel::handleKey(const QKeyEvent& event) {
    const TorvQDControl* active = m_layout ? ActiveElement() : nullptr;
    if (!active || !isCommand(event)) return false;
    // What the editor or its list has no use for, at the end of a text or list, moves nothing here.
    if (isEditing()) return !isTextKey(event);
    const bool withCtrl = modifiersOf(event) == Qt::ControlModifier;
    const int key = event.key();
    if (isTextKey(event)) {
        runTextKey(key);
        return true;
    }
    if (orv::isEnter(key) || key == Qt::Key_F2) {
        showElement(*active);
        TextClick(*active, elementRect(*active).top());
        return true;
    }
    switch (key) {
    case Qt::Key_Insert:
        setCurrentElement(active);
        withCtrl && !active->Row->isGroup() ? MakeCompositCondition() : AddCondition();
        break;
    case Qt::Key_Delete:
        setCurrentElement(active);
        DeleteCondition();
        break;
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: jump(key); break;
    default: moveActive(key, withCtrl);
    }
    return true;
}

// The row that is shown above or below another one.
TorvQDWhereRow* TorvQDWherePanel::rowBeside(const TorvQDWhereRow& row, int step) {
    const std::vector<TorvQDWhereRow*>& rows = shownRows();
    const int position = orv::ConditionLayout::positionOf(row) + step;
    return position >= 0 && position < int(rows.size()) ? rows[std::size_t(position)] : nullptr;
}

// The element where a key leads; none where there is no further row. A step up or down to an
// element that is not shown goes on to the right.
TorvQDControl* TorvQDWherePanel::stepFrom(const TorvQDControl& element, int& key) {
    const TorvQDWhereRow& row = *element.Row;
    const int kind = element.Kind;
    if (key == Qt::Key_Left && kind > ekGroupOper) return row.Controls[std::size_t(kind) - 1].get();
    if (key == Qt::Key_Left) {
        const TorvQDWhereRow* above = rowBeside(row, -1);
        return above ? above->Controls.back().get() : nullptr;
    }
    if (key == Qt::Key_Right) {
        if (kind + 1 < int(row.Controls.size())) return row.Controls[std::size_t(kind) + 1].get();
        const TorvQDWhereRow* below = rowBeside(row, 1);
        return below ? below->Controls[ekGroupOper].get() : nullptr;
    }
    const TorvQDWhereRow* beside = rowBeside(row, key == Qt::Key_Up ? -1 : 1);
    if (!beside) return nullptr;
    TorvQDControl* target = elementLike(*beside, kind);
    if (target->Width <= 0) key = Qt::Key_Right;
    return target;
}

// The element at the same place of another row, or its last one.
TorvQDControl* TorvQDWherePanel::elementLike(const TorvQDWhereRow& row, int kind) const {
    const int place =
        row.isGroup() ? int(ekGroupOper) : std::min(kind, int(row.Controls.size()) - 1);
    return row.Controls[std::size_t(place)].get();
}

// Elements that are not shown are passed over; where no other one follows, the frame stays.
void TorvQDWherePanel::moveActive(int key, bool withCtrl) {
    const TorvQDControl* element = ActiveElement();
    if (withCtrl && element->Row->isGroup()) {
        setCurrentElement(element);
        ExpandCollapse();
        return;
    }
    m_layout->ensure();
    do {
        element = stepFrom(*element, key);
    } while (element && element->Width <= 0);
    if (element) activate(*element);
}

void TorvQDWherePanel::jump(int key) {
    const std::vector<TorvQDWhereRow*>& rows = shownRows();
    const TorvQDControl* active = ActiveElement();
    const int page = std::max(1, viewport()->height() / m_context.rowHeight - 1);
    const int last = int(rows.size()) - 1;
    const int from = orv::ConditionLayout::positionOf(*active->Row);
    int position = 0;
    if (key == Qt::Key_End) position = last;
    if (key == Qt::Key_PageUp) position = std::max(0, from - page);
    if (key == Qt::Key_PageDown) position = std::min(last, from + page);
    const TorvQDWhereRow& row = *rows[std::size_t(position)];
    const TorvQDControl* target = elementLike(row, active->Kind);
    activate(target->Width > 0 ? *target : *row.Controls[ekFieldName]);
}

// The frame goes there, commands are about it, and it is scrolled in.
void TorvQDWherePanel::activate(const TorvQDControl& element) {
    setActiveElement(&element);
    setCurrentElement(&element);
    showElement(element);
}

void TorvQDWherePanel::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    updateRow(m_active.row());
    // Readers are told of the widget once this event is over, and then where in it the focus is.
    QMetaObject::invokeMethod(
        this, [this] { m_teller->focusCame(); }, Qt::QueuedConnection);
}

void TorvQDWherePanel::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    updateRow(m_active.row());
}
