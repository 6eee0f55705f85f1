// SPDX-License-Identifier: MIT
#include "WordsTools.h"
#include "differences/Differences.h"
#include "support/TestTools.h"

#include <QRandomGenerator>

#include <algorithm>
#include <functional>

using namespace orvquery;

namespace {

using Kind = Difference::Kind;
using Part = Difference::Part;

// The lines of all parts, each behind the title of its part.
QStringList linesOf(const std::vector<Difference>& list) {
    QStringList lines;
    for (const Difference& difference : list) {
        lines += partTitle(difference.part) + QStringLiteral("|") + sentence(difference);
    }
    return lines;
}

Difference reversed(Difference difference) {
    switch (difference.kind) {
    case Kind::Added: difference.kind = Kind::Removed; break;
    case Kind::Removed: difference.kind = Kind::Added; break;
    case Kind::Muted: difference.kind = Kind::Unmuted; break;
    case Kind::Unmuted: difference.kind = Kind::Muted; break;
    case Kind::Moved:
    case Kind::Changed: break;
    }
    std::swap(difference.before, difference.after);
    std::swap(difference.tableBefore, difference.tableAfter);
    return difference;
}

// In an order of their own, to be compared as sets.
QStringList sortedTexts(const std::vector<Difference>& list) {
    QStringList texts;
    for (const Difference& difference : list) {
        texts += QStringList{partTitle(difference.part),
                             QString::number(int(difference.kind)),
                             difference.what,
                             difference.before,
                             difference.after,
                             QString::number(difference.tableBefore),
                             QString::number(difference.tableAfter)}
                     .join(u'|');
    }
    texts.sort();
    return texts;
}

// Makes statements about the tables of the desk by chance, though the same ones each time.
class StatementMaker {
public:
    explicit StatementMaker(quint32 seed) : m_random(seed) {}

    QString statement() {
        const bool hasOrders = chance(70);
        const bool hasReps = chance(30);
        m_columns = {QStringLiteral("c.name"), QStringLiteral("c.city"), QStringLiteral("c.rep_no"),
                     QStringLiteral("c.since")};
        QString from = QStringLiteral("customers c");
        if (hasOrders) {
            m_columns += {QStringLiteral("o.price"), QStringLiteral("o.status")};
            from += oneOf({" join ", " left join ", " right join ", " full join "}) +
                    QStringLiteral("orders o on o.cust_no ") + oneOf({"=", "=", "<", ">="}) +
                    QStringLiteral(" c.cust_no");
            if (chance(30)) from += QStringLiteral(" and o.price > 5");
        }
        if (hasReps) {
            m_columns += QStringLiteral("r.rep_name");
            from += oneOf({" join reps r on r.rep_no = c.rep_no", ", reps r"});
        }
        QStringList columns;
        QStringList groups;
        const bool isGrouped = chance(40);
        for (int count = 1 + number(3); count > 0; --count) {
            columns += column() + (chance(30) ? QStringLiteral(" as x%1").arg(count) : QString());
            groups += columns.back().section(u' ', 0, 0);
        }
        if (isGrouped) columns += oneOf({"count(*) as n", "max(c.rep_no) as m"});
        QString text = QStringLiteral("select ") +
                       (chance(20) ? QStringLiteral("distinct ") : QString()) + columns.join(u',') +
                       QStringLiteral(" from ") + from;
        if (chance(80)) text += QStringLiteral(" where ") + condition(3);
        if (isGrouped) text += QStringLiteral(" group by ") + groups.join(u',');
        if (isGrouped && chance(50)) text += QStringLiteral(" having count(*) > ") + constant();
        if (chance(50)) text += QStringLiteral(" order by 1") + oneOf({"", " desc"});
        if (chance(20)) text += QStringLiteral(" limit ") + constant();
        return text;
    }

