// SPDX-License-Identifier: MIT
#include "WordsTools.h"
#include "criteria/ORVQDWherePanel.h"
#include "selection/ORVQDSelectOrder.h"
#include "support/TestTools.h"
#include "words/Explanation.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QRandomGenerator>
#include <QRegularExpression>

using namespace orvquery;
using apptest::linesOf;
using apptest::quoted;

namespace {

void muteIn(TorvQDWhereRow& row, const orv::QueryState::Row& as) {
    row.SetMuted(as.muted);
    for (std::size_t index = 0; index < as.rows.size(); ++index) {
        muteIn(*row.SubRows->Row(int(index)), as.rows[index]);
    }
}

// Mutes in a builder what is muted in a state of its query.
void muteIn(TorvQueryBuilder& builder, const orv::QueryState& as) {
    for (std::size_t index = 0; index < as.columns.size(); ++index) {
        builder.SelectPanel->grid()->SetMuted(int(index) + 1, as.columns[index].muted);
    }
    for (std::size_t index = 0; index < as.links.size(); ++index) {
        builder.WorkArea->muteLink(builder.WorkArea->Links()[index], as.links[index].muted);
    }
    muteIn(*builder.WherePanel->rootRow(), as.where);
    muteIn(*builder.HavingPanel->rootRow(), as.having);
}

}  // namespace

// What is said of a query; its conditions have a test of their own.
class TestWords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void emptyQuery();
    void nothingTicked();
    void results_data();
    void results();
    void tables_data();
    void tables();
    void joinsInTheOrderOfStacking();
    void tablesComeAsTheStatementHasThem();
    void circleInTheOrderOfStacking();
    void orders_data();
    void orders();
    void tailStaysQuoted();
    void furtherQueries_data();
    void furtherQueries();
    void columnWithoutAggregateIsTold();
    void procedures_data();
    void procedures();
    void mutedColumns();
    void mutedAggregates();
    void mutedLinks();
    void mutedPartsAreAsIfTheyWereNotThere();
    void wholeText();
    void plainTextIsWrapped();
    void richTextIsEscaped();
    void richTextNestsLists();

private:
    [[nodiscard]] QStringList said(const QString& title, const QString& statement) {
        return linesOf(explain(m_desk.state(statement)), title);
    }

    apptest::StatementDesk m_desk;
    apptest::StatementDesk m_classic = apptest::StatementDesk(false);
};

void TestWords::emptyQuery() {
    const Explanation explanation = explain(m_desk.state({}));
    QCOMPARE(explanation.sections.size(), std::size_t(1));
    QCOMPARE(linesOf(explanation, "Tables"),
             QStringList("There is no table yet, so there is nothing to ask for."));
}

void TestWords::nothingTicked() {
    orv::QueryState state = m_desk.state("select name from customers");
    state.columns.clear();
    const Explanation explanation = explain(state);
    QCOMPARE(linesOf(explanation, "Result"),
             QStringList("Nothing is chosen to be returned: the statement is not complete without "
                         "a column."));
    QCOMPARE(linesOf(explanation, "Tables"), QStringList("Takes the rows of CUSTOMERS."));
    QCOMPARE(linesOf(explanation, "Order"), QStringList());
}

