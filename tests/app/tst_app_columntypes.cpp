// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "database/ColumnTypes.h"

using namespace orvquery;

class TestColumnTypes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void types_data();
    void types();
};

void TestColumnTypes::types_data() {
    QTest::addColumn<QString>("declaration");
    QTest::addColumn<QString>("type");
    const auto row = [](const char* declaration, const char* type) {
        QTest::newRow(declaration) << QString::fromLatin1(declaration) << QString::fromLatin1(type);
    };
    row("INTEGER", "ftInteger");
    row("int", "ftInteger");
    row("MEDIUMINT UNSIGNED", "ftInteger");
    row("smallint", "ftSmallint");
    row("TinyInt(1)", "ftSmallint");
    row("BIGINT", "ftLargeint");
    row("UNSIGNED  BIG INT", "ftLargeint");
    row("BOOLEAN", "ftBoolean");
    row("REAL", "ftFloat");
    row("FLOAT", "ftFloat");
    row("DOUBLE PRECISION", "ftFloat");
    row(" decimal ( 10 , 2 ) ", "ftFloat");
    row("NUMERIC", "ftFloat");
    row("NUM", "ftFloat");
    row("MONEY", "ftCurrency");
    row("DATE", "ftDate");
    row("TIME", "ftTime");
    row("DATETIME", "ftDateTime");
    row("TIMESTAMP", "ftDateTime");
    row("TIMESTAMP WITH TIME ZONE", "ftDateTime");
    row("CHAR(2)", "ftFixedChar");
    row("VARCHAR(40)", "ftString");
    row("VARYING CHARACTER(255)", "ftString");
    row("NVARCHAR(100)", "ftWideString");
    row("TEXT", "ftString");
    row("CLOB", "ftMemo");
    row("BLOB", "ftBlob");
    row("BLOB SUB_TYPE TEXT", "ftBlob");
    row("VARBINARY(16)", "ftVarBytes");
    row("", "ftString");
    row("ANY", "ftString");
    row("UUID", "ftString");
    row("(", "ftString");
}

void TestColumnTypes::types() {
    QFETCH(QString, declaration);
    QFETCH(QString, type);
    QCOMPARE(orv::fieldTypeIdentifier(fieldTypeOfDeclaration(declaration)), type);
}

QTEST_GUILESS_MAIN(TestColumnTypes)
#include "tst_app_columntypes.moc"
