// SPDX-License-Identifier: MIT
#include "data/NameList.h"

#include <QTest>

using orv::NameList;

namespace {

NameList listOf(const QStringList& names) {
    NameList list;
    for (const QString& name : names) list.append(name);
    return list;
}

}  // namespace

class TestNameList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void appendKeepsTheOrder();
    void appendNewRefusesWhatIsThere();
    void removeTakesAllEqualEntries();
    void removeWithPrefixTakesExactlyThose();
    void transformMayMakeEntriesEqual();
    void clearEmptiesTheLookUpToo();
};

void TestNameList::appendKeepsTheOrder() {
    const NameList list = listOf({"B", "A", "B"});
    QCOMPARE(list.names(), QStringList({"B", "A", "B"}));
    QCOMPARE(list.size(), 3);
    QCOMPARE(list.at(1), QStringLiteral("A"));
    QVERIFY(list.contains(QStringLiteral("A")));
    QVERIFY(!list.contains(QStringLiteral("a")));
}

void TestNameList::appendNewRefusesWhatIsThere() {
    NameList list;
    QVERIFY(list.isEmpty());
    QVERIFY(list.appendNew(QStringLiteral("A")));
    QVERIFY(!list.appendNew(QStringLiteral("A")));
    QCOMPARE(list.names(), QStringList({"A"}));
}

void TestNameList::removeTakesAllEqualEntries() {
    NameList list = listOf({"A", "B", "A", "C"});
    list.remove({QStringLiteral("A"), QStringLiteral("X")});
    QCOMPARE(list.names(), QStringList({"B", "C"}));
    QVERIFY(!list.contains(QStringLiteral("A")));
    QVERIFY(list.contains(QStringLiteral("B")));
}

void TestNameList::removeWithPrefixTakesExactlyThose() {
    NameList list = listOf({"T.A", "T2.A", "T.B", "U.T.A"});
    list.removeWithPrefix(QStringLiteral("T."));
    QCOMPARE(list.names(), QStringList({"T2.A", "U.T.A"}));
    QVERIFY(!list.contains(QStringLiteral("T.A")));
}

void TestNameList::transformMayMakeEntriesEqual() {
    NameList list = listOf({"A", "b"});
    list.transform([](const QString&) { return QStringLiteral("X"); });
    QCOMPARE(list.names(), QStringList({"X", "X"}));
    QVERIFY(list.contains(QStringLiteral("X")));
    QVERIFY(!list.contains(QStringLiteral("A")));
    list.remove({QStringLiteral("X")});
    QVERIFY(list.isEmpty());
}

void TestNameList::clearEmptiesTheLookUpToo() {
    NameList list = listOf({"A"});
    list.clear();
    QVERIFY(list.isEmpty());
    QVERIFY(!list.contains(QStringLiteral("A")));
}

QTEST_GUILESS_MAIN(TestNameList)
#include "tst_namelist.moc"
