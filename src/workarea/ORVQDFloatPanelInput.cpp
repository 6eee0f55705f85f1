// SPDX-License-Identifier: MIT
// The events of the work area: each finds the object that it is about and goes there.
#include "contract/ChangeScope.h"
#include "contract/DiagramEvents.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDDiagramKeys.h"
#include "workarea/ORVQDFieldDrag.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDGestures.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDropEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int bendRoomPx = 10;  // that is seen around a bend point
constexpr int rowsPerNotch = 3;
constexpr int eighthsPerNotch = 120;
constexpr qreal zoomPerNotch = 1.25;

}  // namespace

bool TorvQDWorkArea::event(QEvent* event) {
    const int type = event->type();
    if (type == QEvent::ShortcutOverride) {
        if (m_keys->wants(*static_cast<QKeyEvent*>(event))) {
            event->accept();
            return true;
        }
    }
    if (type < CMMOVECONTROL || type > CMDELETELINK) return QAbstractScrollArea::event(event);
    const auto* message = dynamic_cast<TorvDiagramEvent*>(event);
    if (message && type == CMDELETELINK) {
        orv::guarded([&] { deleteLink(qobject_cast<TorvQDLink*>(message->object())); });
        return true;
    }
    auto* table = message ? qobject_cast<TorvQDTable*>(message->object()) : nullptr;
    if (!table || indexOf(table) < 0) return true;
    orv::guarded([&] {
        switch (type) {
        case CMMOVECONTROL: tableMoved(table); break;
        case CMRESIZECONTROL: tableResized(table); break;
        case CMCLOSETABLE: closeTable(table); break;
        case CMUNLINKTABLE: unlinkTable(table); break;
        default: break;
        }
    });
    return true;
}

// --- what is hit ---

bool TorvQDWorkArea::holds(const TorvQDFloatObject* object) const {
    // It may be dead: it is not to be asked what it is.
    const auto isObject = [&](const TorvQDFloatObject* other) { return other == object; };
    const auto isLink = [&](const auto& entry) { return isObject(entry.second.get()); };
    return object && (std::any_of(m_creation.begin(), m_creation.end(), isObject) ||
                      std::any_of(m_links.begin(), m_links.end(), isLink));
}

TorvQDFloatObject* TorvQDWorkArea::objectAt(const QPoint& viewPoint) const {
    const auto isHit = [&](const auto& object) { return object->HitTest(viewPoint) != htTOutSide; };
    const auto box = std::find_if(m_tables.begin(), m_tables.end(), isHit);
    if (box != m_tables.end()) return box->get();
    auto* selected = qobject_cast<TorvQDLink*>(m_selected.data());
    if (selected && isHit(selected)) return selected;
    const auto link = std::find_if(m_links.rbegin(), m_links.rend(),
                                   [&](const auto& entry) { return isHit(entry.second); });
    return link == m_links.rend() ? nullptr : link->second.get();
}

TorvQDListItem* TorvQDWorkArea::rowAt(const QPoint& viewPoint) const {
    const auto* table = qobject_cast<TorvQDTable*>(objectAt(viewPoint));
    if (!table || table->HitTest(viewPoint) != htTClient) return nullptr;
    return table->GetItemAt(viewPoint.x(), viewPoint.y());
}

TWMMouse TorvQDWorkArea::messageOf(const QMouseEvent& event) const {
    const QPoint point = toViewPoint(event.pos());
    TWMMouse message;
    message.XPos = point.x();
    message.YPos = point.y();
    message.Buttons = event.buttons() | event.button();
    message.Modifiers = event.modifiers();
    return message;
}

Qt::CursorShape TorvQDWorkArea::cursorFor(TTableHitTest hit) {
    switch (hit) {
    case htTLeft:
    case htTRight: return Qt::SizeHorCursor;
    case htTTop:
    case htTBottom: return Qt::SizeVerCursor;
    case htTLeftTop:
    case htTRightBottom: return Qt::SizeFDiagCursor;
    case htTLeftBottom:
    case htTRightTop: return Qt::SizeBDiagCursor;
    case htTEndLine: return Qt::UpArrowCursor;
    case htTPoint: return Qt::SizeAllCursor;
    case htTOutSide:
    case htTCaption:
    case htTClient:
    case htTbutton:
    case htTCheck: break;
    }
    return Qt::ArrowCursor;
}

// --- the mouse ---

void TorvQDWorkArea::mousePressEvent(QMouseEvent* event) {
    orv::guarded([&] {
        hideHint();
        m_mouseLeads = true;
        showFocus(false);
        const TWMMouse message = messageOf(*event);
        m_mouse = {message.XPos, message.YPos};
        if (event->button() == Qt::MiddleButton) {
            m_gestures->beginPanning(m_mouse);
            viewport()->setCursor(Qt::ClosedHandCursor);
        } else if (event->button() == Qt::LeftButton) {
            m_lastPressed = objectAt(m_mouse);
            // What comes to the front and what is ticked by the same press are one change.
            ChangeScope change(m_owner, this);
            m_gestures->press(m_lastPressed, message);
            change.finish();
        }
    });
}

