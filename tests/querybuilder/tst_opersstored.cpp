// SPDX-License-Identifier: MIT
#include "querybuilder/OpersForm.h"

#include <limits>

using orvtest::operatorOf;
using orvtest::OpersForm;

// What is typed into the features of an operator, and when it gets into the operator.
class OpersStoredTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- what is stored, and when

    void selectingAnotherStoresEveryText() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebName, "N");
        on.user->type(on.dialog.ebCaption, "C");
        on.user->type(on.dialog.ebRelate, "R");
        on.user->type(on.dialog.ebPrefix, "PRE");
        on.user->type(on.dialog.ebPostfix, "POST");
        on.user->type(on.dialog.ebCount, "7");
        QVERIFY(on.dialog.isModified());
        QCOMPARE(on.entry(8), operatorOf("IN", "(", "", ")"));
        on.user->select("=");
        QVERIFY(!on.dialog.isModified());
        QCOMPARE(on.entry(8).Name, "N");
        QCOMPARE(on.entry(8).Caption, "C");
        QCOMPARE(on.entry(8).Relate, "R");
        QCOMPARE(on.entry(8).Prefix, "PRE");
        QCOMPARE(on.entry(8).Postfix, "POST");
        QCOMPARE(on.entry(8).Count, 6);
        QCOMPARE(on.entry(0), TorvQDOperator());
    }

    void enteredCountIsStoredOneLower() {
        OpersForm on;
        on.user->select("BETWEEN");
        QCOMPARE(on.dialog.ebCount->text(), "3");
        on.user->type(on.dialog.ebCount, "4");
        on.user->select("NOT BETWEEN");
        QCOMPARE(on.entry("BETWEEN").Count, 3);
        QCOMPARE(on.entry("NOT BETWEEN").Count, 2);
        QCOMPARE(on.dialog.ebCount->text(), "3");
    }

    void nameRenamesTheLineAtOnce() {
        OpersForm on;
        on.user->select("LIKE");
        on.user->type(on.dialog.ebName, "CONTAINS");
        QCOMPARE(on.dialog.lbOperators->item(6)->text(), "CONTAINS");
        QCOMPARE(on.entry(6).Name, "LIKE");
        on.user->type(on.dialog.ebCaption, "has");
        QCOMPARE(on.dialog.lbOperators->item(6)->text(), "CONTAINS");
        on.user->type(on.dialog.ebName, "");
        QCOMPARE(on.dialog.lbOperators->item(6)->text(), "");
    }

    // Undoing is typing too.
    void undoneNameRenamesTheLineBack() {
        OpersForm on;
        on.user->select("LIKE");
        on.dialog.ebName->setFocus();
        on.dialog.ebName->end(false);
        QTest::keyClicks(on.dialog.ebName, "X");
        QCOMPARE(on.user->lines()[6], "LIKEX");
        QTest::keySequence(on.dialog.ebName, QKeySequence::Undo);
        QCOMPARE(on.user->lines()[6], "LIKE");
    }

    void onlyTheUserMarksTheOperatorAsChanged() {
        OpersForm on;
        on.user->select("IN");
        on.dialog.ebPrefix->setText("[");
        QVERIFY(!on.dialog.isModified());
        on.user->select("=");
        QCOMPARE(on.entry("IN").Prefix, "(");
    }

    void changingDataWithoutASenderOnlyWritesThePreview() {
        OpersForm on;
        on.user->select("IN");
        on.dialog.ebName->setText("X");
        on.dialog.ChangeData();
        QCOMPARE(on.dialog.lblSQL->text(), "??? X( ??? )");
        QVERIFY(!on.dialog.isModified());
        QCOMPARE(on.user->lines()[8], "IN");
        on.dialog.ChangeData(on.dialog.ebName);
        QVERIFY(on.dialog.isModified());
        QCOMPARE(on.user->lines()[8], "X");
    }

    void neitherEqualNorEmptyNamesAreRefused() {
        OpersForm on;
        on.user->select("<");
        on.user->type(on.dialog.ebName, "=");
        on.user->select(">");
        on.user->type(on.dialog.ebName, "");
        on.user->select("LIKE");
        QCOMPARE(on.entry(2).Name, "=");
        QCOMPARE(on.entry(3).Name, "");
        QCOMPARE(on.services.errors, QStringList());
        QCOMPARE(on.dialog.Operators.FindName("="), on.dialog.Operators.Items(0));
    }

    void longTextsAreKeptWhole() {
        TorvQDOperatorsPropertyDlg dialog;
        dialog.Operators.Add(operatorOf(QString(50'000, 'n'), "", "", ""));
        orvtest::OpersUser user(dialog);
        user.select(0);
        user.type(dialog.ebCaption, "c");
        dialog.lbOperators->clearSelection();
        QCOMPARE(dialog.Operators.Items(0)->Name.size(), 50'000);
        QCOMPARE(dialog.Operators.Items(0)->Caption, "c");
    }

    // --- OK

    void okKeepsOnlyTheDisplayNameOfTheShownOperator() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebName, "N");
        on.user->type(on.dialog.ebCaption, "is one of");
        on.user->type(on.dialog.ebRelate, "R");
        on.user->type(on.dialog.ebPrefix, "PRE");
        on.user->type(on.dialog.ebPostfix, "POST");
        on.user->type(on.dialog.ebCount, "7");
        on.user->click(on.dialog.btnOK);
        QCOMPARE(on.dialog.result(), int(QDialog::Accepted));
        QVERIFY(!on.dialog.isVisible());
        TorvQDOperator expected = operatorOf("IN", "(", "", ")");
        expected.Caption = "is one of";
        QCOMPARE(on.entry(8), expected);
    }

    void okKeepsWhatSelectingAnotherStoredBefore() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebPrefix, "[");
        on.user->select("=");
        on.user->type(on.dialog.ebPrefix, "{");
        on.user->click(on.dialog.btnOK);
        QCOMPARE(on.entry("IN").Prefix, "[");
        QCOMPARE(on.entry("=").Prefix, "");
    }

    void okWithoutACurrentOperatorChangesNothing() {
        OpersForm on;
        const QStringList before = on.dialog.Operators.toStrings();
        on.dialog.ebCaption->setText("left over");
        on.user->click(on.dialog.btnOK);
        QCOMPARE(on.dialog.Operators.toStrings(), before);
        QCOMPARE(on.dialog.result(), int(QDialog::Accepted));
    }

    void hintShowsWhileOKWouldLoseSomething() {
        OpersForm on;
        QVERIFY(!on.dialog.lblHint->isVisible());
        on.user->select("IN");
        on.user->type(on.dialog.ebCaption, "one of");
        QVERIFY(!on.dialog.lblHint->isVisible());
        on.user->type(on.dialog.ebPrefix, "[");
        QVERIFY(on.dialog.lblHint->isVisible());
        on.user->type(on.dialog.ebPrefix, "(");
        QVERIFY(!on.dialog.lblHint->isVisible());
        on.user->type(on.dialog.ebCount, "x");
        QVERIFY(on.dialog.lblHint->isVisible());
        on.user->type(on.dialog.ebCount, "3");
        QVERIFY(on.dialog.lblHint->isVisible());
        on.user->select("=");
        QVERIFY(!on.dialog.lblHint->isVisible());
        on.user->type(on.dialog.ebName, "==");
        QVERIFY(on.dialog.lblHint->isVisible());
        on.user->click(on.dialog.btnDelete);
        QVERIFY(!on.dialog.lblHint->isVisible());
    }

    // --- a count that is no number

    void countThatIsNoNumberIsTold_data() {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", " ", "x", "1.5", "1,000", "1e3", "2147483649", "-2147483648",
                                 "99999999999999999999", "- 1", "0x2"}) {
            QTest::newRow(text) << QString::fromLatin1(text);
        }
    }
    void countThatIsNoNumberIsTold() {
        QFETCH(QString, text);
        OpersForm on;
        on.user->select("IN");
        on.dialog.ebCount->setText(text);
        const QString error = "\"" + text + "\" is not a whole number";
        QCOMPARE(orvtest::errorOf([&] { on.dialog.ChangeData(on.dialog.ebCount); }), error);
        QVERIFY(on.dialog.isModified());
        QCOMPARE(orvtest::errorOf([&] { on.dialog.ChangeData(); }), error);
        on.dialog.lbOperators->blockSignals(true);
        on.dialog.lbOperators->setCurrentRow(0);
        QCOMPARE(orvtest::errorOf([&] { on.dialog.lbOperatorsClick(); }), error);
        QCOMPARE(on.dialog.currentIndex(), 8);
        QCOMPARE(on.entry("IN").Count, 1);
    }

    // No message box at each key.
    void badCountShowsInThePreviewWhileOneTypes() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebCount, "");
        QCOMPARE(on.dialog.lblSQL->text(), "\"\" is not a whole number");
        QTest::keyClicks(on.dialog.ebCount, "3");
        QCOMPARE(on.dialog.lblSQL->text(), "??? IN( ???  ??? )");
        QCOMPARE(on.services.errors, QStringList());
        QVERIFY(on.dialog.isVisible());
    }

    void badCountKeepsTheSelectionAndStoresTheTexts() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebPostfix, "]");
        on.user->type(on.dialog.ebCount, "two");
        on.user->select("LIKE");
        QCOMPARE(on.services.errors, QStringList("\"two\" is not a whole number"));
        QCOMPARE(on.user->selected(), QStringList("IN"));
        QCOMPARE(on.dialog.currentIndex(), 8);
        QCOMPARE(on.user->shown(), QStringList({"IN", "IN", "two", "(", "", "]"}));
        QCOMPARE(on.entry("IN").Postfix, "]");
        QCOMPARE(on.entry("IN").Count, 1);
        QCOMPARE(on.dialog.focusWidget(), on.dialog.ebCount);
        QVERIFY(on.dialog.isVisible());
        on.user->type(on.dialog.ebCount, "5");
        on.user->select("LIKE");
        QCOMPARE(on.user->selected(), QStringList("LIKE"));
        QCOMPARE(on.entry("IN").Count, 4);
        QCOMPARE(on.services.errors.size(), 1);
    }

    void badCountKeepsTheSelectionWhenOneAdds() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebCount, "");
        on.user->click(on.dialog.btnAdd);
        QCOMPARE(on.services.errors, QStringList("\"\" is not a whole number"));
        QCOMPARE(on.user->selected(), QStringList("IN"));
        QCOMPARE(on.dialog.currentIndex(), 8);
        QCOMPARE(on.dialog.Operators.Count(), 15);
        QCOMPARE(on.user->lines().size(), 15);
    }

    void badCountCanBeDeletedWithItsOperator() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebCount, "");
        on.user->click(on.dialog.btnDelete);
        on.user->select("LIKE");
        QCOMPARE(on.services.errors, QStringList());
        QCOMPARE(on.user->shown(), QStringList({"LIKE", "LIKE", "2", "", "", ""}));
    }

    void okDoesNotReadTheCount() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebCaption, "one of");
        on.user->type(on.dialog.ebCount, "");
        on.user->click(on.dialog.btnOK);
        QCOMPARE(on.dialog.result(), int(QDialog::Accepted));
        QCOMPARE(on.services.errors, QStringList());
        QCOMPARE(on.entry("IN").Caption, "one of");
        QCOMPARE(on.entry("IN").Count, 1);
    }

    void anyWholeNumberIsStored_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("count");
        QTest::newRow("none") << "0" << -1;
        QTest::newRow("negative") << "-1" << -2;
        QTest::newRow("large") << "99999999" << 99999998;
        QTest::newRow("blanks") << " 3 " << 2;
        QTest::newRow("plus") << "+3" << 2;
        QTest::newRow("largest") << "2147483648" << std::numeric_limits<int>::max();
        QTest::newRow("least") << "-2147483647" << std::numeric_limits<int>::min();
    }
    void anyWholeNumberIsStored() {
        QFETCH(QString, text);
        QFETCH(int, count);
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebCount, text);
        on.user->select("=");
        QCOMPARE(on.services.errors, QStringList());
        QCOMPARE(on.entry("IN").Count, count);
        on.user->select("IN");
        QCOMPARE(on.dialog.ebCount->text().toLongLong(), qint64(count) + 1);
        on.user->type(on.dialog.ebPrefix, "[");
        on.user->select("=");
        QCOMPARE(on.entry("IN").Count, count);
    }
};

QTEST_MAIN(OpersStoredTest)
#include "tst_opersstored.moc"
