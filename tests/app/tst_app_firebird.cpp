// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "FirebirdTestTools.h"
#include "data/ProcessName.h"
#include "data/SqlText.h"
#include "database/FirebirdTypes.h"
#include "database/OpenDatabase.h"
#include "database/RunQuery.h"
#include "parameters/ParameterText.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "window/QueryRunner.h"
#include "workarea/ORVQDSProc.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

using namespace orvquery;

namespace {

constexpr int manyParameters = 200;

QString manyProcedure() {
    QStringList parameters;
    QStringList sum;
    for (int number = 1; number <= manyParameters; ++number) {
        parameters += QStringLiteral("P%1 INTEGER").arg(number);
        sum += QStringLiteral(":P%1").arg(number);
    }
    return QStringLiteral(
               "CREATE PROCEDURE MANY (%1) RETURNS (TOTAL BIGINT) AS BEGIN "
               "TOTAL = %2; SUSPEND; END^\n")
        .arg(parameters.join(QStringLiteral(", ")), sum.join(QStringLiteral(" + ")));
}

const char* const script = R"(
CREATE TABLE ORDERS (ID INTEGER NOT NULL PRIMARY KEY, "Order Date" DATE, TOTAL DECIMAL(8,2),
    NOTE BLOB SUB_TYPE TEXT, PHOTO BLOB, PLACED TIMESTAMP, AT_TIME TIME, PAID BOOLEAN, BIG BIGINT,
    RATIO DOUBLE PRECISION, SMALL SMALLINT, CODE CHAR(5), CITY VARCHAR(20))^
CREATE TABLE "lower" ("ORDER" INTEGER, "a.b" VARCHAR(5))^
CREATE VIEW BIG_ORDERS AS SELECT ID FROM ORDERS WHERE TOTAL > 5^
CREATE DOMAIN D_NAME AS VARCHAR(10) DEFAULT 'nobody'^
CREATE PROCEDURE SERIES (LOW INTEGER, HIGH INTEGER = 3) RETURNS (N INTEGER, SQUARE BIGINT) AS
BEGIN N = LOW; WHILE (N <= HIGH) DO BEGIN SQUARE = N * N; SUSPEND; N = N + 1; END END^
CREATE PROCEDURE ONES RETURNS (N INTEGER) AS BEGIN N = 1; SUSPEND; SUSPEND; END^
CREATE PROCEDURE "Odd proc" ("my param" VARCHAR(20), "SELECT" INTEGER, "***" DATE,
    WHO D_NAME, FLAG BOOLEAN = TRUE, QUOTED VARCHAR(9) DEFAULT 'it''s', NOTHING INTEGER = NULL,
    PRICE NUMERIC(9,2) = -1.5)
RETURNS ("Out put" VARCHAR(60), D DATE, YES BOOLEAN) AS
BEGIN "Out put" = "my param" || '/' || COALESCE("SELECT", 'null') || '/' || WHO || '/' || QUOTED
    || '/' || PRICE;
    D = "***"; YES = FLAG; SUSPEND; END^
CREATE PROCEDURE DEFAULTS (D DATE = CURRENT_DATE, FLAG BOOLEAN DEFAULT TRUE,
    WHO VARCHAR(60) = CURRENT_USER, ODD INTEGER = 5 /* five */)
RETURNS (R VARCHAR(60)) AS
BEGIN R = IIF(D = CURRENT_DATE, 'today', D) || '/' || FLAG || '/' ||
    IIF(WHO = CURRENT_USER, 'me', WHO) || '/' || ODD;
    SUSPEND; END^
CREATE PROCEDURE MOMENTS (S TIMESTAMP, D DATE, T TIME) RETURNS (S2 TIMESTAMP, D2 DATE, T2 TIME) AS
BEGIN S2 = S; D2 = D; T2 = T; SUSPEND; END^
CREATE PROCEDURE NO_ROWS (A INTEGER) RETURNS (N INTEGER) AS BEGIN N = A; END^
CREATE PROCEDURE WRITES RETURNS (N INTEGER) AS
BEGIN INSERT INTO ORDERS (ID) VALUES (99); N = 1; SUSPEND; END^
CREATE PROCEDURE ENDLESS RETURNS (N INTEGER) AS
BEGIN N = 0; WHILE (1 = 1) DO N = MOD(N + 1, 1000); SUSPEND; END^
COMMIT^
INSERT INTO ORDERS (ID, "Order Date", TOTAL, NOTE, PAID, CITY)
    VALUES (1, '2024-01-31', 10.50, 'größer', TRUE, 'Zürich')^
INSERT INTO ORDERS (ID, TOTAL, PAID, CITY) VALUES (2, 3, FALSE, '')^
)";

}  // namespace

