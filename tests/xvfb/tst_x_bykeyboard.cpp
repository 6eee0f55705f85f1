// SPDX-License-Identifier: MIT
// A person who has no mouse, or does not want one, asks the program a question.
#include "criteria/ORVQDFieldEdit.h"
#include "xvfb/Question.h"

#include <QListWidget>
#include <QTreeWidget>

using orvtest::Hand;
using orvtest::ProgramDesk;

namespace {

QString textOfIndex(const QAbstractItemView& view) {
    return view.currentIndex().data().toString();
}

// The entry of the open menu that Enter would choose.
QString activeEntry() {
    const QMenu* menu = ProgramDesk::openMenu();
    const QAction* action = menu ? menu->activeAction() : nullptr;
    return action ? action->text().remove(u'&') : QString();
}

// The widget that has the focus; none once that is the wanted one.
std::function<QWidget*()> focusBut(const std::function<QWidget*()>& wanted) {
    return [wanted]() -> QWidget* {
        QWidget* focus = QApplication::focusWidget();
        return focus == wanted() ? nullptr : focus;
    };
}

}  // namespace

class tst_x_bykeyboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void questionIsAskedByKeyboard();

private:
    void drawTables();
    void linkTables();
    void tickFields();
    void chooseAggregates();
    void setConditions();
    void setGroupConditions();
    void sortBySum();
    void runQuestion();

    void goTo(const QString& keys, const QString& page, QWidget& target);
    void selectBox(const QString& alias);
    void goToField(const QString& alias, const QString& field);
    void goToElement(TorvQDWherePanel& panel, int kind);
    void chooseFromMenu(const QString& text);
    void addCondition(TorvQDWherePanel& panel, const QString& number);
    void chooseField(TorvQDWherePanel& panel, const QString& table, const QString& field);
    void typeValue(TorvQDWherePanel& panel, const QString& text);

    std::unique_ptr<ProgramDesk> m_desk;
    std::unique_ptr<Hand> m_hand;
};

void tst_x_bykeyboard::questionIsAskedByKeyboard() {
    m_desk = std::make_unique<ProgramDesk>();
    m_hand = std::make_unique<Hand>();
    QVERIFY(m_desk->show());
    drawTables();
    if (!QTest::currentTestFailed()) linkTables();
    if (!QTest::currentTestFailed()) tickFields();
    if (!QTest::currentTestFailed()) chooseAggregates();
    if (!QTest::currentTestFailed()) setConditions();
    if (!QTest::currentTestFailed()) setGroupConditions();
    if (!QTest::currentTestFailed()) sortBySum();
    if (!QTest::currentTestFailed()) runQuestion();
    if (QTest::currentTestFailed()) orvtest::takePicture("keys-failed");
    m_hand.reset();
    m_desk.reset();
}

void tst_x_bykeyboard::drawTables() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    const auto* filter = desk.child<QLineEdit>("filter");
    hand.key("alt+f")
        .until("the menu is up", ProgramDesk::menuIsUp())
        .keyUntil<QString>("Down", activeEntry, "New")
        .key("Return")
        .until("the diagram is empty", [&] { return desk.area().TablesCount() == 0; })
        .until("the filter has the focus", ProgramDesk::hasFocus(filter));
    for (const char* name : {"customers", "orders"}) {
        hand.key("ctrl+a")
            .type(name)
            .until("only the table is listed",
                   [&desk, name] {
                       return desk.tableList().model()->rowCount() == 1 &&
                              textOfIndex(desk.tableList()) == name;
                   })
            .key("Return")
            .until("the table is there",
                   [&desk, name] { return desk.table(QString(name).toUpper()) != nullptr; });
    }
    perform(hand);
    orvtest::takePicture("keys1-tables");
}

void tst_x_bykeyboard::linkTables() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    hand.keyUntil<QWidget*>("Tab", focusBut([&] { return &desk.area(); }), nullptr);
    selectBox("CUSTOMERS");
    goToField("CUSTOMERS", "CUSTOMER_NO");
    hand.key("Insert");
    selectBox("ORDERS");
    goToField("ORDERS", "CUSTOMER_NO");
    hand.key("Insert").until("there is a link", [&] { return desk.link() != nullptr; });
    perform(hand);
    orvtest::takePicture("keys2-link");

    hand.key("alt+Next")
        .until("the link is selected", [&] { return desk.link()->Selected; })
        .key("Return")
        .until("the dialog is up", [] { return orvtest::linkDialog() != nullptr; })
        .call([] { orvtest::takePicture("keys3-dialog"); })
        .keyUntil<QWidget*>("Tab", focusBut([] { return orvtest::includesAll("CUSTOMERS"); }),
                            nullptr)
        .key("space")
        .until("it is ticked", [] { return orvtest::includesAll("CUSTOMERS")->isChecked(); })
        .key("Return")
        .until("the dialog is gone", [] { return orvtest::linkDialog() == nullptr; })
        .until("the join is outer", [&] { return desk.link()->Join->KindOfJoin == klLOuterJoin; })
        .until("the diagram has the focus", ProgramDesk::hasFocus(&desk.area()));
    perform(hand);
}

