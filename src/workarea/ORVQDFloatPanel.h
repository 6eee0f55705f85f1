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
#include <QBasicTimer>
#include <QColor>
#include <QHash>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

class QImage;
class QMenu;
class QMimeData;
class QScrollBar;
class TEditEx;
class TdlgLnkProp;
class TorvQDParser;
class TorvQDSProc;

namespace orv {
class DiagramKeys;
class ExitEdit;
class FieldDrag;
class Gestures;
class HintPopup;
}  // namespace orv

/// The link dialog of the work area that was made last; each work area owns one.
ORV_EXPORT extern QPointer<TdlgLnkProp> dlgLnkProp;

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
    /// A row was ticked or unticked.
    TCheckItemEvent OnCheckItem;
    /// A box was added; Item is the TorvQDTable.
    TAddEvent OnAddTable;
    /// A box is about to go; Item is the TorvQDTable.
    TRemoveEvent OnRemoveTable;
    /// A box has another effective alias; Item is the TorvQDTable, OldValue the one of before.
    TChangeStringEvent OnChangeAlias;
    /// A link was added; Item is the TorvQDLink.
    TAddEvent OnAddLink;
    /// A link is about to go; Item is the TorvQDLink.
    TRemoveEvent OnRemoveLink;
    /// A link was selected (State) or deselected.
    TSelectionLinkEvent OnSelectionLink;
    /// All boxes went at once, without a notification for each.
    std::function<void()> contentsCleared;

    /// How many boxes there are.
    [[nodiscard]] int TablesCount() const { return int(m_tables.size()); }
    /// The box at a place of the stacking order. Raises orv::Error when there is none.
    [[nodiscard]] TorvQDTable* Tables(int Index) const;
    /// The boxes in the order of their creation.
    [[nodiscard]] const std::vector<TorvQDTable*>& tablesByCreation() const { return m_creation; }

    /// Adds a box for the table, in front of all others, when the host allows it; else returns
    /// none. Its effective alias is the table's name, followed by a number when that is taken. No
    /// data set makes a box without rows; an empty name raises orv::Error.
    TorvQDTable* AddPanel(const QString& TableName, const TDataSet* DataSet);
    /// The same for a stored procedure, whose box also lists its parameters; none of them adds no
    /// rows.
    TorvQDTable* AddProc(const QString& ProcName, const TDataSet* DataSet, const TParams* Params);

    /// Adds a box as a saved query has it: FROM writes `name`, and `alias` is its effective alias.
    /// With parameters, be they none, it is a procedure's. Nobody is asked, it is put in front of
    /// all others and is not selected. None when whoever is told of it takes it away again.
    TorvQDTable* restoreTable(const QString& name, const QString& alias, const TDataSet& dataSet,
                              const QRect& bounds, const TParams* params = nullptr);
    /// Adds a join without links, which restoreLink is to give it. Nobody is asked.
    TorvQDJoin* restoreJoin(TorvQDTable* table1, TorvQDTable* table2);
    /// Adds a link by "=" in the join. Nobody is asked. None when a row is missing, or when whoever
    /// is told of it takes it away again; a join is dropped that has no link then.
    TorvQDLink* restoreLink(TorvQDJoin* join, TorvQDListItem* item1, TorvQDListItem* item2);
    /// Makes the box as wide as its caption and its rows need, up to a bearable width.
    void fitWidth(TorvQDTable& table);
    /// Places boxes of the diagram as if they were added now, one after the other, with that room
    /// between boxes.
    void placeAgain(const std::vector<TorvQDTable*>& tables, int gapPx = placementGapPx);
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
    /// Whether the statement has the join: it has a link that is not muted, or a text.
    [[nodiscard]] bool isWritten(const TorvQDJoin& join) const;
    /// Joins that have links, and links, in the order of their creation.
    [[nodiscard]] std::vector<TorvQDJoin*> Joins() const;
    [[nodiscard]] std::vector<TorvQDLink*> Links() const;
    /// The links of that join alone, in the order of their creation.
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
    /// Whether what is written keeps the meaning of what was loaded.
    [[nodiscard]] bool keepsMeaning() const { return m_owner->KeepMeaning(); }
    /// Rebuilds the diagram from a FROM node. Raises orv::Error when the node is another, the host
    /// cannot be asked for tables, or a join has no table.
    void LoadSQL(const TorvQDParser& Node);

    /// Gives the box the alias that the user typed: dots are dropped, the table's name or a blank
    /// text means none, and what is no plain identifier is put in quotes. Raises orv::Error "Table
    /// with alias ... already exist!" when another box has it.
    void renameTable(TorvQDTable* table, const QString& text);
    /// Takes the text of the alias edit for the box over which it was opened; nothing when none is.
    void _EditNameKillFocus();
    /// Ends the edit with what was typed, or without.
    void commitPendingEdit();
    void discardPendingEdit();

    /// Moves one end of the link to another row of the same box; asks nobody.
    void attachLink(TorvQDLink* link, bool atStart, TorvQDListItem* item);
    /// Puts a link with the same operator in the place of this one, with one end at a row of
    /// another box, when the host allows both.
    void replaceLink(TorvQDLink* link, bool atStart, TorvQDListItem* item);

    /// Whether the object is one of the diagram's.
    [[nodiscard]] bool holds(const TorvQDFloatObject* object) const;
    /// What a point of the view hits: boxes from the front to the back, then the selected link,
    /// then the others from the last painted one on.
    [[nodiscard]] TorvQDFloatObject* objectAt(const QPoint& viewPoint) const;
    /// The row at a point of the view; none beside the row areas of boxes.
    [[nodiscard]] TorvQDListItem* rowAt(const QPoint& viewPoint) const;

    // --- the view ---

    /// Width and height of the diagram; boxes beyond widen it.
    static constexpr int diagramExtentPx = 5000;

    /// Magnification, 1 by default; kept between 0.05 and 4. The anchor stays where it is. Rules
    /// and numbers of boxes and links are about view pixels, which this divides.
    [[nodiscard]] qreal zoom() const { return m_zoom; }
    void setZoom(qreal zoom);
    void setZoom(qreal zoom, const QPoint& viewportAnchor);
    /// A step nearer, a step away, back to 1; the middle of the view stays where it is.
    void zoomIn();
    void zoomOut();
    void actualSize();
    /// Zooms and scrolls so that all boxes are seen; never magnifies.
    void fit();
    /// Lays the boxes out in layers along their joins, without overlaps. Bend points go.
    void arrange();
    /// Puts a picture of the diagram on the clipboard.
    void copyAsPicture();
    /// The same as an image: all boxes, whatever is scrolled.
    [[nodiscard]] QImage picture() const;

    /// Scrolls by pixels of the diagram, or so that the view begins at that place of it.
    void scrollBy(int dx, int dy);
    void scrollTo(const QPoint& position);
    /// Scrolls as little as shows the rectangle, in diagram coordinates; a larger one shows its
    /// left top corner.
    void ensureVisible(const TRect& rect);
    /// Puts the box at that place as far as its caption stays inside the diagram; one that already
    /// was beyond, at `before`, may stay so.
    void placeBox(TorvQDTable& box, const QPoint& wanted, const QPoint& before);

    /// View coordinates of a point of the viewport, and back.
    [[nodiscard]] QPoint toViewPoint(const QPoint& viewportPoint) const;
    [[nodiscard]] QPoint toViewport(const QPoint& viewPoint) const;
    [[nodiscard]] QRect toViewport(const TRect& viewRect) const;

    // --- gestures ---

    /// Whether the mouse is moving, sizing, linking or bending something.
    [[nodiscard]] bool isGesturing() const;
    /// Ends what the mouse is doing and restores what was before; false when it does nothing.
    bool cancelGesture();
    /// A gesture is over: what it has moved is told.
    void gestureEnded();

    /// Timers by their number: rows scroll up or down below a dragged field, the view scrolls at
    /// its edge, a hint appears, a hint goes.
    static constexpr int rowsUpTimer = 1;
    static constexpr int rowsDownTimer = 2;
    static constexpr int edgeTimer = 3;
    static constexpr int hintTimer = 10;
    static constexpr int hintEndTimer = 11;
    /// Starts or stops the timer of that number.
    void startTimerNumber(int number);
    void stopTimer(int number);
    /// Whether the timer of that number runs.
    [[nodiscard]] bool isTimerActive(int number) const;
    /// What a timer does when its time is over.
    void timerFired(int number);

    /// The cursor over that part of an object.
    [[nodiscard]] static Qt::CursorShape cursorFor(TTableHitTest hit);
    /// The object under the mouse, and the part of it.
    [[nodiscard]] TorvQDFloatObject* hotObject() const { return m_hot; }
    /// The object to which a key of that text goes first; none for none.
    [[nodiscard]] TorvQDFloatObject* keyTarget(int key, const QString& text) const;

    /// Opens the menu of the object at its place, that of the view for none.
    void showMenuOf(TorvQDFloatObject* object);

    // What drags of fields tell the builder.
    /// The builder's own number in what is dragged from its diagram.
    [[nodiscard]] quint64 dragIdentity() const { return m_owner->dragIdentity(); }
    /// A field is about to be dragged; the owner tells the host.
    void fieldDragStarted(const orv::DraggedField& field);
    /// The drag is over. The target took it, none when nobody did; view coordinates.
    void fieldDragEnded(QObject* target, const QPoint& viewPoint);
    /// Whether the host wants to be asked about drags that are no fields.
    [[nodiscard]] bool takesForeignDrags() const { return m_owner->takesForeignDrags(); }
    /// Whether the host takes what is dragged over that point, in view coordinates.
    [[nodiscard]] bool foreignDragOver(QObject* source, const QPoint& viewPoint,
                                       const QMimeData& data);
    /// The host gets what was dropped at that point, in view coordinates.
    void foreignDrop(QObject* source, const QPoint& viewPoint, const QMimeData& data);

    /// The colour of links on the ground of the diagram: black, unless a host with a dark look
    /// takes another one. Over boxes and in pictures they are black all the same.
    void setLinkColor(const QColor& color);
    [[nodiscard]] QColor linkColor() const override { return m_linkInk; }

    /// The rectangle that holds all boxes, in diagram coordinates; empty when there are none.
    [[nodiscard]] QRect diagramBounds() const;
    /// Paints all boxes in diagram coordinates: into a picture, a printer or a vector file.
    void paintDiagram(QPainter& painter) const;

    /// Tells that a row of a box was ticked or unticked; nothing for what is not on the diagram.
    void _CheckItem(QObject* Sender, TorvQDListItem* Item);
    /// Asks the host for the row's value.
    void DoEnterParameter(TorvQDTable* SProcedure, TorvQDListItem* ListItem);
    /// A procedure's row has another value now.
    void parameterChanged(TorvQDSProc* procedure, TorvQDListItem* item);
    /// The parameter rows whose SQL names a table that FROM writes behind their procedure, where
    /// most databases do not see it yet.
    [[nodiscard]] std::vector<TorvQDListItem*> earlyArguments() const;
    /// The tables that the SQL of a parameter row names.
    [[nodiscard]] std::vector<const TorvQDTable*> tablesNamedBy(const TorvQDListItem& row) const;
    /// Lays all boxes out for the font of the options, which has become this one.
    void _SetFont(const QFont& Value);
    [[nodiscard]] QFont GetFont() const;

    // What boxes ask of their canvas.
    [[nodiscard]] QPoint scrollPosition() const override;
    void invalidate(const TRect& viewRect) override;
    void invalidate(const QRegion& viewRegion) override;
    [[nodiscard]] int fontHeight() const override;
    [[nodiscard]] int boldTextWidth(const QString& text) const override;
    [[nodiscard]] const TorvQDWorkAreaOptions& options() const override;
    [[nodiscard]] bool isRowScrollBarVisible() const override;
    void placeRowScrollBar(const RowScroll& scroll) override;
    void showRowScrollBar(bool visible) override;
    void moveRowScrollBar(int dx, int dy) override;
    [[nodiscard]] TorvQDFloatObject* selectedObject() const override { return m_selected; }
    /// Selects the object and deselects the one that was; none deselects.
    void selectObject(TorvQDFloatObject* object) override;
    void bringToFront(TorvQDFloatObject* object) override;
    void tableMoved(TorvQDTable* table) override;
    void tableResized(TorvQDTable* table) override;
    void rowsScrolled(TorvQDTable* table) override;
    void linkBent(TorvQDLink* link) override;
    /// A muted link stays, but is not written; with all of its links goes the join, unless it has a
    /// text.
    void muteLink(TorvQDLink* link, bool muted) override;
    void closeTable(TorvQDTable* table) override;
    void unlinkTable(TorvQDTable* table) override;
    void checkItem(TorvQDFloatObject* sender, TorvQDListItem* item) override;
    void enterParameter(TorvQDTable* table, TorvQDListItem* item) override;
    void linkSelected(TorvQDLink* link, bool selected) override;
    void beginRename(TorvQDTable* table) override;
    void beginSearch(TorvQDTable* table, const QString& text) override;
    [[nodiscard]] QString typedText() const override { return m_typedText; }
    void startFieldDrag(TorvQDTable* table, TorvQDListItem* item) override;
    void postDeleteLink(TorvQDLink* link) override;
    void editLink(TorvQDLink* link) override;
    void boxChanged(TorvQDTable* table, BoxChange change, const TorvQDListItem* row) override;
    void beginChange() override;
    void endChange() override;

    /// What a layout begins with, in pixels.
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
    bool viewportEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    friend class FromLoader;

    // A box that is to be added. `writtenName`, when given, is the name as FROM writes it (a
    // qualified name, part by part); `finalAlias`, when given, is the alias of a loaded statement.
    struct NewBox {
        QString name;
        const TDataSet* dataSet = nullptr;
        bool isProcedure = false;
        const TParams* params = nullptr;
        bool withoutBrackets = false;  // a call that has none
        QString writtenName = {};
        QString finalAlias = {};
    };

    struct HeldJoin {
        std::unique_ptr<TorvQDJoin> join;
        std::map<int, TorvQDLink*> links;
    };

    [[nodiscard]] std::unique_ptr<TorvQDTable> makeBox(const NewBox& wanted);
    TorvQDTable* addTable(const NewBox& wanted);
    TorvQDTable* adopt(std::unique_ptr<TorvQDTable> box);
    void tellTicks(TorvQDTable* table);
    TorvQDLink* adopt(std::unique_ptr<TorvQDLink> link);
    [[nodiscard]] QString freeAlias(const QString& processedName) const;
    static constexpr int placementGapPx = 10;
    void placeTable(TorvQDTable& table, int gapPx = placementGapPx) const;
    void reroute(const TorvQDTable* table);
    void layoutTouched();
    void tellLayoutLater();
    [[nodiscard]] bool takesLinks(const TorvQDTable* table) const;
    TorvQDJoin* holdJoin(std::unique_ptr<TorvQDJoin> join);
    void removeLink(int number, bool invalidates);
    void dropUnusedJoin(const TorvQDJoin* join);
    [[nodiscard]] bool createdBefore(const TorvQDTable* first, const TorvQDTable* second) const;
    [[nodiscard]] std::vector<const TorvQDTable*> tablesOfFrom() const;
    [[nodiscard]] orv::FromDiagram fromDiagram() const;
    [[nodiscard]] const std::vector<TorvQDTable*>* tablesByField(const QString& name) const;
    [[nodiscard]] QString writeFrom(orv::FromPlaces* places) const;
    void deselect();
    void removeBox(TorvQDTable* table);
    void forget(TorvQDFloatObject* object);
    void bury(std::unique_ptr<QObject> object);
    void indexFields(TorvQDTable* table);
    void unindexFields(TorvQDTable* table);
    void rememberAlias(TorvQDTable* table);
    void addAlias(TorvQDTable* table);
    void forgetAlias(TorvQDTable* table, const QString& alias);
    [[nodiscard]] int indexOf(const QObject* table) const;
    [[nodiscard]] bool isOnDiagram(const QObject* box, const TorvQDListItem* item) const;
    void paintTables(QPainter& painter, const QRegion& region, bool fillsGround);
    void paintLinks(QPainter& painter, const QRegion& region);
    void paintLinks(QPainter& painter, const QRegion& region, const QColor& ink);
    void updateScrollRange();
    void updateScrollRange(const TorvQDTable& moved);
    [[nodiscard]] QSize viewSize() const;
    void placeOverlays();
    void placeAliasEdit();
    void placeSearchEdit();
    [[nodiscard]] TWMMouse messageOf(const QMouseEvent& event) const;
    void setHot(TorvQDFloatObject* object, TTableHitTest hit);
    void leaveHot();
    void updateCursor();
    void trackMouse(const QMouseEvent& event);
    void watchEdge(const QPoint& viewPoint);
    void scrollAtEdge();
    void hideHint();
    void showHint();
    void showMenu(TorvQDFloatObject* object, const QPoint& viewPoint, TTableHitTest hit);
    void fillViewMenu(QMenu& menu);
    void showChosenPart();
    void showFocus(bool shows);
    void selectionChanged(TorvQDFloatObject* old);
    static void tellJoinChanged(const HeldJoin& held);
    void paintFocus(QPainter& painter) const;
    [[nodiscard]] bool scrollRowsByWheel(const QWheelEvent& event);

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
    QHash<const TorvQDTable*, QStringList> m_fieldsOfTable;    // under which it stands there
    QPointer<TorvQDFloatObject> m_hot;
    QPointer<TorvQDFloatObject> m_lastPressed;
    TTableHitTest m_hotHit = htTOutSide;
    QPointer<TorvQDFloatObject> m_selected;
    bool m_deselects = false;
    QPointer<TorvQDTable> m_renamed;
    QPointer<TorvQDTable> m_entering;  // the host is asked for one of its values
    orv::ExitEdit* m_aliasEdit;
    TEditEx* m_searchEdit;
    QScrollBar* m_rowScrollBar;
    orv::HintPopup* m_hint;
    QPointer<QMenu> m_menu;
    QPointer<TorvQDFloatObject> m_menuObject;
    TdlgLnkProp* m_linkDialog;
    std::unique_ptr<orv::Gestures> m_gestures;
    std::unique_ptr<orv::FieldDrag> m_fieldDrag;
    std::unique_ptr<orv::DiagramKeys> m_keys;
    std::map<int, QBasicTimer> m_timers;  // by number
    QPoint m_mouse;                       // where it was seen last, in view coordinates
    QPoint m_hintPoint;                   // where it rests, waiting for a hint
    bool m_mouseLeads = false;            // over the keyboard: it was used last
    bool m_showsFocus = false;            // as a frame when nothing is selected
    int m_wheelRest = 0;                  // of a notch, in eighths of a degree
    bool m_isLayoutTouched = false;       // and the owner is not told yet
    QString m_typedText;
    qreal m_zoom = 1;
    QColor m_linkColor = Qt::black;
    QColor m_linkInk = Qt::black;      // of those that are painted now
    QSize m_extent;                    // of the diagram
    TRect m_rowScrollRect;             // of the shared scroll bar, in view coordinates
    mutable bool m_paintsAll = false;  // into a picture: nothing is scrolled
};
