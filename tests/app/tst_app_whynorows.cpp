// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "criteria/ORVQDWherePanel.h"
#include "database/Problem.h"
#include "database/SqliteDatabase.h"
#include "norows/RowCounter.h"
#include "norows/Verdict.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "selection/ORVQDSelectOrder.h"
#include "tables/Host.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QTemporaryDir>

using namespace orvquery;

namespace {

constexpr qint64 mostRows = 3;

QString quoted(const QString& text) {
    return QChar(0x201c) + text + QChar(0x201d);
}

}  // namespace

// What keeps the rows of a query away, without a window.
class TestWhyNoRows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { m_builder.reset(); }

    void conditionAlone_data();
    void conditionAlone();
    void conditionsThatExcludeEachOther();
    void twoConditionsTogether();
    void conditionsThatCameBackAreTold();
    void groupOfAlternatives();
    void conditionWithinAGroupIsFound();
    void negatedGroup();
    void negationOfAllIsNamed();
    void rootOfAlternatives();
    void conditionsOfGroupsAreTriedWhereTheyAreWritten();
    void subqueries();
    void mutedPartsAreNotTried();
    void parametersAreKept();
    void joinWithoutMatches();
    void joinWithoutMatchesAndConditions();
    void lastJoinOfAChainIsBlamed();
    void firstJoinOfAChainIsBlamed();
    void joinIsTurnedAroundWhereItIsWrittenSo();
    void conditionOnAnOuterJoin();
    void oneOfTwoLinks();
    void linkOfACircle();
    void emptyTable();
    void emptyTableOfAProduct();
    void endOfTheStatement();
    void queryWithRows();
    void aggregateHasOneRowAnyway();
    void countingEndsAtABound();
    void failureOfOneTrial();
    void failureOfTheQuery();
    void failureOfAQueryWithoutRows();
    void failureOfEverything();
    void stoppedInquiry();
    void sortingIsLeftOut();
    void sortingStaysBeforeAnEnd();
    void sameStatementRunsOnce();
    void manyConditionsAreBounded();
    void shownControlIsLeftAlone();
    void partsComeBackAfterEachTrial();
    void joinAlone();
    void classicRules();
    void sampleDatabase();

private:
    [[nodiscard]] RowCount run(const QString& statement);
    void load(const QString& statement) { m_builder->LoadSQL(m_source->forLoading(statement)); }
    /// Asks why the loaded query has no rows.
    void ask();
    void ask(const QString& statement) { load(statement), ask(); }
    [[nodiscard]] QString first() const { return verdict(*m_inquiry).value(0); }
    /// The parts with their rows: "A = 1: 5".
    [[nodiscard]] QStringList counts() const;
    [[nodiscard]] QString remarkOf(const QString& text) const;
    TorvQDWhereRow& row(const QList<int>& path) const {
        TorvQDWhereRow* row = m_builder->WherePanel->rootRow();
        for (const int index : path) row = row->SubRows->Row(index);
        return *row;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<SqliteDatabase> m_source;
    std::unique_ptr<TorvQueryBuilder> m_builder;
    std::unique_ptr<Inquiry> m_inquiry;
    PlaceholderValues m_values;
    QStringList m_statements;
};

void TestWhyNoRows::initTestCase() {
    orvtest::failOnAnyWarning();
    const QString path = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(apptest::runStatements(
        path,
        {"CREATE TABLE customers (id INTEGER PRIMARY KEY, name TEXT, city TEXT)",
         ("CREATE TABLE orders (id INTEGER PRIMARY KEY, customer INTEGER, status TEXT, "
          "total INTEGER)"),
         "CREATE TABLE visits (id INTEGER PRIMARY KEY, customer INTEGER, rep INTEGER)",
         "CREATE TABLE reps (id INTEGER PRIMARY KEY, name TEXT)",
         "CREATE TABLE hollow (id INTEGER PRIMARY KEY, customer INTEGER)",
         "INSERT INTO customers VALUES (1, 'Ann', 'Oslo'), (2, 'Bob', 'Rome')",
         "INSERT INTO orders VALUES (1, 1, 'open', 10), (2, 2, 'paid', 20)",
         // Nobody has customer 7, and nobody is rep 8.
         "INSERT INTO visits VALUES (1, 1, 8), (2, 7, 8)", "INSERT INTO reps VALUES (5, 'Eve')"}));
    m_source = std::make_unique<SqliteDatabase>(path);
}

