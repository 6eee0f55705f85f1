// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "PostgresServer.h"
#include "ServerWindowTests.h"

#include <QHash>
#include <QSqlQuery>

using namespace orvquery;

// The window on a database of a PostgreSQL server.
class TestPostgresqlWindow : public ServerWindowTests {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void valuesOfAllTypesAreSeen();

protected:
    [[nodiscard]] QString address() const override {
        return m_server.address(QStringLiteral("shop"));
    }
    [[nodiscard]] bool execute(const QStringList& statements) const override {
        return m_server.run(statements, QStringLiteral("shop"));
    }
    void kill() override;
    [[nodiscard]] bool startAgain() override { return m_server.startAgain(); }
    void holdListing() override;
    [[nodiscard]] bool runs(const char* text) const override;
    [[nodiscard]] QString deniedSentence() const override {
        return QStringLiteral("The database says: permission denied for view denied");
    }
    [[nodiscard]] QString goneSentence() const override {
        return QStringLiteral("The database says: relation \"passing\" does not exist");
    }
    [[nodiscard]] QString columnGoneSentence() const override {
        return QStringLiteral("The database says: column \"note\" does not exist");
    }

private:
    PostgresServer m_server;
    std::unique_ptr<Connection> m_holder;
};

void TestPostgresqlWindow::initTestCase() {
    QCOMPARE(PostgresServer::whatIsMissing(), QString());
    QVERIFY(m_server.start());
    QVERIFY(m_server.run({"CREATE DATABASE shop"}));
    QVERIFY(execute(
        {"CREATE TABLE orders (id integer PRIMARY KEY, city text)",
         "INSERT INTO orders VALUES (1, 'Rome'), (2, NULL)", "CREATE TABLE secret (id integer)",
         "CREATE VIEW denied AS SELECT id FROM secret",
         "CREATE VIEW slow AS SELECT cast(pg_sleep(100) AS text) AS x",
         ("CREATE VIEW trickling AS SELECT n, CASE WHEN n > 10 THEN cast(pg_sleep(100) AS text) "
          "ELSE repeat('x', 9000) END AS x FROM generate_series(1, 11) n"),
         "CREATE VIEW many AS SELECT x FROM generate_series(1, 10000000) x",
         QStringLiteral("CREATE VIEW huge AS SELECT repeat('x', %1) AS x").arg(hugeCharacters),
         "CREATE ROLE reader LOGIN PASSWORD 'reader'", "GRANT SELECT ON orders TO reader",
         "CREATE TYPE pair AS (a integer, b text)", "CREATE TYPE mood AS ENUM ('sad', 'glad')",
         "CREATE DOMAIN amount AS integer CHECK (value > 0)"}));
}

void TestPostgresqlWindow::kill() {
    m_server.kill();
    m_holder.reset();
}

void TestPostgresqlWindow::holdListing() {
    ConnectionSettings settings;
    settings.driver = QStringLiteral("QPSQL");
    settings.databaseName = QStringLiteral("shop");
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = m_server.port();
    settings.user = PostgresServer::owner();
    settings.password = PostgresServer::password();
    m_holder = std::make_unique<Connection>(settings);
    QVERIFY(!m_holder->open().isValid());
    QSqlQuery query(m_holder->database());
    for (const char* statement : {"BEGIN", "LOCK TABLE pg_catalog.pg_depend"}) {
        QVERIFY2(query.exec(QLatin1String(statement)), statement);
    }
}

// A question of this kind that was asked before may still be on its way out.
bool TestPostgresqlWindow::runs(const char* text) const {
    return m_server
               .value(
                   QStringLiteral("SELECT count(*) FROM pg_stat_activity WHERE state = 'active' "
                                  "AND query NOT LIKE '%pg_stat_activity%' AND query ILIKE '%%1%'")
                       .arg(QLatin1String(text)))
               .toInt() > 0;
}

// As the server itself writes them, or in brackets what cannot be written.
void TestPostgresqlWindow::valuesOfAllTypesAreSeen() {
    struct Case {
        const char* type;
        const char* literal;
        const char* shown;
    };
    const std::vector<Case> cases = {
        {"pair", "ROW(1, 'a b')", "(1,\"a b\")"},
        {"integer[]", "'{1,NULL,3}'", "{1,NULL,3}"},
        {"text[]", "'{}'", "{}"},
        {"pair[]", "ARRAY[cast(ROW(1, 'a') AS pair)]", "{\"(1,a)\"}"},
        {"int4range", "'[1,4]'", "[1,5)"},
        {"int4range", "'empty'", "empty"},
        {"nummultirange", "'{[1,2),[3,4)}'", "{[1,2),[3,4)}"},
        {"mood", "'glad'", "glad"},
        {"amount", "7", "7"},
        {"json", "'{\"a\":  1}'", "{\"a\":  1}"},
        {"jsonb", "'[1, null]'", "[1, null]"},
        {"uuid", "'A0EEBC99-9C0B-4EF8-BB6D-6BB9BD380A11'", "a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11"},
        {"inet", "'10.1.0.0/16'", "10.1.0.0/16"},
        {"cidr", "'10.1.0.0/16'", "10.1.0.0/16"},
        {"macaddr", "'08002b:010203'", "08:00:2b:01:02:03"},
        {"interval", "'14 months 3 days 4:05:06'", "1 year 2 mons 3 days 04:05:06"},
        {"bit(3)", "B'101'", "101"},
        {"bit varying", "B'0011'", "0011"},
        {"tsvector", "'b a'", "'a' 'b'"},
        {"path", "'[(0,0),(1,1)]'", "[(0,0),(1,1)]"},
        {"money", "12.5", "$12.50"},
        {"boolean", "true", "true"},
        {"\"char\"", "'c'", "c"},
        {"name", "'n'", "n"},
        {"oid", "42", "42"},
        {"oid", "4294967295", "4294967295"},
        {"regclass", "'orders'", "orders"},
        {"pg_lsn", "'16/B374D848'", "16/B374D848"},
        {"bytea", "'\\x00ff01'", "(3 bytes)"},
        {"numeric", "'NaN'", "nan"},
        {"real", "'Infinity'", "inf"},
        {"date", "'infinity'", "infinity"},
        {"date", "'2024-01-31 BC'", "2024-01-31 BC"},
        {"time with time zone", "'04:05:06+02'", "04:05:06+02"},
    };
    QStringList columns;
    QStringList values;
    for (std::size_t number = 0; number < cases.size(); ++number) {
        columns += QStringLiteral("c%1 ").arg(number) + QLatin1String(cases[number].type);
        values += QLatin1String(cases[number].literal);
    }
    QVERIFY(execute({QStringLiteral("CREATE TABLE kinds (id integer, %1)").arg(columns.join(u',')),
                     QStringLiteral("INSERT INTO kinds VALUES (1, %1)").arg(values.join(u',')),
                     "INSERT INTO kinds (id) VALUES (2)"}));
    QVERIFY(open());
    QCOMPARE(rowsOf("select k.* from kinds k order by k.id"), (QStringList{"1", "2"}));
    for (std::size_t number = 0; number < cases.size(); ++number) {
        const QStringList cells = column(int(number) + 1);
        QVERIFY2(cells == (QStringList{cases[number].shown, "NULL"}),
                 qPrintable(QLatin1String(cases[number].type) + u' ' + cells.join(u'|')));
    }
}

QTEST_MAIN(TestPostgresqlWindow)
#include "tst_app_postgresqlwindow.moc"
