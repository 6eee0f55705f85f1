// SPDX-License-Identifier: MIT
// The layout of tables that joins connect.
#include "workarea/ORVQDArrange_p.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace orv::arranging {

namespace {

constexpr int straightPx = 1600;    // up to here columns are not continued below
constexpr int lowestLimitPx = 700;  // a column as high as a window is not split
constexpr int oneSidedPx = 900;     // up to here all layers stand on the right of the root
constexpr int sweeps = 8;
constexpr int alignments = 3;

}  // namespace

Component::Component(Picture& picture, Indices boxes)
    : m_picture(&picture), m_boxes(std::move(boxes)) {
    makeLayers();
    orderLayers();
    makeBands();
    for (const Band& band : m_bands) alignBand(band);
    place();
}

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

}  // namespace orv::arranging
