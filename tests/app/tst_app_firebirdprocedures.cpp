// SPDX-License-Identifier: MIT
#include "FirebirdShop.h"
#include "data/SqlText.h"
#include "database/FirebirdTypes.h"
#include "parameters/ParameterText.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "workarea/ORVQDSProc.h"

#include <QDateTime>

using namespace orvquery;

// Procedures of Firebird's embedded engine, and the boxes that call them.
class TestFirebirdProcedures : public QObject, protected apptest::FirebirdShop {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }
    void cleanupTestCase() { tearDown(); }

    void parameters();
    void defaults_data();
    void defaults();
    void expressionDefaultsRun();
    void procedureBoxRuns_data();
    void procedureBoxRuns();
    void momentsArePassed();
    void manyParametersRun();
};

void TestFirebirdProcedures::parameters() {
    const auto description = open()->describe(QStringLiteral("Odd proc"));
    QStringList found;
    for (const TParam& parameter : description->parameters->Items) {
        const QVariant& value = parameter.Value;
        found += parameter.Name + u' ' + orv::fieldTypeIdentifier(parameter.DataType) + u' ' +
                 (!value.isValid() ? QStringLiteral("-")
                  : value.isNull() ? QStringLiteral("NULL")
                                   : parameterText(value));
        QCOMPARE(parameter.ParamType, ptInput);
    }
    QCOMPARE(found,
             (QStringList{"my param ftString -", "SELECT ftInteger -", "*** ftDate -",
                          "WHO ftString nobody", "FLAG ftBoolean TRUE", "QUOTED ftString it's",
                          "NOTHING ftInteger NULL", "PRICE ftFloat -1.5"}));
    QVERIFY(!open()->describe(QStringLiteral("ONES"))->parameters);
    QVERIFY(!open()->describe(QStringLiteral("ORDERS"))->parameters);
    QCOMPARE(open()->describe(QStringLiteral("MANY"))->parameters->Items.back().Name,
             QStringLiteral("P200"));
}

void TestFirebirdProcedures::defaults_data() {
    QTest::addColumn<QString>("source");
    QTest::addColumn<QVariant>("expected");
    const QVariant sqlNull(QMetaType::fromType<QString>());
    QTest::newRow("equals") << "= 5" << QVariant(5LL);
    QTest::newRow("word") << "DEFAULT -7" << QVariant(-7LL);
    QTest::newRow("fraction") << "default 1.5" << QVariant(1.5);
    QTest::newRow("text") << "='a''b'" << QVariant("a'b");
    QTest::newRow("empty text") << "= ''" << QVariant("");
    QTest::newRow("null") << "= NULL" << sqlNull;
    const auto sql = [](const char* text) {
        return QVariant::fromValue(orv::SqlText{QString::fromLatin1(text)});
    };
    QTest::newRow("expression") << "= CURRENT_DATE" << sql("CURRENT_DATE");
    QTest::newRow("word of truth") << "DEFAULT true" << sql("true");
    QTest::newRow("two texts") << "= 'a' || 'b'" << sql("'a' || 'b'");
    QTest::newRow("one apostrophe") << "= '" << QVariant();
    QTest::newRow("comment") << "= 5 /* five */" << QVariant();
    QTest::newRow("nothing") << "" << QVariant();
}

void TestFirebirdProcedures::defaults() {
    QFETCH(QString, source);
    QFETCH(QVariant, expected);
    QCOMPARE(firebirdDefault(source), expected);
    QCOMPARE(firebirdDefault(source).isValid(), expected.isValid());
}

// They stand in the call as they stand in the procedure.
void TestFirebirdProcedures::expressionDefaultsRun() {
    const std::unique_ptr<Database> database = open();
    TorvQueryBuilder builder;
    builder.setKeepMeaning(true);
    connectTables(builder, *database);
    QVERIFY(addTable(builder, *database, QStringLiteral("DEFAULTS")));
    builder.ListOfTables->Tables(0)->Items.front()->SetCheck(true);
    const QString statement = builder.GetSQLStatment();
    QCOMPARE(statement, QStringLiteral("SELECT DEFAULTS.R\r\n"
                                       "FROM DEFAULTS(CURRENT_DATE, TRUE, CURRENT_USER, :ODD)"));
    QCOMPARE(run(statement, {{"ODD", 6}}).rows(), (std::vector<Row>{{"today/TRUE/me/6"}}));
}

void TestFirebirdProcedures::procedureBoxRuns_data() {
    QTest::addColumn<bool>("keepsMeaning");
    QTest::newRow("meaning kept") << true;
    QTest::newRow("classic") << false;
}

