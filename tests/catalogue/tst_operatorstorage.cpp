// SPDX-License-Identifier: MIT
// Lists of operators as texts, as a stream and in forms, and what of a damaged one is kept.
#include "catalogue/OperatorTools.h"
#include "core/Error.h"
#include "querybuilder/ORVQDWindow.h"
#include "support/TestTools.h"

#include <QElapsedTimer>

#include <limits>

using orvtest::fillDistinct;
using orvtest::namesOf;
using orvtest::operatorOf;

namespace {

// What stands in front of each value of a stored list.
constexpr quint8 listEnd = 0;
constexpr quint8 listBegin = 1;
constexpr quint8 number = 2;
constexpr quint8 text = 3;

/// A stored list, written value by value.
struct Stored {
    QByteArray bytes;
    QDataStream out{&bytes, QIODevice::WriteOnly};

    Stored& mark(quint8 mark) {
        out << mark;
        return *this;
    }
    Stored& texts(const QStringList& values) {
        for (const QString& value : values) out << text << value;
        return *this;
    }
    Stored& count(int value) {
        out << number << qint32(value);
        return *this;
    }
};

/// Reads the bytes into the list and returns the text of the error.
QString readError(const QByteArray& bytes, TOperatorList& list) {
    QDataStream stream(bytes);
    const QString error = orvtest::errorOf([&] { stream >> list; });
    return stream.status() == QDataStream::Ok ? QStringLiteral("the stream is in order") : error;
}

QByteArray streamed(const TOperatorList& list) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << list;
    return bytes;
}

}  // namespace

class TestOperatorStorage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stringsAreInTheFixedOrder();
    void stringsComeBack();
    void streamIsInTheFixedOrder();
    void streamComesBack();
    void readingReplacesTheEntries();
    void damagedStringsKeepWholeEntries_data();
    void damagedStringsKeepWholeEntries();
    void stringsWithoutAWholeEntryLeaveTheList_data();
    void stringsWithoutAWholeEntryLeaveTheList();
    void damagedStreamKeepsWholeEntries();
    void streamCutAnywhereKeepsWholeEntries();
    void wrongTypesAreTold_data();
    void wrongTypesAreTold();
    void hostileLengthTakesNoMemory();
    void readingStopsBehindTheList();
    void everyCountComesBack();
    void longListIsReadInLinearTime();
    void readingIsOneChange();
    void plainListsAreCopied();
    void propertyKeepsWholeEntriesOfADamagedList();
    void propertyTellsTheStatementOnce();
    void storedEmptyCatalogueKeepsTheDefaults();
    void storedCatalogueReplacesTheDefaults();
};

void TestOperatorStorage::stringsAreInTheFixedOrder() {
    TOperatorList list;
    fillDistinct(list);
    QCOMPARE(list.toStrings(), QStringList({"N1", "C1", "R1", "PRE1", "POST1", "2", "N2", "C2",
                                            "R2", "PRE2", "POST2", "0"}));
    QCOMPARE(TOperatorList().toStrings(), QStringList());
}

void TestOperatorStorage::stringsComeBack() {
    TOperatorList list;
    fillDistinct(list);
    TOperatorList read;
    read.fromStrings(list.toStrings());
    QCOMPARE(read.Count(), 2);
    QCOMPARE(*read.Items(0), *list.Items(0));
    QCOMPARE(*read.Items(1), *list.Items(1));
}

void TestOperatorStorage::streamIsInTheFixedOrder() {
    TOperatorList list;
    fillDistinct(list);
    Stored expected;
    expected.mark(listBegin);
    expected.texts({"N1", "C1", "R1", "PRE1", "POST1"}).count(2);
    expected.texts({"N2", "C2", "R2", "PRE2", "POST2"}).count(0);
    expected.mark(listEnd);
    QCOMPARE(streamed(list), expected.bytes);
    TOperatorList empty;
    QCOMPARE(streamed(empty), Stored().mark(listBegin).mark(listEnd).bytes);
}

void TestOperatorStorage::streamComesBack() {
    TOperatorList list;
    orv::fillOperators(list);
    fillDistinct(list);
    QDataStream stream(streamed(list));
    TOperatorList read;
    stream >> read;
    QCOMPARE(read.toStrings(), list.toStrings());
}

