// SPDX-License-Identifier: MIT
#include "criteria/ShownConditions.h"

#include <QShortcut>

using orvtest::ShownConditions;

namespace {

const QString nested = "t.a = 1 and (t.b = 2 or t.c between 3 and 4) and t.d is null";

/// Presses the key until the frame stays; the elements on the way.
QStringList walk(const ShownConditions& on, Qt::Key key) {
    QStringList way;
    QString before;
    while (before != on.active() && way.size() < 100) {
        before = on.active();
        on.key(key);
        if (before != on.active()) way << on.active();
    }
    return way;
}

/// A window's shortcut, and how often it ran.
struct Shortcut {
    Shortcut(QWidget* window, const QKeySequence& keys) : shortcut(keys, window) {
        QObject::connect(&shortcut, &QShortcut::activated, window, [this] { ++count; });
    }
    QShortcut shortcut;
    int count = 0;
};

/// Takes the keys that its child has no use for.
class KeyTaker : public QWidget {
public:
    QList<int> keys;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() != Qt::Key_Control && event->key() != Qt::Key_Alt) keys << event->key();
    }
};

}  // namespace

class WhereKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- from element to element

    void rightPassesAllElementsThatAreShown() {
        const ShownConditions on(nested);
        QCOMPARE(on.active(), ":1");
        QCOMPARE(walk(on, Qt::Key_Right),
                 QStringList({"1.:2", "1.:3", "1.:5", "2.:1", "2.1.:2", "2.1.:3", "2.1.:5",
                              "2.2.:2", "2.2.:3", "2.2.:5", "2.2.:6", "3.:2", "3.:3"}));
    }

    void leftPassesThemBackwards() {
        ShownConditions on(nested);
        on.select("3.", 3);
        QCOMPARE(walk(on, Qt::Key_Left),
                 QStringList({"3.:2", "2.2.:6", "2.2.:5", "2.2.:3", "2.2.:2", "2.1.:5", "2.1.:3",
                              "2.1.:2", "2.:1", "1.:5", "1.:3", "1.:2", ":1"}));
    }

    void functionsArePassedWhereThereAreSome() {
        ShownConditions on(nested, ShownConditions::Having);
        QCOMPARE(walk(on, Qt::Key_Right).mid(0, 7),
                 QStringList({"1.:1", "1.:2", "1.:3", "1.:4", "1.:5", "2.:1", "2.1.:1"}));
        on.select("3.", 1);
        QCOMPARE(walk(on, Qt::Key_Left).mid(0, 4),
                 QStringList({"2.2.:6", "2.2.:5", "2.2.:4", "2.2.:3"}));
        on.select("3.", 1);
        QCOMPARE(walk(on, Qt::Key_Right), QStringList({"3.:2", "3.:3", "3.:4"}));
    }

    void collapsedGroupsArePassedAsOneElement() {
        ShownConditions on(nested);
        on.row("2.")->SetExpanded(false);
        QCOMPARE(walk(on, Qt::Key_Right),
                 QStringList({"1.:2", "1.:3", "1.:5", "2.:1", "3.:2", "3.:3"}));
        QCOMPARE(walk(on, Qt::Key_Left).mid(0, 3), QStringList({"3.:2", "2.:1", "1.:5"}));
    }

    void leftFromTheButtonGoesToTheRowAbove() {
        ShownConditions on(nested);
        on.select("3.", 0);
        on.key(Qt::Key_Left);
        QCOMPARE(on.active(), "2.2.:6");
        on.select("", 0);
        on.key(Qt::Key_Left);
        QCOMPARE(on.active(), ":0");
        on.key(Qt::Key_Right);
        QCOMPARE(on.active(), ":1");
    }

    void downKeepsThePlaceInTheRow_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("from");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("way");
        QTest::newRow("down, field")
            << int(Qt::Key_Down) << "1." << 2 << QStringList({"2.:1", "2.1.:2", "2.2.:2", "3.:2"});
        QTest::newRow("up, field") << int(Qt::Key_Up) << "3." << 2
                                   << QStringList({"2.2.:2", "2.1.:2", "2.:1", "1.:2", ":1"});
        QTest::newRow("down, operator")
            << int(Qt::Key_Down) << "2.1." << 3 << QStringList({"2.2.:3", "3.:3"});
        // The first condition of a row below a group is its function, which is not shown.
        QTest::newRow("down, group")
            << int(Qt::Key_Down) << "2." << 1 << QStringList({"2.1.:2", "2.2.:2", "3.:2"});
        QTest::newRow("up, last argument")
            << int(Qt::Key_Up) << "2.2." << 6 << QStringList({"2.1.:5", "2.:1", "1.:2", ":1"});
    }
    void downKeepsThePlaceInTheRow() {
        QFETCH(int, key);
        QFETCH(QString, from);
        QFETCH(int, kind);
        QFETCH(QStringList, way);
        ShownConditions on(nested);
        on.select(from, kind);
        QCOMPARE(walk(on, Qt::Key(key)), way);
    }

    // The last element of "is null" is the function's place, which is not shown: the way goes on to
    // the right, which is the next row, or nowhere.
    void wayToAnElementThatIsNotShownGoesOnToTheRight() {
        ShownConditions on("t.a = 1 and t.b is null and t.c = 3");
        on.select("3.", 5);
        on.key(Qt::Key_Up);
        QCOMPARE(on.active(), "3.:2");
        on.select("1.", 5);
        on.key(Qt::Key_Down);
        QCOMPARE(on.active(), "3.:2");
    }

    void frameStaysWhereNothingThatIsShownFollows() {
        ShownConditions on("t.a = 1 and t.b is null");
        on.select("2.", 3);
        on.key(Qt::Key_Right);
        QCOMPARE(on.active(), "2.:3");
        QCOMPARE(on.current(), "2.:3");
        on.select("1.", 5);
        on.key(Qt::Key_Down);
        QCOMPARE(on.active(), "1.:5");
        QCOMPARE(on.current(), "1.:5");
        on.key(Qt::Key_End);
        on.key(Qt::Key_Down);
        QCOMPARE(on.active(), "2.:2");
    }

    void firstAndLastRowAreTheEnds() {
        ShownConditions on("t.a = 1");
        for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left}) {
            on.select("", 1);
            on.key(key);
            QCOMPARE(on.active(), ":1");
        }
        on.select("1.", 5);
        on.key(Qt::Key_Down);
        on.key(Qt::Key_Right);
        QCOMPARE(on.active(), "1.:5");
    }

    void rowsBelowAnEmptyGroupAreReached() {
        ShownConditions on("t.a = 1 and (t.b = 2 or t.c = 3) and t.d = 4");
        on.row("2.")->SubRows->Clear();
        on.select("1.", 2);
        QCOMPARE(walk(on, Qt::Key_Down), QStringList({"2.:1", "3.:2"}));
        on.select("3.", 2);
        QCOMPARE(walk(on, Qt::Key_Up), QStringList({"2.:1", "1.:2", ":1"}));
    }

    void targetIsActiveAndCurrent() {
        const ShownConditions on(nested);
        on.panel->setCurrentElement(nullptr);
        on.key(Qt::Key_Right);
        QCOMPARE(on.active(), "1.:2");
        QCOMPARE(on.current(), "1.:2");
        QCOMPARE(on.changes, 0);
    }

    // --- groups

    void ctrlArrowsOpenAndCloseGroups() {
        for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right}) {
            ShownConditions on(nested);
            on.select("2.", 1);
            on.key(key, Qt::ControlModifier);
            QVERIFY(!on.row("2.")->Expanded);
            QCOMPARE(on.active(), "2.:1");
            on.key(key, Qt::ControlModifier);
            QVERIFY(on.row("2.")->Expanded);
            QCOMPARE(on.changes, 0);
        }
    }

    void ctrlArrowsMoveOnInConditions() {
        ShownConditions on(nested);
        on.select("1.", 2);
        on.key(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(on.active(), "1.:3");
        on.key(Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(on.active(), "1.:2");
    }

    void rootIsNotCollapsedByKey() {
        const ShownConditions on(nested);
        on.key(Qt::Key_Left, Qt::ControlModifier);
        QVERIFY(on.root()->Expanded);
        QCOMPARE(on.services.errors, QStringList("Can not collapse first condition"));
    }

    // --- commands

    void enterIsAClick_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
        QTest::newRow("F2") << int(Qt::Key_F2);
    }
    void enterIsAClick() {
        QFETCH(int, key);
        ShownConditions on(nested, ShownConditions::Having);
        const std::tuple<QString, int, QString> menus[] = {{"", 1, "GroupMenu"},
                                                           {"2.", 1, "GroupMenu"},
                                                           {"1.", 1, "FunctionMenu"},
                                                           {"1.", 4, "FunctionMenu"},
                                                           {"1.", 3, "OperatorMenu"}};
        for (const auto& [number, kind, name] : menus) {
            on.panel->setActiveElement(on.element(number, kind));
            on.panel->setCurrentElement(nullptr);
            on.key(Qt::Key(key));
            QCOMPARE(on.openMenu(), name);
            QCOMPARE(on.current(), orvtest::ShownConditions::nameOf(on.element(number, kind)));
            const QRect rect = on.panel->elementRect(*on.element(number, kind));
            QCOMPARE(on.menu(name)->pos(), on.view()->mapToGlobal(rect.topLeft() + QPoint(0, 20)));
            on.closeMenus();
        }
        on.row("2.")->SetExpanded(false);
        on.select("2.", 1);
        on.key(Qt::Key(key));
        QVERIFY(on.row("2.")->Expanded);
        QCOMPARE(on.openMenu(), "");
        QCOMPARE(on.changes, 0);
    }

    void keypadIsAsGood() {
        ShownConditions on(nested);
        on.key(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(on.openMenu(), "GroupMenu");
        on.closeMenus();
        on.key(Qt::Key_Right, Qt::KeypadModifier);
        QCOMPARE(on.active(), "1.:2");
        on.key(Qt::Key_Insert, Qt::KeypadModifier | Qt::ControlModifier);
        QVERIFY(on.row("1.")->isGroup());
    }

    void insertAddsAtTheActiveRow() {
        ShownConditions on(nested);
        on.panel->setActiveElement(on.element("2.1.", 2));
        on.panel->setCurrentElement(on.element("3.", 0));
        on.key(Qt::Key_Insert);
        QCOMPARE(on.row("2.")->SubRows->GetCount(), 3);
        QCOMPARE(on.root()->SubRows->GetCount(), 3);
        on.select("", 1);
        on.key(Qt::Key_Insert);
        QCOMPARE(on.root()->SubRows->GetCount(), 4);
        QCOMPARE(on.active(), "4.:2");
        QCOMPARE(on.changes, 2);
    }

    void ctrlInsertMakesAGroupOfACondition() {
        ShownConditions on("t.a = 1 and t.b = 2");
        on.panel->setActiveElement(on.element("1.", 2));
        on.panel->setCurrentElement(on.element("2.", 0));
        on.key(Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(All(T.A =[1]); T.B =[2])");
        QCOMPARE(on.active(), "1.:1");
        // On a group it adds.
        on.key(Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(All(T.A =[1];  =[]); T.B =[2])");
        QVERIFY(on.services.errors.isEmpty());
        QCOMPARE(on.changes, 2);
    }

    void ctrlDeleteDeletesTheActiveRow() {
        ShownConditions on(nested);
        on.panel->setActiveElement(on.element("2.1.", 5));
        on.panel->setCurrentElement(on.element("3.", 0));
        on.key(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; Any(T.C BETWEEN[3][4]); T.D IS NULL[])");
        QCOMPARE(on.services.messages.size(), 1);
        QCOMPARE(on.active(), ":1");
        QCOMPARE(on.current(), "none");
        on.key(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.services.errors, QStringList("Could not delete first row"));
        QCOMPARE(on.services.messages.size(), 1);
        QCOMPARE(on.changes, 1);
    }

    void keysWithoutAnActiveElementDoNothing() {
        ShownConditions on(nested);
        on.panel->setActiveElement(nullptr);
        const QString rows = on.rows();
        for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Down, Qt::Key_Return, Qt::Key_Insert,
                                  Qt::Key_Home, Qt::Key_PageDown}) {
            on.key(key);
        }
        on.key(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.rows(), rows);
        QCOMPARE(on.active(), "none");
        QCOMPARE(on.openMenu(), "");
    }

    // --- far away

    void homeAndEndGoToTheFirstAndLastRow() {
        ShownConditions on(nested);
        on.select("2.1.", 3);
        on.key(Qt::Key_End);
        QCOMPARE(on.active(), "3.:3");
        on.key(Qt::Key_Home);
        QCOMPARE(on.active(), ":1");
        on.key(Qt::Key_End);
        QCOMPARE(on.active(), "3.:2");  // the place of the function is not shown
        on.select("2.1.", 5);
        on.key(Qt::Key_End);
        QCOMPARE(on.active(), "3.:2");
    }

    void pagesAreAsLargeAsTheView() {
        QStringList many;
        for (int index = 0; index < 60; ++index) many << "t.a = " + QString::number(index);
        ShownConditions on(many.join(" and "));
        const int page = on.view()->height() / 20 - 1;
        QVERIFY(page > 3);
        on.select("1.", 3);
        on.key(Qt::Key_PageDown);
        QCOMPARE(on.active(), QString::number(1 + page) + ".:3");
        on.key(Qt::Key_PageDown);
        QCOMPARE(on.active(), QString::number(1 + 2 * page) + ".:3");
        on.key(Qt::Key_PageUp);
        QCOMPARE(on.active(), QString::number(1 + page) + ".:3");
        for (int count = 0; count < 10; ++count) on.key(Qt::Key_PageUp);
        QCOMPARE(on.active(), ":1");
        for (int count = 0; count < 20; ++count) on.key(Qt::Key_PageDown);
        QCOMPARE(on.active(), "60.:2");
    }

    // --- scrolling

    void panelScrollsJustEnough() {
        QStringList many;
        for (int index = 0; index < 60; ++index) many << "t.a = " + QString::number(index);
        ShownConditions on(many.join(" and "));
        QScrollBar& bar = *on.panel->verticalScrollBar();
        const int height = on.view()->height();
        const int lastWhole = height / 20 - 1;  // the root row is the first one
        on.select(QString::number(lastWhole) + ".", 2);
        QCOMPARE(bar.value(), 0);
        on.key(Qt::Key_Down);
        QCOMPARE(bar.value(), (lastWhole + 2) * 20 - height);
        on.key(Qt::Key_Down);
        QCOMPARE(bar.value(), (lastWhole + 3) * 20 - height);
        on.key(Qt::Key_Up);
        QCOMPARE(bar.value(), (lastWhole + 3) * 20 - height);
        bar.setValue(bar.maximum());
        on.key(Qt::Key_Up);  // to the row lastWhole
        QCOMPARE(bar.value(), lastWhole * 20);
        on.key(Qt::Key_Home);
        QCOMPARE(bar.value(), 0);
        on.key(Qt::Key_End);
        QCOMPARE(bar.value(), 61 * 20 - height);
    }

    void panelScrollsSidewaysJustEnough() {
        const QString wide = "'" + QString(29, u'W') + "'";
        ShownConditions on("t.a between " + wide + " and " + wide);
        QScrollBar& bar = *on.panel->horizontalScrollBar();
        const int width = on.view()->width();
        const auto rightOf = [&](int kind) {
            return on.element("1.", kind)->Left + on.element("1.", kind)->Width;
        };
        on.select("1.", 3);
        on.key(Qt::Key_Right);
        QCOMPARE(on.active(), "1.:5");
        QVERIFY(rightOf(5) + 2 < width);
        QCOMPARE(bar.value(), 0);
        on.key(Qt::Key_Right);
        QVERIFY(rightOf(6) > width);
        QCOMPARE(bar.value(), rightOf(6) + 2 - width);
        QCOMPARE(bar.value(), bar.maximum());
        on.key(Qt::Key_Left);
        QCOMPARE(bar.value(), on.element("1.", 5)->Left - 1);
        bar.setValue(bar.value() - 1);
        on.key(Qt::Key_Left);
        on.key(Qt::Key_Right);
        QCOMPARE(on.active(), "1.:5");
        QCOMPARE(bar.value(), on.element("1.", 3)->Left - 1);  // it is seen already
        on.key(Qt::Key_Left);
        on.key(Qt::Key_Left);
        QCOMPARE(on.active(), "1.:2");
        QCOMPARE(bar.value(), on.element("1.", 2)->Left - 1);
    }

    // --- the window around the panel

    void ownKeysWinOverTheWindowsShortcuts() {
        ShownConditions on("t.a = 1 and t.b = 2");
        on.select("1.", 2);
        Shortcut insert(&on.window, Qt::Key_Insert);
        Shortcut remove(&on.window, Qt::CTRL | Qt::Key_Delete);
        Shortcut right(&on.window, Qt::CTRL | Qt::Key_Right);
        Shortcut down(&on.window, Qt::Key_Down);
        QTest::keyClick(on.panel, Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(on.active(), "1.:3");
        QTest::keyClick(on.panel, Qt::Key_Down);
        QCOMPARE(on.active(), "2.:3");
        QTest::keyClick(on.panel, Qt::Key_Insert);
        QCOMPARE(on.root()->SubRows->GetCount(), 3);
        QTest::keyClick(on.panel, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.root()->SubRows->GetCount(), 2);
        for (const Shortcut* each : {&insert, &remove, &right, &down}) QCOMPARE(each->count, 0);
    }

    void windowsShortcutsOnOtherKeysRun() {
        ShownConditions on("t.a = 1");
        Shortcut remove(&on.window, Qt::Key_Delete);
        Shortcut save(&on.window, Qt::CTRL | Qt::Key_S);
        QTest::keyClick(on.panel, Qt::Key_Delete);
        QTest::keyClick(on.panel, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(remove.count, 1);
        QCOMPARE(save.count, 1);
        QCOMPARE(on.rows(), "All(T.A =[1])");
    }

    void keysAreSwallowedOnlyWhereTheyMeanSomething() {
        const ShownConditions on;
        KeyTaker around;
        TorvTabSheet sheet(&around);
        TorvQDWherePanel panel(&sheet);
        panel.Operators = on.builder.Operators.get();
        panel.GroupOpers = &on.builder.GroupOpers;
        panel.Activate();
        for (const int key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Delete, Qt::Key_F5}) {
            QTest::keyClick(&panel, Qt::Key(key));
        }
        QTest::keyClick(&panel, Qt::Key_Return, Qt::ControlModifier);
        QTest::keyClick(&panel, Qt::Key_Left, Qt::AltModifier);
        QCOMPARE(around.keys, QList<int>({Qt::Key_A, Qt::Key_Escape, Qt::Key_Delete, Qt::Key_F5,
                                          Qt::Key_Return, Qt::Key_Left}));
        around.keys.clear();
        for (const int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home,
                              Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Insert}) {
            QTest::keyClick(&panel, Qt::Key(key));
        }
        QCOMPARE(around.keys, QList<int>());
    }

    void keysOfRefusedCommandsAreSwallowedToo() {
        const ShownConditions on;
        KeyTaker around;
        TorvTabSheet sheet(&around);
        TorvQDWherePanel panel(&sheet);
        panel.Operators = on.builder.Operators.get();
        panel.GroupOpers = &on.builder.GroupOpers;
        panel.Activate();
        for (const int key : {Qt::Key_Delete, Qt::Key_Left, Qt::Key_D}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::ControlModifier);
            QCoreApplication::sendEvent(&panel, &event);
        }
        QCOMPARE(on.services.errors,
                 QStringList({"Could not delete first row", "Can not collapse first condition",
                              "Could not duplicate first row"}));
        QCOMPARE(around.keys, QList<int>());
    }

    void tabLeavesThePanel() {
        const ShownConditions on("t.a = 1");
        QCOMPARE(on.panel->focusPolicy(), Qt::StrongFocus);
        QTest::keyClick(on.panel, Qt::Key_Tab);
        QVERIFY(on.after->hasFocus());
        QTest::keyClick(on.after, Qt::Key_Backtab, Qt::ShiftModifier);
        QVERIFY(on.panel->hasFocus());
        QTest::keyClick(on.panel, Qt::Key_Backtab, Qt::ShiftModifier);
        QVERIFY(!on.panel->hasFocus());
    }
};

QTEST_MAIN(WhereKeysTest)
#include "tst_wherekeys.moc"
