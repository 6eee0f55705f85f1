// SPDX-License-Identifier: MIT
#include "diagram/BoxOnCanvas.h"
#include "diagram/ORVQDFloatTable.h"
#include "support/TestTools.h"

#include <limits>

using orvtest::BoxOnCanvas;
using orvtest::contains;
using orvtest::oddScroll;

class FloatTableGeometryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- rectangles

    void rectanglesOfAnExpandedBox() {
        const BoxOnCanvas on;
        QCOMPARE(on.box.GetBoundsRect(), TRect({30, 40, 130, 168}));
        QCOMPARE(on.box.GetCaptionRect(), TRect({52, 42, 88, 58}));
        QCOMPARE(on.box.GetButtonRect(), TRect({88, 42, 128, 60}));
        QCOMPARE(on.box.GetClientRect(), TRect({34, 62, 126, 164}));
        QCOMPARE(on.box.checkBoxRect(), TRect({36, 44, 48, 56}));
    }

    void rectanglesOfACollapsedBox() {
        BoxOnCanvas on;
        on.box.SetExpand(0);
        QCOMPARE(on.box.GetBoundsRect(), TRect({30, 40, 130, 60}));
        QCOMPARE(on.box.GetCaptionRect(), TRect({52, 42, 88, 58}));
        QCOMPARE(on.box.GetButtonRect(), TRect({88, 42, 128, 60}));
    }

    void scrollingMovesNoRectangleOfTheDiagram() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        QCOMPARE(on.box.GetBoundsRect(), TRect({30, 40, 130, 168}));
        QCOMPARE(on.box.GetClientRect(), TRect({34, 62, 126, 164}));
        QCOMPARE(on.box.GetFullItemRect(on.row(0)), TRect({30, 61, 130, 77}));
    }

    void rowsLieInViewCoordinates() {
        BoxOnCanvas on;
        QCOMPARE(on.box.GetItemRect(on.row(0)), TRect({34, 61, 126, 77}));
        QCOMPARE(on.box.GetItemRect(on.row(3)), TRect({34, 112, 126, 128}));
        on.canvas.scroll = oddScroll;
        QCOMPARE(on.box.GetItemRect(on.row(0)), TRect({34 - 137, 61 - 53, 126 - 137, 77 - 53}));
    }

    void rowsAboveTheFirstVisibleOneLieAboveTheList() {
        BoxOnCanvas on;
        on.box.SetFirstVisibleItem(2);
        QCOMPARE(on.box.GetItemRect(on.row(2)), TRect({34, 61, 126, 77}));
        QCOMPARE(on.box.GetItemRect(on.row(0)), TRect({34, 27, 126, 43}));
    }

    void linksAttachToRows_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<TRect>("expected");
        QTest::newRow("scrolled above") << 1 << TRect({30, 40, 130, 60});
        QTest::newRow("first visible") << 2 << TRect({30, 61, 130, 77});
        QTest::newRow("last visible") << 7 << TRect({30, 146, 130, 162});
        QTest::newRow("partly visible") << 8 << TRect({30, 163, 130, 164});
        QTest::newRow("below") << 9 << TRect({30, 166, 130, 168});
    }
    void linksAttachToRows() {
        QFETCH(int, row);
        QFETCH(TRect, expected);
        BoxOnCanvas on;
        on.box.SetFirstVisibleItem(2);
        QCOMPARE(on.box.GetFullItemRect(on.row(row)), expected);
        QCOMPARE(on.row(row)->GetBoundsRect(), expected);
    }

    void linksAttachToTheCaptionOfACollapsedBox() {
        BoxOnCanvas on;
        on.box.SetExpand(0);
        QCOMPARE(on.box.GetFullItemRect(on.row(5)), TRect({30, 40, 130, 60}));
    }

    void rowsOfAnotherBoxHaveNoRectangle() {
        const BoxOnCanvas on;
        const BoxOnCanvas other;
        QCOMPARE(on.box.GetItemRect(other.row(0)), TRect());
        QCOMPARE(on.box.GetFullItemRect(other.row(0)), TRect());
        QCOMPARE(on.box.GetItemRect(nullptr), TRect());
        QVERIFY(!on.box.owns(other.row(0)));
        QVERIFY(on.box.owns(on.row(0)));
    }

    // The canvas says that a letter is 7 pixels wide; 2 more are added.
    void captionTextMayBeWiderThanItsPlace() {
        BoxOnCanvas on;
        on.box.SetAlias("LONG_ALIAS");
        const int width = 7 * int(QStringLiteral("T (LONG_ALIAS)").size()) + 2;
        QCOMPARE(on.box.CaptionRect(false), TRect({52, 42, 52 + width, 58}));
        const int right = 130 - 88 + 52;
        QCOMPARE(on.box.CaptionRect(true), TRect({right, 42, right + width, 58}));
    }

    // --- hit test

    void hitsAtEveryScrollPosition_data() {
        QTest::addColumn<QPoint>("scroll");
        QTest::addColumn<QPoint>("point");  // diagram coordinates
        QTest::addColumn<int>("hit");
        struct Row {
            const char* name;
            QPoint point;
            TTableHitTest hit;
        };
        const Row rows[] = {
            {"left of it", {29, 100}, htTOutSide},
            {"above it", {80, 39}, htTOutSide},
            {"on its right edge", {130, 100}, htTOutSide},
            {"on its bottom edge", {80, 168}, htTOutSide},
            {"left band begins", {30, 100}, htTLeft},
            {"left band ends", {33, 100}, htTLeft},
            {"behind the left band", {34, 100}, htTClient},
            {"right band begins", {127, 100}, htTRight},
            {"right band ends", {129, 100}, htTRight},
            {"4 pixels inside the right edge", {126, 100}, htTClient},
            {"top band begins", {80, 40}, htTTop},
            {"top band ends", {80, 43}, htTTop},
            {"bottom band begins", {80, 165}, htTBottom},
            {"bottom band ends", {80, 167}, htTBottom},
            {"above the bottom band", {80, 164}, htTClient},
            {"left top", {33, 43}, htTLeftTop},
            {"left bottom", {30, 165}, htTLeftBottom},
            {"right top", {127, 43}, htTRightTop},
            {"right bottom", {129, 167}, htTRightBottom},
            {"caption", {60, 50}, htTCaption},
            {"caption's last line", {60, 59}, htTCaption},
            {"rows begin", {60, 60}, htTClient},
            {"buttons begin", {88, 50}, htTbutton},
            {"left of the buttons", {87, 50}, htTCaption},
            {"buttons end", {126, 59}, htTbutton},
            {"check box begins", {34, 44}, htTCheck},
            {"check box ends", {45, 55}, htTCheck},
            {"right of the check box", {46, 50}, htTCaption},
            {"below the check box", {40, 56}, htTCaption},
        };
        for (const QPoint& scroll : {QPoint(), oddScroll}) {
            for (const Row& row : rows) {
                QTest::addRow("%s, scrolled %d", row.name, scroll.x())
                    << scroll << row.point << int(row.hit);
            }
        }
    }
    void hitsAtEveryScrollPosition() {
        QFETCH(QPoint, scroll);
        QFETCH(QPoint, point);
        QFETCH(int, hit);
        BoxOnCanvas on;
        on.canvas.scroll = scroll;
        QCOMPARE(int(on.box.HitTest(point - scroll)), hit);
    }

    void collapsedBoxHasNoEdges_data() {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<int>("hit");
        QTest::newRow("left top corner") << QPoint(30, 40) << int(htTCaption);
        QTest::newRow("right edge") << QPoint(129, 50) << int(htTCaption);
        QTest::newRow("check box") << QPoint(40, 50) << int(htTCheck);
        QTest::newRow("buttons") << QPoint(100, 50) << int(htTbutton);
        QTest::newRow("below") << QPoint(60, 60) << int(htTOutSide);
    }
    void collapsedBoxHasNoEdges() {
        QFETCH(QPoint, point);
        QFETCH(int, hit);
        BoxOnCanvas on;
        on.box.SetExpand(0);
        QCOMPARE(int(on.box.HitTest(point)), hit);
    }

    void rowAtAHeight_data() {
        QTest::addColumn<int>("y");  // diagram coordinates
        QTest::addColumn<int>("row");
        QTest::newRow("above the list") << 0 << 2;
        QTest::newRow("first line") << 61 << 2;
        QTest::newRow("its last line") << 76 << 2;
        QTest::newRow("the gap belongs to the next") << 77 << 3;
        QTest::newRow("last visible") << 161 << 7;
        QTest::newRow("below the last visible") << 162 << -1;
    }
    void rowAtAHeight() {
        QFETCH(int, y);
        QFETCH(int, row);
        for (const QPoint& scroll : {QPoint(), oddScroll}) {
            BoxOnCanvas on;
            on.box.SetFirstVisibleItem(2);
            on.canvas.scroll = scroll;
            const TorvQDListItem* item = on.box.GetItemAt(-1000, y - scroll.y());
            QCOMPARE(item ? item->GetIndex() : -1, row);
        }
    }

    void negativeFirstRowLeavesRoomAboveTheRows() {
        BoxOnCanvas on(3);
        on.box.SetHeight(128);
        QCOMPARE(on.box.VisibleCount, 5);
        on.box.SetFirstVisibleItem(0);
        QCOMPARE(on.box.FirstVisibleItem, -2);
        QCOMPARE(on.box.GetItemRect(on.row(0)).Top, 61 + 2 * 17);
        QCOMPARE(on.box.GetItemAt(0, 0), on.row(0));
        QCOMPARE(on.box.GetItemAt(0, 61 + 4 * 17), on.row(2));
        QVERIFY(!on.box.GetItemAt(0, 161));
    }

    void boxWithoutRowsHasNoRowAnywhere() {
        const BoxOnCanvas on(0);
        QVERIFY(!on.box.GetItemAt(0, 0));
        QVERIFY(!on.box.GetItemAt(0, 65));
    }

    // --- setters

    void captionHeightHasAMinimum_data() { addHeightRows(20); }
    void captionHeightHasAMinimum() {
        QFETCH(int, given);
        QFETCH(int, expected);
        BoxOnCanvas on;
        on.box.SetCaptionHeight(given);
        QCOMPARE(on.box.CaptionHeight, expected);
    }

    void itemHeightHasAMinimum_data() { addHeightRows(16); }
    void itemHeightHasAMinimum() {
        QFETCH(int, given);
        QFETCH(int, expected);
        BoxOnCanvas on;
        on.box.SetItemHeight(given);
        QCOMPARE(on.box.ItemHeight, expected);
    }

    void widthHasAMinimum() {
        BoxOnCanvas on;
        on.box.SetWidth(1);
        QCOMPARE(on.box.Width, on.box.CaptionHeight + 60);
        on.box.SetWidth(-500);
        QCOMPARE(on.box.Width, on.box.CaptionHeight + 60);
        QCOMPARE(on.canvas.resized, 1);
    }

    void heightHasAMinimum() {
        BoxOnCanvas on;
        on.box.SetHeight(1);
        QCOMPARE(on.box.Height, 2 * on.box.ItemHeight + on.box.CaptionHeight + 4);
        QCOMPARE(on.box.VisibleCount, 1);
        on.box.SetHeight(-500);
        QCOMPARE(on.canvas.resized, 1);
    }

    void firstRowBelowZeroIsRestored() {
        BoxOnCanvas on(3);
        on.box.SetHeight(128);
        on.box.SetFirstVisibleItem(0);
        on.box.SetHeight(128 - 17);
        QCOMPARE(on.box.VisibleCount, 4);
        QCOMPARE(on.box.FirstVisibleItem, -2);
        BoxOnCanvas other(3);
        other.box.SetHeight(128 - 17);
        other.canvas.rowsScrolledCount = 0;
        other.box.restoreFirstVisibleItem(-2);
        QCOMPARE(other.box.FirstVisibleItem, -2);
        QCOMPARE(other.box.GetItemRect(other.row(0)), on.box.GetItemRect(on.row(0)));
        QCOMPARE(other.canvas.rowsScrolledCount, 1);
    }

    void otherFirstRowsAreRestoredWithinTheirBounds() {
        BoxOnCanvas on;
        on.box.restoreFirstVisibleItem(2);
        QCOMPARE(on.box.FirstVisibleItem, 2);
        on.box.restoreFirstVisibleItem(std::numeric_limits<int>::max());
        QCOMPARE(on.box.FirstVisibleItem, 4);
        on.box.restoreFirstVisibleItem(std::numeric_limits<int>::min());
        QVERIFY(on.box.FirstVisibleItem < 0);
        QVERIFY(on.box.GetItemRect(on.row(8)).Top > 0);
    }

    void sameSizeIsNoChange() {
        BoxOnCanvas on;
        on.box.SetWidth(100);
        on.box.SetHeight(128);
        on.box.SetExpand(1);
        QCOMPARE(on.canvas.resized, 0);
        QVERIFY(on.canvas.invalidated.empty());
    }

    void sizingRepaintsTheEdgeThatMoves_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("expanded");
        QTest::addColumn<QRegion>("region");
        const auto row = [](const char* name, const QSize& size, bool selected, bool expanded,
                            const TRect& strip, const TRect& edge) {
            QTest::newRow(name) << size.width() << size.height() << selected << expanded
                                << QRegion(strip.toQRect()) + QRegion(edge.toQRect());
        };
        // The caption is laid out anew, and what stood at the old edge is moved to the new one: the
        // sunken edge of the rows, and the border.
        row("wider", {150, 128}, false, true, {30, 40, 180, 60}, {125, 40, 180, 168});
        row("narrower", {90, 128}, false, true, {30, 40, 130, 60}, {116, 40, 130, 168});
        row("wider, collapsed", {150, 128}, false, false, {30, 40, 180, 60}, {125, 40, 180, 60});
        // With the width of the scroll bar.
        row("wider, selected", {150, 128}, true, true, {30, 40, 180, 60}, {109, 40, 180, 168});
        row("narrower, selected", {90, 128}, true, true, {30, 40, 130, 60}, {100, 40, 130, 168});
        // With the row that may have been cut off.
        row("higher", {100, 160}, false, true, {}, {30, 148, 130, 200});
        row("lower", {100, 100}, false, true, {}, {30, 120, 130, 168});
    }
    void sizingRepaintsTheEdgeThatMoves() {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, selected);
        QFETCH(bool, expanded);
        QFETCH(QRegion, region);
        BoxOnCanvas on;
        on.box.SetExpand(expanded);
        on.box.SetSelect(selected);
        on.canvas.scroll = oddScroll;
        on.canvas.invalidated.clear();
        on.box.SetWidth(width);
        on.box.SetHeight(height);
        QCOMPARE(on.canvas.repainted(), region.translated(-oddScroll));
    }

    void selectingRepaintsTheBox_data() {
        QTest::addColumn<bool>("expanded");
        QTest::addColumn<TRect>("bounds");
        QTest::newRow("expanded") << true << TRect{30, 40, 130, 168};
        QTest::newRow("collapsed") << false << TRect{30, 40, 130, 60};
    }
    void selectingRepaintsTheBox() {
        QFETCH(bool, expanded);
        QFETCH(TRect, bounds);
        BoxOnCanvas on;
        on.box.SetExpand(expanded);
        on.canvas.scroll = oddScroll;
        for (const bool selected : {true, false}) {
            on.canvas.invalidated.clear();
            on.box.SetSelect(selected);
            QCOMPARE(on.canvas.repainted(), QRegion(bounds.toQRect()).translated(-oddScroll));
        }
    }

    void heightCountsTheVisibleRows() {
        BoxOnCanvas on;
        on.box.SetFirstVisibleItem(4);
        on.box.SetHeight(128 + 34);
        QCOMPARE(on.box.VisibleCount, (162 - 20 - 2 - 4 - 1) / 17);
        QCOMPARE(on.box.FirstVisibleItem, 3);
        QCOMPARE(on.canvas.resized, 1);
    }

    void heightBeyondTheRowsShowsThemFromTheFirst() {
        BoxOnCanvas on(7);
        on.box.SetFirstVisibleItem(1);
        on.box.SetHeight(500);
        QCOMPARE(on.box.FirstVisibleItem, 0);
    }

    void movingTellsTheCanvasOnce() {
        BoxOnCanvas on;
        on.box.SetLeft(31);
        QCOMPARE(on.canvas.moved, 1);
        on.box.SetTop(42);
        QCOMPARE(on.canvas.moved, 2);
        QCOMPARE(on.box.GetBoundsRect(), TRect({31, 42, 131, 170}));
        on.box.SetLeft(31);
        on.box.SetTop(42);
        on.box.MoveTable(0, 0);
        QCOMPARE(on.canvas.moved, 2);
    }

    void movingRepaintsOldAndNewPlaceInTheView() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        on.box.MoveTable(10, -5);
        const TRect old = TRect({30, 40, 130, 168}).translated(-137, -53);
        QVERIFY(contains(on.canvas.invalidated, old));
        QVERIFY(contains(on.canvas.invalidated, old.translated(10, -5)));
    }

    void collapsingTellsTheCanvasAndKeepsTheHeight() {
        BoxOnCanvas on;
        on.box.SetExpand(0);
        QCOMPARE(on.canvas.resized, 1);
        QCOMPARE(on.box.Height, 128);
        QVERIFY(contains(on.canvas.invalidated, {30, 40, 130, 168}));
        on.box.SetExpand(-1);
        QCOMPARE(on.canvas.resized, 2);
        QCOMPARE(on.box.GetBoundsRect().Bottom, 168);
    }

    void firstVisibleItemIsClamped_data() {
        QTest::addColumn<int>("given");
        QTest::addColumn<int>("expected");
        QTest::newRow("below the first") << -5 << 0;
        QTest::newRow("inside") << 3 << 3;
        QTest::newRow("the last that fills the list") << 4 << 4;
        QTest::newRow("beyond") << 9 << 4;
    }
    void firstVisibleItemIsClamped() {
        QFETCH(int, given);
        QFETCH(int, expected);
        BoxOnCanvas on;
        on.box.SetFirstVisibleItem(1);
        on.canvas.rowsScrolledCount = 0;
        on.box.SetFirstVisibleItem(given);
        QCOMPARE(on.box.FirstVisibleItem, expected);
        QCOMPARE(on.canvas.rowsScrolledCount, 1);
        on.box.SetFirstVisibleItem(given);
        QCOMPARE(on.canvas.rowsScrolledCount, 1);
    }

    void scrollingRowsRepaintsTheRowAreaAlone() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        on.box.SetFirstVisibleItem(2);
        const TRect client = on.box.toView(on.box.GetClientRect());
        QVERIFY(!on.canvas.invalidated.empty());
        for (const TRect& rect : on.canvas.invalidated) {
            QVERIFY(rect.Left >= client.Left && rect.Right <= client.Right);
            QVERIFY(rect.Top >= client.Top && rect.Bottom <= client.Bottom);
        }
    }

    void fontChangeLaysOutAnewForTheVisibleRows() {
        BoxOnCanvas on;
        on.canvas.font = 30;
        on.box.relayout();
        QCOMPARE(on.box.CaptionHeight, 34);
        QCOMPARE(on.box.ItemHeight, 30);
        QCOMPARE(on.box.VisibleCount, 6);
        QCOMPARE(on.box.Height, 6 * 31 + 34 + 6);
        QCOMPARE(on.canvas.resized, 1);
    }

    // --- the scroll bar

    void onlyTheSelectedBoxWithMoreRowsShowsTheScrollBar_data() {
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("shown");
        QTest::newRow("selected, ten rows") << 10 << true << true;
        QTest::newRow("selected, six rows") << 6 << true << false;
        QTest::newRow("selected, no rows") << 0 << true << false;
        QTest::newRow("not selected") << 10 << false << false;
    }
    void onlyTheSelectedBoxWithMoreRowsShowsTheScrollBar() {
        QFETCH(int, rows);
        QFETCH(bool, selected);
        QFETCH(bool, shown);
        BoxOnCanvas on(rows);
        on.box.SetSelect(selected);
        QCOMPARE(on.box.UpdateScrollBar(), shown);
        QCOMPARE(on.canvas.scrollBarVisible, shown);
    }

    void scrollBarStandsAtTheRightInsideEdge() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        on.box.SetFirstVisibleItem(3);
        on.box.SetSelect(true);
        const IDiagramCanvas::RowScroll& scroll = on.canvas.placed.back();
        QCOMPARE(scroll.rect, TRect({110, 62, 126, 164}).translated(-137, -53));
        QCOMPARE(scroll.position, 3);
        QCOMPARE(scroll.maximum, 4);
        QCOMPARE(scroll.pageStep, 5);
    }

    void deselectingAndCollapsingHideTheScrollBar() {
        BoxOnCanvas on;
        on.box.SetSelect(true);
        on.box.SetExpand(0);
        QVERIFY(!on.canvas.scrollBarVisible);
        on.box.SetExpand(1);
        QVERIFY(on.canvas.scrollBarVisible);
        on.box.SetSelect(false);
        QVERIFY(!on.canvas.scrollBarVisible);
    }

    void selectingACollapsedBoxShowsNoScrollBar() {
        BoxOnCanvas on;
        on.box.SetExpand(0);
        on.box.SetSelect(true);
        QVERIFY(!on.canvas.scrollBarVisible);
    }

    void scrollBarFollowsItsBox() {
        BoxOnCanvas on;
        on.box.SetSelect(true);
        on.box.MoveTable(7, 9);
        on.box.SetWidth(150);
        QCOMPARE(on.canvas.scrollBarMoves, std::vector<QPoint>({QPoint(7, 9), QPoint(50, 0)}));
    }

    void growingUntilAllRowsFitHidesTheScrollBar() {
        BoxOnCanvas on;
        on.box.SetSelect(true);
        on.box.SetHeight(400);
        QVERIFY(!on.canvas.scrollBarVisible);
        on.box.SetHeight(100);
        QVERIFY(on.canvas.scrollBarVisible);
    }

private:
    void addHeightRows(int minimum) {
        QTest::addColumn<int>("given");
        QTest::addColumn<int>("expected");
        QTest::newRow("zero is ignored") << 0 << minimum;
        QTest::newRow("below the minimum") << 5 << minimum;
        QTest::newRow("negative") << -30 << 30;
        QTest::newRow("positive") << 30 << 30;
    }
};

QTEST_MAIN(FloatTableGeometryTest)
#include "tst_floattablegeometry.moc"
