// SPDX-License-Identifier: MIT
// Joins and links of the work area: added, found, selected, rerouted and removed.
#include "contract/DiagramEvents.h"
#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

using orvtest::HostedBuilder;

namespace {

/// A diagram with boxes, and what it told of its links.
class LinkedBuilder : public HostedBuilder {
public:
    explicit LinkedBuilder(const QStringList& tables, bool keepMeaning = false)
        : HostedBuilder(keepMeaning) {
        for (const QString& name : tables) addTable(name);
        area().OnAddLink = [this](QObject* sender, QObject* link) {
            if (sender == &area()) told << "+" + hintOf(link);
        };
        area().OnRemoveLink = [this](QObject* sender, QObject* link) {
            if (sender == &area()) told << "-" + hintOf(link);
        };
        builder.OnAddRemoveLink = [this](QObject* sender, TorvQDLink* link, TAddRemove action,
                                         bool& can) {
            if (sender == &builder) asked << (action == araAdd ? "+" : "-") + link->GetHint();
            can = allows;
        };
        changes = 0;
    }

    [[nodiscard]] TorvQDWorkArea& area() const { return *builder.WorkArea; }
    [[nodiscard]] TorvQDListItem* row(const QString& alias, const QString& field) const {
        return table(alias)->GetFieldItem(field);
    }
    TorvQDLink* link(const QString& from, const QString& field1, const QString& to,
                     const QString& field2) {
        return area().AddLink(table(from), table(to), row(from, field1), row(to, field2));
    }
    [[nodiscard]] QStringList links() const {
        QStringList hints;
        for (const TorvQDLink* each : area().Links()) hints << each->GetHint();
        return hints;
    }
    [[nodiscard]] QStringList joins() const {
        QStringList pairs;
        for (const TorvQDJoin* each : area().Joins()) {
            pairs << each->GetTable(0)->GetAlias() + "-" + each->GetTable(1)->GetAlias();
        }
        return pairs;
    }
    static QString hintOf(QObject* link) { return qobject_cast<TorvQDLink*>(link)->GetHint(); }

    QStringList told;
    QStringList asked;
    bool allows = true;
};

/// What holds between joins and links whatever happened.
QString brokenLinkRule(const TorvQDWorkArea& area) {
    QList<const TorvQDLink*> joined;
    QStringList pairs;
    for (const TorvQDJoin* join : area.Joins()) {
        if (area.linksOf(join).empty()) return "a join has no link";
        for (const TorvQDLink* link : area.linksOf(join)) {
            if (link->Join != join) return "a link belongs to another join";
            if (link->Item1->Table != join->Table1) return "the first row is not of the first box";
            if (link->Item2->Table != join->Table2) return "the second row is not of the second";
            joined << link;
        }
        for (const TorvQDTable* box : {join->Table1, join->Table2}) {
            const auto& boxes = area.tablesByCreation();
            if (std::count(boxes.begin(), boxes.end(), box) != 1) return "a join has no box";
        }
        bool reversed = true;
        if (area.FindJoin(join->Table1, join->Table2, reversed) != join || reversed) {
            return "a join is not found";
        }
    }
    if (joined.size() != qsizetype(area.Links().size())) return "a link has no join";
    return {};
}

}  // namespace

#define verifyLinks(on) QCOMPARE(brokenLinkRule((on).area()), QString())

class FloatPanelLinksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- adding

    void firstLinkMakesTheJoin() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        QVERIFY(link);
        QCOMPARE(on.joins(), QStringList("T-U"));
        QCOMPARE(on.links(), QStringList("T.A=U.X"));
        QCOMPARE(link->Join, on.area().Joins().front());
        QCOMPARE(link->Join->KindOfJoin, klInnerJoin);
        QCOMPARE(link->Item1, on.row("T", "A"));
        QCOMPARE(link->Item2, on.row("U", "X"));
        QCOMPARE(on.asked, QStringList("+T.A=U.X"));
        QCOMPARE(on.told, QStringList("+T.A=U.X"));
        QCOMPARE(on.changes, 1);
        verifyLinks(on);
    }

    // Whatever order the caller gives: the first row stays that of the join's first box.
    void secondLinkSharesTheJoin() {
        LinkedBuilder on({"T", "U"});
        on.link("T", "A", "U", "X");
        on.link("U", "Y", "T", "B");
        on.link("T", "C", "U", "A");
        QCOMPARE(on.joins(), QStringList("T-U"));
        QCOMPARE(on.links(), QStringList({"T.A=U.X", "T.B=U.Y", "T.C=U.A"}));
        QCOMPARE(on.told, QStringList({"+T.A=U.X", "+T.B=U.Y", "+T.C=U.A"}));
        verifyLinks(on);
    }

    void identicalLinkIsNotRefused() {
        LinkedBuilder on({"T", "U"});
        on.link("T", "A", "U", "X");
        on.link("U", "X", "T", "A");
        QCOMPARE(on.links(), QStringList({"T.A=U.X", "T.A=U.X"}));
        verifyLinks(on);
    }

    void joinsStandInTheOrderOfTheirCreation() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("DEPT", "DEPT_NO", "T", "A");
        on.link("U", "A", "T", "B");
        on.link("T", "C", "DEPT", "BUDGET");
        QCOMPARE(on.joins(), QStringList({"DEPT-T", "U-T"}));
        verifyLinks(on);
    }

    void whatIsNoBoxOfTheDiagramIsNotLinked() {
        LinkedBuilder on({"T", "U"});
        LinkedBuilder other({"T"});
        TorvQDTable* t = on.table("T");
        TorvQDListItem* row = on.row("T", "A");
        QVERIFY(!on.area().AddLink(nullptr, t, nullptr, row));
        QVERIFY(!on.area().AddLink(t, nullptr, row, nullptr));
        QVERIFY(!on.area().AddLink(t, on.table("U"), row, nullptr));
        QVERIFY(!on.area().AddLink(t, other.table("T"), row, other.row("T", "A")));
        TorvQDTable* closed = on.table("U");
        TorvQDListItem* closedRow = on.row("U", "X");
        closed->CloseTable();
        QVERIFY(!on.area().AddLink(t, closed, row, closedRow));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.joins(), QStringList());
    }

    void boxMayBeLinkedWithItself() {
        LinkedBuilder on({"T"});
        on.link("T", "A", "T", "B");
        QCOMPARE(on.joins(), QStringList("T-T"));
        QCOMPARE(on.area().GetSQLStatment(), "T\r\n   INNER JOIN T ON (T.A = T.B)");
        verifyLinks(on);
        on.area().RemoveLink(on.area().Links()[0], true);
        QCOMPARE(on.joins(), QStringList());
        verifyLinks(on);
    }

    void refusedLinkLeavesTheModelAsItWas() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("T", "A", "U", "X");
        on.allows = false;
        on.told.clear();
        on.changes = 0;
        QVERIFY(!on.link("T", "B", "DEPT", "BUDGET"));
        QVERIFY(!on.link("U", "Y", "T", "B"));
        QCOMPARE(on.asked, QStringList({"+T.A=U.X", "+T.B=DEPT.BUDGET", "+T.B=U.Y"}));
        QCOMPARE(on.told, QStringList());
        QCOMPARE(on.joins(), QStringList("T-U"));
        QCOMPARE(on.links(), QStringList("T.A=U.X"));
        QCOMPARE(on.changes, 0);
        verifyLinks(on);
    }

    void throwingVetoLeavesTheModelAsItWas() {
        LinkedBuilder on({"T", "U"});
        on.builder.OnAddRemoveLink = [](QObject*, TorvQDLink*, TAddRemove, bool&) {
            throw orv::Error(QStringLiteral("no"));
        };
        QCOMPARE(orvtest::errorOf([&] { on.link("T", "A", "U", "X"); }), "no");
        QCOMPARE(on.joins(), QStringList());
        QCOMPARE(on.links(), QStringList());
        verifyLinks(on);
    }

    void vetoSeesADiagramWithoutTheLink() {
        LinkedBuilder on({"T", "U"});
        QStringList seen;
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink*, TAddRemove, bool&) {
            seen << on.links() << on.joins() << on.area().GetSQLStatment();
        };
        on.link("T", "A", "U", "X");
        QCOMPARE(seen, QStringList("U,\r\nT"));
    }

    void linkIsThereWhenItIsTold() {
        LinkedBuilder on({"T", "U"});
        QStringList seen;
        on.area().OnAddLink = [&](QObject*, QObject*) { seen = on.links(); };
        on.link("T", "A", "U", "X");
        QCOMPARE(seen, QStringList("T.A=U.X"));
    }

    void vetoMayLinkTheSameBoxes_data() {
        QTest::addColumn<bool>("turned");
        QTest::newRow("same way") << false;
        QTest::newRow("turned round") << true;
    }
    void vetoMayLinkTheSameBoxes() {
        QFETCH(bool, turned);
        LinkedBuilder on({"T", "U"});
        int calls = 0;
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink*, TAddRemove, bool&) {
            if (++calls != 1) return;
            if (turned) {
                on.link("U", "Y", "T", "B");
            } else {
                on.link("T", "B", "U", "Y");
            }
        };
        on.link("T", "A", "U", "X");
        QCOMPARE(on.joins(), QStringList(turned ? "U-T" : "T-U"));
        QCOMPARE(on.links(), turned ? QStringList({"U.Y=T.B", "U.X=T.A"})
                                    : QStringList({"T.B=U.Y", "T.A=U.X"}));
        verifyLinks(on);
    }

    void vetoMayRemoveTheJoinOfTheLink() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* old = on.link("T", "A", "U", "X");
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink*, TAddRemove, bool&) {
            on.area().RemoveLink(old, false);
        };
        on.link("U", "Y", "T", "B");
        QCOMPARE(on.links(), QStringList("T.B=U.Y"));
        QCOMPARE(on.joins(), QStringList("T-U"));
        verifyLinks(on);
    }

    void vetoMayCloseABoxOfTheLink() {
        LinkedBuilder on({"T", "U"});
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink*, TAddRemove, bool&) {
            on.table("U")->CloseTable();
        };
        QVERIFY(!on.link("T", "A", "U", "X"));
        QCOMPARE(on.tables(), QStringList("T"));
        QCOMPARE(on.joins(), QStringList());
        verifyLinks(on);
    }

    void raisingNotificationLeavesTheLink() {
        LinkedBuilder on({"T", "U"});
        on.area().OnAddLink = [](QObject*, QObject*) { throw orv::Error(QStringLiteral("slot")); };
        QCOMPARE(orvtest::errorOf([&] { on.link("T", "A", "U", "X"); }), "slot");
        QCOMPARE(on.links(), QStringList("T.A=U.X"));
        QCOMPARE(on.changes, 1);
        verifyLinks(on);
    }

    // --- finding

    void joinIsFoundFromBothSides() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("T", "A", "U", "X");
        bool reversed = true;
        QCOMPARE(on.area().FindJoin(on.table("T"), on.table("U"), reversed), on.area().Joins()[0]);
        QVERIFY(!reversed);
        QCOMPARE(on.area().FindJoin(on.table("U"), on.table("T"), reversed), on.area().Joins()[0]);
        QVERIFY(reversed);
        QVERIFY(!on.area().FindJoin(on.table("T"), on.table("DEPT"), reversed));
        QVERIFY(!reversed);
        QVERIFY(!on.area().FindJoin(on.table("T"), on.table("T"), reversed));
        QVERIFY(!on.area().FindJoin(nullptr, on.table("T"), reversed));
    }

    void linkIsFoundFromBothSides() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("T", "A", "U", "X");
        on.link("U", "Y", "T", "B");
        const auto finds = [&](const char* t1, const char* f1, const char* t2, const char* f2) {
            return on.area().FindLink(on.table(t1), on.table(t2), on.row(t1, f1), on.row(t2, f2));
        };
        QVERIFY(finds("T", "A", "U", "X"));
        QVERIFY(finds("U", "X", "T", "A"));
        QVERIFY(finds("T", "B", "U", "Y"));
        QVERIFY(finds("U", "Y", "T", "B"));
        QVERIFY(!finds("T", "A", "U", "Y"));
        QVERIFY(!finds("T", "B", "U", "X"));
        QVERIFY(!finds("U", "X", "T", "B"));
        QVERIFY(!finds("T", "A", "DEPT", "BUDGET"));
        // The rows belong to the other boxes than the caller says.
        QVERIFY(
            !on.area().FindLink(on.table("T"), on.table("U"), on.row("U", "X"), on.row("T", "A")));
    }

    // --- removing

    void joinGoesWithItsLastLink() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* first = on.link("T", "A", "U", "X");
        TorvQDLink* second = on.link("T", "B", "U", "Y");
        on.asked.clear();
        on.told.clear();
        on.changes = 0;
        on.area().RemoveLink(first, true);
        QCOMPARE(on.joins(), QStringList("T-U"));
        QCOMPARE(on.links(), QStringList("T.B=U.Y"));
        on.area().RemoveLink(second, false);
        QCOMPARE(on.joins(), QStringList());
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(on.told, QStringList({"-T.A=U.X", "-T.B=U.Y"}));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.changes, 2);
        bool reversed = false;
        QVERIFY(!on.area().FindJoin(on.table("T"), on.table("U"), reversed));
        verifyLinks(on);
    }

    void linkThatIsNotThereIsNotRemoved() {
        LinkedBuilder on({"T", "U"});
        LinkedBuilder other({"T", "U"});
        TorvQDLink* foreign = other.link("T", "A", "U", "X");
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.area().RemoveLink(link, true);
        on.told.clear();
        on.area().RemoveLink(link, true);
        on.area().RemoveLink(foreign, true);
        on.area().RemoveLink(nullptr, true);
        QCOMPARE(on.told, QStringList());
        QCOMPARE(other.links(), QStringList("T.A=U.X"));
    }

    void linkHasLeftWhenItsRemovalIsTold() {
        LinkedBuilder on({"T", "U"});
        on.link("T", "A", "U", "X");
        QStringList seen;
        on.area().OnRemoveLink = [&](QObject*, QObject* link) {
            seen << on.links() << LinkedBuilder::hintOf(link);
        };
        on.area().RemoveLink(on.area().Links()[0], true);
        QCOMPARE(seen, QStringList("T.A=U.X"));
    }

    void removalToldMayRemoveTheOtherLink() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* first = on.link("T", "A", "U", "X");
        TorvQDLink* second = on.link("T", "B", "U", "Y");
        int calls = 0;
        on.area().OnRemoveLink = [&](QObject*, QObject*) {
            if (++calls == 1) on.area().RemoveLink(second, true);
        };
        on.area().RemoveLink(first, true);
        QCOMPARE(calls, 2);
        QCOMPARE(on.joins(), QStringList());
        verifyLinks(on);
    }

    void removalToldMayLinkTheBoxesAgain() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        link->Join->KindOfJoin = klLOuterJoin;
        on.area().OnRemoveLink = [&](QObject*, QObject*) { on.link("U", "Y", "T", "B"); };
        on.area().RemoveLink(link, true);
        QCOMPARE(on.joins(), QStringList("T-U"));
        QCOMPARE(on.links(), QStringList("T.B=U.Y"));
        verifyLinks(on);
    }

    void raisingNotificationDoesNotKeepTheLink() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.area().OnRemoveLink = [](QObject*, QObject*) {
            throw orv::Error(QStringLiteral("slot"));
        };
        on.changes = 0;
        QCOMPARE(orvtest::errorOf([&] { on.area().RemoveLink(link, true); }), "slot");
        QCOMPARE(on.joins(), QStringList());
        QCOMPARE(on.changes, 1);
        verifyLinks(on);
    }

    void linkDiesAfterItsOwnHandlerHasReturned() {
        LinkedBuilder on({"T", "U"});
        const QPointer<TorvQDLink> link = on.link("T", "A", "U", "X");
        on.area().RemoveLink(link, true);
        QVERIFY(link);
        QCoreApplication::processEvents();
        QVERIFY(!link);
    }

    // --- messages

    void deleteMessageAsksFirst() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.asked.clear();
        on.allows = false;
        TorvDiagramEvent refused(CMDELETELINK, link);
        QCoreApplication::sendEvent(&on.area(), &refused);
        QCOMPARE(on.asked, QStringList("-T.A=U.X"));
        QCOMPARE(on.links(), QStringList("T.A=U.X"));
        on.allows = true;
        QCoreApplication::postEvent(&on.area(), new TorvDiagramEvent(CMDELETELINK, link));
        QCOMPARE(on.links(), QStringList("T.A=U.X"));
        QCoreApplication::processEvents();
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(on.joins(), QStringList());
        QCOMPARE(on.asked, QStringList({"-T.A=U.X", "-T.A=U.X"}));
        QCOMPARE(on.told, QStringList({"+T.A=U.X", "-T.A=U.X"}));
    }

    // Two presses on the menu, or a link that went another way before the message came.
    void lateDeleteMessageDoesNothing() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.asked.clear();
        QCoreApplication::postEvent(&on.area(), new TorvDiagramEvent(CMDELETELINK, link));
        QCoreApplication::postEvent(&on.area(), new TorvDiagramEvent(CMDELETELINK, link));
        on.area().RemoveLink(link, true);
        QCoreApplication::processEvents();
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.told, QStringList({"+T.A=U.X", "-T.A=U.X"}));
    }

    void vetoOfADeletionMayRemoveTheLink() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink* asked, TAddRemove, bool&) {
            on.area().RemoveLink(asked, true);
        };
        on.area().deleteLink(link);
        QCOMPARE(on.told, QStringList({"+T.A=U.X", "-T.A=U.X"}));
        verifyLinks(on);
    }

    void unlinkMessageTakesAllLinksOfTheBoxAndAsksNobody() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("T", "A", "U", "X");
        on.link("DEPT", "BUDGET", "T", "B");
        on.link("DEPT", "DEPT_NO", "U", "Y");
        on.link("U", "A", "T", "C");
        on.asked.clear();
        on.told.clear();
        on.changes = 0;
        TorvDiagramEvent message(CMUNLINKTABLE, on.table("T"));
        QCoreApplication::sendEvent(&on.area(), &message);
        // In the order in which they were made, whatever join they belong to.
        QCOMPARE(on.told, QStringList({"-T.A=U.X", "-DEPT.BUDGET=T.B", "-T.C=U.A"}));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.links(), QStringList("DEPT.DEPT_NO=U.Y"));
        QCOMPARE(on.joins(), QStringList("DEPT-U"));
        QCOMPARE(on.changes, 1);
        verifyLinks(on);
    }

    void closingABoxTakesItsLinks() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("T", "A", "U", "X");
        on.link("U", "Y", "DEPT", "BUDGET");
        on.asked.clear();
        on.told.clear();
        on.changes = 0;
        on.table("U")->CloseTable();
        QCOMPARE(on.told, QStringList({"-T.A=U.X", "-U.Y=DEPT.BUDGET"}));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.joins(), QStringList());
        QCOMPARE(on.tables(), QStringList({"T", "DEPT"}));
        QCOMPARE(on.changes, 1);
        verifyLinks(on);
        verifyBuilder(on.builder);
    }

    void boxThatMayNotGoKeepsItsLinks() {
        LinkedBuilder on({"T", "U"});
        on.link("T", "A", "U", "X");
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            can = false;
        };
        on.table("U")->CloseTable();
        QCOMPARE(on.links(), QStringList("T.A=U.X"));
        verifyLinks(on);
    }

    void closedBoxGetsNoNewLink() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.link("T", "A", "U", "X");
        on.link("T", "B", "DEPT", "BUDGET");
        TorvQDTable* t = on.table("T");
        TorvQDListItem* row = on.row("T", "C");
        on.area().OnRemoveLink = [&](QObject*, QObject*) {
            on.area().AddLink(on.table("U"), t, on.row("U", "Y"), row);
        };
        t->CloseTable();
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(on.joins(), QStringList());
        verifyLinks(on);
    }

    void raisingNotificationsDoNotKeepTheBox() {
        LinkedBuilder on({"T", "U", "DEPT"});
        on.tick("T", "A");
        on.link("T", "A", "U", "X");
        on.link("T", "B", "DEPT", "BUDGET");
        int removed = 0;
        on.area().OnRemoveLink = [&](QObject*, QObject*) {
            ++removed;
            throw orv::Error(QStringLiteral("slot ") + QString::number(removed));
        };
        QCOMPARE(orvtest::errorOf([&] { on.table("T")->CloseTable(); }), "slot 1");
        QCOMPARE(removed, 2);
        QCOMPARE(on.tables(), QStringList({"U", "DEPT"}));
        QCOMPARE(on.joins(), QStringList());
        verifyLinks(on);
        verifyBuilder(on.builder);
    }

    void clearingTellsAndAsksNobody() {
        LinkedBuilder on({"T", "U"});
        const QPointer<TorvQDLink> link = on.link("T", "A", "U", "X");
        on.area().selectObject(link);
        on.asked.clear();
        on.told.clear();
        on.area().ClearContents();
        QCOMPARE(on.told, QStringList());
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.joins(), QStringList());
        QCOMPARE(on.links(), QStringList());
        QVERIFY(!on.area().selectedObject());
        QCOMPARE(on.area().GetSQLStatment(), QString());
        QCoreApplication::processEvents();
        QVERIFY(!link);
        on.addTable("T");
        on.addTable("U");
        on.link("T", "B", "U", "Y");
        QCOMPARE(on.links(), QStringList("T.B=U.Y"));
        verifyLinks(on);
    }

    void builderDiesWithItsLinks() {
        QPointer<TorvQDLink> link;
        {
            LinkedBuilder on({"T", "U"});
            link = on.link("T", "A", "U", "X");
            on.area().selectObject(link);
        }
        QVERIFY(!link);
    }

    // --- selecting

    void selectingALinkTellsItsRows() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("U", "X", "T", "A");
        QStringList selections;
        on.area().OnSelectionLink = [&](QObject* sender, TorvQDTable* table1, TorvQDTable* table2,
                                        TorvQDListItem* item1, TorvQDListItem* item2, bool state) {
            QCOMPARE(sender, &on.area());
            selections << table1->GetAlias() + "." + item1->Name + " " + table2->GetAlias() + "." +
                              item2->Name + (state ? " on" : " off");
        };
        on.area().selectObject(link);
        QVERIFY(link->Selected);
        QCOMPARE(on.area().selectedObject(), link);
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QVERIFY(on.row("T", "A")->Selected);
        on.area().selectObject(on.table("T"));
        QVERIFY(!link->Selected);
        QVERIFY(!on.row("T", "A")->Selected);
        QCOMPARE(selections, QStringList({"U.X T.A on", "U.X T.A off"}));
    }

    void removingTheSelectedLinkDeselectsIt() {
        LinkedBuilder on({"T", "U"});
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.area().selectObject(link);
        QStringList order;
        on.area().OnSelectionLink = [&](QObject*, TorvQDTable*, TorvQDTable*, TorvQDListItem*,
                                        TorvQDListItem*, bool state) {
            order << (state ? "on" : "off") << on.links();
        };
        on.area().OnRemoveLink = [&](QObject*, QObject*) { order << "removed"; };
        on.area().RemoveLink(link, true);
        QCOMPARE(order, QStringList({"off", "T.A=U.X", "removed"}));
        QVERIFY(!on.area().selectedObject());
        QVERIFY(!on.row("T", "A")->Selected);
    }

    void emptySlotsAreSkipped() {
        LinkedBuilder on({"T", "U"});
        on.area().OnAddLink = nullptr;
        on.area().OnRemoveLink = nullptr;
        on.builder.OnAddRemoveLink = nullptr;
        TorvQDLink* link = on.link("T", "A", "U", "X");
        on.area().selectObject(link);
        on.area().deleteLink(link);
        QCOMPARE(on.links(), QStringList());
    }

    // --- following the boxes

    void lineFollowsItsBoxes() {
        LinkedBuilder on({"T", "U"});
        TorvQDTable* t = on.table("T");
        const TorvQDLink* link = on.link("T", "B", "U", "X");
        const auto start = [&] { return link->points().front(); };
        const auto end = [&] { return link->points().back(); };
        const QPoint startBefore = start();
        const QPoint endBefore = end();
        t->MoveTable(-20, 300);
        QCOMPARE(start(), startBefore + QPoint(-20, 300));
        QCOMPARE(end(), endBefore);
        t->SetWidth(t->Width + 20);
        QCOMPARE(start(), startBefore + QPoint(0, 300));
        t->SetExpand(0);
        QCOMPARE(start().y(), t->Top + t->CaptionHeight / 2);
        t->SetExpand(-1);
        QCOMPARE(start(), startBefore + QPoint(0, 300));
        t->SetHeight(1);  // room for two rows
        t->SetFirstVisibleItem(1);
        QCOMPARE(start().y(), startBefore.y() + 300 - t->ItemHeight - 1);
        t->SetFirstVisibleItem(2);
        QCOMPARE(start().y(), t->Top + t->CaptionHeight / 2);
        QCOMPARE(end(), endBefore);
    }

    void resizeMessageRoutesTheLines() {
        LinkedBuilder on({"T", "U"});
        TorvQDTable* t = on.table("T");
        const TorvQDLink* link = on.link("T", "A", "U", "X");
        const QPoint before = link->points().front();
        for (const int message : {CMMOVECONTROL, CMRESIZECONTROL}) {
            t->Top += 10;
            TorvDiagramEvent event(message, t);
            QCoreApplication::sendEvent(&on.area(), &event);
        }
        QCOMPARE(link->points().front(), before + QPoint(0, 20));
    }

    // --- the FROM clause

    void linkedBoxesAreWrittenFromTheFront() {
        LinkedBuilder on({"EMPLOYEE", "DEPT"});
        TorvQDLink* link = on.link("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        QCOMPARE(on.area().GetSQLStatment(),
                 "DEPT\r\n   INNER JOIN EMPLOYEE ON (DEPT.DEPT_NO = EMPLOYEE.DEPT_NO)");
        link->Join->KindOfJoin = klLOuterJoin;
        QCOMPARE(on.area().GetSQLStatment(),
                 "DEPT\r\n   RIGHT OUTER JOIN EMPLOYEE ON (DEPT.DEPT_NO = EMPLOYEE.DEPT_NO)");
        link->setOperatorText("<");
        on.area().TableToFront(on.table("EMPLOYEE"));
        on.area().renameTable(on.table("DEPT"), "D");
        QCOMPARE(on.area().GetSQLStatment(),
                 "EMPLOYEE\r\n   LEFT OUTER JOIN DEPT D ON (EMPLOYEE.DEPT_NO < D.DEPT_NO)");
    }

    void keptMeaningDoesNotDependOnStacking() {
        LinkedBuilder on({"EMPLOYEE", "DEPT", "T"}, true);
        TorvQDLink* link = on.link("DEPT", "DEPT_NO", "EMPLOYEE", "DEPT_NO");
        link->Join->KindOfJoin = klLOuterJoin;
        link->setOperatorText("<");
        link->Join->Text = "DEPT.BUDGET > 5";
        const QString expected =
            "EMPLOYEE\r\n"
            "   RIGHT OUTER JOIN DEPT ON (EMPLOYEE.DEPT_NO > DEPT.DEPT_NO) AND "
            "(DEPT.BUDGET > 5),\r\nT";
        QCOMPARE(on.area().GetSQLStatment(), expected);
        on.changes = 0;
        for (const char* front : {"EMPLOYEE", "T", "DEPT"}) {
            on.area().selectObject(on.table(front));
            QCOMPARE(on.area().GetSQLStatment(), expected);
        }
        QCOMPARE(on.changes, 0);
    }

    // --- size

    // A box in the middle of many others: each removal must not look at all of them.
    void closingABoxWithManyLinks() {
        constexpr int count = 3000;
        LinkedBuilder on({});
        QStringList fields;
        for (int index = 0; index < count; ++index) fields << "F" + QString::number(index);
        const TDataSet dataSet = orvtest::stringFields(fields);
        TorvQDTable* hub = on.area().AddPanel("HUB", &dataSet);
        TorvQDTable* one = on.area().AddPanel("ONE", &dataSet);
        for (int index = 0; index < count; ++index) {
            on.area().AddLink(hub, one, hub->Items[std::size_t(index)].get(),
                              one->Items[std::size_t(index)].get());
        }
        QCOMPARE(int(on.area().Links().size()), count);
        on.told.clear();
        hub->CloseTable();
        QCOMPARE(int(on.told.size()), count);
        QCOMPARE(on.told.front(), "-HUB.F0=ONE.F0");
        QCOMPARE(on.links(), QStringList());
        verifyLinks(on);
    }
};

QTEST_MAIN(FloatPanelLinksTest)
#include "tst_floatpanellinks.moc"
