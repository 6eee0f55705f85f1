// SPDX-License-Identifier: MIT
// Geometry of a box: its rectangles, hit test, size and scrolling of its rows.
#include "diagram/ORVQDFloatTable.h"

#include <algorithm>

namespace {

constexpr int edgeMarginPx = 4;
constexpr int minimumCaptionTextPx = 20;
constexpr int checkOffsetPx = 2;
constexpr int checkSizePx = 12;
constexpr int checkDrawnShiftPx = 2;
constexpr int captionSlackPx = 2;
constexpr int lowestFirstRow = -100000;  // of a saved query: places of rows stay within an int

enum Band { leftBand = 1, rightBand = 2, topBand = 4, bottomBand = 8 };

TTableHitTest hitOfBands(int bands) {
    if (bands & leftBand) {
        return bands & topBand ? htTLeftTop : bands & bottomBand ? htTLeftBottom : htTLeft;
    }
    if (bands & rightBand) {
        return bands & topBand ? htTRightTop : bands & bottomBand ? htTRightBottom : htTRight;
    }
    return bands & topBand ? htTTop : bands & bottomBand ? htTBottom : htTOutSide;
}

}  // namespace

TRect TorvQDTable::toView(const TRect& rect) const {
    const QPoint scroll = canvas() ? canvas()->scrollPosition() : QPoint();
    return rect.translated(-scroll.x(), -scroll.y());
}

void TorvQDTable::invalidate(const TRect& rect) const {
    if (canvas() && !rect.isEmpty()) canvas()->invalidate(toView(rect));
}

TRect TorvQDTable::captionStrip() const {
    return {Left, Top, Left + Width, Top + CaptionHeight};
}

TRect TorvQDTable::GetBoundsRect() const {
    return {Left, Top, Left + Width, Top + (Expanded ? Height : CaptionHeight)};
}

TRect TorvQDTable::GetCaptionRect() const {
    return {Left + CaptionHeight + BorderWidth, Top + BorderWidth,
            Left + Width - ButtonsWidth - BorderWidth, Top + CaptionHeight - BorderWidth};
}

TRect TorvQDTable::GetButtonRect() const {
    const int right = Left + Width - BorderWidth;
    return {right - ButtonsWidth, Top + BorderWidth, right, Top + CaptionHeight};
}

TRect TorvQDTable::GetClientRect() const {
    const int inset = BorderWidth + Indent;
    return {Left + inset, Top + CaptionHeight + Indent, Left + Width - inset,
            GetBoundsRect().Bottom - inset};
}

TRect TorvQDTable::GetItemRect(const TorvQDListItem* Item) const {
    if (!owns(Item)) return {};
    const TRect bounds = toView(GetBoundsRect());
    const int inset = BorderWidth + Indent;
    const int top = bounds.Top + CaptionHeight + 1 +
                    (Item->GetIndex() - FirstVisibleItem) * (ItemHeight + rowGapPx);
    return {bounds.Left + inset, top, bounds.Right - inset, top + ItemHeight};
}

TRect TorvQDTable::GetFullItemRect(const TorvQDListItem* Item) const {
    if (!owns(Item)) return {};
    TRect rect = GetBoundsRect();
    if (!Expanded) return rect;
    const int row = Item->GetIndex() - FirstVisibleItem;
    if (row < 0) {
        rect.Bottom = Top + CaptionHeight;
    } else if (row <= VisibleCount) {
        rect.Top = Top + CaptionHeight + 1 + row * (ItemHeight + rowGapPx);
        rect.Bottom =
            row == VisibleCount ? Top + Height - BorderWidth - Indent : rect.Top + ItemHeight;
    } else {
        rect.Top = rect.Bottom - BorderWidth;
    }
    return rect;
}

TRect TorvQDTable::CaptionRect(bool Right) const {
    const TRect area = GetCaptionRect();
    const QString caption = GetCaption();
    const int width =
        canvas() ? canvas()->boldTextWidth(caption.isEmpty() ? QStringLiteral(" ") : caption) : 0;
    const int left = Right ? (Left + Width) - area.Right + area.Left : area.Left;
    return {left, area.Top, left + width + captionSlackPx, area.Bottom};
}

