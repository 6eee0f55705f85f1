// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "MariadbServer.h"
#include "ServerTestTools.h"
#include "data/ProcessName.h"
#include "database/MariadbRows.h"
#include "database/OpenDatabase.h"
#include "database/RunQuery.h"
#include "database/ServerQuery.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "values/ValueText.h"
#include "workarea/ORVQDSProc.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QSqlRecord>

#include <functional>
#include <thread>

using namespace orvquery;

namespace {

const QString shop = QStringLiteral("shop");

QStringList shopStatements() {
    return {
        "CREATE DATABASE other",
        "SET sql_mode = 'ANSI_QUOTES'",
        ("CREATE TABLE \"Orders\" (id INT UNSIGNED PRIMARY KEY, \"Order Date\" DATE, \"order\" "
         "VARCHAR(20) NOT NULL DEFAULT '', total DECIMAL(10,2), big BIGINT UNSIGNED, flag BIT(3), "
         "made_in YEAR, data JSON, zero DATE, moment DATETIME, lasts TIME, place POINT, bytes "
         "BLOB, yes BOOLEAN, ratio DOUBLE, exact DECIMAL(30,10), choice ENUM('a', 'b'), note TEXT, "
         "code CHAR(5))"),
        ("INSERT INTO \"Orders\" VALUES (1, '2024-01-31', 'it''s \\\\', 10.50, "
         "18446744073709551615, b'101', 2024, '{\"a\": 1}', '0000-00-00', '2024-01-02 03:04:05', "
         "'838:59:59', POINT(1, 2), x'0102', TRUE, 0.1, 12345678901234567890.123, 'b', "
         "'Zoë 😀', 'ab')"),
        "INSERT INTO \"Orders\" (id) VALUES (2)",
        "CREATE TABLE \"orders\" (a INT)",
        "CREATE TABLE \"UPPER\" (a INT)",
        "CREATE TABLE \"select\" (id INT, \"user\" INT)",
        "CREATE TABLE \"quo\"\"te\" (\"a\"\"b\" INT)",
        "CREATE TABLE \"Mixed Case\" (\"c d\" INT)",
        "CREATE TABLE \"größe\" (\"länge\" INT)",
        "CREATE VIEW seen AS SELECT id FROM \"Orders\"",
        "CREATE TABLE other.\"Parents\" (a INT, b INT, PRIMARY KEY (b, a))",
        ("CREATE TABLE kids (x INT, y INT, CONSTRAINT fits FOREIGN KEY (x, y) REFERENCES "
         "other.\"Parents\" (b, a))"),
        ("CREATE FUNCTION writes() RETURNS INT MODIFIES SQL DATA BEGIN INSERT INTO UPPER VALUES "
         "(1); RETURN 1; END"),
        "CREATE TABLE secret (id INT)",
        ("CREATE TABLE kinds (t TINYINT, ut TINYINT UNSIGNED, s SMALLINT, us SMALLINT UNSIGNED, "
         "m MEDIUMINT, um MEDIUMINT UNSIGNED, i INT, ui INT UNSIGNED ZEROFILL, f FLOAT, d DOUBLE, "
         "b BIT(8), st SET('a', 'b'), ts TIMESTAMP NULL, vb VARBINARY(4), y YEAR)"),
        ("INSERT INTO kinds VALUES (-128, 255, -32768, 65535, -8388608, 16777215, -2147483648, "
         "4294967295, 0.1, 0.1, b'1000001', 'a,b', '2024-07-01 02:30:00', x'00ff', 1999), "
         "(0, 0, 0, 0, 0, 0, 0, 7, -0.0, -1e-5, b'0', '', '2024-01-01 00:00:00', '', 0)"),
        "CREATE USER reader@localhost IDENTIFIED BY 'reader'",
        "GRANT SELECT ON shop.\"Orders\" TO reader@localhost",
    };
}

// More than the server and the system hold ready for a reader who does not come.
const QString manyRows = QStringLiteral("SELECT REPEAT('x', 100) AS x FROM seq_1_to_10000000");
constexpr qlonglong bytesOfManyRows = 1000000000;

// Calls something at the tenth row, and tells whether it wants more.
class TenthRow : public RowSink {
public:
    explicit TenthRow(std::function<bool()> call) : m_call(std::move(call)) {}

