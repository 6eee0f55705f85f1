// SPDX-License-Identifier: MIT
// The state of a query, saved and restored as a whole.
#include "core/Error.h"
#include "criteria/ORVQDWherePanel.h"
#include "support/BuilderTools.h"

#include <QDateTime>
#include <QJsonArray>
#include <QPoint>
#include <QTest>

#include <limits>

using orvtest::errorOf;
using orvtest::HostedBuilder;

namespace {

QByteArray restored(const QByteArray& state, bool keepMeaning) {
    HostedBuilder other(keepMeaning);
    other.builder.RestoreState(state);
    return other.builder.SaveState();
}

int operatorAt(const TorvQueryBuilder& builder, const QString& name) {
    int index = 0;
    while (builder.Operators->Items(index)->Name != name) ++index;
    return index;
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
    void aBoxShowsAsManyRowsAsBefore() {
        HostedBuilder on;
        on.host.add("WIDE", {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"});
        TorvQDTable* box = on.addTable("WIDE");
        const int height = box->Height;
        // The same height shows a row less in a box that was sized.
        box->SetHeight(height + 50);
        box->SetHeight(height);
        QCOMPARE(box->VisibleCount, 5);
        HostedBuilder other;
        other.builder.RestoreState(on.builder.SaveState());
        QCOMPARE(other.table("WIDE")->Height, height);
        QCOMPARE(other.table("WIDE")->VisibleCount, 5);
        QCOMPARE(other.builder.SaveState(), on.builder.SaveState());
    }

    // Saved with letters of another size, or written by somebody else.
    void rowsThatHaveNoRoomAreNotShown() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        TorvQDTable* box = on.table("T");
        const int shown = box->VisibleCount;
        QJsonObject state = QJsonDocument::fromJson(on.builder.SaveState()).object();
        for (const int rows : {0, shown - 1, shown + 1, 1000000}) {
            state["shownRows"] = QJsonArray{rows};
            HostedBuilder other;
            other.builder.RestoreState(QJsonDocument(state).toJson());
            QCOMPARE(other.table("T")->Height, box->Height);
            QCOMPARE(other.table("T")->VisibleCount, rows == shown - 1 ? rows : shown);
        }
    }

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

    // Made lower again, a box that was taller than its rows keeps the room above them.
    void rowsBelowTheUpperEdgeComeBack() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        TorvQDTable* box = on.table("T");
        box->SetHeight(box->Height + 4 * (box->ItemHeight + 1));
        box->SetFirstVisibleItem(0);
        const int first = box->FirstVisibleItem;
        QVERIFY(first < 0);
        box->SetHeight(box->Height - box->ItemHeight - 1);
        QCOMPARE(box->FirstVisibleItem, first);
        QVERIFY(int(box->Items.size()) - box->VisibleCount > first);
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other;
        other.builder.RestoreState(state);
        QCOMPARE(other.table("T")->FirstVisibleItem, first);
        QCOMPARE(other.builder.SaveState(), state);
    }

    void boxOutOfReachComesBackWithinReach() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        TorvQDTable* box = on.table("T");
        const QRect reached(QPoint(0, 0), box->GetBoundsRect().toQRect().size());
        box->SetLeft(-300);
        box->SetTop(-115);
        const QByteArray state = on.builder.SaveState();
        QJsonObject written = QJsonDocument::fromJson(state).object();
        QJsonArray tables = written["tables"].toArray();
        QJsonObject table = tables[0].toObject();
        QCOMPARE(table["bounds"].toArray().first(), QJsonValue(0));
        table["bounds"] = QJsonArray{-300, -115, reached.width(), reached.height()};
        tables[0] = table;
        written["tables"] = tables;
        for (const QByteArray& given : {state, QJsonDocument(written).toJson()}) {
            HostedBuilder other;
            other.builder.RestoreState(given);
            QCOMPARE(other.table("T")->GetBoundsRect().toQRect(), reached);
            QCOMPARE(other.builder.SaveState(), state);
        }
    }

    // Such a box is made lower than SetHeight() allows.
    void boxOfOneRowKeepsItsHeight() {
        HostedBuilder on;
        on.host.add("ONE", {"A"});
        on.builder.LoadSQL("select one.a from one");
        const int height = on.table("ONE")->Height;
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other;
        other.builder.RestoreState(state);
        QCOMPARE(other.table("ONE")->Height, height);
        QCOMPARE(other.builder.SaveState(), state);
    }

