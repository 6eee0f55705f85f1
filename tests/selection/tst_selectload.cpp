// SPDX-License-Identifier: MIT
// Select lists and GROUP BY lists loaded into the grid.
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"

using orvtest::HostedBuilder;

class SelectLoadTest : public QObject {
    Q_OBJECT

    // Numbers of names come in this order, so that texts can be compared.
    static void countNames(HostedBuilder& on) {
        on.grid()->randomBelow100 = [next = 0]() mutable { return next++; };
    }

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- columns

    void columns_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("columns");  // "name|aggregate|source"
        const auto row = [](const char* list, const QStringList& columns) {
            QTest::newRow(list) << QString::fromLatin1(list) << columns;
        };
        row("a", {"A||A"});
        row("t.a", {"A||T.A"});
        row("t.a x", {"X||T.A"});
        row("t.a as x", {"X||T.A"});
        row("t.a   as   x", {"X||T.A"});
        row("t.a\tx", {"X||T.A"});
        row("t.a \"my x\"", {"my x||T.A"});
        row("t.a as \"my x\", t.b", {"my x||T.A", "B||T.B"});
        row("t.a a", {"A||T.A"});
        row("t.a,t.b,t.c", {"A||T.A", "B||T.B", "C||T.C"});
        row("5", {"5||5"});
        row("'x'", {"'x'||'x'"});
        row("null n", {"N||NULL"});
        row("-5", {"FIELD_NAME0||-5"});
        row("t.a+t.b", {"A||T.A+T.B"});
        row("t.a + t.b z", {"Z||T.A+T.B"});
        row("t.a + t.b - t.c", {"A||T.A+T.B-T.C"});
        row("t.a+1", {"FIELD_NAME0||T.A+1"});
        row("t.a || ' ' || t.b as name", {"NAME||T.A || ' ' || T.B"});
        row("(t.a + t.b) * 2", {"FIELD_NAME0||(T.A + T.B) * 2"});
        row("(t.a)", {"FIELD_NAME0||(T.A)"});
        row("(select max(x) from u) m", {"M||(SELECT MAX(X) FROM U)"});
        row("sum(t.a)", {"SUM_OF_A|SUM|T.A"});
        row("sum( t.a ) s", {"S|SUM|T.A"});
        row("count(*)", {"COUNT_OF_*|COUNT|*"});
        row("count(*) as n", {"N|COUNT|*"});
        row("sum(a*b) s", {"S|SUM|A*B"});
        row("count(distinct c)", {"COUNT_OF_DISTINCT C|COUNT|DISTINCT C"});
        row("lower(d) as l", {"L||LOWER(D)"});
        row("lower(d)", {"FIELD_NAME0||LOWER(D)"});
        row("upper(t.a) x, lower(t.b)", {"X||UPPER(T.A)", "FIELD_NAME0||LOWER(T.B)"});
        row("coalesce(t.a, 0) c", {"C||COALESCE(T.A, 0)"});
        row("case when e = 1 then 2 else 3 end k", {"K||CASE WHEN E = 1 THEN 2 ELSE 3 END"});
        row("case when e = 1 then 2 else 3 end",
            {"FIELD_NAME0||CASE WHEN E = 1 THEN 2 ELSE 3 END"});
        row("sum(a) + 1", {"FIELD_NAME0||SUM(A) + 1"});
        row("sum(a) / count(*) as mean", {"MEAN||SUM(A) / COUNT(*)"});
        row("cast(t.a as integer) i", {"I||CAST(T.A AS INTEGER)"});
        row("left(t.c, 1) l", {"L||LEFT(T.C, 1)"});
        row("sum(t.a) over (partition by t.b) w", {"W||SUM(T.A) OVER (PARTITION BY T.B)"});
        row("t.a is null as missing", {"MISSING||T.A IS NULL"});
        row(":p x", {"X||:p"});
    }
    void columns() {
        QFETCH(QString, list);
        QFETCH(QStringList, columns);
        HostedBuilder on(true);
        countNames(on);
        on.builder.LoadSQL("select " + list + " from t");
        QCOMPARE(on.columns(), columns);
        QCOMPARE(on.findings(), QStringList());
        verifyBuilder(on.builder);
    }

    void columnsOfTheTogetherExample() {
        HostedBuilder on(true);
        countNames(on);
        on.builder.LoadSQL(
            "SELECT SUM(A*B) S, COUNT(DISTINCT C), LOWER(D) AS L, CASE WHEN E = 1 THEN 2 ELSE 3 "
            "END K, SUM(A) + 1 FROM T GROUP BY LOWER(D), CASE WHEN E = 1 THEN 2 ELSE 3 END");
        QCOMPARE(on.columns(),
                 QStringList({"S|SUM|A*B", "COUNT_OF_DISTINCT C|COUNT|DISTINCT C", "L||LOWER(D)",
                              "K||CASE WHEN E = 1 THEN 2 ELSE 3 END", "FIELD_NAME0||SUM(A) + 1"}));
        QCOMPARE(on.findings(), QStringList());
    }

    void quotedFields() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select m.\"my field\", m.plain, m.\"a.b\" x, m.\"q\"\"q\" from "
            "\"my table\" m");
        QCOMPARE(on.columns(), QStringList({"\"my field\"||M.\"my field\"", "PLAIN||M.PLAIN",
                                            "X||M.\"a.b\"", "\"q\"\"q\"||M.\"q\"\"q\""}));
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.SelectedFields().size(), 4);
        verifyBuilder(on.builder);
    }

    // Where the exact name finds nothing, quotes and case do not count.
    void looseNamesBecomeThoseOfTheDiagram() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select \"T\".a, t.\"b\" from t");
        QCOMPARE(on.columns(), QStringList({"A||T.A", "B||T.B"}));
        verifyBuilder(on.builder);
    }

    void loadedFieldsAreTicked() {
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.b, a.x, lower(t.c) l, y, count(t.d) n from t, u a "
            "group by t.b, a.x, lower(t.c), y");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList({"T.B", "A.X", "Y"}));
        verifyBuilder(on.builder);
    }

    void fieldThatNobodyHasIsAFinding_data() {
        QTest::addColumn<QString>("column");
        QTest::newRow("unknown field") << "t.z";
        QTest::newRow("unknown table") << "x.a";
        QTest::newRow("unknown bare name") << "z";
        QTest::newRow("several have it") << "a";
        QTest::newRow("with an alias") << "t.z as a1";
        QTest::newRow("star of an unknown table") << "x.*";
        QTest::newRow("aggregate without an argument") << "sum() s";
        QTest::newRow("another dialect") << "top 5 t.a";
        QTest::newRow("ends with an operator word") << "t.a and";
    }
    void fieldThatNobodyHasIsAFinding() {
        QFETCH(QString, column);
        HostedBuilder on;
        on.builder.LoadSQL("select t.b, " + column + ", u.x from t, u");
        QCOMPARE(on.columns(), QStringList({"B||T.B", "X||U.X"}));
        QCOMPARE(on.findings(), QStringList(column));
        verifyBuilder(on.builder);
    }

    void statementWithoutColumnsIsAFinding_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << "select from t";
        QTest::newRow("commas") << "select , , from t";
        QTest::newRow("DISTINCT and a comma") << "select distinct, from t";
    }
    void statementWithoutColumnsIsAFinding() {
        QFETCH(QString, text);
        HostedBuilder on;
        on.builder.LoadSQL(text);
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.findings(), QStringList("select"));
    }

    // --- stars

    void starTicksEveryRowOfEveryBox() {
        HostedBuilder on;
        on.builder.LoadSQL("select * from u, employee e");
        QCOMPARE(on.columns(), QStringList({"A||U.A", "X||U.X", "Y||U.Y", "EMP_NO||E.EMP_NO",
                                            "FIRST_NAME||E.FIRST_NAME", "SALARY||E.SALARY",
                                            "DEPT_NO||E.DEPT_NO"}));
        QCOMPARE(on.table("U")->FieldState, 2);
        QCOMPARE(on.table("E")->FieldState, 2);
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void starOfOneTable_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("sources");
        const QStringList all = {"V.A", "V.X", "V.Y"};
        QTest::newRow("alone") << "v.*" << all;
        QTest::newRow("quoted") << "\"V\".*" << all;
        QTest::newRow("in front") << "v.*, t.b" << (all + QStringList("T.B"));
        QTest::newRow("behind") << "t.b, v.*" << (QStringList("T.B") + all);
        QTest::newRow("behind one of its own") << "v.x, v.*" << (QStringList("V.X") + all);
        QTest::newRow("plain star behind a column")
            << "t.b, *"
            << (QStringList("T.B") + QStringList({"T.A", "T.B", "T.C", "T.D", "T.E"}) + all);
    }
    void starOfOneTable() {
        QFETCH(QString, list);
        QFETCH(QStringList, sources);
        HostedBuilder on;
        on.builder.LoadSQL("select " + list + " from t, u v");
        QStringList loaded;
        for (const orv::OutputColumn& column : on.grid()->columns()) loaded << column.source;
        QCOMPARE(loaded, sources);
        QCOMPARE(on.findings(), QStringList());
        verifyBuilder(on.builder);
    }

    void starWithoutTablesIsAFinding() {
        HostedBuilder on;
        on.builder.LoadSQL("select * from nowhere");
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.findings(), QStringList({"*", "nowhere"}));
    }

    void countOfAllTicksNothing() {
        HostedBuilder on;
        on.builder.LoadSQL("select count(*) n from t");
        QCOMPARE(on.columns(), QStringList("N|COUNT|*"));
        QVERIFY(on.builder.SelectedFields().isEmpty());
        QCOMPARE(on.table("T")->FieldState, 0);
        verifyBuilder(on.builder);
    }

    // --- DISTINCT

    void distinct_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("distinct");
        QTest::newRow("distinct") << "select distinct t.a from t" << -1;
        QTest::newRow("distinct star") << "select distinct * from t" << -1;
        QTest::newRow("all") << "select all t.a from t" << 0;
        QTest::newRow("plain") << "select t.a from t" << 0;
    }
    void distinct() {
        QFETCH(QString, text);
        QFETCH(int, distinct);
        for (const int before : {0, -1}) {
            HostedBuilder on;
            on.builder.SelectPanel->SetDistinct(before);
            on.builder.LoadSQL(text);
            QCOMPARE(on.builder.SelectPanel->GetDistinct(), distinct);
            QCOMPARE(on.findings(), QStringList());
        }
    }

    void plainStatementSwitchesDistinctOffAgain() {
        HostedBuilder on;
        on.builder.LoadSQL("select distinct t.a from t");
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), 0);
    }

    void gridAloneSwitchesDistinctOffToo() {
        HostedBuilder on;
        on.addTable("T");
        on.builder.SelectPanel->SetDistinct(-1);
        on.grid()->LoadSQL(TorvQDParser(QStringLiteral("SELECT T.A FROM T")));
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), 0);
        QCOMPARE(on.columns(), QStringList("A||T.A"));
        verifyBuilder(on.builder);
    }

    void distinctOnIsAFinding() {
        HostedBuilder on;
        on.builder.LoadSQL("select distinct on (t.a) t.b, t.c from t");
        QCOMPARE(on.columns(), QStringList("C||T.C"));
        QCOMPARE(on.findings().size(), 1);
        QVERIFY(on.findings().first().startsWith("distinct on"));
    }

    // --- output names

    void namesOfExpressionsDifferAndAreTheSameEachTime() {
        QStringList names[2];
        for (QStringList& list : names) {
            HostedBuilder on;
            QStringList columns;
            for (int index = 0; index < 120; ++index) columns << QString("t.a * %1").arg(index);
            on.builder.LoadSQL("select " + columns.join(", ") + " from t");
            for (const orv::OutputColumn& column : on.grid()->columns()) list << column.name;
            QCOMPARE(list.size(), 120);
            QCOMPARE(QSet<QString>(list.begin(), list.end()).size(), 120);
            for (const QString& name : list) QVERIFY(name.startsWith("FIELD_NAME"));
        }
        QCOMPARE(names[0], names[1]);
    }

    void freshNameAvoidsNamesThatAreThere() {
        HostedBuilder on;
        countNames(on);
        on.builder.LoadSQL("select t.a field_name0, t.b * 2, t.c * 2 from t");
        QCOMPARE(on.columns(),
                 QStringList({"FIELD_NAME0||T.A", "FIELD_NAME1||T.B * 2", "FIELD_NAME2||T.C * 2"}));
    }

    void exhaustedNumbersCountOnFromAHundred() {
        HostedBuilder on;
        on.grid()->randomBelow100 = [] { return 7; };
        on.builder.LoadSQL("select t.a * 1, t.a * 2, t.a * 3 from t");
        QCOMPARE(on.columns(), QStringList({"FIELD_NAME7||T.A * 1", "FIELD_NAME100||T.A * 2",
                                            "FIELD_NAME101||T.A * 3"}));
    }

    void invalidNameIsAFindingUnlessMeaningIsKept() {
        HostedBuilder plain;
        plain.builder.LoadSQL("select count(*) from t");
        QCOMPARE(plain.columns(), QStringList("COUNT_OF_*|COUNT|*"));
        QCOMPARE(plain.findings(), QStringList("count(*)"));
        HostedBuilder kept(true);
        kept.builder.LoadSQL("select count(*) from t");
        QCOMPARE(kept.columns(), QStringList("COUNT_OF_*|COUNT|*"));
        QCOMPARE(kept.findings(), QStringList());
        QVERIFY(
            kept.builder.GetSQLStatment().startsWith("SELECT COUNT( * ) AS \"COUNT_OF_*\"\r\n"));
    }

    void loadingTakesQuotesOffThatWritingPutsBack() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select count(*) as \"COUNT_OF_*\", t.a as \"my a\", t.a \"PLAIN\" "
            "from t group by t.a");
        QStringList names;
        for (const orv::OutputColumn& column : on.grid()->columns()) names << column.name;
        QCOMPARE(names, QStringList({"COUNT_OF_*", "my a", "\"PLAIN\""}));
    }

    void nameOfAnAggregateThatIsNotWrittenIsAFinding() {
        HostedBuilder plain;
        plain.builder.LoadSQL("select sum(t.a) a from t");
        QCOMPARE(plain.findings(), QStringList("sum(t.a) a"));
        HostedBuilder kept(true);
        kept.builder.LoadSQL("select sum(t.a) a from t");
        QCOMPARE(kept.findings(), QStringList());
        QCOMPARE(kept.builder.GetSQLStatment(), "SELECT SUM( T.A ) AS A\r\nFROM T");
    }

    void whatTheHostRaisesWhenToldPasses() {
        HostedBuilder on;
        on.addTable("T");
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [] { throw orv::Error("not now"); });
        QCOMPARE(orvtest::errorOf([&] {
                     on.grid()->LoadSQL(TorvQDParser(QStringLiteral("SELECT T.A FROM T")));
                 }),
                 "not now");
        QCOMPARE(on.columns(), QStringList("A||T.A"));
    }

    // --- GROUP BY

    void groupBy_data() {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("groupBy");
        const auto row = [](const char* name, const char* statement, const char* groupBy) {
            QTest::newRow(name) << QString::fromLatin1(statement) << QString::fromLatin1(groupBy);
        };
        row("field", "select t.a, count(t.b) n from t group by t.a", "T.A");
        row("bare name for qualified", "select t.a, count(t.b) n from t group by a", "T.A");
        row("qualified for bare name", "select a, count(b) n from t group by t.a", "A");
        row("bare names", "select dept_no, count(*) n from employee group by dept_no", "DEPT_NO");
        row("position", "select t.a, count(t.b) n from t group by 1", "T.A");
        row("positions", "select t.a, count(t.b) n, t.c from t group by 1, 3", "T.A, T.C");
        row("text", "select lower(t.a) l, count(t.b) n from t group by lower(t.a)", "LOWER(T.A)");
        row("text in other spacing",
            "select lower(t.a) l, count(t.b) n from t group by LOWER( t.a )", "LOWER(T.A)");
        row("output name", "select lower(t.a) l, count(t.b) n from t group by l", "LOWER(T.A)");
        row("expression", "select t.a * 2 d, count(t.b) n from t group by t.a * 2", "T.A * 2");
        row("aggregate in an expression", "select t.a, sum(t.b) + 1 s from t group by t.a", "T.A");
        row("order of the columns counts", "select t.a, t.b, count(t.c) n from t group by t.b, t.a",
            "T.A, T.B");
        row("all aggregated", "select count(t.a) n from t", "");
    }
    void groupBy() {
        QFETCH(QString, statement);
        QFETCH(QString, groupBy);
        HostedBuilder on;
        on.builder.LoadSQL(statement);
        QCOMPARE(on.grid()->GetSQLStatment().groupBy, groupBy);
        QCOMPARE(on.findings(), QStringList());
        verifyBuilder(on.builder);
    }

    void groupByThatComesOutDifferentIsAFinding_data() {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QStringList>("findings");
        const auto row = [](const char* name, const char* statement, const QStringList& findings) {
            QTest::newRow(name) << QString::fromLatin1(statement) << findings;
        };
        row("no aggregate", "select t.a from t group by t.a", {"group by t.a"});
        row("not selected", "select count(t.b) n from t group by t.a", {"t.a"});
        row("one of two", "select t.a, count(t.b) n from t group by t.a, t.c", {"t.c"});
        row("missing", "select t.a, count(t.b) n from t", {"t.a"});
        row("position out of range", "select t.a, count(t.b) n from t group by t.a, 3", {"3"});
        row("position of an aggregate", "select t.a, count(t.b) n from t group by 1, 2", {"2"});
        row("position over a star", "select u.*, count(t.b) n from t, u group by 1", {"u.*", "1"});
        row("roll-up", "select t.a, count(t.b) n from t group by rollup(t.a)",
            {"t.a", "rollup(t.a)"});
        row("expression that is not grouped", "select t.a + 1 x, count(t.b) n from t",
            {"t.a + 1 x"});
        row("having without a group", "select t.a from t having t.a > 1", {"having t.a > 1"});
    }
    void groupByThatComesOutDifferentIsAFinding() {
        QFETCH(QString, statement);
        QFETCH(QStringList, findings);
        HostedBuilder on;
        on.builder.LoadSQL(statement);
        QCOMPARE(on.findings(), findings);
    }

    void havingBehindAGroupIsHeld() {
        HostedBuilder on;
        const QString text = "select t.a, count(t.b) n from t group by t.a having count(t.b) > 1";
        on.builder.LoadSQL(text);
        QCOMPARE(on.findings(), QStringList());
        QVERIFY(on.builder.GetSQLStatment().contains("\r\nHAVING "));
        QVERIFY(on.builder.GetSQLStatment().contains("(COUNT(T.B) > 1)"));
    }

    // An output name counts only where no field has the name.
    void fieldComesBeforeAnOutputNameInGroupBy() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.b a, t.a b, count(t.c) n from t group by a, b");
        QCOMPARE(on.grid()->GetSQLStatment().groupBy, "T.B, T.A");
        QCOMPARE(on.findings(), QStringList());
    }

    // Grouping twice by one field is grouping by it.
    void twoColumnsOfOneField() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a, t.a a2, count(t.b) n from t group by t.a, t.a");
        QCOMPARE(on.grid()->GetSQLStatment().groupBy, "T.A, T.A");
        QCOMPARE(on.findings(), QStringList());
    }

    void ungroupedExpressionRaisesWhenWritten() {
        HostedBuilder on;
        on.builder.LoadSQL("select count(t.b) n, t.a + 1 x from t");
        QCOMPARE(orvtest::errorOf([&] { (void)on.builder.GetSQLStatment(); }),
                 "There is no agregate function on page \"Selection\" in 2 row");
    }

    void stateThatCannotBeWrittenMayBeReplaced() {
        HostedBuilder on;
        on.builder.LoadSQL("select count(t.b) n, t.a + 1 x from t");
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT T.A\r\nFROM T");
    }

    // A field that is grouped stays writable after it was ticked.
    void unqualifiedSourceIsGroupedAsItStands() {
        HostedBuilder on;
        on.builder.LoadSQL("select dept_no, count(*) n from employee group by dept_no");
        QCOMPARE(on.builder.GetSQLStatment(),
                 "SELECT DEPT_NO,\r\n       COUNT( * ) AS N\r\nFROM EMPLOYEE\r\nGROUP BY DEPT_NO");
    }

    // --- errors

    void nodeMustBeTheStatement() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        const TorvQDParser root(QStringLiteral("SELECT A FROM T"));
        QCOMPARE(orvtest::errorOf([&] { on.grid()->LoadSQL(*root.Clause(inFrom)); }),
                 "There is not valid object for extract selection list");
        QCOMPARE(on.columns(), QStringList("A||T.A"));
    }

    void starOutsideAQueryBuilderRaises() {
        QWidget window;
        TorvQDSelectGrid grid(&window);
        const TorvQDParser root(QStringLiteral("SELECT * FROM T"));
        QCOMPARE(orvtest::errorOf([&] { grid.LoadSQL(root); }),
                 "Fatal error! Could not find parent for sorting page!");
    }

    // A grid works in any window: names are then taken as they stand.
    void gridAloneLoadsColumns() {
        QWidget window;
        TorvQDSelectGrid grid(&window);
        const QStringList aggregates = {"SUM"};
        grid.AgrFuncs = &aggregates;
        QStringList chosen;
        grid.OnFieldChosen = [&](const QString& name) { chosen << name; };
        grid.LoadSQL(TorvQDParser(QStringLiteral("SELECT O.A X, SUM(O.B) FROM T")));
        QCOMPARE(grid.RowCount(), 4);
        QCOMPARE(grid.Cells(0, 1), "X");
        QCOMPARE(grid.Cells(2, 1), "O.A");
        QCOMPARE(grid.Cells(1, 2), "SUM");
        QCOMPARE(chosen, QStringList("O.A"));
    }
};

QTEST_MAIN(SelectLoadTest)
#include "tst_selectload.moc"
