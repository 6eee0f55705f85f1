// SPDX-License-Identifier: MIT
#include "criteria/ORVQDWherePanel.h"
#include "criteria/RowTools.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"
#include "support/Sanitizers.h"

#include <QLocale>

#include <random>

using orvtest::HostedBuilder;

namespace {

const QString blanks(9, u' ');

QString where(const HostedBuilder& on) {
    return orvtest::rowText(*on.builder.WherePanel->rootRow());
}
QString having(const HostedBuilder& on) {
    return orvtest::rowText(*on.builder.HavingPanel->rootRow());
}

/// Fills a group with rows and groups as a user does; no group has less than two rows, because a
/// group of one comes back as that one.
void fillGroup(TorvQDWhereRow* group, int depth, std::mt19937& random) {
    const QStringList names = {"All", "Any", "None", "Not all"};
    const int count = 2 + int(random() % 3);
    for (int index = 0; index < count; ++index) {
        TorvQDWhereRow* row = group->SubRows->AddRow();
        if (depth > 0 && random() % 2 == 0) {
            row->SetGroupOper(names[int(random() % 4)]);
            fillGroup(row, depth - 1, random);
        } else {
            row->FieldName = "T." + QString(QChar(u'A' + int(random() % 5)));
            row->Arguments = QStringList("'x'");
        }
    }
}

}  // namespace

class WherePanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the panel

    void mustHaveAParent() {
        const QString refusal = "Invalide parent for conditions panel";
        QCOMPARE(orvtest::errorOf([] { TorvQDWherePanel panel(nullptr); }), refusal);
        QWidget noSheet;
        QCOMPARE(orvtest::errorOf([&] { TorvQDWherePanel panel(&noSheet); }), refusal);
    }

    void emptyPanelWritesNineBlanks() {
        const HostedBuilder on;
        QCOMPARE(on.builder.WherePanel->GetSQLStatment(), blanks);
        QCOMPARE(on.builder.HavingPanel->GetSQLStatment(), blanks);
        QCOMPARE(where(on), "All()");
    }

    void panelThatIsNotActiveHasNoRoot() {
        TorvTabSheet sheet;
        TorvQDWherePanel panel(&sheet);
        QCOMPARE(panel.rootRow(), nullptr);
        QCOMPARE(panel.GetSQLStatment(), blanks);
        panel.ClearContents();
        panel.ChangeAlias("A", "B");
    }

    void activatingTwiceKeepsTheRows() {
        HostedBuilder on;
        TorvQDWherePanel* panel = on.builder.WherePanel;
        TorvQDWhereRow* root = panel->rootRow();
        root->SubRows->AddRow();
        panel->Activate();
        QCOMPARE(panel->rootRow(), root);
        QCOMPARE(root->SubRows->GetCount(), 1);
        QVERIFY(root->Expanded);
    }

    void clearingResetsTheRoot() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where not (t.a = 1 or t.b = 2)");
        TorvQDWherePanel* panel = on.builder.WherePanel;
        QCOMPARE(where(on), "Not all(T.A =[1]; T.B =[2])");
        panel->setCurrentElement(panel->rootRow()->SubRows->Row(0)->Controls[2].get());
        panel->setActiveElement(panel->CurrentElement());
        panel->rootRow()->SetExpanded(false);
        on.changes = 0;
        panel->ClearContents();
        QCOMPARE(where(on), "All()");
        QVERIFY(panel->rootRow()->Expanded);
        QCOMPARE(panel->CurrentElement(), nullptr);
        QCOMPARE(panel->ActiveElement(), panel->rootRow()->Controls[1].get());
        QCOMPARE(on.changes, 1);
        panel->ClearContents();
        QCOMPARE(on.changes, 1);
    }

    void groupOperatorsAreFoundIgnoringCase() {
        const HostedBuilder on;
        const TorvQDWherePanel* panel = on.builder.WherePanel;
        QCOMPARE(panel->FindGroupFunc("nOT aLL")->Caption, "Not all");
        QCOMPARE(panel->FindGroupFunc("None")->Prefix, "not");
        QCOMPARE(panel->FindGroupFunc("Some"), nullptr);
        QCOMPARE(panel->FindGroupFunc(""), nullptr);
    }

    // --- loading

    void statementsLoadTheirConditions_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("rows");
        const auto row = [](const char* condition, const char* rows) {
            QTest::newRow(condition) << QString::fromLatin1(condition) << QString::fromLatin1(rows);
        };
        row("t.a > -5", "All(T.A >[-5])");
        row("t.a>-5", "All(T.A >[-5])");
        row("a + 1 > 5", "All(A + 1 >[5])");
        row("(a + b) * 2 > 5 and c = 1", "All((A + B) * 2 >[5]; C =[1])");
        row("lower(a) = 'x'", "All(LOWER(A) =['x'])");
        row("'x' = lower(a)", "All('x' =[LOWER(A)])");
        row("left(c, 1) = 'x' and b = 1", "All(LEFT(C, 1) =['x']; B =[1])");
        row("a between -1 and b + 5 and c = 2", "All(A BETWEEN[-1][B + 5]; C =[2])");
        row("a like 'x%' escape '!'", "All(A LIKE['x%' ESCAPE '!'])");
        row("a in (1, 2)", "All(A IN[1, 2])");
        row("a in ('a)', 'b(')", "All(A IN['a)', 'b('])");
        row("a not in (select y from z where w = 1)", "All(A NOT IN[SELECT Y FROM Z WHERE W = 1])");
        row("a = all (select b from c)", "All(A =[ALL (SELECT B FROM C)])");
        row("a = b = c", "All(A =[B = C])");
        row("not exists (select b from c where c.x = a.x) and d = 1",
            "All(None(EXISTS (SELECT B FROM C WHERE C.X = A.X)); D =[1])");
        row("d > date '1995-01-01' + interval '1' day",
            "All(D >[DATE '1995-01-01' + INTERVAL '1' DAY])");
        row("a containing 'x'", "All(A CONTAINING 'x')");
        row("(a or b) is true", "All((A OR B) IS TRUE)");
        row("a is null or t.b is not null", "Any(A IS NULL[]; T.B IS NOT NULL[])");
        row("a != 5", "All(A <>[5])");
        row("(a, b) = (1, 2)", "All((A, B) =[(1, 2)])");
        row("extract(year from a) = 1995", "All(EXTRACT(YEAR FROM A) =[1995])");
        row("(a is distinct from b)", "All(A IS DISTINCT FROM B)");
        row("not (t.a = 1)", "None(T.A =[1])");
        row("a = 1 and b = 2 or c = 3", "Any(All(A =[1]; B =[2]); C =[3])");
        row("a = :p and b = 'it''s ) and'", "All(A =[:p]; B =['it''s ) and'])");
        row("a = 'x'\r\n  and /* why */ b = 2 -- so", "All(A =['x']; B =[2])");
    }
    void statementsLoadTheirConditions() {
        QFETCH(QString, condition);
        QFETCH(QString, rows);
        for (const bool keep : {false, true}) {
            HostedBuilder on(keep);
            on.builder.LoadSQL("select t.a from t where " + condition + " order by t.a");
            QCOMPARE(where(on), rows);
            QCOMPARE(on.findings(), QStringList());
            const QString text = on.builder.GetSQLStatment();
            HostedBuilder other(keep);
            other.builder.LoadSQL(text);
            QCOMPARE(where(other), rows);
            QCOMPARE(other.findings(), QStringList());
            QCOMPARE(other.builder.GetSQLStatment(), text);
        }
    }

    void textOfTheClauseIsIndented() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a = 5 and t.b = 6");
        QCOMPARE(on.builder.WherePanel->GetSQLStatment(),
                 "\r\n   (\r\n      (T.A = 5)\r\n   and \r\n      (T.B = 6)\r\n   )");
    }

    void havingUsesTheAggregates_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("rows");
        const auto row = [](const char* condition, const char* rows) {
            QTest::newRow(condition) << QString::fromLatin1(condition) << QString::fromLatin1(rows);
        };
        row("sum(t.a) > avg(t.b)", "All(SUM:T.A >[AVG:T.B])");
        row("count(*) > 5", "All(COUNT:* >[5])");
        row("count(distinct t.a) > 1", "All(COUNT:DISTINCT T.A >[1])");
        row("sum(t.a*t.b) > 1", "All(SUM:T.A*T.B >[1])");
        row("not (count(*) > 5 or sum(t.a) + 1 < 3)", "Not all(COUNT:* >[5]; SUM(T.A) + 1 <[3])");
        row("5 < count(*)", "All(5 <[COUNT:*])");
        row("max(t.a) between 1 and 2", "All(MAX:T.A BETWEEN[1][2])");
        row("lower(t.c) = 'x'", "All(LOWER(T.C) =['x'])");
    }
    void havingUsesTheAggregates() {
        QFETCH(QString, condition);
        QFETCH(QString, rows);
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.c, count(t.b) n from t group by t.c having " + condition);
        QCOMPARE(having(on), rows);
        QCOMPARE(where(on), "All()");
        QCOMPARE(on.findings(), QStringList());
        const QString text = on.builder.GetSQLStatment();
        HostedBuilder other(true);
        other.builder.LoadSQL(text);
        QCOMPARE(having(other), rows);
        QCOMPARE(other.findings(), QStringList());
    }

    void aggregateInWhereStaysText() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a = (select max(b) from u) and sum(t.a) > 1");
        QCOMPARE(where(on), "All(T.A =[(SELECT MAX(B) FROM U)]; SUM(T.A) >[1])");
    }

    void loadingReplacesTheRows() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where not (t.a = 1)");
        on.builder.LoadSQL("select t.a from t where t.b = 2");
        QCOMPARE(where(on), "All(T.B =[2])");
        TorvQDWherePanel* panel = on.builder.WherePanel;
        QCOMPARE(panel->ActiveElement(), panel->rootRow()->Controls[1].get());
        QCOMPARE(panel->CurrentElement(), nullptr);
    }

    void loadedGroupsAreExpanded() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where (t.a = 1 or t.b = 2) and not t.c = 3");
        const TorvQDWhereRow* root = on.builder.WherePanel->rootRow();
        QVERIFY(root->SubRows->Row(0)->Expanded);
        QVERIFY(root->SubRows->Row(1)->Expanded);
        QVERIFY(!root->SubRows->Row(0)->SubRows->Row(0)->Expanded);
    }

    void nodeOfAnotherClauseLeavesTheRows() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a = 1");
        const TorvQDParser root(QStringLiteral("SELECT A FROM T WHERE B = 2 ORDER BY A"));
        for (const TLocationKinds location : {inFrom, inOrderBy}) {
            QCOMPARE(
                orvtest::errorOf([&] { on.builder.WherePanel->LoadSQL(*root.Clause(location)); }),
                "There is not valid object for extract selection list");
        }
        QCOMPARE(where(on), "All(T.A =[1])");
    }

    // A node alone has no source: its text is put together from the tree.
    void nodeIsLoadedOutsideAStatementToo_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("rows");
        const auto row = [](const char* condition, const char* rows) {
            QTest::newRow(condition) << QString::fromLatin1(condition) << QString::fromLatin1(rows);
        };
        row("B = 2 AND NOT (C > 3 OR D IS NULL)", "All(B =[2]; Not all(C >[3]; D IS NULL[]))");
        row("B IN (1, 2) AND C BETWEEN 1 AND 5 AND D NOT LIKE 'x'",
            "All(B IN[1, 2]; C BETWEEN[1][5]; D NOT LIKE['x'])");
        row("LOWER(B) = 'x' AND MAX(C) > 5", "All(LOWER (B) =['x']; MAX(C) >[5])");
        row("B > -5", "All(B >[- 5])");
    }
    void nodeIsLoadedOutsideAStatementToo() {
        QFETCH(QString, condition);
        QFETCH(QString, rows);
        HostedBuilder on;
        const TorvQDParser root("SELECT A FROM T WHERE " + condition);
        on.changes = 0;
        on.builder.WherePanel->LoadSQL(*root.Clause(inWhere));
        QCOMPARE(where(on), rows);
        QCOMPARE(on.changes, 1);
        TorvTabSheet sheet;
        TorvQDWherePanel alone(&sheet);
        alone.Operators = on.builder.Operators.get();
        alone.GroupOpers = &on.builder.GroupOpers;
        alone.Activate();
        alone.LoadSQL(*root.Clause(inWhere));
        QCOMPARE(orvtest::rowText(*alone.rootRow()), rows);
    }

    void bothPanelsTakeBothClauses() {
        HostedBuilder on;
        const TorvQDParser root(QStringLiteral("SELECT A FROM T HAVING COUNT(B) = 2"));
        on.builder.WherePanel->LoadSQL(*root.Clause(inHaving));
        QCOMPARE(where(on), "All(COUNT(B) =[2])");
    }

    // --- findings

    void changedGroupingIsAFindingUnlessMeaningIsKept() {
        const QString text = "select t.a from t where t.a = 1 or t.b = 2 and t.c = 3";
        HostedBuilder plain;
        plain.builder.LoadSQL(text);
        QCOMPARE(where(plain), "All(Any(T.A =[1]; T.B =[2]); T.C =[3])");
        QCOMPARE(plain.findings(), QStringList("and"));
        QCOMPARE(plain.builder.LoadReport().front().start, int(text.indexOf(" and ")) + 1);
        HostedBuilder kept(true);
        kept.builder.LoadSQL(text);
        QCOMPARE(where(kept), "Any(T.A =[1]; All(T.B =[2]; T.C =[3]))");
        QCOMPARE(kept.findings(), QStringList());
    }

    void eachLevelReportsItsChangedGrouping() {
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.a from t where (a = 1 or b = 2 AND c = 3) and (d = 1 or e = 2 And a = 3)");
        QCOMPARE(on.findings(), QStringList({"AND", "And"}));
    }

    void missingConditionIsAFinding_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<QStringList>("findings");
        QTest::newRow("between connectives")
            << "a = 1 and or b = 2"
            << "Any(All(A =[1]; All()); B =[2])" << QStringList("or");
        QTest::newRow("at the start") << "and a = 1"
                                      << "All(All(); A =[1])" << QStringList("and");
        QTest::newRow("inside brackets")
            << "a = 1 and (b = 2 or ) and c = 3"
            << "All(A =[1]; Any(B =[2]; All()); C =[3])" << QStringList("or");
        QTest::newRow("nothing at all") << ""
                                        << "All()" << QStringList("where");
    }
    void missingConditionIsAFinding() {
        QFETCH(QString, condition);
        QFETCH(QString, rows);
        QFETCH(QStringList, findings);
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where " + condition);
        QCOMPARE(where(on), rows);
        QCOMPARE(on.findings(), findings);
    }

    // The parser takes the FROM for the clause: no part of such a condition is loaded.
    void conditionThatIsCutOffIsAFindingAsAWhole() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a = 1 and t.b > from t");
        QCOMPARE(where(on), "All(T.A =[1])");
        QVERIFY(on.findings().join(u' ').startsWith("and t.b > from t"));
        on.builder.LoadSQL("select t.a from t where t.b > from t");
        QCOMPARE(where(on), "All()");
        QVERIFY(on.findings().join(u' ').startsWith("t.b > from t"));
    }

    void clauseBehindTheConditionCutsNothingOff() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a = 1 from u");
        QCOMPARE(where(on), "All(T.A =[1])");
        QCOMPARE(on.findings(), QStringList("from u"));
    }

    // --- operators of a host

    void hostOperatorsComeBack_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("relate");
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("postfix");
        QTest::addColumn<QStringList>("arguments");
        const auto row = [](const char* name, const char* relate, const char* prefix,
                            const char* postfix, const QStringList& arguments) {
            QTest::addRow("%s %s %s %s", name, relate, prefix, postfix)
                << QString::fromLatin1(name) << QString::fromLatin1(relate)
                << QString::fromLatin1(prefix) << QString::fromLatin1(postfix) << arguments;
        };
        row("~*", "", "", "", {"'x'"});
        row("[=]", "", "", "", {"5"});
        row("IS SIMILAR TO", "", "", "", {"'x'"});
        row("NEAR", " , ", "", "", {"1", "2"});
        row("NEAR", ",", "(", ")", {"1", "B + 2"});
        row("WITHIN", " TO ", "", "", {"1", "2", "3"});
        row("WITHIN", " TO ", "<", ">", {"1", "2"});
        row("AMONG", " and ", "", "", {"1", "2", "3"});
        row("EITHER", " or ", "", "", {"1", "2"});
        row("LIKE WORD", "", "'% ", " %'", {"x"});
        row("IS", "", "MISSING", "", {});
        row("EXCLUDES", "", "ANY (", ")", {"SELECT A FROM U"});
    }
    void hostOperatorsComeBack() {
        QFETCH(QString, name);
        QFETCH(QString, relate);
        QFETCH(QString, prefix);
        QFETCH(QString, postfix);
        QFETCH(QStringList, arguments);
        const TorvQDOperator entry{name, name, relate, postfix, prefix, int(arguments.size())};
        for (const bool keep : {false, true}) {
            HostedBuilder on(keep);
            HostedBuilder other(keep);
            on.builder.Operators->Add(entry);
            other.builder.Operators->Add(entry);
            on.builder.LoadSQL("select t.a from t where t.b = 1");
            TorvQDWhereRow* row = on.builder.WherePanel->rootRow()->SubRows->AddRow();
            row->FieldName = "T.C";
            row->setOperator(on.builder.Operators->FindName(name));
            row->Arguments = arguments;
            const QString text = on.builder.GetSQLStatment();
            other.builder.LoadSQL(text);
            QCOMPARE(where(other), where(on));
            QCOMPARE(other.findings(), QStringList());
            QCOMPARE(other.builder.GetSQLStatment(), text);
        }
    }

    void conditionsOfAUserComeBack_data() {
        QTest::addColumn<bool>("keep");
        QTest::newRow("meaning not kept") << false;
        QTest::newRow("meaning kept") << true;
    }
    void conditionsOfAUserComeBack() {
        QFETCH(bool, keep);
        HostedBuilder on(keep);
        on.builder.LoadSQL("select t.a from t");
        HostedBuilder other(keep);
        TorvQDWhereRow* root = on.builder.WherePanel->rootRow();
        for (unsigned seed = 0; seed < 120; ++seed) {
            std::mt19937 random(seed);
            on.builder.WherePanel->ClearContents();
            root->SetGroupOper(QStringList({"All", "Any", "None", "Not all"})[int(seed % 4)]);
            fillGroup(root, 3, random);
            const QString text = on.builder.GetSQLStatment();
            other.builder.LoadSQL(text);
            QCOMPARE(other.findings(), QStringList());
            const TorvQDWhereRow* loaded = other.builder.WherePanel->rootRow();
            for (int values = 0; values < 32; ++values) {
                QCOMPARE(orvtest::holds(*loaded, values), orvtest::holds(*root, values));
            }
            if (keep) QCOMPARE(other.builder.GetSQLStatment(), text);
        }
    }

    // A name in square brackets is no name once an operator has one.
    void squareBracketOfAnOperatorIsASign() {
        HostedBuilder on;
        TorvQDOperator entry;
        entry.Name = "[=]";
        on.builder.Operators->Add(entry);
        on.builder.LoadSQL("select t.a from t where t.a [=] 5 and t.b[=]-5");
        QCOMPARE(where(on), "All(T.A [=][5]; T.B [=][-5])");
        QCOMPARE(on.findings(), QStringList());
    }

    // --- renaming

    void renamingATableRenamesItInConditions() {
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.c, count(t.a) n from t where t.a + t.b > pt.a and t.c between t.d and 't.e' "
            "and lower(t.c) = (select t.x from t) group by t.c having max(t.a) > min(t.b)");
        on.builder.WorkArea->renameTable(on.table("T"), "N");
        QCOMPARE(where(on),
                 "All(N.A + N.B >[PT.A]; N.C BETWEEN[N.D]['t.e']; "
                 "LOWER(N.C) =[(SELECT T.X FROM T)])");
        QCOMPARE(having(on), "All(MAX:N.A >[MIN:N.B])");
    }

    // --- depth and size

    void tooDeepConditionLeavesEverything() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a = 1");
        const QByteArray before = orvtest::visibleState(on.builder);
        const TorvQDParser root("SELECT A FROM T WHERE " + alternating(2 * orv::deepestCondition));
        QCOMPARE(orvtest::errorOf([&] { on.builder.WherePanel->LoadSQL(*root.Clause(inWhere)); }),
                 "Conditions nest deeper than 500 levels");
        QCOMPARE(orvtest::visibleState(on.builder), before);
    }

    void depthIsCheckedByTheMode_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<bool>("keep");
        QTest::addColumn<bool>("loads");
        const int bound = orv::deepestCondition;
        QTest::newRow("plain") << "A = 1 AND B = 2" << false << true;
        QTest::newRow("alternating, as many as the bound") << alternating(bound) << false << true;
        QTest::newRow("alternating, one more") << alternating(bound + 1) << false << false;
        QTest::newRow("alternating, meaning kept") << alternating(bound + 1) << true << true;
        QTest::newRow("nested, as many as the bound") << nested(bound) << true << true;
        QTest::newRow("nested, one more") << nested(bound + 1) << true << false;
        QTest::newRow("brackets only")
            << QString(50'000, u'(') + "A = 1" + QString(50'000, u')') << false << true;
        QTest::newRow("sub-selects")
            << "A IN (SELECT B FROM C WHERE " + QString("D IN (1 AND ").repeated(3000) + "1" +
                   QString(")").repeated(3000) + ")"
            << false << true;
        QTest::newRow("many BETWEEN")
            << "A = 1" + QString(" OR B BETWEEN 1 AND 2").repeated(3000) << false << true;
    }
    void depthIsCheckedByTheMode() {
        QFETCH(QString, condition);
        QFETCH(bool, keep);
        QFETCH(bool, loads);
        const HostedBuilder on;
        const QString text = "SELECT A FROM T WHERE " + condition;
        const orv::LoadLedger ledger(text, orv::NormaliseSQL(text));
        const TorvQDParser root(text);
        const QString error = orvtest::errorOf(
            [&] { on.builder.WherePanel->checkLoadable(*root.Clause(inWhere), ledger, keep); });
        QCOMPARE(error, loads ? "(no error)" : "Conditions nest deeper than 500 levels");
    }

    // Clauses of other dialects are no part of the last operand.
    void textBehindTheConditionIsAFinding_data() {
        QTest::addColumn<QString>("behind");
        for (const char* behind :
             {"union", "minus select u.x from u", "for read only", "with ur", "option (recompile)",
              "lock in share mode", "rows 5", "connect by t.b = t.c"}) {
            QTest::newRow(behind) << QString::fromLatin1(behind);
        }
    }
    void textBehindTheConditionIsAFinding() {
        QFETCH(QString, behind);
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t where t.b = 'x' or t.a = 1 " + behind);
        QCOMPARE(where(on), "Any(T.B =['x']; T.A =[1])");
        QVERIFY(on.findings().join(u' ').startsWith(behind));
    }

    void namesLikeThoseOfOtherClausesStay() {
        HostedBuilder on(true);
        on.host.add("V", {"ROWS", "PLAN", "LOCK"});
        on.builder.LoadSQL("select v.rows from v where rows = 1 and plan > lock and (lock = plan)");
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(where(on), "All(ROWS =[1]; PLAN >[LOCK]; LOCK =[PLAN])");
    }

    // Rows go over to the operator of their name, or to the first one; operands stay.
    void operatorsAreReplacedUnderTheRows() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select t.a from t where t.a like 'x' and t.b > 1 and t.c between 1 and 2 and "
            "exists (select 1 from u)");
        on.changes = 0;
        TOperatorList operators;
        orv::fillOperators(operators);
        for (int index = operators.Count() - 1; index >= 0; --index) {
            if (operators.Items(index)->Name == u"LIKE") operators.Delete(index);
        }
        on.builder.setOperators(operators);
        QCOMPARE(on.changes, 1);
        const TorvQDWhereRows& rows = *on.builder.WherePanel->rootRow()->SubRows;
        QCOMPARE(rows.Row(0)->Operator, on.builder.Operators->Items(0));
        QCOMPARE(rows.Row(0)->Arguments, QStringList("'x'"));
        QCOMPARE(rows.Row(1)->Operator, on.builder.Operators->FindName(">"));
        QCOMPARE(rows.Row(2)->Operator, on.builder.Operators->FindName("BETWEEN"));
        QCOMPARE(rows.Row(2)->Arguments, QStringList({"1", "2"}));
        QVERIFY(rows.Row(3)->isExpression());
        on.builder.RestoreState(on.builder.SaveState());
        on.builder.setOperatorsList(on.builder.OperatorsList());
        QCOMPARE(on.changes, 3);
    }

    void operatorsAreEditedUnderTheRows() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t where t.a like 'x' and t.b between 1 and 2");
        const TorvQDWhereRows& rows = *on.builder.WherePanel->rootRow()->SubRows;
        const QString text = on.builder.GetSQLStatment();
        TOperatorList& operators = *on.builder.Operators;
        // Where there is no operator any more the rows keep theirs; of a list without theirs they
        // take the first one.
        const QStringList entries = operators.toStrings();
        operators.Clear();
        QCOMPARE(on.builder.GetSQLStatment(), text);
        operators.fromStrings(entries);
        QCOMPARE(on.builder.GetSQLStatment(), text);
        QCOMPARE(rows.Row(1)->Operator, operators.FindName("BETWEEN"));
        on.builder.LoadSQL("select t.a from t where t.a <> 'x'");
        on.changes = 0;
        operators.Delete(1);
        QCOMPARE(on.changes, 1);
        QCOMPARE(rows.Row(0)->Operator, operators.FindName("="));
    }

    void deepestConditionIsLoadedWrittenSavedAndCleared() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t where " + nested(orv::deepestCondition));
        QCOMPARE(on.findings(), QStringList());
        const QString line = on.builder.WherePanel->rootRow()->GetSQLCondition(false);
        QCOMPARE(line.count("(C = 3)"), orv::deepestCondition);
        QVERIFY(on.builder.GetSQLStatment().contains("(A = 1)"));
        HostedBuilder other(true);
        other.builder.RestoreState(on.builder.SaveState());
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
        on.builder.WorkArea->renameTable(on.table("T"), "N");
        on.builder.Clear();
        QCOMPARE(where(on), "All()");
    }

    void manyConditionsInOneGroup() {
        HostedBuilder on;
        constexpr int count = orvtest::fewerIfSanitized(10'000, 5);
        QString condition = "t.a = 0";
        for (int index = 1; index < count; ++index) {
            condition += " and t.a between 1 and " + QString::number(index);
        }
        on.builder.LoadSQL("select t.a from t where " + condition);
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.WherePanel->rootRow()->SubRows->GetCount(), count);
        const QString text = on.builder.GetSQLStatment();
        on.builder.LoadSQL(text + " ");
        QCOMPARE(on.builder.GetSQLStatment(), text);
    }

private:
    // A OR B AND C OR ...: each change of the connective is a group more.
    static QString alternating(int changes) {
        QString text = "A = 1 OR B = 2";
        for (int index = 0; index < changes; ++index)
            text += index % 2 ? " OR D = 4" : " AND C = 3";
        return text;
    }
    static QString nested(int depth) {
        return QString("(").repeated(depth) + "A = 1" + " AND A = 1" +
               QString(") AND C = 3").repeated(depth);
    }
};

QTEST_MAIN(WherePanelTest)
#include "tst_wherepanel.moc"
