// SPDX-License-Identifier: MIT
#include "GoodsProgram.h"
#include "PostgresServer.h"

// The program from outside, on a database of a PostgreSQL server.
class TestPostgresqlProgram : public QObject, protected apptest::GoodsProgram {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void formats() { checkFormats(m_address, Names::AsMade); }
    void parameters() { checkParameters(m_address); }
    void mistakes() { checkMistakes(m_address, "function nonsense(integer) does not exist"); }
    void rowsAreNotKept() {
        checkThatRowsAreNotKept(m_address, "select x, name from many", 2000000);
    }
    void hugeValueIsWritten();

private:
    PostgresServer m_server;
    QString m_address;
};

void TestPostgresqlProgram::initTestCase() {
    QCOMPARE(PostgresServer::whatIsMissing(), QString());
    QVERIFY(m_server.start());
    const QString shop = QStringLiteral("shop");
    QVERIFY(m_server.run({"CREATE DATABASE shop"}));
    QVERIFY(m_server.run(
        goods() + QStringList{"CREATE VIEW many AS SELECT x, cast('a name' AS text) AS name FROM "
                              "generate_series(1, 10000000) x",
                              "CREATE VIEW huge AS SELECT repeat('x', 20000000) AS x"},
        shop));
    m_address = m_server.address(shop);
}

void TestPostgresqlProgram::hugeValueIsWritten() {
    const Result result = runGoods(m_address, "select x from huge", {"--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY(result.output == "x\r\n" + QByteArray(20000000, 'x') + "\r\n");
}

QTEST_GUILESS_MAIN(TestPostgresqlProgram)
#include "tst_app_postgresqlprogram.moc"
