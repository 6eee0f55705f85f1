// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "database/SqliteDatabase.h"
#include "joins/JoinPaths.h"
#include "joins/JoinProposals.h"

#include <QTemporaryDir>

using namespace orvquery;

namespace {

using Kind = JoinProposal::Kind;

ColumnEntry key(const char* name, TFieldType type = ftInteger) {
    return {QString::fromLatin1(name), type, {}, true};
}

ColumnEntry column(const char* name, TFieldType type = ftInteger) {
    return {QString::fromLatin1(name), type};
}

JoinTable table(const char* name, std::vector<ColumnEntry> columns, const char* alias = nullptr) {
    return {TableName(QString::fromLatin1(name)),
            QString::fromLatin1(alias != nullptr ? alias : name), std::move(columns)};
}

ForeignKey foreignKey(const char* from, const QStringList& columns, const char* to,
                      const QStringList& referenced) {
    return {TableName(QString::fromLatin1(from)), columns, TableName(QString::fromLatin1(to)),
            referenced};
}

// Of all tables that the keys name.
JoinGraph graphOf(const std::vector<ForeignKey>& keys) {
    std::vector<TableEntry> tables;
    QSet<TableName> known;
    for (const ForeignKey& key : keys) {
        for (const TableName& name : {key.table, key.referenced}) {
            if (known.contains(name)) continue;
            known.insert(name);
            tables.push_back({name.name, TableKind::Table, {}, name.schema});
        }
    }
    return {keys, tables};
}

QStringList sentences(const JoinOffer& offer) {
    QStringList texts;
    for (const JoinProposal& proposal : offer.proposals) texts += proposal.sentence;
    return texts;
}

QStringList guesses(const JoinDiagram& diagram, const JoinTable& added) {
    return sentences(proposeJoins({}, diagram, added));
}

const ForeignKey ordersToCustomers = foreignKey("ORDERS", {"CUSTNO"}, "CUSTOMERS", {"CUSTNO"});

JoinTable customers() {
    return table("CUSTOMERS", {key("CUSTNO"), column("NAME", ftString)});
}

JoinTable orders() {
    return table("ORDERS", {key("ORDERNO"), column("CUSTNO"), column("SHIPNO")});
}

}  // namespace

// What is proposed, told from keys, names and types alone.
class TestJoins : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keyFitsInBothDirections();
    void combinedKeyIsOneProposal();
    void severalKeysAreAllProposed();
    void severalBoxesAreAllProposed();
    void linkTableJoinsBoth();
    void connectedBoxesAreNotBothSuggested();
    void oneColumnIsNotSuggestedTwice();
    void keyOntoTableItself();
    void usedKeyIsNoCertainty();
    void keyWithoutColumnIsNone();
    void keysInOtherCase();
    void keysOfOtherSchema();
    void keyThatIsDeclaredTwice();
    void keyOfMissingTable();
    void namesAreShownAsWritten();

    void namedAfterTable();
    void sameNameAsKey();
    void sameNameAndType();
    void genericNamesSayNothing();
    void otherTypesSayNothing();
    void combinedKeyByNames();
    void parentOfSameTable();
    void tableWithoutDeclaredKey();
    void keysSilenceGuesses();
    void guessesAreRanked();

    void pathOverOtherTables();
    void pathsOfSameLengthAreListed();
    void shorterPathWins();
    void longPathIsNone();
    void pathsOverDetailsGoFirst();
    void pathsByDifferentKeys();
    void pathTellsSchemasWhereTheyDiffer();
    void pathBeginsAtEachBox();
    void keyGuessGoesBeforePath();
    void pathsAreBounded();

    void costDoesNotGrowWithDatabase();
    void keysOfSqlite();
};

void TestJoins::keyFitsInBothDirections() {
    const JoinGraph graph = graphOf({ordersToCustomers});
    const JoinOffer added = proposeJoins(graph, {{customers()}, {}}, orders());
    QCOMPARE(sentences(added), QStringList("ORDERS.CUSTNO = CUSTOMERS.CUSTNO (foreign key)"));
    QVERIFY(added.isCertain());
    QCOMPARE(added.proposals[0].from, QStringLiteral("ORDERS.CUSTNO"));
    QCOMPARE(added.proposals[0].to, QStringLiteral("CUSTOMERS.CUSTNO"));
    QCOMPARE(added.proposals[0].why, QStringLiteral("foreign key"));

    const JoinOffer other = proposeJoins(graph, {{orders()}, {}}, customers());
    QCOMPARE(sentences(other), sentences(added));
    QVERIFY(other.isCertain());
}

