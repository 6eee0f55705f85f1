// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "batch/RowsText.h"
#include "values/ValueText.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

using namespace orvquery;

namespace {

const QVariant null = QVariant(QMetaType::fromType<QString>());

QByteArray written(RowFormat format, const QStringList& columns, const std::vector<Row>& rows) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const auto writer = makeRowWriter(format, buffer);
    writer->begin(columns);
    for (const Row& row : rows) writer->row(row);
    writer->finish();
    return buffer.data();
}

}  // namespace

class TestRowsText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void table();
    void tableOfOneRow();
    void tableWithoutRows();
    void longTableIsCut();
    void csv();
    void csvTellsNullFromEmptyText();
    void tsv();
    void json();
    void jsonWithoutRows();
    void jsonKeysAreUnique();
    void jsonTextsComeBack();
    void numbers();
    void widths();
};

void TestRowsText::table() {
    const QByteArray text = written(
        RowFormat::Table, {"CITY", "COUNT", "NOTE"},
        {{"London", 10, "a\nb"}, {null, 7, QString()}, {"Zürich", 1234.5, QByteArray("xy")}});
    QCOMPARE(QString::fromUtf8(text), QStringLiteral("CITY     COUNT  NOTE\n"
                                                     "------  ------  ---------\n"
                                                     "London      10  a\u240ab\n"
                                                     "NULL         7\n"
                                                     "Zürich  1234.5  (2 bytes)\n"
                                                     "(3 rows)\n"));
}

void TestRowsText::tableOfOneRow() {
    QCOMPARE(written(RowFormat::Table, {"a"}, {{"1"}}), QByteArray("a\n-\n1\n(1 row)\n"));
}

void TestRowsText::tableWithoutRows() {
    QCOMPARE(written(RowFormat::Table, {"a", "bc"}, {}), QByteArray("a  bc\n-  --\n(0 rows)\n"));
}

void TestRowsText::longTableIsCut() {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const auto writer = makeRowWriter(RowFormat::Table, buffer);
    writer->begin({"a"});
    for (int row = 0; row < 10000; ++row) QVERIFY(writer->row({row}));
    QVERIFY(!writer->row({10000}));
    writer->finish();
    QVERIFY(buffer.data().endsWith("\n9999\n(the first 10000 rows; there are more)\n"));
}

void TestRowsText::csv() {
    QCOMPARE(
        written(RowFormat::Csv, {"a", "b,c"},
                {{1, "x"}, {0.1 + 0.2, "say \"no\""}, {"two\r\nlines", QByteArray("\0\xff", 2)}}),
        QByteArray("a,\"b,c\"\r\n1,x\r\n0.30000000000000004,\"say \"\"no\"\"\"\r\n"
                   "\"two\r\nlines\",00ff\r\n"));
}

void TestRowsText::csvTellsNullFromEmptyText() {
    QCOMPARE(written(RowFormat::Csv, {"a", "b", "c"}, {{null, QString(""), null}}),
             QByteArray("a,b,c\r\n,\"\",\r\n"));
    QCOMPARE(written(RowFormat::Csv, {"a"}, {{QByteArray("")}}), QByteArray("a\r\n\"\"\r\n"));
}

void TestRowsText::tsv() {
    QCOMPARE(written(RowFormat::Tsv, {"a", "b\tc", "d"},
                     {{1, "x, y", null},
                      {"", "tab\there", "say \"no\""},
                      {"two\nlines", 2.5, QByteArray("z")}}),
             QByteArray("a\t\"b\tc\"\td\n1\tx, y\t\n\"\"\t\"tab\there\"\t\"say \"\"no\"\"\"\n"
                        "\"two\nlines\"\t2.5\t7a\n"));
}

void TestRowsText::json() {
    QCOMPARE(
        written(RowFormat::Json, {"b", "a"},
                {{1, "x"}, {9007199254740993LL, null}, {0.1, QString("")}}),
        QByteArray("[\n  {\"b\": 1, \"a\": \"x\"},\n  {\"b\": 9007199254740993, \"a\": null},\n"
                   "  {\"b\": 0.1, \"a\": \"\"}\n]\n"));
}

void TestRowsText::jsonWithoutRows() {
    QCOMPARE(written(RowFormat::Json, {"a"}, {}), QByteArray("[]\n"));
}

void TestRowsText::jsonKeysAreUnique() {
    QCOMPARE(written(RowFormat::Json, {"a", "a", "a_2", "a"}, {{1, 2, 3, 4}}),
             QByteArray("[\n  {\"a\": 1, \"a_2\": 2, \"a_2_2\": 3, \"a_3\": 4}\n]\n"));
}

void TestRowsText::jsonTextsComeBack() {
    const QString text = QString::fromUtf8("\"\\/\b\n\t\x01 \xc3\xa4 \xf0\x9f\x9a\xb2");
    const QByteArray json =
        written(RowFormat::Json, {text, "n"}, {{text, std::numeric_limits<double>::infinity()}});
    const QJsonObject row = QJsonDocument::fromJson(json).array().at(0).toObject();
    QCOMPARE(row.value(text).toString(), text);
    QVERIFY(json.contains("\"n\": \"Infinity\""));
    QVERIFY(written(RowFormat::Json, {"n", "b"},
                    {{std::numeric_limits<double>::quiet_NaN(), QByteArray("\x01\xab")}})
                .contains("{\"n\": \"NaN\", \"b\": \"01ab\"}"));
}

void TestRowsText::numbers() {
    QCOMPARE(shownText(0.1 + 0.2), QStringLiteral("0.3"));
    QCOMPARE(exactText(0.1 + 0.2), QStringLiteral("0.30000000000000004"));
    QCOMPARE(exactText(1000000.0), QStringLiteral("1000000"));
    QCOMPARE(exactText(285972.24), QStringLiteral("285972.24"));
    QCOMPARE(shownText(QVariant(-5)), QStringLiteral("-5"));
    QVERIFY(isNumber(QVariant(5LL)));
    QVERIFY(!isNumber(QVariant(QStringLiteral("5"))));
    QVERIFY(!isNumber(QVariant(QMetaType::fromType<double>())));
}

void TestRowsText::widths() {
    QCOMPARE(displayWidth(QStringLiteral("abc")), 3);
    QCOMPARE(displayWidth(QStringLiteral("Zürich")), 6);
    QCOMPARE(displayWidth(QStringLiteral("u\u0308")), 1);
    QCOMPARE(displayWidth(QString::fromUtf8("\xe6\x9d\xb1\xe4\xba\xac")), 4);
    QCOMPARE(displayWidth(QString::fromUtf8("\xf0\x9f\x9a\xb2")), 2);
}

QTEST_GUILESS_MAIN(TestRowsText)
#include "tst_app_rowstext.moc"
