// SPDX-License-Identifier: MIT
#include "diagram/Orvvisualutils.h"
#include "support/TestTools.h"

using orv::IsPointNearLine;
using orv::TransparentBlt;

namespace {

QImage filled(int width, int height, QRgb color) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

constexpr QRgb white = qRgb(255, 255, 255);
constexpr QRgb black = qRgb(0, 0, 0);
constexpr QRgb red = qRgb(200, 0, 0);
constexpr QRgb blue = qRgb(0, 0, 200);

}  // namespace

class VisualUtilsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- near a line

    void cornersAreNearWithoutTolerance() {
        const std::vector<QPoint> line = {{0, 0}, {10, 0}, {10, 20}, {30, 50}, {35, 20}};
        QCOMPARE(IsPointNearLine(line, {0, 0}, 0), 0);
        QCOMPARE(IsPointNearLine(line, {10, 0}, 0), 0);
        QCOMPARE(IsPointNearLine(line, {10, 20}, 0), 1);
        QCOMPARE(IsPointNearLine(line, {30, 50}, 0), 2);
        QCOMPARE(IsPointNearLine(line, {35, 20}, 0), 3);
    }

    void firstSegmentThatIsNearCounts() {
        const std::vector<QPoint> line = {{0, 0}, {100, 0}, {100, 3}, {0, 3}};
        QCOMPARE(IsPointNearLine(line, {50, 2}, 2), 0);
        QCOMPARE(IsPointNearLine(line, {50, 3}, 2), 2);
        QCOMPARE(IsPointNearLine(line, {101, 2}, 2), 1);
        QCOMPARE(IsPointNearLine(line, {50, 6}, 2), -1);
    }

    void fewerThanTwoPointsAreNoLine() {
        QCOMPARE(IsPointNearLine({}, {0, 0}, 10), -1);
        QCOMPARE(IsPointNearLine({{0, 0}}, {0, 0}, 10), -1);
    }

    void straightSegments_data() {
        QTest::addColumn<QPoint>("along");  // along the segment, and beside it
        QTest::addColumn<bool>("isNear");
        QTest::newRow("on it") << QPoint(20, 0) << true;
        QTest::newRow("at its first end") << QPoint(10, 4) << true;
        QTest::newRow("at its last end") << QPoint(50, -4) << true;
        QTest::newRow("before its first end") << QPoint(9, 0) << false;
        QTest::newRow("behind its last end") << QPoint(51, 0) << false;
        QTest::newRow("as far as the tolerance") << QPoint(20, 4) << true;
        QTest::newRow("farther") << QPoint(20, 5) << false;
        QTest::newRow("farther on the other side") << QPoint(20, -5) << false;
        QTest::newRow("beside and beyond") << QPoint(5, 5) << false;
    }
    void straightSegments() {
        QFETCH(QPoint, along);
        QFETCH(bool, isNear);
        const QPoint across(along.y(), along.x());
        const int expected = isNear ? 0 : -1;
        QCOMPARE(IsPointNearLine({{10, 0}, {50, 0}}, along, 4), expected);
        QCOMPARE(IsPointNearLine({{50, 0}, {10, 0}}, along, 4), expected);
        QCOMPARE(IsPointNearLine({{0, 10}, {0, 50}}, across, 4), expected);
        QCOMPARE(IsPointNearLine({{0, 50}, {0, 10}}, across, 4), expected);
    }

    // Five pixels beside the end, but above it: the end is no point of a circle.
    void pointBeyondAVerticalEndIsNotNear() {
        QCOMPARE(IsPointNearLine({{0, 10}, {0, 50}}, {5, 9}, 100), -1);
        QCOMPARE(IsPointNearLine({{0, 10}, {0, 50}}, {5, 10}, 5), 0);
    }

    void distancesAcrossAndDownAddUp() {
        const std::vector<QPoint> line = {{0, 0}, {100, 100}};
        QCOMPARE(IsPointNearLine(line, {52, 48}, 4), 0);
        QCOMPARE(IsPointNearLine(line, {53, 48}, 4), -1);
        QCOMPARE(IsPointNearLine({{100, 100}, {0, 0}}, {52, 48}, 4), 0);
        QCOMPARE(IsPointNearLine({{100, 100}, {0, 0}}, {53, 48}, 4), -1);
    }

    // Ten times as high as wide: 50 pixels down it is 5 pixels right.
    void steepSegmentsAreSearchedDownwards() {
        const std::vector<QPoint> line = {{0, 0}, {10, 100}};
        QCOMPARE(IsPointNearLine(line, {9, 50}, 4), 0);
        QCOMPARE(IsPointNearLine(line, {9, 50}, 3), -1);
        QCOMPARE(IsPointNearLine(line, {1, 50}, 4), 0);
        QCOMPARE(IsPointNearLine(line, {1, 50}, 3), -1);
    }

    void slantedEndsAreNearAllAround() {
        const std::vector<QPoint> line = {{0, 0}, {40, 20}};
        QCOMPARE(IsPointNearLine(line, {-2, -1}, 3), 0);
        QCOMPARE(IsPointNearLine(line, {-2, -2}, 3), -1);
        QCOMPARE(IsPointNearLine(line, {43, 20}, 3), 0);
        QCOMPARE(IsPointNearLine(line, {44, 20}, 3), -1);
    }

    // Halfway between two rows of pixels the even one belongs to the line.
    void halvesGoToTheEvenNeighbour() {
        const std::vector<QPoint> line = {{0, 0}, {4, 2}};
        QCOMPARE(IsPointNearLine(line, {1, 0}, 0), 0);
        QCOMPARE(IsPointNearLine(line, {1, 1}, 0), -1);
        QCOMPARE(IsPointNearLine(line, {3, 2}, 0), 0);
        QCOMPARE(IsPointNearLine(line, {3, 1}, 0), -1);
    }

    void allPointsOfALineAreNear() {
        for (const QPoint& end :
             {QPoint(97, 31), QPoint(-60, 45), QPoint(13, -88), QPoint(70, 70)}) {
            const std::vector<QPoint> line = {{5, 7}, QPoint(5, 7) + end};
            for (int step = 0; step <= 100; ++step) {
                const QPoint point(5 + end.x() * step / 100, 7 + end.y() * step / 100);
                QCOMPARE(IsPointNearLine(line, point, 2), 0);
            }
        }
    }

    // --- copying through a mask

    void whiteMaskKeepsTheDestination() {
        QImage to = filled(4, 4, red);
        QVERIFY(
            TransparentBlt(to, 0, 0, 4, 4, filled(4, 4, blue), 0, 0, filled(4, 4, white), 0, 0));
        QCOMPARE(to, filled(4, 4, red));
    }

    void blackMaskCopiesAll() {
        QImage to = filled(4, 4, red);
        QVERIFY(
            TransparentBlt(to, 0, 0, 4, 4, filled(4, 4, blue), 0, 0, filled(4, 4, black), 0, 0));
        QCOMPARE(to, filled(4, 4, blue));
    }

    void monochromeMaskIsReadTheSameWay() {
        QImage mask(2, 1, QImage::Format_Mono);
        mask.setColorTable({black, white});
        mask.setPixel(0, 0, 0);
        mask.setPixel(1, 0, 1);
        QImage to = filled(2, 1, red);
        QVERIFY(TransparentBlt(to, 0, 0, 2, 1, filled(2, 1, blue), 0, 0, mask, 0, 0));
        QCOMPARE(to.pixel(0, 0), blue);
        QCOMPARE(to.pixel(1, 0), red);
    }

    // Each of the three rectangles begins at a place of its own.
    void rectanglesHaveTheirOwnOrigins() {
        QImage from = filled(5, 5, red);
        from.setPixel(3, 2, blue);
        QImage mask = filled(6, 6, white);
        mask.setPixel(4, 5, black);
        QImage to = filled(8, 8, white);
        QVERIFY(TransparentBlt(to, 6, 1, 2, 2, from, 2, 1, mask, 3, 4));
        QImage expected = filled(8, 8, white);
        expected.setPixel(7, 2, blue);
        QCOMPARE(to, expected);
    }

    void pixelsOutsideAreLeftOut() {
        QImage to = filled(3, 3, red);
        QVERIFY(
            TransparentBlt(to, -1, 1, 4, 4, filled(2, 2, blue), 0, 0, filled(4, 4, black), 0, 0));
        QImage expected = filled(3, 3, red);
        expected.setPixel(0, 1, blue);
        expected.setPixel(0, 2, blue);
        QCOMPARE(to, expected);
    }
};

QTEST_GUILESS_MAIN(VisualUtilsTest)
#include "tst_visualutils.moc"