void TestJoins::combinedKeyIsOneProposal() {
    const JoinTable items = table("ITEMS", {key("ORDERNO"), key("LINENO"), column("PARTNO")});
    const JoinTable returns =
        table("RETURNS", {key("RETURNNO"), column("LINE"), column("ORDERNO")});
    const JoinGraph graph =
        graphOf({foreignKey("RETURNS", {"ORDERNO", "LINE"}, "ITEMS", {"ORDERNO", "LINENO"})});
    const JoinOffer offer = proposeJoins(graph, {{items}, {}}, returns);
    QCOMPARE(sentences(offer), QStringList("RETURNS.ORDERNO = ITEMS.ORDERNO and "
                                           "RETURNS.LINE = ITEMS.LINENO (foreign key)"));
    QVERIFY(offer.isCertain());
    const JoinStep expected = {{"ORDERNO", "LINENO"}, {"ORDERNO", "LINE"}};
    QCOMPARE(offer.proposals[0].steps.size(), std::size_t(1));
    QCOMPARE(offer.proposals[0].steps[0], expected);
}

void TestJoins::severalKeysAreAllProposed() {
    const JoinGraph graph =
        graphOf({ordersToCustomers, foreignKey("ORDERS", {"SHIPNO"}, "CUSTOMERS", {"CUSTNO"})});
    const JoinOffer offer = proposeJoins(graph, {{customers()}, {}}, orders());
    QCOMPARE(sentences(offer), QStringList({"ORDERS.CUSTNO = CUSTOMERS.CUSTNO (foreign key)",
                                            "ORDERS.SHIPNO = CUSTOMERS.CUSTNO (foreign key)"}));
    QVERIFY(!offer.isCertain());
    QCOMPARE(offer.suggested, std::vector<int>{0});
}

void TestJoins::severalBoxesAreAllProposed() {
    JoinTable second = customers();
    second.alias = QStringLiteral("PAYERS");
    const JoinOffer offer =
        proposeJoins(graphOf({ordersToCustomers}), {{customers(), second}, {}}, orders());
    QCOMPARE(sentences(offer), QStringList({"ORDERS.CUSTNO = CUSTOMERS.CUSTNO (foreign key)",
                                            "ORDERS.CUSTNO = PAYERS.CUSTNO (foreign key)"}));
    QCOMPARE(offer.proposals[1].table, 1);
    QVERIFY(!offer.isCertain());
}

// Between two tables that nothing joins so far, one that refers to both joins both.
void TestJoins::linkTableJoinsBoth() {
    const JoinGraph graph = graphOf({foreignKey("SUPPLIES", {"PARTNO"}, "PARTS", {"PARTNO"}),
                                     foreignKey("SUPPLIES", {"SUPPNO"}, "SUPPLIERS", {"SUPPNO"})});
    const JoinDiagram diagram = {
        {table("SUPPLIERS", {key("SUPPNO")}), table("PARTS", {key("PARTNO")})}, {}};
    const JoinOffer offer =
        proposeJoins(graph, diagram, table("SUPPLIES", {key("PARTNO"), key("SUPPNO")}));
    QCOMPARE(sentences(offer), QStringList({"SUPPLIES.SUPPNO = SUPPLIERS.SUPPNO (foreign key)",
                                            "SUPPLIES.PARTNO = PARTS.PARTNO (foreign key)"}));
    QVERIFY(!offer.isCertain());
    QCOMPARE(offer.suggested, std::vector<int>({0, 1}));
}

