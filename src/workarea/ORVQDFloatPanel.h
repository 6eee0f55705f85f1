// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IDiagramCanvas.h"
#include "contract/IWorkAreaOwner.h"
#include "core/Export.h"
#include "data/DataSet.h"
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "workarea/ORVQDFromText.h"

#include <QAbstractScrollArea>
#include <QHash>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

class QScrollBar;
class TorvQDParser;

namespace orv {
class ExitEdit;
}

/// Notifications of the work area. Sender and item are valid during the call.
using TCheckItemEvent = std::function<void(QObject* Sender, TorvQDListItem* Item)>;
using TAddEvent = std::function<void(QObject* Sender, QObject* Item)>;
using TRemoveEvent = std::function<void(QObject* Sender, QObject* Item)>;
using TSelectionLinkEvent =
    std::function<void(QObject* Sender, TorvQDTable* Table1, TorvQDTable* Table2,
                       TorvQDListItem* Item1, TorvQDListItem* Item2, bool State)>;
using TChangeStringEvent = std::function<void(QObject* Item, const QString& OldValue)>;

/// The diagram: a scrolling canvas that owns the table boxes. The order of its list is the stacking
/// order: index 0 is painted in front, is hit first and, unless meaning is kept, stands first in
/// FROM. It produces the FROM text and rebuilds itself from a parsed one.
class ORV_EXPORT TorvQDWorkArea : public QAbstractScrollArea, public IDiagramCanvas {
    Q_OBJECT

public:
    /// `AOwner` must be a query builder; else raises orv::Error "Given parent is not valid for
    /// WorkArea!". It becomes the parent.
    explicit TorvQDWorkArea(QWidget* AOwner);
    ~TorvQDWorkArea() override;

    // Notification slots; empty ones are skipped.
    TCheckItemEvent OnCheckItem;
    TAddEvent OnAddTable;
    TRemoveEvent OnRemoveTable;
    TChangeStringEvent OnChangeAlias;
    TAddEvent OnAddLink;
    TRemoveEvent OnRemoveLink;
    TSelectionLinkEvent OnSelectionLink;
    /// All boxes went at once, without a notification for each.
    std::function<void()> contentsCleared;

    [[nodiscard]] int TablesCount() const { return int(m_tables.size()); }
    /// The box at a place of the stacking order. Raises orv::Error when there is none.
    [[nodiscard]] TorvQDTable* Tables(int Index) const;
    /// The boxes in the order of their creation.
    [[nodiscard]] const std::vector<TorvQDTable*>& tablesByCreation() const { return m_creation; }

    /// Adds a box for the table, in front of all others, when the host allows it; else returns
    /// none. Its effective alias is the table's name, followed by a number when that is taken. No
    /// data set makes a box without rows; an empty name raises orv::Error.
    TorvQDTable* AddPanel(const QString& TableName, const TDataSet* DataSet);

    /// Adds a box as a saved query has it: FROM writes `name`, and `alias` is its effective alias.
    /// Nobody is asked, it is put in front of all others and is not selected.
    TorvQDTable* restoreTable(const QString& name, const QString& alias, const TDataSet& dataSet,
                              const QRect& bounds);
    /// Adds a join without links, which restoreLink is to give it. Nobody is asked.
    TorvQDJoin* restoreJoin(TorvQDTable* table1, TorvQDTable* table2);
    TorvQDLink* restoreLink(TorvQDJoin* join, TorvQDListItem* item1, TorvQDListItem* item2);
    /// Puts the boxes in that stacking order; they are all there, each once.
    void restack(const std::vector<TorvQDTable*>& frontToBack);

