// SPDX-License-Identifier: MIT
#include "PostgresShop.h"
#include "ServerTestTools.h"
#include "data/ProcessName.h"
#include "data/SqlText.h"
#include "database/ServerErrors.h"
#include "parameters/ParameterText.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "workarea/ORVQDSProc.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <thread>

using namespace orvquery;

namespace {

// Whether every error is one sentence that a person can read.
bool isSentence(const QString& text) {
    return !text.contains(u'\n') && !text.contains(QLatin1String("QPSQL")) && text.size() > 10;
}

}  // namespace

// Databases of a PostgreSQL server.
class TestPostgresql : public QObject, protected apptest::PostgresShop {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { lReservedWords().clear(); }

    void listing();
    void manyTablesAreListedQuickly();
    void columns();
    void functionColumnsAndParameters();
    void foreignKeys();
    void find_data();
    void find();
    void hiddenTablesHaveTheirSchema();
    void oddNamesRun();
    void functionBoxRuns();
    void reservedWordsAreRefused();
    void nothingIsWritten_data();
    void nothingIsWritten();
    void runningQueryStops();
    void openingFails_data();
    void openingFails();
    void missingEntryIsNoPasswordMatter();
    void deniedTable();
    void droppedTable();
    void programRuns();
    void programEndsAtTheLastRowOfTable();
    void backendKilled();
    void appendixOfErrors();
    void serverGone();
};

void TestPostgresql::initTestCase() {
    setUp();
    QVERIFY(m_server.run({"CREATE DATABASE closed"}));
    QVERIFY(m_server.run({"REVOKE CONNECT ON DATABASE closed FROM PUBLIC"}));
}

void TestPostgresql::init() {
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!This plugin does not support propagateSizeHints)")));
}

void TestPostgresql::listing() {
    QCOMPARE(open()->title(), QStringLiteral("shop on 127.0.0.1"));
    QStringList found;
    for (const TableEntry& entry : open()->tables()) {
        found += entry.schema + QStringLiteral("/%1 %2 %3")
                                    .arg(entry.name)
                                    .arg(int(entry.kind))
                                    .arg(entry.parameters.join(u','));
    }
    QCOMPARE(found, (QStringList{"/generate_series 3 start,stop,step",
                                 "Odd \"Schema/T 1 0 ",
                                 "public/2nd 0 ",
                                 "public/a.b 0 ",
                                 "public/customers 0 ",
                                 QString::fromUtf8("public/größe 0 "),
                                 "public/kept 1 ",
                                 "public/Mixed Case 0 ",
                                 "public/odd 2 arg1,Who,d,z,neg",
                                 "public/parted 0 ",
                                 "public/quo\"te 0 ",
                                 "public/secret 0 ",
                                 "public/seen 1 ",
                                 "public/select 0 ",
                                 "public/series 2 low,high",
                                 "public/since 2 d",
                                 "public/UPPER 0 ",
                                 "public/writes 2 ",
                                 "sales/customers 0 ",
                                 "sales/lines 0 ",
                                 "sales/none 2 ",
                                 "sales/orders 0 "}));
}

void TestPostgresql::manyTablesAreListedQuickly() {
    constexpr int count = 500;
    QVERIFY(m_server.run({"CREATE DATABASE many"}));
    QVERIFY(m_server.run({QStringLiteral("DO $$ BEGIN FOR n IN 1..%1 LOOP EXECUTE 'CREATE TABLE "
                                         "t' || n || ' (id integer, name text)'; END LOOP; END $$")
                              .arg(count)},
                         QStringLiteral("many")));
    const auto database = openDatabase(m_server.address(QStringLiteral("many")));
    QCOMPARE(database->tables().size(), std::size_t(count) + 1);
    QCOMPARE(database->describe(QStringLiteral("t499"))->entries.size(), 2U);
}

