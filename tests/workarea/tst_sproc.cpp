// SPDX-License-Identifier: MIT
// The box of a stored procedure: its rows, its argument list, and how a value is entered.
#include "data/SqlText.h"
#include "support/BuilderTools.h"
#include "support/LocaleScope.h"
#include "toolkit/AccessibleEvents.h"
#include "workarea/ORVQDSProc.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QDateTime>

#include <limits>

using orvtest::HostedBuilder;
using orvtest::LocaleScope;

namespace {

QVariant sql(const QString& text) {
    return QVariant::fromValue(orv::SqlText{text});
}

const QVariant sqlNull = QVariant::fromValue(nullptr);

TParam input(const QString& name, const QVariant& value = {}, TFieldType type = ftInteger) {
    return {name, type, ptInput, value};
}

TParams inputs(int count) {
    TParams params;
    for (int index = 0; index < count; ++index) {
        params.Items.push_back(input("P" + QString::number(index)));
    }
    return params;
}

/// A builder with one procedure P; its columns are A and B.
class OneProc : public HostedBuilder {
public:
    explicit OneProc(const TParams& params, bool keepMeaning = false,
                     const QStringList& fields = {"A", "B"})
        : HostedBuilder(keepMeaning) {
        host.addProc("P", fields, params);
        box = addProc("P");
        changes = 0;
    }
    [[nodiscard]] TorvQDListItem* row(const QString& name) const {
        for (TorvQDListItem* item : box->parameterRows()) {
            if (item->Name == name) return item;
        }
        return nullptr;
    }
    [[nodiscard]] QString text() const { return builder.WorkArea->GetSQLStatment(); }

    TorvQDSProc* box;
};

}  // namespace

class SProcTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the box

    void parametersAreRowsBelowTheFields() {
        const OneProc on(TParams({input("X"),
                                  {"my out", ftString, ptOutput},
                                  {"Z", ftFloat, ptInputOutput},
                                  {"R", ftDate, ptResult}}));
        QStringList rows;
        for (const auto& item : on.box->Items) {
            rows << item->Name + u' ' + orv::fieldTypeIdentifier(item->FieldType) + u' ' +
                        orv::paramTypeIdentifier(item->ParamType);
        }
        QCOMPARE(rows, QStringList({"A ftString ptOutput", "B ftString ptOutput",
                                    "X ftInteger ptInput", "\"my out\" ftString ptOutput",
                                    "Z ftFloat ptInputOutput", "R ftDate ptResult"}));
        QCOMPARE(on.builder.AllFields().names(), QStringList({"P.A", "P.B", "P.\"my out\""}));
    }

    void parametersAreCopied() {
        TParams params({input("X", 5)});
        const OneProc on(params);
        params.Items.front().Name = "OTHER";
        QCOMPARE(on.box->Params().Items.size(), std::size_t(1));
        QCOMPARE(on.box->Params().Items.front().Name, QString("X"));
        QCOMPARE(on.box->Params().Items.front().Value, QVariant(5));
    }

    void valuesTickInputRows() {
        const OneProc on(TParams(
            {input("X", 5), input("Y", sqlNull), input("Z"), {"O", ftInteger, ptOutput, 7}}));
        QVERIFY(on.row("X")->Checked && !on.row("X")->IsNull && !on.row("X")->Busy);
        QCOMPARE(on.row("X")->Value, QVariant(5));
        QVERIFY(on.row("Y")->Checked && on.row("Y")->IsNull);
        QVERIFY(!on.row("Z")->Checked && on.row("Z")->IsNull);
        // A tick of an output row would say that the field is selected.
        QVERIFY(!on.row("O")->Checked);
        QCOMPARE(on.box->FieldState, 0);
    }

    void tickingInTheConstructorAsksNobody() {
        HostedBuilder on;
        int asked = 0;
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem*) { ++asked; };
        on.host.addProc("P", {"A"}, TParams({input("X", 5)}));
        QVERIFY(on.addProc("P"));
        QCOMPARE(asked, 0);
        QCOMPARE(on.changes, 1);
    }

    void visibleRowsAreSixAtMost_data() {
        QTest::addColumn<int>("fields");
        QTest::addColumn<int>("params");
        QTest::addColumn<int>("visible");
        QTest::newRow("nothing") << 0 << 0 << 0;
        QTest::newRow("ten parameters") << 0 << 10 << 6;
        QTest::newRow("200 parameters") << 2 << 200 << 6;
        QTest::newRow("six together") << 2 << 4 << 6;
        QTest::newRow("five together") << 3 << 2 << 5;
        QTest::newRow("many fields") << 9 << 1 << 6;
    }
    void visibleRowsAreSixAtMost() {
        QFETCH(int, fields);
        QFETCH(int, params);
        QFETCH(int, visible);
        QStringList names;
        for (int index = 0; index < fields; ++index) names << "F" + QString::number(index);
        const OneProc on(inputs(params), false, names);
        QCOMPARE(on.box->VisibleCount, visible);
        QCOMPARE(int(on.box->Items.size()), fields + params);
        QCOMPARE(on.box->Height, (on.box->ItemHeight + 1) * visible + on.box->CaptionHeight +
                                     on.box->BorderWidth + 2 * on.box->Indent);
    }

    void colourIsThatOfProcedures() {
        const OneProc on({});
        on.builder.WorkAreaOptions->SetProcedureColor(Qt::cyan);
        QCOMPARE(on.box->GetClientColor(), QColor(Qt::cyan));
        on.builder.WorkAreaOptions->SetProcedureColor(Qt::green);
        QCOMPARE(on.box->GetClientColor(), QColor(Qt::green));
    }

    void parameterWithoutANameIsRefused() {
        HostedBuilder on;
        on.host.addProc("P", {"A"}, TParams({input("")}));
        QCOMPARE(orvtest::errorOf([&] { on.addProc("P"); }),
                 QString("A parameter must have a name"));
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
    }

    void nothingGivenMakesABoxWithoutRows() {
        HostedBuilder on;
        TorvQDTable* box = on.builder.ListOfTables->AddProc("P", nullptr, nullptr);
        QVERIFY(qobject_cast<TorvQDSProc*>(box));
        QVERIFY(box->Items.empty());
        QCOMPARE(on.builder.WorkArea->GetSQLStatment(), QString("P()"));
    }

    void hostMayRefuseTheBox() {
        HostedBuilder on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            can = false;
        };
        on.host.addProc("P", {"A"}, inputs(1));
        QVERIFY(!on.addProc("P"));
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
    }

    void otherRowsThatAreAssignedHaveNoParameters() {
        OneProc on(inputs(2));
        const TDataSet other = orvtest::stringFields({"C", "D", "E", "F"});
        on.box->AssignItems(&other);
        QVERIFY(on.box->parameterRows().empty());
        QCOMPARE(on.text(), QString("P()"));
    }

    // --- the argument list

    void callStandsInFrom() {
        const OneProc on(TParams({input("X"), input("Y", 5), input("Z", sqlNull)}));
        QCOMPARE(on.box->GetParameters(), QString(":X, 5, NULL"));
        QCOMPARE(on.text(), QString("P(:X, 5, NULL)"));
    }

    void onlyInputParametersAreArguments() {
        const OneProc on(TParams({{"U", ftInteger, ptUnknown, 1},
                                  {"O", ftInteger, ptOutput, 2},
                                  {"IO", ftInteger, ptInputOutput, 3},
                                  {"R", ftInteger, ptResult, 4}}));
        QCOMPARE(on.text(), QString("P()"));
    }

    void aliasStandsBehindTheCall() {
        OneProc on(TParams({input("X", 5)}));
        QVERIFY(on.addProc("P"));
        QCOMPARE(on.text(), QString("P(5) P1,\r\nP(5)"));
    }

    void joinedCallsHaveTheirArguments() {
        OneProc on(TParams({input("X", 5)}));
        TorvQDTable* table = on.addTable("T");
        on.builder.WorkArea->AddLink(table, on.box, table->GetFieldItem("A"),
                                     on.box->GetFieldItem("B"));
        QCOMPARE(on.text(), QString("T\r\n   INNER JOIN P(5) ON (T.A = P.B)"));
        on.builder.WorkArea->TableToFront(on.box);
        QCOMPARE(on.text(), QString("P(5)\r\n   INNER JOIN T ON (P.B = T.A)"));
    }

    void placeholderNames_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("placeholder");
        QTest::newRow("plain") << "X_1$"
                               << ":X_1$";
        QTest::newRow("blank") << "my param"
                               << ":MY_PARAM";
        QTest::newRow("punctuation") << "-.!"
                                     << ":Par3";
        QTest::newRow("letters beyond ASCII") << QString::fromUtf8("größe") << ":GRSSE";
        QTest::newRow("other letters only") << QString::fromUtf8("żółć") << ":Par3";
        QTest::newRow("quoted") << "\"a\"\"b\""
                                << ":AB";
    }
    void placeholderNames() {
        QFETCH(QString, name);
        QFETCH(QString, placeholder);
        const OneProc on(TParams({input("FIRST", 1), input(name)}));
        QCOMPARE(on.box->GetParameters(), "1, " + placeholder);
    }

    void values_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QVariant& value, const char* text) {
            QTest::newRow(name) << value << QString::fromUtf8(text);
        };
        row("null", sqlNull, "NULL");
        row("null of a type", QVariant(QMetaType(QMetaType::Int)), "NULL");
        row("int", -5, "-5");
        row("short", QVariant::fromValue(short(-7)), "-7");
        row("unsigned", 4000000000u, "4000000000");
        row("64 bits", std::numeric_limits<qint64>::min(), "-9223372036854775808");
        row("unsigned 64 bits", std::numeric_limits<quint64>::max(), "18446744073709551615");
        row("byte", QVariant::fromValue(uchar(200)), "200");
        row("double", 1.5, "1.5");
        row("round double", 100000.0, "100000");
        row("small double", 0.001, "0.001");
        row("precise double", 0.1 + 0.2, "0.30000000000000004");
        row("power of ten", 1e20, "1E+20");
        row("float", 0.1F, "0.1");
        row("large float", 2500000.0F, "2500000");
        row("true", true, "T");
        row("false", false, "F");
        row("string", "abc", "'abc'");
        row("empty string", "", "''");
        row("bytes", QByteArray("abc"), "'abc'");
        row("character", QVariant(QChar('x')), "'x'");
        row("sql", sql("O.DATA"), "O.DATA");
    }
    void values() {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        for (const bool keepMeaning : {false, true}) {
            const OneProc on(TParams({input("X", value), input("Y", 1)}), keepMeaning);
            QCOMPARE(on.box->GetParameters(), text + ", 1");
        }
    }

    void valueThatCannotBeWrittenIsLeftOutWithItsComma() {
        OneProc on(TParams({input("X", 1), input("Y", QPoint(1, 2)), input("Z", 3)}));
        QCOMPARE(on.box->GetParameters(), QString("1, 3"));
        QStringList told;
        for (const orv::Finding& finding : on.builder.Validate()) told << finding.text;
        QCOMPARE(told, QStringList("P.Y"));
    }

    void valueThatNoSqlStandsForIsAPlaceholder_data() {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("no number") << QVariant(std::numeric_limits<double>::quiet_NaN());
        QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity());
        QTest::newRow("below all") << QVariant(-std::numeric_limits<float>::infinity());
        QTest::newRow("date") << QVariant(QDate());
        QTest::newRow("time") << QVariant(QTime());
        QTest::newRow("moment") << QVariant(QDateTime());
        QTest::newRow("late year") << QVariant(QDate(10000, 1, 1));
        QTest::newRow("early year") << QVariant(QDate(-1, 1, 1));
        QTest::newRow("late moment") << QVariant(QDateTime(QDate(12000, 1, 1), QTime(1, 0)));
    }
    void valueThatNoSqlStandsForIsAPlaceholder() {
        QFETCH(QVariant, value);
        for (const bool keepMeaning : {false, true}) {
            OneProc on(TParams({input("X", 1), input("Y", 2)}), keepMeaning);
            QCOMPARE(orvtest::errorOf([&] { on.box->setParameter(on.row("X"), value); }),
                     QString("The value of parameter X cannot be written as SQL"));
            QCOMPARE(on.text(), QString("P(1, 2)"));
            QCOMPARE(on.changes, 0);
            on.row("X")->Value = value;
            QCOMPARE(on.text(), QString("P(:X, 2)"));
            QStringList told;
            for (const orv::Finding& finding : on.builder.Validate()) told << finding.text;
            QCOMPARE(told, QStringList("P.X"));
        }
    }

    void momentOfAnotherZoneIsWrittenInLocalTime() {
        const QDateTime local(QDate(2024, 2, 3), QTime(4, 5, 6));
        const TParams params({input("X", local.toUTC(), ftDateTime),
                              input("Y", local.toOffsetFromUtc(-5 * 3600), ftDateTime),
                              input("D", local.toOffsetFromUtc(-13 * 3600), ftDate)});
        QCOMPARE(OneProc(params, true).box->GetParameters(),
                 QString("'2024-02-03T04:05:06', '2024-02-03T04:05:06', '2024-02-03'"));
        const TParams same({input("X", local, ftDateTime), input("Y", local, ftDateTime),
                            input("D", local, ftDate)});
        QCOMPARE(OneProc(params).box->GetParameters(), OneProc(same).box->GetParameters());
    }

    void tickedRowWithoutAValueIsAPlaceholder() {
        const OneProc on(inputs(1));
        on.row("P0")->Checked = true;
        on.row("P0")->IsNull = false;
        QCOMPARE(on.box->GetParameters(), QString(":P0"));
    }

    void apostrophesAreDoubledWithTheMeaningKept() {
        const TParams params({input("X", "it's"), input("Y", "''")});
        QCOMPARE(OneProc(params, false).box->GetParameters(), QString("'it's', ''''"));
        QCOMPARE(OneProc(params, true).box->GetParameters(), QString("'it''s', ''''''"));
    }

    void decimalCommaIsAFullStop() {
        const LocaleScope locale(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(QLocale().toString(1.5), QString("1,5"));
        const OneProc on(TParams({input("X", 1.5), input("Y", 1234567.25), input("Z", 1.5F)}));
        QCOMPARE(on.box->GetParameters(), QString("1.5, 1234567.25, 1.5"));
    }

    void datesAreIsoWithTheMeaningKept_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<TFieldType>("type");
        QTest::addColumn<QString>("text");
        const QDate date(2024, 2, 3);
        const QTime time(4, 5, 6);
        const auto row = [](const char* name, const QVariant& value, TFieldType type,
                            const char* text) {
            QTest::newRow(name) << value << type << QString::fromLatin1(text);
        };
        row("date", date, ftDate, "'2024-02-03'");
        row("date of a moment", QDateTime(date, time), ftDate, "'2024-02-03'");
        row("time", time, ftTime, "'04:05:06'");
        row("time of a moment", QDateTime(date, time), ftTime, "'04:05:06'");
        row("moment", QDateTime(date, time), ftDateTime, "'2024-02-03T04:05:06'");
        row("moment of another type", QDateTime(date, time), ftString, "'2024-02-03T04:05:06'");
        row("date for a moment", date, ftDateTime, "'2024-02-03T00:00:00'");
        row("thousandths", QTime(4, 5, 6, 70), ftTime, "'04:05:06.070'");
    }
    void datesAreIsoWithTheMeaningKept() {
        QFETCH(QVariant, value);
        QFETCH(TFieldType, type);
        QFETCH(QString, text);
        QCOMPARE(OneProc(TParams({input("X", value, type)}), true).box->GetParameters(), text);
    }

    void datesAreThoseOfTheCountryElse() {
        const LocaleScope locale(QLocale(QLocale::German, QLocale::Germany));
        QVERIFY(QLocale().toString(QDate(2024, 2, 3), QLocale::ShortFormat).startsWith("03.02."));
        const QDate date(2024, 2, 3);
        const QTime time(4, 5, 6);
        const TParams params({input("X", date, ftDate), input("Y", time, ftTime),
                              input("Z", QDateTime(date, time), ftDateTime),
                              input("D", QDateTime(date, time), ftDate),
                              input("T", QDateTime(date, time), ftTime)});
        QCOMPARE(OneProc(params).box->GetParameters(),
                 QString("'%1', '%2', '%3', '%1', '%2'")
                     .arg(QLocale().toString(date, QLocale::ShortFormat),
                          QLocale().toString(time, QLocale::ShortFormat),
                          QLocale().toString(QDateTime(date, time), QLocale::ShortFormat)));
    }

    void argumentThatIsLeftOutStandsAtTheEndOnly() {
        OneProc on(TParams({input("X", sql("")), input("Y", sql(""))}));
        QCOMPARE(on.text(), QString("P()"));
        on.box->setParameter(on.row("Y"), 5);
        QCOMPARE(on.text(), QString("P(:X, 5)"));
    }

    // --- values by program

    void setParameterSetsTheRowAndTellsOnce() {
        OneProc on(inputs(1));
        on.box->setParameter(on.row("P0"), "a");
        QCOMPARE(on.text(), QString("P('a')"));
        QCOMPARE(on.changes, 1);
        on.box->setParameter(on.row("P0"), sqlNull);
        QCOMPARE(on.text(), QString("P(NULL)"));
        on.box->setParameter(on.row("P0"), {});
        QCOMPARE(on.text(), QString("P(:P0)"));
        QCOMPARE(on.changes, 3);
        QCOMPARE(on.box->currentParams().Items.front().Value, QVariant());
    }

    void setParameterLeavesFieldsAlone() {
        OneProc on(inputs(1));
        on.box->setParameter(on.box->GetFieldItem("A"), 5);
        on.box->setParameter(nullptr, 5);
        QVERIFY(!on.box->GetFieldItem("A")->Checked);
        QCOMPARE(on.text(), QString("P(:P0)"));
    }

    void setParameterLeavesRowsOfAnotherKindAlone() {
        OneProc on(TParams({{"U", ftInteger, ptUnknown, 1},
                            {"O", ftInteger, ptOutput, {}},
                            {"IO", ftInteger, ptInputOutput, 3},
                            {"R", ftInteger, ptResult, 4}}));
        for (const char* name : {"U", "O", "IO", "R"}) on.box->setParameter(on.row(name), 7);
        QCOMPARE(on.row("U")->Value, QVariant(1));
        QVERIFY(!on.row("O")->Checked);
        QCOMPARE(on.row("IO")->Value, QVariant(3));
        QCOMPARE(on.row("R")->Value, QVariant(4));
        QCOMPARE(on.changes, 0);
    }

    void currentParamsHaveTheValuesOfTheRows() {
        OneProc on(TParams({input("X", 5), input("Y", "a")}));
        on.box->setParameter(on.row("X"), 1.5);
        const TParams params = on.box->currentParams();
        QCOMPARE(params.Items[0].Value, QVariant(1.5));
        QCOMPARE(params.Items[1].Value, QVariant("a"));
        QCOMPARE(on.box->Params().Items[0].Value, QVariant(5));
    }

    // --- entering a value

    void enteringAValueTellsOnce() {
        OneProc on(inputs(2));
        QStringList asked;
        on.builder.OnEnterProcParameter = [&](QObject* sender, TorvQDTable* box,
                                              TorvQDListItem* item) {
            asked << item->Name;
            QCOMPARE(sender, &on.builder);
            QCOMPARE(box, on.box);
            QVERIFY(item->Busy);
            item->SetCheck(true);
            item->IsNull = false;
            item->Value = 5;
        };
        on.row("P1")->SetCheck(true);
        QCOMPARE(asked, QStringList("P1"));
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.row("P1")->Busy);
        QCOMPARE(on.text(), QString("P(:P0, 5)"));
        QCOMPARE(on.columns(), QStringList());
    }

    void enteringNothingTellsNobody() {
        OneProc on(inputs(1));
        on.row("P0")->SetCheck(true);  // nobody listens
        QVERIFY(!on.row("P0")->Checked);
        on.builder.OnEnterProcParameter = [](QObject*, TorvQDTable*, TorvQDListItem*) {};
        on.row("P0")->SetCheck(true);
        QVERIFY(!on.row("P0")->Checked);
        QCOMPARE(on.changes, 0);
    }

    void enteringBySetParameterTellsOnce() {
        OneProc on(inputs(2));
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem* item) {
            on.box->setParameter(item, 1);
            on.box->setParameter(item, 2);
        };
        on.row("P0")->SetCheck(true);
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.text(), QString("P(2, :P1)"));
    }

    void boxThatIsNotOnTheDiagramAsksForNothing() {
        OneProc on(inputs(1));
        int asked = 0;
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem*) { ++asked; };
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove, bool&) {
            if (auto* added = qobject_cast<TorvQDSProc*>(box)) {
                added->parameterRows().front()->SetCheck(true);
            }
        };
        on.addProc("P");
        QCOMPARE(asked, 0);
        on.builder.OnAddRemoveTable = nullptr;
        TorvQDListItem* row = on.row("P0");
        on.box->CloseTable();
        row->SetCheck(true);
        QCOMPARE(asked, 0);
        on.changes = 0;
        on.box->setParameter(row, 5);
        QCOMPARE(on.changes, 0);
    }

    void handlerThatRaisesLeavesTheRowUsable() {
        OneProc on(inputs(1));
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem* item) {
            on.box->setParameter(item, 5);
            throw orv::Error("no value");
        };
        QCOMPARE(orvtest::errorOf([&] { on.row("P0")->SetCheck(true); }), QString("no value"));
        QVERIFY(!on.row("P0")->Busy);
        QCOMPARE(on.changes, 1);
        on.builder.OnEnterProcParameter = nullptr;
        on.box->setParameter(on.row("P0"), 6);
        QCOMPARE(on.changes, 2);
    }

    void handlerMayLoadAnotherStatement() {
        OneProc on(inputs(1));
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem*) {
            on.builder.LoadSQL("select t.a from t");
        };
        on.row("P0")->SetCheck(true);
        QCOMPARE(on.tables(), QStringList("T"));
        QCOMPARE(on.changes, 1);
        verifyAgrees(on);
    }

    void handlerMayCloseTheBox() {
        OneProc on(TParams({input("X", 5)}));
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable* box, TorvQDListItem*) {
            on.builder.ListOfTables->DeleteTable(box);
        };
        on.row("X")->SetCheck(true);
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        verifyAgrees(on);
    }

    void handlerMayDeleteTheBuilder() {
        auto builder = std::make_unique<TorvQueryBuilder>();
        const TParams params = inputs(1);
        TorvQDTable* box =
            builder->ListOfTables->AddProc("P", orvtest::stringFields({"A"}), params);
        builder->OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem*) {
            builder.reset();
        };
        box->Items.back()->SetCheck(true);
        QVERIFY(!builder);
    }

    // --- ticks and names

    void tickingAllTicksFieldsOnly() {
        OneProc on(TParams({input("A"), input("Y", 5)}));
        int asked = 0;
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem*) { ++asked; };
        on.box->SetFieldState(2);
        QCOMPARE(asked, 0);
        QCOMPARE(on.columns(), QStringList({"A||P.A", "B||P.B"}));
        QCOMPARE(on.box->FieldState, 2);
        QVERIFY(!on.row("A")->Checked && on.row("Y")->Checked);
        on.box->SetFieldState(0);
        QVERIFY(on.row("Y")->Checked);
        QCOMPARE(on.text(), QString("P(:A, 5)"));
    }

    void parameterIsNoField() {
        const OneProc on(TParams({input("X"), input("A")}));
        QVERIFY(!on.builder.resolveField("P.X"));
        QVERIFY(!on.builder.resolveField("X"));
        QVERIFY(on.builder.resolveField("P.A"));
        QCOMPARE(on.box->GetFieldItem("A")->ParamType, ptOutput);
        QCOMPARE(on.box->GetFieldItem("X")->ParamType, ptInput);
        QCOMPARE(on.builder.fieldsOf("P").size(), std::size_t(2));
    }

    void outputParameterIsAField() {
        OneProc on(TParams({{"A", ftInteger, ptInput}, {"O", ftInteger, ptOutput}}), false, {});
        on.box->toggle(on.box->GetFieldItem("O"));
        QCOMPARE(on.columns(), QStringList("O||P.O"));
        QCOMPARE(on.builder.GetSQLStatment(), QString("SELECT P.O\r\nFROM P(:A)"));
        verifyAgrees(on);
    }

    // --- what screen readers say

    void parameterSaysItsValue() {
        OneProc on(TParams({input("X"), {"Y", ftString, ptInput, "a"}}));
        QAccessibleInterface* box = QAccessible::queryAccessibleInterface(on.box);
        QAccessibleInterface* row = box->child(2);
        const auto says = [&](QAccessible::Text kind) { return row->text(kind); };
        QCOMPARE(says(QAccessible::Name), QString("X"));
        QCOMPARE(says(QAccessible::Value), QString("not set"));
        QCOMPARE(says(QAccessible::Description), QString("Integer, not set"));
        on.box->setParameter(on.row("X"), 5);
        QCOMPARE(says(QAccessible::Value), QString("5"));
        on.box->setParameter(on.row("X"), sqlNull);
        QCOMPARE(says(QAccessible::Value), QString("NULL"));
        on.box->setParameter(on.row("X"), sql(""));
        QCOMPARE(says(QAccessible::Value), QString("left out"));
        QCOMPARE(box->child(3)->text(QAccessible::Value), QString("'a'"));
        QCOMPARE(row->role(), QAccessible::ListItem);
        QVERIFY(!row->state().checkable);
        QVERIFY(!row->state().checked);
        QCOMPARE(box->text(QAccessible::Description), QString("Procedure, 0 of 2 fields selected"));
    }

    void parameterSaysHowItIsActivated() {
        OneProc on(inputs(1));
        QAccessibleInterface* row = QAccessible::queryAccessibleInterface(on.box)->child(2);
        QAccessibleActionInterface* actions = row->actionInterface();
        const QString press = QAccessibleActionInterface::pressAction();
        QVERIFY(actions->actionNames().contains(press));
        QVERIFY(!actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
        QCOMPARE(actions->localizedActionDescription(press),
                 QString("Enter the value of the parameter"));
        QCOMPARE(actions->keyBindingsForAction(press), QStringList("Space"));
    }

    void readersHearOfANewValue() {
        OneProc on(inputs(1));
        QStringList heard;
        const auto old = orv::setAccessibleListener([&](QAccessibleEvent& event) {
            QAccessibleInterface* about = event.accessibleInterface();
            if (event.type() == QAccessible::DescriptionChanged && about) {
                heard << about->text(QAccessible::Description);
            }
        });
        on.builder.OnEnterProcParameter = [](QObject*, TorvQDTable*, TorvQDListItem* item) {
            item->Checked = true;
            item->IsNull = true;
        };
        on.row("P0")->SetCheck(true);
        orv::setAccessibleListener(old);
        QCOMPARE(heard, QStringList("Integer, NULL"));
    }

    // --- what arguments name

    void argumentsFollowAliases() {
        OneProc on(TParams({input("X", sql("T.A + 1")), input("Y", "T.A")}), true);
        on.builder.WorkArea->renameTable(on.addTable("T"), "T9");
        QCOMPARE(on.text(), QString("P(T9.A + 1, 'T.A'),\r\nT T9"));
    }

    void validateTellsOfLinkedParameters() {
        OneProc on(inputs(1));
        TorvQDTable* table = on.addTable("T");
        on.builder.WorkArea->AddLink(table, on.box, table->GetFieldItem("A"), on.row("P0"));
        QStringList texts;
        for (const orv::Finding& finding : on.builder.Validate()) texts << finding.text;
        QCOMPARE(texts, QStringList("P.P0"));
    }

    void validateTellsOfArguments() {
        OneProc on(TParams({input("X", sql("T.A"))}), true);
        const auto told = [&] {
            QStringList texts;
            for (const orv::Finding& finding : on.builder.Validate()) texts << finding.text;
            return texts;
        };
        QCOMPARE(told(), QStringList("T.A"));  // no such table
        on.addTable("T");
        QCOMPARE(told(), QStringList("T.A"));  // behind the call
        on.builder.LoadSQL("select t.b, p.a from t, p(t.a)");
        QCOMPARE(told(), QStringList());  // linked by the argument, too
        on.builder.LoadSQL("select t.b, p.a from t, p(5)");
        QCOMPARE(told(), QStringList("P"));
    }

private:
    static void verifyAgrees(const HostedBuilder& on) {
        auto& builder = const_cast<TorvQueryBuilder&>(on.builder);
        QCOMPARE(orvtest::brokenRule(builder), QString());
    }
};

QTEST_MAIN(SProcTest)
#include "tst_sproc.moc"
