// SPDX-License-Identifier: MIT
#include "contract/DiagramEvents.h"
#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QScrollBar>

#include <random>

using orvtest::HostedBuilder;

namespace {

constexpr int gapPx = 10;

// The rule as it stands: each time the place meets a box, it goes behind it and all boxes are
// looked at again.
TRect placeByRestartingWalks(const std::vector<TRect>& boxes, int width, int height) {
    TRect place = TRect{0, 0, width, height}.translated(50, 20);
    for (std::size_t index = 0; index < boxes.size();) {
        if (!place.intersects(boxes[index])) {
            ++index;
            continue;
        }
        place = place.translated(boxes[index].Right + gapPx - place.Left, 0);
        index = 0;
    }
    return place;
}

}  // namespace

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

    // --- aliases

    void sameNameGetsNumbers() {
        HostedBuilder on;
        for (const char* alias : {"EMPLOYEE", "EMPLOYEE1", "EMPLOYEE2"}) {
            QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), alias);
            verifyBuilder(on.builder);
        }
        QCOMPARE(on.builder.WorkArea->Tables(2)->Alias(), QString());
        QCOMPARE(on.builder.WorkArea->Tables(0)->TableName, "EMPLOYEE");
    }

    void takenNumbersAreSkipped() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("DEPT"), "EMPLOYEE1");
        on.addTable("EMPLOYEE");
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE2");
        verifyBuilder(on.builder);
    }

    void numbersStandInsideTheQuotes_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("lower case") << "emp"
                                    << "\"emp\""
                                    << "\"emp1\"";
        QTest::newRow("blank") << "MY TABLE"
                               << "\"MY TABLE\""
                               << "\"MY TABLE1\"";
        QTest::newRow("quoted") << "\"my table\""
                                << "\"my table\""
                                << "\"my table1\"";
        QTest::newRow("quote inside") << "A\"B"
                                      << "\"A\"\"B\""
                                      << "\"A\"\"B1\"";
        QTest::newRow("dot") << "S.T"
                             << "\"S.T\""
                             << "\"S.T1\"";
        QTest::newRow("no ASCII") << QStringLiteral("\u00c4") << QStringLiteral("\"\u00c4\"")
                                  << QStringLiteral("\"\u00c41\"");
    }
    void numbersStandInsideTheQuotes() {
        QFETCH(QString, name);
        QFETCH(QString, first);
        QFETCH(QString, second);
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"A"});
        QCOMPARE(on.builder.WorkArea->AddPanel(name, &fields)->GetAlias(), first);
        QCOMPARE(on.builder.WorkArea->AddPanel(name, &fields)->GetAlias(), second);
        verifyBuilder(on.builder);
    }

    void closingFreesTheName() {
        HostedBuilder on;
        TorvQDTable* first = on.addTable("EMPLOYEE");
        on.addTable("EMPLOYEE");
        on.builder.ListOfTables->DeleteTable(first);
        QVERIFY(!on.table("EMPLOYEE"));
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE");
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE2");
        verifyBuilder(on.builder);
    }

    void renamingFreesTheNameAndTakesTheOther() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        on.builder.WorkArea->renameTable(box, "E");
        QVERIFY(!on.table("EMPLOYEE"));
        QCOMPARE(on.table("E"), box);
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE");
        verifyBuilder(on.builder);
    }

    void clearingFreesAllNames() {
        HostedBuilder on;
        on.addTable("EMPLOYEE");
        on.addTable("EMPLOYEE");
        on.builder.Clear();
        QVERIFY(!on.table("EMPLOYEE1"));
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE");
        verifyBuilder(on.builder);
    }

    void boxIsFoundByItsExactAlias() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        QCOMPARE(on.builder.WorkArea->GetTable("EMPLOYEE"), box);
        QVERIFY(!on.builder.WorkArea->GetTable("employee"));
        QVERIFY(!on.builder.WorkArea->GetTable(" EMPLOYEE"));
        QCOMPARE(on.builder.WorkArea->findTable("employee"), box);
        QCOMPARE(on.builder.WorkArea->findTable("\"EMPLOYEE\""), box);
    }

    void looseSearchWantsOneMatch() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("T"), "Pair");
        on.builder.WorkArea->renameTable(on.addTable("U"), "PAIR");
        QCOMPARE(on.builder.WorkArea->findTable("Pair"), on.table("Pair"));
        QVERIFY(!on.builder.WorkArea->findTable("pair"));
    }

    void emptyAliasStandsForTheOnlyBox() {
        HostedBuilder on;
        QVERIFY(!on.builder.WorkArea->GetTable(""));
        TorvQDTable* box = on.addTable("T");
        QCOMPARE(on.builder.WorkArea->GetTable(""), box);
        QCOMPARE(on.builder.WorkArea->GetTable("  "), box);
        on.addTable("U");
        QVERIFY(!on.builder.WorkArea->GetTable(""));
    }

    // --- placement

    void firstBoxAndTheOneBesideIt() {
        HostedBuilder on;
        const TorvQDTable* first = on.addTable("T");
        QCOMPARE(QPoint(first->Left, first->Top), QPoint(50, 20));
        const TorvQDTable* second = on.addTable("U");
        QCOMPARE(QPoint(second->Left, second->Top), QPoint(50 + first->Width + gapPx, 20));
    }

    void rowOfBoxesDoesNotWrap() {
        HostedBuilder on;
        for (int count = 0; count < 60; ++count) on.addTable("T");
        const TorvQDTable* last = on.builder.WorkArea->Tables(0);
        QCOMPARE(last->Top, 20);
        QVERIFY(last->Left > 5000);
    }

    void placeIsThatOfRestartingWalks() {
        HostedBuilder on;
        std::mt19937 random(20240607);
        const auto below = [&](unsigned limit) { return int(random() % limit); };
        int shifted = 0;
        for (int layout = 0; layout < 500; ++layout) {
            on.builder.Clear();
            const int count = 2 + below(8);
            for (int index = 0; index < count; ++index) {
                TorvQDTable* box = on.addTable(below(2) ? "T" : "EMPLOYEE");
                box->SetLeft(below(400));
                box->SetTop(below(150));
                box->SetWidth(80 + below(200));
                box->SetHeight(60 + below(150));
                if (below(5) == 0) box->SetExpand(0);
                if (below(2)) {
                    on.builder.WorkArea->TableToFront(
                        on.builder.WorkArea->Tables(below(unsigned(index) + 1)));
                }
            }
            std::vector<TRect> boxes;
            for (int index = 0; index < count; ++index) {
                boxes.push_back(on.builder.WorkArea->Tables(index)->GetBoundsRect());
            }
            const TorvQDTable* added = on.addTable("DEPT");
            const TRect expected = placeByRestartingWalks(boxes, added->Width, added->Height);
            QCOMPARE(QPoint(added->Left, added->Top), QPoint(expected.Left, expected.Top));
            if (added->Left != 50) ++shifted;
        }
        QVERIFY2(shifted > 200, "the layouts hardly stand in the way");
    }

    void longCaptionWidensTheBox() {
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"A"});
        const TorvQDTable* box = on.builder.WorkArea->AddPanel(QString(40, u'W'), &fields);
        QVERIFY(box->Width > 100);
        QCOMPARE(box->Width, box->CaptionRect(true).width());
        QCOMPARE(on.addTable("T")->Width, 100);
    }

    void scrollRangeIsFixedAndGrowsWithFarBoxes() {
        HostedBuilder on;
        TorvQDWorkArea* area = on.builder.WorkArea;
        const auto extent = [](const QScrollBar* bar) { return bar->maximum() + bar->pageStep(); };
        TorvQDTable* box = on.addTable("T");
        QCOMPARE(extent(area->horizontalScrollBar()), 5000);
        QCOMPARE(extent(area->verticalScrollBar()), 5000);
        box->SetLeft(6000);
        QCOMPARE(extent(area->horizontalScrollBar()), 6000 + box->Width + 50);
        QCOMPARE(extent(area->verticalScrollBar()), 5000);
        on.builder.ListOfTables->DeleteTable(box);
        QCOMPARE(extent(area->horizontalScrollBar()), 5000);
    }

    // --- stacking

    void newBoxIsInFrontAndSelected() {
        HostedBuilder on;
        on.addTable("T");
        TorvQDTable* second = on.addTable("U");
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.builder.WorkArea->selectedObject(), second);
        QVERIFY(second->Selected);
        QVERIFY(!on.table("T")->Selected);
        verifyBuilder(on.builder);
    }

    void comingToTheFrontKeepsTheOrderOfTheOthers() {
        HostedBuilder on;
        for (const char* name : {"T", "U", "DEPT", "ORDERS"}) on.addTable(name);
        on.builder.WorkArea->TableToFront(on.table("U"));
        QCOMPARE(on.stacking(), QStringList({"U", "ORDERS", "DEPT", "T"}));
        QCOMPARE(on.tables(), QStringList({"T", "U", "DEPT", "ORDERS"}));
    }

    void bringingTheFrontBoxOrAStrangerChangesNothing() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.changes = 0;
        QObject stranger;
        on.builder.WorkArea->TableToFront(on.table("U"));
        on.builder.WorkArea->TableToFront(&stranger);
        on.builder.WorkArea->TableToFront(nullptr);
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.changes, 0);
    }

    void selectingDeselectsTheOther() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.WorkArea->selectObject(on.table("T"));
        QVERIFY(on.table("T")->Selected);
        QVERIFY(!on.table("U")->Selected);
        QCOMPARE(on.stacking(), QStringList({"T", "U"}));
        on.builder.WorkArea->selectObject(nullptr);
        QVERIFY(!on.table("T")->Selected);
        verifyBuilder(on.builder);
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

    // --- renaming

    void typedTextBecomesAnAlias_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("alias");
        QTest::newRow("plain") << "E"
                               << "E";
        QTest::newRow("lower case") << "e_1$"
                                    << "e_1$";
        QTest::newRow("dots are dropped") << "A.B"
                                          << "AB";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("blanks") << "   "
                                << "";
        QTest::newRow("the table's name") << "EMPLOYEE"
                                          << "";
        QTest::newRow("the table's name behind a dot") << ".EMPLOYEE"
                                                       << "";
        QTest::newRow("the table's name in other case") << "employee"
                                                        << "employee";
        QTest::newRow("dots alone") << "..."
                                    << "";
        QTest::newRow("blank inside") << "my e"
                                      << "\"my e\"";
        QTest::newRow("digit first") << "1E"
                                     << "\"1E\"";
        QTest::newRow("no ASCII") << QStringLiteral("\u00e4") << QStringLiteral("\"\u00e4\"");
        QTest::newRow("quote inside") << "a\"b"
                                      << "\"a\"\"b\"";
        QTest::newRow("in quotes") << "\"my e\""
                                   << "\"my e\"";
        QTest::newRow("blank and dot") << "my.own e"
                                       << "\"myown e\"";
    }
    void typedTextBecomesAnAlias() {
        QFETCH(QString, typed);
        QFETCH(QString, alias);
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        on.builder.WorkArea->renameTable(box, "OLD");
        on.tick("OLD", "SALARY");
        on.builder.WorkArea->renameTable(box, typed);
        QCOMPARE(box->Alias(), alias);
        QCOMPARE(box->GetAlias(), alias.isEmpty() ? "EMPLOYEE" : alias);
        verifyBuilder(on.builder);
    }

    void nameOfAQuotedTableClearsItsAlias_data() {
        QTest::addColumn<QString>("typed");
        QTest::newRow("in quotes") << "\"my table\"";
        QTest::newRow("without quotes") << "my table";
    }
    void nameOfAQuotedTableClearsItsAlias() {
        QFETCH(QString, typed);
        HostedBuilder on;
        TorvQDTable* box = on.addTable("my table");
        on.builder.WorkArea->renameTable(box, "M");
        on.builder.WorkArea->renameTable(box, typed);
        QCOMPARE(box->Alias(), QString());
        verifyBuilder(on.builder);
    }

    void renamingTellsOnceWithTheOldAlias() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "A");
        QStringList log;
        const TChangeStringEvent old = on.builder.WorkArea->OnChangeAlias;
        on.builder.WorkArea->OnChangeAlias = [&](QObject* item, const QString& oldAlias) {
            log << oldAlias + ">" + qobject_cast<TorvQDTable*>(item)->GetAlias();
            old(item, oldAlias);
        };
        on.changes = 0;
        on.builder.WorkArea->renameTable(box, "X");
        QCOMPARE(log, QStringList("T>X"));
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("X.A"));
        QCOMPARE(on.columns(), QStringList("A||X.A"));
        verifyBuilder(on.builder);
    }

    void sameAliasTellsNobody() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        int told = 0;
        on.builder.WorkArea->OnChangeAlias = [&](QObject*, const QString&) { ++told; };
        on.changes = 0;
        on.builder.WorkArea->renameTable(box, "T");
        on.builder.WorkArea->renameTable(box, "");
        on.builder.WorkArea->renameTable(box, "T.");
        QCOMPARE(told, 0);
        QCOMPARE(on.changes, 0);
    }

    void takenAliasIsRefused_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("named");
        QTest::newRow("plain") << "U"
                               << "U";
        QTest::newRow("quoted by the other") << "my u"
                                             << "my u";
        QTest::newRow("blank counts as the table's name") << "  "
                                                          << "T";
    }
    void takenAliasIsRefused() {
        QFETCH(QString, typed);
        QFETCH(QString, named);
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.WorkArea->renameTable(on.addTable("DEPT"), "my u");
        TorvQDTable* box = on.addTable("T");
        const QByteArray before = orvtest::visibleState(on.builder);
        on.changes = 0;
        QCOMPARE(orvtest::errorOf([&] { on.builder.WorkArea->renameTable(box, typed); }),
                 "Table with alias " + named + " already exist!");
        QCOMPARE(box->GetAlias(), "T1");
        QCOMPARE(on.changes, 0);
        QCOMPARE(orvtest::visibleState(on.builder), before);
    }

    void aliasesDifferInCase() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("T"), "e");
        TorvQDTable* box = on.addTable("U");
        on.builder.WorkArea->renameTable(box, "E");
        QCOMPARE(box->GetAlias(), "E");
        verifyBuilder(on.builder);
    }

    // The dots are dropped behind the test.
    void duplicatesAreLookedForWithTheDots() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("T"), "AB");
        TorvQDTable* box = on.addTable("U");
        on.builder.WorkArea->renameTable(box, "A.B");
        QCOMPARE(box->Alias(), "AB");
    }

    // An old alias catches every name that begins with it.
    void renamingAlsoCatchesNamesThatBeginWithTheOldAlias() {
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"NAME"});
        TorvQDTable* box = on.builder.WorkArea->AddPanel("T", &fields);
        on.builder.WorkArea->AddPanel("T2", &fields);
        on.tick("T", "NAME");
        on.tick("T2", "NAME");
        on.builder.WorkArea->renameTable(box, "X");
        QCOMPARE(on.builder.AllFields().names(), QStringList({"X.NAME", "X.NAME"}));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList({"X.NAME", "X.NAME"}));
        QCOMPARE(on.columns(), QStringList({"NAME||X.NAME", "NAME||T2.NAME"}));
    }

    // A column may be listed by its bare name: no alias stands in it.
    void renamingLeavesBareNamesAlone() {
        HostedBuilder on;
        on.builder.LoadSQL("select salary from employee s");
        on.builder.WorkArea->renameTable(on.table("S"), "X");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("SALARY"));
        on.tick("X", "SALARY", false);
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void strangerCannotBeRenamed() {
        HostedBuilder on;
        HostedBuilder other;
        TorvQDTable* box = other.addTable("T");
        on.builder.WorkArea->renameTable(box, "X");
        on.builder.WorkArea->renameTable(nullptr, "X");
        QCOMPARE(box->GetAlias(), "T");
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
