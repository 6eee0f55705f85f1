// SPDX-License-Identifier: MIT
// Links under the hand: their bend points, their ends, their menu and their dialog.
#include "diagram/Orvqdlnkprop.h"
#include "support/PaintedRegions.h"
#include "support/ShownBuilder.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QMenu>

using orvtest::PaintedRegions;
using orvtest::RecordedServices;
using orvtest::ShownBuilder;

namespace {

using Points = std::vector<QPoint>;

/// A shown builder with a link from U.A to T.A, and a third box, DEPT, that nothing links. The
/// boxes are 100 wide and lie clear of each other; no box is selected.
class TiedBuilder : public ShownBuilder {
public:
    explicit TiedBuilder(bool keepMeaning = false) : ShownBuilder(keepMeaning) {
        addTable(QStringLiteral("DEPT"));
        place("U", {40, 30});
        place("T", {300, 30});
        place("DEPT", {500, 60});
        tie = link("U", "A", "T", "A");
        area().selectObject(nullptr);
        builder.OnAddRemoveLink = [this](QObject*, TorvQDLink* link, TAddRemove action, bool& can) {
            asked << (action == araAdd ? "+" : "-") + link->GetHint();
            can = action == araAdd ? mayAdd : mayRemove;
        };
        changes = 0;
    }

    void place(const QString& alias, const QPoint& at) const {
        TorvQDTable* box = table(alias);
        box->MoveTable(at.x() - box->Left, at.y() - box->Top);
    }
    /// Where the line starts, and a pixel in front of the box where it ends: boxes are hit first.
    QPoint start() const { return tie->GetPoint(0); }
    QPoint end() const { return tie->GetPoint(tie->GetCountPoints() - 1) - QPoint(1, 0); }
    /// Drags the end of the line to that place, as a hand does that stops on the way.
    void dragEnd(const QPoint& from, const QPoint& to) const { drag(from, to - from); }
    void pressEscape() const { QTest::keyClick(&area(), Qt::Key_Escape); }
    QMenu* menuAt(const QPoint& point) const {
        QTest::mouseClick(view(), Qt::RightButton, {}, point);
        for (QMenu* menu : area().findChildren<QMenu*>()) {
            if (menu->isVisible()) return menu;
        }
        return nullptr;
    }
    QString statement() { return builder.GetSQLStatment(); }

    QPointer<TorvQDLink> tie;
    QStringList asked;
    bool mayAdd = true;
    bool mayRemove = true;
};

}  // namespace

class LinkGesturesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- selecting

    void pressOnTheLineSelectsTheLink() {
        TiedBuilder on;
        on.click((on.tie->GetPoint(1) + on.tie->GetPoint(2)) / 2);
        QCOMPARE(on.area().selectedObject(), on.tie);
        QVERIFY(on.row("U", "A")->Selected && on.row("T", "A")->Selected);
        on.click({700, 10});
        QVERIFY(!on.area().selectedObject());
        QVERIFY(!on.row("U", "A")->Selected);
        QCOMPARE(on.changes, 0);
    }

    void boxesAreHitBeforeLinks() {
        const TiedBuilder on;
        QCOMPARE(on.area().objectAt(on.start() - QPoint(1, 0)), on.table("U"));
        QCOMPARE(on.area().objectAt(on.start()), on.tie);
        QCOMPARE(on.area().objectAt(on.end()), on.tie);
        QCOMPARE(on.area().objectAt(on.end() + QPoint(1, 0)), on.table("T"));
    }

    void selectedLinkIsHitBeforeTheOthersAndTheLastPaintedBeforeTheFirst() {
        const TiedBuilder on;
        TorvQDLink* second = on.link("U", "A", "T", "A");
        const QPoint shared = (second->GetPoint(1) + second->GetPoint(2)) / 2;
        QCOMPARE(on.area().objectAt(shared), second);
        on.area().selectObject(on.tie);
        QCOMPARE(on.area().objectAt(shared), on.tie);
    }

    void cursorTellsWhatCanBeDragged() {
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        const auto cursorAt = [&](const QPoint& point) {
            on.hover(point);
            return on.view()->cursor().shape();
        };
        QCOMPARE(cursorAt(on.start() + QPoint(2, 0)), Qt::UpArrowCursor);
        QCOMPARE(cursorAt(on.end()), Qt::UpArrowCursor);
        QCOMPARE(cursorAt({200, 150}), Qt::SizeAllCursor);
        QCOMPARE(cursorAt((QPoint(200, 150) + on.tie->GetPoint(1)) / 2), Qt::ArrowCursor);
    }

    // --- bend points

    void bendPointIsDragged_data() { addScrolls(); }
    void bendPointIsDragged() {
        QFETCH(QPoint, scroll);
        TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.scrollTo(scroll);
        const QPoint from = QPoint(201, 149) - scroll;
        on.press(from);
        on.moveTo(from + QPoint(40, 30));
        QCOMPARE(on.tie->bendPoints(), Points({{200, 150}}));
        QCOMPARE(on.tie->DragPoint, from + QPoint(40, 30));
        on.moveTo(from + QPoint(-30, 10));
        on.release(from + QPoint(-30, 10));
        QCOMPARE(on.tie->bendPoints(), Points({{171, 159}}));
        QCOMPARE(on.tie->DragIndex, -1);
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.changes, 0);
    }

    void clickedBendPointStaysWhereItIs() {
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.press({202, 148});
        on.moveTo({203, 148});
        on.release({203, 148});
        QCOMPARE(on.tie->bendPoints(), Points({{200, 150}}));
        QCOMPARE(on.tie->DragIndex, -1);
    }

    void bendPointStaysOnTheDiagram() {
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.scrollTo({37, 13});
        on.drag({163, 137}, {-900, -900});
        QCOMPARE(on.tie->bendPoints(), Points({{0, 0}}));
    }

    void bendPointFollowsTheScrolledView() {
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.press({200, 150});
        on.moveTo({220, 160});
        on.scrollTo({50, 40});
        on.release({220, 160});
        QCOMPARE(on.tie->bendPoints(), Points({{270, 200}}));
    }

    void givenUpBendPointGoesBack_data() {
        QTest::addColumn<QString>("end");
        for (const char* end : {"escape", "focus", "lost release"}) {
            QTest::newRow(end) << QString(end);
        }
    }
    void givenUpBendPointGoesBack() {
        QFETCH(QString, end);
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.press({200, 150});
        on.moveTo({260, 170});
        if (end == "escape") on.pressEscape();
        if (end == "lost release") on.hover({260, 170});
        if (end == "focus") {
            QFocusEvent event(QEvent::FocusOut, Qt::MouseFocusReason);
            QCoreApplication::sendEvent(&on.area(), &event);
        }
        QCOMPARE(on.tie->DragIndex, -1);
        on.release({260, 170});
        QCOMPARE(on.tie->bendPoints(), Points({{200, 150}}));
    }

    void linkRemovedWhileItsBendPointIsDragged() {
        TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.press({200, 150});
        on.moveTo({260, 170});
        on.area().RemoveLink(on.tie, true);
        QCoreApplication::processEvents();
        QVERIFY(!on.tie);
        on.moveTo({280, 190});
        on.release({280, 190});
        QCOMPARE(on.links(), QStringList());
        verifyBuilder(on.builder);
    }

    void bandIsPaintedWhileABendPointIsDragged() {
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        on.press({200, 150});
        const QImage before = on.view()->grab().toImage();
        on.moveTo({200, 220});
        const QImage during = on.view()->grab().toImage();
        QVERIFY(before != during);
        on.pressEscape();
        QCOMPARE(on.view()->grab().toImage(), before);
    }

    void heldLineTellsOfTheMouse() {
        const TiedBuilder on;
        int told = 0;
        on.tie->OnMouseMove = [&](QObject*, Qt::KeyboardModifiers, int, int) { ++told; };
        const QPoint middle = (on.tie->GetPoint(1) + on.tie->GetPoint(2)) / 2;
        on.press(middle);
        on.moveTo(middle + QPoint(0, 1));
        on.moveTo(middle + QPoint(0, 90));
        QCOMPARE(told, 2);
    }

    // --- the ends

    void endMovesToAnotherRowOfItsBox_data() {
        QTest::addColumn<bool>("atStart");
        QTest::addColumn<QPoint>("scroll");
        QTest::newRow("start") << true << QPoint(0, 0);
        QTest::newRow("end") << false << QPoint(0, 0);
        QTest::newRow("scrolled, start") << true << QPoint(17, 9);
        QTest::newRow("scrolled, end") << false << QPoint(17, 9);
    }
    void endMovesToAnotherRowOfItsBox() {
        QFETCH(bool, atStart);
        QFETCH(QPoint, scroll);
        TiedBuilder on;
        on.tie->setOperatorText("<");
        on.changes = 0;
        on.scrollTo(scroll);
        if (atStart) {
            on.dragEnd(on.start(), on.rowTextOf("U", "Y"));
        } else {
            on.dragEnd(on.end(), on.rowTextOf("T", "C"));
        }
        QCOMPARE(on.links(), QStringList(atStart ? "U.Y<T.A" : "U.A<T.C"));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.tie->DragIndex, -1);
        QCOMPARE(on.changes, 1);
        QVERIFY(on.area().selectedObject() == on.tie);
        const TorvQDTable* box = on.table(atStart ? "U" : "T");
        const TRect row = box->GetItemRect(on.row(atStart ? "U" : "T", atStart ? "Y" : "C"));
        QCOMPARE(on.tie->GetPoint(atStart ? 0 : 3).y(), (row.Top + row.Bottom) / 2);
        verifyBuilder(on.builder);
    }

    void highlightGoesWithTheEnd() {
        const TiedBuilder on;
        on.dragEnd(on.start(), on.rowTextOf("U", "Y"));
        QVERIFY(!on.row("U", "A")->Selected);
        QVERIFY(on.row("U", "Y")->Selected);
    }

    void endMovesToARowOfAnotherBox() {
        TiedBuilder on;
        on.tie->setOperatorText(">=");
        on.tie->Join->KindOfJoin = klLOuterJoin;
        on.changes = 0;
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.links(), QStringList("U.A>=DEPT.BUDGET"));
        QCOMPARE(on.asked, QStringList({"-U.A>=T.A", "+U.A=DEPT.BUDGET"}));
        QCOMPARE(on.area().Joins().size(), std::size_t(1));
        QCOMPARE(on.area().Joins().front()->KindOfJoin, klLOuterJoin);
        QCOMPARE(on.area().selectedObject(), on.area().Links().front());
        QCOMPARE(on.area().Links().front()->DragIndex, -1);
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void mutedLinkStaysMutedOnAnotherBox() {
        TiedBuilder on;
        on.area().muteLink(on.tie, true);
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.links(), QStringList("U.A=DEPT.BUDGET"));
        QVERIFY(on.area().Links().front()->Muted);
        QVERIFY(!on.statement().contains("JOIN"));
        verifyBuilder(on.builder);
    }

    void startMovesToARowOfAnotherBox() {
        TiedBuilder on;
        on.tie->setOperatorText("<");
        on.dragEnd(on.start(), on.rowTextOf("DEPT", "DEPT_NO"));
        QCOMPARE(on.links(), QStringList("DEPT.DEPT_NO<T.A"));
        verifyBuilder(on.builder);
    }

    void operatorThatTheDialogDoesNotKnowGoesAlong() {
        TiedBuilder on;
        on.tie->setOperatorText("@>");
        QCOMPARE(on.tie->Operator, -1);
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.links(), QStringList("U.A@>DEPT.BUDGET"));
        QCOMPARE(on.area().Links().front()->Operator, -1);
        QCOMPARE(on.area().Links().front()->OperatorSource, "@>");
    }

    // The join of the two boxes has them the other way round.
    void operatorIsTurnedRoundWithTheEnds() {
        TiedBuilder on;
        on.link("DEPT", "DEPT_NO", "U", "X");
        on.tie->setOperatorText("<");
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.links(), QStringList({"DEPT.DEPT_NO=U.X", "DEPT.BUDGET>U.A"}));
        QCOMPARE(on.area().Joins().size(), std::size_t(1));
        verifyBuilder(on.builder);
    }

    void refusedEndStaysWhereItIs_data() {
        QTest::addColumn<bool>("mayRemove");
        QTest::addColumn<QStringList>("asked");
        QTest::newRow("removal refused") << false << QStringList("-U.A=T.A");
        QTest::newRow("addition refused") << true << QStringList({"-U.A=T.A", "+U.A=DEPT.BUDGET"});
    }
    void refusedEndStaysWhereItIs() {
        QFETCH(bool, mayRemove);
        QFETCH(QStringList, asked);
        TiedBuilder on;
        on.mayRemove = mayRemove;
        on.mayAdd = false;
        const QString before = on.statement();
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.asked, asked);
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
        QCOMPARE(on.tie->DragIndex, -1);
        QCOMPARE(on.statement(), before);
        QCOMPARE(on.changes, 0);
        QCOMPARE(on.area().selectedObject(), on.tie);
        verifyBuilder(on.builder);
    }

    void endDroppedElsewhereStaysWhereItIs_data() {
        QTest::addColumn<QString>("place");
        for (const char* place : {"nothing", "caption", "edge", "the row of the other end",
                                  "another row of the other end's box", "its own row"}) {
            QTest::newRow(place) << QString(place);
        }
    }
    void endDroppedElsewhereStaysWhereItIs() {
        QFETCH(QString, place);
        TiedBuilder on;
        QPoint to(250, 180);
        if (place == "caption") to = on.captionOf("DEPT");
        if (place == "edge") to = {501, 100};
        if (place == "the row of the other end") to = on.rowTextOf("U", "A");
        if (place == "another row of the other end's box") to = on.rowTextOf("U", "X");
        if (place == "its own row") to = on.rowTextOf("T", "A");
        on.dragEnd(on.end(), to);
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.tie->DragIndex, -1);
        QCOMPARE(on.changes, 0);
    }

    void endIsNotDroppedOnAnInputParameter() {
        const TiedBuilder on;
        on.row("DEPT", "BUDGET")->ParamType = ptInput;
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
    }

    void duplicateIsNotMade() {
        TiedBuilder on;
        on.link("U", "A", "DEPT", "BUDGET");
        on.link("T", "B", "U", "A");  // of the same join as the dragged one
        on.asked.clear();
        on.changes = 0;
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        on.dragEnd(on.end(), on.rowTextOf("T", "B"));
        QCOMPARE(on.links(), QStringList({"U.A=T.A", "U.A=DEPT.BUDGET", "U.A=T.B"}));
        QCOMPARE(on.asked, QStringList());
        QCOMPARE(on.changes, 0);
    }

    void escapeKeepsTheEnd() {
        const TiedBuilder on;
        on.press(on.end());
        on.moveTo(on.rowTextOf("DEPT", "DEPT_NO"));
        on.moveTo(on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.markedRow("DEPT"), on.row("DEPT", "BUDGET"));
        on.pressEscape();
        QVERIFY(!on.markedRow("DEPT"));
        QCOMPARE(on.tie->DragIndex, -1);
        on.release(on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
    }

    void clickedEndStaysWhereItIs() {
        const TiedBuilder on;
        on.click(on.end());
        QCOMPARE(on.tie->DragIndex, -1);
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
    }

    void rowIsMarkedWhileTheEndWouldGoThere() {
        const TiedBuilder on;
        on.press(on.end());
        on.moveTo(on.rowTextOf("T", "C"));
        QCOMPARE(on.markedRow("T"), on.row("T", "C"));
        on.moveTo(on.rowTextOf("DEPT", "BUDGET"));
        QVERIFY(!on.markedRow("T"));
        QCOMPARE(on.markedRow("DEPT"), on.row("DEPT", "BUDGET"));
        on.moveTo(on.rowTextOf("U", "X"));
        QVERIFY(!on.markedRow("DEPT"));
        QVERIFY(!on.markedRow("U"));
    }

    void targetClosedDuringTheDragTakesNoEnd() {
        TiedBuilder on;
        const QPoint to = on.rowTextOf("DEPT", "BUDGET");
        on.press(on.end());
        on.moveTo(to);
        on.table("DEPT")->CloseTable();
        QCoreApplication::processEvents();
        on.release(to);
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
        QCOMPARE(on.tie->DragIndex, -1);
        verifyBuilder(on.builder);
    }

    void vetoMayRemoveTheLinkOrCloseTheTarget_data() {
        QTest::addColumn<bool>("closes");
        QTest::newRow("removes the link") << false;
        QTest::newRow("closes the box") << true;
    }
    void vetoMayRemoveTheLinkOrCloseTheTarget() {
        QFETCH(bool, closes);
        TiedBuilder on;
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink*, TAddRemove action, bool& can) {
            can = true;
            if (action == araAdd) return;
            if (closes) {
                on.table("DEPT")->CloseTable();
            } else {
                on.area().RemoveLink(on.tie, true);
            }
        };
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCoreApplication::processEvents();
        QCOMPARE(on.links(), closes ? QStringList("U.A=T.A") : QStringList());
        verifyBuilder(on.builder);
    }

    void errorOfTheHostKeepsTheEnd() {
        RecordedServices services;
        TiedBuilder on;
        on.builder.OnAddRemoveLink = [](QObject*, TorvQDLink*, TAddRemove, bool&) {
            throw orv::Error(QStringLiteral("host"));
        };
        on.dragEnd(on.end(), on.rowTextOf("DEPT", "BUDGET"));
        QCOMPARE(services.errors, QStringList("host"));
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
        QCOMPARE(on.tie->DragIndex, -1);
        QVERIFY(!on.area().isGesturing());
    }

    // --- the dialog and the menu

    void doubleClickOpensTheDialog_data() {
        QTest::addColumn<QString>("place");
        for (const char* place : {"line", "end", "bend point"}) {
            QTest::newRow(place) << QString(place);
        }
    }
    void doubleClickOpensTheDialog() {
        QFETCH(QString, place);
        RecordedServices services;
        const TiedBuilder on;
        on.tie->setBendPoints({{200, 150}});
        QPointer<TorvQDLink> shown;
        services.onDialog = [&](QDialog& dialog) {
            if (const auto* properties = qobject_cast<TdlgLnkProp*>(&dialog)) {
                shown = qobject_cast<TorvQDLink*>(properties->CurrentLnk.data());
            }
            return int(QDialog::Rejected);
        };
        QPoint at = (on.tie->GetPoint(1) + QPoint(200, 150)) / 2;
        if (place == "end") at = on.end();
        if (place == "bend point") at = {200, 150};
        on.doubleClick(at);
        QCOMPARE(services.dialogs.size(), 1);
        QCOMPARE(shown, on.tie);
        QCOMPARE(on.tie->DragIndex, -1);
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.tie->bendPoints(), Points({{200, 150}}));
        QCOMPARE(on.changes, 0);
    }

    // The links of a join share its kind, which the dialog changes.
    void linksOfTheJoinAreRepaintedBehindTheDialog() {
        RecordedServices services;
        const TiedBuilder on;
        const TorvQDLink* second = on.link("U", "X", "T", "B");
        on.area().selectObject(on.tie);
        PaintedRegions painted(on.view());
        services.onDialog = [&](QDialog&) {
            (void)painted.take();
            return int(QDialog::Accepted);
        };
        on.area().editLink(on.tie);
        QCOMPARE(services.dialogs.size(), 1);
        QCOMPARE(painted.take(), on.tie->GetClipRgn(0) + second->GetClipRgn(0));
    }

    void linkMayGoWhileItsDialogIsOpen() {
        RecordedServices services;
        TiedBuilder on;
        services.onDialog = [&](QDialog&) {
            on.builder.Clear();
            QCoreApplication::processEvents();
            return int(QDialog::Accepted);
        };
        on.doubleClick((on.tie->GetPoint(1) + on.tie->GetPoint(2)) / 2);
        QCOMPARE(on.tables(), QStringList());
        verifyBuilder(on.builder);
    }

    void menuOfTheLineInsertsAPoint_data() { addScrolls(); }
    void menuOfTheLineInsertsAPoint() {
        QFETCH(QPoint, scroll);
        const TiedBuilder on;
        on.scrollTo(scroll);
        const QPoint middle = (on.tie->GetPoint(1) + on.tie->GetPoint(2)) / 2;
        QMenu* menu = on.menuAt(middle);
        QVERIFY(menu);
        QCOMPARE(menu->actions().at(0)->text(), "Insert point");
        menu->actions().at(0)->trigger();
        menu->close();
        QCOMPARE(on.tie->bendPoints(), Points{middle + scroll});
        menu = on.menuAt(middle);
        QVERIFY(menu);
        QCOMPARE(menu->actions().at(0)->text(), "Delete point");
        menu->actions().at(0)->trigger();
        menu->close();
        QCOMPARE(on.tie->bendPoints(), Points());
        QCOMPARE(on.changes, 0);
    }

    void endOfALineHasNoMenu() {
        const TiedBuilder on;
        QVERIFY(!on.menuAt(on.end()));
    }

    void menuDeletesTheLinkOnceItIsOver() {
        RecordedServices services;
        TiedBuilder on;
        QMenu* menu = on.menuAt((on.tie->GetPoint(1) + on.tie->GetPoint(2)) / 2);
        QVERIFY(menu);
        menu->actions().at(2)->trigger();
        QCOMPARE(services.messages, QStringList("Are you really want to delete link between \r\n"
                                                "U and T"));
        QCOMPARE(on.links(), QStringList("U.A=T.A"));
        menu->close();
        QCoreApplication::processEvents();
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(on.asked, QStringList("-U.A=T.A"));
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void removedLinkIsRepaintedWhenThatIsAskedFor_data() { addScrolls(); }
    void removedLinkIsRepaintedWhenThatIsAskedFor() {
        QFETCH(QPoint, scroll);
        const TiedBuilder on;
        TorvQDLink* second = on.link("U", "X", "T", "B");
        on.scrollTo(scroll);
        const QRegion line = on.tie->GetClipRgn(0);
        PaintedRegions painted(on.view());
        on.area().RemoveLink(second, false);
        QCOMPARE(painted.take(), QRegion());
        on.area().RemoveLink(on.tie, true);
        QCOMPARE(painted.take(), line);
    }

    void menuIsClosedWithItsLink() {
        const TiedBuilder on;
        const QPointer<QMenu> menu = on.menuAt((on.tie->GetPoint(1) + on.tie->GetPoint(2)) / 2);
        QVERIFY(menu && menu->isVisible());
        on.area().RemoveLink(on.tie, true);
        QVERIFY(!menu || !menu->isVisible());
    }

private:
    static void addScrolls() {
        QTest::addColumn<QPoint>("scroll");
        QTest::newRow("at the origin") << QPoint(0, 0);
        QTest::newRow("scrolled") << QPoint(37, 13);
    }
};

QTEST_MAIN(LinkGesturesTest)
#include "tst_linkgestures.moc"