void TestWords::results_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* name, const char* statement, const QStringList& lines) {
        QTest::newRow(name) << QString::fromLatin1(statement) << lines;
    };
    row("one column", "select name from customers", {"Returns the NAME."});
    row("columns of one table", "select name, city, since from customers",
        {"Returns the NAME, the CITY and the SINCE."});
    row("columns of two tables",
        "select c.name, c.city, o.price from customers c join orders o on o.cust_no = c.cust_no",
        {"Returns the NAME and the CITY of CUSTOMERS (C) as well as the PRICE of ORDERS (O)."});
    row("a name of its own", "select name as client, city from customers",
        {"Returns the NAME (called CLIENT) and the CITY."});
    row("an expression", "select price * 2 as twice from orders",
        {"Returns " + quoted("PRICE * 2") + " (called TWICE)."});
    row("an expression without a name", "select price * 2 from orders",
        {"Returns " + quoted("PRICE * 2") + "."});
    row("no row twice", "select distinct city from customers",
        {"Returns the CITY.", "Rows that are alike in all columns are returned once."});
    row("one group", "select status, count(*) as n from orders group by status",
        {"Returns one row for each STATUS, with the STATUS and the number of rows (called N)."});
    row("groups by two tables",
        "select c.name, o.status, sum(o.price) from customers c join orders o on o.cust_no = "
        "c.cust_no group by c.name, o.status",
        {"Returns one row for each combination of the NAME of CUSTOMERS (C) and the STATUS of "
         "ORDERS (O), with the NAME, the STATUS and the sum of the PRICE of ORDERS (O)."});
    row("groups by columns of one name",
        "select c.cust_no, o.cust_no, count(*) as n from customers c join orders o on o.cust_no = "
        "c.cust_no group by c.cust_no, o.cust_no",
        {"Returns one row for each combination of the CUST_NO of CUSTOMERS (C) and the CUST_NO of "
         "ORDERS (O), with the CUST_NO of CUSTOMERS (C), the CUST_NO of ORDERS (O) and the number "
         "of rows (called N)."});
    row("all rows as one", "select count(*) as n from orders",
        {"Returns a single row with the number of rows (called N)."});
    row("every aggregate",
        "select sum(price) as a, avg(price) as b, min(price) as c, max(price) as d, "
        "count(status) as e from orders",
        {"Returns a single row with the sum of the PRICE (called A), the average of the PRICE "
         "(called B), the smallest PRICE (called C), the greatest PRICE (called D) and the number "
         "of values of the STATUS (called E)."});
    row("dates", "select min(ordered) as a, max(ordered) as b from orders",
        {"Returns a single row with the earliest ORDERED (called A) and the latest ORDERED (called "
         "B)."});
    row("different values",
        "select count(distinct status) as n, sum(distinct price) as s from "
        "orders",
        {"Returns a single row with the number of different values of the STATUS (called N) and "
         "the sum of the different values of the PRICE (called S)."});
    row("an aggregate of an expression", "select max(price * 2) as top from orders",
        {"Returns a single row with the greatest value of " + quoted("PRICE * 2") +
         " (called TOP)."});
    row("many columns",
        "select o.order_no, o.cust_no, o.price, o.ordered, o.status, c.name, c.city as town from "
        "orders o join customers c on c.cust_no = o.cust_no",
        {"Returns these 7 columns:", "- the ORDER_NO of ORDERS (O)", "- the CUST_NO of ORDERS (O)",
         "- the PRICE of ORDERS (O)", "- the ORDERED of ORDERS (O)", "- the STATUS of ORDERS (O)",
         "- the NAME of CUSTOMERS (C)", "- the CITY of CUSTOMERS (C) (called TOWN)"});
    row("names in quotes", "select \"First Name\" from \"Big Table\"", {"Returns the First Name."});
    row("names in quotes in another case",
        "select \"NAME\", \"city\" from customers where \"city\" = 'A'",
        {"Returns the NAME and the CITY."});
}

void TestWords::results() {
    QFETCH(QString, statement);
    QFETCH(QStringList, lines);
    QCOMPARE(said("Result", statement), lines);
}

