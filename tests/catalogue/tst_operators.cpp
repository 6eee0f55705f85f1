// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOperators.h"
#include "core/Error.h"
#include "querybuilder/ORVQDWindow.h"

#include <QBuffer>
#include <QTest>

namespace {

TorvQDOperator operatorOf(const char* name, const char* caption, const char* relate,
                          const char* prefix, const char* postfix, int count) {
    TorvQDOperator result;
    result.Name = QString::fromLatin1(name);
    result.Caption = QString::fromLatin1(caption);
    result.Relate = QString::fromLatin1(relate);
    result.Prefix = QString::fromLatin1(prefix);
    result.Postfix = QString::fromLatin1(postfix);
    result.Count = count;
    return result;
}

// Two entries in which every text differs from every other.
void fillDistinct(TOperatorList& list) {
    list.Add(operatorOf("N1", "C1", "R1", "PRE1", "POST1", 2));
    list.Add(operatorOf("N2", "C2", "R2", "PRE2", "POST2", 0));
}

QStringList namesOf(const TOperatorList& list) {
    QStringList names;
    for (int index = 0; index < list.Count(); ++index) names << list.Items(index)->Name;
    return names;
}

QByteArray streamed(const TOperatorList& list) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << list;
    return bytes;
}

}  // namespace

class TestOperators : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newOperatorIsEquality();
    void assignCopiesAllSixFields();
    void addReturnsTheIndex();
    void itemsOutOfRangeAreNone();
    void deleteOutOfRangeIsIgnored();
    void deleteKeepsTheOthers();
    void clearEmptiesTheList();
    void findNameIsExact();
    void findNameFindsTheFirst();
    void assignCopiesTheEntries();
    void assignOfItselfChangesNothing();
    void assignToAnotherListCopies();
    void assignOfAnotherClassRaises();
    void entriesOutliveTheirList();
    void changesAreAnnouncedAndTold();

    void defaultOperators_data();
    void defaultOperators();
    void smallOperatorsAreTheFirstSix();
    void fillingAppends();
    void defaultGroupOperators_data();
    void defaultGroupOperators();
    void newGroupOperatorIsAll();
    void defaultAggregates();

    void stringsAreInTheFixedOrder();
    void stringsComeBack();
    void streamIsInTheFixedOrder();
    void streamComesBack();
    void readingReplacesTheEntries();
    void damagedStringsKeepWholeEntries_data();
    void damagedStringsKeepWholeEntries();
    void damagedStreamKeepsWholeEntries();
    void negativeCountOfEntriesIsDamage();
    void storedEmptyCatalogueKeepsTheDefaults();
    void storedCatalogueReplacesTheDefaults();
};

void TestOperators::newOperatorIsEquality() {
    const TorvQDOperator fresh;
    QCOMPARE(fresh.Name, QStringLiteral("="));
    QCOMPARE(fresh.Caption, QStringLiteral("="));
    QCOMPARE(fresh.Relate, QString());
    QCOMPARE(fresh.Prefix, QString());
    QCOMPARE(fresh.Postfix, QString());
    QCOMPARE(fresh.Count, 1);
}

void TestOperators::assignCopiesAllSixFields() {
    TorvQDOperator copy;
    copy.Assign(operatorOf("N", "C", "R", "PRE", "POST", 3));
    QCOMPARE(copy.Name, QStringLiteral("N"));
    QCOMPARE(copy.Caption, QStringLiteral("C"));
    QCOMPARE(copy.Relate, QStringLiteral("R"));
    QCOMPARE(copy.Prefix, QStringLiteral("PRE"));
    QCOMPARE(copy.Postfix, QStringLiteral("POST"));
    QCOMPARE(copy.Count, 3);
}

void TestOperators::addReturnsTheIndex() {
    TOperatorList list;
    QCOMPARE(list.Count(), 0);
    QCOMPARE(list.Add(TorvQDOperator()), 0);
    QCOMPARE(list.Add(std::make_shared<TorvQDOperator>()), 1);
    QCOMPARE(list.Count(), 2);
}