    /// Adds a link between two rows, in the join of their boxes, which is made when there is none;
    /// a second, identical link is not refused. None when the host does not allow it, and for boxes
    /// that are not on the diagram or on their way out.
    TorvQDLink* AddLink(TorvQDTable* Table1, TorvQDTable* Table2, TorvQDListItem* Item1,
                        TorvQDListItem* Item2);
    /// The join of two boxes, whichever is its first; none without one.
    [[nodiscard]] TorvQDJoin* FindJoin(const TorvQDTable* Table1, const TorvQDTable* Table2,
                                       bool& Reversed) const;
    /// Whether a link joins the two rows.
    [[nodiscard]] bool FindLink(const TorvQDTable* Table1, const TorvQDTable* Table2,
                                const TorvQDListItem* Item1, const TorvQDListItem* Item2) const;
    /// Removes a link, and its join with the last of its links; asks nobody.
    void RemoveLink(TorvQDLink* Link, bool Invalidate);
    /// The same when the host allows it.
    void deleteLink(TorvQDLink* link);
    /// Tells whoever wants to know that the link between two rows was selected or deselected.
    void SelectLink(TorvQDListItem* Item1, TorvQDListItem* Item2, bool State);
    /// Joins and links in the order of their creation.
    [[nodiscard]] std::vector<TorvQDJoin*> Joins() const;
    [[nodiscard]] std::vector<TorvQDLink*> Links() const;
    [[nodiscard]] std::vector<TorvQDLink*> linksOf(const TorvQDJoin* join) const;

    /// The box of that effective alias (case counts), front-most first. An empty name stands for
    /// the only box there is.
    [[nodiscard]] TorvQDTable* GetTable(const QString& Alias) const;
    /// The same, and where nothing is found, compared without quotes and ignoring case; a unique
    /// match counts.
    [[nodiscard]] TorvQDTable* findTable(const QString& alias) const;

    /// The boxes that have a field of that name, ignoring case and quotes, each once, in the order
    /// of their creation.
    [[nodiscard]] std::vector<TorvQDTable*> tablesWithField(const QString& name) const;

    /// Brings the box to index 0; the order of the others stays.
    void TableToFront(QObject* Table);
    /// Removes everything at once; tells and asks nobody.
    void ClearContents();

    /// The joins that close a circle of which the FROM clause does not ask what the diagram shows:
    /// with meaning kept, those that are not of inner joins alone; else all.
    [[nodiscard]] std::vector<TorvQDJoin*> brokenCircles() const;
    /// The body of the FROM clause, without the keyword; lines end with CR LF.
    [[nodiscard]] QString GetSQLStatment() const;
    /// Rebuilds the diagram from a FROM node. Raises orv::Error when the node is another, the host
    /// cannot be asked for tables, or a join has no table.
    void LoadSQL(const TorvQDParser& Node);

    /// Gives the box the alias that the user typed: dots are dropped, the table's name or a blank
    /// text means none, and what is no plain identifier is put in quotes. Raises orv::Error "Table
    /// with alias ... already exist!" when another box has it.
    void renameTable(TorvQDTable* table, const QString& text);
    /// Opens the edit over the box's caption.
    void beginRename(TorvQDTable* table);
    /// Takes the text of the alias edit for the box over which it was opened; nothing when none is.
    void _EditNameKillFocus();
    /// Ends the edit with what was typed, or without.
    void commitPendingEdit();
    void discardPendingEdit();

    [[nodiscard]] TorvQDFloatObject* selectedObject() const { return m_selected; }
    /// Selects the object and deselects the one that was; none deselects.
    void selectObject(TorvQDFloatObject* object);

    /// The rectangle that holds all boxes, in diagram coordinates; empty when there are none.
    [[nodiscard]] QRect diagramBounds() const;
    /// Paints all boxes in diagram coordinates: into a picture, a printer or a vector file.
    void paintDiagram(QPainter& painter) const;

    void _CheckItem(QObject* Sender, TorvQDListItem* Item);
    void DoEnterParameter(TorvQDTable* SProcedure, TorvQDListItem* ListItem);
    void _SetFont(const QFont& Value);
    [[nodiscard]] QFont GetFont() const;

    // What boxes ask of their canvas.
    [[nodiscard]] QPoint scrollPosition() const override;
    void invalidate(const TRect& viewRect) override;
    [[nodiscard]] int fontHeight() const override;
    [[nodiscard]] int boldTextWidth(const QString& text) const override;
    [[nodiscard]] const TorvQDWorkAreaOptions& options() const override;
    [[nodiscard]] bool isRowScrollBarVisible() const override;
    void placeRowScrollBar(const RowScroll& scroll) override;
    void showRowScrollBar(bool visible) override;
    void moveRowScrollBar(int dx, int dy) override;
    void bringToFront(TorvQDFloatObject* object) override;
    void tableMoved(TorvQDTable* table) override;
    void tableResized(TorvQDTable* table) override;
    void rowsScrolled(TorvQDTable* table) override;
    void closeTable(TorvQDTable* table) override;
    void unlinkTable(TorvQDTable* table) override;
    void checkItem(TorvQDFloatObject* sender, TorvQDListItem* item) override;
    void enterParameter(TorvQDTable* table, TorvQDListItem* item) override;
    void linkSelected(TorvQDLink* link, bool selected) override;
    void beginChange() override;
    void endChange() override;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    friend class FromLoader;

