// SPDX-License-Identifier: MIT
// Drags in the selection grid: of its own rows, and of fields that come from the diagram.
#include "contract/IPagesHost.h"
#include "selection/ORVQDSelectModel_p.h"
#include "toolkit/Services.h"

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace {

constexpr int dragDistancePx = 1;
constexpr int markWidthPx = 2;
constexpr int scrollBandPx = 6;

// Near its upper and lower edge the grid scrolls under a drag.
void scrollAtEdge(QScrollBar& bar, int y, int height) {
    if (y < scrollBandPx) {
        bar.triggerAction(QAbstractSlider::SliderSingleStepSub);
    } else if (y >= height - scrollBandPx) {
        bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    }
}

}  // namespace

// The header is row 0; what lies below all rows belongs to the last one.
int TorvQDSelectGrid::rowAtPoint(const QPoint& point) const {
    if (point.y() < 0) return 0;
    const int row = rowAt(point.y());
    return row < 0 ? m_model->rowCount() : row + 1;
}

// --- rows ---

// In a window that is not active an editor has no focus to lose.
void TorvQDSelectGrid::mousePressEvent(QMouseEvent* event) {
    endRowDrag();
    if (!commitBefore()) return;
    QTableView::mousePressEvent(event);
    const int row = rowAtPoint(event->pos());
    if (event->button() != Qt::LeftButton || !isDataRow(row)) return;
    m_rowDrag = RowDrag::Pressed;
    m_draggedRow = m_model->index(row - 1, 0);
    m_pressPoint = event->pos();
}

void TorvQDSelectGrid::mouseMoveEvent(QMouseEvent* event) {
    const bool isHeld = event->buttons() & Qt::LeftButton;
    if (m_rowDrag != RowDrag::None && (!isHeld || !m_draggedRow.isValid())) endRowDrag();
    if (m_rowDrag == RowDrag::None) return QTableView::mouseMoveEvent(event);
    const QPoint point = event->pos();
    if (m_rowDrag == RowDrag::Pressed) {
        if ((point - m_pressPoint).manhattanLength() < dragDistancePx) return;
        m_rowDrag = RowDrag::Dragging;
    }
    const int own = m_draggedRow.row() + 1;
    if (rowAtPoint(point) != own) {
        scrollAtEdge(*verticalScrollBar(), point.y(), viewport()->height());
    }
    bool accepted = false;
    _DragOver(this, nullptr, point.x(), point.y(), accepted);
    const int row = rowAtPoint(point);
    setDropRow(accepted && row != own ? row : 0);
}

// The view is done with the button before rows go elsewhere.
void TorvQDSelectGrid::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<TorvQDSelectGrid> self(this);
    const QPoint point = event->pos();
    const bool isDrop = m_rowDrag == RowDrag::Dragging && event->button() == Qt::LeftButton;
    QTableView::mouseReleaseEvent(event);
    if (self && isDrop) orv::guarded([&] { _DragDrop(this, point.x(), point.y()); });
    if (self) endRowDrag();
}

void TorvQDSelectGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    endRowDrag();
    const QPointer<TorvQDSelectGrid> self(this);
    QTableView::mouseDoubleClickEvent(event);
    if (!self || event->button() != Qt::LeftButton) return;
    const QModelIndex cell = indexAt(event->pos());
    if (!cell.isValid()) return;
    setCurrentIndex(cell);
    orv::guarded([this] { _StringDblClick(); });
}

void TorvQDSelectGrid::focusOutEvent(QFocusEvent* event) {
    endRowDrag();
    QTableView::focusOutEvent(event);
}

void TorvQDSelectGrid::endRowDrag() {
    m_rowDrag = RowDrag::None;
    m_draggedRow = QModelIndex();
    setDropRow(0);
}

// --- where a drop would go ---

// A field takes the place of a row; a row goes between two others, or to an end.
QRect TorvQDSelectGrid::dropMark() const {
    if (m_dropRow == 0) return {};
    const QRect left = visualRect(m_model->index(m_dropRow - 1, 0));
    const QRect right = visualRect(m_model->index(m_dropRow - 1, orv::gridColumns - 1));
    QRect row = left.united(right);
    if (m_rowDrag != RowDrag::Dragging) return row;
    const bool goesDown = m_dropRow > m_draggedRow.row() + 1;
    const int edge = goesDown ? row.bottom() + 1 : row.top();
    return {row.left(), edge - markWidthPx / 2, row.width(), markWidthPx};
}

