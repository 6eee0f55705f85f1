// SPDX-License-Identifier: MIT
// Links leave the work area: removed one by one, by messages, and with their boxes.
#include "contract/DiagramEvents.h"
#include "workarea/LinkedBuilder.h"

using orvtest::LinkedBuilder;

class FloatPanelUnlinkingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

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

QTEST_MAIN(FloatPanelUnlinkingTest)
#include "tst_floatpanelunlinking.moc"