TRect TorvQDTable::checkBoxRect() const {
    const int left = Left + BorderWidth + checkOffsetPx + checkDrawnShiftPx;
    const int top = Top + BorderWidth + checkOffsetPx;
    return {left, top, left + checkSizePx, top + checkSizePx};
}

// The right and bottom edges lie outside the bounds, so their bands are a pixel narrower.
int TorvQDTable::edgeBands(const QPoint& point) const {
    const int right = Left + Width;
    const int bottom = Top + Height;
    int bands = 0;
    if (point.x() >= Left && point.x() < Left + edgeMarginPx) bands |= leftBand;
    if (point.x() <= right && right < point.x() + edgeMarginPx) bands |= rightBand;
    if (point.y() >= Top && point.y() < Top + edgeMarginPx) bands |= topBand;
    if (point.y() <= bottom && bottom < point.y() + edgeMarginPx) bands |= bottomBand;
    return bands;
}

TTableHitTest TorvQDTable::HitTest(const QPoint& P) const {
    const QPoint point = P + (canvas() ? canvas()->scrollPosition() : QPoint());
    if (!GetBoundsRect().contains(point)) return htTOutSide;
    if (Expanded) {
        const TTableHitTest edge = hitOfBands(edgeBands(point));
        if (edge != htTOutSide) return edge;
    }
    if (!captionStrip().contains(point)) return htTClient;
    if (GetButtonRect().contains(point)) return htTbutton;
    const TRect check = checkBoxRect().translated(-checkDrawnShiftPx, 0);
    return check.contains(point) ? htTCheck : htTCaption;
}

TorvQDListItem* TorvQDTable::GetItemAt(int, int Y) const {
    const int end = std::min(int(Items.size()), FirstVisibleItem + VisibleCount);
    for (int index = std::max(0, FirstVisibleItem); index < end; ++index) {
        TorvQDListItem* item = Items[std::size_t(index)].get();
        if (GetItemRect(item).Bottom > Y) return item;
    }
    return nullptr;
}

void TorvQDTable::SetLeft(int Value) {
    if (Value != Left) MoveTable(Value - Left, 0);
}

void TorvQDTable::SetTop(int Value) {
    if (Value != Top) MoveTable(0, Value - Top);
}

void TorvQDTable::MoveTable(int DX, int DY) {
    if (DX == 0 && DY == 0) return;
    invalidate(GetBoundsRect());
    Left += DX;
    Top += DY;
    invalidate(GetBoundsRect());
    if (!canvas()) return;
    if (Selected && canvas()->isRowScrollBarVisible()) canvas()->moveRowScrollBar(DX, DY);
    canvas()->tableMoved(this);
}

int TorvQDTable::leastWidth() const {
    return CaptionHeight + ButtonsWidth + minimumCaptionTextPx;
}

int TorvQDTable::leastHeight() const {
    return 2 * ItemHeight + CaptionHeight + 4;
}

void TorvQDTable::MoveLeft(int Value) {
    const int right = Left + Width;
    const int width = std::max(right - Value, leastWidth());
    MoveTable(right - width - Left, 0);
    SetWidth(width);
}

void TorvQDTable::MoveUpper(int Value) {
    const int bottom = Top + Height;
    const int height = std::max(bottom - Value, leastHeight());
    MoveTable(0, bottom - height - Top);
    SetHeight(height);
}

TorvQDTable::Shape TorvQDTable::shape() const {
    return {Left, Top, Width, Height, VisibleCount, FirstVisibleItem};
}

// As it was, also where no setter would make it so: a box of few rows is made lower than anybody
// can size it.
void TorvQDTable::setShape(const Shape& shape) {
    invalidate(GetBoundsRect());
    Left = shape.left;
    Top = shape.top;
    Width = shape.width;
    Height = shape.height;
    VisibleCount = shape.visibleCount;
    FirstVisibleItem = shape.firstVisibleItem;
    invalidate(GetBoundsRect());
    if (Selected) showScrollBar(Expanded && UpdateScrollBar());
    if (!canvas()) return;
    canvas()->tableMoved(this);
    canvas()->tableResized(this);
}

