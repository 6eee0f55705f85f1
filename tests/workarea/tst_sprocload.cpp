// SPDX-License-Identifier: MIT
// Calls of procedures in a loaded FROM clause: the values that their parameters get from the
// arguments, and how these come back.
#include "data/SqlText.h"
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"
#include "workarea/ORVQDSProc.h"

#include <QLocale>

using orvtest::HostedBuilder;

namespace {

/// A host with the procedures P of one parameter X, whose type the test chooses, and Q of three.
class CallBuilder : public HostedBuilder {
public:
    explicit CallBuilder(bool keepMeaning, TFieldType type = ftInteger)
        : HostedBuilder(keepMeaning) {
        host.addProc("P", {"A", "B"}, TParams({{"X", type, ptInput}}));
        host.addProc("Q", {"A"},
                     TParams({{"U", ftInteger, ptInput, 7},
                              {"O", ftInteger, ptOutput},
                              {"V", ftString, ptInput, "old"},
                              {"W", ftFloat, ptInput}}));
    }
    void load(const QString& from) { builder.LoadSQL("select 1 from " + from); }
    [[nodiscard]] QString text() const { return builder.WorkArea->GetSQLStatment(); }
    /// The value of a parameter: its kind and text.
    [[nodiscard]] QString value(const QString& alias, const QString& parameter) const {
        const TorvQDListItem* row = proc(alias)->GetFieldItem(parameter);
        const QVariant held = TorvQDSProc::valueOf(*row);
        if (!held.isValid()) return "unset";
        if (held.isNull()) return "null";
        if (const auto sql = TorvQDSProc::sqlOf(*row)) return "sql " + *sql;
        return QString::fromLatin1(held.typeName()) + u' ' + held.toString();
    }
    /// "position text" of the findings, positions from FROM's body on.
    [[nodiscard]] QStringList spans() const {
        QStringList texts;
        for (const orv::Finding& finding : builder.LoadReport()) {
            texts << QString::number(finding.start - int(qstrlen("select 1 from "))) + u' ' +
                         finding.text;
        }
        return texts;
    }
};

}  // namespace

class SProcLoadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- values

    void argumentsBecomeValuesByType_data() {
        QTest::addColumn<TFieldType>("type");
        QTest::addColumn<QString>("argument");
        QTest::addColumn<QString>("value");
        const auto row = [](TFieldType type, const char* argument, const char* value) {
            QTest::addRow("%s %s", qPrintable(orv::fieldTypeIdentifier(type)), argument)
                << type << QString::fromLatin1(argument) << QString::fromLatin1(value);
        };
        row(ftInteger, "5", "int 5");
        row(ftInteger, "-5", "int -5");
        row(ftInteger, "- 5", "int -5");
        row(ftInteger, "9000000000", "qlonglong 9000000000");
        row(ftLargeint, "0", "int 0");
        row(ftInteger, "99999999999999999999", "sql 99999999999999999999");
        row(ftInteger, "1.5", "sql 1.5");
        row(ftInteger, "'5'", "QString 5");
        row(ftFloat, "5", "double 5");
        row(ftFloat, "1.5", "double 1.5");
        row(ftCurrency, "-0.25", "double -0.25");
        row(ftBCD, "0.1234567890123456789", "sql 0.1234567890123456789");
        row(ftString, "'a b'", "QString a b");
        row(ftString, "''", "QString ");
        row(ftString, "5", "int 5");
        row(ftString, "1.5", "double 1.5");
        row(ftString, "N'x'", "sql N'x'");
        row(ftString, "\"x\"", "sql \"x\"");
        row(ftUnknown, "5", "int 5");
        row(ftDate, "'2024-02-03'", "QString 2024-02-03");
        row(ftDate, "date '2024-02-03'", "sql DATE '2024-02-03'");
        row(ftBoolean, "T", "bool true");
        row(ftBoolean, "f", "bool false");
        row(ftBoolean, "false", "sql FALSE");
        row(ftString, "t", "sql T");
        row(ftInteger, "null", "null");
        row(ftString, "'null'", "QString null");
        row(ftInteger, "(5)", "sql (5)");
        row(ftInteger, "current_date", "sql CURRENT_DATE");
        row(ftInteger, ":X", "unset");
        row(ftInteger, ":Y", "sql :Y");
    }
    void argumentsBecomeValuesByType() {
        QFETCH(TFieldType, type);
        QFETCH(QString, argument);
        QFETCH(QString, value);
        for (const bool keepMeaning : {false, true}) {
            CallBuilder on(keepMeaning, type);
            on.load("p(" + argument + ")");
            QCOMPARE(on.spans(), QStringList());
            QCOMPARE(on.value("P", "X"), value);
            // What is written loads as the same, and is written again.
            const QString written = on.text();
            CallBuilder second(keepMeaning, type);
            second.load(written);
            QCOMPARE(second.spans(), QStringList());
            QCOMPARE(second.value("P", "X"), value);
            QCOMPARE(second.text(), written);
        }
    }

    void apostrophesAreWrittenAsTheyStood() {
        CallBuilder classic(false, ftString);
        classic.load("p('it''s')");
        QCOMPARE(classic.value("P", "X"), QString("sql 'it''s'"));
        QCOMPARE(classic.text(), QString("P('it''s')"));
        CallBuilder kept(true, ftString);
        kept.load("p('it''s')");
        QCOMPARE(kept.value("P", "X"), QString("QString it's"));
        QCOMPARE(kept.text(), QString("P('it''s')"));
    }

    void numbersAreThoseOfSqlInEveryCountry() {
        const QLocale old;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        CallBuilder on(true, ftFloat);
        on.load("p(1.5)");
        const QString value = on.value("P", "X");
        const QString text = on.text();
        QLocale::setDefault(old);
        QCOMPARE(value, QString("double 1.5"));
        QCOMPARE(text, QString("P(1.5)"));
    }

    void argumentsGoToInputParametersInTheirOrder() {
        CallBuilder on(true);
        on.load("q(1, 'a', 2.5)");
        QCOMPARE(on.value("Q", "U"), QString("int 1"));
        QCOMPARE(on.value("Q", "V"), QString("QString a"));
        QCOMPARE(on.value("Q", "W"), QString("double 2.5"));
        QVERIFY(!on.proc("Q")->GetFieldItem("O")->Checked);
    }

    void missingArgumentsTakeNoValueOfTheHost() {
        CallBuilder kept(true);
        kept.load("q(1)");
        QCOMPARE(kept.text(), QString("Q(1)"));
        QCOMPARE(kept.spans(), QStringList());
        CallBuilder classic(false);
        classic.load("q(1)");
        QCOMPARE(classic.text(), QString("Q(1, :V, :W)"));
        QCOMPARE(classic.spans(), QStringList("0 q(1)"));
    }

    void callWithoutBracketsComesBackWithoutThem_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* from, const char* text) {
            QTest::newRow(from) << QString::fromLatin1(from) << QString::fromLatin1(text);
        };
        row("q", "Q");
        row("n", "N");
        row("q r", "Q R");
        row("q as r", "Q R");
        row("t cross join q r", "T,\r\nQ R");
        row("t left join q r on r.a = t.a", "T\r\n   LEFT OUTER JOIN Q R ON (T.A = R.A)");
        row("q()", "Q()");
        row("q ( ) r", "Q() R");
        row("n()", "N()");
    }
    void callWithoutBracketsComesBackWithoutThem() {
        QFETCH(QString, from);
        QFETCH(QString, text);
        CallBuilder on(true);
        on.host.addProc("N", {"A"}, TParams());
        on.load(from);
        QCOMPARE(on.spans(), QStringList());
        QCOMPARE(on.text(), text);
        CallBuilder second(true);
        second.builder.RestoreState(on.builder.SaveState());
        QCOMPARE(second.text(), text);
        QCOMPARE(second.builder.SaveState(), on.builder.SaveState());
    }

    void firstValueBringsBrackets() {
        CallBuilder on(true);
        on.load("q");
        TorvQDSProc* box = on.proc("Q");
        TorvQDListItem* row = box->GetFieldItem("V");
        box->setParameter(row, 5);
        QCOMPARE(on.text(), QString("Q(:U, 5)"));
        box->setParameter(row, {});
        QCOMPARE(on.text(), QString("Q(:U, :V)"));
        box->setParameter(row, QVariant::fromValue(orv::SqlText()));
        QCOMPARE(on.text(), QString("Q"));
    }

    void plainRulesWriteBracketsAndTell() {
        CallBuilder on(false);
        on.host.addProc("N", {"A"}, TParams());
        on.load("n");
        QCOMPARE(on.text(), QString("N()"));
        QCOMPARE(on.spans(), QStringList("0 n"));
        on.load("p r");
        QCOMPARE(on.text(), QString("P(:X) R"));
        QVERIFY(on.spans().contains("0 p"));
        QVERIFY(!on.builder.SaveState().contains("\"brackets\""));
        on.load("n()");
        QCOMPARE(on.spans(), QStringList());
    }

    void placeholderInOtherLettersIsTold() {
        CallBuilder classic(false);
        classic.load("p(:x)");
        QCOMPARE(classic.text(), QString("P(:X)"));
        QCOMPARE(classic.spans(), QStringList("2 :x"));
        CallBuilder kept(true);
        kept.load("p(:x)");
        QCOMPARE(kept.text(), QString("P(:x)"));
        QCOMPARE(kept.spans(), QStringList());
    }

    // --- what is no call

    void namelessAnswersAreRefusedAndTheRestIsLoaded() {
        for (const bool keepMeaning : {false, true}) {
            CallBuilder on(keepMeaning);
            on.host.add("NF", {"A", ""});
            on.host.addProc("NP", {"A"}, TParams({{"X", ftInteger, ptInput}, {"", ftInteger}}));
            on.load("t, nf x, np(1, 2), u");
            QCOMPARE(on.tables(), QStringList({"T", "U"}));
            QCOMPARE(on.spans(), QStringList({"3 nf x", "9 np(1, 2)"}));
            for (const orv::Finding& finding : on.builder.LoadReport()) {
                QVERIFY(finding.what.contains("without a name"));
            }
            QCOMPARE(orvtest::brokenRule(on.builder), QString());
        }
    }

    void additionsOfDialectsAreNoAliases_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("lost");
        QTest::addColumn<QStringList>("tables");
        const auto row = [](const char* from, const char* lost, const QStringList& tables) {
            QTest::newRow(from) << QString::fromLatin1(from) << QString::fromLatin1(lost) << tables;
        };
        row("p(1) with ordinality", "5 with ordinality", {"P"});
        row("p(1) with ordinality, t", "5 with ordinality", {"P", "T"});
        row("p(1) with ordinality as r(a, n), t", "5 with ordinality as r(a, n)", {"P", "T"});
        row("t with (nolock), u", "2 with (nolock)", {"T", "U"});
        row("t with ordinality cross join u", "2 with ordinality", {"T", "U"});
        row("t not indexed, u", "2 not indexed", {"T", "U"});
    }
    void additionsOfDialectsAreNoAliases() {
        QFETCH(QString, from);
        QFETCH(QString, lost);
        QFETCH(QStringList, tables);
        for (const bool keepMeaning : {false, true}) {
            CallBuilder on(keepMeaning);
            on.host.add("ORDINALITY", {"A"});
            on.host.add("INDEXED", {"A"});
            on.load(from);
            QCOMPARE(on.tables(), tables);
            QCOMPARE(on.spans(), QStringList(lost));
        }
    }

    void quotedWordIsAnAlias() {
        CallBuilder on(true);
        on.load("p(1) \"WITH\"");
        QCOMPARE(on.text(), QString("P(1) \"WITH\""));
        QCOMPARE(on.spans(), QStringList());
    }

    void quotesOfDialectsAreTold_data() {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<bool>("isTold");
        const auto row = [](const char* argument, bool isTold) {
            QTest::newRow(argument) << QString::fromLatin1(argument) << isTold;
        };
        row("$$a b$$", true);
        row("$x$it's$x$", true);
        row("q'[a b]'", true);
        row("e'it\\'", true);
        row("$$ab$$", false);
        row("$1", false);
        row("'$$a b$$'", false);
        row("'it\\'", false);
        row("a$b", false);
    }
    void quotesOfDialectsAreTold() {
        QFETCH(QString, argument);
        QFETCH(bool, isTold);
        CallBuilder on(true);
        on.load("p(" + argument + ")");
        bool told = false;
        for (const orv::Finding& finding : on.builder.LoadReport()) {
            told = told || finding.what.startsWith("This kind of quoting is not known");
        }
        QCOMPARE(told, isTold);
        if (!isTold) QCOMPARE(on.spans(), QStringList());
    }

    void surplusArgumentsAreToldWhereTheyStand() {
        for (const bool keepMeaning : {false, true}) {
            CallBuilder on(keepMeaning);
            on.load("t, p(1, 2, f(3)) x");
            QCOMPARE(on.spans(), QStringList("8 2, f(3)"));
            QCOMPARE(on.proc("X")->GetParameters(), QString("1"));
        }
    }

    void bracketsOfATableAreToldWhereTheyStand() {
        CallBuilder on(true);
        on.load("t (1) x");
        QCOMPARE(on.spans(), QStringList("2 (1)"));
        QCOMPARE(on.text(), QString("T X"));
        QVERIFY(!on.proc("X"));
    }

    void theBuilderMayHaveNoReport() {
        // A node alone, as a host gives it to the diagram.
        for (const bool keepMeaning : {false, true}) {
            CallBuilder on(keepMeaning);
            const TorvQDParser root("SELECT 1 FROM Q(-1, 'x', 2.5) R, P(:X)");
            on.builder.WorkArea->LoadSQL(*root.Clause(inFrom));
            QCOMPARE(on.value("R", "U"), QString("int -1"));
            QCOMPARE(on.value("R", "V"), QString("QString x"));
            QCOMPARE(on.value("R", "W"), QString("double 2.5"));
            QCOMPARE(on.value("P", "X"), QString("unset"));
        }
    }

    // --- boxes

    void hostIsAskedForEachCall() {
        CallBuilder on(true);
        on.load("p(1), p(2) r");
        QCOMPARE(on.host.asked, QStringList({"P", "P"}));
        QCOMPARE(on.tables(), QStringList({"P", "P R"}));
        QCOMPARE(on.text(), QString("P(1),\r\nP(2) R"));
    }

    void secondMentionWithoutAnAliasIsTold() {
        for (const bool keepMeaning : {false, true}) {
            CallBuilder on(keepMeaning);
            on.load("p(1), p(2)");
            QCOMPARE(on.spans(), QStringList("6 p(2)"));
            QCOMPARE(on.text(), QString("P(1)"));
        }
    }

    void qualifiedProcedureIsCalledByItsWholeName() {
        CallBuilder on(true);
        on.host.addProc("S.P", {"A"}, TParams({{"X", ftInteger, ptInput}}));
        on.load("s.p(5)");
        QCOMPARE(on.text(), QString("S.P(5) P"));
        QCOMPARE(on.spans(), QStringList());
    }

    void boxStaysWhereItWas() {
        CallBuilder on(true);
        on.load("p(1), t");
        on.proc("P")->MoveTable(300, 200);
        const QPoint place(on.proc("P")->Left, on.proc("P")->Top);
        on.load("p(2), t");
        QCOMPARE(QPoint(on.proc("P")->Left, on.proc("P")->Top), place);
        QCOMPARE(on.value("P", "X"), QString("int 2"));
    }

    void refusedProcedureIsTold() {
        CallBuilder on(true);
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove, bool& can) {
            can = !qobject_cast<TorvQDSProc*>(box);
        };
        on.load("t, p(1) r");
        QCOMPARE(on.spans(), QStringList("3 p(1) r"));
        QCOMPARE(on.text(), QString("T"));
    }

    void parameterIsNoSideOfALink() {
        for (const bool keepMeaning : {false, true}) {
            orvtest::RecordedServices services;
            CallBuilder on(keepMeaning);
            on.load("t join p(1) on t.a = p.x");
            QVERIFY(on.builder.WorkArea->Links().empty());
            QVERIFY(!on.spans().isEmpty());
        }
    }

    // --- arguments that name tables

    void argumentsMayNameTablesInFront_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("spans");
        const auto row = [](const char* from, const QStringList& spans = {}) {
            QTest::newRow(from) << QString::fromLatin1(from) << spans;
        };
        row("t, p(t.a) x");
        row("t cross join p(t.a + 1) x");
        row("t join p(t.a) x on x.a = t.b");
        row("t join u on t.a = u.a join p(u.x) z on z.a = t.b");
        row("u, p(x)");
        row("p(t.a) x, t", {"2 t.a"});
        row("p(f(t.a)) x join t on t.b = x.a", {"2 f(t.a)"});
        row("p(p.a)", {"2 p.a"});
        row("p((select max(t.a) from t)), u");
        row("p(a => 5)");
        row("p(nowhere.a)");
    }
    void argumentsMayNameTablesInFront() {
        QFETCH(QString, from);
        QFETCH(QStringList, spans);
        CallBuilder on(true);
        on.load(from);
        QCOMPARE(on.spans(), spans);
        CallBuilder second(true);
        second.load(on.text());
        QCOMPARE(second.text(), on.text());
    }

    void turnedOrderIsToldOfEveryWayToNameATable_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("spans");
        const auto row = [](const char* from, const QStringList& spans) {
            QTest::newRow(from) << QString::fromLatin1(from) << spans;
        };
        // By the plain rules the procedure, which is loaded last, is written in front.
        row("t t1, p(t1 . a) r", {"8 t1 . a"});
        row("t t1, p(t1. a + 1) r", {"8 t1. a + 1"});
        row("t, p(a) r", {"5 a"});     // the procedure has such a column, too
        row("t, u, p(a) r", {"8 a"});  // two other tables have it
        row("t, p(nowhere) r", {});
        row("p(a) r", {});
    }
    void turnedOrderIsToldOfEveryWayToNameATable() {
        QFETCH(QString, from);
        QFETCH(QStringList, spans);
        CallBuilder classic(false);
        classic.load(from);
        QCOMPARE(classic.spans(), spans);
        CallBuilder kept(true);
        kept.load(from);
        QCOMPARE(kept.spans(), QStringList());
    }

    // --- states

    void statesKeepEveryKindOfValue_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("kind");
        const auto row = [](const char* kind, const QVariant& value) {
            QTest::addRow("%s %s", kind, value.typeName()) << value << QString::fromLatin1(kind);
        };
        row("null", QVariant::fromValue(nullptr));
        row("integer", 5);
        row("integer", qlonglong(9000000000));
        row("integer", qulonglong(18446744073709551615ULL));
        row("float", 0.1);
        row("text", "it's\r\n\"so\"");
        row("boolean", true);
        row("boolean", false);
        row("date", QDate(2024, 2, 3));
        row("time", QTime(4, 5, 6, 7));
        row("datetime", QDateTime(QDate(2024, 2, 3), QTime(4, 5, 6)));
        row("sql", QVariant::fromValue(orv::SqlText{"T.A + 1"}));
        row("sql", QVariant::fromValue(orv::SqlText{""}));
    }
    void statesKeepEveryKindOfValue() {
        QFETCH(QVariant, value);
        QFETCH(QString, kind);
        CallBuilder on(true);
        TorvQDSProc* box = on.addProc("Q");
        box->GetFieldItem("O")->SetCheck(true);
        box->setParameter(box->GetFieldItem("V"), value);
        box->setParameter(box->GetFieldItem("U"), {});
        const QByteArray state = on.builder.SaveState();
        QVERIFY(state.contains("\"procedure\": true"));
        QVERIFY(state.contains("\"kind\": \"" + kind.toLatin1() + "\""));
        CallBuilder second(true);
        second.builder.RestoreState(state);
        QCOMPARE(second.builder.SaveState(), state);
        QCOMPARE(second.builder.GetSQLStatment(), on.builder.GetSQLStatment());
        const TorvQDSProc* restored = second.proc("Q");
        QVERIFY(restored);
        QCOMPARE(TorvQDSProc::valueOf(*restored->GetFieldItem("V")), value);
        QVERIFY(!restored->GetFieldItem("U")->Checked);
        QVERIFY(restored->GetFieldItem("O")->Checked);
        QCOMPARE(restored->GetFieldItem("W")->FieldType, ftFloat);
        QCOMPARE(restored->Height, box->Height);
        QCOMPARE(orvtest::brokenRule(second.builder), QString());
    }

    void statesKeepLinksOfProcedures() {
        CallBuilder on(true);
        on.load("t left join q(1, 'a', 2.5) r on r.o = t.a");
        QCOMPARE(on.spans(), QStringList());
        CallBuilder second(true);
        second.builder.RestoreState(on.builder.SaveState());
        QCOMPARE(second.text(), on.text());
        QCOMPARE(second.text(), QString("T\r\n   LEFT OUTER JOIN Q(1, 'a', 2.5) R ON (T.A = R.O)"));
    }

    void badParametersOfAStateAreRefused_data() {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* from, const char* to, const char* error) {
            QTest::newRow(error) << QByteArray(from) << QByteArray(to)
                                 << "The state cannot be restored: tables[0].parameters[0] " +
                                        QString::fromLatin1(error);
        };
        row("ptInput", "ptOther", "has an unknown direction: ptOther");
        row("\"kind\": \"integer\"", "\"kind\": \"number\"", "has no value of the kind number");
        row("\"value\": \"5\"", "\"value\": \"five\"", "has no value of the kind integer");
        row("\"type\": \"Integer\"", "\"type\": \"Int\"", "has an unknown type: Int");
        row("\"name\": \"X\"", "\"name\": \"\"", "has no name");
    }
    void badParametersOfAStateAreRefused() {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QString, error);
        CallBuilder on(true);
        on.load("p(5)");
        QByteArray state = on.builder.SaveState();
        QVERIFY(state.contains(from));
        state.replace(from, to);
        on.load("t");
        QCOMPARE(orvtest::errorOf([&] { on.builder.RestoreState(state); }), error);
        QCOMPARE(on.text(), QString("T"));
    }
};

QTEST_MAIN(SProcLoadTest)
#include "tst_sprocload.moc"
