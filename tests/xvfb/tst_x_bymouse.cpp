// SPDX-License-Identifier: MIT
// A person who sees the program for the first time asks it a question with the mouse alone; the
// keys type the values that nobody can point at.
#include "xvfb/Question.h"

#include <QListWidget>
#include <QTreeWidget>

using orvtest::Hand;
using orvtest::ProgramDesk;

namespace {

// A box is ticked on its mark: beside it, it may be wider than its text.
QPoint markOf(const QCheckBox* box) {
    return box->mapToGlobal(QPoint(8, box->height() / 2));
}

// Below the last condition.
QPoint emptySpot(const TorvQDWherePanel& panel) {
    const QRect view = panel.viewport()->rect();
    return panel.viewport()->mapToGlobal(view.bottomRight() - QPoint(8, 8));
}

QModelIndex indexOf(const QAbstractItemView& view, const QString& text) {
    return view.model()
        ->match(view.model()->index(0, 0), Qt::DisplayRole, text, 1,
                Qt::MatchExactly | Qt::MatchRecursive)
        .value(0);
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

    void bringIntoSight(const QString& alias, const QString& field);
    void goTo(const QString& page);
    void chooseFromMenu(TorvQDWherePanel& panel, const QString& number, int kind,
                        const QString& text);
    void addCondition(TorvQDWherePanel& panel, const QString& number, const QString& added);
    void chooseField(TorvQDWherePanel& panel, const QString& number, const QString& table,
                     const QString& field);
    void typeValue(TorvQDWherePanel& panel, const QString& number, const QString& text);

    std::unique_ptr<ProgramDesk> m_desk;
    std::unique_ptr<Hand> m_hand;
};

void tst_x_bymouse::questionIsAskedByMouse() {
    m_desk = std::make_unique<ProgramDesk>();
    m_hand = std::make_unique<Hand>();
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
    Hand& hand = *m_hand;
    orvtest::takePicture("mouse0-start");
    hand.click(desk.menuTitle("File"))
        .until("the menu is up", ProgramDesk::menuIsUp())
        .click(ProgramDesk::menuEntry("New"))
        .until("the diagram is empty", [&] { return desk.area().TablesCount() == 0; });
    for (const char* name : {"customers", "orders"}) {
        hand.doubleClick(ProgramDesk::itemOf(desk.tableList(), name))
            .until("the table is there",
                   [&desk, name] { return desk.table(QString(name).toUpper()) != nullptr; });
    }
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

    const int before = hand.dragMoves();
    const int far = QApplication::startDragDistance();
    hand.moveTo(desk.field("CUSTOMERS", "CUSTOMER_NO"))
        .press()
        .moveTo(desk.field("CUSTOMERS", "CUSTOMER_NO", {4, 0}))
        .moveTo(desk.field("CUSTOMERS", "CUSTOMER_NO", {far + 4, 0}))
        .moveTo(desk.field("CUSTOMERS", "CUSTOMER_NO", {far + 6, 0}))
        .until("the field is dragged", [&hand, before] { return hand.dragMoves() > before; })
        .moveTo(desk.field("ORDERS", "CUSTOMER_NO"))
        .release()
        .until("there is a link", [&] { return desk.link() != nullptr; });
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
    Hand& hand = *m_hand;
    for (const auto& [alias, field] : orvtest::questionFields) {
        bringIntoSight(alias, field);
        hand.click(desk.checkSquare(alias, field))
            .until("the field is ticked", [&desk, alias = alias, field = field] {
                return desk.table(alias)->GetFieldItem(field)->Checked;
            });
    }
    perform(hand);
    orvtest::takePicture("mouse4-ticked");
    QCOMPARE(desk.grid().RowCount(), 6);
}

void tst_x_bymouse::chooseAggregates() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    goTo("Selection");
    const auto choose = [&](const QString& source, const QString& aggregate) {
        hand.doubleClick(desk.cell(source, 1))
            .until("the list is there", [&] { return desk.combo() != nullptr; })
            .moveTo([&] {
                const orv::ExitCombo* combo = desk.combo();
                return combo->mapToGlobal(QPoint(combo->width() - 8, combo->height() / 2));
            })
            .press()
            .release()
            .until("it is open", [&] { return desk.combo()->view()->isVisible(); })
            .call([] { orvtest::takePicture("mouse5-aggregates"); })
            .click([&desk, aggregate] {
                return ProgramDesk::itemOf(*desk.combo()->view(), aggregate)();
            })
            .until("it is closed", [&] { return !desk.combo()->view()->isVisible(); });
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
    TorvQDWherePanel& panel = m_desk->where();
    goTo("Criterions");
    chooseFromMenu(panel, "", ekGroupOper, "Any");
    addCondition(panel, "", "1.");
    chooseField(panel, "1.", "CUSTOMERS", "CITY");
    chooseFromMenu(panel, "1.", ekOperator, "IN");
    typeValue(panel, "1.", "'Hamburg', 'Lyon'");
    addCondition(panel, "", "2.");
    chooseField(panel, "2.", "ORDERS", "ORDER_NO");
    chooseFromMenu(panel, "2.", ekOperator, "IS NULL");
    perform(*m_hand);
    orvtest::takePicture("mouse8-where");
}

void tst_x_bymouse::setGroupConditions() {
    TorvQDWherePanel& panel = m_desk->having();
    goTo("Grouping criterions");
    chooseFromMenu(panel, "", ekGroupOper, "Any");
    addCondition(panel, "", "1.");
    chooseFromMenu(panel, "1.", ekFieldFunc, "SUM");
    chooseField(panel, "1.", "ORDERS", "TOTAL");
    chooseFromMenu(panel, "1.", ekOperator, ">");
    typeValue(panel, "1.", "6000");
    addCondition(panel, "", "2.");
    chooseFromMenu(panel, "2.", ekFieldFunc, "COUNT");
    chooseField(panel, "2.", "ORDERS", "ORDER_NO");
    typeValue(panel, "2.", "0");
    perform(*m_hand);
    orvtest::takePicture("mouse9-having");
}

void tst_x_bymouse::sortBySum() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    goTo("Sorting");
    const auto* panel = desk.builder().OrderPanel;
    const auto* names = panel->findChild<QListWidget*>();
    const auto* lines = panel->findChild<QTreeWidget*>();
    hand.click(ProgramDesk::itemOf(*names, "SUM_OF_TOTAL"))
        .click(ProgramDesk::button(panel, "Add"))
        .until("it is sorted", [=] { return lines->topLevelItemCount() == 1; })
        .call([] { orvtest::takePicture("mouse10-sort"); })
        .click(ProgramDesk::itemOf(*lines, "SUM_OF_TOTAL"))
        .click(ProgramDesk::button(panel, "Z..A"))
        .until("it is descending", [=] {
            return !panel->sortList().lines().empty() &&
                   panel->sortList().lines().front().direction == orv::descendingText();
        });
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
    Hand& hand = *m_hand;
    hand.click(ProgramDesk::middleOf(desk.child<QToolButton>("runButton")))
        .until("the rows are there", [&] { return desk.hasRun(); });
    perform(hand);
    orvtest::takePicture("mouse12-rows");
    orvtest::compareAnswer(desk);
}

