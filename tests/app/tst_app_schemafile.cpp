// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "tables/SchemaFile.h"

#include <QDate>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace orvquery;

namespace {

const QString fileName = QStringLiteral("s.json");

SchemaFile schema(const char* json) {
    return SchemaFile(QByteArray(json), fileName);
}

}  // namespace

class TestSchemaFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void tableWithFields();
    void procedureWithParams();
    void findIgnoresCaseAndQuotes();
    void entriesAreSorted();
    void namesThatAreAlikeInGermanAloneAreTwo();
    void mistakes_data();
    void mistakes();
    void readsFile();
};

void TestSchemaFile::tableWithFields() {
    const SchemaFile file(R"({"Orders": [["CustNo", "ftInteger"], ["PRICE", "ftFloat"]]})",
                          fileName);
    const auto table = file.find(QStringLiteral("Orders"));
    QVERIFY(table.has_value());
    QCOMPARE(table->name, QStringLiteral("Orders"));
    QVERIFY(!table->parameters);
    QCOMPARE(table->columns.FieldDefs.size(), 2U);
    QCOMPARE(table->columns.FieldDefs[0].Name, QStringLiteral("CustNo"));
    QCOMPARE(table->columns.FieldDefs[0].DataType, ftInteger);
    QCOMPARE(table->columns.FieldDefs[1].DataType, ftFloat);
    QCOMPARE(file.title(), fileName);
}

void TestSchemaFile::procedureWithParams() {
    const SchemaFile file(R"({"P": {"fields": [["X", "ftString"]], "params": [
        ["A", "ftInteger", "ptInput"], ["B", "ftString", "ptInput", "text"],
        ["C", "ftInteger", "ptInput", 5], ["D", "ftFloat", "ptInput", 1.5],
        ["E", "ftBoolean", "ptInput", true], ["F", "ftString", "ptInput", null],
        ["G", "ftDate", "ptInputOutput", "2024-12-31"]]}})",
                          fileName);
    const auto table = file.find(QStringLiteral("p"));
    QVERIFY(table && table->parameters);
    const auto& items = table->parameters->Items;
    QCOMPARE(items.size(), 7U);
    QVERIFY(!items[0].Value.isValid());
    QCOMPARE(items[0].ParamType, ptInput);
    QCOMPARE(items[1].Value, QVariant(QStringLiteral("text")));
    QCOMPARE(items[2].Value, QVariant(5));
    QCOMPARE(items[3].Value, QVariant(1.5));
    QCOMPARE(items[4].Value, QVariant(true));
    QVERIFY(items[5].Value.isValid() && items[5].Value.isNull());
    QCOMPARE(items[6].Value, QVariant(QDate(2024, 12, 31)));
    QCOMPARE(items[6].ParamType, ptInputOutput);
    QCOMPARE(file.tables().front().kind, TableKind::Procedure);
}

void TestSchemaFile::findIgnoresCaseAndQuotes() {
    const SchemaFile file(R"({"Order Details": [], "S.T": [], "ORDERS": []})", fileName);
    QVERIFY(file.find(QStringLiteral("\"order details\"")));
    QVERIFY(file.find(QStringLiteral("orders")));
    QVERIFY(file.find(QStringLiteral("\"s\".T")));
    QVERIFY(!file.find(QStringLiteral("order")));
    QVERIFY(!file.find(QString()));
}

void TestSchemaFile::entriesAreSorted() {
    const auto entries = schema(R"({"b": [], "C": [], "A": []})").tables();
    QCOMPARE(entries, (std::vector<TableEntry>{{"A"}, {"b"}, {"C"}}));
    QVERIFY(schema("{}").tables().empty());
}

void TestSchemaFile::namesThatAreAlikeInGermanAloneAreTwo() {
    const SchemaFile file("{\"STRASSE\": [], \"stra\u00dfe\": []}", fileName);
    QCOMPARE(file.tables().size(), 2U);
    QCOMPARE(file.find(QStringLiteral("Stra\u00dfe"))->name, QStringLiteral("stra\u00dfe"));
}

