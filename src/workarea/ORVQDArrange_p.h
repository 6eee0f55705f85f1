// SPDX-License-Identifier: MIT
#pragma once

#include "workarea/ORVQDArrange.h"

#include <cstdint>

namespace orv::arranging {

inline constexpr int marginPx = 20;
inline constexpr int columnGapPx = 60;  // two stubs with their markers, and a line that can be seen
inline constexpr int rowGapPx = 28;
inline constexpr int bandGapPx = 60;
inline constexpr int extentPx = 5000;
inline constexpr int usablePx = extentPx - 2 * marginPx;
inline constexpr double aspect = 1.5;

using Indices = std::vector<int>;

/// How large a part of the picture is felt to be: the side of the window that shows all of it.
[[nodiscard]] double windowFor(int width, int height);

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
    [[nodiscard]] Indices reachedFrom(int start);

    /// The height of boxes above each other.
    [[nodiscard]] int heightOf(const Indices& stacked) const;
};

/// One connected part of the diagram. It places its boxes relative to its own corner.
class Component {
public:
    Component(Picture& picture, Indices boxes);

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

}  // namespace orv::arranging
