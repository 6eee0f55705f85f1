// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "data/ProcessName.h"
#include "names/BareNames.h"
#include "names/NameFolding.h"

#include <QRegularExpression>

using namespace orvquery;

namespace {

// Every keyword of SQLite 3.40 (sqlite.org/lang_keywords.html).
const char* const sqliteKeywords =
    "ABORT ACTION ADD AFTER ALL ALTER ALWAYS ANALYZE AND AS ASC ATTACH AUTOINCREMENT BEFORE BEGIN "
    "BETWEEN BY CASCADE CASE CAST CHECK COLLATE COLUMN COMMIT CONFLICT CONSTRAINT CREATE CROSS "
    "CURRENT CURRENT_DATE CURRENT_TIME CURRENT_TIMESTAMP DATABASE DEFAULT DEFERRABLE DEFERRED "
    "DELETE DESC DETACH DISTINCT DO DROP EACH ELSE END ESCAPE EXCEPT EXCLUDE EXCLUSIVE EXISTS "
    "EXPLAIN FAIL FILTER FIRST FOLLOWING FOR FOREIGN FROM FULL GENERATED GLOB GROUP GROUPS HAVING "
    "IF IGNORE IMMEDIATE IN INDEX INDEXED INITIALLY INNER INSERT INSTEAD INTERSECT INTO IS ISNULL "
    "JOIN KEY LAST LEFT LIKE LIMIT MATCH MATERIALIZED NATURAL NO NOT NOTHING NOTNULL NULL NULLS OF "
    "OFFSET ON OR ORDER OTHERS OUTER OVER PARTITION PLAN PRAGMA PRECEDING PRIMARY QUERY RAISE "
    "RANGE RECURSIVE REFERENCES REGEXP REINDEX RELEASE RENAME REPLACE RESTRICT RETURNING RIGHT "
    "ROLLBACK ROW ROWS SAVEPOINT SELECT SET TABLE TEMP TEMPORARY THEN TIES TO TRANSACTION TRIGGER "
    "UNBOUNDED UNION UNIQUE UPDATE USING VACUUM VALUES VIEW VIRTUAL WHEN WHERE WINDOW WITH WITHOUT";

// One use of a word as a name: the statements that prepare it, and the query that must give 7.
struct Use {
    const char* setup;
    const char* query;
};

// The ways in which a written statement can use a name; @ stands for it.
const Use uses[] = {
    {"CREATE TABLE \"@\" (x)", "SELECT x FROM @"},
    {"CREATE TABLE \"@\" (x)", "SELECT @.x FROM @"},
    {"CREATE TABLE \"@\" (x)", "SELECT o.x FROM @ o"},
    {"CREATE TABLE \"@\" (x)", "SELECT o.x FROM @ INNER JOIN @ o ON (@.x = o.x)"},
    {"CREATE TABLE \"@\" (x)", "SELECT o.x FROM @, @ o"},
    {"CREATE TABLE t (\"@\")", "SELECT @ FROM t WHERE @ = 7 GROUP BY @ ORDER BY @"},
    {"CREATE TABLE t (\"@\")", "SELECT t.@ FROM t WHERE t.@ = 7 ORDER BY t.@ DESC"},
    {"CREATE TABLE t (x)", "SELECT x AS @ FROM t ORDER BY @"},
    {"CREATE TABLE t (x)", "SELECT @.x FROM t @"},
    {"CREATE TABLE t (x)", "SELECT @.x FROM t @ INNER JOIN t o ON (o.x = @.x)"},
};

bool canBeName(const QString& word) {
    for (const Use& use : uses) {
        Connection connection({QStringLiteral("QSQLITE"), QStringLiteral(":memory:"), QString()});
        if (connection.open().isValid()) return false;
        QSqlQuery query(connection.database());
        const QString setup = QString::fromLatin1(use.setup).replace(u'@', word);
        const QString table =
            setup.contains(QLatin1String("TABLE t ")) ? QStringLiteral("t") : word;
        if (!query.exec(setup)) return false;
        if (!query.exec(QStringLiteral("INSERT INTO \"%1\" VALUES (7)").arg(table))) return false;
        if (!query.exec(QString::fromLatin1(use.query).replace(u'@', word))) return false;
        if (!query.next() || query.value(0).toInt() != 7) return false;
    }
    return true;
}

}  // namespace

class TestAppNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }
    void cleanup() { lReservedWords().clear(); }

    void reservedWordsAreThoseThatSqliteRefuses();
    void handedOver_data();
    void handedOver();
    void namesComeBackFromTheDatabase();
    void namesOfDatabaseThatFoldsUp();
    void sameName();
    void parts_data();
    void parts();
    void meant_data();
    void meant();
    void bareNamesAreRenamed_data();
    void bareNamesAreRenamed();
    void foldingDownHandsLowerCaseOver();
};

