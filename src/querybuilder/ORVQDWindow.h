// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"
#include "catalogue/ORVQDOptions.h"
#include "contract/IPagesHost.h"
#include "contract/IWorkAreaOwner.h"
#include "contract/TorvBuilder.h"
#include "core/Export.h"
#include "data/DataSet.h"
#include "data/Events.h"
#include "data/NameList.h"
#include "parser/ORVQDFindings.h"
#include "querybuilder/ORVQDEditRestrictions.h"
#include "querybuilder/ORVQDListOfTables.h"

#include <QHash>
#include <QIcon>
#include <QList>
#include <QPointer>
#include <QSet>
#include <QSplitter>
#include <QTabWidget>

#include <memory>
#include <optional>

class TorvQDParser;
class TorvQDOrderPanel;
class TorvQDSelectPanel;
class TorvQDWherePanel;
class TorvQDWorkArea;

namespace orv {
class UndoRecorder;
class TailLine;
}  // namespace orv

/// The sheet of the page control on which a page's panel lies.
class ORV_EXPORT TorvTabSheet : public QWidget {
    Q_OBJECT

public:
    /// An empty sheet; its layout, without margins, takes the panel.
    explicit TorvTabSheet(QWidget* parent = nullptr);
};

/// The query builder: a diagram of tables above pages for the rest of a query. What is drawn and
/// ticked becomes one SELECT statement, and a SELECT statement becomes the picture. It knows no
/// database: the host hands over tables and answers OnGetTableFields.
///
/// All operations belong to the thread of the user interface. Those that raise throw orv::Error. A
/// host that wants to destroy the control from within one of its handlers uses deleteLater().
class ORV_EXPORT TorvQueryBuilder : public TorvBuilder, public IWorkAreaOwner, public IPagesHost {
    Q_OBJECT
    Q_PROPERTY(TAlign Align READ Align WRITE setAlign)
    Q_PROPERTY(int TabsHeight READ TabsHeight WRITE setTabsHeight RESET resetTabsHeight)
    Q_PROPERTY(QStringList OperatorsList READ OperatorsList WRITE setOperatorsList RESET
                   resetOperatorsList)
    Q_PROPERTY(bool KeepMeaning READ KeepMeaning WRITE setKeepMeaning)
    Q_PROPERTY(QString TailText READ TailText WRITE setTailText)
    // The owned objects, for what reaches the control through its properties alone.
    Q_PROPERTY(TorvQDWorkAreaOptions* WorkAreaOptions READ GetWorkAreaOptions CONSTANT
                   DESIGNABLE false STORED false)
    Q_PROPERTY(TorvQDConditionOptions* ConditionOptions READ GetConditionOptions CONSTANT
                   DESIGNABLE false STORED false)
    Q_PROPERTY(TOperatorList* Operators READ GetOperators CONSTANT DESIGNABLE false STORED false)
    // The options once more, because forms hold no objects in objects.
    Q_PROPERTY(bool WorkAreaHideSelection READ WorkAreaHideSelection WRITE setWorkAreaHideSelection)
    Q_PROPERTY(bool WorkAreaDragFieldName READ WorkAreaDragFieldName WRITE setWorkAreaDragFieldName)
    Q_PROPERTY(bool WorkAreaFlat READ WorkAreaFlat WRITE setWorkAreaFlat)
    Q_PROPERTY(
        bool WorkAreaShowFieldsType READ WorkAreaShowFieldsType WRITE setWorkAreaShowFieldsType)
    Q_PROPERTY(
        bool WorkAreaFlatCaptionBtns READ WorkAreaFlatCaptionBtns WRITE setWorkAreaFlatCaptionBtns)
    Q_PROPERTY(TorvQDWorkAreaOptions::TBorderKind WorkAreaTableBorder READ WorkAreaTableBorder WRITE
                   setWorkAreaTableBorder)
    Q_PROPERTY(QFont WorkAreaFont READ WorkAreaFont WRITE setWorkAreaFont)
    Q_PROPERTY(QColor WorkAreaTableColor READ WorkAreaTableColor WRITE setWorkAreaTableColor)
    Q_PROPERTY(QColor WorkAreaProcedureColor READ WorkAreaProcedureColor WRITE
                   setWorkAreaProcedureColor RESET resetWorkAreaProcedureColor)
    Q_PROPERTY(bool ConditionSelectRow READ ConditionSelectRow WRITE setConditionSelectRow)
    Q_PROPERTY(TorvQDConditionOptions::TbtnStyle ConditionBtnsStyle READ ConditionBtnsStyle WRITE
                   setConditionBtnsStyle)
    Q_PROPERTY(QColor ConditionActiveRowColor READ ConditionActiveRowColor WRITE
                   setConditionActiveRowColor)

public:
    /// Where the control places itself in a parent that has no layout.
    enum TAlign : quint8 { alNone, alTop, alBottom, alLeft, alRight, alClient };
    Q_ENUM(TAlign)

