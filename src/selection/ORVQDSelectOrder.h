// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "data/DraggedField.h"
#include "data/NameList.h"
#include "selection/ORVQDSelectColumns.h"
#include "selection/ORVQDSortList.h"

#include <QMenu>
#include <QPersistentModelIndex>
#include <QPoint>
#include <QPointer>
#include <QSet>
#include <QTableView>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class IPagesHost;
class QAbstractItemView;
class QCheckBox;
class QDropEvent;
class QHelpEvent;
class QKeyEvent;
class QLabel;
class QListWidget;
class QMimeData;
class QMouseEvent;
class QPushButton;
class QTreeWidget;
class TorvQDParser;
class TorvQDSelectGrid;

namespace orv {
class ExitCombo;
class ExitEdit;
class LoadLedger;
class TokenRun;
}  // namespace orv

/// The grid of output columns on the "Selection" page. Rows are counted as the grid shows them: row
/// 0 is the header, data rows follow, and the last row is always empty. Output names are edited in
/// an edit box over the cell, aggregates and sources in a combo box. What is typed there is taken
/// over before anything else changes the rows; only Escape, loading and clearing drop it. Owned by
/// the select panel.
class ORV_EXPORT TorvQDSelectGrid : public QTableView {
    Q_OBJECT

public:
    /// Told of a qualified field name.
    using NameEvent = std::function<void(const QString& FullName)>;

    /// Raises orv::Error "Invalide parent for SelectGrids" without a parent.
    explicit TorvQDSelectGrid(QWidget* Parent);
    ~TorvQDSelectGrid() override;

    const QStringList* AgrFuncs = nullptr;     ///< names of the aggregates; borrowed
    const orv::NameList* AllFields = nullptr;  ///< all fields of the diagram; borrowed
    NameEvent OnFieldChosen;   ///< a field of the diagram became the source of a row
    NameEvent OnFieldRemoved;  ///< a row of that source went
    /// A number from 0 to 99 for the name of an expression; replaceable for tests.
    std::function<int()> randomBelow100;

    /// Rows with the header and the empty last one.
    [[nodiscard]] int RowCount() const { return int(m_columns.size()) + 2; }
    /// Text of a cell; columns are output name, aggregate and source.
    [[nodiscard]] QString Cells(int Col, int Row) const;
    /// The data rows.
    [[nodiscard]] const orv::OutputColumns& columns() const { return m_columns; }

    /// The output name that goes with an aggregate and a source: "SUM_OF_PRICE", or the field's
    /// own.
    [[nodiscard]] static QString CreateFieldName(const QString& Agg, const QString& Source);
    /// Appends an output column for the qualified name, also when it is there already.
    void CheckField(const QString& Name);
    /// Deletes every row whose source is exactly that name.
    void UnCheckField(const QString& Name);
    /// The same for many names in one walk.
    void uncheckFields(const QSet<QString>& names);
    /// Replaces the alias in front of full stops in every source, as plain text.
    void ChangeAlias(const QString& NewAlias, const QString& OldAlias);
    /// How ORDER BY names the row: a plain field by its source, else its number.
    [[nodiscard]] QString GetFieldName(int Row) const;
    /// Output name of the first row of exactly that source; empty without one.
    [[nodiscard]] QString GetFieldAlias(const QString& Name) const;
    /// The select list and the GROUP BY list; see orv::selectTexts.
    [[nodiscard]] orv::SelectTexts GetSQLStatment() const;
    /// Rebuilds the rows from a statement's root node, GROUP BY included. Raises orv::Error when
    /// the node is another.
    void LoadSQL(const TorvQDParser& Node);
    /// Removes all rows; what is being typed is dropped.
    void ClearContents();
    /// Replaces all rows.
    void setColumns(orv::OutputColumns columns);

    /// By what the select list is written here; of the query builder around the grid.
    [[nodiscard]] orv::SelectTextRules textRules() const;
    /// Shows what changed; the query builder calls it once per change.
    void refreshView();

    // --- editing

    /// Opens the editor over a cell: an edit box for output names, else a combo box. In the last
    /// row only sources are edited.
    void _EditText(int Col, int Row);
    /// Takes the text for the cell that is being edited. An empty source deletes its row; a source
    /// in the last row makes it a data row.
    void _SetCellText(const QString& Text);
    /// Enter in an editor takes what was typed over, Escape drops it.
    void _CellKeyDown(int Key);
    /// What a key does in the grid; whether it does anything.
    bool _StringKeyDown(int Key, Qt::KeyboardModifiers Shift);
    /// Opens the editor of the current cell.
    void _StringDblClick();
    /// Gives the current row the output name that goes with a new aggregate or source, which is the
    /// value of the current cell, unless the row has a name of its own.
    void UpdateName(const QString& Value);
    /// Deletes the current row. Raises orv::Error "Could not delete last row!" for the last one.
    void _DeleteCurrentRow();
    /// Moves a data row to the place of another one; nothing with other rows.
    void moveRow(int From, int To);
    /// Mutes a data row, which stays but is not written, or has it written again. Lines that sort
    /// by it are not written either.
    void SetMuted(int Row, bool Value);

