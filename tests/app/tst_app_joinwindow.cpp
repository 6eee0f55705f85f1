// SPDX-License-Identifier: MIT
#include "JoinDesk.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using namespace orvquery;

// Joins in the window: from the list of tables to the statement, by mouse and keys.
class TestJoinWindow : public QObject, protected apptest::JoinDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void foreignKeyIsLinkedAtOnce();
    void keyOfTableThatComesFirst();
    void combinedKeyGivesTwoLinks();
    void loadedBoxesCount();
    void quotedNamesAreFound();
    void severalKeysAreAskedFor();
    void enterLinksWhatIsSuggested();
    void severalCanBeChosen();
    void doubleClickLinks();
    void escapeAddsTableAlone();
    void linkTableJoinsBothByEnter();
    void secondBoxOfTable();
    void guessIsLeftAloneByEnter();
    void guessIsLinkedByArrowAndEnter();
    void pathBringsTables();
    void pathIsLeftAlone();
    void onlyOnePathCanBeChosen();
    void firstTableAsksNothing();
    void sampleTables();

    void switchIsRemembered();
    void dialogSwitchesOff();
    void dialogTellsItsRows();
};

void TestJoinWindow::foreignKeyIsLinkedAtOnce() {
    add("customers");
    QSignalSpy changes(&builder(), &TorvQueryBuilder::StatementChanged);
    add("orders");
    QCOMPARE(links(), QStringList("CUSTOMERS.CUSTNO=ORDERS.CUSTNO"));
    QCOMPARE(m_dialogs, 0);
    QCOMPARE(changes.count(), 1);
    QVERIFY(text().contains(
        QStringLiteral("INNER JOIN CUSTOMERS ON (ORDERS.CUSTNO = CUSTOMERS.CUSTNO)")));
}

void TestJoinWindow::keyOfTableThatComesFirst() {
    add("orders");
    add("customers");
    QCOMPARE(links(), QStringList("ORDERS.CUSTNO=CUSTOMERS.CUSTNO"));
    QCOMPARE(m_dialogs, 0);
}

void TestJoinWindow::combinedKeyGivesTwoLinks() {
    add("items");
    QSignalSpy changes(&builder(), &TorvQueryBuilder::StatementChanged);
    add("returns");
    QCOMPARE(links(), QStringList({"ITEMS.ORDERNO=RETURNS.O", "ITEMS.LINE=RETURNS.L"}));
    QCOMPARE(area().Joins().size(), std::size_t(1));
    QCOMPARE(changes.count(), 1);
}

void TestJoinWindow::loadedBoxesCount() {
    load("select c.name from customers c");
    add("orders");
    QCOMPARE(links(), QStringList("C.CUSTNO=ORDERS.CUSTNO"));
    // A box that stands for no table is passed over.
    load("select x.custno from nowhere x, customers c");
    add("orders");
    QCOMPARE(links(), QStringList("C.CUSTNO=ORDERS.CUSTNO"));
    QCOMPARE(m_dialogs, 0);
    QCOMPARE(m_messages, QStringList());
}

void TestJoinWindow::quotedNamesAreFound() {
    add("Guest Book");
    add("places");
    QCOMPARE(links(), QStringList("\"Guest Book\".\"Place Id\"=PLACES.ID"));
}

void TestJoinWindow::severalKeysAreAskedFor() {
    add("places");
    answer([](JoinDialog& dialog) {
        QTreeWidget& list = listOf(dialog);
        QVERIFY(list.hasFocus());
        QTest::keyClick(&list, Qt::Key_Down);
        QTest::keyClick(&list, Qt::Key_Return);
    });
    QSignalSpy changes(&builder(), &TorvQueryBuilder::StatementChanged);
    add("trips");
    QCOMPARE(m_asked, QStringList({"TRIPS.GOAL = PLACES.ID (foreign key)",
                                   "TRIPS.START = PLACES.ID (foreign key)"}));
    QCOMPARE(links(), QStringList("PLACES.ID=TRIPS.START"));
    QCOMPARE(changes.count(), 1);
}

void TestJoinWindow::enterLinksWhatIsSuggested() {
    add("places");
    answer([](JoinDialog& dialog) { QTest::keyClick(&listOf(dialog), Qt::Key_Return); });
    add("trips");
    QCOMPARE(links(), QStringList("PLACES.ID=TRIPS.GOAL"));
}