    /// In design mode only the empty pages and the splitter are there.
    explicit TorvQueryBuilder(QWidget* parent = nullptr, bool designMode = false);
    ~TorvQueryBuilder() override;

    TorvQDWorkArea* WorkArea = nullptr;                ///< the diagram; none in design mode
    std::unique_ptr<TorvQDListOfTables> ListOfTables;  ///< none in design mode
    QTabWidget* PageCtrl = nullptr;                    ///< the pages; owned as a child
    QSplitter* Splitter = nullptr;  ///< between diagram and pages; owned as a child
    TGroupOperators
        GroupOpers;  ///< the four group operators of conditions: All, Any, Not all, None
    QStringList
        AgrFuncs;  ///< the aggregates of the selection page; the first, blank one stands for none
    std::unique_ptr<TOperatorList>
        Operators;  ///< of conditions; edit it in place or by setOperators()
    TorvQDWherePanel* WherePanel = nullptr;    ///< none in design mode
    TorvQDWherePanel* HavingPanel = nullptr;   ///< none in design mode
    TorvQDOrderPanel* OrderPanel = nullptr;    ///< none in design mode
    TorvQDSelectPanel* SelectPanel = nullptr;  ///< none in design mode
    std::unique_ptr<TorvQDWorkAreaOptions>
        WorkAreaOptions;  ///< how the diagram looks; edit them in place
    std::unique_ptr<TorvQDConditionOptions>
        ConditionOptions;    ///< how the conditions look; edit them in place
    QList<QIcon> ImageList;  ///< 16 x 16: a table, a field

    // Events of the host; a veto that is not assigned allows everything.
    /// Asks for the columns of a table of a loaded statement, and for the parameters of a
    /// procedure. Without it LoadSQL raises.
    TGetTableFieldsEvent OnGetTableFields;
    /// Asks before a table is added or removed, by the user or by program; not while a state is
    /// restored.
    TAddRemoveTableEvent OnAddRemoveTable;
    /// Asks before a link is added or removed, by the user or by program; not while a state is
    /// restored.
    TAddRemoveLinkEvent OnAddRemoveLink;
    /// Asks for the value of a procedure's input parameter when the user double clicks its row.
    TEnterProcParameter OnEnterProcParameter;

    // Drags: of fields of the diagram, and of other things over the diagram, which the host may
    // take (a name from its own list of tables, say). Sender is the query builder.
    /// A field of the diagram is about to be dragged.
    TStartDragEvent OnStartDrag;
    /// Something else is dragged over the diagram: may it be dropped there?
    TDragOverEvent OnDragOver;
    /// It was dropped there.
    TDragDropEvent OnDragDrop;
    /// The drag of a field is over.
    TEndDragEvent OnEndDrag;
    /// What is dragged while OnDragOver or OnDragDrop runs; none at other times.
    [[nodiscard]] const QMimeData* DragMimeData() const { return m_dragData; }

    /// The statement of what is shown. Raises orv::Error when a grouped selection has a column that
    /// can be neither aggregated nor grouped.
    [[nodiscard]] QString GetSQLStatment();

    /// Rebuilds everything from a SELECT statement; the text of the present statement changes
    /// nothing. Raises orv::Error, with everything left as it was, when the text is no SELECT, the
    /// host cannot be asked for tables, or a join has no table; what a handler of the host raises
    /// passes through and leaves what was loaded so far.
    void LoadSQL(const QString& Text);

