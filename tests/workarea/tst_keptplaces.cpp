// SPDX-License-Identifier: MIT
// What stays where it was when an edited statement is loaded.
#include "support/BuilderTools.h"

using orvtest::HostedBuilder;

namespace {

const QString joined =
    QStringLiteral("select e.salary from employee e join dept d on e.dept_no = d.dept_no");

TorvQDLink* onlyLink(const HostedBuilder& on) {
    const std::vector<TorvQDLink*> links = on.builder.WorkArea->Links();
    return links.size() == 1 ? links.front() : nullptr;
}

QRect place(const TorvQDTable* table) {
    return {table->Left, table->Top, table->Width, table->Height};
}

}  // namespace

class KeptPlacesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void boxesWhoseAliasStaysStayWhereTheyAre() {
        HostedBuilder on(true);
        on.builder.LoadSQL(joined);
        on.table("E")->MoveTable(300, 200);
        on.table("E")->SetWidth(170);
        on.table("D")->MoveTable(40, 350);
        const QRect employee = place(on.table("E"));
        const QRect department = place(on.table("D"));
        on.builder.LoadSQL(joined + " where e.salary > 5");
        QCOMPARE(place(on.table("E")), employee);
        QCOMPARE(place(on.table("D")), department);
        verifyBuilder(on.builder);
    }

    void collapsedAndScrolledBoxesComeBackAsTheyWere() {
        HostedBuilder on(true);
        on.host.add("WIDE", {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"});
        on.builder.LoadSQL("select a from wide");
        on.table("WIDE")->SetFirstVisibleItem(3);
        on.builder.LoadSQL("select a, b from wide");
        QCOMPARE(on.table("WIDE")->FirstVisibleItem, 3);
        on.table("WIDE")->SetExpand(0);
        on.builder.LoadSQL("select a from wide");
        QVERIFY(!on.table("WIDE")->Expanded);
        on.table("WIDE")->SetExpand(-1);
        QCOMPARE(on.table("WIDE")->VisibleCount, 6);
    }

    void bendPointsStayWithTheComparison() {
        HostedBuilder on(true);
        on.builder.LoadSQL(joined);
        const std::vector<QPoint> bends = {{300, 120}, {320, 180}};
        onlyLink(on)->setBendPoints(bends);
        on.builder.LoadSQL(
            "select e.salary from employee e left join dept d on e.dept_no >= d.dept_no");
        QCOMPARE(onlyLink(on)->bendPoints(), bends);
        QCOMPARE(onlyLink(on)->operatorText(), ">=");
        on.builder.LoadSQL("select e.salary from employee e join dept d on e.emp_no = d.dept_no");
        QVERIFY(onlyLink(on)->bendPoints().empty());
    }

    void aNewBoxIsPlacedBesideThoseThatStay() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select e.salary from employee e");
        const QRect before = place(on.table("E"));
        on.builder.LoadSQL(joined);
        QCOMPARE(place(on.table("E")), before);
        // To the right of the one that is there, with the ordinary gap.
        QCOMPARE(on.table("D")->Left, before.x() + before.width() + 10);
        QCOMPARE(on.table("D")->Top, before.y());
        // A box far away leaves the first place free.
        on.table("E")->MoveTable(500, 500);
        on.table("D")->MoveTable(700, 700);
        on.builder.LoadSQL(joined + ", orders");
        QCOMPARE(QPoint(on.table("ORDERS")->Left, on.table("ORDERS")->Top), QPoint(50, 20));
    }

    void anotherTableUnderTheSameAliasIsPlacedAnew() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select x.salary from employee x");
        on.table("X")->MoveTable(300, 200);
        on.builder.LoadSQL("select x.budget from dept x");
        QCOMPARE(QPoint(on.table("X")->Left, on.table("X")->Top), QPoint(50, 20));
    }

    void anAliasMayComeBackInOtherLetters() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select e.salary from employee e");
        on.builder.WorkArea->renameTable(on.table("E"), "boss");
        on.table("boss")->MoveTable(300, 200);
        const QRect before = place(on.table("boss"));
        on.builder.LoadSQL("select boss.salary, boss.emp_no from employee boss");
        QCOMPARE(place(on.table("BOSS")), before);
    }

    void clearForgetsThePlaces() {
        HostedBuilder on(true);
        on.builder.LoadSQL(joined);
        on.table("E")->MoveTable(300, 200);
        on.builder.Clear();
        on.builder.LoadSQL(joined);
        QCOMPARE(QPoint(on.table("E")->Left, on.table("E")->Top), QPoint(50, 20));
    }

    void aTableWhoseColumnsChangedKeepsItsPlaceAndWidth() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a from t");
        on.table("T")->MoveTable(100, 100);
        on.table("T")->SetWidth(222);
        on.host.add("T", {"A", "B"});
        on.builder.LoadSQL("select t.b from t");
        QCOMPARE(QPoint(on.table("T")->Left, on.table("T")->Top), QPoint(150, 120));
        QCOMPARE(on.table("T")->Width, 222);
        QCOMPARE(on.table("T")->VisibleCount, 2);
    }
};

QTEST_MAIN(KeptPlacesTest)
#include "tst_keptplaces.moc"