// What the box writes, with values of all types and with none, is what the database understands.
void TestFirebirdProcedures::procedureBoxRuns() {
    QFETCH(bool, keepsMeaning);
    const std::unique_ptr<Database> database = open();
    TorvQueryBuilder builder;
    builder.setKeepMeaning(keepsMeaning);
    connectTables(builder, *database);
    QVERIFY(addTable(builder, *database, QStringLiteral("Odd proc")));
    auto* box = qobject_cast<TorvQDSProc*>(builder.ListOfTables->Tables(0));
    QVERIFY(box != nullptr);
    const std::vector<TorvQDListItem*> rows = box->parameterRows();
    QCOMPARE(rows.size(), 8U);
    for (const auto& item : box->Items) {
        if (item->ParamType == ptOutput) item->SetCheck(true);
    }
    // In the classic way apostrophes would end the text.
    if (!keepsMeaning) box->setParameter(rows[5], QStringLiteral("its"));
    box->setParameter(rows[4], QStringLiteral("false"));
    const QString quoted = keepsMeaning ? QStringLiteral("'it''s'") : QStringLiteral("'its'");
    QCOMPARE(
        box->GetParameters(),
        QStringLiteral(":MY_PARAM, :SELECT, :Par5, 'nobody', 'false', %1, NULL, -1.5").arg(quoted));
    const RowCollector found =
        run(builder.GetSQLStatment(),
            {{"MY_PARAM", "a'b"}, {"SELECT", 3}, {"PAR5", QDate(2024, 2, 29)}});
    QCOMPARE(found.columns(), (QStringList{"Out put", "D", "YES"}));
    QCOMPARE(found.rows().size(), 1U);
    const QString it = keepsMeaning ? QStringLiteral("it's") : QStringLiteral("its");
    QCOMPARE(found.rows()[0][0].toString(), QStringLiteral("a'b/3/nobody/%1/-1.50").arg(it));
    QCOMPARE(found.rows()[0][1].toDate(), QDate(2024, 2, 29));
    QCOMPARE(found.rows()[0][2].toBool(), false);

    builder.Clear();
    QVERIFY(addTable(builder, *database, QStringLiteral("ONES")));
    builder.ListOfTables->Tables(0)->Items.front()->SetCheck(true);
    // With empty brackets the engine would refuse it.
    QCOMPARE(builder.GetSQLStatment(), QStringLiteral("SELECT ONES.N\r\nFROM ONES"));
    QCOMPARE(run(builder.GetSQLStatment()).rows(), (std::vector<Row>{{1}, {1}}));
}

// By placeholder, and as the texts that stand in the box.
void TestFirebirdProcedures::momentsArePassed() {
    const QDateTime moment(QDate(2024, 1, 2), QTime(3, 4, 5));
    const QDate date(2024, 2, 29);
    const QTime time(18, 30, 15);
    const std::vector<RowCollector> found = {
        run("SELECT S2, D2, T2 FROM MOMENTS(:S, :D, :T)",
            {{"S", moment}, {"D", date}, {"T", time}}),
        run(QStringLiteral("SELECT S2, D2, T2 FROM MOMENTS('%1', '%2', '%3')")
                .arg(parameterText(moment), parameterText(date), parameterText(time)))};
    for (const RowCollector& rows : found) {
        QCOMPARE(rows.rows().size(), 1U);
        QCOMPARE(rows.rows()[0][0].toDateTime(), moment);
        QCOMPARE(rows.rows()[0][1].toDate(), date);
        QCOMPARE(rows.rows()[0][2].toTime(), time);
    }
}

void TestFirebirdProcedures::manyParametersRun() {
    const std::unique_ptr<Database> database = open();
    TorvQueryBuilder builder;
    connectTables(builder, *database);
    QVERIFY(addTable(builder, *database, QStringLiteral("MANY")));
    auto* box = qobject_cast<TorvQDSProc*>(builder.ListOfTables->Tables(0));
    builder.ListOfTables->Tables(0)->Items.front()->SetCheck(true);
    const std::vector<TorvQDListItem*> rows = box->parameterRows();
    QCOMPARE(rows.size(), std::size_t(manyParameters));
    // The first half has values, the second is asked for.
    PlaceholderValues values;
    for (int index = 0; index < manyParameters; ++index) {
        if (index < manyParameters / 2) {
            box->setParameter(rows[std::size_t(index)], index + 1);
        } else {
            values.insert(QStringLiteral("P%1").arg(index + 1), index + 1);
        }
    }
    QCOMPARE(run(builder.GetSQLStatment(), values).rows(), (std::vector<Row>{{20100LL}}));
}

QTEST_MAIN(TestFirebirdProcedures)
#include "tst_app_firebirdprocedures.moc"
