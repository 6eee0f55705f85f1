// SPDX-License-Identifier: MIT
#pragma once

#include "data/DataSet.h"
#include "data/FieldTypes.h"
#include "diagram/ORVQDBoxText.h"
#include "diagram/ORVQDFloatObject.h"
#include "toolkit/Edges.h"

#include <QHash>
#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

class TorvQDTable;

/// What a row looks like besides its own state.
enum TorvQDItemState : quint8 { isSelected = 0, isFocused = 1, isDroped = 2 };
static_assert(isSelected == 0 && isFocused == 1 && isDroped == 2);

/// A set of these, one bit per TorvQDItemState.
using TSetOfItemStates = quint8;

/// One field row of a box. Owned by its box.
class ORV_EXPORT TorvQDListItem {
public:
    /// A row that is not ticked. Its box makes it and owns it.
    TorvQDListItem(TorvQDTable* table, const QString& name, TFieldType fieldType,
                   TParamType paramType);

    TorvQDTable* Table;     ///< the box; borrowed
    QString Name;           ///< as it is written in SQL, quotes included
    QVariant Value;         ///< of a procedure's parameter row
    TFieldType FieldType;   ///< of the field or parameter
    TParamType ParamType;   ///< ptOutput for every row of an ordinary table
    bool Checked = false;   ///< ticked for the output list; change it by SetCheck or UpdateCheck
    bool Selected = false;  ///< highlighted, because a link to it is selected; SetSelect
    bool IsNull = true;     ///< whether a parameter row holds NULL
    bool Busy = false;      ///< the host is being asked for the parameter's value

    /// The row as links attach to it, in diagram coordinates.
    [[nodiscard]] TRect GetBoundsRect() const;
    /// Position in the box, from 0 on.
    [[nodiscard]] int GetIndex() const { return m_index; }
    /// What the rest of the statement calls the field: the alias of its table, a full stop, its
    /// name.
    [[nodiscard]] QString qualifiedName() const;
    /// The type as a person reads it.
    [[nodiscard]] QString GetDataName() const { return orv::fieldTypeDisplayName(FieldType); }

    /// The row as it is written in the box: the name, with the type when the options show it.
    [[nodiscard]] QString caption() const;

    /// Ticks or unticks the row and tells the canvas. An input parameter is not ticked: the host is
    /// asked for its value. Does nothing in a box that is leaving the diagram.
    void SetCheck(bool value);
    /// Ticks (not 0) or unticks the row, tells nobody and brings the box's check box up to date.
    void UpdateCheck(int value);
    /// Highlights the row.
    void SetSelect(bool value);
    /// Draws the row into a rectangle of the painter, on the colour of the row area when `Flag`.
    void DrawItem(QPainter& Painter, const QRect& Rect, TSetOfItemStates State, bool Flag) const;

private:
    friend class TorvQDTable;

    void store(bool value);
    void invalidate() const;
    [[nodiscard]] const orv::TextLine& text() const;

    int m_index = -1;  // position in the box
    mutable orv::RowText m_text;
};

/// A table on the diagram: a caption with a tri-state check box, and a scrollable list of field
/// rows. Owned by the work area. Its geometry is in diagram coordinates unless said otherwise.
///
///     Left,Top +----+---------------------+---------+
///              | [] | caption             | buttons |  CaptionHeight
///              +----+---------------------+---------+
///              | BorderWidth + Indent               |
///              |   [] row FirstVisibleItem          |  ItemHeight, then 1 pixel
///              |   [] ...                           |
///              +------------------------------------+ Left + Width, Top + Height
class ORV_EXPORT TorvQDTable : public TorvQDFloatObject {
    Q_OBJECT

public:
    /// A box for the columns of `DataSet`; none makes a box without rows. Raises orv::Error
    /// "Invalide parent for table object!" when the parent is no canvas.
    TorvQDTable(QWidget* AParent, const TDataSet* DataSet, const QString& TableName);
    ~TorvQDTable() override;

