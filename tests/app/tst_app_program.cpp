// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QXmlStreamReader>

// The program from outside: arguments and standard input in, outputs and exit status back.
class TestProgram : public QObject, protected apptest::ProgramRun {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void help();
    void version();
    void wrongUsage_data();
    void wrongUsage();
    void needsNoDisplay();

    void print();
    void printFromStandardInput();
    void sampleDatabaseIsMade();
    void doubtsAreToldBeforeRunning();
    void byteOrderMarkAndLineBreaks();
    void unreadableStatements_data();
    void unreadableStatements();
    void refusedStatement();
    void findingsAreLines();
    void strict();

    void state();
    void stateOfRefusedStatement();
    void stateOfUnreadableFile();
    void stateOfEach();
    void listThatCannotBeRead();

    void runAsTable();
    void runAsCsv();
    void runAsJson();
    void runWithParameters();
    void runWithoutParameters();
    void runProcedure();
    void runFails();
    void schema();
    void schemaWithMistake();
    void databaseThatIsNone();
    void databaseWithoutPermission();
    void explain_data();
    void explain();
    void explainFails();
    void compare();
    void compareWithState();
    void compareFails();
    void compareTellsWhatIsNotHeld_data();
    void compareTellsWhatIsNotHeld();
    void compareWithNothingLoaded();
    void compareNamesOfOneTable();
    void renderPng();
    void renderSvg();
    void renderFails();
    void fullDiskIsTold();

private:
    QString m_database;
    QString m_query;
};

void TestProgram::initTestCase() {
    m_database = file("shop.db");
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT, total DECIMAL)",
                     "INSERT INTO orders VALUES (1, 'Rome', 10.5), (2, NULL, 3), (3, '', NULL)"}));
    m_query = written("query.sql", "select o.id, o.city, o.total from orders o");
}

void TestProgram::help() {
    const Result result = run({"--help"});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("usage: orvquery "));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::version() {
    const Result result = run({"--version"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("orvquery " ORVQUERY_VERSION "\n"));
}

void TestProgram::wrongUsage_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown option") << QStringList{"--foo"} << "unknown option \"--foo\"";
    QTest::newRow("two databases")
        << QStringList{"a.db", "b.db"} << "two databases are named, \"a.db\" and \"b.db\"";
    QTest::newRow("two outputs") << QStringList{"--print", "--run"}
                                 << "--print and --run exclude each other";
    QTest::newRow("format alone") << QStringList{"--format", "csv"}
                                  << "--format goes with --run alone";
}

void TestProgram::wrongUsage() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Result result = run(arguments);
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: %1; see orvquery --help\n").arg(message));
}

