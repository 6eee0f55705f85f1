// SPDX-License-Identifier: MIT
// What docs/guide.md tells a person to do is done here by hand, and its pictures are taken on the
// way; tools/screenshots keeps them. Without that it only shows that the guide still holds.
#include "window/ResultPane.h"
#include "window/SchemaBrowser.h"
#include "window/StatementPane.h"
#include "window/WordsPanel.h"
#include "xvfb/Picture.h"
#include "xvfb/ProgramHand.h"

#include <QTemporaryDir>

using orvtest::Hand;
using orvtest::ProgramDesk;
using orvtest::ProgramHand;

namespace {

// The part of the screen that a widget takes. Frames of windows are left out: the window manager
// draws them when it likes.
QRect placeOf(const QWidget* widget) {
    return {widget->mapToGlobal(QPoint()), widget->size()};
}

// The same with what is around it, so that nothing seems to be cut off.
QRect around(const QRect& place) {
    return place.marginsAdded(QMargins(6, 6, 6, 6));
}

QDialog* dialog() {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    return dialog && dialog->isVisible() ? dialog : nullptr;
}

Hand::Condition dialogIsUp() {
    return [] { return dialog() && dialog()->isActiveWindow(); };
}

const QString openOrders = QStringLiteral(
    "select customers.name, customers.city, orders.order_no, orders.total from customers "
    "inner join orders on customers.customer_no = orders.customer_no "
    "where orders.status = 'open' and (customers.city = 'Toronto' or customers.city = 'Madrid')");

}  // namespace

class tst_x_guide : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void window();
    void tables();
    void joinByHand();
    void kindOfJoin();
    void conditions();
    void fieldList();
    void aggregates();
    void groupConditions();
    void sorting();
    void parameter();
    void rows();
    void words();
    void undo();
    void muting();
    void whyNoRows();
    void offeredStatement();
    void refusedStatement();
    void unsavedChanges();
    void comparing();
    void diagramMenu();
    void printPreview();
    void connecting();
    void keyboardMap();

private:
    void beginAnew();
    void load(const QString& statement);
    void run();
    void picture(const QString& name, const std::function<QRect()>& part);
    [[nodiscard]] std::function<QRect()> diagram(QSize size) const;
    [[nodiscard]] std::function<QRect()> pages() const;
    [[nodiscard]] std::function<QRect()> menu(const QString& title) const;

    std::unique_ptr<ProgramDesk> m_desk;
    std::unique_ptr<ProgramHand> m_hand;
};

void tst_x_guide::init() {
    orvtest::failOnAnyWarning();
    // A cursor that blinks is there in one picture and not in the next.
    QApplication::setCursorFlashTime(0);
    m_desk = std::make_unique<ProgramDesk>();
    m_hand = std::make_unique<ProgramHand>(*m_desk);
    // The pictures of a smaller window show what they are about.
    if (QLatin1String(QTest::currentTestFunction()) != QLatin1String("window")) {
        m_desk->window->resize(960, 760);
    }
    QVERIFY(m_desk->show());
}

void tst_x_guide::cleanup() {
    if (m_desk) QCOMPARE(m_desk->errors, QStringList());
    m_hand.reset();
    m_desk.reset();
}

// --- what is done several times ---

void tst_x_guide::beginAnew() {
    m_hand->chooseFromMenuBar("File", "New");
    m_hand->until("the diagram is empty", [this] { return m_desk->area().TablesCount() == 0; });
}

void tst_x_guide::load(const QString& statement) {
    m_hand->click(ProgramDesk::middleOf(&m_desk->statement()))
        .until("it can be typed", ProgramDesk::hasFocus(&m_desk->statement()))
        .call([this, statement] { m_desk->statement().setPlainText(statement); })
        .key("ctrl+Return");
}

void tst_x_guide::run() {
    m_hand->click(ProgramDesk::middleOf(m_desk->child<QToolButton>("runButton")))
        .until("the rows are there", [this] { return m_desk->hasRun(); });
}

// What a run took differs from picture to picture.
void tst_x_guide::picture(const QString& name, const std::function<QRect()>& part) {
    m_hand->call([this, name, part] {
        static const QRegularExpression time(QStringLiteral(R"(\d+ ms|\d+\.\d+ s)"));
        auto* summary = m_desk->child<QLabel>("summary");
        summary->setText(summary->text().replace(time, QStringLiteral("5 ms")));
        orvtest::takePicture(name, part());
    });
}

