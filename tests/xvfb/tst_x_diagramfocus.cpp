// SPDX-License-Identifier: MIT
// The edits of the diagram, the keys and the hint among real windows: who has the focus, and what
// its loss means.
#include "xvfb/DiagramDesk.h"

#include <QLabel>
#include <QTest>

using orvtest::DiagramDesk;
using orvtest::Hand;

namespace {

QLabel* shownHint() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* label = qobject_cast<QLabel*>(widget);
        if (label && label->isVisible() && label->windowType() == Qt::ToolTip) return label;
    }
    return nullptr;
}

Hand::Condition hasFocus(const QWidget* widget) {
    return [widget = QPointer<const QWidget>(widget)] { return widget && widget->hasFocus(); };
}

}  // namespace

class tst_x_diagramfocus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void renamingIsLeft_data();
    void renamingIsLeft();
    void menuOfTheEditDoesNotCommit();
    void otherWindowDoesNotCommit();
    void theHostMayActDuringRenaming_data();
    void theHostMayActDuringRenaming();
    void typingSearchesAField();
    void tabLeavesTheDiagram();
    void hintAppearsWithoutTakingTheFocus();

private:
    // Opens the edit over ORDERS by a double click and types a new alias.
    static void beginRenaming(Hand& hand, const DiagramDesk& desk) {
        hand.doubleClick(desk.caption("ORDERS"))
            .until("the edit has the focus", hasFocus(desk.aliasEdit()))
            .call([&] { QCOMPARE(desk.aliasEdit()->text(), QString("ORDERS")); })
            .key("o")
            .until("it is typed", [&] { return desk.aliasEdit()->text() == "o"; });
    }
    static bool isRenamed(const DiagramDesk& desk) {
        return desk.table("o") && desk.table("o")->TableName == "ORDERS";
    }
};

// --- renaming ---

void tst_x_diagramfocus::renamingIsLeft_data() {
    QTest::addColumn<QString>("by");
    QTest::addColumn<bool>("renames");
    QTest::newRow("Enter") << "Return" << true;
    QTest::newRow("Escape") << "Escape" << false;
    QTest::newRow("Tab") << "Tab" << true;
    QTest::newRow("a click on the empty diagram") << "canvas" << true;
    QTest::newRow("a click on another box") << "box" << true;
    QTest::newRow("a click on another edit") << "beside" << true;
}

void tst_x_diagramfocus::renamingIsLeft() {
    QFETCH(QString, by);
    QFETCH(bool, renames);
    DiagramDesk desk;
    QVERIFY(desk.show());
    Hand hand;
    beginRenaming(hand, desk);
    if (by == "canvas") {
        hand.click(desk.at({300, 300}));
    } else if (by == "box") {
        hand.click(desk.caption("CUSTOMER"));
    } else if (by == "beside") {
        hand.click(DiagramDesk::middleOf(desk.beside));
    } else {
        hand.key(by);
    }
    hand.until("the edit is gone", [&] { return !desk.aliasEdit()->isVisible(); });
    perform(hand);
    QCOMPARE(isRenamed(desk), renames);
    QCOMPARE(desk.errors, QStringList());
    if (by == "beside") {
        QVERIFY(desk.beside->hasFocus());
    } else if (by != "Tab") {
        QVERIFY(desk.area().hasFocus());
    }
    QVERIFY(!desk.area().isGesturing());
    if (by == "box") QVERIFY(desk.table("CUSTOMER")->Selected);
    verifyBuilder(*desk.builder);
}

void tst_x_diagramfocus::menuOfTheEditDoesNotCommit() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    Hand hand;
    beginRenaming(hand, desk);
    hand.click(DiagramDesk::middleOf(desk.aliasEdit()), 3)
        .until("the menu of the edit is up",
               [] { return DiagramDesk::openMenu() && DiagramDesk::openMenu()->isVisible(); })
        .call([&] {
            QVERIFY(desk.aliasEdit()->isVisible());
            QVERIFY(!isRenamed(desk));
        })
        .key("Escape")
        .until("the menu is gone", [] { return !DiagramDesk::openMenu(); })
        .until("the edit has the focus", hasFocus(desk.aliasEdit()));
    perform(hand);
    QVERIFY(!isRenamed(desk));
    hand.key("Return").until("the box is renamed", [&] { return isRenamed(desk); });
    perform(hand);
    verifyBuilder(*desk.builder);
}

void tst_x_diagramfocus::otherWindowDoesNotCommit() {
    DiagramDesk desk;
    desk.window.move(0, 0);
    QWidget other;
    other.setGeometry(1000, 400, 200, 100);
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QVERIFY(desk.show());
    Hand hand;
    beginRenaming(hand, desk);
    hand.call([&] { other.activateWindow(); })
        .until("the other window is active", [&] { return other.isActiveWindow(); })
        .call([&] {
            QVERIFY(desk.aliasEdit()->isVisible());
            QVERIFY(!isRenamed(desk));
            desk.window.activateWindow();
        })
        .until("the edit has the focus", hasFocus(desk.aliasEdit()))
        .key("Return")
        .until("the box is renamed", [&] { return isRenamed(desk); });
    perform(hand);
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(*desk.builder);
}