    // Half of a surrogate pair has no form in UTF-8, NUL none as it stands in JSON.
    void textsOfAnyCharactersComeBack() {
        HostedBuilder on(true);
        const QString text = u'\'' + QString(QChar(0xd83d)) + QStringLiteral("\U0001F600") +
                             QChar(0xde00) + QChar(0) + QChar(0x7f) + QChar(0xffff) +
                             QStringLiteral("\\ \t \"") + u'\'';
        on.builder.LoadSQL("select t.a from t where t.b = " + text);
        QVERIFY(on.builder.GetSQLStatment().contains(text));
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other(true);
        other.builder.RestoreState(state);
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
        QCOMPARE(restored(state, true), QByteArray(state));
    }

    void operandsOfBlanksAreUnfilled() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.b = 1");
        const QByteArray state = edited(on.builder.SaveState(), "\"1\"", "\" \\u0000\\t\"");
        on.builder.RestoreState(state);
        const QString blanks(9, u' ');
        QVERIFY(on.builder.GetSQLStatment().contains("(T.B = " + blanks + ")"));
        QCOMPARE(restored(on.builder.SaveState(), false), on.builder.SaveState());
    }

    void operandsOfAnOperatorThatIsGoneStay() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t where t.b between 1 and 2 and t.c is null");
        on.builder.Operators->Delete(operatorAt(on.builder, "BETWEEN"));
        on.builder.Operators->Delete(operatorAt(on.builder, "IS NULL"));
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other;
        other.builder.setOperators(*on.builder.Operators);
        other.builder.RestoreState(state);
        const TorvQDWhereRows& rows = *other.builder.WherePanel->rootRow()->SubRows;
        QCOMPARE(rows.Row(0)->Arguments, QStringList({"1", "2"}));
        QCOMPARE(rows.Row(1)->Arguments, QStringList());
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
        QCOMPARE(other.builder.SaveState(), state);
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

    // The statement is none that a database takes, but what is shown of it comes back.
    void boxesOfOneAliasComeBack_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("one table twice")
            << "select t.a from t join u v on t.a = v.a left join u v on t.b = v.x";
        QTest::newRow("two tables")
            << "select t.a from t join u v on t.a = v.x join dept v on t.b = v.budget";
        QTest::newRow("joined with each other") << "select v.a from t v join u v on v.b = v.x";
    }
    void boxesOfOneAliasComeBack() {
        QFETCH(QString, text);
        HostedBuilder on(true);
        on.builder.LoadSQL(text);
        QCOMPARE(on.stacking().count("V"), 2);
        QJsonObject state = QJsonDocument::fromJson(on.builder.SaveState()).object();
        state.remove("report");
        HostedBuilder other(true);
        other.builder.RestoreState(on.builder.SaveState());
        QJsonObject again = QJsonDocument::fromJson(other.builder.SaveState()).object();
        again.remove("report");
        QCOMPARE(QJsonDocument(again).toJson(), QJsonDocument(state).toJson());
        for (std::size_t index = 0; index < on.builder.WorkArea->Joins().size(); ++index) {
            const TorvQDJoin& saved = *on.builder.WorkArea->Joins()[index];
            const TorvQDJoin& restored = *other.builder.WorkArea->Joins()[index];
            QCOMPARE(restored.Table2->TableName, saved.Table2->TableName);
        }
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
        const auto row = [](const char* name, const char* from, const QByteArray& to,
                            const char* error) {
            QTest::newRow(name) << QByteArray(from) << to
                                << "The state cannot be restored: " + QString::fromLatin1(error);
        };
        row("no list", "\"tables\": [", "\"tables\": 5, \"was\": [", "tables is no list");
        row("no object", "\"where\": {", "\"where\": 5, \"was\": {", "where is no object");
        row("no text", "\"name\": \"T\"", "\"name\": 7", "tables[1].name is no text");
        row("blank table", "\"name\": \"T\"", "\"name\": \" \"", "tables[1] has no name");
        row("procedure", "\"procedure\": false", "\"procedure\": 1",
            "tables[0].procedure is neither true nor false");
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
            "[" +
                QByteArray("\"1\",").repeated(1000) + "\"1\"]",
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
        row("three bounds", "\"bounds\": [", "\"bounds\": [1, 2, 3], \"was\": [",
            "tables[0] has bounds that are not four numbers");
        row("link without its join", "\"joins\": [", "\"joins\": [], \"was\": [",
            "links[0] has no join between T and U");
        row("row of another column", "\"sortedRows\": [", "\"sortedRows\": [0, 0], \"was\": [",
            "sortedRows is not as long as the order");
        row("rows of one box", "\"shownRows\": [", "\"shownRows\": [2], \"was\": [",
            "shownRows is not as long as the tables");
        row("less than no rows", "\"shownRows\": [", "\"shownRows\": [2, -1], \"was\": [",
            "shownRows has a number below 0");
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

    void listsThatTellBoxesOfOneAliasApartMustFit_data() {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const char* key, const char* value,
                            const char* error) {
            QTest::newRow(name) << QByteArray(key) << QByteArray(value)
                                << "The state cannot be restored: " + QString::fromLatin1(error);
        };
        row("too few joins", "joinTables", "[[2, 1]]", "joinTables is not as long as the joins");
        row("three tables of a join", "joinTables", "[[2, 1], [2, 0, 1]]",
            "joinTables[1] does not name the tables of its join");
        row("table of another alias", "joinTables", "[[2, 1], [0, 2]]",
            "joinTables[1] does not name the tables of its join");
        row("no such table", "joinTables", "[[2, 1], [2, 3]]",
            "joinTables[1] does not name the tables of its join");
        row("one table for both", "joinTables", "[[2, 1], [2, 1]]", "two joins between T and V");
        row("too few links", "linkJoins", "[0]", "linkJoins is not as long as the links");
        row("no such join", "linkJoins", "[0, 2]", "linkJoins does not name the join of each link");
        row("both links of one join", "linkJoins", "[0, 0]",
            "a join without a link between T and V");
    }
    void listsThatTellBoxesOfOneAliasApartMustFit() {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, value);
        QFETCH(QString, error);
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t join u v on t.a = v.a left join u v on t.b = v.x");
        QJsonObject state = QJsonDocument::fromJson(on.builder.SaveState()).object();
        QVERIFY(state.contains(QString::fromLatin1(key)));
        state[QString::fromLatin1(key)] = QJsonDocument::fromJson(value).array();
        const QByteArray before = on.builder.SaveState();
        QCOMPARE(errorOf([&] { on.builder.RestoreState(QJsonDocument(state).toJson()); }), error);
        QCOMPARE(on.builder.SaveState(), before);
    }

    void rowOfAnEmptyCatalogueComesBack() {
        HostedBuilder on;
        on.builder.setOperators(TOperatorList());
        on.builder.WherePanel->rootRow()->SubRows->AddRow()->FieldName = "T.A";
        const QByteArray state = on.builder.SaveState();
        on.builder.Clear();
        on.builder.RestoreState(state);
        QCOMPARE(on.builder.SaveState(), state);
    }

    void valueThatNoSqlStandsForIsSavedAsNone_data() {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("date") << QVariant(QDate());
        QTest::newRow("time") << QVariant(QTime());
        QTest::newRow("moment") << QVariant(QDateTime());
        QTest::newRow("no number") << QVariant(std::numeric_limits<double>::quiet_NaN());
        QTest::newRow("another kind") << QVariant(QPoint(1, 2));
    }
    void valueThatNoSqlStandsForIsSavedAsNone() {
        QFETCH(QVariant, value);
        HostedBuilder on;
        on.host.addProc("P", {"A"}, TParams({{"X", ftString, ptInput, value}}));
        on.addProc("P");
        on.builder.RestoreState(on.builder.SaveState());
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), QString("P(:X)"));
        QVERIFY(!on.proc("P")->parameterRows().front()->Checked);
    }

    void linkOfWhatIsPutInIsRestored() {
        HostedBuilder on;
        on.host.addProc("P", {"A"}, TParams({{"X", ftString, ptInput}}));
        on.addProc("P");
        on.addTable("T");
        TorvQDTable* proc = on.table("P");
        TorvQDTable* table = on.table("T");
        (void)on.builder.WorkArea->AddLink(proc, table, proc->GetFieldItem("X"),
                                           table->GetFieldItem("A"));
        const QByteArray state = on.builder.SaveState();
        on.builder.RestoreState(state);
        QCOMPARE(on.builder.WorkArea->Links().size(), 1U);
        QCOMPARE(on.builder.SaveState(), state);
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
        errors.clear();
        on.addTable("U");
        QCOMPARE(errors, QStringList("A state cannot be restored while a handler is being asked"));
    }
};

QTEST_MAIN(SavedStateTest)
#include "tst_savedstate.moc"
