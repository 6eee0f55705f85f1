// SPDX-License-Identifier: MIT
// How a link looks, pixel by pixel, and whether the region that it claims holds all of it.
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"

#include <QImage>

using orvtest::FakeCanvas;

namespace {

// Middle of the first row below the top of its box.
constexpr int firstRowPx = 20 + 1 + 8;
const QSize imageSize(800, 600);

/// Two boxes 100 pixels wide, and a link between their first rows.
struct Diagram {
    Diagram(const QPoint& at1, const QPoint& at2, const std::vector<QPoint>& bends = {}) {
        place(first, at1);
        place(second, at2);
        link = std::make_unique<TorvQDLink>(&canvas, &join, first.Items[0].get(),
                                            second.Items[0].get());
        if (!bends.empty()) link->setBendPoints(bends);
    }

    static void place(TorvQDTable& box, const QPoint& at) {
        box.Left = at.x();
        box.Top = at.y();
    }
    [[nodiscard]] QImage paint() {
        QImage image(imageSize, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        link->Paint(painter);
        return image;
    }

    FakeCanvas canvas;
    TDataSet fields = orvtest::numberedFields(10);
    TorvQDTable first{&canvas, &fields, "CUSTOMER"};
    TorvQDTable second{&canvas, &fields, "ORDERS"};
    TorvQDJoin join{&canvas, &first, &second};
    std::unique_ptr<TorvQDLink> link;
};

bool isPainted(const QImage& image, int x, int y) {
    return image.pixel(x, y) != 0xffffffffU;
}

bool isPainted(const QImage& image, const QPoint& at) {
    return isPainted(image, at.x(), at.y());
}

int paintedInColumn(const QImage& image, int x, int from, int to) {
    int count = 0;
    for (int y = from; y <= to; ++y) count += isPainted(image, x, y) ? 1 : 0;
    return count;
}

/// What of a marker or circle around the place stands off the line: a selected line takes the two
/// rows from one above the place on. Stubs are 10 pixels long, and the place is where one begins.
QRect paintedBeside(const QImage& image, const QPoint& place) {
    QRect bounds;
    for (int y = place.y() - 5; y <= place.y() + 5; ++y) {
        if (y == place.y() - 1 || y == place.y()) continue;
        for (int x = place.x() - 8; x <= place.x() + 8; ++x) {
            if (isPainted(image, x, y)) bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

/// A circle of six pixels whose left edge, and the row below whose middle, is given.
QRect circle(int left, int middle) {
    return {left, middle - 3, 6, 6};
}

bool includesStart(TKindOfJoin kind) {
    return kind == klLOuterJoin || kind == klFOuterJoin;
}

bool includesEnd(TKindOfJoin kind) {
    return kind == klROuterJoin || kind == klFOuterJoin;
}

/// Why there is no such marker; empty when there is one. It lies right or left of the line's end.
QString wrongMarker(const QImage& image, const QPoint& end, bool right, bool isTriangle) {
    const QRect beside = paintedBeside(image, end);
    const auto row = [&](int dy, int from, int to) {
        QString pixels;
        for (int dx = from; dx <= to; ++dx) {
            pixels += isPainted(image, end.x() + (right ? dx : -dx), end.y() + dy) ? '#' : '.';
        }
        return pixels;
    };
    if (!isTriangle) {
        if (beside != circle(right ? end.x() : end.x() - 6, end.y()))
            return "no circle of 6 pixels";
        // Its corners are cut off, its sides are not; outside, nothing.
        const int nearest = right ? 0 : 1;
        if (row(-3, nearest, nearest).contains('#')) return "corner of the circle";
        if (row(2, nearest + 5, nearest + 5).contains('#')) return "corner of the circle";
        if (row(-1, nearest, nearest + 5).contains('.')) return "circle is not filled";
        if (row(0, nearest, nearest + 5).contains('.')) return "circle is not filled";
        if (row(0, -8, nearest - 1).contains('#')) return "circle lies on the box";
        return {};
    }
    if (beside.top() != end.y() - 3 || beside.bottom() != end.y() + 3) return "height";
    const int base = end.x() + (right ? 6 : -6);
    if ((right ? beside.right() : beside.left()) != base) return "base";
    if (paintedInColumn(image, base, end.y() - 8, end.y() + 8) != 7) return "corners";
    if (row(0, 0, 6).contains('.')) return "tip";
    if (row(0, -8, -1).contains('#')) return "more than the tip lies on the edge";
    // It gets narrower towards its tip, alike above and below.
    for (int dy = 1; dy <= 3; ++dy) {
        const bool isInLine = dy == 1 && row(-dy, 8, 8) == row(0, 8, 8);
        if (!isInLine && row(dy, 0, 6) != row(-dy, 0, 6)) return "not the same above and below";
        if (row(dy, 0, 6).count('#') >= row(dy - 1, 0, 6).count('#')) return "no slope";
    }
    return {};
}

}  // namespace

class LinkPaintTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void markersLieBesideTheBoxes_data() {
        QTest::addColumn<QPoint>("at1");
        QTest::addColumn<QPoint>("at2");
        QTest::addColumn<std::vector<QPoint>>("bends");
        QTest::addColumn<bool>("right1");
        QTest::addColumn<bool>("right2");
        const std::vector<QPoint> none;
        QTest::newRow("to the right")
            << QPoint(50, 20) << QPoint(350, 220) << none << true << false;
        QTest::newRow("to the left") << QPoint(350, 20) << QPoint(50, 220) << none << false << true;
        QTest::newRow("around the right")
            << QPoint(50, 20) << QPoint(60, 220) << none << true << true;
        QTest::newRow("around the left") << QPoint(150, 20) << QPoint(150, 220)
                                         << std::vector<QPoint>{{100, 170}} << false << false;
    }
    void markersLieBesideTheBoxes() {
        QFETCH(QPoint, at1);
        QFETCH(QPoint, at2);
        QFETCH(std::vector<QPoint>, bends);
        QFETCH(bool, right1);
        QFETCH(bool, right2);
        Diagram on(at1, at2, bends);
        const QPoint start(at1.x() + (right1 ? 100 : 0), at1.y() + firstRowPx);
        const QPoint end(at2.x() + (right2 ? 100 : 0), at2.y() + firstRowPx);
        for (const TKindOfJoin kind : {klInnerJoin, klLOuterJoin, klROuterJoin, klFOuterJoin}) {
            on.join.KindOfJoin = kind;
            // The markers of a selected line are no larger.
            for (const bool selected : {false, true}) {
                on.link->Selected = selected;
                const QImage image = on.paint();
                QCOMPARE(wrongMarker(image, start, right1, includesStart(kind)), QString());
                QCOMPARE(wrongMarker(image, end, right2, includesEnd(kind)), QString());
            }
        }
    }

    void linesWithCirclesLeaveTheBoxesClean_data() { markersLieBesideTheBoxes_data(); }
    void linesWithCirclesLeaveTheBoxesClean() {
        QFETCH(QPoint, at1);
        QFETCH(QPoint, at2);
        QFETCH(std::vector<QPoint>, bends);
        Diagram on(at1, at2, bends);
        for (const bool selected : {false, true}) {
            on.link->Selected = selected;
            const QImage image = on.paint();
            for (const TorvQDTable* box : {&on.first, &on.second}) {
                const QRect rect = box->GetBoundsRect().toQRect();
                for (int x = rect.left(); x <= rect.right(); ++x) {
                    QCOMPARE(paintedInColumn(image, x, rect.top(), rect.bottom()), 0);
                }
            }
        }
    }

    void lineRunsThroughAllOfItsPoints_data() { markersLieBesideTheBoxes_data(); }
    void lineRunsThroughAllOfItsPoints() {
        QFETCH(QPoint, at1);
        QFETCH(QPoint, at2);
        QFETCH(std::vector<QPoint>, bends);
        Diagram on(at1, at2, bends);
        const QImage image = on.paint();
        for (int index = 0; index < on.link->GetCountPoints() - 1; ++index) {
            const QPoint from = on.link->GetPoint(index);
            const QPoint way = on.link->GetPoint(index + 1) - from;
            const int length = std::max(std::abs(way.x()), std::abs(way.y()));
            const bool isFlat = std::abs(way.x()) >= std::abs(way.y());
            // The very end points belong to the boxes where a line reaches them from the left.
            for (int step = 1; step < length; ++step) {
                const QPoint at = from + way * step / length;
                const QPoint beside = isFlat ? QPoint(0, 1) : QPoint(1, 0);
                QVERIFY(isPainted(image, at) || isPainted(image, at + beside) ||
                        isPainted(image, at - beside));
            }
        }
    }

    void selectedLineIsTwiceAsWide() {
        Diagram on({50, 20}, {350, 20});
        const int y = 20 + firstRowPx;
        for (const int x : {157, 250, 340}) {
            QCOMPARE(paintedInColumn(on.paint(), x, y - 8, y + 8), 1);
        }
        QVERIFY(isPainted(on.paint(), 250, y));
        on.link->Selected = true;
        for (const int x : {157, 250, 340}) {
            QCOMPARE(paintedInColumn(on.paint(), x, y - 8, y + 8), 2);
        }
        QVERIFY(isPainted(on.paint(), 250, y));
    }

    void bendsHaveCirclesAndStubEndsHaveNone() {
        const int y = 20 + firstRowPx;
        Diagram on({50, 20}, {350, 20}, {{200, y}, {280, y}});
        QImage image = on.paint();
        for (const int x : {200, 280}) {
            QCOMPARE(paintedBeside(image, {x, y}), circle(x - 3, y));
            QVERIFY(!isPainted(image, x - 3, y - 3));
            QVERIFY(!isPainted(image, x + 2, y + 2));
            QCOMPARE(paintedInColumn(image, x, y - 8, y + 8), 6);
        }
        for (const int x : {157, 160, 163, 240, 337, 340, 343}) {
            QCOMPARE(paintedInColumn(image, x, y - 8, y + 8), 1);
        }
        // The outline of a selected circle is as wide as the line.
        on.link->Selected = true;
        image = on.paint();
        for (const int x : {200, 280}) {
            const QRect bounds = paintedBeside(image, {x, y});
            QVERIFY(bounds.contains(circle(x - 3, y).adjusted(0, 0, -1, -1)));
            QVERIFY(QRect(x - 4, y - 4, 8, 8).contains(bounds));
            QVERIFY(bounds.width() > 6);
        }
    }

    void scrolledLineIsTheSamePicture_data() { markersLieBesideTheBoxes_data(); }
    void scrolledLineIsTheSamePicture() {
        QFETCH(QPoint, at1);
        QFETCH(QPoint, at2);
        QFETCH(std::vector<QPoint>, bends);
        Diagram on(at1, at2, bends);
        const QPoint scroll(37, 13);
        for (const TKindOfJoin kind : {klInnerJoin, klLOuterJoin, klROuterJoin, klFOuterJoin}) {
            on.join.KindOfJoin = kind;
            for (const bool selected : {false, true}) {
                on.link->Selected = selected;
                on.canvas.scroll = {};
                const QImage image = on.paint();
                on.canvas.scroll = scroll;
                const QRect all(QPoint(0, 0), imageSize - QSize(scroll.x(), scroll.y()));
                QCOMPARE(on.paint().copy(all), image.copy(all.translated(scroll)));
            }
        }
    }

    void painterIsLeftAsItWas() {
        Diagram on({50, 20}, {350, 220}, {{200, 300}});
        on.join.KindOfJoin = klLOuterJoin;
        QImage image(imageSize, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.setPen(QPen(Qt::red, 5));
        painter.setBrush(Qt::green);
        on.link->Paint(painter);
        QCOMPARE(painter.pen(), QPen(Qt::red, 5));
        QCOMPARE(painter.brush(), QBrush(Qt::green));
    }

    // --- the region

    void everythingPaintedLiesInTheRegion_data() {
        QTest::addColumn<QPoint>("at1");
        QTest::addColumn<QPoint>("at2");
        QTest::addColumn<std::vector<QPoint>>("bends");
        const auto row = [](const char* name, const QPoint& at1, const QPoint& at2,
                            const std::vector<QPoint>& bends) {
            QTest::newRow(name) << at1 << at2 << bends;
        };
        row("straight", {100, 60}, {400, 60}, {});
        row("to the right", {100, 60}, {400, 260}, {});
        row("to the left", {400, 60}, {100, 260}, {});
        row("upwards", {100, 260}, {500, 40}, {});
        row("steep", {100, 40}, {170, 440}, {});
        row("flat", {60, 100}, {640, 131}, {});
        row("left sides", {200, 60}, {230, 300}, {{77, 111}, {91, 333}});
        row("zigzag", {100, 60}, {400, 260}, {{333, 71}, {201, 401}, {660, 490}, {120, 200}});
        row("straight bends", {100, 60}, {400, 260}, {{250, 60 + firstRowPx}, {250, 289}});
        row("bend on a stub", {100, 60}, {400, 260}, {{201, 60 + firstRowPx}, {399, 290}});
    }
    void everythingPaintedLiesInTheRegion() {
        QFETCH(QPoint, at1);
        QFETCH(QPoint, at2);
        QFETCH(std::vector<QPoint>, bends);
        Diagram on(at1, at2, bends);
        for (const QPoint& scroll : {QPoint(0, 0), QPoint(37, 13), QPoint(-21, -5)}) {
            on.canvas.scroll = scroll;
            const QRegion region = on.link->GetClipRgn(0);
            QVERIFY(QRect(QPoint(0, 0), imageSize).contains(region.boundingRect()));
            for (const TKindOfJoin kind : {klInnerJoin, klLOuterJoin, klROuterJoin, klFOuterJoin}) {
                on.join.KindOfJoin = kind;
                for (const bool selected : {false, true}) {
                    on.link->Selected = selected;
                    const QImage whole = on.paint();
                    // What is clipped to the region is all that there is.
                    QImage clipped(imageSize, QImage::Format_RGB32);
                    clipped.fill(Qt::white);
                    QPainter painter(&clipped);
                    for (const QRect& part : region) painter.drawImage(part, whole, part);
                    painter.end();
                    QCOMPARE(clipped, whole);
                }
            }
        }
    }

    void regionOfADiagonalIsNarrow() {
        Diagram on({0, 0}, {2000, 1500});
        const QRegion region = on.link->GetClipRgn(0);
        qint64 area = 0;
        for (const QRect& part : region) area += qint64(part.width()) * part.height();
        const QRect bounds = region.boundingRect();
        QVERIFY(bounds.width() > 1900);
        QVERIFY(area < qint64(bounds.width()) * bounds.height() / 10);
        QVERIFY(!region.contains(QPoint(1500, 500)));
        QVERIFY(!region.contains(QPoint(500, 1000)));
    }

    // A box may be anywhere; the region of a line to it must not grow without limit.
    void regionOfAFarLineHasFewParts() {
        Diagram on({0, 0}, {2000000000, 1500000000});
        const QRegion region = on.link->GetClipRgn(0);
        QVERIFY(region.rectCount() < 1000);
        QVERIFY(region.contains(on.link->GetPoint(0)));
        QVERIFY(region.contains(on.link->GetPoint(3)));
        QVERIFY(region.contains(QPoint(105 + 1000000000, firstRowPx + 750000000)));
    }

    void straightLineIsOneRectangle() {
        Diagram on({0, 0}, {3000, 0});
        QCOMPARE(on.link->GetClipRgn(0).rectCount(), 1);
    }

    void startMarkerHasItsRectangle_data() {
        QTest::addColumn<bool>("right");
        QTest::newRow("right") << true;
        QTest::newRow("left") << false;
    }
    void startMarkerHasItsRectangle() {
        QFETCH(bool, right);
        Diagram on({300, 20}, {right ? 600 : 0, 220});
        on.canvas.scroll = {5, 3};
        const QPoint start = on.link->GetPoint(0);
        const QRect marker = right ? QRect(start + QPoint(-1, -4), QSize(8, 8))
                                   : QRect(start + QPoint(-7, -4), QSize(8, 8));
        for (const int part : {0, 1}) {
            QCOMPARE(on.link->GetClipRgn(part) & marker, QRegion(marker));
        }
    }

    void regionOfTheEndBeginsAtTheLastBend() {
        Diagram on({0, 0}, {500, 0}, {{200, 100}, {300, 200}, {400, 100}});
        const QRegion region = on.link->GetClipRgn(2);
        QVERIFY(region.contains(QPoint(400, 100)));
        QVERIFY(region.contains((on.link->GetPoint(4) + on.link->GetPoint(5)) / 2));
        QVERIFY(region.contains(on.link->GetPoint(6)));
        QVERIFY(!region.contains(QPoint(350, 150)));
        QVERIFY(!region.contains(on.link->GetPoint(0)));
    }

    // --- what is hit of a slanted line

    // Distance is the sum of the differences of both coordinates.
    void slantedLineIsHitWithinFourPixels_data() {
        QTest::addColumn<QPoint>("beside");
        QTest::addColumn<bool>("isHit");
        QTest::newRow("on it") << QPoint(0, 0) << true;
        QTest::newRow("two and two") << QPoint(2, -2) << true;
        QTest::newRow("three and two") << QPoint(3, -2) << false;
        QTest::newRow("four right") << QPoint(4, 0) << true;
        QTest::newRow("five right") << QPoint(5, 0) << false;
        QTest::newRow("four above") << QPoint(0, -4) << true;
        QTest::newRow("five above") << QPoint(0, -5) << false;
    }
    void slantedLineIsHitWithinFourPixels() {
        QFETCH(QPoint, beside);
        QFETCH(bool, isHit);
        // From (110, 29) to (290, 209): one down for each step to the right.
        Diagram on({0, 0}, {300, 180});
        const QPoint middle(200, 119);
        QCOMPARE(on.link->HitTest(middle + beside) == htTClient, isHit);
        on.canvas.scroll = {37, 13};
        QCOMPARE(on.link->HitTest(middle + beside - on.canvas.scroll) == htTClient, isHit);
    }

    void bendPointsAreHitWhereTheyAreSeen() {
        Diagram on({0, 0}, {300, 0}, {{150, 200}});
        on.canvas.scroll = {37, 13};
        QCOMPARE(on.link->HitTest({150 - 37 + 3, 200 - 13 - 3}), htTPoint);
        QVERIFY(on.link->HitTest({150, 200}) != htTPoint);
    }

    // --- the route

    // Both ends look at the same bend when there is one.
    void oneBendDecidesBothSides_data() {
        QTest::addColumn<int>("bend");
        QTest::addColumn<bool>("right1");
        QTest::addColumn<bool>("right2");
        QTest::newRow("left of both") << 99 << false << false;
        QTest::newRow("on the first's left edge") << 100 << true << false;
        QTest::newRow("left of the second") << 399 << true << false;
        QTest::newRow("on the second's left edge") << 400 << true << true;
        QTest::newRow("right of both") << 700 << true << true;
    }
    void oneBendDecidesBothSides() {
        QFETCH(int, bend);
        QFETCH(bool, right1);
        QFETCH(bool, right2);
        Diagram on({100, 0}, {400, 0}, {{bend, 300}});
        const std::vector<QPoint> expected = {{right1 ? 200 : 100, firstRowPx},
                                              {right1 ? 210 : 90, firstRowPx},
                                              {bend, 300},
                                              {right2 ? 510 : 390, firstRowPx},
                                              {right2 ? 500 : 400, firstRowPx}};
        QCOMPARE(on.link->points(), expected);
    }
};

QTEST_MAIN(LinkPaintTest)
#include "tst_linkpaint.moc"