void TestWords::tables_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* name, const char* from, const QStringList& lines) {
        QTest::newRow(name) << QString::fromLatin1(from) << lines;
    };
    const QString both =
        "Takes the rows of ORDERS (O) together with the rows of CUSTOMERS (C) "
        "that have the same CUST_NO";
    row("one table", "orders", {"Takes the rows of ORDERS."});
    row("one table with an alias", "orders o", {"Takes the rows of ORDERS (O)."});
    row("inner join", "orders o join customers c on o.cust_no = c.cust_no",
        {both + "; rows without a match are left out."});
    row("left join", "orders o left join customers c on o.cust_no = c.cust_no",
        {both + "; rows of ORDERS (O) without a match are kept, with empty values for CUSTOMERS "
                "(C)."});
    row("right join", "orders o right join customers c on o.cust_no = c.cust_no",
        {both + "; rows of CUSTOMERS (C) without a match are kept, with empty values for ORDERS "
                "(O); rows of ORDERS (O) without a match are left out."});
    row("full join", "orders o full join customers c on o.cust_no = c.cust_no",
        {both + "; rows of either side without a match are kept, with empty values for the other "
                "side."});
    row("three tables",
        "orders o join customers c on o.cust_no = c.cust_no left join items i on i.order_no = "
        "o.order_no",
        {both + "; rows without a match are left out.",
         "Joins to these the rows of ITEMS (I) that have the same ORDER_NO as ORDERS (O); rows so "
         "far without a match are kept, with empty values for ITEMS (I)."});
    row("right join of a third table",
        "orders o join customers c on o.cust_no = c.cust_no right join items i on i.order_no = "
        "o.order_no",
        {both + "; rows without a match are left out.",
         "Joins to these the rows of ITEMS (I) that have the same ORDER_NO as ORDERS (O); rows of "
         "ITEMS (I) without a match are kept, with empty values for all tables so far; rows so far "
         "without a match are left out."});
    row("self join", "reps r left join reps b on r.boss_no = b.rep_no",
        {"Takes the rows of REPS (R) together with the rows of REPS (B), where the REP_NO of REPS "
         "(B) is the same as the BOSS_NO of REPS (R); rows of REPS (R) without a match are kept, "
         "with empty values for REPS (B)."});
    row("two links of one name each",
        "orders o join items i on o.order_no = i.order_no and o.order_no <> i.line",
        {"Takes the rows of ORDERS (O) together with the rows of ITEMS (I), where the ORDER_NO of "
         "ITEMS (I) is the same as the ORDER_NO of ORDERS (O) and the LINE of ITEMS (I) is "
         "something other than the ORDER_NO of ORDERS (O); rows without a match are left out."});
    // As seen from the joined table: o.ordered > c.since says that SINCE is the earlier one.
    row("comparison seen from the other side", "orders o join customers c on o.ordered > c.since",
        {"Takes the rows of ORDERS (O) together with the rows of CUSTOMERS (C), where the SINCE of "
         "CUSTOMERS (C) is earlier than the ORDERED of ORDERS (O); rows without a match are left "
         "out."});
    row("text beside a link",
        "orders o left join customers c on o.cust_no = c.cust_no and o.price > 5",
        {both + ", where the PRICE of ORDERS (O) is greater than 5; rows of ORDERS (O) without a "
                "match are kept, with empty values for CUSTOMERS "
                "(C)."});
    row("conditions beside a link",
        "orders o join customers c on o.cust_no = c.cust_no and o.status = 'open' and o.price not "
        "between 1 and 2 and c.city is null",
        {both + ", where the STATUS of ORDERS (O) is 'open', " +
         quoted("O.PRICE NOT BETWEEN 1 AND 2") +
         " is true and the CITY of CUSTOMERS (C) is not given; rows without a match are left "
         "out."});
    row("two tables without a link", "orders o, customers c",
        {"Takes every combination of a row of ORDERS (O) and a row of CUSTOMERS (C) (a product): "
         "no join links them."});
    row("joined tables and one without a link",
        "orders o join customers c on o.cust_no = c.cust_no, reps r",
        {both + "; rows without a match are left out.", "Takes the rows of REPS (R).",
         "No join links ORDERS (O) and CUSTOMERS (C) with REPS (R): each row of the one side is "
         "combined with each row of the other (a product)."});
    row("a circle",
        "orders o join customers c on o.cust_no = c.cust_no join reps r on r.rep_no = c.rep_no and "
        "r.boss_no = o.order_no",
        {both + "; rows without a match are left out.",
         "Joins to these the rows of REPS (R), where the REP_NO of REPS (R) is the same as the "
         "REP_NO of CUSTOMERS (C) and the BOSS_NO of REPS (R) is the same as the ORDER_NO of "
         "ORDERS (O); rows without a match are left out."});
}

void TestWords::tables() {
    QFETCH(QString, from);
    QFETCH(QStringList, lines);
    QCOMPARE(said("Tables", "select 1 as one from " + from), lines);
}

