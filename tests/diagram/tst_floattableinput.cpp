// SPDX-License-Identifier: MIT
// What a box does with the mouse and the keys, on a canvas that only takes notes.
#include "diagram/ORVQDFloatTable.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"

#include <QMenu>

using orvtest::FakeCanvas;
using orvtest::numberedFields;

namespace {

constexpr QPoint oddScroll(137, 53);
constexpr int squarePx = 16;  // the check square of a row

/// A box on a canvas of its own, at (30, 40) and 100 wide, the canvas scrolled to an odd place. The
/// caption is 20 pixels high and a row 16, and 1 pixel lies between rows; of ten rows six are
/// visible. Mouse messages are given in coordinates of the diagram.
struct BoxOnCanvas {
    explicit BoxOnCanvas(int rows = 10) : BoxOnCanvas(numberedFields(rows)) {}
    explicit BoxOnCanvas(const TDataSet& dataSet) : box(&canvas, &dataSet, "T") {
        box.Left = 30;
        box.Top = 40;
        canvas.scroll = oddScroll;
    }

    TorvQDListItem* row(int index) const { return box.Items[std::size_t(index)].get(); }
    int currentRow() const { return box.CurrentItem ? box.CurrentItem->GetIndex() : -1; }
    /// A point of a row's first pixel line, so many pixels from its left edge.
    QPoint inRow(int index, int x) const {
        return {30 + 2 + 2 + x, 40 + 20 + 1 + (index - box.FirstVisibleItem) * 17};
    }

    static TWMMouse message(const QPoint& point, Qt::MouseButtons buttons) {
        const QPoint view = point - oddScroll;
        return {view.x(), view.y(), buttons};
    }
    void down(const QPoint& point, TTableHitTest hit) {
        TWMMouse mouse = message(point, Qt::LeftButton);
        box.MouseDown(mouse, hit);
    }
    void move(const QPoint& point, TTableHitTest hit, Qt::MouseButtons held = Qt::NoButton) {
        TWMMouse mouse = message(point, held);
        box.MouseMove(mouse, hit);
    }
    void up(const QPoint& point, TTableHitTest hit) {
        TWMMouse mouse = message(point, Qt::LeftButton);
        box.MouseUp(mouse, hit);
    }
    void doubleClick(const QPoint& point, TTableHitTest hit) {
        TWMMouse mouse = message(point, Qt::LeftButton);
        box.DblClick(mouse, hit);
    }
    /// What became of the key: 0 when the box has taken it.
    int key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {}) {
        canvas.typed = text;
        box.KeyDown(key, modifiers);
        return key;
    }
    bool repainted(const TRect& rect) const {
        const TRect view = rect.translated(-oddScroll.x(), -oddScroll.y());
        const auto& rects = canvas.invalidated;
        return std::find(rects.begin(), rects.end(), view) != rects.end();
    }