void TestOperators::itemsOutOfRangeAreNone() {
    TOperatorList list;
    QVERIFY(!list.Items(0));
    orv::fillSmallOperators(list);
    QVERIFY(!list.Items(-1));
    QVERIFY(!list.Items(list.Count()));
    QVERIFY(list.Items(0));
    QVERIFY(list.Items(list.Count() - 1));
}

void TestOperators::deleteOutOfRangeIsIgnored() {
    TOperatorList list;
    orv::fillSmallOperators(list);
    list.Delete(-1);
    list.Delete(6);
    QCOMPARE(list.Count(), 6);
}

void TestOperators::deleteKeepsTheOthers() {
    TOperatorList list;
    orv::fillSmallOperators(list);
    list.Delete(1);
    QCOMPARE(namesOf(list), QStringList({"=", "<", ">", "<=", ">="}));
}

void TestOperators::clearEmptiesTheList() {
    TOperatorList list;
    orv::fillSmallOperators(list);
    list.Clear();
    QCOMPARE(list.Count(), 0);
}

void TestOperators::findNameIsExact() {
    TOperatorList list;
    orv::fillOperators(list);
    QCOMPARE(list.FindName(QStringLiteral("LIKE")), list.Items(6));
    QVERIFY(!list.FindName(QStringLiteral("like")));
    QVERIFY(!list.FindName(QStringLiteral("LIKE ")));
    QVERIFY(!list.FindName(QString()));
}

void TestOperators::findNameFindsTheFirst() {
    TOperatorList list;
    list.Add(operatorOf("X", "first", "", "", "", 1));
    list.Add(operatorOf("X", "second", "", "", "", 1));
    QCOMPARE(list.FindName(QStringLiteral("X"))->Caption, QStringLiteral("first"));
}

void TestOperators::assignCopiesTheEntries() {
    TOperatorList source;
    fillDistinct(source);
    TOperatorList dest;
    orv::fillSmallOperators(dest);
    dest.Assign(&source);
    QCOMPARE(dest.Count(), 2);
    QCOMPARE(*dest.Items(0), *source.Items(0));
    QCOMPARE(*dest.Items(1), *source.Items(1));
    source.Items(0)->Name = QStringLiteral("changed");
    QCOMPARE(dest.Items(0)->Name, QStringLiteral("N1"));
}

void TestOperators::assignOfItselfChangesNothing() {
    TOperatorList list;
    fillDistinct(list);
    list.Assign(&list);
    QCOMPARE(namesOf(list), QStringList({"N1", "N2"}));
}

void TestOperators::assignToAnotherListCopies() {
    TOperatorList source;
    fillDistinct(source);
    TOperatorList dest;
    source.AssignTo(&dest);
    QCOMPARE(namesOf(dest), QStringList({"N1", "N2"}));
    QVERIFY(dest.Items(0) != source.Items(0));
}

void TestOperators::assignOfAnotherClassRaises() {
    TOperatorList list;
    fillDistinct(list);
    TPersistent other;
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.Assign(&other));
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.AssignTo(&other));
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.Assign(nullptr));
    QCOMPARE(list.Count(), 2);
}

void TestOperators::entriesOutliveTheirList() {
    TOperatorList::Entry entry;
    {
        TOperatorList list;
        fillDistinct(list);
        entry = list.Items(1);
    }
    QCOMPARE(entry->Name, QStringLiteral("N2"));
}

void TestOperators::changesAreAnnouncedAndTold() {
    TOperatorList list;
    QList<int> counts;  // before and behind each change
    list.aboutToChange = [&] { counts << list.Count(); };
    list.changed = [&] { counts << list.Count(); };
    list.Add(TorvQDOperator());
    list.Add(TorvQDOperator());
    list.Delete(5);
    list.Delete(0);
    list.Clear();
    QCOMPARE(counts, QList<int>({0, 1, 1, 2, 2, 1, 1, 0}));
}

