// SPDX-License-Identifier: MIT
// Fields dragged from their rows, and other things dragged over the diagram. The window of the
// builder gets the drag's events as the platform sends them.
#include "data/DraggedField.h"
#include "support/ShownBuilder.h"
#include "toolkit/Glyph.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QWindow>

using orvtest::RecordedServices;
using orvtest::ShownBuilder;

namespace {

/// A shown builder whose drags are run by a script. T, with the selection, and WIDE, of ten rows of
/// which six are visible, lie clear of each other and of U.
class DragBuilder : public ShownBuilder {
public:
    using Script = std::function<Qt::DropAction(QDrag& drag)>;

    explicit DragBuilder(bool keepMeaning = false) : ShownBuilder(keepMeaning) {
        m_oldRunner = orv::setDragRunner([this](QDrag& drag) {
            ++drags;
            const Script script = m_script;
            return script ? script(drag) : Qt::IgnoreAction;
        });
        addTable(QStringLiteral("WIDE"));
        place("T", {20, 20});
        place("U", {200, 20});
        place("WIDE", {400, 30});
        area().selectObject(table("T"));
        changes = 0;
    }
    ~DragBuilder() { orv::setDragRunner(m_oldRunner); }
    DragBuilder(const DragBuilder&) = delete;
    DragBuilder& operator=(const DragBuilder&) = delete;

    void place(const QString& alias, const QPoint& at) const {
        TorvQDTable* box = table(alias);
        box->MoveTable(at.x() - box->Left, at.y() - box->Top);
    }
    /// Takes the row along; the script is what happens until the drag is over.
    void take(const QString& alias, const QString& field, Script script) {
        m_script = std::move(script);
        const QPoint from = rowTextOf(alias, field);
        press(from);
        moveTo(from + QPoint(0, QApplication::startDragDistance()));
        m_script = nullptr;
        leave();
    }
    /// The same with a drop on a place of the viewport.
    void takeTo(const QString& alias, const QString& field, const QPoint& to) {
        const QPoint from = rowTextOf(alias, field);
        take(alias, field, [this, from, to](QDrag& drag) {
            enter(from, drag.mimeData());
            over(to, drag.mimeData());
            return drop(to, drag.mimeData()) ? Qt::CopyAction : Qt::IgnoreAction;
        });
    }

    bool enter(const QPoint& point, const QMimeData* data) {
        leave();
        m_isInside = true;
        QDragEnterEvent event(inWindow(point).toPoint(), Qt::CopyAction, data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(builder.windowHandle(), &event);
        return over(point, data);  // the platform sends a move behind it
    }
    bool over(const QPoint& point, const QMimeData* data) {
        QDragMoveEvent event(inWindow(point).toPoint(), Qt::CopyAction, data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(builder.windowHandle(), &event);
        return event.isAccepted();
    }
    void leave() {
        if (!std::exchange(m_isInside, false)) return;
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(builder.windowHandle(), &event);
    }
    bool drop(const QPoint& point, const QMimeData* data) {
        if (!std::exchange(m_isInside, false)) {
            enter(point, data);
            m_isInside = false;
        }
        // Who drags would remove what is moved: it has to be told of a copy.
        QDropEvent event(inWindow(point), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton,
                         {});
        QCoreApplication::sendEvent(builder.windowHandle(), &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }

    int drags = 0;

private:
    QPointF inWindow(const QPoint& point) { return view()->mapTo(&builder, point); }

    Script m_script;
    bool m_isInside = false;
    orv::DragRunner m_oldRunner;
};

}  // namespace

class FieldDragTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- taking a row

    void rowIsTakenOnceTheHandHasGoneFarEnough() {
        const DragBuilder on;
        const QPoint from = on.rowTextOf("T", "B");
        on.press(from);
        on.moveTo(from + QPoint(QApplication::startDragDistance() - 1, 0));
        QCOMPARE(on.drags, 0);
        on.moveTo(from + QPoint(QApplication::startDragDistance() - 1, 1));
        QCOMPARE(on.drags, 1);
        on.moveTo(from + QPoint(60, 0));
        QCOMPARE(on.drags, 1);
        QVERIFY(!on.area().isGesturing());
        on.release(from + QPoint(60, 0));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 0);
    }