void tst_x_bykeyboard::tickFields() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    QString selected;
    for (const auto& [alias, field] : orvtest::questionFields) {
        if (alias != selected) selectBox(alias);
        selected = alias;
        goToField(alias, field);
        hand.key("space").until("the field is ticked", [&desk, alias = alias, field = field] {
            return desk.table(alias)->GetFieldItem(field)->Checked;
        });
    }
    perform(hand);
    QCOMPARE(desk.grid().RowCount(), 6);
    orvtest::takePicture("keys4-ticked");
}

void tst_x_bykeyboard::chooseAggregates() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    goTo("alt+2", "Selection", desk.grid());
    const auto row = [&desk] { return desk.grid().currentIndex().row(); };
    const auto column = [&desk] { return desk.grid().currentIndex().column(); };
    const auto isShown = [&desk](const QString& source, const QString& aggregate) {
        return [&desk, source, aggregate] {
            return desk.grid().Cells(1, desk.gridRow(source)) == aggregate;
        };
    };
    // From the list that the cell offers.
    hand.keyUntil<int>("Down", row, desk.gridRow("ORDERS.TOTAL") - 1)
        .keyUntil<int>("Right", column, 1)
        .key("F2")
        .until("the list is there", [&] { return desk.combo() != nullptr; })
        .key("F4")
        .until("it is open", [&] { return desk.combo()->view()->isVisible(); })
        .keyUntil<QString>(
            "Down", [&] { return textOfIndex(*desk.combo()->view()); }, "SUM")
        .key("Return")
        .until("it is closed", [&] { return !desk.combo()->view()->isVisible(); })
        .key("Return")
        .until("it is chosen", isShown("ORDERS.TOTAL", "SUM"))
        .until("the grid has the focus", ProgramDesk::hasFocus(&desk.grid()));
    // Typed into the cell.
    hand.keyUntil<int>("Down", row, desk.gridRow("ORDERS.ORDER_NO") - 1)
        .type("COUNT")
        .until("it is typed",
               [&] { return desk.combo() && desk.combo()->currentText() == "COUNT"; })
        .key("Return")
        .until("it is chosen", isShown("ORDERS.ORDER_NO", "COUNT"))
        .until("the grid has the focus", ProgramDesk::hasFocus(&desk.grid()));
    perform(hand);
    orvtest::takePicture("keys5-selection");
}

void tst_x_bykeyboard::setConditions() {
    TorvQDWherePanel& panel = m_desk->where();
    goTo("alt+1", "Criterions", panel);
    goToElement(panel, ekGroupOper);
    chooseFromMenu("Any");
    addCondition(panel, "1.");
    chooseField(panel, "CUSTOMERS", "CITY");
    goToElement(panel, ekOperator);
    chooseFromMenu("IN");
    goToElement(panel, ekArgument);
    typeValue(panel, "'Hamburg', 'Lyon'");
    addCondition(panel, "2.");
    chooseField(panel, "ORDERS", "ORDER_NO");
    goToElement(panel, ekOperator);
    chooseFromMenu("IS NULL");
    perform(*m_hand);
    orvtest::takePicture("keys7-where");
}

void tst_x_bykeyboard::setGroupConditions() {
    TorvQDWherePanel& panel = m_desk->having();
    goTo("alt+3", "Grouping criterions", panel);
    goToElement(panel, ekGroupOper);
    chooseFromMenu("Any");
    addCondition(panel, "1.");
    chooseField(panel, "ORDERS", "TOTAL");
    m_hand->key("Left").until("the function has the frame",
                              [&panel] { return panel.ActiveElement()->Kind == ekFieldFunc; });
    chooseFromMenu("SUM");
    goToElement(panel, ekOperator);
    chooseFromMenu(">");
    goToElement(panel, ekArgument);
    typeValue(panel, "6000");
    addCondition(panel, "2.");
    chooseField(panel, "ORDERS", "ORDER_NO");
    m_hand->key("Left").until("the function has the frame",
                              [&panel] { return panel.ActiveElement()->Kind == ekFieldFunc; });
    chooseFromMenu("COUNT");
    goToElement(panel, ekArgument);
    typeValue(panel, "0");
    perform(*m_hand);
    orvtest::takePicture("keys8-having");
}

void tst_x_bykeyboard::sortBySum() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    const auto* panel = desk.builder().OrderPanel;
    auto* names = panel->findChild<QListWidget*>();
    auto* lines = panel->findChild<QTreeWidget*>();
    const auto name = [names] { return textOfIndex(*names); };
    goTo("alt+4", "Sorting", *names);
    hand.keyUntil<QString>("Down", name, "SUM_OF_TOTAL")
        .key("Return")
        .until("it is sorted", [=] { return lines->topLevelItemCount() == 1; })
        .keyUntil<QString>("Up", name, "NAME")
        .key("Return")
        .until("both are sorted", [=] { return lines->topLevelItemCount() == 2; });
    hand.keyUntil<QWidget*>(
            "Tab", [] { return QApplication::focusWidget(); }, lines)
        .until("the first line is selected", [=] { return textOfIndex(*lines) == "SUM_OF_TOTAL"; })
        .key("space")
        .until("it is descending", [=] {
            return panel->sortList().lines().front().direction == orv::descendingText();
        });
    perform(hand);
    orvtest::takePicture("keys9-sorted");
}

