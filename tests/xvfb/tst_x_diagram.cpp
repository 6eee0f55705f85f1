// SPDX-License-Identifier: MIT
// The diagram in the hand: boxes, links and their menus, panning and zooming, with a real pointer,
// real keys and a window manager.
#include "diagram/Orvqdlnkprop.h"
#include "xvfb/DiagramDesk.h"

#include <QComboBox>
#include <QCursor>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

using orvtest::DiagramDesk;
using orvtest::Hand;

namespace {

QPoint placeOf(const TorvQDTable* table) {
    return {table->Left, table->Top};
}

bool isUp(const QWidget* widget) {
    return widget && widget->isVisible() && widget->isActiveWindow();
}

Hand::Condition questionIsUp() {
    return [] { return isUp(qobject_cast<QMessageBox*>(QApplication::activeModalWidget())); };
}

Hand::Condition menuIsUp() {
    return [] { return DiagramDesk::openMenu() && DiagramDesk::openMenu()->isVisible(); };
}

Hand::Condition nothingIsUp(const DiagramDesk& desk) {
    return [&desk] {
        return !QApplication::activePopupWidget() && !QApplication::activeModalWidget() &&
               desk.window.isActiveWindow();
    };
}

TdlgLnkProp* linkDialog() {
    return qobject_cast<TdlgLnkProp*>(QApplication::activeModalWidget());
}

Hand::Condition linkDialogIsUp() {
    return [] { return isUp(linkDialog()); };
}

}  // namespace

class tst_x_diagram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void captionMovesTheBox();
    void edgeSizesTheBox();
    void escapeRestoresAMovedBox();
    void releaseOutsideTheWindowEndsTheMove();
    void anotherActiveWindowEndsTheMove();
    void doubleClickOnACheckSquareTogglesOnce();
    void endOfALinkGoesToAnotherRow_data();
    void endOfALinkGoesToAnotherRow();
    void bendPointIsInsertedAndDragged();
    void deletingALinkAsksFirst();
    void theHostMayActDuringTheQuestion_data();
    void theHostMayActDuringTheQuestion();
    void menuOpensAtTheReleaseAndRemovesTheBox();
    void theHostMayClearUnderTheMenu();
    void linkDialogByKeys();
    void theHostMayActDuringTheLinkDialog_data();
    void theHostMayActDuringTheLinkDialog();
    void middleButtonPans();
    void controlWheelZooms();
};

// --- boxes ---

