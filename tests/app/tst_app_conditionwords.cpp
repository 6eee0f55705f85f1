// SPDX-License-Identifier: MIT
#include "WordsTools.h"
#include "catalogue/ORVQDOperators.h"
#include "support/TestTools.h"
#include "words/ConditionWords.h"
#include "words/Explanation.h"

using namespace orvquery;
using apptest::linesOf;
using apptest::quoted;

namespace {

const QString nothingKnown =
    QStringLiteral("A comparison with a value that is not given is neither true nor false.");

orv::QueryState::Row condition(const QString& field, const QString& operation,
                               const QStringList& arguments) {
    orv::QueryState::Row row;
    row.field = field;
    row.operation = operation;
    row.arguments = arguments;
    return row;
}

orv::QueryState::Row group(const QString& name, std::vector<orv::QueryState::Row> rows) {
    orv::QueryState::Row row;
    row.group = name;
    row.rows = std::move(rows);
    return row;
}

}  // namespace

// What is said of the conditions of a query.
class TestConditionWords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void operators_data();
    void operators();
    void everyDefaultOperatorHasWords();
    void groups_data();
    void groups();
    void everyDefaultGroupHasWords();
    void unfilledConditions();
    void emptyGroups();
    void conditionsOfGroups();
    void conditionsOfGroupsWithoutGroups();
    void mutedConditions();
    void mutedGroups();

private:
    [[nodiscard]] QStringList said(const QString& title, const QString& statement) {
        return linesOf(explain(m_desk.state(statement)), title);
    }
    [[nodiscard]] QStringList saidOfRoot(const orv::QueryState::Row& root) {
        orv::QueryState state = m_desk.state(QStringLiteral("select name from customers"));
        state.where = root;
        return linesOf(explain(state), QStringLiteral("Conditions"));
    }

    apptest::StatementDesk m_desk;
};