void TestPostgresql::columns() {
    const auto description = open()->describe(QStringLiteral("customers"));
    QStringList found;
    for (const ColumnEntry& column : description->entries) {
        found += column.name + u' ' + orv::fieldTypeIdentifier(column.fieldType) + u' ' +
                 column.declaredType + (column.isKey ? " key" : "") +
                 (column.isRequired ? " required" : "");
    }
    QCOMPARE(found, (QStringList{"id ftInteger integer key required",
                                 "name ftString character varying(40) required",
                                 "Since ftDate date",
                                 "order ftString text",
                                 "a\"b ftString text",
                                 "price ftFloat amount",
                                 "ok ftBoolean boolean",
                                 "at ftDateTime timestamp with time zone",
                                 "made ftDateTime timestamp without time zone",
                                 "hour ftTime time without time zone",
                                 "place ftString point",
                                 "ip ftString inet",
                                 "tags ftString text[]",
                                 "span ftString int4range",
                                 "data ftMemo jsonb",
                                 "bytes ftBlob bytea",
                                 "lasts ftString interval",
                                 "big ftLargeint bigint",
                                 "ratio ftFloat double precision",
                                 "small ftSmallint smallint",
                                 "code ftFixedChar character(5)",
                                 "exact ftFloat numeric"}));
    QCOMPARE(description->name, QStringLiteral("CUSTOMERS"));
    QCOMPARE(description->columns.FieldDefs[0].Name, QStringLiteral("ID"));
    QCOMPARE(description->columns.FieldDefs[2].Name, QStringLiteral("Since"));
    // A reserved word is written as the server has it.
    QCOMPARE(description->columns.FieldDefs[3].Name, QStringLiteral("order"));
}

void TestPostgresql::functionColumnsAndParameters() {
    const auto texts = [this](const TableName& name) {
        QStringList result;
        const auto description = open()->describe(name);
        for (const ColumnEntry& column : description->entries) {
            result += column.name + u' ' + column.declaredType;
        }
        if (!description->parameters) return result;
        for (const TParam& parameter : description->parameters->Items) {
            const QVariant& value = parameter.Value;
            const bool isSql = value.metaType() == QMetaType::fromType<orv::SqlText>();
            result += parameter.Name + u' ' + orv::fieldTypeIdentifier(parameter.DataType) + u' ' +
                      (!value.isValid() ? QStringLiteral("-")
                       : isSql          ? value.value<orv::SqlText>().text
                       : value.isNull() ? QStringLiteral("NULL")
                                        : value.toString());
        }
        return result;
    };
    QCOMPARE(texts(QStringLiteral("series")),
             (QStringList{"n integer", "square bigint", "LOW ftInteger -", "HIGH ftInteger 3"}));
    QCOMPARE(texts(QStringLiteral("odd")),
             (QStringList{"odd text", "ARG1 ftInteger -", "Who ftString no'body",
                          "D ftDate CURRENT_DATE", "Z ftInteger NULL", "NEG ftFloat -1.5"}));
    QCOMPARE(texts({QStringLiteral("none"), QStringLiteral("sales")}), QStringList{"x integer"});
    QCOMPARE(texts(QStringLiteral("since")).first(2),
             (QStringList{"id integer", "name character varying(40)"}));
    QVERIFY(open()->describe(QStringLiteral("writes"))->parameters);
}

void TestPostgresql::foreignKeys() {
    const std::vector<ForeignKey> expected = {
        {{"lines", "sales"}, {"x", "y"}, {"orders", "sales"}, {"c1", "c2"}},
        {{"orders", "sales"}, {"customer"}, {"customers", "public"}, {"id"}}};
    QVERIFY(open()->foreignKeys() == expected);
}

void TestPostgresql::find_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("schema");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, const char* schema, const char* found) {
        QTest::newRow(name) << QString::fromUtf8(name) << QString(schema)
                            << QString::fromUtf8(found);
    };
    row("CUSTOMERS", "public", "customers");
    row("Customers", "public", "customers");
    row("\"customers\"", "public", "customers");
    row("\"CUSTOMERS\"", "", "");
    row("public.customers", "public", "customers");
    row("SALES.CUSTOMERS", "sales", "customers");
    row("\"Sales\".customers", "", "");
    row("orders", "", "");
    row("UPPER", "", "");
    row("\"UPPER\"", "public", "UPPER");
    row("\"Mixed Case\"", "public", "Mixed Case");
    row("\"quo\"\"te\"", "public", "quo\"te");
    row("\"Odd \"\"Schema\".\"T 1\"", "Odd \"Schema", "T 1");
    row("SERIES", "public", "series");
    row("pg_class", "", "");
}

