// SPDX-License-Identifier: MIT
#include "parser/ORVQDKeywords.h"

#include <QTest>

using namespace orv;

class TestKeywords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsInOrder();
    void traits_data();
    void traits();
    void ordinaryWords_data();
    void ordinaryWords();
    void clausesKnowTheirLocation();
    void joinsKnowTheirIndex();
};

void TestKeywords::listsInOrder() {
    QCOMPARE(lOperators(), QStringList({"NOT", "AND", "OR"}));
    QCOMPARE(lMatching(), QStringList({"DISTINCT", "ALL", "SOME", "ANY", "WITH", "ESCAPE"}));
    QCOMPARE(lJoins(), QStringList({"JOIN", "INNER", "LEFT", "RIGHT", "FULL", "OUTER"}));
    QCOMPARE(lConditionFuncs(), QStringList({"BETWEEN", "LIKE", "IN", "IS NULL", "IS NOT NULL",
                                             "EXIST", "SINGULAR", "CONTAINING", "STARTING"}));
}

void TestKeywords::traits_data() {
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("trait");
    const auto rows = [](const QStringList& words, WordTrait trait) {
        for (const QString& word : words) QTest::newRow(qPrintable(word)) << word << int(trait);
    };
    rows(lOperators(), wordLogical);
    rows(lMatching(), wordMatching);
    rows(lJoins(), wordJoin);
    rows(lConditionFuncs(), wordConditionFunc);
    rows({"SELECT", "FROM", "WHERE", "GROUP BY", "HAVING", "ORDER BY"}, wordClause);
    rows({"COUNT", "MAX", "MIN", "SUM", "AVG", "CAST", "UPPER", "GEN_ID"}, wordFunction);
    rows({"ASC", "ASCENDING", "DESC", "DESCENDING"}, wordDirection);
    rows({"UNION", "INTERSECT", "EXCEPT", "LIMIT", "OFFSET", "FETCH", "FOR", "WINDOW", "CROSS",
          "NATURAL", "USING"},
         wordNeverAlias);
}

void TestKeywords::traits() {
    QFETCH(QString, word);
    QFETCH(int, trait);
    const WordInfo info = wordInfo(word);
    for (const WordTrait other : {wordLogical, wordMatching, wordJoin, wordConditionFunc,
                                  wordClause, wordFunction, wordDirection, wordNeverAlias}) {
        QCOMPARE(info.is(other), int(other) == trait);
    }
}

void TestKeywords::ordinaryWords_data() {
    QTest::addColumn<QString>("word");
    for (const char* word : {"", "A", "select", "SELEC", "SELECTS", "GROUP  BY", "EXISTS", "LOWER",
                             "IS NOT NULLS", "CURRENT_TIMESTAMP"}) {
        QTest::newRow(word) << QString::fromLatin1(word);
    }
}

void TestKeywords::ordinaryWords() {
    QFETCH(QString, word);
    const WordInfo info = wordInfo(word);
    QCOMPARE(int(info.traits), 0);
    QCOMPARE(info.clause, inUnknown);
    QCOMPARE(int(info.joinIndex), -1);
}

void TestKeywords::clausesKnowTheirLocation() {
    QCOMPARE(wordInfo(u"SELECT").clause, inSelect);
    QCOMPARE(wordInfo(u"FROM").clause, inFrom);
    QCOMPARE(wordInfo(u"WHERE").clause, inWhere);
    QCOMPARE(wordInfo(u"GROUP BY").clause, inGroupBy);
    QCOMPARE(wordInfo(u"HAVING").clause, inHaving);
    QCOMPARE(wordInfo(u"ORDER BY").clause, inOrderBy);
}

void TestKeywords::joinsKnowTheirIndex() {
    for (int index = 0; index < lJoins().size(); ++index) {
        QCOMPARE(int(wordInfo(lJoins()[index]).joinIndex), index);
    }
}

QTEST_GUILESS_MAIN(TestKeywords)
#include "tst_keywords.moc"
