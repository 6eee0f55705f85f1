// SPDX-License-Identifier: MIT
#include "FirebirdTestTools.h"
#include "GoodsProgram.h"

// The program from outside, on a database of Firebird.
class TestFirebirdProgram : public QObject, protected apptest::GoodsProgram {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void runProcedure();
    void formats() { checkFormats(m_goods, Names::InCapitals); }
    void parameters() { checkParameters(m_goods); }
    void mistakes() { checkMistakes(m_goods, "NONSENSE"); }
    void rowsAreNotKept() { checkThatRowsAreNotKept(m_goods, "select x, name from many", 500000); }

private:
    QString m_goods;
};

void TestFirebirdProgram::initTestCase() {
    QCOMPARE(firebirdtest::whatIsMissing(), QString());
    firebirdtest::setLockFolder(m_folder.path());
    m_goods = file("goods.fdb");
    QStringList statements = goods();
    // What a script writes is seen by its own later statements when it was committed.
    statements.insert(1, QStringLiteral("COMMIT"));
    statements += QStringLiteral(
        "CREATE PROCEDURE SERIES RETURNS (X INTEGER, NAME VARCHAR(9)) AS BEGIN X = 1; NAME = "
        "'a name'; WHILE (X <= 1000000) DO BEGIN SUSPEND; X = X + 1; END END");
    statements += QStringLiteral("CREATE VIEW many AS SELECT X, NAME FROM SERIES");
    QVERIFY(firebirdtest::makeDatabase(m_goods, statements.join(u'^') + u'^'));
}

void TestFirebirdProgram::runProcedure() {
    const QString path = file("shop.fdb");
    QVERIFY(firebirdtest::makeDatabase(
        path,
        "CREATE PROCEDURE \"Some days\" (\"first day\" DATE, DAYS INTEGER, NOTE VARCHAR(9) = 'x') "
        "RETURNS (D DATE, NOTE_OF VARCHAR(9)) AS BEGIN "
        "WHILE (DAYS > 0) DO BEGIN D = \"first day\"; NOTE_OF = NOTE; SUSPEND; "
        "\"first day\" = \"first day\" + 1; DAYS = DAYS - 1; END END^"));
    const QString query =
        written("days.sql", "select s.d, s.note_of from \"Some days\"(:first, :days, 'it''s') s");
    for (const QString& database : {path, QStringLiteral("firebird://") + path}) {
        const Result result = run({"--database", database, "--load", query, "--run", "--format",
                                   "csv", "--param", "first=2024-02-28", "--param", "days=2"});
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output, QByteArray("D,NOTE_OF\r\n2024-02-28,it's\r\n2024-02-29,it's\r\n"));
    }
    // The engine itself would take "two" for nought.
    const Result wrong = run({"--database", path, "--load", query, "--run", "--param",
                              "first=2024-02-28", "--param", "days=two"});
    QCOMPARE(wrong.status, 1);
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors, QByteArray("orvquery: The value of :DAYS cannot be \"two\". A whole "
                                      "number is expected, such as 42.\n"));
}

QTEST_GUILESS_MAIN(TestFirebirdProgram)
#include "tst_app_firebirdprogram.moc"