void TestPostgresql::find() {
    QFETCH(QString, name);
    QFETCH(QString, schema);
    QFETCH(QString, found);
    const auto table = m_database->find(name);
    QCOMPARE(table ? table->source : TableName(), TableName(found, schema));
}

// In the search path a schema in front hides the names of those behind it.
void TestPostgresql::hiddenTablesHaveTheirSchema() {
    QVERIFY(m_server.run({"ALTER ROLE reader SET search_path = sales, public",
                          "GRANT USAGE ON SCHEMA sales TO reader"},
                         shop));
    DatabaseAddress address = databaseAddress(m_shop);
    address.user = QStringLiteral("reader");
    address.password = QStringLiteral("reader");
    const auto database = openDatabase(address);
    QCOMPARE(database->describe({"customers", "sales"})->name, QStringLiteral("CUSTOMERS"));
    QCOMPARE(database->describe({"customers", "public"})->name,
             QStringLiteral("\"public\".\"customers\""));
    QCOMPARE(database->describe({"customers", "public"})->alias, QStringLiteral("CUSTOMERS"));
    QCOMPARE(database->describe({"seen", "public"})->name, QStringLiteral("SEEN"));
    QCOMPARE(database->find(QStringLiteral("customers"))->source, TableName("customers", "sales"));
}

// What the control writes for every column of every table is what the server finds.
void TestPostgresql::oddNamesRun() {
    int boxes = 0;
    for (const TableEntry& entry : m_database->tables()) {
        if (isCalled(entry.kind)) continue;
        TorvQueryBuilder builder;
        connectTables(builder, *m_database);
        QVERIFY(addTable(builder, *m_database, entry.tableName()));
        const auto description = m_database->describe(entry.tableName());
        for (const auto& item : builder.ListOfTables->Tables(0)->Items) item->SetCheck(true);
        const QString statement = builder.GetSQLStatment();
        QStringList names;
        for (const ColumnEntry& column : description->entries) names += column.name;
        QCOMPARE(run(statement).columns(), names);

        TorvQueryBuilder again;
        connectTables(again, *m_database);
        again.LoadSQL(statement);
        QVERIFY2(again.LoadReport().empty(), qPrintable(statement));
        QCOMPARE(again.GetSQLStatment(), statement);
        ++boxes;
    }
    QCOMPARE(boxes, 16);
}

void TestPostgresql::functionBoxRuns() {
    TorvQueryBuilder builder;
    builder.setKeepMeaning(true);
    connectTables(builder, *m_database);
    QVERIFY(addTable(builder, *m_database, QStringLiteral("odd")));
    for (const auto& item : builder.ListOfTables->Tables(0)->Items) {
        if (item->ParamType == ptOutput) item->SetCheck(true);
    }
    const QString statement = builder.GetSQLStatment();
    QCOMPARE(statement, QStringLiteral("SELECT ODD.ODD\r\nFROM ODD(:ARG1, 'no''body', "
                                       "CURRENT_DATE, NULL, -1.5)"));
    QCOMPARE(run(statement, {{"ARG1", 5}}).rows(), (std::vector<Row>{{"no'body/5/true/0/-1.5"}}));
    builder.Clear();
    QVERIFY(addTable(builder, *m_database, {"none", "sales"}));
    builder.ListOfTables->Tables(0)->Items.front()->SetCheck(true);
    QCOMPARE(run(builder.GetSQLStatment()).rows(), (std::vector<Row>{{1}}));
}

