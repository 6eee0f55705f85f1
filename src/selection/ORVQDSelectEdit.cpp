// SPDX-License-Identifier: MIT
// The selection grid in the hand: editors over its cells, keys, the menu.
#include "contract/ChangeScope.h"
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "selection/ORVQDSelectModel_p.h"
#include "toolkit/ExitCombo.h"
#include "toolkit/ExitEdit.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace {

// So that a short list of aggregates can be read in a narrow grid.
constexpr int leastChoiceWidthPx = 90;

// Whether the key types a character; Alt Gr is Ctrl and Alt on some platforms. A blank begins no
// text.
bool isTyped(const QKeyEvent& event) {
    const QString text = event.text();
    if (text.isEmpty() || text.front() <= u' ' || text.front() == QChar(0x7f)) return false;
    const bool isControl = event.modifiers() & Qt::ControlModifier;
    const bool isAlt = event.modifiers() & Qt::AltModifier;
    return isControl == isAlt && !(event.modifiers() & Qt::MetaModifier);
}

QString withoutBlanks(QString name) {
    std::replace_if(
        name.begin(), name.end(), [](QChar sign) { return sign.isSpace(); }, u'_');
    return name;
}

/// What a key asks for in the grid.
enum class GridKey { None, Edit, Delete, MoveUp, MoveDown, Mute, Menu };

GridKey gridKey(int key, Qt::KeyboardModifiers modifiers) {
    modifiers &= ~Qt::KeypadModifier;
    if (modifiers == Qt::NoModifier && (orv::isEnter(key) || key == Qt::Key_F2))
        return GridKey::Edit;
    if (modifiers == Qt::ControlModifier && key == Qt::Key_Delete) return GridKey::Delete;
    if (modifiers == Qt::AltModifier && key == Qt::Key_Up) return GridKey::MoveUp;
    if (modifiers == Qt::AltModifier && key == Qt::Key_Down) return GridKey::MoveDown;
    if (modifiers == Qt::ControlModifier && key == Qt::Key_M) return GridKey::Mute;
    // Not every platform makes a context menu event of it.
    if (modifiers == Qt::ShiftModifier && key == Qt::Key_F10) return GridKey::Menu;
    return GridKey::None;
}

}  // namespace

// --- one change ---

// All of it is one change for the host, in whose handlers the grid may die.
void TorvQDSelectGrid::change(const std::function<void()>& body) {
    IPagesHost* owner = host();
    ChangeScope scope(owner, dynamic_cast<QObject*>(owner));
    body();
    scope.finish();
}

void TorvQDSelectGrid::tell(const NameEvent& event, const QString& name) {
    const NameEvent handler = event;
    if (handler && !name.isEmpty()) handler(name);
}

bool TorvQDSelectGrid::isDiagramField(const QString& source) const {
    if (AllFields && AllFields->contains(source)) return true;
    const IPagesHost* owner = host();
    return owner && owner->resolveField(source).has_value();
}

void TorvQDSelectGrid::setCurrentCell(int col, int row) {
    if (m_model->rowCount() != RowCount() - 1) refreshView();
    const QModelIndex cell = m_model->index(row - 1, col);
    if (cell.isValid()) setCurrentIndex(cell);
}

// --- the editors ---

void TorvQDSelectGrid::createEditors() {
    m_nameEdit = new orv::ExitEdit(viewport());
    m_nameEdit->setFrame(true);
    m_nameEdit->setAccessibleName(tr("Output name"));
    m_nameEdit->committed = [this] { _SetCellText(m_nameEdit->text()); };
    m_nameEdit->dropped = [this] { m_edited = QModelIndex(); };
    m_choice = new orv::ExitCombo(viewport());
    m_choice->committed = [this](const QString& text) { _SetCellText(text); };
    m_choice->dropped = [this] { m_edited = QModelIndex(); };
}

void TorvQDSelectGrid::_EditText(int Col, int Row) {
    static_cast<void>(openEditor(Col, Row));
}

bool TorvQDSelectGrid::openEditor(int col, int row) {
    const int rows = RowCount();
    const int editedRow = m_edited.row() + 1;
    // The page may have gone while the menu was open.
    if (!commitBefore() || !isVisibleTo(window())) return false;
    if (RowCount() < rows && row > editedRow) --row;
    const bool isLast = row == RowCount() - 1;
    if (col < 0 || col >= orv::gridColumns || row < 1 || row >= RowCount()) return false;
    if (isLast && col != orv::sourceColumn) return false;
    setCurrentCell(col, row);
    scrollTo(currentIndex());
    m_edited = currentIndex();
    placeEditor();
    if (col == orv::nameColumn) {
        m_nameEdit->open(Cells(col, row));
        return true;
    }
    const bool isSource = col == orv::sourceColumn;
    m_choice->setAccessibleName(isSource ? tr("Source") : tr("Aggregate"));
    QStringList items;
    if (isSource && AllFields) items = AllFields->names();
    if (!isSource && AgrFuncs) items = *AgrFuncs;
    m_choice->open(items, Cells(col, row));
    return true;
}

