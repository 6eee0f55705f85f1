// SPDX-License-Identifier: MIT
#include "criteria/ORVQDAliasRename.h"
#include "support/TestTools.h"

#include <QTest>

class AliasRenameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void renames_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("renamed");  // T is called N
        const auto row = [](const char* text, const char* renamed) {
            QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(renamed);
        };
        row("T.A", "N.A");
        row("T.A + T.B * LOWER(T.C)", "N.A + N.B * LOWER(N.C)");
        row("PT.A", "PT.A");
        row("T2.A", "T2.A");
        row("S.T.A", "S.T.A");
        row("t.A", "t.A");
        row("T", "T");
        row("'T.A' || T.A", "'T.A' || N.A");
        row("\"T.A\" || T.\"T.A\"", "\"T.A\" || N.\"T.A\"");
        row("         ", "         ");
        row("SELECT U.X FROM U WHERE U.Y = T.A", "SELECT U.X FROM U WHERE U.Y = N.A");
        row("SELECT T.X FROM T", "SELECT T.X FROM T");
        row("SELECT T.X FROM S.T WHERE T.Y = 1", "SELECT T.X FROM S.T WHERE T.Y = 1");
        row("SELECT T.X FROM U AS T", "SELECT T.X FROM U AS T");
        row("SELECT Q.X FROM T Q WHERE Q.Y = T.A", "SELECT Q.X FROM T Q WHERE Q.Y = N.A");
        row("SELECT T.X FROM U, T WHERE T.Y = 1", "SELECT T.X FROM U, T WHERE T.Y = 1");
        row("SELECT T.X FROM U INNER JOIN T ON T.Y = U.Y",
            "SELECT T.X FROM U INNER JOIN T ON T.Y = U.Y");
        row("SELECT U.T FROM U ORDER BY T.A, T", "SELECT U.T FROM U ORDER BY N.A, T");
        row("EXISTS (SELECT 1 FROM T WHERE T.A = 1) AND T.B = 2",
            "EXISTS (SELECT 1 FROM T WHERE T.A = 1) AND N.B = 2");
        row("T.B = (SELECT MAX(U.X) FROM U WHERE U.X IN (SELECT T.A FROM T) AND U.Y = T.C)",
            "N.B = (SELECT MAX(U.X) FROM U WHERE U.X IN (SELECT T.A FROM T) AND U.Y = N.C)");
        row("SELECT D.X FROM (SELECT T.A FROM T) D WHERE D.Y = T.A",
            "SELECT D.X FROM (SELECT T.A FROM T) D WHERE D.Y = N.A");
        row("SELECT T.X FROM (SELECT 1) T", "SELECT T.X FROM (SELECT 1) T");
    }
    void renames() {
        QFETCH(QString, text);
        QFETCH(QString, renamed);
        QCOMPARE(orv::renamedAlias(text, "N", "T"), renamed);
    }

    void quotedAliases() {
        QCOMPARE(orv::renamedAlias("\"my t\".A + T.B", "N", "\"my t\""), "N.A + T.B");
        QCOMPARE(orv::renamedAlias("T.A", "\"a.b\"", "T"), "\"a.b\".A");
    }

    // The new alias may contain the old one.
    void renamingEndsAtTheFirstPass() { QCOMPARE(orv::renamedAlias("T.A", "T.T", "T"), "T.T.A"); }
};

QTEST_MAIN(AliasRenameTest)
#include "tst_aliasrename.moc"
