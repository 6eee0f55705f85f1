// SPDX-License-Identifier: MIT
#include "workarea/ORVQDDiagramKeys.h"

#include "toolkit/Keys.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace orv {

namespace {

constexpr int stepPx = 10;

// The element `step` places further than the present one, round and round; the first or last one
// when none is present.
template <typename Object>
Object* neighbour(const std::vector<Object*>& list, const QObject* present, int step) {
    if (list.empty()) return nullptr;
    const int count = int(list.size());
    const auto found = std::find(list.begin(), list.end(), present);
    if (found == list.end()) return step > 0 ? list.front() : list.back();
    return list[std::size_t((int(found - list.begin()) + step + count) % count)];
}

}  // namespace

TorvQDTable* DiagramKeys::selectedTable() const {
    return qobject_cast<TorvQDTable*>(m_area.selectedObject());
}

TorvQDLink* DiagramKeys::selectedLink() const {
    return qobject_cast<TorvQDLink*>(m_area.selectedObject());
}

bool DiagramKeys::wants(const QKeyEvent& event) const {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const TorvQDFloatObject* object = m_area.keyTarget(event.key(), event.text());
    if (object && object->usesKey(event.key(), modifiers, event.text())) return true;
    return commandOf(event.key(), modifiers) != Command::None;
}

// What a key means beside what the selected object does with it.
DiagramKeys::Command DiagramKeys::commandOf(int key, Qt::KeyboardModifiers modifiers) const {
    if (key == Qt::Key_Escape) {
        return m_area.isGesturing() || linkSource() ? Command::Cancel : Command::None;
    }
    // Not every platform makes a context menu event of it.
    if (key == Qt::Key_F10 && modifiers == Qt::ShiftModifier) return Command::ShowMenu;
    const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (isPage && modifiers == Qt::ControlModifier) {
        return m_area.TablesCount() > 0 ? Command::SelectTable : Command::None;
    }
    if (isPage && modifiers == Qt::AltModifier) {
        return m_area.Links().empty() ? Command::None : Command::SelectLink;
    }
    if (modifiers & (Qt::AltModifier | Qt::MetaModifier)) return Command::None;
    if (const Command command = commandOnSelected(key, modifiers); command != Command::None) {
        return command;
    }
    if (modifiers & Qt::ControlModifier) {
        switch (key) {
        case Qt::Key_Plus:
        case Qt::Key_Equal: return Command::ZoomIn;
        case Qt::Key_Minus: return Command::ZoomOut;
        case Qt::Key_0: return Command::ActualSize;
        default: break;
        }
    }
    if (m_area.selectedObject()) return Command::None;
    if (!arrowOf(key).isNull()) {
        return modifiers & Qt::ShiftModifier ? Command::None : Command::Scroll;
    }
    const bool scrolls = isPage || key == Qt::Key_Home;
    return scrolls && modifiers == Qt::NoModifier ? Command::Scroll : Command::None;
}

DiagramKeys::Command DiagramKeys::commandOnSelected(int key,
                                                    Qt::KeyboardModifiers modifiers) const {
    const bool hasControl = modifiers & Qt::ControlModifier;
    const bool hasShift = modifiers & Qt::ShiftModifier;
    if (key == Qt::Key_A && hasControl && hasShift) {
        return m_area.selectedObject() ? Command::Deselect : Command::None;
    }
    if (selectedLink()) {
        return key == Qt::Key_F2 && !modifiers ? Command::ShowProperties : Command::None;
    }
    if (!selectedTable()) return Command::None;
    if (hasControl && !arrowOf(key).isNull()) return hasShift ? Command::Size : Command::Move;
    if (hasControl) {
        if (key == Qt::Key_Space && !hasShift) return Command::TickAll;
        return key == Qt::Key_Delete && !hasShift ? Command::Unlink : Command::None;
    }
    switch (key) {
    case Qt::Key_F2: return hasShift ? Command::None : Command::Rename;
    case Qt::Key_Delete: return hasShift ? Command::None : Command::Close;
    case Qt::Key_Insert: return hasShift ? Command::None : Command::Link;
    case Qt::Key_Plus: return Command::Expand;
    case Qt::Key_Minus: return Command::Collapse;
    default: return Command::None;
    }
}