void tst_x_bykeyboard::runQuestion() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    hand.key("F5").until("the rows are there", [&] { return desk.hasRun(); });
    perform(hand);
    orvtest::takePicture("keys10-rows");
    orvtest::compareAnswer(desk);
    if (QTest::currentTestFailed()) return;

    // They can be read by keyboard, too.
    auto* rows = desk.child<QTableView>("rows");
    hand.key("alt+r")
        .until("the rows have the focus", ProgramDesk::hasFocus(rows))
        .keyUntil<int>(
            "Down", [rows] { return rows->currentIndex().row(); }, 7);
    perform(hand);
}

// --- what is done several times ---

// The first widget of a page has the focus then.
void tst_x_bykeyboard::goTo(const QString& keys, const QString& page, QWidget& target) {
    m_hand->key(keys)
        .until("the page is shown", m_desk->pageIs(page))
        .keyUntil<QWidget*>("Tab", focusBut([&target] { return &target; }), nullptr);
}

void tst_x_bykeyboard::selectBox(const QString& alias) {
    m_hand->keyUntil<QString>(
        "ctrl+Next",
        [this] {
            for (const TorvQDTable* box : m_desk->area().tablesByCreation()) {
                if (box->Selected) return box->GetAlias();
            }
            return QString();
        },
        alias);
}

void tst_x_bykeyboard::goToField(const QString& alias, const QString& field) {
    const auto state = [this, alias] {
        const TorvQDListItem* item = m_desk->table(alias)->CurrentItem;
        return item ? item->Name : QString();
    };
    m_hand->key("Home")
        .until(
            "the first row is chosen",
            [this, state, alias] { return state() == m_desk->table(alias)->Items.front()->Name; })
        .keyUntil<QString>("Down", state, field);
}

void tst_x_bykeyboard::goToElement(TorvQDWherePanel& panel, int kind) {
    m_hand->keyUntil<int>(
        "Right", [&panel] { return int(panel.ActiveElement()->Kind); }, kind);
}

void tst_x_bykeyboard::chooseFromMenu(const QString& text) {
    m_hand->key("Return")
        .until("the menu is up", ProgramDesk::menuIsUp())
        .keyUntil<QString>("Down", activeEntry, text)
        .key("Return")
        .until("the menu is gone", ProgramDesk::noMenuIsUp());
}

// The new condition is where the keys go on.
void tst_x_bykeyboard::addCondition(TorvQDWherePanel& panel, const QString& number) {
    m_hand->key("Insert").until("the row is there", [&panel, number] {
        const TorvQDControl* active = panel.ActiveElement();
        return active->Row == ProgramDesk::row(panel, number) && active->Kind == ekFieldName;
    });
}

void tst_x_bykeyboard::chooseField(TorvQDWherePanel& panel, const QString& table,
                                   const QString& field) {
    const QString name = table + u'.' + field;
    m_hand->key("Return")
        .until("the editor is there", [&panel] { return ProgramDesk::memo(panel) != nullptr; })
        .key("shift+Return")
        .until("the list is there", [&panel] { return ProgramDesk::fieldList(panel) != nullptr; })
        .type(name)
        .until("the field is found",
               [&panel, field] {
                   const orv::FieldList& list = *ProgramDesk::fieldList(panel);
                   return textOfIndex(*list.tree()) == field;
               })
        .call([] { orvtest::takePicture("keys6-fieldlist"); })
        .key("Return")
        .until("the field is taken",
               [&panel, name] {
                   return !ProgramDesk::fieldList(panel) && ProgramDesk::memo(panel) &&
                          ProgramDesk::memo(panel)->toPlainText() == name;
               })
        .key("Return")
        .until("the text is taken over",
               [&panel, name] { return panel.ActiveElement()->Row->FieldName == name; })
        .until("the conditions have the focus", ProgramDesk::hasFocus(&panel));
}

void tst_x_bykeyboard::typeValue(TorvQDWherePanel& panel, const QString& text) {
    m_hand->key("Return")
        .until("the editor is there", [&panel] { return ProgramDesk::memo(panel) != nullptr; })
        .type(text)
        .until("it is typed",
               [&panel, text] { return ProgramDesk::memo(panel)->toPlainText() == text; })
        .key("Return")
        .until("the text is taken over",
               [&panel, text] { return panel.ActiveElement()->Row->Arguments.front() == text; })
        .until("the conditions have the focus", ProgramDesk::hasFocus(&panel));
}

QTEST_MAIN(tst_x_bykeyboard)
#include "tst_x_bykeyboard.moc"