std::function<QRect()> tst_x_guide::diagram(QSize size) const {
    return [this, size] { return QRect(m_desk->area().viewport()->mapToGlobal(QPoint()), size); };
}

std::function<QRect()> tst_x_guide::pages() const {
    return [this] { return around(placeOf(m_desk->builder().PageCtrl)); };
}

std::function<QRect()> tst_x_guide::menu(const QString& title) const {
    return [this, title] {
        const QMenuBar& bar = *m_desk->window->menuBar();
        return placeOf(ProgramDesk::openMenu()) |
               QRect(bar.mapToGlobal(QPoint()), QSize(250, bar.height())) |
               QRect(m_desk->menuTitle(title)(), QSize(1, 1));
    };
}

// --- the guide ---

void tst_x_guide::window() {
    run();
    picture("window", [this] { return placeOf(m_desk->window.get()); });
    perform(*m_hand);
    QCOMPARE(m_desk->rows().front().front(), QString("Kovacs Roofing GmbH"));
}

void tst_x_guide::tables() {
    ProgramHand& hand = *m_hand;
    beginAnew();
    hand.addTable("customers");
    hand.addTable("orders");
    hand.until("they are joined", [this] { return m_desk->link() != nullptr; });
    picture("guide-tables", [this] {
        const QRect tables = around(placeOf(m_desk->window->findChild<orvquery::SchemaBrowser*>()));
        return (tables | diagram({400, 200})()) & QRect(tables.topLeft(), QSize(640, 320));
    });
    hand.tick("CUSTOMERS", "NAME");
    hand.tick("CUSTOMERS", "CITY");
    hand.tick("ORDERS", "ORDER_NO");
    hand.tick("ORDERS", "TOTAL");
    picture("guide-fields", [this] { return around(placeOf(&m_desk->builder())); });
    run();
    perform(hand);
    QCOMPARE(m_desk->grid().RowCount(), 6);
    QVERIFY(m_desk->rows().size() > 100);
}

void tst_x_guide::joinByHand() {
    ProgramHand& hand = *m_hand;
    beginAnew();
    hand.chooseFromMenuBar("Diagram", "Propose joins");
    hand.addTable("customers");
    hand.addTable("orders");
    hand.call([this] { QVERIFY(!m_desk->link()); });
    hand.carryField("CUSTOMERS", "CUSTOMER_NO", m_desk->field("ORDERS", "CUSTOMER_NO"));
    picture("guide-drag", diagram({400, 170}));
    hand.release().until("there is a link", [this] { return m_desk->link() != nullptr; });
    hand.chooseFromMenuBar("Diagram", "Propose joins");
    perform(hand);
}

void tst_x_guide::kindOfJoin() {
    ProgramHand& hand = *m_hand;
    load(
        "select customers.name, orders.order_no from customers "
        "inner join orders on customers.customer_no = orders.customer_no");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; })
        .doubleClick(m_desk->linkMiddle())
        .until("the dialog is up", [] { return orvtest::linkDialog() != nullptr; })
        .click([] {
            const QCheckBox* box = orvtest::includesAll("CUSTOMERS");
            return box->mapToGlobal(QPoint(8, box->height() / 2));
        })
        .until("it is ticked", [] { return orvtest::includesAll("CUSTOMERS")->isChecked(); });
    picture("guide-join", [] { return placeOf(dialog()); });
    hand.click([] { return ProgramDesk::middleOf(orvtest::linkDialog()->btnOK)(); })
        .until("the join is outer",
               [this] { return m_desk->link()->Join->KindOfJoin == klLOuterJoin; });
    picture("guide-outer", diagram({400, 170}));
    perform(hand);
}

