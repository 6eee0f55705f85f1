// SPDX-License-Identifier: MIT
// Where the command that arranges a diagram puts its boxes, from plain data.
#include "support/TestTools.h"
#include "workarea/ORVQDArrange.h"

#include <QRect>

#include <random>
#include <set>

using orv::arrange;
using orv::ArrangeJoin;

namespace {

using Boxes = std::vector<QSize>;
using Joins = std::vector<ArrangeJoin>;

constexpr int captionPx = 20;  // all that is left of a collapsed box
constexpr int columnGapPx = 60;
constexpr int rowGapPx = 20;

struct Graph {
    Boxes boxes;
    Joins joins;
};

Boxes equalBoxes(int count) {
    return Boxes(std::size_t(count), QSize(110, 160));
}

/// 0 - 1 - 2 ...
Joins chain(int count) {
    Joins joins;
    for (int box = 1; box < count; ++box) joins.push_back({box - 1, box});
    return joins;
}

/// 0 with each of the others.
Joins star(int points) {
    Joins joins;
    for (int box = 1; box <= points; ++box) joins.push_back({0, box});
    return joins;
}

/// Boxes of many sizes, some collapsed; joins may repeat each other or be of a box with itself.
Graph randomGraph(unsigned seed, int boxes, int joins) {
    std::mt19937 random(seed);
    const auto below = [&](int bound) { return int(random() % unsigned(bound)); };
    Graph graph;
    for (int box = 0; box < boxes; ++box) {
        const int height = below(5) == 0 ? captionPx : captionPx + 17 * (1 + below(14));
        graph.boxes.push_back({60 + below(180), height});
    }
    for (int join = 0; join < joins; ++join) graph.joins.push_back({below(boxes), below(boxes)});
    return graph;
}

std::vector<QRect> arranged(const Boxes& boxes, const Joins& joins = {}) {
    const std::vector<QPoint> places = arrange(boxes, joins);
    std::vector<QRect> rects;
    for (std::size_t box = 0; box < places.size(); ++box) {
        rects.push_back({places[box], boxes[box]});
    }
    return rects;
}

QRect extent(const std::vector<QRect>& rects) {
    QRect all;
    for (const QRect& rect : rects) all |= rect;
    return all;
}

/// The pixels between two rectangles: beside each other (width) and above each other (height).
QSize gap(const QRect& one, const QRect& other) {
    return {std::max(one.left(), other.left()) - std::min(one.right(), other.right()) - 1,
            std::max(one.top(), other.top()) - std::min(one.bottom(), other.bottom()) - 1};
}

/// The first two boxes that are too near to each other; empty when there are none.
QString tooNear(const std::vector<QRect>& rects, const Joins& joins) {
    std::set<int> joined;
    for (const auto& [first, second] : joins) {
        if (first != second) joined.insert({first, second});
    }
    for (int one = 0; one < int(rects.size()); ++one) {
        for (int other = 0; other < one; ++other) {
            const QSize between = gap(rects[std::size_t(one)], rects[std::size_t(other)]);
            // Only beside boxes that are joined are there lines.
            const bool lines = joined.count(one) || joined.count(other);
            if (between.width() >= (lines ? columnGapPx : rowGapPx)) continue;
            if (between.height() >= rowGapPx) continue;
            return QStringLiteral("%1 and %2: %3, %4")
                .arg(one)
                .arg(other)
                .arg(between.width())
                .arg(between.height());
        }
    }
    return {};
}

/// How many pairs of lines between the middles of boxes cross. Lines that share a box do not.
int crossings(const std::vector<QRect>& rects, const Joins& joins) {
    const auto side = [](const QPoint& a, const QPoint& b, const QPoint& p) {
        const qint64 area =
            qint64(b.x() - a.x()) * (p.y() - a.y()) - qint64(b.y() - a.y()) * (p.x() - a.x());
        return area > 0 ? 1 : area < 0 ? -1 : 0;
    };
    int count = 0;
    for (std::size_t one = 0; one < joins.size(); ++one) {
        for (std::size_t other = 0; other < one; ++other) {
            const auto [i, j] = joins[one];
            const auto [k, l] = joins[other];
            if (std::set<int>{i, j, k, l}.size() < 4) continue;
            const auto at = [&](int box) { return rects[std::size_t(box)].center(); };
            if (side(at(i), at(j), at(k)) * side(at(i), at(j), at(l)) < 0 &&
                side(at(k), at(l), at(i)) * side(at(k), at(l), at(j)) < 0) {
                ++count;
            }
        }
    }
    return count;
}

}  // namespace

class ArrangeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void noBoxesHaveNoPlaces() { QVERIFY(arrange({}, {}).empty()); }

    void oneBoxGoesToTheCorner() {
        const std::vector<QPoint> corner = {{20, 20}};
        QCOMPARE(arrange({{100, 150}}, {}), corner);
        QCOMPARE(arrange({{100, 150}}, {{0, 0}}), corner);
    }

    void nothingOverlapsInRandomDiagrams() {
        std::mt19937 sizes(20);
        for (unsigned seed = 1; seed <= 200; ++seed) {
            const int boxes = 2 + int(sizes() % 70);
            const int joins = int(sizes() % unsigned(2 * boxes));
            const Graph graph = randomGraph(seed, boxes, joins);
            const std::vector<QRect> rects = arranged(graph.boxes, graph.joins);
            const QByteArray which = "seed " + QByteArray::number(seed);
            QCOMPARE(int(rects.size()), boxes);
            QVERIFY2(tooNear(rects, graph.joins).isEmpty(),
                     which + ": " + tooNear(rects, graph.joins).toUtf8());
            const QRect all = extent(rects);
            QVERIFY2(all.left() == 20 && all.top() >= 20, which);
            QVERIFY2(all.right() < 5000 && all.bottom() < 5000, which);
        }
    }

    void equalDiagramsAreArrangedAlike() {
        for (unsigned seed = 1; seed <= 20; ++seed) {
            const Graph graph = randomGraph(seed, 50, 60);
            QCOMPARE(arrange(graph.boxes, graph.joins), arrange(graph.boxes, graph.joins));
        }
    }

    void repeatedJoinsAndSelfJoinsChangeNothing() {
        const Joins plain = {{0, 1}, {1, 2}, {1, 3}, {3, 4}};
        const Joins more = {{0, 1}, {1, 1}, {1, 2}, {1, 0}, {1, 3}, {0, 1}, {3, 4}, {4, 4}, {3, 1}};
        QCOMPARE(arrange(equalBoxes(6), more), arrange(equalBoxes(6), plain));
    }

    void chainGoesFromLeftToRight() {
        const std::vector<QRect> rects = arranged(equalBoxes(5), chain(5));
        for (std::size_t box = 1; box < rects.size(); ++box) {
            QVERIFY(rects[box].left() >= rects[box - 1].right() + columnGapPx);
            QCOMPARE(rects[box].top(), rects[0].top());
        }
    }

    // 1 was created between the ends 2 and 0; of those, 0 came first.
    void chainBeginsWithTheEarlierOfItsEnds() {
        const std::vector<QRect> rects = arranged(equalBoxes(3), {{2, 1}, {1, 0}});
        QVERIFY(rects[0].right() < rects[1].left());
        QVERIFY(rects[1].right() < rects[2].left());
    }

    void longChainIsContinuedBelowWithinReach() {
        const Joins joins = chain(40);
        const std::vector<QRect> rects = arranged(equalBoxes(40), joins);
        QVERIFY(extent(rects).right() < 2500);
        QVERIFY(extent(rects).bottom() < 2500);
        for (const auto& [first, second] : joins) {
            const QSize between = gap(rects[std::size_t(first)], rects[std::size_t(second)]);
            QVERIFY2(between.width() <= columnGapPx && between.height() <= columnGapPx,
                     QByteArray::number(first));
        }
    }

    void smallStarIsOneColumnBesideItsCentre() {
        const std::vector<QRect> rects = arranged(equalBoxes(5), star(4));
        for (std::size_t box = 1; box < rects.size(); ++box) {
            QCOMPARE(rects[box].left(), rects[0].right() + 1 + columnGapPx);
            if (box > 1) QVERIFY(rects[box].top() > rects[box - 1].bottom());
        }
        // The centre is at half height.
        QVERIFY(std::abs(rects[0].center().y() - extent(rects).center().y()) <= 1);
    }

    void largeStarIsNoSingleColumn() {
        const std::vector<QRect> rects = arranged(equalBoxes(31), star(30));
        std::set<int> columns;
        for (const QRect& rect : rects) columns.insert(rect.left());
        QVERIFY(columns.size() > 3);
        const QRect all = extent(rects);
        QVERIFY(all.height() <= 2500);
        const double aspect = double(all.width()) / all.height();
        QVERIFY2(aspect > 0.75 && aspect < 3, QByteArray::number(aspect));
        // Half of its points lie on each side.
        const auto onTheLeft = std::count_if(rects.begin(), rects.end(), [&](const QRect& rect) {
            return rect.right() < rects[0].left();
        });
        QCOMPARE(int(onTheLeft), 15);
    }

    void circleIsClosedByNeighbouringColumns() {
        Joins joins = chain(6);
        joins.push_back({5, 0});
        const std::vector<QRect> rects = arranged(equalBoxes(6), joins);
        QCOMPARE(extent(rects).left(), rects[0].left());
        for (const auto& [first, second] : joins) {
            QVERIFY(gap(rects[std::size_t(first)], rects[std::size_t(second)]).width() <=
                    columnGapPx);
        }
        QCOMPARE(crossings(rects, joins), 0);
    }

    // In the order of creation all three lines would cross.
    void linesOfTwoLayersDoNotCross() {
        const Joins joins = {{0, 1}, {0, 2}, {0, 3}, {3, 4}, {2, 5}, {1, 6}};
        QCOMPARE(crossings(arranged(equalBoxes(7), joins), joins), 0);
    }

    // A comb of which the right side was created in another order than the left one:
    // 1-7, 1-5, 2-5, 2-8, 3-8, 3-6, 4-6 can be drawn without a crossing.
    void bipartiteDiagramIsDisentangled() {
        const Joins joins = {{0, 1}, {0, 3}, {0, 2}, {0, 4}, {1, 7}, {1, 5},
                             {2, 5}, {2, 8}, {3, 8}, {3, 6}, {4, 6}};
        QCOMPARE(crossings(arranged(equalBoxes(9), joins), joins), 0);
    }

    void treesHaveNoCrossings() {
        for (unsigned seed = 1; seed <= 20; ++seed) {
            std::mt19937 random(seed);
            Joins joins;
            for (int box = 1; box < 12; ++box) {
                joins.push_back({int(random() % unsigned(box)), box});
            }
            // Low boxes: no layer is so long that it must be split.
            const std::vector<QRect> rects = arranged(Boxes(12, QSize(100, captionPx)), joins);
            QVERIFY2(crossings(rects, joins) == 0, QByteArray::number(seed));
        }
    }

    void collapsedBoxesTakeTheirOwnHeightOnly() {
        Boxes boxes = equalBoxes(9);
        const int expanded = extent(arranged(boxes, star(8))).height();
        for (QSize& box : boxes) box.setHeight(captionPx);
        const std::vector<QRect> rects = arranged(boxes, star(8));
        QVERIFY(tooNear(rects, star(8)).isEmpty());
        QVERIFY(extent(rects).height() < expanded);
        // 8 captions and 7 gaps.
        QVERIFY(extent(rects).height() <= 8 * captionPx + 7 * 30);
    }

    void boxesWithoutJoinsComeLastInAGrid() {
        const std::vector<QRect> rects = arranged(equalBoxes(13), {{3, 4}, {7, 8}, {4, 5}});
        int bottom = 0;
        for (const std::size_t box : {3U, 4U, 5U, 7U, 8U}) {
            bottom = std::max(bottom, rects[box].bottom());
        }
        const std::vector<std::size_t> free = {0, 1, 2, 6, 9, 10, 11, 12};
        for (std::size_t place = 0; place < free.size(); ++place) {
            const QRect& rect = rects[free[place]];
            QVERIFY(rect.top() > bottom);
            if (place == 0) continue;
            // By creation: to the right of the one before, or at the beginning of the next row.
            const QRect& before = rects[free[place - 1]];
            QVERIFY(rect.top() == before.top() ? rect.left() > before.right()
                                               : rect.left() == 20 && rect.top() > before.bottom());
        }
    }

    void manyBoxesStayWithinTheDiagram() {
        for (const int joins : {0, 200, 499, 1000}) {
            Graph graph = randomGraph(unsigned(joins) + 1, 500, joins);
            for (QSize& box : graph.boxes) box.setWidth(std::min(box.width(), 120));
            const QRect all = extent(arranged(graph.boxes, graph.joins));
            QVERIFY2(all.right() < 5000, QByteArray::number(joins));
            QVERIFY2(all.bottom() < 5000, QByteArray::number(joins));
        }
    }

    // There are more boxes than 5000 x 5000 pixels hold.
    void tooManyBoxesMakeItHigherNotBroader() {
        const Graph graph = randomGraph(7, 2000, 3000);
        const std::vector<QRect> rects = arranged(graph.boxes, graph.joins);
        QVERIFY(extent(rects).right() < 5000);
        QVERIFY(extent(rects).bottom() > 5000);
        QVERIFY(tooNear(rects, graph.joins).isEmpty());
    }

    void wholePictureIsAboutAsBroadAsAWindow() {
        for (unsigned seed = 1; seed <= 20; ++seed) {
            const Graph graph = randomGraph(seed, 60, 50);
            const QRect all = extent(arranged(graph.boxes, graph.joins));
            const double aspect = double(all.width()) / all.height();
            QVERIFY2(aspect > 0.8 && aspect < 2.5, QByteArray::number(aspect));
        }
    }
};

QTEST_GUILESS_MAIN(ArrangeTest)
#include "tst_arrange.moc"