void TestJoins::connectedBoxesAreNotBothSuggested() {
    const JoinGraph graph = graphOf({foreignKey("VISITS", {"CUSTNO"}, "CUSTOMERS", {"CUSTNO"}),
                                     foreignKey("VISITS", {"ORDERNO"}, "ORDERS", {"ORDERNO"})});
    const JoinTable visits = table("VISITS", {column("CUSTNO"), column("ORDERNO")});
    JoinDiagram diagram = {{customers(), orders()}, {}};
    QCOMPARE(proposeJoins(graph, diagram, visits).suggested, std::vector<int>({0, 1}));
    diagram.links = {{1, 1, 0, 0}};
    QCOMPARE(proposeJoins(graph, diagram, visits).proposals.size(), std::size_t(2));
    QCOMPARE(proposeJoins(graph, diagram, visits).suggested, std::vector<int>{0});
    // Over a third box, which no key has to do with, and by columns that are not known.
    diagram = {{customers(), orders(), table("NOTES", {})}, {{0, -1, 2, -1}, {2, -1, 1, -1}}};
    QCOMPARE(proposeJoins(graph, diagram, visits).suggested, std::vector<int>{0});
}

void TestJoins::oneColumnIsNotSuggestedTwice() {
    JoinTable second = customers();
    second.alias = QStringLiteral("PAYERS");
    const JoinOffer offer =
        proposeJoins(graphOf({ordersToCustomers}), {{customers(), second}, {}}, orders());
    QCOMPARE(offer.suggested, std::vector<int>{0});
}

void TestJoins::keyOntoTableItself() {
    const JoinGraph graph = graphOf({foreignKey("STAFF", {"BOSS"}, "STAFF", {"NO"})});
    const JoinTable first = table("STAFF", {key("NO"), column("BOSS")});
    JoinTable second = first;
    second.alias = QStringLiteral("STAFF1");
    const JoinOffer offer = proposeJoins(graph, {{first}, {}}, second);
    QCOMPARE(sentences(offer), QStringList({"STAFF.BOSS = STAFF1.NO (foreign key)",
                                            "STAFF1.BOSS = STAFF.NO (foreign key)"}));
    QVERIFY(!offer.isCertain());
    const JoinStep up = {{"BOSS"}, {"NO"}};
    const JoinStep down = {{"NO"}, {"BOSS"}};
    QCOMPARE(offer.proposals[0].steps[0], up);
    QCOMPARE(offer.proposals[1].steps[0], down);
}

// A second box of CUSTOMERS by the same key would show the same customer twice.
void TestJoins::usedKeyIsNoCertainty() {
    JoinTable second = customers();
    second.alias = QStringLiteral("CUSTOMERS1");
    const JoinGraph graph = graphOf({ordersToCustomers});
    const JoinOffer offer = proposeJoins(graph, {{customers(), orders()}, {{0, 0, 1, 1}}}, second);
    QCOMPARE(sentences(offer), QStringList("ORDERS.CUSTNO = CUSTOMERS1.CUSTNO "
                                           "(foreign key, by which CUSTOMERS is joined already)"));
    QCOMPARE(offer.proposals[0].kind, Kind::UsedKey);
    QVERIFY(!offer.isCertain());
    QVERIFY(offer.suggested.empty());
    // Another link of the two boxes is not that key.
    QVERIFY(proposeJoins(graph, {{customers(), orders()}, {{0, 0, 1, 2}}}, second).isCertain());
    // Another order of the same customer is another row.
    JoinTable secondOrders = orders();
    secondOrders.alias = QStringLiteral("ORDERS1");
    QVERIFY(
        proposeJoins(graph, {{customers(), orders()}, {{0, 0, 1, 1}}}, secondOrders).isCertain());
}

void TestJoins::keyWithoutColumnIsNone() {
    const JoinGraph graph =
        graphOf({foreignKey("ORDERS", {"GONE"}, "CUSTOMERS", {"CUSTNO"}),
                 foreignKey("ORDERS", {"SHIPNO"}, "CUSTOMERS", {"GONE"}),
                 foreignKey("ORDERS", {"SHIPNO"}, "CUSTOMERS", {""}),
                 foreignKey("ORDERS", {"SHIPNO", "CUSTNO"}, "CUSTOMERS", {"CUSTNO"})});
    const JoinOffer offer = proposeJoins(graph, {{customers()}, {}},
                                         table("ORDERS", {key("ORDERNO"), column("SHIPNO")}));
    QCOMPARE(sentences(offer), QStringList());
}