void TestProgram::needsNoDisplay() {
    const Result result = run({"--database", m_database, "--state"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::print() {
    const Result result = run({"--database", m_database, "--load", m_query, "--print"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output,
             QByteArray("SELECT O.ID,\r\n       O.CITY,\r\n       O.TOTAL\r\nFROM ORDERS O\n"));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::printFromStandardInput() {
    const Result result =
        run({"--database", m_database, "--load", "-", "--print"}, "select id from orders");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("SELECT ID\r\nFROM ORDERS\n"));
}

void TestProgram::sampleDatabaseIsMade() {
    const QString query = written("sample.sql", "select name from departments");
    const Result result = run({"--load", query, "--run", "--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.contains("\r\nWarehouse\r\n"));
}

void TestProgram::doubtsAreToldBeforeRunning() {
    const QString query = written("product.sql", "select o.id from orders o, orders p");
    const Result result = run({"--database", m_database, "--load", query, "--run"});
    QCOMPARE(result.status, 0);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: P: Nothing links this with the other tables: each of its "
                            "rows is combined with each of theirs.\n"));
}

void TestProgram::byteOrderMarkAndLineBreaks() {
    const QString query = written("mark.sql", "\xef\xbb\xbfselect\r\nid\r\nfrom orders\r\n");
    const Result result = run({"--database", m_database, "--load", query, "--print"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("SELECT ID\r\nFROM ORDERS\n"));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::unreadableStatements_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing") << file("none.sql")
                             << QStringLiteral("The file \"%1\" cannot be read: it does not exist.")
                                    .arg(file("none.sql"));
    QTest::newRow("folder")
        << m_folder.path()
        << QStringLiteral("The file \"%1\" cannot be read: it is a folder.").arg(m_folder.path());
    const QString latin = written("latin.sql", "select id\nfrom orders where city = 'Z\xfcrich'");
    QTest::newRow("latin 1")
        << latin << QStringLiteral("The file \"%1\" is not valid UTF-8 text (line 2).").arg(latin);
}

void TestProgram::unreadableStatements() {
    QFETCH(QString, path);
    QFETCH(QString, message);
    const Result result = run({"--database", m_database, "--load", path, "--print"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(QString::fromUtf8(result.errors), QStringLiteral("orvquery: %1\n").arg(message));
}

void TestProgram::refusedStatement() {
    const QString query = written("update.sql", "update orders set id = 1");
    for (const char* output : {"--print", "--run"}) {
        const Result result = run({"--database", m_database, "--load", query, output});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(QString::fromUtf8(result.errors),
                 QStringLiteral("orvquery: %1: Given statement is not SELECT clause\n").arg(query));
    }
}

void TestProgram::findingsAreLines() {
    const QString query = written("unknown.sql", "select o.id\r\nfrom orders o,\r\n  nowhere n");
    const Result result = run({"--database", m_database, "--load", query, "--print"});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("SELECT O.ID\r\nFROM ORDERS O"));
    const QString line = QString::fromUtf8(result.errors);
    QVERIFY2(line.startsWith(query + QStringLiteral(":3:3: \"nowhere n\": ")), qPrintable(line));
    QCOMPARE(line.count(u'\n'), 1);
}

void TestProgram::strict() {
    const QString query = written("strict.sql", "select o.id from orders o, nowhere n");
    QCOMPARE(run({"--database", m_database, "--load", query, "--strict", "--print"}).status, 1);
    QCOMPARE(run({"--database", m_database, "--load", m_query, "--strict", "--print"}).status, 0);
}

void TestProgram::state() {
    const Result result = run({"--database", m_database, "--load", m_query, "--state"});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("{\n  \"statement\": "));
    QVERIFY(result.output.endsWith("\n}\n"));
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QVERIFY(state.value("error").isNull());
    QCOMPARE(state.value("report").toArray().size(), 0);
    QCOMPARE(state.value("tables").toArray().size(), 1);
}

void TestProgram::stateOfRefusedStatement() {
    const Result result =
        run({"--database", m_database, "--load", "-", "--state"}, "delete from orders");
    QCOMPARE(result.status, 1);
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QCOMPARE(state.value("error").toString(),
             QStringLiteral("Given statement is not SELECT clause"));
    QCOMPARE(result.errors, QByteArray("orvquery: -: Given statement is not SELECT clause\n"));
}

void TestProgram::stateOfUnreadableFile() {
    const Result result = run({"--database", m_database, "--load", "none.sql", "--state"});
    QCOMPARE(result.status, 1);
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QCOMPARE(state.value("error").toString(),
             QStringLiteral("The file \"none.sql\" cannot be read: it does not exist."));
}

void TestProgram::stateOfEach() {
    const QString list = written("list.txt", "query.sql\r\n\n  \nnone.sql\n" + m_query.toUtf8());
    const Result result = run({"--database", m_database, "--list", list});
    QCOMPARE(result.status, 1);
    const QList<QByteArray> lines = result.output.split('\n');
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[3], QByteArray());
    QCOMPARE(lines[0], lines[2]);
    const QJsonObject first = QJsonDocument::fromJson(lines[0]).object();
    QVERIFY(first.value("error").isNull());
    QCOMPARE(first.value("tables").toArray().size(), 1);
    const QJsonObject second = QJsonDocument::fromJson(lines[1]).object();
    QCOMPARE(second.value("error").toString(),
             QStringLiteral("The file \"none.sql\" cannot be read: it does not exist."));
    QCOMPARE(second.value("tables").toArray().size(), 0);
}

void TestProgram::listThatCannotBeRead() {
    const Result result = run({"--database", m_database, "--list", "none.txt"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors,
             QByteArray("orvquery: The file \"none.txt\" cannot be read: it does not exist.\n"));
}

void TestProgram::runAsTable() {
    const Result result = run({"--database", m_database, "--load", m_query, "--run"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("id  city  total\n--  ----  -----\n 1  Rome   10.5\n"
                                       " 2  NULL      3\n 3         NULL\n(3 rows)\n"));
}

void TestProgram::runAsCsv() {
    const Result result =
        run({"--database", m_database, "--load", m_query, "--run", "--format", "csv"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("id,city,total\r\n1,Rome,10.5\r\n2,,3\r\n3,\"\",\r\n"));
}

void TestProgram::runAsJson() {
    const Result result =
        run({"--database", m_database, "--load", m_query, "--run", "--format=json"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("[\n  {\"id\": 1, \"city\": \"Rome\", \"total\": 10.5},\n"
                                       "  {\"id\": 2, \"city\": null, \"total\": 3},\n"
                                       "  {\"id\": 3, \"city\": \"\", \"total\": null}\n]\n"));
}

void TestProgram::runWithParameters() {
    const QString query = written(
        "parameters.sql", "select id from orders where city = :city or total = :Total or id = :id");
    const auto rows = [&](const QStringList& parameters) {
        return run(
            QStringList{"--database", m_database, "--load", query, "--run", "--format", "csv"} +
            parameters);
    };
    const Result all = rows({"--param", "city=Rome", "--param=TOTAL=3", "--param", "id=3"});
    QCOMPARE(all.errors, QByteArray());
    QCOMPARE(all.status, 0);
    QCOMPARE(all.output, QByteArray("id\r\n1\r\n2\r\n3\r\n"));
    // The empty text is a value; NULL is equal to nothing.
    QCOMPARE(rows({"--param", "city=", "--param-null", "total", "--param-null", "id"}).output,
             QByteArray("id\r\n3\r\n"));
    // A value is never a part of the statement.
    QCOMPARE(
        rows({"--param", "city=' or 1=1 --", "--param-null", "total", "--param-null", "id"}).output,
        QByteArray("id\r\n"));
}

void TestProgram::runWithoutParameters() {
    const QString query =
        written("missing.sql", "select id from orders where city = :city and id = :id");
    const Result missing = run({"--database", m_database, "--load", query, "--run"});
    QCOMPARE(missing.status, 1);
    QCOMPARE(missing.output, QByteArray());
    QCOMPARE(missing.errors, QByteArray("orvquery: There is no value for :CITY, :ID; --param "
                                        "NAME=VALUE or --param-null NAME gives one.\n"));
    const Result unknown = run(
        {"--database", m_database, "--load", m_query, "--run", "--param", "x=1", "--param", "y=1"});
    QCOMPARE(unknown.status, 1);
    QCOMPARE(unknown.errors, QByteArray("orvquery: The statement has no parameter :X, :Y.\n"));
}

void TestProgram::runProcedure() {
    const QString table = written("table.sql", "select name from pragma_table_info(:t)");
    const Result columns = run({"--database", m_database, "--load", table, "--run", "--format",
                                "csv", "--param", "t=orders"});
    QCOMPARE(columns.errors, QByteArray());
    QCOMPARE(columns.output, QByteArray("name\r\nid\r\ncity\r\ntotal\r\n"));
    const QString json = written("json.sql",
                                 "select e.value from json_each('[1, \"it''s\"]', '$') e "
                                 "where e.value <> :x");
    const Result values = run(
        {"--database", m_database, "--load", json, "--run", "--format", "csv", "--param", "x=1"});
    QCOMPARE(values.errors, QByteArray());
    QCOMPARE(values.output, QByteArray("value\r\nit's\r\n"));
}

void TestProgram::runFails() {
    const QString query = written("function.sql", "select nofunction(id) as x from orders");
    const Result result = run({"--database", m_database, "--load", query, "--run"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors,
             QByteArray("orvquery: The database says: no such function: NOFUNCTION\n"));
    const Result empty = run({"--database", m_database, "--load", "-", "--run"}, "select 1");
    QCOMPARE(empty.status, 1);
    QVERIFY(empty.errors.endsWith("\norvquery: There are no tables in the diagram yet.\n"));
}

void TestProgram::schema() {
    const QString path = written("schema.json", R"({"ORDERS": [["CUSTNO", "ftInteger"]]})");
    const Result result =
        run({"--schema", path, "--load", "-", "--print"}, "select o.custno from orders o");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("SELECT O.CUSTNO\r\nFROM ORDERS O\n"));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::schemaWithMistake() {
    const QString path = written("bad.json", "{\"ORDERS\":\n[[\"CUSTNO\"");
    const Result result = run({"--schema", path, "--state"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QVERIFY(
        result.errors.startsWith("orvquery: " + path.toUtf8() + ":2:10: this is not valid JSON: "));
}

void TestProgram::databaseThatIsNone() {
    const Result result = run({"--database", m_query, "--state"});
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: The database file \"%1\" is not an SQLite database.\n")
                 .arg(m_query));
}

void TestProgram::databaseWithoutPermission() {
#ifdef Q_OS_UNIX
    QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                               QFile::ReadOther | QFile::ExeOther);
    const QString path = file("closed.db");
    QVERIFY(QFile::copy(m_database, path));
    QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
    const Result result = run({"--database", path, "--state"}, {}, true);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: The database file \"%1\" cannot be read: permission "
                            "denied.\n")
                 .arg(path));
    QCOMPARE(result.status, 1);
#endif
}

// Three questions that the sample database is made for.
void TestProgram::explain_data() {
    QTest::addColumn<QByteArray>("statement");
    QTest::addColumn<QString>("text");
    QTest::newRow("turnover of customers")
        << QByteArray(
               "select c.name, c.city, count(distinct o.order_no) as orders, "
               "sum(i.quantity * i.unit_price) as turnover from customers c "
               "join orders o on o.customer_no = c.customer_no "
               "join items i on i.order_no = o.order_no "
               "where o.status <> 'cancelled' and (c.credit_limit >= 10000 or c.city in "
               "('Hamburg', 'Lyon')) group by c.name, c.city order by turnover desc")
        << QStringLiteral(
               "Result\n"
               "  Returns one row for each combination of the NAME and the CITY of CUSTOMERS\n"
               "  (C), with the NAME, the CITY, the number of different values of the ORDER_NO\n"
               "  of ORDERS (O) (called ORDERS) and the sum of \u201cI.QUANTITY * "
               "I.UNIT_PRICE\u201d\n"
               "  (called TURNOVER).\n"
               "\n"
               "Tables\n"
               "  Takes the rows of CUSTOMERS (C) together with the rows of ORDERS (O) that have\n"
               "  the same CUSTOMER_NO; rows without a match are left out.\n"
               "  Joins to these the rows of ITEMS (I) that have the same ORDER_NO as ORDERS\n"
               "  (O); rows without a match are left out.\n"
               "\n"
               "Conditions\n"
               "  Only rows count where all of these are true:\n"
               "  - the STATUS of ORDERS (O) is something other than 'cancelled'\n"
               "  - the CREDIT_LIMIT of CUSTOMERS (C) is at least 10000 or the CITY of CUSTOMERS\n"
               "    (C) is one of ('Hamburg', 'Lyon')\n"
               "\n"
               "Order\n"
               "  Sorted by TURNOVER, the greatest first.\n");
    QTest::newRow("employees and who manages them")
        << QByteArray(
               "select e.last_name, m.last_name as manager from employees e left join "
               "employees m on m.employee_no = e.manager_no where e.left_on is null "
               "order by e.last_name")
        << QStringLiteral(
               "Result\n"
               "  Returns the LAST_NAME of EMPLOYEES (E) and the LAST_NAME of EMPLOYEES (M)\n"
               "  (called MANAGER).\n"
               "\n"
               "Tables\n"
               "  Takes the rows of EMPLOYEES (E) together with the rows of EMPLOYEES (M), where\n"
               "  the EMPLOYEE_NO of EMPLOYEES (M) is the same as the MANAGER_NO of EMPLOYEES\n"
               "  (E); rows of EMPLOYEES (E) without a match are kept, with empty values for\n"
               "  EMPLOYEES (M).\n"
               "\n"
               "Conditions\n"
               "  Only rows count where the LEFT_ON of EMPLOYEES (E) is not given.\n"
               "\n"
               "Order\n"
               "  Sorted by the LAST_NAME of EMPLOYEES (E), from A to Z.\n");
    QTest::newRow("days with many orders")
        << QByteArray(
               "select ordered_on, count(*) as orders, max(total) as largest from orders "
               "where ordered_on between '2024-01-01' and '2024-12-31' group by ordered_on "
               "having count(*) > 3 order by ordered_on desc limit 10")
        << QStringLiteral(
               "Result\n"
               "  Returns one row for each ORDERED_ON, with the ORDERED_ON, the number of rows\n"
               "  (called ORDERS) and the greatest TOTAL (called LARGEST).\n"
               "\n"
               "Tables\n"
               "  Takes the rows of ORDERS.\n"
               "\n"
               "Conditions\n"
               "  Only rows count where the ORDERED_ON is from '2024-01-01' to '2024-12-31'.\n"
               "\n"
               "Groups\n"
               "  Of these groups only those are kept where the number of rows is greater than\n"
               "  3.\n"
               "\n"
               "Order\n"
               "  Sorted by the ORDERED_ON, the latest first.\n"
               "\n"
               "Further text\n"
               "  At its end the statement says, as it stands: \u201climit 10\u201d.\n");
}

void TestProgram::explain() {
    QFETCH(QByteArray, statement);
    QFETCH(QString, text);
    const Result result = run({"--load", "-", "--explain"}, statement);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(QString::fromUtf8(result.output).split(u'\n'), text.split(u'\n'));
}

void TestProgram::explainFails() {
    const Result result = run({"--load", "-", "--explain"}, "delete from orders");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QVERIFY(result.errors.startsWith("orvquery: -: "));
}

void TestProgram::compare() {
    const QString other = written("other.sql", "select o.id, o.city from orders o where o.id > 1");
    const Result some = run({"--database", m_database, "--diff", m_query, other});
    QCOMPARE(some.errors, QByteArray());
    QCOMPARE(some.status, 1);
    QCOMPARE(some.output, QByteArray("Result\n  - Removed: the TOTAL\n\nConditions\n  - Added: the "
                                     "ID is greater than 1\n"));
    const Result none = run({"--database", m_database, "--diff", m_query, m_query});
    QCOMPARE(none.status, 0);
    QCOMPARE(none.output, QByteArray("Differences\n  There are none.\n"));
}

void TestProgram::compareWithState() {
    const Result saved = run({"--database", m_database, "--load", m_query, "--state"});
    const QString state = written("query.json", saved.output);
    QCOMPARE(run({"--database", m_database, "--diff", state, m_query}).status, 0);
    const Result some =
        run({"--database", m_database, "--diff", "-", state}, "select o.id, o.city from orders o");
    QCOMPARE(some.status, 1);
    QCOMPARE(some.output, QByteArray("Result\n  - Added: the TOTAL\n"));
}

void TestProgram::compareFails() {
    const QString refused = written("refused.sql", "delete from orders");
    const QString broken = written("broken.json", "{\"tables\": 1}");
    for (const QString& path : {refused, broken, file("none.sql")}) {
        const Result result = run({"--database", m_database, "--diff", m_query, path});
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QByteArray());
        QVERIFY2(result.errors.startsWith("orvquery: ") && result.errors.contains(path.toUtf8()),
                 result.errors.constData());
        QCOMPARE(result.errors.count('\n'), 1);
    }
    const QString unknown = written("gone.sql", "select o.id from orders o, nowhere n");
    const Result told = run({"--database", m_database, "--diff", m_query, unknown});
    QCOMPARE(told.status, 1);
    QVERIFY(told.errors.contains(":1:28: \"nowhere n\": "));
    QCOMPARE(run({"--database", m_database, "--diff", m_query, unknown, "--strict"}).status, 2);
}

void TestProgram::compareTellsWhatIsNotHeld_data() {
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("lines");
    const auto row = [](const char* name, const char* before, const char* after, int lines) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after) << (lines > 0 ? 1 : 0)
                            << lines;
    };
    row("sorting", "select o.city from orders o", "select o.city from orders o order by o.total",
        1);
    row("grouping", "select o.city from orders o group by o.city", "select o.city from orders o",
        1);
    row("conditions of a join",
        "select o.id from orders o left join orders p on o.id = p.id or p.city = 'x'",
        "select o.id from orders o left join orders p on o.id = p.id or p.city = 'y'", 2);
    row("the same on both sides", "select o.city from orders o order by o.total",
        "select o.city  from orders o order by O.TOTAL", 0);
}

void TestProgram::compareTellsWhatIsNotHeld() {
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(int, status);
    QFETCH(int, lines);
    const Result result = run({"--database", m_database, "--diff", written("before.sql", before),
                               written("after.sql", after)});
    QCOMPARE(result.status, status);
    QCOMPARE(result.output.contains("There are none."), status == 0);
    const QByteArray words = result.output.simplified();
    QCOMPARE(words.count("Not held by the diagram, and so not compared: "), lines);
}

// All would be removed otherwise, or all be added.
void TestProgram::compareWithNothingLoaded() {
    const QString nothing = written("nothing.sql", "select from where");
    for (const QStringList& files : {QStringList{m_query, nothing}, {nothing, m_query}}) {
        const Result result = run(QStringList{"--database", m_database, "--diff"} + files);
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QByteArray());
        QVERIFY2(result.errors.contains(nothing.toUtf8() + ": No table of this statement could be "
                                                           "loaded"),
                 result.errors.constData());
    }
}

// The database passes over the case of names, and so does what is said of them.
void TestProgram::compareNamesOfOneTable() {
    const QString quotedName = written("quoted.sql", "select city from \"orders\"");
    const QString plain = written("plain.sql", "select city from ORDERS");
    const Result none = run({"--database", m_database, "--diff", quotedName, plain});
    QCOMPARE(none.errors, QByteArray());
    QCOMPARE(none.output, QByteArray("Differences\n  There are none.\n"));
    QCOMPARE(none.status, 0);
    const QString more = written("more.sql", "select city, id from ORDERS where id = 3");
    const Result some = run({"--database", m_database, "--diff", quotedName, more});
    QCOMPARE(some.output,
             QByteArray("Result\n  - Added: the ID\n\nConditions\n  - Added: the ID is 3\n"));
    const QString named = written("named.sql", "select o.city from \"orders\" o");
    QVERIFY(run({"--database", m_database, "--diff", named, plain})
                .output.startsWith("Tables\n  - Changed: "));
}

void TestProgram::renderPng() {
    const QString path = file("diagram.png");
    const Result result = run({"--database", m_database, "--load", m_query, "--render", path});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray());
    const QImage image(path);
    QVERIFY(image.width() > 100 && image.height() > 60);
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::white));
    QCOMPARE(image.pixelColor(image.width() - 1, image.height() - 1), QColor(Qt::white));
    QVERIFY(image.pixelColor(20, 20) != QColor(Qt::white));
}

