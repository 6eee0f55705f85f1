// SPDX-License-Identifier: MIT
// Boxes that come and go, and what their messages do.
#include "contract/DiagramEvents.h"
#include "support/BuilderTools.h"
#include "toolkit/AccessibleEvents.h"
#include "workarea/ORVQDFloatPanel.h"

#include <algorithm>

using orvtest::HostedBuilder;

class FloatPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void ownerMustBeAQueryBuilder() {
        QWidget plain;
        const QString expected = QStringLiteral("Given parent is not valid for WorkArea!");
        QCOMPARE(orvtest::errorOf([&] { TorvQDWorkArea area(&plain); }), expected);
        QCOMPARE(orvtest::errorOf([&] { TorvQDWorkArea area(nullptr); }), expected);
    }

    // --- adding and vetoes

    void tableMustHaveAName() {
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"A"});
        for (const char* name : {"", "   "}) {
            QVERIFY(orvtest::errorOf([&] { on.builder.WorkArea->AddPanel(name, &fields); }) !=
                    "(no error)");
        }
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        QCOMPARE(on.changes, 0);
    }

    void noDataSetMakesABoxWithoutRows() {
        HostedBuilder on;
        const TorvQDTable* box = on.builder.WorkArea->AddPanel("T", nullptr);
        QVERIFY(box && box->Items.empty());
        QVERIFY(on.builder.AllFields().isEmpty());
        verifyBuilder(on.builder);
    }

    void addingAsksThenTellsThenSelects() {
        HostedBuilder on;
        on.addTable("EMPLOYEE");
        QStringList log;
        on.builder.OnAddRemoveTable = [&](QObject* sender, TorvQDTable* box, TAddRemove action,
                                          bool&) {
            log << "ask " + box->GetAlias() + (action == araAdd ? " add" : " remove");
            QCOMPARE(sender, &on.builder);
            QCOMPARE(on.builder.WorkArea->TablesCount(), 1);
        };
        const TAddEvent old = on.builder.WorkArea->OnAddTable;
        on.builder.WorkArea->OnAddTable = [&](QObject* sender, QObject* item) {
            auto* box = qobject_cast<TorvQDTable*>(item);
            QCOMPARE(sender, on.builder.WorkArea);
            QCOMPARE(on.builder.WorkArea->Tables(0), box);
            QVERIFY(box->Left > 50);
            QVERIFY(!box->Selected);
            log << "added " + box->GetAlias();
            old(sender, item);
        };
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, &on.builder,
                [&] { log << "changed"; });
        on.changes = 0;
        const TorvQDTable* box = on.addTable("EMPLOYEE");
        QCOMPARE(log, QStringList({"ask EMPLOYEE1 add", "added EMPLOYEE1", "changed"}));
        QCOMPARE(on.changes, 1);
        QVERIFY(box->Selected);
        verifyBuilder(on.builder);
    }

    void refusedAdditionLeavesTheModelAsItWas() {
        HostedBuilder on;
        on.addTable("T");
        on.tick("T", "A");
        const QByteArray before = orvtest::visibleState(on.builder);
        int asked = 0;
        int added = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove action, bool& can) {
            ++asked;
            can = action != araAdd;
        };
        on.builder.WorkArea->OnAddTable = [&](QObject*, QObject*) { ++added; };
        on.changes = 0;
        QVERIFY(!on.addTable("U"));
        QCOMPARE(asked, 1);
        QCOMPARE(added, 0);
        QCOMPARE(on.changes, 0);
        QCOMPARE(orvtest::visibleState(on.builder), before);
        verifyBuilder(on.builder);
    }

    void readersHearThatARefusedAdditionDeselects() {
        HostedBuilder on(true);
        on.addTable("T");
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            can = false;
        };
        for (const bool raises : {false, true}) {
            on.builder.WorkArea->selectObject(on.table("T"));
            if (raises) {
                on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool&) {
                    throw orv::Error("no more");
                };
            }
            int told = 0;
            const auto before = orv::setAccessibleListener([&](QAccessibleEvent& event) {
                if (event.type() == QAccessible::StateChanged) ++told;
            });
            orvtest::errorOf([&] { on.addTable("U"); });
            orv::setAccessibleListener(before);
            QVERIFY(!on.table("T")->Selected);
            QVERIFY(!on.builder.WorkArea->selectedObject());
            QVERIFY(told > 0);
        }
    }

    // The selected box lost its selection to the refused one.
    void boxCanBeSelectedAgainAfterARefusedAddition() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            can = false;
        };
        on.addTable("U");
        on.builder.WorkArea->selectObject(box);
        QVERIFY(box->Selected);
    }

    void throwingVetoLeavesTheModelAsItWas() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "A");
        const QByteArray before = orvtest::visibleState(on.builder);
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool&) {
            throw orv::Error(QStringLiteral("host"));
        };
        QCOMPARE(orvtest::errorOf([&] { on.addTable("U"); }), "host");
        QCOMPARE(orvtest::errorOf([&] { box->CloseTable(); }), "host");
        QCOMPARE(orvtest::visibleState(on.builder), before);
        on.builder.OnAddRemoveTable = nullptr;
        on.changes = 0;
        box->CloseTable();
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
    }

    void vetoMayAddAnotherTable() {
        HostedBuilder on;
        bool nested = false;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            if (std::exchange(nested, true)) return;
            QVERIFY(on.addTable("U"));
        };
        QVERIFY(on.addTable("T"));
        QCOMPARE(on.stacking(), QStringList({"T", "U"}));
        verifyBuilder(on.builder);
    }

    void vetoMayAddTheSameTable() {
        HostedBuilder on;
        bool nested = false;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            if (std::exchange(nested, true)) return;
            on.addTable("T");
        };
        on.addTable("T");
        QSet<QString> aliases;
        for (const QString& alias : on.stacking()) aliases.insert(alias);
        QCOMPARE(aliases.size(), 2);
    }

    // --- closing

    void closingAsksUnticksTellsAndRemoves() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.addTable("U");
        on.tick("T", "A");
        on.tick("T", "C");
        on.tick("U", "X");
        QStringList log;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* table, TAddRemove action, bool&) {
            log << "ask " + table->GetAlias() + (action == araAdd ? " add" : " remove");
            QVERIFY(table->GetFieldItem("A")->Checked);
        };
        TorvQDWorkArea* area = on.builder.WorkArea;
        const TCheckItemEvent oldCheck = area->OnCheckItem;
        area->OnCheckItem = [&](QObject* sender, TorvQDListItem* item) {
            log << item->Name + (item->Checked ? "+" : "-");
            oldCheck(sender, item);
        };
        const TRemoveEvent oldRemove = area->OnRemoveTable;
        area->OnRemoveTable = [&](QObject* sender, QObject* item) {
            QCOMPARE(sender, area);
            QCOMPARE(item, box);
            QCOMPARE(area->TablesCount(), 2);
            log << "removed";
            oldRemove(sender, item);
        };
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, &on.builder,
                [&] { log << "changed"; });
        on.builder.ListOfTables->DeleteTable(box);
        QCOMPARE(log, QStringList({"ask T remove", "A-", "C-", "removed", "changed"}));
        QCOMPARE(on.tables(), QStringList("U"));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("U.X"));
        QCOMPARE(on.columns(), QStringList("X||U.X"));
        verifyBuilder(on.builder);
    }

    void refusedRemovalLeavesEverythingAsItWas() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "A");
        const QByteArray before = orvtest::visibleState(on.builder);
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            ++asked;
            can = false;
        };
        int told = 0;
        on.builder.WorkArea->OnRemoveTable = [&](QObject*, QObject*) { ++told; };
        on.builder.WorkArea->OnCheckItem = [&](QObject*, TorvQDListItem*) { ++told; };
        on.changes = 0;
        box->CloseTable();
        QCOMPARE(asked, 1);
        QCOMPARE(told, 0);
        QCOMPARE(on.changes, 0);
        QCOMPARE(orvtest::visibleState(on.builder), before);
        QVERIFY(!box->closing);
        box->CloseTable();
        QCOMPARE(asked, 2);
    }

    void closingTheBoxAgainInsideItsVetoIsIgnored() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* table, TAddRemove, bool&) {
            ++asked;
            on.builder.ListOfTables->DeleteTable(table);
        };
        on.changes = 0;
        on.builder.ListOfTables->DeleteTable(box);
        QCOMPARE(asked, 1);
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        verifyBuilder(on.builder);
    }

    void vetoOfARemovalMayCloseAnotherBox() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* table, TAddRemove, bool&) {
            if (table->GetAlias() == "T") on.builder.ListOfTables->DeleteTable(on.table("U"));
        };
        on.table("T")->CloseTable();
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        verifyBuilder(on.builder);
    }

    // A column with an aggregate is not ticked, so it stays.
    void closingLeavesColumnsWithAnAggregate() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a, count(t.b) n from t");
        on.table("T")->CloseTable();
        QCOMPARE(on.columns(), QStringList("N|COUNT|T.B"));
    }

    void closingTheSelectedBoxSelectsNothing() {
        HostedBuilder on;
        on.addTable("T");
        TorvQDTable* box = on.addTable("U");
        box->CloseTable();
        QVERIFY(!on.builder.WorkArea->selectedObject());
        verifyBuilder(on.builder);
    }

    void boxDiesAfterItsOwnHandlerHasReturned() {
        HostedBuilder on;
        const QPointer<TorvQDTable> box = on.addTable("T");
        bool usable = false;
        box->OnMouseDown = [&](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int, int) {
            box->CloseTable();
            usable = box && box->TableName == "T";
        };
        TWMMouse message{60, 30, Qt::LeftButton};
        box->MouseDown(message, htTCaption);
        QVERIFY(usable);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        QVERIFY(box);
        QCoreApplication::processEvents();
        QVERIFY(!box);
    }

    void clearingTellsAndAsksNobody() {
        HostedBuilder on;
        on.addTable("T");
        on.tick("T", "A");
        int told = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) { ++told; };
        on.builder.WorkArea->OnRemoveTable = [&](QObject*, QObject*) { ++told; };
        on.builder.WorkArea->OnCheckItem = [&](QObject*, TorvQDListItem*) { ++told; };
        on.builder.Clear();
        QCOMPARE(told, 0);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        QVERIFY(!on.builder.WorkArea->selectedObject());
        verifyBuilder(on.builder);
    }

    // --- messages

    void closeMessageClosesTheBox() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) { ++asked; };
        TorvDiagramEvent event(CMCLOSETABLE, box);
        QCoreApplication::sendEvent(on.builder.WorkArea, &event);
        QCOMPARE(asked, 1);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
    }

    void postedMessageOfADeadBoxDoesNothing() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.addTable("U");
        QCoreApplication::postEvent(on.builder.WorkArea, new TorvDiagramEvent(CMCLOSETABLE, box));
        box->CloseTable();
        QCoreApplication::processEvents();
        QCOMPARE(on.tables(), QStringList("U"));
    }

    void otherMessagesLeaveTheBoxes_data() {
        QTest::addColumn<int>("message");
        QTest::newRow("moved") << CMMOVECONTROL;
        QTest::newRow("resized") << CMRESIZECONTROL;
        QTest::newRow("unlink") << CMUNLINKTABLE;
        QTest::newRow("delete link") << CMDELETELINK;
    }
    void otherMessagesLeaveTheBoxes() {
        QFETCH(int, message);
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        const QByteArray before = orvtest::visibleState(on.builder);
        on.changes = 0;
        TorvDiagramEvent event(message, box);
        QVERIFY(QCoreApplication::sendEvent(on.builder.WorkArea, &event));
        QCOMPARE(orvtest::visibleState(on.builder), before);
        QCOMPARE(on.changes, 0);
    }

    void errorInsideAMessageGoesToTheHandler() {
        orvtest::RecordedServices services;
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool&) {
            throw orv::Error(QStringLiteral("host"));
        };
        TorvDiagramEvent event(CMCLOSETABLE, box);
        QCoreApplication::sendEvent(on.builder.WorkArea, &event);
        QCOMPARE(services.errors, QStringList("host"));
        QCOMPARE(on.builder.WorkArea->TablesCount(), 1);
    }

    void numbersOfTheMessagesAreFixed() {
        QCOMPARE(CMMOVECONTROL, 0xB067);
        QCOMPARE(CMRESIZECONTROL, 0xB068);
        QCOMPARE(CMCLOSETABLE, 0xB069);
        QCOMPARE(CMUNLINKTABLE, 0xB06A);
        QCOMPARE(CMDELETELINK, 0xB06B);
    }

    // --- relays

    void parameterIsAskedOfTheHost() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        TorvQDListItem* item = box->GetFieldItem("A");
        int asked = 0;
        on.builder.OnEnterProcParameter = [&](QObject* sender, TorvQDTable* table,
                                              TorvQDListItem* row) {
            if (sender == &on.builder && table == box && row == item) ++asked;
        };
        on.builder.WorkArea->DoEnterParameter(box, item);
        QCOMPARE(asked, 1);
    }

    void onlyABoxTellsOfItsTicks() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        int told = 0;
        on.builder.WorkArea->OnCheckItem = [&](QObject*, TorvQDListItem*) { ++told; };
        QObject stranger;
        on.builder.WorkArea->_CheckItem(&stranger, box->GetFieldItem("A"));
        QCOMPARE(told, 0);
        on.builder.WorkArea->_CheckItem(box, box->GetFieldItem("A"));
        QCOMPARE(told, 1);
    }

    void ticksInTheQuestionAreToldUnderTheAliasOnceTheBoxIsIn() {
        HostedBuilder on;
        on.addTable("T");
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove action, bool&) {
            if (action == araAdd) box->GetFieldItem("A")->SetCheck(true);
        };
        TorvQDTable* box = on.addTable("T");
        QCOMPARE(box->GetAlias(), QString("T1"));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("T1.A"));
        QCOMPARE(on.columns(), QStringList("A||T1.A"));
        QCOMPARE(box->FieldState, 1);
        QCOMPARE(orvtest::brokenRule(on.builder), QString());
        box->SetFieldState(0);
        QCOMPARE(on.columns(), QStringList());
    }

    void loadedStatementAloneSaysWhatIsSelected() {
        HostedBuilder on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove action, bool&) {
            if (action == araAdd) box->SetFieldState(2);
        };
        on.builder.LoadSQL("select x.b from t x");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("X.B"));
        QCOMPARE(on.table("X")->FieldState, 1);
        QCOMPARE(orvtest::brokenRule(on.builder), QString());
    }

    void refusedBoxThatWasTickedLeavesNothing() {
        HostedBuilder on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove, bool& can) {
            box->SetFieldState(2);
            can = false;
        };
        QVERIFY(!on.addTable("T"));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList());
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 0);
    }

    void closedBoxHasNoPartInTheStatement_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("closed") << 0;
        QTest::newRow("cleared") << 1;
        QTest::newRow("another statement") << 2;
        QTest::newRow("a saved state") << 3;
    }
    void closedBoxHasNoPartInTheStatement() {
        QFETCH(int, way);
        HostedBuilder on;
        on.addTable("U");
        const QByteArray state = on.builder.SaveState();
        TorvQDTable* box = on.addTable("T");
        if (way == 0) box->CloseTable();
        if (way == 1) on.builder.Clear();
        if (way == 2) on.builder.LoadSQL("select u.x from u");
        if (way == 3) on.builder.RestoreState(state);
        const QStringList columns = on.columns();
        on.changes = 0;
        box->GetFieldItem("A")->SetCheck(true);
        box->SetFieldState(2);
        box->SetAlias("Z");
        QCOMPARE(on.changes, 0);
        QCOMPARE(on.columns(), columns);
        QVERIFY(!on.builder.WorkArea->GetTable("Z"));
        QCOMPARE(orvtest::brokenRule(on.builder), QString());
    }

    void replacedRowHasNoPartInTheStatement() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        TorvQDListItem* old = box->GetFieldItem("A");
        const TDataSet fields = orvtest::stringFields({"N"});
        box->AssignItems(&fields);
        old->SetCheck(true);
        QCOMPARE(on.columns(), QStringList());
    }

    void fontOfTheOptionsLaysTheBoxesOut() {
        HostedBuilder on;
        const TorvQDTable* box = on.addTable("T");
        const int before = box->Height;
        on.builder.WorkAreaOptions->SetFont(QFont(QStringLiteral("Arial"), 24));
        const int pixels = on.builder.WorkArea->fontHeight();
        QVERIFY(pixels > 20);
        QCOMPARE(box->CaptionHeight, pixels + 4);
        QCOMPARE(box->ItemHeight, pixels);
        QVERIFY(box->Height > before);
        QCOMPARE(on.builder.WorkArea->GetFont(), on.builder.WorkAreaOptions->GetFont());
    }

    void otherRowsOfABoxAreFoundAndTheOldOnesStayWithTheirLinks() {
        HostedBuilder on;
        TorvQDWorkArea* area = on.builder.WorkArea;
        TorvQDTable* box = on.addTable("T");
        TorvQDTable* other = on.addTable("U");
        TorvQDListItem* row = box->GetFieldItem("A");
        const TorvQDLink* link = area->AddLink(box, other, row, other->GetFieldItem("X"));
        const TDataSet fields = orvtest::stringFields({"N"});
        box->AssignItems(&fields);
        QCOMPARE(area->tablesWithField("N"), std::vector<TorvQDTable*>{box});
        const std::vector<TorvQDTable*> left = area->tablesWithField("B");
        QVERIFY(std::find(left.begin(), left.end(), box) == left.end());
        QVERIFY(!box->owns(row));
        QCOMPARE(link->Item1->Name, QString("A"));
        box->CloseTable();
        QVERIFY(area->tablesWithField("N").empty());
    }

    void hostMayReplaceTheRowsWhileTheyAreTicked() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        const TDataSet fields = orvtest::stringFields({"N"});
        int told = 0;
        on.builder.WorkArea->OnCheckItem = [&](QObject*, TorvQDListItem*) {
            if (++told == 1) box->AssignItems(&fields);
        };
        box->SetFieldState(2);
        QCOMPARE(told, 1);
        QVERIFY(!box->GetFieldItem("N")->Checked);
    }

    void emptySlotsAreSkipped() {
        HostedBuilder on;
        TorvQDWorkArea* area = on.builder.WorkArea;
        area->OnAddTable = nullptr;
        area->OnCheckItem = nullptr;
        area->OnRemoveTable = nullptr;
        area->OnChangeAlias = nullptr;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "A");
        area->renameTable(box, "X");
        box->CloseTable();
        QCOMPARE(area->TablesCount(), 0);
    }
};

QTEST_MAIN(FloatPanelTest)
#include "tst_floatpanel.moc"