void TestJoins::keysInOtherCase() {
    const std::vector<ForeignKey> keys = {
        foreignKey("orders", {"custno"}, "Customers", {"CustNo"})};
    const JoinGraph graph(keys, {{QStringLiteral("ORDERS")}, {QStringLiteral("CUSTOMERS")}});
    QVERIFY(proposeJoins(graph, {{customers()}, {}}, orders()).isCertain());
    // Where case decides between two, nobody knows which one is meant.
    const JoinGraph doubtful(
        keys,
        {{QStringLiteral("ORDERS")}, {QStringLiteral("CUSTOMERS")}, {QStringLiteral("customers")}});
    QCOMPARE(doubtful.keyCount(), 0);
    const JoinGraph exact(
        keys,
        {{QStringLiteral("ORDERS")}, {QStringLiteral("CUSTOMERS")}, {QStringLiteral("Customers")}});
    QVERIFY(exact.numberOf(QStringLiteral("CUSTOMERS")) < 0);
    QVERIFY(exact.numberOf(QStringLiteral("Customers")) >= 0);
}

void TestJoins::keysOfOtherSchema() {
    const TableName own(QStringLiteral("CUSTOMERS"), QStringLiteral("sales"));
    const TableName other(QStringLiteral("CUSTOMERS"), QStringLiteral("old"));
    const TableName from(QStringLiteral("ORDERS"), QStringLiteral("sales"));
    const JoinGraph graph =
        graphOf({{from, {"CUSTNO"}, own, {"CUSTNO"}}, {from, {"SHIPNO"}, other, {"CUSTNO"}}});
    JoinTable added = orders();
    added.table = from;
    JoinTable present = customers();
    present.table = other;
    QCOMPARE(sentences(proposeJoins(graph, {{present}, {}}, added)),
             QStringList("ORDERS.SHIPNO = CUSTOMERS.CUSTNO (foreign key)"));
}

void TestJoins::keyThatIsDeclaredTwice() {
    QCOMPARE(graphOf({ordersToCustomers, ordersToCustomers}).keyCount(), 1);
}

void TestJoins::keyOfMissingTable() {
    const JoinGraph graph({ordersToCustomers, foreignKey("ORDERS", {"SHIPNO"}, "GONE", {"NO"})},
                          {{QStringLiteral("ORDERS")}, {QStringLiteral("CUSTOMERS")}});
    QCOMPARE(graph.keyCount(), 1);
    QCOMPARE(graph.tableCount(), 2);
}

void TestJoins::namesAreShownAsWritten() {
    JoinTable present = table("Order Details", {key("Customer No")}, "\"Order Details\"");
    present.written = {QStringLiteral("\"Customer No\"")};
    const JoinGraph graph =
        graphOf({foreignKey("Order Details", {"Customer No"}, "CUSTOMERS", {"CUSTNO"})});
    QCOMPARE(sentences(proposeJoins(graph, {{present}, {}}, customers())),
             QStringList("\"Order Details\".\"Customer No\" = CUSTOMERS.CUSTNO (foreign key)"));
}

void TestJoins::namedAfterTable() {
    const JoinTable parent = table("CUSTOMERS", {key("ID"), column("NAME", ftString)});
    const JoinTable child = table("ORDERS", {key("ID"), column("CUSTOMER_ID")});
    const QStringList expected{
        "ORDERS.CUSTOMER_ID = CUSTOMERS.ID (ORDERS.CUSTOMER_ID looks like "
        "the key ID of CUSTOMERS)"};
    QCOMPARE(guesses({{parent}, {}}, child), expected);
    QCOMPARE(guesses({{child}, {}}, parent), expected);
    const JoinOffer offer = proposeJoins({}, {{parent}, {}}, child);
    QCOMPARE(offer.proposals[0].kind, Kind::KeyByName);
    QVERIFY(!offer.isCertain());
    QVERIFY(offer.suggested.empty());
}

void TestJoins::sameNameAsKey() {
    QCOMPARE(guesses({{customers()}, {}}, orders()),
             QStringList("ORDERS.CUSTNO = CUSTOMERS.CUSTNO "
                         "(same name and type CUSTNO, the key of CUSTOMERS)"));
}