// Every word is refused by this version of the server, or by a later one.
void TestPostgresql::reservedWordsAreRefused() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    QStringList taken;
    for (const QString& word : m_database->reservedWords()) {
        QSqlQuery query(connection.database());
        if (query.exec(QStringLiteral("SELECT %1.id FROM customers %1").arg(word))) taken += word;
    }
    taken.removeAll(QStringLiteral("SYSTEM_USER"));
    QCOMPARE(taken, QStringList());
    QSqlQuery query(connection.database());
    QVERIFY(query.exec(
        QStringLiteral("SELECT upper(word) FROM pg_get_keywords() WHERE catcode IN ('R', 'T')")));
    while (query.next()) {
        QVERIFY2(m_database->reservedWords().contains(query.value(0).toString()),
                 qPrintable(query.value(0).toString()));
    }
}

void TestPostgresql::nothingIsWritten_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("error");
    const QString second = QStringLiteral("Only one statement can be run at a time.");
    const auto refused = [](const char* what) {
        return QStringLiteral("The database says: cannot execute %1 in a read-only transaction")
            .arg(QLatin1String(what));
    };
    QTest::newRow("into") << "SELECT 1 AS a INTO copied" << refused("SELECT INTO");
    QTest::newRow("with") << "WITH w AS (DELETE FROM customers RETURNING id) SELECT * FROM w"
                          << refused("SELECT");
    QTest::newRow("function") << "SELECT * FROM writes()" << refused("INSERT");
    QTest::newRow("second") << "SELECT 1; COMMIT; BEGIN READ WRITE; DELETE FROM customers; COMMIT"
                            << second;
    QTest::newRow("in dollars") << "SELECT $a$ ' $a$; COMMIT; DELETE FROM customers --'" << second;
    QTest::newRow("in comments") << "SELECT 1 /* /* */ ' */; DELETE FROM customers --'" << second;
    QTest::newRow("escaped") << "SELECT E'\\'' ; DELETE FROM customers --'" << second;
    QTest::newRow("setting") << "SELECT set_config('transaction_read_only', 'off', false)"
                             << "The database says: transaction read-write mode must be set before "
                                "any query";
    QTest::newRow("other") << "DELETE FROM customers"
                           << "Only queries can be run here: statements that begin with SELECT, "
                              "WITH, VALUES or EXPLAIN.";
}

void TestPostgresql::nothingIsWritten() {
    QFETCH(QString, statement);
    QFETCH(QString, error);
    const QString found = apptest::errorOf([&] { (void)run(statement); });
    QVERIFY2(found.startsWith(error), qPrintable(found));
    QVERIFY(isSentence(found));
    QCOMPARE(run("SELECT count(*) FROM customers").rows(), (std::vector<Row>{{2LL}}));
    QCOMPARE(run("SELECT ';' AS a; -- over; now\n;").rows(), (std::vector<Row>{{";"}}));
}

void TestPostgresql::runningQueryStops() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    std::atomic<bool> isStopped = false;
    const StopCall stop = connection.letStop(isStopped);
    QVERIFY(stop);
    std::atomic<bool> isOver = false;
    std::thread stopper([&] {
        while (!isOver) {
            isStopped = true;
            stop();
            std::this_thread::yield();
        }
    });
    RowCollector rows(10);
    QElapsedTimer timer;
    timer.start();
    const QString error = apptest::errorOf(
        [&] { runQuery(connection.database(), QStringLiteral("SELECT pg_sleep(100)"), rows); });
    isOver = true;
    stopper.join();
    QCOMPARE(error, QStringLiteral("The database says: canceling statement due to user request"));
    QVERIFY(timer.elapsed() < 50000);
    // The connection is of use afterwards.
    runQuery(connection.database(), QStringLiteral("SELECT 7"), rows);
    QCOMPARE(rows.rows(), (std::vector<Row>{{7}}));
}

