// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDWindow.h"

#include <QEvent>
#include <QImage>

#include <vector>

class TorvQDTable;
class TorvQDWorkArea;

namespace bench {

inline constexpr QSize viewSize(1280, 800);
inline constexpr int boxRows = 20;

/// A shown builder of which the diagram's view has a given size.
class Diagram {
public:
    Diagram();

    [[nodiscard]] TorvQDWorkArea* area() const { return builder.WorkArea; }
    [[nodiscard]] QWidget* view() const;

    TorvQDTable* add(const QPoint& place, const QSize& size, const TDataSet& dataSet);
    void link(int from, int fromRow, int to, int toRow);
    void scrollTo(const QPoint& corner);

    /// Boxes around the first one, each joined with its neighbours by two links; the first has four
    /// links, one to each side. Boxes far out take what is missing to twice as many links as boxes.
    void fillAround(int count);

    /// 40 boxes of 20 rows in the view with 80 links between them, each box joined with the next
    /// ones. They overlap, as their rows fill more than the view. All others lie far below.
    void fillView(int count);

    TorvQueryBuilder builder;
    std::vector<TorvQDTable*> boxes;
};

/// The mouse at a view: pressed, moved to and fro with the button down, released in the end.
class Hand {
public:
    Hand(QWidget* view, const QPoint& at);
    ~Hand();
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;

    /// One move with the repaint of what it changed; the result is the way from the first place.
    QPoint move();

private:
    void send(QEvent::Type type, const QPoint& at, Qt::MouseButton button, Qt::MouseButtons down);

    QWidget* m_view;
    QPoint m_from;
    bool m_isAway = false;
};

/// The first box of a diagram in the hand.
class BoxDrag {
public:
    explicit BoxDrag(Diagram& diagram);

    /// One step; whether the box followed.
    [[nodiscard]] bool step();

private:
    TorvQDTable* m_box;
    Hand m_hand;
    QPoint m_start;
};

/// A view that is rendered again and again.
class RenderedView {
public:
    /// The view must have the size of the picture.
    explicit RenderedView(QWidget* view);
    void render();

    QImage picture;

private:
    QWidget* m_view;
};

}  // namespace bench
