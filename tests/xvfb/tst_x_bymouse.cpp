// SPDX-License-Identifier: MIT
// A person who sees the program for the first time asks it a question with the mouse alone; the
// keys type the values that nobody can point at.
#include "xvfb/Question.h"

#include <QListWidget>
#include <QTreeWidget>

using orvtest::Hand;
using orvtest::ProgramDesk;
using orvtest::ProgramHand;

namespace {

// A box is ticked on its mark: beside it, it may be wider than its text.
QPoint markOf(const QCheckBox* box) {
    return box->mapToGlobal(QPoint(8, box->height() / 2));
}

}  // namespace

class tst_x_bymouse : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void questionIsAskedByMouse();

private:
    void drawTables();
    void tickFields();
    void chooseAggregates();
    void setConditions();
    void setGroupConditions();
    void sortBySum();
    void runQuestion();

    std::unique_ptr<ProgramDesk> m_desk;
    std::unique_ptr<ProgramHand> m_hand;
};

void tst_x_bymouse::questionIsAskedByMouse() {
    m_desk = std::make_unique<ProgramDesk>();
    m_hand = std::make_unique<ProgramHand>(*m_desk);
    QVERIFY(m_desk->show());
    drawTables();
    if (!QTest::currentTestFailed()) tickFields();
    if (!QTest::currentTestFailed()) chooseAggregates();
    if (!QTest::currentTestFailed()) setConditions();
    if (!QTest::currentTestFailed()) setGroupConditions();
    if (!QTest::currentTestFailed()) sortBySum();
    if (!QTest::currentTestFailed()) runQuestion();
    m_hand.reset();
    m_desk.reset();
}

void tst_x_bymouse::drawTables() {
    ProgramDesk& desk = *m_desk;
    ProgramHand& hand = *m_hand;
    orvtest::takePicture("mouse0-start");
    hand.chooseFromMenuBar("File", "New");
    hand.until("the diagram is empty", [&] { return desk.area().TablesCount() == 0; });
    for (const char* name : {"customers", "orders"}) hand.addTable(name);
    perform(hand);
    orvtest::takePicture("mouse1-tables");

    // It is moved by its title, to where there is more room for the link.
    const int left = desk.table("ORDERS")->Left;
    const QPoint from = desk.caption("ORDERS")();
    hand.moveTo([=] { return from; })
        .press()
        .moveTo([=] { return from + QPoint(20, 5); })
        .moveTo([=] { return from + QPoint(60, 20); })
        .release()
        .until("the box was moved", [&, left] { return desk.table("ORDERS")->Left > left; });
    perform(hand);

    hand.carryField("CUSTOMERS", "CUSTOMER_NO", desk.field("ORDERS", "CUSTOMER_NO"));
    hand.release().until("there is a link", [&] { return desk.link() != nullptr; });
    perform(hand);
    orvtest::takePicture("mouse2-link");

    hand.doubleClick(desk.linkMiddle())
        .until("the dialog is up", [] { return orvtest::linkDialog() != nullptr; })
        .call([] { orvtest::takePicture("mouse3-dialog"); })
        .click([] { return markOf(orvtest::includesAll("CUSTOMERS")); })
        .until("it is ticked", [] { return orvtest::includesAll("CUSTOMERS")->isChecked(); })
        .click([] { return ProgramDesk::middleOf(orvtest::linkDialog()->btnOK)(); })
        .until("the dialog is gone", [] { return orvtest::linkDialog() == nullptr; })
        .until("the join is outer", [&] { return desk.link()->Join->KindOfJoin == klLOuterJoin; });
    perform(hand);
    orvtest::takePicture("mouse4-outer");
}

void tst_x_bymouse::tickFields() {
    ProgramDesk& desk = *m_desk;
    ProgramHand& hand = *m_hand;
    for (const auto& [alias, field] : orvtest::questionFields) {
        hand.tick(alias, field);
    }
    perform(hand);
    orvtest::takePicture("mouse4-ticked");
    QCOMPARE(desk.grid().RowCount(), 6);
}