void TestPostgresql::openingFails_data() {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("database");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("isLogin");
    QTest::addColumn<QString>("error");
    const QString owner = PostgresServer::owner();
    const QString password = PostgresServer::password();
    const QString refused =
        QStringLiteral("The server at 127.0.0.1:%1 refuses the user \"%2\" with this password.");
    QTest::newRow("password") << owner << "wrong" << shop << 0 << true << refused;
    QTest::newRow("no password") << owner << "" << shop << 0 << true
                                 << "The server at 127.0.0.1:%1 asks for a password of the user "
                                    "\"%2\".";
    QTest::newRow("not allowed") << "reader"
                                 << "reader"
                                 << "closed" << 0 << false
                                 << "The user \"reader\" may not open the database \"closed\".";
    QTest::newRow("user") << "nobody"
                          << "x" << shop << 0 << true << refused;
    QTest::newRow("database") << owner << password << "none" << 0 << false
                              << "The server at 127.0.0.1:%1 has no database \"none\".";
    QTest::newRow("no database") << "reader"
                                 << "reader"
                                 << "" << 0 << false
                                 << "The server at 127.0.0.1:%1 has no database \"reader\".";
    QTest::newRow("server") << owner << password << shop << servertest::freePort() << false
                            << "No server answers at 127.0.0.1:%1.";
}

void TestPostgresql::openingFails() {
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(QString, database);
    QFETCH(int, port);
    QFETCH(bool, isLogin);
    QFETCH(QString, error);
    DatabaseAddress address = databaseAddress(m_shop);
    address.user = user;
    address.password = password;
    address.database = database;
    if (port != 0) address.port = port;
    if (error.contains(u'%')) error = error.arg(address.port);
    if (error.contains(u'%')) error = error.arg(user);
    try {
        (void)openDatabase(address);
        QFAIL("It is open.");
    } catch (const LoginError& raised) {
        QVERIFY(isLogin);
        QCOMPARE(raised.Message(), error);
    } catch (const orv::Error& raised) {
        QVERIFY2(!isLogin, qPrintable(raised.Message()));
        QCOMPARE(raised.Message(), error);
    }
}

void TestPostgresql::missingEntryIsNoPasswordMatter() {
    const QSqlError error(
        QStringLiteral("QPSQL: Unable to connect"),
        QStringLiteral("connection to server at \"db\", port 5432 failed: FATAL:  "
                       "no pg_hba.conf entry for host \"10.0.0.1\", user \"me\", "
                       "database \"shop\", no encryption\n"),
        QSqlError::ConnectionError);
    try {
        failToOpen(error, databaseAddress(QStringLiteral("postgresql://me:x@db/shop")), 5432);
    } catch (const LoginError&) {
        QFAIL("Another password does not help.");
    } catch (const orv::Error& raised) {
        QCOMPARE(raised.Message(),
                 QStringLiteral("The user \"me\" may not open the database \"shop\" from this "
                                "computer: the server at db:5432 has no entry for that."));
    }
}

void TestPostgresql::deniedTable() {
    DatabaseAddress address = databaseAddress(m_shop);
    address.user = QStringLiteral("reader");
    address.password = QStringLiteral("reader");
    const auto database = openDatabase(address);
    QVERIFY(database->describe({"secret", "public"}));
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    RowCollector rows(10);
    QCOMPARE(apptest::errorOf([&] {
                 runQuery(connection.database(), QStringLiteral("SELECT * FROM secret"), rows);
             }),
             QStringLiteral("The database says: permission denied for table secret"));
}

void TestPostgresql::droppedTable() {
    QVERIFY(m_server.run({"CREATE TABLE passing (id integer)"}, shop));
    const auto database = open();
    (void)database->tables();
    QVERIFY(database->describe(QStringLiteral("passing")));
    QVERIFY(m_server.run({"DROP TABLE passing"}, shop));
    QVERIFY(!database->describe(QStringLiteral("passing")));
    QCOMPARE(apptest::errorOf([&] { (void)run("SELECT id FROM passing"); }),
             QStringLiteral("The database says: relation \"passing\" does not exist"));
}

void TestPostgresql::programRuns() {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("query.sql"));
    QVERIFY(apptest::writeFile(
        file, "SELECT C.ID, C.\"Since\" FROM CUSTOMERS C WHERE C.\"Since\" = :DAY"));
    DatabaseAddress address = databaseAddress(m_shop);
    const auto output = [&](const QString& password) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ORVQUERY_PASSWORD"), password);
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QStringLiteral(ORVQUERY_PROGRAM),
                      {"--database", address.toUrl(), "--load", file, "--run", "--format", "csv",
                       "--param", "DAY=2024-01-31"});
        program.waitForFinished();
        return QString::fromUtf8(program.readAll()).remove(u'\r');
    };
    QCOMPARE(output(PostgresServer::password()), QStringLiteral("id,Since\n1,2024-01-31\n"));
    QCOMPARE(output(QStringLiteral("wrong")),
             QStringLiteral("orvquery: The server at 127.0.0.1:%1 refuses the user \"orv\" with "
                            "this password.\n")
                 .arg(address.port));
}

