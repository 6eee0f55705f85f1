// SPDX-License-Identifier: MIT
// The statement of the control: written, loaded, refused, reported; calls from within handlers.
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"

using orvtest::HostedBuilder;

namespace {

const QString notSelect = QStringLiteral("Given statement is not SELECT clause");
const QString running = QStringLiteral("LoadSQL is running");

}  // namespace

class WindowSqlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- writing

    void emptyBuilderWritesSelectAndFrom() {
        HostedBuilder on;
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM ");
    }

    void selectListStandsUnderItsFirstColumn() {
        HostedBuilder on;
        on.addTable("U");
        on.table("U")->SetFieldState(2);
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT U.A,\r\n       U.X,\r\n       U.Y\r\nFROM U");
        on.builder.SelectPanel->SetDistinct(-1);
        const QString blanks(16, u' ');
        QCOMPARE(on.builder.GetSQLStatment(),
                 "SELECT DISTINCT U.A,\r\n" + blanks + "U.X,\r\n" + blanks + "U.Y\r\nFROM U");
    }

    void tailStandsOnALineOfItsOwn() {
        HostedBuilder on;
        on.addTable("T");
        on.builder.setTailText("LIMIT 10");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM T\r\nLIMIT 10");
        on.builder.setTailText("  ");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM T");
    }

    void clearEmptiesEverything() {
        HostedBuilder on;
        on.builder.LoadSQL("select distinct t.a, nowhere.b from t limit 10");
        QVERIFY(!on.builder.LoadReport().empty());
        on.builder.Clear();
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM ");
        QCOMPARE(on.builder.TailText(), QString());
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), 0);
        QVERIFY(on.builder.LoadReport().empty());
        QVERIFY(on.builder.AllFields().isEmpty());
        QVERIFY(on.builder.SelectedFields().isEmpty());
        verifyBuilder(on.builder);
    }

    // --- loading

    void loadedStatementReplacesTheOldOne() {
        HostedBuilder on;
        on.builder.LoadSQL("select distinct t.a, t.b from t limit 10");
        on.builder.LoadSQL("select u.x from u");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT U.X\r\nFROM U");
        QCOMPARE(on.builder.AllFields().names(), QStringList({"U.A", "U.X", "U.Y"}));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("U.X"));
        verifyBuilder(on.builder);
    }

    void shownTextChangesNothing() {
        HostedBuilder on;
        on.builder.LoadSQL("select u.x from u");
        on.table("U")->SetLeft(300);
        const TorvQDTable* box = on.table("U");
        const QByteArray before = orvtest::visibleState(on.builder);
        on.host.asked.clear();
        on.changes = 0;
        on.reports = 0;
        on.builder.LoadSQL("SELECT U.X\r\nFROM U");
        QCOMPARE(on.table("U"), box);
        QCOMPARE(on.host.asked, QStringList());
        QCOMPARE(orvtest::visibleState(on.builder), before);
        QCOMPARE(on.changes, 0);
        QCOMPARE(on.reports, 1);
    }

    void anyOtherTextReloadsEverything_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("one blank more") << "SELECT U.X\r\nFROM U ";
        QTest::newRow("one blank between") << "SELECT  U.X\r\nFROM U";
        QTest::newRow("other case") << "SELECT u.X\r\nFROM U";
        QTest::newRow("other line break") << "SELECT U.X\nFROM U";
    }
    void anyOtherTextReloadsEverything() {
        QFETCH(QString, text);
        HostedBuilder on;
        on.builder.LoadSQL("select u.x from u");
        on.host.asked.clear();
        on.changes = 0;
        on.builder.LoadSQL(text);
        QCOMPARE(on.host.asked, QStringList("U"));
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT U.X\r\nFROM U");
        verifyBuilder(on.builder);
    }

    void refusalLeavesEverythingAsItWas_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        const QString noTable = QStringLiteral("There is no Table for join");
        QTest::newRow("delete") << "DELETE FROM T" << notSelect;
        QTest::newRow("empty") << "" << notSelect;
        QTest::newRow("blanks") << " \r\n\t " << notSelect;
        QTest::newRow("comment alone") << "-- select a from t" << notSelect;
        QTest::newRow("with") << "WITH X AS (SELECT A FROM T) SELECT A FROM X" << notSelect;
        QTest::newRow("word that begins so") << "SELECTED FROM T" << notSelect;
        QTest::newRow("join without a table") << "select t.a from t join" << noTable;
        QTest::newRow("join of a bracket")
            << "select t.a from t join (u join dept on u.x = dept.budget) on t.a = u.a" << noTable;
        QTest::newRow("join of a derived table")
            << "select t.a from t left join (select a from u) d on t.a = d.a" << noTable;
    }
    void refusalLeavesEverythingAsItWas() {
        QFETCH(QString, text);
        QFETCH(QString, error);
        HostedBuilder on;
        on.builder.LoadSQL("select distinct u.x, count(u.y) n from u v group by u.x limit 5");
        on.table("V")->SetLeft(200);
        const QByteArray before = orvtest::visibleState(on.builder);
        on.host.asked.clear();
        on.changes = 0;
        on.reports = 0;
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL(text); }), error);
        QCOMPARE(orvtest::visibleState(on.builder), before);
        QCOMPARE(on.host.asked, QStringList());
        QCOMPARE(on.changes, 0);
        QCOMPARE(on.reports, 0);
    }

    void unassignedEventLeavesEverythingAsItWas() {
        HostedBuilder on;
        on.builder.LoadSQL("select u.x from u");
        on.builder.OnGetTableFields = nullptr;
        const QByteArray before = orvtest::visibleState(on.builder);
        QCOMPARE(
            orvtest::errorOf([&] { on.builder.LoadSQL("select t.a from t"); }),
            "Event OnGetTableFields of TorvQueryBuilder class must be assigned for getting proper "
            "information about fields of tables");
        QCOMPARE(orvtest::visibleState(on.builder), before);
    }

    // Databases that fold names tell "T" from T; the event's own name has no quotes.
    void hostIsToldTheNameWithItsQuotes() {
        HostedBuilder on;
        QStringList names;
        QStringList written;
        on.builder.OnGetTableFields = [&](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                          std::unique_ptr<TParams>&) {
            names << name;
            written << on.builder.TableAsWritten();
            dataSet = std::make_unique<TDataSet>(TFieldDefs{{"A"}});
        };
        on.builder.LoadSQL("select 1 from t, \"T\" b, s.\"order lines\" c, \"a.b\" d");
        QCOMPARE(names, QStringList({"T", "T", "S.order lines", "a.b"}));
        QCOMPARE(written, QStringList({"T", "\"T\"", "S.\"order lines\"", "\"a.b\""}));
        QCOMPARE(on.builder.TableAsWritten(), QString());
        on.builder.OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>&,
                                         std::unique_ptr<TParams>&) { throw orv::Error("gone"); };
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL("select 1 from t"); }), "gone");
        QCOMPARE(on.builder.TableAsWritten(), QString());
    }

    // The report is about the last call, and that has loaded nothing.
    void refusalEmptiesTheReport() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t order by t.z");
        QCOMPARE(on.builder.LoadReport().size(), std::size_t(1));
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL("DELETE FROM T"); }), notSelect);
        QVERIFY(on.builder.LoadReport().empty());
    }

    void shownTextEmptiesTheReport() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t order by t.z");
        on.builder.LoadSQL(on.builder.GetSQLStatment());
        QVERIFY(on.builder.LoadReport().empty());
    }

    void signalCarriesTheReport() {
        HostedBuilder on;
        orv::Findings carried;
        connect(&on.builder, &TorvQueryBuilder::LoadReported, this,
                [&](const orv::Findings& findings) { carried = findings; });
        on.builder.LoadSQL("select t.a from t order by t.z");
        QCOMPARE(on.reports, 1);
        QCOMPARE(carried.size(), std::size_t(1));
        QVERIFY(carried == on.builder.LoadReport());
    }

    void statementWithoutFromLoadsNothing() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        on.builder.LoadSQL("select 1");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM ");
        QCOMPARE(on.findings(), QStringList("select 1"));
        QVERIFY(on.builder.AllFields().isEmpty());
        verifyBuilder(on.builder);
        for (const char* text : {"select 1 where 2 = 2", "select 1 limit 5",
                                 "select 1 /* one */ where 2 = 2 limit 5; select 2"}) {
            on.builder.LoadSQL(text);
            QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM ");
            QCOMPARE(on.builder.TailText(), QString());
            QCOMPARE(on.findings(), QStringList(text));
            QVERIFY(on.builder.LoadReport().front().what.contains("nothing is loaded"));
        }
    }

    // --- the tail

    void tailComesBack_data() {
        QTest::addColumn<QString>("tail");
        for (const char* tail :
             {"LIMIT 10", "limit 10 offset 5", "OFFSET 5", "FETCH FIRST 5 ROWS ONLY", "FOR UPDATE",
              "FOR SHARE", "UNION ALL SELECT U.X FROM U ORDER BY 1",
              "EXCEPT (SELECT U.X FROM U WHERE U.Y = 'LIMIT')", "union select 'a;b' from u",
              "WINDOW W AS (PARTITION BY T.B)"}) {
            QTest::newRow(tail) << QString::fromLatin1(tail);
        }
    }
    void tailComesBack() {
        QFETCH(QString, tail);
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t " + tail);
        QCOMPARE(on.builder.TailText(), tail);
        QCOMPARE(on.findings(), QStringList());
        const QString text = on.builder.GetSQLStatment();
        QCOMPARE(text, "SELECT T.A\r\nFROM T\r\n" + tail);
        HostedBuilder other;
        other.builder.LoadSQL(text);
        QCOMPARE(other.builder.GetSQLStatment(), text);
        QCOMPARE(other.findings(), QStringList());
    }

    void namesLikeTailsStayNames() {
        HostedBuilder on;
        on.host.add("V", {"LIMIT", "OFFSET", "UNION"});
        on.builder.LoadSQL("select v.limit, v.offset from v");
        QCOMPARE(on.columns(), QStringList({"LIMIT||V.LIMIT", "OFFSET||V.OFFSET"}));
        QCOMPARE(on.builder.TailText(), QString());
        QCOMPARE(on.findings(), QStringList());
    }

    void secondStatementIsAFinding() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t; delete from t");
        QCOMPARE(on.builder.TailText(), QString());
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT T.A\r\nFROM T");
        QCOMPARE(on.findings(), QStringList("; delete from t"));
    }

    void finalSemicolonIsDropped() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t ;\r\n");
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.TailText(), QString());
    }

    // --- the report

    void everyClauseIsLoadedIntoItsPage() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select t.a, count(t.b) n from t where t.c = 1 group by t.a "
            "having count(t.b) > 1 order by n desc limit 5");
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.GetSQLStatment(),
                 "SELECT T.A,\r\n       COUNT( T.B ) AS N\r\nFROM T\r\n"
                 "WHERE \r\n   (\r\n      (T.C = 1)\r\n   )\r\n"
                 "GROUP BY T.A\r\n"
                 "HAVING \r\n   (\r\n      (COUNT(T.B) > 1)\r\n   )\r\n"
                 "ORDER BY 2 DESC\r\nlimit 5");
    }

    void havingWithoutGroupByIsAFinding() {
        HostedBuilder on;
        on.builder.LoadSQL("select count(*) n from t having count(*) > 1");
        QCOMPARE(on.findings(), QStringList("having count(*) > 1"));
        QVERIFY(!on.builder.GetSQLStatment().contains("HAVING"));
    }

    void positionsAreThoseOfTheGivenText_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("findings");
        QTest::newRow("plain") << "select t.a from t order by t.z" << QStringList("t.z");
        QTest::newRow("comment in front")
            << "/* what */ select t.a from t order by t.z" << QStringList("t.z");
        QTest::newRow("line comment in front")
            << "-- what\r\nselect t.a\r\nfrom t\r\norder by t.z" << QStringList("t.z");
        QTest::newRow("comment inside")
            << "select t.a from t order by t.z /* one */ desc" << QStringList("t.z /* one */ desc");
        QTest::newRow("backticks in front")
            << "select m.`my field` from `my table` m order by 9" << QStringList("9");
        QTest::newRow("backticks inside") << "select t.a, `my z` from t" << QStringList("`my z`");
        QTest::newRow("square brackets") << "select t.a, [my z] from t" << QStringList("[my z]");
        QTest::newRow("tabs and line breaks")
            << "select\tt.a\r\n\tfrom\tt\r\n\torder\tby\tt.z\tdesc" << QStringList("t.z\tdesc");
        QTest::newRow("doubled sign in backticks")
            << "select t.a, `a``b` from t order by t.z" << QStringList({"`a``b`", "t.z"});
        QTest::newRow("several in order") << "select t.z, t.a, x.b from t, nowhere order by 9"
                                          << QStringList({"t.z", "x.b", "nowhere", "9"});
        QTest::newRow("blanks behind")
            << "select t.a from t order by t.z   \r\n ; " << QStringList("t.z");
    }
    void positionsAreThoseOfTheGivenText() {
        QFETCH(QString, text);
        QFETCH(QStringList, findings);
        HostedBuilder on;
        on.builder.LoadSQL(text);
        QCOMPARE(on.findings(), findings);
        for (const orv::Finding& finding : on.builder.LoadReport()) {
            QCOMPARE(text.mid(finding.start, finding.length), finding.text);
            QVERIFY(!finding.what.isEmpty());
        }
    }

    void lineBreakInsideQuotesIsAFinding() {
        HostedBuilder on;
        on.builder.LoadSQL("select 'a\r\nb' x from t");
        QCOMPARE(on.findings(), QStringList("'a\r\nb'"));
        QCOMPARE(on.grid()->Cells(2, 1), "'a  b'");
    }

    void whatIsNotClosedIsAFinding_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("findings");
        QTest::newRow("bracket of a condition")
            << "select t.a from t where ((t.a = 1)" << QStringList("(");
        QTest::newRow("bracket too many") << "select t.a from t where t.a = 1)" << QStringList(")");
        QTest::newRow("quote") << "select t.a from t where t.a = 'x" << QStringList("'x");
        QTest::newRow("bracket of the tail")
            << "select t.a from t union select u.x from u where (u.y = 1" << QStringList("(");
        QTest::newRow("closed behind the tail")
            << "select t.a from t where (t.a = 1) limit 5" << QStringList();
        QTest::newRow("all closed")
            << "select upper(t.a) x from t where (t.a in ('(', 'it''s'))" << QStringList();
    }
    void whatIsNotClosedIsAFinding() {
        QFETCH(QString, text);
        QFETCH(QStringList, findings);
        HostedBuilder on(true);
        on.builder.LoadSQL(text);
        for (const QString& finding : findings) QVERIFY(on.findings().contains(finding));
        QCOMPARE(on.findings().isEmpty(), findings.isEmpty());
    }

    // FROM behind IS DISTINCT begins no clause.
    void comparisonsWithFromAreConditions() {
        for (const char* text : {"T.A IS DISTINCT FROM T.B", "T.A IS NOT DISTINCT FROM T.B",
                                 "T.A IS DISTINCT FROM 'x'"}) {
            HostedBuilder on(true);
            on.builder.LoadSQL("select t.a from t where " + QString(text) + " and t.c = 1");
            QCOMPARE(on.findings(), QStringList());
            QVERIFY(on.builder.GetSQLStatment().contains('(' + QString(text) + ')'));
            QVERIFY(on.builder.GetSQLStatment().contains("(T.C = 1)"));
        }
        for (const char* column :
             {"T.A IS DISTINCT FROM T.B AS X", "T.A IS NOT DISTINCT FROM 'x' AS X",
              "CASE WHEN T.A IS DISTINCT FROM T.B THEN 1 ELSE 0 END AS X"}) {
            for (const bool keep : {false, true}) {
                HostedBuilder on(keep);
                on.builder.LoadSQL("select t.c, " + QString(column) + " from t");
                QCOMPARE(on.findings(), QStringList());
                QVERIFY(on.builder.GetSQLStatment().contains(column));
            }
        }
        for (const char* column : {"t.a is distinct from", "t.a distinct from t.b",
                                   "t.a not distinct from t.b", "distinct t.a is from t.b"}) {
            HostedBuilder on(true);
            on.builder.LoadSQL("select " + QString(column) + " from t");
            QVERIFY2(!on.findings().isEmpty(), column);
        }
        HostedBuilder on(true);
        on.builder.LoadSQL("select distinct from from t");
        QVERIFY(!on.findings().isEmpty());
    }

    void oddListsAndNamesAreToldOrHeld_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("findings");
        QTest::newRow("comma at the end") << "select t.a, from t" << QStringList(",");
        QTest::newRow("nothing between commas")
            << "select t.a, , t.b from t" << QStringList({",", ","});
        QTest::newRow("star with a modifier")
            << "select * except (a) from t" << QStringList("* except (a)");
        QTest::newRow("alias in apostrophes") << "select a from t as 'Q'" << QStringList();
        QTest::newRow("index behind a blank")
            << "select t.a from t where t.b [1] = 2" << QStringList();
        QTest::newRow("name in brackets behind a field")
            << "select t.a [X] from t [Y]" << QStringList("t.a [X]");
        QTest::newRow("signs in front")
            << "select -t.a as x, ~t.b as y, + 3 as z from t" << QStringList();
        QTest::newRow("foreign clause in ON")
            << "select t.a from t join u on t.a = u.a and t.b = 1 minus select 1 from u"
            << QStringList("on t.a = u.a and t.b = 1 minus select 1 from u");
        QTest::newRow("UNION VALUES behind a condition")
            << "select t.a from t where t.a is null union values (1)"
            << QStringList("union values (1)");
    }
    void oddListsAndNamesAreToldOrHeld() {
        QFETCH(QString, text);
        QFETCH(QStringList, findings);
        HostedBuilder on(true);
        on.builder.LoadSQL(text);
        QCOMPARE(on.findings(), findings);
        verifyBuilder(on.builder);
    }

    // What the report would tell is about a load that ended otherwise.
    void slotThatRaisesEmptiesTheReport() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        const auto connection = connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                                        [] { throw orv::Error(QStringLiteral("slot")); });
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL("select t.a, t.z from t"); }), "slot");
        disconnect(connection);
        QVERIFY(on.builder.LoadReport().empty());
    }

    // A handler closes a box while others are loaded: the joins that it had are gone with it.
    void boxThatAHandlerClosesWhileLoadingIsTold() {
        const orvtest::RecordedServices services;  // the classic mode tells of 'y' in a box
        for (const bool keepMeaning : {false, true}) {
            HostedBuilder on(keepMeaning);
            on.host.add("V", {"A"});
            on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* table, TAddRemove action,
                                              bool&) {
                if (action == araAdd && table->GetAlias() == "V") on.table("U")->CloseTable();
            };
            on.builder.LoadSQL(
                "select t.a from t join u on t.a = u.a and u.x = 'y' join dept on t.b = "
                "dept.budget, v");
            QCOMPARE(on.tables(), QStringList({"T", "DEPT", "V"}));
            QVERIFY(on.findings().contains("u"));
            verifyBuilder(on.builder);
        }
    }

    void quotedKeywordsKeepTheirQuotes() {
        HostedBuilder on(true);
        on.host.add("L", {"SELECT", "PLAIN"});
        on.builder.LoadSQL("select l.\"SELECT\", l.\"PLAIN\" from l");
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT L.\"SELECT\",\r\n       L.PLAIN\r\nFROM L");
        on.tick("L", "SELECT", false);
        QCOMPARE(on.columns(), QStringList("PLAIN||L.PLAIN"));
        verifyBuilder(on.builder);
    }

    void quotedKeywordIsUntickedUnderANewAlias() {
        HostedBuilder on(true);
        on.host.add("L", {"SELECT", "PLAIN"});
        on.builder.LoadSQL("select l.\"SELECT\", l.\"PLAIN\" from l");
        on.builder.WorkArea->renameTable(on.table("L"), "X");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList({"X.\"SELECT\"", "X.PLAIN"}));
        on.tick("X", "SELECT", false);
        QCOMPARE(on.columns(), QStringList("PLAIN||X.PLAIN"));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("X.PLAIN"));
        verifyBuilder(on.builder);
    }

    // --- handlers that call back

    void clearAndLoadAreRefusedInsideAQuestion_data() {
        QTest::addColumn<bool>("clears");
        QTest::newRow("Clear") << true;
        QTest::newRow("LoadSQL") << false;
    }
    void clearAndLoadAreRefusedInsideAQuestion() {
        QFETCH(bool, clears);
        HostedBuilder on;
        QStringList errors;
        const auto call = [&] {
            errors << orvtest::errorOf([&] {
                if (clears) {
                    on.builder.Clear();
                } else {
                    on.builder.LoadSQL("select u.x from u");
                }
            });
        };
        const TGetTableFieldsEvent answer = on.builder.OnGetTableFields;
        on.builder.OnGetTableFields = [&](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                          std::unique_ptr<TParams>& params) {
            call();
            answer(name, dataSet, params);
        };
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) { call(); };
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(errors, QStringList({running, running}));
        on.addTable("DEPT");
        QCOMPARE(errors, QStringList({running, running, running}));
        on.table("DEPT")->CloseTable();
        QCOMPARE(errors, QStringList({running, running, running, running}));
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT T.A\r\nFROM T");
        verifyBuilder(on.builder);
        on.builder.OnGetTableFields = answer;
        on.builder.OnAddRemoveTable = nullptr;
        on.builder.LoadSQL("select u.y from u");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT U.Y\r\nFROM U");
    }

    void questionThatThrewIsOver() {
        HostedBuilder on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool&) {
            throw orv::Error(QStringLiteral("host"));
        };
        QCOMPARE(orvtest::errorOf([&] { on.addTable("T"); }), "host");
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL("select t.a from t"); }), "host");
        on.builder.OnAddRemoveTable = nullptr;
        on.builder.Clear();
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT T.A\r\nFROM T");
        verifyBuilder(on.builder);
    }

    void statementMayBeReadInsideAQuestion() {
        HostedBuilder on;
        on.addTable("T");
        on.tick("T", "A");
        QStringList seen;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            seen << on.builder.GetSQLStatment();
        };
        on.table("T")->CloseTable();
        QCOMPARE(seen, QStringList("SELECT T.A\r\nFROM T"));
    }

    void tableMayBeAddedWhileLoading() {
        HostedBuilder on;
        bool nested = false;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            if (!std::exchange(nested, true)) on.addTable("DEPT");
        };
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(on.tables(), QStringList({"DEPT", "T"}));
        verifyBuilder(on.builder);
    }

    void handlersMayReplaceThemselves() {
        HostedBuilder on;
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            int& count = asked;
            on.builder.OnAddRemoveTable = nullptr;
            ++count;
        };
        on.addTable("T");
        on.addTable("U");
        QCOMPARE(asked, 1);
        const TGetTableFieldsEvent answer = on.builder.OnGetTableFields;
        on.builder.OnGetTableFields = [&, answer](const QString& name,
                                                  std::unique_ptr<TDataSet>& dataSet,
                                                  std::unique_ptr<TParams>& params) {
            const TGetTableFieldsEvent next = answer;
            int& count = asked;
            on.builder.OnGetTableFields = next;
            ++count;
            next(name, dataSet, params);
        };
        on.builder.LoadSQL("select t.a from t, u");
        QCOMPARE(asked, 2);
        QCOMPARE(on.tables(), QStringList({"T", "U"}));
    }

    void hostMayLoadAgainWhenTheStatementChanged() {
        HostedBuilder on;
        bool nested = false;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            if (!std::exchange(nested, true)) on.builder.LoadSQL("select u.x from u order by u.z");
        });
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT U.X\r\nFROM U");
        QCOMPARE(on.findings(), QStringList("u.z"));
        verifyBuilder(on.builder);
    }

    void hostThatThrowsLeavesAStateThatAgrees_data() {
        QTest::addColumn<int>("question");
        QTest::newRow("first") << 0;
        QTest::newRow("second") << 1;
        QTest::newRow("third") << 2;
    }
    void hostThatThrowsLeavesAStateThatAgrees() {
        QFETCH(int, question);
        HostedBuilder on;
        on.builder.LoadSQL("select distinct dept.budget from dept limit 5");
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            if (asked++ == question) throw orv::Error(QStringLiteral("host"));
        };
        on.changes = 0;
        on.reports = 0;
        QCOMPARE(orvtest::errorOf(
                     [&] { on.builder.LoadSQL("select t.a from t, u, employee where 1 = 1"); }),
                 "host");
        QCOMPARE(on.builder.WorkArea->TablesCount(), question);
        QCOMPARE(on.columns(), QStringList());
        QVERIFY(on.builder.LoadReport().empty());
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.reports, 0);
        QVERIFY(on.builder.updatesEnabled());
        verifyBuilder(on.builder);
    }

    void errorOfTheParameterEventPasses() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.builder.OnEnterProcParameter = [](QObject*, TorvQDTable*, TorvQDListItem*) {
            throw orv::Error(QStringLiteral("host"));
        };
        QCOMPARE(orvtest::errorOf(
                     [&] { on.builder.WorkArea->DoEnterParameter(box, box->GetFieldItem("A")); }),
                 "host");
        verifyBuilder(on.builder);
    }

    void boxesMayBeClosedWhenAskedForParameters() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        TorvQDListItem* item = box->GetFieldItem("A");
        item->ParamType = ptInput;
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem*) {
            on.builder.Clear();
        };
        item->SetCheck(true);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
    }

    void builderDeletedInAHandlerWhileLoading() {
        auto* builder = new TorvQueryBuilder;
        const QPointer<TorvQueryBuilder> alive(builder);
        orvtest::Host host;
        builder->OnGetTableFields = [&](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                        std::unique_ptr<TParams>&) {
            dataSet = std::make_unique<TDataSet>(host.table(name));
            if (name == "U") builder->deleteLater();
        };
        builder->LoadSQL("select t.a from t, u, dept");
        QVERIFY(alive);
        QCOMPARE(builder->WorkArea->TablesCount(), 3);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!alive);
    }
};

QTEST_MAIN(WindowSqlTest)
#include "tst_windowsql.moc"
