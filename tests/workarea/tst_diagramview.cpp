// SPDX-License-Identifier: MIT
// The view of the diagram: the wheel, panning, magnification, and what all boxes undergo at once.
#include "support/ShownBuilder.h"

#include <QClipboard>
#include <QGuiApplication>

using orvtest::ShownBuilder;

namespace {

/// A shown builder with a box of ten rows, of which it shows six: 100 wide and 128 high, at
/// (200, 60), selected.
class ViewedBuilder : public ShownBuilder {
public:
    explicit ViewedBuilder(bool keepMeaning = false) : ShownBuilder(keepMeaning) {
        addTable(QStringLiteral("WIDE"));
        box()->MoveTable(200 - box()->Left, 60 - box()->Top);
        changes = 0;
    }
    TorvQDTable* box() const { return table(QStringLiteral("WIDE")); }
    QPoint toViewport(const QPoint& viewPoint) const { return area().toViewport(viewPoint); }
    QPoint boxPlace() const { return {box()->Left, box()->Top}; }
    QString statement() { return builder.GetSQLStatment(); }

    static void middle(QEvent::Type type, QWidget* view, const QPoint& point) {
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(
            type, point, view->mapToGlobal(point), isMove ? Qt::NoButton : Qt::MiddleButton,
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MiddleButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    }
};

}  // namespace

class DiagramViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the wheel

    void wheelOverTheRowsScrollsThem() {
        const ViewedBuilder on;
        const QPoint point = on.rowTextOf("WIDE", "C");
        on.wheel(point, -120);
        QCOMPARE(on.box()->FirstVisibleItem, 3);
        on.wheel(point, -120);
        QCOMPARE(on.box()->FirstVisibleItem, 4);
        on.wheel(point, 120);
        QCOMPARE(on.box()->FirstVisibleItem, 1);
        QCOMPARE(on.area().scrollPosition(), QPoint(0, 0));
        QCOMPARE(on.changes, 0);
    }

    void smallTurnsOfTheWheelAddUp() {
        const ViewedBuilder on;
        const QPoint point = on.rowTextOf("WIDE", "C");
        on.wheel(point, -20);
        QCOMPARE(on.box()->FirstVisibleItem, 0);
        on.wheel(point, -20);
        QCOMPARE(on.box()->FirstVisibleItem, 1);
    }

    void wheelElsewhereScrollsTheView_data() {
        QTest::addColumn<QPoint>("point");
        QTest::newRow("caption") << QPoint(240, 70);
        QTest::newRow("edge") << QPoint(201, 100);
        QTest::newRow("nothing") << QPoint(500, 200);
        QTest::newRow("box that shows all its rows") << QPoint(-1, -1);
    }
    void wheelElsewhereScrollsTheView() {
        QFETCH(QPoint, point);
        const ViewedBuilder on;
        on.wheel(point.x() < 0 ? on.rowTextOf("T", "A") : point, -120);
        QVERIFY(on.area().verticalScrollBar()->value() > 0);
        QCOMPARE(on.area().horizontalScrollBar()->value(), 0);
        QCOMPARE(on.box()->FirstVisibleItem, 0);
        QCOMPARE(on.table("T")->FirstVisibleItem, 0);
    }

    void arrowsOfTheScrollBarsMoveAStep() {
        const ViewedBuilder on;
        for (QScrollBar* bar : {on.area().horizontalScrollBar(), on.area().verticalScrollBar()}) {
            bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
            QCOMPARE(bar->value(), 20);
        }
    }

    void wheelWithShiftScrollsSideways() {
        const ViewedBuilder on;
        on.wheel(on.rowTextOf("WIDE", "C"), -120, Qt::ShiftModifier);
        QVERIFY(on.area().horizontalScrollBar()->value() > 0);
        QCOMPARE(on.area().verticalScrollBar()->value(), 0);
        QCOMPARE(on.box()->FirstVisibleItem, 0);
    }

