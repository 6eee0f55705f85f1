// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "window/JoinDialog.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QDropEvent>
#include <QMimeData>

using namespace orvquery;

// Tables that are dragged from the list onto the diagram.
class TestTableDrops : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void tablesComeWhereTheyAreDropped();
    void otherBoxesStay();
    void nothingIsAskedWithinTheDrag();

private:
    [[nodiscard]] TorvQDTable& box(std::size_t number) const {
        return *builder().WorkArea->tablesByCreation()[number];
    }
    [[nodiscard]] int boxes() const { return builder().ListOfTables->TablesCount(); }
    [[nodiscard]] QPoint placeOf(std::size_t number) const {
        return {box(number).GetBoundsRect().Left, box(number).GetBoundsRect().Top};
    }
    void drop(const QList<const char*>& tables, const QPoint& place) const {
        const QAbstractItemModel* model = child<QAbstractItemView>("tables")->model();
        QModelIndexList rows;
        for (const char* table : tables) rows += tableIndex(table);
        const std::unique_ptr<QMimeData> data(model->mimeData(rows));
        QWidget* viewport = builder().WorkArea->viewport();
        QDragEnterEvent enter(place, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(place, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QVERIFY(move.isAccepted());
        QDropEvent event(place, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    }
};

void TestTableDrops::tablesComeWhereTheyAreDropped() {
    drop({"orders", "people"}, {150, 60});
    QCOMPARE(boxes(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(boxes(), 2);
    QCOMPARE(placeOf(0), QPoint(150, 60));
    QCOMPARE(placeOf(1).y(), 60);
    QVERIFY(placeOf(1).x() > 150 + box(0).GetBoundsRect().width());
}

// Also when their fields get their table in front.
void TestTableDrops::otherBoxesStay() {
    load("select id from orders");
    const QPoint before = placeOf(0);
    orv::setDialogRunner([](QDialog&) { return int(QDialog::Rejected); });
    drop({"orders"}, {350, 90});
    QCoreApplication::processEvents();
    QCOMPARE(boxes(), 2);
    QCOMPARE(placeOf(0), before);
    QCOMPARE(placeOf(1), QPoint(350, 90));
    QVERIFY(text().startsWith(QStringLiteral("SELECT ORDERS.ID")));
}

void TestTableDrops::nothingIsAskedWithinTheDrag() {
    int asked = 0;
    bool isWithinDrag = true;
    bool wasAskedWithinDrag = false;
    orv::setDialogRunner([&](QDialog& dialog) {
        ++asked;
        wasAskedWithinDrag = wasAskedWithinDrag || isWithinDrag;
        return qobject_cast<JoinDialog*>(&dialog) ? int(QDialog::Rejected) : -1;
    });
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE staff (no INTEGER PRIMARY KEY, boss INT REFERENCES staff)"}));
    press(Qt::Key_R, Qt::ControlModifier);
    QTRY_VERIFY(tableIndex("staff").isValid());
    doubleClickTable("staff");
    drop({"staff"}, {350, 90});
    isWithinDrag = false;
    QCoreApplication::processEvents();
    QCOMPARE(boxes(), 2);
    QCOMPARE(asked, 1);
    QVERIFY(!wasAskedWithinDrag);
}

QTEST_MAIN(TestTableDrops)
#include "tst_app_tabledrops.moc"
