// SPDX-License-Identifier: MIT
// The work area as a view: painting, scrolling, the mouse, the edit over a caption.
#include "contract/DiagramEvents.h"
#include "toolkit/ExitEdit.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr int diagramExtentPx = 5000;
constexpr int extentMarginPx = 50;
constexpr int scrollStepPx = 20;
constexpr QSize preferredSize(300, 100);

TWMMouse messageOf(const QMouseEvent& event) {
    TWMMouse message;
    message.XPos = event.pos().x();
    message.YPos = event.pos().y();
    message.Buttons = event.buttons() | event.button();
    message.Modifiers = event.modifiers();
    return message;
}

}  // namespace

QSize TorvQDWorkArea::sizeHint() const {
    return preferredSize;
}

QPoint TorvQDWorkArea::scrollPosition() const {
    if (m_paintsAll) return {};
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

void TorvQDWorkArea::invalidate(const TRect& viewRect) {
    if (!viewRect.isEmpty()) viewport()->update(viewRect.toQRect());
}

bool TorvQDWorkArea::event(QEvent* event) {
    const int type = event->type();
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

// --- painting ---

void TorvQDWorkArea::paintEvent(QPaintEvent* event) {
    orv::guarded([&] {
        QPainter painter(viewport());
        painter.fillRect(event->rect(), palette().color(QPalette::Window));
        for (std::size_t index = m_tables.size(); index-- > 0;) {
            TorvQDTable& table = *m_tables[index];
            const QRect bounds = table.toView(table.GetBoundsRect()).toQRect();
            if (event->region().intersects(bounds)) table.Paint(painter);
        }
        for (const auto& [number, link] : m_links) {
            if (event->region().intersects(link->GetClipRgn(0))) link->Paint(painter);
        }
    });
}

QRect TorvQDWorkArea::diagramBounds() const {
    QRect bounds;
    for (const auto& table : m_tables) bounds |= table->GetBoundsRect().toQRect();
    for (const auto& [number, link] : m_links) bounds |= link->GetBounds().toQRect();
    return bounds;
}

void TorvQDWorkArea::paintDiagram(QPainter& painter) const {
    m_paintsAll = true;
    for (std::size_t index = m_tables.size(); index-- > 0;) m_tables[index]->Paint(painter);
    for (const auto& [number, link] : m_links) link->Paint(painter);
    m_paintsAll = false;
}

// --- scrolling ---

// The diagram is 5000 pixels wide and high, and grows with boxes that lie beyond.
void TorvQDWorkArea::updateScrollRange() {
    int right = diagramExtentPx;
    int bottom = diagramExtentPx;
    for (const auto& table : m_tables) {
        const TRect bounds = table->GetBoundsRect();
        if (bounds.Right > diagramExtentPx) right = std::max(right, bounds.Right + extentMarginPx);
        if (bounds.Bottom > diagramExtentPx) {
            bottom = std::max(bottom, bounds.Bottom + extentMarginPx);
        }
    }
    const QSize page = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, right - page.width()));
    horizontalScrollBar()->setPageStep(page.width());
    horizontalScrollBar()->setSingleStep(scrollStepPx);
    verticalScrollBar()->setRange(0, std::max(0, bottom - page.height()));
    verticalScrollBar()->setPageStep(page.height());
    verticalScrollBar()->setSingleStep(scrollStepPx);
}

// Scrolls as little as shows the box; a box larger than the view shows its left top corner. While a
// statement is loaded its boxes come one by one, and the view stays where it is.
void TorvQDWorkArea::ensureVisible(const TorvQDTable& table) {
    if (m_owner->ledger() || !viewport()->isVisible()) return;
    const TRect bounds = table.GetBoundsRect();
    const auto show = [](QScrollBar* bar, int first, int end, int page) {
        const int last = std::max(bar->value(), end - page);
        bar->setValue(std::min(last, first));
    };
    show(horizontalScrollBar(), bounds.Left, bounds.Right, viewport()->width());
    show(verticalScrollBar(), bounds.Top, bounds.Bottom, viewport()->height());
}

void TorvQDWorkArea::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollRange();
}

void TorvQDWorkArea::scrollContentsBy(int dx, int dy) {
    moveRowScrollBar(dx, dy);
    m_aliasEdit->move(m_aliasEdit->pos() + QPoint(dx, dy));
    viewport()->update();
}

bool TorvQDWorkArea::isRowScrollBarVisible() const {
    return !m_paintsAll && !m_rowScrollBar->isHidden();
}

void TorvQDWorkArea::placeRowScrollBar(const RowScroll& scroll) {
    const QSignalBlocker silent(m_rowScrollBar);
    m_rowScrollBar->setGeometry(scroll.rect.toQRect());
    m_rowScrollBar->setRange(0, scroll.maximum);
    m_rowScrollBar->setPageStep(std::max(1, scroll.pageStep));
    m_rowScrollBar->setValue(scroll.position);
}

void TorvQDWorkArea::showRowScrollBar(bool visible) {
    m_rowScrollBar->setVisible(visible);
}

void TorvQDWorkArea::moveRowScrollBar(int dx, int dy) {
    m_rowScrollBar->move(m_rowScrollBar->pos() + QPoint(dx, dy));
}

void TorvQDWorkArea::bringToFront(TorvQDFloatObject* object) {
    TableToFront(object);
}