void TestJoinWindow::severalCanBeChosen() {
    add("places");
    answer([](JoinDialog& dialog) {
        QTest::keyClick(&listOf(dialog), Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(&dialog, Qt::Key_L, Qt::AltModifier);
        QTRY_COMPARE(dialog.result(), int(QDialog::Accepted));
    });
    add("trips");
    QCOMPARE(links(), QStringList({"PLACES.ID=TRIPS.GOAL", "PLACES.ID=TRIPS.START"}));
}

void TestJoinWindow::doubleClickLinks() {
    add("places");
    answer([](JoinDialog& dialog) {
        QTreeWidget& list = listOf(dialog);
        const QPoint place = list.visualItemRect(list.topLevelItem(1)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
    });
    add("trips");
    QCOMPARE(links(), QStringList("PLACES.ID=TRIPS.START"));
}

void TestJoinWindow::escapeAddsTableAlone() {
    add("places");
    answer([](JoinDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    add("trips");
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(boxes(), QStringList({"PLACES", "TRIPS"}));
    QCOMPARE(links(), QStringList());
    answer([](JoinDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("leave")), Qt::LeftButton);
    });
    add("trips");
    QCOMPARE(boxes(), QStringList({"PLACES", "TRIPS", "TRIPS1"}));
    QCOMPARE(links(), QStringList());
}

void TestJoinWindow::linkTableJoinsBothByEnter() {
    add("places");
    answer([](JoinDialog& dialog) { dialog.reject(); });
    add("products");
    answer([](JoinDialog& dialog) { QTest::keyClick(&listOf(dialog), Qt::Key_Return); });
    add("stock");
    QCOMPARE(links(), QStringList({"PLACES.ID=STOCK.PLACENO", "PRODUCTS.PRODNO=STOCK.PRODNO"}));
}

void TestJoinWindow::secondBoxOfTable() {
    add("staff");
    answer([](JoinDialog& dialog) { QTest::keyClick(&listOf(dialog), Qt::Key_Return); });
    add("staff");
    QCOMPARE(m_asked, QStringList({"STAFF.BOSS = STAFF1.NO (foreign key)",
                                   "STAFF1.BOSS = STAFF.NO (foreign key)"}));
    QCOMPARE(links(), QStringList("STAFF.BOSS=STAFF1.NO"));
    // The boss's boss: what refers to STAFF1 already is no use a second time.
    answer([](JoinDialog& dialog) { QTest::keyClick(&listOf(dialog), Qt::Key_Return); });
    add("staff");
    QCOMPARE(m_asked.size(), 4);
    QCOMPARE(m_asked.back(), QStringLiteral("STAFF.BOSS = STAFF2.NO "
                                            "(foreign key, by which STAFF1 is joined already)"));
    QCOMPARE(area().Joins().size(), std::size_t(2));
}

void TestJoinWindow::guessIsLeftAloneByEnter() {
    add("tags");
    answer([](JoinDialog& dialog) {
        QVERIFY(!dialog.findChild<QPushButton*>(QStringLiteral("link"))->isEnabled());
        QTest::keyClick(&listOf(dialog), Qt::Key_Return);
    });
    add("pins");
    QCOMPARE(m_asked, QStringList("PINS.TAG_ID = TAGS.ID (PINS.TAG_ID looks like the key ID of "
                                  "TAGS)"));
    QCOMPARE(boxes(), QStringList({"TAGS", "PINS"}));
    QCOMPARE(links(), QStringList());
}

void TestJoinWindow::guessIsLinkedByArrowAndEnter() {
    add("tags");
    answer([](JoinDialog& dialog) {
        QTest::keyClick(&listOf(dialog), Qt::Key_Down);
        QVERIFY(dialog.findChild<QPushButton*>(QStringLiteral("link"))->isEnabled());
        QTest::keyClick(&listOf(dialog), Qt::Key_Return);
    });
    add("pins");
    QCOMPARE(links(), QStringList("TAGS.ID=PINS.TAG_ID"));
}

void TestJoinWindow::pathBringsTables() {
    add("customers");
    answer([](JoinDialog& dialog) {
        QTest::keyClick(&listOf(dialog), Qt::Key_Down);
        QTest::keyClick(&listOf(dialog), Qt::Key_Return);
    });
    QSignalSpy changes(&builder(), &TorvQueryBuilder::StatementChanged);
    add("products");
    QCOMPARE(m_asked,
             QStringList("customers - orders - items - products: also add orders and items"));
    QCOMPARE(boxes(), QStringList({"CUSTOMERS", "ORDERS", "ITEMS", "PRODUCTS"}));
    QCOMPARE(links(), QStringList({"CUSTOMERS.CUSTNO=ORDERS.CUSTNO", "ORDERS.ORDERNO=ITEMS.ORDERNO",
                                   "ITEMS.PRODNO=PRODUCTS.PRODNO"}));
    QCOMPARE(changes.count(), 1);
}

void TestJoinWindow::pathIsLeftAlone() {
    add("customers");
    answer([](JoinDialog& dialog) { QTest::keyClick(&listOf(dialog), Qt::Key_Return); });
    add("products");
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(boxes(), QStringList({"CUSTOMERS", "PRODUCTS"}));
}

void TestJoinWindow::onlyOnePathCanBeChosen() {
    load("select c.name from customers c, customers d");
    answer([](JoinDialog& dialog) {
        QCOMPARE(listOf(dialog).topLevelItemCount(), 2);
        QVERIFY(!dialog.findChild<QLabel*>(QStringLiteral("hint")));
        listOf(dialog).selectAll();
        QVERIFY(dialog.chosen().size() < 2);
        dialog.reject();
    });
    add("items");
    QCOMPARE(m_dialogs, 1);
}

void TestJoinWindow::firstTableAsksNothing() {
    add("staff");
    add("lost");
    QCOMPARE(m_dialogs, 0);
    QCOMPARE(links(), QStringList());
}

void TestJoinWindow::sampleTables() {
    QVERIFY(m_window->openSample());
    builder().Clear();
    add("customers");
    add("orders");
    add("items");
    add("parts");
    QCOMPARE(m_dialogs, 0);
    QCOMPARE(links(),
             QStringList({"CUSTOMERS.CUSTOMER_NO=ORDERS.CUSTOMER_NO",
                          "ORDERS.ORDER_NO=ITEMS.ORDER_NO", "ITEMS.PART_NO=PARTS.PART_NO"}));
    // Both customers and orders refer to employees.
    answer([](JoinDialog& dialog) { dialog.reject(); });
    add("employees");
    QCOMPARE(m_asked, QStringList({"CUSTOMERS.SALES_REP_NO = EMPLOYEES.EMPLOYEE_NO (foreign key)",
                                   "ORDERS.EMPLOYEE_NO = EMPLOYEES.EMPLOYEE_NO (foreign key)"}));
    QCOMPARE(m_messages, QStringList());
}

void TestJoinWindow::switchIsRemembered() {
    auto* action = m_window->findChild<QAction*>(QStringLiteral("proposeJoins"));
    QVERIFY(action->isChecked());
    action->trigger();
    add("customers");
    add("orders");
    QCOMPARE(links(), QStringList());
    m_window = std::make_unique<MainWindow>();
    action = m_window->findChild<QAction*>(QStringLiteral("proposeJoins"));
    QVERIFY(!action->isChecked());
    action->trigger();
    m_window = std::make_unique<MainWindow>();
    QVERIFY(m_window->findChild<QAction*>(QStringLiteral("proposeJoins"))->isChecked());
}

void TestJoinWindow::dialogSwitchesOff() {
    add("places");
    answer([](JoinDialog& dialog) {
        QTest::keyClick(&dialog, Qt::Key_P, Qt::AltModifier);
        QTRY_VERIFY(!dialog.findChild<QCheckBox*>(QStringLiteral("again"))->isChecked());
        dialog.reject();
    });
    add("trips");
    add("trips");
    QCOMPARE(m_dialogs, 1);
    QVERIFY(!m_window->findChild<QAction*>(QStringLiteral("proposeJoins"))->isChecked());
}

void TestJoinWindow::dialogTellsItsRows() {
    add("places");
    answer([](JoinDialog& dialog) {
        QTreeWidget& list = listOf(dialog);
        QCOMPARE(list.headerItem()->text(0), QStringLiteral("From"));
        QCOMPARE(list.headerItem()->text(1), QStringLiteral("To"));
        QCOMPARE(list.headerItem()->text(2), QStringLiteral("Why"));
        const QTreeWidgetItem* row = list.topLevelItem(0);
        QCOMPARE(row->text(0), QStringLiteral("TRIPS.GOAL"));
        QCOMPARE(row->text(1), QStringLiteral("PLACES.ID"));
        QCOMPARE(row->text(2), QStringLiteral("foreign key"));
        QCOMPARE(row->data(0, Qt::AccessibleTextRole).toString(),
                 QStringLiteral("TRIPS.GOAL = PLACES.ID (foreign key)"));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Join TRIPS"));
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("hint")));
        QVERIFY(!list.accessibleName().isEmpty());
        list.clearSelection();
        QVERIFY(dialog.chosen().empty());
        dialog.reject();
    });
    add("trips");
    QCOMPARE(m_dialogs, 1);
}

QTEST_MAIN(TestJoinWindow)
#include "tst_app_joinwindow.moc"
