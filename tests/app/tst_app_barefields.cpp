// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "criteria/ORVQDWherePanel.h"
#include "selection/ORVQDSelectOrder.h"
#include "window/JoinDialog.h"
#include "workarea/ORVQDFloatPanel.h"

using namespace orvquery;

// Fields that a typed statement names without their table, when a table comes that has them too.
class TestBareFields : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void tickedFieldsStayClear();
    void secondBoxOfTheTable();
    void onlyWhatTheNewTableHas();
    void boxesStayWhereTheyAre();
    void chosenJoinIsMade();
    void withoutProposals();
    void conditionOfJoin();

private:
    [[nodiscard]] QString source(int row) const {
        return builder().SelectPanel->grid()->Cells(2, row);
    }
    [[nodiscard]] TorvQDTable& box(std::size_t number) const {
        return *builder().WorkArea->tablesByCreation()[number];
    }
    void tick(std::size_t row, bool on) const {
        TorvQDListItem& item = *box(0).Items[row];
        item.SetCheck(on);
        item.UpdateCheck(on ? -1 : 0);
    }
    [[nodiscard]] QString flat() const { return text().simplified(); }
    void loadSingle(const char* statement) const {
        load(QString::fromLatin1(statement));
        QVERIFY(builder().LoadReport().empty());
    }

    int m_answer = QDialog::Rejected;
};

void TestBareFields::initTestCase() {
    setUp();
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE staff (no INTEGER PRIMARY KEY, boss INT REFERENCES staff)"}));
}

// Nobody is asked about keys that point both ways, unless a test answers.
void TestBareFields::init() {
    m_answer = QDialog::Rejected;
    orv::setDialogRunner([this](QDialog& dialog) {
        if (m_answer == QDialog::Accepted) dialog.accept();
        return qobject_cast<JoinDialog*>(&dialog) ? m_answer : int(QDialog::Rejected);
    });
    begin();
}

void TestBareFields::cleanup() {
    end();
    orv::setDialogRunner({});
    QCOMPARE(m_messages, QStringList());
}

void TestBareFields::tickedFieldsStayClear() {
    doubleClickTable("orders");
    tick(1, true);
    doubleClickTable("orders");
    QCOMPARE(source(1), QStringLiteral("ORDERS.CITY"));
    QCOMPARE(flat(), QStringLiteral("SELECT ORDERS.CITY FROM ORDERS, ORDERS ORDERS1"));
}

void TestBareFields::secondBoxOfTheTable() {
    loadSingle(
        "select id, upper(city) as c, sum(total) as s from orders where city = 'Rome' and "
        "(total > 5 or id in (select id from rich)) group by id, upper(city) having sum(total) > 1 "
        "order by id");
    doubleClickTable("orders");
    QCOMPARE(source(1), QStringLiteral("ORDERS.ID"));
    QCOMPARE(source(2), QStringLiteral("UPPER(ORDERS.CITY)"));
    QCOMPARE(source(3), QStringLiteral("ORDERS.TOTAL"));
    QCOMPARE(box(0).Items[0]->Checked, true);
    QCOMPARE(box(1).Items[0]->Checked, false);
    QVERIFY(runAndWait());
    QVERIFY(label("notes").startsWith(QStringLiteral("ORDERS1: Nothing links this")));
    QVERIFY(!label("notes").contains(u'\n'));
    QCOMPARE(cell(0, 0), QStringLiteral("1"));
    // The tick in the box still is that of the column.
    tick(0, false);
    QCOMPARE(source(1), QStringLiteral("UPPER(ORDERS.CITY)"));
}

void TestBareFields::onlyWhatTheNewTableHas() {
    loadSingle("select id, city from orders where id = 1 and city = 'Rome'");
    doubleClickTable("rich");
    QCOMPARE(source(1), QStringLiteral("ORDERS.ID"));
    QCOMPARE(source(2), QStringLiteral("CITY"));
    tick(1, false);
    QCOMPARE(flat(),
             QStringLiteral("SELECT ORDERS.ID FROM ORDERS, RICH WHERE ( (ORDERS.ID = 1) and "
                            "(CITY = 'Rome') )"));
}

void TestBareFields::boxesStayWhereTheyAre() {
    loadSingle("select id from orders");
    builder().WorkArea->placeBox(box(0), {321, 123}, {321, 123});
    const TRect before = box(0).GetBoundsRect();
    doubleClickTable("orders");
    QVERIFY(box(0).GetBoundsRect() == before);
}

void TestBareFields::chosenJoinIsMade() {
    loadSingle("select boss from staff");
    m_answer = QDialog::Accepted;
    doubleClickTable("staff");
    QCOMPARE(flat(), QStringLiteral("SELECT STAFF.BOSS FROM STAFF INNER JOIN STAFF STAFF1 ON "
                                    "(STAFF.BOSS = STAFF1.NO)"));
}

void TestBareFields::withoutProposals() {
    m_window->findChild<QAction*>(QStringLiteral("proposeJoins"))->setChecked(false);
    loadSingle("select boss from staff");
    doubleClickTable("staff");
    QCOMPARE(flat(), QStringLiteral("SELECT STAFF.BOSS FROM STAFF, STAFF STAFF1"));
}

void TestBareFields::conditionOfJoin() {
    loadSingle("select name from people p left join orders o on o.city = p.name and total > 5");
    doubleClickTable("orders");
    QCOMPARE(flat(), QStringLiteral("SELECT NAME FROM PEOPLE P LEFT OUTER JOIN ORDERS O ON "
                                    "(P.NAME = O.CITY) AND (O.TOTAL > 5), ORDERS"));
}

QTEST_MAIN(TestBareFields)
#include "tst_app_barefields.moc"
