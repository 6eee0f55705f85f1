// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "values/ExactNumber.h"
#include "values/ShortenedValue.h"
#include "window/CopiedCells.h"
#include "window/DrawableText.h"
#include "window/ResultModel.h"

#include <QAbstractItemModelTester>
#include <QBitArray>
#include <QDateTime>
#include <QFont>
#include <QFontMetrics>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QUuid>

#include <limits>

using namespace orvquery;

namespace {

const QVariant null = QVariant(QMetaType::fromType<QString>());

QStringList shownColumn(const ResultModel& model, int column) {
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row) {
        texts += model.index(row, column).data().toString();
    }
    return texts;
}

// A model of one column, all of whose rows have come.
void fill(ResultModel& model, const QVariantList& values) {
    std::vector<Row> rows;
    for (const QVariant& value : values) rows.push_back({value});
    model.begin({"a"});
    model.append(rows);
    model.finish();
}

QString copied(const ResultModel& model, const QItemSelection& selection,
               CopiedHeader header = CopiedHeader::None) {
    return copiedCells(model, selection, header);
}

}  // namespace

class TestResultModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rowsAreAppended();
    void keepsThePromisesOfModels();
    void controlCharactersAreDrawn_data();
    void controlCharactersAreDrawn();
    void lineBreaksAreDrawnButCopied();
    void numbersSortAsNumbers();
    void exactNumbersAreNumbers();
    void largeWholeNumbersAreToldApart();
    void nullComesFirstAscending();
    void textsSortTheSameEverywhere();
    void kindsOfValuesStayTogether();
    void momentsSortByTime();
    void equalRowsStayAsTheyCame();
    void noColumnRestoresArrival();
    void sortingWaitsForAllRows();
    void nextQueryIsNotSorted();
    void selectionFollowsItsRows();
    void manyRowsAreSorted();
    void nullIsToldFromEmpty();
    void numbersStandRight();
    void unknownTypesHaveText_data();
    void unknownTypesHaveText();
    void shortenedValueTellsItsSize();
    void longTextIsShownInPart();
    void cellsAreCopied();
    void headerIsCopied();
    void raggedSelectionKeepsColumns();
    void cellWithLineBreakIsQuotedAmongOthers();
    void sortedSelectionIsCopiedAsShown();
};

void TestResultModel::rowsAreAppended() {
    ResultModel model;
    model.begin({"a", "b"});
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    model.append({{1, "x"}, {2, "y"}});
    model.append({{3, "z"}});
    model.append({});
    QCOMPARE(reset.count(), 0);
    QCOMPARE(inserted.count(), 2);
    QCOMPARE(inserted[1][1].toInt(), 2);
    QCOMPARE(inserted[1][2].toInt(), 2);
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(model.columnCount(), 2);
    QCOMPARE(shownColumn(model, 1), QStringList({"x", "y", "z"}));
    QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::DisplayRole), QVariant("b"));
    QCOMPARE(model.headerData(1, Qt::Vertical, Qt::DisplayRole), QVariant(2));
}

void TestResultModel::keepsThePromisesOfModels() {
    ResultModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.begin({"a", "b"});
    model.append({{2, "x"}, {1, "y"}});
    model.sort(0);
    model.append({{0, "z"}});
    model.finish();
    QCOMPARE(shownColumn(model, 0), QStringList({"0", "1", "2"}));
    model.sort(1, Qt::DescendingOrder);
    QCOMPARE(shownColumn(model, 1), QStringList({"z", "y", "x"}));
    model.sort(-1);
    model.begin({"c"});
    model.finish();
    QCOMPARE(model.rowCount(), 0);
}