    void begin(const QStringList& /*columns*/) override {}
    bool row(const Row& /*values*/) override { return ++m_rows != 10 || m_call(); }

    [[nodiscard]] qlonglong rows() const { return m_rows; }

private:
    std::function<bool()> m_call;
    qlonglong m_rows = 0;
};

qlonglong bytesSent(const Connection& connection) {
    QSqlQuery query(connection.database());
    const bool isKnown =
        query.exec(QStringLiteral("SHOW SESSION STATUS LIKE 'Bytes_sent'")) && query.next();
    return isKnown ? query.value(1).toLongLong() : -1;
}

bool isSentence(const QString& text) {
    return !text.contains(u'\n') && !text.contains(QLatin1String("QMYSQL")) && text.size() > 10;
}

}  // namespace

// Databases of a MariaDB server that keeps the case of tables.
class TestMariadb : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { lReservedWords().clear(); }

    void listing();
    void columns();
    void foreignKeys();
    void find_data();
    void find();
    void oddNamesRun();
    void namesAreQuotedForLoading_data();
    void namesAreQuotedForLoading();
    void values();
    void valuesAreTheDrivers_data();
    void valuesAreTheDrivers();
    void placeholders_data();
    void placeholders();
    void reservedWordsAreRefused();
    void nothingIsWritten_data();
    void nothingIsWritten();
    void runningQueryStops();
    void unwantedRowsAreNotRead();
    void queryStopsInTheMidst();
    void serverWaitsForSlowReaders();
    void failureInTheMidst();
    void openingFails();
    void deniedTable();
    void droppedTable();
    void programRuns();
    void sessionKilled();
    void serverGone();

private:
    [[nodiscard]] std::unique_ptr<Database> open() const { return openDatabase(m_shop); }
    [[nodiscard]] RowCollector run(const QString& statement,
                                   const PlaceholderValues& values = {}) const;

    MariadbServer m_server;
    QString m_shop;
    std::unique_ptr<Database> m_database;
};

void TestMariadb::initTestCase() {
    QCOMPARE(MariadbServer::whatIsMissing(), QString());
    QVERIFY(m_server.start());
    QVERIFY(m_server.run({"CREATE DATABASE shop"}));
    QVERIFY(m_server.run(shopStatements(), shop));
    m_shop = m_server.address(shop);
    m_database = open();
}

void TestMariadb::init() {
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!This plugin does not support propagateSizeHints)")));
}

RowCollector TestMariadb::run(const QString& statement, const PlaceholderValues& values) const {
    RowCollector rows(1000);
    Connection connection(m_database->settings());
    const QSqlError error = connection.open();
    if (error.isValid()) throw orv::Error(error.text());
    runQuery(connection.database(), statement, rows, values);
    return rows;
}

void TestMariadb::listing() {
    QStringList found;
    for (const TableEntry& entry : open()->tables()) {
        found += entry.schema + QStringLiteral("/%1 %2").arg(entry.name).arg(int(entry.kind));
    }
    QCOMPARE(found, (QStringList{"other/Parents 0", QString::fromUtf8("shop/größe 0"),
                                 "shop/kids 0", "shop/kinds 0", "shop/Mixed Case 0",
                                 "shop/Orders 0", "shop/orders 0", "shop/quo\"te 0",
                                 "shop/secret 0", "shop/seen 1", "shop/select 0", "shop/UPPER 0"}));
    QCOMPARE(openDatabase(m_server.address({}))->describe({"kids", "shop"})->name,
             QStringLiteral("\"shop\".\"kids\""));
}