    /// What the last LoadSQL could not hold, or holds with another meaning, in the order of the
    /// text. Empty: the statement that is written asks for the same rows as the loaded one.
    [[nodiscard]] const orv::Findings& LoadReport() const { return m_report; }

    /// The name of the table for which OnGetTableFields is being asked, with the quotes that the
    /// loaded text has around it, which the event's own name has not: for hosts whose databases
    /// tell "ORDERS" from ORDERS. Empty at any other time.
    [[nodiscard]] const QString& TableAsWritten() const { return m_tableAsWritten; }

    /// What is wrong with the present state, though it can be written: conditions that are not
    /// filled in, names of what is gone, tables that nothing links and the like. Findings have the
    /// shape of LoadReport()'s, without positions.
    [[nodiscard]] orv::Findings Validate();

    /// Empties the diagram and all pages.
    void Clear();

    /// Everything that the control holds, as one JSON document in UTF-8: the statement and its
    /// parts, the places of boxes and bend points. Properties and catalogues are not part of it.
    [[nodiscard]] QByteArray SaveState();
    /// Replaces everything by a saved state. No veto is asked, and the host is told by the ordinary
    /// notifications. Raises orv::Error, with everything left as it was, when the text is no state,
    /// names an operator that the catalogue has not, or contradicts itself. What a handler raises
    /// meanwhile passes through; then everything is empty.
    void RestoreState(const QByteArray& json);

    /// Lets the user edit the operator catalogue in a dialog, without the forbidden edits. What is
    /// being typed elsewhere is taken over first, and open menus close. OK replaces the catalogue;
    /// conditions go over to the operators of the same names, or to the first one, of which the
    /// user is told. While the dialog is open another call only brings it to the front. Raises
    /// orv::Error while a statement is loaded or a handler of the host is asked for something.
    void ModifyOperators(TEditRestrictions Restrictions = {});

    /// Takes over what is being typed in an open editor.
    void CommitPendingEdits();
    /// Before the user goes to another page: open lists of the pages close, and what is being typed
    /// on them is taken over. It refuses no page.
    void HideFieldList();

    [[nodiscard]] bool DoAddRemoveTable(TorvQDTable* Table, TAddRemove Action) override;
    [[nodiscard]] bool DoAddRemoveLink(TorvQDLink* Link, TAddRemove Action) override;
    /// How ORDER BY names the output row, counted from 1: a plain field by its source, else its
    /// number. Empty in design mode.
    [[nodiscard]] QString GetSortedFieldName(int Index) const;
    /// Output name of the first row of exactly that source; empty without one.
    [[nodiscard]] QString GetSortedAliasName(const QString& Name) const;

    /// Fields that are ticked in boxes, and all fields of all boxes, as qualified names.
    [[nodiscard]] const orv::NameList& SelectedFields();
    [[nodiscard]] const orv::NameList& AllFields() const { return m_allFields; }

    /// The edge of the parent to which the control keeps when the parent has no layout.
    [[nodiscard]] TAlign Align() const { return m_align; }
    void setAlign(TAlign align);

    /// Height of the page control in pixels; values of 100 and less are ignored. It outlasts a time
    /// in which the control is hidden, and one in which there is no room for it.
    [[nodiscard]] int TabsHeight() const;
    void setTabsHeight(int height);
    /// Back to the height at the start, 100.
    void resetTabsHeight();

    /// Copies into the owned objects, which stay the same objects.
    void setWorkAreaOptions(const TorvQDWorkAreaOptions& options);
    void setConditionOptions(const TorvQDConditionOptions& options);
    void setOperators(const TOperatorList& operators);
    /// How the diagram looks and behaves; owned by the control.
    [[nodiscard]] TorvQDWorkAreaOptions* GetWorkAreaOptions() const {
        return WorkAreaOptions.get();
    }
    /// How the conditions look; owned by the control.
    [[nodiscard]] TorvQDConditionOptions* GetConditionOptions() const {
        return ConditionOptions.get();
    }
    /// The operators of conditions; owned by the control.
    [[nodiscard]] TOperatorList* GetOperators() const { return Operators.get(); }

