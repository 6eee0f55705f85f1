// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/BoxOnCanvas.h"
#include "support/TestTools.h"

namespace orvtest {

/// A box on a canvas of its own, at (30, 40) and 100 wide, the canvas scrolled to an odd place. The
/// caption is 20 pixels high and a row 16, and 1 pixel lies between rows; of ten rows six are
/// visible. Mouse messages are given in coordinates of the diagram.
struct HandledBox {
    explicit HandledBox(int rows = 10) : HandledBox(numberedFields(rows)) {}
    explicit HandledBox(const TDataSet& dataSet) : box(&canvas, &dataSet, "T") {
        box.Left = 30;
        box.Top = 40;
        canvas.scroll = oddScroll;
    }

    TorvQDListItem* row(int index) const { return box.Items[std::size_t(index)].get(); }
    int currentRow() const { return box.CurrentItem ? box.CurrentItem->GetIndex() : -1; }
    /// A point of a row's first pixel line, so many pixels from its left edge.
    QPoint inRow(int index, int x) const {
        return {30 + 2 + 2 + x, 40 + 20 + 1 + (index - box.FirstVisibleItem) * 17};
    }

    static TWMMouse message(const QPoint& point, Qt::MouseButtons buttons) {
        const QPoint view = point - oddScroll;
        return {view.x(), view.y(), buttons};
    }
    void down(const QPoint& point, TTableHitTest hit) {
        TWMMouse mouse = message(point, Qt::LeftButton);
        box.MouseDown(mouse, hit);
    }
    void move(const QPoint& point, TTableHitTest hit, Qt::MouseButtons held = Qt::NoButton) {
        TWMMouse mouse = message(point, held);
        box.MouseMove(mouse, hit);
    }
    void up(const QPoint& point, TTableHitTest hit) {
        TWMMouse mouse = message(point, Qt::LeftButton);
        box.MouseUp(mouse, hit);
    }
    void doubleClick(const QPoint& point, TTableHitTest hit) {
        TWMMouse mouse = message(point, Qt::LeftButton);
        box.DblClick(mouse, hit);
    }
    /// What became of the key: 0 when the box has taken it.
    int key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {}) {
        canvas.typed = text;
        box.KeyDown(key, modifiers);
        return key;
    }
    bool repainted(const TRect& rect) const {
        const TRect view = rect.translated(-oddScroll.x(), -oddScroll.y());
        return contains(canvas.invalidated, view);
    }

    FakeCanvas canvas;
    TorvQDTable box;
};

}  // namespace orvtest