// The box that was made last lies in front; its table is written first then, and LEFT turns RIGHT.
void TestWords::joinsInTheOrderOfStacking() {
    apptest::StatementDesk classic(false);
    const orv::QueryState state = classic.state(
        "select o.price from orders o left join customers c on o.cust_no = c.cust_no");
    QVERIFY(classic.builder().GetSQLStatment().contains(
        "FROM CUSTOMERS C\r\n   RIGHT OUTER JOIN ORDERS O"));
    QCOMPARE(
        linesOf(explain(state, false), "Tables"),
        QStringList("Takes the rows of CUSTOMERS (C) together with the rows of ORDERS (O) that "
                    "have the same CUST_NO; rows of ORDERS (O) without a match are kept, with "
                    "empty values for CUSTOMERS (C); rows of CUSTOMERS (C) without a match "
                    "are left out."));
}

// Whatever the joins are, tables are told in the order in which FROM has them.
void TestWords::tablesComeAsTheStatementHasThem() {
    QRandomGenerator random(5);
    const QStringList kinds = {"join", "left join", "right join", "full join"};
    const QStringList tables = {"customers", "orders", "items", "reps"};
    const QStringList fields = {"cust_no", "order_no", "amount", "rep_no"};
    for (int round = 0; round < 60; ++round) {
        QString from = QStringLiteral("customers a0");
        const int count = 2 + int(random.bounded(4));
        QList<int> kindOf = {0};
        for (int number = 1; number < count; ++number) {
            const int kind = int(random.bounded(4));
            const int to = int(random.bounded(number));
            kindOf += int(random.bounded(4));
            from += QStringLiteral(" %1 %2 a%3 on a%3.%4 = a%5.%6")
                        .arg(kinds[kind], tables[kindOf.back()])
                        .arg(number)
                        .arg(fields[kindOf.back()])
                        .arg(to)
                        .arg(fields[kindOf[to]]);
        }
        for (const bool keepMeaning : {true, false}) {
            apptest::StatementDesk& desk = keepMeaning ? m_desk : m_classic;
            const orv::QueryState state = desk.state("select 1 as one from " + from);
            const QString written = desk.builder().GetSQLStatment().section("FROM ", 1);
            const QString told = linesOf(explain(state, keepMeaning), "Tables").join(u' ');
            QStringList writtenOrder;
            QStringList toldOrder;
            static const QRegularExpression alias("(?<![.A-Z0-9])[A-Z]+ (A[0-9])");
            auto match = alias.globalMatch(written);
            while (match.hasNext()) writtenOrder += match.next().captured(1);
            static const QRegularExpression rows("rows of [A-Z]+ \\((A[0-9])\\)");
            match = rows.globalMatch(told);
            while (match.hasNext()) toldOrder += match.next().captured(1);
            // Rows that are kept name their tables again.
            toldOrder.removeDuplicates();
            QCOMPARE(writtenOrder.size(), count);
            QVERIFY2(toldOrder == writtenOrder, qPrintable(written + u'\n' + told));
        }
    }
}

// A join that closes a circle names its table again there, as a further one.
void TestWords::circleInTheOrderOfStacking() {
    apptest::StatementDesk classic(false);
    const orv::QueryState state = classic.state(
        "select o.price from orders o join customers c on o.cust_no = c.cust_no join reps r on "
        "r.rep_no = c.rep_no and r.boss_no = o.order_no");
    const QString statement = classic.builder().GetSQLStatment();
    QCOMPARE(statement.count("INNER JOIN"), 3);
    const QStringList lines = linesOf(explain(state, false), "Tables");
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.back().contains(" once more"), qPrintable(lines.join(u'\n')));
    QCOMPARE(linesOf(explain(state, true), "Tables").size(), 2);
}

