// SPDX-License-Identifier: MIT
// How changes travel between the diagram and the grid, and how often the host hears of them.
#include "support/BuilderTools.h"
#include "toolkit/ExitCombo.h"

#include <QCheckBox>
#include <QTabWidget>

using orvtest::HostedBuilder;

class WindowRelayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- ticks

    void tickingAddsAColumn() {
        HostedBuilder on;
        on.addTable("T");
        on.tick("T", "C");
        on.tick("T", "A");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList({"T.C", "T.A"}));
        QCOMPARE(on.columns(), QStringList({"C||T.C", "A||T.A"}));
        verifyBuilder(on.builder);
    }

    void untickingRemovesItsColumn() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a, t.b x, t.a again from t");
        on.tick("T", "A", false);
        QCOMPARE(on.columns(), QStringList("X||T.B"));
        verifyBuilder(on.builder);
    }

    void repeatedNotificationIsHarmless() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        TorvQDListItem* item = box->GetFieldItem("A");
        on.tick("T", "A");
        on.changes = 0;
        on.builder.WorkArea->_CheckItem(box, item);
        QCOMPARE(on.columns(), QStringList("A||T.A"));
        QCOMPARE(on.changes, 0);
        item->UpdateCheck(0);
        on.builder.WorkArea->_CheckItem(box, item);
        on.changes = 0;
        on.builder.WorkArea->_CheckItem(box, item);
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 0);
        verifyBuilder(on.builder);
    }

    void fieldOfTheGridIsTickedInItsBox() {
        HostedBuilder on;
        on.addTable("T");
        on.grid()->CheckField("T.B");
        on.grid()->OnFieldChosen("T.B");
        QVERIFY(on.table("T")->GetFieldItem("B")->Checked);
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("T.B"));
        on.grid()->OnFieldChosen("T.B");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("T.B"));
        verifyBuilder(on.builder);
        on.grid()->UnCheckField("T.B");
        on.grid()->OnFieldRemoved("T.B");
        QVERIFY(!on.table("T")->GetFieldItem("B")->Checked);
        QVERIFY(on.builder.SelectedFields().isEmpty());
        verifyBuilder(on.builder);
    }

    void unknownFieldOfTheGridIsIgnored_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("alias") << "X.A";
        QTest::newRow("field") << "T.Z";
        QTest::newRow("bare") << "Z";
        QTest::newRow("several have it") << "A";
        QTest::newRow("expression") << "T.A + T.B";
        QTest::newRow("empty") << "";
    }
    void unknownFieldOfTheGridIsIgnored() {
        QFETCH(QString, name);
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.grid()->OnFieldChosen(name);
        on.grid()->OnFieldRemoved(name);
        QVERIFY(on.builder.SelectedFields().isEmpty());
        verifyBuilder(on.builder);
    }

    void bareNameIsUntickedByItsBox() {
        HostedBuilder on;
        on.builder.LoadSQL("select salary from employee");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("SALARY"));
        verifyBuilder(on.builder);
        on.tick("EMPLOYEE", "SALARY", false);
        QVERIFY(on.builder.SelectedFields().isEmpty());
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void fieldListedUnderTwoNamesIsUntickedUnderBoth() {
        HostedBuilder on;
        on.addTable("T");
        on.grid()->setColumns({{"ONE", "", "T.B"}, {"TWO", "", "B"}});
        on.grid()->OnFieldChosen("T.B");
        on.grid()->OnFieldChosen("B");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList({"T.B", "B"}));
        on.grid()->setCurrentIndex(on.grid()->model()->index(1, 0));
        on.grid()->_DeleteCurrentRow();
        QVERIFY(!on.table("T")->GetFieldItem("B")->Checked);
        QCOMPARE(on.builder.SelectedFields().names(), QStringList());
    }

    void tickingAllCountsWhatAnOpenEditorUnticks() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "C");
        on.builder.resize(800, 600);
        on.builder.PageCtrl->setCurrentIndex(1);
        on.builder.show();
        on.grid()->_EditText(2, 1);
        on.grid()->viewport()->findChild<orv::ExitCombo*>()->setEditText("7");
        box->SetFieldState(2);
        QCOMPARE(box->FieldState, 2);
        QCOMPARE(on.columns().front(), QString("C||7"));
        QCOMPARE(on.builder.SelectedFields().names().size(), 5);
        on.tick("T", "C", false);
        QCOMPARE(box->FieldState, 1);
    }

    void untickingAllCountsWhatAnOpenEditorTicks() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "A");
        on.builder.resize(800, 600);
        on.builder.PageCtrl->setCurrentIndex(1);
        on.builder.show();
        on.grid()->_EditText(2, 2);
        on.grid()->viewport()->findChild<orv::ExitCombo*>()->setEditText("T.C");
        box->SetFieldState(0);
        QCOMPARE(box->FieldState, 0);
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void cellThatNamesTheFieldIsTakenOverBeforeItsTick() {
        HostedBuilder on;
        on.addTable("T");
        on.tick("T", "A");
        on.tick("T", "B");
        on.builder.resize(800, 600);
        on.builder.PageCtrl->setCurrentIndex(1);
        on.builder.show();
        on.grid()->_EditText(2, 1);
        on.grid()->viewport()->findChild<orv::ExitCombo*>()->setEditText("T.B");
        on.changes = 0;
        on.table("T")->toggle(on.table("T")->GetFieldItem("B"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.builder.SelectedFields().names(), QStringList());
        QVERIFY(!on.table("T")->GetFieldItem("B")->Checked);
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void bareNameCountsWhenAllAreTicked() {
        HostedBuilder on;
        on.builder.LoadSQL("select salary from employee");
        on.table("EMPLOYEE")->SetFieldState(2);
        QCOMPARE(on.columns(),
                 QStringList({"SALARY||SALARY", "EMP_NO||EMPLOYEE.EMP_NO",
                              "FIRST_NAME||EMPLOYEE.FIRST_NAME", "DEPT_NO||EMPLOYEE.DEPT_NO"}));
        verifyBuilder(on.builder);
    }

    // A second table with such a field makes the bare name say nothing.
    void bareNameThatBecomesAmbiguousKeepsItsColumn() {
        HostedBuilder on;
        on.builder.LoadSQL("select x from u");
        const TDataSet fields = orvtest::stringFields({"X"});
        on.builder.ListOfTables->AddTable("V", fields);
        QCOMPARE(on.columns(), QStringList("X||X"));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("X"));
        QVERIFY(on.table("U")->GetFieldItem("X")->Checked);
    }

    void tickingAllAndOneByOneGiveTheSame() {
        HostedBuilder all;
        HostedBuilder each;
        all.addTable("EMPLOYEE");
        each.addTable("EMPLOYEE");
        all.table("EMPLOYEE")->SetFieldState(2);
        for (const char* field : {"EMP_NO", "FIRST_NAME", "SALARY", "DEPT_NO"}) {
            each.tick("EMPLOYEE", field);
        }
        QCOMPARE(orvtest::visibleState(all.builder), orvtest::visibleState(each.builder));
    }

    void stateOneUnticksAllColumns() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        box->SetFieldState(2);
        box->SetFieldState(1);
        QCOMPARE(on.columns(), QStringList());
        QVERIFY(on.builder.SelectedFields().isEmpty());
    }

    // --- tables

    void fieldsOfATableAreListedInRowOrder() {
        HostedBuilder on;
        on.addTable("U");
        on.addTable("U");
        QCOMPARE(on.builder.AllFields().names(),
                 QStringList({"U.A", "U.X", "U.Y", "U1.A", "U1.X", "U1.Y"}));
    }

    void closingTakesTheNamesOfItsBoxAlone() {
        HostedBuilder on;
        on.addTable("U");
        on.addTable("U");
        on.tick("U", "X");
        on.tick("U1", "X");
        on.table("U")->CloseTable();
        QCOMPARE(on.builder.AllFields().names(), QStringList({"U1.A", "U1.X", "U1.Y"}));
        QCOMPARE(on.columns(), QStringList("X||U1.X"));
        verifyBuilder(on.builder);
    }

    void sendersThatAreNoBoxesAreIgnored() {
        HostedBuilder on;
        on.addTable("T");
        QObject stranger;
        on.builder.WorkArea->OnAddTable(on.builder.WorkArea, &stranger);
        on.builder.WorkArea->OnRemoveTable(on.builder.WorkArea, &stranger);
        on.builder.WorkArea->OnChangeAlias(&stranger, "T");
        on.builder.WorkArea->OnCheckItem(&stranger, on.table("T")->GetFieldItem("A"));
        on.builder.WorkArea->OnAddTable(on.builder.WorkArea, nullptr);
        QCOMPARE(on.builder.AllFields().size(), 5);
        verifyBuilder(on.builder);
    }

    // --- how often the host hears of a change

    void eachActionChangesTheStatementOnce_data() {
        QTest::addColumn<QString>("action");
        for (const char* action :
             {"tick", "tick all", "untick all", "add table", "close", "rename", "load", "clear",
              "tail", "distinct", "distinct off by the user", "mode", "stacking", "bring to front",
              "check field", "uncheck field"}) {
            QTest::newRow(action) << QString::fromLatin1(action);
        }
    }
    void eachActionChangesTheStatementOnce() {
        QFETCH(QString, action);
        HostedBuilder on;
        on.builder.LoadSQL("select distinct t.b, t.c from u, t limit 5");
        on.changes = 0;
        const QString before = on.builder.GetSQLStatment();
        actions()[action](on);
        QCOMPARE(on.changes, 1);
        QVERIFY(on.builder.GetSQLStatment() != before);
        verifyBuilder(on.builder);
    }

    // A wide table would cost the square of its rows otherwise.
    void gridIsRefreshedOncePerChange() {
        HostedBuilder on;
        on.addTable("T");
        int refreshed = 0;
        const QAbstractItemModel* model = on.grid()->model();
        connect(model, &QAbstractItemModel::modelReset, this, [&] { ++refreshed; });
        connect(model, &QAbstractItemModel::rowsInserted, this, [&] { ++refreshed; });
        connect(model, &QAbstractItemModel::rowsRemoved, this, [&] { ++refreshed; });
        on.table("T")->SetFieldState(2);
        QCOMPARE(refreshed, 1);
        on.builder.LoadSQL("select * from t, u");
        QCOMPARE(refreshed, 2);
        on.table("U")->CloseTable();
        QCOMPARE(refreshed, 3);
    }

    void idleActionChangesNothing_data() {
        QTest::addColumn<QString>("action");
        for (const QString& action : idleActions().keys()) {
            QTest::newRow(qPrintable(action)) << action;
        }
    }
    void idleActionChangesNothing() {
        QFETCH(QString, action);
        HostedBuilder on;
        on.builder.LoadSQL("select t.b, t.c from u, t");
        on.changes = 0;
        const QByteArray before = orvtest::visibleState(on.builder);
        idleActions()[action](on);
        QCOMPARE(on.changes, 0);
        QCOMPARE(orvtest::visibleState(on.builder), before);
    }

    void hostSeesTheFinishedState() {
        HostedBuilder on;
        on.addTable("T");
        QStringList seen;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            seen << on.builder.GetSQLStatment();
            QCOMPARE(orvtest::brokenRule(on.builder), QString());
        });
        on.table("T")->SetFieldState(2);
        on.builder.LoadSQL("select u.x from u");
        on.table("U")->CloseTable();
        QCOMPARE(seen, QStringList({"SELECT T.A,\r\n       T.B,\r\n       T.C,\r\n       T.D,\r\n"
                                    "       T.E\r\nFROM T",
                                    "SELECT U.X\r\nFROM U", "SELECT \r\nFROM "}));
    }

    void changeInsideAChangeIsToldToo() {
        HostedBuilder on;
        bool nested = false;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            if (!std::exchange(nested, true)) on.builder.setTailText("LIMIT 5");
        });
        on.addTable("T");
        QCOMPARE(on.changes, 2);
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM T\r\nLIMIT 5");
    }

    void tickByAHandlerOfTheDiagramIsPartOfTheChange() {
        HostedBuilder on;
        const TAddEvent old = on.builder.WorkArea->OnAddTable;
        on.builder.WorkArea->OnAddTable = [&](QObject* sender, QObject* item) {
            old(sender, item);
            qobject_cast<TorvQDTable*>(item)->SetFieldState(2);
        };
        on.addTable("U");
        QCOMPARE(on.columns().size(), 3);
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    // --- two builders

    void twoBuildersLiveSideBySide() {
        HostedBuilder one;
        HostedBuilder other;
        one.addTable("T");
        one.tick("T", "A");
        other.builder.LoadSQL("select distinct u.x from u limit 5");
        QCOMPARE(one.builder.GetSQLStatment(), "SELECT T.A\r\nFROM T");
        one.builder.Clear();
        QCOMPARE(other.builder.GetSQLStatment(), "SELECT DISTINCT U.X\r\nFROM U\r\nlimit 5");
        verifyBuilder(one.builder);
        verifyBuilder(other.builder);
    }

    void builderOutlivesAnother() {
        HostedBuilder one;
        one.addTable("T");
        {
            HostedBuilder other;
            other.addTable("U");
        }
        one.tick("T", "A");
        QCOMPARE(one.columns(), QStringList("A||T.A"));
        verifyBuilder(one.builder);
    }

    // --- unusual tables

    void wideTable() {
        constexpr int count = 2000;
        HostedBuilder on;
        QStringList fields;
        for (int index = 0; index < count; ++index) fields << QStringLiteral("F%1").arg(index);
        on.host.add("WIDE", fields);
        TorvQDTable* box = on.addTable("WIDE");
        QCOMPARE(on.builder.AllFields().size(), count);
        on.changes = 0;
        box->SetFieldState(2);
        QCOMPARE(on.changes, 1);
        QCOMPARE(int(on.grid()->columns().size()), count);
        verifyBuilder(on.builder);
        on.tick("WIDE", "F1234", false);
        QCOMPARE(int(on.grid()->columns().size()), count - 1);
        QCOMPARE(box->FieldState, 1);
        verifyBuilder(on.builder);
        const QString text = on.builder.GetSQLStatment();
        box->SetFieldState(0);
        QCOMPARE(on.columns(), QStringList());
        on.changes = 0;
        on.builder.LoadSQL(text);
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.builder.GetSQLStatment(), text);
        QCOMPARE(on.findings(), QStringList());
        verifyBuilder(on.builder);
        on.table("WIDE")->CloseTable();
        QVERIFY(on.builder.AllFields().isEmpty());
        QVERIFY(on.builder.SelectedFields().isEmpty());
        verifyBuilder(on.builder);
    }

    void tableWithoutColumns() {
        HostedBuilder on;
        on.host.add("NONE", QStringList());
        TorvQDTable* box = on.addTable("NONE");
        box->SetFieldState(2);
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM NONE");
        verifyBuilder(on.builder);
        on.builder.LoadSQL("select none.*, t.a from none, t");
        QCOMPARE(on.columns(), QStringList("A||T.A"));
        QCOMPARE(on.findings(), QStringList("none.*"));
    }

    void unusualNames() {
        const QStringList names = {"lower",
                                   "WITH BLANK",
                                   "with.dot",
                                   "with\"quote",
                                   "it's",
                                   QStringLiteral("\u00dcberl\u00e4nge"),
                                   QStringLiteral("\u540d\u524d"),
                                   "1ST",
                                   "SELECT",
                                   "A(B)",
                                   "--",
                                   "a,b"};
        HostedBuilder on(true);
        on.host.add("odd table", names);
        TorvQDTable* box = on.addTable("odd table");
        box->SetFieldState(2);
        verifyBuilder(on.builder);
        const QString text = on.builder.GetSQLStatment();
        HostedBuilder other(true);
        other.host.add("odd table", names);
        other.builder.LoadSQL(text);
        QCOMPARE(other.findings(), QStringList());
        QCOMPARE(other.columns(), on.columns());
        QCOMPARE(other.builder.GetSQLStatment(), text);
        verifyBuilder(other.builder);
    }

    void renamingAnAliasWithUnusualNames() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("my table");
        box->SetFieldState(2);
        for (const char* alias : {"a.b c", "M", "it's", "", "x\"y"}) {
            on.builder.WorkArea->renameTable(box, alias);
            verifyBuilder(on.builder);
            QCOMPARE(on.grid()->columns().size(), std::size_t(4));
        }
        box->SetFieldState(0);
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

