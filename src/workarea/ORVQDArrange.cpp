// SPDX-License-Identifier: MIT
#include "workarea/ORVQDArrange_p.h"

#include <algorithm>
#include <limits>

namespace orv {

namespace arranging {

double windowFor(int width, int height) {
    const double excess = width > usablePx ? 10.0 * width : 0.0;
    return std::max(width / aspect, double(height)) + excess;
}

Indices Picture::reachedFrom(int start) {
    Indices reached = {start};
    node(start).distance = 0;
    for (std::size_t next = 0; next < reached.size(); ++next) {
        for (const int neighbour : neighboursOf(reached[next])) {
            if (node(neighbour).distance >= 0) continue;
            node(neighbour).distance = 0;
            reached.push_back(neighbour);
        }
    }
    return reached;
}

int Picture::heightOf(const Indices& stacked) const {
    int height = stacked.empty() ? 0 : -rowGapPx;
    for (const int box : stacked) height += size(box).height() + rowGapPx;
    return height;
}

namespace {

constexpr int gridGapPx = 30;  // no lines run between boxes that nothing joins

/// The neighbours of each box, each once, in the order of the joins.
std::vector<Indices> neighboursOf(std::size_t boxes, const std::vector<ArrangeJoin>& joins) {
    std::vector<std::pair<ArrangeJoin, int>> keyed;
    for (int index = 0; index < int(joins.size()); ++index) {
        const auto [first, second] = joins[std::size_t(index)];
        if (first == second) continue;
        keyed.push_back({std::minmax(first, second), index});
    }
    std::sort(keyed.begin(), keyed.end());
    Indices kept;
    for (std::size_t index = 0; index < keyed.size(); ++index) {
        if (index && keyed[index].first == keyed[index - 1].first) continue;
        kept.push_back(keyed[index].second);
    }
    std::sort(kept.begin(), kept.end());
    std::vector<Indices> neighbours(boxes);
    for (const int index : kept) {
        const auto [first, second] = joins[std::size_t(index)];
        neighbours[std::size_t(first)].push_back(second);
        neighbours[std::size_t(second)].push_back(first);
    }
    return neighbours;
}

/// Finds room for rectangles below an outline that starts flat: each goes as high as it can, then
/// as far left.
class Outline {
public:
    explicit Outline(int breadth) : m_steps{{0, 0}}, m_breadth(breadth) {}

    QPoint add(const QSize& size) {
        std::size_t best = 0;
        int bestTop = std::numeric_limits<int>::max();
        for (std::size_t index = 0; index < m_steps.size(); ++index) {
            if (index && m_steps[index].left + size.width() > m_breadth) break;
            const int top = topOver(index, size.width());
            if (top >= bestTop) continue;
            bestTop = top;
            best = index;
        }
        const int left = m_steps[best].left;
        const int right = left + size.width() + columnGapPx;
        auto end = m_steps.begin() + std::ptrdiff_t(best);
        int topAtEnd = 0;
        while (end != m_steps.end() && end->left < right) topAtEnd = (end++)->top;
        const bool isEdge = end == m_steps.end() || end->left > right;
        auto at = m_steps.erase(m_steps.begin() + std::ptrdiff_t(best), end);
        at = m_steps.insert(at, {left, bestTop + size.height() + bandGapPx});
        if (isEdge && right < m_breadth) m_steps.insert(at + 1, {right, topAtEnd});
        m_width = std::max(m_width, left + size.width());
        m_height = std::max(m_height, bestTop + size.height());
        return {left, bestTop};
    }

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }

private:
    struct Step {
        int left;
        int top;
    };

    [[nodiscard]] int topOver(std::size_t index, int width) const {
        const int right = m_steps[index].left + width + columnGapPx;
        int top = 0;
        for (; index < m_steps.size() && m_steps[index].left < right; ++index) {
            top = std::max(top, m_steps[index].top);
        }
        return top;
    }