void TestConditionWords::operators_data() {
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* condition, const QString& words) {
        QTest::newRow(condition) << QString::fromLatin1(condition) << words;
    };
    row("city = 'Oslo'", "the CITY is 'Oslo'");
    row("city <> 'Oslo'", "the CITY is something other than 'Oslo'");
    row("rep_no < 5", "the REP_NO is less than 5");
    row("rep_no > -5", "the REP_NO is greater than -5");
    row("rep_no <= 5", "the REP_NO is at most 5");
    row("rep_no >= 5", "the REP_NO is at least 5");
    row("since < '2024-01-01'", "the SINCE is earlier than '2024-01-01'");
    row("since > '2024-01-01'", "the SINCE is later than '2024-01-01'");
    row("since <= '2024-01-01'", "the SINCE is not later than '2024-01-01'");
    row("since >= '2024-01-01'", "the SINCE is not earlier than '2024-01-01'");
    row("city like 'O%'", "the CITY begins with 'O'");
    row("city like '%o'", "the CITY ends with 'o'");
    row("city like '%sl%'", "the CITY contains 'sl'");
    row("city like 'O_lo'", "the CITY fits the pattern 'O_lo'");
    row("city like 'O%o'", "the CITY fits the pattern 'O%o'");
    row("city like '%'", "the CITY is given (each value fits the pattern '%')");
    row("city like 'Oslo'", "the CITY is 'Oslo' as LIKE compares");
    row("city not like 'Oslo'", "the CITY is given and is not 'Oslo' as LIKE compares");
    row("city not like '%%'", "the CITY does not fit the pattern '%%', which is never true");
    row("city not like 'O%'", "the CITY is given and does not begin with 'O'");
    row("city not like 'O_'", "the CITY is given and does not fit the pattern 'O_'");
    row("city in ('Oslo')", "the CITY is 'Oslo'");
    row("city in ('Oslo', 'Rome')", "the CITY is one of ('Oslo', 'Rome')");
    row("city in (select x from y)",
        "the CITY is one of the values of " + quoted("SELECT X FROM Y"));
    row("city not in ('Oslo')", "the CITY is something other than 'Oslo'");
    row("city not in ('Oslo', 'Rome')", "the CITY is given and is none of ('Oslo', 'Rome')");
    row("city not in (select x from y)", "the CITY is given and is none of the values of " +
                                             quoted("SELECT X FROM Y") +
                                             " (which is never true once one of these is NULL)");
    // No value is equal to NULL, nor is it known to be another one.
    row("city not in ('Oslo', NULL)", "the CITY is compared by " + quoted("NOT IN") +
                                          " with ('Oslo', NULL), which is never true because of "
                                          "the NULL");
    row("city in ('Oslo', null)",
        "the CITY is one of ('Oslo', NULL), of which NULL matches nothing");
    row("city in (null)",
        "the CITY is compared with NULL by " + quoted("IN") + ", which is never true");
    row("city not in (null)",
        "the CITY is compared with NULL by " + quoted("NOT IN") + ", which is never true");
    row("city not in ('NULL', 'A')", "the CITY is given and is none of ('NULL', 'A')");
    row("rep_no between 1 and 5", "the REP_NO is from 1 to 5");
    row("rep_no not between 1 and 5", "the REP_NO is less than 1 or greater than 5");
    row("since not between '2024-01-01' and '2024-12-31'",
        "the SINCE is earlier than '2024-01-01' or later than '2024-12-31'");
    // Not the same as IS NULL, which the words must not suggest.
    row("city = null",
        "the CITY is compared with NULL by " + quoted("=") + ", which is never true");
    row("city <> null",
        "the CITY is compared with NULL by " + quoted("<>") + ", which is never true");
    row("city is null", "the CITY is not given");
    row("city is not null", "the CITY is given");
    row("rep_no = cust_no", "the REP_NO is the same as the CUST_NO");
    row("rep_no = :nr", "the REP_NO is the value given for :nr");
    row("rep_no > cust_no * 2", "the REP_NO is greater than " + quoted("CUST_NO * 2"));
    row(":nr is null", "no value is given for :nr");
    row(":nr is not null", "a value is given for :nr");
    row("not (city is null)", "the CITY is given");
    row("not (city is not null)", "the CITY is not given");
    row("name > 'M'", "the NAME comes after 'M'");
    row("name < 'M'", "the NAME comes before 'M'");
    row("name >= 'M'", "the NAME does not come before 'M'");
    row("name <= 'M'", "the NAME does not come after 'M'");
    row("name not between 'A' and 'C'", "the NAME comes before 'A' or after 'C'");
    row("exists (select 1 from orders)",
        "there is at least one row of " + quoted("SELECT 1 FROM ORDERS"));
    row("not exists (select 1 from orders)",
        "there is no row of " + quoted("SELECT 1 FROM ORDERS"));
    row("city is true", "the CITY is true");
    row("city is not true", "the CITY is false or not given");
    row("city is false", "the CITY is false");
    row("city is not false", "the CITY is true or not given");
    row("city is unknown", "the CITY is neither true nor false");
    row("not (city is true)", "the CITY is false or not given");
    row("city = true", "the CITY is TRUE");
    row("city <> false", "the CITY is something other than FALSE");
    row("city starting with 'O'", "the CITY begins with 'O'");
    row("city not starting with 'O'", "the CITY is given and does not begin with 'O'");
    row("city containing 'o'", "the CITY contains 'o' in capital or small letters");
    row("city starting with 'O' || 'x'", "the CITY begins with " + quoted("'O' || 'x'"));
    row("city = 'it''s'", "the CITY is 'it''s'");
}

void TestConditionWords::operators() {
    QFETCH(QString, condition);
    QFETCH(QString, words);
    QCOMPARE(said("Conditions", "select name from customers where " + condition),
             QStringList("Only rows count where " + words + u'.'));
}

void TestConditionWords::everyDefaultOperatorHasWords() {
    TOperatorList list;
    orv::fillOperators(list);
    const orv::QueryState state = m_desk.state("select name from customers");
    const QueryNames names(state);
    const ConditionWords words(names);
    for (int index = 0; index < list.Count(); ++index) {
        const TorvQDOperator& entry = *list.Items(index);
        QStringList arguments;
        for (int number = 1; number <= entry.Count; ++number) arguments += QString::number(number);
        const QString text = words.condition(condition("CUST_NO", entry.Name, arguments));
        QVERIFY2(text.startsWith("the CUST_NO ") && !text.contains("relation"), qPrintable(text));
    }
    QCOMPARE(words.condition(condition("NAME", "SOUNDS LIKE", {"'x'"})),
             "the NAME stands in the relation " + quoted("SOUNDS LIKE") + " to 'x'");
}

