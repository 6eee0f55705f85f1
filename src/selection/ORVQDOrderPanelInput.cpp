// SPDX-License-Identifier: MIT
// The sorting page in the hand: keys, double clicks and drags between its lists.
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"
#include "toolkit/TipText.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QListWidget>
#include <QMimeData>
#include <QScopeGuard>
#include <QTextDocument>
#include <QToolTip>
#include <QTreeWidget>

namespace {

constexpr auto mimeType = "application/x-orv-sortline";

QPoint pointOf(const QMouseEvent& event) {
    return event.position().toPoint();
}

// A name that the list cuts off is shown in full.
void showToolTip(QAbstractItemView* list, const QHelpEvent& event) {
    const QModelIndex index = list->indexAt(event.pos());
    const QRect rect = list->visualRect(index);
    const int textRight = rect.left() + list->sizeHintForIndex(index).width();
    const bool isCut =
        rect.left() < 0 || textRight > list->viewport()->width() || textRight > rect.right() + 1;
    if (!index.isValid() || !isCut) {
        QToolTip::hideText();
        return;
    }
    QToolTip::showText(event.globalPos(), orv::plainTip(index.data().toString()), list->viewport(),
                       rect);
}

}  // namespace

QAbstractItemView* TorvQDOrderPanel::listOf(const QObject* part) const {
    for (QAbstractItemView* list :
         {static_cast<QAbstractItemView*>(m_unsorted), static_cast<QAbstractItemView*>(m_sorted)}) {
        if (list && (part == list || part == list->viewport())) return list;
    }
    return nullptr;
}

bool TorvQDOrderPanel::eventFilter(QObject* watched, QEvent* event) {
    QAbstractItemView* list = listOf(watched);
    if (!list) return QWidget::eventFilter(watched, event);
    return watched == list ? handleListEvent(list, event) : handleViewEvent(list, event);
}

// --- keys ---

bool TorvQDOrderPanel::handleListEvent(QAbstractItemView* list, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        const bool isByKey = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                             reason == Qt::ShortcutFocusReason;
        const QModelIndex first = list->model()->index(0, 0);
        const bool hasSelection = list->selectionModel()->hasSelection();
        if (isByKey && !hasSelection && first.isValid()) list->setCurrentIndex(first);
        return false;
    }
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress) {
        return false;
    }
    const Command command = commandOf(list, *static_cast<QKeyEvent*>(event));
    if (command == Command::None) return false;
    event->accept();
    if (event->type() == QEvent::KeyPress) runByKey(list, command);
    return true;
}

TorvQDOrderPanel::Command TorvQDOrderPanel::commandOf(const QAbstractItemView* list,
                                                      const QKeyEvent& event) const {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const int key = event.key();
    if (list == m_unsorted) {
        const bool adds = orv::isEnter(key) || key == Qt::Key_Insert;
        return adds && !modifiers && selectedName() >= 0 ? Command::Add : Command::None;
    }
    if (selectedLine() < 0) return Command::None;
    if (modifiers == Qt::AltModifier || modifiers == Qt::ControlModifier) {
        if (key == Qt::Key_Up) return Command::MoveUp;
        return key == Qt::Key_Down ? Command::MoveDown : Command::None;
    }
    if (modifiers) return Command::None;
    if (key == Qt::Key_Delete) return Command::Remove;
    return key == Qt::Key_Space ? Command::ChangeOrder : Command::None;
}

void TorvQDOrderPanel::run(Command command) {
    orv::guarded([&] {
        switch (command) {
        case Command::None: break;
        case Command::Add: _AddClick(); break;
        case Command::Remove: _RemoveClick(); break;
        case Command::ChangeOrder: _ChangeOrder(); break;
        case Command::MoveUp: _MoveUp(); break;
        case Command::MoveDown: _MoveDown(); break;
        }
    });
}

// In an empty list there is nothing to go on with.
void TorvQDOrderPanel::runByKey(QAbstractItemView* list, Command command) {
    const QPointer<TorvQDOrderPanel> self(this);
    run(command);
    if (!self || list->model()->rowCount() > 0 || !list->hasFocus()) return;
    QAbstractItemView* other = m_sorted;
    if (list == m_sorted) other = m_unsorted;
    other->setFocus(Qt::TabFocusReason);
}

// --- the mouse ---