void TestResultModel::controlCharactersAreDrawn_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("inLargeFont");
    QTest::addColumn<QString>("inSmallFont");
    QTest::newRow("plain") << "a b"
                           << "a b"
                           << "a b";
    QTest::newRow("line breaks") << QStringLiteral("a\u240ab\u240dc\u240d\u240ad")
                                 << QStringLiteral("a\u21b5b\u21b5c\u21b5d") << "a / b / c / d";
    QTest::newRow("two lines") << QStringLiteral("a\u240a\u240ab")
                               << QStringLiteral("a\u21b5\u21b5b") << "a /  / b";
    QTest::newRow("others") << QStringLiteral("a\u2409\u2400\u2421b")
                            << QStringLiteral("a\u2409\u2400\u2421b") << "a   b";
}

void TestResultModel::controlCharactersAreDrawn() {
    QFETCH(QString, text);
    QFETCH(QString, inLargeFont);
    QFETCH(QString, inSmallFont);
    QCOMPARE(drawableText(text, [](QChar) { return true; }), inLargeFont);
    QCOMPARE(drawableText(text, [](QChar character) { return character < QChar(0x80); }),
             inSmallFont);
}

void TestResultModel::lineBreaksAreDrawnButCopied() {
    ResultModel model;
    fill(model, {QStringLiteral("one\r\ntwo")});
    const QFontMetrics font(QGuiApplication::font());
    const QString lineBreak =
        font.inFont(QChar(0x21b5)) ? QStringLiteral("\u21b5") : QStringLiteral(" / ");
    QCOMPARE(shownColumn(model, 0), QStringList("one" + lineBreak + "two"));
    QCOMPARE(copied(model, QItemSelection(model.index(0, 0), model.index(0, 0))),
             QStringLiteral("one\r\ntwo"));
}

void TestResultModel::numbersSortAsNumbers() {
    ResultModel model;
    fill(model, {10, 9.5, -3, 100LL, 9, -2.5, 0u, true});
    model.sort(0);
    QCOMPARE(shownColumn(model, 0),
             QStringList({"-3", "-2.5", "0", "true", "9", "9.5", "10", "100"}));
    model.sort(0, Qt::DescendingOrder);
    QCOMPARE(shownColumn(model, 0),
             QStringList({"100", "10", "9.5", "9", "true", "0", "-2.5", "-3"}));
}

void TestResultModel::exactNumbersAreNumbers() {
    ResultModel model;
    const QString third = QStringLiteral("3.3333333333333333");
    const QString large = QStringLiteral("12345678901234567890.5");
    const QString larger = QStringLiteral("12345678901234567891.5");
    const QString least = QStringLiteral("-1234567890123456789.5");
    fill(model, {10.0, decimalValue(larger), decimalValue(third), decimalValue(large),
                 decimalValue(least), 2.5});
    model.sort(0);
    QCOMPARE(shownColumn(model, 0), QStringList({least, "2.5", third, "10", large, larger}));
    QCOMPARE(model.index(2, 0).data(Qt::TextAlignmentRole).toInt(),
             int(Qt::AlignVCenter | Qt::AlignRight));
}

// As fractions all three are the same.
void TestResultModel::largeWholeNumbersAreToldApart() {
    ResultModel model;
    const qint64 large = 9007199254740993;
    fill(model, {large, large - 1, std::numeric_limits<quint64>::max(),
                 std::numeric_limits<quint64>::max() - 1, -large, -large + 1,
                 std::numeric_limits<qint64>::min(), -std::numeric_limits<double>::infinity()});
    model.sort(0);
    QCOMPARE(shownColumn(model, 0),
             QStringList({"-inf", "-9223372036854775808", "-9007199254740993", "-9007199254740992",
                          "9007199254740992", "9007199254740993", "18446744073709551614",
                          "18446744073709551615"}));
}

void TestResultModel::nullComesFirstAscending() {
    ResultModel model;
    fill(model, {"b", null, "", "a", null});
    model.sort(0);
    QCOMPARE(shownColumn(model, 0), QStringList({"NULL", "NULL", "", "a", "b"}));
    model.sort(0, Qt::DescendingOrder);
    QCOMPARE(shownColumn(model, 0), QStringList({"b", "a", "", "NULL", "NULL"}));
}

