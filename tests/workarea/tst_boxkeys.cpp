// SPDX-License-Identifier: MIT
// What keys do with the selected box of the diagram and with its rows.
#include "workarea/DiagramKeyboard.h"

#include <QScrollBar>

using orvtest::Keyboard;

class BoxKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- rows

    void arrowsChooseARow() {
        const Keyboard on;
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("ORDERS"), QString("ORDER_NO"));
        on.press(Qt::Key_Down);
        on.press(Qt::Key_Right);
        QCOMPARE(on.currentRow("ORDERS"), QString("PRICE"));
        on.press(Qt::Key_Up);
        on.press(Qt::Key_Left);
        on.press(Qt::Key_Left);
        QCOMPARE(on.currentRow("ORDERS"), QString("ORDER_NO"));
        on.press(Qt::Key_End);
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("ORDERS"), QString("NAME"));
        on.press(Qt::Key_Home);
        QCOMPARE(on.currentRow("ORDERS"), QString("ORDER_NO"));
    }

    void pagesOfRowsScrollThem() {
        Keyboard on;
        const TorvQDTable* box = on.addTable("BIG");
        QCOMPARE(box->VisibleCount, 6);
        on.press(Qt::Key_Down);
        on.press(Qt::Key_PageDown);
        QCOMPARE(on.currentRow("BIG"), QString("F5"));
        QCOMPARE(box->FirstVisibleItem, 0);
        on.press(Qt::Key_PageDown);
        QCOMPARE(on.currentRow("BIG"), QString("F9"));
        QCOMPARE(box->FirstVisibleItem, 4);
        on.press(Qt::Key_PageUp);
        QCOMPARE(on.currentRow("BIG"), QString("F4"));
        QCOMPARE(box->FirstVisibleItem, 4);
    }

    void chosenRowIsSeenInALowView() {
        Keyboard on;
        TorvQDTable* box = on.addTable("BIG");
        on.window.resize(800, 380);
        QCoreApplication::processEvents();
        box->SetHeight(1000);
        QVERIFY(box->GetBoundsRect().height() > on.area().viewport()->height());
        on.press(Qt::Key_Down);
        on.press(Qt::Key_End);
        const QPoint scroll = on.area().scrollPosition();
        QVERIFY(on.sees(box->GetItemRect(box->CurrentItem).translated(scroll.x(), scroll.y())));
    }

    void spaceAndEnterTickTheRow() {
        const Keyboard on;
        on.goTo("DEPT", "DEPARTMENT");
        on.press(Qt::Key_Space);
        QCOMPARE(on.columns(), QStringList("DEPARTMENT||DEPT.DEPARTMENT"));
        QCOMPARE(on.changes > 0, true);
        on.press(Qt::Key_Return);
        QCOMPARE(on.columns(), QStringList());
        on.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(on.table("DEPT")->FieldState, 1);
    }

    void ctrlSpaceTicksAllRowsOrNone() {
        const Keyboard on;
        on.goTo("DEPT", "DEPARTMENT");
        on.press(Qt::Key_Space);
        on.press(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(on.table("DEPT")->FieldState, 2);
        QCOMPARE(on.columns().size(), 3);
        on.press(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(on.table("DEPT")->FieldState, 0);
        QCOMPARE(on.columns(), QStringList());
    }

    // --- a box

    void ctrlArrowsMoveTheBox() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        const QPoint place(box->Left, box->Top);
        on.press(Qt::Key_Right, Qt::ControlModifier);
        on.press(Qt::Key_Right, Qt::ControlModifier);
        on.press(Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(QPoint(box->Left, box->Top), place + QPoint(20, 10));
        on.press(Qt::Key_Left, Qt::ControlModifier);
        on.press(Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(QPoint(box->Left, box->Top), place + QPoint(10, 0));
        for (int turn = 0; turn < 100; ++turn) on.press(Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(box->Top, 0);
    }

    void movedBoxStaysInView() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        for (int turn = 0; turn < 100; ++turn) on.press(Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(box->Top, 20 + 1000);
        QVERIFY(on.area().verticalScrollBar()->value() > 0);
        QVERIFY(on.sees(box->GetBoundsRect()));
    }

    void ctrlShiftArrowsSizeTheBox() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        const QSize size(box->Width, box->Height);
        const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
        on.press(Qt::Key_Right, both);
        on.press(Qt::Key_Down, both);
        on.press(Qt::Key_Down, both);
        QCOMPARE(QSize(box->Width, box->Height), size + QSize(10, 20));
        on.press(Qt::Key_Left, both);
        on.press(Qt::Key_Up, both);
        QCOMPARE(QSize(box->Width, box->Height), size + QSize(0, 10));
    }

    void minusCollapsesAndPlusExpands() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        on.press(Qt::Key_Minus);
        QVERIFY(!box->Expanded);
        QCOMPARE(box->GetBoundsRect().height(), box->CaptionHeight);
        on.press(Qt::Key_Minus);
        QVERIFY(!box->Expanded);
        on.press(Qt::Key_Plus, Qt::KeypadModifier);
        QVERIFY(box->Expanded);
    }

    void f2RenamesAndEnterKeeps() {
        const Keyboard on;
        on.goTo("DEPT");
        on.press(Qt::Key_F2);
        QVERIFY(on.aliasEdit()->hasFocus());
        QCOMPARE(on.aliasEdit()->selectedText(), QString("DEPT"));
        on.type("D1");
        on.press(Qt::Key_Return);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "DEPT D1", "ORDERS"}));
        QVERIFY(on.aliasEdit()->isHidden());
        QVERIFY(on.area().hasFocus());
        QVERIFY(on.window.isVisible());
    }

    void f2RenamesAndEscapeDoesNot() {
        const Keyboard on;
        on.goTo("DEPT");
        on.press(Qt::Key_F2);
        on.type("D1");
        on.press(Qt::Key_Escape);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "DEPT", "ORDERS"}));
        QVERIFY(on.area().hasFocus());
        QVERIFY(on.window.isVisible());
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("DEPT"), QString("DEPT_NO"));
    }

    void renamingBringsTheBoxIntoView() {
        const Keyboard on;
        on.goTo("DEPT");
        on.area().verticalScrollBar()->setValue(2000);
        on.press(Qt::Key_F2);
        QVERIFY(on.area().viewport()->rect().contains(on.aliasEdit()->geometry()));
    }

    void typingSearchesARow() {
        const Keyboard on;
        on.goTo("EMPLOYEE");
        on.type("s");
        QVERIFY(on.searchEdit()->hasFocus());
        QCOMPARE(on.searchEdit()->text(), QString("s"));
        QCOMPARE(on.currentRow("EMPLOYEE"), QString("SALARY"));
        on.press(Qt::Key_Backspace);
        on.type("first");
        QCOMPARE(on.currentRow("EMPLOYEE"), QString("FIRST_NAME"));
        on.press(Qt::Key_Return);
        QVERIFY(on.searchEdit()->isHidden());
        QVERIFY(on.area().hasFocus());
        on.press(Qt::Key_Space);
        QCOMPARE(on.columns(), QStringList("FIRST_NAME||EMPLOYEE.FIRST_NAME"));
    }

    void foundRowComesIntoView() {
        Keyboard on;
        on.host.add("LONG", {"A", "B", "C", "D", "E", "F"});
        TorvQDTable* box = on.addTable("LONG");
        on.window.resize(800, 320);
        QCoreApplication::processEvents();
        const TorvQDListItem* last = box->GetFieldItem("F");
        QVERIFY(!on.sees(last->GetBoundsRect()));
        on.type("f");
        QCOMPARE(box->CurrentItem, last);
        QVERIFY(on.sees(last->GetBoundsRect()));
    }

    void upAndDownGoOnSearchingAndEscapeEnds() {
        Keyboard on;
        on.addTable("BIG");
        on.type("f");
        on.press(Qt::Key_Down);
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("BIG"), QString("F2"));
        on.press(Qt::Key_Up);
        QCOMPARE(on.currentRow("BIG"), QString("F1"));
        on.press(Qt::Key_Escape);
        QVERIFY(on.searchEdit()->isHidden());
        QVERIFY(on.area().hasFocus());
        QVERIFY(on.window.isVisible());
    }

    void deleteClosesTheBox() {
        const Keyboard on;
        on.goTo("DEPT");
        on.press(Qt::Key_Delete);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "ORDERS"}));
        QVERIFY(on.area().hasFocus());
        on.nextTable();
        QCOMPARE(on.selected(), QString("EMPLOYEE"));
    }

    void hostMayKeepTheBox() {
        Keyboard on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& allow) {
            allow = false;
        };
        on.goTo("DEPT");
        on.press(Qt::Key_Delete);
        QCOMPARE(on.tables().size(), 3);
        QCOMPARE(on.selected(), QString("DEPT"));
    }

    void ctrlDeleteUnlinksTheBox() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "EMP_NO", "ORDERS", "CUST_NO");
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.addLink("DEPT", "BUDGET", "ORDERS", "PRICE");
        on.goTo("EMPLOYEE");
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.links(), QStringList("DEPT.BUDGET=ORDERS.PRICE"));
        QCOMPARE(on.tables().size(), 3);
    }
};

QTEST_MAIN(BoxKeysTest)
#include "tst_boxkeys.moc"