bool TorvQDOrderPanel::handleViewEvent(QAbstractItemView* list, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress: return handlePress(list, *static_cast<QMouseEvent*>(event));
    case QEvent::MouseMove: return handleMove(list, *static_cast<QMouseEvent*>(event));
    case QEvent::MouseButtonRelease: m_pressedAt.reset(); return false;
    case QEvent::MouseButtonDblClick:
        return handleDoubleClick(list, *static_cast<QMouseEvent*>(event));
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: handleDrop(static_cast<QDropEvent*>(event), list == m_sorted); return true;
    case QEvent::ToolTip: showToolTip(list, *static_cast<QHelpEvent*>(event)); return true;
    default: return false;
    }
}

bool TorvQDOrderPanel::handlePress(QAbstractItemView* list, const QMouseEvent& event) {
    m_pressedAt.reset();
    const bool isOnName = list->indexAt(pointOf(event)).isValid();
    if (event.button() == Qt::LeftButton && isOnName) m_pressedAt = pointOf(event);
    return false;
}

// The list sees no moves that begin on a name: it would select what the pointer comes across.
bool TorvQDOrderPanel::handleMove(QAbstractItemView* list, const QMouseEvent& event) {
    if (!m_pressedAt || !(event.buttons() & Qt::LeftButton)) return false;
    const QPoint way = pointOf(event) - *m_pressedAt;
    if (way.manhattanLength() < QApplication::startDragDistance()) return true;
    m_pressedAt.reset();
    orv::guarded([&] { dragOut(list); });
    return true;
}

bool TorvQDOrderPanel::handleDoubleClick(QAbstractItemView* list, const QMouseEvent& event) {
    m_pressedAt.reset();
    const QModelIndex index = list->indexAt(pointOf(event));
    if (event.button() != Qt::LeftButton || !index.isValid()) return false;
    list->setCurrentIndex(index);
    run(list == m_unsorted ? Command::Add : Command::Remove);
    return true;
}

// --- dragging between the lists ---

QString TorvQDOrderPanel::selectedText(const QAbstractItemView* list) const {
    const QModelIndexList rows = list->selectionModel()->selectedRows();
    return rows.isEmpty() ? QString() : rows.front().data().toString();
}

// The drag belongs to nobody who may die in it.
void TorvQDOrderPanel::dragOut(QAbstractItemView* list) {
    m_dragged = selectedText(list);
    if (m_dragged.isEmpty()) return;
    auto* source = new QObject;
    const QPointer<TorvQDOrderPanel> self(this);
    const auto over = qScopeGuard([&self, this, source] {
        source->deleteLater();
        if (!self) return;
        m_dragSource = nullptr;
        m_draggedFrom = nullptr;
        m_dragged.clear();
    });
    m_dragSource = source;
    m_draggedFrom = list;
    auto* drag = new QDrag(source);
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(mimeType), m_dragged.toUtf8());
    drag->setMimeData(data);
    const QRect row = list->visualRect(list->currentIndex()) & list->viewport()->rect();
    drag->setPixmap(list->viewport()->grab(row));
    orv::runDrag(*drag);
}

void TorvQDOrderPanel::_DragOverOrder(const QObject* Source, bool& Accept) const {
    Accept = Source == m_unsorted;
}

void TorvQDOrderPanel::_DragDropOrder() {
    _AddClick();
}

void TorvQDOrderPanel::_DragOverUnOrder(const QObject* Source, bool& Accept) const {
    Accept = Source == m_sorted;
}

void TorvQDOrderPanel::_DragDropUnOrder() {
    _RemoveClick();
}

QObject* TorvQDOrderPanel::dragSource(const QDropEvent& event) const {
    const bool isOwn = m_dragSource && event.source() == m_dragSource;
    return isOwn ? m_draggedFrom : event.source();
}

// The list that a drag came from changes only after the drag is over. The host may have selected
// something else meanwhile, by loading a statement, say.
void TorvQDOrderPanel::handleDrop(QDropEvent* event, bool onSorted) {
    bool accepted = false;
    const QObject* source = dragSource(*event);
    onSorted ? _DragOverOrder(source, accepted) : _DragOverUnOrder(source, accepted);
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(accepted);
    if (!accepted || event->type() != QEvent::Drop) return;
    const auto drop =
        onSorted ? &TorvQDOrderPanel::_DragDropOrder : &TorvQDOrderPanel::_DragDropUnOrder;
    const QAbstractItemView* from = listOf(source);
    const auto take = [this, drop, from, dragged = m_dragged] {
        if (dragged.isEmpty() || dragged == selectedText(from)) (this->*drop)();
    };
    QMetaObject::invokeMethod(
        this, [take] { orv::guarded(take); }, Qt::QueuedConnection);
}
