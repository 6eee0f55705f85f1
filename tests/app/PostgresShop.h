// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "PostgresServer.h"
#include "database/OpenDatabase.h"
#include "database/RunQuery.h"

namespace apptest {

/// A PostgreSQL server with a shop, whose names and columns are of every kind. A base of test
/// classes; setUp comes before the first test.
class PostgresShop {
protected:
    void setUp();

    [[nodiscard]] std::unique_ptr<orvquery::Database> open() const {
        return orvquery::openDatabase(m_shop);
    }
    [[nodiscard]] orvquery::RowCollector run(const QString& statement,
                                             const orvquery::PlaceholderValues& values = {}) const;

    static inline const QString shop = QStringLiteral("shop");

    PostgresServer m_server;
    QString m_shop;
    std::unique_ptr<orvquery::Database> m_database;

private:
    [[nodiscard]] static QStringList statements();
};

inline QStringList PostgresShop::statements() {
    return {
        "CREATE SCHEMA sales",
        "CREATE SCHEMA \"Odd \"\"Schema\"",
        "CREATE DOMAIN amount AS numeric(10,2)",
        ("CREATE TABLE customers (id integer PRIMARY KEY, name varchar(40) NOT NULL, "
         "\"Since\" date, \"order\" text, \"a\"\"b\" text, price amount, ok boolean, at "
         "timestamptz, "
         "made timestamp, hour time, place point, ip inet, tags text[], span int4range, data "
         "jsonb, "
         "bytes bytea, lasts interval, big bigint, ratio double precision, small smallint, "
         "code char(5), exact numeric)"),
        ("INSERT INTO customers VALUES (1, 'Zoë', '2024-01-31', 'it''s', 'b', 10.50, true, "
         "'2024-01-02 03:04:05+00', '2024-01-02 03:04:05', '18:30:15', '(1,2)', '10.0.0.1', "
         "'{a,\"b c\"}', '[1,5)', '{\"a\": 1}', '\\x0102', '1 day', 9007199254740993, 0.1, 7, "
         "'ab', "
         "12345678901234567890.123)"),
        "INSERT INTO customers (id, name, \"Since\", at) VALUES (2, '', 'infinity', '-infinity')",
        "CREATE TABLE \"Mixed Case\" (\"A\" integer)",
        "CREATE TABLE \"UPPER\" (a integer)",
        "CREATE TABLE \"select\" (id integer, \"user\" text)",
        "CREATE TABLE \"quo\"\"te\" (a integer)",
        "CREATE TABLE \"a.b\" (\"c.d\" integer)",
        "CREATE TABLE \"größe\" (\"länge\" integer)",
        "CREATE TABLE \"2nd\" (\"3rd\" integer)",
        "CREATE TABLE \"Odd \"\"Schema\".\"T 1\" (a integer)",
        "CREATE TABLE sales.customers (other integer)",
        ("CREATE TABLE sales.orders (c1 integer, c2 integer, customer integer REFERENCES "
         "customers, "
         "PRIMARY KEY (c2, c1))"),
        ("CREATE TABLE sales.lines (y integer, x integer, "
         "FOREIGN KEY (x, y) REFERENCES sales.orders (c1, c2))"),
        "CREATE VIEW seen AS SELECT id FROM customers",
        "CREATE MATERIALIZED VIEW kept AS SELECT id FROM customers",
        "CREATE TABLE parted (id integer, d date) PARTITION BY RANGE (d)",
        "CREATE TABLE part PARTITION OF parted FOR VALUES FROM ('2024-01-01') TO ('2025-01-01')",
        ("CREATE FUNCTION series(low integer, high integer DEFAULT 3) RETURNS TABLE (n integer, "
         "square bigint) LANGUAGE sql AS 'SELECT g, g * g::bigint FROM generate_series(low, high) "
         "g'"),
        ("CREATE FUNCTION odd(integer, \"Who\" text DEFAULT 'no''body', d date DEFAULT "
         "CURRENT_DATE, z integer DEFAULT NULL, neg numeric DEFAULT -1.5) RETURNS SETOF text "
         "LANGUAGE sql AS $$ SELECT \"Who\" || '/' || $1 || '/' || (d = CURRENT_DATE) || '/' || "
         "coalesce(z, 0) || '/' || neg $$"),
        ("CREATE FUNCTION since(d date) RETURNS SETOF customers LANGUAGE sql AS 'SELECT * FROM "
         "customers WHERE \"Since\" >= d'"),
        ("CREATE FUNCTION writes() RETURNS SETOF integer LANGUAGE sql AS 'INSERT INTO \"UPPER\" "
         "VALUES (1) RETURNING a'"),
        "CREATE FUNCTION sales.none() RETURNS TABLE (x integer) LANGUAGE sql AS 'SELECT 1'",
        "CREATE FUNCTION record() RETURNS SETOF record LANGUAGE sql AS 'SELECT 1, 2'",
        "CREATE FUNCTION plain() RETURNS integer LANGUAGE sql AS 'SELECT 1'",
        "CREATE TABLE secret (id integer)",
        "CREATE ROLE reader LOGIN PASSWORD 'reader'",
        "GRANT SELECT ON customers TO reader",
    };
}

inline void PostgresShop::setUp() {
    QCOMPARE(PostgresServer::whatIsMissing(), QString());
    QVERIFY(m_server.start());
    QVERIFY(m_server.run({"CREATE DATABASE shop"}));
    QVERIFY(m_server.run(statements(), shop));
    m_shop = m_server.address(shop);
    m_database = open();
}

inline orvquery::RowCollector PostgresShop::run(const QString& statement,
                                                const orvquery::PlaceholderValues& values) const {
    orvquery::RowCollector rows(1000);
    orvquery::Connection connection(m_database->settings());
    const QSqlError error = connection.open();
    if (error.isValid()) throw orv::Error(error.text());
    runQuery(connection.database(), statement, rows, values);
    return rows;
}

}  // namespace apptest