void tst_x_diagramfocus::theHostMayActDuringRenaming_data() {
    QTest::addColumn<QString>("deed");
    QTest::newRow("closes the box") << "close";
    QTest::newRow("clears") << "clear";
    QTest::newRow("deletes the builder") << "delete";
}

void tst_x_diagramfocus::theHostMayActDuringRenaming() {
    QFETCH(QString, deed);
    DiagramDesk desk;
    QVERIFY(desk.show());
    bool isDone = false;
    const auto act = [&] {
        if (deed == "close") desk.table("ORDERS")->CloseTable();
        if (deed == "clear") desk.builder->Clear();
        if (deed == "delete") delete desk.builder.data();
        isDone = true;
    };
    Hand hand;
    beginRenaming(hand, desk);
    hand.call([&] { QTimer::singleShot(0, &desk.window, act); })
        .until("the host has acted", [&] { return isDone; })
        .key("x")
        .key("Return")
        .click(DiagramDesk::middleOf(desk.beside))
        .until("another edit has the focus", hasFocus(desk.beside));
    perform(hand);
    QCOMPARE(desk.errors, QStringList());
    if (deed == "delete") return;
    QCOMPARE(desk.stacking(), deed == "close" ? QStringList("CUSTOMER") : QStringList());
    QVERIFY(!desk.aliasEdit()->isVisible());
    verifyBuilder(*desk.builder);
}

// --- searching ---

void tst_x_diagramfocus::typingSearchesAField() {
    DiagramDesk desk;
    TorvQDTable* many = desk.addTable("MANY", {420, 20});
    QVERIFY(desk.show());
    const auto current = [&] { return many->CurrentItem ? many->CurrentItem->Name : QString(); };
    Hand hand;
    hand.click(desk.caption("MANY"))
        .until("the box is selected", [&] { return many->Selected; })
        .key("f")
        .until("the search edit has the focus", hasFocus(desk.searchEdit()))
        .until("the first row is found", [&] { return current() == "F1"; })
        .key("8")
        .until("another row is found", [&] { return current() == "F8"; });
    perform(hand);
    QCOMPARE(desk.searchEdit()->text(), QString("f8"));
    // It is scrolled into sight.
    QVERIFY(many->FirstVisibleItem > 0);

    hand.key("Escape")
        .until("the edit is gone", [&] { return !desk.searchEdit()->isVisible(); })
        .until("the diagram has the focus", hasFocus(&desk.area()));
    perform(hand);
    QCOMPARE(current(), QString("F8"));

    // The mouse, when it was used last, says which box is meant.
    hand.moveTo(desk.row("CUSTOMER", "NAME"))
        .key("c")
        .until("a row of the box under the mouse is found",
               [&] {
                   const TorvQDListItem* item = desk.table("CUSTOMER")->CurrentItem;
                   return item && item->Name == "CUSTNO";
               })
        .click(desk.at({300, 300}))
        .until("the edit is gone", [&] { return !desk.searchEdit()->isVisible(); });
    perform(hand);
    QVERIFY(desk.area().hasFocus());
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(*desk.builder);
}

void tst_x_diagramfocus::tabLeavesTheDiagram() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    Hand hand;
    hand.click(desk.caption("ORDERS"))
        .until("the box is selected", [&] { return desk.table("ORDERS")->Selected; })
        .key("Tab")
        .until("the focus has left", [&] {
            const QWidget* focus = QApplication::focusWidget();
            return focus && focus != &desk.area() && !desk.area().isAncestorOf(focus);
        });
    perform(hand);
    QVERIFY(desk.builder->isAncestorOf(QApplication::focusWidget()));
    hand.key("shift+Tab").until("it is back", hasFocus(&desk.area()));
    perform(hand);
    QVERIFY(desk.table("ORDERS")->Selected);
    verifyBuilder(*desk.builder);
}

// --- the hint ---

void tst_x_diagramfocus::hintAppearsWithoutTakingTheFocus() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    QPoint pointer;
    Hand hand;
    hand.moveTo(desk.row("CUSTOMER", "NAME"))
        .call([&] {
            pointer = QCursor::pos();
            QVERIFY(!shownHint());
        })
        .until("a hint is shown", [] { return shownHint() != nullptr; });
    perform(hand);
    QLabel* hint = shownHint();
    QVERIFY(QTest::qWaitForWindowExposed(hint));
    QCOMPARE(hint->text(), QString("NAME (String)"));
    QCOMPARE(hint->pos(), pointer + QPoint(10, 20));
    QVERIFY(hint->width() <= 200);
    QVERIFY(desk.window.isActiveWindow());
    QVERIFY(desk.area().hasFocus());
    // A move hides it.
    hand.moveTo(desk.row("CUSTOMER", "CITY")).until("the hint is gone", [] {
        return !shownHint();
    });
    perform(hand);
}

QTEST_MAIN(tst_x_diagramfocus)
#include "tst_x_diagramfocus.moc"
