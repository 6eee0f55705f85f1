// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDStatement.h"
#include "support/TestTools.h"

using orv::StatementClauses;

class StatementTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void emptyClausesStillGiveSelectAndFrom() {
        QCOMPARE(orv::assembleStatement({}), "SELECT \r\nFROM ");
        StatementClauses clauses;
        clauses.distinct = true;
        QCOMPARE(orv::assembleStatement(clauses), "SELECT DISTINCT \r\nFROM ");
    }

    void clausesStandInTheirOrder() {
        StatementClauses clauses;
        clauses.select = "A";
        clauses.from = "T";
        clauses.where = "(W = 1)";
        clauses.groupBy = "G";
        clauses.having = "(H = 1)";
        clauses.orderBy = "O";
        clauses.tail = "LIMIT 5";
        QCOMPARE(orv::assembleStatement(clauses),
                 "SELECT A\r\nFROM T\r\nWHERE (W = 1)\r\nGROUP BY G\r\nHAVING (H = 1)\r\n"
                 "ORDER BY O\r\nLIMIT 5");
    }

    void blankClausesAreLeftOut_data() {
        QTest::addColumn<QString>("blank");
        QTest::newRow("empty") << "";
        QTest::newRow("blanks") << "         ";
        QTest::newRow("control characters") << " \t\r\n\x01";
    }
    void blankClausesAreLeftOut() {
        QFETCH(QString, blank);
        const StatementClauses clauses{false, "A", "T", blank, blank, blank, blank, blank};
        QCOMPARE(orv::assembleStatement(clauses), "SELECT A\r\nFROM T");
    }

    void blanksAroundAClauseStay() {
        StatementClauses clauses;
        clauses.select = "A";
        clauses.from = "T";
        clauses.where = "  (W = 1) ";
        clauses.groupBy = " G ";
        clauses.having = " H ";
        clauses.orderBy = " O ";
        QCOMPARE(orv::assembleStatement(clauses),
                 "SELECT A\r\nFROM T\r\nWHERE   (W = 1) \r\nGROUP BY  G \r\nHAVING  H \r\n"
                 "ORDER BY  O ");
    }

    void havingNeedsGroupBy() {
        StatementClauses clauses;
        clauses.select = "A";
        clauses.from = "T";
        clauses.having = "H";
        QCOMPARE(orv::assembleStatement(clauses), "SELECT A\r\nFROM T");
        clauses.groupBy = "G";
        clauses.having = " ";
        QCOMPARE(orv::assembleStatement(clauses), "SELECT A\r\nFROM T\r\nGROUP BY G");
    }

    void selectListIsIndentedBehindItsHead() {
        StatementClauses clauses;
        clauses.select = "A,\r\nB,\r\nC";
        clauses.from = "T,\r\nU";
        const QString seven(7, u' ');
        const QString sixteen(16, u' ');
        QCOMPARE(orv::assembleStatement(clauses),
                 "SELECT A,\r\n" + seven + "B,\r\n" + seven + "C\r\nFROM T,\r\nU");
        clauses.distinct = true;
        QCOMPARE(orv::assembleStatement(clauses),
                 "SELECT DISTINCT A,\r\n" + sixteen + "B,\r\n" + sixteen + "C\r\nFROM T,\r\nU");
    }

    void indentation_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("indent");
        QTest::addColumn<QString>("indented");
        QTest::newRow("behind each line feed") << "A\nB\nC" << 2 << "A\n  B\n  C";
        QTest::newRow("not behind the last character") << "A\nB\n" << 2 << "A\n  B\n";
        QTest::newRow("empty line") << "A\n\nB" << 2 << "A\n  \n  B";
        QTest::newRow("no indent") << "A\nB" << 0 << "A\nB";
        QTest::newRow("negative indent") << "A\nB" << -3 << "A\nB";
        QTest::newRow("one line") << "A" << 7 << "A";
        QTest::newRow("empty") << "" << 7 << "";
        QTest::newRow("carriage return is no line") << "A\rB" << 2 << "A\rB";
    }
    void indentation() {
        QFETCH(QString, text);
        QFETCH(int, indent);
        QFETCH(QString, indented);
        QCOMPARE(orv::indentLines(text, indent), indented);
    }
};

QTEST_MAIN(StatementTest)
#include "tst_statement.moc"