    bool chance(int percent) { return number(100) < percent; }
    int number(int below) { return int(m_random.bounded(below)); }

private:
    QString oneOf(std::initializer_list<const char*> texts) {
        return QString::fromLatin1(*(texts.begin() + number(int(texts.size()))));
    }
    QString column() { return m_columns[number(int(m_columns.size()))]; }
    QString constant() { return QString::number(number(3)); }
    QString condition(int depth) {
        if (depth == 0 || chance(40)) {
            return column() + oneOf({" = 1", " = 2", " > 1", " is null", " in (1, 2)",
                                     " between 1 and 2", " like 'a%'"});
        }
        QStringList parts;
        for (int count = 2 + number(2); count > 0; --count) parts += condition(depth - 1);
        return (chance(20) ? QStringLiteral("not ") : QString()) + u'(' +
               parts.join(oneOf({" and ", " or "})) + u')';
    }

    QRandomGenerator m_random;
    QStringList m_columns;
};

void shuffle(orv::QueryState::Row& row, StatementMaker& maker) {
    for (int place = int(row.rows.size()) - 1; place > 0; --place) {
        std::swap(row.rows[std::size_t(place)], row.rows[std::size_t(maker.number(place + 1))]);
    }
    for (orv::QueryState::Row& inner : row.rows) shuffle(inner, maker);
}

void muteByChance(orv::QueryState::Row& row, StatementMaker& maker) {
    for (orv::QueryState::Row& inner : row.rows) {
        inner.muted = maker.chance(20);
        muteByChance(inner, maker);
    }
}

void muteByChance(orv::QueryState& state, StatementMaker& maker) {
    for (orv::OutputColumn& column : state.columns) column.muted = maker.chance(20);
    for (orv::QueryState::Link& link : state.links) link.muted = maker.chance(20);
    muteByChance(state.where, maker);
    muteByChance(state.having, maker);
}

}  // namespace

class TestDifferences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void differences_data();
    void differences();
    void emptyQueries();
    void tablesNameTheirBoxes();
    void orderOfRightJoinsCounts();
    void procedureArguments();
    void muting_data();
    void muting();
    void mutingBesideOtherChanges();
    void mutedOneOfTwoAlike();
    void noneWithItself();
    void reversedForReversedQueries();
    void orderWithinGroupsDoesNotCount();
    void placesDoNotCount();
    void partsThatAreNotHeld();
    void statementOfWhichNothingIsLoaded();
    void inWordsByPart();

private:
    [[nodiscard]] std::vector<Difference> compared(const QString& before, const QString& after) {
        const orv::QueryState one = m_desk.state(before);
        return orvquery::differences(one, m_desk.state(after));
    }

    apptest::StatementDesk m_desk;
};