void TestMariadb::columns() {
    QStringList found;
    const auto description = open()->describe({"Orders", "shop"});
    for (const ColumnEntry& column : description->entries) {
        found += column.name + u' ' + orv::fieldTypeIdentifier(column.fieldType) + u' ' +
                 column.declaredType + (column.isKey ? " key" : "") +
                 (column.isRequired ? " required" : "");
    }
    QCOMPARE(found,
             (QStringList{"id ftLargeint int(10) unsigned key required", "Order Date ftDate date",
                          "order ftString varchar(20) required", "total ftFloat decimal(10,2)",
                          "big ftLargeint bigint(20) unsigned", "flag ftLargeint bit(3)",
                          "made_in ftSmallint year(4)", "data ftMemo longtext", "zero ftDate date",
                          "moment ftDateTime datetime", "lasts ftTime time", "place ftString point",
                          "bytes ftBlob blob", "yes ftSmallint tinyint(1)", "ratio ftFloat double",
                          "exact ftFloat decimal(30,10)", "choice ftString enum('a','b')",
                          "note ftMemo text", "code ftFixedChar char(5)"}));
}

void TestMariadb::foreignKeys() {
    const std::vector<ForeignKey> expected = {
        {{"kids", "shop"}, {"x", "y"}, {"Parents", "other"}, {"b", "a"}}};
    QVERIFY(open()->foreignKeys() == expected);
}

void TestMariadb::find_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("schema");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, const char* schema, const char* found) {
        QTest::newRow(name) << QString::fromUtf8(name) << QString(schema)
                            << QString::fromUtf8(found);
    };
    row("Orders", "shop", "Orders");
    row("orders", "shop", "orders");
    row("ORDERS", "", "");
    row("\"Orders\"", "shop", "Orders");
    row("UPPER", "shop", "UPPER");
    row("upper", "", "");
    row("other.Parents", "other", "Parents");
    row("Parents", "", "");
    row("\"quo\"\"te\"", "shop", "quo\"te");
}

void TestMariadb::find() {
    QFETCH(QString, name);
    QFETCH(QString, schema);
    QFETCH(QString, found);
    const auto table = m_database->find(name);
    QCOMPARE(table ? table->source : TableName(), TableName(found, schema));
}

// What the control writes for every column of every table is what the server finds.
void TestMariadb::oddNamesRun() {
    int boxes = 0;
    for (const TableEntry& entry : m_database->tables()) {
        TorvQueryBuilder builder;
        connectTables(builder, *m_database);
        QVERIFY(addTable(builder, *m_database, entry.tableName()));
        const auto description = m_database->describe(entry.tableName());
        for (const auto& item : builder.ListOfTables->Tables(0)->Items) item->SetCheck(true);
        const QString statement = builder.GetSQLStatment();
        QCOMPARE(run(statement).columns().size(), qsizetype(description->entries.size()));

        TorvQueryBuilder again;
        connectTables(again, *m_database);
        again.LoadSQL(m_database->forLoading(statement));
        QVERIFY2(again.LoadReport().empty(), qPrintable(statement));
        QCOMPARE(again.GetSQLStatment(), statement);
        ++boxes;
    }
    QCOMPARE(boxes, 12);
}

void TestMariadb::namesAreQuotedForLoading_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("loaded");
    const auto row = [](const char* statement, const char* loaded) {
        QTest::newRow(statement) << QString::fromUtf8(statement) << QString::fromUtf8(loaded);
    };
    row("SELECT O.id FROM Orders O", "SELECT O.id FROM \"Orders\" O");
    row("SELECT Orders.id FROM Orders", "SELECT \"Orders\".id FROM \"Orders\"");
    row("SELECT 1 FROM other.Parents", "SELECT 1 FROM \"other\".\"Parents\"");
    row("SELECT x.kids FROM UPPER x", "SELECT x.kids FROM UPPER x");
    row("SELECT 'Orders', `Orders`, \"Orders\" -- Orders\n/* Orders */ # Orders",
        "SELECT 'Orders', `Orders`, \"Orders\" -- Orders\n/* Orders */ # Orders");
    row("SELECT orders('a'), kids (1), seen 'a'", "SELECT orders('a'), kids (1), seen 'a'");
}