void TestOperatorStorage::readingReplacesTheEntries() {
    TOperatorList source;
    fillDistinct(source);
    TOperatorList list;
    orv::fillOperators(list);
    QDataStream stream(streamed(source));
    stream >> list;
    QCOMPARE(namesOf(list), QStringList({"N1", "N2"}));
    orv::fillOperators(list);
    list.fromStrings(source.toStrings());
    QCOMPARE(namesOf(list), QStringList({"N1", "N2"}));
}

void TestOperatorStorage::damagedStringsKeepWholeEntries_data() {
    QTest::addColumn<QStringList>("texts");
    const QStringList whole = {"N1", "C1", "R1", "PRE1", "POST1", "2"};
    QTest::newRow("count is a text")
        << whole + QStringList({"N2", "C2", "R2", "PRE2", "POST2", "x"});
    QTest::newRow("count is missing") << whole + QStringList({"N2", "C2", "R2", "PRE2", "POST2"});
    QTest::newRow("one text more") << whole + QStringList({"N2"});
}

void TestOperatorStorage::damagedStringsKeepWholeEntries() {
    QFETCH(QStringList, texts);
    TOperatorList list;
    orv::fillSmallOperators(list);
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.fromStrings(texts));
    QCOMPARE(namesOf(list), QStringList({"N1"}));
}

void TestOperatorStorage::stringsWithoutAWholeEntryLeaveTheList_data() {
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("count is a text") << QStringList({"N", "C", "R", "PRE", "POST", "x"});
    QTest::newRow("too few texts") << QStringList({"N", "C"});
}

void TestOperatorStorage::stringsWithoutAWholeEntryLeaveTheList() {
    QFETCH(QStringList, texts);
    const orvtest::RecordedServices services;
    TorvQueryBuilder builder;
    const QStringList before = builder.OperatorsList();
    builder.setOperatorsList(texts);
    QCOMPARE(builder.OperatorsList(), before);
    QCOMPARE(services.errors.size(), 1);
    TOperatorList list;
    orv::fillSmallOperators(list);
    list.changed = [] { QFAIL("nothing has changed"); };
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.fromStrings(texts));
    QCOMPARE(list.Count(), 6);
}

void TestOperatorStorage::damagedStreamKeepsWholeEntries() {
    Stored stored;
    stored.mark(listBegin).texts({"N1", "C1", "R1", "PRE1", "POST1"}).count(2);
    stored.texts({"N2", "C2"});
    TOperatorList list;
    orv::fillSmallOperators(list);
    QCOMPARE(readError(stored.bytes, list),
             "The stored operator list is damaged: it breaks off at operator 2");
    QCOMPARE(list.toStrings(), QStringList({"N1", "C1", "R1", "PRE1", "POST1", "2"}));
}

// The whole entries that lie in front of the cut are there, and no others.
void TestOperatorStorage::streamCutAnywhereKeepsWholeEntries() {
    TOperatorList source;
    orv::fillOperators(source);
    const QByteArray bytes = streamed(source);
    QList<qsizetype> ends;  // of entries
    for (int count = 1; count <= source.Count(); ++count) {
        TOperatorList part;
        for (int index = 0; index < count; ++index) part.Add(*source.Items(index));
        ends << streamed(part).size() - 1;
    }
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        TOperatorList list;
        list.Add(TorvQDOperator());
        const QString error = readError(bytes.left(length), list);
        const qsizetype whole =
            std::count_if(ends.begin(), ends.end(), [&](qsizetype end) { return end <= length; });
        const QString where = length == 0
                                  ? QStringLiteral("it is empty")
                                  : QStringLiteral("it breaks off at operator %1").arg(whole + 1);
        QCOMPARE(error, "The stored operator list is damaged: " + where);
        QCOMPARE(list.toStrings(), source.toStrings().mid(0, whole * 6));
    }
}