void TestOperators::defaultOperators_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("relate");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("postfix");
    QTest::addColumn<int>("count");
    int index = 0;
    const auto row = [&](const char* name, const char* relate, const char* prefix,
                         const char* postfix, int count) {
        QTest::newRow(name) << index++ << QString::fromLatin1(relate) << QString::fromLatin1(prefix)
                            << QString::fromLatin1(postfix) << count;
    };
    row("=", "", "", "", 1);
    row("<>", "", "", "", 1);
    row("<", "", "", "", 1);
    row(">", "", "", "", 1);
    row("<=", "", "", "", 1);
    row(">=", "", "", "", 1);
    row("LIKE", "", "", "", 1);
    row("NOT LIKE", "", "", "", 1);
    row("IN", "", "(", ")", 1);
    row("NOT IN", "", "(", ")", 1);
    row("BETWEEN", " and ", "", "", 2);
    row("NOT BETWEEN", " and ", "", "", 2);
    row("IS NULL", "", "", "", 0);
    row("IS NOT NULL", "", "", "", 0);
}

void TestOperators::defaultOperators() {
    QFETCH(int, index);
    QFETCH(QString, relate);
    QFETCH(QString, prefix);
    QFETCH(QString, postfix);
    QFETCH(int, count);
    TOperatorList list;
    orv::fillOperators(list);
    QCOMPARE(list.Count(), 14);
    const TOperatorList::Entry entry = list.Items(index);
    QCOMPARE(entry->Name, QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(entry->Caption, entry->Name);
    QCOMPARE(entry->Relate, relate);
    QCOMPARE(entry->Prefix, prefix);
    QCOMPARE(entry->Postfix, postfix);
    QCOMPARE(entry->Count, count);
}

void TestOperators::smallOperatorsAreTheFirstSix() {
    TOperatorList list;
    orv::fillSmallOperators(list);
    QCOMPARE(namesOf(list), QStringList({"=", "<>", "<", ">", "<=", ">="}));
}

void TestOperators::fillingAppends() {
    TOperatorList list;
    list.Add(operatorOf("MINE", "MINE", "", "", "", 1));
    orv::fillSmallOperators(list);
    QCOMPARE(list.Count(), 7);
    QCOMPARE(list.Items(0)->Name, QStringLiteral("MINE"));
}

void TestOperators::defaultGroupOperators_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("connector");
    QTest::newRow("All") << 0 << " "
                         << " and ";
    QTest::newRow("Any") << 1 << " "
                         << " or ";
    QTest::newRow("None") << 2 << "not"
                          << " and ";
    QTest::newRow("Not all") << 3 << "not"
                             << " or ";
}

