// SPDX-License-Identifier: MIT
// The FROM clause: written in both orders, and loaded into boxes.
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

using orvtest::HostedBuilder;

class FloatPanelSqlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- writing

    void emptyDiagramGivesAnEmptyText() {
        const HostedBuilder on;
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), QString());
    }

    void aliasStandsBehindTheName() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "EMPLOYEE");
        on.builder.WorkArea->renameTable(box, "E");
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "EMPLOYEE E");
    }

    void frontMostBoxComesFirst() {
        HostedBuilder on;
        on.addTable("EMPLOYEE");
        on.addTable("DEPT");
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "DEPT,\r\nEMPLOYEE");
        on.builder.WorkArea->TableToFront(on.table("EMPLOYEE"));
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "EMPLOYEE,\r\nDEPT");
    }

    void keptMeaningWritesInTheOrderOfCreation() {
        HostedBuilder on(true);
        on.addTable("EMPLOYEE");
        on.addTable("DEPT");
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "EMPLOYEE,\r\nDEPT");
        on.changes = 0;
        on.builder.WorkArea->selectObject(on.table("EMPLOYEE"));
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "EMPLOYEE,\r\nDEPT");
        QCOMPARE(on.changes, 0);
    }

    void sameTableTwiceIsToldApart() {
        HostedBuilder on(true);
        on.addTable("EMPLOYEE");
        on.addTable("EMPLOYEE");
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), "EMPLOYEE,\r\nEMPLOYEE EMPLOYEE1");
    }

    void quotedNamesAreWrittenQuoted() {
        HostedBuilder on(true);
        on.addTable("my table");
        on.addTable("my table");
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(),
                 "\"my table\",\r\n\"my table\" \"my table1\"");
    }

    // --- loading what is held

    void tablesAndAliases_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("tables");
        const auto row = [](const char* name, const char* from, const QStringList& tables) {
            QTest::newRow(name) << QString::fromLatin1(from) << tables;
        };
        row("one", "t", {"T"});
        row("two", "t, u", {"T", "U"});
        row("no blank behind the comma", "t,u", {"T", "U"});
        row("alias", "t x", {"T X"});
        row("alias behind blanks", "t    x", {"T X"});
        row("alias behind a line break", "t\r\n  x, u", {"T X", "U"});
        row("alias behind a tab", "t\tx", {"T X"});
        row("alias behind a comment", "t /* the table */ x", {"T X"});
        row("AS", "t as x", {"T X"});
        row("AS and blanks", "t   AS   x", {"T X"});
        row("AS and line breaks", "t\r\nas\r\nx, u as y", {"T X", "U Y"});
        row("alias of the table's name", "t t", {"T"});
        row("AS the table's name", "t as t", {"T"});
        row("quoted alias", "t \"my x\"", {"T \"my x\""});
        row("quoted alias behind AS", "t as \"my x\"", {"T \"my x\""});
        row("quoted alias with a dot", "t \"x.y\"", {"T \"x.y\""});
        row("quoted name", "\"my table\"", {"\"my table\""});
        row("quoted name and alias", "\"my table\" m", {"\"my table\" M"});
        row("quoted plain name", "\"T\"", {"\"T\""});
        row("backticks", "`my table` m", {"\"my table\" M"});
        row("square brackets", "[my table] m", {"\"my table\" M"});
        row("qualified name", "s.t", {"S.T T"});
        row("qualified name and alias", "s.t x", {"S.T X"});
        row("cross join", "t cross join u", {"T", "U"});
        row("cross join with aliases", "t x cross join u as y", {"T X", "U Y"});
        row("same table under two aliases", "t x, t y", {"T X", "T Y"});
        row("same table, alias first", "t x, t", {"T X", "T"});
    }
    void tablesAndAliases() {
        QFETCH(QString, from);
        QFETCH(QStringList, tables);
        for (const bool keep : {false, true}) {
            HostedBuilder on(keep);
            on.builder.LoadSQL("select 1 from " + from);
            QCOMPARE(on.tables(), tables);
            QCOMPARE(on.findings(), QStringList());
            verifyBuilder(on.builder);
        }
    }

    void hostIsAskedForNamesWithoutQuotes_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("asked");
        QTest::newRow("upper-cased") << "t" << QStringList("T");
        QTest::newRow("quoted") << "\"my table\"" << QStringList("my table");
        QTest::newRow("apostrophes") << "'my table'" << QStringList("my table");
        QTest::newRow("alias is not asked for") << "t as x" << QStringList("T");
        QTest::newRow("once per mention") << "t x, t y" << QStringList({"T", "T"});
        QTest::newRow("a box that is there") << "t, t" << QStringList({"T", "T"});
    }
    void hostIsAskedForNamesWithoutQuotes() {
        QFETCH(QString, from);
        QFETCH(QStringList, asked);
        HostedBuilder on;
        on.builder.LoadSQL("select 1 from " + from);
        QCOMPARE(on.host.asked, asked);
    }

    void loadedBoxesStandInARowLastInFront() {
        HostedBuilder on;
        on.builder.LoadSQL("select 1 from t, u x, dept");
        QCOMPARE(on.stacking(), QStringList({"DEPT", "X", "T"}));
        int left = 50;
        for (const TorvQDTable* box : on.builder.WorkArea->tablesByCreation()) {
            QCOMPARE(QPoint(box->Left, box->Top), QPoint(left, 20));
            left += box->Width + 10;
        }
    }

    // Whoever is told of the box makes names from its alias: it is the final one.
    void aliasIsThereBeforeAnybodyIsTold() {
        HostedBuilder on;
        QStringList added;
        int renamed = 0;
        const TAddEvent old = on.builder.WorkArea->OnAddTable;
        on.builder.WorkArea->OnAddTable = [&](QObject* sender, QObject* item) {
            added << qobject_cast<TorvQDTable*>(item)->GetAlias();
            old(sender, item);
        };
        on.builder.WorkArea->OnChangeAlias = [&](QObject*, const QString&) { ++renamed; };
        on.builder.LoadSQL("select u.a from u o, u p");
        QCOMPARE(added, QStringList({"O", "P"}));
        QCOMPARE(renamed, 0);
        QCOMPARE(on.builder.AllFields().names(),
                 QStringList({"O.A", "O.X", "O.Y", "P.A", "P.X", "P.Y"}));
    }

    // --- loading what is not held

    void lossesAreFindings_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<QStringList>("findings");
        const auto row = [](const char* name, const char* from, const QStringList& tables,
                            const QStringList& findings) {
            QTest::newRow(name) << QString::fromLatin1(from) << tables << findings;
        };
        row("unknown table", "nowhere", {}, {"nowhere"});
        row("unknown table with an alias", "nowhere as n, t", {"T"}, {"nowhere as n"});
        row("derived table", "(select a from u) d, t", {"T"}, {"(select a from u) d"});
        row("derived table behind AS", "t, (select a from u) as d", {"T"},
            {"(select a from u) as d"});
        row("derived table, wide blanks", "t, (select a from u)   as   d", {"T"},
            {"(select a from u)   as   d"});
        row("procedure", "p(1, 'x') q, t", {"T"}, {"p(1, 'x') q"});
        row("natural join", "t natural join u", {"T", "U"}, {"natural join u"});
        row("using", "t join u using (a)", {"T", "U"}, {"join u using (a)"});
        row("joins in brackets", "(t join u on t.a = u.a), dept", {"DEPT"},
            {"(t join u on t.a = u.a)"});
        row("same table without alias", "t, t", {"T"}, {"t"});
        row("two aliases equal", "t x, u x", {"T X", "U X"}, {"u x"});
    }
    void lossesAreFindings() {
        QFETCH(QString, from);
        QFETCH(QStringList, tables);
        QFETCH(QStringList, findings);
        for (const bool keep : {false, true}) {
            HostedBuilder on(keep);
            on.builder.LoadSQL("select 1 from " + from);
            QCOMPARE(on.tables(), tables);
            QCOMPARE(on.findings(), findings);
        }
    }

    void hostIsNotAskedForTheAliasOfADerivedTable() {
        HostedBuilder on;
        on.builder.LoadSQL("select 1 from (select a from u) d, t");
        QCOMPARE(on.host.asked, QStringList("T"));
    }

    void tableThatIsThereIsReusedAndItsAliasIgnored() {
        HostedBuilder on;
        on.builder.LoadSQL("select 1 from employee, employee e");
        QCOMPARE(on.tables(), QStringList("EMPLOYEE"));
        QCOMPARE(on.findings(), QStringList("employee e"));
        verifyBuilder(on.builder);
    }

    void quotedTableThatIsThereIsReused() {
        HostedBuilder on;
        on.builder.LoadSQL("select 1 from \"my table\", \"my table\"");
        QCOMPARE(on.tables(), QStringList("\"my table\""));
        QCOMPARE(on.findings(), QStringList("\"my table\""));
    }

    void keptMeaningGivesEachMentionWithAnAliasItsBox() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select 1 from employee, employee e, employee f");
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "EMPLOYEE E", "EMPLOYEE F"}));
        QCOMPARE(on.findings(), QStringList());
        verifyBuilder(on.builder);
    }

    // A qualified name has its last part as alias; it is no alias of the text.
    void keptMeaningReusesAQualifiedTableToo() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select 1 from s.t, s.t");
        QCOMPARE(on.tables(), QStringList("S.T T"));
        QCOMPARE(on.findings(), QStringList("s.t"));
        verifyBuilder(on.builder);
    }

    // By the plain rules its call gets brackets, which not every database takes.
    void hostSaysWhatIsAProcedure() {
        for (const bool keepMeaning : {false, true}) {
            HostedBuilder on(keepMeaning);
            on.builder.OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>& dataSet,
                                             std::unique_ptr<TParams>& params) {
                dataSet = std::make_unique<TDataSet>();
                params = std::make_unique<TParams>();
            };
            on.builder.LoadSQL("select 1 from p");
            QCOMPARE(on.tables(), QStringList("P"));
            QVERIFY(on.proc("P"));
            QCOMPARE(on.builder.WorkArea->GetSQLStatment(), keepMeaning ? "P" : "P()");
            QCOMPARE(on.findings(), keepMeaning ? QStringList() : QStringList("p"));
        }
    }

    void refusedTableIsAFindingAndTheOthersLoad() {
        HostedBuilder on;
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* box, TAddRemove, bool& can) {
            ++asked;
            can = box->TableName != "U";
        };
        on.builder.LoadSQL("select 1 from t, u x, dept");
        QCOMPARE(asked, 3);
        QCOMPARE(on.tables(), QStringList({"T", "DEPT"}));
        QCOMPARE(on.findings(), QStringList("u x"));
        verifyBuilder(on.builder);
    }

    // --- errors

    void nodeMustBeAFromClause() {
        HostedBuilder on;
        on.addTable("T");
        const TorvQDParser root(QStringLiteral("SELECT A FROM T"));
        QCOMPARE(orvtest::errorOf([&] { on.builder.WorkArea->LoadSQL(root); }),
                 "There is not valid object for extract tables");
        QCOMPARE(on.tables(), QStringList("T"));
    }

    void hostMustAnswerForTables() {
        HostedBuilder on;
        on.addTable("T");
        on.builder.OnGetTableFields = nullptr;
        const TorvQDParser root(QStringLiteral("SELECT A FROM T"));
        QCOMPARE(
            orvtest::errorOf([&] { on.builder.WorkArea->LoadSQL(*root.Clause(inFrom)); }),
            "Event OnGetTableFields of TorvQueryBuilder class must be assigned for getting proper "
            "information about fields of tables");
        QCOMPARE(on.tables(), QStringList("T"));
    }

    void errorWhileLoadingLeavesWhatWasLoaded() {
        HostedBuilder on;
        const TGetTableFieldsEvent answer = on.builder.OnGetTableFields;
        on.builder.OnGetTableFields = [&](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                          std::unique_ptr<TParams>& params) {
            if (name == "U") throw orv::Error(QStringLiteral("no connection"));
            answer(name, dataSet, params);
        };
        on.changes = 0;
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL("select t.a from t, u, dept"); }),
                 "no connection");
        QCOMPARE(on.tables(), QStringList("T"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 1);
        QVERIFY(on.builder.LoadReport().empty());
        verifyBuilder(on.builder);
        on.builder.LoadSQL("select t.a from t, dept");
        QCOMPARE(on.tables(), QStringList({"T", "DEPT"}));
    }
};

QTEST_MAIN(FloatPanelSqlTest)
#include "tst_floatpanelsql.moc"
