// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "data/ProcessName.h"
#include "database/RunQuery.h"
#include "database/SqliteDatabase.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace orvquery;

// Databases as people have them, and files that are none.
class TestSqliteDatabase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void filesThatAreNoDatabase_data();
    void filesThatAreNoDatabase();
    void lockedDatabase();
    void nothingIsCreated();
    void nothingIsWritten();
    void tablesAndViews();
    void find_data();
    void find();
    void columns();
    void brokenView();
    void functions();
    void functionsTakeParameters();
    void tableHidesFunction();
    void rows();
    void nullIsNoEmptyText();
    void rowsAreCut();
    void functionsRunWithPlaceholders();
    void questionMarksInNames_data();
    void questionMarksInNames();
    void valuesAreBound_data();
    void valuesAreBound();
    void queriesThatFail_data();
    void queriesThatFail();
    void statementsThatAreNoQueries_data();
    void statementsThatAreNoQueries();
    void queriesBehindComments();
    void connectionsGo();

private:
    [[nodiscard]] QString file(const char* name) const {
        return m_folder.filePath(QLatin1String(name));
    }
    [[nodiscard]] QString errorOfOpening(const QString& path) const {
        return apptest::errorOf([&] { SqliteDatabase{path}; });
    }
    [[nodiscard]] QString errorOfRunning(const QString& statement) const;
    [[nodiscard]] RowCollector run(const QString& statement, std::size_t most = 100,
                                   const PlaceholderValues& values = {}) const;

    QTemporaryDir m_folder;
    QString m_path;
};

void TestSqliteDatabase::initTestCase() {
    m_path = file("company.db");
    QVERIFY(apptest::runStatements(
        m_path,
        {"CREATE TABLE orders (id INTEGER PRIMARY KEY, \"Order Date\" DATE, total DECIMAL(8,2))",
         "CREATE TABLE \"Order Details\" (\"order\" INT, \"2nd\" TEXT, \"\" BLOB)",
         "CREATE TABLE Customers (a, b AS (a + 1), c BIGINT)",
         "CREATE VIEW big AS SELECT id, total * 2 AS twice FROM orders",
         "CREATE TABLE gone (x INT)", "CREATE VIEW broken AS SELECT x FROM gone",
         "INSERT INTO orders VALUES (1, '2024-01-31', 10.5), (2, NULL, 0.1), (3, '', -3)",
         "ANALYZE", "DROP TABLE gone"}));
}

QString TestSqliteDatabase::errorOfRunning(const QString& statement) const {
    return apptest::errorOf([&] { (void)run(statement); });
}

RowCollector TestSqliteDatabase::run(const QString& statement, std::size_t most,
                                     const PlaceholderValues& values) const {
    Connection connection(SqliteDatabase(m_path).settings());
    RowCollector rows(most);
    if (connection.open().isValid()) return rows;
    runQuery(connection.database(), statement, rows, values);
    return rows;
}

void TestSqliteDatabase::filesThatAreNoDatabase_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("what");
    const auto row = [this](const char* name, const QByteArray& content, const char* what) {
        QTest::newRow(name) << file(name) << content << QString::fromLatin1(what);
    };
    row("empty.db", "", "is empty");
    row("text.db", "these are no rows", "is not an SQLite database");
    row("long.db", QByteArray(100000, 'x'), "is not an SQLite database");
    row("head.db", QByteArray("SQLite format 3\0", 16) + QByteArray(5000, '\xff'),
        "is not an SQLite database");
}

void TestSqliteDatabase::filesThatAreNoDatabase() {
    QFETCH(QString, path);
    QFETCH(QByteArray, content);
    QFETCH(QString, what);
    QVERIFY(apptest::writeFile(path, content));
    QCOMPARE(errorOfOpening(path), QStringLiteral("The database file \"%1\" %2.").arg(path, what));
}

