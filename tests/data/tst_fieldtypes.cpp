// SPDX-License-Identifier: MIT
#include "data/DataSet.h"
#include "data/Events.h"
#include "data/FieldTypes.h"

#include <QTest>

using namespace orv;

class TestFieldTypes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void types_data();
    void types();
    void everyTypeIsInOneSetAtMost();
    void otherValuesHaveNoDisplayName_data();
    void otherValuesHaveNoDisplayName();
    void unknownIdentifiersAreNoType_data();
    void unknownIdentifiersAreNoType();
    void paramTypes_data();
    void paramTypes();
    void unknownIdentifiersAreNoParamType();
    void addRemoveOrdinals();
    void newFieldsAndParamsAreUnknown();
};

void TestFieldTypes::types_data() {
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("ordinal");
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("set");
    const auto row = [](const char* identifier, TFieldType type, int ordinal, const char* display,
                        const char* set = "") {
        QTest::newRow(identifier) << int(type) << ordinal << QString::fromLatin1(display)
                                  << QString::fromLatin1(set);
    };
    row("ftUnknown", ftUnknown, 0, "");
    row("ftString", ftString, 1, "String", "sString");
    row("ftSmallint", ftSmallint, 2, "Integer", "sNumeric");
    row("ftInteger", ftInteger, 3, "Integer", "sNumeric");
    row("ftWord", ftWord, 4, "Integer", "sNumeric");
    row("ftBoolean", ftBoolean, 5, "Boolean");
    row("ftFloat", ftFloat, 6, "Float", "sFloat");
    row("ftCurrency", ftCurrency, 7, "Float", "sFloat");
    row("ftBCD", ftBCD, 8, "BCD");
    row("ftDate", ftDate, 9, "Date");
    row("ftTime", ftTime, 10, "Time");
    row("ftDateTime", ftDateTime, 11, "Date&&Time");
    row("ftBytes", ftBytes, 12, "Bytes");
    row("ftVarBytes", ftVarBytes, 13, "VarBytes");
    row("ftAutoInc", ftAutoInc, 14, "Integer", "sNumeric");
    row("ftBlob", ftBlob, 15, "Blob");
    row("ftMemo", ftMemo, 16, "String", "sString");
    row("ftGraphic", ftGraphic, 17, "Graphic");
    row("ftFmtMemo", ftFmtMemo, 18, "String", "sString");
    row("ftParadoxOle", ftParadoxOle, 19, "ParadoxOle");
    row("ftDBaseOle", ftDBaseOle, 20, "DBaseOle");
    row("ftTypedBinary", ftTypedBinary, 21, "Typed binary");
    row("ftCursor", ftCursor, 22, "Cursor");
    row("ftFixedChar", ftFixedChar, 23, "String", "sString");
    row("ftWideString", ftWideString, 24, "String", "sString");
    row("ftLargeint", ftLargeint, 25, "Integer", "sNumeric");
    row("ftADT", ftADT, 26, "ADT");
    row("ftArray", ftArray, 27, "Array");
    row("ftReference", ftReference, 28, "Reference");
    row("ftDataSet", ftDataSet, 29, "Data set");
}

void TestFieldTypes::types() {
    QFETCH(int, type);
    QFETCH(int, ordinal);
    QFETCH(QString, display);
    QFETCH(QString, set);
    const auto fieldType = TFieldType(type);
    const QString identifier = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(type, ordinal);
    QCOMPARE(fieldTypeDisplayName(fieldType), display);
    QCOMPARE(fieldTypeIdentifier(fieldType), identifier);
    QCOMPARE(fieldTypeFromIdentifier(identifier), std::optional(fieldType));
    QCOMPARE(sFloat.contains(fieldType), set == QStringLiteral("sFloat"));
    QCOMPARE(sNumeric.contains(fieldType), set == QStringLiteral("sNumeric"));
    QCOMPARE(sString.contains(fieldType), set == QStringLiteral("sString"));
}

void TestFieldTypes::everyTypeIsInOneSetAtMost() {
    for (int ordinal = 0; ordinal <= ftDataSet; ++ordinal) {
        const auto type = TFieldType(ordinal);
        QVERIFY(int(sFloat.contains(type)) + int(sNumeric.contains(type)) +
                    int(sString.contains(type)) <=
                1);
    }
}

void TestFieldTypes::otherValuesHaveNoDisplayName_data() {
    QTest::addColumn<int>("ordinal");
    QTest::newRow("behind the last") << 30;
    QTest::newRow("32") << 32;
    QTest::newRow("largest") << 255;
}

void TestFieldTypes::otherValuesHaveNoDisplayName() {
    QFETCH(int, ordinal);
    QString name = QStringLiteral("(raised)");
    QVERIFY_THROWS_NO_EXCEPTION(name = fieldTypeDisplayName(TFieldType(ordinal)));
    QCOMPARE(name, QString());
}

void TestFieldTypes::unknownIdentifiersAreNoType_data() {
    QTest::addColumn<QString>("identifier");
    QTest::newRow("empty") << QString();
    QTest::newRow("other case") << "ftinteger";
    QTest::newRow("display name") << "Integer";
    QTest::newRow("blank behind") << "ftInteger ";
}

void TestFieldTypes::unknownIdentifiersAreNoType() {
    QFETCH(QString, identifier);
    QVERIFY(!fieldTypeFromIdentifier(identifier));
}

void TestFieldTypes::paramTypes_data() {
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("ordinal");
    QTest::newRow("ptUnknown") << int(ptUnknown) << 0;
    QTest::newRow("ptInput") << int(ptInput) << 1;
    QTest::newRow("ptOutput") << int(ptOutput) << 2;
    QTest::newRow("ptInputOutput") << int(ptInputOutput) << 3;
    QTest::newRow("ptResult") << int(ptResult) << 4;
}

void TestFieldTypes::paramTypes() {
    QFETCH(int, type);
    QFETCH(int, ordinal);
    const QString identifier = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(type, ordinal);
    QCOMPARE(paramTypeIdentifier(TParamType(type)), identifier);
    QCOMPARE(paramTypeFromIdentifier(identifier), std::optional(TParamType(type)));
}

void TestFieldTypes::unknownIdentifiersAreNoParamType() {
    QVERIFY(!paramTypeFromIdentifier(QStringLiteral("ptinput")));
    QVERIFY(!paramTypeFromIdentifier(QStringLiteral("ftInteger")));
}

void TestFieldTypes::addRemoveOrdinals() {
    QCOMPARE(int(araAdd), 0);
    QCOMPARE(int(araRemove), 1);
}

void TestFieldTypes::newFieldsAndParamsAreUnknown() {
    QCOMPARE(TFieldDef().DataType, ftUnknown);
    QCOMPARE(TParam().DataType, ftUnknown);
    QCOMPARE(TParam().ParamType, ptUnknown);
    QVERIFY(!TParam().Value.isValid());
    QVERIFY(TDataSet().FieldDefs.empty());
    QVERIFY(TParams().Items.empty());
}

QTEST_GUILESS_MAIN(TestFieldTypes)
#include "tst_fieldtypes.moc"