bool DiagramKeys::press(int key, Qt::KeyboardModifiers modifiers) {
    const Command command = commandOf(key, modifiers);
    const int step = key == Qt::Key_PageDown ? 1 : -1;
    switch (command) {
    case Command::None: return false;
    case Command::Cancel: m_area.cancelGesture() || cancelLink(); break;
    case Command::ShowMenu: m_area.showMenuOf(m_area.selectedObject()); break;
    case Command::SelectTable: selectTable(step); break;
    case Command::SelectLink: selectLink(step); break;
    case Command::Deselect: m_area.selectObject(nullptr); break;
    case Command::ZoomIn: m_area.zoomIn(); break;
    case Command::ZoomOut: m_area.zoomOut(); break;
    case Command::ActualSize: m_area.setZoom(1); break;
    case Command::Scroll: scroll(key, modifiers & Qt::ControlModifier); break;
    case Command::ShowProperties: selectedLink()->_LinkProperties(); break;
    case Command::Move:
    case Command::Size:
    case Command::TickAll:
    case Command::Unlink:
    case Command::Rename:
    case Command::Close:
    case Command::Link:
    case Command::Expand:
    case Command::Collapse: doOnTable(*selectedTable(), command, key); break;
    }
    return true;
}

// --- the view ---

void DiagramKeys::scroll(int key, bool finely) {
    const QPoint arrow = arrowOf(key);
    QScrollBar* vertical = m_area.verticalScrollBar();
    if (!arrow.isNull()) {
        const QPoint by = arrow * (finely ? stepPx : vertical->singleStep());
        return m_area.scrollBy(by.x(), by.y());
    }
    switch (key) {
    case Qt::Key_PageUp: vertical->triggerAction(QScrollBar::SliderPageStepSub); break;
    case Qt::Key_PageDown: vertical->triggerAction(QScrollBar::SliderPageStepAdd); break;
    case Qt::Key_Home:
        m_area.horizontalScrollBar()->setValue(0);
        vertical->setValue(0);
        break;
    default: break;
    }
}

// --- selecting ---

void DiagramKeys::selectTable(int step) {
    TorvQDTable* table = neighbour(m_area.tablesByCreation(), m_area.selectedObject(), step);
    if (!table) return;
    const QPointer<TorvQDTable> chosen(table);
    m_area.selectObject(table);
    if (chosen) m_area.ensureVisible(table->GetBoundsRect());
}

// From a box its links come first; all others follow.
void DiagramKeys::selectLink(int step) {
    std::vector<TorvQDLink*> links = m_area.Links();
    if (const TorvQDTable* table = selectedTable()) {
        std::stable_partition(links.begin(), links.end(), [&](const TorvQDLink* link) {
            return link->Join->Table1 == table || link->Join->Table2 == table;
        });
    }
    TorvQDLink* link = neighbour(links, m_area.selectedObject(), step);
    if (!link) return;
    const QPointer<TorvQDLink> chosen(link);
    m_area.selectObject(link);
    if (chosen) m_area.ensureVisible(link->GetBounds());
}

// --- a box ---

