// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDConditionReader.h"
#include "criteria/ORVQDWhereRows.h"
#include "data/FieldTypes.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

class IPagesHost;
class QAction;
class QMenu;
class QMimeData;
class TorvQDParser;

namespace orv {
class ConditionEditor;
class ConditionLayout;
class ConditionTeller;
class FontWidths;
class LoadLedger;
}  // namespace orv

/// One boolean condition of the query as a tree of rows: WHERE on one page, HAVING on another. The
/// root row is a group and always there once the panel is active. Each row is one line of elements
/// that are clicked: its button opens a menu of commands, group operators, functions and operators
/// open menus, fields and arguments an editor in place. Content coordinates are pixels that
/// scrolling does not change, view coordinates those of the viewport. Owned by its page.
///
/// Refused commands raise orv::Error and leave the rows as they were.
class ORV_EXPORT TorvQDWherePanel : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// Raises orv::Error "Invalide parent for conditions panel" unless the parent is a
    /// TorvTabSheet.
    explicit TorvQDWherePanel(QWidget* Parent);
    ~TorvQDWherePanel() override;

    const TGroupOperators* GroupOpers = nullptr;  ///< borrowed
    const QStringList* Functions = nullptr;  ///< functions of their own cells; none: no such cells
    const TOperatorList* Operators = nullptr;  ///< borrowed

    /// Makes the root row. The catalogues are there by now.
    void Activate();

    /// The group around all rows; none before Activate().
    [[nodiscard]] TorvQDWhereRow* rootRow() const;
    /// The condition over several lines; nine blanks for an empty panel.
    [[nodiscard]] QString GetSQLStatment() const;
    /// Rebuilds the rows from a WHERE or HAVING node. Raises orv::Error when the node is another or
    /// nests too deeply; the rows stay as they were then.
    void LoadSQL(const TorvQDParser& Node);
    /// Raises orv::Error when the condition of a node nests deeper than orv::deepestCondition.
    /// Groups count: where AND and OR are combined from left to right, each change of the
    /// connective nests one more.
    void checkLoadable(const TorvQDParser& node, const orv::LoadLedger& ledger,
                       bool keepMeaning) const;
    /// Removes all rows but the root row.
    void ClearContents();
    /// Replaces the alias in front of field names, as a whole word and outside quotes.
    void ChangeAlias(const QString& NewAlias, const QString& OldAlias);

    /// Before and after the operator list is replaced: rows go over to the operator of the same
    /// name, or to the first one. Arguments stay as they are.
    void PrepareToReloadOperators();
    void ReloadOperators();
    /// Names of the operators that the conditions have, one for each condition.
    [[nodiscard]] QStringList operatorNames() const;

    /// The group operator of that caption, ignoring case; none when the catalogue has none.
    [[nodiscard]] const TorvQDGroupFunc* FindGroupFunc(const QString& Name) const;
    /// Data type of a qualified field of the diagram. Raises orv::Error "Fatal Error! Class
    /// TorvQueryBuilder not found" when the panel lies in no query builder.
    [[nodiscard]] bool GetFieldType(const QString& Text, TFieldType& FieldType) const;
    /// Whether the types of the row's sides go together.
    [[nodiscard]] bool CheckTypeMisMatch(const QString& Text, const TorvQDControl& Element) const;

    /// Shows the rows as they are now; the query builder calls it once per change.
    void refreshView();

    /// By what conditions are read here; `keepMeaning` binds AND tighter than OR.
    [[nodiscard]] orv::ConditionRules readingRules(bool keepMeaning) const;

    // --- elements ---

    /// The element that commands are about: the one that was clicked or reached by keys last; none
    /// at first.
    [[nodiscard]] TorvQDControl* CurrentElement() const;
    void setCurrentElement(const TorvQDControl* element);
    /// The element with the frame, which keys start from.
    [[nodiscard]] TorvQDControl* ActiveElement() const;
    void setActiveElement(const TorvQDControl* element);

    // --- geometry ---

    /// Height of a row, in pixels; at least 1.
    [[nodiscard]] int rowHeight() const { return m_context.rowHeight; }
    void SetRowHeight(int height);
    /// Size of the rows that are shown, in pixels of the content; with `AllRows` also of those in
    /// collapsed groups.
    [[nodiscard]] QRect GetFullExtention(bool AllRows);
    /// The row whose band contains y, with its top, and the element of a row at x; content
    /// coordinates. None beside them.
    [[nodiscard]] TorvQDWhereRow* LookRows(int y, int& top);
    [[nodiscard]] TorvQDControl* LookControl(const TorvQDWhereRow& row, int x) const;
    /// The element at a point of the view; none beside them.
    [[nodiscard]] TorvQDControl* elementAt(const QPoint& viewPoint);
    /// What an element takes up in the view; empty when its row is not shown.
    [[nodiscard]] QRect elementRect(const TorvQDControl& element);
    /// The rows from the top, as they are shown.
    [[nodiscard]] const std::vector<TorvQDWhereRow*>& shownRows();
    /// Scrolls just enough to show the element.
    void showElement(const TorvQDControl& element);
    /// Where rows and elements lie; after Activate() only.
    [[nodiscard]] const orv::ConditionLayout& conditionLayout() const { return *m_layout; }

    // --- commands about the current element ---

    /// Adds a condition that is not filled in, at the end of the group or of the condition's group.
    void AddCondition();
    /// Makes a group "All" of the condition, with the condition in it. Raises orv::Error for a
    /// group.
    void MakeCompositCondition();
    /// Deletes the row with all below it, after the question. Raises orv::Error for the root row.
    void DeleteCondition();
    /// Collapses or expands a group. Raises orv::Error for a condition and for the root row.
    void ExpandCollapse();
    /// Gives the group of the current element the operator of a menu item, or the side of the
    /// condition its function; nothing without an item.
    void SelectGroupFuncs(const QAction* Sender);
    void SelectAgrFuncs(const QAction* Sender);
    /// Gives the condition the operator of a menu item; nothing without an item.
    void SelectOperator(const QAction* Sender);
    /// A copy of the row with all below it, right behind it. Raises orv::Error for the root row.
    void DuplicateCondition();
    /// Mutes the row with all below it, which stays but is not written, or has it written again.
    /// Raises orv::Error for the root row.
    void MuteCondition();
    /// Moves the row up (-1) or down (1) among the conditions of its group; nothing at the ends.
    void MoveCondition(int step);
    /// The row with all below it as text on the clipboard; cutting deletes it then, after the
    /// question. Raises orv::Error for a group without conditions.
    void CopyCondition();
    void CutCondition();
    /// The text of the clipboard as rows: into the group, or behind the condition. Raises
    /// orv::Error when the text is no condition as a whole; the rows stay as they were then.
    void PasteCondition();
    /// Fills the operator menu with what the catalogue has now.
    void _PopupOpersMenu();

    /// What a click on an element does; `y` is the top of its row in the view.
    void ButtonClick(const TorvQDControl& Element, int y);
    void TextClick(const TorvQDControl& Element, int y);

    // --- the editor in place ---

    /// Opens the editor over a field or an argument.
    void editText(const TorvQDControl& element);
    /// Takes over what is being typed, or drops it; nothing when nothing is.
    void commitEdit();
    void discardEdit();
    /// Hides the list of fields and takes over what is being typed.
    void HideFieldList();
    /// Whether the editor is open.
    [[nodiscard]] bool isEditing() const;
    /// The editor is left: takes over its text, unless the list of fields is shown.
    void SetFieldText();
    /// Its text changed: it lies over its element, and what follows that moves aside.
    void SetBoundText();
    /// Its keys; swallowed events are accepted.
    void KeyDownOnFieldText(QKeyEvent* Event);
    void KeyPressOnFieldText(QKeyEvent* Event);
    /// Shows the list of fields beside the editor.
    void InsertField();
    /// The list is left for another widget, or for none.
    void SetFieldFromList(QWidget* NewFocus);
    /// A field of the list is chosen: it replaces the selection of the editor.
    void DblClickOnFieldList(const QString& Name);
    /// Escape goes back to the editor.
    void KeyUpOnFieldList(int Key);

    // --- fields that are dropped ---

    /// Whether a field of this builder's diagram is dragged there over an element that takes it;
    /// the element is marked.
    [[nodiscard]] bool _DragOver(const QMimeData* Data, const QPoint& Point);
    /// Stores the dragged field into the element there, once the drop is over.
    void _DragDrop(const QMimeData* Data, const QPoint& Point);

    /// What is wrong with a row, as one sentence: something is not filled in, or a name is gone.
    /// Empty when nothing is.
    [[nodiscard]] QString rowProblem(const TorvQDWhereRow& row) const;

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    friend class orv::ConditionEditor;

    [[nodiscard]] IPagesHost* host() const;
    [[nodiscard]] bool fitsType(const QString& text, TFieldType type) const;
    void clearRows();
    void loadRun(const orv::TokenRun& run, orv::LoadLedger* ledger, bool keepsMeaning);
    void checkDepth(const orv::TokenRun& condition, bool keepsMeaning) const;
    void compareWritten(const std::vector<orv::ConditionElement>& loaded, const orv::TokenRun& run,
                        orv::LoadLedger& ledger) const;

    // The view.
    void prepareView();
    [[nodiscard]] QPoint contentOffset() const;
    void rowsChanged(TorvQDWhereRow* row);
    void relay();
    void settleElements() const;
    void setScrollRanges();
    void setHotElement(const TorvQDControl* element);
    void updateRow(const TorvQDWhereRow* row);
    [[nodiscard]] QString hintAt(const QPoint& viewPoint);
    [[nodiscard]] QColor bandColor(const TorvQDWhereRow& row) const;
    void DrawRow(QPainter& painter, const TorvQDWhereRow& row, int y) const;
    void DrawButton(QPainter& painter, const TorvQDWhereRow& row, int y) const;
    void DrawGroupCondition(QPainter& painter, const QString& text, const QPoint& at,
                            const QColor& ground) const;
    void DrawActiveElement(QPainter& painter, const QRect& rect, bool isSunken) const;
    void drawGroup(QPainter& painter, const TorvQDWhereRow& row, int y) const;
    void drawElements(QPainter& painter, const TorvQDWhereRow& row, int y) const;

    void repositionEditor();
    void storeText(const TorvQDControl& element, const QString& text);

    // Dragged fields.
    [[nodiscard]] TorvQDControl* dropElement(const QMimeData* data, const QPoint& viewPoint);
    void markDropElement(const TorvQDControl* element);
    void drawDropMark(QPainter& painter);
    void watchEdge(const QPoint& viewPoint);
    void scrollAtEdge();

    // The hand.
    [[nodiscard]] TorvQDWhereRow* commandRow(
        const QString& refusal = QStringLiteral("There are no active button"));
    void edit(const std::function<void()>& change);
    void createMenus();
    void popUp(QMenu* menu, const TorvQDControl& element, int y, const QVariant& chosen);
    void addTextItems();
    void enableTextItems(const TorvQDWhereRow& row);
    void runTextKey(int key);
    [[nodiscard]] std::unique_ptr<QMimeData> copyOfRow(const TorvQDWhereRow& row) const;
    [[nodiscard]] bool keepsMeaning() const;
    bool handleKey(const QKeyEvent& event);
    void moveActive(int key, bool withCtrl);
    void jump(int key);
    [[nodiscard]] TorvQDControl* stepFrom(const TorvQDControl& element, int& key);
    [[nodiscard]] TorvQDWhereRow* rowBeside(const TorvQDWhereRow& row, int step);
    [[nodiscard]] TorvQDControl* elementLike(const TorvQDWhereRow& row, int kind) const;
    void activate(const TorvQDControl& element);

    orv::ConditionContext m_context;
    std::unique_ptr<orv::FontWidths> m_widths;
    std::unique_ptr<orv::ConditionLayout> m_layout;  // none before the panel is active
    std::unique_ptr<orv::ConditionTeller> m_teller;
    std::unique_ptr<TorvQDWhereRows> m_root;
    std::unique_ptr<orv::ConditionEditor> m_editor;  // none before the panel is active
    // While the list is replaced.
    std::vector<std::pair<orv::ElementRef, TOperatorList::Entry>> m_oldOperators;
    // Brought up to date when they are asked for after rows changed.
    mutable orv::ElementRef m_current;
    mutable orv::ElementRef m_active;
    mutable bool m_isUnsettled = false;
    orv::ElementRef m_hot;       // under the mouse
    orv::ElementRef m_pressed;   // where the left button went down
    orv::ElementRef m_dropMark;  // where a dragged field would be dropped
    QPoint m_dragPoint;          // view coordinates
    QBasicTimer m_edgeTimer;     // scrolls while something is dragged at the edge of the view
    QMenu* m_rowMenu = nullptr;
    QMenu* m_groupMenu = nullptr;
    QMenu* m_functionMenu = nullptr;
    QMenu* m_operatorMenu = nullptr;
};