void tst_x_bymouse::chooseAggregates() {
    ProgramDesk& desk = *m_desk;
    ProgramHand& hand = *m_hand;
    hand.goTo("Selection");
    const auto choose = [&](const QString& source, const QString& aggregate) {
        hand.openAggregates(source);
        hand.call([] { orvtest::takePicture("mouse5-aggregates"); });
        hand.chooseAggregate(aggregate);
    };
    choose("ORDERS.TOTAL", "SUM");
    choose("ORDERS.ORDER_NO", "COUNT");
    hand.click(desk.cell("CUSTOMERS.NAME", 2)).until("the editor is gone", [&] {
        return desk.combo() == nullptr;
    });
    perform(hand);
    QCOMPARE(desk.grid().Cells(1, desk.gridRow("ORDERS.TOTAL")), QString("SUM"));
    QCOMPARE(desk.grid().Cells(1, desk.gridRow("ORDERS.ORDER_NO")), QString("COUNT"));
    orvtest::takePicture("mouse6-selection");
}

void tst_x_bymouse::setConditions() {
    ProgramHand& hand = *m_hand;
    TorvQDWherePanel& panel = m_desk->where();
    hand.goTo("Criterions");
    hand.chooseFromMenu(panel, "", ekGroupOper, "Any");
    hand.addCondition(panel, "", "1.");
    hand.chooseField(panel, "1.", "CUSTOMERS", "CITY");
    hand.chooseFromMenu(panel, "1.", ekOperator, "IN");
    hand.typeValue(panel, "1.", "'Hamburg', 'Lyon'");
    hand.addCondition(panel, "", "2.");
    hand.chooseField(panel, "2.", "ORDERS", "ORDER_NO");
    hand.chooseFromMenu(panel, "2.", ekOperator, "IS NULL");
    perform(hand);
    orvtest::takePicture("mouse8-where");
}

void tst_x_bymouse::setGroupConditions() {
    ProgramHand& hand = *m_hand;
    TorvQDWherePanel& panel = m_desk->having();
    hand.goTo("Grouping criterions");
    hand.chooseFromMenu(panel, "", ekGroupOper, "Any");
    hand.addCondition(panel, "", "1.");
    hand.chooseFromMenu(panel, "1.", ekFieldFunc, "SUM");
    hand.chooseField(panel, "1.", "ORDERS", "TOTAL");
    hand.chooseFromMenu(panel, "1.", ekOperator, ">");
    hand.typeValue(panel, "1.", "6000");
    hand.addCondition(panel, "", "2.");
    hand.chooseFromMenu(panel, "2.", ekFieldFunc, "COUNT");
    hand.chooseField(panel, "2.", "ORDERS", "ORDER_NO");
    hand.typeValue(panel, "2.", "0");
    perform(hand);
    orvtest::takePicture("mouse9-having");
}

void tst_x_bymouse::sortBySum() {
    ProgramDesk& desk = *m_desk;
    ProgramHand& hand = *m_hand;
    hand.goTo("Sorting");
    const auto* panel = desk.builder().OrderPanel;
    const auto* names = panel->findChild<QListWidget*>();
    const auto* lines = panel->findChild<QTreeWidget*>();
    hand.sortBy("SUM_OF_TOTAL", 1);
    hand.call([] { orvtest::takePicture("mouse10-sort"); });
    hand.sortDescending("SUM_OF_TOTAL");
    // The other way: a name is dragged over.
    const int before = hand.dragMoves();
    const Hand::Place name = ProgramDesk::itemOf(*names, "NAME");
    const int far = QApplication::startDragDistance();
    hand.moveTo(name)
        .press()
        .moveTo([=] { return name() + QPoint(4, 0); })
        .moveTo([=] { return name() + QPoint(far + 4, 0); })
        .moveTo([=] { return name() + QPoint(far + 6, 0); })
        .until("the name is dragged", [&hand, before] { return hand.dragMoves() > before; })
        .moveTo(ProgramDesk::middleOf(lines))
        .release()
        .until("both are sorted", [=] { return lines->topLevelItemCount() == 2; });
    perform(hand);
    orvtest::takePicture("mouse11-sorted");
}

void tst_x_bymouse::runQuestion() {
    ProgramDesk& desk = *m_desk;
    ProgramHand& hand = *m_hand;
    hand.click(ProgramDesk::middleOf(desk.child<QToolButton>("runButton")))
        .until("the rows are there", [&] { return desk.hasRun(); });
    perform(hand);
    orvtest::takePicture("mouse12-rows");
    orvtest::compareAnswer(desk);
}

QTEST_MAIN(tst_x_bymouse)
#include "tst_x_bymouse.moc"