    /// Whether an editor is open over a cell.
    [[nodiscard]] bool isEditing() const { return m_edited.isValid(); }
    /// Takes over what is being typed in a cell and closes its editor.
    void commitEdit();
    /// Closes the editor of a cell without taking anything over.
    void discardEdit();

    // --- drags; points are those of the viewport

    /// Whether what is dragged may be dropped there: a row of this grid on a data row, a field of
    /// the same query builder's diagram below the header. A field is remembered for the drop.
    void _DragOver(const QObject* Source, const QMimeData* Data, int X, int Y, bool& Accept);
    /// Moves the dragged row, or puts the dragged field into the row; a field only once the drag is
    /// over.
    void _DragDrop(const QObject* Source, int X, int Y);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

protected Q_SLOTS:
    void updateEditorGeometries() override;

private:
    friend class SelectLoader;  // reads a select list into the rows
    class Model;
    enum class RowDrag { None, Pressed, Dragging };

    [[nodiscard]] IPagesHost* host() const;
    void changed();
    void change(const std::function<void()>& body);
    void tell(const NameEvent& event, const QString& name);
    [[nodiscard]] bool isDataRow(int row) const { return row >= 1 && row < RowCount() - 1; }
    [[nodiscard]] bool isDiagramField(const QString& source) const;
    [[nodiscard]] QString ownSpelling(const QString& source) const;
    [[nodiscard]] QString listedAggregate(const QString& name) const;
    [[nodiscard]] int currentRow() const { return currentIndex().row() + 1; }
    void setCurrentCell(int col, int row);

    void createEditors();
    [[nodiscard]] bool commitBefore();
    [[nodiscard]] bool openEditor(int col, int row);
    void startTyping(const QString& text);
    void endEditing();
    void placeEditor();
    [[nodiscard]] QString editedText() const;
    void setCellText(int col, int row, const QString& text);
    void setSource(int row, const QString& source);
    void updateName(int col, int row, const QString& value);
    void deleteRow(int row);
    void askToDelete();
    void showMenu(const QPoint& point);
    void moveCurrentRow(int by);
    void muteCurrentRow();

    [[nodiscard]] int rowAtPoint(const QPoint& point) const;
    [[nodiscard]] QRect dropMark() const;
    void setDropRow(int row);
    void endRowDrag();
    [[nodiscard]] bool isOwn(const QMimeData* data) const;
    void overField(QDragMoveEvent* event);
    void putField(const orv::DraggedField& field, const QPersistentModelIndex& target);

    orv::OutputColumns m_columns;
    Model* m_model;
    orv::ExitEdit* m_nameEdit;
    orv::ExitCombo* m_choice;
    QPersistentModelIndex m_edited;  // the cell under the editor
    QPointer<QMenu> m_menu;
    RowDrag m_rowDrag = RowDrag::None;
    QPersistentModelIndex m_draggedRow;
    QPoint m_pressPoint;
    std::optional<orv::DraggedField> m_draggedField;
    int m_dropRow = 0;  // where a drop would go; 0 when it goes nowhere
};

/// The "Selection" page: the option of unique records above the grid. Owned by its page.
class ORV_EXPORT TorvQDSelectPanel : public QWidget {
    Q_OBJECT

public:
    /// Raises orv::Error "Invalide parent for OrderPanel" without a parent.
    explicit TorvQDSelectPanel(QWidget* AOwner);

    /// The grid below the option; owned as a child.
    [[nodiscard]] TorvQDSelectGrid* grid() const { return m_grid; }
    /// The option of unique records; owned as a child.
    [[nodiscard]] QCheckBox* distinctBox() const { return m_distinct; }

    /// -1 when only unique records are wanted, else 0.
    [[nodiscard]] int GetDistinct() const;
    /// Wants only unique records (not 0), or all.
    void SetDistinct(int Value);
    /// Empties the grid; the option stays.
    void ClearContents();

private:
    QCheckBox* m_distinct;
    TorvQDSelectGrid* m_grid;
};