void TestWhyNoRows::init() {
    m_builder = std::make_unique<TorvQueryBuilder>();
    m_builder->setKeepMeaning(true);
    connectTables(*m_builder, *m_source);
    m_values.clear();
}

RowCount TestWhyNoRows::run(const QString& statement) {
    m_statements += statement.simplified();
    Connection connection(m_source->settings());
    connection.openOrRaise();
    RowCounter counter(mostRows);
    const QString problem =
        problemOf([&] { runQuery(connection.database(), statement, counter, m_values); });
    return {counter.rows(), counter.isFull(), problem};
}

void TestWhyNoRows::ask() {
    m_statements.clear();
    m_inquiry = std::make_unique<Inquiry>(std::make_unique<TrialQuery>(*m_builder));
    while (const std::optional<QString> statement = m_inquiry->next()) {
        m_inquiry->take(run(*statement));
    }
    QCOMPARE(m_inquiry->stage(), Inquiry::Stage::Ended);
}

QStringList TestWhyNoRows::counts() const {
    QStringList lines;
    for (std::size_t index = 0; index < m_inquiry->parts().size(); ++index) {
        const std::optional<RowCount>& count = m_inquiry->without(int(index));
        lines += m_inquiry->parts()[index].text + QStringLiteral(": ") +
                 (count ? countText(*count) : QStringLiteral("-"));
    }
    return lines;
}

QString TestWhyNoRows::remarkOf(const QString& text) const {
    for (std::size_t index = 0; index < m_inquiry->parts().size(); ++index) {
        if (m_inquiry->parts()[index].text == text) return remark(*m_inquiry, int(index));
    }
    return QStringLiteral("no such part");
}

// --- conditions

void TestWhyNoRows::conditionAlone_data() {
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("text");
    QTest::newRow("comparison") << "o.status = 'lost'"
                                << "O.STATUS = 'lost'";
    QTest::newRow("null") << "o.status is null"
                          << "O.STATUS IS NULL";
    QTest::newRow("range") << "o.total between 11 and 19"
                           << "O.TOTAL BETWEEN 11 and 19";
}

void TestWhyNoRows::conditionAlone() {
    QFETCH(QString, condition);
    QFETCH(QString, text);
    ask("select o.id from orders o where o.id > 0 and " + condition);
    QCOMPARE(counts(), QStringList({"O.ID > 0: 0", text + ": 2"}));
    QCOMPARE(verdict(*m_inquiry), QStringList("The condition " + quoted(text) +
                                              " alone keeps every row away: without it there are "
                                              "2 rows."));
    QCOMPARE(remarkOf(text), QStringLiteral("Keeps every row away"));
    QCOMPARE(remarkOf("O.ID > 0"), QString());
}

void TestWhyNoRows::conditionsThatExcludeEachOther() {
    ask("select o.id from orders o where o.total > 5 and o.status = 'open' and o.status = 'paid'");
    QCOMPARE(counts(),
             QStringList({"O.TOTAL > 5: 0", "O.STATUS = 'open': 1", "O.STATUS = 'paid': 1"}));
    QCOMPARE(first(), "The condition " + quoted("O.STATUS = 'open'") + " and the condition " +
                          quoted("O.STATUS = 'paid'") +
                          " exclude each other: without any one of them there are rows.");
    QCOMPARE(remarkOf("O.STATUS = 'open'"), QStringLiteral("Without it alone there are rows"));
}

void TestWhyNoRows::twoConditionsTogether() {
    ask("select o.id from orders o where o.status = 'lost' and o.total = 99");
    QCOMPARE(counts(), QStringList({"O.STATUS = 'lost': 0", "O.TOTAL = 99: 0"}));
    QCOMPARE(
        verdict(*m_inquiry),
        QStringList("No single condition does it: the condition " + quoted("O.STATUS = 'lost'") +
                    " and the condition " + quoted("O.TOTAL = 99") +
                    " together keep every row away; without both there are 2 rows."));
    QCOMPARE(remarkOf("O.TOTAL = 99"), QStringLiteral("Step by step: no row left"));
    ask("select o.id from orders o where o.status = 'lost' and o.total = 99 and o.id = 7");
    QVERIFY2(first().endsWith("without all of these there are 2 rows."), qPrintable(first()));
}