void TestOperatorStorage::wrongTypesAreTold_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("entries");
    const QStringList texts = {"N", "C", "R", "PRE", "POST"};
    const auto whole = [&] {
        Stored stored;
        stored.mark(listBegin).texts(texts).count(1);
        return stored.bytes;
    };
    const auto row = [](const char* name, const QByteArray& bytes, const char* what, int entries) {
        QTest::newRow(name) << bytes << QString::fromLatin1(what) << entries;
    };
    row("no list", Stored().texts({"N"}).bytes, "it does not begin as one", 0);
    row("end alone", Stored().mark(listEnd).bytes, "it does not begin as one", 0);
    const char* const names[] = {"name", "caption", "relate text", "prefix", "postfix"};
    for (int at = 0; at < 5; ++at) {
        Stored stored;
        stored.texts(texts.mid(0, at)).count(7).texts(texts.mid(at + 1)).count(1).mark(listEnd);
        const QString what = QStringLiteral("the %1 of operator 2 is no text").arg(names[at]);
        QTest::newRow(names[at]) << whole() + stored.bytes << what << 1;
    }
    row("count", whole() + Stored().texts(texts).texts({"1"}).mark(listEnd).bytes,
        "the count of operator 2 is no number", 1);
    row("count is missing", whole() + Stored().texts(texts).mark(listEnd).bytes,
        "the count of operator 2 is no number", 1);
    row("list in a list", whole() + Stored().mark(listBegin).mark(listEnd).bytes,
        "the name of operator 2 is no text", 1);
    row("end within an entry", whole() + Stored().texts({"N", "C"}).mark(listEnd).bytes,
        "the relate text of operator 2 is no text", 1);
    row("unknown type", whole() + Stored().mark(200).bytes, "the name of operator 2 is no text", 1);
}

void TestOperatorStorage::wrongTypesAreTold() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, what);
    QFETCH(int, entries);
    TOperatorList list;
    orv::fillSmallOperators(list);
    QCOMPARE(readError(bytes, list), "The stored operator list is damaged: " + what);
    QCOMPARE(list.Count(), entries);
    if (entries > 0) QCOMPARE(list.Items(0)->Postfix, "POST");
}

// A text of two thousand million bytes that is not there.
void TestOperatorStorage::hostileLengthTakesNoMemory() {
    for (const quint32 length : {0x7ffffffeU, 0xfffffffcU, 0xfffffffeU}) {
        Stored stored;
        stored.mark(listBegin).texts({"N"}).mark(text);
        stored.out << length << quint16('x');
        TOperatorList list;
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(readError(stored.bytes, list),
                 "The stored operator list is damaged: it breaks off at operator 1");
        QCOMPARE(list.Count(), 0);
        QVERIFY(timer.elapsed() < 1000);
    }
}

void TestOperatorStorage::readingStopsBehindTheList() {
    TOperatorList first;
    fillDistinct(first);
    TOperatorList second;
    orv::fillSmallOperators(second);
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << first << second << QStringLiteral("behind");
    QDataStream stream(bytes);
    TOperatorList read1;
    TOperatorList read2;
    QString behind;
    stream >> read1 >> read2 >> behind;
    QCOMPARE(read1.toStrings(), first.toStrings());
    QCOMPARE(read2.toStrings(), second.toStrings());
    QCOMPARE(behind, "behind");
}

void TestOperatorStorage::everyCountComesBack() {
    TOperatorList list;
    using Range = std::numeric_limits<int>;
    for (const int count : {Range::min(), -1, 0, 1000, Range::max()}) {
        list.Add(operatorOf("N", "", " ", "\r\n", "", count));
    }
    QDataStream stream(streamed(list));
    TOperatorList read;
    stream >> read;
    QCOMPARE(read.toStrings(), list.toStrings());
    TOperatorList fromTexts;
    fromTexts.fromStrings(list.toStrings());
    QCOMPARE(fromTexts.toStrings(), list.toStrings());
}

