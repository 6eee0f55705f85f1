// SPDX-License-Identifier: MIT
// What a box does with the keys, and how it finds the row that is typed.
#include "diagram/HandledBox.h"

using orvtest::HandledBox;

class FloatTableKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- events

    void keysAreToldBeforeTheyAct() {
        HandledBox on;
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
        HandledBox on;
        on.box.OnKeyDown = [](QObject*, int& key, Qt::KeyboardModifiers) { key = 0; };
        on.key(Qt::Key_Down);
        QCOMPARE(on.key(Qt::Key_A, "a"), 0);
        QVERIFY(!on.box.CurrentItem);
        QVERIFY(on.canvas.searches.empty());
    }

    // --- the keys

    void enterAndSpaceToggleTheCurrentRow() {
        HandledBox on;
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
        HandledBox on(2);
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
        HandledBox on;
        if (current >= 0) on.box.SetCurrentItem(on.row(current));
        on.box.SetFirstVisibleItem(first);
        QCOMPARE(on.key(key), 0);
        QCOMPARE(on.currentRow(), newCurrent);
        QCOMPARE(on.box.FirstVisibleItem, newFirst);
        QVERIFY(on.canvas.checks.isEmpty());
    }

    void chosenRowIsRepaintedWithTheOneBefore() {
        HandledBox on;
        on.box.SetCurrentItem(on.row(0));
        on.canvas.invalidated.clear();
        on.key(Qt::Key_Down);
        QCOMPARE(on.canvas.invalidated, (std::vector<TRect>{on.box.GetItemRect(on.row(0)),
                                                            on.box.GetItemRect(on.row(1))}));
    }

    void boxWithoutRowsTakesTheKeysAndDoesNothing() {
        HandledBox on(0);
        for (const int key : {Qt::Key_Down, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Space}) {
            QCOMPARE(on.key(key), 0);
        }
        QVERIFY(!on.box.CurrentItem);
        QCOMPARE(on.box.FirstVisibleItem, 0);
    }

    // A box higher than its rows may stand on a row in front of its first one.
    void keysStayOnTheRowsOfAShortBox() {
        HandledBox on(3);
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
        HandledBox on;
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
        HandledBox on;
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
        HandledBox on(searchedFields());
        on.box.SetCurrentItem(on.row(4));
        int key = 0;
        on.box._FindField(text, key);
        QCOMPARE(on.currentRow(), found);
    }

    void foundRowIsScrolledIntoView() {
        HandledBox on;
        int key = 0;
        on.box._FindField("F8", key);
        QCOMPARE(on.currentRow(), 8);
        QCOMPARE(on.box.FirstVisibleItem, 3);
        on.box._FindField("F1", key);
        QCOMPARE(on.box.FirstVisibleItem, 1);
    }

    void arrowsGoToTheNextAndThePreviousMatch() {
        HandledBox on(searchedFields());
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
        HandledBox on(searchedFields());
        on.box.SetCurrentItem(on.row(3));
        int key = Qt::Key_N;
        on.box._FindField("n", key);
        QCOMPARE(on.currentRow(), 0);
        QCOMPARE(key, int(Qt::Key_N));
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

QTEST_MAIN(FloatTableKeysTest)
#include "tst_floattablekeys.moc"