void TorvQDSelectGrid::setDropRow(int row) {
    if (row == m_dropRow) return;
    m_dropRow = row;
    if (m_rowDrag == RowDrag::Dragging && row > 0) {
        viewport()->setCursor(Qt::DragMoveCursor);
    } else {
        viewport()->unsetCursor();
    }
    viewport()->update();
}

void TorvQDSelectGrid::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    const QRect mark = dropMark();
    if (mark.isEmpty()) return;
    QPainter painter(viewport());
    const QColor color = palette().color(QPalette::Highlight);
    if (m_rowDrag == RowDrag::Dragging) {
        painter.fillRect(mark, color);
        return;
    }
    painter.setPen(QPen(color, markWidthPx, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(mark.adjusted(1, 1, -1, -1));
}

// --- both ---

void TorvQDSelectGrid::_DragOver(const QObject* Source, const QMimeData* Data, int X, int Y,
                                 bool& Accept) {
    const int row = rowAtPoint({X, Y});
    if (Source == this) {
        Accept = m_draggedRow.isValid() && isDataRow(row);
        return;
    }
    m_draggedField.reset();
    Accept = isOwn(Data) && row > 0;
    if (Accept) m_draggedField = orv::draggedField(Data);
}

// Something modal in here would block the one who drags the field.
void TorvQDSelectGrid::_DragDrop(const QObject* Source, int X, int Y) {
    const int row = rowAtPoint({X, Y});
    if (Source == this) {
        if (m_draggedRow.isValid()) moveRow(m_draggedRow.row() + 1, row);
        return;
    }
    const std::optional<orv::DraggedField> field = std::exchange(m_draggedField, std::nullopt);
    if (!field || row < 1) return;
    const QPersistentModelIndex target(m_model->index(row - 1, orv::sourceColumn));
    QMetaObject::invokeMethod(
        this, [this, field, target] { orv::guarded([&] { putField(*field, target); }); },
        Qt::QueuedConnection);
}

// --- fields ---

bool TorvQDSelectGrid::isOwn(const QMimeData* data) const {
    const std::optional<orv::DraggedField> field = orv::draggedField(data);
    const IPagesHost* owner = host();
    return field && owner && field->builder == owner->dragIdentity() && AllFields &&
           AllFields->contains(field->qualifiedName());
}

void TorvQDSelectGrid::overField(QDragMoveEvent* event) {
    const QPoint point = event->position().toPoint();
    bool accepted = false;
    _DragOver(event->source(), event->mimeData(), point.x(), point.y(), accepted);
    setDropRow(accepted ? rowAtPoint(point) : 0);
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(accepted);
}

void TorvQDSelectGrid::dragEnterEvent(QDragEnterEvent* event) {
    overField(event);
}

void TorvQDSelectGrid::dragMoveEvent(QDragMoveEvent* event) {
    const int y = event->position().toPoint().y();
    if (isOwn(event->mimeData())) scrollAtEdge(*verticalScrollBar(), y, viewport()->height());
    overField(event);
}

void TorvQDSelectGrid::dragLeaveEvent(QDragLeaveEvent*) {
    m_draggedField.reset();
    setDropRow(0);
}

void TorvQDSelectGrid::dropEvent(QDropEvent* event) {
    const QPoint point = event->position().toPoint();
    bool accepted = false;
    _DragOver(event->source(), event->mimeData(), point.x(), point.y(), accepted);
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(accepted);
    if (accepted) _DragDrop(event->source(), point.x(), point.y());
    setDropRow(0);
}

// Its box, or the row, may be gone since the drop.
void TorvQDSelectGrid::putField(const orv::DraggedField& field,
                                const QPersistentModelIndex& target) {
    if (!commitBefore()) return;
    const QString name = field.qualifiedName();
    if (!target.isValid() || !AllFields || !AllFields->contains(name)) return;
    const int row = target.row() + 1;
    const QPointer<TorvQDSelectGrid> self(this);
    change([&] {
        const QString before = Cells(orv::sourceColumn, row);
        if (row == RowCount() - 1) m_columns.emplace_back();
        m_columns[std::size_t(row - 1)] = {CreateFieldName(QString(), name), QString(), name};
        changed();
        tell(OnFieldRemoved, before);
        if (self) tell(OnFieldChosen, name);
    });
    if (self) setCurrentCell(orv::sourceColumn, row);
}