void TestSqliteDatabase::lockedDatabase() {
    const QString path = file("locked.db");
    QVERIFY(apptest::runStatements(path, {"CREATE TABLE t (x)"}));
    Connection other({QStringLiteral("QSQLITE"), path, QString()});
    QVERIFY(!other.open().isValid());
    QSqlQuery query(other.database());
    QVERIFY(query.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    QCOMPARE(errorOfOpening(path),
             QStringLiteral("The database file \"%1\" is locked by another program.").arg(path));
    QVERIFY(query.exec(QStringLiteral("COMMIT")));
    QCOMPARE(errorOfOpening(path), QStringLiteral("(no error)"));
}

void TestSqliteDatabase::nothingIsCreated() {
    const QString missing = file("missing.db");
    QCOMPARE(errorOfOpening(missing),
             QStringLiteral("The database file \"%1\" does not exist.").arg(missing));
    QVERIFY(!QFile::exists(missing));
    QCOMPARE(errorOfOpening(m_folder.path()),
             QStringLiteral("The database file \"%1\" is a folder.").arg(m_folder.path()));
    QCOMPARE(errorOfOpening(QString()), QStringLiteral("The name of the database file is empty."));
    QCOMPARE(errorOfOpening(QStringLiteral(":memory:")),
             QStringLiteral("The database file \":memory:\" does not exist."));
}

void TestSqliteDatabase::nothingIsWritten() {
    Connection connection(SqliteDatabase(m_path).settings());
    QVERIFY(!connection.open().isValid());
    QSqlQuery query(connection.database());
    QVERIFY(!query.exec(QStringLiteral("DELETE FROM orders")));
    QCOMPARE(query.lastError().databaseText(),
             QStringLiteral("attempt to write a readonly database"));
}

void TestSqliteDatabase::tablesAndViews() {
    const std::vector<TableEntry> expected = {{"big", TableKind::View},
                                              {"broken", TableKind::View},
                                              {"Customers", TableKind::Table},
                                              {"Order Details", TableKind::Table},
                                              {"orders", TableKind::Table}};
    const SqliteDatabase database(m_path);
    std::vector<TableEntry> found = database.tables();
    std::erase_if(found, [](const TableEntry& entry) { return isCalled(entry.kind); });
    QCOMPARE(found, expected);
    QCOMPARE(database.title(), QStringLiteral("company.db"));
    QVERIFY(database.reservedWords().contains(QStringLiteral("ORDER")));
}

void TestSqliteDatabase::find_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("found");
    QTest::newRow("upper case") << "ORDERS"
                                << "ORDERS";
    QTest::newRow("lower case") << "orders"
                                << "ORDERS";
    QTest::newRow("quoted") << "\"Orders\""
                            << "ORDERS";
    QTest::newRow("blank inside") << "\"order details\""
                                  << "Order Details";
    QTest::newRow("qualified") << "MAIN.ORDERS"
                               << "ORDERS";
    QTest::newRow("qualified and quoted") << "\"main\".\"Order Details\""
                                          << "Order Details";
    QTest::newRow("view") << "BIG"
                          << "BIG";
    QTest::newRow("other schema") << "TEMP.ORDERS"
                                  << "";
    QTest::newRow("unknown") << "NOTHING"
                             << "";
    QTest::newRow("internal") << "SQLITE_STAT1"
                              << "";
    QTest::newRow("empty") << ""
                           << "";
}

void TestSqliteDatabase::find() {
    QFETCH(QString, name);
    QFETCH(QString, found);
    const auto table = SqliteDatabase(m_path).find(name);
    QCOMPARE(table ? table->name : QString(), found);
}

void TestSqliteDatabase::columns() {
    const auto texts = [this](const char* table) {
        QStringList result;
        const auto description = SqliteDatabase(m_path).describe(QString::fromLatin1(table));
        for (const TFieldDef& field : description->columns.FieldDefs) {
            result += field.Name + u' ' + orv::fieldTypeIdentifier(field.DataType);
        }
        return result;
    };
    QCOMPARE(texts("orders"), (QStringList{"ID ftInteger", "Order Date ftDate", "TOTAL ftFloat"}));
    QCOMPARE(texts("Order Details"),
             (QStringList{"ORDER ftInteger", "2nd ftString", "\"\" ftBlob"}));
    QCOMPARE(texts("Customers"), (QStringList{"A ftString", "B ftString", "C ftLargeint"}));
    QCOMPARE(texts("big"), (QStringList{"ID ftInteger", "TWICE ftString"}));
}