void TestAppNames::reservedWordsAreThoseThatSqliteRefuses() {
    QStringList refused;
    const QStringList keywords = QString::fromLatin1(sqliteKeywords).split(u' ');
    QCOMPARE(keywords.size(), 147);
    for (const QString& word : keywords) {
        if (!canBeName(word)) refused += word;
    }
    QCOMPARE(NameFolding::sqlite().reservedWords(), refused);
}

void TestAppNames::handedOver_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected");
    QTest::newRow("lower case") << "orders"
                                << "ORDERS";
    QTest::newRow("mixed case") << "OrderDate"
                                << "ORDERDATE";
    QTest::newRow("dollar inside") << "a$b"
                                   << "A$B";
    QTest::newRow("underscore") << "_id"
                                << "_ID";
    QTest::newRow("reserved") << "order"
                              << "ORDER";
    QTest::newRow("blank") << "Order Details"
                           << "Order Details";
    QTest::newRow("other letters") << QStringLiteral("größe") << QStringLiteral("größe");
    QTest::newRow("quote inside") << "a\"b"
                                  << "a\"b";
    QTest::newRow("digit first") << "2ND"
                                 << "\"2ND\"";
    QTest::newRow("dollar first") << "$A"
                                  << "\"$A\"";
    QTest::newRow("full stop") << "a.b"
                               << "\"a.b\"";
    QTest::newRow("apostrophes around") << "'a'"
                                        << "\"'a'\"";
    QTest::newRow("quotes around") << "\"a\""
                                   << "\"\"\"a\"\"\"";
    QTest::newRow("empty") << ""
                           << "\"\"";
}

void TestAppNames::handedOver() {
    QFETCH(QString, name);
    QFETCH(QString, expected);
    QCOMPARE(NameFolding::sqlite().handedOver(name), expected);
}

// What the control writes for a name must be that name to the database.
void TestAppNames::namesComeBackFromTheDatabase() {
    const NameFolding folding = NameFolding::sqlite();
    lReservedWords() = folding.reservedWords();
    for (const char* text : {"orders", "order", "Order Details", "2ND", "$A", "a.b", "'a'", "\"a\"",
                             "a\"b", "select", "x y'z", "[a]", "`b`", "\xc3\xa4", ""}) {
        const QString name = QString::fromUtf8(text);
        const QString written = ProcessName(folding.handedOver(name));
        Connection connection({QStringLiteral("QSQLITE"), QStringLiteral(":memory:"), QString()});
        QVERIFY(!connection.open().isValid());
        QSqlQuery query(connection.database());
        QVERIFY2(query.exec(QStringLiteral("CREATE TABLE %1 (%1)").arg(written)),
                 qPrintable(written));
        QVERIFY(
            query.exec(QStringLiteral("SELECT s.name, p.name FROM sqlite_master s, "
                                      "pragma_table_info(s.name) p")));
        QVERIFY(query.next());
        QVERIFY2(folding.isSameName(query.value(0).toString(), name), qPrintable(written));
        QVERIFY2(folding.isSameName(query.value(1).toString(), name), qPrintable(written));
    }
}

void TestAppNames::namesOfDatabaseThatFoldsUp() {
    const NameFolding folding(NameFolding::Unquoted::FoldsUp, {});
    QCOMPARE(folding.handedOver(QStringLiteral("ORDERS")), QStringLiteral("ORDERS"));
    QCOMPARE(folding.handedOver(QStringLiteral("Orders")), QStringLiteral("Orders"));
    QCOMPARE(ProcessName(QStringLiteral("Orders")), QStringLiteral("\"Orders\""));
    QVERIFY(!folding.isSameName(QStringLiteral("ORDERS"), QStringLiteral("Orders")));
}

void TestAppNames::sameName() {
    const NameFolding folding = NameFolding::sqlite();
    QVERIFY(folding.isSameName(QStringLiteral("Orders"), QStringLiteral("ORDERS")));
    QVERIFY(!folding.isSameName(QStringLiteral("orders"), QStringLiteral("orders ")));
    // SQLite folds the letters of ASCII alone.
    QVERIFY(!folding.isSameName(QStringLiteral("größe"), QStringLiteral("GRÖßE")));
}

void TestAppNames::parts_data() {
    using Parts = QList<NamePart>;
    QTest::addColumn<QString>("name");
    QTest::addColumn<Parts>("expected");
    QTest::newRow("plain") << "ORDERS" << Parts{{"ORDERS"}};
    QTest::newRow("quoted") << "\"Order Details\"" << Parts{{"Order Details", true}};
    QTest::newRow("quoted, plain") << "\"ORDERS\"" << Parts{{"ORDERS", true}};
    QTest::newRow("qualified") << "MAIN.\"Order Details\""
                               << Parts{{"MAIN"}, {"Order Details", true}};
    QTest::newRow("stop in quotes") << "\"a.b\"" << Parts{{"a.b", true}};
    QTest::newRow("doubled quote") << "\"a\"\"b\"" << Parts{{"a\"b", true}};
    QTest::newRow("blanks around") << "main . orders" << Parts{{"main"}, {"orders"}};
    QTest::newRow("three") << "A.B.C" << Parts{{"A"}, {"B"}, {"C"}};
    QTest::newRow("unmatched quote") << "\"a.b" << Parts{{"\"a.b"}};
    QTest::newRow("empty") << "" << Parts{{""}};
}

