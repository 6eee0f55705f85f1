// SPDX-License-Identifier: MIT
#include "text/Refusal.h"

#include <QtTest/QtTest>

using namespace orvquery;

class TestRefusal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reasonIsExplained_data();
    void reasonIsExplained();
    void reasonKeepsItsFullStop();
};

void TestRefusal::reasonIsExplained_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("more");
    const QString with =
        QStringLiteral(". The text begins with WITH, and a common table expression is not read.");
    const QString empty = QStringLiteral(". The text is empty.");
    QTest::newRow("other statement") << QStringLiteral("delete from with") << QString();
    QTest::newRow("with") << QStringLiteral("with a as (select 1) select * from a") << with;
    QTest::newRow("with behind comments")
        << QStringLiteral("\n-- a\n/* b */ With\na as (select 1) select * from a") << with;
    QTest::newRow("word with more") << QStringLiteral("without a") << QString();
    QTest::newRow("name in quotes") << QStringLiteral("\"with\" a") << QString();
    QTest::newRow("comment before another") << QStringLiteral("-- with\nupdate a") << QString();
    QTest::newRow("nothing") << QString() << empty;
    QTest::newRow("blanks") << QStringLiteral(" \r\n\t") << empty;
    QTest::newRow("comments") << QStringLiteral("-- select 1\n/* with */")
                              << QStringLiteral(". The text has nothing but comments.");
}

void TestRefusal::reasonIsExplained() {
    QFETCH(QString, statement);
    QFETCH(QString, more);
    const QString reason = QStringLiteral("It is no statement");
    QCOMPARE(refusalText(reason, statement), reason + more);
}

void TestRefusal::reasonKeepsItsFullStop() {
    QCOMPARE(refusalText(QStringLiteral("It is none."), QString()),
             QStringLiteral("It is none. The text is empty."));
}

QTEST_GUILESS_MAIN(TestRefusal)
#include "tst_app_refusal.moc"