void tst_x_guide::conditions() {
    ProgramHand& hand = *m_hand;
    TorvQDWherePanel& panel = m_desk->where();
    load(
        "select customers.name, customers.city, orders.order_no, orders.total from customers "
        "inner join orders on customers.customer_no = orders.customer_no");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.goTo("Criterions");
    hand.click(ProgramDesk::element(panel, "", ekButton))
        .until("the menu is up", ProgramDesk::menuIsUp());
    picture("guide-condition-menu", [this] {
        const QRect pages = this->pages()();
        const QRect menu = placeOf(ProgramDesk::openMenu());
        return (pages | menu).adjusted(0, 0, -pages.width() / 2, 6);
    });
    hand.key("Escape").until("the menu is gone", ProgramDesk::noMenuIsUp());
    hand.addCondition(panel, "", "1.");
    hand.chooseField(panel, "1.", "ORDERS", "STATUS");
    hand.typeValue(panel, "1.", "'open'");
    hand.addCondition(panel, "", "2.");
    hand.chooseField(panel, "2.", "CUSTOMERS", "CITY");
    hand.typeValue(panel, "2.", "'Toronto'");
    hand.chooseFromMenu(panel, "2.", ekButton, "Make compose condition");
    hand.chooseFromMenu(panel, "2.", ekGroupOper, "Any");
    hand.addCondition(panel, "2.", "2.2.");
    hand.chooseField(panel, "2.2.", "CUSTOMERS", "CITY");
    hand.typeValue(panel, "2.2.", "'Madrid'");
    picture("guide-conditions", pages());
    run();
    perform(hand);
    QVERIFY(!m_desk->rows().empty());
    for (const QStringList& row : m_desk->rows())
        QVERIFY(row[1] == "Toronto" || row[1] == "Madrid");
}

void tst_x_guide::fieldList() {
    ProgramHand& hand = *m_hand;
    TorvQDWherePanel& panel = m_desk->where();
    load(
        "select customers.name from customers inner join orders on customers.customer_no = "
        "orders.customer_no");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.goTo("Criterions");
    hand.addCondition(panel, "", "1.");
    hand.openFieldList(panel, "1.", "ORDERS");
    picture("guide-field-list", [this] {
        const QRect pages = this->pages()();
        return pages.adjusted(0, 0, -pages.width() / 2, 0);
    });
    hand.key("Escape")
        .until("the list is gone", [&panel] { return !ProgramDesk::fieldList(panel); })
        .key("Escape")
        .until("the editor is gone", [&panel] { return !ProgramDesk::memo(panel); });
    perform(hand);
}

void tst_x_guide::aggregates() {
    ProgramHand& hand = *m_hand;
    load(
        "select customers.name, orders.order_no, orders.total from customers "
        "inner join orders on customers.customer_no = orders.customer_no");
    hand.until("it is loaded", [this] { return m_desk->grid().RowCount() == 5; });
    hand.goTo("Selection");
    hand.openAggregates("ORDERS.ORDER_NO");
    hand.chooseAggregate("COUNT");
    hand.openAggregates("ORDERS.TOTAL");
    picture("guide-aggregates",
            [this] { return pages()() | placeOf(m_desk->combo()->view()).adjusted(0, 0, 0, 6); });
    hand.chooseAggregate("SUM");
    hand.click(m_desk->cell("CUSTOMERS.NAME", 2)).until("the editor is gone", [this] {
        return m_desk->combo() == nullptr;
    });
    run();
    perform(hand);
    QVERIFY(m_desk->statement().toPlainText().contains("GROUP BY"));
}

void tst_x_guide::groupConditions() {
    ProgramHand& hand = *m_hand;
    TorvQDWherePanel& panel = m_desk->having();
    load(
        "select customers.name, sum(orders.total) as turnover from customers "
        "inner join orders on customers.customer_no = orders.customer_no group by customers.name");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.goTo("Grouping criterions");
    hand.addCondition(panel, "", "1.");
    hand.chooseFromMenu(panel, "1.", ekFieldFunc, "SUM");
    hand.chooseField(panel, "1.", "ORDERS", "TOTAL");
    hand.chooseFromMenu(panel, "1.", ekOperator, ">");
    hand.typeValue(panel, "1.", "20000");
    picture("guide-groups", [this] { return pages()().adjusted(0, 0, 0, -60); });
    run();
    perform(hand);
    QVERIFY(!m_desk->rows().empty());
}

void tst_x_guide::sorting() {
    ProgramHand& hand = *m_hand;
    load(
        "select customers.name, sum(orders.total) as turnover from customers "
        "inner join orders on customers.customer_no = orders.customer_no group by customers.name");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.goTo("Sorting");
    hand.sortBy("TURNOVER", 1);
    hand.sortDescending("TURNOVER");
    picture("guide-sorting", pages());
    run();
    perform(hand);
    QVERIFY(m_desk->rows().front()[1].toDouble() > m_desk->rows().back()[1].toDouble());
}