    // The same options as properties of the control itself.
    /// Whether a box that is not selected hides its current row: WorkAreaOptions->HideSelection.
    [[nodiscard]] bool WorkAreaHideSelection() const;
    void setWorkAreaHideSelection(bool hide);
    /// Whether a dragged field shows its name instead of the drag cursor alone.
    [[nodiscard]] bool WorkAreaDragFieldName() const;
    void setWorkAreaDragFieldName(bool drag);
    /// Whether boxes are drawn flat.
    [[nodiscard]] bool WorkAreaFlat() const;
    void setWorkAreaFlat(bool flat);
    /// Whether rows show the type behind the name.
    [[nodiscard]] bool WorkAreaShowFieldsType() const;
    void setWorkAreaShowFieldsType(bool show);
    /// Whether the caption buttons of boxes are drawn flat.
    [[nodiscard]] bool WorkAreaFlatCaptionBtns() const;
    void setWorkAreaFlatCaptionBtns(bool flat);
    /// The border of the boxes.
    [[nodiscard]] TBorderKind WorkAreaTableBorder() const;
    void setWorkAreaTableBorder(TBorderKind border);
    /// The font of the boxes.
    [[nodiscard]] QFont WorkAreaFont() const;
    void setWorkAreaFont(const QFont& font);
    /// Background of the rows of table boxes.
    [[nodiscard]] QColor WorkAreaTableColor() const;
    void setWorkAreaTableColor(const QColor& color);
    /// Background of the rows of procedure boxes: that of tool tips until a colour is set.
    [[nodiscard]] QColor WorkAreaProcedureColor() const;
    void setWorkAreaProcedureColor(const QColor& color);
    void resetWorkAreaProcedureColor();
    /// Whether the active condition row is highlighted: ConditionOptions->SelectRow.
    [[nodiscard]] bool ConditionSelectRow() const;
    void setConditionSelectRow(bool select);
    /// How the buttons of condition rows are drawn.
    [[nodiscard]] TbtnStyle ConditionBtnsStyle() const;
    void setConditionBtnsStyle(TbtnStyle style);
    /// Background of the active condition row.
    [[nodiscard]] QColor ConditionActiveRowColor() const;
    void setConditionActiveRowColor(const QColor& color);

    /// The operator catalogue as six texts an entry, as a form stores it. An empty list is ignored;
    /// a damaged one keeps its whole entries and is told to the error handler.
    [[nodiscard]] QStringList OperatorsList() const;
    void setOperatorsList(const QStringList& texts);
    /// Back to the fourteen default operators.
    void resetOperatorsList();

    /// Whether the written statement asks for the same rows as the loaded one, whatever the order
    /// of the boxes. False writes in the order of stacking.
    [[nodiscard]] bool KeepMeaning() const override { return m_keepMeaning; }
    void setKeepMeaning(bool keep);

    /// What follows the last clause: UNION, LIMIT and the like, as text.
    [[nodiscard]] const QString& TailText() const { return m_tail; }
    void setTailText(const QString& text);

    /// What a layout begins with, in pixels.
    [[nodiscard]] QSize sizeHint() const override;

    // What the diagram and the pages ask.
    [[nodiscard]] bool canGetTableFields() const override;
    void getTableFields(const QString& nameOfTable, const QString& asWritten,
                        std::unique_ptr<TDataSet>& dataSet,
                        std::unique_ptr<TParams>& params) override;
    void enterProcParameter(TorvQDTable* procedure, TorvQDListItem* item) override;
    [[nodiscard]] quint64 dragIdentity() const override { return m_dragIdentity; }
    void fieldDragStarted(const orv::DraggedField& field) override;
    void fieldDragEnded(QObject* target, const QPoint& viewPoint) override;
    [[nodiscard]] bool takesForeignDrags() const override { return bool(OnDragOver); }
    [[nodiscard]] bool foreignDragOver(QObject* source, const QPoint& viewPoint,
                                       const QMimeData& data) override;
    void foreignDrop(QObject* source, const QPoint& viewPoint, const QMimeData& data) override;
    [[nodiscard]] TorvQDWorkAreaOptions& workAreaOptions() override { return *WorkAreaOptions; }
    [[nodiscard]] orv::LoadLedger* ledger() override { return m_ledger.get(); }
    [[nodiscard]] QStringList tableAliases() const override;
    [[nodiscard]] std::vector<PageField> fieldsOf(const QString& alias) const override;
    [[nodiscard]] std::optional<PageField> resolveField(const QString& text) const override;
    [[nodiscard]] bool isAmbiguous(const QString& text) const override;
    [[nodiscard]] QString nameProblem(const QString& text) const override;
    [[nodiscard]] const TorvQDConditionOptions& conditionOptions() const override {
        return *ConditionOptions;
    }
    [[nodiscard]] const QList<QIcon>& fieldImages() const override { return ImageList; }
    void beginChange() override;
    void endChange() override;
    void statementChanged() override;
    void layoutChanged() override;

Q_SIGNALS:
    /// After any change that can alter the statement; once per user action or call.
    void StatementChanged();
    /// After boxes were moved, sized, collapsed or expanded or links were bent, by the user or by
    /// program: once the hand has let go and the event is over. Follows changes of the statement
    /// that bring boxes too.
    void LayoutChanged();
    /// After LoadSQL, with the same findings as LoadReport().
    void LoadReported(const orv::Findings& findings);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    friend class orv::UndoRecorder;