void TestMariadb::namesAreQuotedForLoading() {
    QFETCH(QString, statement);
    QTEST(m_database->forLoading(statement), "loaded");
}

void TestMariadb::values() {
    const RowCollector rows = run("SELECT * FROM \"Orders\" ORDER BY id");
    QHash<QString, QString> first;
    for (int column = 0; column < rows.columns().size(); ++column) {
        first[rows.columns()[column]] = shownText(rows.rows()[0][column]);
    }
    QCOMPARE(first["order"], QStringLiteral("it's \\"));
    QCOMPARE(first["total"], QStringLiteral("10.5"));
    QCOMPARE(first["big"], QStringLiteral("18446744073709551615"));
    QCOMPARE(first["flag"], QStringLiteral("5"));
    QCOMPARE(first["made_in"], QStringLiteral("2024"));
    QCOMPARE(first["data"], QStringLiteral("{\"a\": 1}"));
    QCOMPARE(first["zero"], QStringLiteral("(not a date)"));
    QCOMPARE(first["lasts"], QStringLiteral("838:59:59"));
    QCOMPARE(first["bytes"], QStringLiteral("(2 bytes)"));
    QCOMPARE(first["ratio"], QStringLiteral("0.1"));
    QCOMPARE(first["exact"], QStringLiteral("12345678901234567890.1230000000"));
    QCOMPARE(first["choice"], QStringLiteral("b"));
    QCOMPARE(first["note"], QString::fromUtf8("Zoë 😀"));
    QCOMPARE(rows.rows()[0][rows.columns().indexOf(QStringLiteral("moment"))].toDateTime(),
             QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)));
    for (const char* name : {"Order Date", "total", "flag", "data", "zero", "moment", "bytes"}) {
        QVERIFY2(rows.rows()[1][rows.columns().indexOf(QLatin1String(name))].isNull(), name);
    }
    QVERIFY(!rows.rows()[1][rows.columns().indexOf(QStringLiteral("order"))].isNull());
}

void TestMariadb::valuesAreTheDrivers_data() {
    QTest::addColumn<QString>("statement");
    const auto row = [](const char* statement) {
        QTest::newRow(statement) << QString::fromUtf8(statement);
    };
    row("SELECT * FROM \"Orders\" ORDER BY id");
    row("SELECT CAST(NULL AS SIGNED), NULL, '', x'', 0, -1, 1.5, 1e300, TRUE, DATE '2024-02-29'");
    row("SELECT CAST(-9223372036854775808 AS SIGNED), CAST(18446744073709551615 AS UNSIGNED)");
    row("SELECT 0.1, 123456789012345, 1234567890.12345, -1234567890.123456, 0.000, 1/3");
    row("SELECT CAST('2024-01-02 03:04:05.678901' AS DATETIME(6)), "
        "CAST('2024-00-00' AS DATE), CURRENT_DATE");
    row("SELECT TIME '-12:30:00', CAST('00:00:01.25' AS TIME(2)), INET6_ATON('::1')");
    row("SELECT 'ä' COLLATE utf8mb4_bin, _latin1 x'e4', CONVERT('ä' USING binary), UUID_SHORT() > "
        "0");
    row("SELECT t, ut, s, us, m, um, i, ui, f, d, b, st, ts, vb, y FROM kinds ORDER BY i");
    row("SELECT id AS \"größe\", id AS \"größe\" FROM \"Orders\" WHERE id = 0");
    row("SELECT JSON_OBJECT('a', 1), ST_AsText(POINT(1, 2)), GROUP_CONCAT(id) FROM \"Orders\"");
}