void TestWhyNoRows::conditionsThatCameBackAreTold() {
    ask("select o.id from orders o "
        "where o.status = 'lost' and o.id = 1 and o.total = 99 and o.total > 5");
    QCOMPARE(m_inquiry->culpritsTogether(), (std::vector<int>{0, 2}));
    QCOMPARE(*m_inquiry->withoutTogether(), RowCount{1});
    QCOMPARE(remarkOf("O.ID = 1"), QStringLiteral("Step by step: 1 row left"));
    QCOMPARE(remarkOf("O.TOTAL > 5"), QStringLiteral("Step by step: 1 row left"));
    QVERIFY(first().endsWith("together keep every row away; without both there is 1 row."));
}

void TestWhyNoRows::groupOfAlternatives() {
    ask("select o.id from orders o where o.id > 0 and (o.status = 'lost' or o.status = 'sold')");
    QCOMPARE(counts(), QStringList({"O.ID > 0: 0", "(O.STATUS = 'lost') or (O.STATUS = 'sold'): 2",
                                    "O.STATUS = 'lost': 0", "O.STATUS = 'sold': 0"}));
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{1});
    QCOMPARE(m_inquiry->parts()[2].parent, 1);
}

void TestWhyNoRows::conditionWithinAGroupIsFound() {
    ask("select o.id from orders o "
        "where (o.id = 1 and (o.status = 'open' and o.total = 99)) or o.id = 7");
    // The group of all, and the condition in it: the inner one is what matters.
    QCOMPARE(m_inquiry->culprits().size(), 1U);
    QCOMPARE(m_inquiry->parts()[std::size_t(m_inquiry->culprits()[0])].text,
             QStringLiteral("O.TOTAL = 99"));
}

void TestWhyNoRows::negatedGroup() {
    ask("select o.id from orders o where o.total > 5 and not (o.id > 0 and o.total > 0)");
    const QStringList lines = counts();
    QVERIFY2(lines.value(1).startsWith("not") && lines.value(1).endsWith(": 2"),
             qPrintable(lines.value(1)));
    // Without one of them the other is false for more rows, but for none of these.
    QCOMPARE(lines.mid(2), QStringList({"O.ID > 0: 0", "O.TOTAL > 0: 0"}));
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{1});
}

void TestWhyNoRows::negationOfAllIsNamed() {
    ask("select o.id from orders o where not (o.id > 0)");
    QCOMPARE(m_inquiry->parts().size(), 1U);
    QVERIFY2(first().startsWith("The condition " + QString(QChar(0x201c)) + "not"),
             qPrintable(first()));
    QCOMPARE(m_inquiry->parts()[0].ownText, QStringLiteral("O.ID > 0"));
}

void TestWhyNoRows::rootOfAlternatives() {
    ask("select o.id from orders o where o.id = 7 or o.id = 8");
    QCOMPARE(counts().filter(": 0").size(), 2);
    QVERIFY2(first().endsWith("together keep every row away; without both there are 2 rows."),
             qPrintable(first()));
}

void TestWhyNoRows::conditionsOfGroupsAreTriedWhereTheyAreWritten() {
    ask("select o.status, count(o.id) from orders o where o.id > 0 group by o.status "
        "having count(o.id) > 1");
    QCOMPARE(counts(), QStringList({"O.ID > 0: 0", "COUNT(O.ID) > 1: 2"}));
    QCOMPARE(first(), "The condition on groups " + quoted("COUNT(O.ID) > 1") +
                          " alone keeps every row away: without it there are 2 rows.");
    // Without the aggregate nothing is grouped, and the condition is not written.
    load(
        "select o.status, count(o.id) from orders o where o.id > 7 group by o.status "
        "having count(o.id) > 1");
    m_builder->SelectPanel->grid()->SetMuted(2, true);
    ask();
    QCOMPARE(counts(), QStringList("O.ID > 7: 2"));
}