    template <typename Handler>
    void showDragged(const QMimeData& data, const Handler& handler);
    void fillCatalogues();
    void watchOperators();
    void closeMenus() const;
    [[nodiscard]] QStringList lostOperators(const TOperatorList& operators) const;
    void createPages(bool designMode);
    TorvTabSheet* addSheet(const QString& caption);
    TorvQDWherePanel* addCriteria(TorvTabSheet* sheet, const QStringList* functions);
    void createWorkArea();
    void commitPages();
    void discardEdits();
    void showTail(const QString& text);
    void showTailProblems();
    void applyTabsHeight();
    void applyAlign();
    void watchParent();

    // Handlers of the diagram and of the selection grid.
    void _AddRemoveField(QObject* Sender, TorvQDListItem* Item);
    void _AddTable(QObject* Sender, QObject* Table);
    void _RemoveTable(QObject* Sender, QObject* Table);
    void _ChangeAlias(QObject* Table, const QString& OldAlias);
    void _SelectField(const QString& FullName);
    void _UnselectField(const QString& FullName);

    [[nodiscard]] TorvQDListItem* resolveItem(const QString& text) const;
    [[nodiscard]] std::vector<PageField> fieldsNamed(const QString& name) const;
    [[nodiscard]] QString listedGivenName(const TorvQDListItem* item) const;
    [[nodiscard]] bool isListed(const QString& name) const;
    void flushRemovals();
    void commitCellBefore(TorvQDListItem& item);

    // A statement is being loaded, or a handler of the host asked for something.
    [[nodiscard]] bool isBusy() const { return m_loading || m_hostCalls > 0; }
    void refuseWhileBusy() const;
    [[nodiscard]] bool isShown(const QString& text);
    void loadText(const QString& text);
    void checkLoadable(const TorvQDParser& root, const orv::LoadLedger& ledger) const;
    void clearAll();
    void loadParsed(const TorvQDParser& root);
    void loadTail(int tailStart, int tailEnd, int restStart);
    void settleHaving(const TorvQDParser& root);
    void compareClauses(const TorvQDParser& root);
    void restoreNames(const QStringList& selected, const QStringList& all);

    orv::NameList m_selectedFields;
    orv::NameList m_allFields;
    // Rows that a loaded statement names otherwise than they are called (without their table, or in
    // quotes), with those names.
    QMultiHash<const TorvQDListItem*, QString> m_givenNames;
    QSet<QString> m_removals;  // unticked in this change, not yet taken off the lists
    TAlign m_align = alNone;
    QPointer<QWidget> m_watchedParent;  // whose size the control follows
    int m_tabsHeight;                   // as it is wanted: there may be less room
    bool m_isTabsHeightDue = false;
    bool m_keepMeaning = false;
    QString m_tail;
    orv::TailLine* m_tailLine = nullptr;  // none in design mode
    orv::Findings m_report;
    std::unique_ptr<orv::LoadLedger> m_ledger;
    const QMimeData* m_dragData = nullptr;
    quint64 m_dragIdentity;
    bool m_loading = false;
    int m_hostCalls = 0;  // handlers of the host that ask for something and have not returned
    QString m_tableAsWritten;
    int m_changeDepth = 0;
    bool m_statementChanged = false;
    bool m_gridChanged = false;
};