void TestJoins::sameNameAndType() {
    const JoinTable invoices = table("INVOICES", {key("INVOICENO"), column("cust_no", ftLargeint)});
    const JoinOffer offer = proposeJoins({}, {{orders()}, {}}, invoices);
    QCOMPARE(sentences(offer),
             QStringList("ORDERS.CUSTNO = INVOICES.cust_no (same name and type cust_no)"));
    QCOMPARE(offer.proposals[0].kind, Kind::SameName);
    QVERIFY(!offer.isCertain());
    QVERIFY(offer.suggested.empty());
}

void TestJoins::genericNamesSayNothing() {
    const std::vector<ColumnEntry> columns = {
        key("ID"),           column("NAME", ftString),     column("DATE", ftDate),
        column("STATUS"),    column("CREATED_AT", ftDate), column("CREATED_BY"),
        column("TYPE_CODE"), column("CITY", ftString)};
    std::vector<ColumnEntry> others = columns;
    others[6] = column("OTHER_CODE");
    QCOMPARE(guesses({{table("PARTS", columns)}, {}}, table("PEOPLE", others)), QStringList());
}

void TestJoins::otherTypesSayNothing() {
    const JoinTable parent = table("CUSTOMERS", {key("ID")});
    QCOMPARE(guesses({{parent}, {}}, table("ORDERS", {column("CUSTOMER_ID", ftString)})),
             QStringList());
    // Equal moments and amounts are chance.
    const std::vector<ColumnEntry> measures = {column("DUE", ftDate), column("NET", ftFloat),
                                               column("PAID", ftFloat), column("DAY_NO", ftDate),
                                               column("IS_NO", ftBoolean)};
    QCOMPARE(guesses({{table("A", measures)}, {}}, table("B", measures)), QStringList());
    // Some databases keep all numbers alike.
    QCOMPARE(guesses({{table("A", {column("CUSTNO", ftBCD)})}, {}},
                     table("B", {column("CUSTNO", ftBCD)})),
             QStringList("A.CUSTNO = B.CUSTNO (same name and type CUSTNO)"));
}

void TestJoins::combinedKeyByNames() {
    const JoinTable items = table("ITEMS", {key("ORDER_NO"), key("LINE_NO"), column("PARTNO")});
    const JoinTable notes = table("REMARKS", {column("line_no"), column("order_no")});
    QCOMPARE(guesses({{items}, {}}, notes),
             QStringList("REMARKS.order_no = ITEMS.ORDER_NO and REMARKS.line_no = ITEMS.LINE_NO "
                         "(same names and types ORDER_NO, LINE_NO, the key of ITEMS)"));
    // With one of its columns alone nothing is found for certain.
    QCOMPARE(guesses({{items}, {}}, table("REMARKS", {column("ORDER_NO")})),
             QStringList("ITEMS.ORDER_NO = REMARKS.ORDER_NO (same name and type ORDER_NO)"));
}

void TestJoins::parentOfSameTable() {
    const JoinTable first = table("GROUPS", {key("ID"), column("PARENT_ID")});
    JoinTable second = first;
    second.alias = QStringLiteral("GROUPS1");
    QCOMPARE(guesses({{first}, {}}, second),
             QStringList({"GROUPS.PARENT_ID = GROUPS1.ID (GROUPS.PARENT_ID looks like the key ID "
                          "of GROUPS1)",
                          "GROUPS1.PARENT_ID = GROUPS.ID (GROUPS1.PARENT_ID looks like the key ID "
                          "of GROUPS)"}));
    // A table has all names in common with itself.
    QCOMPARE(guesses({{customers()}, {}}, customers()), QStringList());
}

void TestJoins::tableWithoutDeclaredKey() {
    const JoinTable view = table("CUSTOMERS", {column("NAME", ftString), column("ID")});
    QCOMPARE(guesses({{view}, {}}, table("ORDERS", {column("CUSTOMER_ID")})),
             QStringList("ORDERS.CUSTOMER_ID = CUSTOMERS.ID "
                         "(ORDERS.CUSTOMER_ID looks like a reference to CUSTOMERS.ID)"));
}

