// SPDX-License-Identifier: MIT
// Where new boxes are put, and which of them is in front.
#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QScrollBar>

#include <random>

using orvtest::HostedBuilder;

namespace {

constexpr int gapPx = 10;

// The rule as it stands: each time the place meets a box, it goes behind it and all boxes are
// looked at again.
TRect placeByRestartingWalks(const std::vector<TRect>& boxes, int width, int height) {
    TRect place = TRect{0, 0, width, height}.translated(50, 20);
    for (std::size_t index = 0; index < boxes.size();) {
        if (!place.intersects(boxes[index])) {
            ++index;
            continue;
        }
        place = place.translated(boxes[index].Right + gapPx - place.Left, 0);
        index = 0;
    }
    return place;
}

}  // namespace

class FloatPanelPlacesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- placement

    void firstBoxAndTheOneBesideIt() {
        HostedBuilder on;
        const TorvQDTable* first = on.addTable("T");
        QCOMPARE(QPoint(first->Left, first->Top), QPoint(50, 20));
        const TorvQDTable* second = on.addTable("U");
        QCOMPARE(QPoint(second->Left, second->Top), QPoint(50 + first->Width + gapPx, 20));
    }

    void rowOfBoxesDoesNotWrap() {
        HostedBuilder on;
        for (int count = 0; count < 60; ++count) on.addTable("T");
        const TorvQDTable* last = on.builder.WorkArea->Tables(0);
        QCOMPARE(last->Top, 20);
        QVERIFY(last->Left > 5000);
    }

    void placeIsThatOfRestartingWalks() {
        HostedBuilder on;
        std::mt19937 random(20240607);
        const auto below = [&](unsigned limit) { return int(random() % limit); };
        int shifted = 0;
        for (int layout = 0; layout < 500; ++layout) {
            on.builder.Clear();
            const int count = 2 + below(8);
            for (int index = 0; index < count; ++index) {
                TorvQDTable* box = on.addTable(below(2) ? "T" : "EMPLOYEE");
                box->SetLeft(below(400));
                box->SetTop(below(150));
                box->SetWidth(80 + below(200));
                box->SetHeight(60 + below(150));
                if (below(5) == 0) box->SetExpand(0);
                if (below(2)) {
                    on.builder.WorkArea->TableToFront(
                        on.builder.WorkArea->Tables(below(unsigned(index) + 1)));
                }
            }
            std::vector<TRect> boxes;
            boxes.reserve(std::size_t(count));
            for (int index = 0; index < count; ++index) {
                boxes.push_back(on.builder.WorkArea->Tables(index)->GetBoundsRect());
            }
            const TorvQDTable* added = on.addTable("DEPT");
            const TRect expected = placeByRestartingWalks(boxes, added->Width, added->Height);
            QCOMPARE(QPoint(added->Left, added->Top), QPoint(expected.Left, expected.Top));
            if (added->Left != 50) ++shifted;
        }
        QVERIFY2(shifted > 200, "the layouts hardly stand in the way");
    }

    void longCaptionWidensTheBox() {
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"A"});
        const TorvQDTable* box = on.builder.WorkArea->AddPanel(QString(40, u'W'), &fields);
        QVERIFY(box->Width > 100);
        QCOMPARE(box->Width, box->CaptionRect(true).width());
        QCOMPARE(on.addTable("T")->Width, 100);
    }

    void scrollRangeIsFixedAndGrowsWithFarBoxes() {
        HostedBuilder on;
        TorvQDWorkArea* area = on.builder.WorkArea;
        const auto extent = [](const QScrollBar* bar) { return bar->maximum() + bar->pageStep(); };
        TorvQDTable* box = on.addTable("T");
        QCOMPARE(extent(area->horizontalScrollBar()), 5000);
        QCOMPARE(extent(area->verticalScrollBar()), 5000);
        box->SetLeft(6000);
        QCOMPARE(extent(area->horizontalScrollBar()), 6000 + box->Width + 50);
        QCOMPARE(extent(area->verticalScrollBar()), 5000);
        on.builder.ListOfTables->DeleteTable(box);
        QCOMPARE(extent(area->horizontalScrollBar()), 5000);
    }

    // --- stacking

    void newBoxIsInFrontAndSelected() {
        HostedBuilder on;
        on.addTable("T");
        TorvQDTable* second = on.addTable("U");
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.builder.WorkArea->selectedObject(), second);
        QVERIFY(second->Selected);
        QVERIFY(!on.table("T")->Selected);
        verifyBuilder(on.builder);
    }

    void comingToTheFrontKeepsTheOrderOfTheOthers() {
        HostedBuilder on;
        for (const char* name : {"T", "U", "DEPT", "ORDERS"}) on.addTable(name);
        on.builder.WorkArea->TableToFront(on.table("U"));
        QCOMPARE(on.stacking(), QStringList({"U", "ORDERS", "DEPT", "T"}));
        QCOMPARE(on.tables(), QStringList({"T", "U", "DEPT", "ORDERS"}));
    }

    void bringingTheFrontBoxOrAStrangerChangesNothing() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.changes = 0;
        QObject stranger;
        on.builder.WorkArea->TableToFront(on.table("U"));
        on.builder.WorkArea->TableToFront(&stranger);
        on.builder.WorkArea->TableToFront(nullptr);
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.changes, 0);
    }

    void selectingDeselectsTheOther() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.WorkArea->selectObject(on.table("T"));
        QVERIFY(on.table("T")->Selected);
        QVERIFY(!on.table("U")->Selected);
        QCOMPARE(on.stacking(), QStringList({"T", "U"}));
        on.builder.WorkArea->selectObject(nullptr);
        QVERIFY(!on.table("T")->Selected);
        verifyBuilder(on.builder);
    }
};

QTEST_MAIN(FloatPanelPlacesTest)
#include "tst_floatpanelplaces.moc"