void TorvQDWorkArea::mouseMoveEvent(QMouseEvent* event) {
    orv::guarded([&] {
        const TWMMouse message = messageOf(*event);
        m_mouse = {message.XPos, message.YPos};
        m_mouseLeads = true;
        const QPointer<TorvQDWorkArea> self(this);
        if (!m_gestures->isIdle()) m_gestures->move(message);
        if (!self) return;
        if (m_gestures->movesThings()) watchEdge(m_mouse);
        if (m_gestures->isIdle()) trackMouse(*event);
    });
}

// Without a gesture the mouse belongs to what lies under it.
void TorvQDWorkArea::trackMouse(const QMouseEvent& event) {
    hideHint();
    TorvQDFloatObject* object = objectAt(m_mouse);
    const TTableHitTest hit = object ? object->HitTest(m_mouse) : htTOutSide;
    setHot(object, hit);
    viewport()->setCursor(cursorFor(hit));
    if (!object) return;
    TWMMouse message = messageOf(event);
    const QPointer<TorvQDWorkArea> self(this);
    object->MouseMove(message, hit);
    // The host may have closed what the mouse is over, or everything.
    if (!self || !m_hot) return;
    m_hintPoint = m_mouse;
    startTimerNumber(hintTimer);
}

void TorvQDWorkArea::setHot(TorvQDFloatObject* object, TTableHitTest hit) {
    if (object != m_hot) leaveHot();
    m_hot = object;
    m_hotHit = hit;
}

void TorvQDWorkArea::leaveHot() {
    hideHint();
    const QPointer<TorvQDFloatObject> left = std::exchange(m_hot, nullptr);
    if (!left) return;
    TWMMouse message;
    message.XPos = m_mouse.x();
    message.YPos = m_mouse.y();
    left->LeaveHit(message, m_hotHit);
}

void TorvQDWorkArea::mouseReleaseEvent(QMouseEvent* event) {
    orv::guarded([&] {
        const TWMMouse message = messageOf(*event);
        m_mouse = {message.XPos, message.YPos};
        const bool pans = m_gestures->kind() == orv::Gestures::Kind::Panning;
        if (event->button() == Qt::RightButton && m_gestures->isIdle()) {
            TorvQDFloatObject* object = objectAt(m_mouse);
            showMenu(object, m_mouse, object ? object->HitTest(m_mouse) : htTOutSide);
        } else if (event->button() == (pans ? Qt::MiddleButton : Qt::LeftButton)) {
            stopTimer(edgeTimer);
            const QPointer<TorvQDWorkArea> self(this);
            if (!m_gestures->isIdle()) m_gestures->release(message);
            if (!self) return;
            updateCursor();
        }
    });
}

void TorvQDWorkArea::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    orv::guarded([&] {
        hideHint();
        const TWMMouse message = messageOf(*event);
        m_mouse = {message.XPos, message.YPos};
        TorvQDFloatObject* object = objectAt(m_mouse);
        // The first click may have closed what lay above this one.
        if (object && object == m_lastPressed) {
            m_gestures->doubleClick(object, message);
        } else {
            m_gestures->press(object, message);
        }
    });
}

