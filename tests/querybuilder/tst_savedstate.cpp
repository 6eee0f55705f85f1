// SPDX-License-Identifier: MIT
// The state of a query, saved and restored as a whole.
#include "core/Error.h"
#include "criteria/ORVQDWherePanel.h"
#include "support/BuilderTools.h"

#include <QJsonArray>
#include <QTest>

using orvtest::errorOf;
using orvtest::HostedBuilder;

namespace {

QByteArray restored(const QByteArray& state, bool keepMeaning) {
    HostedBuilder other(keepMeaning);
    other.builder.RestoreState(state);
    return other.builder.SaveState();
}

// The state as a program would have edited it.
QByteArray edited(const QByteArray& state, const QByteArray& from, const QByteArray& to) {
    QByteArray text = state;
    return text.replace(from, to);
}

}  // namespace

class SavedStateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comesBackAsItWas_data() {
        QTest::addColumn<bool>("keepMeaning");
        QTest::addColumn<QString>("text");
        for (const bool keepMeaning : {false, true}) {
            const char* mode = keepMeaning ? "meaning kept" : "classic";
            const auto row = [&](const char* name, const char* text) {
                QTest::addRow("%s, %s", name, mode) << keepMeaning << QString::fromLatin1(text);
            };
            row("nothing", "select t.a from t");
            row("joins and links",
                "select t.a, v.x from t left join u v on t.a = v.a and t.b > v.x, dept "
                "join employee e on dept.dept_no = e.dept_no");
            row("conditions",
                "select t.a from t where t.a = 1 and not (t.b in ('x', 'y') or t.c is null) and "
                "exists (select 1 from u) and t.d between 1 and 2");
            row("grouping",
                "select distinct t.a, upper(t.b) as ub, count(*) n from t group by t.a, "
                "upper(t.b) having sum(t.c) > 5 order by 3 desc, t.a limit 5");
            row("names without a table", "select a, b from t order by b");
            row("two columns of one name",
                "select t.a as x, u.x as x from t, u order by 2 desc, 1");
            row("quoted names",
                "select m.\"my field\", m.\"q\"\"q\" from \"my table\" m where m.\"a.b\" = "
                "'it''s'");
        }
    }
    void comesBackAsItWas() {
        QFETCH(bool, keepMeaning);
        QFETCH(QString, text);
        HostedBuilder on(keepMeaning);
        on.builder.LoadSQL(text);
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other(keepMeaning);
        other.builder.LoadSQL("select dept.budget from dept where dept.budget > 3 limit 1");
        other.builder.RestoreState(state);
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
        // The report is about a load, and nothing was loaded.
        QVERIFY(other.builder.LoadReport().empty());
        QJsonObject saved = QJsonDocument::fromJson(state).object();
        saved.remove("report");
        QJsonObject again = QJsonDocument::fromJson(other.builder.SaveState()).object();
        again.remove("report");
        QCOMPARE(QJsonDocument(again).toJson(), QJsonDocument(saved).toJson());
        verifyBuilder(other.builder);
    }

    void pictureComesBack() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t join u on t.a = u.a, employee, dept");
        on.table("U")->SetLeft(700);
        on.table("U")->SetTop(333);
        on.table("U")->SetWidth(222);
        on.table("EMPLOYEE")->SetExpand(0);
        on.table("EMPLOYEE")->SetHeight(160);
        on.table("T")->SetHeight(60);
        on.table("T")->SetFirstVisibleItem(1);
        on.builder.WorkArea->TableToFront(on.table("T"));
        on.builder.WorkArea->Links().front()->setBendPoints({{400, 50}, {450, 60}});
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other(true);
        other.builder.RestoreState(state);
        QCOMPARE(other.builder.SaveState(), state);
        QCOMPARE(other.stacking(), on.stacking());
        QCOMPARE(other.tables(), on.tables());
        QCOMPARE(other.table("U")->GetBoundsRect(), on.table("U")->GetBoundsRect());
        QCOMPARE(other.table("EMPLOYEE")->Expanded, 0);
        QCOMPARE(other.table("T")->FirstVisibleItem, 1);
        QVERIFY(other.builder.WorkArea->Links().front()->points() ==
                on.builder.WorkArea->Links().front()->points());
    }

    void joinsKeepTheirOrderWhenLinksWereRemoved() {
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.a from t join u on t.a = u.a join dept on t.b = dept.budget and "
            "t.c = dept.dept_no");
        TorvQDWorkArea& area = *on.builder.WorkArea;
        area.AddLink(on.table("T"), on.table("U"), on.table("T")->GetFieldItem("B"),
                     on.table("U")->GetFieldItem("X"));
        area.RemoveLink(area.Links().front(), false);
        const QByteArray state = on.builder.SaveState();
        QCOMPARE(restored(state, false), state);
    }

    void stateThatOthersPrintedComesBackToo() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from u, t, dept where t.a = u.a and u.x = dept.budget");
        on.builder.WorkArea->TableToFront(on.table("T"));
        HostedBuilder other(true);
        other.builder.RestoreState(orv::stateJson(on.builder, {}));
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
        QCOMPARE(other.stacking(), on.stacking());
        QCOMPARE(other.tables(), on.tables());
    }

    void nobodyIsAskedAndTheHostIsToldOnce() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t join u on t.a = u.a where t.b = 1");
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other;
        int asked = 0;
        other.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            ++asked;
            can = false;
        };
        other.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink*, TAddRemove, bool& can) {
            ++asked;
            can = false;
        };
        other.builder.RestoreState(state);
        QCOMPARE(asked, 0);
        QCOMPARE(other.host.asked, QStringList());
        QCOMPARE(other.changes, 1);
        QCOMPARE(other.reports, 0);
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
    }

    void restoredQueryGoesOn() {
        HostedBuilder on;
        on.builder.LoadSQL("select a from t join u on t.a = u.a");
        HostedBuilder other;
        other.builder.RestoreState(on.builder.SaveState());
        other.tick("T", "B");
        other.tick("T", "B", false);
        other.table("U")->CloseTable();
        QCOMPARE(other.builder.WorkArea->Joins().size(), std::size_t(0));
        other.builder.LoadSQL("select t.a from t");
        verifyBuilder(other.builder);
    }

    // --- what is refused

    void badStatesLeaveEverythingAsItWas_data() {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const char* from, const char* to, const char* error) {
            QTest::newRow(name) << QByteArray(from) << QByteArray(to)
                                << "The state cannot be restored: " + QString::fromLatin1(error);
        };
        row("no list", "\"tables\": [", "\"tables\": 5, \"was\": [", "tables is no list");
        row("no object", "\"where\": {", "\"where\": 5, \"was\": {", "where is no object");
        row("no text", "\"name\": \"T\"", "\"name\": 7", "tables[1].name is no text");
        row("blank table", "\"name\": \"T\"", "\"name\": \" \"", "tables[1] has no name");
        row("procedure", "\"procedure\": false", "\"procedure\": true",
            "tables[0] is a procedure, which is not held yet");
        row("unknown type", "\"type\": \"String\"", "\"type\": \"Strong\"",
            "tables[0].fields[0] has an unknown type: Strong");
        row("blank field", "\"name\": \"X\"", "\"name\": \"\"", "tables[0].fields[1] has no name");
        row("no flag", "\"distinct\": false", "\"distinct\": 0",
            "distinct is neither true nor false");
        row("no kind", "klInnerJoin", "klCrossJoin", "joins[0] has an unknown kind: klCrossJoin");
        row("unknown table in a join", "\"table1\": \"T\"", "\"table1\": \"Z\"",
            "joins[0] names an unknown table: Z");
        row("unknown field in a link", "\"field1\": \"A\"", "\"field1\": \"Z\"",
            "a link names the unknown field Z of T");
        row("unknown operator", "\"operator\": \"IS NULL\"", "\"operator\": \"IS NIL\"",
            "an unknown operator: IS NIL");
        row("too many operands",
            "\"operator\": \"IS NULL\",\n        \"argFunc\": \"\",\n"
            "        \"arguments\": []",
            "\"operator\": \"IS NULL\",\n        \"argFunc\": \"\",\n        \"arguments\": "
            "[\"1\"]",
            "too many operands for the operator IS NULL");
        row("unknown group", "\"group\": \"Any\"", "\"group\": \"Some\"",
            "an unknown group operator: Some");
        row("unknown direction", "\"Ascending\"", "\"Upwards\"",
            "order[0] has an unknown direction: Upwards");
        row("too few texts", "\"A\",\n      \"\",\n      \"T.A\"", "\"T.A\"",
            "columns[0] has not 3 texts");
        row("creation order twice", "\"creationOrder\": [\n    1,\n    0\n  ]",
            "\"creationOrder\": [1, 1]", "creationOrder does not name each table once");
        row("creation order too short", "\"creationOrder\": [\n    1,\n    0\n  ]",
            "\"creationOrder\": [1]", "creationOrder does not name each table once");
        row("huge number", "\"creationOrder\": [\n    1,\n    0\n  ]",
            "\"creationOrder\": [1, 1e300]",
            "creationOrder[1] is no whole number from -1000000 to 1000000");
        row("half a number", "\"creationOrder\": [\n    1,\n    0\n  ]",
            "\"creationOrder\": [1, 0.5]",
            "creationOrder[1] is no whole number from -1000000 to 1000000");
    }
    void badStatesLeaveEverythingAsItWas() {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QString, error);
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.a from t join u on t.a = u.a where t.b is null or t.c = 1 order by t.a");
        const QByteArray state = on.builder.SaveState();
        const QByteArray damaged = edited(state, from, to);
        QVERIFY2(damaged != state, state.constData());
        HostedBuilder other;
        other.builder.LoadSQL("select dept.budget from dept where dept.budget > 3");
        const QByteArray before = other.builder.SaveState();
        other.changes = 0;
        QCOMPARE(errorOf([&] { other.builder.RestoreState(damaged); }), error);
        QCOMPARE(other.builder.SaveState(), before);
        QCOMPARE(other.changes, 0);
    }

    void textThatIsNoJsonIsRefused() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        const QByteArray before = on.builder.SaveState();
        for (const QByteArray text : {"", "select t.a from t", "{", "[]", "5"}) {
            const QString error = errorOf([&] { on.builder.RestoreState(text); });
            QVERIFY2(error.startsWith("The state cannot be restored: the text is no "),
                     qPrintable(error));
        }
        QCOMPARE(on.builder.SaveState(), before);
    }

    void joinWithoutALinkIsRefused() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t join u on t.a = u.a");
        QJsonObject state = QJsonDocument::fromJson(on.builder.SaveState()).object();
        state["links"] = QJsonArray();
        QCOMPARE(errorOf([&] { on.builder.RestoreState(QJsonDocument(state).toJson()); }),
                 "The state cannot be restored: a join without a link between T and U");
    }

    void emptyObjectIsAnEmptyQuery() {
        HostedBuilder on;
        on.builder.LoadSQL("select distinct t.a from t where t.b = 1 limit 5");
        on.builder.RestoreState("{}");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT \r\nFROM ");
        verifyBuilder(on.builder);
    }

    void isRefusedInsideAQuestion() {
        HostedBuilder on;
        on.builder.LoadSQL("select u.x from u");
        const QByteArray state = on.builder.SaveState();
        QStringList errors;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
            errors << errorOf([&] { on.builder.RestoreState(state); });
        };
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(errors, QStringList("LoadSQL is running"));
    }
};

QTEST_MAIN(SavedStateTest)
#include "tst_savedstate.moc"
