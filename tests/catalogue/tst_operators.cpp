// SPDX-License-Identifier: MIT
#include "catalogue/OperatorTools.h"
#include "core/Error.h"
#include "support/TestTools.h"

using orvtest::fillDistinct;
using orvtest::namesOf;
using orvtest::operatorOf;

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
    void listMayDieWhenItTells();

    void defaultOperators_data();
    void defaultOperators();
    void smallOperatorsAreTheFirstSix();
    void fillingAppends();
    void defaultGroupOperators_data();
    void defaultGroupOperators();
    void newGroupOperatorIsAll();
    void defaultAggregates();
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

void TestOperators::listMayDieWhenItTells() {
    auto list = std::make_unique<TOperatorList>();
    list->changed = [&list, text = QString(100, u'x')] {
        list.reset();
        QCOMPARE(text.size(), 100);
    };
    QCOMPARE(list->Add(TorvQDOperator()), 0);
    QVERIFY(!list);
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

QTEST_MAIN(TestOperators)
#include "tst_operators.moc"