void DiagramKeys::doOnTable(TorvQDTable& table, Command command, int key) {
    switch (command) {
    case Command::Move: moveTable(table, arrowOf(key) * stepPx); break;
    case Command::Size: sizeTable(table, arrowOf(key) * stepPx); break;
    case Command::TickAll: table.SetFieldState(table.FieldState == 2 ? 0 : 2); break;
    case Command::Unlink: table.UnlinkTable(); break;
    case Command::Rename:
        m_area.ensureVisible(table.GetBoundsRect());
        table._RenameTable();
        break;
    case Command::Close: table.CloseTable(); break;
    case Command::Link: beginOrEndLink(table); break;
    case Command::Expand: table.SetExpand(-1); break;
    case Command::Collapse: table.SetExpand(0); break;
    case Command::None:
    case Command::Cancel:
    case Command::ShowMenu:
    case Command::SelectTable:
    case Command::SelectLink:
    case Command::Deselect:
    case Command::ZoomIn:
    case Command::ZoomOut:
    case Command::ActualSize:
    case Command::Scroll:
    case Command::ShowProperties: break;
    }
}

void DiagramKeys::moveTable(TorvQDTable& table, const QPoint& by) {
    const QPoint place(table.Left, table.Top);
    m_area.placeBox(table, place + by, place);
    m_area.ensureVisible(table.GetBoundsRect());
}

void DiagramKeys::sizeTable(TorvQDTable& table, const QPoint& by) {
    if (!table.Expanded) return;
    if (by.x() != 0) table.SetWidth(table.Width + by.x());
    if (by.y() != 0) table.SetHeight(table.Height + by.y());
    m_area.ensureVisible(table.GetBoundsRect());
}

// --- a link by keys ---

TorvQDListItem* DiagramKeys::linkSource() const {
    const bool isThere =
        m_linkTable && m_linkRow >= 0 && m_linkRow < int(m_linkTable->Items.size());
    return isThere ? m_linkTable->Items[std::size_t(m_linkRow)].get() : nullptr;
}

// The first Insert takes the current row, the second one links it with the row that is current
// then.
void DiagramKeys::beginOrEndLink(TorvQDTable& table) {
    if (!table.CurrentItem && !table.Items.empty()) {
        table.SetCurrentItem(table.Items[std::size_t(std::max(0, table.FirstVisibleItem))].get());
    }
    TorvQDListItem* row = table.CurrentItem;
    if (!row || row->ParamType != ptOutput) return;
    TorvQDListItem* from = linkSource();
    if (!from || from->Table == &table) {
        m_linkTable = &table;
        m_linkRow = row->GetIndex();
        m_area.viewport()->update();
        return;
    }
    cancelLink();
    if (!m_area.FindLink(from->Table, &table, from, row)) {
        m_area.AddLink(from->Table, &table, from, row);
    }
}

bool DiagramKeys::cancelLink() {
    if (!m_linkTable) return false;
    m_linkTable.clear();
    m_linkRow = -1;
    m_area.viewport()->update();
    return true;
}

void DiagramKeys::forget(const TorvQDFloatObject* object) {
    if (m_linkTable == object) cancelLink();
}

void DiagramKeys::paint(QPainter& painter) const {
    const TorvQDListItem* from = linkSource();
    if (!from) return;
    const auto place = [&](const TorvQDListItem& item) {
        const TRect row = item.Table->toView(item.GetBoundsRect());
        return QRect(row.Left, row.Top, row.width(), row.height());
    };
    painter.save();
    painter.setPen(QPen(Qt::black, 2, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(place(*from));
    const TorvQDTable* table = selectedTable();
    const TorvQDListItem* to = table && table != from->Table ? table->CurrentItem : nullptr;
    if (to) {
        const QRect start = place(*from);
        const QRect end = place(*to);
        const bool goesRight = end.center().x() >= start.center().x();
        const QLine line(goesRight ? start.right() : start.left(), start.center().y(),
                         goesRight ? end.left() : end.right(), end.center().y());
        // Two colours, so that it is seen on whatever it runs over.
        const QPen dots = painter.pen();
        painter.setPen(QPen(Qt::white, dots.width()));
        painter.drawLine(line);
        painter.setPen(dots);
        painter.drawLine(line);
    }
    painter.restore();
}

}  // namespace orv