// --- what is done several times ---

// Not all rows of a box are shown at once.
void tst_x_bymouse::bringIntoSight(const QString& alias, const QString& field) {
    const ProgramDesk& desk = *m_desk;
    const auto rowOf = [&desk, alias, field] {
        const auto& items = desk.table(alias)->Items;
        const auto found = std::find_if(items.begin(), items.end(),
                                        [&](const auto& item) { return item->Name == field; });
        return int(found - items.begin());
    };
    m_hand
        ->moveTo(desk.at(
            [&desk, alias] { return desk.table(alias)->GetBoundsRect().toQRect().center(); }))
        .wheelUntil([=, &desk] { return rowOf() < desk.table(alias)->FirstVisibleItem ? 4 : 5; },
                    [=, &desk] {
                        const TorvQDTable& box = *desk.table(alias);
                        const int place = rowOf() - box.FirstVisibleItem;
                        return place >= 0 && place < box.VisibleCount;
                    });
}

void tst_x_bymouse::goTo(const QString& page) {
    m_hand->click(m_desk->tab(page)).until("the page is shown", m_desk->pageIs(page));
}

void tst_x_bymouse::chooseFromMenu(TorvQDWherePanel& panel, const QString& number, int kind,
                                   const QString& text) {
    m_hand->click(ProgramDesk::element(panel, number, kind))
        .until("the menu is up", ProgramDesk::menuIsUp())
        .click(ProgramDesk::menuEntry(text))
        .until("the menu is gone", ProgramDesk::noMenuIsUp());
}

