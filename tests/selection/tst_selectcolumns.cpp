// SPDX-License-Identifier: MIT
#include "selection/ORVQDSelectColumns.h"
#include "support/TestTools.h"

using orv::OutputColumn;
using orv::OutputColumns;

namespace {

const QString blanks(9, u' ');

class SelectColumnsTest : public QObject {
    Q_OBJECT

    QStringList m_aggregates = {blanks, "SUM", "MIN", "MAX", "AVG", "COUNT"};

    [[nodiscard]] orv::SelectTextRules rules(bool keepMeaning = false) const {
        orv::SelectTextRules rules;
        rules.aggregates = &m_aggregates;
        rules.isField = [](const QString& source) { return source.startsWith("O."); };
        rules.keepMeaning = keepMeaning;
        return rules;
    }

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void nameOfAColumn_data() {
        QTest::addColumn<QString>("aggregate");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("name");
        QTest::newRow("bare field name") << ""
                                         << "O.PRICE"
                                         << "PRICE";
        QTest::newRow("aggregate") << "SUM"
                                   << "O.PRICE"
                                   << "SUM_OF_PRICE";
        QTest::newRow("blank aggregate") << blanks << "O.PRICE"
                                         << "PRICE";
        QTest::newRow("no full stop") << ""
                                      << "PRICE"
                                      << "PRICE";
        QTest::newRow("first full stop counts") << ""
                                                << "S.O.PRICE"
                                                << "O.PRICE";
        QTest::newRow("full stop in quotes") << ""
                                             << "\"A.B\".PRICE"
                                             << "PRICE";
        QTest::newRow("quoted field") << "MAX"
                                      << "O.\"my field\""
                                      << "MAX_OF_\"my field\"";
        QTest::newRow("star") << "COUNT"
                              << "*"
                              << "COUNT_OF_*";
        QTest::newRow("empty") << ""
                               << ""
                               << "";
    }
    void nameOfAColumn() {
        QFETCH(QString, aggregate);
        QFETCH(QString, source);
        QFETCH(QString, name);
        QCOMPARE(orv::createFieldName(aggregate, source), name);
    }

    void textOfAColumn_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("aggregate");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("text");
        QTest::newRow("field") << "PRICE"
                               << ""
                               << "O.PRICE"
                               << "O.PRICE";
        QTest::newRow("renamed") << "COST"
                                 << ""
                                 << "O.PRICE"
                                 << "O.PRICE AS COST";
        QTest::newRow("case counts") << "price"
                                     << ""
                                     << "O.PRICE"
                                     << "O.PRICE AS price";
        QTest::newRow("trimmed") << " COST "
                                 << ""
                                 << " O.PRICE "
                                 << "O.PRICE AS COST";
        QTest::newRow("no name") << ""
                                 << ""
                                 << "O.PRICE"
                                 << "O.PRICE";
        QTest::newRow("blank name") << "   "
                                    << ""
                                    << "O.PRICE"
                                    << "O.PRICE";
        QTest::newRow("aggregate") << "SUM_OF_PRICE"
                                   << "SUM"
                                   << "O.PRICE"
                                   << "SUM( O.PRICE ) AS SUM_OF_PRICE";
        QTest::newRow("aggregate named as its field") << "PRICE"
                                                      << "SUM"
                                                      << "O.PRICE"
                                                      << "SUM( O.PRICE )";
        QTest::newRow("blank aggregate") << "PRICE" << blanks << "O.PRICE"
                                         << "O.PRICE";
        QTest::newRow("padded aggregate") << "S"
                                          << " SUM "
                                          << "O.PRICE"
                                          << "SUM( O.PRICE ) AS S";
        QTest::newRow("star") << "COUNT_OF_*"
                              << "COUNT"
                              << "*"
                              << "COUNT( * ) AS COUNT_OF_*";
    }
    void textOfAColumn() {
        QFETCH(QString, name);
        QFETCH(QString, aggregate);
        QFETCH(QString, source);
        QFETCH(QString, text);
        QCOMPARE(orv::columnText({name, aggregate, source}, rules()), text);
    }