    QString TableName;        ///< as it is written in SQL, quotes included
    QString Hint;             ///< of the part under the mouse, for GetHint
    int FieldState = 0;       ///< 0 no row ticked, 1 some, 2 all
    int PressedButton = -1;   ///< the caption button that is held down; -1 for none
    int HotButton = -1;       ///< the caption button under the mouse; -1 for none
    int Expanded = -1;        ///< not 0 while the rows are shown
    int CaptionHeight = 0;    ///< pixels
    int ButtonsWidth = 40;    ///< of the three caption buttons together, in pixels
    int BorderWidth = 2;      ///< pixels
    int Indent = 2;           ///< between border and rows, in pixels
    int ScrollBarWidth = 16;  ///< pixels
    TorvQDListItem* CurrentItem =
        nullptr;  ///< the row that keys are about; none without one, borrowed
    TorvQDListItem* DropItem = nullptr;  ///< the row over which something is dragged; setDropItem
    int Left = 0;                        ///< pixels; SetLeft or MoveTable change it
    int Top = 0;                         ///< pixels; SetTop or MoveTable change it
    int Width = 100;                     ///< pixels; SetWidth changes it
    int Height = 0;                      ///< of the expanded box
    int ItemHeight = 0;                  ///< of a row, in pixels
    int FirstVisibleItem = 0;            ///< index of the uppermost row that is shown
    int VisibleCount = 0;                ///< rows that have room
    std::vector<std::unique_ptr<TorvQDListItem>> Items;  ///< the rows, from top to bottom

    /// The alias that was given to the box; empty when its name stands for it.
    [[nodiscard]] const QString& Alias() const { return m_alias; }
    /// Stores the alias as given; the work area keeps aliases unique.
    void SetAlias(const QString& alias);
    /// Called with the old effective alias when the alias changed; installed by the canvas.
    std::function<void(TorvQDTable* Table, const QString& OldAlias)> aliasChanged;

    /// Name, with the alias in brackets behind it when there is one.
    [[nodiscard]] QString GetCaption() const;
    /// The effective alias: what the rest of the statement calls the table.
    [[nodiscard]] QString GetAlias() const;
    /// The first row of that name, ignoring case, an output row before others; none when there is
    /// none.
    [[nodiscard]] TorvQDListItem* GetFieldItem(const QString& Name) const;
    /// The output row of that name; where there is none, names are compared without their quotes,
    /// and a match that is the only one counts.
    [[nodiscard]] TorvQDListItem* findItem(const QString& name) const;
    /// Rows made from the data set; the old rows are of the box no more, but live as long as it.
    /// The height stays.
    void AssignItems(const TDataSet* DataSet);

    void SetSelect(bool Value) override;
    [[nodiscard]] QString GetHint() const override { return Hint; }
    void Paint(QPainter& Painter) override;
    void MouseDown(TWMMouse& Message, TTableHitTest HitTest) override;
    void MouseMove(TWMMouse& Message, TTableHitTest HitTest) override;
    void MouseUp(TWMMouse& Message, TTableHitTest HitTest) override;
    /// Space and Enter tick the current row, the arrows and their like choose it, letters and
    /// digits search a row. Sets `Key` to 0 when it was one of these.
    void KeyDown(int& Key, Qt::KeyboardModifiers Shift) override;
    [[nodiscard]] bool usesKey(int key, Qt::KeyboardModifiers shift,
                               const QString& text) const override;
    void LeaveHit(TWMMouse& Message, TTableHitTest HitTest) override;
    [[nodiscard]] TTableHitTest HitTest(const QPoint& P) const override;
    void PopupMenu(QMenu& Menu, int X, int Y, TTableHitTest HitTest) override;
    /// Colour of the row area.
    [[nodiscard]] virtual QColor GetClientColor() const;
    /// What a double click does there: on the caption it asks for an alias, on a row it ticks.
    virtual void DblClick(TWMMouse& Message, TTableHitTest HitTest);
    /// The border of the box.
    [[nodiscard]] orv::Bevel GetTableBorder() const;
    /// Whether the borders are flat.
    [[nodiscard]] bool GetFlat() const;
    /// Whether the caption buttons are flat.
    [[nodiscard]] bool GetbtnFlat() const;
    /// Whether the current row is only marked while the box is selected.
    [[nodiscard]] bool GetHideSelection() const;
    /// Draws caption button `Index` pressed (0), normal (1) or under the mouse (2); `R` is the
    /// rectangle of the buttons in the painter's coordinates.
    void DrawButton(QPainter& Painter, int State, int Index, const TRect& R) const;