bool TorvQDWorkArea::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave && m_gestures->isIdle()) {
        orv::guarded([&] { leaveHot(); });
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void TorvQDWorkArea::wheelEvent(QWheelEvent* event) {
    orv::guarded([&] {
        hideHint();
        if (event->modifiers() & Qt::ControlModifier) {
            const qreal notches = qreal(event->angleDelta().y()) / eighthsPerNotch;
            setZoom(m_zoom * std::pow(zoomPerNotch, notches), event->position().toPoint());
            event->accept();
        } else if (event->modifiers() & Qt::ShiftModifier) {
            QCoreApplication::sendEvent(horizontalScrollBar(), event);
        } else if (scrollRowsByWheel(*event)) {
            event->accept();
        } else {
            QAbstractScrollArea::wheelEvent(event);
        }
    });
}

// Over the rows of a box that has more of them than it shows the wheel scrolls these.
bool TorvQDWorkArea::scrollRowsByWheel(const QWheelEvent& event) {
    const QPoint point = toViewPoint(event.position().toPoint());
    auto* table = m_gestures->isIdle() ? qobject_cast<TorvQDTable*>(objectAt(point)) : nullptr;
    const bool hasMore = table && int(table->Items.size()) > table->VisibleCount;
    if (!hasMore || table->HitTest(point) != htTClient) return false;
    m_wheelRest += event.angleDelta().y() * rowsPerNotch;
    const int rows = m_wheelRest / eighthsPerNotch;
    m_wheelRest -= rows * eighthsPerNotch;
    table->SetFirstVisibleItem(table->FirstVisibleItem - rows);
    return true;
}

// --- the keys ---

// The selected object comes first; a letter goes to the box under the mouse when the mouse was used
// last. Escape is nothing for objects: a host's dialog may want it.
TorvQDFloatObject* TorvQDWorkArea::keyTarget(int key, const QString& text) const {
    if (key == Qt::Key_Escape) return nullptr;
    const bool isLetter = !text.isEmpty() && text.at(0).isLetterOrNumber();
    auto* hot = qobject_cast<TorvQDTable*>(m_hot.data());
    return isLetter && m_mouseLeads && hot ? hot : m_selected.data();
}

void TorvQDWorkArea::keyPressEvent(QKeyEvent* event) {
    event->ignore();
    orv::guarded([&] {
        hideHint();
        showFocus(true);
        const QPointer<TorvQDWorkArea> self(this);
        const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
        int key = event->key();
        m_typedText = event->text();
        const QPointer<TorvQDFloatObject> object(keyTarget(key, m_typedText));
        if (object) object->KeyDown(key, modifiers);
        if (!self) return event->accept();
        m_typedText.clear();
        m_mouseLeads = false;
        if (key != 0) {
            if (m_keys->press(key, modifiers)) event->accept();
            return;
        }
        event->accept();
        if (object && object == m_selected) showChosenPart();
    });
}

// The row or the bend point that keys have just chosen may lie beyond the view.
void TorvQDWorkArea::showChosenPart() {
    if (const auto* table = qobject_cast<TorvQDTable*>(m_selected.data())) {
        const QPoint scroll = scrollPosition();
        if (!table->Expanded || !table->CurrentItem) return;
        ensureVisible(table->GetItemRect(table->CurrentItem).translated(scroll.x(), scroll.y()));
    } else if (const auto* link = qobject_cast<TorvQDLink*>(m_selected.data())) {
        if (link->chosenBend() < 0) return;
        const QPoint bend = link->points()[std::size_t(link->chosenBend())];
        ensureVisible({bend.x() - bendRoomPx, bend.y() - bendRoomPx, bend.x() + bendRoomPx,
                       bend.y() + bendRoomPx});
    }
}

void TorvQDWorkArea::boxChanged(TorvQDTable* table, BoxChange change, const TorvQDListItem* row) {
    orv::accessible::tellChange(table, change, row);
    if (change == BoxChange::Rows && m_creationNumber.contains(table)) {
        unindexFields(table);
        indexFields(table);
    }
    if (change != BoxChange::CurrentRow) return;
    if (m_searchEdit->table() == table && table == m_selected) showChosenPart();
    if (m_keys->linkSource()) viewport()->update();
}

void TorvQDWorkArea::keyReleaseEvent(QKeyEvent* event) {
    event->ignore();
    orv::guarded([&] {
        int key = event->key();
        if (m_selected) m_selected->KeyUp(key, event->modifiers() & ~Qt::KeypadModifier);
        if (key == 0) event->accept();
    });
}

bool TorvQDWorkArea::isGesturing() const {
    return !m_gestures->isIdle();
}

bool TorvQDWorkArea::cancelGesture() {
    stopTimer(edgeTimer);
    if (!m_gestures->cancel()) return false;
    updateCursor();
    return true;
}

void TorvQDWorkArea::updateCursor() {
    const TorvQDFloatObject* object = objectAt(m_mouse);
    viewport()->setCursor(cursorFor(object ? object->HitTest(m_mouse) : htTOutSide));
}

// A press of the mouse shows by itself where the focus is.
void TorvQDWorkArea::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    switch (event->reason()) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason: showFocus(true); break;
    case Qt::MouseFocusReason: showFocus(false); break;
    default: break;
    }
    viewport()->update();
    // Readers are told of the widget once this event is over, and then where in it the focus is.
    QMetaObject::invokeMethod(
        this, [this] { orv::accessible::tellFocus(*this); }, Qt::QueuedConnection);
}

void TorvQDWorkArea::showFocus(bool shows) {
    if (shows == m_showsFocus) return;
    m_showsFocus = shows;
    viewport()->update();
}

// The mouse is lost to somebody else.
void TorvQDWorkArea::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
    orv::guarded([&] {
        hideHint();
        stopTimer(edgeTimer);
        m_gestures->end();
    });
}

void TorvQDWorkArea::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    orv::guarded([&] {
        m_timers.clear();
        leaveHot();
        m_gestures->end();
        m_fieldDrag->leave();
        m_searchEdit->close();
        m_keys->cancelLink();
    });
}

