// SPDX-License-Identifier: MIT
// Boxes under the hand: moved, sized and clicked by the mouse of the view.
#include "support/ShownBuilder.h"

#include <QCoreApplication>
#include <QFocusEvent>

using orvtest::ShownBuilder;

namespace {

/// A shown builder with a box of ten rows, of which it shows six: 100 wide and 128 high, at
/// (200, 60), selected.
class BoxedBuilder : public ShownBuilder {
public:
    BoxedBuilder() {
        addTable(QStringLiteral("WIDE"));
        place("WIDE", {200, 60});
        place("T", {400, 60});
        place("U", {400, 200});
        changes = 0;
    }

    void place(const QString& alias, const QPoint& at) const {
        TorvQDTable* moved = table(alias);
        moved->MoveTable(at.x() - moved->Left, at.y() - moved->Top);
    }
    TorvQDTable* box() const { return table(QStringLiteral("WIDE")); }
    QPoint caption() const { return captionOf(QStringLiteral("WIDE")); }
    QPoint placeOf(const QString& alias) const { return {table(alias)->Left, table(alias)->Top}; }
    QPoint boxPlace() const { return placeOf(QStringLiteral("WIDE")); }
    /// A point one pixel inside the edges that are named.
    QPoint edge(const QString& name) const {
        const TRect rect = box()->toView(box()->GetBoundsRect());
        QPoint point = centre(rect);
        if (name.contains("left")) point.setX(rect.Left + 1);
        if (name.contains("right")) point.setX(rect.Right - 1);
        if (name.contains("top")) point.setY(rect.Top + 1);
        if (name.contains("bottom")) point.setY(rect.Bottom - 1);
        return point;
    }
    void pressEscape() const { QTest::keyClick(&area(), Qt::Key_Escape); }
    void loseFocus() const {
        QFocusEvent event(QEvent::FocusOut, Qt::MouseFocusReason);
        QCoreApplication::sendEvent(&area(), &event);
    }
};

}  // namespace

class GesturesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- moving

    void boxMovesWithTheMouse() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(30, 20));
        QCOMPARE(on.boxPlace(), QPoint(230, 80));
        QVERIFY(on.area().isGesturing());
        on.moveTo(from + QPoint(-50, 70));
        QCOMPARE(on.boxPlace(), QPoint(150, 130));
        on.release(from + QPoint(-50, 70));
        QCOMPARE(on.boxPlace(), QPoint(150, 130));
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.changes, 0);
    }

    void handThatClicksIsNotQuiteStill() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(1, 1));
        QCOMPARE(on.boxPlace(), QPoint(200, 60));
        on.moveTo(from + QPoint(2, 1));
        QCOMPARE(on.boxPlace(), QPoint(202, 61));
        on.moveTo(from + QPoint(0, 1));  // once it moves, it follows closely
        QCOMPARE(on.boxPlace(), QPoint(200, 61));
    }

    void handIsAsSteadyOverAMagnifiedView() {
        const BoxedBuilder on;
        for (const qreal zoom : {0.25, 2.0}) {
            on.area().setZoom(zoom);
            on.scrollTo({});
            const QPoint before = on.boxPlace();
            const QPoint from = on.area().toViewport(on.caption());
            on.press(from);
            on.moveTo(from + QPoint(2, 0));
            QCOMPARE(on.boxPlace(), before);
            on.moveTo(from + QPoint(4, 0));
            QCOMPARE(on.boxPlace(), before + QPoint(int(4 / zoom), 0));
            on.release(from + QPoint(4, 0));
        }
    }

    void boxKeepsUpWithAFastHand() {
        const BoxedBuilder on;
        int told = 0;
        on.table("T")->OnMouseMove = [&](QObject*, Qt::KeyboardModifiers, int, int) { ++told; };
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(on.captionOf("T"));  // far outside the box, on another one
        QCOMPARE(on.boxPlace(), QPoint(200, 60) + on.captionOf("T") - from);
        QCOMPARE(told, 0);
        on.release(on.captionOf("T"));
        QCOMPARE(on.placeOf("T"), QPoint(400, 60));
        QVERIFY(on.box()->Selected);
    }

    void captionStaysInsideTheDiagram_data() {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        QTest::addColumn<QPoint>("to");
        QTest::newRow("left top") << QPoint(30, 20) << QPoint(-500, -500) << QPoint(0, 0);
        QTest::newRow("left") << QPoint(30, 20) << QPoint(-500, 10) << QPoint(0, 30);
        // The caption is 100 wide and 20 high.
        QTest::newRow("right bottom")
            << QPoint(4700, 4850) << QPoint(700, 700) << QPoint(4900, 4980);
        QTest::newRow("stays beyond") << QPoint(5100, 4850) << QPoint(50, 0) << QPoint(5100, 4850);
        QTest::newRow("comes back") << QPoint(5100, 4850) << QPoint(-50, 0) << QPoint(5050, 4850);
    }
    void captionStaysInsideTheDiagram() {
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        QFETCH(QPoint, to);
        const BoxedBuilder on;
        on.place("WIDE", from);
        on.area().ensureVisible(on.box()->GetBoundsRect());
        on.drag(on.caption(), by);
        QCOMPARE(on.boxPlace(), to);
    }

    void escapePutsTheBoxBack() {
        BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(60, 90));
        on.pressEscape();
        QCOMPARE(on.boxPlace(), QPoint(200, 60));
        QVERIFY(!on.area().isGesturing());
        on.moveTo(from + QPoint(90, 90));
        on.release(from + QPoint(90, 90));
        QCOMPARE(on.boxPlace(), QPoint(200, 60));
        QVERIFY(on.box()->Selected);
        verifyBuilder(on.builder);
    }

    void escapePutsTheBoxBackAlsoWhenTheViewWasScrolled() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(60, 90));
        on.scrollTo({37, 41});
        QCOMPARE(on.boxPlace(), QPoint(297, 191));  // it stays under the mouse
        on.pressEscape();
        QCOMPARE(on.boxPlace(), QPoint(200, 60));
    }

    void wheelScrollsTheViewUnderTheMovedBox() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(10, 10));
        on.wheel(from, -120);
        const int scrolled = on.area().verticalScrollBar()->value();
        QVERIFY(scrolled > 0);
        QCOMPARE(on.boxPlace(), QPoint(210, 70 + scrolled));
        on.release(from + QPoint(10, 10));
        QCOMPARE(on.boxPlace(), QPoint(210, 70 + scrolled));
    }

    // --- sizing

    void edgesSizeTheBox_data() {
        QTest::addColumn<TRect>("moved");    // by (15, 10)
        QTest::addColumn<TRect>("inwards");  // to the least size
        QTest::addColumn<TRect>("outwards");
        // 200, 60 to 300, 188; at least 80 wide and 56 high.
        QTest::newRow("left") << TRect{215, 60, 300, 188} << TRect{220, 60, 300, 188}
                              << TRect{0, 60, 300, 188};
        QTest::newRow("right") << TRect{200, 60, 315, 188} << TRect{200, 60, 280, 188}
                               << TRect{200, 60, 700, 188};
        QTest::newRow("top") << TRect{200, 70, 300, 188} << TRect{200, 132, 300, 188}
                             << TRect{200, 0, 300, 188};
        QTest::newRow("bottom") << TRect{200, 60, 300, 198} << TRect{200, 60, 300, 116}
                                << TRect{200, 60, 300, 588};
        QTest::newRow("left top") << TRect{215, 70, 300, 188} << TRect{220, 132, 300, 188}
                                  << TRect{0, 0, 300, 188};
        QTest::newRow("left bottom")
            << TRect{215, 60, 300, 198} << TRect{220, 60, 300, 116} << TRect{0, 60, 300, 588};
        QTest::newRow("right top")
            << TRect{200, 70, 315, 188} << TRect{200, 132, 280, 188} << TRect{200, 0, 700, 188};
        QTest::newRow("right bottom")
            << TRect{200, 60, 315, 198} << TRect{200, 60, 280, 116} << TRect{200, 60, 700, 588};
    }
    void edgesSizeTheBox() {
        QFETCH(TRect, moved);
        QFETCH(TRect, inwards);
        QFETCH(TRect, outwards);
        const QString name = QTest::currentDataTag();
        const BoxedBuilder on;
        const TRect before = on.box()->GetBoundsRect();
        const QPoint from = on.edge(name);
        const QPoint sign(name.contains("left") ? 1 : -1, name.contains("top") ? 1 : -1);
        on.press(from);
        on.moveTo(from + QPoint(15, 10));
        QCOMPARE(on.box()->GetBoundsRect(), moved);
        on.moveTo(from + sign * 400);
        QCOMPARE(on.box()->GetBoundsRect(), inwards);
        on.moveTo(from - sign * 400);
        QCOMPARE(on.box()->GetBoundsRect(), outwards);
        on.pressEscape();
        QCOMPARE(on.box()->GetBoundsRect(), before);
        on.release(from);
        on.drag(on.edge(name), {15, 10});
        QCOMPARE(on.box()->GetBoundsRect(), moved);
        QCOMPARE(on.changes, 0);
    }

    void farEdgesStopAtTheEndOfTheDiagram() {
        const BoxedBuilder on;
        on.place("WIDE", {4800, 4800});
        on.area().ensureVisible(on.box()->GetBoundsRect());
        on.drag(on.edge("right bottom"), {400, 400});
        QCOMPARE(on.box()->GetBoundsRect(), TRect({4800, 4800, 5000, 5000}));
    }

    void sizingShowsMoreRowsAndEscapeScrollsThemBack() {
        const BoxedBuilder on;
        on.box()->SetFirstVisibleItem(4);
        const QPoint from = on.edge("bottom");
        on.press(from);
        on.moveTo(from + QPoint(0, 100));
        QCOMPARE(on.box()->VisibleCount, (228 - 20 - 2 - 4 - 1) / 17);
        QVERIFY(on.box()->FirstVisibleItem <= 0);
        on.pressEscape();
        QCOMPARE(on.box()->FirstVisibleItem, 4);
        QCOMPARE(on.box()->VisibleCount, 6);
        QCOMPARE(on.box()->Height, 128);
    }

    // A box of one row is made lower than anybody can size it: it grows at once.
    void lowBoxAtTheTopIsNotSizedOutOfTheDiagram() {
        const BoxedBuilder on;
        const TDataSet fields = orvtest::stringFields({"A"});
        TorvQDTable* low = on.builder.ListOfTables->AddTable("LOW", fields);
        low->MoveTable(600 - low->Left, 5 - low->Top);
        QCOMPARE(low->Height, 17 + 26);
        on.drag({650, 6}, {0, 4});
        QCOMPARE(low->Top, 0);
        QCOMPARE(low->Height, 56);
    }

    void collapsedBoxHasNoEdges() {
        const BoxedBuilder on;
        on.box()->SetExpand(0);
        on.drag({201, 70}, {20, 10});
        QCOMPARE(on.box()->GetBoundsRect(), TRect({220, 70, 320, 90}));
    }

    // --- where gestures end

    void lostReleaseEndsTheGesture() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(20, 20));
        on.hover(from + QPoint(40, 40));  // the button is up
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.boxPlace(), QPoint(220, 80));
        on.moveTo(from + QPoint(60, 60));
        QCOMPARE(on.boxPlace(), QPoint(220, 80));
    }

    void lossOfTheFocusEndsTheGesture() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(20, 20));
        on.loseFocus();
        QVERIFY(!on.area().isGesturing());
        on.moveTo(from + QPoint(60, 60));
        on.release(from + QPoint(60, 60));
        QCOMPARE(on.boxPlace(), QPoint(220, 80));
    }

    void lossOfTheFocusLetsAPressedButtonGo() {
        const BoxedBuilder on;
        const QPoint close = ShownBuilder::centre(on.box()->GetButtonRect()) + QPoint(14, 0);
        on.press(close);
        QCOMPARE(on.box()->PressedButton, 2);
        on.loseFocus();
        QCOMPARE(on.box()->PressedButton, -1);
        on.release(close);
        QVERIFY(on.box());
    }

    void hidingEndsTheGesture() {
        BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(20, 20));
        on.builder.hide();
        QVERIFY(!on.area().isGesturing());
    }

    void otherButtonsDoNotEndTheGesture() {
        const BoxedBuilder on;
        const QPoint from = on.caption();
        on.press(from);
        on.moveTo(from + QPoint(20, 20));
        QTest::mouseClick(on.view(), Qt::RightButton, {}, from + QPoint(20, 20));
        QVERIFY(on.area().isGesturing());
        on.moveTo(from + QPoint(30, 30));
        QCOMPARE(on.boxPlace(), QPoint(230, 90));
    }

    void arrangingEndsTheGesture() {
        const BoxedBuilder on;
        const QPoint from = on.edge("bottom");
        on.press(from);
        on.moveTo(from + QPoint(0, 100));
        on.area().arrange();
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.box()->Height, 128);
    }

    void boxesAreArrangedWithTheirSizesOfBefore() {
        const BoxedBuilder undisturbed;
        undisturbed.area().arrange();
        const BoxedBuilder on;
        const QPoint from = on.edge("right bottom");
        on.press(from);
        on.moveTo(from + QPoint(300, 300));
        on.area().arrange();
        for (const QString& alias : {QStringLiteral("WIDE"), QStringLiteral("T")}) {
            QCOMPARE(on.placeOf(alias), undisturbed.placeOf(alias));
        }
        QCOMPARE(on.placeOf("U"), undisturbed.placeOf("U"));
    }

    // --- what is under the mouse

    void hotObjectIsTheOneUnderTheMouse() {
        const BoxedBuilder on;
        on.hover(on.caption());
        QCOMPARE(on.area().hotObject(), on.box());
        on.hover(on.captionOf("T"));
        QCOMPARE(on.area().hotObject(), on.table("T"));
        on.hover({700, 20});
        QVERIFY(!on.area().hotObject());
    }

    void leftBoxLosesItsHotButton() {
        const BoxedBuilder on;
        const QPoint close = ShownBuilder::centre(on.box()->GetButtonRect()) + QPoint(14, 0);
        on.hover(close);
        QCOMPARE(on.box()->HotButton, 2);
        on.hover(on.captionOf("T"));
        QCOMPARE(on.box()->HotButton, -1);
        on.hover(close);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(on.view(), &leave);
        QCOMPARE(on.box()->HotButton, -1);
        QVERIFY(!on.area().hotObject());
    }

    void nothingElseGetsHotDuringAGesture() {
        const BoxedBuilder on;
        on.hover(on.caption());
        on.press(on.caption());
        on.moveTo(on.captionOf("T"));
        QCOMPARE(on.area().hotObject(), on.box());
        on.moveTo({700, 20});
        QCOMPARE(on.area().hotObject(), on.box());
    }

    void cursorOfEachPlace_data() {
        QTest::addColumn<int>("hit");
        QTest::addColumn<int>("shape");
        const auto row = [](const char* name, TTableHitTest hit, Qt::CursorShape shape) {
            QTest::newRow(name) << int(hit) << int(shape);
        };
        row("left", htTLeft, Qt::SizeHorCursor);
        row("right", htTRight, Qt::SizeHorCursor);
        row("top", htTTop, Qt::SizeVerCursor);
        row("bottom", htTBottom, Qt::SizeVerCursor);
        row("left top", htTLeftTop, Qt::SizeFDiagCursor);
        row("right bottom", htTRightBottom, Qt::SizeFDiagCursor);
        row("left bottom", htTLeftBottom, Qt::SizeBDiagCursor);
        row("right top", htTRightTop, Qt::SizeBDiagCursor);
        row("end of a link", htTEndLine, Qt::UpArrowCursor);
        row("bend point", htTPoint, Qt::SizeAllCursor);
        row("caption", htTCaption, Qt::ArrowCursor);
        row("rows", htTClient, Qt::ArrowCursor);
        row("button", htTbutton, Qt::ArrowCursor);
        row("check box", htTCheck, Qt::ArrowCursor);
        row("nothing", htTOutSide, Qt::ArrowCursor);
    }
    void cursorOfEachPlace() {
        QFETCH(int, hit);
        QFETCH(int, shape);
        QCOMPARE(int(TorvQDWorkArea::cursorFor(TTableHitTest(hit))), shape);
    }

    void cursorFollowsTheMouse() {
        const BoxedBuilder on;
        const auto cursorAt = [&](const QPoint& point) {
            on.hover(point);
            return on.view()->cursor().shape();
        };
        QCOMPARE(cursorAt(on.edge("left")), Qt::SizeHorCursor);
        QCOMPARE(cursorAt(on.edge("right bottom")), Qt::SizeFDiagCursor);
        QCOMPARE(cursorAt(on.edge("left bottom")), Qt::SizeBDiagCursor);
        QCOMPARE(cursorAt(on.edge("top")), Qt::SizeVerCursor);
        QCOMPARE(cursorAt(on.caption()), Qt::ArrowCursor);
        // While an edge is dragged its cursor stays.
        on.hover(on.edge("left"));
        on.press(on.edge("left"));
        on.moveTo({700, 20});
        QCOMPARE(on.view()->cursor().shape(), Qt::SizeHorCursor);
        on.release({700, 20});
        QCOMPARE(on.view()->cursor().shape(), Qt::ArrowCursor);
    }

    // --- clicks

    void secondClickOnAClosedBoxIsAFirstOneOnWhatLayBelow() {
        ShownBuilder on;
        TorvQDTable* upper = on.table("T");
        TorvQDTable* lower = on.table("U");
        upper->MoveTable(0, 100);
        lower->MoveTable(upper->Left - lower->Left, upper->Top - 45 - lower->Top);
        const TRect buttons = upper->toView(upper->GetButtonRect());
        const QPoint close(buttons.Right - 5, buttons.Top + 8);
        QCOMPARE(lower->HitTest(close), htTClient);
        on.doubleClick(close);
        QCOMPARE(on.tables(), QStringList("U"));
        QVERIFY(on.table("U")->Selected);
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void doubleClickOnARowTogglesIt() {
        BoxedBuilder on;
        on.doubleClick(on.rowTextOf("WIDE", "B"));
        QCOMPARE(on.columns(), QStringList("B||WIDE.B"));
        QCOMPARE(on.changes, 1);
        on.doubleClick(on.rowTextOf("WIDE", "B"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 2);
        verifyBuilder(on.builder);
    }

    // Release, double click and second release toggle it one after the other.
    void doubleClickOnACheckSquareChangesItOnce() {
        BoxedBuilder on;
        on.doubleClick(on.checkSquareOf("WIDE", "B"));
        QCOMPARE(on.columns(), QStringList("B||WIDE.B"));
        QCOMPARE(on.changes, 3);
        on.doubleClick(on.checkSquareOf("WIDE", "B"));
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void doubleClickOnTheCaptionRenames() {
        const BoxedBuilder on;
        on.doubleClick(on.captionOf("T"));
        QVERIFY(on.edit()->isVisible());
        QCOMPARE(on.edit()->text(), "T");
        QVERIFY(!on.area().isGesturing());
    }

    void doubleClickOnTheCollapseButtonCollapsesOnce() {
        const BoxedBuilder on;
        const QPoint collapse = ShownBuilder::centre(on.box()->GetButtonRect()) - QPoint(14, 0);
        on.doubleClick(collapse);
        QVERIFY(!on.box()->Expanded);
    }

    void closeAndUnlinkButtonsAct() {
        BoxedBuilder on;
        on.link("WIDE", "A", "T", "A");
        on.link("U", "A", "T", "B");
        on.changes = 0;
        const QPoint unlink = ShownBuilder::centre(on.box()->GetButtonRect());
        on.click(unlink);
        QCOMPARE(on.links(), QStringList("U.A=T.B"));
        QCOMPARE(on.changes, 1);
        on.click(unlink + QPoint(14, 0));
        QCOMPARE(on.tables(), QStringList({"U", "T"}));
        QCOMPARE(on.changes, 2);
        verifyBuilder(on.builder);
    }

    void pressOnCloseAndReleaseOverUnlinkDoesNothing() {
        BoxedBuilder on;
        on.link("WIDE", "A", "T", "A");
        on.changes = 0;
        const QPoint unlink = ShownBuilder::centre(on.box()->GetButtonRect());
        on.press(unlink + QPoint(14, 0));
        on.moveTo(unlink);
        on.release(unlink);
        QCOMPARE(on.tables(), QStringList({"U", "T", "WIDE"}));
        QCOMPARE(on.links(), QStringList("WIDE.A=T.A"));
        QCOMPARE(on.changes, 0);
    }

    void pressOnACheckSquareAndReleaseAboveTheListTicksNothing() {
        BoxedBuilder on;
        const QPoint square = on.checkSquareOf("WIDE", "A");
        on.press(square);
        on.moveTo(square - QPoint(0, 15));
        on.release(square - QPoint(0, 15));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 0);
    }

    // --- at the edge of the view

    void viewFollowsABoxThatIsHeldAtItsEdge_data() {
        QTest::addColumn<QPoint>("edge");  // 0 is the near edge, 1 the far one, -1 in between
        QTest::addColumn<QPoint>("by");
        QTest::newRow("left top") << QPoint(0, 0) << QPoint(-20, -20);
        QTest::newRow("right") << QPoint(1, -1) << QPoint(20, 0);
        QTest::newRow("bottom") << QPoint(-1, 1) << QPoint(0, 20);
    }
    void viewFollowsABoxThatIsHeldAtItsEdge() {
        QFETCH(QPoint, edge);
        QFETCH(QPoint, by);
        const BoxedBuilder on;
        on.place("WIDE", {400, 300});
        on.scrollTo({200, 200});
        const QPoint from = on.caption();
        const auto coordinate = [](int which, int middle, int size) {
            return which < 0 ? middle : which == 0 ? 11 : size - 12;
        };
        const QPoint at(coordinate(edge.x(), from.x() + 10, on.view()->width()),
                        coordinate(edge.y(), from.y() + 10, on.view()->height()));
        on.press(from);
        on.moveTo(at);
        QVERIFY(on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
        const QPoint place = on.boxPlace();
        on.area().timerFired(TorvQDWorkArea::edgeTimer);
        QCOMPARE(on.area().scrollPosition(), QPoint(200, 200) + by);
        QCOMPARE(on.boxPlace(), place + by);
        on.moveTo(from + QPoint(10, 10));
        QVERIFY(!on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
    }

    void viewStandsStillOnceTheGestureIsOver_data() {
        QTest::addColumn<QString>("end");
        for (const char* end :
             {"release", "lost release", "escape", "focus", "closing", "clearing", "arranging"}) {
            QTest::newRow(end) << QString(end);
        }
    }
    void viewStandsStillOnceTheGestureIsOver() {
        QFETCH(QString, end);
        BoxedBuilder on;
        on.scrollTo({50, 20});
        const QPoint from = on.caption();
        const QPoint edge(on.view()->width() - 5, from.y());
        on.press(from);
        on.moveTo(edge);
        QVERIFY(on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
        if (end == "release") on.release(edge);
        if (end == "lost release") on.hover(edge);
        if (end == "escape") on.pressEscape();
        if (end == "focus") on.loseFocus();
        if (end == "closing") on.box()->CloseTable();
        if (end == "clearing") on.builder.Clear();
        if (end == "arranging") on.area().arrange();
        const QPoint position = on.area().scrollPosition();
        on.area().timerFired(TorvQDWorkArea::edgeTimer);
        QCOMPARE(on.area().scrollPosition(), position);
        QVERIFY(!on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
    }

    void pressedButtonAtTheEdgeScrollsNothing() {
        const BoxedBuilder on;
        on.press(on.checkSquareOf("WIDE", "A"));
        on.moveTo({on.view()->width() - 5, 100});
        QVERIFY(!on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
    }

    // --- telling of changes

    void looksOfABoxDoNotChangeTheStatement() {
        BoxedBuilder on;
        on.drag(on.caption(), {30, 10});
        on.drag(on.edge("right bottom"), {30, 10});
        on.wheel(on.rowTextOf("WIDE", "A"), -120);
        on.click(on.rowTextOf("WIDE", "F"));
        on.click(ShownBuilder::centre(on.box()->GetButtonRect()) - QPoint(14, 0));
        on.scrollTo({20, 30});
        on.area().arrange();
        QCOMPARE(on.changes, 0);
    }
};

QTEST_MAIN(GesturesTest)
#include "tst_gestures.moc"
