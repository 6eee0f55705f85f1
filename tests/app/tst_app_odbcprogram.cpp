// SPDX-License-Identifier: MIT
#include "GoodsProgram.h"

// The program from outside, on data sources of ODBC with the driver for SQLite behind them.
class TestOdbcProgram : public QObject, protected apptest::GoodsProgram {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void formats() { checkFormats(m_source, Names::AsMade); }
    void parameters() { checkParameters(m_source); }
    void mistakes() { checkMistakes(m_source, "says: no such function: NONSENSE"); }
    // Under a sanitizer this driver was seen to take 46 MB more; the figure is not explained.
    void rowsAreNotKept() {
        checkThatRowsAreNotKept(m_source, "select x, name from many", 500000,
                                orvtest::isSanitized ? 120000 : 40000);
    }
    void sourceOfAString();
    void sourceIsMissing();

private:
    const QString m_source = QStringLiteral("odbc://shop");
};

// The driver and its sources are known within this program and those that it starts.
void TestOdbcProgram::initTestCase() {
    const QString database = file("shop.db");
    QVERIFY(apptest::runStatements(
        database, goods() + QStringList{"CREATE VIEW many AS WITH RECURSIVE n(x) AS (VALUES(1) "
                                        "UNION ALL SELECT x + 1 FROM n LIMIT 500000) "
                                        "SELECT x, 'a name' AS name FROM n"}));
    QVERIFY(
        apptest::writeFile(file("odbcinst.ini"), "[SQLite3]\nDriver=" ORVQUERY_ODBC_DRIVER "\n"));
    // The driver reads all rows at once unless it is told to step.
    QVERIFY(apptest::writeFile(file("odbc.ini"), "[shop]\nDriver=SQLite3\nStepAPI=1\nDatabase=" +
                                                     database.toUtf8() + "\n"));
    qputenv("ODBCSYSINI", m_folder.path().toUtf8());
    qputenv("ODBCINI", file("odbc.ini").toUtf8());
}

void TestOdbcProgram::sourceOfAString() {
    const Result result = runGoods(
        QStringLiteral("odbc:///?Driver=SQLite3;Database=") + file("shop.db"),
        "select g.name from goods g where g.id = :n", {"--format", "json", "--param", "n=3"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QByteArray("[\n  {\"name\": \"it's\"}\n]\n"));
    QCOMPARE(result.status, 0);
}

void TestOdbcProgram::sourceIsMissing() {
    const Result result = runGoods(QStringLiteral("odbc://none"), "select id from goods");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors,
             QByteArray("orvquery: The data source \"none\" cannot be opened: Data source name not "
                        "found and no default driver specified\n"));
}

QTEST_GUILESS_MAIN(TestOdbcProgram)
#include "tst_app_odbcprogram.moc"
