// SPDX-License-Identifier: MIT
// Fields that are dragged over the diagram with a real pointer.
#include "xvfb/DiagramDesk.h"

#include <QTest>

using orvtest::DiagramDesk;
using orvtest::Hand;

namespace {

// Takes a row along until a drag is under way.
void takeRow(Hand& hand, const DiagramDesk& desk, const QString& alias, const QString& field) {
    const int before = hand.dragMoves();
    hand.moveTo(desk.row(alias, field))
        .press()
        .moveTo(desk.row(alias, field, {4, 0}))
        .moveTo(desk.row(alias, field, {QApplication::startDragDistance() + 4, 0}))
        .moveTo(desk.row(alias, field, {QApplication::startDragDistance() + 6, 0}))
        .until("a drag is under way", [&hand, before] { return hand.dragMoves() > before; });
}

}  // namespace

class tst_x_fielddrag : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void dropOnARowMakesTheLinkOfTheStatement();
    void refusedDropsChangeNothing_data();
    void refusedDropsChangeNothing();
    void otherBuilderRefusesTheDrop();
    void restingAtTheListEdgeScrollsTheRows();
    void theHostMayActDuringADrag_data();
    void theHostMayActDuringADrag();
};

void tst_x_fielddrag::dropOnARowMakesTheLinkOfTheStatement() {
    DiagramDesk desk;
    QVERIFY(desk.show());
    TorvQueryBuilder& builder = *desk.builder;
    Hand hand;

    hand.click(desk.checkSquare("ORDERS", "CUSTNO")).until("the row is ticked", [&] {
        return desk.table("ORDERS")->GetFieldItem("CUSTNO")->Checked;
    });
    perform(hand);
    QCOMPARE(desk.stacking(), QStringList({"ORDERS", "CUSTOMER"}));
    verifyBuilder(builder);

    takeRow(hand, desk, "ORDERS", "CUSTNO");
    hand.moveTo(desk.row("CUSTOMER", "CUSTNO"))
        .call([&] {
            // While it is dragged nothing comes to the front.
            QCOMPARE(desk.stacking(), QStringList({"ORDERS", "CUSTOMER"}));
            QCOMPARE(desk.area().Links().size(), std::size_t(0));
        })
        .release()
        .until("there is a link", [&] { return desk.link() != nullptr; });
    perform(hand);
    QCOMPARE(desk.area().Links().size(), std::size_t(1));
    QCOMPARE(desk.link()->operatorText(), QString("="));
    QCOMPARE(desk.link()->Join->KindOfJoin, klInnerJoin);
    QCOMPARE(desk.stacking(), QStringList({"CUSTOMER", "ORDERS"}));
    QVERIFY(desk.table("CUSTOMER")->Selected);
    QVERIFY(!desk.area().isGesturing());
    QCOMPARE(builder.GetSQLStatment(),
             QString("SELECT ORDERS.CUSTNO\r\n"
                     "FROM CUSTOMER\r\n"
                     "   INNER JOIN ORDERS ON (CUSTOMER.CUSTNO = ORDERS.CUSTNO)"));
    verifyBuilder(builder);

    // The same link again is refused.
    takeRow(hand, desk, "ORDERS", "CUSTNO");
    hand.moveTo(desk.row("CUSTOMER", "CUSTNO")).release().until("the drag is over", [&] {
        return desk.endedDrags == 2;
    });
    perform(hand);
    QCOMPARE(desk.area().Links().size(), std::size_t(1));
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(builder);
}

void tst_x_fielddrag::refusedDropsChangeNothing_data() {
    QTest::addColumn<QString>("place");
    QTest::newRow("another row of the box") << "own box";
    QTest::newRow("the empty canvas") << "canvas";
    QTest::newRow("a caption") << "caption";
    QTest::newRow("Escape over a row") << "escape";
}

void tst_x_fielddrag::refusedDropsChangeNothing() {
    QFETCH(QString, place);
    DiagramDesk desk;
    QVERIFY(desk.show());
    Hand hand;
    hand.click(desk.caption("ORDERS")).until("the box is selected", [&] {
        return desk.table("ORDERS")->Selected;
    });
    perform(hand);
    const QByteArray before = orvtest::visibleState(*desk.builder);
    takeRow(hand, desk, "ORDERS", "CUSTNO");
    if (place == "own box") {
        hand.moveTo(desk.row("ORDERS", "PRICE")).release();
    } else if (place == "canvas") {
        hand.moveTo(desk.at({300, 300})).release();
    } else if (place == "caption") {
        hand.moveTo(desk.caption("CUSTOMER")).release();
    } else {
        hand.moveTo(desk.row("CUSTOMER", "CUSTNO")).key("Escape").release();
    }
    hand.until("the drag is over", [&] { return desk.endedDrags == 1; });
    perform(hand);
    QVERIFY(desk.area().Links().empty());
    QCOMPARE(desk.stacking(), QStringList({"ORDERS", "CUSTOMER"}));
    QVERIFY(!desk.area().isGesturing());
    QCOMPARE(orvtest::visibleState(*desk.builder), before);
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(*desk.builder);
}