void TestSchemaFile::mistakes_data() {
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* json, const char* message) {
        QTest::newRow(name) << QString::fromUtf8(json) << QString::fromUtf8(message);
    };
    row("empty", "", "s.json:1:1: this is not valid JSON: illegal value");
    row("comma", "{\"A\": [],\n \"B\": [,]}", "s.json:2:8: this is not valid JSON: illegal value");
    row("unclosed", "{\n\"A\": [", "s.json:2:6: this is not valid JSON: unterminated array");
    row("behind the end", "{} x",
        "s.json:1:4: this is not valid JSON: garbage at the end of the document");
    row("list", "[]", "s.json: expected an object of tables: {\"NAME\": [fields], ...}");
    row("no name", "{\" \": []}", "s.json: a table has no name");
    row("twice", "{\"A\": [], \"A\": []}",
        "s.json: the name \"A\" is there twice (case makes no difference)");
    row("twice but for case", "{\"A\": [], \"\\u0061\": []}",
        "s.json: the name \"a\" is there twice (case makes no difference)");
    row("no list", "{\"A\": 5}",
        "s.json: table \"A\": expected a list of fields, or an object with \"fields\" and "
        "\"params\", not a number");
    row("field without type", "{\"A\": [[\"X\", \"ftInteger\"], [\"Y\"]]}",
        "s.json: table \"A\", field 2: expected a name and a type: [\"NAME\", \"ftInteger\"]");
    row("bad type", "{\"A\": [[\"X\", \"integer\"]]}",
        "s.json: table \"A\", field 1: expected a field type such as \"ftInteger\" or "
        "\"ftString\", not \"integer\"");
    row("type no text", "{\"A\": [[\"X\", 3]]}",
        "s.json: table \"A\", field 1: expected a field type such as \"ftInteger\" or "
        "\"ftString\", not a number");
    row("name no text", "{\"A\": [[null, \"ftInteger\"]]}",
        "s.json: table \"A\", field 1: expected a text as the name, not null");
    row("empty field name", "{\"A\": [[\"\", \"ftInteger\"]]}",
        "s.json: table \"A\", field 1: the name is empty");
    row("field twice", "{\"A\": [[\"x\", \"ftInteger\"], [\"X\", \"ftString\"]]}",
        "s.json: table \"A\", field 2: the name \"X\" is there twice (case makes no difference)");
    row("unknown part", "{\"A\": {\"columns\": []}}",
        "s.json: table \"A\": expected \"fields\" and \"params\", not \"columns\"");
    row("params no list", "{\"A\": {\"params\": {}}}",
        "s.json: table \"A\": \"params\" must be a list, not an object");
    row("short parameter", "{\"A\": {\"params\": [[\"X\", \"ftInteger\"]]}}",
        "s.json: table \"A\", parameter 1: expected a name, a type, a direction and perhaps a "
        "value: [\"NAME\", \"ftInteger\", \"ptInput\", 5]");
    row("bad direction", "{\"A\": {\"params\": [[\"X\", \"ftInteger\", \"in\"]]}}",
        "s.json: table \"A\", parameter 1: expected a direction such as \"ptInput\" or "
        "\"ptOutput\", not \"in\"");
    row("bad value", "{\"A\": {\"params\": [[\"X\", \"ftInteger\", \"ptInput\", []]]}}",
        "s.json: table \"A\", parameter 1: expected a text, a number, true, false or null as the "
        "value, not a list");
    row("bad date", "{\"A\": {\"params\": [[\"X\", \"ftDate\", \"ptInput\", \"31.12.\"]]}}",
        "s.json: table \"A\", parameter 1: the value \"31.12.\" is not of type ftDate; expected it "
        "as in ISO 8601, such as \"2024-12-31\" or \"2024-12-31T18:30:00\"");
    row("parameter twice",
        "{\"A\": {\"params\": [[\"X\", \"ftInteger\", \"ptInput\"], "
        "[\"x\", \"ftInteger\", \"ptInput\"]]}}",
        "s.json: table \"A\", parameter 2: the name \"x\" is there twice (case makes no "
        "difference)");
}

void TestSchemaFile::mistakes() {
    QFETCH(QString, json);
    QFETCH(QString, message);
    QCOMPARE(apptest::errorOf([&] { SchemaFile(json.toUtf8(), fileName); }), message);
}

void TestSchemaFile::readsFile() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("s.json"));
    QVERIFY(apptest::writeFile(path, "\xef\xbb\xbf{\"A\": []}"));
    QCOMPARE(SchemaFile::read(path)->tables().size(), 1U);
    QCOMPARE(apptest::errorOf([&] { (void)SchemaFile::read(folder.path()); }),
             QStringLiteral("The file \"%1\" cannot be read: it is a folder.").arg(folder.path()));
}

QTEST_GUILESS_MAIN(TestSchemaFile)
#include "tst_app_schemafile.moc"
