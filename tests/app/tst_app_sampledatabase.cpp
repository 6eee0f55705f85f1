// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "database/RunQuery.h"
#include "database/SqliteDatabase.h"
#include "sample/SampleDatabase.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace orvquery;

class TestSampleDatabase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void sameRowsEachTime();
    void rowCounts_data();
    void rowCounts();
    void keysHold();
    void nullsAreThere_data();
    void nullsAreThere();
    void figuresToFindSomethingIn();
    void isFastToMake();
    void isMadeOnFirstUse();
    void otherVersionIsReplaced();
    void failureLeavesNothingBehind();

private:
    [[nodiscard]] int number(const QString& query) const {
        return apptest::valueOf(m_path, query).toInt();
    }

    QTemporaryDir m_folder;
    QString m_path;
};

namespace {

// Everything that a program can read from the database, in a fixed order.
QByteArray dumpOf(const QString& path) {
    const SqliteDatabase database(path);
    Connection connection(database.settings());
    if (connection.open().isValid()) return {};
    QByteArray dump;
    for (const TableEntry& entry : database.tables()) {
        RowCollector rows(1000000);
        runQuery(connection.database(), QStringLiteral("SELECT * FROM \"%1\"").arg(entry.name),
                 rows);
        QDataStream stream(&dump, QIODevice::Append);
        stream << entry.name << rows.columns();
        for (const Row& row : rows.rows()) stream << row;
    }
    RowCollector schema(1000);
    runQuery(connection.database(),
             QStringLiteral("SELECT type, name, sql FROM sqlite_master ORDER BY name"), schema);
    QDataStream stream(&dump, QIODevice::Append);
    for (const Row& row : schema.rows()) stream << row;
    return dump;
}

}  // namespace

void TestSampleDatabase::initTestCase() {
    m_path = m_folder.filePath(QStringLiteral("one.db"));
    makeSampleDatabase(m_path);
}

void TestSampleDatabase::sameRowsEachTime() {
    const QString again = m_folder.filePath(QStringLiteral("two.db"));
    makeSampleDatabase(again);
    const QByteArray dump = dumpOf(m_path);
    QVERIFY(dump.size() > 100000);
    QVERIFY(dump == dumpOf(again));
}

void TestSampleDatabase::rowCounts_data() {
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("count");
    const auto row = [](const char* table, int count) {
        QTest::newRow(table) << QString::fromLatin1(table) << count;
    };
    row("countries", 21);
    row("departments", 9);
    row("employees", 60);
    row("customers", 240);
    row("shippers", 5);
    row("orders", 1500);
    row("items", 4502);
    row("parts", 156);
    row("suppliers", 28);
    row("part_suppliers", 312);
    row("payments", 1623);
    row("customer_sales", 240);
    row("parts_to_reorder", 15);
}

void TestSampleDatabase::rowCounts() {
    QFETCH(QString, table);
    QFETCH(int, count);
    QCOMPARE(number(QStringLiteral("SELECT count(*) FROM %1").arg(table)), count);
}

void TestSampleDatabase::keysHold() {
    QCOMPARE(number(QStringLiteral("SELECT count(*) FROM pragma_foreign_key_check")), 0);
    QCOMPARE(apptest::valueOf(m_path, QStringLiteral("PRAGMA integrity_check")).toString(),
             QStringLiteral("ok"));
    QCOMPARE(number(QStringLiteral("SELECT count(*) FROM employees e JOIN employees m "
                                   "ON m.employee_no = e.manager_no")),
             59);
}

void TestSampleDatabase::nullsAreThere_data() {
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("column");
    for (const char* name :
         {"departments.budget", "employees.manager_no", "employees.left_on", "employees.commission",
          "employees.phone", "customers.contact", "customers.postcode", "customers.sales_rep_no",
          "customers.credit_limit", "orders.shipped_on", "items.discount", "parts.weight_kg",
          "suppliers.rating", "part_suppliers.lead_days", "payments.reference"}) {
        const QStringList parts = QString::fromLatin1(name).split(u'.');
        QTest::newRow(name) << parts[0] << parts[1];
    }
}

