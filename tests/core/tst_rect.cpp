// SPDX-License-Identifier: MIT
#include "core/TRect.h"

#include <QTest>

class TestRect : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rightAndBottomAreExclusive();
    void contains_data();
    void contains();
    void isEmpty_data();
    void isEmpty();
    void intersects_data();
    void intersects();
    void translatedMovesAllEdges();
    void unitedHoldsBoth();
    void travelsToQRectAndBack();
};

void TestRect::rightAndBottomAreExclusive() {
    const TRect rect{10, 20, 110, 45};
    QCOMPARE(rect.width(), 100);
    QCOMPARE(rect.height(), 25);
}

void TestRect::contains_data() {
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<bool>("inside");
    QTest::newRow("top left corner") << QPoint(10, 20) << true;
    QTest::newRow("last pixel") << QPoint(29, 39) << true;
    QTest::newRow("right edge") << QPoint(30, 25) << false;
    QTest::newRow("bottom edge") << QPoint(15, 40) << false;
    QTest::newRow("left of it") << QPoint(9, 25) << false;
    QTest::newRow("above it") << QPoint(15, 19) << false;
}

void TestRect::contains() {
    QFETCH(QPoint, point);
    QFETCH(bool, inside);
    const TRect rect{10, 20, 30, 40};
    QCOMPARE(rect.contains(point), inside);
}

void TestRect::isEmpty_data() {
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("bottom");
    QTest::addColumn<bool>("empty");
    QTest::newRow("one pixel") << 1 << 1 << false;
    QTest::newRow("no width") << 0 << 1 << true;
    QTest::newRow("no height") << 1 << 0 << true;
    QTest::newRow("turned round") << -1 << 5 << true;
}

void TestRect::isEmpty() {
    QFETCH(int, right);
    QFETCH(int, bottom);
    QFETCH(bool, empty);
    const TRect rect{0, 0, right, bottom};
    QCOMPARE(rect.isEmpty(), empty);
}

void TestRect::intersects_data() {
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("top");
    QTest::addColumn<bool>("shared");
    QTest::newRow("same place") << 0 << 0 << true;
    QTest::newRow("last column and row") << 9 << 9 << true;
    QTest::newRow("side by side") << 10 << 0 << false;
    QTest::newRow("one below the other") << 0 << 10 << false;
    QTest::newRow("left of it") << -10 << 0 << false;
    QTest::newRow("above it") << 0 << -10 << false;
    QTest::newRow("overlaps at the left top") << -9 << -9 << true;
}

void TestRect::intersects() {
    QFETCH(int, left);
    QFETCH(int, top);
    QFETCH(bool, shared);
    const TRect rect{0, 0, 10, 10};
    const TRect other = rect.translated(left, top);
    QCOMPARE(rect.intersects(other), shared);
    QCOMPARE(other.intersects(rect), shared);
}

void TestRect::translatedMovesAllEdges() {
    const TRect moved = TRect{1, 2, 3, 4}.translated(10, -20);
    QCOMPARE(moved, (TRect{11, -18, 13, -16}));
}

void TestRect::unitedHoldsBoth() {
    const TRect united = TRect{0, 5, 10, 15}.united({-5, 8, 4, 30});
    QCOMPARE(united, (TRect{-5, 5, 10, 30}));
}

void TestRect::travelsToQRectAndBack() {
    const TRect rect{10, 20, 110, 45};
    QCOMPARE(rect.toQRect(), QRect(10, 20, 100, 25));
    QCOMPARE(TRect::fromQRect(rect.toQRect()), rect);
}

QTEST_GUILESS_MAIN(TestRect)
#include "tst_rect.moc"