// The first character replaces the text of the cell; Escape brings that back.
void TorvQDSelectGrid::startTyping(const QString& text) {
    if (!openEditor(currentIndex().column(), currentRow())) return;
    if (m_edited.column() == orv::nameColumn) {
        m_nameEdit->setText(text);
    } else {
        m_choice->setEditText(text);
    }
}

QString TorvQDSelectGrid::editedText() const {
    return m_edited.column() == orv::nameColumn ? m_nameEdit->text() : m_choice->currentText();
}

void TorvQDSelectGrid::endEditing() {
    m_edited = QModelIndex();
    m_nameEdit->discard();
    m_choice->discard();
}

// Editors lie on the viewport and have to be taken along by hand.
void TorvQDSelectGrid::placeEditor() {
    if (!m_edited.isValid()) return;
    QRect place = visualRect(m_edited);
    if (m_edited.column() == orv::nameColumn) {
        m_nameEdit->setGeometry(place);
        return;
    }
    if (place.width() < leastChoiceWidthPx) place.setWidth(leastChoiceWidthPx);
    m_choice->setGeometry(place);
}

void TorvQDSelectGrid::updateEditorGeometries() {
    QTableView::updateEditorGeometries();
    placeEditor();
}

void TorvQDSelectGrid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    placeEditor();
}

void TorvQDSelectGrid::commitEdit() {
    if (isEditing()) _SetCellText(editedText());
}

void TorvQDSelectGrid::discardEdit() {
    if (isEditing()) endEditing();
}

// What somebody else does to the rows happens also when taking over the text fails; but not when
// the grid died of what the host made of it.
bool TorvQDSelectGrid::commitBefore() {
    const QPointer<TorvQDSelectGrid> self(this);
    if (isEditing()) orv::guarded([this] { commitEdit(); });
    return self;
}

void TorvQDSelectGrid::_CellKeyDown(int Key) {
    if (orv::isEnter(Key)) {
        commitEdit();
    } else if (Key == Qt::Key_Escape) {
        discardEdit();
    }
}

void TorvQDSelectGrid::_SetCellText(const QString& Text) {
    if (!isEditing()) return;
    const int col = m_edited.column();
    const int row = m_edited.row() + 1;
    // It may be the editor's own. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const QString text = Text;
    endEditing();
    setCellText(col, row, text);
}

// --- what an edit does ---

// A field is typed in any case, with or without its table.
QString TorvQDSelectGrid::ownSpelling(const QString& source) const {
    const IPagesHost* owner = host();
    if (!owner || !AllFields || AllFields->contains(source)) return source;
    const std::optional<PageField> field = owner->resolveField(source);
    return field && AllFields->contains(field->qualifiedName()) ? field->qualifiedName() : source;
}

QString TorvQDSelectGrid::listedAggregate(const QString& name) const {
    for (const QString& listed : AgrFuncs ? *AgrFuncs : QStringList()) {
        if (listed.compare(name, Qt::CaseInsensitive) == 0) return listed;
    }
    return name;
}

// A text that nobody touched stays as it is, be it as it may.
void TorvQDSelectGrid::setCellText(int col, int row, const QString& text) {
    if (text == Cells(col, row)) return;
    if (col == orv::sourceColumn) return setSource(row, ownSpelling(orv::orvTrim(text)));
    if (!isDataRow(row)) return;
    orv::OutputColumn& column = m_columns[std::size_t(row - 1)];
    if (col == orv::nameColumn) {
        column.name = withoutBlanks(text);
    } else {
        const QString aggregate = listedAggregate(orv::orvTrim(text));
        if (aggregate == orv::orvTrim(column.aggregate)) return;
        updateName(col, row, aggregate);
        column.aggregate = aggregate;
    }
    changed();
}

void TorvQDSelectGrid::setSource(int row, const QString& source) {
    const bool isNew = row == RowCount() - 1;
    if (source.isEmpty()) {
        if (!isNew) deleteRow(row);
        return;
    }
    if (source == Cells(orv::sourceColumn, row)) return;
    const QPointer<TorvQDSelectGrid> self(this);
    const bool isCurrent = currentRow() == row;
    change([&] {
        if (isNew) m_columns.emplace_back();
        updateName(orv::sourceColumn, row, source);
        orv::OutputColumn& column = m_columns[std::size_t(row - 1)];
        const QString before = std::exchange(column.source, source);
        const bool isPlain = orv::isBlank(column.aggregate);
        const bool wasField = isDiagramField(before);
        // An expression by which is grouped is so when it was corrected, too.
        column.grouped = column.grouped && !wasField;
        changed();
        if (isPlain && wasField) tell(OnFieldRemoved, before);
        if (self && isPlain) tell(OnFieldChosen, source);
    });
    if (self && isNew && isCurrent) setCurrentCell(orv::sourceColumn, row);
}