void TestWhyNoRows::subqueries() {
    ask("select o.id from orders o where o.id > 0 and "
        "not exists (select 1 from customers c where c.id = o.customer)");
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{1});
    QVERIFY2(first().contains("EXISTS (SELECT 1 FROM CUSTOMERS C"), qPrintable(first()));
    ask("select o.id from orders o where o.customer in (select n.customer from hollow n)");
    QVERIFY2(first().endsWith("without it there are 2 rows."), qPrintable(first()));
}

void TestWhyNoRows::mutedPartsAreNotTried() {
    load("select o.id from orders o where o.status = 'lost' and (o.id = 7 or o.id = 1)");
    row({0}).SetMuted(true);
    row({1, 1}).SetMuted(true);
    ask();
    QCOMPARE(counts(), QStringList("(O.ID = 7): 2"));
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{0});
    row({1, 0}).SetMuted(true);
    ask();
    QCOMPARE(first(), QStringLiteral("The query has 2 rows: nothing keeps all of them away."));
    QVERIFY(m_inquiry->parts().empty());
}

void TestWhyNoRows::parametersAreKept() {
    m_values = {{"STATUS", "lost"}, {"LOW", 5}};
    ask("select o.id from orders o where o.status = :status and o.total > :low");
    QCOMPARE(counts(), QStringList({"O.STATUS = :status: 2", "O.TOTAL > :low: 0"}));
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{0});
}

// --- joins

void TestWhyNoRows::joinWithoutMatches() {
    ask("select v.id from visits v join reps r on v.rep = r.id");
    QCOMPARE(verdict(*m_inquiry),
             QStringList({("No single condition does it: the tables themselves have no matching "
                           "rows."),
                          "The rows vanish at the join of REPS (R)."}));
    QCOMPARE(remarkOf("REPS (R): V.REP = R.ID"),
             QStringLiteral("Without conditions: no row from here on"));
    for (const QString& statement : m_statements) {
        QVERIFY2(!statement.contains("VISITS V,"), qPrintable(statement));
    }
}

// The conditions have nothing to do with it, so that they are not tried one by one.
void TestWhyNoRows::joinWithoutMatchesAndConditions() {
    ask("select v.id from visits v join reps r on v.rep = r.id where v.id = 1 and r.name = 'Eve'");
    QCOMPARE(m_inquiry->bare()->rows, 0);
    QVERIFY(m_inquiry->losingJoin() >= 0);
    QVERIFY(!m_inquiry->without(0) && m_statements.size() <= 3);
}

void TestWhyNoRows::lastJoinOfAChainIsBlamed() {
    ask("select c.id from customers c join visits v on v.customer = c.id "
        "join reps r on v.rep = r.id");
    QCOMPARE(m_inquiry->losingJoin(), 1);
    QCOMPARE(remarkOf("VISITS (V): C.ID = V.CUSTOMER"),
             QStringLiteral("Without conditions: 1 row up to here"));
}

// With a condition that the join meets otherwise.
void TestWhyNoRows::firstJoinOfAChainIsBlamed() {
    ask("select c.id from customers c join visits v on v.customer = c.id "
        "join orders o on o.customer = c.id where c.city = 'Rome'");
    QCOMPARE(counts(), QStringList({"C.CITY = 'Rome': 1", "VISITS (V): C.ID = V.CUSTOMER: 1",
                                    "ORDERS (O): C.ID = O.CUSTOMER: 0"}));
    QCOMPARE(first(), "The condition " + quoted("C.CITY = 'Rome'") +
                          " and the join of VISITS (V) exclude each other: without any one of them "
                          "there are rows.");
    QCOMPARE(remarkOf("ORDERS (O): C.ID = O.CUSTOMER"), QStringLiteral("Counted as an outer join"));
}