void TestResultModel::textsSortTheSameEverywhere() {
    ResultModel model;
    fill(model, {"\u00e4", "z", "a", "Z", "10", "9"});
    model.sort(0);
    QCOMPARE(shownColumn(model, 0), QStringList({"10", "9", "Z", "a", "z", "\u00e4"}));
}

void TestResultModel::kindsOfValuesStayTogether() {
    ResultModel model;
    fill(model, {QByteArray("b"), "5", 7, null, QByteArray("aa"), QDate(2024, 1, 1)});
    model.sort(0);
    QCOMPARE(shownColumn(model, 0),
             QStringList({"NULL", "7", "2024-01-01", "5", "(2 bytes)", "(1 byte)"}));
}

void TestResultModel::momentsSortByTime() {
    ResultModel model;
    const QDate day(2024, 2, 1);
    fill(model, {QDateTime(day, QTime(12, 0), Qt::UTC), QDateTime(day, QTime(9, 0), Qt::UTC),
                 QDateTime(QDate(1999, 12, 31), QTime(23, 0), Qt::UTC)});
    model.sort(0);
    QCOMPARE(model.value(0, 0).toDateTime().date(), QDate(1999, 12, 31));
    QCOMPARE(model.value(1, 0).toDateTime().time(), QTime(9, 0));
    fill(model, {QTime(12, 0), QTime(9, 30)});
    model.sort(0);
    QCOMPARE(model.value(0, 0).toTime(), QTime(9, 30));
}

void TestResultModel::equalRowsStayAsTheyCame() {
    ResultModel model;
    model.begin({"key", "number"});
    std::vector<Row> rows;
    rows.reserve(1000);
    for (int number = 0; number < 1000; ++number) rows.push_back({number % 3, number});
    model.append(rows);
    model.finish();
    for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        model.sort(0, order);
        for (int row = 1; row < model.rowCount(); ++row) {
            if (model.value(row, 0) != model.value(row - 1, 0)) continue;
            QVERIFY(model.value(row, 1).toInt() > model.value(row - 1, 1).toInt());
        }
    }
}

void TestResultModel::noColumnRestoresArrival() {
    ResultModel model;
    fill(model, {3, 1, 2});
    model.sort(0);
    QVERIFY(model.isSorted());
    QCOMPARE(shownColumn(model, 0), QStringList({"1", "2", "3"}));
    model.sort(-1);
    QVERIFY(!model.isSorted());
    QCOMPARE(shownColumn(model, 0), QStringList({"3", "1", "2"}));
    QCOMPARE(model.rows(), (std::vector<Row>{{3}, {1}, {2}}));
}

void TestResultModel::sortingWaitsForAllRows() {
    ResultModel model;
    model.begin({"a"});
    model.append({{3}, {1}});
    model.sort(0);
    QVERIFY(model.isSorted());
    QCOMPARE(shownColumn(model, 0), QStringList({"3", "1"}));
    model.append({{2}});
    QCOMPARE(shownColumn(model, 0), QStringList({"3", "1", "2"}));
    model.finish();
    QCOMPARE(shownColumn(model, 0), QStringList({"1", "2", "3"}));
    QCOMPARE(model.rows(), (std::vector<Row>{{1}, {2}, {3}}));
}

void TestResultModel::nextQueryIsNotSorted() {
    ResultModel model;
    fill(model, {3, 1, 2});
    model.sort(0);
    fill(model, {9, 8});
    QVERIFY(!model.isSorted());
    QCOMPARE(shownColumn(model, 0), QStringList({"9", "8"}));
    model.sort(5);
    QVERIFY(!model.isSorted());
}

void TestResultModel::selectionFollowsItsRows() {
    ResultModel model;
    fill(model, {3, 1, 2});
    const QPersistentModelIndex three = model.index(0, 0);
    const QPersistentModelIndex one = model.index(1, 0);
    model.sort(0);
    QCOMPARE(three.row(), 2);
    QCOMPARE(one.row(), 0);
    model.sort(0, Qt::DescendingOrder);
    QCOMPARE(three.row(), 0);
    QCOMPARE(one.row(), 2);
    model.sort(-1);
    QCOMPARE(three.row(), 0);
    QCOMPARE(one.row(), 1);
}

