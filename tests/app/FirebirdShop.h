// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "FirebirdTestTools.h"
#include "data/ProcessName.h"
#include "database/OpenDatabase.h"
#include "database/RunQuery.h"

#include <QTemporaryDir>

namespace apptest {

inline const char* const shopScript = R"(
CREATE ROLE READERS^
GRANT READERS TO SYSDBA^
CREATE TABLE ORDERS (ID INTEGER NOT NULL PRIMARY KEY, "Order Date" DATE, TOTAL DECIMAL(8,2),
    NOTE BLOB SUB_TYPE TEXT, PHOTO BLOB, PLACED TIMESTAMP, AT_TIME TIME, PAID BOOLEAN, BIG BIGINT,
    RATIO DOUBLE PRECISION, SMALL SMALLINT, CODE CHAR(5), CITY VARCHAR(20))^
CREATE TABLE "lower" ("ORDER" INTEGER, "a.b" VARCHAR(5))^
CREATE VIEW BIG_ORDERS AS SELECT ID FROM ORDERS WHERE TOTAL > 5^
CREATE DOMAIN D_NAME AS VARCHAR(10) DEFAULT 'nobody'^
CREATE PROCEDURE SERIES (LOW INTEGER, HIGH INTEGER = 3) RETURNS (N INTEGER, SQUARE BIGINT) AS
BEGIN N = LOW; WHILE (N <= HIGH) DO BEGIN SQUARE = N * N; SUSPEND; N = N + 1; END END^
CREATE PROCEDURE ONES RETURNS (N INTEGER) AS BEGIN N = 1; SUSPEND; SUSPEND; END^
CREATE PROCEDURE "Odd proc" ("my param" VARCHAR(20), "SELECT" INTEGER, "***" DATE,
    WHO D_NAME, FLAG BOOLEAN = TRUE, QUOTED VARCHAR(9) DEFAULT 'it''s', NOTHING INTEGER = NULL,
    PRICE NUMERIC(9,2) = -1.5)
RETURNS ("Out put" VARCHAR(60), D DATE, YES BOOLEAN) AS
BEGIN "Out put" = "my param" || '/' || COALESCE("SELECT", 'null') || '/' || WHO || '/' || QUOTED
    || '/' || PRICE;
    D = "***"; YES = FLAG; SUSPEND; END^
CREATE PROCEDURE DEFAULTS (D DATE = CURRENT_DATE, FLAG BOOLEAN DEFAULT TRUE,
    WHO VARCHAR(60) = CURRENT_USER, ODD INTEGER = 5 /* five */)
RETURNS (R VARCHAR(60)) AS
BEGIN R = IIF(D = CURRENT_DATE, 'today', D) || '/' || FLAG || '/' ||
    IIF(WHO = CURRENT_USER, 'me', WHO) || '/' || ODD;
    SUSPEND; END^
CREATE PROCEDURE MOMENTS (S TIMESTAMP, D DATE, T TIME) RETURNS (S2 TIMESTAMP, D2 DATE, T2 TIME) AS
BEGIN S2 = S; D2 = D; T2 = T; SUSPEND; END^
CREATE PROCEDURE NO_ROWS (A INTEGER) RETURNS (N INTEGER) AS BEGIN N = A; END^
CREATE PROCEDURE WRITES RETURNS (N INTEGER) AS
BEGIN INSERT INTO ORDERS (ID) VALUES (99); N = 1; SUSPEND; END^
CREATE PROCEDURE ENDLESS RETURNS (N INTEGER) AS
BEGIN N = 0; WHILE (1 = 1) DO N = MOD(N + 1, 1000); SUSPEND; END^
CREATE TABLE BLOBS (ID INTEGER, UTF BLOB SUB_TYPE TEXT,
    LATIN BLOB SUB_TYPE TEXT CHARACTER SET ISO8859_1, FOREIGN_TEXT BLOB SUB_TYPE TEXT CHARACTER SET NONE,
    PLAIN BLOB, OCTETS BLOB SUB_TYPE TEXT CHARACTER SET OCTETS)^
COMMIT^
INSERT INTO BLOBS VALUES (1, 'größer', 'größer', 'größer', 'abc', 'abc')^
INSERT INTO BLOBS VALUES (2, '', '', '', '', '')^
INSERT INTO BLOBS (ID) VALUES (3)^
INSERT INTO BLOBS (ID, FOREIGN_TEXT) VALUES (4, x'6772f6df')^
INSERT INTO ORDERS (ID, "Order Date", TOTAL, NOTE, PAID, CITY)
    VALUES (1, '2024-01-31', 10.50, 'größer', TRUE, 'Zürich')^
INSERT INTO ORDERS (ID, TOTAL, PAID, CITY) VALUES (2, 3, FALSE, '')^
)";

/// A database of Firebird's embedded engine, with columns and procedures of every kind. A base of
/// test classes.
class FirebirdShop {
protected:
    // For the slots of the same purpose.
    void setUp();
    void tearDown() { m_database.reset(); }
    static void begin();
    static void end() { lReservedWords().clear(); }

    [[nodiscard]] std::unique_ptr<orvquery::Database> open() const {
        return orvquery::openDatabase(m_path);
    }
    [[nodiscard]] orvquery::RowCollector run(const QString& statement,
                                             const orvquery::PlaceholderValues& values = {}) const;

    static constexpr int manyParameters = 200;

    QTemporaryDir m_folder;
    QString m_path;
    /// Keeps the engine's own state of the file alive.
    std::unique_ptr<orvquery::Database> m_database;

private:
    [[nodiscard]] static QString manyProcedure();
};

inline QString FirebirdShop::manyProcedure() {
    QStringList parameters;
    QStringList sum;
    for (int number = 1; number <= manyParameters; ++number) {
        parameters += QStringLiteral("P%1 INTEGER").arg(number);
        sum += QStringLiteral(":P%1").arg(number);
    }
    return QStringLiteral(
               "CREATE PROCEDURE MANY (%1) RETURNS (TOTAL BIGINT) AS BEGIN "
               "TOTAL = %2; SUSPEND; END^\n")
        .arg(parameters.join(QStringLiteral(", ")), sum.join(QStringLiteral(" + ")));
}

inline void FirebirdShop::setUp() {
    QCOMPARE(firebirdtest::whatIsMissing(), QString());
    firebirdtest::setLockFolder(m_folder.path());
    m_path = m_folder.filePath(QStringLiteral("shop.fdb"));
    QVERIFY(firebirdtest::makeDatabase(m_path, QString::fromUtf8(shopScript) + manyProcedure()));
    m_database = open();
}

inline void FirebirdShop::begin() {
    orvtest::failOnAnyWarning();
}

inline orvquery::RowCollector FirebirdShop::run(const QString& statement,
                                                const orvquery::PlaceholderValues& values) const {
    orvquery::RowCollector rows(1000);
    orvquery::Connection connection(m_database->settings());
    if (connection.open().isValid()) return rows;
    runQuery(connection.database(), statement, rows, values);
    return rows;
}

}  // namespace apptest
