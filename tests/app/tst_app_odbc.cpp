// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "data/ProcessName.h"
#include "database/OpenDatabase.h"
#include "database/RunQuery.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "workarea/ORVQDSProc.h"

#include <QDate>
#include <QSqlDriver>
#include <QTemporaryDir>

using namespace orvquery;

namespace {

class DriverWithoutTransactions : public QSqlDriver {
public:
    bool hasFeature(DriverFeature /*feature*/) const override { return false; }
    bool open(const QString&, const QString&, const QString&, const QString&, int,
              const QString&) override {
        setOpen(true);
        return true;
    }
    void close() override { setOpen(false); }
    QSqlResult* createResult() const override { return nullptr; }
};

}  // namespace

// Data sources of ODBC, with the driver for SQLite behind them.
class TestOdbc : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { lReservedWords().clear(); }

    void sourcesAreOpened_data();
    void sourcesAreOpened();
    void columns();
    void boxRuns();
    void placeholders();
    void nothingIsWritten();
    void openingFails();
    void listingTellsThatTheSourceIsGone();
    void noTransactionsAreNeeded();

private:
    [[nodiscard]] RowCollector run(const QString& statement,
                                   const PlaceholderValues& values = {}) const;

    QTemporaryDir m_folder;
    QString m_file;
};

// The driver and its sources are known within this program alone.
void TestOdbc::initTestCase() {
    QVERIFY(QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")));
    m_file = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(apptest::runStatements(
        m_file, {"CREATE TABLE Orders (id INTEGER PRIMARY KEY, \"Order Date\" DATE, name "
                 "VARCHAR(20) NOT NULL)",
                 "INSERT INTO Orders VALUES (1, '2024-01-31', 'Zoë'), (2, NULL, '')",
                 "CREATE VIEW seen AS SELECT id FROM Orders"}));
    QVERIFY(apptest::writeFile(m_folder.filePath(QStringLiteral("odbcinst.ini")),
                               "[SQLite3]\nDriver=" ORVQUERY_ODBC_DRIVER "\n"));
    QVERIFY(apptest::writeFile(m_folder.filePath(QStringLiteral("odbc.ini")),
                               "[shop]\nDriver=SQLite3\nDatabase=" + m_file.toUtf8() + "\n"));
    qputenv("HOME", m_folder.path().toUtf8());
    qputenv("ODBCSYSINI", m_folder.path().toUtf8());
    qputenv("ODBCINI", m_folder.filePath(QStringLiteral("odbc.ini")).toUtf8());
}

RowCollector TestOdbc::run(const QString& statement, const PlaceholderValues& values) const {
    const auto database = openDatabase(QStringLiteral("odbc://shop"));
    Connection connection(database->settings());
    const QSqlError error = connection.open();
    if (error.isValid()) throw orv::Error(error.text());
    RowCollector rows(100);
    runQuery(connection.database(), statement, rows, values);
    return rows;
}

void TestOdbc::sourcesAreOpened_data() {
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("title");
    QTest::newRow("name") << "odbc://shop"
                          << "shop";
    QTest::newRow("name behind slashes") << "odbc:///shop"
                                         << "shop";
    QTest::newRow("string") << "odbc:///?Driver=SQLite3;Database=%1"
                            << "ODBC";
}

void TestOdbc::sourcesAreOpened() {
    QFETCH(QString, address);
    if (address.contains(u'%')) address = address.arg(m_file);
    const auto database = openDatabase(address);
    QTEST(database->title(), "title");
    const std::vector<TableEntry> expected = {{"Orders"}, {"seen", TableKind::View}};
    QVERIFY(database->tables() == expected);
}

void TestOdbc::columns() {
    const auto table =
        openDatabase(QStringLiteral("odbc://shop"))->describe(QStringLiteral("Orders"));
    QStringList found;
    for (const ColumnEntry& column : table->entries) {
        found += column.name + u' ' + orv::fieldTypeIdentifier(column.fieldType) +
                 (column.isKey ? " key" : "") + (column.isRequired ? " required" : "");
    }
    QCOMPARE(found,
             (QStringList{"id ftInteger key", "Order Date ftDate", "name ftString required"}));
}

void TestOdbc::boxRuns() {
    const auto database = openDatabase(QStringLiteral("odbc://shop"));
    TorvQueryBuilder builder;
    connectTables(builder, *database);
    QVERIFY(addTable(builder, *database, QStringLiteral("Orders")));
    for (const auto& item : builder.ListOfTables->Tables(0)->Items) item->SetCheck(true);
    const RowCollector rows = run(builder.GetSQLStatment());
    QCOMPARE(rows.rows().size(), 2U);
    QCOMPARE(rows.rows()[0][1].toDate(), QDate(2024, 1, 31));
    QCOMPARE(rows.rows()[0][2].toString(), QString::fromUtf8("Zoë"));
    QVERIFY(rows.rows()[1][1].isNull());
    QVERIFY(!rows.rows()[1][2].isNull());
}

void TestOdbc::placeholders() {
    const QString statement = QStringLiteral("SELECT id FROM Orders WHERE ");
    QCOMPARE(run(statement + "id = :X", {{"X", 2}}).rows()[0][0].toInt(), 2);
    QCOMPARE(run(statement + "name = :X", {{"X", QString::fromUtf8("Zoë")}}).rows().size(), 1U);
}

void TestOdbc::nothingIsWritten() {
    QCOMPARE(apptest::errorOf([this] { (void)run("SELECT 1; DELETE FROM Orders"); }),
             QStringLiteral("Only one statement can be run at a time."));
    QCOMPARE(run("SELECT count(*) FROM Orders").rows()[0][0].toInt(), 2);
}

void TestOdbc::openingFails() {
    QCOMPARE(apptest::errorOf([] { (void)openDatabase(QStringLiteral("odbc://none")); }),
             QStringLiteral("The data source \"none\" cannot be opened: Data source name not found "
                            "and no default driver specified"));
    QCOMPARE(apptest::errorOf([] { (void)openDatabase(QStringLiteral("odbc:///")); }),
             QStringLiteral("The address names no data source."));
}

void TestOdbc::listingTellsThatTheSourceIsGone() {
    QDir folder(m_folder.path());
    QVERIFY(folder.mkdir(QStringLiteral("share")));
    const QString file = folder.filePath(QStringLiteral("share/passing.db"));
    QVERIFY(apptest::runStatements(file, {"CREATE TABLE passing (id INTEGER)"}));
    const auto database = openDatabase(QStringLiteral("odbc:///?Driver=SQLite3;Database=") + file);
    QCOMPARE(database->tables().size(), 1U);
    QVERIFY(apptest::runStatements(file, {"DROP TABLE passing"}));
    QVERIFY(database->tables().empty());
    QVERIFY(folder.rename(QStringLiteral("share"), QStringLiteral("elsewhere")));
    const QString error = apptest::errorOf([&] { (void)database->tables(); });
    QVERIFY2(error.contains(QStringLiteral("cannot be opened: ")), qPrintable(error));
}

void TestOdbc::noTransactionsAreNeeded() {
    QSqlDatabase::registerSqlDriver(QStringLiteral("PLAIN"),
                                    new QSqlDriverCreator<DriverWithoutTransactions>);
    ConnectionSettings settings;
    settings.driver = QStringLiteral("PLAIN");
    settings.isTakenBack = true;
    Connection connection(settings);
    QVERIFY(!connection.open().isValid());
    QVERIFY(connection.database().isOpen());
}

QTEST_MAIN(TestOdbc)
#include "tst_app_odbc.moc"