    FakeCanvas canvas;
    TorvQDTable box;
};

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
        const BoxOnCanvas on;
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
        BoxOnCanvas on;
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
        BoxOnCanvas on;
        for (const bool expanded : {false, true, false}) {
            on.down(collapsePoint, htTbutton);
            on.up(collapsePoint, htTbutton);
            QCOMPARE(on.box.Expanded != 0, expanded);
        }
        QCOMPARE(on.box.HitTest(on.inRow(0, 30) - oddScroll), htTOutSide);
    }

    void releaseWithoutAPressDoesNothing() {
        BoxOnCanvas on;
        on.up(closePoint, htTbutton);
        QVERIFY(on.canvas.closed.empty());
    }

    void buttonsOfTheSelectedBoxAreHotUnderTheMouse() {
        BoxOnCanvas on;
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
        BoxOnCanvas on;
        on.move(closePoint, htTbutton);
        QCOMPARE(on.box.HotButton, -1);
        QCOMPARE(on.box.GetHint(), QString());
    }

    void heldButtonLeavesAndComesBack() {
        BoxOnCanvas on;
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
        BoxOnCanvas on;
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
        BoxOnCanvas on;
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
        BoxOnCanvas on(3);
        for (int index = 0; index < ticked; ++index) on.row(index)->UpdateCheck(-1);
        on.move({36, 50}, htTCheck);
        QCOMPARE(on.box.GetHint(), hint);
        on.move({36, 50}, htTCheck, Qt::LeftButton);
        QCOMPARE(on.box.GetHint(), QString());
    }

    void hintOfTheCaption() {
        BoxOnCanvas on;
        on.move(captionPoint, htTCaption);
        QCOMPARE(on.box.GetHint(), "Double click for edit alias");
        on.move(captionPoint, htTCaption, Qt::LeftButton);
        QCOMPARE(on.box.GetHint(), QString());
    }

    void hintOfARowIsItsNameAndType() {
        const TDataSet fields({{"NO", ftInteger}, {"MADE", ftDateTime}, {"note", ftString}});
        BoxOnCanvas on(fields);
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
        BoxOnCanvas on;
        for (const TTableHitTest hit : {htTLeft, htTRightBottom, htTOutSide}) {
            on.move(captionPoint, htTCaption);
            on.move({30, 100}, hit);
            QCOMPARE(on.box.GetHint(), QString());
        }
    }

    // --- rows

    void pressBelowTheLastRowKeepsTheCurrentOne() {
        BoxOnCanvas on(3);
        on.box.SetCurrentItem(on.row(1));
        on.down(on.inRow(3, 30), htTClient);
        QCOMPARE(on.currentRow(), 1);
    }

    void pressTakesTheFirstRowWhoseBottomIsBelowTheMouse() {
        BoxOnCanvas on;
        on.box.SetFirstVisibleItem(2);
        on.down(on.inRow(3, 30) + QPoint(0, 15), htTClient);
        QCOMPARE(on.currentRow(), 3);
        on.down(on.inRow(3, 30) + QPoint(0, 16), htTClient);
        QCOMPARE(on.currentRow(), 4);
        on.down(on.inRow(2, 30) - QPoint(0, 1), htTClient);
        QCOMPARE(on.currentRow(), 2);
    }

    void pressElsewhereKeepsTheCurrentRow() {
        BoxOnCanvas on;
        on.box.SetCurrentItem(on.row(2));
        for (const TTableHitTest hit : {htTCaption, htTLeft, htTCheck, htTbutton}) {
            on.down(on.inRow(0, 30), hit);
            QCOMPARE(on.currentRow(), 2);
        }
    }

    // The mouse belongs to the box from press to release, wherever it goes meanwhile.
    void releaseAboveTheListTicksNothing() {
        BoxOnCanvas on;
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
        BoxOnCanvas on(2);
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
        BoxOnCanvas on;
        on.row(1)->ParamType = TParamType(type);
        if (current >= 0) on.box.SetCurrentItem(on.row(current));
        on.move(on.inRow(1, x), htTClient, isHeld ? Qt::LeftButton : Qt::NoButton);
        QCOMPARE(int(on.canvas.dragged.size()), isTaken ? 1 : 0);
        if (isTaken) QCOMPARE(on.canvas.dragged.front(), on.row(1));
        QCOMPARE(on.box.GetHint(), isTaken ? QString() : "F1 (Integer)");
    }

    void otherPlacesTakeNoRowAlong() {
        BoxOnCanvas on;
        on.box.SetCurrentItem(on.row(1));
        for (const TTableHitTest hit : {htTCaption, htTCheck, htTbutton, htTRight}) {
            on.move(on.inRow(1, 50), hit, Qt::LeftButton);
        }
        QVERIFY(on.canvas.dragged.empty());
    }

    void markedRowIsRepaintedWithTheOneBefore() {
        BoxOnCanvas on;
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
        BoxOnCanvas on;
        on.doubleClick(captionPoint, htTCaption);
        QCOMPARE(on.canvas.renames, std::vector<TorvQDTable*>{&on.box});
    }

    void doubleClickOnARowTogglesTheCurrentOne() {
        BoxOnCanvas on;
        on.doubleClick(on.inRow(2, 50), htTClient);
        QVERIFY(on.canvas.checks.isEmpty());
        on.box.SetCurrentItem(on.row(2));
        on.doubleClick(on.inRow(2, 50), htTClient);
        on.doubleClick(on.inRow(2, 50), htTClient);
        QCOMPARE(on.canvas.checks, QStringList({"F2+", "F2-"}));
        QCOMPARE(on.box.FieldState, 0);
    }

    void doubleClickElsewhereDoesNothing() {
        BoxOnCanvas on;
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
        BoxOnCanvas on;
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

    void keysAreToldBeforeTheyAct() {
        BoxOnCanvas on;
        QStringList told;
        on.box.OnKeyDown = [&](QObject*, int& key, Qt::KeyboardModifiers) {
            told << QStringLiteral("%1 at %2").arg(key == Qt::Key_Down).arg(on.currentRow());
        };
        on.box.OnKeyUp = [&](QObject*, int& key, Qt::KeyboardModifiers) {
            told << QStringLiteral("up %1").arg(key == Qt::Key_Down);
        };
        on.key(Qt::Key_Down);
        int key = Qt::Key_Down;
        on.box.KeyUp(key, {});
        QCOMPARE(told, QStringList({"1 at -1", "up 1"}));
        QCOMPARE(on.currentRow(), 0);
    }

    void keyThatTheHostSwallowsDoesNothing() {
        BoxOnCanvas on;
        on.box.OnKeyDown = [](QObject*, int& key, Qt::KeyboardModifiers) { key = 0; };
        on.key(Qt::Key_Down);
        QCOMPARE(on.key(Qt::Key_A, "a"), 0);
        QVERIFY(!on.box.CurrentItem);
        QVERIFY(on.canvas.searches.empty());
    }

    // --- the keys

    void enterAndSpaceToggleTheCurrentRow() {
        BoxOnCanvas on;
        QCOMPARE(on.key(Qt::Key_Space, " "), 0);
        QVERIFY(on.canvas.checks.isEmpty());
        on.box.SetCurrentItem(on.row(3));
        for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            QCOMPARE(on.key(key), 0);
        }
        QCOMPARE(on.canvas.checks, QStringList({"F3+", "F3-", "F3+"}));
        QCOMPARE(on.box.FieldState, 1);
        QCOMPARE(on.canvas.begun, on.canvas.ended);
    }

    void enterAndSpaceAskForAParametersValue() {
        BoxOnCanvas on(2);
        int asked = 0;
        on.canvas.onEnterParameter = [&](TorvQDTable*, TorvQDListItem*) { ++asked; };
        on.row(0)->ParamType = ptInput;
        on.box.SetCurrentItem(on.row(0));
        on.key(Qt::Key_Space);
        on.key(Qt::Key_Return);
        QCOMPARE(asked, 2);
    }

    void keysChooseARow_data() {
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("newCurrent");
        QTest::addColumn<int>("newFirst");
        const auto row = [](const char* name, int current, int first, int key, int newCurrent,
                            int newFirst) {
            QTest::newRow(name) << current << first << key << newCurrent << newFirst;
        };
        // Ten rows, six of them visible.
        row("down", 0, 0, Qt::Key_Down, 1, 0);
        row("right", 0, 0, Qt::Key_Right, 1, 0);
        row("up", 2, 0, Qt::Key_Up, 1, 0);
        row("left", 2, 0, Qt::Key_Left, 1, 0);
        row("down at the end", 9, 4, Qt::Key_Down, 9, 4);
        row("up at the beginning", 0, 0, Qt::Key_Up, 0, 0);
        row("down out of view", 5, 0, Qt::Key_Down, 6, 1);
        row("up out of view", 3, 3, Qt::Key_Up, 2, 2);
        row("down from above the view", 0, 4, Qt::Key_Down, 1, 1);
        row("up from below the view", 9, 0, Qt::Key_Up, 8, 3);
        row("page down", 0, 0, Qt::Key_PageDown, 5, 0);
        row("page down to the end", 5, 0, Qt::Key_PageDown, 9, 4);
        row("page down by a page", 3, 3, Qt::Key_PageDown, 8, 3);
        row("page up", 9, 4, Qt::Key_PageUp, 4, 4);
        row("page up to the beginning", 4, 4, Qt::Key_PageUp, 0, 0);
        row("home", 9, 4, Qt::Key_Home, 0, 0);
        row("end", 0, 0, Qt::Key_End, 9, 4);
        row("down without a current row", -1, 3, Qt::Key_Down, 3, 3);
        row("page up without a current row", -1, 3, Qt::Key_PageUp, 3, 3);
        row("end without a current row", -1, 3, Qt::Key_End, 3, 3);
    }
    void keysChooseARow() {
        QFETCH(int, current);
        QFETCH(int, first);
        QFETCH(int, key);
        QFETCH(int, newCurrent);
        QFETCH(int, newFirst);
        BoxOnCanvas on;
        if (current >= 0) on.box.SetCurrentItem(on.row(current));
        on.box.SetFirstVisibleItem(first);
        QCOMPARE(on.key(key), 0);
        QCOMPARE(on.currentRow(), newCurrent);
        QCOMPARE(on.box.FirstVisibleItem, newFirst);
        QVERIFY(on.canvas.checks.isEmpty());
    }

    void chosenRowIsRepaintedWithTheOneBefore() {
        BoxOnCanvas on;
        on.box.SetCurrentItem(on.row(0));
        on.canvas.invalidated.clear();
        on.key(Qt::Key_Down);
        QCOMPARE(on.canvas.invalidated, (std::vector<TRect>{on.box.GetItemRect(on.row(0)),
                                                            on.box.GetItemRect(on.row(1))}));
    }

    void boxWithoutRowsTakesTheKeysAndDoesNothing() {
        BoxOnCanvas on(0);
        for (const int key : {Qt::Key_Down, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Space}) {
            QCOMPARE(on.key(key), 0);
        }
        QVERIFY(!on.box.CurrentItem);
        QCOMPARE(on.box.FirstVisibleItem, 0);
    }

    // A box higher than its rows may stand on a row in front of its first one.
    void keysStayOnTheRowsOfAShortBox() {
        BoxOnCanvas on(3);
        on.box.SetHeight(200);
        on.box.SetFirstVisibleItem(1);
        QVERIFY(on.box.FirstVisibleItem < 0);
        on.key(Qt::Key_Down);
        QCOMPARE(on.currentRow(), 0);
        on.key(Qt::Key_PageDown);
        QCOMPARE(on.currentRow(), 2);
        on.key(Qt::Key_PageUp);
        QCOMPARE(on.currentRow(), 0);
    }

    void keysWithControlOrAltAreNotTheBoxs() {
        BoxOnCanvas on;
        for (const Qt::KeyboardModifier with :
             {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
            QCOMPARE(on.key(Qt::Key_Down, {}, with), int(Qt::Key_Down));
            QCOMPARE(on.key(Qt::Key_C, "c", with), int(Qt::Key_C));
        }
        QVERIFY(!on.box.CurrentItem);
        QVERIFY(on.canvas.searches.empty());
    }

    void lettersAndDigitsBeginASearch_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, int key, const QString& typed, const QString& text) {
            QTest::newRow(name) << key << typed << text;
        };
        row("letter", Qt::Key_A, "a", "a");
        row("capital letter", Qt::Key_A, "A", "A");
        row("digit", Qt::Key_7, "7", "7");
        row("letter with an accent", Qt::Key_Adiaeresis, QStringLiteral("\u00e4"),
            QStringLiteral("\u00e4"));
        row("other alphabet", 0x0416, QStringLiteral("\u0436"), QStringLiteral("\u0436"));
        row("key without a text", Qt::Key_Q, "", "Q");
        row("comma", Qt::Key_Comma, ",", "");
        row("at sign between the digits and the letters", Qt::Key_At, "@", "");
        row("shifted digit", Qt::Key_1, "!", "");
        row("tabulator", Qt::Key_Tab, "\t", "");
        row("function key", Qt::Key_F5, "", "");
    }
    void lettersAndDigitsBeginASearch() {
        QFETCH(int, key);
        QFETCH(QString, typed);
        QFETCH(QString, text);
        BoxOnCanvas on;
        const int left = on.key(key, typed);
        if (text.isEmpty()) {
            QVERIFY(on.canvas.searches.empty());
            QCOMPARE(left, key);
        } else {
            QCOMPARE(int(on.canvas.searches.size()), 1);
            QCOMPARE(on.canvas.searches.front().first, &on.box);
            QCOMPARE(on.canvas.searches.front().second, text);
            QCOMPARE(left, 0);
        }
    }

    // --- searching a row

    void searchFindsTheFirstRowThatBeginsWithTheText_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("found");
        QTest::newRow("first letter") << "n" << 0;
        QTest::newRow("capital letters") << "NU" << 1;
        QTest::newRow("mixed case") << "nIcK" << 3;
        QTest::newRow("quoted name") << "my" << 2;
        QTest::newRow("blank in a quoted name") << "MY F" << 2;
        QTest::newRow("quote inside a quoted name") << "q\"" << 5;
        QTest::newRow("inside a name") << "ame" << 4;
        QTest::newRow("nothing begins with it") << "x" << 4;
        QTest::newRow("longer than the name") << "NAMES" << 4;
        QTest::newRow("nothing typed") << "" << 4;
    }
    void searchFindsTheFirstRowThatBeginsWithTheText() {
        QFETCH(QString, text);
        QFETCH(int, found);
        BoxOnCanvas on(searchedFields());
        on.box.SetCurrentItem(on.row(4));
        int key = 0;
        on.box._FindField(text, key);
        QCOMPARE(on.currentRow(), found);
    }

    void foundRowIsScrolledIntoView() {
        BoxOnCanvas on;
        int key = 0;
        on.box._FindField("F8", key);
        QCOMPARE(on.currentRow(), 8);
        QCOMPARE(on.box.FirstVisibleItem, 3);
        on.box._FindField("F1", key);
        QCOMPARE(on.box.FirstVisibleItem, 1);
    }

    void arrowsGoToTheNextAndThePreviousMatch() {
        BoxOnCanvas on(searchedFields());
        const auto press = [&](int key) {
            on.box._FindField("n", key);
            return key == 0 ? on.currentRow() : -2;
        };
        QCOMPARE(press(Qt::Key_Down), 0);
        QCOMPARE(press(Qt::Key_Down), 1);
        QCOMPARE(press(Qt::Key_Down), 3);
        QCOMPARE(press(Qt::Key_Down), 3);
        QCOMPARE(press(Qt::Key_Up), 1);
        QCOMPARE(press(Qt::Key_Up), 0);
        QCOMPARE(press(Qt::Key_Up), 0);
    }

    void otherKeysSearchFromTheFirstRow() {
        BoxOnCanvas on(searchedFields());
        on.box.SetCurrentItem(on.row(3));
        int key = Qt::Key_N;
        on.box._FindField("n", key);
        QCOMPARE(on.currentRow(), 0);
        QCOMPARE(key, int(Qt::Key_N));
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
        BoxOnCanvas on;
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
        BoxOnCanvas on;
        on.box.MoveUpper(to);
        QCOMPARE(on.box.GetBoundsRect(), TRect({30, top, 130, 168}));
        // One row more than would be counted fits into the height of a new box.
        QCOMPARE(on.box.VisibleCount, top == 40 ? 6 : (168 - top - 20 - 2 - 4 - 1) / 17);
    }

    void scrollBarStaysWhenTheLeftEdgeMoves() {
        BoxOnCanvas on;
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
        BoxOnCanvas on(1);
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
        BoxOnCanvas on;
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

private:
    static TDataSet searchedFields() {
        return TDataSet({{"NAME", ftString},
                         {"NUMBER", ftInteger},
                         {"my field", ftString},
                         {"NICK", ftString},
                         {"TAIL", ftString},
                         {"q\"q", ftString}});
    }
};

QTEST_MAIN(FloatTableInputTest)
#include "tst_floattableinput.moc"