    // Setters of geometry; absolute values and minimums apply.
    /// Height of the caption and of a row, in pixels: absolute values, not below a minimum.
    void SetCaptionHeight(int Value);
    void SetItemHeight(int Value);
    /// Moves the box, which keeps its size.
    void SetLeft(int Value);
    void SetTop(int Value);
    /// Sizes the box, not below what caption and one row need.
    void SetWidth(int Value);
    void SetHeight(int Value);
    /// Shows the rows (not 0) or the caption alone.
    void SetExpand(int Value);
    /// Scrolls the rows. With fewer rows than VisibleCount a non-negative request gives a negative
    /// first row.
    void SetFirstVisibleItem(int Value);
    /// Shows as many whole rows as the list did, when one of this height can show so many: a list
    /// that was sized shows one less at some heights than one that was made so.
    void restoreVisibleCount(int rows);
    /// Scrolls the rows back to where they were, also to a first row below 0, as a box that was
    /// taller than its rows may keep one when it is made lower.
    void restoreFirstVisibleItem(int first);
    /// Moves the box by so many pixels.
    void MoveTable(int DX, int DY);
    /// Moves the left or upper edge to that place; the opposite edge stays. Minimums apply.
    void MoveLeft(int Value);
    void MoveUpper(int Value);
    /// Makes the row the one that keys are about; nothing for a row of another box.
    void SetCurrentItem(TorvQDListItem* Item);
    /// Scrolls the rows as little as shows the row.
    void scrollToItem(const TorvQDListItem* item);
    /// Marks the row on which a dragged field or end of a link would be dropped; none for none.
    void setDropItem(TorvQDListItem* item);
    /// Lays the box out for the font of the canvas.
    void relayout();

    /// Ticks all rows (2) or unticks them (0 and 1), and tells the canvas of each.
    void SetFieldState(int State);
    /// Sets what the caption's check box shows; clamped to 0..2.
    void UpdateFieldState(int State);
    /// Places and ranges the canvas's scroll bar; false when this box shows none.
    bool UpdateScrollBar();

    /// All of the box; of a collapsed one the caption.
    [[nodiscard]] TRect GetBoundsRect() const;
    /// The room of the caption's text, between check box and buttons.
    [[nodiscard]] TRect GetCaptionRect() const;
    /// The room for rows.
    [[nodiscard]] TRect GetClientRect() const;
    /// The three caption buttons together.
    [[nodiscard]] TRect GetButtonRect() const;
    /// The row in view coordinates; all zero for a row of another box.
    [[nodiscard]] TRect GetItemRect(const TorvQDListItem* Item) const;
    /// The row as links attach to it: the row, the caption strip when it is scrolled above the list
    /// or the box is collapsed, the bottom border when it is below. All zero for another's row.
    [[nodiscard]] TRect GetFullItemRect(const TorvQDListItem* Item) const;
    /// The rectangle of the caption's text, not cut.
    [[nodiscard]] TRect CaptionRect(bool Right) const;
    /// The visible row at a height in view coordinates; heights above the list give the first one.
    [[nodiscard]] TorvQDListItem* GetItemAt(int X, int Y) const;
    /// The square of the caption's check box as it is drawn, in diagram coordinates: 2 pixels right
    /// of the one that is hit.
    [[nodiscard]] TRect checkBoxRect() const;