void TestDifferences::differences_data() {
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* name, const char* before, const char* after,
                        const QStringList& lines) {
        QTest::newRow(name) << QString::fromLatin1(before) << QString::fromLatin1(after) << lines;
    };
    row("a column more", "select name from customers", "select name, city from customers",
        {"Result|Added: the CITY"});
    row("a column less", "select name, city from customers", "select city from customers",
        {"Result|Removed: the NAME"});
    row("another name of a column", "select name from customers", "select name as n from customers",
        {"Result|Changed: the NAME; now the NAME (called N)"});
    row("names that nobody gave", "select upper(name), 1 + 1 from customers order by 1",
        "select upper( NAME ), 1 + 1 from customers order by 1", {});
    row("a name for what had none", "select upper(name) from customers",
        "select upper(name) as n from customers",
        {QStringLiteral("Result|Changed: \u201cUPPER(NAME)\u201d; now \u201cUPPER(NAME)\u201d "
                        "(called N)")});
    row("an aggregate", "select name, sum(rep_no) as x from customers group by name",
        "select name, avg(rep_no) as x from customers group by name",
        {"Result|Changed: the sum of the REP_NO (called X); now the average of the REP_NO (called "
         "X)"});
    row("columns in another order", "select name, city from customers",
        "select city, name from customers",
        {"Result|Changed in the order of the columns: the NAME; the CITY; now the CITY; the NAME"});
    row("distinct", "select name from customers", "select distinct name from customers",
        {"Result|Added: rows that are alike in all columns are returned once"});
    row("another alias alone", "select c.name from customers c where c.city = 'A' order by 1",
        "select k.name from customers k where k.city = 'A' order by 1",
        {"Tables|Changed: CUSTOMERS (C); now CUSTOMERS (K)"});
    row("a table more", "select c.name from customers c", "select c.name from customers c, reps r",
        {"Tables|Added: REPS (R)"});
    row("a joined table less",
        "select c.name from customers c join orders o on o.cust_no = c.cust_no",
        "select c.name from customers c",
        {"Tables|Removed: ORDERS (O)",
         "Joins|Removed: CUSTOMERS (C) with ORDERS (O), where the CUST_NO of CUSTOMERS (C) is the "
         "same as the CUST_NO of ORDERS (O); rows without a match are left out"});
    row("kind of a join", "select c.name from customers c join orders o on o.cust_no = c.cust_no",
        "select c.name from customers c left join orders o on o.cust_no = c.cust_no",
        {"Joins|Changed in the join of CUSTOMERS (C) with ORDERS (O): rows without a match are "
         "left out; now rows of CUSTOMERS (C) without a match are kept"});
    row("a join seen from the other side",
        "select c.name from customers c left join orders o on o.cust_no > c.cust_no",
        "select c.name from orders o right join customers c on c.cust_no < o.cust_no", {});
    row("operator of a link",
        "select c.name from customers c join orders o on c.cust_no = o.cust_no",
        "select c.name from customers c join orders o on c.cust_no < o.cust_no",
        {"Joins|Changed in the join of CUSTOMERS (C) with ORDERS (O): the CUST_NO of CUSTOMERS (C) "
         "is the same as the CUST_NO of ORDERS (O); now the CUST_NO of CUSTOMERS (C) is less than "
         "the CUST_NO of ORDERS (O)"});
    row("a link more", "select c.name from customers c join orders o on c.cust_no = o.cust_no",
        "select c.name from customers c join orders o on c.cust_no = o.cust_no and c.since = "
        "o.ordered",
        {"Joins|Added in the join of CUSTOMERS (C) with ORDERS (O): the SINCE of CUSTOMERS (C) is "
         "the same as the ORDERED of ORDERS (O)"});
    row("text of a join",
        "select c.name from customers c join orders o on c.cust_no = o.cust_no and o.price > 5",
        "select c.name from customers c join orders o on c.cust_no = o.cust_no and o.price > 6",
        {"Joins|Changed in the join of CUSTOMERS (C) with ORDERS (O): the PRICE of ORDERS (O) is "
         "greater than 5; now the PRICE of ORDERS (O) is greater than 6"});
    row("a condition more", "select name from customers where city = 'A'",
        "select name from customers where city = 'A' and rep_no is null",
        {"Conditions|Added: the REP_NO is not given"});
    row("a first condition", "select name from customers",
        "select name from customers where city = 'A'", {"Conditions|Added: the CITY is 'A'"});
    row("another constant", "select name from customers where city = 'A' and rep_no = 1",
        "select name from customers where city = 'B' and rep_no = 1",
        {"Conditions|Changed: the CITY is 'A'; now the CITY is 'B'"});
    row("another operator", "select name from customers where rep_no > 1",
        "select name from customers where rep_no between 1 and 5",
        {"Conditions|Changed: the REP_NO is greater than 1; now the REP_NO is from 1 to 5"});
    row("conditions in another order", "select name from customers where city = 'A' and rep_no = 1",
        "select name from customers where rep_no = 1 and city = 'A'", {});
    row("and becomes or", "select name from customers where city = 'A' and rep_no = 1",
        "select name from customers where city = 'A' or rep_no = 1",
        {"Conditions|Changed in how the conditions hold together: all of these are true; now at "
         "least one of these is true"});
    row("a condition in a nested group",
        "select name from customers where city = 'A' and (rep_no = 1 or rep_no = 2)",
        "select name from customers where (rep_no = 2 or rep_no = 1 or since is null) and city = "
        "'A'",
        {"Conditions|Added where at least one of these is true: the SINCE is not given"});
    row("a nested group more", "select name from customers where city = 'A'",
        "select name from customers where city = 'A' and (rep_no = 1 or rep_no = 2)",
        {"Conditions|Added: at least one of these is true: (the REP_NO is 1; the REP_NO is 2)"});
    row("a negation", "select name from customers where city = 'A' and not (rep_no = 1)",
        "select name from customers where city = 'A' and rep_no = 1",
        {"Conditions|Removed: it is false that the REP_NO is 1",
         "Conditions|Added: the REP_NO is "
         "1"});
    row("a condition beside a negation that was alone",
        "select name from customers where not (city = 'A')",
        "select name from customers where not (city = 'A') and rep_no = 1",
        {"Conditions|Added: the REP_NO is 1"});
    row("a condition beside IS NOT NULL, which was written as a negation",
        "select name from customers where not (city is null)",
        "select name from customers where city is not null and rep_no = 1",
        {"Conditions|Added: the REP_NO is 1"});
    row("a negation that says the same",
        "select name from customers where not (city is null) and not exists (select 1 from reps)",
        "select name from customers where city is not null and not exists (select 1 from reps)",
        {});
    row("brackets elsewhere",
        "select name from customers where city = 'A' and (city = 'B' or rep_no = 1)",
        "select name from customers where city = 'A' and city = 'B' or rep_no = 1",
        {"Conditions|Changed in how the conditions hold together: all of these are true; now at "
         "least one of these is true",
         "Conditions|Moved: the CITY is 'A', from the outermost level to a group where all of "
         "these "
         "are true",
         "Conditions|Changed: in the group that begins with \"the CITY is 'B'\": at least one of "
         "these is true; now in the group that begins with \"the CITY is 'A'\": all of these are "
         "true",
         "Conditions|Moved: the REP_NO is 1, from a group where at least one of these is true to "
         "the outermost level"});
    row("brackets less",
        "select name from customers where city = 'A' and (city = 'B' or rep_no = 1)",
        "select name from customers where city = 'A' and city = 'B' and rep_no = 1",
        {"Conditions|Moved: the CITY is 'B', from a group where at least one of these is true to "
         "the outermost level",
         "Conditions|Moved: the REP_NO is 1, from a group where at least one of these is true to "
         "the outermost level"});
    row("a condition that left its group behind",
        "select name from customers where city = 'A' and (city = 'B' or rep_no = 1)",
        "select name from customers where city = 'A' and rep_no = 1",
        {"Conditions|Removed where at least one of these is true: the CITY is 'B'",
         "Conditions|Moved: the REP_NO is 1, from a group where at least one of these is true to "
         "the outermost level"});
    row("a condition of groups",
        "select name, count(*) as n from customers group by name having count(*) > 1",
        "select name, count(*) as n from customers group by name having count(*) > 2",
        {"Groups|Changed: the number of rows is greater than 1; now the number of rows is greater "
         "than 2"});
    row("direction", "select name from customers order by name",
        "select name from customers order by name desc",
        {"Order|Changed: the NAME, from A to Z; now the NAME, from Z to A"});
    row("what is sorted by first", "select name, city from customers order by name, city",
        "select name, city from customers order by city, name",
        {"Order|Changed in what is sorted by first: the NAME, from A to Z; the CITY, from A to Z; "
         "now the CITY, from A to Z; the NAME, from A to Z"});
    row("further text", "select name from customers limit 1", "select name from customers limit 2",
        {QStringLiteral("Further text|Changed: \u201climit 1\u201d; now \u201climit 2\u201d")});
    row("no further text", "select name from customers limit 1", "select name from customers",
        {QStringLiteral("Further text|Removed: \u201climit 1\u201d")});
    row("spacing and case", "select  NAME from customers where upper(city)  = 'A' limit  1",
        "select name from CUSTOMERS where UPPER( city ) = 'A' LIMIT 1", {});
    row("case within a text", "select name from customers where city = 'a'",
        "select name from customers where city = 'A'",
        {"Conditions|Changed: the CITY is 'a'; now the CITY is 'A'"});
}