void TestResultModel::manyRowsAreSorted() {
    QRandomGenerator random(1);
    std::vector<Row> rows;
    for (int row = 0; row < 100000; ++row) {
        const int number = int(random.bounded(50000));
        rows.push_back({number, QStringLiteral("customer %1").arg(number)});
    }
    ResultModel model;
    model.begin({"number", "text"});
    model.append(rows);
    model.finish();
    model.sort(1);
    for (int row = 1; row < model.rowCount(); ++row) {
        QVERIFY(!(model.value(row, 1).toString() < model.value(row - 1, 1).toString()));
    }
    model.sort(0);
    for (int row = 1; row < model.rowCount(); ++row) {
        QVERIFY(!(model.value(row, 0).toInt() < model.value(row - 1, 0).toInt()));
    }
    model.sort(-1);
    QCOMPARE(model.rows(), rows);
}

void TestResultModel::nullIsToldFromEmpty() {
    ResultModel model;
    fill(model, {null, ""});
    QCOMPARE(shownColumn(model, 0), QStringList({"NULL", ""}));
    QVERIFY(model.index(0, 0).data(Qt::FontRole).value<QFont>().italic());
    QVERIFY(model.index(0, 0).data(Qt::ForegroundRole).isValid());
    QVERIFY(!model.index(1, 0).data(Qt::FontRole).isValid());
    QVERIFY(!model.index(1, 0).data(Qt::ForegroundRole).isValid());
}

void TestResultModel::numbersStandRight() {
    ResultModel model;
    fill(model, {1, 2.5, "3", null, QByteArray("4")});
    const auto isRight = [&](int row) {
        return bool(model.index(row, 0).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
    };
    QVERIFY(isRight(0));
    QVERIFY(isRight(1));
    QVERIFY(!isRight(2));
    QVERIFY(!isRight(3));
    QVERIFY(!isRight(4));
}

void TestResultModel::unknownTypesHaveText_data() {
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QVariant& value, const char* text) {
        QTest::newRow(name) << QVariant::fromValue(value) << QString::fromUtf8(text);
    };
    row("truth", true, "true");
    row("character", QChar(u'x'), "x");
    row("date", QDate(2024, 2, 29), "2024-02-29");
    row("time", QTime(1, 2, 3), "01:02:03.000");
    row("identifier", QUuid(), "{00000000-0000-0000-0000-000000000000}");
    row("bits", QBitArray(3), "(a value of the type QBitArray)");
    row("list", QVariantList{1, 2}, "(a value of the type QVariantList)");
    row("pointer", QVariant::fromValue<void*>(nullptr), "NULL");
}

void TestResultModel::unknownTypesHaveText() {
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    ResultModel model;
    fill(model, {value, value});
    QCOMPARE(shownColumn(model, 0), QStringList({text, text}));
    model.sort(0);
    model.sort(0, Qt::DescendingOrder);
    QCOMPARE(model.rowCount(), 2);
    (void)copied(model, QItemSelection(model.index(0, 0), model.index(1, 0)));
}

void TestResultModel::shortenedValueTellsItsSize() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    ResultModel model;
    fill(model, {"whole"});
    QVERIFY(!model.hasShortened());
    fill(model, {"whole", shortened(QByteArray(2000000, 'x'), 1000),
                 shortened(QString(1000000, u'y'), 1000)});
    QVERIFY(model.hasShortened());
    const QString bytes = model.index(1, 0).data().toString();
    QCOMPARE(bytes, QStringLiteral("(2000000 bytes)"));
    const QString text = model.index(2, 0).data().toString();
    QVERIFY(text.startsWith(QStringLiteral("yyyy")));
    QVERIFY(text.endsWith(QStringLiteral("\u2026 (1,000,000 characters)")));
    QCOMPARE(model.index(2, 0).data(Qt::ToolTipRole).toString(),
             QStringLiteral("Only the beginning of this value is kept: it has 1,000,000 "
                            "characters.\nExporting the rows writes all of it."));
    QVERIFY(model.index(1, 0).data(Qt::ToolTipRole).toString().contains("2,000,000 bytes"));
    QVERIFY(!model.index(0, 0).data(Qt::ToolTipRole).isValid() ||
            model.index(0, 0).data(Qt::ToolTipRole).toString().isEmpty());
    model.sort(0);
    QCOMPARE(model.index(2, 0).data().toString(), bytes);
}