void TorvQDWorkArea::tableMoved(TorvQDTable* table) {
    updateScrollRange();
    reroute(table);
    if (table == m_renamed) placeAliasEdit();
}

void TorvQDWorkArea::tableResized(TorvQDTable* table) {
    updateScrollRange();
    reroute(table);
    if (table == m_renamed) placeAliasEdit();
}

void TorvQDWorkArea::rowsScrolled(TorvQDTable* table) {
    reroute(table);
    if (table != m_selected || !isRowScrollBarVisible()) return;
    const QSignalBlocker silent(m_rowScrollBar);
    m_rowScrollBar->setValue(table->FirstVisibleItem);
}

// --- the mouse ---

TorvQDTable* TorvQDWorkArea::tableAt(const QPoint& viewPoint) const {
    const auto hit = std::find_if(m_tables.begin(), m_tables.end(), [&](const auto& table) {
        return table->HitTest(viewPoint) != htTOutSide;
    });
    return hit == m_tables.end() ? nullptr : hit->get();
}

// A press selects, and everything up to the release goes to the pressed box.
void TorvQDWorkArea::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    orv::guarded([&] {
        const QPointer<TorvQDTable> table = tableAt(event->pos());
        m_pressed = table;
        m_gesture = table ? Gesture::Pressed : Gesture::Idle;
        m_pressPoint = event->pos();
        selectObject(table);
        if (!table || indexOf(table) < 0) return;  // the host closed it when it came to the front
        m_pressedHit = table->HitTest(event->pos());
        m_boxAtPress = {table->Left, table->Top};
        TWMMouse message = messageOf(*event);
        table->MouseDown(message, m_pressedHit);
    });
}

void TorvQDWorkArea::mouseMoveEvent(QMouseEvent* event) {
    orv::guarded([&] {
        const bool moves = m_pressed && (event->buttons() & Qt::LeftButton) &&
                           m_gesture != Gesture::Idle && m_pressedHit == htTCaption;
        if (moves) m_gesture = Gesture::MovingBox;
        if (m_gesture == Gesture::MovingBox) moveBoxTo(event->pos());
        TorvQDTable* table = m_gesture == Gesture::Idle ? tableAt(event->pos()) : m_pressed.data();
        if (!table) return;
        TWMMouse message = messageOf(*event);
        table->MouseMove(message, table->HitTest(event->pos()));
    });
}

// The caption stays inside the diagram, so that the box can always be taken again.
void TorvQDWorkArea::moveBoxTo(const QPoint& viewPoint) {
    const QPoint wanted = m_boxAtPress + viewPoint - m_pressPoint;
    // A box that was placed beyond the diagram's extent may stay as far out as it is.
    const int right = std::max(diagramExtentPx - m_pressed->Width, m_boxAtPress.x());
    const int bottom = std::max(diagramExtentPx - m_pressed->CaptionHeight, m_boxAtPress.y());
    const int left = std::clamp(wanted.x(), 0, std::max(0, right));
    const int top = std::clamp(wanted.y(), 0, std::max(0, bottom));
    m_pressed->MoveTable(left - m_pressed->Left, top - m_pressed->Top);
}

void TorvQDWorkArea::mouseReleaseEvent(QMouseEvent* event) {
    orv::guarded([&] {
        if (event->button() == Qt::RightButton) {
            showContextMenu(event->pos());
            return;
        }
        const QPointer<TorvQDTable> table = m_pressed;
        const bool pressed = m_gesture != Gesture::Idle;
        m_gesture = Gesture::Idle;
        m_pressed.clear();
        if (!table || !pressed) return;
        TWMMouse message = messageOf(*event);
        table->MouseUp(message, m_pressedHit);
    });
}

void TorvQDWorkArea::mouseDoubleClickEvent(QMouseEvent* event) {
    orv::guarded([&] {
        TorvQDTable* table = tableAt(event->pos());
        if (table && table->HitTest(event->pos()) == htTCaption) beginRename(table);
    });
}

void TorvQDWorkArea::showContextMenu(const QPoint& viewPoint) {
    TorvQDTable* table = tableAt(viewPoint);
    if (!table) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    table->PopupMenu(*menu, viewPoint.x(), viewPoint.y(), table->HitTest(viewPoint));
    if (menu->isEmpty()) {
        menu->deleteLater();
        return;
    }
    menu->popup(viewport()->mapToGlobal(viewPoint));
}

// --- renaming in place ---

void TorvQDWorkArea::beginRename(TorvQDTable* table) {
    if (indexOf(table) < 0) return;
    selectObject(table);
    m_renamed = table;
    placeAliasEdit();
    m_aliasEdit->open(table->GetAlias());
}

// The edit lies over the caption of its box and follows it.
void TorvQDWorkArea::placeAliasEdit() {
    const TRect caption = m_renamed->toView(m_renamed->GetCaptionRect());
    m_aliasEdit->setGeometry(caption.Left, caption.Top + 1, caption.width(), caption.height());
}

void TorvQDWorkArea::_EditNameKillFocus() {
    const QPointer<TorvQDTable> table = m_renamed;
    if (!table) return;
    discardPendingEdit();
    renameTable(table, m_aliasEdit->text());
}

void TorvQDWorkArea::commitPendingEdit() {
    _EditNameKillFocus();
}

void TorvQDWorkArea::discardPendingEdit() {
    m_renamed.clear();
    m_aliasEdit->discard();
}