void TestMariadb::valuesAreTheDrivers() {
    QFETCH(QString, statement);
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    QVERIFY(MariadbRows::canRead(connection.database()));
    QSqlQuery query(connection.database());
    query.setForwardOnly(true);
    QVERIFY(startQuery(query, statement, {}));
    const RowReader reader(query);

    MariadbRows rows(connection.database());
    QVERIFY(rows.start(statement));
    QCOMPARE(rows.columns().size(), query.record().count());
    for (int column = 0; column < rows.columns().size(); ++column) {
        QCOMPARE(rows.columns()[column], query.record().fieldName(column));
    }
    while (query.next()) {
        QVERIFY(rows.next());
        const Row row = rows.row();
        for (int column = 0; column < row.size(); ++column) {
            const QVariant expected = reader.value(column);
            QCOMPARE(row[column].isNull(), expected.isNull());
            if (expected.isNull()) continue;
            QVERIFY2(row[column].metaType() == expected.metaType(),
                     qPrintable(QStringLiteral("%1: %2 for %3")
                                    .arg(rows.columns()[column], row[column].typeName(),
                                         expected.typeName())));
            QCOMPARE(row[column], expected);
        }
    }
    QVERIFY(!rows.next());
    QVERIFY(!rows.lastError().isValid());
}

void TestMariadb::placeholders_data() {
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* condition, const QVariant& value) {
        QTest::newRow(condition) << QString::fromLatin1(condition) << value;
    };
    row("id = :X", 1);
    row("\"order\" = :X -- don't", "it's \\");
    row("\"Order Date\" = :X", QDate(2024, 1, 31));
    row("moment = :X", QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)));
    row("total = :X", 10.5);
    row("yes = :X", true);
    row("note = :X", QString::fromUtf8("Zoë 😀"));
    row("id = -:X", -1);
    row("coalesce(:X, id) = 1", QVariant(QMetaType::fromType<QString>()));
}

void TestMariadb::placeholders() {
    QFETCH(QString, condition);
    QFETCH(QVariant, value);
    const RowCollector rows = run("SELECT id FROM \"Orders\" WHERE " + condition, {{"X", value}});
    QCOMPARE(rows.rows().size(), 1U);
    QCOMPARE(rows.rows()[0][0].toInt(), 1);
}

// Every word of this server's own that it does not take as a name is known.
void TestMariadb::reservedWordsAreRefused() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    QStringList words;
    QSqlQuery query(connection.database());
    // MariaDB tells them from 10.6.3 on.
    QVERIFY(
        query.exec(QStringLiteral("SELECT DISTINCT word FROM information_schema.keywords "
                                  "WHERE word REGEXP '^[A-Z]'")));
    while (query.next()) words += query.value(0).toString();
    QVERIFY(words.size() > 500);
    for (const QString& word : words) {
        QSqlQuery use(connection.database());
        const bool isTaken =
            use.exec(QStringLiteral("SELECT %1.id FROM \"Orders\" %1 LIMIT 0").arg(word));
        QVERIFY2(isTaken || m_database->reservedWords().contains(word), qPrintable(word));
    }
}

void TestMariadb::nothingIsWritten_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("error");
    const QString second = QStringLiteral("Only one statement can be run at a time.");
    QTest::newRow("function") << "SELECT writes()"
                              << "The database says: Cannot execute statement in a READ ONLY "
                                 "transaction";
    QTest::newRow("file") << "SELECT 1 INTO OUTFILE '/tmp/orvquery-never'"
                          << "Files of the server are not written from here.";
    QTest::newRow("second") << "SELECT 1; SET SESSION TRANSACTION READ WRITE; DELETE FROM UPPER"
                            << second;
    QTest::newRow("in a comment") << "SELECT 1 /*! ; DELETE FROM UPPER */" << second;
    QTest::newRow("no comment") << "SELECT 1 --1; DELETE FROM UPPER" << second;
    QTest::newRow("hash") << "SELECT 1 # '\n; DELETE FROM UPPER -- '" << second;
}

void TestMariadb::nothingIsWritten() {
    QFETCH(QString, statement);
    QFETCH(QString, error);
    const QString found = apptest::errorOf([&] { (void)run(statement); });
    QVERIFY2(found.startsWith(error), qPrintable(found));
    QCOMPARE(run("SELECT count(*) FROM UPPER").rows(), (std::vector<Row>{{0LL}}));
}