void TestWhyNoRows::joinIsTurnedAroundWhereItIsWrittenSo() {
    ask("select v.id from visits v join customers c on c.id = v.customer where v.id = 2");
    QVERIFY(m_inquiry->culprits() == (std::vector<int>{0, 1}));
    QCOMPARE(m_statements.filter("LEFT OUTER JOIN").size(), 1);
    QCOMPARE(m_statements.filter("RIGHT OUTER JOIN").size(), 0);
}

void TestWhyNoRows::conditionOnAnOuterJoin() {
    ask("select o.id from orders o left join customers c on o.customer = c.id "
        "where c.id is null");
    QCOMPARE(counts(), QStringList({"C.ID IS NULL: 2", "CUSTOMERS (C): O.CUSTOMER = C.ID: -"}));
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{0});
}

void TestWhyNoRows::oneOfTwoLinks() {
    ask("select o.id from orders o join customers c on o.customer = c.id and o.status = c.city "
        "where o.id > 0");
    QCOMPARE(m_inquiry->losingJoin(), 1);
    const std::vector<QueryPart>& parts = m_inquiry->parts();
    QCOMPARE(parts.size(), 4U);
    QCOMPARE(parts[2].text, QStringLiteral("O.CUSTOMER = C.ID"));
    QCOMPARE(parts[3].parent, 1);
    QVERIFY(parts[3].canBeMuted() && !parts[1].canBeMuted());
}

void TestWhyNoRows::linkOfACircle() {
    load(
        "select o.id from orders o join customers c on o.customer = c.id "
        "join visits v on v.customer = c.id where c.id = 2");
    m_builder->WorkArea->AddLink(m_builder->WorkArea->findTable("V"),
                                 m_builder->WorkArea->findTable("O"),
                                 m_builder->WorkArea->findTable("V")->GetFieldItem("CUSTOMER"),
                                 m_builder->WorkArea->findTable("O")->GetFieldItem("CUSTOMER"));
    ask();
    const std::vector<QueryPart>& parts = m_inquiry->parts();
    QCOMPARE(std::count_if(parts.begin(), parts.end(),
                           [](const auto& part) { return part.kind == QueryPart::Kind::Link; }),
             3);
    for (const QString& statement : m_statements) {
        QVERIFY2(!statement.section("FROM", 1).contains(u','), qPrintable(statement));
    }
}

void TestWhyNoRows::emptyTable() {
    ask("select n.id from hollow n left join customers c on c.id = n.customer where n.id = 1");
    QCOMPARE(verdict(*m_inquiry), QStringList("The table HOLLOW (N) has no rows."));
    ask("select c.id from customers c join hollow n on c.id = n.customer");
    QCOMPARE(verdict(*m_inquiry).value(1), QStringLiteral("The rows vanish at the join of HOLLOW "
                                                          "(N)."));
}

void TestWhyNoRows::emptyTableOfAProduct() {
    ask("select n.id from hollow n, customers c");
    QCOMPARE(verdict(*m_inquiry),
             QStringList("One of the tables HOLLOW (N) and CUSTOMERS (C) has no rows."));
}

// --- the rest of the statement

void TestWhyNoRows::endOfTheStatement() {
    ask("select o.id from orders o where o.id > 0 limit 0");
    QCOMPARE(first(), "The end of the statement, " + quoted("limit 0") +
                          ", alone keeps every row away: without it there are 2 rows.");
    QVERIFY(!m_inquiry->parts()[1].canBeMuted());
}

void TestWhyNoRows::queryWithRows() {
    ask("select o.id from orders o where o.id = 1");
    QCOMPARE(verdict(*m_inquiry),
             QStringList("The query has 1 row: nothing keeps all of them away."));
    QCOMPARE(m_statements.size(), 1);
}

void TestWhyNoRows::aggregateHasOneRowAnyway() {
    ask("select count(o.id) from orders o where o.id = 7");
    QCOMPARE(verdict(*m_inquiry).value(1),
             QStringLiteral("An aggregate without groups always gives one row, also when no row of "
                            "the tables meets the conditions."));
}

void TestWhyNoRows::countingEndsAtABound() {
    ask("select o.id from orders o, customers c, visits v where o.id = 7");
    QCOMPARE(*m_inquiry->without(0), (RowCount{3, true}));
    QVERIFY2(first().endsWith("without it there are 3 rows or more."), qPrintable(first()));
    QCOMPARE(countText(*m_inquiry->without(0)), QStringLiteral("3+"));
}