void TestConditionWords::groups_data() {
    QTest::addColumn<QString>("where");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* where, const QStringList& lines) {
        QTest::newRow(where) << QString::fromLatin1(where) << lines;
    };
    row("city = 'A' and rep_no = 1",
        {"Only rows count where the CITY is 'A' and the REP_NO is 1."});
    row("city = 'A' or rep_no = 1", {"Only rows count where the CITY is 'A' or the REP_NO is 1."});
    row("city = 'A' and rep_no = 1 and name = 'N' and since is null",
        {"Only rows count where all of these are true:", "- the CITY is 'A'", "- the REP_NO is 1",
         "- the NAME is 'N'", "- the SINCE is not given"});
    row("city = 'A' and (rep_no = 1 or rep_no = 2)",
        {"Only rows count where all of these are true:", "- the CITY is 'A'",
         "- the REP_NO is 1 or the REP_NO is 2"});
    row("city = 'A' or rep_no = 1 and rep_no = 2",
        {"Only rows count where at least one of these is true:", "- the CITY is 'A'",
         "- the REP_NO is 1 and the REP_NO is 2"});
    row("city = 'A' or (rep_no = 1 and (rep_no = 2 or rep_no = 3))",
        {"Only rows count where at least one of these is true:", "- the CITY is 'A'",
         "- all of these are true:", "-- the REP_NO is 1",
         "-- the REP_NO is 2 or the REP_NO is 3"});
    row("not (city = 'A')",
        {"Only rows count where it is false that the CITY is 'A'.", nothingKnown});
    row("not (city = 'A' or rep_no = 1)", {"Only rows count where each of these is false:",
                                           "- the CITY is 'A'", "- the REP_NO is 1", nothingKnown});
    row("not (city = 'A' and rep_no = 1)",
        {"Only rows count where at least one of these is false:", "- the CITY is 'A'",
         "- the REP_NO is 1", nothingKnown});
    row("name = 'N' and not (city = 'A' and (rep_no = 1 or rep_no = 2))",
        {"Only rows count where all of these are true:", "- the NAME is 'N'",
         "- at least one of these is false:", "-- the CITY is 'A'",
         "-- the REP_NO is 1 or the REP_NO is 2", nothingKnown});
    // Such conditions are true or false for each row.
    row("not (city is null or exists (select 1 from orders) or name is not null)",
        {"Only rows count where each of these is false:", "- the CITY is not given",
         "- there is at least one row of " + quoted("SELECT 1 FROM ORDERS"),
         "- the NAME is given"});
    row("not (city is null or name = 'N')",
        {"Only rows count where each of these is false:", "- the CITY is not given",
         "- the NAME is 'N'", nothingKnown});
    row("city = null or city <> ''",
        {"Only rows count where at least one of these is true:",
         "- the CITY is compared with NULL by " + quoted("=") + ", which is never true",
         "- the CITY is something other than ''"});
    row("city in ('A', 'B') and name = 'C, D'",
        {"Only rows count where the CITY is one of ('A', 'B') and the NAME is 'C, D'."});
    // "or" inside a comparison must not seem to belong to the group.
    row("rep_no not between 1 and 5 and city = 'A'",
        {"Only rows count where all of these are true:",
         "- the REP_NO is less than 1 or greater than 5", "- the CITY is 'A'"});
}

void TestConditionWords::groups() {
    QFETCH(QString, where);
    QFETCH(QStringList, lines);
    QCOMPARE(said("Conditions", "select name from customers where " + where), lines);
}

// What the names of groups stand for is what their words in the statement do.
void TestConditionWords::everyDefaultGroupHasWords() {
    TGroupOperators groups;
    orv::fillGroupOperators(groups, nullptr);
    QCOMPARE(groups.size(), std::size_t(4));
    for (const TorvQDGroupFunc& entry : groups) {
        const bool isNegated = entry.Prefix.trimmed() == u"not";
        const bool isAnd = entry.Connector.trimmed() == u"and";
        // Not all hold when one is false; not any holds when each is false.
        const QString expected =
            isNegated ? (isAnd ? "at least one of these is false" : "each of these is false")
                      : (isAnd ? "all of these are true" : "at least one of these is true");
        QCOMPARE(groupWords(entry.Caption), expected);
    }
    QCOMPARE(saidOfRoot(group(
                 "Most", {condition("NAME", "IS NULL", {}), condition("CITY", "IS NULL", {})})),
             QStringList({"Only rows count where " + quoted("Most") + " of these holds:",
                          "- the NAME is not given", "- the CITY is not given"}));
}

