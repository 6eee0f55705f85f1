// SPDX-License-Identifier: MIT
#include "querybuilder/OpersForm.h"

#include <limits>

using orvtest::operatorOf;
using orvtest::OpersForm;

// The list of operators and its commands.
class OpersEditorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the preview

    void previewIsTheSqlOfTheOperator_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("preview");
        const char* const previews[] = {"??? = ??? ",
                                        "??? <> ??? ",
                                        "??? < ??? ",
                                        "??? > ??? ",
                                        "??? <= ??? ",
                                        "??? >= ??? ",
                                        "??? LIKE ??? ",
                                        "??? NOT LIKE ??? ",
                                        "??? IN( ??? )",
                                        "??? NOT IN( ??? )",
                                        "??? BETWEEN ???  and  ??? ",
                                        "??? NOT BETWEEN ???  and  ??? ",
                                        "??? IS NULL",
                                        "??? IS NOT NULL"};
        for (int index = 0; index < 14; ++index) {
            QTest::newRow(previews[index]) << index << QString::fromLatin1(previews[index]);
        }
    }
    void previewIsTheSqlOfTheOperator() {
        QFETCH(int, index);
        QFETCH(QString, preview);
        OpersForm on;
        on.user->select(index);
        QCOMPARE(on.dialog.lblSQL->text(), preview);
    }

    void previewHasTheRelateTextBetweenOperandsOnly() {
        const TorvQDOperator entry = operatorOf("F", "<", ",", ">");
        QCOMPARE(orv::operatorPreview(entry, 1), "??? F<>");
        QCOMPARE(orv::operatorPreview(entry, 2), "??? F< ??? >");
        QCOMPARE(orv::operatorPreview(entry, 4), "??? F< ??? , ??? , ??? >");
        QCOMPARE(orv::operatorPreview({}, 2), "??? = ??? ");
    }

    void previewOfAnyCountIsBounded() {
        const TorvQDOperator entry = operatorOf("F", "(", "", ")");
        for (const qint64 count :
             {qint64(0), qint64(-5), qint64(std::numeric_limits<int>::min())}) {
            QCOMPARE(orv::operatorPreview(entry, count), "??? F()");
        }
        const QString thousand = "??? F(" + QString(" ??? ").repeated(1000) + ")";
        QCOMPARE(orv::operatorPreview(entry, 1001), thousand);
        QCOMPARE(orv::operatorPreview(entry, 1002), thousand);
        QCOMPARE(orv::operatorPreview(entry, qint64(std::numeric_limits<int>::max()) + 1),
                 thousand);
    }

    void previewFollowsWhatIsTyped() {
        OpersForm on;
        on.user->select("=");
        on.user->type(on.dialog.ebName, "ONE OF");
        QCOMPARE(on.dialog.lblSQL->text(), "??? ONE OF ??? ");
        on.user->type(on.dialog.ebPrefix, " {");
        on.user->type(on.dialog.ebRelate, ";");
        on.user->type(on.dialog.ebPostfix, "}");
        on.user->type(on.dialog.ebCount, "4");
        QCOMPARE(on.dialog.lblSQL->text(), "??? ONE OF { ??? ; ??? ; ??? }");
    }

    void longPreviewIsCutAndTheDialogStaysAsItIs() {
        OpersForm on;
        on.user->select("IN");
        const QSize before = on.dialog.size();
        on.user->type(on.dialog.ebRelate, QString("relate").repeated(20));
        on.user->type(on.dialog.ebCount, "99999999");
        QCoreApplication::processEvents();
        QCOMPARE(on.dialog.lblSQL->text().size(), 20000);
        QVERIFY(on.dialog.lblSQL->text().startsWith("??? IN( ??? relaterelate"));
        QCOMPARE(on.dialog.size(), before);
        QCOMPARE(on.entry("IN").Count, 1);
    }

    // --- the list

    void nothingIsSelectedAtFirst() {
        OpersForm on;
        QCOMPARE(on.user->lines(),
                 QStringList({"=", "<>", "<", ">", "<=", ">=", "LIKE", "NOT LIKE", "IN", "NOT IN",
                              "BETWEEN", "NOT BETWEEN", "IS NULL", "IS NOT NULL"}));
        QCOMPARE(on.user->selected(), QStringList());
        QCOMPARE(on.dialog.currentIndex(), -1);
        QVERIFY(on.dialog.Features->isHidden());
        QVERIFY(!on.dialog.btnDelete->isEnabled());
        QVERIFY(on.dialog.btnAdd->isEnabled());
        QVERIFY(!on.dialog.isModified());
        QVERIFY(on.dialog.restrictions().isEmpty());
    }

    void newDialogHasNoOperators() {
        const TorvQDOperatorsPropertyDlg dialog;
        QCOMPARE(dialog.Operators.Count(), 0);
        QCOMPARE(dialog.lbOperators->count(), 0);
        QCOMPARE(dialog.currentIndex(), -1);
    }

    void linesAreTheNamesNotTheCaptions() {
        TorvQDOperatorsPropertyDlg dialog;
        TorvQDOperator entry = operatorOf("N", "", "", "");
        entry.Caption = "C";
        dialog.Operators.Add(entry);
        dialog.FormShow();
        QCOMPARE(dialog.lbOperators->item(0)->text(), "N");
    }

    void showingTheFormAgainBeginsAnew() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebPrefix, "[");
        on.dialog.hide();
        on.dialog.Operators.Clear();
        orv::fillSmallOperators(on.dialog.Operators);
        on.dialog.show();
        QCOMPARE(on.user->lines(), QStringList({"=", "<>", "<", ">", "<=", ">="}));
        QCOMPARE(on.dialog.currentIndex(), -1);
        QVERIFY(!on.dialog.isModified());
        QVERIFY(on.dialog.Features->isHidden());
        on.user->select(0);
        QCOMPARE(on.entry(0).Prefix, "");
    }

    void selectingShowsTheOperator() {
        OpersForm on;
        on.user->select("BETWEEN");
        QCOMPARE(on.dialog.currentIndex(), 10);
        QVERIFY(on.dialog.Features->isVisible());
        QVERIFY(on.dialog.btnDelete->isEnabled());
        QCOMPARE(on.user->shown(), QStringList({"BETWEEN", "BETWEEN", "3", "", " and ", ""}));
        on.user->select("NOT IN");
        QCOMPARE(on.user->shown(), QStringList({"NOT IN", "NOT IN", "2", "(", "", ")"}));
        on.user->select("IS NULL");
        QCOMPARE(on.user->shown(), QStringList({"IS NULL", "IS NULL", "1", "", "", ""}));
        QVERIFY(!on.dialog.isModified());
    }

    void losingTheSelectionHidesTheFeatures() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebPrefix, "[");
        on.dialog.lbOperators->clearSelection();
        QCOMPARE(on.dialog.currentIndex(), -1);
        QVERIFY(on.dialog.Features->isHidden());
        QVERIFY(!on.dialog.btnDelete->isEnabled());
        QCOMPARE(on.entry("IN").Prefix, "[");
    }

    // --- adding

    void addedOperatorIsEqualityAndSelected() {
        OpersForm on;
        on.user->click(on.dialog.btnAdd);
        QCOMPARE(on.dialog.Operators.Count(), 15);
        QCOMPARE(on.entry(14), TorvQDOperator());
        QCOMPARE(on.user->lines().size(), 15);
        QCOMPARE(on.user->lines()[14], "=");
        QCOMPARE(on.dialog.currentIndex(), 14);
        QCOMPARE(on.dialog.lbOperators->currentRow(), 14);
        QVERIFY(on.dialog.lbOperators->item(14)->isSelected());
        QVERIFY(on.dialog.Features->isVisible());
        QCOMPARE(on.user->shown(), QStringList({"=", "=", "2", "", "", ""}));
    }

    void addingStoresTheOperatorBefore() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebPostfix, "]");
        on.user->click(on.dialog.btnAdd);
        QCOMPARE(on.entry("IN").Postfix, "]");
        QCOMPARE(on.entry(14).Postfix, "");
    }

    void addedToAnEmptyList() {
        TorvQDOperatorsPropertyDlg dialog;
        orvtest::OpersUser user(dialog);
        user.click(dialog.btnAdd);
        user.type(dialog.ebName, "MINE");
        user.click(dialog.btnAdd);
        QCOMPARE(dialog.Operators.Count(), 2);
        QCOMPARE(dialog.Operators.Items(0)->Name, "MINE");
        QCOMPARE(dialog.Operators.Items(1)->Name, "=");
    }

    void nameOfTheAddedOperatorIsTypedNext() {
        OpersForm on;
        on.user->click(on.dialog.btnAdd);
        QCOMPARE(on.dialog.focusWidget(), on.dialog.ebName);
        QTest::keyClicks(on.dialog.focusWidget(), "SOUNDS LIKE");
        QCOMPARE(on.user->lines()[14], "SOUNDS LIKE");
    }

    // --- deleting

    void deletingLeavesNothingSelected_data() {
        QTest::addColumn<int>("index");
        QTest::newRow("first") << 0;
        QTest::newRow("middle") << 8;
        QTest::newRow("last") << 13;
    }
    void deletingLeavesNothingSelected() {
        QFETCH(int, index);
        OpersForm on;
        QStringList names = on.user->lines();
        names.removeAt(index);
        on.user->select(index);
        on.user->click(on.dialog.btnDelete);
        QCOMPARE(on.user->lines(), names);
        QStringList left;
        for (int entry = 0; entry < on.dialog.Operators.Count(); ++entry) {
            left << on.entry(entry).Name;
        }
        QCOMPARE(left, names);
        QCOMPARE(on.user->selected(), QStringList());
        QCOMPARE(on.dialog.currentIndex(), -1);
        QVERIFY(on.dialog.Features->isHidden());
        QVERIFY(!on.dialog.btnDelete->isEnabled());
    }

    // The texts of the deleted one are in the edits still.
    void deletedTextsDoNotGetIntoTheNeighbour() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebPrefix, "[");
        on.user->click(on.dialog.btnDelete);
        on.user->select("NOT IN");
        on.user->select("NOT LIKE");
        QCOMPARE(on.entry("NOT IN"), operatorOf("NOT IN", "(", "", ")"));
        on.user->click(on.dialog.btnOK);
        QCOMPARE(on.entry("NOT LIKE").Prefix, "");
    }

    void deletingWithoutACurrentOperatorDoesNothing() {
        OpersForm on;
        on.dialog.btnDeleteClick();
        QCOMPARE(on.dialog.Operators.Count(), 14);
        QCOMPARE(on.user->lines().size(), 14);
    }

    void everyOperatorCanBeDeleted() {
        OpersForm on;
        while (on.dialog.Operators.Count() > 0) {
            on.user->select(on.dialog.Operators.Count() / 2);
            on.user->click(on.dialog.btnDelete);
        }
        QCOMPARE(on.user->lines(), QStringList());
        on.user->click(on.dialog.btnOK);
        QCOMPARE(on.dialog.result(), int(QDialog::Accepted));
    }

    // --- restrictions

    void restrictionsForbid_data() {
        QTest::addColumn<int>("members");  // a bit for each of add, delete, name, argument
        for (int members = 0; members < 16; ++members) {
            QTest::addRow("%d", members) << members;
        }
    }
    void restrictionsForbid() {
        QFETCH(int, members);
        TEditRestrictions restrictions;
        for (const ORVQDWindow__1 member : {erAdd, erDelete, erName, erArgument}) {
            if (members & (1 << int(member))) restrictions = restrictions | member;
        }
        // What was forbidden before is allowed again.
        OpersForm on({erAdd, erDelete, erName, erArgument});
        on.dialog.SetRestrictions(restrictions);
        on.user->select("IN");
        const bool add = members & 1;
        const bool remove = members & 2;
        const bool name = members & 4;
        const bool argument = members & 8;
        QCOMPARE(on.dialog.btnAdd->isVisible(), !add);
        QCOMPARE(on.dialog.btnDelete->isVisible(), !remove);
        QCOMPARE(on.dialog.ebName->isEnabled(), !add && !name);
        for (const QLineEdit* edit :
             {on.dialog.ebCount, on.dialog.ebPrefix, on.dialog.ebRelate, on.dialog.ebPostfix}) {
            QCOMPARE(edit->isEnabled(), !argument);
        }
        QVERIFY(on.dialog.ebCaption->isEnabled());
        QCOMPARE(on.dialog.restrictions(), restrictions);
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Insert);
        QCOMPARE(on.dialog.Operators.Count(), add ? 14 : 15);
        on.user->select("IN");
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Delete);
        QCOMPARE(on.dialog.Operators.FindName("IN") != nullptr, remove);
    }

    void displayNameOfTheAddedOperatorIsTypedNextWhenTheNameIsForbidden() {
        OpersForm on(erName);
        on.user->click(on.dialog.btnAdd);
        QCOMPARE(on.dialog.focusWidget(), on.dialog.ebCaption);
    }

    void restrictionsAreASetOfOrdinals() {
        QVERIFY(TEditRestrictions().isEmpty());
        QVERIFY(!TEditRestrictions(erAdd).isEmpty());
        QVERIFY(TEditRestrictions(erAdd).contains(erAdd));
        QVERIFY(!TEditRestrictions(erArgument).contains(erDelete));
        QVERIFY(!TEditRestrictions(erArgument).contains(erName));
        QVERIFY((TEditRestrictions{erName, erDelete}) == (erDelete | erName));
        QVERIFY(!(TEditRestrictions{erName, erDelete} == TEditRestrictions(erArgument)));
    }

    // --- the keyboard

    void listHasTheFocusAtFirst() {
        OpersForm on;
        QCOMPARE(on.dialog.focusWidget(), on.dialog.lbOperators);
    }

    void firstArrowSelectsTheFirstLine() {
        OpersForm on;
        QVERIFY(QTest::qWaitForWindowActive(&on.dialog));
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Down);
        QCOMPARE(on.user->selected(), QStringList("="));
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Down);
        QCOMPARE(on.user->selected(), QStringList("<>"));
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_End);
        QCOMPARE(on.user->selected(), QStringList("IS NOT NULL"));
        QCOMPARE(on.dialog.currentIndex(), 13);
    }

    void keysAddAndDelete() {
        OpersForm on;
        on.user->select("IN");
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Delete);
        QCOMPARE(on.dialog.Operators.Count(), 13);
        QCOMPARE(on.dialog.focusWidget(), on.dialog.lbOperators);
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Delete);
        QCOMPARE(on.dialog.Operators.Count(), 13);
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Down);
        QCOMPARE(on.user->selected(), QStringList("NOT IN"));
        QTest::keyClick(on.dialog.lbOperators, Qt::Key_Insert);
        QCOMPARE(on.dialog.Operators.Count(), 14);
        QCOMPARE(on.dialog.focusWidget(), on.dialog.ebName);
    }

    void deletingByTheButtonGivesTheListTheFocus() {
        OpersForm on;
        on.user->select("IN");
        on.dialog.btnDelete->setFocus();
        QTest::keyClick(on.dialog.btnDelete, Qt::Key_Space);
        QCOMPARE(on.dialog.Operators.Count(), 13);
        QCOMPARE(on.dialog.focusWidget(), on.dialog.lbOperators);
    }

    void tabGoesFromTopToBottom() {
        OpersForm on;
        QVERIFY(QTest::qWaitForWindowActive(&on.dialog));
        on.user->select("IN");
        const QWidgetList expected = {on.dialog.btnAdd,    on.dialog.btnDelete,  on.dialog.ebName,
                                      on.dialog.ebCaption, on.dialog.ebCount,    on.dialog.ebPrefix,
                                      on.dialog.ebRelate,  on.dialog.ebPostfix,  on.dialog.btnOK,
                                      on.dialog.btnCancel, on.dialog.lbOperators};
        for (const QWidget* next : expected) {
            QTest::keyClick(on.dialog.focusWidget(), Qt::Key_Tab);
            QCOMPARE(on.dialog.focusWidget(), next);
        }
    }

    void enterIsOKWhereverTheFocusIs() {
        for (int at = 0; at < 3; ++at) {
            OpersForm on;
            on.user->select("IN");
            QWidget* const focused[] = {on.dialog.lbOperators, on.dialog.ebCaption,
                                        on.dialog.ebCount};
            on.user->type(on.dialog.ebCaption, "c");
            focused[at]->setFocus();
            QTest::keyClick(focused[at], Qt::Key_Return);
            QVERIFY(!on.dialog.isVisible());
            QCOMPARE(on.dialog.result(), int(QDialog::Accepted));
            QCOMPARE(on.entry("IN").Caption, "c");
            QCOMPARE(on.dialog.Operators.Count(), 14);
        }
    }

    void cancellingIsNoOK_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("cancel") << 0;
        QTest::newRow("escape") << 1;
        QTest::newRow("close") << 2;
    }
    void cancellingIsNoOK() {
        QFETCH(int, way);
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebCaption, "one of");
        if (way == 0) on.user->click(on.dialog.btnCancel);
        if (way == 1) QTest::keyClick(on.dialog.ebCaption, Qt::Key_Escape);
        if (way == 2) on.dialog.close();
        QVERIFY(!on.dialog.isVisible());
        QCOMPARE(on.dialog.result(), int(QDialog::Rejected));
        QCOMPARE(on.entry("IN").Caption, "IN");
    }
};

QTEST_MAIN(OpersEditorTest)
#include "tst_operseditor.moc"