void TestJoins::keysSilenceGuesses() {
    const JoinTable ships = table("SHIPS", {key("SHIPNO")});
    const JoinGraph graph = graphOf({ordersToCustomers});
    QVERIFY(proposeJoins(graph, {{ships, customers()}, {}}, orders()).isCertain());
    QCOMPARE(proposeJoins(graph, {{ships}, {}}, orders()).proposals[0].kind, Kind::KeyByName);
}

void TestJoins::guessesAreRanked() {
    const JoinTable invoices = table("INVOICES", {key("INVOICENO"), column("CUSTNO")});
    const JoinTable routes = table("ROUTES", {key("ID")});
    const JoinTable added =
        table("VISITS", {column("CUSTNO"), column("HOME_ROUTE_ID"), column("ROUTE_ID")});
    const JoinOffer offer = proposeJoins({}, {{invoices, routes, customers()}, {}}, added);
    QStringList froms;
    for (const JoinProposal& proposal : offer.proposals) froms += proposal.from;
    QCOMPARE(froms, QStringList({"VISITS.ROUTE_ID", "VISITS.HOME_ROUTE_ID", "VISITS.CUSTNO",
                                 "INVOICES.CUSTNO"}));
    QCOMPARE(offer.proposals[2].table, 2);
}

// CUSTOMERS - ORDERS - ITEMS - PRODUCTS, with a table that leads nowhere.
std::vector<ForeignKey> shopKeys() {
    return {ordersToCustomers, foreignKey("ITEMS", {"ORDERNO"}, "ORDERS", {"ORDERNO"}),
            foreignKey("ITEMS", {"PRODNO"}, "PRODUCTS", {"NO"}),
            foreignKey("CUSTOMERS", {"GROUP"}, "GROUPS", {"NO"})};
}

void TestJoins::pathOverOtherTables() {
    const JoinOffer offer =
        proposeJoins(graphOf(shopKeys()), {{customers()}, {}}, table("PRODUCTS", {key("NO")}));
    QCOMPARE(sentences(offer),
             QStringList("CUSTOMERS - ORDERS - ITEMS - PRODUCTS: also add ORDERS and ITEMS"));
    const JoinProposal& path = offer.proposals[0];
    QCOMPARE(path.kind, Kind::Path);
    QVERIFY(!offer.isCertain());
    QVERIFY(offer.suggested.empty());
    QCOMPARE(path.from, QStringLiteral("CUSTOMERS"));
    QCOMPARE(path.to, QStringLiteral("PRODUCTS"));
    QCOMPARE(path.between, std::vector<TableName>({TableName("ORDERS"), TableName("ITEMS")}));
    const std::vector<JoinStep> steps = {
        {{"CUSTNO"}, {"CUSTNO"}}, {{"ORDERNO"}, {"ORDERNO"}}, {{"PRODNO"}, {"NO"}}};
    QCOMPARE(path.steps, steps);
}

void TestJoins::pathsOfSameLengthAreListed() {
    std::vector<ForeignKey> keys = shopKeys();
    keys.push_back(foreignKey("OFFERS", {"CUSTNO"}, "CUSTOMERS", {"CUSTNO"}));
    keys.push_back(foreignKey("LINES", {"OFFERNO"}, "OFFERS", {"NO"}));
    keys.push_back(foreignKey("LINES", {"PRODNO"}, "PRODUCTS", {"NO"}));
    QCOMPARE(
        sentences(proposeJoins(graphOf(keys), {{customers()}, {}}, table("PRODUCTS", {key("NO")}))),
        QStringList({"CUSTOMERS - ORDERS - ITEMS - PRODUCTS: also add ORDERS and ITEMS",
                     "CUSTOMERS - OFFERS - LINES - PRODUCTS: also add OFFERS and LINES"}));
}

void TestJoins::shorterPathWins() {
    const JoinDiagram diagram = {{customers(), table("ORDERS", {key("ORDERNO"), column("CUSTNO")})},
                                 {}};
    QCOMPARE(sentences(proposeJoins(graphOf(shopKeys()), diagram, table("PRODUCTS", {key("NO")}))),
             QStringList("ORDERS - ITEMS - PRODUCTS: also add ITEMS"));
}

