// SPDX-License-Identifier: MIT
// Drags in the selection grid: of its rows, and of fields of the diagram into it.
#include "data/DraggedField.h"
#include "support/ShownGrid.h"

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>

using orvtest::ShownGrid;

namespace {

const QStringList firstColumns = {"A||T.A", "B||T.B", "X||U.X"};

/// A grid with a hand that drags in it.
class DragGrid : public ShownGrid {
public:
    [[nodiscard]] QWidget* cells() const { return grid()->viewport(); }
    /// The rows' sources in one line.
    [[nodiscard]] QString sources() const {
        QStringList texts;
        for (const orv::OutputColumn& column : grid()->columns()) texts << column.source;
        return texts.join(u' ');
    }

    // --- rows, with the left button

    void pressAt(const QPoint& point) const {
        QTest::mousePress(cells(), Qt::LeftButton, {}, point);
    }
    void moveTo(const QPoint& point, Qt::MouseButtons held = Qt::LeftButton) const {
        QMouseEvent event(QEvent::MouseMove, point, cells()->mapToGlobal(point), Qt::NoButton, held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(cells(), &event);
    }
    void releaseAt(const QPoint& point) const {
        QTest::mouseRelease(cells(), Qt::LeftButton, {}, point);
    }
    void dragRow(int from, int to) const {
        pressAt(centreOf(0, from));
        moveTo(centreOf(0, to));
        releaseAt(centreOf(0, to));
    }

    // --- fields, as they come from a diagram

    [[nodiscard]] std::unique_ptr<QMimeData> field(const QString& alias, const QString& name,
                                                   quint64 of = 0) const {
        return orv::toMimeData({of == 0 ? builder.dragIdentity() : of, alias, name});
    }
    bool comeIn(const QMimeData* data, const QPoint& point) const {
        QDragEnterEvent event(point, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        return send(event);
    }
    bool over(const QMimeData* data, const QPoint& point) const {
        QDragMoveEvent event(point, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        return send(event);
    }
    bool drop(const QMimeData* data, const QPoint& point) const {
        QDropEvent event(point, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        return send(event) && event.dropAction() == Qt::CopyAction;
    }
    /// The whole drag; what it does happens when it is over.
    bool dropField(const QString& alias, const QString& name, const QPoint& point) const {
        const auto data = field(alias, name);
        if (!comeIn(data.get(), point) || !over(data.get(), point)) return false;
        const bool isTaken = drop(data.get(), point);
        QCoreApplication::processEvents();
        return isTaken;
    }

    /// The colour of a pixel of the cells as they are painted now.
    [[nodiscard]] QColor pixel(const QPoint& point) const {
        return cells()->grab().toImage().pixelColor(point);
    }
    [[nodiscard]] QColor markColor() const { return grid()->palette().color(QPalette::Highlight); }

private:
    template <typename Event>
    bool send(Event& event) const {
        event.setAccepted(!event.isAccepted());
        QCoreApplication::sendEvent(cells(), &event);
        return event.isAccepted();
    }
};

}  // namespace

class SelectDragTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- rows

    void rowGoesToTheRowWhereItIsDropped_data() {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("after");
        QTest::newRow("to the end") << 1 << 3 << "T.B U.X T.A";
        QTest::newRow("to the start") << 3 << 1 << "U.X T.A T.B";
        QTest::newRow("one down") << 1 << 2 << "T.B T.A U.X";
        QTest::newRow("one up") << 3 << 2 << "T.A U.X T.B";
        QTest::newRow("onto itself") << 2 << 2 << "T.A T.B U.X";
        QTest::newRow("onto the last row") << 1 << 4 << "T.A T.B U.X";
        QTest::newRow("the last row") << 4 << 1 << "T.A T.B U.X";
    }
    void rowGoesToTheRowWhereItIsDropped() {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QString, after);
        const DragGrid on;
        on.dragRow(from, to);
        const bool isMoved = after != "T.A T.B U.X";
        QCOMPARE(on.sources(), after);
        QCOMPARE(on.changes, isMoved ? 1 : 0);
        QCOMPARE(on.told, QStringList());
        if (isMoved) QCOMPARE(on.current(), QStringLiteral("0,%1").arg(to));
        QCOMPARE(on.cell(2, 1).data().toString(), after.section(' ', 0, 0));
    }

    void onePixelBeginsTheDrag() {
        const DragGrid on;
        const QPoint second = on.grid()->visualRect(on.cell(0, 2)).topLeft() + QPoint(3, 0);
        const QPoint first = second - QPoint(0, 1);
        QCOMPARE(on.grid()->rowAt(first.y()), 0);
        on.pressAt(first);
        on.moveTo(first);
        on.releaseAt(first);
        QCOMPARE(on.sources(), "T.A T.B U.X");
        on.pressAt(first);
        on.moveTo(second);
        on.releaseAt(second);
        QCOMPARE(on.sources(), "T.B T.A U.X");
    }

    void dragEndsWithoutAMove_data() {
        QTest::addColumn<QString>("end");
        for (const char* end : {"escape", "other button", "focus", "hidden", "row is gone"}) {
            QTest::addRow("%s", end) << end;
        }
    }
    void dragEndsWithoutAMove() {
        QFETCH(QString, end);
        DragGrid on;
        on.pressAt(on.centreOf(0, 1));
        on.moveTo(on.centreOf(0, 3));
        if (end == "escape") on.press(Qt::Key_Escape);
        if (end == "other button") on.moveTo(on.centreOf(0, 3), Qt::RightButton);
        if (end == "focus") on.builder.WorkArea->setFocus();
        if (end == "hidden") {
            on.builder.PageCtrl->setCurrentIndex(0);
            on.builder.PageCtrl->setCurrentIndex(1);
        }
        if (end == "row is gone") on.tick("T", "A", false);
        const QStringList before = on.columns();
        on.releaseAt(on.centreOf(0, 2));
        QCOMPARE(on.columns(), before);
        QCOMPARE(on.changes, end == "row is gone" ? 1 : 0);
    }

    void rightButtonDragsNothing() {
        const DragGrid on;
        QTest::mousePress(on.cells(), Qt::RightButton, {}, on.centreOf(0, 1));
        on.moveTo(on.centreOf(0, 3), Qt::RightButton);
        QTest::mouseRelease(on.cells(), Qt::RightButton, {}, on.centreOf(0, 3));
        QCOMPARE(on.columns(), firstColumns);
    }

    void onlyTheLeftButtonsReleaseDrops() {
        const DragGrid on;
        const QString before = on.sources();
        on.pressAt(on.centreOf(0, 1));
        on.moveTo(on.centreOf(0, 3));
        QTest::mouseRelease(on.cells(), Qt::RightButton, {}, on.centreOf(0, 3));
        QCOMPARE(on.sources(), before);
        // Nor does one without a move.
        on.pressAt(on.centreOf(0, 1));
        on.releaseAt(on.centreOf(0, 3));
        QCOMPARE(on.sources(), before);
    }

    void lineShowsWhereTheRowWillGo() {
        const DragGrid on;
        const auto edgeBelow = [&](int row) {
            const QRect cell = on.grid()->visualRect(on.cell(0, row));
            return QPoint(cell.center().x(), cell.bottom() + 1);
        };
        on.pressAt(on.centreOf(0, 2));
        on.moveTo(on.centreOf(0, 2) + QPoint(2, 0));
        QVERIFY(on.pixel(edgeBelow(3)) != on.markColor());
        on.moveTo(on.centreOf(0, 3));
        QCOMPARE(on.pixel(edgeBelow(3)), on.markColor());
        on.moveTo(on.centreOf(0, 1));
        QVERIFY(on.pixel(edgeBelow(3)) != on.markColor());
        QCOMPARE(on.pixel(QPoint(edgeBelow(1).x(), 0)), on.markColor());
        on.moveTo(on.centreOf(0, 4));
        QVERIFY(on.pixel(QPoint(edgeBelow(1).x(), 0)) != on.markColor());
        on.releaseAt(on.centreOf(0, 4));
        QCOMPARE(on.columns(), firstColumns);
    }

    void keysMoveTheRow() {
        const DragGrid on;
        on.go(1, 1);
        on.press(Qt::Key_Down, Qt::AltModifier);
        QCOMPARE(on.sources(), "T.B T.A U.X");
        QCOMPARE(on.current(), "1,2");
        on.press(Qt::Key_Down, Qt::AltModifier);
        on.press(Qt::Key_Down, Qt::AltModifier);  // nothing at the end
        QCOMPARE(on.sources(), "T.B U.X T.A");
        QCOMPARE(on.current(), "1,3");
        QCOMPARE(on.changes, 2);
        on.press(Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(on.sources(), "T.B T.A U.X");
        on.go(0, 4);
        on.press(Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(on.sources(), "T.B T.A U.X");
        QCOMPARE(on.changes, 3);
        QCOMPARE(on.told, QStringList());
    }

    void sortLinesKeepTheirRows() {
        DragGrid on;
        on.builder.LoadSQL("select t.a x, t.b x, t.c from t order by t.b");
        QVERIFY(on.builder.GetSQLStatment().endsWith("T.B"));
        on.dragRow(2, 1);
        QCOMPARE(on.sources(), "T.B T.A T.C");
        QVERIFY(on.builder.GetSQLStatment().endsWith("T.B"));
        on.enter(1, 1, "SUM");
        QCOMPARE(on.builder.OrderPanel->GetSQLStatment(), "1");
        on.dragRow(1, 3);
        QCOMPARE(on.builder.OrderPanel->GetSQLStatment(), "3");
    }

    // --- fields

    void fieldReplacesARow() {
        const DragGrid on;
        QVERIFY(on.dropField("U", "Y", on.centreOf(0, 2)));
        QCOMPARE(on.columns(), QStringList({"A||T.A", "Y||U.Y", "X||U.X"}));
        QCOMPARE(on.told, QStringList({"-T.B", "+U.Y"}));
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.isTicked("T", "B"));
        QVERIFY(on.isTicked("U", "Y"));
    }

    void fieldReplacesNameAndAggregateToo() {
        const DragGrid on;
        on.enter(1, 2, "SUM");
        on.enter(0, 2, "MINE");
        QVERIFY(on.dropField("T", "C", on.centreOf(1, 2)));
        QCOMPARE(on.columns()[1], "C||T.C");
    }

    void fieldOnTheLastRowIsAppended_data() {
        QTest::addColumn<bool>("below");
        QTest::newRow("on the row") << false;
        QTest::newRow("below all rows") << true;
    }
    void fieldOnTheLastRowIsAppended() {
        QFETCH(bool, below);
        DragGrid on;
        const QPoint point = below ? QPoint(20, on.cells()->height() - 20) : on.centreOf(2, 4);
        QVERIFY(on.dropField("U", "Y", point));
        QCOMPARE(on.columns(), firstColumns + QStringList("Y||U.Y"));
        QCOMPARE(on.told, QStringList("+U.Y"));
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.current(), "2,4");
        verifyBuilder(on.builder);
    }

    void fieldIsMarkedWhereItWouldGo() {
        const DragGrid on;
        const auto data = on.field("U", "Y");
        const QRect row = on.grid()->visualRect(on.cell(0, 2));
        const QPoint edge(row.left(), row.center().y());
        QVERIFY(on.comeIn(data.get(), on.centreOf(0, 2)));
        QCOMPARE(on.pixel(edge), on.markColor());
        QVERIFY(on.over(data.get(), on.centreOf(0, 3)));
        QVERIFY(on.pixel(edge) != on.markColor());
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(on.cells(), &leave);
        const QRect third = on.grid()->visualRect(on.cell(0, 3));
        QVERIFY(on.pixel({third.left(), third.center().y()}) != on.markColor());
    }

    void otherThingsAreRefused_data() {
        QTest::addColumn<QString>("what");
        for (const char* what :
             {"another builder", "unknown field", "gone box", "text", "nothing"}) {
            QTest::addRow("%s", what) << what;
        }
    }
    void otherThingsAreRefused() {
        QFETCH(QString, what);
        DragGrid on;
        auto data = on.field("T", "C");
        if (what == "another builder") data = on.field("T", "C", on.builder.dragIdentity() + 1);
        if (what == "unknown field") data = on.field("T", "NONE");
        if (what == "gone box") {
            data = on.field("U", "Y");
            on.builder.ListOfTables->DeleteTable(on.table("U"));
        }
        if (what == "text") {
            data = std::make_unique<QMimeData>();
            data->setText("T.C");
        }
        if (what == "nothing") data = std::make_unique<QMimeData>();
        const QStringList before = on.columns();
        const QPoint point = on.centreOf(0, 1);
        QVERIFY(!on.comeIn(data.get(), point));
        bool accepted = true;
        on.grid()->_DragOver(nullptr, data.get(), point.x(), point.y(), accepted);
        QVERIFY(!accepted);
        on.grid()->_DragDrop(nullptr, point.x(), point.y());
        QCoreApplication::processEvents();
        QCOMPARE(on.columns(), before);
    }

    void headerTakesNothing() {
        const DragGrid on;
        const auto data = on.field("U", "Y");
        bool accepted = true;
        on.grid()->_DragOver(nullptr, data.get(), 5, -3, accepted);
        QVERIFY(!accepted);
        on.grid()->_DragDrop(nullptr, 5, -3);
        QCoreApplication::processEvents();
        QCOMPARE(on.columns(), firstColumns);
        QVERIFY(!on.grid()->horizontalHeader()->viewport()->acceptDrops());
        QVERIFY(!on.grid()->acceptDrops());
    }

    void namedFunctionsDragRowsAndFields() {
        const DragGrid on;
        const QPoint second = on.centreOf(0, 2);
        bool accepted = true;
        on.grid()->_DragOver(on.grid(), nullptr, second.x(), second.y(), accepted);
        QVERIFY(!accepted);  // no row is being dragged
        const auto data = on.field("T", "E");
        on.grid()->_DragOver(on.builder.WorkArea, data.get(), second.x(), second.y(), accepted);
        QVERIFY(accepted);
        on.grid()->_DragDrop(on.builder.WorkArea, second.x(), second.y());
        QCOMPARE(on.columns(), firstColumns);  // not in the middle of the drag
        QCoreApplication::processEvents();
        QCOMPARE(on.sources(), "T.A T.E U.X");
    }

    void dropIsLookedAtAgainWhenTheDragIsOver_data() {
        QTest::addColumn<QString>("meanwhile");
        QTest::addColumn<QString>("after");
        QTest::newRow("row above goes") << "row above"
                                        << "U.Y U.X";
        QTest::newRow("row goes") << "row"
                                  << "T.A U.X";
        QTest::newRow("box goes") << "box"
                                  << "T.A T.B";
        QTest::newRow("cleared") << "clear"
                                 << "";
    }
    void dropIsLookedAtAgainWhenTheDragIsOver() {
        QFETCH(QString, meanwhile);
        QFETCH(QString, after);
        DragGrid on;
        const auto data = on.field("U", "Y");
        QVERIFY(on.comeIn(data.get(), on.centreOf(0, 2)));
        QVERIFY(on.drop(data.get(), on.centreOf(0, 2)));
        if (meanwhile == "row above") on.tick("T", "A", false);
        if (meanwhile == "row") on.tick("T", "B", false);
        if (meanwhile == "box") on.builder.ListOfTables->DeleteTable(on.table("U"));
        if (meanwhile == "clear") on.builder.Clear();
        QCoreApplication::processEvents();
        QCOMPARE(on.sources(), after);
    }

    void builderMayDieBeforeTheDropIsDone() {
        auto on = std::make_unique<DragGrid>();
        const auto data = on->field("U", "Y");
        QVERIFY(on->comeIn(data.get(), on->centreOf(0, 2)));
        QVERIFY(on->drop(data.get(), on->centreOf(0, 2)));
        on.reset();
        QCoreApplication::processEvents();
    }

    void builderMayDieInTheDrop() {
        orvtest::RecordedServices services;
        auto on = std::make_unique<DragGrid>();
        QObject::connect(&on->builder, &TorvQueryBuilder::StatementChanged, qApp,
                         [&] { on.reset(); });
        const auto data = on->field("U", "Y");
        QVERIFY(on->comeIn(data.get(), on->centreOf(0, 2)));
        QVERIFY(on->drop(data.get(), on->centreOf(0, 2)));
        QCoreApplication::processEvents();
        QVERIFY(!on);
        QCOMPARE(services.errors, QStringList());
    }

    void builderMayDieWhenARowWasMoved() {
        auto on = std::make_unique<DragGrid>();
        TorvQDSelectGrid* grid = on->grid();
        QObject::connect(&on->builder, &TorvQueryBuilder::StatementChanged, qApp,
                         [&] { on.reset(); });
        grid->moveRow(1, 2);
        QVERIFY(!on);
    }

    void openEditorIsTakenOverBeforeTheDrop() {
        const DragGrid on;
        on.type(0, 1, "MINE");
        QVERIFY(on.dropField("U", "Y", on.centreOf(0, 2)));
        QCOMPARE(on.columns(), QStringList({"MINE||T.A", "Y||U.Y", "X||U.X"}));
    }

    void moveOfUnknownRowsDoesNothing() {
        const DragGrid on;
        for (const int row : {-1, 0, 4, 5, 99}) {
            on.grid()->moveRow(1, row);
            on.grid()->moveRow(row, 1);
        }
        on.grid()->moveRow(2, 2);
        QCOMPARE(on.columns(), firstColumns);
        QCOMPARE(on.changes, 0);
    }
};

QTEST_MAIN(SelectDragTest)
#include "tst_selectdrag.moc"