void TorvQDTable::SetWidth(int Value) {
    const int width = std::max(Value, leastWidth());
    if (width == Width) return;
    const bool hasScrollBar = Selected && canvas() && canvas()->isRowScrollBarVisible();
    const int border = BorderWidth + Indent + (width > Width ? 1 : 0);
    const int edge = Left + std::min(width, Width) - border;
    const TRect before = captionStrip();
    const TRect changed = {edge - (hasScrollBar ? ScrollBarWidth : 0), Top,
                           Left + std::max(width, Width), GetBoundsRect().Bottom};
    if (hasScrollBar) canvas()->moveRowScrollBar(width - Width, 0);
    Width = width;
    invalidate(before.united(captionStrip()));
    invalidate(changed);
    if (canvas()) canvas()->tableResized(this);
}

void TorvQDTable::SetHeight(int Value) {
    const int height = std::max(Value, leastHeight());
    if (height == Height) return;
    const int edge = Top + std::min(height, Height) - BorderWidth - Indent - ItemHeight;
    const TRect changed = {Left, edge, Left + Width, Top + std::max(height, Height)};
    Height = height;
    VisibleCount = sizedRows();
    const int rows = int(Items.size());
    if (rows < FirstVisibleItem + VisibleCount) SetFirstVisibleItem(rows - VisibleCount);
    invalidate(changed);
    if (Selected) showScrollBar(Expanded && UpdateScrollBar());
    if (canvas()) canvas()->tableResized(this);
}

int TorvQDTable::sizedRows() const {
    return (Height - CaptionHeight - BorderWidth - 2 * Indent - 1) / (ItemHeight + rowGapPx);
}

void TorvQDTable::restoreVisibleCount(int rows) {
    const bool isSized = Height >= leastHeight() && rows == sizedRows();
    if (isSized || Height == heightFor(rows)) VisibleCount = rows;
}

void TorvQDTable::SetExpand(int Value) {
    if ((Value != 0) == (Expanded != 0)) return;
    const TRect full = {Left, Top, Left + Width, Top + Height};
    Expanded = Value;
    invalidate(full);
    if (Selected) showScrollBar(Expanded && UpdateScrollBar());
    tell(IDiagramCanvas::BoxChange::Expanded);
    if (canvas()) canvas()->tableResized(this);
}

TRect TorvQDTable::scrolledArea() const {
    TRect area = GetClientRect();
    if (Selected && canvas() && canvas()->isRowScrollBarVisible()) area.Right -= ScrollBarWidth;
    return area;
}

void TorvQDTable::SetFirstVisibleItem(int Value) {
    const int last = int(Items.size()) - VisibleCount;
    scrollRowsTo(Value < 0 ? 0 : Value > last ? last : Value);
}

void TorvQDTable::restoreFirstVisibleItem(int first) {
    if (first < 0) {
        scrollRowsTo(std::max(first, lowestFirstRow));
    } else {
        SetFirstVisibleItem(first);
    }
}

void TorvQDTable::scrollRowsTo(int first) {
    if (first == FirstVisibleItem) return;
    FirstVisibleItem = first;
    invalidate(scrolledArea());
    if (canvas()) canvas()->rowsScrolled(this);
}

bool TorvQDTable::UpdateScrollBar() {
    if (!Selected || !canvas() || int(Items.size()) <= VisibleCount) return false;
    TRect area = toView(GetClientRect());
    area.Left = area.Right - ScrollBarWidth;
    canvas()->placeRowScrollBar(
        {area, FirstVisibleItem, int(Items.size()) - VisibleCount, VisibleCount - 1});
    return true;
}

void TorvQDTable::showScrollBar(bool visible) const {
    if (canvas()) canvas()->showRowScrollBar(visible);
}

void TorvQDTable::relayout() {
    if (!canvas()) return;
    invalidate(GetBoundsRect());
    const int fontHeight = canvas()->fontHeight();
    SetCaptionHeight(fontHeight + captionPaddingPx);
    SetItemHeight(fontHeight);
    Height = heightFor(VisibleCount);
    if (Selected) showScrollBar(Expanded && UpdateScrollBar());
    invalidate(GetBoundsRect());
    canvas()->tableResized(this);
}