// Databases of Firebird's embedded engine.
class TestFirebird : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { lReservedWords().clear(); }
    void cleanupTestCase() { m_database.reset(); }

    void opensFilesAndAddresses();
    void filesThatAreNoDatabase();
    void catalog();
    void columns();
    void parameters();
    void defaults_data();
    void defaults();
    void expressionDefaultsRun();
    void find_data();
    void find();
    void rows();
    void placeholders();
    void procedureBoxRuns_data();
    void procedureBoxRuns();
    void momentsArePassed();
    void manyParametersRun();
    void nothingIsWritten();
    void signalsEndTheProgram();
    void errorsAreTold();
    void endlessQueryStops();
    void reservedWordsAreRefused();

private:
    [[nodiscard]] std::unique_ptr<Database> open() const { return openDatabase(m_path); }
    [[nodiscard]] RowCollector run(const QString& statement,
                                   const PlaceholderValues& values = {}) const;

#ifdef Q_OS_UNIX
    struct sigaction m_terminate = {};  ///< as it was before the engine was loaded
#endif
    QTemporaryDir m_folder;
    QString m_path;
    std::unique_ptr<Database> m_database;  ///< keeps the engine's own state of the file alive
};

void TestFirebird::initTestCase() {
    const QString missing = firebirdtest::whatIsMissing();
    if (!missing.isEmpty()) QSKIP(qPrintable(missing));
    firebirdtest::setLockFolder(m_folder.path());
    m_path = m_folder.filePath(QStringLiteral("shop.fdb"));
    QVERIFY(firebirdtest::makeDatabase(m_path, QString::fromUtf8(script) + manyProcedure()));
#ifdef Q_OS_UNIX
    sigaction(SIGTERM, nullptr, &m_terminate);
#endif
    m_database = open();
}

void TestFirebird::init() {
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!This plugin does not support propagateSizeHints)")));
}

RowCollector TestFirebird::run(const QString& statement, const PlaceholderValues& values) const {
    RowCollector rows(1000);
    Connection connection(m_database->settings());
    if (connection.open().isValid()) return rows;
    runQuery(connection.database(), statement, rows, values);
    return rows;
}

void TestFirebird::opensFilesAndAddresses() {
    QCOMPARE(open()->title(), QStringLiteral("shop.fdb"));
    QCOMPARE(openDatabase(QStringLiteral("firebird://") + m_path)->tables().size(),
             open()->tables().size());
    // What a file is called makes no difference.
    const QString copy = m_folder.filePath(QStringLiteral("a b#c.db"));
    QVERIFY(QFile::copy(m_path, copy));
    QCOMPARE(openDatabase(copy)->tables().size(), open()->tables().size());
    const QString sqlite = m_folder.filePath(QStringLiteral("sqlite.fdb"));
    QVERIFY(apptest::runStatements(sqlite, {"CREATE TABLE t (x)"}));
    QVERIFY(openDatabase(sqlite)->describe(QStringLiteral("t")));
}

void TestFirebird::filesThatAreNoDatabase() {
    const auto errorOf = [](const QString& address) {
        return apptest::errorOf([&] { (void)openDatabase(address); });
    };
    const QString text = m_folder.filePath(QStringLiteral("text.fdb"));
    QVERIFY(apptest::writeFile(text, "these are no rows, at all"));
    QCOMPARE(errorOf(text),
             QStringLiteral("The database file \"%1\" is not a Firebird database.").arg(text));
    const QString none = m_folder.filePath(QStringLiteral("none.fdb"));
    const QString missing = QStringLiteral("The database file \"%1\" does not exist.").arg(none);
    QCOMPARE(errorOf(none), missing);
    QCOMPARE(errorOf(QStringLiteral("firebird://") + none), missing);
    QVERIFY(!QFile::exists(none));
}

void TestFirebird::catalog() {
    QStringList found;
    for (const TableEntry& entry : open()->tables()) {
        found +=
            entry.name + QStringLiteral(" %1 %2").arg(int(entry.kind)).arg(entry.parameters.size());
    }
    QCOMPARE(found, (QStringList{"BIG_ORDERS 1 0", "DEFAULTS 2 4", "ENDLESS 2 0", "lower 0 0",
                                 "MANY 2 200", "MOMENTS 2 3", "Odd proc 2 8", "ONES 2 0",
                                 "ORDERS 0 0", "SERIES 2 2", "WRITES 2 0"}));
}

