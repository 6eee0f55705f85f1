// SPDX-License-Identifier: MIT
#include "workarea/ORVQDArrange.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>

namespace orv {

namespace {

constexpr int marginPx = 20;
constexpr int columnGapPx = 60;  // two stubs with their markers, and a line that can be seen
constexpr int rowGapPx = 28;
constexpr int bandGapPx = 60;
constexpr int gridGapPx = 30;  // no lines run between boxes that nothing joins
constexpr int extentPx = 5000;
constexpr int usablePx = extentPx - 2 * marginPx;
constexpr double aspect = 1.5;
constexpr int straightPx = 1600;    // up to here columns are not continued below
constexpr int lowestLimitPx = 700;  // a column as high as a window is not split
constexpr int oneSidedPx = 900;     // up to here all layers stand on the right of the root
constexpr int sweeps = 8;
constexpr int alignments = 3;

using Indices = std::vector<int>;

/// How large a part of the picture is felt to be: the side of the window that shows all of it.
double windowFor(int width, int height) {
    const double excess = width > usablePx ? 10.0 * width : 0.0;
    return std::max(width / aspect, double(height)) + excess;
}

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

/// A column of boxes from top to bottom; `left` is relative to its component.
struct Column {
    Indices boxes;
    int width = 0;
    int height = 0;
    int left = 0;
};

/// Columns beside each other; those that would make the picture too broad begin another band below.
struct Band {
    std::vector<Column> columns;
    int width = 0;
    int height = 0;
};

/// What belongs to one box while its component is laid out.
struct Node {
    int distance = -1;  // from the root; -1 until the box is found
    int layer = -1;
    bool isLeft = false;  // of the root
    int rank = 0;         // in its layer
    double centre = 0;    // while boxes are ordered, of its layer; then of its band
    int column = -1;
    int band = -1;
};

/// What the components share: the input, and notes on each box.
struct Picture {
    const std::vector<QSize>& boxes;
    std::vector<Indices> neighbours;
    std::vector<Node> nodes;
    std::vector<QPoint> places;

    [[nodiscard]] const QSize& size(int box) const { return boxes[std::size_t(box)]; }
    [[nodiscard]] const Indices& neighboursOf(int box) const {
        return neighbours[std::size_t(box)];
    }
    [[nodiscard]] Node& node(int box) { return nodes[std::size_t(box)]; }

    /// The boxes that were not found yet and are joined with this one, directly or by others.
    [[nodiscard]] Indices reachedFrom(int start) {
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

    /// The height of boxes above each other.
    [[nodiscard]] int heightOf(const Indices& stacked) const {
        int height = stacked.empty() ? 0 : -rowGapPx;
        for (const int box : stacked) height += size(box).height() + rowGapPx;
        return height;
    }
};

/// One connected part of the diagram. It places its boxes relative to its own corner.
class Component {
public:
    Component(Picture& picture, Indices boxes) : m_picture(&picture), m_boxes(std::move(boxes)) {
        makeLayers();
        orderLayers();
        makeBands();
        for (const Band& band : m_bands) alignBand(band);
        place();
    }

    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] const Indices& boxes() const { return m_boxes; }

private:
    void makeLayers();
    [[nodiscard]] int root() const;
    void layOutFrom(int root);
    void chooseSides(int root);

    void orderLayers();
    void stack(const Indices& layer);
    void sortLayer(Indices& layer, int neighbourLayer);
    [[nodiscard]] std::int64_t crossings();

    void makeBands();
    [[nodiscard]] std::vector<Column> split(const Indices& layer, int limit) const;
    [[nodiscard]] std::vector<Band> bandsFor(int limit, int breadth) const;
    [[nodiscard]] static QSize sizeOf(const std::vector<Band>& bands);
    [[nodiscard]] double effortOf(const std::vector<Band>& bands) const;

    enum class Towards { Left, Right, Both };
    void alignBand(const Band& band);
    void alignColumn(const Column& column, int height, Towards towards);
    [[nodiscard]] double wantedCentre(int box, Towards towards) const;
    void place();

    [[nodiscard]] Node& node(int box) const { return m_picture->node(box); }
    [[nodiscard]] int heightOf(int box) const { return m_picture->size(box).height(); }