void tst_x_bymouse::addCondition(TorvQDWherePanel& panel, const QString& number,
                                 const QString& added) {
    chooseFromMenu(panel, number, ekButton, "Add condition");
    m_hand->until("the row is there",
                  [&panel, added] { return ProgramDesk::row(panel, added) != nullptr; });
}

// By way of the editor's menu, the list of fields and double clicks in it.
void tst_x_bymouse::chooseField(TorvQDWherePanel& panel, const QString& number,
                                const QString& table, const QString& field) {
    Hand& hand = *m_hand;
    const auto tree = [&panel]() -> TTreeViewEx& { return *ProgramDesk::fieldList(panel)->tree(); };
    hand.click(ProgramDesk::element(panel, number, ekFieldName))
        .until("the editor is there", [&panel] { return ProgramDesk::memo(panel) != nullptr; })
        .click([&panel] { return ProgramDesk::middleOf(ProgramDesk::memo(panel))(); }, 3)
        .until("the menu is up", ProgramDesk::menuIsUp())
        .call([] { orvtest::takePicture("mouse7-editmenu"); })
        .click(ProgramDesk::menuEntry("InsertField"))
        .until("the list is there", [&panel] { return ProgramDesk::fieldList(panel) != nullptr; })
        .doubleClick([tree, table] { return ProgramDesk::itemOf(tree(), table)(); })
        .until("the table is open",
               [tree, table] { return tree().isExpanded(indexOf(tree(), table)); })
        .call([] { orvtest::takePicture("mouse7-fieldlist"); })
        .moveTo([tree] { return ProgramDesk::middleOf(tree().viewport())(); })
        .wheelUntil([] { return 5; },
                    [tree, field] {
                        const QRect rect = tree().visualRect(indexOf(tree(), field));
                        return tree().viewport()->rect().contains(rect.center());
                    })
        .doubleClick([tree, field] { return ProgramDesk::itemOf(tree(), field)(); })
        .until("the field is taken", [&panel] { return ProgramDesk::fieldList(panel) == nullptr; })
        .click([&panel] { return emptySpot(panel); })
        .until("the text is taken over", [&panel, number, table, field] {
            return ProgramDesk::row(panel, number)->FieldName == table + u'.' + field;
        });
}

void tst_x_bymouse::typeValue(TorvQDWherePanel& panel, const QString& number, const QString& text) {
    m_hand->click(ProgramDesk::element(panel, number, ekArgument))
        .until("the editor is there", [&panel] { return ProgramDesk::memo(panel) != nullptr; })
        .type(text)
        .until("it is typed",
               [&panel, text] { return ProgramDesk::memo(panel)->toPlainText() == text; })
        .click([&panel] { return emptySpot(panel); })
        .until("the text is taken over", [&panel, number, text] {
            return ProgramDesk::row(panel, number)->Arguments.front() == text;
        });
}

QTEST_MAIN(tst_x_bymouse)
#include "tst_x_bymouse.moc"