void TestAppNames::parts() {
    QFETCH(QString, name);
    QFETCH(QList<NamePart>, expected);
    QCOMPARE(nameParts(name), expected);
}

void TestAppNames::meant_data() {
    using Unquoted = NameFolding::Unquoted;
    QTest::addColumn<int>("rule");
    QTest::addColumn<QString>("inStatement");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char* title, Unquoted rule, const char* inStatement, const char* name,
                        bool expected) {
        QTest::newRow(title) << int(rule) << inStatement << name << expected;
    };
    row("ignored", Unquoted::IgnoresCase, "ORDERS", "Orders", true);
    row("ignored, quoted", Unquoted::IgnoresCase, "\"oRDERS\"", "Orders", true);
    row("up", Unquoted::FoldsUp, "orders", "ORDERS", true);
    row("up, other", Unquoted::FoldsUp, "ORDERS", "orders", false);
    row("up, quoted", Unquoted::FoldsUp, "\"orders\"", "orders", true);
    row("down", Unquoted::FoldsDown, "ORDERS", "orders", true);
    row("down, upper name", Unquoted::FoldsDown, "ORDERS", "ORDERS", false);
    row("down, quoted upper name", Unquoted::FoldsDown, "\"ORDERS\"", "ORDERS", true);
    row("down, quoted", Unquoted::FoldsDown, "\"ORDERS\"", "orders", false);
    row("kept", Unquoted::KeepsCase, "orders", "orders", true);
    row("kept, other", Unquoted::KeepsCase, "ORDERS", "orders", false);
}

void TestAppNames::meant() {
    QFETCH(int, rule);
    QFETCH(QString, inStatement);
    QFETCH(QString, name);
    const NameFolding folding(NameFolding::Unquoted(rule), {});
    QTEST(folding.isMeant(nameParts(inStatement).front(), name, NameFolding::Of::Table),
          "expected");
}

void TestAppNames::foldingDownHandsLowerCaseOver() {
    const NameFolding folding(NameFolding::Unquoted::FoldsDown, {QStringLiteral("USER")});
    QCOMPARE(folding.handedOver(QStringLiteral("orders")), QStringLiteral("ORDERS"));
    QCOMPARE(folding.handedOver(QStringLiteral("Orders")), QStringLiteral("Orders"));
    // The control would write it without quotes, and the database would look for "orders".
    QCOMPARE(folding.handedOver(QStringLiteral("ORDERS")), QStringLiteral("\"ORDERS\""));
    QCOMPARE(folding.plainAlias(QStringLiteral("Orders")), QStringLiteral("ORDERS"));
    QCOMPARE(folding.plainAlias(QStringLiteral("user")), QString());
    QCOMPARE(folding.plainAlias(QStringLiteral("order details")), QString());
}

void TestAppNames::bareNamesAreRenamed_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* text, const char* expected) {
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(expected);
    };
    row("ID", "T.ID");
    row("\"my id\"", "T.\"my id\"");
    row("\"a\"\"b\"", "T.\"a\"\"b\"");
    row("LOWER(ID) || ID", "LOWER(T.ID) || T.ID");
    row("'ID it''s ID'", "'ID it''s ID'");
    row("U.ID + ID.X", "U.ID + ID.X");
    row(":ID", ":ID");
    row("ID(1)", "ID(1)");
    row("ID '2024-01-31'", "ID '2024-01-31'");
    row("INTERVAL '1' ID", "INTERVAL '1' ID");
    row("CAST(OTHER AS ID)", "CAST(OTHER AS ID)");
    row("EXTRACT(ID FROM ID)", "EXTRACT(ID FROM T.ID)");
    row("SELECT ID FROM U", "SELECT ID FROM U");
    row("ID IN (SELECT ID FROM (U)) OR (ID = 1)", "T.ID IN (SELECT ID FROM (U)) OR (T.ID = 1)");
    row("", "");
}

void TestAppNames::bareNamesAreRenamed() {
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const QStringList known = {QStringLiteral("ID"), QStringLiteral("\"my id\""),
                               QStringLiteral("\"a\"\"b\"")};
    const auto renamed = [&](const QString& name) {
        return known.contains(name) ? QStringLiteral("T.") + name : QString();
    };
    QCOMPARE(withBareNamesRenamed(text, renamed), expected);
}

QTEST_GUILESS_MAIN(TestAppNames)
#include "tst_app_names.moc"