// --- what goes wrong

void TestWhyNoRows::failureOfOneTrial() {
    load("select o.id from orders o where o.id = 7 and o.status = 'open' and o.total = 99");
    m_inquiry = std::make_unique<Inquiry>(std::make_unique<TrialQuery>(*m_builder));
    while (const std::optional<QString> statement = m_inquiry->next()) {
        const bool fails = !statement->contains("99") && statement->contains("open");
        m_inquiry->take(fails ? RowCount{0, false, "The database says: no."} : run(*statement));
    }
    QCOMPARE(remarkOf("O.TOTAL = 99"), QStringLiteral("The database says: no."));
    QCOMPARE(verdict(*m_inquiry).value(1),
             QStringLiteral("2 trials could not be run; the list says why."));
    QVERIFY(m_inquiry->without(1)->isKnown());
}

void TestWhyNoRows::failureOfTheQuery() {
    ask("select o.id from orders o where o.id > 0 and nofunc(o.id) = 1");
    QVERIFY2(first().startsWith("The query as it is cannot be run: The database says: "),
             qPrintable(first()));
    QVERIFY2(verdict(*m_inquiry).value(1).endsWith("it runs, and there are 2 rows."),
             qPrintable(verdict(*m_inquiry).value(1)));
}

// Which other conditions together leave no row is of no interest then.
void TestWhyNoRows::failureOfAQueryWithoutRows() {
    ask("select o.id from orders o where o.id = 7 and o.total = 99 and nofunc(o.id) = 1");
    QVERIFY2(verdict(*m_inquiry).value(1).endsWith("it runs, and there are no rows."),
             qPrintable(verdict(*m_inquiry).value(1)));
    QVERIFY(m_inquiry->culpritsTogether().empty());
}

void TestWhyNoRows::failureOfEverything() {
    ask("select nofunc(o.id) from orders o where o.id > 0");
    QCOMPARE(verdict(*m_inquiry).size(), 2);
    QCOMPARE(m_inquiry->failures(), 2);
}

void TestWhyNoRows::stoppedInquiry() {
    load("select o.id from orders o where o.id = 7 and o.total = 99");
    m_inquiry = std::make_unique<Inquiry>(std::make_unique<TrialQuery>(*m_builder));
    QVERIFY(verdict(*m_inquiry).isEmpty());
    m_inquiry->take(run(*m_inquiry->next()));
    m_inquiry->stop();
    QVERIFY(!m_inquiry->next());
    m_inquiry->take({5});
    QCOMPARE(verdict(*m_inquiry),
             QStringList({"The query has no rows.", "Stopped before everything was tried."}));
}

// --- how trials are written

void TestWhyNoRows::sortingIsLeftOut() {
    ask("select o.id from orders o where o.id = 7 order by o.id desc");
    QCOMPARE(m_statements.filter("ORDER BY").size(), 1);
    QVERIFY(m_statements.front().contains("ORDER BY"));
}

void TestWhyNoRows::sortingStaysBeforeAnEnd() {
    ask("select o.id from orders o where o.id = 7 order by o.id desc limit 5");
    QCOMPARE(m_statements.filter("ORDER BY").size(), m_statements.size());
}

void TestWhyNoRows::sameStatementRunsOnce() {
    ask("select o.id from orders o where o.id = 7");
    // Without its only condition is without all of them.
    QCOMPARE(m_statements.size(), 2);
    QVERIFY(m_statements[0] != m_statements[1]);
}

void TestWhyNoRows::manyConditionsAreBounded() {
    QStringList parts;
    for (int number = 0; number < 150; ++number) parts += QString("o.id = %1").arg(number + 7);
    ask("select o.id from orders o where o.id > 0 and (" + parts.join(" or ") + ')');
    QCOMPARE(m_inquiry->parts().size(), 100U);
    QCOMPARE(m_inquiry->query().passedOver(), 52);
    QCOMPARE(verdict(*m_inquiry).back(),
             QStringLiteral("52 conditions within groups were not tried by themselves."));
    QCOMPARE(m_inquiry->culprits(), std::vector<int>{1});
}