// The driver reads all rows before it lets a query go; thousands of rows to the fourth would
// take years.
void TestPostgresql::programEndsAtTheLastRowOfTable() {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("query.sql"));
    QVERIFY(m_server.run({"CREATE TABLE lots AS SELECT generate_series(1, 3000) AS n"}, shop));
    QStringList tables;
    for (const char* alias : {"a", "b", "c", "d"}) {
        tables += QStringLiteral("lots ") + QLatin1String(alias);
    }
    QVERIFY(apptest::writeFile(
        file,
        (QStringLiteral("SELECT 7 AS N FROM ") + tables.join(QStringLiteral(", "))).toUtf8()));
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORVQUERY_PASSWORD"), PostgresServer::password());
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(ORVQUERY_PROGRAM), {"--database", databaseAddress(m_shop).toUrl(),
                                                     "--load", file, "--run", "--format", "table"});
    const bool hasEnded = program.waitForFinished();
    const QByteArray errors = program.readAllStandardError();
    QVERIFY2(hasEnded, errors.constData());
    QVERIFY2(program.exitCode() == 0, errors.constData());
    QCOMPARE(program.readAllStandardOutput().count("\n7"), 10000);
}

// The server ends a session, as an administrator or a crash does.
void TestPostgresql::backendKilled() {
    const auto database = open();
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    RowCollector rows(10);
    const QString error = apptest::errorOf([&] {
        runQuery(connection.database(),
                 QStringLiteral("SELECT pg_terminate_backend(pg_backend_pid()), pg_sleep(100)"),
                 rows);
    });
    QVERIFY2(error.startsWith(QStringLiteral("The database says: ")), qPrintable(error));
    QVERIFY(isSentence(error));
    // The catalogue's own session is opened anew when it is gone.
    QVERIFY(
        m_server.run({"SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                      "WHERE datname = 'shop' AND pid <> pg_backend_pid()"}));
    QVERIFY(!database->tables().empty());
}

void TestPostgresql::appendixOfErrors() {
    QVERIFY(m_server.run(
        {"CREATE FUNCTION complain(detail text, hint text) RETURNS integer LANGUAGE plpgsql AS "
         "$$ BEGIN RAISE 'not so' USING DETAIL = detail, HINT = hint; END $$"},
        shop));
    const auto errorOf = [this](const char* arguments) {
        return apptest::errorOf([&] {
            (void)run(QStringLiteral("SELECT complain(%1)").arg(QLatin1String(arguments)));
        });
    };
    QCOMPARE(errorOf("'It is so.', 'Try again.'"),
             QStringLiteral("The database says: not so. It is so. Try again."));
    QCOMPARE(errorOf("'key=5', 'Try again.'"),
             QStringLiteral("The database says: not so. Try again."));
    QCOMPARE(errorOf("E'One line\\nand another.', 'x'"),
             QStringLiteral("The database says: not so"));
}

void TestPostgresql::serverGone() {
    const auto database = open();
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    m_server.kill();
    RowCollector rows(10);
    for (const QString& error :
         {apptest::errorOf(
              [&] { runQuery(connection.database(), QStringLiteral("SELECT 1"), rows); }),
          apptest::errorOf([&] { (void)database->tables(); }), apptest::errorOf([&] {
              (void)database->describe({"customers", "public"});
          }),
          apptest::errorOf([&] { (void)open(); })}) {
        QVERIFY2(error != QLatin1String("(no error)") && isSentence(error), qPrintable(error));
    }
}

QTEST_MAIN(TestPostgresql)
#include "tst_app_postgresql.moc"