    std::vector<Step> m_steps;
    int m_breadth;
    int m_width = 0;
    int m_height = 0;
};

/// Boxes that nothing joins, in columns of one width: each goes below what is highest.
struct Grid {
    std::vector<QPoint> places;
    QSize size;
};

Grid gridOf(const Picture& picture, const Indices& boxes, int breadth) {
    Grid grid;
    if (boxes.empty()) return grid;
    int width = 0;
    for (const int box : boxes) width = std::max(width, picture.size(box).width());
    const int fitting = std::max(1, (breadth + gridGapPx) / (width + gridGapPx));
    Indices bottoms(std::size_t(std::min(fitting, int(boxes.size()))));
    for (const int box : boxes) {
        const auto column = std::min_element(bottoms.begin(), bottoms.end());
        const int left = int(column - bottoms.begin()) * (width + gridGapPx);
        grid.places.push_back({left, *column});
        const QSize own = picture.size(box);
        grid.size = grid.size.expandedTo({left + own.width(), *column + own.height()});
        *column += own.height() + gridGapPx;
    }
    return grid;
}

/// Everything side by side and below each other in a given breadth.
struct Packing {
    std::vector<QPoint> components;
    Grid grid;
    int gridTop = 0;
    double window = std::numeric_limits<double>::max();
};

Packing pack(const Picture& picture, const std::vector<Component>& components, const Indices& free,
             int breadth) {
    Packing packing;
    Outline outline(breadth);
    for (const Component& component : components) {
        packing.components.push_back(outline.add(component.size()));
    }
    packing.grid = gridOf(picture, free, breadth);
    packing.gridTop = components.empty() ? 0 : outline.height() + bandGapPx;
    const int height =
        free.empty() ? outline.height() : packing.gridTop + packing.grid.size.height();
    packing.window = windowFor(std::max(outline.width(), packing.grid.size.width()), height);
    return packing;
}

/// Of some breadths the one that fits a window best.
Packing pack(const Picture& picture, const std::vector<Component>& components,
             const Indices& free) {
    int breadth = 1;
    for (const Component& component : components) {
        breadth = std::max(breadth, component.size().width());
    }
    for (const int box : free) breadth = std::max(breadth, picture.size(box).width());
    Packing best;
    while (true) {
        Packing packing = pack(picture, components, free, breadth);
        if (packing.window < best.window) best = std::move(packing);
        if (breadth >= usablePx) return best;
        breadth = std::min(breadth + breadth / 6 + 10, usablePx);
    }
}

/// The boxes of each connected part, by creation.
std::vector<Indices> connected(Picture& picture) {
    std::vector<Indices> parts;
    for (int start = 0; start < int(picture.boxes.size()); ++start) {
        if (picture.node(start).distance >= 0) continue;
        parts.push_back(picture.reachedFrom(start));
        std::sort(parts.back().begin(), parts.back().end());
    }
    return parts;
}

}  // namespace

}  // namespace arranging

std::vector<QPoint> arrange(const std::vector<QSize>& boxes,
                            const std::vector<ArrangeJoin>& joins) {
    using namespace arranging;
    Picture picture{boxes, neighboursOf(boxes.size(), joins), std::vector<Node>(boxes.size()),
                    std::vector<QPoint>(boxes.size())};
    std::vector<Component> components;
    Indices free;
    for (Indices& part : connected(picture)) {
        if (part.size() > 1) {
            components.emplace_back(picture, std::move(part));
        } else {
            free.push_back(part.front());
        }
    }
    std::stable_sort(components.begin(), components.end(),
                     [](const Component& one, const Component& other) {
                         return one.size().height() > other.size().height();
                     });

    const Packing packing = pack(picture, components, free);
    const QPoint corner(marginPx, marginPx);
    for (std::size_t index = 0; index < components.size(); ++index) {
        for (const int box : components[index].boxes()) {
            picture.places[std::size_t(box)] += corner + packing.components[index];
        }
    }
    for (std::size_t index = 0; index < free.size(); ++index) {
        picture.places[std::size_t(free[index])] =
            corner + QPoint(0, packing.gridTop) + packing.grid.places[index];
    }
    return std::move(picture.places);
}

}  // namespace orv
