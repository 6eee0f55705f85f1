// SPDX-License-Identifier: MIT
#include "criteria/EditedPanel.h"
#include "querybuilder/OpersForm.h"

#include <QMenu>
#include <QTimer>

using orvtest::EditedPanel;

namespace {

using User = std::function<void(TorvQDOperatorsPropertyDlg&, const orvtest::OpersUser&)>;

/// A builder with conditions, and somebody who edits its operators.
struct Edited : EditedPanel {
    explicit Edited(const QString& condition = QStringLiteral("T.I IN (1) AND T.C LIKE 'x'"))
        : EditedPanel(condition) {}

    /// Opens the dialog and lets the user do that.
    void modify(const User& user, TEditRestrictions restrictions = {}) {
        services.onDialog = [this, user](QDialog& shown) {
            dialog = qobject_cast<TorvQDOperatorsPropertyDlg*>(&shown);
            user(*dialog, orvtest::OpersUser(*dialog));
            return dialog ? dialog->result() : int(QDialog::Rejected);
        };
        builder->ModifyOperators(restrictions);
    }

    orvtest::RecordedServices services;
    QPointer<TorvQDOperatorsPropertyDlg> dialog;
};

void pressOK(TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser&) {
    dialog.btnOK->click();
}

/// Changes the prefix of IN, and accepts.
void useSquareBrackets(TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
    user.select("IN");
    orvtest::OpersUser::type(dialog.ebPrefix, "[");
    orvtest::OpersUser::type(dialog.ebPostfix, "]");
    user.select("=");
    dialog.btnOK->click();
}

User deleting(const QStringList& names) {
    return [names](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
        for (const QString& name : names) {
            user.select(name);
            dialog.btnDelete->click();
        }
        dialog.btnOK->click();
    };
}

}  // namespace

class ModifyOperatorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void cancelChangesNothing() {
        Edited on;
        const QString statement = on.builder->GetSQLStatment();
        const TOperatorList::Entry first = on.builder->Operators->Items(0);
        on.modify([](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            user.select("IN");
            dialog.btnDelete->click();
            dialog.btnCancel->click();
        });
        QCOMPARE(on.builder->Operators->Count(), 14);
        QCOMPARE(on.builder->Operators->Items(0), first);
        QCOMPARE(on.builder->GetSQLStatment(), statement);
        QCOMPARE(on.changes, 0);
        QVERIFY(!on.dialog);
        QCOMPARE(on.services.dialogs, QStringList("Operator properties"));
    }

    void okReplacesTheCatalogue() {
        Edited on;
        on.modify(useSquareBrackets);
        QCOMPARE(on.builder->Operators->FindName("IN")->Prefix, "[");
        QCOMPARE(on.condition(), "((T.I IN [1]) and (T.C LIKE 'x'))");
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.row(0)->Operator, on.builder->Operators->FindName("IN"));
        QCOMPARE(on.row(1)->Operator, on.builder->Operators->FindName("LIKE"));
        QCOMPARE(on.services.messages, QStringList());
        QVERIFY(!on.dialog);
        verifyBuilder(*on.builder);
    }

    void catalogueIsTheOldOneWhileTheDialogIsOpen() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            user.select("IN");
            orvtest::OpersUser::type(dialog.ebPrefix, "[");
            user.select("=");
            QCOMPARE(on.builder->Operators->FindName("IN")->Prefix, "(");
            QCOMPARE(on.condition(), "((T.I IN (1)) and (T.C LIKE 'x'))");
        });
        QCOMPARE(on.builder->Operators->FindName("IN")->Prefix, "(");
    }

    void conditionsOfBothPagesGoOver() {
        Edited on;
        on.builder->LoadSQL(
            "SELECT T.I, SUM(T.J) FROM T WHERE T.I IN (1) GROUP BY T.I HAVING SUM(T.J) IN (2)");
        on.changes = 0;
        on.modify(useSquareBrackets);
        const QString statement = on.builder->GetSQLStatment();
        QVERIFY2(statement.contains("T.I IN [1]"), qPrintable(statement));
        QVERIFY2(statement.contains("IN [2]"), qPrintable(statement));
        QCOMPARE(on.changes, 1);
    }

    void displayNameIsShownByTheConditions() {
        Edited on;
        on.modify([](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            user.select("IN");
            orvtest::OpersUser::type(dialog.ebCaption, "is one of");
            dialog.btnOK->click();
        });
        QCOMPARE(on.row(0)->Operator->Caption, "is one of");
        QCOMPARE(on.condition(), "((T.I IN (1)) and (T.C LIKE 'x'))");
    }

    // Arguments are not fitted to the new count.
    void argumentsStayAsTheyAre() {
        Edited on("T.I BETWEEN 1 AND 2");
        on.modify([](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            user.select("BETWEEN");
            orvtest::OpersUser::type(dialog.ebCount, "2");
            user.select("=");
            dialog.btnOK->click();
        });
        QCOMPARE(on.row(0)->Operator->Count, 1);
        QCOMPARE(on.row(0)->Arguments, QStringList({"1", "2"}));
    }

    // --- conditions whose operator is gone

    void deletedOperatorBecomesTheFirstAndTheUserIsTold() {
        Edited on;
        on.modify(deleting({"LIKE"}));
        QCOMPARE(on.condition(), "((T.I IN (1)) and (T.C = 'x'))");
        QCOMPARE(on.services.messages,
                 QStringList("These operators are no longer in the list: LIKE.\nConditions that "
                             "had them now have =."));
        QCOMPARE(on.changes, 1);
    }

    void renamedOperatorIsGone() {
        Edited on;
        on.modify([](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            user.select("=");
            orvtest::OpersUser::type(dialog.ebName, "EQ");
            user.select("LIKE");
            orvtest::OpersUser::type(dialog.ebName, "CONTAINS");
            user.select("IN");
            dialog.btnOK->click();
        });
        QCOMPARE(on.condition(), "((T.I IN (1)) and (T.C EQ 'x'))");
        QCOMPARE(on.services.messages,
                 QStringList("These operators are no longer in the list: LIKE.\nConditions that "
                             "had them now have EQ."));
    }

    void everyLostOperatorIsToldOnce() {
        Edited on;
        on.builder->LoadSQL(
            "SELECT T.I, SUM(T.J) FROM T WHERE T.I IN (1) AND T.J IN (2) AND T.C LIKE 'x' "
            "GROUP BY T.I HAVING SUM(T.J) > 5 AND SUM(T.J) IN (3)");
        on.modify(deleting({"IN", ">", "LIKE", "BETWEEN"}));
        QCOMPARE(on.services.messages,
                 QStringList("These operators are no longer in the list: IN, LIKE, >.\nConditions "
                             "that had them now have =."));
    }

    void deletedOperatorOfNoConditionIsNotTold() {
        Edited on;
        on.modify(deleting({"BETWEEN"}));
        QCOMPARE(on.services.messages, QStringList());
    }

    void withoutAnyOperatorConditionsKeepTheirs() {
        Edited on;
        QStringList names;
        for (int index = 0; index < 14; ++index) names << on.builder->Operators->Items(index)->Name;
        on.modify(deleting(names));
        QCOMPARE(on.builder->Operators->Count(), 0);
        QCOMPARE(on.condition(), "((T.I IN (1)) and (T.C LIKE 'x'))");
        QCOMPARE(on.services.messages, QStringList());
        on.services.onDialog = {};
        on.builder->ModifyOperators();
        verifyBuilder(*on.builder);
    }

    void expressionsHaveNoOperatorToLose() {
        Edited on("EXISTS (SELECT 1 FROM U)");
        const QString before = on.condition();
        on.modify(deleting({"=", "IN"}));
        QCOMPARE(on.services.messages, QStringList());
        QCOMPARE(on.condition(), before);
    }

    void builderMayDieWhileTheUserIsTold() {
        Edited on;
        bool told = false;
        const orv::MessageService before =
            orv::setMessageService([&](const orv::MessageRequest& request) {
                told = request.parent == on.builder && request.caption == "Attention!";
                delete on.builder.data();
                return orv::MessageAnswer::Ok;
            });
        on.modify(deleting({"LIKE"}));
        orv::setMessageService(before);
        QVERIFY(told);
        QVERIFY(!on.builder);
    }

    // --- what is open before

    void pendingTextIsTakenOverFirst() {
        Edited on;
        on.type("2, 3");
        QString condition;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            condition = on.condition();
            useSquareBrackets(dialog, user);
        });
        QCOMPARE(condition, "((T.I IN (2, 3)) and (T.C LIKE 'x'))");
        QCOMPARE(on.condition(), "((T.I IN [2, 3]) and (T.C LIKE 'x'))");
        QVERIFY(!on.memo() || !on.memo()->isVisible());
    }

    void textTypedByAProgramMeanwhileIsTakenOver() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            on.type("7");
            useSquareBrackets(dialog, user);
        });
        QCOMPARE(on.condition(), "((T.I IN [7]) and (T.C LIKE 'x'))");
    }

    // Before the dialog is shown; the platform may close menus then.
    void openMenuCloses() {
        Edited on;
        auto* menu = on.panel()->findChild<QMenu*>("OperatorMenu");
        menu->popup({});
        QCOMPARE(QApplication::activePopupWidget(), menu);
        bool isOpen = true;
        on.services.onDialog = [&](QDialog&) {
            isOpen = menu->isVisible();
            return int(QDialog::Accepted);
        };
        on.builder->ModifyOperators();
        QVERIFY(!isOpen);
    }

    void menusOfTheHostStayOpen() {
        Edited on;
        QMenu menu;
        menu.addAction("Operators");
        menu.popup({});
        bool isOpen = false;
        on.services.onDialog = [&](QDialog&) {
            isOpen = menu.isVisible();
            return int(QDialog::Accepted);
        };
        on.builder->ModifyOperators();
        QVERIFY(isOpen);
    }

    void restrictionsArePassedOn() {
        Edited on;
        on.modify(
            [](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser&) {
                QVERIFY(dialog.btnAdd->isHidden());
                QVERIFY(!dialog.btnDelete->isHidden());
                QVERIFY(!dialog.ebName->isEnabled());
                QVERIFY(!dialog.ebPrefix->isEnabled());
            },
            {erAdd, erArgument});
        on.modify([](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser&) {
            QVERIFY(dialog.restrictions().isEmpty());
        });
        QCOMPARE(on.services.dialogs.size(), 2);
    }

    void dialogLiesAboveTheWindowOfTheBuilder() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser&) {
            QVERIFY(dialog.isWindow());
            QCOMPARE(dialog.parentWidget()->window(), on.form.get());
        });
    }

    void designedBuilderIsEditedToo() {
        orvtest::RecordedServices services;
        TorvQueryBuilder builder(nullptr, true);
        services.onDialog = [](QDialog& shown) {
            auto& dialog = static_cast<TorvQDOperatorsPropertyDlg&>(shown);
            deleting({"IN"})(dialog, orvtest::OpersUser(dialog));
            return dialog.result();
        };
        builder.ModifyOperators();
        QCOMPARE(builder.Operators->Count(), 13);
    }

    // --- what happens meanwhile

    void secondCallOpensNoSecondDialog() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            on.builder->ModifyOperators({erAdd});
            QVERIFY(dialog.restrictions().isEmpty());
            useSquareBrackets(dialog, user);
        });
        QCOMPARE(on.services.dialogs.size(), 1);
        QCOMPARE(on.condition(), "((T.I IN [1]) and (T.C LIKE 'x'))");
        on.modify(pressOK);
        QCOMPARE(on.services.dialogs.size(), 2);
    }

    void twoBuildersHaveADialogEach() {
        Edited first;
        Edited second;
        second.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            first.builder->Operators->Delete(0);
            useSquareBrackets(dialog, user);
        });
        QCOMPARE(second.builder->Operators->Count(), 14);
        QCOMPARE(first.builder->Operators->Count(), 13);
        QCOMPARE(first.condition(), "((T.I IN (1)) and (T.C LIKE 'x'))");
    }

    void statementMayBeLoadedWhileTheDialogIsOpen() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            on.builder->LoadSQL("SELECT T.J FROM T WHERE T.J IN (5) AND T.C LIKE 'y'");
            deleting({"LIKE"})(dialog, user);
        });
        QCOMPARE(on.condition(), "((T.J IN (5)) and (T.C = 'y'))");
        QCOMPARE(on.services.messages.size(), 1);
        verifyBuilder(*on.builder);
    }

    void builderMayBeClearedWhileTheDialogIsOpen() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            on.builder->Clear();
            deleting({"LIKE"})(dialog, user);
        });
        QCOMPARE(on.condition(), QString());
        QCOMPARE(on.builder->Operators->Count(), 13);
        QCOMPARE(on.services.messages, QStringList());
        verifyBuilder(*on.builder);
    }

    void operatorsOfTheHostAreReplacedByOK() {
        Edited on;
        on.modify([&](TorvQDOperatorsPropertyDlg& dialog, const orvtest::OpersUser& user) {
            on.builder->Operators->Clear();
            pressOK(dialog, user);
        });
        QCOMPARE(on.builder->Operators->Count(), 14);
        QCOMPARE(on.condition(), "((T.I IN (1)) and (T.C LIKE 'x'))");
    }

    void builderMayDieWhileTheDialogIsOpen_data() {
        QTest::addColumn<bool>("accept");
        QTest::newRow("then nothing") << false;
        QTest::newRow("then OK") << true;
    }
    void builderMayDieWhileTheDialogIsOpen() {
        QFETCH(bool, accept);
        Edited on;
        on.services.onDialog = [&](QDialog& shown) {
            const QPointer<QDialog> self(&shown);
            shown.show();
            delete on.builder.data();
            return !self && accept ? int(QDialog::Accepted) : int(QDialog::Rejected);
        };
        on.builder->ModifyOperators();
        QVERIFY(!on.builder);
    }

    void builderMayDieInTheLoopOfTheDialog() {
        Edited on;
        orv::setDialogRunner({});
        QTimer::singleShot(0, this, [&] { delete on.builder.data(); });
        on.builder->ModifyOperators();
        QVERIFY(!on.builder);
        QVERIFY(!QApplication::activeModalWidget());
    }

    void windowMayDieInTheLoopOfTheDialog() {
        Edited on;
        orv::setDialogRunner({});
        QTimer::singleShot(0, this, [&] { on.form.reset(); });
        on.builder->ModifyOperators();
        QVERIFY(!on.builder);
        QVERIFY(!QApplication::activeModalWidget());
    }

    void timersOfTheHostRunInTheLoopOfTheDialog() {
        Edited on;
        orv::setDialogRunner({});
        QTimer::singleShot(0, this, [&] {
            on.builder->ModifyOperators();
            on.builder->LoadSQL("SELECT T.J FROM T WHERE T.J IN (5)");
            auto* dialog = on.builder->findChild<TorvQDOperatorsPropertyDlg*>();
            QCOMPARE(QApplication::activeModalWidget(), dialog);
            useSquareBrackets(*dialog, orvtest::OpersUser(*dialog));
        });
        on.builder->ModifyOperators();
        QCOMPARE(on.condition(), "((T.J IN [5]))");
        QVERIFY(!on.builder->findChild<TorvQDOperatorsPropertyDlg*>());
        verifyBuilder(*on.builder);
    }

    // The host lets it go as soon as the loop of the dialog runs.
    void builderMayBeLetGoWhenItsTextIsTakenOver() {
        Edited on;
        orv::setDialogRunner({});
        on.type("2");
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { on.builder->deleteLater(); });
        on.builder->ModifyOperators();
        QVERIFY(!on.builder);
        QVERIFY(!QApplication::activeModalWidget());
    }

    // --- when it is refused

    void refusedWhileAHandlerOfTheHostIsAsked() {
        Edited on;
        QStringList errors;
        on.builder->OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            errors << orvtest::errorOf([&] { on.builder->ModifyOperators(); });
        };
        on.builder->ListOfTables->DeleteTable(0);
        QCOMPARE(errors,
                 QStringList("The operators cannot be edited while a handler is being asked"));
        QCOMPARE(on.services.dialogs, QStringList());
    }

    void refusedWhileAStatementIsLoaded() {
        Edited on;
        QStringList errors;
        const TGetTableFieldsEvent fields = on.builder->OnGetTableFields;
        on.builder->OnGetTableFields = [&](const QString& name, std::unique_ptr<TDataSet>& data,
                                           std::unique_ptr<TParams>& params) {
            errors << orvtest::errorOf([&] { on.builder->ModifyOperators(); });
            fields(name, data, params);
        };
        on.builder->LoadSQL("SELECT T.J FROM T");
        QCOMPARE(errors, QStringList("LoadSQL is running"));
        QCOMPARE(on.services.dialogs, QStringList());
    }

    void whatTheHostRaisesPassesThrough() {
        Edited on;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [] { throw orv::Error("no disk"); });
        QCOMPARE(orvtest::errorOf([&] { on.modify(useSquareBrackets); }), "no disk");
        QVERIFY(!on.dialog);
        QCOMPARE(on.condition(), "((T.I IN [1]) and (T.C LIKE 'x'))");
        on.builder->disconnect(on.form.get());
        on.modify(pressOK);
        verifyBuilder(*on.builder);
    }
};

QTEST_MAIN(ModifyOperatorsTest)
#include "tst_modifyoperators.moc"