    void onlyAPressOnARowTakesOne() {
        const DragBuilder on;
        on.click(on.rowTextOf("T", "B"));  // it is the current one from now on
        for (const QPoint& from : {on.captionCheckOf("T"), QPoint(390, 5)}) {
            on.press(from);
            on.moveTo(on.rowTextOf("T", "B"));
            on.moveTo(on.rowTextOf("T", "B") + QPoint(20, 0));
            on.release(on.rowTextOf("T", "B") + QPoint(20, 0));
        }
        QCOMPARE(on.drags, 0);
    }

    void inputParameterIsNotTaken() {
        const DragBuilder on;
        on.row("T", "B")->ParamType = ptInput;
        on.drag(on.rowTextOf("T", "B"), {30, 0});
        QCOMPARE(on.drags, 0);
    }

    void dragSaysWhatItIsAbout() {
        DragBuilder on;
        QString text;
        std::optional<orv::DraggedField> field;
        on.take("T", "B", [&](QDrag& drag) {
            text = drag.mimeData()->text();
            field = orv::draggedField(drag.mimeData());
            return Qt::IgnoreAction;
        });
        QCOMPARE(text, "T.B");
        QVERIFY(field);
        QCOMPARE(field->alias, "T");
        QCOMPARE(field->field, "B");
        QCOMPARE(field->builder, on.area().dragIdentity());
    }

    void pictureIsThatOfACursorOrTheNameOfTheField() {
        DragBuilder on;
        const auto pictureOf = [&](const QString& alias, const QString& field) {
            QPixmap picture;
            on.take(alias, field, [&](QDrag& drag) {
                picture = drag.pixmap();
                return Qt::IgnoreAction;
            });
            return picture;
        };
        const QPixmap cursor = pictureOf("T", "B");
        // All of it is plate: where nothing mixes windows, what is transparent hides the rows.
        const QImage plate = cursor.toImage().convertToFormat(QImage::Format_ARGB32);
        for (const QPoint& corner :
             {QPoint(2, 2), QPoint(plate.width() - 3, 2), QPoint(2, plate.height() - 3)}) {
            QCOMPARE(plate.pixelColor(corner).alpha(), 255);
        }
        QCOMPARE(pictureOf("WIDE", "C").toImage(), cursor.toImage());
        on.builder.WorkAreaOptions->SetDragFieldName(true);
        const QPixmap name = pictureOf("T", "B");
        const QPixmap longer = pictureOf("WIDE", "C");
        const QFontMetrics metrics(on.area().GetFont());
        QVERIFY(name.width() >= metrics.horizontalAdvance("T.B"));
        QCOMPARE(longer.width() - name.width(),
                 metrics.horizontalAdvance("WIDE.C") - metrics.horizontalAdvance("T.B"));
        QCOMPARE(longer.height(), name.height());
    }

    // --- dropping it

    void dropOnARowOfAnotherBoxMakesALink_data() {
        QTest::addColumn<bool>("keepMeaning");
        QTest::addColumn<QPoint>("scroll");
        QTest::addColumn<qreal>("zoom");
        QTest::newRow("plain") << false << QPoint(0, 0) << 1.0;
        QTest::newRow("scrolled") << false << QPoint(15, 7) << 1.0;
        QTest::newRow("kept meaning") << true << QPoint(0, 0) << 1.0;
    }
    void dropOnARowOfAnotherBoxMakesALink() {
        QFETCH(bool, keepMeaning);
        QFETCH(QPoint, scroll);
        DragBuilder on(keepMeaning);
        on.scrollTo(scroll);
        on.takeTo("T", "B", on.rowTextOf("U", "X"));
        QCOMPARE(on.links(), QStringList("T.B=U.X"));
        QCOMPARE(on.area().selectedObject(), on.table("U"));
        QCOMPARE(on.stacking(), QStringList({"U", "T", "WIDE"}));
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.markedRow("U"));
        verifyBuilder(on.builder);
    }

