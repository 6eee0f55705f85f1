// SPDX-License-Identifier: MIT
#include "PostgresShop.h"
#include "database/ServerQuery.h"
#include "values/ValueText.h"

#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

using namespace orvquery;

// Values that come from a PostgreSQL server and go to it.
class TestPostgresqlValues : public QObject, protected apptest::PostgresShop {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init();

    void values();
    void moments();
    void decimalsAreNumbers();
    void placeholders_data();
    void placeholders();
    void undecidedPlaceholdersRun();
};

void TestPostgresqlValues::init() {
    orvtest::failOnAnyWarning();
}

void TestPostgresqlValues::values() {
    const RowCollector rows = run("SELECT * FROM customers ORDER BY id");
    const auto shown = [&](std::size_t row) {
        QHash<QString, QString> texts;
        for (int column = 0; column < rows.columns().size(); ++column) {
            texts[rows.columns()[column]] = shownText(rows.rows()[row][column]);
        }
        return texts;
    };
    const QHash<QString, QString> first = shown(0);
    QCOMPARE(first["name"], QString::fromUtf8("Zoë"));
    QCOMPARE(first["order"], QStringLiteral("it's"));
    QCOMPARE(first["price"], QStringLiteral("10.5"));
    QCOMPARE(first["place"], QStringLiteral("(1,2)"));
    QCOMPARE(first["ip"], QStringLiteral("10.0.0.1"));
    QCOMPARE(first["tags"], QStringLiteral("{a,\"b c\"}"));
    QCOMPARE(first["span"], QStringLiteral("[1,5)"));
    QCOMPARE(first["data"], QStringLiteral("{\"a\": 1}"));
    QCOMPARE(first["bytes"], QStringLiteral("(2 bytes)"));
    QCOMPARE(first["lasts"], QStringLiteral("1 day"));
    QCOMPARE(first["big"], QStringLiteral("9007199254740993"));
    QCOMPARE(first["ratio"], QStringLiteral("0.1"));
    QCOMPARE(first["exact"], QStringLiteral("12345678901234567890.123"));
    QCOMPARE(rows.rows()[0][rows.columns().indexOf(QStringLiteral("made"))].toDateTime(),
             QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)));
    QCOMPARE(
        QDateTime::fromString(
            rows.rows()[0][rows.columns().indexOf(QStringLiteral("at"))].toString(), Qt::ISODate),
        QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC));
    const QHash<QString, QString> second = shown(1);
    QCOMPARE(second["name"], QString());
    QCOMPARE(second["Since"], QStringLiteral("infinity"));
    QCOMPARE(second["at"], QStringLiteral("-infinity"));
    QCOMPARE(momentOrText(QTime()).toString(), QStringLiteral("(not a time)"));
    QCOMPARE(momentOrText(QTime(0, 0)).toTime(), QTime(0, 0));
    for (const char* name : {"order", "price", "ok", "made", "hour", "place", "bytes", "exact"}) {
        QVERIFY2(rows.rows()[1][rows.columns().indexOf(QLatin1String(name))].isNull(), name);
    }
}

// What Qt's types cannot hold stays what the server wrote.
void TestPostgresqlValues::moments() {
    const auto value = [this](const char* literal) {
        return run(QStringLiteral("SELECT ") + QLatin1String(literal)).rows()[0][0];
    };
    QCOMPARE(value("DATE '2024-02-29'"), QVariant(QDate(2024, 2, 29)));
    QCOMPARE(value("DATE '2024-01-31 BC'"), QVariant(QStringLiteral("2024-01-31 BC")));
    QCOMPARE(value("DATE '12024-01-31'"), QVariant(QStringLiteral("12024-01-31")));
    QCOMPARE(value("TIME '04:05:06'"), QVariant(QTime(4, 5, 6)));
    QCOMPARE(value("TIME '04:05:06.250'"), QVariant(QTime(4, 5, 6, 250)));
    QCOMPARE(value("TIME '04:05:06.250001'"), QVariant(QStringLiteral("04:05:06.250001")));
    QCOMPARE(value("TIME '24:00:00'"), QVariant(QStringLiteral("24:00:00")));
    QCOMPARE(value("TIME WITH TIME ZONE '04:05:06+02'"), QVariant(QStringLiteral("04:05:06+02")));
    QCOMPARE(value("TIMESTAMP '2024-01-31 23:59:59.999'"),
             QVariant(QDateTime(QDate(2024, 1, 31), QTime(23, 59, 59, 999))));
    QCOMPARE(value("TIMESTAMP '2024-01-31 23:59:59.999999'"),
             QVariant(QStringLiteral("2024-01-31 23:59:59.999999")));
    QCOMPARE(value("TIMESTAMP '0044-03-15 12:00:00 BC'"),
             QVariant(QStringLiteral("0044-03-15 12:00:00 BC")));
    QVERIFY(value("NULL::timestamp").isNull());
    const QString zoned = value("TIMESTAMPTZ '2024-01-31 12:00:00.123456+00'").toString();
    QVERIFY2(zoned.contains(QRegularExpression(QStringLiteral("[.]123456[+-][0-9:]+$"))),
             qPrintable(zoned));
}

void TestPostgresqlValues::decimalsAreNumbers() {
    const RowCollector rows =
        run("SELECT avg(i), 100.00, 1.0 / 3, '-Infinity'::numeric FROM generate_series(1, 4) i");
    const Row& row = rows.rows()[0];
    QCOMPARE(row[0], QVariant(2.5));
    QCOMPARE(row[1], QVariant(100.0));
    QVERIFY(isNumber(row[2]));
    QCOMPARE(exactText(row[2]), QStringLiteral("0.33333333333333333333"));
    QVERIFY(std::isinf(row[3].toDouble()) && row[3].toDouble() < 0);
}

void TestPostgresqlValues::placeholders_data() {
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* condition, const QVariant& value) {
        QTest::newRow(condition) << QString::fromLatin1(condition) << value;
    };
    row("id = :X", 1);
    row("name = :X", QString::fromUtf8("Zoë"));
    row("\"order\" = :X -- don't", "it's");
    row("\"Since\" = :X", QDate(2024, 1, 31));
    row("price = :X", 10.5);
    row("ok = :X", true);
    row("made = :X", QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)));
    row("hour = :X", QTime(18, 30, 15));
    row("big = :X", 9007199254740993LL);
    row("name <> :X AND id::text = '1'", "");
    row("id = -:X", -1);
    row("'1' = :X AND id = 1", 1);
    row("coalesce(:X, id) = 1", QVariant(QMetaType::fromType<QString>()));
}

void TestPostgresqlValues::placeholders() {
    QFETCH(QString, condition);
    QFETCH(QVariant, value);
    QCOMPARE(run("SELECT id FROM customers WHERE " + condition, {{"X", value}}).rows(),
             (std::vector<Row>{{1}}));
}

// The server cannot tell which function is meant before it sees the values.
void TestPostgresqlValues::undecidedPlaceholdersRun() {
    QCOMPARE(
        run("SELECT g FROM generate_series(:A, :B, :C) g", {{"A", 1}, {"B", -1}, {"C", -2}}).rows(),
        (std::vector<Row>{{1}, {-1}}));
}

QTEST_GUILESS_MAIN(TestPostgresqlValues)
#include "tst_app_postgresqlvalues.moc"