void TestSqliteDatabase::brokenView() {
    QCOMPARE(apptest::errorOf([&] { (void)SqliteDatabase(m_path).find("BROKEN"); }),
             QStringLiteral("The columns of \"broken\" cannot be read: no such table: main.gone"));
}

void TestSqliteDatabase::functions() {
    QStringList found;
    for (const TableEntry& entry : SqliteDatabase(m_path).tables()) {
        if (entry.kind != TableKind::Function) continue;
        found += entry.name + u'(' + entry.parameters.join(u',') + u')';
    }
    // Those that are there since version 3.16, when functions of this kind came.
    for (const char* function :
         {"json_each(json,root)", "json_tree(json,root)", "pragma_foreign_key_list(arg,schema)",
          "pragma_index_info(arg,schema)", "pragma_index_list(arg,schema)",
          "pragma_table_info(arg,schema)"}) {
        QVERIFY2(found.contains(QLatin1String(function)), function);
    }
    // Settings take no argument of their own, and what changes something is no query.
    for (const QString& function : found) {
        QVERIFY2(!function.startsWith(QLatin1String("pragma_cache_size")) &&
                     !function.startsWith(QLatin1String("pragma_optimize")),
                 qPrintable(function));
    }
    QStringList sorted = found;
    sorted.sort();
    QCOMPARE(found, sorted);
}

void TestSqliteDatabase::functionsTakeParameters() {
    const auto texts = [this](const char* function) {
        QStringList result;
        const auto description = SqliteDatabase(m_path).find(QLatin1String(function));
        for (const TFieldDef& field : description->columns.FieldDefs) result += field.Name;
        for (const TParam& parameter : description->parameters->Items) {
            const QVariant& value = parameter.Value;
            const QString shown = !value.isValid() ? QStringLiteral("none")
                                  : value.isNull() ? QStringLiteral("NULL")
                                                   : value.toString();
            result += parameter.Name + u' ' + orv::fieldTypeIdentifier(parameter.DataType) + u' ' +
                      orv::paramTypeIdentifier(parameter.ParamType) + u' ' + shown;
        }
        return result.join(QStringLiteral(", "));
    };
    QCOMPARE(texts("PRAGMA_TABLE_INFO"),
             QStringLiteral("CID, NAME, TYPE, NOTNULL, DFLT_VALUE, PK, "
                            "ARG ftString ptInput none, SCHEMA ftString ptInput NULL"));
    QCOMPARE(texts("json_each"),
             QStringLiteral("KEY, VALUE, TYPE, ATOM, ID, PARENT, FULLKEY, PATH, "
                            "JSON ftString ptInput none, ROOT ftString ptInput $"));
    QVERIFY(!SqliteDatabase(m_path).find("ORDERS")->parameters);
    QVERIFY(!SqliteDatabase(m_path).find("PRAGMA_CACHE_SIZE"));
}

void TestSqliteDatabase::tableHidesFunction() {
    const QString path = file("hides.db");
    QVERIFY(apptest::runStatements(path, {"CREATE TABLE JSON_EACH (x)"}));
    const SqliteDatabase database(path);
    int count = 0;
    for (const TableEntry& entry : database.tables()) {
        if (entry.name.compare(u"json_each", Qt::CaseInsensitive) != 0) continue;
        QCOMPARE(entry.kind, TableKind::Table);
        ++count;
    }
    QCOMPARE(count, 1);
    QVERIFY(!database.describe(QStringLiteral("json_each"))->parameters);
}