void tst_x_guide::parameter() {
    ProgramHand& hand = *m_hand;
    load(
        "select customers.name, customers.city from customers where customers.city = :city and "
        "customers.credit_limit >= :least");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 1; })
        .key("F5")
        .until("the dialog is up", dialogIsUp())
        .type("Madrid")
        .key("Tab")
        .key("Tab")
        .type("1000")
        .until("it is typed",
               [] { return dialog()->findChild<QLineEdit*>("LEAST")->text() == u"1000"; });
    picture("guide-parameters", [] { return placeOf(dialog()); });
    hand.key("Return").until("the rows are there", [this] { return m_desk->hasRun(); });
    perform(hand);
    QVERIFY(!m_desk->rows().empty());
}

void tst_x_guide::rows() {
    ProgramHand& hand = *m_hand;
    load(openOrders);
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    run();
    picture("guide-rows",
            [this] { return around(placeOf(m_desk->window->findChild<orvquery::ResultPane*>())); });
    perform(hand);
}

void tst_x_guide::words() {
    ProgramHand& hand = *m_hand;
    load(openOrders);
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.chooseFromMenuBar("Query", "In words");
    hand.until("they are there",
               [this] { return m_desk->window->findChild<orvquery::WordsPanel*>()->isVisible(); });
    picture("guide-words", [this] {
        return around(placeOf(m_desk->window->findChild<orvquery::StatementPane*>()) |
                      placeOf(m_desk->window->findChild<orvquery::WordsPanel*>()));
    });
    hand.chooseFromMenuBar("Query", "In words");
    perform(hand);
}

void tst_x_guide::undo() {
    ProgramHand& hand = *m_hand;
    beginAnew();
    hand.addTable("customers");
    hand.tick("CUSTOMERS", "NAME");
    hand.openMenu("Edit");
    picture("guide-undo", menu("Edit"));
    hand.click(ProgramDesk::menuEntry("Undo adding the column NAME")).until("it is undone", [this] {
        return !m_desk->table("CUSTOMERS")->GetFieldItem("NAME")->Checked;
    });
    perform(hand);
}

void tst_x_guide::muting() {
    ProgramHand& hand = *m_hand;
    TorvQDWherePanel& panel = m_desk->where();
    load(openOrders);
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.goTo("Criterions");
    hand.chooseFromMenu(panel, "1.", ekButton, "Mute condition");
    picture("guide-muted", [this] { return pages()() | around(placeOf(&m_desk->statement())); });
    perform(hand);
    QVERIFY(!m_desk->statement().toPlainText().contains("STATUS"));
}

void tst_x_guide::whyNoRows() {
    ProgramHand& hand = *m_hand;
    load(
        "select customers.name, orders.order_no from customers "
        "inner join orders on customers.customer_no = orders.customer_no "
        "where orders.status = 'open' and customers.city = 'toronto'");
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    run();
    hand.click(ProgramDesk::middleOf(m_desk->child<QToolButton>("noRowsButton")));
    const auto answer = [this]() -> QDialog* {
        auto* found = m_desk->window->findChild<QDialog*>("whyNoRows");
        return found && found->isVisible() ? found : nullptr;
    };
    hand.until("the trials are over", [answer] {
        return answer() && answer()->isActiveWindow() &&
               !answer()->findChild<QAbstractButton*>("stopTrials")->isEnabled();
    });
    picture("guide-no-rows", [answer] { return placeOf(answer()); });
    hand.click([answer] {
            return ProgramDesk::middleOf(answer()->findChild<QPushButton*>("muteIt"))();
        })
        .until("it is muted",
               [this] { return !m_desk->statement().toPlainText().contains("toronto"); });
    hand.key("Escape").until("it is closed", [answer] { return !answer(); });
    perform(hand);
}

void tst_x_guide::offeredStatement() {
    ProgramHand& hand = *m_hand;
    load(
        "select customers.name, customers.city, orders.order_no\nfrom customers natural join "
        "orders\n"
        "where customers.city = 'Lyon' limit 10;\nselect name from parts");
    hand.until("it is offered", [this] { return m_desk->child<QWidget>("offerBar")->isVisible(); });
    picture("guide-offer", [this] {
        return around(placeOf(m_desk->window->findChild<orvquery::StatementPane*>()));
    });
    hand.click(ProgramDesk::middleOf(m_desk->child<QWidget>("loadAnyway")))
        .until("it is loaded", [this] { return !m_desk->child<QWidget>("offerBar")->isVisible(); });
    picture("guide-findings", [this] {
        return around(placeOf(m_desk->window->findChild<orvquery::StatementPane*>()));
    });
    perform(hand);
}

