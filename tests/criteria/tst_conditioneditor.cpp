// SPDX-License-Identifier: MIT
// Editing fields and arguments of conditions in place: opening, place, taking over, types.
#include "criteria/EditedPanel.h"
#include "criteria/ORVQDConditionLayout.h"

#include <QFocusEvent>
#include <QTabBar>

using orvtest::EditedPanel;
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
};

QTEST_MAIN(ConditionEditorTest)
#include "tst_conditioneditor.moc"