void TestJoins::longPathIsNone() {
    const char* names[] = {"A", "B", "C", "D", "E", "F"};
    std::vector<ForeignKey> keys;
    keys.reserve(5);
    for (int at = 0; at < 5; ++at) {
        keys.push_back(foreignKey(names[at], {"NEXT"}, names[at + 1], {"NO"}));
    }
    const JoinGraph graph = graphOf(keys);
    const JoinDiagram diagram = {{table("A", {column("NEXT")})}, {}};
    QCOMPARE(sentences(proposeJoins(graph, diagram, table("E", {column("NO")}))),
             QStringList("A - B - C - D - E: also add B, C and D"));
    QCOMPARE(sentences(proposeJoins(graph, diagram, table("F", {column("NO")}))), QStringList());
    QCOMPARE(sentences(proposeJoins(graph, diagram, table("X", {column("NO")}))), QStringList());
}

// That two rows have a country in common is less than that one refers to both.
void TestJoins::pathsOverDetailsGoFirst() {
    const JoinGraph graph =
        graphOf({foreignKey("A", {"COUNTRY"}, "COUNTRIES", {"CODE"}),
                 foreignKey("B", {"COUNTRY"}, "COUNTRIES", {"CODE"}),
                 foreignKey("PAIRS", {"A"}, "A", {"NO"}), foreignKey("PAIRS", {"B"}, "B", {"NO"})});
    QCOMPARE(
        sentences(proposeJoins(graph, {{table("A", {})}, {}}, table("B", {}))),
        QStringList({"A - PAIRS - B: also add PAIRS", "A - COUNTRIES - B: also add COUNTRIES"}));
}

void TestJoins::pathsByDifferentKeys() {
    std::vector<ForeignKey> keys = {ordersToCustomers,
                                    foreignKey("ORDERS", {"SHIPNO"}, "CUSTOMERS", {"CUSTNO"}),
                                    foreignKey("ITEMS", {"ORDERNO"}, "ORDERS", {"ORDERNO"})};
    QCOMPARE(sentences(proposeJoins(graphOf(keys), {{customers()}, {}}, table("ITEMS", {}))),
             QStringList({"CUSTOMERS - ORDERS - ITEMS: also add ORDERS, by ORDERS.CUSTNO",
                          "CUSTOMERS - ORDERS - ITEMS: also add ORDERS, by ORDERS.SHIPNO"}));
}

void TestJoins::pathTellsSchemasWhereTheyDiffer() {
    const TableName people(QStringLiteral("PEOPLE"), QStringLiteral("hr"));
    const TableName trips(QStringLiteral("TRIPS"), QStringLiteral("hr"));
    const TableName places(QStringLiteral("PLACES"), QStringLiteral("geo"));
    const JoinGraph graph =
        graphOf({{trips, {"WHO"}, people, {"NO"}}, {trips, {"PLACE"}, places, {"NO"}}});
    JoinTable present = table("PEOPLE", {key("NO")});
    present.table = people;
    JoinTable added = table("PLACES", {key("NO")});
    added.table = places;
    QCOMPARE(sentences(proposeJoins(graph, {{present}, {}}, added)),
             QStringList("hr.PEOPLE - hr.TRIPS - geo.PLACES: also add hr.TRIPS"));
}

void TestJoins::pathBeginsAtEachBox() {
    JoinTable second = customers();
    second.alias = QStringLiteral("PAYERS");
    const JoinOffer offer = proposeJoins(graphOf(shopKeys()), {{customers(), second}, {}},
                                         table("ITEMS", {column("PRODNO")}));
    QCOMPARE(offer.proposals.size(), std::size_t(2));
    QCOMPARE(offer.proposals[0].from, QStringLiteral("CUSTOMERS"));
    QCOMPARE(offer.proposals[1].from, QStringLiteral("PAYERS"));
    QCOMPARE(offer.proposals[1].table, 1);
}

void TestJoins::keyGuessGoesBeforePath() {
    const JoinTable products = table("PRODUCTS", {key("NO"), column("CUSTNO"), column("REGIONNO")});
    const JoinTable present = table("CUSTOMERS", {key("CUSTNO"), column("REGIONNO")});
    const JoinOffer offer = proposeJoins(graphOf(shopKeys()), {{present}, {}}, products);
    QCOMPARE(offer.proposals.size(), std::size_t(3));
    QCOMPARE(offer.proposals[0].kind, Kind::KeyByName);
    QCOMPARE(offer.proposals[1].kind, Kind::Path);
    QCOMPARE(offer.proposals[2].kind, Kind::SameName);
}