void tst_x_guide::refusedStatement() {
    ProgramHand& hand = *m_hand;
    load("delete from orders\nwhere status = 'cancelled'");
    hand.until("it is refused", [this] { return m_desk->child<QLabel>("refusal")->isVisible(); });
    picture("guide-refused", [this] {
        return around(placeOf(m_desk->window->findChild<orvquery::StatementPane*>()));
    });
    perform(hand);
}

void tst_x_guide::unsavedChanges() {
    ProgramHand& hand = *m_hand;
    beginAnew();
    hand.addTable("customers");
    hand.click(m_desk->menuTitle("File"))
        .until("the menu is up", ProgramDesk::menuIsUp())
        .click(ProgramDesk::menuEntry("New"))
        .until("the question is there", dialogIsUp());
    picture("guide-unsaved", [] { return placeOf(dialog()); });
    hand.key("Escape").until("it is gone", [] { return dialog() == nullptr; });
    perform(hand);
}

void tst_x_guide::comparing() {
    ProgramHand& hand = *m_hand;
    const QTemporaryDir folder;
    const QString path = folder.filePath("before.sql");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "select customers.name, orders.order_no from customers "
        "inner join orders on customers.customer_no = orders.customer_no where orders.status = "
        "'open'");
    file.close();
    load(openOrders);
    hand.until("it is loaded", [this] { return m_desk->area().TablesCount() == 2; });
    hand.click(m_desk->menuTitle("Query"))
        .until("the menu is up", ProgramDesk::menuIsUp())
        .click(ProgramDesk::menuEntry("Compare with file..."))
        .until("a file is asked for", dialogIsUp())
        // What completes a typed name would take the key.
        .call([path] { dialog()->findChild<QLineEdit*>("fileNameEdit")->setText(path); })
        .key("Return")
        .until("they are compared", [] {
            return dialog() && dialog()->isActiveWindow() &&
                   dialog()->findChild<QWidget*>("differences");
        });
    picture("guide-compare", [] { return placeOf(dialog()); });
    hand.key("Escape").until("it is gone", [] { return dialog() == nullptr; });
    perform(hand);
}

void tst_x_guide::diagramMenu() {
    m_hand->openMenu("Diagram");
    picture("guide-diagram-menu", menu("Diagram"));
    m_hand->key("Escape").until("it is gone", ProgramDesk::noMenuIsUp());
    perform(*m_hand);
}

void tst_x_guide::printPreview() {
    ProgramHand& hand = *m_hand;
    hand.openMenu("Diagram");
    hand.click(ProgramDesk::menuEntry("Print preview..."))
        .until("the preview is there", dialogIsUp());
    picture("guide-preview", [] { return placeOf(dialog()); });
    hand.key("Escape").until("it is gone", [] { return dialog() == nullptr; });
    perform(hand);
}

void tst_x_guide::connecting() {
    ProgramHand& hand = *m_hand;
    hand.openMenu("File");
    hand.click(ProgramDesk::menuEntry("Connect...")).until("the dialog is up", dialogIsUp());
    picture("guide-connect", [] { return placeOf(dialog()); });
    hand.key("Escape").until("it is gone", [] { return dialog() == nullptr; });
    perform(hand);
}

void tst_x_guide::keyboardMap() {
    ProgramHand& hand = *m_hand;
    const auto map = [this]() -> QWidget* {
        auto* found = m_desk->window->findChild<QWidget*>("keyboardMap");
        return found && found->isActiveWindow() ? found : nullptr;
    };
    hand.key("F1").until("the map is there", [map] { return map() != nullptr; }).type("mute");
    hand.until("it is searched",
               [map] { return map()->findChild<QLineEdit*>("keySearch")->text() == u"mute"; });
    picture("guide-keys", [map] { return placeOf(map()); });
    hand.key("Escape").until("it is gone", [map] { return !map(); });
    perform(hand);
}

QTEST_MAIN(tst_x_guide)
#include "tst_x_guide.moc"
