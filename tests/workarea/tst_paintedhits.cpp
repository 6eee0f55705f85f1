// SPDX-License-Identifier: MIT
// What is painted can be hit: the place of a thing in the picture is found by changing how it
// looks, and the mouse is asked about that place.
#include "support/ShownBuilder.h"

using orvtest::ShownBuilder;

namespace {

/// The rectangle that holds all pixels which differ inside the area.
QRect difference(const QImage& a, const QImage& b, const QRect& area) {
    QRect found;
    const QRect both = area & a.rect() & b.rect();
    for (int y = both.top(); y <= both.bottom(); ++y) {
        for (int x = both.left(); x <= both.right(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y)) found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

}  // namespace

class PaintedHitsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void captionButtons_data() { addScrolls(); }
    void captionButtons() {
        QFETCH(QPoint, scroll);
        const ShownBuilder on;
        TorvQDTable* box = boxAt(on, scroll);
        const QImage before = shown(on);
        for (int button = 0; button < 3; ++button) {
            box->PressedButton = box->HotButton = button;
            const QRect painted = difference(before, shown(on), on.view()->rect());
            box->PressedButton = box->HotButton = -1;
            QVERIFY(!painted.isEmpty());
            QCOMPARE(box->HitTest(painted.center()), htTbutton);
            QCOMPARE(box->buttonAt(painted.center()), button);
            // Glyphs of 11 pixels in their frames, one pixel between them.
            const TRect buttons = box->toView(box->GetButtonRect());
            QCOMPARE(painted.left(), buttons.Left + 12 * button);
        }
    }

    // It is painted 2 pixels right of the square that is hit; its middle lies in both.
    void captionCheckBox_data() { addScrolls(); }
    void captionCheckBox() {
        QFETCH(QPoint, scroll);
        const ShownBuilder on;
        TorvQDTable* box = boxAt(on, scroll);
        const TRect bounds = box->toView(box->GetBoundsRect());
        const QImage before = shown(on);
        box->UpdateFieldState(2);
        const QRect painted = difference(before, shown(on), on.view()->rect());
        QVERIFY(!painted.isEmpty());
        const QRect square(bounds.Left + 2 + 4, bounds.Top + 2 + 2, 12, 12);
        QVERIFY(square.contains(painted));
        QCOMPARE(box->HitTest(painted.center()), htTCheck);
        QCOMPARE(box->HitTest(square.topLeft() - QPoint(2, 0)), htTCheck);
        QCOMPARE(box->HitTest(square.topRight()), htTCaption);
        on.click(painted.center());
        QCOMPARE(box->FieldState, 0);
    }

    void checkSquaresOfRows_data() { addScrolls(); }
    void checkSquaresOfRows() {
        QFETCH(QPoint, scroll);
        ShownBuilder on;
        TorvQDTable* box = boxAt(on, scroll);
        box->SetFirstVisibleItem(3);
        for (int index = 3; index < 9; ++index) {
            TorvQDListItem* item = box->Items[std::size_t(index)].get();
            const TRect rect = box->GetItemRect(item);
            const QRect left(rect.Left, rect.Top, 16, rect.height());  // the rest is the text
            const QImage before = shown(on);
            item->UpdateCheck(-1);
            const QRect painted = difference(before, shown(on), left);
            item->UpdateCheck(0);
            QVERIFY(!painted.isEmpty());
            QCOMPARE(box->HitTest(painted.center()), htTClient);
            QCOMPARE(box->GetItemAt(painted.center().x(), painted.center().y()), item);
            on.click(painted.center());
            QVERIFY(item->Checked);
            on.click(painted.center());
            QVERIFY(!item->Checked);
        }
        verifyBuilder(on.builder);
    }

    void rowTexts_data() { addScrolls(); }
    void rowTexts() {
        QFETCH(QPoint, scroll);
        const ShownBuilder on;
        TorvQDTable* box = boxAt(on, scroll);
        for (int index = 1; index < 6; ++index) {
            TorvQDListItem* item = box->Items[std::size_t(index)].get();
            const QImage before = shown(on);
            item->SetSelect(true);
            const TRect rect = box->GetItemRect(item);
            const QRect painted = difference(before, shown(on), rect.toQRect());
            item->SetSelect(false);
            QVERIFY(!painted.isEmpty());
            QCOMPARE(box->GetItemAt(painted.center().x(), painted.center().y()), item);
            QCOMPARE(difference(before, shown(on), on.view()->rect()), QRect());
        }
    }

    void endsOfLinks_data() {
        QTest::addColumn<QPoint>("scroll");
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("to");
        for (const QPoint& scroll : {QPoint(0, 0), QPoint(37, 13)}) {
            const auto row = [&](const char* name, const QPoint& from, const QPoint& to) {
                QTest::addRow("%s at %d", name, scroll.x()) << scroll << from << to;
            };
            row("rightwards", {60, 40}, {300, 70});
            row("leftwards", {300, 40}, {60, 70});
            row("one above the other", {60, 20}, {100, 160});
        }
    }
    void endsOfLinks() {
        QFETCH(QPoint, scroll);
        QFETCH(QPoint, from);
        QFETCH(QPoint, to);
        const ShownBuilder on;
        on.table("T")->MoveTable(from.x() - on.table("T")->Left, from.y() - on.table("T")->Top);
        on.table("U")->MoveTable(to.x() - on.table("U")->Left, to.y() - on.table("U")->Top);
        TorvQDLink* link = on.link("T", "A", "U", "A");
        on.area().selectObject(nullptr);
        on.scrollTo(scroll);
        const int last = link->GetCountPoints() - 1;
        for (const int end : {0, last}) {
            link->Join->KindOfJoin = klInnerJoin;
            const QImage before = shown(on);
            link->Join->KindOfJoin = end == 0 ? klLOuterJoin : klROuterJoin;
            const QRect painted = difference(before, shown(on), on.view()->rect());
            QVERIFY(!painted.isEmpty());
            // The marker is 6 pixels long, its tip at the box: the end is hit in its half there.
            const QPoint tip = link->GetPoint(end);
            const int outwards = link->GetPoint(end == 0 ? 1 : last - 1).x() > tip.x() ? 1 : -1;
            QVERIFY(painted.adjusted(-1, -1, 1, 1).contains(tip + QPoint(outwards * 3, 0)));
            QCOMPARE(link->HitTest(tip + QPoint(outwards * 2, 0)), htTEndLine);
            QCOMPARE(link->HitTest(painted.center()), htTEndLine);
            QCOMPARE(on.area().objectAt(painted.center()), link);
        }
    }

    void bendPoints_data() { addScrolls(); }
    void bendPoints() {
        QFETCH(QPoint, scroll);
        const ShownBuilder on;
        on.table("T")->MoveTable(60 - on.table("T")->Left, 30 - on.table("T")->Top);
        on.table("U")->MoveTable(400 - on.table("U")->Left, 30 - on.table("U")->Top);
        TorvQDLink* link = on.link("T", "A", "U", "A");
        on.area().selectObject(nullptr);
        on.scrollTo(scroll);
        // On the straight line between two rows of the same height its circle alone differs.
        const QPoint bend(250, link->points().front().y());
        const QImage before = shown(on);
        link->setBendPoints({bend});
        const QRect painted = difference(before, shown(on), on.view()->rect());
        QVERIFY(painted.contains(bend - scroll));
        QCOMPARE(link->HitTest(painted.center()), htTPoint);
        QCOMPARE(on.area().objectAt(painted.center()), link);
    }

private:
    static void addScrolls() {
        QTest::addColumn<QPoint>("scroll");
        QTest::newRow("at the origin") << QPoint(0, 0);
        QTest::newRow("scrolled") << QPoint(37, 13);
    }
    static QImage shown(const ShownBuilder& on) {
        return on.view()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    static TorvQDTable* boxAt(const ShownBuilder& on, const QPoint& scroll) {
        TorvQDTable* box = on.builder.ListOfTables->AddTable("WIDE", on.host.table("WIDE"));
        box->MoveTable(300 - box->Left, 60 - box->Top);
        on.scrollTo(scroll);
        return box;
    }
};

QTEST_MAIN(PaintedHitsTest)
#include "tst_paintedhits.moc"
