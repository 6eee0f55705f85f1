// SPDX-License-Identifier: MIT
#include "criteria/ShownConditions.h"

#include <functional>

using orvtest::errorOf;
using orvtest::ShownConditions;

namespace {

const QString blanks(9, u' ');
const QString noButton = "There are no active button";
const QString noCondition = "There are no active condition";
const QString two = "t.a = 1 and t.b = 2";
const QString nested = "t.a = 1 and (t.b = 2 or t.c = 3) and t.d = 4";

}  // namespace

class WhereCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- adding

    void addingToAGroupAppendsToItsRows() {
        ShownConditions on(nested);
        on.select("2.", 1);
        on.panel->AddCondition();
        QCOMPARE(on.rows(), "All(T.A =[1]; Any(T.B =[2]; T.C =[3];  =[]); T.D =[4])");
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.row("2.3.")->FieldName, blanks);
    }

    void addingAtAConditionAppendsToTheGroupAroundIt() {
        ShownConditions on(nested);
        on.select("2.1.", 5);
        on.panel->AddCondition();
        QCOMPARE(on.rows(), "All(T.A =[1]; Any(T.B =[2]; T.C =[3];  =[]); T.D =[4])");
        on.select("1.", 0);
        on.panel->AddCondition();
        QCOMPARE(on.rows(), "All(T.A =[1]; Any(T.B =[2]; T.C =[3];  =[]); T.D =[4];  =[])");
        QCOMPARE(on.changes, 2);
    }

    void addingAtTheRootAddsATopLevelCondition() {
        ShownConditions on;
        on.select("", 0);
        on.panel->AddCondition();
        QCOMPARE(on.rows(), "All( =[])");
        QCOMPARE(on.row("1.")->GetFullIndex(), "1.");
        QCOMPARE(on.row("1.")->Operator, on.builder.Operators->Items(0));
    }

    void newConditionIsWhereTheKeysGoOn() {
        ShownConditions on(two);
        on.select("1.", 3);
        on.panel->AddCondition();
        QCOMPARE(on.active(), "3.:2");
        QCOMPARE(on.current(), "3.:2");
    }

    void collapsedGroupOpensForItsNewCondition() {
        ShownConditions on(nested);
        on.row("2.")->SetExpanded(false);
        on.select("2.", 1);
        on.panel->AddCondition();
        QVERIFY(on.row("2.")->Expanded);
        QCOMPARE(on.row("2.")->SubRows->GetCount(), 3);
        QCOMPARE(on.changes, 1);
    }

    // --- groups out of conditions

    void conditionBecomesAGroupThatHoldsIt() {
        ShownConditions on("t.a between 1 and 2 and t.b = 2");
        on.select("1.", 0);
        on.row("1.")->Valid = false;
        on.panel->MakeCompositCondition();
        QCOMPARE(on.rows(), "All(All(T.A BETWEEN[1][2]); T.B =[2])");
        QVERIFY(on.row("1.")->Expanded);
        QVERIFY(!on.row("1.1.")->Valid);
        QCOMPARE(on.changes, 1);
        (void)on.panel->shownRows();
        for (int kind = 2; kind < int(on.row("1.")->Controls.size()); ++kind) {
            QCOMPARE(on.element("1.", kind)->Width, 0);
        }
        QVERIFY(on.element("1.", 1)->Width > 0);
        QCOMPARE(on.row("1.1.")->GetLeftBound(), 45);
        QCOMPARE(on.row("1.1.")->GetTopBound(), 40);
    }

    void functionsGoIntoTheGroup() {
        ShownConditions on("sum(t.a) > avg(t.b)", ShownConditions::Having);
        on.select("1.", 2);
        on.panel->MakeCompositCondition();
        QCOMPARE(on.rows(), "All(All(SUM:T.A >[AVG:T.B]))");
        QCOMPARE(on.changes, 1);
    }

    // --- deleting

    void deletingAsksFirst() {
        ShownConditions on(nested);
        orv::MessageRequest asked;
        const auto old = orv::setMessageService([&](const orv::MessageRequest& request) {
            asked = request;
            return orv::MessageAnswer::No;
        });
        on.select("2.", 1);
        on.panel->DeleteCondition();
        orv::setMessageService(old);
        QCOMPARE(asked.text, "Are you sure want to delete current condition(s)?");
        QCOMPARE(asked.caption, "Be care!");
        QCOMPARE(asked.icon, orv::MessageIcon::Question);
        QCOMPARE(asked.buttons, orv::MessageButtons::YesNo);
        QCOMPARE(asked.parent, on.panel);
    }

    void answerNoLeavesEverything() {
        ShownConditions on(nested);
        on.services.answer = orv::MessageAnswer::No;
        on.select("2.", 1);
        const QString rows = on.rows();
        const TorvQDWhereRow* row = on.row("2.1.");
        on.panel->DeleteCondition();
        QCOMPARE(on.services.messages.size(), 1);
        QCOMPARE(on.rows(), rows);
        QCOMPARE(on.row("2.1."), row);
        QCOMPARE(on.active(), "2.:1");
        QCOMPARE(on.current(), "2.:1");
        QCOMPARE(on.changes, 0);
    }

    void deletingTakesARowWithAllBelowIt() {
        ShownConditions on(nested);
        on.select("2.", 0);
        on.panel->DeleteCondition();
        QCOMPARE(on.rows(), "All(T.A =[1]; T.D =[4])");
        QCOMPARE(on.current(), "none");
        QCOMPARE(on.changes, 1);
        on.select("1.", 5);
        on.panel->DeleteCondition();
        QCOMPARE(on.rows(), "All(T.D =[4])");
        QCOMPARE(on.changes, 2);
    }

    void lastConditionOfAGroupLeavesTheGroup() {
        ShownConditions on("not (t.b = 2) and t.a = 1");
        QCOMPARE(on.rows(), "All(None(T.B =[2]); T.A =[1])");
        on.select("1.1.", 2);
        on.panel->DeleteCondition();
        QCOMPARE(on.rows(), "All(None(); T.A =[1])");
        QCOMPARE(on.row("1.")->GetSQLCondition(false), blanks);
    }

    void rowsMayChangeDuringTheQuestion_data() {
        QTest::addColumn<QString>("event");
        QTest::addColumn<QString>("rows");
        QTest::newRow("the row goes") << "delete"
                                      << "All(T.B =[2])";
        QTest::newRow("all rows go") << "clear"
                                     << "All()";
        QTest::newRow("a statement is loaded") << "load"
                                               << "All(T.C =[9])";
        QTest::newRow("a row comes in front") << "insert"
                                              << "All( =[]; T.B =[2])";
        QTest::newRow("the row moves into a group") << "move"
                                                    << "All(Any(T.B =[2]))";
        QTest::newRow("another element is chosen") << "select"
                                                   << "All(T.B =[2])";
    }
    void rowsMayChangeDuringTheQuestion() {
        QFETCH(QString, event);
        QFETCH(QString, rows);
        ShownConditions on(two);
        on.select("1.", 0);
        const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
            TorvQDWhereRows& top = *on.root()->SubRows;
            if (event == "delete") top.Delete(0);
            if (event == "clear") on.builder.Clear();
            if (event == "load") on.builder.LoadSQL("select t.a from t where t.c = 9");
            if (event == "insert") top.Insert(0);
            if (event == "select") on.select("2.", 2);
            if (event == "move") {
                TorvQDWhereRow* group = top.AddRow();
                group->SetGroupOper("Any");
                on.row("2.")->SetCollection(group->SubRows.get());
                on.row("1.")->SetCollection(group->SubRows.get());
            }
            return orv::MessageAnswer::Yes;
        });
        on.panel->DeleteCondition();
        orv::setMessageService(old);
        QCOMPARE(on.rows(), rows);
        QCOMPARE(on.current(), "none");
    }

    void builderMayDieDuringTheQuestion() {
        orvtest::RecordedServices services;
        auto* builder = new TorvQueryBuilder;
        TorvQDWherePanel* panel = builder->WherePanel;
        panel->setCurrentElement(panel->rootRow()->Controls[0].get());
        panel->AddCondition();
        const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
            delete builder;
            return orv::MessageAnswer::Yes;
        });
        panel->DeleteCondition();
        orv::setMessageService(old);
        QVERIFY(services.errors.isEmpty());
    }

    // --- opening and closing groups

    void groupsAreCollapsedAndExpanded() {
        ShownConditions on(nested);
        on.select("2.", 1);
        on.panel->ExpandCollapse();
        QVERIFY(!on.row("2.")->Expanded);
        QCOMPARE(on.panel->shownRows().size(), std::size_t(4));
        QCOMPARE(on.panel->GetFullExtention(false).height(), 80);
        QCOMPARE(on.panel->GetFullExtention(true).height(), 120);
        on.panel->ExpandCollapse();
        QVERIFY(on.row("2.")->Expanded);
        QCOMPARE(on.panel->GetFullExtention(false).height(), 120);
        QCOMPARE(on.changes, 0);
    }

    // --- refusals

    void refusedCommandsLeaveTheRows_data() {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("number");  // "none": no current element
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("refusal");
        enum { Add, Make, Delete, Expand, Group, Function, Operator };
        const auto row = [](const char* name, int command, const char* number, int kind,
                            const QString& refusal) {
            QTest::newRow(name) << command << QString::fromLatin1(number) << kind << refusal;
        };
        row("add without element", Add, "none", 0, noButton);
        row("make without element", Make, "none", 0, noButton);
        row("make of a group", Make, "2.", 0, "Selected condition already compose");
        row("make of the root", Make, "", 0, "Selected condition already compose");
        row("delete without element", Delete, "none", 0, "There is no active button");
        row("delete the root", Delete, "", 1, "Could not delete first row");
        row("expand without element", Expand, "none", 0, noButton);
        row("expand a condition", Expand, "1.", 0, "Can not expand/collapse simple condition");
        row("collapse the root", Expand, "", 0, "Can not collapse first condition");
        row("group without element", Group, "none", 0, noCondition);
        row("group of a button", Group, "2.", 0, noCondition);
        row("group of a field", Group, "1.", 2, noCondition);
        row("function without element", Function, "none", 0, noCondition);
        row("operator without element", Operator, "none", 0, noCondition);
        row("operator of a field", Operator, "1.", 2, noCondition);
        row("operator of an argument", Operator, "1.", 5, noCondition);
    }
    void refusedCommandsLeaveTheRows() {
        QFETCH(int, command);
        QFETCH(QString, number);
        QFETCH(int, kind);
        QFETCH(QString, refusal);
        QAction item("Any");
        for (const auto page : {ShownConditions::Where, ShownConditions::Having}) {
            ShownConditions on(nested, page);
            item.setData(QVariant::fromValue(on.builder.Operators->Items(3)));
            on.panel->setCurrentElement(number == "none" ? nullptr : on.element(number, kind));
            const QByteArray state = on.builder.SaveState();
            const QString current = on.current();
            const std::function<void()> commands[] = {
                [&] { on.panel->AddCondition(); },
                [&] { on.panel->MakeCompositCondition(); },
                [&] { on.panel->DeleteCondition(); },
                [&] { on.panel->ExpandCollapse(); },
                [&] { on.panel->SelectGroupFuncs(&item); },
                [&] { on.panel->SelectAgrFuncs(&item); },
                [&] { on.panel->SelectOperator(&item); },
            };
            QCOMPARE(errorOf(commands[command]), refusal);
            QCOMPARE(on.builder.SaveState(), state);
            QCOMPARE(on.current(), current);
            QCOMPARE(on.active(), ":1");
            QVERIFY(on.row("2.")->Expanded);
            QVERIFY(on.services.messages.isEmpty());
            QCOMPARE(on.changes, 0);
        }
    }

    void choicesWithoutAnItemChangeNothing() {
        ShownConditions on(nested, ShownConditions::Having);
        const QString rows = on.rows();
        on.select("2.", 1);
        on.panel->SelectGroupFuncs(nullptr);
        on.select("1.", 1);
        on.panel->SelectAgrFuncs(nullptr);
        on.select("1.", 3);
        on.panel->SelectOperator(nullptr);
        QAction empty;
        on.panel->SelectOperator(&empty);
        QCOMPARE(on.rows(), rows);
        QCOMPARE(on.changes, 0);
    }

    // --- choices

    void groupOperatorIsSet() {
        ShownConditions on(nested);
        QAction item("Not all");
        on.select("2.", 1);
        on.panel->SelectGroupFuncs(&item);
        QCOMPARE(on.rows(), "All(T.A =[1]; Not all(T.B =[2]; T.C =[3]); T.D =[4])");
        on.select("", 1);
        on.panel->SelectGroupFuncs(&item);
        QCOMPARE(on.root()->GroupOper, "Not all");
        QCOMPARE(on.changes, 2);
    }

    void functionGoesToTheSideThatWasClicked() {
        ShownConditions on(two, ShownConditions::Having);
        QAction item("MAX");
        on.select("1.", 1);
        on.panel->SelectAgrFuncs(&item);
        QCOMPARE(on.rows(), "All(MAX:T.A =[1]; T.B =[2])");
        item.setText("MIN");
        on.select("1.", 4);
        on.panel->SelectAgrFuncs(&item);
        QCOMPARE(on.rows(), "All(MAX:T.A =[MIN:1]; T.B =[2])");
        QCOMPARE(on.changes, 2);
        (void)on.panel->shownRows();
        QCOMPARE(on.element("1.", 1)->GetText(), "MAX");
        QCOMPARE(on.element("1.", 4)->GetText(), "MIN");
        QVERIFY(on.element("1.", 1)->Width < on.element("2.", 1)->Width * 3);
    }

    void blankFunctionIsNone() {
        ShownConditions on("sum(t.a) > 1", ShownConditions::Having);
        QAction item(blanks);
        on.select("1.", 1);
        on.panel->SelectAgrFuncs(&item);
        QCOMPARE(on.row("1.")->FieldFunc, blanks);
        QCOMPARE(on.row("1.")->GetSQLCondition(false), "(T.A > 1)");
    }

    void operatorFitsTheArguments() {
        ShownConditions on("t.a = 1");
        QAction item;
        const auto choose = [&](const QString& name) {
            item.setData(QVariant::fromValue(on.builder.Operators->FindName(name)));
            on.select("1.", 3);
            on.panel->SelectOperator(&item);
        };
        choose("BETWEEN");
        QCOMPARE(on.row("1.")->Arguments, QStringList({"1", blanks}));
        QCOMPARE(on.row("1.")->Controls.size(), std::size_t(7));
        choose("IS NULL");
        QCOMPARE(on.row("1.")->Arguments, QStringList());
        choose("<>");
        QCOMPARE(on.row("1.")->Arguments, QStringList(blanks));
        QCOMPARE(on.changes, 3);
    }

    // --- where the frame and the commands go

    void activeElementMovesFromWhatIsGone_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("event");
        QTest::addColumn<QString>("active");
        QTest::addColumn<QString>("current");
        const auto row = [](const char* name, const char* number, int kind, const char* event,
                            const char* active, const char* current) {
            QTest::newRow(name) << QString::fromLatin1(number) << kind << QString::fromLatin1(event)
                                << QString::fromLatin1(active) << QString::fromLatin1(current);
        };
        row("row is deleted", "2.", 1, "delete 2", ":1", "none");
        row("row around it is deleted", "2.1.", 5, "delete 2", ":1", "none");
        row("row in front is deleted", "2.1.", 5, "delete 1", "1.1.:5", "1.1.:5");
        row("argument is gone", "3.", 6, "null", "3.:4", "3.:4");
        row("other argument is gone", "3.", 6, "equals", "3.:5", "3.:5");
        row("field stays", "3.", 2, "null", "3.:2", "3.:2");
        row("condition becomes a group", "3.", 6, "compose", "3.:1", "3.:1");
        row("button stays one", "3.", 0, "compose", "3.:0", "3.:0");
        row("group is collapsed", "2.2.", 3, "collapse", "2.:1", "2.:1");
        row("button in it, too", "2.2.", 0, "collapse", "2.:1", "2.:1");
        row("collapsed group itself", "2.", 0, "collapse", "2.:0", "2.:0");
        row("all is cleared", "2.2.", 3, "clear", ":1", "none");
        row("root stays", "", 0, "delete 1", ":0", ":0");
    }
    void activeElementMovesFromWhatIsGone() {
        QFETCH(QString, number);
        QFETCH(int, kind);
        QFETCH(QString, event);
        QFETCH(QString, active);
        QFETCH(QString, current);
        ShownConditions on("t.a = 1 and (t.b = 2 or t.c = 3) and t.d between 1 and 2");
        const auto find = [&](const char* name) { return on.builder.Operators->FindName(name); };
        on.select(number, kind);
        if (event == "delete 1") on.root()->SubRows->Delete(0);
        if (event == "delete 2") on.root()->SubRows->Delete(1);
        if (event == "null") on.row("3.")->setOperator(find("IS NULL"));
        if (event == "equals") on.row("3.")->setOperator(find("="));
        if (event == "collapse") on.row("2.")->SetExpanded(false);
        if (event == "clear") on.panel->ClearContents();
        if (event == "compose") {
            on.row("3.")->SubRows->AddRow()->Assign(*on.row("3."));
            on.row("3.")->SetGroupOper("All");
        }
        QCOMPARE(on.active(), active);
        QCOMPARE(on.current(), current);
        on.view()->grab();
    }

    void outermostCollapsedGroupTakesTheFrame() {
        ShownConditions on("t.a = 1 and (t.b = 2 or (t.c = 3 and t.d = 4))");
        on.select("2.2.1.", 2);
        on.row("2.2.")->SetExpanded(false);
        on.row("2.")->SetExpanded(false);
        QCOMPARE(on.active(), "2.:1");
        on.row("2.")->SetExpanded(true);
        QCOMPARE(on.active(), "2.:1");
    }

    void deletingElsewhereKeepsTheFrame() {
        ShownConditions on(nested);
        on.select("3.", 5);
        on.panel->setCurrentElement(on.element("2.", 0));
        on.panel->DeleteCondition();
        QCOMPARE(on.active(), "2.:5");
        QCOMPARE(on.current(), "none");
    }

    void deletingTheRowOfTheFrameGivesItToTheRoot() {
        ShownConditions on(nested);
        on.panel->setActiveElement(on.element("2.2.", 5));
        on.panel->setCurrentElement(on.element("2.", 0));
        on.panel->DeleteCondition();
        QCOMPARE(on.active(), ":1");
    }

    // --- the host

    void hostSeesTheFinishedStateOncePerCommand() {
        for (const auto page : {ShownConditions::Where, ShownConditions::Having}) {
            ShownConditions on(two, page);
            QStringList seen;
            connect(&on.builder, &TorvQueryBuilder::StatementChanged, on.panel,
                    [&] { seen << on.rows(); });
            on.select("1.", 0);
            on.panel->AddCondition();
            on.select("1.", 0);
            on.panel->MakeCompositCondition();
            on.select("3.", 0);
            on.panel->DeleteCondition();
            QCOMPARE(seen, QStringList({"All(T.A =[1]; T.B =[2];  =[])",
                                        "All(All(T.A =[1]); T.B =[2];  =[])",
                                        "All(All(T.A =[1]); T.B =[2])"}));
            QVERIFY(on.builder.GetSQLStatment().contains("(T.A = 1)"));
        }
    }

    void panelOfNoBuilderWorksToo() {
        const ShownConditions on;
        TorvTabSheet sheet;
        TorvQDWherePanel alone(&sheet);
        alone.Operators = on.builder.Operators.get();
        alone.GroupOpers = &on.builder.GroupOpers;
        alone.Activate();
        alone.setCurrentElement(alone.rootRow()->Controls[0].get());
        alone.AddCondition();
        alone.MakeCompositCondition();
        QCOMPARE(orvtest::rowText(*alone.rootRow()), "All(All( =[]))");
        sheet.grab();
    }

    void commandsOfAPanelThatIsNotActiveAreRefused() {
        TorvTabSheet sheet;
        TorvQDWherePanel panel(&sheet);
        QCOMPARE(errorOf([&] { panel.AddCondition(); }), noButton);
        QCOMPARE(errorOf([&] { panel.DeleteCondition(); }), "There is no active button");
    }

    void scrollRangesFollowTheCommands() {
        ShownConditions on;
        const QScrollBar& bar = *on.panel->verticalScrollBar();
        QCOMPARE(bar.maximum(), 0);
        for (int count = 0; count < 30; ++count) {
            on.select("", 0);
            on.panel->AddCondition();
        }
        QCOMPARE(bar.maximum(), 31 * 20 - on.view()->height());
        QCOMPARE(bar.value(), bar.maximum());  // the new row is shown
        on.select("1.", 0);
        on.panel->DeleteCondition();
        QCOMPARE(bar.maximum(), 30 * 20 - on.view()->height());
        QVERIFY(bar.pageStep() == on.view()->height());
    }

    // As deep as what can be loaded again.
    void groupsNestAsDeepAsTheyCanBeLoaded() {
        const ShownConditions on("t.a = 1");
        TorvQDWhereRow* row = on.root()->SubRows->Row(0);
        for (int depth = 1; depth < orv::deepestCondition; ++depth) {
            row->SetGroupOper("Any");
            row = row->SubRows->AddRow();
        }
        on.panel->setCurrentElement(row->Controls[0].get());
        on.panel->MakeCompositCondition();
        QVERIFY(row->isGroup());
        row = row->SubRows->Row(0);
        on.panel->setCurrentElement(row->Controls[0].get());
        const QString tooDeep = errorOf([] { orv::raiseTooDeep(); });
        QCOMPARE(errorOf([&] { on.panel->MakeCompositCondition(); }), tooDeep);
        QVERIFY(!row->isGroup());
    }
};

QTEST_MAIN(WhereCommandsTest)
#include "tst_wherecommands.moc"