void TestSqliteDatabase::functionsRunWithPlaceholders() {
    const QVariant sqlNull(QMetaType::fromType<QString>());
    const RowCollector columns =
        run("SELECT name FROM PRAGMA_TABLE_INFO(:TABLE, :SCHEMA) ORDER BY cid", 100,
            {{"TABLE", "Order Details"}, {"SCHEMA", sqlNull}});
    QCOMPARE(columns.rows(), (std::vector<Row>{{"order"}, {"2nd"}, {""}}));
    const RowCollector values = run("SELECT value FROM JSON_EACH(:JSON, :ROOT)", 100,
                                    {{"JSON", R"({"a": ["it's", 2, null]})"}, {"ROOT", "$.a"}});
    QCOMPARE(values.rows().size(), 3U);
    QCOMPARE(values.rows()[0], Row{"it's"});
    QCOMPARE(values.rows()[1], Row{2});
    QVERIFY(values.rows()[2][0].isNull());
    // One value serves all places of its name.
    const RowCollector twice = run("SELECT :X, json_extract(:J, '$.b') -- isn't :Y\n, :x", 100,
                                   {{"X", 7}, {"J", R"({"b": 8})"}});
    QCOMPARE(twice.rows(), (std::vector<Row>{{7, 8, 7}}));
}

void TestSqliteDatabase::questionMarksInNames_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("double quotes") << "\"it's a?b\"";
    QTest::newRow("backticks") << "`it's a?b`";
    QTest::newRow("brackets") << "[it's a?b]";
}

// Only what stands outside them is a parameter.
void TestSqliteDatabase::questionMarksInNames() {
    QFETCH(QString, name);
    const QString statement =
        QStringLiteral("SELECT %1, '?', :X FROM (SELECT 5 AS %1) WHERE %1 = :Y").arg(name);
    QCOMPARE(run(statement, 100, {{"X", "?"}, {"Y", 5}}).rows(), (std::vector<Row>{{5, "?", "?"}}));
    QCOMPARE(run(QStringLiteral("SELECT 5 AS %1").arg(name)).columns(),
             QStringList{name.sliced(1, name.size() - 2)});
}

void TestSqliteDatabase::valuesAreBound_data() {
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << QVariant(5LL) << "integer"
                           << "5";
    QTest::newRow("fraction") << QVariant(0.5) << "real"
                              << "0.5";
    QTest::newRow("text") << QVariant("'; DROP TABLE orders --") << "text"
                          << "'; DROP TABLE orders --";
    QTest::newRow("question mark") << QVariant("?") << "text"
                                   << "?";
    QTest::newRow("empty") << QVariant("") << "text"
                           << "";
    QTest::newRow("null") << QVariant(QMetaType::fromType<QString>()) << "null"
                          << "";
    QTest::newRow("date") << QVariant(QDate(2024, 1, 31)) << "text"
                          << "2024-01-31";
    QTest::newRow("time") << QVariant(QTime(8, 5)) << "text"
                          << "08:05:00";
    QTest::newRow("date and time") << QVariant(QDateTime(QDate(2024, 1, 31), QTime(8, 5))) << "text"
                                   << "2024-01-31 08:05:00";
}

void TestSqliteDatabase::valuesAreBound() {
    QFETCH(QVariant, value);
    QFETCH(QString, type);
    QFETCH(QString, text);
    const RowCollector rows = run("SELECT typeof(:X), :X", 100, {{"X", value}});
    QCOMPARE(rows.rows().size(), 1U);
    QCOMPARE(rows.rows()[0][0].toString(), type);
    QCOMPARE(rows.rows()[0][1].toString(), text);
    QCOMPARE(rows.rows()[0][1].isNull(), value.isNull());
}

void TestSqliteDatabase::rows() {
    const RowCollector rows = run("SELECT id, total, total * 3 AS t FROM orders ORDER BY id");
    QCOMPARE(rows.columns(), (QStringList{"id", "total", "t"}));
    QCOMPARE(rows.rows().size(), 3U);
    QCOMPARE(rows.rows()[0], (Row{1, 10.5, 31.5}));
    QCOMPARE(rows.rows()[2], (Row{3, -3, -9}));
    QVERIFY(!rows.isCut());
}

void TestSqliteDatabase::nullIsNoEmptyText() {
    const RowCollector rows = run("SELECT \"Order Date\" FROM orders WHERE id > 1 ORDER BY id");
    QCOMPARE(rows.rows().size(), 2U);
    QVERIFY(rows.rows()[0][0].isNull());
    QVERIFY(!rows.rows()[1][0].isNull());
    QCOMPARE(rows.rows()[1][0].toString(), QString());
}

void TestSqliteDatabase::rowsAreCut() {
    const QString three = QStringLiteral("SELECT id FROM orders");
    QCOMPARE(run(three, 2).rows().size(), 2U);
    QVERIFY(run(three, 2).isCut());
    QVERIFY(!run(three, 3).isCut());
    QCOMPARE(run(QStringLiteral("SELECT id FROM orders WHERE 0")).columns(), QStringList{"id"});
}

void TestSqliteDatabase::queriesThatFail_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* statement, const char* message) {
        QTest::newRow(statement) << QString::fromLatin1(statement) << QString::fromLatin1(message);
    };
    row("SELECT x FROM nowhere", "The database says: no such table: nowhere");
    row("SELECT FROM", "The database says: near \"FROM\": syntax error");
    row("SELECT 1; SELECT 2", "Only one statement can be run at a time.");
    row("SELECT id FROM orders WHERE id = :X", "The parameter :X has no value.");
    row("SELECT id FROM orders WHERE id = ?",
        "The statement has a parameter \"?\", which has no name by which it could get a value; "
        "please write it as :NAME.");
    row("SELECT id FROM orders WHERE id = $X",
        "The statement has parameters that are not written as :NAME; it cannot be run without "
        "their values.");
    row("SELECT abs(id + 9223372036854775800) FROM orders WHERE id < 3 "
        "UNION ALL SELECT abs(-9223372036854775807 - id) FROM orders",
        "The database says: integer overflow");
    row("WITH x AS (SELECT 1) DELETE FROM orders",
        "The database says: attempt to write a readonly database");
    row("", "There is no statement to run.");
    row("  \n", "There is no statement to run.");
}

