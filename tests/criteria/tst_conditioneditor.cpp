// SPDX-License-Identifier: MIT
// Editing fields and arguments of conditions in place.
#include "criteria/EditedPanel.h"
#include "criteria/ORVQDConditionLayout.h"
#include "support/PagesHostStandIn.h"

#include <QFocusEvent>
#include <QSignalSpy>
#include <QTabBar>

using orvtest::EditedPanel;
using orvtest::PagesHostStandIn;
using orvtest::RecordedServices;

namespace {

QString longName() {
    return QString(70, u'X');
}

void loseFocus(QWidget* widget, Qt::FocusReason reason) {
    QFocusEvent event(QEvent::FocusOut, reason);
    QCoreApplication::sendEvent(widget, &event);
}

}  // namespace

class ConditionEditorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- opening

    void liesOverItsElement_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        QTest::newRow("field") << 0 << int(ekFieldName) << "T.I";
        QTest::newRow("argument") << 1 << int(ekArgument) << "'x'";
    }
    void liesOverItsElement() {
        QFETCH(int, row);
        QFETCH(int, kind);
        QFETCH(QString, text);
        const EditedPanel on;
        QVERIFY(on.isActive());
        const QRect rect = on.rectOf(row, kind);
        on.open(row, kind);
        QVERIFY(on.panel()->isEditing());
        QVERIFY(on.memo()->isVisible());
        QVERIFY(on.memo()->hasFocus());
        QCOMPARE(on.memo()->text(), text);
        QCOMPARE(on.memo()->textCursor().selectedText(), text);
        QCOMPARE(on.memo()->pos(), rect.topLeft());
        QVERIFY(on.memo()->geometry().contains(rect));
        QCOMPARE(on.memo()->height(), on.panel()->rowHeight());
    }

    void opensOnAClick() {
        const EditedPanel on;
        QTest::mouseClick(on.view(), Qt::LeftButton, {}, on.rectOf(1, ekFieldName).center());
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "T.C");
        QCOMPARE(on.panel()->CurrentElement(), &on.element(1, ekFieldName));
    }

    void opensOnEnterAndF2_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("enter") << int(Qt::Key_Return);
        QTest::newRow("F2") << int(Qt::Key_F2);
    }
    void opensOnEnterAndF2() {
        QFETCH(int, key);
        const EditedPanel on;
        on.panel()->setActiveElement(&on.element(0, ekArgument));
        QTest::keyClick(on.panel(), Qt::Key(key));
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "1");
    }

    void onlyFieldsAndArgumentsAreTyped() {
        const EditedPanel on;
        on.panel()->editText(*on.panel()->rootRow()->Controls[ekGroupOper]);
        for (const int kind : {ekButton, ekFieldFunc, ekOperator, ekArgFunc}) {
            on.panel()->editText(on.element(0, kind));
        }
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.memo()->isHidden());
    }

    void hasTheFullText() {
        const EditedPanel on("T.C = '" + longName() + "'");
        QVERIFY(on.element(0, ekArgument).GetText().endsWith("..."));
        on.open();
        QCOMPARE(on.memo()->text(), u'\'' + longName() + u'\'');
    }

    void blanksForNothingAreNoText() {
        const EditedPanel on;
        on.row(0)->Arguments[0] = orv::blankText();
        on.panel()->refreshView();
        on.open();
        QCOMPARE(on.memo()->text(), "");
    }

    void openingAnotherTakesOverTheFirst() {
        EditedPanel on;
        on.type("7");
        on.open(1, ekFieldName);
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.memo()->text(), "T.C");
        QCOMPARE(on.changes, 1);
        QVERIFY(on.panel()->isEditing());
    }

    // --- size and place

    void followingElementsMakeRoomAndMoveBack() {
        const EditedPanel on;
        const QRect field = on.rectOf(0, ekFieldName);
        const QRect oper = on.rectOf(0, ekOperator);
        const QRect argument = on.rectOf(0, ekArgument);
        const int gap = oper.left() - field.right();
        on.type("T.I + T.J + T.I + T.J", 0, ekFieldName);
        QVERIFY(on.memo()->width() > field.width() + 50);
        QCOMPARE(on.rectOf(0, ekFieldName), field);
        QCOMPARE(on.rectOf(0, ekOperator).left() - on.memo()->geometry().right(), gap);
        QCOMPARE(on.rectOf(0, ekArgument).left() - on.rectOf(0, ekOperator).left(),
                 argument.left() - oper.left());
        QCOMPARE(on.memo()->horizontalScrollBar()->value(), 0);
        QTest::keyClick(on.memo(), Qt::Key_Escape);
        QCOMPARE(on.rectOf(0, ekOperator), oper);
        QCOMPARE(on.rectOf(0, ekArgument), argument);
    }

    void shrinksWithItsTextButCoversTheElement() {
        const EditedPanel on;
        const int width = on.rectOf(0, ekFieldName).width();
        on.open(0, ekFieldName);
        const int opened = on.memo()->width();
        on.type(longName(), 0, ekFieldName);
        on.memo()->selectAll();
        on.memo()->insertPlainText("T.I");
        QCOMPARE(on.memo()->width(), opened);
        on.memo()->clear();
        QVERIFY(on.memo()->width() >= width);
    }

    void severalLinesMakeItHigher() {
        const EditedPanel on;
        on.open();
        const int one = on.memo()->height();
        QTest::keyClick(on.memo(), Qt::Key_Return, Qt::ControlModifier);
        QTest::keyClicks(on.memo(), "2");
        QVERIFY(on.memo()->height() >= one + 10);
        QCOMPARE(on.memo()->verticalScrollBar()->maximum(), 0);  // all of it is seen
    }

    // Beyond the width of the view the text scrolls in the editor.
    void isNeverLargerThanTheView() {
        const EditedPanel on;
        on.type(QString(2000, u'x'));
        QCOMPARE(on.memo()->width(), on.view()->width());
        QCOMPARE(on.memo()->geometry().left(), 0);
        on.memo()->selectAll();
        on.memo()->insertPlainText(QString(100, u'\n'));
        QVERIFY(on.memo()->height() <= on.view()->height());
    }

    void viewScrollsToShowWhatIsTyped() {
        const EditedPanel on;
        on.builder->resize(300, 560);
        QCoreApplication::processEvents();
        on.type(QString(20, u'W'));
        QVERIFY(on.panel()->horizontalScrollBar()->value() > 0);
        QVERIFY(on.view()->rect().contains(on.memo()->geometry()));
        QCOMPARE(on.memo()->pos(), on.rectOf(0, ekArgument).topLeft());
    }

    void followsTheScrollPosition() {
        QStringList conditions;
        for (int number = 0; number < 60; ++number) {
            conditions << "T.I = " + QString::number(number);
        }
        const EditedPanel on(conditions.join(" AND "));
        on.open(10);
        for (const int value : {40, 100, 0}) {
            on.panel()->verticalScrollBar()->setValue(value);
            QCOMPARE(on.memo()->pos(), on.rectOf(10, ekArgument).topLeft());
        }
        on.panel()->InsertField();
        on.panel()->verticalScrollBar()->setValue(170);
        QCOMPARE(on.memo()->pos(), on.rectOf(10, ekArgument).topLeft());
        QCOMPARE(on.list()->pos(), on.memo()->geometry().bottomLeft() + QPoint(0, 1));
        QVERIFY(on.panel()->isEditing());
    }

    void followsTheRowsAboveIt() {
        const EditedPanel on;
        on.type("'typed'", 1);
        on.panel()->rootRow()->SubRows->Delete(0);
        on.panel()->refreshView();
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->pos(), on.rectOf(0, ekArgument).topLeft());
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.row(0)->Arguments, QStringList("'typed'"));
    }

    void anotherRowHeightIsFollowed() {
        const EditedPanel on;
        on.open(1);
        on.panel()->SetRowHeight(32);
        QCOMPARE(on.memo()->height(), 32);
        QCOMPARE(on.memo()->pos(), on.rectOf(1, ekArgument).topLeft());
    }

    // --- taking over

    void enterStoresTheTrimmedText_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("field") << int(ekFieldName) << "  T.J "
                               << "T.J";
        QTest::newRow("argument") << int(ekArgument) << " 5\t"
                                  << "5";
        QTest::newRow("nothing") << int(ekArgument) << "" << QString(9, u' ');
        QTest::newRow("blanks") << int(ekFieldName) << "   " << QString(9, u' ');
        QTest::newRow("lines") << int(ekArgument) << "1 +\n2"
                               << "1 +\r\n2";
    }
    void enterStoresTheTrimmedText() {
        QFETCH(int, kind);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        const RecordedServices services;
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type(typed, 0, kind);
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(*on.row(0)->textOf(kind), stored);
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.memo()->isHidden());
        QVERIFY(on.panel()->hasFocus());
        verifyBuilder(*on.builder);
        QCoreApplication::processEvents();
    }

    void textGoesToTheArgumentItCameFrom() {
        EditedPanel on("T.I BETWEEN 1 AND 9");
        on.type("7", 0, ekArgument + 1);
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.row(0)->Arguments, QStringList({"1", "7"}));
        QCOMPARE(on.condition(), "((T.I BETWEEN 1 and 7))");
    }

    void unchangedTextIsNoChange() {
        EditedPanel on;
        on.row(0)->Arguments[0] = "  1\r2 ";  // nobody could type it
        on.open();
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.row(0)->Arguments[0], "  1\r2 ");
        on.row(0)->Arguments[0] = orv::blankText();
        on.open();
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.row(0)->Arguments[0], orv::blankText());
        on.type("x", 1);
        on.memo()->selectAll();
        on.memo()->insertPlainText("'x'");
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.changes, 0);
    }

    void escapeDropsTheText() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        QTest::keyClick(on.memo(), Qt::Key_Escape);
        QCOMPARE(on.row(0)->Arguments[0], "1");
        QCOMPARE(on.changes, 0);
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.panel()->hasFocus());
    }

    void onlyTheEditedRowIsLaidOutAgain() {
        QStringList conditions;
        for (int number = 0; number < 50; ++number) {
            conditions << "T.I = " + QString::number(number);
        }
        const EditedPanel on(conditions.join(" AND "));
        on.open(20);
        const int measured = on.panel()->conditionLayout().measuredRows();
        on.memo()->insertPlainText("4711");
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.panel()->conditionLayout().measuredRows() - measured, 1);
        QCOMPARE(on.element(20, ekArgument).GetText(), "4711");
    }

    void goesToTheElementItWasOpenedFor() {
        EditedPanel on;
        on.type("7");
        on.panel()->setCurrentElement(&on.element(1, ekArgument));
        on.panel()->setActiveElement(&on.element(1, ekFieldName));
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.condition(), "((T.I = 7) and (T.C = 'x'))");
    }

    // --- losing the focus

    void focusElsewhereTakesOverAndStaysThere() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.other->setFocus(Qt::MouseFocusReason);
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.other->hasFocus());
    }

    void panelTakesTheFocusFromNobody() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.memo()->clearFocus();
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QVERIFY(on.panel()->hasFocus());
    }

    void pressOnThePanelTakesOver() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        QTest::mousePress(on.view(), Qt::LeftButton, {}, on.rectOf(1, ekOperator).center());
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.changes, 1);
        QVERIFY(on.panel()->hasFocus());
        QCOMPARE(on.panel()->ActiveElement(), &on.element(1, ekOperator));
    }

    void menusAndOtherWindowsLeaveItOpen_data() {
        QTest::addColumn<int>("reason");
        QTest::newRow("menu") << int(Qt::PopupFocusReason);
        QTest::newRow("window") << int(Qt::ActiveWindowFocusReason);
    }
    void menusAndOtherWindowsLeaveItOpen() {
        QFETCH(int, reason);
        EditedPanel on;
        on.type("7");
        loseFocus(on.memo(), Qt::FocusReason(reason));
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.changes, 0);
    }

    void clickOnAPageTakesOverBeforeItChanges() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        int pageAtChange = -1;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { pageAtChange = on.builder->PageCtrl->currentIndex(); });
        QTabBar* bar = on.builder->PageCtrl->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(1).center());
        QCOMPARE(on.builder->PageCtrl->currentIndex(), 1);
        QCOMPARE(pageAtChange, 0);
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.row(0)->Arguments[0], "7");
    }

    void changeOfThePageByTheProgramTakesOver() {
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        on.builder->PageCtrl->setCurrentIndex(2);
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.panel()->isEditing());
    }

    // --- types

    void mismatchIsMarkedAtOnceAndToldLater() {
        orv::MessageRequest told;
        int boxes = 0;
        const orv::MessageService before =
            orv::setMessageService([&](const orv::MessageRequest& request) {
                told = request;
                ++boxes;
                return orv::MessageAnswer::Ok;
            });
        {
            EditedPanel on;
            on.type("12a");
            QTest::keyClick(on.memo(), Qt::Key_Return);
            QVERIFY(!on.row(0)->Valid);
            QCOMPARE(on.row(0)->Arguments[0], "12a");
            QCOMPARE(boxes, 0);
            QCoreApplication::processEvents();
            QCOMPARE(boxes, 1);
            QCOMPARE(told.text, "Type mismatch in expression");
            QCOMPARE(told.caption, "Error!");
            QCOMPARE(told.icon, orv::MessageIcon::Exclamation);
            QCOMPARE(told.buttons, orv::MessageButtons::Ok);
            on.type("12");
            QTest::keyClick(on.memo(), Qt::Key_Return);
            QVERIFY(on.row(0)->Valid);
            QCoreApplication::processEvents();
            QCOMPARE(boxes, 1);
        }
        orv::setMessageService(before);
    }

    void hostFindsTheMarkWhenItIsTold() {
        const RecordedServices services;
        EditedPanel on;
        bool wasValid = true;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { wasValid = on.row(0)->Valid; });
        on.type("12a");
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QVERIFY(!wasValid);
        QCoreApplication::processEvents();
    }

    void boxIsForgottenWithThePanel() {
        const RecordedServices services;
        {
            EditedPanel on;
            on.type("12a");
            QTest::keyClick(on.memo(), Qt::Key_Return);
        }
        QCoreApplication::processEvents();
        QVERIFY(services.messages.isEmpty());
    }

    void boxMayTakeTheBuilderAway() {
        EditedPanel on;
        const orv::MessageService before = orv::setMessageService([&](const orv::MessageRequest&) {
            delete on.builder;
            return orv::MessageAnswer::Ok;
        });
        on.type("12a");
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCoreApplication::processEvents();
        orv::setMessageService(before);
        QVERIFY(!on.builder);
    }

    // --- what goes meanwhile

    void textForARowThatIsGoneIsDropped() {
        EditedPanel on;
        on.type("7");
        on.panel()->rootRow()->SubRows->Delete(0);
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.condition(), "((T.C = 'x'))");
        QCOMPARE(on.changes, 0);
        QVERIFY(!on.panel()->isEditing());
    }

    void closesWhenItsElementGoes_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("row") << 0;
        QTest::newRow("argument") << 1;
        QTest::newRow("condition") << 2;
    }
    void closesWhenItsElementGoes() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        if (way == 0) on.panel()->rootRow()->SubRows->Delete(0);
        if (way == 1) on.row(0)->setOperator(on.builder->Operators->FindName("IS NULL"));
        if (way == 2) on.row(0)->SetGroupOper("Any");
        on.panel()->refreshView();
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.memo()->isHidden());
        QVERIFY(on.panel()->hasFocus());
        QVERIFY(!on.condition().contains(u'7'));
        QCOMPARE(on.changes, 0);
    }

    void collapsedByTheProgramItTakesOver() {
        EditedPanel on("(T.I = 1 OR T.J = 2) AND T.C = 'x'");
        TorvQDWhereRow* group = on.row(0);
        on.panel()->editText(*group->SubRows->Row(0)->Controls[ekArgument]);
        on.memo()->insertPlainText("7");
        group->SetExpanded(false);
        on.panel()->refreshView();
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(group->SubRows->Row(0)->Arguments[0], "7");
    }

    // --- what takes over first, and what drops

    void commandsTakeOverFirst_data() {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("condition");
        const QString other = "(T.C = 'x')";
        QTest::newRow("add") << 0
                             << "((T.I = 7) and (T.C = 'x') and (" + QString(9, u' ') + " = " +
                                    QString(9, u' ') + "))";
        QTest::newRow("compose") << 1 << "((T.I = 7) and  ((T.C = 'x')))";
        QTest::newRow("delete") << 2 << "((T.I = 7))";
        QTest::newRow("operator") << 3 << "((T.I = 7) and (T.C <> 'x'))";
        QTest::newRow("catalogue") << 4 << "((T.I = 7) and (T.C = 'x'))";
        QTest::newRow("host") << 5 << "((T.I = 7) and (T.C = 'x'))";
    }
    void commandsTakeOverFirst() {
        QFETCH(int, command);
        QFETCH(QString, condition);
        const RecordedServices services;
        EditedPanel on;
        TorvQDWherePanel* panel = on.panel();
        on.type("7");
        panel->setCurrentElement(&on.element(1, command == 3 ? int(ekOperator) : int(ekButton)));
        switch (command) {
        case 0: panel->AddCondition(); break;
        case 1: panel->MakeCompositCondition(); break;
        case 2: panel->DeleteCondition(); break;
        case 3: {
            QAction item;
            item.setData(QVariant::fromValue(on.builder->Operators->FindName("<>")));
            panel->SelectOperator(&item);
            break;
        }
        case 4: {
            TOperatorList same;
            same.Assign(on.builder->Operators.get());
            on.builder->setOperators(same);
            break;
        }
        case 5: on.builder->CommitPendingEdits(); break;
        default: break;
        }
        QVERIFY(!panel->isEditing());
        QCOMPARE(on.condition(), condition);
        verifyBuilder(*on.builder);
    }

    void renamedAliasReachesWhatIsBeingTyped() {
        EditedPanel on;
        on.type("T.J");
        on.builder->WorkArea->renameTable(on.builder->ListOfTables->tableByAlias("T"), "NEW");
        QCOMPARE(on.condition(), "((NEW.I = NEW.J) and (NEW.C = 'x'))");
        QVERIFY(!on.panel()->isEditing());
    }

    void clearingAndLoadingDrop_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("Clear") << 0;
        QTest::newRow("LoadSQL") << 1;
        QTest::newRow("RestoreState") << 2;
        QTest::newRow("ClearContents") << 3;
    }
    void clearingAndLoadingDrop() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        const QByteArray state = on.builder->SaveState();
        QStringList seen;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { seen << on.condition(); });
        on.type("4711");
        on.panel()->InsertField();
        if (way == 0) on.builder->Clear();
        if (way == 1) on.builder->LoadSQL("SELECT T.I FROM T WHERE T.J = 2");
        if (way == 2) on.builder->RestoreState(state);
        if (way == 3) on.panel()->ClearContents();
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.memo()->isHidden());
        QVERIFY(on.list()->isHidden());
        QVERIFY(on.panel()->hasFocus());
        QVERIFY(!on.condition().contains("4711"));
        QCOMPARE(seen.size(), 1);
        QVERIFY(!seen.first().contains("4711"));
    }

    void loadingWhatIsShownLeavesItOpen() {
        EditedPanel on;
        on.type("7");
        on.builder->LoadSQL(on.builder->GetSQLStatment());
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "7");
        QVERIFY(on.memo()->isVisible());
    }

    void loadingThatFailsLeavesItOpen() {
        EditedPanel on;
        on.type("7");
        QVERIFY(orvtest::errorOf([&] { on.builder->LoadSQL("DELETE FROM T"); }) != "(no error)");
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "7");
    }

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

    // --- host

    void errorOfTheHostGoesToTheErrorHandler() {
        const RecordedServices services;
        EditedPanel on;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [] { throw orv::Error(QStringLiteral("host")); });
        on.type("7");
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(services.errors, QStringList("host"));
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QVERIFY(!on.panel()->isEditing());
        verifyBuilder(*on.builder);
    }

    void hostMayDestroyTheBuilder_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("enter") << 0;
        QTest::newRow("focus") << 1;
        QTest::newRow("leaving the list") << 2;
        QTest::newRow("press") << 3;
        QTest::newRow("command") << 4;
        QTest::newRow("catalogue") << 5;
        QTest::newRow("CommitPendingEdits") << 6;
        QTest::newRow("another element") << 7;
        QTest::newRow("row menu") << 8;
    }
    void hostMayDestroyTheBuilder() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { delete on.builder; });
        on.type("7");
        if (way == 2) on.panel()->InsertField();
        switch (way) {
        case 0: EditedPanel::press(on.memo(), Qt::Key_Return); break;
        case 1:
        case 2: on.other->setFocus(); break;
        case 3: {
            QMouseEvent event(QEvent::MouseButtonPress, QPointF(5, 5), QPointF(5, 5),
                              Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(on.view(), &event);
            break;
        }
        case 4:
            on.panel()->setCurrentElement(&on.element(1, ekButton));
            on.panel()->AddCondition();
            break;
        case 5: on.panel()->PrepareToReloadOperators(); break;
        case 6: on.builder->CommitPendingEdits(); break;
        case 7: on.panel()->editText(on.element(1, ekArgument)); break;
        case 8: {
            QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
            QCoreApplication::sendEvent(on.view(), &event);
            break;
        }
        default: break;
        }
        QVERIFY(!on.builder);
    }

    // Without a builder there is nobody who disarms the editor first.
    void panelThatDiesWithAnOpenEditorTakesNothingOver() {
        for (const bool withList : {false, true}) {
            const RecordedServices services;
            const TGroupOperators groups;
            TOperatorList operators;
            orv::fillOperators(operators);
            PagesHostStandIn page;
            page.addTable("T", {"A"});
            page.show();
            QVERIFY(QTest::qWaitForWindowActive(&page));
            TorvTabSheet sheet(&page);
            sheet.resize(page.size());
            sheet.show();
            auto panel = std::make_unique<TorvQDWherePanel>(&sheet);
            panel->GroupOpers = &groups;
            panel->Operators = &operators;
            panel->Activate();
            TorvQDWhereRow* row = panel->rootRow()->SubRows->AddRow();
            panel->resize(300, 200);
            panel->show();
            page.changes = 0;
            panel->editText(*row->Controls[ekFieldName]);
            panel->findChild<TMemoEx*>()->insertPlainText("T.A");
            if (withList) panel->InsertField();
            QVERIFY(panel->isAncestorOf(QApplication::focusWidget()));
            panel.reset();
            QCOMPARE(page.changes, 0);
            QCOMPARE(page.openChanges, 0);
            QVERIFY(services.errors.isEmpty());
        }
    }

    void builderThatDiesWithAnOpenEditorTellsNobody() {
        for (const bool withList : {false, true}) {
            const RecordedServices services;
            EditedPanel on;
            QVERIFY(on.isActive());
            on.type("12a");
            if (withList) on.panel()->InsertField();
            delete on.builder;
            QCoreApplication::processEvents();
            QCOMPARE(on.changes, 0);
            QVERIFY(services.messages.isEmpty());
            QVERIFY(services.errors.isEmpty());
        }
    }

    // It has no border of its own, and lies on a row as white as itself.
    void editorIsSeenOnTheActiveRow() {
        const EditedPanel on;
        on.open();
        const QRect text = on.memo()->geometry();
        const QImage picture = on.view()->grab().toImage();
        const QPoint beside(text.left() - 1, text.center().y());
        QCOMPARE(picture.pixelColor(beside), QColor(128, 128, 128));
        QCOMPARE(picture.pixelColor(text.center().x(), text.bottom() + 1), QColor(128, 128, 128));
        on.panel()->discardEdit();
        QVERIFY(on.view()->grab().toImage().pixelColor(text.center().x(), text.bottom() + 1) !=
                QColor(128, 128, 128));
    }

    void editorDoesNotOpenOnAPageThatTheHostLeft() {
        const EditedPanel on;
        on.type("2");
        QObject::connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                         [&] { on.builder->PageCtrl->setCurrentIndex(1); });
        on.open(1, ekArgument);
        QCOMPARE(on.row(0)->Arguments, QStringList("2"));
        QVERIFY(!on.panel()->isEditing());
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

QTEST_MAIN(ConditionEditorTest)
#include "tst_conditioneditor.moc"