void TestWhyNoRows::shownControlIsLeftAlone() {
    load(
        "select o.id from orders o join customers c on o.customer = c.id "
        "where o.id = 7 and (o.total = 99 or c.city = 'X') order by o.id limit 5");
    const QByteArray before = m_builder->SaveState();
    int changes = 0;
    connect(m_builder.get(), &TorvQueryBuilder::StatementChanged, this, [&] { ++changes; });
    ask();
    QCOMPARE(m_builder->SaveState(), before);
    QCOMPARE(changes, 0);
}

void TestWhyNoRows::partsComeBackAfterEachTrial() {
    load(
        "select o.status, count(o.id) from orders o join customers c on o.customer = c.id and "
        "o.status = c.city left join visits v on v.customer = c.id where o.id = 7 and "
        "(o.total = 99 or not (c.city = 'X' and c.id > 1)) group by o.status "
        "having count(o.id) > 1 limit 5");
    TrialQuery query(*m_builder);
    const QString base = query.without({});
    QCOMPARE(query.whole(), base);
    QVERIFY(query.parts().size() > 8);
    QStringList trials;
    for (std::size_t index = 0; index < query.parts().size(); ++index) {
        const QueryPart& part = query.parts()[index];
        trials += query.without({int(index)});
        // A left join keeps such rows already.
        QCOMPARE(trials.back() == base, part.kind == QueryPart::Kind::Join && !part.isInner);
        trials += query.without({int(index)}, TrialQuery::Conditions::Dropped);
        QVERIFY2(!trials.back().contains("WHERE") && !trials.back().contains("limit"),
                 qPrintable(trials.back()));
        QCOMPARE(query.without({}), base);
    }
}

// Either condition leaves the one visit of a customer who is not there.
void TestWhyNoRows::joinAlone() {
    ask("select v.id from visits v join customers c on v.customer = c.id "
        "where v.id = 2 and v.customer = 7");
    QCOMPARE(counts(), QStringList({"V.ID = 2: 0", "V.CUSTOMER = 7: 0",
                                    "CUSTOMERS (C): V.CUSTOMER = C.ID: 1"}));
    QCOMPARE(verdict(*m_inquiry),
             QStringList("The join of CUSTOMERS (C) alone keeps every row away: no row that is "
                         "left has a match there. As an outer join there is 1 row."));
}

void TestWhyNoRows::classicRules() {
    m_builder->setKeepMeaning(false);
    ask("select v.id from visits v join reps r on v.rep = r.id where v.id > 0");
    QCOMPARE(m_inquiry->losingJoin(), 1);
    QCOMPARE(m_statements.filter("OUTER JOIN").size(), 1);
}

void TestWhyNoRows::sampleDatabase() {
    const SqliteDatabase sample(sampleDatabasePath());
    TorvQueryBuilder builder;
    builder.setKeepMeaning(true);
    connectTables(builder, sample);
    builder.LoadSQL(
        "select o.order_no, c.name from orders o join customers c on c.customer_no = "
        "o.customer_no where o.status = 'open' and c.city = 'Hamburg' and o.total > 1000000");
    Inquiry inquiry(std::make_unique<TrialQuery>(builder));
    Connection connection(sample.settings());
    connection.openOrRaise();
    while (const std::optional<QString> statement = inquiry.next()) {
        RowCounter counter(1000);
        runQuery(connection.database(), *statement, counter, {});
        inquiry.take({counter.rows(), counter.isFull()});
    }
    QCOMPARE(inquiry.culprits(), std::vector<int>{2});
    const QVariant open = apptest::valueOf(
        sample.settings(),
        "SELECT COUNT(*) FROM orders o JOIN customers c ON c.customer_no = o.customer_no "
        "WHERE o.status = 'open' AND c.city = 'Hamburg'");
    QVERIFY(open.toInt() > 0);
    QCOMPARE(inquiry.without(2)->rows, open.toLongLong());
    QVERIFY(inquiry.bare()->isAtLeast);
}

QTEST_MAIN(TestWhyNoRows)
#include "tst_app_whynorows.moc"