void TestDifferences::differences() {
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(QStringList, lines);
    QCOMPARE(linesOf(compared(before, after)), lines);
}

void TestDifferences::emptyQueries() {
    QCOMPARE(linesOf(compared({}, {})), QStringList());
    QCOMPARE(linesOf(compared({}, "select name from customers")),
             QStringList({"Result|Added: the NAME of CUSTOMERS", "Tables|Added: CUSTOMERS"}));
    QCOMPARE(linesOf(compared("select name from customers", {})),
             QStringList({"Result|Removed: the NAME of CUSTOMERS", "Tables|Removed: CUSTOMERS"}));
}

// Boxes lie from the front to the back: the last one that was made comes first.
void TestDifferences::tablesNameTheirBoxes() {
    const std::vector<Difference> list = compared("select c.name from customers c, orders o",
                                                  "select c.name from customers c, reps r");
    QCOMPARE(list.size(), std::size_t(2));
    QCOMPARE(list[0].kind, Kind::Removed);
    QCOMPARE(list[0].tableBefore, 0);
    QCOMPARE(list[0].tableAfter, -1);
    QCOMPARE(list[1].kind, Kind::Added);
    QCOMPARE(list[1].tableBefore, -1);
    QCOMPARE(list[1].tableAfter, 0);
}

