// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOptions.h"
#include "core/TRect.h"

#include <QColor>
#include <QPoint>
#include <QRegion>
#include <QString>

class TorvQDFloatObject;
class TorvQDLink;
class TorvQDListItem;
class TorvQDTable;

/// What a box or link asks of the canvas on which it lies. The work area implements it; an object
/// finds it from its Parent. View coordinates are diagram coordinates minus the scroll position.
class IDiagramCanvas {
public:
    virtual ~IDiagramCanvas() = default;

    /// Scroll position in pixels: diagram coordinates of the view's top left corner.
    [[nodiscard]] virtual QPoint scrollPosition() const = 0;

    /// Asks for a repaint of a rectangle in view coordinates.
    virtual void invalidate(const TRect& viewRect) = 0;
    virtual void invalidate(const QRegion& viewRegion) = 0;

    /// Height of the boxes' font in pixels.
    [[nodiscard]] virtual int fontHeight() const = 0;

    /// Width of a text in the boxes' font in bold, in pixels.
    [[nodiscard]] virtual int boldTextWidth(const QString& text) const = 0;

    /// How boxes look and behave. The object lives as long as the canvas.
    [[nodiscard]] virtual const TorvQDWorkAreaOptions& options() const = 0;

    /// The colour of links where they are painted now.
    [[nodiscard]] virtual QColor linkColor() const { return Qt::black; }

    /// The one scroll bar that the selected box shows beside its rows. Rectangles in view
    /// coordinates; positions are rows.
    struct RowScroll {
        TRect rect;    ///< of the bar, in view coordinates
        int position;  ///< the uppermost row that is shown
        int maximum;   ///< the greatest position
        int pageStep;  ///< rows that are shown at once
    };
    [[nodiscard]] virtual bool isRowScrollBarVisible() const = 0;
    virtual void placeRowScrollBar(const RowScroll& scroll) = 0;
    virtual void showRowScrollBar(bool visible) = 0;

    /// Moves the scroll bar with its box, by pixels.
    virtual void moveRowScrollBar(int dx, int dy) = 0;

    /// The one selected object, none without one; selecting deselects the one that was.
    [[nodiscard]] virtual TorvQDFloatObject* selectedObject() const = 0;
    virtual void selectObject(TorvQDFloatObject* object) = 0;

    /// Brings the object to the front of its kind.
    virtual void bringToFront(TorvQDFloatObject* object) = 0;

    /// The box was moved, changed its size or shape, or scrolled its rows: its links follow.
    virtual void tableMoved(TorvQDTable* table) = 0;
    virtual void tableResized(TorvQDTable* table) = 0;
    virtual void rowsScrolled(TorvQDTable* table) = 0;

    /// Closes the box when the host allows it; the box may be on its way out when this returns.
    virtual void closeTable(TorvQDTable* table) = 0;

    /// Removes the box's links.
    virtual void unlinkTable(TorvQDTable* table) = 0;

    /// A row's tick changed by the user or by program.
    virtual void checkItem(TorvQDFloatObject* sender, TorvQDListItem* item) = 0;

    /// Asks the host for the value of a parameter row.
    virtual void enterParameter(TorvQDTable* table, TorvQDListItem* item) = 0;

    /// A link was selected or deselected: its two rows are told to whoever wants to know.
    virtual void linkSelected(TorvQDLink* link, bool selected) = 0;

    /// Opens the edit of the box's alias, and the edit that searches its rows for the text.
    virtual void beginRename(TorvQDTable* table) = 0;
    virtual void beginSearch(TorvQDTable* table, const QString& text) = 0;

    /// The text of the key that is being handled, empty when none is or it has none.
    [[nodiscard]] virtual QString typedText() const = 0;

    /// The held row was moved far enough beside its check square to be taken along. The box may be
    /// gone when this returns.
    virtual void startFieldDrag(TorvQDTable* table, TorvQDListItem* item) = 0;

    /// Deletes the link when the host allows it, once the present event is over.
    virtual void postDeleteLink(TorvQDLink* link) = 0;

    /// Mutes the link or has it written again; whoever hears of it may remove it.
    virtual void muteLink(TorvQDLink* /*link*/, bool /*muted*/) {}

    /// The link got a bend point, lost one, or one was moved.
    virtual void linkBent(TorvQDLink* /*link*/) {}

    /// What the box shows has changed: which row is the current one, the tick of a row or (without
    /// a row) of its check box, whether its rows are shown, all of its rows.
    enum class BoxChange { CurrentRow, Tick, Expanded, Rows };
    virtual void boxChanged(TorvQDTable*, BoxChange, const TorvQDListItem* /*row*/) {}

    /// Opens the properties of the link and its join; the link may be gone when this returns.
    virtual void editLink(TorvQDLink* link) = 0;

    /// Everything between these two is one change: the pages refresh once, at the end.
    virtual void beginChange() = 0;
    virtual void endChange() = 0;
};