void TestOperatorStorage::longListIsReadInLinearTime() {
    TOperatorList list;
    for (int index = 0; index < 100'000; ++index) {
        list.Add(operatorOf("NAME", "caption", "relate", "prefix", "postfix", index));
    }
    QElapsedTimer timer;
    timer.start();
    const QByteArray bytes = streamed(list);
    QDataStream stream(bytes);
    TorvQueryBuilder builder;
    int changes = 0;
    connect(&builder, &TorvQueryBuilder::StatementChanged, this, [&] { ++changes; });
    stream >> *builder.Operators;
    QCOMPARE(builder.Operators->Count(), 100'000);
    QCOMPARE(builder.Operators->Items(99'999)->Count, 99'999);
    QCOMPARE(changes, 1);
    TOperatorList read;
    read.fromStrings(list.toStrings());
    QCOMPARE(read.Count(), 100'000);
    QVERIFY(timer.elapsed() < 20'000);
}

void TestOperatorStorage::readingIsOneChange() {
    TOperatorList source;
    orv::fillOperators(source);
    const QByteArray bytes = streamed(source);
    TOperatorList list;
    fillDistinct(list);
    QList<int> counts;
    list.aboutToChange = [&] { counts << list.Count(); };
    list.changed = [&] { counts << list.Count(); };
    QDataStream stream(bytes);
    stream >> list;
    list.fromStrings({"N", "C", "", "", "", "1"});
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.fromStrings({"N"}));
    list.Assign(&source);
    (void)readError(bytes.chopped(1), list);
    QCOMPARE(counts, QList<int>({2, 14, 14, 1, 1, 14, 14, 14}));
}

void TestOperatorStorage::plainListsAreCopied() {
    TOperatorList source;
    fillDistinct(source);
    std::vector<TOperatorList::Entry> plain = {std::make_shared<TorvQDOperator>()};
    const TOperatorList::Entry before = plain[0];
    source.AssignTo(plain);
    QCOMPARE(int(plain.size()), 2);
    QCOMPARE(*plain[1], *source.Items(1));
    QVERIFY(plain[1] != source.Items(1));
    QCOMPARE(before->Name, "=");  // what was in it is let go, not freed
    TOperatorList list;
    orv::fillSmallOperators(list);
    list.Assign(plain);
    QCOMPARE(list.toStrings(), source.toStrings());
    plain[0]->Name = QStringLiteral("changed");
    QCOMPARE(list.Items(0)->Name, "N1");
}

void TestOperatorStorage::propertyKeepsWholeEntriesOfADamagedList() {
    const orvtest::RecordedServices services;
    TorvQueryBuilder builder;
    const QStringList whole = {"N1", "C1", "R1", "PRE1", "POST1", "2"};
    builder.setProperty("OperatorsList", whole + QStringList({"N2", "C2", "", "", "", "two"}));
    QCOMPARE(builder.OperatorsList(), whole);
    builder.setProperty("OperatorsList", whole + whole.mid(1));
    QCOMPARE(builder.OperatorsList(), whole);
    QCOMPARE(services.errors,
             QStringList({"The stored operator list is damaged: the count of operator 2 is no "
                          "number",
                          "The stored operator list is damaged: it breaks off at operator 2"}));
}

void TestOperatorStorage::propertyTellsTheStatementOnce() {
    TorvQueryBuilder builder;
    int changes = 0;
    connect(&builder, &TorvQueryBuilder::StatementChanged, this, [&] { ++changes; });
    builder.setOperatorsList({"N", "C", "", "", "", "1", "M", "C", "", "", "", "1"});
    QCOMPARE(changes, 1);
    builder.setOperatorsList({});
    QCOMPARE(changes, 1);
    QCOMPARE(builder.Operators->Count(), 2);
}

void TestOperatorStorage::storedEmptyCatalogueKeepsTheDefaults() {
    TorvQueryBuilder designed;
    designed.Operators->Clear();
    const QStringList stored = designed.property("OperatorsList").toStringList();
    QVERIFY(stored.isEmpty());
    TorvQueryBuilder loaded;
    loaded.setProperty("OperatorsList", stored);
    QCOMPARE(loaded.Operators->Count(), 14);
}

void TestOperatorStorage::storedCatalogueReplacesTheDefaults() {
    TorvQueryBuilder designed;
    designed.Operators->Clear();
    fillDistinct(*designed.Operators);
    TorvQueryBuilder loaded;
    loaded.setProperty("OperatorsList", designed.property("OperatorsList"));
    QCOMPARE(namesOf(*loaded.Operators), QStringList({"N1", "N2"}));
}

QTEST_MAIN(TestOperatorStorage)
#include "tst_operatorstorage.moc"
