// SPDX-License-Identifier: MIT
// The list of fields beside the editor of conditions.
#include "criteria/EditedPanel.h"

#include <QTabBar>

using orvtest::EditedPanel;

class ConditionEditorListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the list of fields

    void listOpensBelowTheEditor() {
        const EditedPanel on;
        QVERIFY(on.isActive());
        on.open();
        QTest::keyClick(on.memo(), Qt::Key_Return, Qt::ShiftModifier);
        QVERIFY(on.list()->isVisible());
        QVERIFY(on.list()->filter()->hasFocus());
        QCOMPARE(on.list()->x(), on.memo()->x());
        QCOMPARE(on.list()->y(), on.memo()->geometry().bottom() + 1);
        QVERIFY(on.memo()->isVisible());
        QVERIFY(on.panel()->isEditing());
        QVERIFY(on.view()->rect().contains(on.list()->geometry()));
        QCOMPARE(on.list()->tree()->model()->index(0, 0).data().toString(), "T");
    }

    void withoutAnEditorThereIsNoList() {
        const EditedPanel on;
        on.panel()->InsertField();
        QVERIFY(on.list()->isHidden());
    }

    void fieldReplacesTheSelectionAndTypingGoesOn() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("1 + X");
        on.memo()->moveCursor(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor);
        on.panel()->InsertField();
        QTest::keyClicks(on.list()->filter(), "j");
        QTest::keyClick(on.list()->filter(), Qt::Key_Return);
        QVERIFY(on.list()->isHidden());
        QVERIFY(on.memo()->hasFocus());
        QCOMPARE(on.memo()->text(), "1 + T.J");
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.changes, 0);
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.row(0)->Arguments[0], "1 + T.J");
        QCOMPARE(on.changes, 1);
    }

    void escapeInTheListGoesBackToTheText() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.panel()->InsertField();
        QTest::keyClick(on.list()->filter(), Qt::Key_Escape);
        QVERIFY(on.list()->isHidden());
        QVERIFY(on.memo()->hasFocus());
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "7");
        QCOMPARE(on.changes, 0);
    }

    void clickIntoTheTextClosesTheListOnly() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.panel()->InsertField();
        on.memo()->setFocus(Qt::MouseFocusReason);
        QVERIFY(on.list()->isHidden());
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.changes, 0);
    }

    void leavingTheListTakesNothingAndTakesOverTheText() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.panel()->InsertField();
        QTest::keyClicks(on.list()->filter(), "j");
        on.other->setFocus();
        QVERIFY(on.list()->isHidden());
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.changes, 1);
        QVERIFY(on.other->hasFocus());
    }

    void pressOnThePanelLeavesTheListAndTakesOver() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.panel()->InsertField();
        QTest::mousePress(on.view(), Qt::LeftButton, {}, QPoint(2, on.view()->height() - 2));
        QVERIFY(on.list()->isHidden());
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.changes, 1);
        QVERIFY(on.panel()->hasFocus());
    }

    void hidingTheListTakesOverTheText_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("HideFieldList") << 0;
        QTest::newRow("CommitPendingEdits") << 1;
        QTest::newRow("page") << 2;
    }
    void hidingTheListTakesOverTheText() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.panel()->InsertField();
        if (way == 0) on.panel()->HideFieldList();
        if (way == 1) on.builder->CommitPendingEdits();
        if (way == 2) {
            QTabBar* bar = on.builder->PageCtrl->tabBar();
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(3).center());
        }
        QVERIFY(on.list()->isHidden());
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.changes, 1);
    }

    void exitOfTheEditorIsNoneWhileTheListIsShown() {
        EditedPanel on;
        on.type("7");
        on.panel()->InsertField();
        on.panel()->SetFieldText();
        QVERIFY(on.panel()->isEditing());
        QVERIFY(on.list()->isVisible());
        on.panel()->KeyUpOnFieldList(Qt::Key_Escape);
        on.panel()->SetFieldText();
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(on.row(0)->Arguments[0], "7");
    }

    void keysMayBeHandedToTheEditor() {
        EditedPanel on;
        on.type("7");
        QKeyEvent letter(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a");
        letter.ignore();
        on.panel()->KeyDownOnFieldText(&letter);
        on.panel()->KeyPressOnFieldText(&letter);
        QVERIFY(!letter.isAccepted());
        QKeyEvent lineBreak(QEvent::KeyPress, Qt::Key_M, Qt::ControlModifier, "\r");
        lineBreak.ignore();
        on.panel()->KeyPressOnFieldText(&lineBreak);
        QVERIFY(lineBreak.isAccepted());
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r");
        on.panel()->KeyDownOnFieldText(&enter);
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(on.row(0)->Arguments[0], "7");
    }

    void boxThatIsClosedMeanwhileStaysInTheList() {
        EditedPanel on;
        on.open();
        on.panel()->InsertField();
        on.builder->ListOfTables->DeleteTable(on.builder->ListOfTables->tableByAlias("T"));
        QTest::keyClicks(on.list()->filter(), "j");
        QTest::keyClick(on.list()->filter(), Qt::Key_Return);
        QCOMPARE(on.memo()->text(), "T.J");
    }

    // At the end of a list or text an arrow key has nothing more to do there, and none elsewhere.
    void arrowKeysOfTheEditorMoveNothingInThePanel() {
        const EditedPanel on;
        on.open(0, ekArgument);
        on.panel()->setActiveElement(&on.element(0, ekArgument));
        on.panel()->InsertField();
        QTest::keyClicks(QApplication::focusWidget(), "c");
        for (int step = 0; step < 4; ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        }
        QCOMPARE(on.panel()->ActiveElement(), &on.element(0, ekArgument));
        on.panel()->KeyUpOnFieldList(Qt::Key_Escape);
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_PageDown}) {
            QTest::keyClick(on.memo(), key);
            QVERIFY(on.panel()->isEditing());
            QCOMPARE(on.panel()->ActiveElement(), &on.element(0, ekArgument));
        }
    }
};

QTEST_MAIN(ConditionEditorListTest)
#include "tst_conditioneditorlist.moc"