void TestFirebird::columns() {
    const auto texts = [this](const char* table) {
        QStringList result;
        const auto description = open()->describe(QLatin1String(table));
        for (const TFieldDef& field : description->columns.FieldDefs) {
            result += field.Name + u' ' + orv::fieldTypeIdentifier(field.DataType);
        }
        return result;
    };
    QCOMPARE(texts("ORDERS"),
             (QStringList{"ID ftInteger", "Order Date ftDate", "TOTAL ftFloat", "NOTE ftMemo",
                          "PHOTO ftBlob", "PLACED ftDateTime", "AT_TIME ftTime", "PAID ftBoolean",
                          "BIG ftLargeint", "RATIO ftFloat", "SMALL ftSmallint", "CODE ftFixedChar",
                          "CITY ftString"}));
    QCOMPARE(texts("lower"), (QStringList{"ORDER ftInteger", "\"a.b\" ftString"}));
    QCOMPARE(texts("SERIES"), (QStringList{"N ftInteger", "SQUARE ftLargeint"}));
    QCOMPARE(texts("BIG_ORDERS"), QStringList{"ID ftInteger"});
}

void TestFirebird::parameters() {
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

void TestFirebird::defaults_data() {
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

void TestFirebird::defaults() {
    QFETCH(QString, source);
    QFETCH(QVariant, expected);
    QCOMPARE(firebirdDefault(source), expected);
    QCOMPARE(firebirdDefault(source).isValid(), expected.isValid());
}

// They stand in the call as they stand in the procedure.
void TestFirebird::expressionDefaultsRun() {
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

void TestFirebird::find_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("found");
    QTest::newRow("plain") << "ORDERS"
                           << "ORDERS";
    QTest::newRow("quoted") << "\"ORDERS\""
                            << "ORDERS";
    QTest::newRow("quoted lower case") << "\"lower\""
                                       << "lower";
    QTest::newRow("other case") << "LOWER"
                                << "";
    QTest::newRow("blank inside") << "\"Odd proc\""
                                  << "Odd proc";
    QTest::newRow("qualified") << "MAIN.ORDERS"
                               << "";
    QTest::newRow("without rows") << "NO_ROWS"
                                  << "";
    QTest::newRow("system") << "RDB$DATABASE"
                            << "";
}

void TestFirebird::find() {
    QFETCH(QString, name);
    QFETCH(QString, found);
    const auto table = open()->find(name);
    QCOMPARE(table ? table->name : QString(), found);
}

void TestFirebird::rows() {
    const RowCollector rows =
        run("SELECT ID, \"Order Date\", TOTAL, PAID, CITY FROM ORDERS ORDER BY ID");
    QCOMPARE(rows.columns(), (QStringList{"ID", "Order Date", "TOTAL", "PAID", "CITY"}));
    QCOMPARE(rows.rows().size(), 2U);
    QCOMPARE(rows.rows()[0][0], QVariant(1));
    QCOMPARE(rows.rows()[0][1].toDate(), QDate(2024, 1, 31));
    QCOMPARE(rows.rows()[0][2].toDouble(), 10.5);
    QCOMPARE(rows.rows()[0][3].toBool(), true);
    QCOMPARE(rows.rows()[0][4].toString(), QString::fromUtf8("Zürich"));
    QVERIFY(rows.rows()[1][1].isNull());
    QVERIFY(!rows.rows()[1][4].isNull());
}

void TestFirebird::placeholders() {
    QCOMPARE(run("SELECT ID FROM ORDERS WHERE ID = :X -- don't\n", {{"X", 2}}).rows(),
             (std::vector<Row>{{2}}));
    QCOMPARE(run("SELECT N FROM SERIES(:LOW, :HIGH)", {{"LOW", 2}, {"HIGH", 4}}).rows(),
             (std::vector<Row>{{2}, {3}, {4}}));
    QCOMPARE(
        run("SELECT ID FROM ORDERS WHERE CITY = :C", {{"C", QString::fromUtf8("Zürich")}}).rows(),
        (std::vector<Row>{{1}}));
    QCOMPARE(
        run("SELECT ID FROM ORDERS WHERE \"Order Date\" = :D", {{"D", QDate(2024, 1, 31)}}).rows(),
        (std::vector<Row>{{1}}));
    QCOMPARE(run("SELECT ID FROM ORDERS WHERE TOTAL BETWEEN :A AND :B", {{"A", 10.25}, {"B", 11}})
                 .rows(),
             (std::vector<Row>{{1}}));
    QVERIFY(run("SELECT ID FROM ORDERS WHERE ID = :X",
                {{"X", QVariant(QMetaType::fromType<QString>())}})
                .rows()
                .empty());
}

void TestFirebird::procedureBoxRuns_data() {
    QTest::addColumn<bool>("keepsMeaning");
    QTest::newRow("meaning kept") << true;
    QTest::newRow("classic") << false;
}

// What the box writes, with values of all types and with none, is what the database understands.
void TestFirebird::procedureBoxRuns() {
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
void TestFirebird::momentsArePassed() {
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

void TestFirebird::manyParametersRun() {
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

void TestFirebird::nothingIsWritten() {
    QCOMPARE(run("SELECT N FROM WRITES").rows(), (std::vector<Row>{{1}}));
    QCOMPARE(run("SELECT COUNT(*) FROM ORDERS").rows(), (std::vector<Row>{{2}}));
    QCOMPARE(apptest::errorOf([this] { (void)run("DELETE FROM ORDERS"); }),
             QStringLiteral("Only queries can be run here: statements that begin with SELECT, "
                            "WITH, VALUES or EXPLAIN."));
}

// The engine would take them over when it is loaded.
void TestFirebird::signalsEndTheProgram() {
#ifdef Q_OS_UNIX
    (void)run("SELECT N FROM ONES");
    struct sigaction terminate = {};
    sigaction(SIGTERM, nullptr, &terminate);
    QCOMPARE(terminate.sa_flags & SA_SIGINFO, m_terminate.sa_flags & SA_SIGINFO);
    QVERIFY(terminate.sa_handler == m_terminate.sa_handler);
#endif
}

void TestFirebird::errorsAreTold() {
    const QString error = apptest::errorOf([this] { (void)run("SELECT X FROM NOWHERE"); });
    QVERIFY2(error.startsWith(QStringLiteral("The database says: ")), qPrintable(error));
    QVERIFY2(error.contains(QStringLiteral("NOWHERE")), qPrintable(error));
    // The engine would take whatever is in the memory for their values.
    const QString unnamed = QStringLiteral(
        "The statement has a parameter \"?\", which has no name by which it could get a value; "
        "please write it as :NAME.");
    QCOMPARE(apptest::errorOf([this] { (void)run("SELECT N FROM SERIES(1, ?)"); }), unnamed);
    QCOMPARE(apptest::errorOf([this] {
                 (void)run("SELECT ID FROM ORDERS WHERE ID = ? OR ID = :B", {{"B", 2}});
             }),
             unnamed);
}

void TestFirebird::endlessQueryStops() {
    QueryRunner runner;
    QSignalSpy finished(&runner, &QueryRunner::finished);
    const std::unique_ptr<Database> database = open();
    runner.start(database->settings(), QStringLiteral("SELECT N FROM ENDLESS"), {}, 10);
    runner.stop();
    QVERIFY(finished.wait(30000));
    QVERIFY(finished[0][0].value<std::shared_ptr<QueryOutcome>>()->isStopped);
    runner.start(database->settings(), QStringLiteral("SELECT N FROM ONES"), {}, 10);
    QVERIFY(finished.wait(30000));
    QCOMPARE(finished[1][0].value<std::shared_ptr<QueryOutcome>>()->rows,
             (std::vector<Row>{{1}, {1}}));
}

// Every word is refused by this version of the engine, or by a later one.
void TestFirebird::reservedWordsAreRefused() {
    static const QStringList later = {"BINARY",
                                      "DECFLOAT",
                                      "INT128",
                                      "LATERAL",
                                      "PUBLICATION",
                                      "RDB$ERROR",
                                      "RDB$GET_CONTEXT",
                                      "RDB$GET_TRANSACTION_CN",
                                      "RDB$ROLE_IN_USE",
                                      "RDB$SET_CONTEXT",
                                      "RDB$SYSTEM_PRIVILEGE",
                                      "RESETTING",
                                      "TIMEZONE_HOUR",
                                      "TIMEZONE_MINUTE",
                                      "UNBOUNDED",
                                      "VARBINARY",
                                      "WINDOW",
                                      "WITHOUT"};
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    QStringList taken;
    const QStringList words = NameFolding::firebird().reservedWords();
    for (const QString& word : words) {
        QSqlQuery query(connection.database());
        if (query.exec(QStringLiteral("SELECT %1.ID FROM ORDERS %1").arg(word))) taken += word;
    }
    for (const QString& word : later) taken.removeAll(word);
    QCOMPARE(taken, QStringList());
}

QTEST_MAIN(TestFirebird)
#include "tst_app_firebird.moc"