void TestSqliteDatabase::queriesThatFail() {
    QFETCH(QString, statement);
    QFETCH(QString, message);
    QCOMPARE(errorOfRunning(statement), message);
}

void TestSqliteDatabase::statementsThatAreNoQueries_data() {
    QTest::addColumn<QString>("statement");
    QTest::newRow("vacuum") << QStringLiteral("VACUUM INTO '%1'").arg(file("copy.db"));
    QTest::newRow("attach") << QStringLiteral("/* SELECT */ ATTACH '%1' AS x").arg(file("copy.db"));
    QTest::newRow("comment alone") << "-- SELECT 1";
    QTest::newRow("open comment") << "/* SELECT 1";
    QTest::newRow("other word") << "SELECTED 1";
}

void TestSqliteDatabase::statementsThatAreNoQueries() {
    QFETCH(QString, statement);
    QCOMPARE(errorOfRunning(statement),
             QStringLiteral("Only queries can be run here: statements that begin with SELECT, "
                            "WITH, VALUES or EXPLAIN."));
    QVERIFY(!QFile::exists(file("copy.db")));
}

void TestSqliteDatabase::queriesBehindComments() {
    for (const char* statement :
         {"-- one\n\t/* two\n */ select 1;", "VALUES (1)",
          "with a(x) as (values(1)) select x from a", "explain query plan select 1"}) {
        QCOMPARE(run(QLatin1String(statement)).rows().size(), 1U);
    }
}

void TestSqliteDatabase::connectionsGo() {
    (void)run(QStringLiteral("SELECT 1"));
    (void)errorOfRunning(QStringLiteral("SELECT FROM"));
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList());
}

QTEST_GUILESS_MAIN(TestSqliteDatabase)
#include "tst_app_sqlitedatabase.moc"
