// SPDX-License-Identifier: MIT
#include "FirebirdShop.h"
#include "database/ServerErrors.h"
#include "values/ValueText.h"
#include "window/QueryRunner.h"

#include <QElapsedTimer>
#include <QSignalSpy>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

using namespace orvquery;

// Databases of Firebird's embedded engine.
class TestFirebird : public QObject, protected apptest::FirebirdShop {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { begin(); }
    void cleanup() { end(); }
    void cleanupTestCase() { tearDown(); }

    void opensFilesAndAddresses();
    void roleIsTaken();
    void filesThatAreNoDatabase();
    void serversThatRefuse_data();
    void serversThatRefuse();
    void serverThatIsDown();
    void catalog();
    void parametersThatCannotBeRead();
    void columns();
    void find_data();
    void find();
    void rows();
    void blobs();
    void decimals();
    void placeholders();
    void nothingIsWritten();
    void signalsEndTheProgram();
    void errorsAreTold();
    void endlessQueryStops();
    void reservedWordsAreRefused();

#ifdef Q_OS_UNIX
private:
    struct sigaction m_terminate = {};  ///< as it was before the engine was loaded
#endif
};

void TestFirebird::initTestCase() {
#ifdef Q_OS_UNIX
    sigaction(SIGTERM, nullptr, &m_terminate);
#endif
    setUp();
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

void TestFirebird::roleIsTaken() {
    const auto database = openDatabase(QStringLiteral("firebird://") + m_path +
                                       QStringLiteral("?isc_dpb_sql_role_name=READERS"));
    Connection connection(database->settings());
    QVERIFY(!connection.open().isValid());
    QSqlQuery query(connection.database());
    QVERIFY(query.exec(QStringLiteral("SELECT TRIM(CURRENT_ROLE), 'größer' FROM RDB$DATABASE")));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("READERS"));
    QCOMPARE(query.value(1).toString().trimmed(), QStringLiteral("größer"));
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

void TestFirebird::serversThatRefuse_data() {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("isLogin");
    const char* const refused =
        "Your user name and password are not defined. Ask your database administrator to set up "
        "a Firebird login.";
    QTest::newRow("password") << "ada" << refused
                              << "The server at db.example.org:3050 refuses the user \"ada\" with "
                                 "this password."
                              << true;
    QTest::newRow("nobody") << "" << refused
                            << "The server at db.example.org:3050 wants a user and a password."
                            << true;
    QTest::newRow("login ends")
        << "ada"
        << "Error occurred during login, please check server firebird.log for details"
        << "The server at db.example.org:3050 refuses the user \"ada\" with this password." << true;
    QTest::newRow("no server")
        << "ada"
        << "Unable to complete network request to host \"db.example.org\". - Failed to establish "
           "a connection."
        << "No server answers at db.example.org:3050." << false;
    QTest::newRow("no host")
        << "ada"
        << "Unable to complete network request to host \"db.example.org\". - Failed to locate "
           "host machine. - The specified name was not found in the hosts file or Domain Name "
           "Services."
        << "No host of that name is known: db.example.org:3050." << false;
    QTest::newRow("no database")
        << "ada"
        << "I/O error during \"open\" operation for file \"shop\" - Error while trying to open "
           "file - No such file or directory"
        << "The server at db.example.org:3050 has no database \"shop\"." << false;
    QTest::newRow("anything else")
        << "ada"
        << "unsupported on-disk structure"
        << "The database \"shop\" at db.example.org:3050 cannot be opened: unsupported on-disk "
           "structure."
        << false;
}

// The driver has the code -902 for each of them.
void TestFirebird::serversThatRefuse() {
    QFETCH(QString, user);
    QFETCH(QString, text);
    QFETCH(QString, sentence);
    QFETCH(bool, isLogin);
    DatabaseAddress address;
    address.scheme = QStringLiteral("firebird");
    address.host = QStringLiteral("db.example.org");
    address.database = QStringLiteral("shop");
    address.user = user;
    address.password = QStringLiteral("wrong");
    const QSqlError error(QStringLiteral("Error opening database"), text,
                          QSqlError::ConnectionError, QStringLiteral("-902"));
    bool isLoginError = false;
    const QString found = apptest::errorOf([&] {
        try {
            failToOpen(error, address, 3050);
        } catch (const LoginError&) {
            isLoginError = true;
            throw;
        }
    });
    QCOMPARE(found, sentence);
    QCOMPARE(isLoginError, isLogin);
}

void TestFirebird::serverThatIsDown() {
    QCOMPARE(
        apptest::errorOf([] { (void)openDatabase(QStringLiteral("firebird://u@127.0.0.1:1/x")); }),
        QStringLiteral("No server answers at 127.0.0.1:1."));
}

void TestFirebird::catalog() {
    QStringList found;
    for (const TableEntry& entry : open()->tables()) {
        found +=
            entry.name + QStringLiteral(" %1 %2").arg(int(entry.kind)).arg(entry.parameters.size());
    }
    QCOMPARE(found, (QStringList{"BIG_ORDERS 1 0", "BLOBS 0 0", "DEFAULTS 2 4", "ENDLESS 2 0",
                                 "lower 0 0", "MANY 2 200", "MOMENTS 2 3", "Odd proc 2 8",
                                 "ONES 2 0", "ORDERS 0 0", "SERIES 2 2", "WRITES 2 0"}));
}

// Without them a procedure would be called in a wrong way.
void TestFirebird::parametersThatCannotBeRead() {
    const QString path = m_folder.filePath(QStringLiteral("broken.fdb"));
    QVERIFY(firebirdtest::makeDatabase(
        path, "CREATE PROCEDURE P (BROKENAME INTEGER) RETURNS (N INTEGER) AS BEGIN SUSPEND; END^"));
    QCOMPARE(openDatabase(path)->tables().size(), 1U);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QVERIFY(bytes.contains("BROKENAME"));
    // No letter in UTF-8, in which names are kept.
    const QString copy = m_folder.filePath(QStringLiteral("broken copy.fdb"));
    QVERIFY(apptest::writeFile(copy, QByteArray(bytes).replace("BROKENAME",
                                                               "BROKE\xf6"
                                                               "AME")));
    const QString error = apptest::errorOf([&] { (void)openDatabase(copy)->tables(); });
    const QString beginning = QStringLiteral("The tables of \"broken copy.fdb\" cannot be read: ");
    QVERIFY2(error.startsWith(beginning), qPrintable(error));
}

void TestFirebird::columns() {
    const auto texts = [this](const char* table) {
        QStringList result;
        const auto description = open()->describe(QString::fromLatin1(table));
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

// Those that are declared as texts are texts; what their bytes look like makes none of the others.
void TestFirebird::blobs() {
    const QString text = QString::fromUtf8("größer");
    const QVariant null = QVariant(QMetaType::fromType<QByteArray>());
    const auto rows = run("SELECT ID, UTF, LATIN, FOREIGN_TEXT, PLAIN, OCTETS, UTF || '!' AS LOUD, "
                          "NULLIF(ID, 0), CAST('x' AS BLOB SUB_TYPE BINARY) "
                          "FROM BLOBS ORDER BY ID")
                          .rows();
    QCOMPARE(rows.size(), 4U);
    QCOMPARE(rows[0], (Row{1, text, text, text, QByteArray("abc"), QByteArray("abc"),
                           text + QStringLiteral("!"), 1, QByteArray("x")}));
    QCOMPARE(rows[1], (Row{2, QString(""), QString(""), QString(""), QByteArray(""), QByteArray(""),
                           QStringLiteral("!"), 2, QByteArray("x")}));
    for (int column = 1; column <= 6; ++column) {
        QVERIFY(!rows[1][column].isNull());
        QVERIFY(rows[2][column].isNull());
    }
    // Of no known character set, and not in the one that is expected.
    QCOMPARE(rows[3][3], QVariant(QByteArray("gr\xf6\xdf")));
    QCOMPARE(run("SELECT CAST('b' AS BLOB), NOTE FROM ORDERS WHERE ID = 1").rows(),
             (std::vector<Row>{{QByteArray("b"), text}}));
}

// As they are written into a file.
void TestFirebird::decimals() {
    const auto exact = [this](const char* value) {
        const auto rows =
            run(QStringLiteral("SELECT %1 FROM RDB$DATABASE").arg(QLatin1String(value))).rows();
        return rows.size() == 1 ? exactText(rows[0][0]) : QStringLiteral("(no row)");
    };
    QCOMPARE(exact("CAST(0.3 AS NUMERIC(4,1))"), QStringLiteral("0.3"));
    QCOMPARE(exact("CAST(-0.07 AS DECIMAL(8,2))"), QStringLiteral("-0.07"));
    QCOMPARE(exact("CAST(0.57 AS DECIMAL(8,2))"), QStringLiteral("0.57"));
    QCOMPARE(exact("CAST(0.3 AS NUMERIC(18,4))"), QStringLiteral("0.3"));
    QCOMPARE(exact("CAST(1234567890.1234 AS NUMERIC(18,4))"), QStringLiteral("1234567890.1234"));
    QCOMPARE(exact("CAST(NULL AS NUMERIC(18,4))"), QString());
    // These are of double precision themselves.
    QCOMPARE(exact("CAST(1E-7 AS DOUBLE PRECISION)"), QStringLiteral("1e-07"));
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
    std::vector<Row> rows;
    connect(&runner, &QueryRunner::rowsCame, this, [&rows](const std::vector<Row>& batch) {
        rows.insert(rows.end(), batch.begin(), batch.end());
    });
    const auto rowsOf = [&](const char* statement) {
        return rowsOfQuery(database->settings(), QLatin1String(statement), {});
    };
    runner.start(rowsOf("SELECT N FROM ENDLESS"));
    runner.stop();
    QVERIFY(finished.wait(30000));
    QVERIFY(finished[0][0].value<QueryOutcome>().end.isStopped);
    // One that is cut is ended in the same way.
    rows.clear();
    runner.start(rowsOf("SELECT N FROM ONES"), {.mostRows = 1});
    QVERIFY(finished.wait(30000));
    QVERIFY(finished[1][0].value<QueryOutcome>().isCut);
    QCOMPARE(finished[1][0].value<QueryOutcome>().end.error, QString());
    QCOMPARE(rows, std::vector<Row>{Row{1}});
    rows.clear();
    runner.start(rowsOf("SELECT N FROM ONES"));
    QVERIFY(finished.wait(30000));
    QCOMPARE(rows, (std::vector<Row>{{1}, {1}}));
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