// A right join keeps its rows against all that stands in front of it, and against nothing behind.
void TestDifferences::orderOfRightJoinsCounts() {
    const QString first =
        "select c.name from customers c right join orders o on o.cust_no = "
        "c.cust_no join reps r on r.rep_no = c.rep_no";
    const QString second =
        "select c.name from customers c join reps r on r.rep_no = c.rep_no right "
        "join orders o on o.cust_no = c.cust_no";
    QCOMPARE(
        linesOf(compared(first, second)),
        QStringList("Joins|Changed in the order in which tables are joined: CUSTOMERS (C) with "
                    "ORDERS (O), then REPS (R); now CUSTOMERS (C) with REPS (R), then ORDERS "
                    "(O)"));
    QString left = first;
    QString leftToo = second;
    left.replace("right", "left");
    leftToo.replace("right", "left");
    QCOMPARE(linesOf(compared(left, leftToo)), QStringList());
}

void TestDifferences::procedureArguments() {
    const QString call = "select t.top_no from top_customers(%1, 'A') t";
    QCOMPARE(linesOf(compared(call.arg("2024"), call.arg("2025"))),
             QStringList("Tables|Changed in the call of the procedure TOP_CUSTOMERS (T): YEAR = "
                         "2024 and TOWN = 'A'; now YEAR = 2025 and TOWN = 'A'"));
    // The argument names the same column, whatever its table is called.
    const QString named = "select t.top_no from orders %1, top_customers(%1.order_no, 'A') t";
    QCOMPARE(linesOf(compared(named.arg("o"), named.arg("p"))),
             QStringList("Tables|Changed: ORDERS (O); now ORDERS (P)"));
}

void TestDifferences::muting_data() {
    using Mute = std::function<void(orv::QueryState&)>;
    QTest::addColumn<Mute>("mute");
    QTest::addColumn<QString>("part");
    QTest::addColumn<QString>("words");
    QTest::newRow("column") << Mute([](orv::QueryState& state) { state.columns[1].muted = true; })
                            << "Result"
                            << ": the number of rows (called N)";
    QTest::newRow("link") << Mute([](orv::QueryState& state) { state.links[1].muted = true; })
                          << "Joins"
                          << " in the join of CUSTOMERS (C) with ORDERS (O): the SINCE of "
                             "CUSTOMERS (C) is the same as the ORDERED of ORDERS (O)";
    QTest::newRow("condition") << Mute([](orv::QueryState& state) {
        state.where.rows[0].muted = true;
    }) << "Conditions"
                               << ": the CITY of CUSTOMERS (C) is 'A'";
    QTest::newRow("group") << Mute([](orv::QueryState& state) { state.where.rows[1].muted = true; })
                           << "Conditions"
                           << ": at least one of these is true: (the PRICE of ORDERS (O) is 1; the "
                              "PRICE of ORDERS (O) is 2)";
    QTest::newRow("condition of a group")
        << Mute([](orv::QueryState& state) { state.where.rows[1].rows[1].muted = true; })
        << "Conditions"
        << " where at least one of these is true: the PRICE of ORDERS (O) is 2";
    QTest::newRow("condition for groups")
        << Mute([](orv::QueryState& state) { state.having.rows[0].muted = true; }) << "Groups"
        << ": the number of rows is greater than 1";
}