void TorvQDSelectGrid::UpdateName(const QString& Value) {
    updateName(currentIndex().column(), currentRow(), Value);
}

void TorvQDSelectGrid::updateName(int col, int row, const QString& value) {
    if (!isDataRow(row) || (col != orv::aggregateColumn && col != orv::sourceColumn)) return;
    orv::OutputColumn& column = m_columns[std::size_t(row - 1)];
    const bool isGenerated = column.name == CreateFieldName(column.aggregate, column.source);
    const QString& aggregate = col == orv::aggregateColumn ? value : column.aggregate;
    const QString& source = col == orv::sourceColumn ? value : column.source;
    if (!isGenerated || !AllFields || !AllFields->contains(source)) return;
    column.name = CreateFieldName(aggregate, source);
}

void TorvQDSelectGrid::deleteRow(int row) {
    change([&] {
        const QString source = m_columns[std::size_t(row - 1)].source;
        m_columns.erase(m_columns.begin() + (row - 1));
        changed();
        tell(OnFieldRemoved, source);
    });
}

void TorvQDSelectGrid::_DeleteCurrentRow() {
    if (!commitBefore()) return;
    const int row = currentRow();
    if (!isDataRow(row)) throw orv::Error(QStringLiteral("Could not delete last row!"));
    deleteRow(row);
}

void TorvQDSelectGrid::moveRow(int From, int To) {
    const int rows = RowCount();
    if (!commitBefore() || RowCount() < rows || From == To || !isDataRow(From) || !isDataRow(To))
        return;
    const QPointer<TorvQDSelectGrid> self(this);
    const int col = std::max(0, currentIndex().column());
    change([&] {
        const auto from = m_columns.begin() + (From - 1);
        const auto to = m_columns.begin() + (To - 1);
        if (From < To) {
            std::rotate(from, from + 1, to + 1);
        } else {
            std::rotate(to, from, from + 1);
        }
        setCurrentCell(col, To);
        changed();
    });
    if (self) scrollTo(currentIndex());
}

void TorvQDSelectGrid::SetMuted(int Row, bool Value) {
    if (!isDataRow(Row) || m_columns[std::size_t(Row - 1)].muted == Value) return;
    change([&] {
        m_columns[std::size_t(Row - 1)].muted = Value;
        changed();
    });
}

void TorvQDSelectGrid::muteCurrentRow() {
    if (!commitBefore() || !isDataRow(currentRow())) return;
    SetMuted(currentRow(), !m_columns[std::size_t(currentRow() - 1)].muted);
}

void TorvQDSelectGrid::moveCurrentRow(int by) {
    moveRow(currentRow(), currentRow() + by);
}

// --- keys ---

bool TorvQDSelectGrid::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& pressed = *static_cast<QKeyEvent*>(event);
        const bool isDragEnd = m_rowDrag == RowDrag::Dragging && pressed.key() == Qt::Key_Escape;
        const bool isOwn = gridKey(pressed.key(), pressed.modifiers()) != GridKey::None;
        if (isDragEnd || isOwn || isTyped(pressed)) {
            event->accept();
            return true;
        }
    }
    return QTableView::event(event);
}

void TorvQDSelectGrid::keyPressEvent(QKeyEvent* event) {
    if (m_rowDrag == RowDrag::Dragging && event->key() == Qt::Key_Escape) return endRowDrag();
    bool isUsed = true;
    const QPointer<TorvQDSelectGrid> self(this);
    orv::guarded([&] { isUsed = _StringKeyDown(event->key(), event->modifiers()); });
    if (isUsed || !self) return event->accept();
    if (isTyped(*event)) return orv::guarded([&] { startTyping(event->text()); });
    QTableView::keyPressEvent(event);
}

bool TorvQDSelectGrid::_StringKeyDown(int Key, Qt::KeyboardModifiers Shift) {
    switch (gridKey(Key, Shift)) {
    case GridKey::None: return false;
    case GridKey::Edit: _EditText(currentIndex().column(), currentRow()); break;
    case GridKey::Delete: askToDelete(); break;
    case GridKey::MoveUp: moveCurrentRow(-1); break;
    case GridKey::MoveDown: moveCurrentRow(1); break;
    case GridKey::Mute: muteCurrentRow(); break;
    case GridKey::Menu: showMenu(visualRect(currentIndex()).center()); break;
    }
    return true;
}