void TestJoins::pathsAreBounded() {
    std::vector<ForeignKey> keys;
    for (int number = 0; number < 1000; ++number) {
        const QByteArray between = "T" + QByteArray::number(number);
        keys.push_back(foreignKey(between.constData(), {"A"}, "A", {"NO"}));
        keys.push_back(foreignKey(between.constData(), {"B"}, "B", {"NO"}));
    }
    const JoinOffer offer = proposeJoins(graphOf(keys), {{table("A", {})}, {}}, table("B", {}));
    QCOMPARE(offer.proposals.size(), mostPaths);
}

// Ten thousand tables, each of which refers to two others.
void TestJoins::costDoesNotGrowWithDatabase() {
    constexpr int count = 10000;
    const auto name = [](int number) { return QByteArray("T") + QByteArray::number(number); };
    std::vector<ForeignKey> keys;
    for (int number = 0; number < count; ++number) {
        keys.push_back(foreignKey(name(number), {"A"}, name((number * 7 + 1) % count), {"NO"}));
        keys.push_back(foreignKey(name(number), {"B"}, name((number + 1) % count), {"NO"}));
    }
    const JoinGraph graph = graphOf(keys);
    QCOMPARE(graph.tableCount(), count);
    QCOMPARE(graph.keyCount(), 2 * count);
    const std::vector<ColumnEntry> columns = {key("NO"), column("A"), column("B")};
    // A key that fits: the keys of the one table are all that is looked at.
    const JoinOffer near =
        proposeJoins(graph, {{table(name(17), columns)}, {}}, table(name(18), columns));
    QCOMPARE(sentences(near), QStringList("T17.B = T18.NO (foreign key)"));
    QVERIFY(near.keysSeen <= 5);
    // None that leads there: each key is looked at from both sides at most.
    const JoinOffer far =
        proposeJoins(graph, {{table("ELSEWHERE", columns)}, {}}, table(name(18), columns));
    QVERIFY(far.keysSeen <= 2 * 2 * count);
    const JoinOffer path =
        proposeJoins(graph, {{table(name(20), columns)}, {}}, table(name(18), columns));
    QCOMPARE(path.proposals[0].kind, Kind::Path);
    QCOMPARE(path.proposals[0].between, std::vector<TableName>{TableName("T19")});
    QVERIFY(path.keysSeen < 100);
}

void TestJoins::keysOfSqlite() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("k.db"));
    QVERIFY(apptest::runStatements(
        path, {"CREATE TABLE Customers (custno INTEGER PRIMARY KEY, boss INT REFERENCES customers)",
               "CREATE TABLE orders (no INT, part INT, custno INT REFERENCES CUSTOMERS (CustNo), "
               "gone INT REFERENCES nowhere, PRIMARY KEY (no, part))",
               "CREATE TABLE returns (id INTEGER PRIMARY KEY, p INT, n INT, "
               "FOREIGN KEY (n, p) REFERENCES orders)"}));
    const SqliteDatabase database(path);
    const JoinGraph graph(database.foreignKeys(), database.tables());
    QCOMPARE(graph.keyCount(), 3);
    const auto described = [&](const char* name) {
        const auto found = database.describe(TableName(QString::fromLatin1(name)));
        return JoinTable{found->source, found->name, found->entries};
    };
    // Written in any case.
    QCOMPARE(sentences(proposeJoins(graph, {{described("Customers")}, {}}, described("orders"))),
             QStringList("ORDERS.custno = CUSTOMERS.custno (foreign key)"));
    // The primary key is not named where it is referred to.
    QCOMPARE(sentences(proposeJoins(graph, {{described("orders")}, {}}, described("returns"))),
             QStringList("RETURNS.n = ORDERS.no and RETURNS.p = ORDERS.part (foreign key)"));
    QCOMPARE(proposeJoins(graph, {{described("Customers")}, {}}, described("Customers"))
                 .proposals.size(),
             std::size_t(2));
}

QTEST_GUILESS_MAIN(TestJoins)
#include "tst_app_joins.moc"