void TestConditionWords::unfilledConditions() {
    const QString incomplete = "The statement is not complete before all conditions are filled in.";
    QCOMPARE(saidOfRoot(group("All", {condition("CITY", "=", {""})})),
             QStringList({"Only rows count where the CITY is (not filled in).", incomplete}));
    QCOMPARE(saidOfRoot(group("All", {condition("", "=", {"1"})})),
             QStringList({"Only rows count where something not chosen yet is 1.", incomplete}));
    QCOMPARE(
        saidOfRoot(group("All", {condition("CITY", "IN", {""})})),
        QStringList({"Only rows count where the CITY is one of (not filled in).", incomplete}));
}

void TestConditionWords::emptyGroups() {
    QCOMPARE(saidOfRoot(group("Any", {})), QStringList());
    QCOMPARE(saidOfRoot(group("All", {condition("CITY", "IS NULL", {}), group("Any", {})})),
             QStringList({"Only rows count where all of these are true:", "- the CITY is not given",
                          "- (a group that has no conditions yet)",
                          "The statement is not complete before all conditions are filled in."}));
}

void TestConditionWords::conditionsOfGroups() {
    QCOMPARE(
        said("Groups",
             "select status, sum(price) as s from orders group by status having "
             "sum(price) > 100 and max(ordered) < '2024-01-01'"),
        QStringList("Of these groups only those are kept where the sum of the PRICE is greater "
                    "than 100 and the latest ORDERED is earlier than '2024-01-01'."));
    QCOMPARE(
        said("Groups",
             "select status, count(*) as n from orders group by status having "
             "min(price) < avg(price)"),
        QStringList("Of these groups only those are kept where the smallest PRICE is less than "
                    "the average of the PRICE."));
}

void TestConditionWords::conditionsOfGroupsWithoutGroups() {
    orv::QueryState state = m_desk.state("select status from orders");
    state.having = group("All", {condition("STATUS", "IS NULL", {})});
    QCOMPARE(linesOf(explain(state), "Groups"),
             QStringList("The conditions for groups are not part of the statement, because it does "
                         "not group rows."));
}

void TestConditionWords::mutedConditions() {
    orv::QueryState state = m_desk.state(
        "select name, count(*) as n from customers where city = 'A' and (rep_no = 1 or rep_no = 2) "
        "group by name having count(*) > 1 and count(*) < 9");
    state.where.rows[0].muted = true;
    state.where.rows[1].rows[0].muted = true;
    state.having.rows[1].muted = true;
    const Explanation explanation = explain(state);
    QCOMPARE(linesOf(explanation, "Conditions"),
             QStringList("Only rows count where the REP_NO is 2."));
    QCOMPARE(linesOf(explanation, "Groups"),
             QStringList("Of these groups only those are kept where the number of rows is greater "
                         "than 1."));
    QCOMPARE(linesOf(explanation, "Muted"),
             QStringList({"Muted, and not asked for:", "- condition: the CITY is 'A'",
                          "- condition: the REP_NO is 1",
                          "- condition for groups: the number of rows is less than 9"}));
}

void TestConditionWords::mutedGroups() {
    orv::QueryState state =
        m_desk.state("select name from customers where city = 'A' and (rep_no = 1 or rep_no = 2)");
    state.where.rows[1].rows[0].muted = true;
    state.where.rows[1].muted = true;
    QCOMPARE(linesOf(explain(state), "Conditions"),
             QStringList("Only rows count where the CITY is 'A'."));
    QCOMPARE(linesOf(explain(state), "Muted"),
             QStringList({"Muted, and not asked for:",
                          "- condition: at least one of these is true: (the REP_NO is 1 (muted); "
                          "the REP_NO is 2)"}));
    state.where.rows[1].muted = false;
    state.where.rows[1].rows[1].muted = true;
    QCOMPARE(linesOf(explain(state), "Conditions"),
             QStringList("Only rows count where the CITY is 'A'."));
    state.where.rows[0].muted = true;
    QCOMPARE(linesOf(explain(state), "Conditions"), QStringList());
}

QTEST_MAIN(TestConditionWords)
#include "tst_app_conditionwords.moc"
