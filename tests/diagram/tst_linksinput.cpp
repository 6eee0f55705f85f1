// SPDX-License-Identifier: MIT
// What a link does with the mouse and the keys, on a canvas that only takes notes.
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"

#include <QImage>
#include <QMenu>
#include <QScopeGuard>

using orvtest::FakeCanvas;

namespace {

using Points = std::vector<QPoint>;

constexpr QPoint oddScroll(137, 53);

/// Two boxes, 100 wide, their left edges at 0 and 300, and a link between their first rows: it runs
/// from (100, 29) over its stubs' ends, at 110 and 290, to (300, 29). Places are given in
/// coordinates of the diagram; the canvas is scrolled.
struct Diagram {
    explicit Diagram(const Points& bends = {}, const QPoint& scroll = oddScroll) {
        second.Left = 300;
        join = std::make_unique<TorvQDJoin>(&canvas, &first, &second);
        link = std::make_unique<TorvQDLink>(&canvas, join.get(), first.Items[0].get(),
                                            second.Items[0].get());
        link->setBendPoints(bends);
        canvas.scroll = scroll;
    }

    TWMMouse message(const QPoint& point, Qt::MouseButtons buttons) const {
        const QPoint view = point - canvas.scroll;
        return {view.x(), view.y(), buttons};
    }
    void down(const QPoint& point, TTableHitTest hit) const {
        TWMMouse mouse = message(point, Qt::LeftButton);
        link->MouseDown(mouse, hit);
    }
    void move(const QPoint& point, TTableHitTest hit,
              Qt::MouseButtons held = Qt::LeftButton) const {
        TWMMouse mouse = message(point, held);
        link->MouseMove(mouse, hit);
    }
    void up(const QPoint& point, TTableHitTest hit) const {
        TWMMouse mouse = message(point, Qt::LeftButton);
        link->MouseUp(mouse, hit);
    }
    /// What became of the key: 0 when the link has taken it.
    int key(int key, Qt::KeyboardModifiers modifiers = {}) const {
        link->KeyDown(key, modifiers);
        return key;
    }
    QPoint dragPoint() const { return link->DragPoint + canvas.scroll; }
    QStringList menuTexts(const QPoint& point, TTableHitTest hit) const {
        QMenu menu;
        const QPoint view = point - canvas.scroll;
        link->PopupMenu(menu, view.x(), view.y(), hit);
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            texts << (action->isSeparator() ? "-" : action->text());
        }
        return texts;
    }
    void choose(const QString& text, const QPoint& point, TTableHitTest hit) const {
        QMenu menu;
        const QPoint view = point - canvas.scroll;
        link->PopupMenu(menu, view.x(), view.y(), hit);
        for (QAction* action : menu.actions()) {
            if (action->text() == text) action->trigger();
        }
    }

    FakeCanvas canvas;
    TDataSet fields = orvtest::numberedFields(10);
    TorvQDTable first{&canvas, &fields, "CUSTOMER"};
    TorvQDTable second{&canvas, &fields, "ORDERS"};
    std::unique_ptr<TorvQDJoin> join;
    std::unique_ptr<TorvQDLink> link;
};

}  // namespace

class LinksInputTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- pressing

    void pressOnABendPointTakesIt() {
        const Diagram on({{150, 80}, {200, 120}});
        on.down({203, 117}, htTPoint);
        QCOMPARE(on.link->DragIndex, 3);
        QCOMPARE(on.dragPoint(), QPoint(200, 120));
        QVERIFY(on.link->isBendDragged());
        QVERIFY(!on.link->isEndDragged());
    }

    void pressBesideABendPointTakesNone() {
        const Diagram on({{150, 80}});
        for (const QPoint& point : {QPoint(154, 80), QPoint(146, 80), QPoint(150, 84)}) {
            on.down(point, htTPoint);
            QCOMPARE(on.link->DragIndex, -1);
        }
    }

    void lastOfSeveralCloseBendPointsIsTaken() {
        const Diagram on({{150, 80}, {152, 82}, {151, 79}, {250, 80}});
        on.down({151, 81}, htTPoint);
        QCOMPARE(on.link->DragIndex, 4);
        QCOMPARE(on.dragPoint(), QPoint(151, 79));
    }

    void lineWithoutBendPointsGivesNone() {
        const Diagram on;
        on.down({110, 29}, htTPoint);
        QCOMPARE(on.link->DragIndex, -1);
    }

    void pressOnAnEndTakesIt() {
        const Diagram on({{150, 80}});
        on.down({103, 26}, htTEndLine);
        QCOMPARE(on.link->DragIndex, 0);
        QVERIFY(on.link->isEndDragged());
        on.down({104, 29}, htTEndLine);
        QCOMPARE(on.link->DragIndex, 4);
        on.down({299, 29}, htTEndLine);
        QCOMPARE(on.link->DragIndex, 4);
        QVERIFY(on.link->isEndDragged());
        QVERIFY(!on.link->isBendDragged());
    }

    void pressOnTheLineTakesNothing() {
        const Diagram on({{150, 80}});
        on.down({150, 80}, htTClient);
        QCOMPARE(on.link->DragIndex, -1);
    }

    // --- moving a bend point

    void heldBendPointFollowsTheMouseAndTheLineWaits() {
        const Diagram on({{150, 80}});
        const Points before = on.link->points();
        on.down({151, 81}, htTPoint);
        on.move({180, 200}, htTPoint);
        QCOMPARE(on.dragPoint(), QPoint(180, 200));
        on.move({10, 300}, htTPoint);
        QCOMPARE(on.dragPoint(), QPoint(10, 300));
        QCOMPARE(on.link->points(), before);
    }

    void otherMovesLeaveTheDragPoint_data() {
        QTest::addColumn<int>("hit");
        QTest::addColumn<bool>("isHeld");
        QTest::addColumn<int>("index");
        QTest::newRow("not held") << int(htTPoint) << false << 2;
        QTest::newRow("on the line") << int(htTClient) << true << 2;
        QTest::newRow("on an end") << int(htTEndLine) << true << 2;
        QTest::newRow("nothing taken") << int(htTPoint) << true << -1;
        QTest::newRow("start taken") << int(htTPoint) << true << 0;
        QTest::newRow("end of the first stub") << int(htTPoint) << true << 1;
        QTest::newRow("start of the last stub") << int(htTPoint) << true << 3;
        QTest::newRow("end taken") << int(htTPoint) << true << 4;
    }
    void otherMovesLeaveTheDragPoint() {
        QFETCH(int, hit);
        QFETCH(bool, isHeld);
        QFETCH(int, index);
        const Diagram on({{150, 80}});
        on.link->DragIndex = index;
        on.link->DragPoint = {1, 2};
        on.move({180, 200}, TTableHitTest(hit), isHeld ? Qt::LeftButton : Qt::NoButton);
        QCOMPARE(on.link->DragPoint, QPoint(1, 2));
        QCOMPARE(on.link->DragIndex, index);
    }

    void oldAndNewBandAreRepainted() {
        Diagram on({{150, 80}});
        on.down({150, 80}, htTPoint);
        on.move({180, 200}, htTPoint);
        on.canvas.invalidated.clear();
        on.move({10, 300}, htTPoint);
        const QRegion repainted = on.canvas.repainted();
        for (const QPoint& point : {QPoint(180, 200), QPoint(10, 300), QPoint(110, 29)}) {
            QVERIFY(repainted.contains(point - oddScroll));
        }
    }

    void bandIsPaintedWhileTheBendPointIsAway() {
        const Diagram on({{150, 80}}, {0, 0});
        const auto painted = [&](const QPoint& point) {
            QImage image(400, 300, QImage::Format_RGB32);
            image.fill(Qt::green);
            QPainter painter(&image);
            on.link->paintBand(painter);
            painter.end();
            QImage blank(image.size(), image.format());
            blank.fill(Qt::green);
            return image != blank && image.pixelColor(point) != QColor(Qt::green);
        };
        QVERIFY(!painted({180, 200}));
        on.down({150, 80}, htTPoint);
        QVERIFY(!painted({150, 80}));
        on.move({180, 200}, htTPoint);
        QVERIFY(painted({180, 200}));
        on.link->cancelDrag();
        QVERIFY(!painted({180, 200}));
    }

    void releasePutsTheBendPointThere() {
        Diagram on({{150, 80}, {200, 60}});
        QCOMPARE(on.link->GetBounds(), TRect({97, 26, 303, 83}));
        on.down({150, 80}, htTPoint);
        on.move({180, 200}, htTPoint);
        on.canvas.invalidated.clear();
        on.up({180, 200}, htTPoint);
        QCOMPARE(on.link->bendPoints(), Points({{180, 200}, {200, 60}}));
        QCOMPARE(on.link->DragIndex, -1);
        QCOMPARE(on.link->GetBounds(), TRect({97, 26, 303, 203}));
        QVERIFY(!on.canvas.invalidated.empty());
    }

    void boundsGrowAndNeverShrink_data() {
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<TRect>("bounds");
        QTest::newRow("inside") << QPoint(200, 50) << TRect({97, 26, 303, 83});
        QTest::newRow("left") << QPoint(50, 50) << TRect({47, 26, 303, 83});
        QTest::newRow("above") << QPoint(200, 5) << TRect({97, 2, 303, 83});
        QTest::newRow("right") << QPoint(450, 50) << TRect({97, 26, 453, 83});
        QTest::newRow("below") << QPoint(200, 90) << TRect({97, 26, 303, 93});
    }
    void boundsGrowAndNeverShrink() {
        QFETCH(QPoint, to);
        QFETCH(TRect, bounds);
        const Diagram on({{150, 80}});
        on.down({150, 80}, htTPoint);
        on.move(to, htTPoint);
        on.up(to, htTPoint);
        QCOMPARE(on.link->GetBounds(), bounds);
        QCOMPARE(on.link->bendPoints(), Points{to});
    }

    void releaseOfAnEndIsTheCanvassBusiness() {
        const Diagram on({{150, 80}});
        const Points before = on.link->points();
        on.down({100, 29}, htTEndLine);
        on.move({400, 400}, htTEndLine);
        on.up({400, 400}, htTEndLine);
        QCOMPARE(on.link->DragIndex, 0);
        QCOMPARE(on.link->points(), before);
    }

    void givenUpDragLeavesTheLine() {
        const Diagram on({{150, 80}});
        on.down({150, 80}, htTPoint);
        on.move({180, 200}, htTPoint);
        on.link->cancelDrag();
        QCOMPARE(on.link->DragIndex, -1);
        on.up({180, 200}, htTPoint);
        QCOMPARE(on.link->bendPoints(), Points({{150, 80}}));
    }

    void eventsComeFirstAndTellPlacesInTheView() {
        const Diagram on({{150, 80}});
        QStringList told;
        const auto say = [&](const char* name, int x, int y) {
            const QPoint point = QPoint(x, y) + oddScroll;
            told << QStringLiteral("%1 %2 %3 index %4")
                        .arg(name)
                        .arg(point.x())
                        .arg(point.y())
                        .arg(on.link->DragIndex);
        };
        on.link->OnMouseDown = [&](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int x, int y) {
            say("down", x, y);
        };
        on.link->OnMouseMove = [&](QObject*, Qt::KeyboardModifiers, int x, int y) {
            say("move", x, y);
        };
        on.link->OnMouseUp = [&](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int x, int y) {
            say("up", x, y);
        };
        on.down({150, 80}, htTPoint);
        on.move({160, 90}, htTPoint);
        on.up({170, 95}, htTPoint);
        QCOMPARE(told,
                 QStringList({"down 150 80 index -1", "move 160 90 index 2", "up 170 95 index 2"}));
    }

    // --- the menu

    void menuDependsOnThePlace() {
        const Diagram on({{150, 80}});
        QCOMPARE(on.menuTexts({150, 80}, htTPoint),
                 QStringList({"Delete point", "-", "Delete link", "Property", "Mute link"}));
        QCOMPARE(on.menuTexts({200, 55}, htTClient),
                 QStringList({"Insert point", "-", "Delete link", "Property", "Mute link"}));
        for (const TTableHitTest hit : {htTEndLine, htTOutSide, htTCaption}) {
            QCOMPARE(on.menuTexts({100, 29}, hit), QStringList());
        }
    }

    void menuInsertsAPointWhereItWasOpened() {
        const Diagram on;
        on.choose("Insert point", {180, 31}, htTClient);
        QCOMPARE(on.link->bendPoints(), Points({{180, 31}}));
    }

    void menuInsertsNoPointOnAStub() {
        const Diagram on;
        for (const QPoint& point : {QPoint(104, 29), QPoint(297, 29)}) {
            on.choose("Insert point", point, htTClient);
            QCOMPARE(on.link->bendPoints(), Points());
        }
    }

    void menuDeletesTheFirstClosePoint() {
        const Diagram on({{150, 80}, {152, 82}, {250, 120}});
        const TRect bounds = on.link->GetBounds();
        on.choose("Delete point", {151, 81}, htTPoint);
        QCOMPARE(on.link->bendPoints(), Points({{152, 82}, {250, 120}}));
        on.choose("Delete point", {250, 120}, htTPoint);
        QCOMPARE(on.link->bendPoints(), Points({{152, 82}}));
        QCOMPARE(on.link->GetBounds(), bounds);
        on.choose("Delete point", {250, 120}, htTPoint);
        QCOMPARE(on.link->bendPoints(), Points({{152, 82}}));
    }

    void lineWithoutBendPointsLosesNone() {
        const Diagram on;
        const Points before = on.link->points();
        on.choose("Delete point", {110, 29}, htTPoint);
        QCOMPARE(on.link->points(), before);
    }

    void menuOpensTheProperties() {
        const Diagram on;
        on.choose("Property", {200, 29}, htTClient);
        QCOMPARE(on.canvas.editedLinks, std::vector<TorvQDLink*>{on.link.get()});
    }

    void menuOfADeadLinkDoesNothing() {
        Diagram on({{150, 80}});
        QMenu menu;
        on.link->PopupMenu(menu, 0, 0, htTPoint);
        on.link.reset();
        for (QAction* action : menu.actions()) action->trigger();
        QVERIFY(on.canvas.editedLinks.empty());
        QVERIFY(on.canvas.deletedLinks.empty());
    }

    // --- deleting

    void deletionIsAsked() {
        const Diagram on;
        orv::MessageRequest asked;
        const auto old = orv::setMessageService([&](const orv::MessageRequest& request) {
            asked = request;
            return orv::MessageAnswer::Yes;
        });
        const auto restore = qScopeGuard([&] { orv::setMessageService(old); });
        on.choose("Delete link", {200, 29}, htTClient);
        QCOMPARE(asked.text, "Are you really want to delete link between \r\nCUSTOMER and ORDERS");
        QCOMPARE(asked.caption, "Attention!");
        QCOMPARE(asked.icon, orv::MessageIcon::Question);
        QCOMPARE(asked.buttons, orv::MessageButtons::YesNo);
        QCOMPARE(asked.parent, &on.canvas);
        QCOMPARE(on.canvas.deletedLinks, std::vector<TorvQDLink*>{on.link.get()});
    }

    void questionNamesTablesAndNotAliases() {
        orvtest::RecordedServices services;
        Diagram on;
        on.first.SetAlias("%2");
        on.second.TableName = "\"%1\"";
        on.link->_DeleteLink();
        QCOMPARE(services.messages, QStringList("Are you really want to delete link between \r\n"
                                                "CUSTOMER and \"%1\""));
    }

    void answerNoLeavesEverything() {
        orvtest::RecordedServices services;
        services.answer = orv::MessageAnswer::No;
        const Diagram on({{150, 80}});
        const Points before = on.link->points();
        on.link->_DeleteLink();
        QCOMPARE(services.messages.size(), 1);
        QVERIFY(on.canvas.deletedLinks.empty());
        QCOMPARE(on.link->points(), before);
    }

    void linkMayDieWhileTheUserIsAsked() {
        Diagram on;
        const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
            on.link.reset();
            return orv::MessageAnswer::Yes;
        });
        const auto restore = qScopeGuard([&] { orv::setMessageService(old); });
        on.link->_DeleteLink();
        QVERIFY(!on.link);
        QVERIFY(on.canvas.deletedLinks.empty());
    }

    // --- the keys

    void keysOpenThePropertiesAndAskToDelete() {
        orvtest::RecordedServices services;
        const Diagram on;
        for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            QCOMPARE(on.key(key), 0);
        }
        QCOMPARE(on.canvas.editedLinks, std::vector<TorvQDLink*>(3, on.link.get()));
        QCOMPARE(on.key(Qt::Key_Delete), 0);
        QCOMPARE(services.messages.size(), 1);
        QCOMPARE(on.canvas.deletedLinks, std::vector<TorvQDLink*>{on.link.get()});
    }

    void insertMakesABendPointInTheMiddleOfTheLongestSegment() {
        const Diagram on;
        QCOMPARE(on.key(Qt::Key_Insert), 0);
        QCOMPARE(on.link->bendPoints(), Points({{200, 29}}));
        QCOMPARE(on.link->chosenBend(), 2);
        const Diagram bent({{150, 29}});
        bent.key(Qt::Key_Insert);
        QCOMPARE(bent.link->bendPoints(), Points({{150, 29}, {220, 29}}));
        QCOMPARE(bent.link->chosenBend(), 3);
    }

    void arrowsChooseABendPoint() {
        const Diagram on({{150, 80}, {200, 60}, {250, 90}});
        QCOMPARE(on.link->chosenBend(), -1);
        QCOMPARE(on.key(Qt::Key_Right), 0);
        QCOMPARE(on.link->chosenBend(), 2);
        on.key(Qt::Key_Down);
        on.key(Qt::Key_Down);
        on.key(Qt::Key_Down);
        QCOMPARE(on.link->chosenBend(), 4);
        on.key(Qt::Key_Left);
        QCOMPARE(on.link->chosenBend(), 3);
        const Diagram other({{150, 80}, {200, 60}});
        other.key(Qt::Key_Up);
        QCOMPARE(other.link->chosenBend(), 3);
        const Diagram straight;
        QCOMPARE(straight.key(Qt::Key_Down), 0);
        QCOMPARE(straight.link->chosenBend(), -1);
    }

    void arrowsWithControlMoveTheChosenBendPoint() {
        const Diagram on({{150, 80}});
        QCOMPARE(on.key(Qt::Key_Right, Qt::ControlModifier), 0);
        QCOMPARE(on.link->bendPoints(), Points({{150, 80}}));  // none is chosen
        on.key(Qt::Key_Right);
        on.key(Qt::Key_Right, Qt::ControlModifier);
        on.key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(on.link->bendPoints(), Points({{160, 81}}));
        for (int step = 0; step < 20; ++step) on.key(Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(on.link->bendPoints(), Points({{160, 0}}));
    }

    void deleteWithControlTakesTheChosenBendPoint() {
        orvtest::RecordedServices services;
        const Diagram on({{150, 80}, {200, 60}});
        QCOMPARE(on.key(Qt::Key_Delete, Qt::ControlModifier), 0);
        QCOMPARE(on.link->bendPoints(), Points({{150, 80}, {200, 60}}));
        on.key(Qt::Key_Up);  // the last one
        on.key(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.link->bendPoints(), Points({{150, 80}}));
        QVERIFY(services.messages.isEmpty());
    }

    void chosenBendPointStaysChosenWhenTheMenuChangesOthers() {
        const Diagram on({{150, 80}, {200, 60}, {250, 90}});
        on.key(Qt::Key_Left);
        QCOMPARE(on.link->chosenBend(), 4);
        on.choose("Delete point", {150, 80}, htTPoint);
        QCOMPARE(on.link->bendPoints(), Points({{200, 60}, {250, 90}}));
        QCOMPARE(on.link->chosenBend(), 3);
        on.choose("Insert point", {226, 76}, htTClient);
        QCOMPARE(on.link->bendPoints(), Points({{200, 60}, {226, 76}, {250, 90}}));
        QCOMPARE(on.link->chosenBend(), 4);
    }

    void otherKeysAreNotTheLinks() {
        const Diagram on({{150, 80}});
        for (const int key : {Qt::Key_A, Qt::Key_Tab, Qt::Key_Home, Qt::Key_PageDown}) {
            QCOMPARE(on.key(key), key);
        }
        QVERIFY(on.canvas.searches.empty());
    }

    void keyThatTheHostSwallowsDoesNothing() {
        const Diagram on;
        on.link->OnKeyDown = [](QObject*, int& key, Qt::KeyboardModifiers) { key = 0; };
        on.key(Qt::Key_Return);
        QVERIFY(on.canvas.editedLinks.empty());
    }
};

QTEST_MAIN(LinksInputTest)
#include "tst_linksinput.moc"