void TestProgram::renderSvg() {
    const QString path = file("diagram.svg");
    QCOMPARE(run({"--database", m_database, "--load", m_query, "--render", path}).status, 0);
    QFile svg(path);
    QVERIFY(svg.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&svg);
    QStringList texts;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"text") {
            texts += reader.readElementText().simplified();
        }
    }
    QVERIFY(!reader.hasError());
    QVERIFY2(texts.contains(QStringLiteral("CITY")), qPrintable(texts.join(u'|')));
}

void TestProgram::renderFails() {
    const QString picture = file("empty.png");
    const Result empty =
        run({"--database", m_database, "--load", "-", "--render", picture}, "select 1");
    QCOMPARE(empty.status, 1);
    QVERIFY(empty.errors.endsWith(
        "\norvquery: There is nothing to draw: the statement has no tables.\n"));
    QVERIFY(!QFile::exists(picture));
    const QString nowhere = file("none/diagram.png");
    const Result result = run({"--database", m_database, "--load", m_query, "--render", nowhere});
    QCOMPARE(result.status, 1);
    QVERIFY(result.errors.startsWith("orvquery: The file \"" + nowhere.toUtf8() +
                                     "\" cannot be written: "));
}

void TestProgram::fullDiskIsTold() {
#ifdef Q_OS_LINUX
    QProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start(QStringLiteral(ORVQUERY_PROGRAM),
                  {"--database", m_database, "--load", m_query, "--print"});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().startsWith("orvquery: The output cannot be written: "));
#endif
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_app_program.moc"