void TestMariadb::runningQueryStops() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    std::atomic<bool> isStopped = false;
    const StopCall stop = connection.letStop(isStopped);
    QVERIFY(stop);
    std::atomic<bool> isOver = false;
    std::thread stopper([&] {
        while (!isOver) stop();
    });
    RowCollector rows(10);
    QElapsedTimer timer;
    timer.start();
    const QString error = apptest::errorOf(
        [&] { runQuery(connection.database(), QStringLiteral("SELECT SLEEP(90)"), rows); });
    isOver = true;
    stopper.join();
    QCOMPARE(error, QStringLiteral("The database says: Query execution was interrupted"));
    QVERIFY(timer.elapsed() < 50000);
    // The connection is of use afterwards.
    runQuery(connection.database(), QStringLiteral("SELECT 7"), rows);
    QCOMPARE(rows.rows().back()[0].toInt(), 7);
}

void TestMariadb::unwantedRowsAreNotRead() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    TenthRow sink([] { return false; });
    runQuery(connection.database(), manyRows, sink);
    QCOMPARE(sink.rows(), 10);
    // The connection is of use afterwards.
    const qlonglong sent = bytesSent(connection);
    QVERIFY2(sent > 1000 && sent < bytesOfManyRows / 10, qPrintable(QString::number(sent)));
}

void TestMariadb::queryStopsInTheMidst() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    std::atomic<bool> isStopped = false;
    const StopCall stop = connection.letStop(isStopped);
    TenthRow sink([&] {
        stop();
        return true;
    });
    QCOMPARE(apptest::errorOf([&] { runQuery(connection.database(), manyRows, sink); }),
             QStringLiteral("The database says: Query execution was interrupted"));
    QVERIFY(sink.rows() >= 10 && sink.rows() < 5000000);
}

// A pager at the end of a pipe takes no rows while a person reads; the server's own patience is one
// minute.
void TestMariadb::serverWaitsForSlowReaders() {
    QVERIFY(run("SELECT @@net_write_timeout").rows()[0][0].toInt() >= 3600);
}

// The server finds the second row of the subquery when it has sent others already.
void TestMariadb::failureInTheMidst() {
    Connection connection(m_database->settings());
    QVERIFY(!connection.open().isValid());
    TenthRow sink([] { return true; });
    const QString statement = QStringLiteral(
        "SELECT (SELECT s.seq FROM seq_1_to_2 s WHERE n.seq > 100000 OR s.seq = 1) "
        "FROM seq_1_to_200000 n");
    QCOMPARE(apptest::errorOf([&] { runQuery(connection.database(), statement, sink); }),
             QStringLiteral("The database says: Subquery returns more than 1 row"));
    QCOMPARE(sink.rows(), 100000);
}

void TestMariadb::openingFails() {
    const auto errorOf = [this](auto&& change) {
        DatabaseAddress address = databaseAddress(m_shop);
        change(address);
        try {
            (void)openDatabase(address);
        } catch (const LoginError& error) {
            return QStringLiteral("login: ") + error.Message();
        } catch (const orv::Error& error) {
            return error.Message();
        }
        return QString();
    };
    const QString place = QStringLiteral("127.0.0.1:%1").arg(m_server.port());
    QCOMPARE(errorOf([](DatabaseAddress& address) { address.password = QStringLiteral("x"); }),
             QStringLiteral("login: The server at %1 refuses the user \"orv\" with this password.")
                 .arg(place));
    QCOMPARE(errorOf([](DatabaseAddress& address) { address.database = QStringLiteral("none"); }),
             QStringLiteral("The server at %1 has no database \"none\".").arg(place));
    QCOMPARE(errorOf([](DatabaseAddress& address) { address.password.clear(); }),
             QStringLiteral("login: The server at %1 asks for a password of the user \"orv\".")
                 .arg(place));
    QCOMPARE(errorOf([](DatabaseAddress& address) {
                 address.user = QStringLiteral("reader");
                 address.password = QStringLiteral("reader");
                 address.database = QStringLiteral("other");
             }),
             QStringLiteral("The user \"reader\" may not open the database \"other\"."));
    const int port = servertest::freePort();
    QCOMPARE(errorOf([=](DatabaseAddress& address) { address.port = port; }),
             QStringLiteral("No server answers at 127.0.0.1:%1.").arg(port));
}

