// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatObject.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"

using orvtest::FakeCanvas;

namespace {

class PlainObject : public TorvQDFloatObject {
public:
    using TorvQDFloatObject::TorvQDFloatObject;

    QString GetHint() const override { return {}; }
    void Paint(QPainter&) override {}
    TTableHitTest HitTest(const QPoint&) const override { return htTOutSide; }
    void PopupMenu(QMenu&, int, int, TTableHitTest) override {}
};

using MouseOperation = void (TorvQDFloatObject::*)(TWMMouse&, TTableHitTest);

}  // namespace

Q_DECLARE_METATYPE(Qt::MouseButton)

class FloatObjectTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void isNotSelectedAtFirst() {
        FakeCanvas canvas;
        const PlainObject object(&canvas);
        QCOMPARE(object.Parent.data(), &canvas);
        QVERIFY(!object.Selected);
    }

    void selectingBringsItToTheFront() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        object.SetSelect(true);
        QVERIFY(object.Selected);
        QCOMPARE(canvas.broughtToFront, std::vector<TorvQDFloatObject*>{&object});
    }

    void deselectingMovesNothing() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        object.SetSelect(true);
        object.SetSelect(false);
        QVERIFY(!object.Selected);
        QCOMPARE(canvas.broughtToFront.size(), std::size_t(1));
    }

    void hasNoCanvasOnceItsParentDied() {
        auto canvas = std::make_unique<FakeCanvas>();
        PlainObject object(canvas.get());
        canvas.reset();
        QVERIFY(!object.canvas());
        object.SetSelect(true);
        QVERIFY(object.Selected);
    }

    // The last one present wins, in the order left, right, middle; none is the left one.
    void buttonOfAMessage_data() {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("expected");
        const int left = Qt::LeftButton;
        const int right = Qt::RightButton;
        const int middle = Qt::MiddleButton;
        QTest::newRow("none") << 0 << left;
        QTest::newRow("left") << left << left;
        QTest::newRow("right") << right << right;
        QTest::newRow("middle") << middle << middle;
        QTest::newRow("left and right") << (left | right) << right;
        QTest::newRow("left and middle") << (left | middle) << middle;
        QTest::newRow("all") << (left | right | middle) << middle;
    }
    void buttonOfAMessage() {
        QFETCH(int, buttons);
        QFETCH(int, expected);
        FakeCanvas canvas;
        PlainObject object(&canvas);
        QList<int> seen;
        object.OnMouseDown = [&](QObject* sender, Qt::MouseButton button, Qt::KeyboardModifiers,
                                 int x, int y) {
            if (sender == &object && x == 7 && y == 9) seen << int(button);
        };
        object.OnMouseUp = object.OnMouseDown;
        TWMMouse message{7, 9, Qt::MouseButtons(buttons)};
        object.MouseDown(message, htTClient);
        QCOMPARE(message.Result, 1);
        message.Result = 0;
        object.MouseUp(message, htTClient);
        QCOMPARE(message.Result, 1);
        QCOMPARE(seen, QList<int>({expected, expected}));
    }

    void mouseEventsTellControlAndShiftButNeverAlt() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        Qt::KeyboardModifiers down;
        Qt::KeyboardModifiers moved;
        object.OnMouseDown = [&](QObject*, Qt::MouseButton, Qt::KeyboardModifiers shift, int, int) {
            down = shift;
        };
        object.OnMouseMove = [&](QObject*, Qt::KeyboardModifiers shift, int, int) {
            moved = shift;
        };
        TWMMouse message{0, 0, Qt::LeftButton,
                         Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier};
        object.MouseDown(message, htTClient);
        object.MouseMove(message, htTClient);
        QCOMPARE(down, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(moved, Qt::ControlModifier | Qt::ShiftModifier);
    }

    void mouseEventsTellWhichButtonsAreHeld() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        std::vector<TShiftState> told;
        object.OnMouseDown = [&](QObject*, Qt::MouseButton, TShiftState shift, int, int) {
            told.push_back(shift);
        };
        object.OnMouseUp = object.OnMouseDown;
        object.OnMouseMove = [&](QObject*, TShiftState shift, int, int) { told.push_back(shift); };
        const Qt::MouseButtons named = Qt::LeftButton | Qt::RightButton | Qt::MiddleButton;
        for (const Qt::MouseButtons held :
             {Qt::MouseButtons(), Qt::MouseButtons(Qt::LeftButton),
              Qt::MouseButtons(Qt::RightButton), Qt::MouseButtons(Qt::MiddleButton), named}) {
            told.clear();
            TWMMouse message{0, 0, held | Qt::BackButton, Qt::ShiftModifier};
            object.MouseDown(message, htTClient);
            object.MouseMove(message, htTClient);
            object.MouseUp(message, htTClient);
            QCOMPARE(told.size(), std::size_t(3));
            for (const TShiftState& shift : told) {
                QCOMPARE(shift.Buttons, held);
                QCOMPARE(shift.Modifiers, Qt::KeyboardModifiers(Qt::ShiftModifier));
            }
        }
    }

    void messagesWithoutHandlersAreTakenToo() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        for (const MouseOperation operation :
             {&TorvQDFloatObject::MouseDown, &TorvQDFloatObject::MouseMove,
              &TorvQDFloatObject::MouseUp}) {
            TWMMouse message;
            (object.*operation)(message, htTClient);
            QCOMPARE(message.Result, 1);
        }
    }

    void leavingDoesNothing() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        TWMMouse message;
        object.LeaveHit(message, htTClient);
        QCOMPARE(message.Result, 0);
    }

    void keyHandlerMayChangeTheKey() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        object.OnKeyDown = [](QObject*, int& key, Qt::KeyboardModifiers) { key = 0; };
        object.OnKeyUp = [](QObject*, int& key, Qt::KeyboardModifiers) { key += 1; };
        int key = Qt::Key_A;
        object.KeyUp(key, Qt::NoModifier);
        QCOMPARE(key, int(Qt::Key_B));
        object.KeyDown(key, Qt::NoModifier);
        QCOMPARE(key, 0);
    }

    // Only the mouse hides Alt.
    void keyEventsTellAllOfShiftControlAndAlt() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        Qt::KeyboardModifiers seen;
        object.OnKeyDown = [&](QObject*, int&, Qt::KeyboardModifiers shift) { seen = shift; };
        int key = Qt::Key_A;
        object.KeyDown(key, Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        QCOMPARE(seen, Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    }

    void handlerMayReplaceItself() {
        FakeCanvas canvas;
        PlainObject object(&canvas);
        int runs = 0;
        object.OnMouseDown = [&](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int, int) {
            int& count = runs;
            object.OnMouseDown = nullptr;
            ++count;
        };
        TWMMouse message;
        object.MouseDown(message, htTClient);
        object.MouseDown(message, htTClient);
        QCOMPARE(runs, 1);
    }
};

QTEST_MAIN(FloatObjectTest)
#include "tst_floatobject.moc"
