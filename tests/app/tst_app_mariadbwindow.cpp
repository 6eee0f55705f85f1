// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "MariadbServer.h"
#include "ServerWindowTests.h"

using namespace orvquery;

// The window on a database of a MariaDB server.
class TestMariadbWindow : public ServerWindowTests {
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
    void kill() override { m_server.kill(); }
    [[nodiscard]] bool startAgain() override { return m_server.startAgain(); }
    void holdListing() override { m_server.hold(); }
    [[nodiscard]] bool runs(const char* text) const override;
    [[nodiscard]] QString deniedSentence() const override {
        return QStringLiteral(
            "The database says: View 'shop.denied' references invalid table(s) or column(s) or "
            "function(s) or definer/invoker of view lack rights to use them");
    }
    [[nodiscard]] QString goneSentence() const override {
        return QStringLiteral("The database says: Table 'shop.passing' doesn't exist");
    }
    [[nodiscard]] QString columnGoneSentence() const override {
        return QStringLiteral("The database says: Unknown column 'NOTE' in ");
    }

private:
    MariadbServer m_server;
};

void TestMariadbWindow::initTestCase() {
    QCOMPARE(MariadbServer::whatIsMissing(), QString());
    QVERIFY(m_server.start());
    QVERIFY(m_server.run({"CREATE DATABASE shop"}));
    QVERIFY(execute(
        {"CREATE TABLE orders (id INT PRIMARY KEY, city VARCHAR(20))",
         "INSERT INTO orders VALUES (1, 'Rome'), (2, NULL)", "CREATE TABLE secret (id INT)",
         "CREATE SQL SECURITY INVOKER VIEW denied AS SELECT id FROM secret",
         "CREATE VIEW slow AS SELECT SLEEP(100) AS x",
         ("CREATE VIEW trickling AS SELECT seq AS n, IF(seq > 10, SLEEP(100), REPEAT('x', 9000)) "
          "AS x FROM seq_1_to_11"),
         "CREATE VIEW many AS SELECT seq AS x FROM seq_1_to_10000000",
         QStringLiteral("CREATE VIEW huge AS SELECT REPEAT('x', %1) AS x").arg(hugeCharacters),
         "CREATE USER reader@localhost IDENTIFIED BY 'reader'",
         "GRANT SELECT ON shop.orders TO reader@localhost",
         "GRANT SELECT ON shop.denied TO reader@localhost"}));
}

// A question of this kind that was asked before may still be on its way out.
bool TestMariadbWindow::runs(const char* text) const {
    return m_server
               .value(QStringLiteral("SELECT count(*) FROM information_schema.processlist "
                                     "WHERE info NOT LIKE '%processlist%' AND info LIKE '%%1%'")
                          .arg(QLatin1String(text)))
               .toInt() > 0;
}

// As the server itself writes them, or in brackets what cannot be written.
void TestMariadbWindow::valuesOfAllTypesAreSeen() {
    struct Case {
        const char* type;
        const char* literal;
        const char* shown;
    };
    const std::vector<Case> cases = {
        {"POINT", "POINT(1, 2)", "(25 bytes)"},
        {"GEOMETRY", "ST_GeomFromText('LINESTRING(0 0, 1 1)')", "(45 bytes)"},
        {"SET('a', 'b', 'c')", "'c,a'", "a,c"},
        {"SET('a')", "''", ""},
        {"ENUM('small', 'large')", "'large'", "large"},
        {"BIT(1)", "b'1'", "1"},
        {"BIT(12)", "b'100000000001'", "2049"},
        {"YEAR", "2024", "2024"},
        {"JSON", "'{\"a\":  1}'", "{\"a\":  1}"},
        {"INET6", "'::1'", "::1"},
        {"TIME", "'-12:30:00'", "-12:30:00"},
        {"TIME(3)", "'01:02:03.004'", "01:02:03.004"},
        {"DATE", "'2024-02-29'", "2024-02-29"},
        {"BOOLEAN", "TRUE", "1"},
        {"BIGINT UNSIGNED", "18446744073709551615", "18446744073709551615"},
        {"DECIMAL(30,10)", "12345678901234567890.123", "12345678901234567890.1230000000"},
        {"BINARY(3)", "'a'", "(3 bytes)"},
        {"BLOB", "''", "(0 bytes)"},
        {"CHAR(4) CHARACTER SET latin1", "'\u00e9'", "\u00e9"},
    };
    QStringList columns;
    QStringList values;
    for (std::size_t number = 0; number < cases.size(); ++number) {
        columns += QStringLiteral("c%1 ").arg(number) + QLatin1String(cases[number].type) + " NULL";
        values += QString::fromUtf8(cases[number].literal);
    }
    QVERIFY(execute({QStringLiteral("CREATE TABLE kinds (id INT, %1)").arg(columns.join(u',')),
                     QStringLiteral("INSERT INTO kinds VALUES (1, %1)").arg(values.join(u',')),
                     "INSERT INTO kinds (id) VALUES (2)"}));
    QVERIFY(open());
    QCOMPARE(rowsOf("select k.* from kinds k order by k.id"), (QStringList{"1", "2"}));
    for (std::size_t number = 0; number < cases.size(); ++number) {
        const QStringList cells = column(int(number) + 1);
        QVERIFY2(cells == (QStringList{QString::fromUtf8(cases[number].shown), "NULL"}),
                 qPrintable(QLatin1String(cases[number].type) + u' ' + cells.join(u'|')));
    }
}

QTEST_MAIN(TestMariadbWindow)
#include "tst_app_mariadbwindow.moc"
