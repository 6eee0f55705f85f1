// SPDX-License-Identifier: MIT
// The FROM clause as text, from plain data: in the order of stacking, and with the meaning kept.
#include "support/TestTools.h"
#include "workarea/ORVQDFromText.h"

#include <random>

using orv::FromDiagram;
using orv::FromJoin;
using orv::FromPlaces;
using orv::FromTable;
using orv::fromText;
using orv::fromTextKeepingMeaning;

namespace {

FromTable table(const QString& name, const QString& alias = QString()) {
    return {name, alias.isEmpty() ? name : alias, name};
}

FromJoin join(int table1, int table2, TKindOfJoin kind = klInnerJoin, const QString& field = "X",
              const QString& operation = "=") {
    return {table1, table2, kind, {{field, operation, field}}, {}};
}

FromDiagram letters(int count, const std::vector<FromJoin>& joins) {
    FromDiagram diagram;
    for (int index = 0; index < count; ++index) {
        diagram.tables.push_back(table(QString(QChar(u'A' + index))));
    }
    diagram.joins = joins;
    return diagram;
}

/// The rule of stacking as it is told, recursive and with its cuts at the end.
class TextByTheRule {
public:
    explicit TextByTheRule(const FromDiagram& diagram) : m_diagram(diagram) {}

    QString text() {
        QString result;
        for (int index = 0; index < int(m_diagram.tables.size()); ++index) {
            if (m_tables.contains(index)) continue;
            m_tables << index;
            const FromTable& first = m_diagram.tables[std::size_t(index)];
            result += first.name;
            if (first.alias != first.plainName) result += " " + first.alias;
            result += reachable(index) + ",\r\n";
        }
        if (!result.isEmpty()) result.chop(3);
        return result;
    }

private:
    QString reachable(int from) {
        QString result;
        for (int index = 0; index < int(m_diagram.joins.size()); ++index) {
            const FromJoin& join = m_diagram.joins[std::size_t(index)];
            if ((join.table1 != from && join.table2 != from) || m_joins.contains(index)) continue;
            m_joins << index;
            const bool isFirst = join.table1 == from;
            const int other = isFirst ? join.table2 : join.table1;
            const bool wasUsed = m_tables.contains(other);
            m_tables << other;
            static const char* const words[2][4] = {
                {"   INNER JOIN ", "   RIGHT OUTER JOIN ", "   LEFT OUTER JOIN ",
                 "   FULL OUTER JOIN "},
                {"   INNER JOIN ", "   LEFT OUTER JOIN ", "   RIGHT OUTER JOIN ",
                 "   FULL OUTER JOIN "}};
            const FromTable& left = m_diagram.tables[std::size_t(from)];
            const FromTable& right = m_diagram.tables[std::size_t(other)];
            QString text = QStringLiteral("\r\n") + words[isFirst][join.kind] + right.name;
            if (!wasUsed && right.alias != right.plainName) text += " " + right.alias;
            text += " ON ";
            for (const orv::FromLink& link : join.links) {
                text += "(" + left.alias + "." + (isFirst ? link.field1 : link.field2) + " " +
                        link.operation + " " + right.alias + "." +
                        (isFirst ? link.field2 : link.field1) + ") AND ";
            }
            text.chop(5);
            result += text + reachable(other);
        }
        return result;
    }

    const FromDiagram& m_diagram;
    QList<int> m_tables;
    QList<int> m_joins;
};

/// The order in which the kept meaning writes: again and again the earliest join that touches what
/// is written and brings in something new.
QStringList linesByTheRule(const FromDiagram& diagram) {
    QStringList lines;
    QList<int> written;
    for (int first = 0; first < int(diagram.tables.size()); ++first) {
        if (written.contains(first)) continue;
        written << first;
        lines << diagram.tables[std::size_t(first)].alias;
        for (bool found = true; found;) {
            found = false;
            for (const FromJoin& join : diagram.joins) {
                const bool has1 = written.contains(join.table1);
                if (has1 == written.contains(join.table2)) continue;
                const int to = has1 ? join.table2 : join.table1;
                const int from = has1 ? join.table1 : join.table2;
                written << to;
                lines << diagram.tables[std::size_t(from)].alias + ">" +
                             diagram.tables[std::size_t(to)].alias;
                found = true;
                break;
            }
        }
    }
    return lines;
}

QStringList linesOf(const QString& text) {
    QStringList lines;
    for (QString line : text.split("\r\n")) {
        if (line.endsWith(',')) line.chop(1);
        if (!line.startsWith("   ")) {
            lines << line.section(' ', -1);
            continue;
        }
        const QString head = line.section(" ON ", 0, 0);
        const QString firstSide = line.section(" ON (", 1).section('.', 0, 0);
        lines << firstSide + ">" + head.section(' ', -1);
    }
    return lines;
}

FromDiagram randomDiagram(std::mt19937& random) {
    const auto below = [&](int end) { return int(random() % unsigned(end)); };
    FromDiagram diagram = letters(1 + below(7), {});
    for (FromTable& each : diagram.tables) {
        if (below(3) == 0) each.alias += QStringLiteral("1");
    }
    const int count = int(diagram.tables.size());
    QList<QPair<int, int>> pairs;
    for (int index = below(9); index > 0; --index) {
        const int table1 = below(count);
        const int table2 = below(count);
        if (table1 == table2 || pairs.contains({table1, table2}) ||
            pairs.contains({table2, table1})) {
            continue;
        }
        pairs << qMakePair(table1, table2);
        FromJoin made = join(table1, table2, TKindOfJoin(below(4)), "X", below(2) ? "<" : "=");
        for (int links = below(3); links > 0; --links) made.links.push_back({"Y", ">=", "Z"});
        diagram.joins.push_back(made);
    }
    return diagram;
}

}  // namespace

class FromTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- what both orders share

    void nothingGivesAnEmptyText() {
        QCOMPARE(fromText({}), QString());
        QCOMPARE(fromTextKeepingMeaning({}), QString());
    }

    void aliasIsWrittenWhereItDiffers() {
        for (const auto write : {fromText, fromTextKeepingMeaning}) {
            QCOMPARE(write({{table("EMPLOYEE")}, {}}, nullptr), "EMPLOYEE");
            QCOMPARE(write({{table("EMPLOYEE", "E")}, {}}, nullptr), "EMPLOYEE E");
            QCOMPARE(write({{{"P(1, 'X')", "P", "P"}}, {}}, nullptr), "P(1, 'X')");
            QCOMPARE(write({{{"P(1, 'X')", "Q", "P"}}, {}}, nullptr), "P(1, 'X') Q");
        }
    }

    void unlinkedTablesAreAListOfLines() {
        for (const auto write : {fromText, fromTextKeepingMeaning}) {
            QCOMPARE(write({{table("DEPT"), table("EMPLOYEE")}, {}}, nullptr), "DEPT,\r\nEMPLOYEE");
        }
    }

    void severalLinksAreConnectedByAnd() {
        FromJoin both = join(0, 1);
        both.links.push_back({"Y", "=", "Y"});
        for (const auto write : {fromText, fromTextKeepingMeaning}) {
            QCOMPARE(write(letters(2, {both}), nullptr),
                     "A\r\n   INNER JOIN B ON (A.X = B.X) AND (A.Y = B.Y)");
        }
    }

    // What no line can show stands behind the comparisons, in brackets.
    void textOfAJoinStandsBehindItsLinks() {
        FromJoin filtered = join(0, 1, klLOuterJoin);
        filtered.links.push_back({"Y", "<>", "Z"});
        filtered.text = "B.Y > 5 AND UPPER(A.Z) = B.Q";
        for (const auto write : {fromText, fromTextKeepingMeaning}) {
            QCOMPARE(write(letters(2, {filtered}), nullptr),
                     "A\r\n   LEFT OUTER JOIN B ON (A.X = B.X) AND (A.Y <> B.Z) AND "
                     "(B.Y > 5 AND UPPER(A.Z) = B.Q)");
        }
    }

    void linesEndWithoutBlanksInCarriageReturnAndLineFeed() {
        std::mt19937 random(7);
        for (int run = 0; run < 300; ++run) {
            const FromDiagram diagram = randomDiagram(random);
            for (const auto write : {fromText, fromTextKeepingMeaning}) {
                const QString text = write(diagram, nullptr);
                for (const QString& line : text.split("\r\n")) {
                    QVERIFY(!line.contains('\r') && !line.contains('\n'));
                    QVERIFY(!line.isEmpty() && !line.back().isSpace());
                }
                QVERIFY(!text.endsWith(','));
            }
        }
    }

    // --- in the order of stacking

    void employeesBehindTheirDepartment() {
        FromDiagram diagram{{table("DEPT"), table("EMPLOYEE")},
                            {join(1, 0, klInnerJoin, "DEPT_NO")}};
        QCOMPARE(fromText(diagram),
                 "DEPT\r\n   INNER JOIN EMPLOYEE ON (DEPT.DEPT_NO = EMPLOYEE.DEPT_NO)");
        diagram.joins[0].kind = klLOuterJoin;
        QCOMPARE(fromText(diagram),
                 "DEPT\r\n   RIGHT OUTER JOIN EMPLOYEE ON (DEPT.DEPT_NO = EMPLOYEE.DEPT_NO)");
    }

    void chainIsFollowedFromItsFront() {
        const FromDiagram diagram{
            {table("CUSTOMER"), table("ORDERS"), table("PARTS")},
            {join(2, 1, klInnerJoin, "ORDER_NO"), join(1, 0, klInnerJoin, "CUST_NO")}};
        QCOMPARE(fromText(diagram),
                 "CUSTOMER\r\n"
                 "   INNER JOIN ORDERS ON (CUSTOMER.CUST_NO = ORDERS.CUST_NO)\r\n"
                 "   INNER JOIN PARTS ON (ORDERS.ORDER_NO = PARTS.ORDER_NO)");
    }

    void kindIsWrittenFromTheSideThatIsThere_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("fromFirst");
        QTest::addColumn<QString>("fromSecond");
        QTest::newRow("inner") << int(klInnerJoin) << "INNER"
                               << "INNER";
        QTest::newRow("left") << int(klLOuterJoin) << "LEFT OUTER"
                              << "RIGHT OUTER";
        QTest::newRow("right") << int(klROuterJoin) << "RIGHT OUTER"
                               << "LEFT OUTER";
        QTest::newRow("full") << int(klFOuterJoin) << "FULL OUTER"
                              << "FULL OUTER";
    }
    void kindIsWrittenFromTheSideThatIsThere() {
        QFETCH(int, kind);
        QFETCH(QString, fromFirst);
        QFETCH(QString, fromSecond);
        for (const auto write : {fromText, fromTextKeepingMeaning}) {
            QCOMPARE(write(letters(2, {join(0, 1, TKindOfJoin(kind))}), nullptr),
                     "A\r\n   " + fromFirst + " JOIN B ON (A.X = B.X)");
            QCOMPARE(write(letters(2, {join(1, 0, TKindOfJoin(kind))}), nullptr),
                     "A\r\n   " + fromSecond + " JOIN B ON (A.X = B.X)");
        }
    }

    void operatorStaysWhenItsSidesChangePlaces() {
        FromPlaces places;
        QCOMPARE(fromText(letters(2, {join(1, 0, klInnerJoin, "X", "<")}), &places),
                 "A\r\n   INNER JOIN B ON (A.X < B.X)");
        QVERIFY(places.joins[0].swapped);
    }

    void joinsBehindAJoinComeBeforeTheNextOne() {
        const FromDiagram diagram = letters(5, {join(0, 1), join(0, 2), join(1, 3), join(4, 3)});
        QCOMPARE(linesOf(fromText(diagram)), QStringList({"A", "A>B", "B>D", "D>E", "A>C"}));
    }

    void cycleNamesItsTableAgainWithoutAlias() {
        FromDiagram diagram = letters(3, {join(0, 1), join(1, 2), join(2, 0)});
        diagram.tables[0] = table("T", "A");
        diagram.tables[2] = table("T", "C");
        FromPlaces places;
        QCOMPARE(fromText(diagram, &places),
                 "T A\r\n"
                 "   INNER JOIN B ON (A.X = B.X)\r\n"
                 "   INNER JOIN T C ON (B.X = C.X)\r\n"
                 "   INNER JOIN T ON (C.X = A.X)");
        QVERIFY(!places.joins[0].closesCycle);
        QVERIFY(!places.joins[1].closesCycle);
        QVERIFY(places.joins[2].closesCycle);
        QCOMPARE(places.tables, std::vector<int>({0, 1, 2}));
    }

    void tableJoinedWithItselfIsNamedTwice() {
        QCOMPARE(fromText({{table("T", "A")}, {join(0, 0)}}),
                 "T A\r\n   INNER JOIN T ON (A.X = A.X)");
    }

    void followingIsThatOfTheRule() {
        std::mt19937 random(1);
        for (int run = 0; run < 2000; ++run) {
            const FromDiagram diagram = randomDiagram(random);
            QCOMPARE(fromText(diagram), TextByTheRule(diagram).text());
        }
    }

    // --- with the meaning kept

    void kindAndOperatorAreMirroredWhereTheSidesChange() {
        const FromDiagram diagram =
            letters(3, {join(1, 0, klLOuterJoin, "X", "<"), join(1, 2, klROuterJoin, "Y", "<=")});
        FromPlaces places;
        QCOMPARE(fromTextKeepingMeaning(diagram, &places),
                 "A\r\n"
                 "   RIGHT OUTER JOIN B ON (A.X > B.X)\r\n"
                 "   RIGHT OUTER JOIN C ON (B.Y <= C.Y)");
        QVERIFY(places.joins[0].swapped);
        QVERIFY(!places.joins[1].swapped);
    }

    void earliestJoinThatTouchesWhatIsWrittenComesNext() {
        // Depth first D would come before C, and E at last.
        const FromDiagram diagram = letters(5, {join(3, 4), join(0, 1), join(0, 2), join(1, 3)});
        QCOMPARE(linesOf(fromTextKeepingMeaning(diagram)),
                 QStringList({"A", "A>B", "A>C", "B>D", "D>E"}));
    }

    void orderIsThatOfTheRule() {
        std::mt19937 random(2);
        for (int run = 0; run < 2000; ++run) {
            const FromDiagram diagram = randomDiagram(random);
            QCOMPARE(linesOf(fromTextKeepingMeaning(diagram)), linesByTheRule(diagram));
        }
    }

    void allComparisonsAreWrittenOnce() {
        std::mt19937 random(3);
        for (int run = 0; run < 500; ++run) {
            const FromDiagram diagram = randomDiagram(random);
            int links = 0;
            for (const FromJoin& each : diagram.joins) links += int(each.links.size());
            QCOMPARE(fromTextKeepingMeaning(diagram).count('('), links);
        }
    }

    void cycleAddsToTheLineOfItsLaterTable() {
        const FromDiagram diagram =
            letters(4, {join(0, 1, klInnerJoin, "P"), join(1, 2, klInnerJoin, "Q"),
                        join(2, 0, klInnerJoin, "R", "<"), join(3, 2, klInnerJoin, "S")});
        FromPlaces places;
        QCOMPARE(fromTextKeepingMeaning(diagram, &places),
                 "A\r\n"
                 "   INNER JOIN B ON (A.P = B.P)\r\n"
                 "   INNER JOIN C ON (B.Q = C.Q) AND (A.R > C.R)\r\n"
                 "   INNER JOIN D ON (C.S = D.S)");
        QVERIFY(!places.joins[1].closesCycle);
        QVERIFY(places.joins[2].closesCycle);
    }

    void cycleTellsOnWhichLineItStands() {
        FromJoin closing = join(0, 2, klLOuterJoin, "R");
        closing.text = "C.Z = 1";
        FromJoin second = join(1, 2, klInnerJoin, "Q");
        second.text = "B.Z = 2";
        const FromDiagram diagram = letters(3, {join(0, 1, klInnerJoin, "P"), second, closing});
        FromPlaces places;
        QCOMPARE(fromTextKeepingMeaning(diagram, &places),
                 "A\r\n"
                 "   INNER JOIN B ON (A.P = B.P)\r\n"
                 "   INNER JOIN C ON (B.Q = C.Q) AND (A.R = C.R) AND (B.Z = 2 AND C.Z = 1)");
        QCOMPARE(places.joins[0].line, 0);
        QCOMPARE(places.joins[1].line, 1);
        QCOMPARE(places.joins[2].line, 1);
        QVERIFY(places.joins[2].closesCycle);
        QCOMPARE(places.tables, std::vector<int>({0, 1, 2}));
    }

    void groupsComeInTheOrderOfTheirFirstTables() {
        const FromDiagram diagram = letters(5, {join(4, 1), join(3, 0)});
        FromPlaces places;
        QCOMPARE(fromTextKeepingMeaning(diagram, &places),
                 "A\r\n   INNER JOIN D ON (A.X = D.X),\r\n"
                 "B\r\n   INNER JOIN E ON (B.X = E.X),\r\n"
                 "C");
        QCOMPARE(places.tables, std::vector<int>({0, 2, 4, 1, 3}));
    }

    // --- size

    // A chain as long as no recursion would stand, a star, and two tables with many links.
    void largeDiagramsAreWritten() {
        constexpr int count = 20000;
        FromDiagram chain;
        FromDiagram star;
        for (int index = 0; index < count; ++index) {
            chain.tables.push_back(table("T" + QString::number(index)));
            if (index == 0) continue;
            chain.joins.push_back(join(index - 1, index));
            star.joins.push_back(join(0, index));
        }
        star.tables = chain.tables;
        FromDiagram pair = letters(2, {join(0, 1)});
        for (int index = 1; index < count; ++index) pair.joins[0].links.push_back({"X", "=", "Y"});
        for (const auto write : {fromText, fromTextKeepingMeaning}) {
            QCOMPARE(write(chain, nullptr).count("\r\n"), count - 1);
            QCOMPARE(write(star, nullptr).count("\r\n"), count - 1);
            QCOMPARE(write(pair, nullptr).count('('), count);
        }
    }
};

QTEST_GUILESS_MAIN(FromTextTest)
#include "tst_fromtext.moc"
