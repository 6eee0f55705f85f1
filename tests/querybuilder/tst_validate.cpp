// SPDX-License-Identifier: MIT
// What is wrong with a state that can be written.
#include "criteria/ORVQDWherePanel.h"
#include "data/SqlText.h"
#include "support/BuilderTools.h"

#include <QTest>

using orvtest::HostedBuilder;

namespace {

// The findings as "text: sentence". They are about no text, so they have no place in one.
QStringList found(HostedBuilder& on) {
    QStringList texts;
    for (const orv::Finding& finding : on.builder.Validate()) {
        texts << finding.text + QStringLiteral(": ") + finding.what;
        if (finding.start != 0 || finding.length != 0) texts << QStringLiteral("(has a place)");
    }
    return texts;
}

const QString unlinked =
    ": Nothing links this with the other tables: each of its rows is combined with each of theirs.";
const QString unfilled = ": This condition is not filled in.";
const QString noTable = ": There is no such table on the diagram.";
const QString noField = ": The table has no such field.";

}  // namespace

class ValidateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void operatorThatDoesNotFitItsArguments() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t where t.b between 1 and 2 and t.c is null");
        QCOMPARE(found(on), QStringList());
        TOperatorList few;
        few.Assign(on.builder.Operators.get());
        for (int index = few.Count(); index-- > 0;) {
            const QString name = few.Items(index)->Name;
            if (name == "BETWEEN" || name == "IS NULL") few.Delete(index);
        }
        on.builder.setOperators(few);
        const QStringList told = found(on);
        QCOMPARE(told.filter("The operator of this condition takes more arguments.").size(), 1);
        QCOMPARE(told.filter("The operator of this condition takes fewer arguments.").size(), 1);
    }

    void valueWithALineBreak() {
        HostedBuilder on(true);
        on.host.addProc(
            "P", {"A"},
            TParams({{"X", ftString, ptInput, "a\r\nb"}, {"Y", ftString, ptInput, "c"}}));
        on.addProc("P");
        QCOMPARE(found(on),
                 QStringList("P.X: A line break in the value of this parameter becomes a blank "
                             "when the statement is loaded."));
    }

    void operatorOfAnEmptyList() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t where t.b like 'x'");
        on.builder.Operators->Clear();
        QCOMPARE(found(on),
                 QStringList("1. (T.B LIKE 'x'): The operator of this condition is no longer in "
                             "the list."));
    }

    void soundQueriesHaveNoFindings_data() {
        QTest::addColumn<QString>("text");
        for (const char* text :
             {"select t.a from t", "select t.a, u.x from t join u on t.a = u.a",
              "select t.a from t, u where t.a = u.a", "select t.a from t, u where b = x",
              "select t.a from t, u where t.a + 1 = u.a * 2",
              "select t.a, count(*) n from t group by t.a having count(*) > 1 order by n",
              "select t.a from t where exists (select 1 from z where z.a = t.a)",
              "select upper(t.a) u from t where t.b in (1, 2) limit 5",
              "select t.a from t union select u.x from u",
              "select m.\"a.b\" from \"my table\" m where m.\"my field\" = 'X.Y'"}) {
            QTest::newRow(text) << QString::fromLatin1(text);
        }
    }
    void soundQueriesHaveNoFindings() {
        QFETCH(QString, text);
        HostedBuilder on(true);
        on.builder.LoadSQL(text);
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(found(on), QStringList());
    }

    void emptyBuilderHasNoFindings() {
        HostedBuilder on;
        QCOMPARE(found(on), QStringList());
    }

    void rowsThatAreNotFilledAreNamed() {
        HostedBuilder on;
        on.addTable("T");
        TorvQDWhereRow* group = on.builder.WherePanel->rootRow()->SubRows->AddRow();
        group->SetGroupOper("Any");
        TorvQDWhereRow* half = group->SubRows->AddRow();
        half->FieldName = "T.A";
        TorvQDWhereRow* empty = on.builder.WherePanel->rootRow()->SubRows->AddRow();
        empty->SetGroupOper("None");
        QCOMPARE(found(on), QStringList({"1.1. (T.A =          )" + unfilled,
                                         "2. None: This group has no conditions."}));
    }

    void betweenNeedsBothOperands() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.a between 1 and 2");
        TorvQDWhereRow* row = on.builder.WherePanel->rootRow()->SubRows->Row(0);
        QCOMPARE(found(on), QStringList());
        row->Arguments[1] = orv::blankText();
        QCOMPARE(found(on).size(), 1);
    }

    void namesThatAreGoneAreTold() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select t.a, sum(u.x) s, upper(u.y) y from t join u on t.a = u.a "
            "where t.b = 1 and u.x + 1 > 2 group by t.a, upper(u.y) having max(u.a) > 1");
        QCOMPARE(on.findings(), QStringList());
        on.table("U")->CloseTable();
        const QStringList told = found(on);
        QVERIFY(told.contains("U.X" + noTable));
        QVERIFY(told.contains("U.Y" + noTable));
        QVERIFY(told.contains("U.A" + noTable));
        QCOMPARE(told.count("U.X" + noTable), 1);
    }

    void fieldsThatTheTableHasNotAreTold() {
        HostedBuilder on;
        on.addTable("T");
        TorvQDWhereRow* row = on.builder.WherePanel->rootRow()->SubRows->AddRow();
        row->FieldName = "T.Z";
        row->Arguments[0] = "LOWER(T.Q) || 'T.R'";
        QCOMPARE(found(on), QStringList({"T.Z" + noField, "T.Q" + noField}));
    }

    void bareNamesThatAreGoneOrAmbiguousAreTold() {
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.b, count(salary) n from t, employee where salary > 5 and b = "
            "current_date and t.a = emp_no group by t.b");
        QCOMPARE(found(on), QStringList());
        on.table("EMPLOYEE")->CloseTable();
        QVERIFY(found(on).contains("SALARY: No table on the diagram has this field."));
        QVERIFY(found(on).contains("EMP_NO: No table on the diagram has this field."));
        HostedBuilder other;
        other.builder.LoadSQL("select a from t");
        other.addTable("U");
        QVERIFY(found(other).contains("A: Several tables have this field."));
    }

    void aliasesThatDifferInCaseOnlyAreTold() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.WorkArea->renameTable(on.table("U"), "t");
        QVERIFY(found(on).contains("t: Another table's alias differs from this one in case only."));
        on.builder.WorkArea->renameTable(on.table("t"), "x");
        QCOMPARE(found(on).size(), 1);  // nothing links them
    }

    void textThatIsNoTailIsTold() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        for (const char* tail : {"WHERE 1", "FOO", "(", "limit 5; select 1"}) {
            on.builder.setTailText(tail);
            QCOMPARE(found(on),
                     QStringList(QString(tail) + ": This is nothing that may follow a statement."));
        }
        for (const char* tail : {"", "limit 5", "UNION SELECT U.X FROM U", "for update"}) {
            on.builder.setTailText(tail);
            QCOMPARE(found(on), QStringList());
        }
    }

    void tablesThatNothingLinksAreTold() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t, u, dept d, employee e where d.dept_no = e.dept_no");
        QCOMPARE(found(on), QStringList({"U" + unlinked, "D, E" + unlinked}));
    }

    void groupingThatCannotBeWrittenIsTold() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a, count(*) n from t group by t.a");
        orv::OutputColumns columns = on.grid()->columns();
        columns.push_back({"X", {}, "T.A + 1"});
        on.grid()->setColumns(columns);
        QCOMPARE(found(on),
                 QStringList(": There is no agregate function on page \"Selection\" in 3 row"));
    }

    void outputNamesAreToldWhereTheyAreWrittenAsTheyStand() {
        for (const bool keepMeaning : {false, true}) {
            HostedBuilder on(keepMeaning);
            on.addTable("T");
            on.grid()->setColumns({{"two words", {}, "T.A"}, {"\"two words\"", {}, "T.B"}});
            QCOMPARE(found(on), keepMeaning
                                    ? QStringList()
                                    : QStringList("two words: This is no valid name of an output "
                                                  "column."));
        }
    }

    // It stands for several columns; one that is counted does not.
    void nameOfAStarIsTold() {
        const QString what = ": This stands for several columns, which cannot have one name.";
        for (const bool keepMeaning : {false, true}) {
            HostedBuilder on(keepMeaning);
            on.addTable("T");
            on.grid()->setColumns({{"N", {}, "*"}, {"M", {}, "T.*"}, {"", {}, "*"}});
            QCOMPARE(found(on), QStringList({"N" + what, "M" + what}));
            HostedBuilder other(keepMeaning);
            other.builder.LoadSQL(on.builder.GetSQLStatment());
            QCOMPARE(other.findings(), QStringList("* AS N"));
            on.grid()->setColumns({{"N", "COUNT", "*"}, {"M", {}, "T.A * 2"}});
            QCOMPARE(found(on).filter(what), QStringList());
        }
    }

    void sortingInFrontOfAUnionIsTold() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t union select u.x from u");
        QCOMPARE(found(on), QStringList());
        on.builder.OrderPanel->setSortedLines({{"A", orv::descendingText(), 0, {}}});
        QCOMPARE(found(on), QStringList("T.A DESC: Sorting cannot stand in front of UNION."));
        on.builder.setTailText("limit 5");
        QCOMPARE(found(on), QStringList());
    }

    void circleWithAnOuterJoinIsTold() {
        for (const bool keepMeaning : {false, true}) {
            HostedBuilder on(keepMeaning);
            on.builder.LoadSQL(
                "select t.a from t join u on t.a = u.a join dept on u.x = dept.budget");
            on.builder.WorkArea->AddLink(on.table("T"), on.table("DEPT"),
                                         on.table("T")->GetFieldItem("B"),
                                         on.table("DEPT")->GetFieldItem("DEPARTMENT"));
            QCOMPARE(found(on).size(), keepMeaning ? 0 : 1);
            on.builder.WorkArea->Joins().back()->KindOfJoin = klLOuterJoin;
            QCOMPARE(found(on).size(), 1);
            QVERIFY2(found(on).front().contains("closes a circle"), qPrintable(found(on).front()));
        }
    }

    // --- procedures

    void sqlThatIsNotOneArgumentIsNamed_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("problem");
        const auto row = [](const char* sql, const char* problem) {
            QTest::newRow(sql) << QString::fromLatin1(sql) << QString::fromLatin1(problem);
        };
        row("1, 2", "A comma outside brackets makes more than one argument of this.");
        row("1 -- c", "An argument has no comments.");
        row("(", "The brackets do not match.");
        row("'", "A quote is not closed.");
        row("1) , O (", "The brackets do not match.");
        row("1;", "A semicolon ends the statement.");
    }
    void sqlThatIsNotOneArgumentIsNamed() {
        QFETCH(QString, sql);
        QFETCH(QString, problem);
        HostedBuilder on(true);
        on.host.addProc("P", {"A"}, TParams({{"X", ftInteger, ptInput}}));
        TorvQDSProc* box = on.addProc("P");
        box->setParameter(box->GetFieldItem("X"), QVariant::fromValue(orv::SqlText{sql}));
        QCOMPARE(found(on), QStringList("P.X: " + problem));
        for (const char* sound : {"", " ", "F(1, 2)", "'a, b'"}) {
            box->setParameter(box->GetFieldItem("X"), QVariant::fromValue(orv::SqlText{sound}));
            QCOMPARE(found(on), QStringList());
        }
    }

    void namesInArgumentsAreThoseOfOtherTables_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("problems");
        const auto row = [](const char* from, const QStringList& problems) {
            QTest::newRow(from) << QString::fromLatin1(from) << problems;
        };
        row("t t1, p(t1 . a, 1) r", {});
        row("t, p(a, 1) r", {});
        row("t, p(z . a, t.a) r", {"Z.A" + noTable});
        row("t, p(b, f(t . e . x)) r", {"T.E.X" + noField});
        row("p(a, 1) r", {"A: An argument cannot mean a column of its own procedure."});
        row("t, u, p(a, 1) r", {"A: Several tables have this field."});
    }
    void namesInArgumentsAreThoseOfOtherTables() {
        QFETCH(QString, from);
        QFETCH(QStringList, problems);
        HostedBuilder on(true);
        on.host.addProc("P", {"A"},
                        TParams({{"X", ftInteger, ptInput}, {"Y", ftInteger, ptInput}}));
        on.builder.LoadSQL("select 1 from " + from);
        QStringList told = found(on);
        told.removeIf([](const QString& text) { return text.contains(": Nothing links this"); });
        QCOMPARE(told, problems);
    }

    void parametersThatShareAPlaceholderAreNamed() {
        HostedBuilder on(true);
        on.host.addProc("P", {"A"},
                        TParams({{"X-Y", ftInteger, ptInput}, {"XY", ftInteger, ptInput}}));
        TorvQDSProc* box = on.addProc("P");
        const QStringList sharing(
            ":XY: These parameters share a placeholder, and so one value: P.\"X-Y\", P.XY.");
        QCOMPARE(found(on), sharing);
        box->setParameter(box->Items[1].get(), 5);
        QCOMPARE(found(on), QStringList());
        box->setParameter(box->Items[1].get(), {});
        // One that is left out is not written.
        box->setParameter(box->Items[2].get(), QVariant::fromValue(orv::SqlText()));
        QCOMPARE(found(on), QStringList());
        // In front of another one it has to be.
        box->setParameter(box->Items[1].get(), QVariant::fromValue(orv::SqlText()));
        box->setParameter(box->Items[2].get(), {});
        QCOMPARE(found(on), sharing);
    }

    void twoCallsThatShareAPlaceholderAreNamed() {
        HostedBuilder on(true);
        on.host.addProc("P", {"A"}, TParams({{"X", ftInteger, ptInput}}));
        on.addProc("P");
        TorvQDSProc* second = on.addProc("P");
        const QString sharing =
            ":X: These parameters share a placeholder, and so one value: P.X, P1.X.";
        QVERIFY(found(on).contains(sharing));
        second->setParameter(second->GetFieldItem("X"), 5);
        QVERIFY(!found(on).contains(sharing));
    }

    void findingsHaveNoPosition() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t, u");
        const orv::Findings findings = on.builder.Validate();
        QCOMPARE(findings.size(), std::size_t(1));
        QCOMPARE(findings.front().start, 0);
        QCOMPARE(findings.front().length, 0);
    }
};

QTEST_MAIN(ValidateTest)
#include "tst_validate.moc"