    Picture* m_picture;
    Indices m_boxes;  // in the order of creation
    std::vector<Indices> m_layers;
    std::vector<Band> m_bands;
    QSize m_size;
};

// --- layers ---

// What most joins meet at. A line of boxes begins at one of its ends, a ring with its first box.
int Component::root() const {
    const auto degree = [&](int box) { return int(m_picture->neighboursOf(box).size()); };
    const auto busiest = std::max_element(m_boxes.begin(), m_boxes.end(), [&](int one, int other) {
        return degree(one) < degree(other);
    });
    if (degree(*busiest) > 2) return *busiest;
    const auto end =
        std::find_if(m_boxes.begin(), m_boxes.end(), [&](int box) { return degree(box) == 1; });
    return end == m_boxes.end() ? m_boxes.front() : *end;
}

// The layer of a box is its distance from the root. Where that makes a long layer, what only the
// root holds together is shared out to both of its sides.
void Component::makeLayers() {
    const int first = root();
    layOutFrom(first);
    const bool isLong = std::any_of(m_layers.begin(), m_layers.end(), [&](const Indices& layer) {
        return m_picture->heightOf(layer) > oneSidedPx;
    });
    if (!isLong) return;
    chooseSides(first);
    layOutFrom(first);
}

void Component::layOutFrom(int root) {
    for (const int box : m_boxes) node(box).distance = -1;
    std::vector<Indices> left;
    std::vector<Indices> right;
    Indices found = {root};
    node(root).distance = 0;
    for (std::size_t next = 0; next < found.size(); ++next) {
        const Node& own = node(found[next]);
        if (own.distance > 0) {
            std::vector<Indices>& layers = own.isLeft ? left : right;
            layers.resize(std::max(layers.size(), std::size_t(own.distance)));
            layers[std::size_t(own.distance - 1)].push_back(found[next]);
        }
        for (const int neighbour : m_picture->neighboursOf(found[next])) {
            if (node(neighbour).distance >= 0) continue;
            node(neighbour).distance = own.distance + 1;
            found.push_back(neighbour);
        }
    }
    m_layers.assign(left.rbegin(), left.rend());
    m_layers.push_back({root});
    m_layers.insert(m_layers.end(), right.begin(), right.end());
    for (int layer = 0; layer < int(m_layers.size()); ++layer) {
        for (const int box : m_layers[std::size_t(layer)]) node(box).layer = layer;
    }
}

// The parts into which the component falls without its root, each to the side that is lower so far.
void Component::chooseSides(int root) {
    for (const int box : m_boxes) node(box).distance = -1;
    node(root).distance = 0;
    int rightHeight = 0;
    int leftHeight = 0;
    for (const int start : m_picture->neighboursOf(root)) {
        if (node(start).distance >= 0) continue;
        const Indices part = m_picture->reachedFrom(start);
        const bool isLeft = leftHeight < rightHeight;
        (isLeft ? leftHeight : rightHeight) += m_picture->heightOf(part) + rowGapPx;
        for (const int box : part) node(box).isLeft = isLeft;
    }
}

// --- the order within layers ---

// Sweeps there and back; the order with the fewest crossings that was seen is kept.
void Component::orderLayers() {
    for (const Indices& layer : m_layers) stack(layer);
    std::vector<Indices> best = m_layers;
    std::int64_t fewest = crossings();
    for (int sweep = 0; sweep < sweeps && fewest > 0; ++sweep) {
        const int count = int(m_layers.size());
        for (int step = 1; step < count; ++step) {
            const bool forth = sweep % 2 == 0;
            const int layer = forth ? step : count - 1 - step;
            sortLayer(m_layers[std::size_t(layer)], forth ? layer - 1 : layer + 1);
        }
        const std::int64_t now = crossings();
        if (now >= fewest) continue;
        fewest = now;
        best = m_layers;
    }
    m_layers = std::move(best);
}

void Component::stack(const Indices& layer) {
    double top = -m_picture->heightOf(layer) / 2.0;
    for (const int box : layer) {
        node(box).centre = top + heightOf(box) / 2.0;
        top += heightOf(box) + rowGapPx;
    }
}

// By the mean height of what the boxes are joined with in a neighbouring layer.
void Component::sortLayer(Indices& layer, int neighbourLayer) {
    std::vector<std::pair<double, int>> keyed;
    keyed.reserve(layer.size());
    for (const int box : layer) {
        double sum = 0;
        int count = 0;
        for (const int neighbour : m_picture->neighboursOf(box)) {
            const Node& other = node(neighbour);
            if (other.layer != neighbourLayer) continue;
            sum += other.centre;
            ++count;
        }
        keyed.push_back({count ? sum / count : node(box).centre, box});
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    std::transform(keyed.begin(), keyed.end(), layer.begin(),
                   [](const auto& entry) { return entry.second; });
    stack(layer);
}

// Two lines between the same two layers cross when their ends are in opposite orders.
std::int64_t Component::crossings() {
    std::int64_t count = 0;
    for (std::size_t layer = 1; layer < m_layers.size(); ++layer) {
        const Indices& right = m_layers[layer];
        for (int place = 0; place < int(right.size()); ++place) {
            node(right[std::size_t(place)]).rank = place;
        }
        Indices counts(right.size() + 1);  // a binary indexed tree over the places on the right
        int passed = 0;
        for (const int box : m_layers[layer - 1]) {
            Indices ends;
            for (const int neighbour : m_picture->neighboursOf(box)) {
                if (node(neighbour).layer == int(layer)) {
                    ends.push_back(node(neighbour).rank + 1);
                }
            }
            for (const int end : ends) {
                int above = 0;
                for (int at = end; at > 0; at -= at & -at) above += counts[std::size_t(at)];
                count += passed - above;
            }
            for (const int end : ends) {
                for (int at = end; at < int(counts.size()); at += at & -at) {
                    ++counts[std::size_t(at)];
                }
            }
            passed += int(ends.size());
        }
    }
    return count;
}

// --- columns ---

// A layer as columns of about at most `limit`. Each box goes where there is the most room, so that
// what lies beside each other in the columns lay beside each other in the layer.
std::vector<Column> Component::split(const Indices& layer, int limit) const {
    const int height = m_picture->heightOf(layer) + rowGapPx;
    const int count = std::min((height - 1) / (limit + rowGapPx) + 1, int(layer.size()));
    std::vector<Column> columns{std::size_t(count)};
    std::set<std::pair<int, int>> byHeight;
    for (int index = 0; index < count; ++index) byHeight.insert({0, index});
    for (const int box : layer) {
        auto lowest = byHeight.extract(byHeight.begin());
        Column& column = columns[std::size_t(lowest.value().second)];
        column.boxes.push_back(box);
        column.width = std::max(column.width, m_picture->size(box).width());
        column.height += heightOf(box) + rowGapPx;
        lowest.value().first = column.height;
        byHeight.insert(std::move(lowest));
    }
    for (Column& column : columns) column.height -= rowGapPx;
    return columns;
}

std::vector<Band> Component::bandsFor(int limit, int breadth) const {
    std::vector<Band> bands(1);
    for (const Indices& layer : m_layers) {
        for (Column& column : split(layer, limit)) {
            if (bands.back().width > 0) {
                if (bands.back().width + columnGapPx + column.width > breadth) {
                    bands.emplace_back();
                } else {
                    bands.back().width += columnGapPx;
                }
            }
            Band& band = bands.back();
            column.left = band.width;
            band.width += column.width;
            band.height = std::max(band.height, column.height);
            band.columns.push_back(std::move(column));
        }
    }
    return bands;
}

QSize Component::sizeOf(const std::vector<Band>& bands) {
    QSize size(0, -bandGapPx);
    for (const Band& band : bands) {
        size.rwidth() = std::max(size.width(), band.width);
        size.rheight() += band.height + bandGapPx;
    }
    return size;
}

// Lines run over boxes where a layer has several columns, and far where there are several bands:
// the picture must become so much smaller by it.
double Component::effortOf(const std::vector<Band>& bands) const {
    double columns = 0;
    for (const Band& band : bands) columns += double(band.columns.size());
    return 2.0 - double(m_layers.size()) / columns + 0.45 * double(bands.size() - 1);
}

// The heights of columns and breadths of bands are those that fit a window best.
void Component::makeBands() {
    double area = 0;
    for (const int box : m_boxes) {
        area += double(m_picture->size(box).width() + columnGapPx) * (heightOf(box) + rowGapPx);
    }
    const int folded = std::clamp(int(std::sqrt(area * aspect) * 1.1), straightPx, usablePx);
    double best = std::numeric_limits<double>::max();
    for (int limit = usablePx; limit >= lowestLimitPx; limit = limit * 5 / 6) {
        for (const int breadth : {usablePx, std::min(folded * 3 / 2, usablePx), folded}) {
            std::vector<Band> bands = bandsFor(limit, breadth);
            const QSize size = sizeOf(bands);
            const double window = windowFor(size.width(), size.height()) * effortOf(bands);
            if (window >= best) continue;
            best = window;
            m_size = size;
            m_bands = std::move(bands);
        }
    }
    // Every other band runs back, so that it begins below the end of the one before.
    for (std::size_t index = 0; index < m_bands.size(); ++index) {
        for (std::size_t number = 0; number < m_bands[index].columns.size(); ++number) {
            Column& column = m_bands[index].columns[number];
            if (index % 2 == 1) column.left = m_size.width() - column.left - column.width;
            for (const int box : column.boxes) {
                node(box).band = int(index);
                node(box).column = int(number);
            }
        }
    }
}

// --- heights ---

void Component::alignBand(const Band& band) {
    for (const Column& column : band.columns) stack(column.boxes);
    const auto& columns = band.columns;
    for (int round = 0; round < alignments; ++round) {
        for (auto column = columns.begin(); column != columns.end(); ++column) {
            alignColumn(*column, band.height, Towards::Left);
        }
        for (auto column = columns.rbegin(); column != columns.rend(); ++column) {
            alignColumn(*column, band.height, Towards::Right);
        }
    }
    for (const Column& column : columns) alignColumn(column, band.height, Towards::Both);
}

double Component::wantedCentre(int box, Towards towards) const {
    const Node& own = node(box);
    double sum = 0;
    int count = 0;
    for (const int neighbour : m_picture->neighboursOf(box)) {
        const Node& other = node(neighbour);
        if (other.band != own.band || other.column == own.column) continue;
        const bool isLeft = other.column < own.column;
        if (towards != Towards::Both && isLeft != (towards == Towards::Left)) continue;
        sum += other.centre;
        ++count;
    }
    return count ? sum / count : own.centre;
}

// As near as possible to where the boxes want to be, in their order and inside the band: boxes that
// would overlap become a group that lies where its members want to be on the average.
void Component::alignColumn(const Column& column, int height, Towards towards) {
    struct Group {
        double sum = 0;  // of the tops that are wanted for the first box of the column
        int count = 0;
        [[nodiscard]] double top() const { return sum / count; }
    };
    std::vector<Group> groups;
    int above = 0;
    for (const int box : column.boxes) {
        const int own = heightOf(box);
        Group group{wantedCentre(box, towards) - own / 2.0 - above, 1};
        while (!groups.empty() && groups.back().top() >= group.top()) {
            group.sum += groups.back().sum;
            group.count += groups.back().count;
            groups.pop_back();
        }
        groups.push_back(group);
        above += own + rowGapPx;
    }
    const int lowest = -(height / 2);
    const int highest = std::max(lowest, lowest + height - column.height);
    above = 0;
    std::size_t index = 0;
    for (const Group& group : groups) {
        const int top = std::clamp(int(std::floor(group.top())), lowest, highest);
        for (int member = 0; member < group.count; ++member) {
            const int box = column.boxes[index++];
            const int own = heightOf(box);
            node(box).centre = top + above + own / 2.0;
            above += own + rowGapPx;
        }
    }
}

void Component::place() {
    int top = 0;
    for (const Band& band : m_bands) {
        for (const Column& column : band.columns) {
            for (const int box : column.boxes) {
                const double boxTop = node(box).centre - heightOf(box) / 2.0;
                m_picture->places[std::size_t(box)] = {column.left,
                                                       top + band.height / 2 + int(boxTop)};
            }
        }
        top += band.height + bandGapPx;
    }
}

// --- all together ---

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

std::vector<QPoint> arrange(const std::vector<QSize>& boxes,
                            const std::vector<ArrangeJoin>& joins) {
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
