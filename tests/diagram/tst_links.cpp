// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"

using orvtest::FakeCanvas;

namespace {

constexpr int rows = 10;
constexpr int captionPx = 20;
constexpr int boxHeightPx = 6 * 17 + captionPx + 6;
// Middle of the first row below the top of its box.
constexpr int firstRowPx = captionPx + 1 + 8;

/// Two boxes of ten rows, six of them visible, and a link between their first rows.
struct Diagram {
    explicit Diagram(const QPoint& at1 = {0, 0}, const QPoint& at2 = {300, 0}, int row1 = 0,
                     int row2 = 0) {
        place(first, at1);
        place(second, at2);
        join = std::make_unique<TorvQDJoin>(&canvas, &first, &second);
        link = std::make_unique<TorvQDLink>(&canvas, join.get(), first.Items[row1].get(),
                                            second.Items[row2].get());
    }

    static void place(TorvQDTable& box, const QPoint& at) {
        box.Left = at.x();
        box.Top = at.y();
    }
    [[nodiscard]] std::vector<int> columns() const {
        std::vector<int> columns;
        for (const QPoint& point : link->points()) columns.push_back(point.x());
        return columns;
    }
    [[nodiscard]] int startY() const { return link->points().front().y(); }
    [[nodiscard]] int endY() const { return link->points().back().y(); }

    FakeCanvas canvas;
    TDataSet fields = orvtest::numberedFields(rows);
    TorvQDTable first{&canvas, &fields, "CUSTOMER"};
    TorvQDTable second{&canvas, &fields, "ORDERS"};
    std::unique_ptr<TorvQDJoin> join;
    std::unique_ptr<TorvQDLink> link;
};

}  // namespace

class LinksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- joins and operators

    void joinIsInnerAtFirst() {
        Diagram on;
        QCOMPARE(on.join->KindOfJoin, klInnerJoin);
        QCOMPARE(on.join->WorkArea, &on.canvas);
        QCOMPARE(on.join->Text, QString());
    }

    void joinKnowsItsTwoTables() {
        Diagram on;
        QCOMPARE(on.join->GetTable(0), &on.first);
        QCOMPARE(on.join->GetTable(1), &on.second);
        QCOMPARE(on.join->GetTableName(0), "CUSTOMER");
        QCOMPARE(on.join->GetTableName(1), "ORDERS");
        for (const int index : {-1, 2}) {
            QVERIFY(!on.join->GetTable(index));
            QCOMPARE(on.join->GetTableName(index), QString());
        }
    }

    void kindsHaveTheirWordsAndMirrors() {
        QCOMPARE(orv::joinWords(klInnerJoin), "INNER JOIN");
        QCOMPARE(orv::joinWords(klLOuterJoin), "LEFT OUTER JOIN");
        QCOMPARE(orv::joinWords(klROuterJoin), "RIGHT OUTER JOIN");
        QCOMPARE(orv::joinWords(klFOuterJoin), "FULL OUTER JOIN");
        QCOMPARE(orv::joinKindIdentifier(klROuterJoin), "klROuterJoin");
        QCOMPARE(orv::mirrored(klInnerJoin), klInnerJoin);
        QCOMPARE(orv::mirrored(klLOuterJoin), klROuterJoin);
        QCOMPARE(orv::mirrored(klROuterJoin), klLOuterJoin);
        QCOMPARE(orv::mirrored(klFOuterJoin), klFOuterJoin);
    }

    void operatorsStandInTheirOrder() {
        QCOMPARE(orv::linkOperators(), QStringList({"=", ">", "<", ">=", "<=", "<>"}));
    }

    void operatorsAreTurnedRound_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("mirror");
        QTest::addColumn<bool>("isKnown");
        const auto row = [](const char* text, const char* mirror, bool isKnown) {
            QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(mirror)
                                << isKnown;
        };
        row("=", "=", true);
        row("<>", "<>", true);
        row("!=", "!=", true);
        row("<", ">", true);
        row(">", "<", true);
        row("<=", ">=", true);
        row(">=", "<=", true);
        row(">>", ">>", false);
        row("!<", "!<", false);
        row("@>", "@>", false);
    }
    void operatorsAreTurnedRound() {
        QFETCH(QString, text);
        QFETCH(QString, mirror);
        QFETCH(bool, isKnown);
        QCOMPARE(orv::mirroredOperator(text), mirror);
        QCOMPARE(orv::isMirrorableOperator(text), isKnown);
        QCOMPARE(orv::isSymmetricOperator(text), isKnown && text == mirror);
    }

    void linkComparesForEqualityAtFirst() {
        Diagram on;
        QCOMPARE(on.link->Operator, 0);
        QCOMPARE(on.link->operatorText(), "=");
        QCOMPARE(on.link->DragIndex, -1);
        QCOMPARE(on.link->Parent.data(), &on.canvas);
    }

    void unknownOperatorKeepsItsText() {
        Diagram on;
        on.link->setOperatorText("!=");
        QCOMPARE(on.link->Operator, -1);
        QCOMPARE(on.link->operatorText(), "!=");
        QCOMPARE(on.link->GetHint(), "CUSTOMER.F0!=ORDERS.F0");
        on.link->setOperatorText(">=");
        QCOMPARE(on.link->Operator, 3);
        QCOMPARE(on.link->operatorText(), ">=");
        QCOMPARE(on.link->OperatorSource, QString());
    }

    void operatorWithoutTextIsEquality() {
        Diagram on;
        on.link->setOperatorText(QString());
        QCOMPARE(on.link->Operator, -1);
        QCOMPARE(on.link->operatorText(), "=");
        on.link->Operator = 6;
        QCOMPARE(on.link->operatorText(), "=");
    }

    void hintIsTheComparisonByAlias() {
        Diagram on({0, 0}, {300, 0}, 1, 2);
        QCOMPARE(on.link->GetHint(), "CUSTOMER.F1=ORDERS.F2");
        on.second.SetAlias("O");
        on.link->setOperatorText("<=");
        QCOMPARE(on.link->GetHint(), "CUSTOMER.F1<=O.F2");
    }

    // --- the route

    void sidesAtWhichALineLeaves_data() {
        QTest::addColumn<int>("left1");
        QTest::addColumn<int>("left2");
        QTest::addColumn<std::vector<int>>("columns");
        const auto row = [](const char* name, int left1, int left2,
                            const std::vector<int>& columns) {
            QTest::newRow(name) << left1 << left2 << columns;
        };
        row("second to the right", 0, 300, {100, 110, 290, 300});
        row("second a pixel to the right", 0, 101, {100, 110, 91, 101});
        row("second touching on the right", 0, 100, {100, 110, 210, 200});
        row("overlapping", 0, 50, {100, 110, 160, 150});
        row("one above the other", 0, 0, {100, 110, 110, 100});
        row("overlapping to the left", 50, 0, {150, 160, 110, 100});
        row("second touching on the left", 100, 0, {200, 210, 110, 100});
        row("second a pixel to the left", 101, 0, {101, 91, 110, 100});
        row("second to the left", 400, 0, {400, 390, 110, 100});
    }
    void sidesAtWhichALineLeaves() {
        QFETCH(int, left1);
        QFETCH(int, left2);
        QFETCH(std::vector<int>, columns);
        Diagram on({left1, 10}, {left2, 500});
        QCOMPARE(on.columns(), columns);
        QCOMPARE(on.link->points()[0].y(), 10 + firstRowPx);
        QCOMPARE(on.link->points()[1].y(), 10 + firstRowPx);
        QCOMPARE(on.link->points()[2].y(), 500 + firstRowPx);
        QCOMPARE(on.link->points()[3].y(), 500 + firstRowPx);
    }

    // With bend points each end looks at the bend next to it.
    void bendPointsDecideTheSides_data() {
        QTest::addColumn<int>("firstBend");
        QTest::addColumn<int>("lastBend");
        QTest::addColumn<bool>("right1");
        QTest::addColumn<bool>("right2");
        QTest::newRow("between the boxes") << 200 << 200 << true << false;
        QTest::newRow("left of both") << -1 << -1 << false << false;
        QTest::newRow("on the left edges") << 0 << 300 << true << true;
        QTest::newRow("crosswise") << -50 << 350 << false << true;
        QTest::newRow("back again") << 350 << -50 << true << false;
    }
    void bendPointsDecideTheSides() {
        QFETCH(int, firstBend);
        QFETCH(int, lastBend);
        QFETCH(bool, right1);
        QFETCH(bool, right2);
        Diagram on;
        on.link->setBendPoints({{firstBend, 70}, {150, 80}, {lastBend, 90}});
        QCOMPARE(on.columns(),
                 std::vector<int>({right1 ? 100 : 0, right1 ? 110 : -10, firstBend, 150, lastBend,
                                   right2 ? 410 : 290, right2 ? 400 : 300}));
    }

    void bendPointsStayWhenABoxMoves() {
        Diagram on;
        const std::vector<QPoint> bends = {{150, 70}, {250, 90}};
        on.link->setBendPoints(bends);
        Diagram::place(on.first, {20, 40});
        on.link->SetBoundaryRect();
        QCOMPARE(on.link->bendPoints(), bends);
        QCOMPARE(on.link->points()[0], QPoint(120, 40 + firstRowPx));
        QCOMPARE(on.link->GetCountPoints(), 6);
        on.link->setBendPoints({});
        QCOMPARE(on.link->GetCountPoints(), 4);
    }

    void hiddenRowsAreTiedToTheEdges_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("firstVisible");
        QTest::addColumn<int>("middle");
        QTest::newRow("visible") << 1 << 0 << firstRowPx + 17;
        QTest::newRow("scrolled, visible") << 3 << 2 << firstRowPx + 17;
        QTest::newRow("above the list") << 0 << 2 << captionPx / 2;
        QTest::newRow("partly visible") << 6 << 0 << 123;
        QTest::newRow("below the list") << 7 << 0 << boxHeightPx - 1;
        QTest::newRow("last row") << 9 << 0 << boxHeightPx - 1;
    }
    void hiddenRowsAreTiedToTheEdges() {
        QFETCH(int, row);
        QFETCH(int, firstVisible);
        QFETCH(int, middle);
        Diagram on({0, 1000}, {300, 2000}, row, row);
        on.first.SetFirstVisibleItem(firstVisible);
        on.second.SetFirstVisibleItem(firstVisible);
        on.link->SetBoundaryRect();
        QCOMPARE(on.startY(), 1000 + middle);
        QCOMPARE(on.endY(), 2000 + middle);
    }

    void collapsedBoxIsTiedAtItsCaption() {
        Diagram on({0, 1000}, {300, 2000}, 4, 9);
        on.first.SetExpand(0);
        on.second.SetExpand(0);
        on.link->SetBoundaryRect();
        QCOMPARE(on.startY(), 1000 + captionPx / 2);
        QCOMPARE(on.endY(), 2000 + captionPx / 2);
    }

    void boundsHoldAllPointsAndTheMarkers() {
        Diagram on({20, 10}, {300, 400});
        QCOMPARE(on.link->GetBounds(),
                 (TRect{117, 10 + firstRowPx - 3, 303, 400 + firstRowPx + 3}));
        on.link->setBendPoints({{5, 700}});
        QCOMPARE(on.link->GetBounds(), (TRect{2, 10 + firstRowPx - 3, 303, 703}));
    }

    // The greatest coordinates are looked for from 0 on.
    void boundsOfNegativePointsReachToZero() {
        Diagram on({-900, -900}, {-500, -500});
        QCOMPARE(on.link->GetBounds(), (TRect{-803, -900 + firstRowPx - 3, 3, 3}));
    }

    void boundsCanBeSet() {
        Diagram on;
        on.link->SetBounds({1, 2, 3, 4});
        QCOMPARE(on.link->GetBounds(), (TRect{1, 2, 3, 4}));
    }

    void joinWithoutATableHasNoLine() {
        Diagram on;
        TorvQDJoin broken(&on.canvas, nullptr, &on.second);
        const QString expected = QStringLiteral("Invalid table  in Link control");
        QCOMPARE(orvtest::errorOf([&] {
                     TorvQDLink link(&on.canvas, &broken, on.first.Items[0].get(),
                                     on.second.Items[0].get());
                 }),
                 expected);
        on.join->Table2 = nullptr;
        QCOMPARE(orvtest::errorOf([&] { on.link->SetBoundaryRect(); }), expected);
    }

    // --- points

    void pointsAreReadInTheView() {
        Diagram on;
        on.canvas.scroll = {7, 5};
        QCOMPARE(on.link->GetPoint(0), QPoint(93, firstRowPx - 5));
        on.link->SetPoint(1, {123, 45});
        QCOMPARE(on.link->points()[1], QPoint(123, 45));
        QCOMPARE(on.link->GetPoint(1), QPoint(116, 40));
    }

    void pointsOutOfRangeRaise() {
        Diagram on;
        QCOMPARE(orvtest::errorOf([&] { (void)on.link->GetPoint(-1); }), "Invalid index = -1 ");
        QCOMPARE(orvtest::errorOf([&] { (void)on.link->GetPoint(4); }), "Invalid index = 4 ");
        QCOMPARE(orvtest::errorOf([&] { on.link->SetPoint(-1, {}); }), "Invalid index = -1 ");
        QCOMPARE(orvtest::errorOf([&] { on.link->SetPoint(4, {}); }), "Invalid index = 4 ");
    }

    void pointIsInsertedWhereTheLineRuns() {
        Diagram on;
        on.canvas.scroll = {7, 5};
        const TRect bounds = on.link->GetBounds();
        on.link->DragPoint = QPoint(200, firstRowPx + 4) - on.canvas.scroll;
        on.link->_InsertPoint();
        QCOMPARE(on.link->bendPoints(), std::vector<QPoint>({{200, firstRowPx + 4}}));
        QVERIFY(!on.canvas.invalidated.empty());
        // Between the bend and the end: the new one comes behind the old one.
        on.link->DragPoint = QPoint(270, firstRowPx) - on.canvas.scroll;
        on.link->_InsertPoint();
        QCOMPARE(on.link->bendPoints(),
                 std::vector<QPoint>({{200, firstRowPx + 4}, {270, firstRowPx}}));
        on.link->DragPoint = QPoint(150, firstRowPx + 2) - on.canvas.scroll;
        on.link->_InsertPoint();
        QCOMPARE(
            on.link->bendPoints(),
            std::vector<QPoint>({{150, firstRowPx + 2}, {200, firstRowPx + 4}, {270, firstRowPx}}));
        QCOMPARE(on.link->GetBounds(), bounds);
    }

    void stubsAndPlacesOffTheLineTakeNoPoint_data() {
        QTest::addColumn<QPoint>("place");
        QTest::newRow("first stub") << QPoint(105, firstRowPx);
        QTest::newRow("end of the first stub") << QPoint(110, firstRowPx);
        QTest::newRow("last stub") << QPoint(295, firstRowPx);
        QTest::newRow("off the line") << QPoint(200, firstRowPx + 5);
    }
    void stubsAndPlacesOffTheLineTakeNoPoint() {
        QFETCH(QPoint, place);
        Diagram on;
        on.link->DragPoint = place;
        on.link->_InsertPoint();
        QCOMPARE(on.link->GetCountPoints(), 4);
        QVERIFY(on.canvas.invalidated.empty());
    }

    void closeBendPointIsDeleted() {
        Diagram on;
        on.link->setBendPoints({{150, 60}, {152, 62}, {250, 90}});
        on.canvas.scroll = {7, 5};
        on.canvas.invalidated.clear();
        const TRect bounds = on.link->GetBounds();
        on.link->DragPoint = QPoint(153, 63) - on.canvas.scroll;
        on.link->_DeletePoint();
        QCOMPARE(on.link->bendPoints(), std::vector<QPoint>({{152, 62}, {250, 90}}));
        // Both the old line, which reached up to the first bend, and the new one are repainted.
        QCOMPARE(on.canvas.invalidated.size(), std::size_t(2));
        on.link->DragPoint = QPoint(246, 90) - on.canvas.scroll;
        on.link->_DeletePoint();
        QCOMPARE(on.link->GetCountPoints(), 6);
        on.link->DragPoint = QPoint(247, 93) - on.canvas.scroll;
        on.link->_DeletePoint();
        QCOMPARE(on.link->bendPoints(), std::vector<QPoint>({{152, 62}}));
        QCOMPARE(on.link->GetBounds(), bounds);
    }

    void lineWithoutBendPointsLosesNone() {
        Diagram on;
        for (const QPoint& point : on.link->points()) {
            on.link->DragPoint = point;
            on.link->_DeletePoint();
            QCOMPARE(on.link->GetCountPoints(), 4);
        }
    }

    // --- hit

    void straightLineIsHitWithinFourPixels_data() {
        QTest::addColumn<QPoint>("place");
        QTest::addColumn<int>("hit");
        const int y = firstRowPx;
        const auto row = [](const char* name, const QPoint& place, TTableHitTest hit) {
            QTest::newRow(name) << place << int(hit);
        };
        row("on the line", {200, y}, htTClient);
        row("four below", {200, y + 4}, htTClient);
        row("five below", {200, y + 5}, htTOutSide);
        row("four above", {200, y - 4}, htTClient);
        row("five above", {200, y - 5}, htTOutSide);
        row("start", {100, y}, htTEndLine);
        row("three around the start", {97, y + 3}, htTEndLine);
        row("four left of the start", {96, y}, htTOutSide);
        row("four right of the start", {104, y}, htTClient);
        row("end of the first stub", {110, y}, htTClient);
        row("start of the last stub", {290, y}, htTClient);
        row("end", {300, y}, htTEndLine);
        row("three around the end", {303, y - 3}, htTEndLine);
        row("four right of the end", {304, y}, htTOutSide);
    }
    void straightLineIsHitWithinFourPixels() {
        QFETCH(QPoint, place);
        QFETCH(int, hit);
        Diagram on;
        QCOMPARE(int(on.link->HitTest(place)), hit);
        on.canvas.scroll = {77, 13};
        QCOMPARE(int(on.link->HitTest(place - QPoint(77, 13))), hit);
    }

    // The more points a line has, the easier it is hit.
    void reachGrowsWithThePoints() {
        Diagram on;
        const int y = firstRowPx;
        on.link->setBendPoints({{150, y}, {250, y}});
        QCOMPARE(on.link->HitTest({200, y + 6}), htTClient);
        QCOMPARE(on.link->HitTest({200, y + 7}), htTOutSide);
        on.link->setBendPoints({{150, y}, {200, y}, {250, y}});
        QCOMPARE(on.link->HitTest({225, y + 7}), htTClient);
        QCOMPARE(on.link->HitTest({225, y + 8}), htTOutSide);
    }

    void bendPointsAreHitWithinThreePixels() {
        Diagram on;
        on.link->setBendPoints({{150, 200}});
        QCOMPARE(on.link->HitTest({150, 200}), htTPoint);
        QCOMPARE(on.link->HitTest({153, 203}), htTPoint);
        QCOMPARE(on.link->HitTest({147, 197}), htTPoint);
        QVERIFY(on.link->HitTest({154, 200}) != htTPoint);
        QVERIFY(on.link->HitTest({150, 204}) != htTPoint);
        for (const int stubEnd : {1, 3}) {
            QCOMPARE(on.link->HitTest(on.link->points()[std::size_t(stubEnd)]), htTClient);
        }
    }

    void lastOfSeveralClosePointsDecides() {
        Diagram on;
        const int y = firstRowPx;
        on.link->setBendPoints({{101, y}, {299, y}});
        QCOMPARE(on.link->HitTest({100, y}), htTPoint);
        QCOMPARE(on.link->HitTest({299, y}), htTEndLine);
    }

    // --- what is repainted

    void regionCoversTheLineAndItsMarkers_data() {
        QTest::addColumn<int>("left1");
        QTest::addColumn<int>("left2");
        QTest::newRow("to the right") << 0 << 300;
        QTest::newRow("to the left") << 300 << 0;
        QTest::newRow("around") << 0 << 50;
    }
    void regionCoversTheLineAndItsMarkers() {
        QFETCH(int, left1);
        QFETCH(int, left2);
        Diagram on({left1, 0}, {left2, 200});
        on.canvas.scroll = {9, 4};
        for (const bool bent : {false, true}) {
            if (bent) on.link->setBendPoints({{180, 60}, {180, 120}});
            const QRegion region = on.link->GetClipRgn(0);
            const int last = on.link->GetCountPoints() - 1;
            for (int index = 0; index < last; ++index) {
                const QPoint from = on.link->GetPoint(index);
                const QPoint way = on.link->GetPoint(index + 1) - from;
                for (int step = 0; step <= 20; ++step) {
                    const QPoint point = from + way * step / 20;
                    QVERIFY(region.contains(QRect(point - QPoint(1, 1), QSize(2, 2))));
                }
            }
            for (const int end : {0, last}) {
                const QPoint tip = on.link->GetPoint(end);
                const int side = on.link->GetPoint(end == 0 ? 1 : last - 1).x() > tip.x() ? 1 : -1;
                for (const int x : {0, 3 * side, 6 * side}) {
                    QVERIFY(region.contains(tip + QPoint(x, -3)));
                    QVERIFY(region.contains(tip + QPoint(x, 3)));
                }
            }
            for (const QPoint& bend : on.link->bendPoints()) {
                const QPoint place = bend - on.canvas.scroll;
                QVERIFY(region.contains(place + QPoint(-3, -3)));
                QVERIFY(region.contains(place + QPoint(2, 2)));
            }
        }
    }

    void endsHaveTheirOwnRegions() {
        Diagram on({50, 0}, {300, 200});
        const QRegion start = on.link->GetClipRgn(1);
        const QRegion end = on.link->GetClipRgn(2);
        QVERIFY(start.contains(on.link->GetPoint(0)));
        QVERIFY(start.contains(on.link->GetPoint(1)));
        QVERIFY(!start.contains(on.link->GetPoint(2)));
        QVERIFY(!start.contains(QPoint(0, 0)));
        QVERIFY(end.contains(QPoint(0, 0)));
        QVERIFY(!end.contains(QPoint(1, 0)));
        QVERIFY(end.contains(on.link->GetPoint(2)));
        QVERIFY(end.contains(on.link->GetPoint(3)));
        QVERIFY(!end.contains(on.link->GetPoint(0)));
        QCOMPARE(on.link->GetClipRgn(3), QRegion(0, 0, 1, 1));
    }

    // --- selecting

    void selectingHighlightsBothRowsAndTells() {
        Diagram on;
        on.link->SetSelect(true);
        QVERIFY(on.link->Selected);
        QVERIFY(on.link->Item1->Selected);
        QVERIFY(on.link->Item2->Selected);
        QCOMPARE(on.canvas.broughtToFront, std::vector<TorvQDFloatObject*>{on.link.get()});
        on.canvas.invalidated.clear();
        on.link->SetSelect(false);
        QVERIFY(!on.link->Selected);
        QVERIFY(!on.link->Item1->Selected);
        QVERIFY(!on.link->Item2->Selected);
        const std::vector<std::pair<TorvQDLink*, bool>> told = {{on.link.get(), true},
                                                                {on.link.get(), false}};
        QCOMPARE(on.canvas.linkSelections, told);
        const TRect line = TRect::fromQRect(on.link->GetClipRgn(0).boundingRect());
        QVERIFY(std::count(on.canvas.invalidated.begin(), on.canvas.invalidated.end(), line) == 1);
    }

    // --- painting

    void markersShowWhoseRowsAreAllIncluded_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("startIsTriangle");
        QTest::addColumn<bool>("endIsTriangle");
        QTest::newRow("inner") << int(klInnerJoin) << false << false;
        QTest::newRow("left") << int(klLOuterJoin) << true << false;
        QTest::newRow("right") << int(klROuterJoin) << false << true;
        QTest::newRow("full") << int(klFOuterJoin) << true << true;
    }
    void markersShowWhoseRowsAreAllIncluded() {
        QFETCH(int, kind);
        QFETCH(bool, startIsTriangle);
        QFETCH(bool, endIsTriangle);
        Diagram on;
        on.join->KindOfJoin = TKindOfJoin(kind);
        QImage image(420, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        on.link->Paint(painter);
        painter.end();
        // The far edge of a triangle is higher than the circle is there.
        const auto isPainted = [&](int x, int y) { return image.pixel(x, y) != 0xffffffffU; };
        QVERIFY(isPainted(200, firstRowPx));
        QVERIFY(!isPainted(200, firstRowPx + 3));
        for (const int side : {-1, 1}) {
            QCOMPARE(isPainted(106, firstRowPx + 2 * side), startIsTriangle);
            QCOMPARE(isPainted(294, firstRowPx + 3 * side), endIsTriangle);
        }
    }
};

QTEST_MAIN(LinksTest)
#include "tst_links.moc"
