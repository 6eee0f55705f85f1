// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>

#include <algorithm>

/// A rectangle in integer pixels whose right and bottom edges are exclusive: a rectangle of width
/// 100 at 10 has Left 10 and Right 110. All geometry of the diagram is computed with it, because
/// QRect::right() and QRect::bottom() are off by one in such computations.
struct TRect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;

    [[nodiscard]] constexpr int width() const { return Right - Left; }
    [[nodiscard]] constexpr int height() const { return Bottom - Top; }
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

    [[nodiscard]] QRect toQRect() const { return {Left, Top, width(), height()}; }
    [[nodiscard]] static TRect fromQRect(const QRect& rect) {
        return {rect.x(), rect.y(), rect.x() + rect.width(), rect.y() + rect.height()};
    }

    friend constexpr bool operator==(const TRect&, const TRect&) = default;
};