    void magnifiedRowsTakeTheDrop() {
        DragBuilder on;
        on.area().setZoom(0.5);
        const QPoint from = on.area().toViewport(on.rowTextOf("T", "B"));
        const QPoint to = on.area().toViewport(on.rowTextOf("U", "X"));
        const auto old = orv::setDragRunner([&](QDrag& drag) {
            on.enter(to, drag.mimeData());
            return on.drop(to, drag.mimeData()) ? Qt::CopyAction : Qt::IgnoreAction;
        });
        on.press(from);
        on.moveTo(from + QPoint(0, 20));
        orv::setDragRunner(old);
        QCOMPARE(on.links(), QStringList("T.B=U.X"));
    }

    void joinThatIsThereKeepsItsFirstBox() {
        DragBuilder on;
        on.link("U", "A", "T", "A");
        on.takeTo("T", "B", on.rowTextOf("U", "X"));
        QCOMPARE(on.links(), QStringList({"U.A=T.A", "U.X=T.B"}));
        verifyBuilder(on.builder);
    }

    void boxIsSelectedByTheDropAndNotBefore() {
        DragBuilder on;
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(on.rowTextOf("U", "A"), drag.mimeData());
            on.over(on.rowTextOf("U", "X"), drag.mimeData());
            if (on.area().selectedObject() != on.table("T")) qWarning("selected too early");
            on.drop(on.rowTextOf("U", "X"), drag.mimeData());
            if (!on.links().isEmpty()) qWarning("linked inside the drop");
            return Qt::CopyAction;
        });
        QCOMPARE(on.area().selectedObject(), on.table("U"));
    }

    void dragThatIsGivenUpLeavesEverything() {
        DragBuilder on;
        const QStringList stacking = on.stacking();
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(on.rowTextOf("U", "X"), drag.mimeData());
            if (on.markedRow("U") != on.row("U", "X")) qWarning("not marked");
            on.leave();
            return Qt::IgnoreAction;
        });
        QCOMPARE(on.stacking(), stacking);
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(on.area().selectedObject(), on.table("T"));
        QVERIFY(!on.markedRow("U"));
        QCOMPARE(on.changes, 0);
    }

    void otherPlacesTakeNoDrop_data() {
        QTest::addColumn<QString>("place");
        for (const char* place : {"its own row", "another row of its box", "a linked row",
                                  "an input parameter", "a caption", "an edge", "nothing"}) {
            QTest::newRow(place) << QString(place);
        }
    }
    void otherPlacesTakeNoDrop() {
        QFETCH(QString, place);
        DragBuilder on;
        on.link("U", "Y", "T", "B");
        on.row("U", "X")->ParamType = ptInput;
        on.changes = 0;
        QPoint to(390, 5);
        if (place == "its own row") to = on.rowTextOf("T", "B");
        if (place == "another row of its box") to = on.rowTextOf("T", "D");
        if (place == "a linked row") to = on.rowTextOf("U", "Y");
        if (place == "an input parameter") to = on.rowTextOf("U", "X");
        if (place == "a caption") to = on.captionOf("U");
        if (place == "an edge") to = {201, 50};
        bool isTaken = true;
        on.take("T", "B", [&](QDrag& drag) {
            isTaken = on.enter(to, drag.mimeData());
            isTaken = on.drop(to, drag.mimeData()) || isTaken;
            return Qt::IgnoreAction;
        });
        QVERIFY(!isTaken);
        QCOMPARE(on.links(), QStringList("U.Y=T.B"));
        QCOMPARE(on.area().selectedObject(), on.table("T"));
        QCOMPARE(on.changes, 0);
    }

    void refusedLinkLeavesEverything() {
        DragBuilder on;
        QStringList asked;
        on.builder.OnAddRemoveLink = [&](QObject*, TorvQDLink* link, TAddRemove action, bool& can) {
            asked << (action == araAdd ? "+" : "-") + link->GetHint();
            can = false;
        };
        const QStringList stacking = on.stacking();
        on.takeTo("T", "B", on.rowTextOf("U", "X"));
        QCOMPARE(asked, QStringList("+T.B=U.X"));
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(on.stacking(), stacking);
        QCOMPARE(on.area().selectedObject(), on.table("T"));
        QCOMPARE(on.changes, 0);
        verifyBuilder(on.builder);
    }

    void fieldsOfAnotherBuilderAreRefused() {
        DragBuilder on;
        const auto data = orv::toMimeData({on.area().dragIdentity() + 1, "T", "B"});
        QVERIFY(!on.enter(on.rowTextOf("U", "X"), data.get()));
        QVERIFY(!on.drop(on.rowTextOf("U", "X"), data.get()));
        QCOMPARE(on.links(), QStringList());
        QVERIFY(!on.markedRow("U"));
    }

    void refusedEntryLeavesNoScrollingBehind() {
        DragBuilder on;
        const auto data = orv::toMimeData({on.area().dragIdentity() + 1, "T", "B"});
        on.enter({on.view()->width() - 5, 100}, data.get());
        on.area().timerFired(TorvQDWorkArea::edgeTimer);
        QCOMPARE(on.area().scrollPosition(), QPoint(0, 0));
        QVERIFY(!on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
    }

    void leavingEndsTheScrolling() {
        DragBuilder on;
        QMimeData data;
        data.setText("EMPLOYEE");
        on.builder.OnDragOver = [](QObject*, QObject*, int, int, bool& accept) { accept = true; };
        on.enter({on.view()->width() - 5, 100}, &data);
        QVERIFY(on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
        on.leave();
        QVERIFY(!on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
    }

    void fieldThatIsNotBeingDraggedIsRefused() {
        DragBuilder on;
        const auto data = orv::toMimeData({on.area().dragIdentity(), "T", "B"});
        QVERIFY(!on.enter(on.rowTextOf("U", "X"), data.get()));
        QVERIFY(!on.drop(on.rowTextOf("U", "X"), data.get()));
        on.takeTo("T", "C", on.rowTextOf("U", "A"));
        QVERIFY(!on.drop(on.rowTextOf("U", "X"), data.get()));  // the drag is over
        QCOMPARE(on.links(), QStringList("T.C=U.A"));
    }

    void rowIsMarkedWhereItWouldBeDropped() {
        DragBuilder on;
        QStringList wrong;
        on.take("T", "B", [&](QDrag& drag) {
            const QMimeData* data = drag.mimeData();
            on.enter(on.rowTextOf("U", "A"), data);
            if (on.markedRow("U") != on.row("U", "A")) wrong << "entered";
            on.over(on.rowTextOf("U", "X"), data);
            if (on.markedRow("U") != on.row("U", "X")) wrong << "another row";
            on.over(on.rowTextOf("WIDE", "C"), data);
            if (on.markedRow("U")) wrong << "box left";
            if (on.markedRow("WIDE") != on.row("WIDE", "C")) wrong << "another box";
            on.over(on.rowTextOf("T", "C"), data);
            if (on.markedRow("WIDE") || on.markedRow("T")) wrong << "own box";
            on.over(on.rowTextOf("WIDE", "C"), data);
            on.leave();
            if (on.markedRow("WIDE")) wrong << "left";
            return Qt::IgnoreAction;
        });
        QCOMPARE(wrong, QStringList());
    }

    // --- scrolling during the drag

    void rowsScrollWhileThePointerRestsAtAnEdgeOfTheList_data() {
        QTest::addColumn<bool>("atTop");
        QTest::addColumn<int>("distance");  // from the edge, into the list
        QTest::addColumn<bool>("scrolls");
        QTest::newRow("upper edge") << true << 0 << true;
        QTest::newRow("5 below the upper edge") << true << 5 << true;
        QTest::newRow("6 below the upper edge") << true << 6 << false;
        QTest::newRow("5 above the upper edge") << true << -5 << true;
        QTest::newRow("6 above the upper edge") << true << -6 << false;
        QTest::newRow("lower edge") << false << 1 << true;
        QTest::newRow("5 above the lower edge") << false << 5 << true;
        QTest::newRow("6 above the lower edge") << false << 6 << false;
    }
    void rowsScrollWhileThePointerRestsAtAnEdgeOfTheList() {
        QFETCH(bool, atTop);
        QFETCH(int, distance);
        QFETCH(bool, scrolls);
        DragBuilder on;
        TorvQDTable* box = on.table("WIDE");
        box->SetFirstVisibleItem(2);
        const TRect list = box->GetClientRect();
        const QPoint point(list.Left + 40, atTop ? list.Top + distance : list.Bottom - distance);
        QList<int> first;
        bool isActive = false;
        const int timer = atTop ? TorvQDWorkArea::rowsUpTimer : TorvQDWorkArea::rowsDownTimer;
        const int other = atTop ? TorvQDWorkArea::rowsDownTimer : TorvQDWorkArea::rowsUpTimer;
        bool otherIsActive = false;
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(point, drag.mimeData());
            isActive = on.area().isTimerActive(timer);
            otherIsActive = on.area().isTimerActive(other);
            for (int tick = 0; isActive && tick < 3; ++tick) {
                on.area().timerFired(timer);
                first << box->FirstVisibleItem;
            }
            return Qt::IgnoreAction;
        });
        QCOMPARE(isActive, scrolls);
        QVERIFY(!otherIsActive);
        const QList<int> expected = atTop ? QList<int>({1, 0, 0}) : QList<int>({3, 4, 4});
        QCOMPARE(first, scrolls ? expected : QList<int>());
        QVERIFY(!on.area().isTimerActive(timer));
        QCOMPARE(on.area().selectedObject(), on.table("T"));
    }

    // Five rows a second, and the view in steps of a twentieth of a second.
    void scrollingHasItsPace() {
        DragBuilder on;
        TorvQDTable* box = on.table("WIDE");
        box->SetFirstVisibleItem(2);
        const TRect list = box->GetClientRect();
        QList<QList<int>> intervals;
        on.take("T", "B", [&](QDrag& drag) {
            for (const QPoint& point :
                 {QPoint(list.Left + 40, list.Top + 3), QPoint(list.Left + 40, list.Bottom - 3),
                  QPoint(on.view()->width() - 5, 300)}) {
                on.enter(point, drag.mimeData());
                intervals << on.timerIntervals();
            }
            return Qt::IgnoreAction;
        });
        QCOMPARE(intervals, QList<QList<int>>({{200}, {200}, {50}}));
    }

    void rowsStandStillOnceThePointerHasMoved() {
        DragBuilder on;
        TorvQDTable* box = on.table("WIDE");
        const TRect list = box->GetClientRect();
        const QPoint point(list.Left + 40, list.Bottom - 3);
        bool isActive = true;
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(point, drag.mimeData());
            on.over(point - QPoint(0, 30), drag.mimeData());
            on.area().timerFired(TorvQDWorkArea::rowsDownTimer);
            isActive = on.area().isTimerActive(TorvQDWorkArea::rowsDownTimer);
            return Qt::IgnoreAction;
        });
        QVERIFY(!isActive);
        QCOMPARE(box->FirstVisibleItem, 0);
    }

    void rowsStandStillOnceTheViewHasScrolled() {
        DragBuilder on;
        TorvQDTable* box = on.table("WIDE");
        const TRect list = box->GetClientRect();
        on.take("T", "B", [&](QDrag& drag) {
            on.enter({list.Left + 40, list.Bottom - 3}, drag.mimeData());
            on.scrollTo({0, 5});
            on.area().timerFired(TorvQDWorkArea::rowsDownTimer);
            return Qt::IgnoreAction;
        });
        QCOMPARE(box->FirstVisibleItem, 0);
    }

    void markFollowsTheScrolledRows() {
        DragBuilder on;
        TorvQDTable* box = on.table("WIDE");
        const TRect list = box->GetClientRect();
        const QPoint point(list.Left + 40, list.Bottom - 3);
        TorvQDListItem* before = nullptr;
        TorvQDListItem* after = nullptr;
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(point, drag.mimeData());
            before = on.markedRow("WIDE");
            on.area().timerFired(TorvQDWorkArea::rowsDownTimer);
            after = on.markedRow("WIDE");
            return on.drop(point, drag.mimeData()) ? Qt::CopyAction : Qt::IgnoreAction;
        });
        QCOMPARE(before, on.row("WIDE", "F"));
        QCOMPARE(after, on.row("WIDE", "G"));
        QCOMPARE(on.links(), QStringList("T.B=WIDE.G"));
    }

    void markFollowsTheScrolledView() {
        DragBuilder on;
        on.place("WIDE", {on.view()->width() - 40, 30});
        const QPoint edge(on.view()->width() - 5, on.rowTextOf("WIDE", "C").y());
        on.place("U", {on.view()->width() + 5, 30});
        on.area().TableToFront(on.table("WIDE"));
        TorvQDListItem* before = nullptr;
        TorvQDListItem* after = nullptr;
        TorvQDListItem* left = nullptr;
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(edge, drag.mimeData());
            before = on.markedRow("WIDE");
            on.area().scrollBy(20, 0);
            after = on.markedRow("WIDE");
            on.area().scrollBy(100, 0);
            left = on.markedRow("WIDE");
            return Qt::IgnoreAction;
        });
        QCOMPARE(before, on.row("WIDE", "C"));
        QCOMPARE(after, on.row("WIDE", "C"));
        QCOMPARE(left, nullptr);
    }

    void viewScrollsAtItsEdgeUntilTheDragIsOver() {
        DragBuilder on;
        const QPoint edge(on.view()->width() - 5, 100);
        QPoint scrolled;
        on.take("T", "B", [&](QDrag& drag) {
            on.enter(edge, drag.mimeData());
            on.area().timerFired(TorvQDWorkArea::edgeTimer);
            scrolled = on.area().scrollPosition();
            on.leave();
            on.area().timerFired(TorvQDWorkArea::edgeTimer);
            return Qt::IgnoreAction;
        });
        QCOMPARE(scrolled, QPoint(20, 0));
        on.area().timerFired(TorvQDWorkArea::edgeTimer);
        QCOMPARE(on.area().scrollPosition(), QPoint(20, 0));
    }

    // --- what may happen meanwhile

    void boxesMayGoDuringTheDrag_data() {
        QTest::addColumn<QString>("what");
        for (const char* what : {"source", "target", "all"}) QTest::newRow(what) << QString(what);
    }
    void boxesMayGoDuringTheDrag() {
        QFETCH(QString, what);
        DragBuilder on;
        on.take("T", "B", [&](QDrag& drag) {
            const QPoint to = on.rowTextOf("U", "X");
            on.enter(to, drag.mimeData());
            if (what == "source") on.table("T")->CloseTable();
            if (what == "target") on.table("U")->CloseTable();
            if (what == "all") on.builder.Clear();
            QCoreApplication::processEvents();
            on.over(to + QPoint(1, 0), drag.mimeData());
            on.drop(to, drag.mimeData());
            return Qt::CopyAction;
        });
        QCOMPARE(on.links(), QStringList());
        QVERIFY(!on.area().isGesturing());
        verifyBuilder(on.builder);
    }

    void boxMayGoBetweenTheDropAndItsEffect() {
        DragBuilder on;
        on.take("T", "B", [&](QDrag& drag) {
            const QPoint to = on.rowTextOf("U", "X");
            on.enter(to, drag.mimeData());
            on.drop(to, drag.mimeData());
            on.table("U")->CloseTable();
            QCoreApplication::processEvents();
            return Qt::CopyAction;
        });
        QCOMPARE(on.links(), QStringList());
        verifyBuilder(on.builder);
    }

    void builderMayDieDuringTheDrag() {
        auto on = std::make_unique<ShownBuilder>();
        int ended = 0;
        on->builder.OnEndDrag = [&](QObject*, QObject*, int, int) { ++ended; };
        const auto old = orv::setDragRunner([&](QDrag&) {
            on.reset();
            return Qt::CopyAction;
        });
        const QPoint from = on->rowTextOf("T", "B");
        on->press(from);
        on->moveTo(from + QPoint(0, QApplication::startDragDistance()));
        orv::setDragRunner(old);
        QVERIFY(!on);
        QCOMPARE(ended, 0);
    }

    void errorOfTheHostGoesToTheHandler() {
        RecordedServices services;
        DragBuilder on;
        int ended = 0;
        on.builder.OnEndDrag = [&](QObject*, QObject*, int, int) { ++ended; };
        on.builder.OnAddRemoveLink = [](QObject*, TorvQDLink*, TAddRemove, bool&) {
            throw orv::Error(QStringLiteral("host"));
        };
        on.takeTo("T", "B", on.rowTextOf("U", "X"));
        QCOMPARE(services.errors, QStringList("host"));
        QCOMPARE(on.links(), QStringList());
        QCOMPARE(ended, 1);
        QCOMPARE(on.changes, 0);
    }

    // --- what the host is told

    void hostIsToldOfTheDrag() {
        DragBuilder on;
        QStringList told;
        on.builder.OnStartDrag = [&](QObject* sender, const orv::DraggedField& field) {
            if (sender == &on.builder) told << "start " + field.qualifiedName();
        };
        on.builder.OnEndDrag = [&](QObject* sender, QObject* target, int x, int y) {
            const QString name = target == &on.area() ? "area" : target ? "other" : "none";
            if (sender != &on.builder) return;
            told << QStringLiteral("end %1 %2 %3 links %4")
                        .arg(name)
                        .arg(x)
                        .arg(y)
                        .arg(on.links().size());
        };
        const QPoint to = on.rowTextOf("U", "X");
        on.takeTo("T", "B", to);
        on.take("T", "C", [&](QDrag&) {
            told << "dragging";
            return Qt::IgnoreAction;
        });
        QCOMPARE(told,
                 QStringList({"start T.B",
                              QStringLiteral("end area %1 %2 links 1").arg(to.x()).arg(to.y()),
                              "start T.C", "dragging", "end none 0 0 links 1"}));
    }

    void hostDecidesWhatElseIsDroppedOnTheDiagram() {
        DragBuilder on;
        QMimeData data;
        data.setText("EMPLOYEE");
        QStringList told;
        on.builder.OnDragOver = [&](QObject* sender, QObject* source, int x, int y, bool& accept) {
            told << QStringLiteral("over %1 %2 %3")
                        .arg(x)
                        .arg(y)
                        .arg(on.builder.DragMimeData()->text());
            accept = sender == &on.builder && !source && x > 300;
        };
        on.builder.OnDragDrop = [&](QObject* sender, QObject* source, int x, int y) {
            told << QStringLiteral("drop %1 %2 %3")
                        .arg(x)
                        .arg(y)
                        .arg(on.builder.DragMimeData()->text());
            if (sender == &on.builder && !source) on.addTable(on.builder.DragMimeData()->text());
        };
        QVERIFY(!on.enter({250, 150}, &data));
        QVERIFY(on.over({320, 150}, &data));
        QVERIFY(!on.builder.DragMimeData());
        told.clear();
        on.over({330, 150}, &data);
        on.drop({340, 150}, &data);
        QCOMPARE(told, QStringList({"over 330 150 EMPLOYEE", "drop 340 150 EMPLOYEE"}));
        QVERIFY(!on.builder.DragMimeData());
        QVERIFY(on.table("EMPLOYEE"));
        QVERIFY(!on.area().isTimerActive(TorvQDWorkArea::rowsUpTimer));
        verifyBuilder(on.builder);
    }

    void nothingElseIsTakenWithoutAHandler() {
        DragBuilder on;
        QMimeData data;
        data.setText("EMPLOYEE");
        QVERIFY(!on.enter({320, 150}, &data));
    }

    void droppedThingsLeaveNoScrollingBehind() {
        DragBuilder on;
        QMimeData data;
        data.setText("EMPLOYEE");
        on.builder.OnDragOver = [](QObject*, QObject*, int, int, bool& accept) { accept = true; };
        const QPoint edge(on.view()->width() - 5, 100);
        on.enter(edge, &data);
        QVERIFY(on.area().isTimerActive(TorvQDWorkArea::edgeTimer));
        on.drop(edge, &data);
        on.area().timerFired(TorvQDWorkArea::edgeTimer);
        QCOMPARE(on.area().scrollPosition(), QPoint(0, 0));
    }
};

QTEST_MAIN(FieldDragTest)
#include "tst_fielddrag.moc"