private:
    using Action = std::function<void(HostedBuilder&)>;

    static QHash<QString, Action> actions() {
        return {
            {"tick", [](HostedBuilder& on) { on.tick("T", "A"); }},
            {"tick all", [](HostedBuilder& on) { on.table("T")->SetFieldState(2); }},
            {"untick all", [](HostedBuilder& on) { on.table("T")->SetFieldState(0); }},
            {"add table", [](HostedBuilder& on) { on.addTable("DEPT"); }},
            {"close", [](HostedBuilder& on) { on.table("T")->CloseTable(); }},
            {"rename",
             [](HostedBuilder& on) { on.builder.WorkArea->renameTable(on.table("T"), "X"); }},
            {"load", [](HostedBuilder& on) { on.builder.LoadSQL("select * from employee, dept"); }},
            {"clear", [](HostedBuilder& on) { on.builder.Clear(); }},
            {"tail", [](HostedBuilder& on) { on.builder.setTailText("LIMIT 6"); }},
            {"distinct", [](HostedBuilder& on) { on.builder.SelectPanel->SetDistinct(0); }},
            {"distinct off by the user",
             [](HostedBuilder& on) { on.builder.SelectPanel->distinctBox()->click(); }},
            {"mode", [](HostedBuilder& on) { on.builder.setKeepMeaning(true); }},
            {"stacking",
             [](HostedBuilder& on) { on.builder.WorkArea->selectObject(on.table("U")); }},
            {"bring to front",
             [](HostedBuilder& on) {
                 on.builder.WorkArea->selectObject(nullptr);
                 on.builder.WorkArea->TableToFront(on.table("U"));
             }},
            {"check field", [](HostedBuilder& on) { on.tick("U", "X"); }},
            {"uncheck field", [](HostedBuilder& on) { on.tick("T", "C", false); }},
        };
    }

    static QMap<QString, Action> idleActions() {
        return {
            {"tick a ticked row", [](HostedBuilder& on) { on.tick("T", "B"); }},
            {"untick a row that is not ticked",
             [](HostedBuilder& on) { on.tick("T", "A", false); }},
            {"untick a box that is not ticked",
             [](HostedBuilder& on) { on.table("U")->SetFieldState(0); }},
            {"rename to the same",
             [](HostedBuilder& on) { on.builder.WorkArea->renameTable(on.table("T"), "T"); }},
            {"load the same text",
             [](HostedBuilder& on) { on.builder.LoadSQL(on.builder.GetSQLStatment()); }},
            {"same tail", [](HostedBuilder& on) { on.builder.setTailText(""); }},
            {"same mode", [](HostedBuilder& on) { on.builder.setKeepMeaning(false); }},
            {"same distinct", [](HostedBuilder& on) { on.builder.SelectPanel->SetDistinct(0); }},
            {"uncheck a column that is not there",
             [](HostedBuilder& on) { on.grid()->UnCheckField("T.A"); }},
            {"front box to the front",
             [](HostedBuilder& on) { on.builder.WorkArea->TableToFront(on.table("T")); }},
            {"select the selected box",
             [](HostedBuilder& on) { on.builder.WorkArea->selectObject(on.table("T")); }},
            {"ask for the statement", [](HostedBuilder& on) { (void)on.builder.GetSQLStatment(); }},
            {"ask for the lists", [](HostedBuilder& on) { (void)on.builder.SelectedFields(); }},
            {"commit without an edit", [](HostedBuilder& on) { on.builder.CommitPendingEdits(); }},
        };
    }
};

QTEST_MAIN(WindowRelayTest)
#include "tst_windowrelay.moc"
