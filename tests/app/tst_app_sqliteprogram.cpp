// SPDX-License-Identifier: MIT
#include "GoodsProgram.h"

// The program from outside, on a database of SQLite.
class TestSqliteProgram : public QObject, protected apptest::GoodsProgram {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void formats() { checkFormats(m_database, Names::AsMade); }
    void parameters() { checkParameters(m_database); }
    void mistakes() { checkMistakes(m_database, "no such function: NONSENSE", false); }
    void rowsAreNotKept() {
        checkThatRowsAreNotKept(m_database, "select x, name from many", 2000000);
    }

private:
    QString m_database;
};

void TestSqliteProgram::initTestCase() {
    m_database = file("shop.db");
    QVERIFY(apptest::runStatements(
        m_database, goods() + QStringList{"CREATE VIEW many AS WITH RECURSIVE n(x) AS (VALUES(1) "
                                          "UNION ALL SELECT x + 1 FROM n LIMIT 2000000) "
                                          "SELECT x, 'a name' AS name FROM n"}));
}

QTEST_GUILESS_MAIN(TestSqliteProgram)
#include "tst_app_sqliteprogram.moc"