    void keptMeaningQuotesNamesThatAreNoIdentifiers_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("written");
        QTest::newRow("plain") << "COST_1$"
                               << "COST_1$";
        QTest::newRow("lower case") << "cost"
                                    << "cost";
        QTest::newRow("star") << "COUNT_OF_*"
                              << "\"COUNT_OF_*\"";
        QTest::newRow("blank") << "MY COST"
                               << "\"MY COST\"";
        QTest::newRow("digit first") << "1ST"
                                     << "\"1ST\"";
        QTest::newRow("quote inside") << "A\"B"
                                      << "\"A\"\"B\"";
        QTest::newRow("quoted already") << "\"MY COST\""
                                        << "\"MY COST\"";
        QTest::newRow("no ASCII") << QStringLiteral("\u00c4") << QStringLiteral("\"\u00c4\"");
    }
    void keptMeaningQuotesNamesThatAreNoIdentifiers() {
        QFETCH(QString, name);
        QFETCH(QString, written);
        const OutputColumn column{name, {}, "O.PRICE"};
        QCOMPARE(orv::columnText(column, rules(true)), "O.PRICE AS " + written);
        QCOMPARE(orv::columnText(column, rules(false)), "O.PRICE AS " + name);
    }

    // Without its name the database would give the column another one.
    void keptMeaningNamesAggregatesAlways() {
        const OutputColumn column{"PRICE", "SUM", "O.PRICE"};
        QCOMPARE(orv::columnText(column, rules(true)), "SUM( O.PRICE ) AS PRICE");
        QCOMPARE(orv::columnText(column, rules(false)), "SUM( O.PRICE )");
    }

    void listStandsInLines() {
        const OutputColumns columns = {{"SUM_OF_PRICE", "SUM", "O.PRICE"},
                                       {"CUSTNO", "", "O.CUSTNO"}};
        const orv::SelectTexts texts = orv::selectTexts(columns, rules());
        QCOMPARE(texts.select, "SUM( O.PRICE ) AS SUM_OF_PRICE,\r\nO.CUSTNO");
        QVERIFY(texts.aggregated);
        QCOMPARE(texts.groupBy, "O.CUSTNO");
    }

    void nothingIsSelected() {
        const orv::SelectTexts texts = orv::selectTexts({}, rules());
        QCOMPARE(texts.select, QString());
        QCOMPARE(texts.groupBy, QString());
        QVERIFY(!texts.aggregated);
    }

    void rowsWithoutASourceAreSkipped() {
        const OutputColumns columns = {{"X", "", " "}, {"PRICE", "", "O.PRICE"}, {"Y", "SUM", ""}};
        const orv::SelectTexts texts = orv::selectTexts(columns, rules());
        QCOMPARE(texts.select, "O.PRICE");
    }

    // The aggregate decides, even in a row that is not written.
    void anyAggregateMakesTheSelectionAggregated() {
        const OutputColumns columns = {{"X", "SUM", ""}, {"PRICE", "", "O.PRICE"}};
        const orv::SelectTexts texts = orv::selectTexts(columns, rules());
        QVERIFY(texts.aggregated);
        QCOMPARE(texts.groupBy, "O.PRICE");
    }

    void plainSelectionHasNoGroupBy() {
        const orv::SelectTexts texts =
            orv::selectTexts({{"A", "", "O.A"}, {"B", "", "O.B"}}, rules());
        QCOMPARE(texts.select, "O.A,\r\nO.B");
        QVERIFY(!texts.aggregated);
        QCOMPARE(texts.groupBy, QString());
    }

    void aggregatesAloneGroupByNothing() {
        const orv::SelectTexts texts = orv::selectTexts({{"S", "SUM", "O.A"}}, rules());
        QVERIFY(texts.aggregated);
        QCOMPARE(texts.groupBy, QString());
    }

    void groupByIsOneLine() {
        const OutputColumns columns = {{"A", "", "O.A"}, {"S", "SUM", "O.B"}, {"C", "", " O.C "}};
        QCOMPARE(orv::selectTexts(columns, rules()).groupBy, "O.A, O.C");
    }

    void columnThatCannotBeGroupedRaisesWithItsRow_data() {
        QTest::addColumn<int>("row");
        QTest::newRow("first") << 1;
        QTest::newRow("third") << 3;
    }
    void columnThatCannotBeGroupedRaisesWithItsRow() {
        QFETCH(int, row);
        OutputColumns columns = {{"A", "", "O.A"}, {"S", "SUM", "O.B"}, {"C", "", "O.C"}};
        columns[std::size_t(row - 1)].source = "C + 1";
        QCOMPARE(orvtest::errorOf([&] { (void)orv::selectTexts(columns, rules()); }),
                 QStringLiteral("There is no agregate function on page \"Selection\" in %1 row")
                     .arg(row));
    }

    // Rows without a source are counted, though they are not written.
    void rowNumberCountsAllDataRows() {
        const OutputColumns columns = {{"X", "", ""}, {"S", "SUM", "O.B"}, {"C", "", "C"}};
        QCOMPARE(orvtest::errorOf([&] { (void)orv::selectTexts(columns, rules()); }),
                 "There is no agregate function on page \"Selection\" in 3 row");
    }

    void sourceThatStoodInGroupByIsGroupedAsItStands() {
        const OutputColumns columns = {{"S", "SUM", "O.B"}, {"C", "", "C + 1", true}};
        QCOMPARE(orv::selectTexts(columns, rules()).groupBy, "C + 1");
    }

    void sourceThatCallsAnAggregateIsNotGrouped() {
        const OutputColumns columns = {{"S", "", "SUM(O.B) + 1"}, {"C", "", "O.C"}};
        const orv::SelectTexts texts = orv::selectTexts(columns, rules());
        QVERIFY(texts.aggregated);
        QCOMPARE(texts.groupBy, "O.C");
        QCOMPARE(texts.select, "SUM(O.B) + 1 AS S,\r\nO.C");
    }

    void callsOfAggregates_data() {
        QTest::addColumn<QString>("source");
        QTest::addColumn<bool>("calls");
        QTest::newRow("call") << "SUM(A)" << true;
        QTest::newRow("other case") << "sum (A)" << true;
        QTest::newRow("inside a call") << "ROUND(SUM(A), 2)" << true;
        QTest::newRow("behind a sign") << "1+COUNT(*)" << true;
        QTest::newRow("name without a bracket") << "SUM" << false;
        QTest::newRow("longer name") << "SUMMARY(A)" << false;
        QTest::newRow("qualified name") << "O.SUM (A)" << false;
        QTest::newRow("in a text") << "'SUM(A)'" << false;
        QTest::newRow("in a quoted name") << "\"SUM(A)\"" << false;
        QTest::newRow("sub-query") << "(SELECT SUM(A) FROM T)" << false;
        QTest::newRow("behind a sub-query") << "(SELECT A FROM T) + SUM(B)" << true;
        QTest::newRow("over a window") << "SUM(A) OVER (PARTITION BY B)" << false;
        QTest::newRow("filter and window") << "SUM(A) FILTER (WHERE B = 1) OVER ()" << false;
        QTest::newRow("filter alone") << "SUM(A) FILTER (WHERE B = 1)" << true;
        QTest::newRow("other function") << "LOWER(A)" << false;
        QTest::newRow("empty") << "" << false;
    }
    void callsOfAggregates() {
        QFETCH(QString, source);
        QFETCH(bool, calls);
        QCOMPARE(orv::callsAggregate(source, m_aggregates), calls);
    }
};

}  // namespace

QTEST_MAIN(SelectColumnsTest)
#include "tst_selectcolumns.moc"