void TestOperators::defaultGroupOperators() {
    QFETCH(int, index);
    QFETCH(QString, prefix);
    QFETCH(QString, connector);
    TGroupOperators list;
    QObject owner;
    orv::fillGroupOperators(list, &owner);
    QCOMPARE(int(list.size()), 4);
    const TorvQDGroupFunc& entry = list[std::size_t(index)];
    QCOMPARE(entry.Caption, QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(entry.Prefix, prefix);
    QCOMPARE(entry.Connector, connector);
    QCOMPARE(entry.GetOwner(), &owner);
}

void TestOperators::newGroupOperatorIsAll() {
    const TorvQDGroupFunc fresh;
    QCOMPARE(fresh.Caption, QStringLiteral("All"));
    QCOMPARE(fresh.Prefix, QStringLiteral(" "));
    QCOMPARE(fresh.Connector, QStringLiteral(" and "));
    QVERIFY(!fresh.GetOwner());
}

void TestOperators::defaultAggregates() {
    QStringList list;
    orv::fillAggregates(list);
    QCOMPARE(list, QStringList({"         ", "SUM", "MIN", "MAX", "AVG", "COUNT"}));
    QCOMPARE(orv::blankText().size(), 9);
}

void TestOperators::stringsAreInTheFixedOrder() {
    TOperatorList list;
    fillDistinct(list);
    QCOMPARE(list.toStrings(), QStringList({"N1", "C1", "R1", "PRE1", "POST1", "2", "N2", "C2",
                                            "R2", "PRE2", "POST2", "0"}));
    QCOMPARE(TOperatorList().toStrings(), QStringList());
}

void TestOperators::stringsComeBack() {
    TOperatorList list;
    fillDistinct(list);
    TOperatorList read;
    read.fromStrings(list.toStrings());
    QCOMPARE(read.Count(), 2);
    QCOMPARE(*read.Items(0), *list.Items(0));
    QCOMPARE(*read.Items(1), *list.Items(1));
}

void TestOperators::streamIsInTheFixedOrder() {
    TOperatorList list;
    fillDistinct(list);
    QDataStream stream(streamed(list));
    qint32 entries = 0;
    stream >> entries;
    QCOMPARE(entries, 2);
    for (const char* number : {"1", "2"}) {
        for (const char* text : {"N", "C", "R", "PRE", "POST"}) {
            QString read;
            stream >> read;
            QCOMPARE(read, QString::fromLatin1(text) + QString::fromLatin1(number));
        }
        qint32 count = -1;
        stream >> count;
        QCOMPARE(count, *number == '1' ? 2 : 0);
    }
    QVERIFY(stream.atEnd());
}

void TestOperators::streamComesBack() {
    TOperatorList list;
    orv::fillOperators(list);
    fillDistinct(list);
    QDataStream stream(streamed(list));
    TOperatorList read;
    stream >> read;
    QCOMPARE(read.toStrings(), list.toStrings());
}

void TestOperators::readingReplacesTheEntries() {
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

void TestOperators::damagedStringsKeepWholeEntries_data() {
    QTest::addColumn<QStringList>("texts");
    const QStringList whole = {"N1", "C1", "R1", "PRE1", "POST1", "2"};
    QTest::newRow("count is a text")
        << whole + QStringList({"N2", "C2", "R2", "PRE2", "POST2", "x"});
    QTest::newRow("count is missing") << whole + QStringList({"N2", "C2", "R2", "PRE2", "POST2"});
    QTest::newRow("one text more") << whole + QStringList({"N2"});
}

void TestOperators::damagedStringsKeepWholeEntries() {
    QFETCH(QStringList, texts);
    TOperatorList list;
    orv::fillSmallOperators(list);
    QVERIFY_THROWS_EXCEPTION(orv::Error, list.fromStrings(texts));
    QCOMPARE(namesOf(list), QStringList({"N1"}));
}

void TestOperators::damagedStreamKeepsWholeEntries() {
    TOperatorList source;
    fillDistinct(source);
    const QByteArray bytes = streamed(source).chopped(1);
    TOperatorList list;
    orv::fillSmallOperators(list);
    QDataStream stream(bytes);
    QVERIFY_THROWS_EXCEPTION(orv::Error, stream >> list);
    QCOMPARE(namesOf(list), QStringList({"N1"}));
}

void TestOperators::negativeCountOfEntriesIsDamage() {
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << qint32(-1);
    TOperatorList list;
    QDataStream stream(bytes);
    QVERIFY_THROWS_EXCEPTION(orv::Error, stream >> list);
}

void TestOperators::storedEmptyCatalogueKeepsTheDefaults() {
    TorvQueryBuilder designed;
    designed.Operators->Clear();
    const QStringList stored = designed.property("OperatorsList").toStringList();
    QVERIFY(stored.isEmpty());
    TorvQueryBuilder loaded;
    loaded.setProperty("OperatorsList", stored);
    QCOMPARE(loaded.Operators->Count(), 14);
}

void TestOperators::storedCatalogueReplacesTheDefaults() {
    TorvQueryBuilder designed;
    designed.Operators->Clear();
    fillDistinct(*designed.Operators);
    TorvQueryBuilder loaded;
    loaded.setProperty("OperatorsList", designed.property("OperatorsList"));
    QCOMPARE(namesOf(*loaded.Operators), QStringList({"N1", "N2"}));
}

QTEST_MAIN(TestOperators)
#include "tst_operators.moc"
