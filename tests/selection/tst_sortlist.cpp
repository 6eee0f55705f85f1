// SPDX-License-Identifier: MIT
#include "selection/ORVQDSortList.h"
#include "support/TestTools.h"

#include <QTest>

using orv::SortList;

namespace {

/// A list over A to D, of which some are sorted.
SortList sorted(const QStringList& names) {
    SortList list;
    for (const QString& name : names) list.append(name, orv::ascendingText());
    list.refresh({"A", "B", "C", "D"});
    return list;
}

QStringList texts(const SortList& list) {
    QStringList result;
    for (const SortList::Line& line : list.lines()) {
        result << line.name + (line.direction == orv::descendingText() ? "-" : "+");
    }
    return result;
}

}  // namespace

class SortListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void directionsAreCalled() {
        QCOMPARE(orv::ascendingText(), "Ascending");
        QCOMPARE(orv::descendingText(), "Descending");
    }

    void unsortedNamesAreThoseLeftOver() {
        QCOMPARE(sorted({}).unsorted(), QStringList({"A", "B", "C", "D"}));
        QCOMPARE(sorted({"C", "A"}).unsorted(), QStringList({"B", "D"}));
    }

    void blankNamesAreNotOffered() {
        SortList list;
        list.refresh({"A", "", "  ", "B"});
        QCOMPARE(list.unsorted(), QStringList({"A", "B"}));
    }

    void addedNameIsSortedLastAndAscending() {
        SortList list = sorted({"C"});
        list.add(1);
        QCOMPARE(texts(list), QStringList({"C+", "B+"}));
        QCOMPARE(list.unsorted(), QStringList({"A", "D"}));
        list.add(-1);
        list.add(2);
        QCOMPARE(texts(list), QStringList({"C+", "B+"}));
    }

    void removedLineIsOfferedAgainInItsPlace() {
        SortList list = sorted({"B", "A"});
        list.remove(0);
        list.refresh({"A", "B", "C", "D"});
        QCOMPARE(texts(list), QStringList("A+"));
        QCOMPARE(list.unsorted(), QStringList({"B", "C", "D"}));
        list.remove(1);
        list.remove(-1);
        QCOMPARE(texts(list), QStringList("A+"));
    }

    void directionChangesToAndFro() {
        SortList list = sorted({"B", "A"});
        list.changeOrder(1);
        QCOMPARE(texts(list), QStringList({"B+", "A-"}));
        list.changeOrder(1);
        QCOMPARE(texts(list), QStringList({"B+", "A+"}));
        list.changeOrder(2);
        list.changeOrder(-1);
        QCOMPARE(texts(list), QStringList({"B+", "A+"}));
    }

    void anythingElseBecomesAscending() {
        SortList list;
        list.append("A", "upside down");
        list.changeOrder(0);
        QCOMPARE(list.lines()[0].direction, orv::ascendingText());
    }

    void linesMoveByOnePlace() {
        SortList list = sorted({"A", "B", "C"});
        list.changeOrder(2);
        list.moveUp(2);
        QCOMPARE(texts(list), QStringList({"A+", "C-", "B+"}));
        list.moveDown(0);
        QCOMPARE(texts(list), QStringList({"C-", "A+", "B+"}));
        list.moveUp(0);
        list.moveDown(2);
        list.moveUp(3);
        list.moveDown(-1);
        QCOMPARE(texts(list), QStringList({"C-", "A+", "B+"}));
    }

    void linesWithoutAnOutputNameGo() {
        SortList list = sorted({"A", "B", "C"});
        QCOMPARE(list.refresh({"A", "b", "C"}, {}, 2), 1);
        QCOMPARE(texts(list), QStringList({"A+", "C+"}));
        QCOMPARE(list.unsorted(), QStringList("b"));
        QCOMPARE(list.refresh({"A"}, {}, 1), -1);
        QCOMPARE(list.refresh({"A"}), -1);
        list.clear();
        QCOMPARE(texts(list), QStringList());
    }

    // Names that are equal vanish together once one of them is sorted.
    void equalNamesAreOfferedUntilOneIsSorted() {
        SortList list;
        list.refresh({"A", "B", "A"});
        QCOMPARE(list.unsorted(), QStringList({"A", "B", "A"}));
        list.add(2);
        list.refresh({"A", "B", "A"});
        QCOMPARE(list.unsorted(), QStringList("B"));
        QCOMPARE(SortList::rowOf(list.lines()[0], {"A", "B", "A"}), 3);
    }

    // --- which row a line means

    void lineMeansTheRowItCameFrom() {
        const SortList::Line loaded{"A", orv::ascendingText(), 3, {}};
        QCOMPARE(SortList::rowOf(loaded, {"A", "B", "A"}), 3);
        QCOMPARE(SortList::rowOf(loaded, {"A", "B"}), 1);
        QCOMPARE(SortList::rowOf(loaded, {"B", "A", "B"}), 2);
        QCOMPARE(SortList::rowOf(loaded, {"B"}), 0);
        const SortList::Line chosen{"A", orv::ascendingText(), 0, {}};
        QCOMPARE(SortList::rowOf(chosen, {"B", "A", "A"}), 2);
    }

    void lineFollowsItsColumnThroughMoves() {
        SortList list;
        list.append("A", orv::ascendingText(), 2, "U.A");
        list.refresh({"A", "A"}, {"U.A", "T.A"});
        QCOMPARE(SortList::rowOf(list.lines()[0], {"A", "A"}, {"U.A", "T.A"}), 1);
        // The table is renamed, then the rows change places again.
        list.refresh({"A", "A"}, {"N.A", "T.A"});
        list.refresh({"A", "A"}, {"T.A", "N.A"});
        QCOMPARE(SortList::rowOf(list.lines()[0], {"A", "A"}, {"T.A", "N.A"}), 2);
    }

    void lineFollowsItsColumnWhenOthersGo() {
        SortList list;
        list.append("A", orv::ascendingText(), 2, "U.A");
        list.refresh({"A", "A"}, {"U.A", "V.A"});
        QCOMPARE(SortList::rowOf(list.lines()[0], {"A", "A"}, {"U.A", "V.A"}), 1);
    }

    // Behind a list, names are listed as a refresh of all of them lists them.
    void appendedNamesAreListedAsByARefresh() {
        const QStringList names = {"A", "B", "A", " ", "C", "B", "D"};
        const QStringList sources = {"1", "2", "3", "4", "5", "6", "7"};
        for (int known = 0; known <= int(names.size()); ++known) {
            orv::SortList grown;
            orv::SortList whole;
            for (orv::SortList* list : {&grown, &whole}) {
                list->append("B", orv::descendingText(), 2, "2");
                (void)list->refresh(names.mid(0, std::max(known, 2)),
                                    sources.mid(0, std::max(known, 2)));
            }
            const int from = std::max(known, 2);
            grown.appendOutputs(names.mid(from), sources.mid(from), from + 1);
            (void)whole.refresh(names, sources);
            QCOMPARE(grown.unsorted(), whole.unsorted());
            QVERIFY(grown.lines() == whole.lines());
            // They sort by the rows that they stand for.
            for (int index = 0; index < int(whole.unsorted().size()); ++index) {
                grown.add(0);
                whole.add(0);
            }
            QVERIFY(grown.lines() == whole.lines());
        }
    }
};

QTEST_MAIN(SortListTest)
#include "tst_sortlist.moc"