    enum class Gesture { Idle, Pressed, MovingBox };

    struct HeldJoin {
        std::unique_ptr<TorvQDJoin> join;
        std::map<int, TorvQDLink*> links;
    };

    TorvQDTable* addTable(const QString& name, const TDataSet* dataSet, const QString& writtenName,
                          const QString& finalAlias);
    TorvQDTable* adopt(std::unique_ptr<TorvQDTable> box);
    TorvQDLink* adopt(std::unique_ptr<TorvQDLink> link);
    [[nodiscard]] QString freeAlias(const QString& processedName) const;
    void placeTable(TorvQDTable& table) const;
    void reroute(const TorvQDTable* table);
    [[nodiscard]] bool takesLinks(const TorvQDTable* table) const;
    TorvQDJoin* holdJoin(std::unique_ptr<TorvQDJoin> join);
    void removeLink(int number, bool invalidates);
    void dropUnusedJoin(const TorvQDJoin* join);
    [[nodiscard]] bool createdBefore(const TorvQDTable* first, const TorvQDTable* second) const;
    [[nodiscard]] orv::FromDiagram fromDiagram() const;
    [[nodiscard]] const std::vector<TorvQDTable*>* tablesByField(const QString& name) const;
    [[nodiscard]] QString writeFrom(orv::FromPlaces* places) const;
    void removeBox(TorvQDTable* table);
    void forget(TorvQDFloatObject* object);
    void bury(std::unique_ptr<QObject> object);
    void indexFields(TorvQDTable* table);
    void unindexFields(TorvQDTable* table);
    void rememberAlias(TorvQDTable* table);
    void addAlias(TorvQDTable* table);
    void forgetAlias(TorvQDTable* table, const QString& alias);
    [[nodiscard]] int indexOf(const QObject* table) const;
    [[nodiscard]] TorvQDTable* tableAt(const QPoint& viewPoint) const;
    void updateScrollRange();
    void ensureVisible(const TorvQDTable& table);
    void showContextMenu(const QPoint& viewPoint);
    void placeAliasEdit();
    void moveBoxTo(const QPoint& viewPoint);

    IWorkAreaOwner* m_owner;
    std::vector<std::unique_ptr<TorvQDTable>> m_tables;
    // Joins and links by number, in the order of their creation: a number is never used again.
    std::map<int, HeldJoin> m_joins;
    std::map<int, std::unique_ptr<TorvQDLink>> m_links;
    int m_nextNumber = 0;
    std::vector<std::unique_ptr<QObject>> m_dying;
    std::vector<std::unique_ptr<TorvQDJoin>> m_dyingJoins;  // links that die refer to them
    QHash<std::pair<const TorvQDTable*, const TorvQDTable*>, TorvQDJoin*> m_joinByPair;
    QHash<const TorvQDJoin*, int> m_joinNumbers;
    QHash<const TorvQDLink*, int> m_linkNumbers;
    QHash<const TorvQDTable*, std::set<int>> m_joinsOfTable;
    QHash<const TorvQDTable*, int> m_creationNumber;
    int m_created = 0;
    std::vector<TorvQDTable*> m_creation;
    QHash<QString, std::vector<TorvQDTable*>> m_byAlias;
    QHash<QString, std::vector<TorvQDTable*>> m_byLooseAlias;  // upper case, without quotes
    QHash<QString, std::vector<TorvQDTable*>> m_byField;       // upper-case names without quotes
    QPointer<TorvQDFloatObject> m_selected;
    QPointer<TorvQDTable> m_renamed;
    orv::ExitEdit* m_aliasEdit;
    QScrollBar* m_rowScrollBar;
    Gesture m_gesture = Gesture::Idle;
    QPointer<TorvQDTable> m_pressed;
    TTableHitTest m_pressedHit = htTOutSide;
    QPoint m_pressPoint;               // view coordinates
    QPoint m_boxAtPress;               // diagram coordinates
    mutable bool m_paintsAll = false;  // into a picture: nothing is scrolled
};