void TestDifferences::muting() {
    using Mute = std::function<void(orv::QueryState&)>;
    QFETCH(Mute, mute);
    QFETCH(QString, part);
    QFETCH(QString, words);
    const orv::QueryState state = m_desk.state(
        "select c.name, count(*) as n from customers c join orders o on c.cust_no = o.cust_no and "
        "c.since = o.ordered where c.city = 'A' and (o.price = 1 or o.price = 2) group by c.name "
        "having count(*) > 1 order by n");
    orv::QueryState muted = state;
    mute(muted);
    QCOMPARE(linesOf(orvquery::differences(state, muted)),
             QStringList(part + "|Muted now" + words));
    QCOMPARE(linesOf(orvquery::differences(muted, state)),
             QStringList(part + "|No longer muted" + words));
    QCOMPARE(linesOf(orvquery::differences(muted, muted)), QStringList());
}

void TestDifferences::mutingBesideOtherChanges() {
    const orv::QueryState before =
        m_desk.state("select name, city from customers where city = 'A'");
    orv::QueryState after = m_desk.state(
        "select name, city as town, since from customers where city = 'B' and rep_no is null");
    after.columns[1].muted = true;
    after.columns[2].muted = true;
    after.where.rows[0].muted = true;
    after.where.rows[1].muted = true;
    QCOMPARE(
        linesOf(orvquery::differences(before, after)),
        QStringList({"Result|Muted now: the CITY (called TOWN)",
                     "Result|Changed: the CITY; now the CITY (called TOWN) (muted)",
                     "Result|Added: the SINCE (muted)", "Conditions|Muted now: the CITY is 'B'",
                     "Conditions|Changed: the CITY is 'A'; now the CITY is 'B' (muted)",
                     "Conditions|Added: the REP_NO is not given (muted)"}));
    QCOMPARE(linesOf(orvquery::differences(after, before)).value(2),
             QStringLiteral("Result|Removed: the SINCE (muted)"));
}

// The muted one is paired with the muted one, wherever that stands.
void TestDifferences::mutedOneOfTwoAlike() {
    const orv::QueryState state =
        m_desk.state("select name from customers where city = 'A' or city = 'A'");
    orv::QueryState one = state;
    one.where.rows[0].muted = true;
    orv::QueryState other = state;
    other.where.rows[1].muted = true;
    QCOMPARE(linesOf(orvquery::differences(one, other)), QStringList());
    QCOMPARE(linesOf(orvquery::differences(state, other)).size(), 1);
}

void TestDifferences::noneWithItself() {
    StatementMaker maker(11);
    for (int round = 0; round < 100; ++round) {
        const QString statement = maker.statement();
        QVERIFY2(compared(statement, statement).empty(), qPrintable(statement));
        orv::QueryState muted = m_desk.state(statement);
        muteByChance(muted, maker);
        QVERIFY2(orvquery::differences(muted, muted).empty(), qPrintable(statement));
    }
}