void TorvQDWorkArea::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    viewport()->update();
}

// --- menus ---

// With the right button the menu comes at its release.
void TorvQDWorkArea::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() != QContextMenuEvent::Keyboard) return;
    orv::guarded([&] { showMenuOf(m_selected); });
}

// The place has to be seen, or the menu would hang in the air.
void TorvQDWorkArea::showMenuOf(TorvQDFloatObject* object) {
    if (auto* table = qobject_cast<TorvQDTable*>(object)) {
        ensureVisible(table->GetBoundsRect());
        const TRect caption = table->toView(table->GetCaptionRect());
        showMenu(table, {caption.Left, caption.Bottom}, htTCaption);
    } else if (auto* link = qobject_cast<TorvQDLink*>(object)) {
        const int bend = link->chosenBend();
        const std::vector<QPoint>& points = link->points();
        const QPoint place = bend < 0 ? (points[1] + points[2]) / 2 : points[std::size_t(bend)];
        ensureVisible({place.x(), place.y(), place.x() + 1, place.y() + 1});
        showMenu(link, place - scrollPosition(), bend < 0 ? htTClient : htTPoint);
    } else {
        showMenu(nullptr, {viewSize().width() / 2, viewSize().height() / 2}, htTOutSide);
    }
}

void TorvQDWorkArea::showMenu(TorvQDFloatObject* object, const QPoint& viewPoint,
                              TTableHitTest hit) {
    hideHint();
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (object) {
        object->PopupMenu(*menu, viewPoint.x(), viewPoint.y(), hit);
    } else {
        fillViewMenu(*menu);
    }
    if (menu->isEmpty()) {
        menu->deleteLater();
        return;
    }
    m_menu = menu;
    m_menuObject = object;
    menu->popup(viewport()->mapToGlobal(toViewport(viewPoint)));
}

void TorvQDWorkArea::fillViewMenu(QMenu& menu) {
    const auto add = [&](const QString& text, void (TorvQDWorkArea::*command)(), bool isEnabled) {
        QAction* action = menu.addAction(
            text, this, [this, command] { orv::guarded([&] { (this->*command)(); }); });
        action->setEnabled(isEnabled);
    };
    const bool hasBoxes = !m_tables.empty();
    add(tr("&Arrange"), &TorvQDWorkArea::arrange, hasBoxes);
    add(tr("&Fit"), &TorvQDWorkArea::fit, hasBoxes);
    add(tr("Actual &size"), &TorvQDWorkArea::actualSize, m_zoom != 1);
    menu.addSeparator();
    add(tr("&Copy as picture"), &TorvQDWorkArea::copyAsPicture, hasBoxes);
}

// --- dragged fields ---

void TorvQDWorkArea::startFieldDrag(TorvQDTable* table, TorvQDListItem* item) {
    if (!m_gestures->takesRow(item) || !table->owns(item)) return;
    leaveHot();
    m_gestures->end();
    m_fieldDrag->run(*item);
}

void TorvQDWorkArea::fieldDragStarted(const orv::DraggedField& field) {
    m_owner->fieldDragStarted(field);
}

void TorvQDWorkArea::fieldDragEnded(QObject* target, const QPoint& viewPoint) {
    m_owner->fieldDragEnded(target, viewPoint);
}

bool TorvQDWorkArea::foreignDragOver(QObject* source, const QPoint& viewPoint,
                                     const QMimeData& data) {
    return m_owner->foreignDragOver(source, viewPoint, data);
}

void TorvQDWorkArea::foreignDrop(QObject* source, const QPoint& viewPoint, const QMimeData& data) {
    m_owner->foreignDrop(source, viewPoint, data);
}

void TorvQDWorkArea::dragEnterEvent(QDragEnterEvent* event) {
    orv::guarded([&] {
        m_mouse = toViewPoint(event->position().toPoint());
        m_fieldDrag->enter(*event, m_mouse);
    });
}

void TorvQDWorkArea::dragMoveEvent(QDragMoveEvent* event) {
    orv::guarded([&] {
        const QPoint point = toViewPoint(event->position().toPoint());
        m_mouse = point;
        const QPointer<TorvQDWorkArea> self(this);
        m_fieldDrag->over(*event, point);
        if (self) watchEdge(point);
    });
}

void TorvQDWorkArea::dragLeaveEvent(QDragLeaveEvent*) {
    orv::guarded([&] { m_fieldDrag->leave(); });
}

void TorvQDWorkArea::dropEvent(QDropEvent* event) {
    orv::guarded([&] {
        stopTimer(edgeTimer);
        m_fieldDrag->drop(*event, toViewPoint(event->position().toPoint()));
    });
}