void TestResultModel::longTextIsShownInPart() {
    ResultModel model;
    fill(model, {QString(100000, u'x')});
    QCOMPARE(model.index(0, 0).data().toString(), QString(500, u'x') + QChar(0x2026));
    QVERIFY(!model.hasShortened());
    QCOMPARE(copied(model, QItemSelection(model.index(0, 0), model.index(0, 0))).size(),
             qsizetype(100000));
}

void TestResultModel::cellsAreCopied() {
    ResultModel model;
    model.begin({"id", "city", "total"});
    model.append({{1, "Rome", 0.1 + 0.2}, {2, null, 5}, {3, "", QByteArray("\x01\xff")}});
    model.finish();
    QCOMPARE(copied(model, QItemSelection(model.index(0, 0), model.index(2, 2))),
             QStringLiteral("1\tRome\t0.30000000000000004\n2\t\t5\n3\t\t01ff"));
    QCOMPARE(copied(model, QItemSelection(model.index(0, 1), model.index(1, 1))),
             QStringLiteral("Rome\n"));
    QCOMPARE(copied(model, {}), QString());
}

void TestResultModel::headerIsCopied() {
    ResultModel model;
    model.begin({"id", "the\tcity"});
    model.append({{1, "Rome"}, {2, "Oslo"}});
    model.finish();
    QCOMPARE(
        copied(model, QItemSelection(model.index(0, 0), model.index(1, 1)), CopiedHeader::Names),
        QStringLiteral("id\t\"the\tcity\"\n1\tRome\n2\tOslo"));
    QCOMPARE(
        copied(model, QItemSelection(model.index(1, 0), model.index(1, 0)), CopiedHeader::Names),
        QStringLiteral("id\n2"));
    QCOMPARE(copied(model, {}, CopiedHeader::Names), QString());
}

void TestResultModel::raggedSelectionKeepsColumns() {
    ResultModel model;
    model.begin({"a", "b", "c"});
    model.append({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    model.finish();
    QItemSelection selection(model.index(2, 2), model.index(2, 2));
    selection.merge(QItemSelection(model.index(0, 0), model.index(0, 0)),
                    QItemSelectionModel::Select);
    QCOMPARE(copied(model, selection, CopiedHeader::Names), QStringLiteral("a\tc\n1\t\n\t9"));
}

void TestResultModel::cellWithLineBreakIsQuotedAmongOthers() {
    ResultModel model;
    model.begin({"a", "b"});
    model.append({{"two\nlines", "say \"no\""}, {"a\tb \"c\"", 1}});
    model.finish();
    QCOMPARE(copied(model, QItemSelection(model.index(0, 0), model.index(1, 1))),
             QStringLiteral("\"two\nlines\"\tsay \"no\"\n\"a\tb \"\"c\"\"\"\t1"));
    // A single one goes into other programs as it is.
    QCOMPARE(copied(model, QItemSelection(model.index(0, 0), model.index(0, 0))),
             QStringLiteral("two\nlines"));
}

void TestResultModel::sortedSelectionIsCopiedAsShown() {
    ResultModel model;
    fill(model, {3, 1, 2});
    model.sort(0);
    QCOMPARE(copied(model, QItemSelection(model.index(0, 0), model.index(1, 0))),
             QStringLiteral("1\n2"));
}

QTEST_MAIN(TestResultModel)
#include "tst_app_resultmodel.moc"
