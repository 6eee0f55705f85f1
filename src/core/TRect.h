// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>

#include <algorithm>

/// A rectangle in integer pixels whose right and bottom edges are exclusive: a rectangle of width
/// 100 at 10 has Left 10 and Right 110. All geometry of the diagram is computed with it, because
/// QRect::right() and QRect::bottom() are off by one in such computations.
struct TRect {
    int Left = 0;    ///< pixels, like the others
    int Top = 0;     ///< the upper edge
    int Right = 0;   ///< exclusive
    int Bottom = 0;  ///< exclusive

    /// Pixels from edge to edge; negative when the edges are the wrong way round.
    [[nodiscard]] constexpr int width() const { return Right - Left; }
    [[nodiscard]] constexpr int height() const { return Bottom - Top; }
    /// Whether no pixel is inside.
    [[nodiscard]] constexpr bool isEmpty() const { return Right <= Left || Bottom <= Top; }

    /// Whether the point lies inside; points on the right and bottom edges do not.
    [[nodiscard]] constexpr bool contains(const QPoint& point) const {
        return point.x() >= Left && point.x() < Right && point.y() >= Top && point.y() < Bottom;
    }

    /// Whether the two share at least one pixel.
    [[nodiscard]] constexpr bool intersects(const TRect& other) const {
        return Left < other.Right && other.Left < Right && Top < other.Bottom && other.Top < Bottom;
    }

    /// The same rectangle moved by (dx, dy).
    [[nodiscard]] constexpr TRect translated(int dx, int dy) const {
        return {Left + dx, Top + dy, Right + dx, Bottom + dy};
    }

    /// The smallest rectangle that holds both.
    [[nodiscard]] TRect united(const TRect& other) const {
        return {std::min(Left, other.Left), std::min(Top, other.Top), std::max(Right, other.Right),
                std::max(Bottom, other.Bottom)};
    }

    /// The same rectangle as Qt has it, and back.
    [[nodiscard]] QRect toQRect() const { return {Left, Top, width(), height()}; }
    [[nodiscard]] static TRect fromQRect(const QRect& rect) {
        return {rect.x(), rect.y(), rect.x() + rect.width(), rect.y() + rect.height()};
    }

    /// Equal when all edges are.
    friend constexpr bool operator==(const TRect&, const TRect&) = default;
};