/// The "Sorting" page: the output names that are not sorted on the left, the sorted ones with their
/// directions on the right. It knows the output columns through the selection grid only. A double
/// click does to a name what its button does. Owned by its page.
class ORV_EXPORT TorvQDOrderPanel : public QWidget {
    Q_OBJECT

public:
    /// Raises orv::Error "Invalide parent for OrderPanel" without a parent.
    explicit TorvQDOrderPanel(QWidget* AOwner);

    TorvQDSelectGrid* grid = nullptr;  ///< whose first column are the output names; borrowed

    /// The ORDER BY list. Raises orv::Error "Fatal error! Could not find parent for sorting page!"
    /// outside a query builder.
    [[nodiscard]] QString GetSQLStatment() const;
    /// Rebuilds the sorted lines from an ORDER BY node. Raises orv::Error when the node is another.
    void LoadSQL(const TorvQDParser& Node);
    /// Removes all sorted lines.
    void ClearContents();
    /// Drops sorted lines whose name is gone and lists what is not sorted.
    void RefreshFields();

    /// The sorted lines and the names that are not sorted.
    [[nodiscard]] const orv::SortList& sortList() const { return m_list; }
    /// Replaces all sorted lines.
    void setSortedLines(const std::vector<orv::SortList::Line>& lines);

    /// The selection has changed: buttons that have nothing to do are disabled.
    void _SelectItem();
    /// Sorts by the selected name, ascending.
    void _AddClick();
    /// Sorts by the selected line no more.
    void _RemoveClick();
    /// Turns the direction of the selected line round.
    void _ChangeOrder();
    /// Moves the selected line by one place; nothing at the ends.
    void _MoveUp();
    void _MoveDown();
    /// Each list takes what is dragged out of the other one, and nothing else.
    void _DragOverOrder(const QObject* Source, bool& Accept) const;
    void _DragDropOrder();
    void _DragOverUnOrder(const QObject* Source, bool& Accept) const;
    void _DragDropUnOrder();

    /// Keys, clicks and drags of the two lists.
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    /// The widget that a drag began in; none for a drag of another program.
    [[nodiscard]] virtual QObject* dragSource(const QDropEvent& event) const;

private:
    /// The output columns, as far as sorting needs them.
    struct Outputs {
        QStringList names;
        QStringList sources;
    };
    enum class Command { None, Add, Remove, ChangeOrder, MoveUp, MoveDown };

    [[nodiscard]] IPagesHost* host() const;
    [[nodiscard]] Outputs outputs(std::size_t first = 0) const;
    [[nodiscard]] std::size_t unchangedOutputs() const;
    class OutputIndex;
    void loadItems(const orv::TokenRun& run, orv::LoadLedger& ledger);
    void loadNode(const TorvQDParser& node);
    void appendLine(const Outputs& shown, int row, bool descends);
    void connectParts();
    void nameParts();
    void placeParts();
    void edit(const std::function<void()>& change);
    void refreshLists(int line);
    void showLists(int line, int name);
    void showNames();
    void showLines();
    [[nodiscard]] int selectedLine() const;
    [[nodiscard]] int selectedName() const;

    // What the hand does on the lists.
    [[nodiscard]] QAbstractItemView* listOf(const QObject* part) const;
    bool handleListEvent(QAbstractItemView* list, QEvent* event);
    bool handleViewEvent(QAbstractItemView* list, QEvent* event);
    [[nodiscard]] Command commandOf(const QAbstractItemView* list, const QKeyEvent& event) const;
    void run(Command command);
    void runByKey(QAbstractItemView* list, Command command);
    bool handlePress(QAbstractItemView* list, const QMouseEvent& event);
    bool handleMove(QAbstractItemView* list, const QMouseEvent& event);
    bool handleDoubleClick(QAbstractItemView* list, const QMouseEvent& event);
    void dragOut(QAbstractItemView* list);
    void handleDrop(QDropEvent* event, bool onSorted);
    [[nodiscard]] QString selectedText(const QAbstractItemView* list) const;

    orv::SortList m_list;
    orv::OutputColumns m_shownColumns;  // of the last refresh
    QStringList m_shownNames;           // the lists as their widgets have them
    std::vector<orv::SortList::Line> m_shownLines;
    bool m_editing = false;
    std::optional<QPoint> m_pressedAt;  // on a name that may be dragged from there
    QPointer<QObject> m_dragSource;     // the present drag has begun here
    QAbstractItemView* m_draggedFrom = nullptr;
    QString m_dragged;
    QLabel* m_outputLabel;
    QListWidget* m_unsorted;
    QTreeWidget* m_sorted;
    QPushButton* m_add;
    QPushButton* m_remove;
    QPushButton* m_order;
    QPushButton* m_up;
    QPushButton* m_down = nullptr;
};