void TestWords::orders_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* statement, const QStringList& lines) {
        QTest::newRow(statement) << QString::fromLatin1(statement) << lines;
    };
    row("select name from customers", {"The rows come in no certain order."});
    row("select name from customers order by name", {"Sorted by the NAME, from A to Z."});
    row("select name, rep_no, since from customers order by name desc, rep_no, since desc",
        {"Sorted by the NAME, from Z to A; then by the REP_NO, the smallest first; then by the "
         "SINCE, the latest first."});
    row("select name, since from customers order by since", {"Sorted by the SINCE, the earliest "
                                                             "first."});
    row("select price * 2 as twice from orders order by twice desc",
        {"Sorted by TWICE, the greatest first."});
    row("select price * 2 from orders order by 1",
        {"Sorted by " + quoted("PRICE * 2") + ", the smallest first."});
    row("select status, sum(price) from orders group by status order by 2 desc",
        {"Sorted by the sum of the PRICE, the greatest first."});
    row("select o.cust_no, c.cust_no from orders o join customers c on o.cust_no = c.cust_no order "
        "by c.cust_no",
        {"Sorted by the CUST_NO of CUSTOMERS (C), the smallest first."});
    row("select count(*) as n from orders", {});  // one row has no order
    row("select name from customers union select status from orders order by 1", {});
}

void TestWords::orders() {
    QFETCH(QString, statement);
    QFETCH(QStringList, lines);
    QCOMPARE(said("Order", statement), lines);
}

void TestWords::tailStaysQuoted() {
    QCOMPARE(
        said("Further text", "select name from customers limit 5"),
        QStringList("At its end the statement says, as it stands: " + quoted("limit 5") + u'.'));
}

void TestWords::furtherQueries_data() {
    QTest::addColumn<QString>("tail");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* tail, const QStringList& lines) {
        QTest::newRow(tail) << QString::fromLatin1(tail) << lines;
    };
    const QString query = quoted("select city from customers") + u'.';
    row("union select city from customers",
        {"Together with the rows of a second query (UNION), rows that are alike once: " + query});
    row("union all select city from customers",
        {"Together with the rows of a second query (UNION ALL), also those that are alike: " +
         query});
    row("intersect select city from customers",
        {"Only those of these rows that a second query returns, too (INTERSECT), rows that are "
         "alike once: " +
         query});
    row("except select city from customers",
        {"Without those of these rows that a second query returns, too (EXCEPT), rows that are "
         "alike once: " +
         query});
    row("except all select city from customers",
        {"Without one of these rows for each row of a second query (EXCEPT ALL): " + query});
    row("union all select city from customers order by 1 limit 3",
        {"Together with the rows of a second query (UNION ALL), also those that are alike: " +
             query,
         "For all rows that come of this the statement says, as it stands: " +
             quoted("order by 1 limit 3") + u'.'});
    row("union select name from (select name from reps order by 1 limit 2 union select 'x')",
        {"Together with the rows of a second query (UNION), rows that are alike once: " +
         quoted("select name from (select name from reps order by 1 limit 2 union select 'x')") +
         u'.'});
    row("union select 1 except select 2",
        {"These rows are combined with those of 2 further queries (UNION and EXCEPT): " +
         quoted("union select 1 except select 2") + u'.'});
}

void TestWords::furtherQueries() {
    QFETCH(QString, tail);
    QFETCH(QStringList, lines);
    const QString statement = "select name from customers " + tail;
    QCOMPARE(said("Further queries", statement), lines);
    QCOMPARE(said("Further text", statement), QStringList());
}

void TestWords::columnWithoutAggregateIsTold() {
    orv::QueryState state = m_desk.state("select sum(price) as s from orders");
    state.columns.push_back({"X", QString(), "PRICE * 2", false});
    QCOMPARE(linesOf(explain(state), "Result").value(0),
             "There is no statement yet: " + quoted("PRICE * 2") +
                 " has no aggregate function, as it needs beside columns that have one.");
}

void TestWords::procedures_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* from, const QStringList& lines) {
        QTest::newRow(from) << QString::fromLatin1(from) << lines;
    };
    row("top_customers(2024, 'Oslo')",
        {"Takes the rows that the procedure TOP_CUSTOMERS returns for YEAR = 2024 and TOWN = "
         "'Oslo'."});
    row("top_customers(:y, null) t",
        {"Takes the rows that the procedure TOP_CUSTOMERS (T) returns for YEAR = the value given "
         "for :y and TOWN = NULL."});
    row("orders o, top_customers(o.order_no, 'Oslo') t",
        {"Takes the rows of ORDERS (O).",
         "For each row so far takes the rows that the procedure TOP_CUSTOMERS (T) returns for YEAR "
         "= the ORDER_NO of ORDERS (O) and TOWN = 'Oslo'; rows for which there is none are left "
         "out."});
}