    /// Closes the box, when the host allows it, as the user does.
    void CloseTable();
    /// Removes the links of the box.
    void UnlinkTable();

    /// Place, size and scrolled rows, to be put back as they were.
    struct Shape {
        int left = 0;              ///< pixels, diagram coordinates
        int top = 0;               ///< pixels, diagram coordinates
        int width = 0;             ///< pixels
        int height = 0;            ///< pixels, of the expanded box
        int visibleCount = 0;      ///< rows that have room
        int firstVisibleItem = 0;  ///< index of the uppermost row
    };
    /// The shape that the box has now.
    [[nodiscard]] Shape shape() const;
    /// Gives the box that shape.
    void setShape(const Shape& shape);

    /// Asks the user for another alias, in place, and selects the box.
    void _RenameTable();
    /// Makes the first row whose name begins with the edit's text, ignoring case and quotes, the
    /// current one; Up and Down go to the one before and after. Sets `Key` to 0 when it was one of
    /// these.
    void _FindField(const QString& Text, int& Key);

    /// Ticks the row, or unticks it, as the user does.
    void toggle(TorvQDListItem* item);

    /// The caption button at a place in view coordinates: 0 collapse or expand, 1 unlink, 2 close,
    /// -1 beside them.
    [[nodiscard]] int buttonAt(const QPoint& viewPoint) const;

    /// Width and height of a caption button's glyph.
    static constexpr int captionGlyphPx = 11;

    /// Grows with each AssignItems: rows of before are gone.
    [[nodiscard]] int rowsVersion() const { return m_rowsVersion; }

    /// The canvas is closing the box: a second request is ignored.
    bool closing = false;

    /// The host has allowed that, and is told what goes: no row can be ticked any more.
    bool leaving = false;

    /// Whether the row is one of this box.
    [[nodiscard]] bool owns(const TorvQDListItem* item) const;

    /// The rectangle, of diagram coordinates, in view coordinates.
    [[nodiscard]] TRect toView(const TRect& rect) const;

protected:
    /// Adds a row behind the others.
    TorvQDListItem* addRow(const QString& name, TFieldType type, TParamType paramType);
    /// The height of a box that shows so many rows.
    [[nodiscard]] int heightFor(int rows) const;

private:
    friend class TorvQDListItem;

    void _RemoveTable();
    void invalidate(const TRect& rect) const;
    void showScrollBar(bool visible) const;
    void scrollRowsTo(int first);
    /// Whole rows in a list that was sized to its height.
    [[nodiscard]] int sizedRows() const;
    void tell(IDiagramCanvas::BoxChange change, const TorvQDListItem* row = nullptr);
    void recountFieldState(bool value);
    [[nodiscard]] TRect captionStrip() const;
    [[nodiscard]] TRect scrolledArea() const;
    [[nodiscard]] int edgeBands(const QPoint& point) const;
    void setHotButton(int button);
    [[nodiscard]] int leastWidth() const;
    [[nodiscard]] int leastHeight() const;
    void moveCurrent(int key);
    [[nodiscard]] const orv::BoxFonts& fonts() const;
    [[nodiscard]] QColor captionColor() const;
    void paintFrame(QPainter& painter, const QRect& bounds) const;
    void paintCaption(QPainter& painter) const;
    void paintRows(QPainter& painter) const;

    QString m_alias;
    int m_rowsVersion = 0;
    // Links and handlers may still be about rows of before.
    std::vector<std::unique_ptr<TorvQDListItem>> m_droppedRows;
    int m_outputRows = 0;
    int m_checkedRows = 0;                      // of the output rows
    static constexpr int rowGapPx = 1;          // between two rows
    static constexpr int captionPaddingPx = 4;  // of the caption around its font

    void indexNames() const;

    mutable orv::BoxFonts m_fonts;
    mutable orv::CaptionText m_captionText;
    mutable QHash<QString, int> m_rowByName;  // upper-case name to index of its first row
    mutable QHash<QString, int> m_rowByWord;  // the same without quotes; -1 for several
};
