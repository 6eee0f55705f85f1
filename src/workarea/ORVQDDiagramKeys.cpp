// SPDX-License-Identifier: MIT
#include "workarea/ORVQDDiagramKeys.h"

#include "toolkit/ArrowKeys.h"
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
    const int key = event.key();
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool isArrow = !arrowOf(key).isNull();
    const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (isArrow) return !(modifiers & (Qt::AltModifier | Qt::MetaModifier));
    if (isPage) return !(modifiers & Qt::MetaModifier);
    const TorvQDFloatObject* selected = m_area.selectedObject();
    switch (key) {
    case Qt::Key_Home:
    case Qt::Key_End: return modifiers == Qt::NoModifier;
    case Qt::Key_Delete:
    case Qt::Key_Insert:
    case Qt::Key_F2:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter: return selected && !(modifiers & (Qt::AltModifier | Qt::MetaModifier));
    case Qt::Key_Escape: return m_area.isGesturing() || linkSource();
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_Minus: return selected || modifiers & Qt::ControlModifier;
    case Qt::Key_0: return modifiers == Qt::ControlModifier || (selected && modifiers == 0);
    default: break;
    }
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    const QString text = event.text();
    return selected && !text.isEmpty() && text.at(0).isLetterOrNumber();
}

bool DiagramKeys::press(const QKeyEvent& event) {
    const int key = event.key();
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (key == Qt::Key_Escape) return m_area.cancelGesture() || cancelLink();
    const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    const int step = key == Qt::Key_PageDown ? 1 : -1;
    if (isPage && modifiers == Qt::ControlModifier) {
        selectTable(step);
        return true;
    }
    if (isPage && modifiers == Qt::AltModifier) {
        selectLink(step);
        return true;
    }
    TorvQDTable* table = selectedTable();
    if (table && pressOnTable(*table, key, modifiers)) return true;
    if (TorvQDLink* link = selectedLink(); link && key == Qt::Key_F2) {
        link->_LinkProperties();
        return true;
    }
    if (modifiers & Qt::ControlModifier) {
        if (pressWithControl(key)) return true;
    }
    return !m_area.selectedObject() && modifiers == Qt::NoModifier && scroll(key);
}

// --- the view ---

bool DiagramKeys::pressWithControl(int key) {
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: m_area.zoomIn(); return true;
    case Qt::Key_Minus: m_area.zoomOut(); return true;
    case Qt::Key_0: m_area.setZoom(1); return true;
    default: break;
    }
    if (m_area.selectedObject() || arrowOf(key).isNull()) return false;
    const QPoint by = arrowOf(key) * stepPx;
    m_area.scrollBy(by.x(), by.y());
    return true;
}

bool DiagramKeys::scroll(int key) {
    const QPoint arrow = arrowOf(key);
    QScrollBar* vertical = m_area.verticalScrollBar();
    if (!arrow.isNull()) {
        m_area.scrollBy(arrow.x() * vertical->singleStep(), arrow.y() * vertical->singleStep());
        return true;
    }
    switch (key) {
    case Qt::Key_PageUp: vertical->triggerAction(QScrollBar::SliderPageStepSub); return true;
    case Qt::Key_PageDown: vertical->triggerAction(QScrollBar::SliderPageStepAdd); return true;
    case Qt::Key_Home:
        m_area.horizontalScrollBar()->setValue(0);
        vertical->setValue(0);
        return true;
    default: return false;
    }
}

// --- selecting ---

void DiagramKeys::selectTable(int step) {
    TorvQDTable* table = neighbour(m_area.tablesByCreation(), m_area.selectedObject(), step);
    if (!table) return;
    m_area.selectObject(table);
    m_area.ensureVisible(table->GetBoundsRect());
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
    m_area.selectObject(link);
    m_area.ensureVisible(link->GetBounds());
}

// --- a box ---

bool DiagramKeys::pressOnTable(TorvQDTable& table, int key, Qt::KeyboardModifiers modifiers) {
    const bool hasControl = modifiers & Qt::ControlModifier;
    const bool hasShift = modifiers & Qt::ShiftModifier;
    if (hasControl && !arrowOf(key).isNull()) {
        return changeShape(table, key, hasShift);
    }
    if (hasControl && !hasShift) {
        switch (key) {
        case Qt::Key_Space: table.SetFieldState(table.FieldState == 2 ? 0 : 2); return true;
        case Qt::Key_Delete: table.UnlinkTable(); return true;
        default: return false;
        }
    }
    if (modifiers & ~Qt::ShiftModifier) return false;
    switch (key) {
    case Qt::Key_F2: table._RenameTable(); return true;
    case Qt::Key_Delete: table.CloseTable(); return true;
    case Qt::Key_Insert: beginOrEndLink(table); return true;
    case Qt::Key_Plus: table.SetExpand(-1); return true;
    case Qt::Key_Minus: table.SetExpand(0); return true;
    default: return false;
    }
}

bool DiagramKeys::changeShape(TorvQDTable& table, int key, bool sizes) {
    const QPoint by = arrowOf(key) * stepPx;
    if (sizes) {
        if (!table.Expanded) return true;
        if (by.x() != 0) table.SetWidth(table.Width + by.x());
        if (by.y() != 0) table.SetHeight(table.Height + by.y());
    } else {
        const QPoint place(table.Left, table.Top);
        m_area.placeBox(table, place + by, place);
    }
    m_area.ensureVisible(table.GetBoundsRect());
    return true;
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
        painter.drawLine(goesRight ? start.right() : start.left(), start.center().y(),
                         goesRight ? end.left() : end.right(), end.center().y());
    }
    painter.restore();
}

}  // namespace orv