void TestSampleDatabase::nullsAreThere() {
    QFETCH(QString, table);
    QFETCH(QString, column);
    const QString query = QStringLiteral("SELECT count(*) FROM %1 WHERE %2 IS %3NULL");
    QVERIFY(number(query.arg(table, column, QString())) > 0);
    QVERIFY(number(query.arg(table, column, QStringLiteral("NOT "))) > 0);
}

// Outer joins, groups and thresholds are worth showing only where they make a difference.
void TestSampleDatabase::figuresToFindSomethingIn() {
    QCOMPARE(number(QStringLiteral("SELECT count(*) FROM customer_sales WHERE orders = 0")), 30);
    QCOMPARE(number(QStringLiteral("SELECT count(*) FROM customers c WHERE city IN "
                                   "('London', 'Milan') AND (SELECT sum(total) FROM orders o "
                                   "WHERE o.customer_no = c.customer_no) > 5000")),
             7);
    QVERIFY(number(QStringLiteral("SELECT max(orders) FROM customer_sales")) > 50);
    QCOMPARE(number(QStringLiteral("SELECT count(DISTINCT status) FROM orders")), 3);
    QCOMPARE(number(QStringLiteral("SELECT count(*) FROM suppliers WHERE supplier_no NOT IN "
                                   "(SELECT supplier_no FROM part_suppliers)")),
             3);
}

void TestSampleDatabase::isFastToMake() {
    QElapsedTimer timer;
    timer.start();
    makeSampleDatabase(m_folder.filePath(QStringLiteral("three.db")));
    // About 0.2 s; the bound leaves room for sanitizers and busy machines.
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
}

void TestSampleDatabase::isMadeOnFirstUse() {
    const QString path = sampleDatabasePath();
    QVERIFY(isPresentSample(path));
    QVERIFY(path.startsWith(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)));
    const QDateTime made = QFileInfo(path).lastModified();
    QCOMPARE(sampleDatabasePath(), path);
    QCOMPARE(QFileInfo(path).lastModified(), made);
    QCOMPARE(QFileInfo(path).dir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    QVERIFY(sampleQuery().startsWith(QStringLiteral("select ")));
}

void TestSampleDatabase::otherVersionIsReplaced() {
    const QString path = sampleDatabasePath();
    QVERIFY(apptest::runStatements(path, {"DROP TABLE items", "PRAGMA user_version = 1"}));
    QVERIFY(!isPresentSample(path));
    QCOMPARE(sampleDatabasePath(), path);
    QVERIFY(isPresentSample(path));
    QCOMPARE(apptest::valueOf(path, QStringLiteral("SELECT count(*) FROM items")).toInt(), 4502);
    QVERIFY(apptest::writeFile(path, "no database"));
    QCOMPARE(sampleDatabasePath(), path);
    QVERIFY(isPresentSample(path));
}

void TestSampleDatabase::failureLeavesNothingBehind() {
    const QString folder = m_folder.filePath(QStringLiteral("taken.db"));
    QVERIFY(QDir().mkpath(folder + QStringLiteral("/inside")));
    const QStringList before = QDir(m_folder.path()).entryList();
    const QString error = apptest::errorOf([&] { makeSampleDatabase(folder); });
    QVERIFY2(
        error.startsWith(QStringLiteral("The sample database \"%1\" cannot be made: ").arg(folder)),
        qPrintable(error));
    QCOMPARE(QDir(m_folder.path()).entryList(), before);
    const QString below = m_path + QStringLiteral("/below/x.db");
    QCOMPARE(apptest::errorOf([&] { makeSampleDatabase(below); }),
             QStringLiteral("The sample database \"%1\" cannot be made: its folder cannot be made.")
                 .arg(below));
}

QTEST_GUILESS_MAIN(TestSampleDatabase)
#include "tst_app_sampledatabase.moc"