void TorvQDSelectGrid::_StringDblClick() {
    _EditText(currentIndex().column(), currentRow());
}

// --- the current row, after somebody else had a say ---

namespace {

/// The current row of a grid, to be found again when rows may have come and gone.
class KeptRow {
public:
    explicit KeptRow(const TorvQDSelectGrid& grid)
        : m_cell(grid.currentIndex()), m_column(columnAt(grid, m_cell.row())) {}

    /// Where the row is now; none when it is gone.
    [[nodiscard]] QModelIndex find(const TorvQDSelectGrid& grid) const {
        if (m_cell.isValid() && columnAt(grid, m_cell.row()) == m_column) return m_cell;
        if (!m_column) return {};
        const orv::OutputColumns& columns = grid.columns();
        const auto found = std::find(columns.begin(), columns.end(), *m_column);
        if (found == columns.end()) return {};
        return grid.model()->index(int(found - columns.begin()), std::max(0, m_cell.column()));
    }

private:
    // None for the last row.
    static std::optional<orv::OutputColumn> columnAt(const TorvQDSelectGrid& grid, int row) {
        if (row < 0 || row >= int(grid.columns().size())) return std::nullopt;
        return grid.columns()[std::size_t(row)];
    }

    QPersistentModelIndex m_cell;
    std::optional<orv::OutputColumn> m_column;
};

}  // namespace

void TorvQDSelectGrid::askToDelete() {
    if (!commitBefore()) return;
    const KeptRow row(*this);
    const QPointer<TorvQDSelectGrid> self(this);
    const orv::MessageAnswer answer = orv::showMessage(
        {this, QStringLiteral("Are you sure want to delete current row?"),
         QStringLiteral("Be care!"), orv::MessageIcon::Question, orv::MessageButtons::YesNo});
    if (!self || answer == orv::MessageAnswer::No) return;
    const QModelIndex cell = row.find(*this);
    if (!cell.isValid()) return;
    setCurrentIndex(cell);
    _DeleteCurrentRow();
}

void TorvQDSelectGrid::contextMenuEvent(QContextMenuEvent* event) {
    const bool isMouse = event->reason() == QContextMenuEvent::Mouse;
    const QPoint point = viewport()->mapFromGlobal(event->globalPos());
    const QModelIndex cell = isMouse ? indexAt(point) : currentIndex();
    if (!cell.isValid() || (isMouse && !viewport()->rect().contains(point))) return;
    orv::guarded([&] {
        if (!commitBefore()) return;
        if (isMouse) setCurrentIndex(indexAt(point));
        showMenu(isMouse ? point : visualRect(currentIndex()).center());
    });
}

void TorvQDSelectGrid::showMenu(const QPoint& point) {
    if (!currentIndex().isValid()) return;
    if (m_menu) m_menu->close();
    m_menu = new QMenu(this);
    m_menu->setAttribute(Qt::WA_DeleteOnClose);
    const KeptRow row(*this);
    const auto add = [&](const QString& text, const QKeySequence& key, bool isEnabled,
                         const std::function<void()>& handler) {
        QAction* action = m_menu->addAction(text);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setEnabled(isEnabled);
        connect(action, &QAction::triggered, this, [this, row, handler] {
            const QModelIndex cell = row.find(*this);
            if (!cell.isValid()) return;
            setCurrentIndex(cell);
            orv::guarded(handler);
        });
    };
    const int current = currentRow();
    const bool isData = isDataRow(current);
    add(QStringLiteral("Delete current row"), QKeySequence(Qt::CTRL | Qt::Key_Delete), true,
        [this] { _DeleteCurrentRow(); });
    m_menu->addSeparator();
    add(tr("Edit"), QKeySequence(Qt::Key_F2),
        isData || currentIndex().column() == orv::sourceColumn, [this] { _StringDblClick(); });
    add(tr("Move up"), QKeySequence(Qt::ALT | Qt::Key_Up), isData && isDataRow(current - 1),
        [this] { moveCurrentRow(-1); });
    add(tr("Move down"), QKeySequence(Qt::ALT | Qt::Key_Down), isData && isDataRow(current + 1),
        [this] { moveCurrentRow(1); });
    const bool isMuted = isData && m_columns[std::size_t(current - 1)].muted;
    add(isMuted ? tr("Unmute column") : tr("Mute column"), QKeySequence(Qt::CTRL | Qt::Key_M),
        isData, [this] { muteCurrentRow(); });
    m_menu->popup(viewport()->mapToGlobal(point));
}

// A page that is left takes what was typed over; a window that is closed may be about to die.
void TorvQDSelectGrid::hideEvent(QHideEvent* event) {
    endRowDrag();
    QTableView::hideEvent(event);
    if (!event->spontaneous() && !window()->isHidden()) static_cast<void>(commitBefore());
}
