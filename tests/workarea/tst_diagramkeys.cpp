// SPDX-License-Identifier: MIT
// The diagram without a mouse: keys that go round, choose the view and open menus, and which keys
// the diagram has at all, between two other widgets and below their window's shortcuts.
#include "workarea/DiagramKeyboard.h"

#include <QContextMenuEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>

using orvtest::Keyboard;
using orvtest::RecordedServices;

namespace {

/// Counts how often the shortcuts of a window fire.
class Shortcuts {
public:
    Shortcuts(QWidget* window, const std::vector<QKeySequence>& keys) {
        for (const QKeySequence& key : keys) {
            auto* shortcut = new QShortcut(key, window);
            QObject::connect(shortcut, &QShortcut::activated, window,
                             [this, key] { fired << key.toString(); });
        }
    }
    QStringList fired;
};

}  // namespace

class DiagramKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- reaching

    void keysReachEachBoxRoundAndRound() {
        const Keyboard on;
        QCOMPARE(on.selected(), QString("ORDERS"));
        QStringList reached;
        for (int turn = 0; turn < 4; ++turn) {
            on.nextTable();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({"EMPLOYEE", "DEPT", "ORDERS", "EMPLOYEE"}));
        reached.clear();
        for (int turn = 0; turn < 4; ++turn) {
            on.previousTable();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({"ORDERS", "DEPT", "EMPLOYEE", "ORDERS"}));
    }

    void keysBringABoxIntoView() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(3000, 2000);
        QVERIFY(!on.sees(on.table("DEPT")->GetBoundsRect()));
        on.goTo("DEPT");
        QVERIFY(on.sees(on.table("DEPT")->GetBoundsRect()));
        QCOMPARE(on.area().Tables(0), on.table("DEPT"));
    }

    void keysReachEachLinkRoundAndRound() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "EMP_NO", "ORDERS", "CUST_NO");
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.addLink("DEPT", "BUDGET", "ORDERS", "PRICE");
        const QStringList all = on.links();
        on.deselect();
        QStringList reached;
        for (int turn = 0; turn < 4; ++turn) {
            on.nextLink();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({all[0], all[1], all[2], all[0]}));
        reached.clear();
        for (int turn = 0; turn < 3; ++turn) {
            on.previousLink();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({all[2], all[1], all[0]}));
    }

    void keysGoFromABoxToItsOwnLinkFirst() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "EMP_NO", "ORDERS", "CUST_NO");
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.goTo("DEPT");
        on.nextLink();
        QCOMPARE(on.selected(), on.links().at(1));
        on.goTo("ORDERS");
        on.nextLink();
        QCOMPARE(on.selected(), on.links().at(0));
    }

    void keysBringALinkIntoView() {
        const Keyboard on;
        const TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.area().verticalScrollBar()->setValue(1500);
        on.nextLink();
        QVERIFY(link->Selected);
        QVERIFY(on.sees(link->GetBounds()));
    }

    void keysLetGoOfTheSelectedObject() {
        const Keyboard on;
        on.deselect();
        QVERIFY(!on.area().selectedObject());
        QVERIFY(!on.table("ORDERS")->Selected);
        on.nextTable();
        QCOMPARE(on.selected(), QString("EMPLOYEE"));
    }

    // --- the view

    void ctrlPlusMinusAndZeroZoom() {
        const Keyboard on;
        for (const bool hasSelection : {true, false}) {
            if (!hasSelection) on.deselect();
            on.press(Qt::Key_Plus, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 1.25);
            on.press(Qt::Key_0, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 1.0);
            on.press(Qt::Key_Minus, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 0.8);
            on.press(Qt::Key_Equal, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 1.0);
        }
    }

    void keysScrollWhenNothingIsSelected() {
        const Keyboard on;
        on.deselect();
        const QScrollBar* vertical = on.area().verticalScrollBar();
        const QScrollBar* horizontal = on.area().horizontalScrollBar();
        on.press(Qt::Key_Down);
        QCOMPARE(vertical->value(), 20);
        on.press(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(horizontal->value(), 10);
        on.press(Qt::Key_PageDown);
        QCOMPARE(vertical->value(), 20 + vertical->pageStep());
        on.press(Qt::Key_PageUp);
        QCOMPARE(vertical->value(), 20);
        on.press(Qt::Key_Up);
        on.press(Qt::Key_Left);
        QCOMPARE(vertical->value(), 0);
        QCOMPARE(horizontal->value(), 0);
        on.press(Qt::Key_PageDown);
        on.press(Qt::Key_Home);
        QCOMPARE(vertical->value(), 0);
    }

    // --- menus

    void menuKeyOpensTheMenuOfTheSelectedObject() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        const auto menuKey = [&] {
            QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
            QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        };
        const auto shiftF10 = [&] { on.press(Qt::Key_F10, Qt::ShiftModifier); };
        for (const std::function<void()>& open : {std::function<void()>(menuKey), {shiftF10}}) {
            TorvQDTable* box = on.goTo("DEPT");
            on.area().verticalScrollBar()->setValue(1000);
            open();
            QVERIFY(on.menu());
            const QRect bounds = on.area().toViewport(box->toView(box->GetBoundsRect()));
            QVERIFY(bounds.contains(on.area().viewport()->mapFromGlobal(on.menu()->pos())));
            QVERIFY(on.sees(box->GetBoundsRect()));
            QCOMPARE(on.takeMenu(), QStringList({"Delete table", "Rename table"}));

            on.nextLink();
            const auto* link = qobject_cast<TorvQDLink*>(on.area().selectedObject());
            open();
            QVERIFY(on.menu());
            const QPoint place = on.area().viewport()->mapFromGlobal(on.menu()->pos());
            QVERIFY(link->HitTest(on.area().toViewPoint(place)) != htTOutSide);
            QCOMPARE(on.takeMenu(),
                     QStringList({"Insert point", "Delete link", "Property", "Mute link"}));

            on.deselect();
            open();
            QVERIFY(on.menu());
            const QRect view(QPoint(0, 0), on.area().viewport()->size());
            QVERIFY(view.contains(on.area().viewport()->mapFromGlobal(on.menu()->pos())));
            QVERIFY(on.takeMenu().contains("&Arrange"));
        }
    }

    void menuOfAChosenBendDeletesIt() {
        const Keyboard on;
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{200, 200}});
        on.nextLink();
        on.press(Qt::Key_Right);
        on.press(Qt::Key_F10, Qt::ShiftModifier);
        QMenu* menu = on.menu();
        QVERIFY(menu);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>());
    }

    // --- the focus

    void tabComesAndGoesInTheOrderOfTheScreen() {
        const Keyboard on;
        on.before->setFocus();
        on.press(Qt::Key_Tab);
        QVERIFY(on.area().hasFocus());
        on.press(Qt::Key_Backtab);
        QVERIFY(on.before->hasFocus());
    }

    void tabLeavesTheCanvasInEveryState() {
        RecordedServices services;
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
            for (const QString state :
                 {"box", "row", "link", "nothing", "begun link", "rename", "search", "empty"}) {
                Keyboard on;
                on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
                if (state == "row") on.goTo("DEPT", "DEPT_NO");
                if (state == "link") on.nextLink();
                if (state == "nothing") on.deselect();
                if (state == "begun link") {
                    on.goTo("DEPT", "DEPT_NO");
                    on.press(Qt::Key_Insert);
                }
                if (state == "rename") on.press(Qt::Key_F2);
                if (state == "search") on.type("o");
                if (state == "empty") on.builder.Clear();
                const QWidget* inside = QApplication::focusWidget();
                QVERIFY2(&on.area() == inside || on.area().isAncestorOf(inside), qPrintable(state));
                // An edit lies inside: from there the canvas may be the next stop.
                on.press(key);
                if (on.area().hasFocus() && inside != &on.area()) on.press(key);
                const QWidget* outside = QApplication::focusWidget();
                QVERIFY2(outside && outside != &on.area() && !on.area().isAncestorOf(outside),
                         qPrintable(state));
                QVERIFY2(on.aliasEdit()->isHidden(), qPrintable(state));
                QVERIFY2(on.searchEdit()->isHidden(), qPrintable(state));
                // The way goes on to the widgets of the host.
                const QWidget* end = key == Qt::Key_Tab ? on.after : on.before;
                for (int turn = 0; turn < 20 && !end->hasFocus(); ++turn) on.press(key);
                QVERIFY2(end->hasFocus(), qPrintable(state));
            }
        }
        QCOMPARE(services.errors, QStringList());
    }

    void focusByKeysIsFramedWhenNothingIsSelected() {
        const Keyboard on;
        on.deselect();
        const QImage focused = on.picture();
        on.press(Qt::Key_Backtab);
        QVERIFY(on.before->hasFocus());
        const QImage left = on.picture();
        QVERIFY(focused != left);
        const QRect inner = left.rect().adjusted(1, 1, -1, -1);
        QCOMPARE(focused.copy(inner), left.copy(inner));
        on.press(Qt::Key_Tab);
        QCOMPARE(on.picture(), focused);
        on.goTo("DEPT");
        const QImage selected = on.picture();
        QCOMPARE(selected.copy(0, 0, selected.width(), 4), left.copy(0, 0, left.width(), 4));
    }

    void escapeReachesTheDialogWhenNothingIsGoingOn() {
        for (const bool hasSelection : {true, false}) {
            const Keyboard on;
            if (!hasSelection) on.deselect();
            on.press(Qt::Key_Escape);
            QVERIFY(!on.window.isVisible());
        }
    }

    void escapeEndsAGestureFirst() {
        const Keyboard on;
        const TorvQDTable* box = on.table("ORDERS");
        const int left = box->Left;
        const TRect caption = box->toView(box->GetCaptionRect());
        const QPoint place(caption.Left + 10, caption.Top + 5);
        QTest::mousePress(on.area().viewport(), Qt::LeftButton, {}, place);
        QMouseEvent move(QEvent::MouseMove, place + QPoint(60, 0),
                         on.area().viewport()->mapToGlobal(place + QPoint(60, 0)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(on.area().viewport(), &move);
        QVERIFY(box->Left != left);
        on.press(Qt::Key_Escape);
        QCOMPARE(box->Left, left);
        QVERIFY(on.window.isVisible());
        QTest::mouseRelease(on.area().viewport(), Qt::LeftButton, {}, place);
        on.press(Qt::Key_Escape);
        QVERIFY(!on.window.isVisible());
    }

    // --- shortcuts and the host

    void canvasTakesItsKeysFromShortcuts() {
        Keyboard on;
        Shortcuts shortcuts(&on.window, {QKeySequence("Del"), QKeySequence("Ctrl+Right"),
                                         QKeySequence("d"), QKeySequence("F2")});
        const TorvQDTable* box = on.goTo("EMPLOYEE");
        const int left = box->Left;
        on.press(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(box->Left, left + 10);
        on.type("d");
        QCOMPARE(on.currentRow("EMPLOYEE"), QString("DEPT_NO"));
        on.press(Qt::Key_Escape);
        on.press(Qt::Key_F2);
        QVERIFY(on.aliasEdit()->hasFocus());
        on.type("d");
        QCOMPARE(on.aliasEdit()->text(), QString("d"));
        on.press(Qt::Key_Escape);
        on.press(Qt::Key_Delete);
        QCOMPARE(on.tables(), QStringList({"DEPT", "ORDERS"}));
        QCOMPARE(shortcuts.fired, QStringList());
    }

    void shortcutsFireWhereTheCanvasHasNoUseForTheKey() {
        Keyboard on;
        Shortcuts shortcuts(&on.window,
                            {QKeySequence("Del"), QKeySequence("d"), QKeySequence("F2"),
                             QKeySequence("End"), QKeySequence("Ctrl+Return"), QKeySequence("Esc"),
                             QKeySequence("Ctrl+Ins"), QKeySequence("Space")});
        on.deselect();
        on.press(Qt::Key_Delete);
        on.type("d");
        on.press(Qt::Key_F2);
        on.press(Qt::Key_End);
        on.press(Qt::Key_Space);
        QCOMPARE(shortcuts.fired, QStringList({"Del", "D", "F2", "End", "Space"}));
        shortcuts.fired.clear();

        // A box has no use for these.
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Return, Qt::ControlModifier);
        on.press(Qt::Key_Insert, Qt::ControlModifier);
        on.press(Qt::Key_Escape);
        QCOMPARE(shortcuts.fired, QStringList({"Ctrl+Return", "Ctrl+Ins", "Esc"}));
        QCOMPARE(on.columns(), QStringList());
        shortcuts.fired.clear();

        // Nor a link for these.
        RecordedServices services;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        on.type("d");
        on.press(Qt::Key_End);
        on.press(Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(shortcuts.fired, QStringList({"D", "End", "Ctrl+Return"}));
        QCOMPARE(services.dialogs, QStringList());
    }

    void shortcutsFireElsewhereInTheWindow() {
        Keyboard on;
        Shortcuts shortcuts(&on.window, {QKeySequence("F2"), QKeySequence("Ctrl+Ins")});
        auto* button = new QPushButton(&on.window);
        button->show();
        button->setFocus();
        on.press(Qt::Key_F2);
        QCOMPARE(shortcuts.fired, QStringList("F2"));
        QVERIFY(on.aliasEdit()->isHidden());
    }

    void editsTakeTheirKeysFromShortcuts() {
        Keyboard on;
        Shortcuts shortcuts(&on.window, {QKeySequence("Esc"), QKeySequence("Return"),
                                         QKeySequence("Down"), QKeySequence("Ctrl+Return")});
        on.goTo("DEPT");
        on.press(Qt::Key_F2);
        on.type("D1");
        on.press(Qt::Key_Return);
        on.press(Qt::Key_F2);
        on.type("D2");
        on.press(Qt::Key_Escape);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "DEPT D1", "ORDERS"}));
        on.type("d");
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("D1"), QString("DEPARTMENT"));
        on.press(Qt::Key_Return);
        QVERIFY(on.area().hasFocus());
        QCOMPARE(shortcuts.fired, QStringList());
        on.press(Qt::Key_F2);
        on.press(Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(shortcuts.fired, QStringList("Ctrl+Return"));
    }

    void hostMaySwallowAKey() {
        const Keyboard on;
        TorvQDTable* box = on.goTo("DEPT", "DEPT_NO")->Table;
        QList<int> seen;
        box->OnKeyDown = [&](QObject* sender, int& key, Qt::KeyboardModifiers) {
            QCOMPARE(sender, box);
            seen << std::exchange(key, 0);
        };
        on.press(Qt::Key_Down);
        on.press(Qt::Key_Space);
        on.press(Qt::Key_Delete);
        on.type("d");
        QCOMPARE(seen, QList<int>({Qt::Key_Down, Qt::Key_Space, Qt::Key_Delete, Qt::Key_D}));
        QCOMPARE(on.currentRow("DEPT"), QString("DEPT_NO"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.tables().size(), 3);
        QVERIFY(on.searchEdit()->isHidden());
        box->OnKeyDown = nullptr;
    }

    void hostMayChangeAKey() {
        const Keyboard on;
        TorvQDTable* box = on.goTo("DEPT", "DEPT_NO")->Table;
        box->OnKeyDown = [](QObject*, int& key, Qt::KeyboardModifiers) {
            if (key == Qt::Key_X) key = Qt::Key_Minus;
            if (key == Qt::Key_Y) key = Qt::Key_B;
        };
        on.type("y");
        QCOMPARE(on.currentRow("DEPT"), QString("BUDGET"));
        on.press(Qt::Key_Escape);
        on.type("x");
        QVERIFY(!box->Expanded);
        QVERIFY(on.searchEdit()->isHidden());
    }

    void hostMayCloseTheBoxInItsKey() {
        const Keyboard on;
        on.goTo("DEPT", "DEPT_NO");
        on.table("DEPT")->OnKeyDown = [](QObject* sender, int&, Qt::KeyboardModifiers) {
            static_cast<TorvQDTable*>(sender)->CloseTable();
        };
        on.press(Qt::Key_Down);
        QCoreApplication::processEvents();
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "ORDERS"}));
        on.nextTable();
        QCOMPARE(on.selected(), QString("EMPLOYEE"));
    }
};

QTEST_MAIN(DiagramKeysTest)
#include "tst_diagramkeys.moc"
