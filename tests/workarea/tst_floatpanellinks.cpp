// SPDX-License-Identifier: MIT
// Joins and links of the work area: added, found, selected, rerouted and written.
#include "contract/DiagramEvents.h"
#include "workarea/LinkedBuilder.h"

using orvtest::LinkedBuilder;

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
};

QTEST_MAIN(FloatPanelLinksTest)
#include "tst_floatpanellinks.moc"