    void wheelWithControlMagnifiesAroundThePointer() {
        const ViewedBuilder on;
        on.scrollTo({300, 200});
        const QPoint pointer(250, 100);
        const auto under = [&] {
            return QPointF(on.area().scrollPosition()) + QPointF(pointer) / on.area().zoom();
        };
        const QPointF before = under();
        on.wheel(pointer, 120, Qt::ControlModifier);
        QCOMPARE(on.area().zoom(), 1.25);
        QVERIFY((under() - before).manhattanLength() <= 1);
        on.wheel(pointer, 240, Qt::ControlModifier);
        QCOMPARE(on.area().zoom(), 1.25 * 1.25 * 1.25);
        QVERIFY((under() - before).manhattanLength() <= 2);
        on.wheel(pointer, -360, Qt::ControlModifier);
        QCOMPARE(on.area().zoom(), 1.0);
        QCOMPARE(on.box()->FirstVisibleItem, 0);
    }

    // --- panning

    void middleButtonDragsTheView() {
        const ViewedBuilder on;
        on.scrollTo({100, 80});
        const QPoint from = on.captionOf("WIDE");
        ViewedBuilder::middle(QEvent::MouseButtonPress, on.view(), from);
        QVERIFY(on.area().isGesturing());
        QCOMPARE(on.view()->cursor().shape(), Qt::ClosedHandCursor);
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), from - QPoint(30, 20));
        QCOMPARE(on.area().scrollPosition(), QPoint(130, 100));
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), from + QPoint(500, 500));
        QCOMPARE(on.area().scrollPosition(), QPoint(0, 0));
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), from - QPoint(10, 10));
        QCOMPARE(on.area().scrollPosition(), QPoint(110, 90));
        ViewedBuilder::middle(QEvent::MouseButtonRelease, on.view(), from - QPoint(10, 10));
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.boxPlace(), QPoint(200, 60));
        on.hover({500, 200});
        QCOMPARE(on.area().scrollPosition(), QPoint(110, 90));
        QCOMPARE(on.changes, 0);
    }

    void panningGivesUpWhatTheLeftButtonDoes() {
        const ViewedBuilder on;
        const QPoint from = on.captionOf("WIDE");
        on.press(from);
        on.moveTo(from + QPoint(20, 20));
        ViewedBuilder::middle(QEvent::MouseButtonPress, on.view(), from);
        QCOMPARE(on.boxPlace(), QPoint(200, 60));
        on.release(from);
        QVERIFY(on.area().isGesturing());
        ViewedBuilder::middle(QEvent::MouseButtonRelease, on.view(), from);
        QVERIFY(!on.area().isGesturing());
    }

    void escapePutsThePannedViewBack() {
        const ViewedBuilder on;
        on.scrollTo({100, 80});
        ViewedBuilder::middle(QEvent::MouseButtonPress, on.view(), {200, 100});
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), {160, 80});
        QCOMPARE(on.area().scrollPosition(), QPoint(140, 100));
        QTest::keyClick(&on.area(), Qt::Key_Escape);
        QVERIFY(!on.area().isGesturing());
        QCOMPARE(on.area().scrollPosition(), QPoint(100, 80));
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), {100, 80});
        QCOMPARE(on.area().scrollPosition(), QPoint(100, 80));
    }

    void pressEndsThePanningWhereItIs() {
        const ViewedBuilder on;
        on.scrollTo({100, 0});
        ViewedBuilder::middle(QEvent::MouseButtonPress, on.view(), {200, 100});
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), {220, 100});
        on.press(on.captionOf("WIDE"));
        QCOMPARE(on.area().scrollPosition(), QPoint(80, 0));
        QCOMPARE(on.area().selectedObject(), on.box());
    }

    void magnifiedViewIsPannedByTheHandsWay() {
        const ViewedBuilder on;
        on.area().setZoom(2);
        on.scrollTo({100, 80});
        ViewedBuilder::middle(QEvent::MouseButtonPress, on.view(), {200, 100});
        ViewedBuilder::middle(QEvent::MouseMove, on.view(), {160, 80});
        QCOMPARE(on.area().scrollPosition(), QPoint(120, 90));
    }

    // --- magnification

    void placesAreHitWhereTheyAreShown_data() {
        QTest::addColumn<qreal>("zoom");
        QTest::addColumn<QPoint>("scroll");
        for (const qreal zoom : {0.5, 1.0, 1.5, 2.0}) {
            for (const QPoint& scroll : {QPoint(0, 0), QPoint(37, 13)}) {
                QTest::addRow("%g at %d, %d", zoom, scroll.x(), scroll.y()) << zoom << scroll;
            }
        }
    }
    void placesAreHitWhereTheyAreShown() {
        QFETCH(qreal, zoom);
        QFETCH(QPoint, scroll);
        ViewedBuilder on;
        on.box()->MoveTable(-100, -40);
        on.area().setZoom(zoom);
        on.scrollTo(scroll);
        QCOMPARE(on.area().zoom(), zoom);
        on.click(on.toViewport(on.checkSquareOf("WIDE", "B")));
        QCOMPARE(on.columns(), QStringList("B||WIDE.B"));
        on.click(on.toViewport(on.captionCheckOf("WIDE")));
        QCOMPARE(on.box()->FieldState, 2);
        const QPoint from = on.toViewport(on.captionOf("WIDE"));
        const QPoint before = on.boxPlace();
        on.drag(from, {60, 30});
        const QPoint by = on.boxPlace() - before;
        QVERIFY((by - QPoint(qRound(60 / zoom), qRound(30 / zoom))).manhattanLength() <= 2);
        const QPoint buttons = ShownBuilder::centre(on.box()->toView(on.box()->GetButtonRect()));
        on.click(on.toViewport(buttons + QPoint(12, 0)));
        QVERIFY(!on.box());
        verifyBuilder(on.builder);
    }

    void magnificationIsKeptInBounds() {
        const ViewedBuilder on;
        on.area().setZoom(100);
        QCOMPARE(on.area().zoom(), 4.0);
        on.area().setZoom(0.001);
        QCOMPARE(on.area().zoom(), 0.05);
        on.area().setZoom(1);
        on.area().zoomIn();
        QCOMPARE(on.area().zoom(), 1.25);
        on.area().zoomOut();
        QCOMPARE(on.area().zoom(), 1.0);
        on.area().setZoom(3);
        on.area().actualSize();
        QCOMPARE(on.area().zoom(), 1.0);
    }

    void boxIsPaintedWhereItIsHit_data() {
        QTest::addColumn<qreal>("zoom");
        for (const qreal zoom : {0.5, 1.0, 1.5}) QTest::addRow("%g", zoom) << zoom;
    }
    void boxIsPaintedWhereItIsHit() {
        QFETCH(qreal, zoom);
        const ViewedBuilder on;
        on.area().setZoom(zoom);
        // At its right end a view that is made smaller shows what lay beyond it.
        const QPoint end =
            on.area().toViewPoint({on.view()->width() - 40, 10}) + on.area().scrollPosition();
        on.box()->MoveTable(end.x() - on.box()->Width - on.boxPlace().x(),
                            end.y() - on.boxPlace().y());
        const QRect shown = on.area().toViewport(on.box()->toView(on.box()->GetBoundsRect()));
        const QImage image = on.view()->grab().toImage();
        QVERIFY(image.rect().contains(shown));
        const QColor ground = image.pixelColor(shown.topRight() + QPoint(20, 5));
        QVERIFY(image.pixelColor(shown.center()) != ground);
        for (const QPoint& corner : {shown.topLeft(), shown.topRight(), shown.bottomLeft()}) {
            const QPoint inwards = shown.center() - corner;
            const QPoint step(inwards.x() > 0 ? 3 : -3, inwards.y() > 0 ? 3 : -3);
            QVERIFY(image.pixelColor(corner + step) != ground);
            QCOMPARE(image.pixelColor(corner - step), ground);
        }
    }

    void wholeDiagramCanBeReachedWhateverTheMagnification() {
        const ViewedBuilder on;
        for (const qreal zoom : {0.5, 1.0, 2.0}) {
            on.area().setZoom(zoom);
            const int page = int(on.view()->width() / zoom);
            QCOMPARE(on.area().horizontalScrollBar()->maximum(), 5000 - page);
        }
    }

    void scrollBarOfTheRowsStaysAtItsBox() {
        const ViewedBuilder on;
        on.area().setZoom(1.5);
        QScrollBar* bar = on.view()->findChild<QScrollBar*>();
        QVERIFY(bar && bar->isVisible());
        TRect rect = on.box()->toView(on.box()->GetClientRect());
        rect.Left = rect.Right - 16;
        QCOMPARE(bar->geometry(), on.area().toViewport(rect));
        on.scrollTo({21, 17});
        rect = rect.translated(-on.area().scrollPosition().x(), -on.area().scrollPosition().y());
        QVERIFY((bar->geometry().center() -
                 on.area().toViewport(on.box()->toView(on.box()->GetClientRect())).center())
                    .y() == 0);
    }

    void magnifyingDuringAGestureLeavesTheBoxUnderTheMouse() {
        const ViewedBuilder on;
        const QPoint from = on.captionOf("WIDE");
        on.press(from);
        on.moveTo(from + QPoint(40, 40));
        const QPoint grip = on.area().toViewPoint(from + QPoint(40, 40)) +
                            on.area().scrollPosition() - on.boxPlace();
        on.area().setZoom(2, from + QPoint(40, 40));
        const QPoint now = on.area().toViewPoint(from + QPoint(40, 40)) +
                           on.area().scrollPosition() - on.boxPlace();
        QVERIFY((grip - now).manhattanLength() <= 2);
    }

    // --- fitting and arranging

    void fittingShowsAllBoxes() {
        const ViewedBuilder on;
        on.box()->MoveTable(1500, 4700);
        on.area().fit();
        QVERIFY(on.area().zoom() < 1);
        const QRect shown = on.view()->rect();
        for (const QString& alias : on.stacking()) {
            const TorvQDTable* box = on.table(alias);
            QVERIFY(shown.contains(on.area().toViewport(box->toView(box->GetBoundsRect()))));
        }
        QCOMPARE(on.changes, 0);
    }

    void fittingNeverMagnifies() {
        const ViewedBuilder on;
        on.area().setZoom(3);
        on.area().fit();
        QCOMPARE(on.area().zoom(), 1.0);
    }

    void fittingAnEmptyDiagramShowsItsActualSize() {
        ViewedBuilder on;
        on.builder.Clear();
        on.area().setZoom(2);
        on.area().fit();
        QCOMPARE(on.area().zoom(), 1.0);
    }

    void doubleClickAtTheRightEdgeFitsTheTexts() {
        ViewedBuilder on;
        const QString longName(30, u'N');
        on.host.add("LONG", {"A", longName});
        on.host.add("LONGER", {QString(200, u'N')});
        on.addTable("LONGER");
        on.addTable("LONG");
        TorvQDTable* box = on.table("LONG");
        const auto doubleClickAtTheEdge = [&] {
            const TRect rect = box->toView(box->GetBoundsRect());
            on.doubleClick({rect.Right - 1, (rect.Top + rect.Bottom) / 2});
        };
        const int textWidth = QFontMetrics(on.area().GetFont()).horizontalAdvance(longName);
        doubleClickAtTheEdge();
        const int fitted = box->Width;
        const int room =
            box->toView(box->GetClientRect()).Right - on.checkSquareOf("LONG", "A").x();
        QVERIFY2(room > textWidth && room < textWidth + 40, qPrintable(QString::number(room)));
        box->SetWidth(fitted + 100);
        doubleClickAtTheEdge();
        QCOMPARE(box->Width, fitted);
        // A name without end is cut.
        on.area().fitWidth(*on.table("LONGER"));
        QCOMPARE(on.table("LONGER")->Width, 300);
    }

    void arrangedBoxesDoNotOverlapAndSayTheSame_data() {
        QTest::addColumn<bool>("keepMeaning");
        QTest::newRow("plain rules") << false;
        QTest::newRow("kept meaning") << true;
    }
    void arrangedBoxesDoNotOverlapAndSayTheSame() {
        QFETCH(bool, keepMeaning);
        ViewedBuilder on(keepMeaning);
        for (const char* name : {"EMPLOYEE", "DEPT", "ORDERS", "T"}) on.addTable(name);
        on.link("T", "A", "U", "A");
        on.link("U", "X", "EMPLOYEE", "EMP_NO");
        on.link("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        TorvQDLink* bent = on.link("DEPT", "DEPT_NO", "T", "B");
        bent->setBendPoints({{300, 300}});
        on.tick("U", "A");
        for (const QString& alias : on.stacking()) {
            on.table(alias)->MoveTable(30 - on.table(alias)->Left, 30 - on.table(alias)->Top);
        }
        const QStringList stacking = on.stacking();
        const QString statement = on.statement();
        on.changes = 0;
        on.area().arrange();
        QCOMPARE(on.statement(), statement);
        QCOMPARE(on.stacking(), stacking);
        QCOMPARE(on.changes, 0);
        QVERIFY(bent->bendPoints().empty());
        for (int a = 0; a < on.area().TablesCount(); ++a) {
            const QRect first = on.area().Tables(a)->GetBoundsRect().toQRect();
            QVERIFY(first.left() >= 0 && first.top() >= 0);
            for (int b = 0; b < a; ++b) {
                QVERIFY(!first.intersects(on.area().Tables(b)->GetBoundsRect().toQRect()));
            }
        }
        verifyBuilder(on.builder);
    }

    void arrangingNothingIsHarmless() {
        ViewedBuilder on;
        on.builder.Clear();
        on.area().arrange();
        QCOMPARE(on.area().TablesCount(), 0);
    }

    // --- the colour of links

    // On the ground alone: rows are white whatever a host's palette is, and so is a picture.
    void linkColorIsThatOnTheGround() {
        const ViewedBuilder on;
        on.area().selectObject(nullptr);
        const auto place = [&](const QString& name, int left, int top) {
            TorvQDTable* box = on.table(name);
            box->MoveTable(left - box->Left, top - box->Top);
        };
        place(QStringLiteral("T"), 20, 100);
        place(QStringLiteral("WIDE"), 180, 60);
        place(QStringLiteral("U"), 400, 100);
        const TorvQDLink* link = on.link("T", "A", "U", "A");
        QVERIFY(link);
        const int line = link->GetPoint(1).y();
        QCOMPARE(link->GetPoint(link->GetCountPoints() - 2).y(), line);
        const auto grabbed = [&] { return on.area().viewport()->grab().toImage(); };
        const QColor ink(250, 40, 60);
        const QImage before = grabbed();
        const QImage picture = on.area().picture();
        on.area().setLinkColor(ink);
        const QImage after = grabbed();
        for (int x = 290; x < 380; ++x) {
            QCOMPARE(before.pixelColor(x, line), QColor(Qt::black));
            QCOMPARE(after.pixelColor(x, line), ink);
        }
        for (int x = 185; x < 275; ++x) QCOMPARE(after.pixelColor(x, line), QColor(Qt::black));
        QRegion boxes;
        for (int index = 0; index < on.area().TablesCount(); ++index) {
            boxes += on.area().Tables(index)->GetBoundsRect().toQRect();
        }
        for (int y = 0; y < after.height(); ++y) {
            for (int x = 0; x < after.width(); ++x) {
                if (after.pixel(x, y) == before.pixel(x, y)) continue;
                QVERIFY2(!boxes.contains(QPoint(x, y)),
                         qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
                QCOMPARE(after.pixelColor(x, y), ink);
            }
        }
        QCOMPARE(on.area().picture(), picture);
        on.area().setLinkColor(Qt::black);
        QCOMPARE(grabbed(), before);
    }

    // --- the picture

    void pictureShowsAllBoxesWhateverIsScrolledOrMagnified() {
        const ViewedBuilder on;
        on.link("T", "A", "U", "A");
        on.area().selectObject(nullptr);
        const QImage picture = on.area().picture();
        const QRect bounds = on.area().diagramBounds();
        QCOMPARE(picture.size(), bounds.size() + QSize(40, 40));
        on.area().setZoom(2);
        on.scrollTo({500, 300});
        QCOMPARE(on.area().picture(), picture);
        on.area().copyAsPicture();
        const QImage copied = QGuiApplication::clipboard()->image();
        QCOMPARE(copied.size(), picture.size());
        QCOMPARE(copied.convertToFormat(picture.format()), picture);
    }

    void emptyDiagramLeavesTheClipboard() {
        ViewedBuilder on;
        on.builder.Clear();
        QGuiApplication::clipboard()->setText("before");
        on.area().copyAsPicture();
        QCOMPARE(QGuiApplication::clipboard()->text(), "before");
    }
};

QTEST_MAIN(DiagramViewTest)
#include "tst_diagramview.moc"
