// SPDX-License-Identifier: MIT
// What a box does with the mouse, on a canvas that only takes notes.
#include "diagram/HandledBox.h"

using orvtest::FakeCanvas;
using orvtest::HandledBox;
using orvtest::numberedFields;
using orvtest::oddScroll;

namespace {

constexpr int squarePx = 16;  // the check square of a row

// The caption's buttons lie in x 88 to 127, y 42 to 59.
constexpr QPoint collapsePoint(90, 50);
constexpr QPoint unlinkPoint(105, 50);
constexpr QPoint closePoint(120, 50);
constexpr QPoint captionPoint(60, 50);

}  // namespace

class FloatTableInputTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the caption's buttons

    void placesOfTheButtons_data() {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<int>("button");
        const auto row = [](int x, int y, int button) {
            QTest::addRow("%d, %d", x, y) << QPoint(x, y) << button;
        };
        row(87, 50, -1);
        row(88, 50, 0);
        row(99, 50, 0);  // left of 88 + 11 + 1
        row(100, 50, 1);
        row(115, 50, 1);
        row(116, 50, 2);  // right of 128 - 11 - 2
        row(127, 50, 2);
        row(128, 50, -1);
        row(120, 41, -1);
        row(120, 42, 2);
        row(120, 59, 2);
        row(120, 60, -1);
    }
    void placesOfTheButtons() {
        QFETCH(QPoint, point);
        QFETCH(int, button);
        const HandledBox on;
        QCOMPARE(on.box.buttonAt(point - oddScroll), button);
    }

    void pressedButtonActsWhenItIsReleasedOverItself_data() {
        QTest::addColumn<QPoint>("pressed");
        QTest::addColumn<QPoint>("released");
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("action");
        QTest::newRow("close") << closePoint << closePoint << 2 << 2;
        QTest::newRow("unlink") << unlinkPoint << unlinkPoint << 1 << 1;
        QTest::newRow("collapse") << collapsePoint << collapsePoint << 0 << 0;
        QTest::newRow("close, then unlink") << closePoint << unlinkPoint << 2 << -1;
        QTest::newRow("unlink, then close") << unlinkPoint << closePoint << 1 << -1;
        QTest::newRow("collapse, then unlink") << collapsePoint << unlinkPoint << 0 << -1;
        QTest::newRow("close, then beside the box") << closePoint << QPoint(500, 50) << 2 << -1;
    }
    void pressedButtonActsWhenItIsReleasedOverItself() {
        QFETCH(QPoint, pressed);
        QFETCH(QPoint, released);
        QFETCH(int, button);
        QFETCH(int, action);
        HandledBox on;
        on.down(pressed, htTbutton);
        QCOMPARE(on.box.PressedButton, button);
        QVERIFY(on.repainted(on.box.GetButtonRect()));
        QVERIFY(on.canvas.closed.empty() && on.canvas.unlinked.empty() && on.box.Expanded);
        on.canvas.invalidated.clear();
        on.up(released, htTbutton);
        QCOMPARE(on.box.PressedButton, -1);
        QVERIFY(on.repainted(on.box.GetButtonRect()));
        QCOMPARE(int(on.canvas.closed.size()), action == 2 ? 1 : 0);
        QCOMPARE(int(on.canvas.unlinked.size()), action == 1 ? 1 : 0);
        QCOMPARE(on.box.Expanded == 0, action == 0);
    }

    void collapseButtonExpandsAgain() {
        HandledBox on;
        for (const bool expanded : {false, true, false}) {
            on.down(collapsePoint, htTbutton);
            on.up(collapsePoint, htTbutton);
            QCOMPARE(on.box.Expanded != 0, expanded);
        }
        QCOMPARE(on.box.HitTest(on.inRow(0, 30) - oddScroll), htTOutSide);
    }

    void releaseWithoutAPressDoesNothing() {
        HandledBox on;
        on.up(closePoint, htTbutton);
        QVERIFY(on.canvas.closed.empty());
    }

    void buttonsOfTheSelectedBoxAreHotUnderTheMouse() {
        HandledBox on;
        on.canvas.selectObject(&on.box);
        const QPoint points[] = {collapsePoint, unlinkPoint, closePoint};
        for (int button = 0; button < 3; ++button) {
            on.canvas.invalidated.clear();
            on.move(points[button], htTbutton);
            QCOMPARE(on.box.HotButton, button);
            QVERIFY(on.repainted(on.box.GetButtonRect()));
        }
        on.canvas.invalidated.clear();
        on.move(closePoint + QPoint(1, 0), htTbutton);
        QVERIFY(on.canvas.invalidated.empty());
        on.move(captionPoint, htTCaption);
        QCOMPARE(on.box.HotButton, -1);
        QVERIFY(on.repainted(on.box.GetButtonRect()));
    }

    void buttonsOfAnotherBoxAreNotHot() {
        HandledBox on;
        on.move(closePoint, htTbutton);
        QCOMPARE(on.box.HotButton, -1);
        QCOMPARE(on.box.GetHint(), QString());
    }

    void pressedButtonOfAnotherBoxLooksPressedAtOnce() {
        HandledBox on;
        on.move(closePoint, htTbutton);
        on.canvas.selectObject(&on.box);
        on.down(closePoint, htTbutton);
        QCOMPARE(on.box.PressedButton, 2);
        QCOMPARE(on.box.HotButton, 2);
    }

    void heldButtonLeavesAndComesBack() {
        HandledBox on;
        on.canvas.selectObject(&on.box);
        on.down(closePoint, htTbutton);
        on.move(unlinkPoint, htTbutton, Qt::LeftButton);
        QCOMPARE(on.box.PressedButton, 2);
        QCOMPARE(on.box.HotButton, 1);
        on.move({500, 500}, htTbutton, Qt::LeftButton);
        QCOMPARE(on.box.HotButton, -1);
        on.move(closePoint, htTbutton, Qt::LeftButton);
        QCOMPARE(on.box.HotButton, 2);
        on.up(closePoint, htTbutton);
        QCOMPARE(int(on.canvas.closed.size()), 1);
    }

    void leavingEndsTheHintAndTheHotButton() {
        HandledBox on;
        on.canvas.selectObject(&on.box);
        on.move(closePoint, htTbutton);
        on.canvas.invalidated.clear();
        TWMMouse message;
        on.box.LeaveHit(message, htTbutton);
        QCOMPARE(on.box.HotButton, -1);
        QCOMPARE(on.box.GetHint(), QString());
        QVERIFY(on.repainted(on.box.GetButtonRect()));
    }

    // --- hints

    void hintsOfButtons_data() {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<QString>("hint");
        QTest::newRow("collapse") << collapsePoint << "Collapse/Expand table";
        QTest::newRow("unlink") << unlinkPoint << "Unlink table";
        QTest::newRow("close") << closePoint << "Close table";
        QTest::newRow("beside") << QPoint(87, 50) << QString();
    }
    void hintsOfButtons() {
        QFETCH(QPoint, point);
        QFETCH(QString, hint);
        HandledBox on;
        on.canvas.selectObject(&on.box);
        on.move(point, htTbutton);
        QCOMPARE(on.box.GetHint(), hint);
    }

    void hintOfTheCheckBoxSaysWhatAPressWillDo_data() {
        QTest::addColumn<int>("ticked");
        QTest::addColumn<QString>("hint");
        QTest::newRow("none") << 0 << "Select all fields";
        QTest::newRow("some") << 1 << "Select all fields";
        QTest::newRow("all") << 3 << "Unselect all fields";
    }
    void hintOfTheCheckBoxSaysWhatAPressWillDo() {
        QFETCH(int, ticked);
        QFETCH(QString, hint);
        HandledBox on(3);
        for (int index = 0; index < ticked; ++index) on.row(index)->UpdateCheck(-1);
        on.move({36, 50}, htTCheck);
        QCOMPARE(on.box.GetHint(), hint);
        on.move({36, 50}, htTCheck, Qt::LeftButton);
        QCOMPARE(on.box.GetHint(), QString());
    }

    void hintOfTheCaption() {
        HandledBox on;
        on.move(captionPoint, htTCaption);
        QCOMPARE(on.box.GetHint(), "Double click for edit alias");
        on.move(captionPoint, htTCaption, Qt::LeftButton);
        QCOMPARE(on.box.GetHint(), QString());
    }

    void hintOfARowIsItsNameAndType() {
        const TDataSet fields({{"NO", ftInteger}, {"MADE", ftDateTime}, {"note", ftString}});
        HandledBox on(fields);
        on.move(on.inRow(0, 3), htTClient);
        QCOMPARE(on.box.GetHint(), "NO (Integer)");
        on.move(on.inRow(1, 50), htTClient);
        QCOMPARE(on.box.GetHint(), "MADE (Date&&Time)");
        on.move(on.inRow(2, 50), htTClient);
        QCOMPARE(on.box.GetHint(), "\"note\" (String)");
        on.move(on.inRow(3, 50), htTClient);  // below the last row
        QCOMPARE(on.box.GetHint(), QString());
    }

    void otherPlacesHaveNoHint() {
        HandledBox on;
        for (const TTableHitTest hit : {htTLeft, htTRightBottom, htTOutSide}) {
            on.move(captionPoint, htTCaption);
            on.move({30, 100}, hit);
            QCOMPARE(on.box.GetHint(), QString());
        }
    }

    // --- rows

    void pressBelowTheLastRowKeepsTheCurrentOne() {
        HandledBox on(3);
        on.box.SetCurrentItem(on.row(1));
        on.down(on.inRow(3, 30), htTClient);
        QCOMPARE(on.currentRow(), 1);
    }

    void pressTakesTheFirstRowWhoseBottomIsBelowTheMouse() {
        HandledBox on;
        on.box.SetFirstVisibleItem(2);
        on.down(on.inRow(3, 30) + QPoint(0, 15), htTClient);
        QCOMPARE(on.currentRow(), 3);
        on.down(on.inRow(3, 30) + QPoint(0, 16), htTClient);
        QCOMPARE(on.currentRow(), 4);
        on.down(on.inRow(2, 30) - QPoint(0, 1), htTClient);
        QCOMPARE(on.currentRow(), 2);
    }

    void pressElsewhereKeepsTheCurrentRow() {
        HandledBox on;
        on.box.SetCurrentItem(on.row(2));
        for (const TTableHitTest hit : {htTCaption, htTLeft, htTCheck, htTbutton}) {
            on.down(on.inRow(0, 30), hit);
            QCOMPARE(on.currentRow(), 2);
        }
    }

    // The mouse belongs to the box from press to release, wherever it goes meanwhile.
    void releaseAboveTheListTicksNothing() {
        HandledBox on;
        on.box.SetFirstVisibleItem(2);
        on.down(on.inRow(2, 5), htTClient);
        for (const int above : {2, 10, 300}) {
            on.up(on.inRow(2, 5) - QPoint(0, above), htTClient);
            QVERIFY(!on.row(2)->Checked);
        }
        on.up(on.inRow(2, 5) - QPoint(0, 1), htTClient);  // still of the row
        QVERIFY(on.row(2)->Checked);
    }

    void clickDoesNotTickAnInputParameter() {
        HandledBox on(2);
        int asked = 0;
        on.canvas.onEnterParameter = [&](TorvQDTable*, TorvQDListItem*) { ++asked; };
        on.row(0)->ParamType = ptInput;
        on.down(on.inRow(0, 5), htTClient);
        on.up(on.inRow(0, 5), htTClient);
        QCOMPARE(asked, 0);
        on.doubleClick(on.inRow(0, 5), htTClient);
        QCOMPARE(asked, 1);
        QVERIFY(!on.row(0)->Checked);
    }

    void rowIsTakenAlongWhenItIsHeldBesideItsCheckSquare_data() {
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("isHeld");
        QTest::addColumn<int>("x");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("in the square") << 1 << int(ptOutput) << true << squarePx - 1 << false;
        QTest::newRow("at its right edge") << 1 << int(ptOutput) << true << squarePx << false;
        QTest::newRow("beside it") << 1 << int(ptOutput) << true << squarePx + 1 << true;
        QTest::newRow("not held") << 1 << int(ptOutput) << false << squarePx + 1 << false;
        QTest::newRow("input row") << 1 << int(ptInput) << true << squarePx + 1 << false;
        QTest::newRow("result row") << 1 << int(ptResult) << true << squarePx + 1 << false;
        QTest::newRow("no current row") << -1 << int(ptOutput) << true << squarePx + 1 << false;
    }
    void rowIsTakenAlongWhenItIsHeldBesideItsCheckSquare() {
        QFETCH(int, current);
        QFETCH(int, type);
        QFETCH(bool, isHeld);
        QFETCH(int, x);
        QFETCH(bool, isTaken);
        HandledBox on;
        on.row(1)->ParamType = TParamType(type);
        if (current >= 0) on.box.SetCurrentItem(on.row(current));
        on.move(on.inRow(1, x), htTClient, isHeld ? Qt::LeftButton : Qt::NoButton);
        QCOMPARE(int(on.canvas.dragged.size()), isTaken ? 1 : 0);
        if (isTaken) QCOMPARE(on.canvas.dragged.front(), on.row(1));
        QCOMPARE(on.box.GetHint(), isTaken ? QString() : "F1 (Integer)");
    }

    void otherPlacesTakeNoRowAlong() {
        HandledBox on;
        on.box.SetCurrentItem(on.row(1));
        for (const TTableHitTest hit : {htTCaption, htTCheck, htTbutton, htTRight}) {
            on.move(on.inRow(1, 50), hit, Qt::LeftButton);
        }
        QVERIFY(on.canvas.dragged.empty());
    }

    void markedRowIsRepaintedWithTheOneBefore() {
        HandledBox on;
        on.box.setDropItem(on.row(1));
        on.canvas.invalidated.clear();
        on.box.setDropItem(on.row(3));
        QCOMPARE(on.box.DropItem, on.row(3));
        QCOMPARE(on.canvas.invalidated, (std::vector<TRect>{on.box.GetItemRect(on.row(1)),
                                                            on.box.GetItemRect(on.row(3))}));
        on.canvas.invalidated.clear();
        on.box.setDropItem(on.row(3));
        QVERIFY(on.canvas.invalidated.empty());
        on.box.setDropItem(nullptr);
        QVERIFY(!on.box.DropItem);
    }

    // --- double clicks

    void doubleClickOnTheCaptionRenames() {
        HandledBox on;
        on.doubleClick(captionPoint, htTCaption);
        QCOMPARE(on.canvas.renames, std::vector<TorvQDTable*>{&on.box});
    }

    void doubleClickOnARowTogglesTheCurrentOne() {
        HandledBox on;
        on.doubleClick(on.inRow(2, 50), htTClient);
        QVERIFY(on.canvas.checks.isEmpty());
        on.box.SetCurrentItem(on.row(2));
        on.doubleClick(on.inRow(2, 50), htTClient);
        on.doubleClick(on.inRow(2, 50), htTClient);
        QCOMPARE(on.canvas.checks, QStringList({"F2+", "F2-"}));
        QCOMPARE(on.box.FieldState, 0);
    }

    void doubleClickElsewhereDoesNothing() {
        HandledBox on;
        on.box.SetCurrentItem(on.row(2));
        for (const TTableHitTest hit : {htTbutton, htTCheck, htTLeft, htTOutSide}) {
            on.doubleClick(captionPoint, hit);
        }
        QVERIFY(on.canvas.renames.empty());
        QVERIFY(on.canvas.checks.isEmpty());
        QVERIFY(on.box.Expanded);
    }

    // --- events

    void eventsTellPlacesRelativeToTheBox() {
        HandledBox on;
        QStringList told;
        const auto say = [&](const char* name, QObject* sender, int x, int y) {
            if (sender == &on.box) told << QStringLiteral("%1 %2 %3").arg(name).arg(x).arg(y);
        };
        on.box.OnMouseDown = [&](QObject* sender, Qt::MouseButton button, Qt::KeyboardModifiers,
                                 int x, int y) {
            say(button == Qt::LeftButton ? "down" : "?", sender, x, y);
        };
        on.box.OnMouseMove = [&](QObject* sender, Qt::KeyboardModifiers shift, int x, int y) {
            say(shift == Qt::NoModifier ? "move" : "?", sender, x, y);
        };
        on.box.OnMouseUp = [&](QObject* sender, Qt::MouseButton button, Qt::KeyboardModifiers,
                               int x,
                               int y) { say(button == Qt::LeftButton ? "up" : "?", sender, x, y); };
        const QPoint point(71, 77);
        const QPoint inView = point - oddScroll - QPoint(30, 40);
        const QString place = QStringLiteral(" %1 %2").arg(inView.x()).arg(inView.y());
        for (const TTableHitTest hit : {htTCaption, htTCheck, htTbutton, htTClient, htTTop}) {
            told.clear();
            on.down(point, hit);
            on.move(point, hit);
            on.up(point, hit);
            QCOMPARE(told, QStringList({"down" + place, "move" + place, "up" + place}));
        }
    }

    void boxMayDieWhileItsHostIsAsked_data() {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("key") << true;
        QTest::newRow("double click") << false;
    }
    void boxMayDieWhileItsHostIsAsked() {
        QFETCH(bool, byKey);
        FakeCanvas canvas;
        const TDataSet fields = numberedFields(1);
        auto box = std::make_unique<TorvQDTable>(&canvas, &fields, "T");
        box->Items[0]->ParamType = ptInput;
        box->SetCurrentItem(box->Items[0].get());
        canvas.onEnterParameter = [&](TorvQDTable*, TorvQDListItem*) { box.reset(); };
        int key = Qt::Key_Return;
        TWMMouse message{10, 30, Qt::LeftButton};
        if (byKey) {
            box->KeyDown(key, {});
        } else {
            box->DblClick(message, htTClient);
        }
        QVERIFY(!box);
    }

    // --- moving edges, shapes

    void leftEdgeMovesAloneAndStopsAtTheLeastWidth_data() {
        QTest::addColumn<int>("to");
        QTest::addColumn<int>("left");
        QTest::newRow("outwards") << 11 << 11;
        QTest::newRow("where it is") << 30 << 30;
        QTest::newRow("inwards") << 45 << 45;
        QTest::newRow("least width") << 50 << 50;  // 20 + 40 + 20
        QTest::newRow("beyond it") << 51 << 50;
        QTest::newRow("beyond the right edge") << 400 << 50;
    }
    void leftEdgeMovesAloneAndStopsAtTheLeastWidth() {
        QFETCH(int, to);
        QFETCH(int, left);
        HandledBox on;
        on.box.MoveLeft(to);
        QCOMPARE(on.box.GetBoundsRect(), TRect({left, 40, 130, 168}));
    }

    void upperEdgeMovesAloneAndStopsAtTheLeastHeight_data() {
        QTest::addColumn<int>("to");
        QTest::addColumn<int>("top");
        QTest::newRow("outwards") << 3 << 3;
        QTest::newRow("where it is") << 40 << 40;
        QTest::newRow("inwards") << 60 << 60;
        QTest::newRow("least height") << 112 << 112;  // 2 * 16 + 20 + 4
        QTest::newRow("beyond it") << 113 << 112;
        QTest::newRow("beyond the lower edge") << 999 << 112;
    }
    void upperEdgeMovesAloneAndStopsAtTheLeastHeight() {
        QFETCH(int, to);
        QFETCH(int, top);
        HandledBox on;
        on.box.MoveUpper(to);
        QCOMPARE(on.box.GetBoundsRect(), TRect({30, top, 130, 168}));
        // One row more than would be counted fits into the height of a new box.
        QCOMPARE(on.box.VisibleCount, top == 40 ? 6 : (168 - top - 20 - 2 - 4 - 1) / 17);
    }

    void scrollBarStaysWhenTheLeftEdgeMoves() {
        HandledBox on;
        on.canvas.selectObject(&on.box);
        QVERIFY(on.canvas.scrollBarVisible);
        on.canvas.scrollBarMoves.clear();
        on.box.MoveLeft(10);
        QPoint moved;
        for (const QPoint& by : on.canvas.scrollBarMoves) moved += by;
        QCOMPARE(moved, QPoint());
    }

    // A box of one row is lower than anybody can make it.
    void shapeIsPutBackAsItWas() {
        HandledBox on(1);
        const TRect before = on.box.GetBoundsRect();
        const TorvQDTable::Shape shape = on.box.shape();
        on.box.SetHeight(300);
        on.box.SetWidth(250);
        on.box.MoveTable(40, 50);
        on.canvas.moved = on.canvas.resized = 0;
        on.canvas.invalidated.clear();
        on.box.setShape(shape);
        QCOMPARE(on.box.GetBoundsRect(), before);
        QCOMPARE(on.box.VisibleCount, 1);
        QCOMPARE(on.box.FirstVisibleItem, 0);
        QCOMPARE(on.canvas.moved, 1);
        QCOMPARE(on.canvas.resized, 1);
        QVERIFY(on.repainted(before));
        QVERIFY(on.repainted({70, 90, 320, 390}));
    }

    void shapeKnowsTheScrolledRowsAndTheScrollBar() {
        HandledBox on;
        on.canvas.selectObject(&on.box);
        on.box.SetFirstVisibleItem(3);
        const TorvQDTable::Shape shape = on.box.shape();
        on.box.SetHeight(400);
        QVERIFY(!on.canvas.scrollBarVisible);
        on.box.setShape(shape);
        QCOMPARE(on.box.FirstVisibleItem, 3);
        QCOMPARE(on.box.VisibleCount, 6);
        QVERIFY(on.canvas.scrollBarVisible);
        QCOMPARE(on.canvas.placed.back().position, 3);
    }
};

QTEST_MAIN(FloatTableInputTest)
#include "tst_floattableinput.moc"
