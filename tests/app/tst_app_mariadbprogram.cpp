// SPDX-License-Identifier: MIT
#include "GoodsProgram.h"
#include "MariadbServer.h"

// The program from outside, on a database of a MariaDB server.
class TestMariadbProgram : public QObject, protected apptest::GoodsProgram {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void formats() { checkFormats(m_address, Names::InCapitals); }
    void parameters() { checkParameters(m_address); }
    void mistakes() { checkMistakes(m_address, "NONSENSE does not exist"); }
    void rowsAreNotKept() {
        checkThatRowsAreNotKept(m_address, "select x, name from many", 2000000);
    }
    void hugeValueIsWritten();

private:
    MariadbServer m_server;
    QString m_address;
};

void TestMariadbProgram::initTestCase() {
    QCOMPARE(MariadbServer::whatIsMissing(), QString());
    QVERIFY(m_server.start());
    const QString shop = QStringLiteral("shop");
    QVERIFY(m_server.run({"CREATE DATABASE shop"}));
    QVERIFY(m_server.run(
        goods() + QStringList{"CREATE VIEW many AS SELECT seq AS x, 'a name' AS name FROM "
                              "seq_1_to_10000000",
                              "CREATE VIEW huge AS SELECT REPEAT('x', 20000000) AS x"},
        shop));
    m_address = m_server.address(shop);
}

void TestMariadbProgram::hugeValueIsWritten() {
    const Result result = runGoods(m_address, "select x from huge", {"--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY(result.output == "X\r\n" + QByteArray(20000000, 'x') + "\r\n");
}

QTEST_GUILESS_MAIN(TestMariadbProgram)
#include "tst_app_mariadbprogram.moc"