void tst_x_fielddrag::otherBuilderRefusesTheDrop() {
    DiagramDesk desk(2);
    TorvQDTable* target =
        desk.second->ListOfTables->AddTable("CUSTOMER", desk.host.table("CUSTOMER"));
    QVERIFY(desk.show());
    const auto place = [&] {
        const TRect rect = target->GetItemRect(target->GetFieldItem("CUSTNO"));
        return DiagramDesk::onScreen(*desk.second->WorkArea, rect.toQRect().center());
    };
    Hand hand;
    takeRow(hand, desk, "ORDERS", "CUSTNO");
    hand.moveTo(place).release().until("the drag is over", [&] { return desk.endedDrags == 1; });
    perform(hand);
    QVERIFY(desk.area().Links().empty());
    QVERIFY(desk.second->WorkArea->Links().empty());
    QVERIFY(!desk.area().isGesturing());
    QVERIFY(!desk.second->WorkArea->isGesturing());
    QCOMPARE(desk.errors, QStringList());
    verifyBuilder(*desk.builder);
    verifyBuilder(*desk.second);
}

void tst_x_fielddrag::restingAtTheListEdgeScrollsTheRows() {
    DiagramDesk desk;
    desk.addTable("MANY", {400, 20});
    QVERIFY(desk.show());
    TorvQDTable* many = desk.table("MANY");
    const int last = int(many->Items.size()) - many->VisibleCount;
    QVERIFY(last > 0);
    Hand hand;
    hand.click(desk.caption("ORDERS")).until("the box is selected", [&] {
        return desk.table("ORDERS")->Selected;
    });
    takeRow(hand, desk, "ORDERS", "CUSTNO");
    hand.moveTo(desk.at([&] {
            const TRect list = many->GetClientRect();
            return QPoint(list.toQRect().center().x(), list.Bottom - 3);
        }))
        .until("the last row is seen", [&] { return many->FirstVisibleItem == last; })
        .moveTo(desk.at([&] {
            const TRect list = many->GetClientRect();
            return QPoint(list.toQRect().center().x(), list.Top + 3);
        }))
        .until("the first row is seen", [&] { return many->FirstVisibleItem == 0; })
        .key("Escape")
        .release()
        .until("the drag is over", [&] { return desk.endedDrags == 1; });
    perform(hand);
    QCOMPARE(desk.stacking().first(), QString("ORDERS"));
    QVERIFY(!desk.area().isTimerActive(TorvQDWorkArea::rowsUpTimer));
    QVERIFY(!desk.area().isTimerActive(TorvQDWorkArea::rowsDownTimer));
    QVERIFY(desk.area().Links().empty());
    verifyBuilder(*desk.builder);
}

void tst_x_fielddrag::theHostMayActDuringADrag_data() {
    QTest::addColumn<QString>("deed");
    QTest::newRow("clears") << "clear";
    QTest::newRow("loads a statement") << "load";
    QTest::newRow("closes the box of the row") << "close source";
    QTest::newRow("closes the box below the pointer") << "close target";
    QTest::newRow("deletes the builder") << "delete";
}

void tst_x_fielddrag::theHostMayActDuringADrag() {
    QFETCH(QString, deed);
    DiagramDesk desk;
    QVERIFY(desk.show());
    bool isDone = false;
    const auto act = [&] {
        if (deed == "clear") desk.builder->Clear();
        if (deed == "load") desk.builder->LoadSQL("SELECT MANY.F1 FROM MANY");
        if (deed == "close source") desk.table("ORDERS")->CloseTable();
        if (deed == "close target") desk.table("CUSTOMER")->CloseTable();
        if (deed == "delete") delete desk.builder.data();
        isDone = true;
    };
    Hand hand;
    takeRow(hand, desk, "ORDERS", "CUSTNO");
    QPoint place;
    hand.moveTo(desk.row("CUSTOMER", "CUSTNO"))
        .call([&] {
            place = QCursor::pos();
            QTimer::singleShot(0, &desk.window, act);
        })
        .until("the host has acted", [&] { return isDone; })
        // The hand knows nothing of it and goes on.
        .moveTo([&] { return place + QPoint(0, 3); })
        .release();
    perform(hand);
    QCOMPARE(desk.errors, QStringList());
    if (deed == "delete") {
        QVERIFY(!desk.builder);
        return;
    }
    QVERIFY(desk.area().Links().empty());
    QVERIFY(!desk.area().isGesturing());
    verifyBuilder(*desk.builder);
    // And the diagram goes on working.
    if (deed == "clear" || deed == "load") {
        QCOMPARE(desk.area().TablesCount(), deed == "load" ? 1 : 0);
        if (deed == "clear") desk.addTable("MANY", {20, 20});
        hand.click(desk.checkSquare("MANY", "F2")).until("the row is ticked", [&] {
            return desk.table("MANY")->GetFieldItem("F2")->Checked;
        });
        perform(hand);
        verifyBuilder(*desk.builder);
    } else {
        QCOMPARE(desk.area().TablesCount(), 1);
    }
}

QTEST_MAIN(tst_x_fielddrag)
#include "tst_x_fielddrag.moc"