void tst_x_diagram::captionMovesTheBox() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    QCOMPARE(desk.stacking().first(), QString("CUSTOMER"));
    TorvQDTable* box = desk.table("ORDERS");
    const QPoint before = placeOf(box);
    const Hand::Place from = desk.caption("ORDERS");
    QPoint start;
    Hand hand;
    hand.call([&] { start = from(); })
        .moveTo(from)
        .press()
        .moveTo([&] { return start + QPoint(100, 150); })
        .release();
    perform(hand);
    QCOMPARE(placeOf(box), before + QPoint(100, 150));
    QVERIFY(box->Selected);
    QCOMPARE(desk.stacking().first(), QString("ORDERS"));
    QVERIFY(!desk.area().isGesturing());
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::edgeSizesTheBox() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    TorvQDTable* box = desk.table("ORDERS");
    const int width = box->Width;
    const int height = box->Height;
    const TRect bounds = box->GetBoundsRect();
    const QPoint corner(bounds.Right - 2, bounds.Bottom - 2);
    Hand hand;
    hand.moveTo(desk.at(corner))
        .until("the cursor shows what it would do",
               [&] { return desk.area().viewport()->cursor().shape() == Qt::SizeFDiagCursor; })
        .press()
        .moveTo(desk.at(corner + QPoint(40, 30)))
        .release();
    perform(hand);
    QCOMPARE(box->Width, width + 40);
    QCOMPARE(box->Height, height + 30);
    QCOMPARE(placeOf(box), QPoint(20, 20));

    hand.drag(desk.at({21, 60}), desk.at({11, 60}));
    perform(hand);
    QCOMPARE(box->Width, width + 50);
    QCOMPARE(placeOf(box), QPoint(10, 20));
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::escapeRestoresAMovedBox() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    const std::vector<QPoint> line = desk.link()->points();
    const QByteArray before = orvtest::visibleState(*desk.builder);
    TorvQDTable* box = desk.table("CUSTOMER");
    const QPoint place = placeOf(box);
    const Hand::Place from = desk.caption("CUSTOMER");
    QPoint start;
    Hand hand;
    hand.call([&] { start = from(); })
        .moveTo(from)
        .press()
        .moveTo([&] { return start + QPoint(60, 100); })
        .call([&] { QCOMPARE(placeOf(box), place + QPoint(60, 100)); })
        .key("Escape")
        .until("the box is back", [&] { return placeOf(box) == place; })
        // The button is still held, and the box does not follow any more.
        .moveTo([&] { return start + QPoint(80, 80); })
        .release();
    perform(hand);
    QCOMPARE(placeOf(box), place);
    QCOMPARE(desk.link()->points(), line);
    QCOMPARE(orvtest::visibleState(*desk.builder), before);
    QVERIFY(!desk.area().isGesturing());
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::releaseOutsideTheWindowEndsTheMove() {
    DiagramDesk desk;
    desk.window.move(300, 100);
    QVERIFY(desk.show());
    TorvQDTable* box = desk.table("CUSTOMER");
    Hand hand;
    hand.moveTo(desk.caption("CUSTOMER"))
        .press()
        .moveTo([&] { return desk.window.mapToGlobal(QPoint(-60, 200)); })
        .release();
    perform(hand);
    // A box stays on the diagram.
    QCOMPARE(box->Left, 0);
    QVERIFY(!desk.area().isGesturing());
    QVERIFY(!desk.area().isTimerActive(TorvQDWorkArea::edgeTimer));
    const QPoint place = placeOf(box);
    hand.moveTo(desk.at({300, 300}));
    perform(hand);
    QCOMPARE(placeOf(box), place);
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::anotherActiveWindowEndsTheMove() {
    DiagramDesk desk;
    desk.window.move(0, 0);
    QWidget other;
    other.setGeometry(1000, 400, 200, 100);
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QVERIFY(desk.show());
    TorvQDTable* box = desk.table("CUSTOMER");
    const Hand::Place from = desk.caption("CUSTOMER");
    QPoint start;
    QPoint place;
    Hand hand;
    hand.call([&] { start = from(); })
        .moveTo(from)
        .press()
        .moveTo([&] { return start + QPoint(50, 50); })
        .call([&] {
            QVERIFY(desk.area().isGesturing());
            place = placeOf(box);
            other.activateWindow();
        })
        .until("the other window is active", [&] { return other.isActiveWindow(); })
        .call([&] { QVERIFY(!desk.area().isGesturing()); })
        .moveTo([&] { return start + QPoint(90, 90); })
        .release();
    perform(hand);
    // It stays where it was when the mouse was lost.
    QCOMPARE(placeOf(box), place);
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::doubleClickOnACheckSquareTogglesOnce() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    const TorvQDListItem* row = desk.table("CUSTOMER")->GetFieldItem("NAME");
    int toggles = 0;
    const TCheckItemEvent before = desk.area().OnCheckItem;
    desk.area().OnCheckItem = [&](QObject* sender, TorvQDListItem* item) {
        ++toggles;
        before(sender, item);
    };
    Hand hand;
    hand.doubleClick(desk.checkSquare("CUSTOMER", "NAME")).until("both clicks have arrived", [&] {
        return toggles == 3;
    });
    perform(hand);
    QVERIFY(row->Checked);
    verifyBuilder(*desk.builder);
}

// --- links ---

void tst_x_diagram::endOfALinkGoesToAnotherRow_data() {
    QTest::addColumn<QString>("alias");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::newRow("of the same box") << "CUSTOMER"
                                     << "CITY"
                                     << "ORDERS.CUSTNO < CUSTOMER.CITY";
    QTest::newRow("of another box") << "MANY"
                                    << "F2"
                                    << "ORDERS.CUSTNO < MANY.F2";
    QTest::newRow("of the other end's box") << "ORDERS"
                                            << "PRICE"
                                            << "ORDERS.CUSTNO < CUSTOMER.CUSTNO";
}

void tst_x_diagram::endOfALinkGoesToAnotherRow() {
    QFETCH(QString, alias);
    QFETCH(QString, field);
    QFETCH(QString, text);
    DiagramDesk desk;
    desk.addTable("MANY", {420, 200});
    TorvQDLink* link = desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    link->setOperatorText("<");
    QVERIFY(desk.show());
    Hand hand;
    const QPoint end = link->points().back();
    const QPoint stub = link->points()[link->points().size() - 2];
    // The box lies over the half of the end's circle that is inside of it.
    hand.moveTo(desk.at(end + QPoint(stub.x() < end.x() ? -3 : 3, 0)))
        .until("the end can be taken",
               [&] { return desk.area().viewport()->cursor().shape() == Qt::UpArrowCursor; })
        .press()
        .moveTo(desk.row(alias, field))
        .release();
    perform(hand);
    QCOMPARE(desk.area().Links().size(), std::size_t(1));
    const TorvQDLink* now = desk.link();
    const QString shown = now->Item1->Table->GetAlias() + '.' + now->Item1->Name + ' ' +
                          now->operatorText() + ' ' + now->Item2->Table->GetAlias() + '.' +
                          now->Item2->Name;
    QCOMPARE(shown, text);
    QCOMPARE(now->DragIndex, -1);
    QVERIFY(!desk.area().isGesturing());
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::bendPointIsInsertedAndDragged() {
    DiagramDesk desk;
    TorvQDLink* link = desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    QVERIFY(desk.show());
    Hand hand;
    const auto middle = [&] { return (link->points()[1] + link->points()[2]) / 2; };
    const QPoint first = middle();
    hand.click(desk.at(first), 3)
        .until("the menu is up", menuIsUp())
        .click(DiagramDesk::menuEntry("Insert point"))
        .until("there is a bend point", [&] { return link->bendPoints().size() == 1; });
    perform(hand);
    QCOMPARE(link->bendPoints().front(), first);
    verifyBuilder(*desk.builder);

    hand.moveTo(desk.at(first))
        .until("the point can be taken",
               [&] { return desk.area().viewport()->cursor().shape() == Qt::SizeAllCursor; })
        .press()
        .moveTo(desk.at(QPoint(170, 200)))
        .call([&] { QCOMPARE(link->bendPoints().front(), first); })
        .moveTo(desk.at(QPoint(180, 220)))
        .release()
        .until("the point has moved", [&] { return link->bendPoints().front() != first; });
    perform(hand);
    QCOMPARE(link->bendPoints().front(), QPoint(180, 220));

    // Escape drops what is dragged.
    hand.moveTo(desk.at(QPoint(180, 220)))
        .press()
        .moveTo(desk.at(QPoint(300, 250)))
        .key("Escape")
        .until("the gesture is over", [&] { return !desk.area().isGesturing(); })
        .release();
    perform(hand);
    QCOMPARE(link->bendPoints().front(), QPoint(180, 220));

    hand.click(desk.at(QPoint(180, 220)), 3)
        .until("the menu is up", menuIsUp())
        .click(DiagramDesk::menuEntry("Delete point"))
        .until("the bend point is gone", [&] { return link->bendPoints().empty(); });
    perform(hand);
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::deletingALinkAsksFirst() {
    DiagramDesk desk;
    desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    QVERIFY(desk.show());
    Hand hand;
    const auto ask = [&] {
        hand.click(desk.linkMiddle(), 3)
            .until("the menu is up", menuIsUp())
            .click(DiagramDesk::menuEntry("Delete link"))
            .until("the question is up", questionIsUp());
    };
    ask();
    hand.key("Escape").until("the question is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(desk.area().Links().size(), std::size_t(1));
    ask();
    hand.key("alt+y")
        .until("the question is gone", nothingIsUp(desk))
        .until("the link is gone", [&] { return desk.area().Links().empty(); });
    perform(hand);
    QVERIFY(desk.area().Joins().empty());
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::theHostMayActDuringTheQuestion_data() {
    QTest::addColumn<QString>("deed");
    QTest::newRow("deletes the link") << "link";
    QTest::newRow("clears") << "clear";
    QTest::newRow("deletes the builder") << "delete";
}

void tst_x_diagram::theHostMayActDuringTheQuestion() {
    QFETCH(QString, deed);
    DiagramDesk desk;
    desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    QVERIFY(desk.show());
    bool isDone = false;
    const auto act = [&] {
        if (deed == "link") desk.area().RemoveLink(desk.link(), true);
        if (deed == "clear") desk.builder->Clear();
        if (deed == "delete") delete desk.builder.data();
        isDone = true;
    };
    Hand hand;
    hand.click(desk.linkMiddle(), 3)
        .until("the menu is up", menuIsUp())
        .click(DiagramDesk::menuEntry("Delete link"))
        .until("the question is up", questionIsUp())
        .call([&] { QTimer::singleShot(0, &desk.window, act); })
        .until("the host has acted", [&] { return isDone; });
    if (deed != "delete") hand.key("alt+y");
    hand.until("the question is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(desk.errors, QStringList());
    if (deed == "delete") return;
    QVERIFY(desk.area().Links().empty());
    QCOMPARE(desk.area().TablesCount(), deed == "clear" ? 0 : 2);
    verifyBuilder(*desk.builder);
}

// --- menus ---

void tst_x_diagram::menuOpensAtTheReleaseAndRemovesTheBox() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    Hand hand;
    hand.moveTo(desk.caption("ORDERS"))
        .press(3)
        .call([] { QVERIFY(!DiagramDesk::openMenu()); })
        .release(3)
        .until("the menu is up", menuIsUp())
        .key("Escape")
        .until("the menu is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(desk.area().TablesCount(), 2);
    hand.click(desk.caption("ORDERS", {3, 3}), 3)
        .until("the menu is up", menuIsUp())
        .click(DiagramDesk::menuEntry("Delete table"))
        .until("the box is gone", [&] { return desk.area().TablesCount() == 1; });
    perform(hand);
    QCOMPARE(desk.stacking(), QStringList("CUSTOMER"));
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::theHostMayClearUnderTheMenu() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    bool isDone = false;
    Hand hand;
    hand.click(desk.caption("ORDERS"), 3)
        .until("the menu is up", menuIsUp())
        .moveTo(DiagramDesk::menuEntry("Delete table"))
        .press()
        .call([&] {
            QTimer::singleShot(0, &desk.window, [&] {
                desk.builder->Clear();
                isDone = true;
            });
        })
        .until("the host has acted", [&] { return isDone; })
        .release()
        .until("the menu is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(desk.errors, QStringList());
    QCOMPARE(desk.area().TablesCount(), 0);
    verifyBuilder(*desk.builder);
}

// --- the link dialog ---

void tst_x_diagram::linkDialogByKeys() {
    DiagramDesk desk;
    const TorvQDLink* link = desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    QVERIFY(desk.show());
    Hand hand;
    const auto change = [&] {
        hand.doubleClick(desk.linkMiddle())
            .until("the dialog is up", linkDialogIsUp())
            // From OK over Cancel to the operators.
            .key("Tab")
            .key("Tab")
            .until("the operators have the focus",
                   [] { return linkDialog()->cbConditions->hasFocus(); })
            .key("Down")
            .until("another operator is chosen",
                   [] { return linkDialog()->cbConditions->currentIndex() == 1; });
    };
    change();
    hand.key("Escape").until("the dialog is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(link->Operator, 0);
    QVERIFY(!desk.area().isGesturing());
    change();
    hand.key("Return").until("the dialog is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(link->Operator, 1);
    QVERIFY(!desk.area().isGesturing());
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::theHostMayActDuringTheLinkDialog_data() {
    theHostMayActDuringTheQuestion_data();
}

void tst_x_diagram::theHostMayActDuringTheLinkDialog() {
    QFETCH(QString, deed);
    DiagramDesk desk;
    desk.addLink("ORDERS", "CUSTNO", "CUSTOMER", "CUSTNO");
    QVERIFY(desk.show());
    bool isDone = false;
    const auto act = [&] {
        if (deed == "link") desk.area().RemoveLink(desk.link(), true);
        if (deed == "clear") desk.builder->Clear();
        if (deed == "delete") delete desk.builder.data();
        isDone = true;
    };
    Hand hand;
    hand.doubleClick(desk.linkMiddle())
        .until("the dialog is up", linkDialogIsUp())
        .call([&] { QTimer::singleShot(0, &desk.window, act); })
        .until("the host has acted", [&] { return isDone; })
        .call([&] {
            if (linkDialog()) hand.key("Return");
        })
        .until("the dialog may go", [] { return true; });
    perform(hand);
    hand.until("the dialog is gone", nothingIsUp(desk));
    perform(hand);
    QCOMPARE(desk.errors, QStringList());
    if (deed == "delete") {
        QVERIFY(!desk.builder);
        return;
    }
    QVERIFY(desk.area().Links().empty());
    QVERIFY(!desk.area().isGesturing());
    verifyBuilder(*desk.builder);
}

// --- the view ---

void tst_x_diagram::middleButtonPans() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    desk.area().horizontalScrollBar()->setValue(500);
    desk.area().verticalScrollBar()->setValue(300);
    const QByteArray before = orvtest::visibleState(*desk.builder);
    const QPoint middle = desk.area().viewport()->mapToGlobal(QPoint(200, 200));
    Hand hand;
    hand.moveTo([&] { return middle; })
        .press(2)
        .moveTo([&] { return middle + QPoint(40, -30); })
        .call([&] { QCOMPARE(desk.area().viewport()->cursor().shape(), Qt::ClosedHandCursor); })
        .release(2)
        .moveTo([&] { return middle; });
    perform(hand);
    QCOMPARE(desk.area().scrollPosition(), QPoint(460, 330));
    QCOMPARE(desk.area().viewport()->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(orvtest::visibleState(*desk.builder), before);
    verifyBuilder(*desk.builder);
}

void tst_x_diagram::controlWheelZooms() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    const auto isZoomed = [&](qreal zoom) {
        return [&desk, zoom] { return qAbs(desk.area().zoom() - zoom) < 0.001; };
    };
    const QPoint anchor(300, 200);
    QPoint pointer;
    Hand hand;
    hand.moveTo(desk.at(anchor))
        .call([&] { pointer = QCursor::pos(); })
        .keyDown("ctrl")
        .wheel(4)
        .until("everything is larger", isZoomed(1.25))
        .keyUp("ctrl");
    perform(hand);
    // What is below the pointer stays there.
    const QPoint way = DiagramDesk::onScreen(desk.area(), anchor) - pointer;
    QVERIFY2(way.manhattanLength() <= 2,
             qPrintable(QStringLiteral("%1, %2").arg(way.x()).arg(way.y())));
    // A click hits what is seen.
    hand.click(desk.checkSquare("CUSTOMER", "NAME")).until("the row is ticked", [&] {
        return desk.table("CUSTOMER")->GetFieldItem("NAME")->Checked;
    });
    // Without the key the wheel scrolls.
    const int before = desk.area().scrollPosition().y();
    hand.moveTo(desk.at({320, 260})).wheel(5).until("the view has scrolled", [&] {
        return desk.area().scrollPosition().y() > before;
    });
    hand.keyDown("ctrl")
        .wheel(5)
        .until("everything has its size", isZoomed(1))
        .wheel(5)
        .until("everything is smaller", isZoomed(0.8))
        .keyUp("ctrl");
    perform(hand);
    verifyBuilder(*desk.builder);
}

QTEST_MAIN(tst_x_diagram)
#include "tst_x_diagram.moc"