void TestWords::procedures() {
    QFETCH(QString, from);
    QFETCH(QStringList, lines);
    QCOMPARE(said("Tables", "select 1 as one from " + from), lines);
}

void TestWords::mutedColumns() {
    orv::QueryState state =
        m_desk.state("select name, city as town from customers order by city, name");
    QCOMPARE(linesOf(explain(state), "Muted"), QStringList());
    state.columns[1].muted = true;
    const Explanation explanation = explain(state);
    QCOMPARE(linesOf(explanation, "Result"), QStringList("Returns the NAME."));
    QCOMPARE(linesOf(explanation, "Order"), QStringList("Sorted by the NAME, from A to Z."));
    QCOMPARE(linesOf(explanation, "Muted"),
             QStringList({"Muted, and not asked for:", "- column: the CITY (called TOWN)"}));
    state.columns[0].muted = true;
    QCOMPARE(linesOf(explain(state), "Result"),
             QStringList("Nothing is chosen to be returned: the statement is not complete without "
                         "a column."));
}

void TestWords::mutedAggregates() {
    orv::QueryState state = m_desk.state(
        "select name, count(*) as n from customers group by name having count(*) > 1 order by n");
    state.columns[1].muted = true;
    const Explanation explanation = explain(state);
    QCOMPARE(linesOf(explanation, "Result"), QStringList("Returns the NAME."));
    QCOMPARE(linesOf(explanation, "Groups"),
             QStringList("The conditions for groups are not part of the statement, because it does "
                         "not group rows."));
    QCOMPARE(linesOf(explanation, "Order"), QStringList("The rows come in no certain order."));
}

void TestWords::mutedLinks() {
    const QString statement =
        "select c.name from customers c left join orders o on c.cust_no = o.cust_no%1";
    orv::QueryState state = m_desk.state(statement.arg(" and c.since = o.ordered"));
    state.links[1].muted = true;
    QCOMPARE(linesOf(explain(state), "Tables"), said("Tables", statement.arg("")));
    const QString second =
        "- link: the SINCE of CUSTOMERS (C) is the same as the ORDERED of ORDERS (O)";
    QCOMPARE(linesOf(explain(state), "Muted"), QStringList({"Muted, and not asked for:", second}));
    state.links[0].muted = true;
    QCOMPARE(linesOf(explain(state), "Tables"),
             said("Tables", "select c.name from customers c, orders o"));
    QCOMPARE(linesOf(explain(state), "Muted"),
             QStringList({"Muted, and not asked for:",
                          "- link: the CUST_NO of CUSTOMERS (C) is the same as the CUST_NO of "
                          "ORDERS (O)",
                          second}));
}

// What is said of the rest is what is said of the statement that is written.
void TestWords::mutedPartsAreAsIfTheyWereNotThere() {
    const QByteArray whole = m_desk.json(
        "select c.name, c.city, max(o.price) as p from customers c left join orders o on c.cust_no "
        "= o.cust_no and c.since < o.ordered where c.city = 'A' and (c.rep_no = 1 or o.price > 5) "
        "group by c.name, c.city having max(o.price) > 7 order by p desc, c.city");
    constexpr int parts = 9;
    constexpr int allColumns = 7;
    for (int mask = 0; mask < 1 << parts; ++mask) {
        if ((mask & allColumns) == allColumns) continue;  // that is no statement
        orv::QueryState muted = orv::readState(whole);
        bool* const marks[parts] = {&muted.columns[0].muted,    &muted.columns[1].muted,
                                    &muted.columns[2].muted,    &muted.links[0].muted,
                                    &muted.links[1].muted,      &muted.where.rows[0].muted,
                                    &muted.where.rows[1].muted, &muted.where.rows[1].rows[0].muted,
                                    &muted.having.rows[0].muted};
        for (int part = 0; part < parts; ++part) *marks[part] = (mask >> part & 1) != 0;
        m_desk.builder().RestoreState(whole);
        muteIn(m_desk.builder(), muted);
        Explanation given = explain(orv::readState(m_desk.builder().SaveState()));
        const std::size_t count = given.sections.size();
        std::erase_if(given.sections,
                      [](const WordsSection& section) { return section.title == u"Muted"; });
        QCOMPARE(given.sections.size() + (mask == 0 ? 0 : 1), count);
        const bool groups = (mask & 4) == 0 && (mask & 3) != 3;
        if (!groups) {
            std::erase_if(given.sections,
                          [](const WordsSection& section) { return section.title == u"Groups"; });
        }
        const QString statement = m_desk.builder().GetSQLStatment();
        const Explanation expected = explain(m_desk.state(statement));
        QVERIFY2(given.sections == expected.sections,
                 qPrintable(statement + u'\n' + plainText(given) + u'\n' + plainText(expected)));
    }
}