void TestDifferences::reversedForReversedQueries() {
    StatementMaker maker(12);
    std::vector<orv::QueryState> states;
    QStringList statements;
    for (int round = 0; round < 40; ++round) {
        statements += maker.statement();
        states.push_back(m_desk.state(statements.back()));
        if (round % 2 == 1) muteByChance(states.back(), maker);
    }
    int found = 0;
    for (std::size_t one = 0; one < states.size(); ++one) {
        for (std::size_t other = 0; other < one; ++other) {
            const auto there = orvquery::differences(states[one], states[other]);
            std::vector<Difference> back = orvquery::differences(states[other], states[one]);
            std::transform(back.begin(), back.end(), back.begin(), reversed);
            QVERIFY2(sortedTexts(there) == sortedTexts(back),
                     qPrintable(statements[qsizetype(one)] + u'\n' + statements[qsizetype(other)]));
            found += there.empty() ? 0 : 1;
        }
    }
    QVERIFY(found > 700);  // of 780 pairs: chance hardly ever makes one query twice
}

void TestDifferences::orderWithinGroupsDoesNotCount() {
    StatementMaker maker(13);
    for (int round = 0; round < 100; ++round) {
        const QString statement = maker.statement();
        const orv::QueryState state = m_desk.state(statement);
        orv::QueryState shuffled = state;
        shuffle(shuffled.where, maker);
        QVERIFY2(orvquery::differences(state, shuffled).empty(), qPrintable(statement));
    }
}

void TestDifferences::placesDoNotCount() {
    const orv::QueryState state =
        m_desk.state("select c.name from customers c join orders o on o.cust_no = c.cust_no");
    orv::QueryState moved = state;
    for (orv::QueryState::Table& table : moved.tables) {
        table.bounds.translate(100, 50);
        table.collapsed = true;
    }
    moved.view = {10, 10};
    QVERIFY(orvquery::differences(state, moved).empty());
}

// Their places do not count, and the same one twice is not the same as once.
void TestDifferences::partsThatAreNotHeld() {
    const orv::Finding sorting = {30, 4, "city desc", "The rows are not sorted by it."};
    const orv::Finding moved = {3, 7, "CITY  desc", "The rows are not sorted by it."};
    const orv::Finding grouping = {40, 9, "group by x", "It is not held."};
    const auto lines = [](const orv::Findings& before, const orv::Findings& after) {
        return linesOf(differencesNotHeld(before, after));
    };
    QCOMPARE(lines({}, {}), QStringList());
    QCOMPARE(lines({sorting, grouping}, {grouping, moved}), QStringList());
    const QString lead = QStringLiteral(
        "Not compared|Not held by the diagram, and so not compared: in the %1 query ");
    const QString words = QStringLiteral("\u201ccity desc\u201d (The rows are not sorted by it.)");
    QCOMPARE(lines({}, {sorting}), QStringList(lead.arg("second") + words));
    QCOMPARE(lines({sorting, sorting}, {sorting}), QStringList(lead.arg("first") + words));
    orv::Finding other = sorting;
    other.what = "It is written in front.";
    QCOMPARE(lines({sorting}, {other}).size(), 2);
    const QString text = plainText(inWords(differencesNotHeld({}, {sorting})), 1000);
    QVERIFY2(!text.contains("There are none"), qPrintable(text));
}

void TestDifferences::statementOfWhichNothingIsLoaded() {
    const orv::Findings findings = {{0, 6, "select", "The statement has no columns."}};
    QVERIFY(!whyNotComparable(m_desk.state({}), findings).isEmpty());
    QCOMPARE(whyNotComparable(m_desk.state({}), {}), QString());
    QCOMPARE(whyNotComparable(m_desk.state("select name from customers"), findings), QString());
}

void TestDifferences::inWordsByPart() {
    QCOMPARE(plainText(inWords({})), QStringLiteral("Differences\n  There are none.\n"));
    QCOMPARE(plainText(inWords(compared("select name from customers",
                                        "select name, city from customers where rep_no = 1"))),
             QStringLiteral("Result\n  - Added: the CITY\n\nConditions\n  - Added: the REP_NO is "
                            "1\n"));
}

QTEST_MAIN(TestDifferences)
#include "tst_app_differences.moc"