void TestMariadb::deniedTable() {
    DatabaseAddress address = databaseAddress(m_shop);
    address.user = QStringLiteral("reader");
    address.password = QStringLiteral("reader");
    const auto database = openDatabase(address);
    QCOMPARE(database->tables().size(), 1U);
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    RowCollector rows(10);
    const QString error = apptest::errorOf(
        [&] { runQuery(connection.database(), QStringLiteral("SELECT id FROM secret"), rows); });
    QVERIFY2(error.startsWith(QStringLiteral("The database says: SELECT command denied")),
             qPrintable(error));
}

void TestMariadb::droppedTable() {
    QVERIFY(m_server.run({"CREATE TABLE passing (id INT)"}, shop));
    const auto database = open();
    (void)database->tables();
    QVERIFY(m_server.run({"DROP TABLE passing"}, shop));
    QVERIFY(!database->describe({"passing", "shop"}));
    QCOMPARE(apptest::errorOf([&] { (void)run("SELECT id FROM passing"); }),
             QStringLiteral("The database says: Table 'shop.passing' doesn't exist"));
}

void TestMariadb::programRuns() {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("query.sql"));
    QVERIFY(apptest::writeFile(file, "SELECT o.id, q.no FROM Orders o WHERE o.id = :ID"));
    QProcess program;
    program.start(QStringLiteral(ORVQUERY_PROGRAM), {"--database", m_shop, "--load", file, "--run",
                                                     "--format", "csv", "--param", "ID=1"});
    QVERIFY(program.waitForFinished());
    QCOMPARE(QString::fromUtf8(program.readAllStandardOutput()).remove(u'\r'),
             QStringLiteral("ID\n1\n"));
    // Places are those of the file, to which quotes were added.
    const QString report = QString::fromUtf8(program.readAllStandardError());
    QVERIFY2(report.startsWith(file + QStringLiteral(":1:14: \"q.no\": ")), qPrintable(report));
}

void TestMariadb::sessionKilled() {
    const auto database = open();
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    QSqlQuery sessions(connection.database());
    QVERIFY(
        sessions.exec(QStringLiteral("SELECT id FROM information_schema.processlist "
                                     "WHERE user = 'orv' AND id <> CONNECTION_ID()")));
    QStringList kills;
    while (sessions.next()) kills += QStringLiteral("KILL ") + sessions.value(0).toString();
    QVERIFY(!kills.isEmpty());
    QVERIFY(m_server.run(kills));
    // The catalogue's own session is opened anew.
    QVERIFY(!database->tables().empty());
}

void TestMariadb::serverGone() {
    const auto database = open();
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    Connection reading(m_database->settings());
    QVERIFY(!reading.open().isValid());
    TenthRow sink([this] {
        m_server.kill();
        return true;
    });
    RowCollector rows(10);
    for (const QString& error :
         {apptest::errorOf([&] { runQuery(reading.database(), manyRows, sink); }),
          apptest::errorOf(
              [&] { runQuery(connection.database(), QStringLiteral("SELECT 1"), rows); }),
          apptest::errorOf([&] { (void)database->tables(); }), apptest::errorOf([&] {
              (void)database->describe({"Orders", "shop"});
          }),
          apptest::errorOf([&] { (void)open(); })}) {
        QVERIFY2(error != QLatin1String("(no error)") && isSentence(error), qPrintable(error));
    }
}

QTEST_MAIN(TestMariadb)
#include "tst_app_mariadb.moc"