void TestWords::wholeText() {
    const QString text = plainText(
        explain(m_desk.state("select c.name, sum(o.price) as total from customers c left join "
                             "orders o on o.cust_no = c.cust_no where c.city in ('Oslo', 'Rome') "
                             "and (o.price > 5 or o.price is null) group by c.name having "
                             "sum(o.price) > 100 order by total desc limit 3")));
    QCOMPARE(text, QStringLiteral(
                       "Result\n"
                       "  Returns one row for each NAME of CUSTOMERS (C), with the NAME and the "
                       "sum of\n"
                       "  the PRICE of ORDERS (O) (called TOTAL).\n"
                       "\n"
                       "Tables\n"
                       "  Takes the rows of CUSTOMERS (C) together with the rows of ORDERS (O) "
                       "that have\n"
                       "  the same CUST_NO; rows of CUSTOMERS (C) without a match are kept, with "
                       "empty\n"
                       "  values for ORDERS (O).\n"
                       "\n"
                       "Conditions\n"
                       "  Only rows count where all of these are true:\n"
                       "  - the CITY of CUSTOMERS (C) is one of ('Oslo', 'Rome')\n"
                       "  - the PRICE of ORDERS (O) is greater than 5 or the PRICE of ORDERS (O) "
                       "is not\n"
                       "    given\n"
                       "\n"
                       "Groups\n"
                       "  Of these groups only those are kept where the sum of the PRICE of ORDERS "
                       "(O)\n"
                       "  is greater than 100.\n"
                       "\n"
                       "Order\n"
                       "  Sorted by TOTAL, the greatest first.\n"
                       "\n"
                       "Further text\n"
                       "  At its end the statement says, as it stands: %1.\n")
                       .arg(quoted("limit 3")));
}

void TestWords::plainTextIsWrapped() {
    const Explanation explanation = {
        {{"T", {{0, "one two three"}, {1, "four five six"}, {2, "muchtoolongaword x"}}}}};
    QCOMPARE(plainText(explanation, 12),
             QStringLiteral("T\n  one two\n  three\n  - four\n    five six\n    - "
                            "muchtoolongaword\n      x\n"));
    for (const QString& line : plainText(explanation, 20).split(u'\n')) {
        QVERIFY2(line.size() <= 22, qPrintable(line));
    }
}

void TestWords::richTextIsEscaped() {
    const QString text =
        richText(explain(m_desk.state("select name from customers where name = '<b>&x</b>'")));
    QVERIFY(text.contains("&lt;b&gt;&amp;x&lt;/b&gt;"));
    QVERIFY(!text.contains("<b>&"));
}

void TestWords::richTextNestsLists() {
    const Explanation explanation = {
        {{"T", {{0, "a"}, {1, "b"}, {2, "c"}, {2, "d"}, {1, "e"}, {0, "f"}}}}};
    QCOMPARE(richText(explanation),
             QStringLiteral("<p><b>T</b></p><p>a</p><ul><li>b<ul><li>c</li><li>d</li></ul></li>"
                            "<li>e</li></ul><p>f</p>"));
}

QTEST_MAIN(TestWords)
#include "tst_app_words.moc"
