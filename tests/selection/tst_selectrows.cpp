// SPDX-License-Identifier: MIT
// The rows of the selection grid: deleting them, what they show, what a view is told of them.
#include "support/ShownGrid.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QSignalSpy>

using orvtest::ShownGrid;
using orvtest::TallGrid;

namespace {

const QStringList firstColumns = {"A||T.A", "B||T.B", "X||U.X"};

/// Counts what a view is told about its rows.
class ModelSpy {
public:
    explicit ModelSpy(const QAbstractItemModel* model)
        : resets(model, &QAbstractItemModel::modelReset),
          changes(model, &QAbstractItemModel::dataChanged),
          inserts(model, &QAbstractItemModel::rowsInserted),
          removals(model, &QAbstractItemModel::rowsRemoved) {}
    /// Resets, changed cells' ranges, insertions and removals.
    [[nodiscard]] QList<int> counts() const {
        return {int(resets.count()), int(changes.count()), int(inserts.count()),
                int(removals.count())};
    }
    QSignalSpy resets;
    QSignalSpy changes;
    QSignalSpy inserts;
    QSignalSpy removals;
};

}  // namespace

class SelectRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- deleting

    void deletingAsksFirst() {
        orvtest::RecordedServices services;
        ShownGrid on;
        orv::MessageRequest asked;
        auto answer = orv::MessageAnswer::No;
        const auto old = orv::setMessageService([&](const orv::MessageRequest& request) {
            asked = request;
            return answer;
        });
        on.go(0, 2);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(asked.text, "Are you sure want to delete current row?");
        QCOMPARE(asked.caption, "Be care!");
        QCOMPARE(asked.icon, orv::MessageIcon::Question);
        QCOMPARE(asked.buttons, orv::MessageButtons::YesNo);
        QCOMPARE(on.columns(), firstColumns);
        QCOMPARE(on.changes, 0);
        answer = orv::MessageAnswer::Yes;
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        orv::setMessageService(old);
        QCOMPARE(on.columns(), QStringList({"A||T.A", "X||U.X"}));
        QCOMPARE(on.told, QStringList("-T.B"));
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.current(), "0,2");
        verifyBuilder(on.builder);
    }

    // The question runs an event loop, in which the host goes on.
    void rowIsLookedUpAgainAfterTheQuestion_data() {
        QTest::addColumn<QString>("meanwhile");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("row above goes") << "untick" << QStringList("X||U.X");
        QTest::newRow("row itself goes") << "untick it" << QStringList({"A||T.A", "X||U.X"});
        QTest::newRow("rows move") << "move" << QStringList({"A||T.A", "X||U.X"});
        QTest::newRow("all is new") << "load" << QStringList({"C||T.C", "D||T.D", "E||T.E"});
        QTest::newRow("empty") << "clear" << QStringList();
    }
    void rowIsLookedUpAgainAfterTheQuestion() {
        QFETCH(QString, meanwhile);
        QFETCH(QStringList, after);
        orvtest::RecordedServices services;
        ShownGrid on;
        const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
            if (meanwhile == "untick") on.tick("T", "A", false);
            if (meanwhile == "untick it") on.tick("T", "B", false);
            if (meanwhile == "move") on.grid()->moveRow(1, 3);
            if (meanwhile == "load") on.builder.LoadSQL("select t.c, t.d, t.e from t");
            if (meanwhile == "clear") on.builder.Clear();
            return orv::MessageAnswer::Yes;
        });
        on.go(0, 2);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        orv::setMessageService(old);
        QStringList columns = on.columns();
        columns.sort();
        QCOMPARE(columns, after);
        QCOMPARE(services.errors, QStringList());
    }

    void builderMayDieDuringTheQuestion() {
        orvtest::RecordedServices services;
        auto on = std::make_unique<ShownGrid>();
        TorvQDSelectGrid* grid = on->grid();
        const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
            on.reset();
            return orv::MessageAnswer::Yes;
        });
        QVERIFY(grid->_StringKeyDown(Qt::Key_Delete, Qt::ControlModifier));
        orv::setMessageService(old);
        QCOMPARE(services.errors, QStringList());
    }

    void lastRowCannotBeDeleted() {
        orvtest::RecordedServices services;
        ShownGrid on;
        on.go(2, 4);
        QCOMPARE(orvtest::errorOf([&] { on.grid()->_DeleteCurrentRow(); }),
                 "Could not delete last row!");
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(services.messages.size(), 1);
        QCOMPARE(services.errors, QStringList("Could not delete last row!"));
        QCOMPARE(on.columns(), firstColumns);
        QCOMPARE(on.changes, 0);
    }

    // It is the field that is unticked, whatever other rows have it.
    void deletingOneOfTwoEqualRowsUnticksTheField() {
        ShownGrid on;
        on.enter(2, 2, "T.A");
        on.told.clear();
        on.go(0, 1);
        on.grid()->_DeleteCurrentRow();
        QCOMPARE(on.columns(), QStringList({"A||T.A", "X||U.X"}));
        QCOMPARE(on.told, QStringList("-T.A"));
        QVERIFY(!on.isTicked("T", "A"));
    }

    void menuOfTheRowUnderTheMouse() {
        orvtest::RecordedServices services;
        ShownGrid on;
        const QPoint point = on.centreOf(2, 3);
        QContextMenuEvent event(QContextMenuEvent::Mouse, point,
                                on.grid()->viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(on.grid()->viewport(), &event);
        QCOMPARE(on.current(), "2,3");
        auto* menu = on.grid()->findChild<QMenu*>();
        QVERIFY(menu && menu->isVisible());
        QCOMPARE(menu->actions()[0]->text(), "Delete current row");
        QVERIFY(menu->actions()[1]->isSeparator());
        on.tick("T", "A", false);
        menu->actions()[0]->trigger();
        QCOMPARE(on.columns(), QStringList("B||T.B"));
        QCOMPARE(services.messages, QStringList());
    }

    void menuOfTheLastRowSaysThatItCannotBeDeleted() {
        orvtest::RecordedServices services;
        ShownGrid on;
        on.go(0, 4);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QCoreApplication::sendEvent(on.grid(), &event);
        auto* menu = on.grid()->findChild<QMenu*>();
        QVERIFY(menu);
        menu->actions()[0]->trigger();
        QCOMPARE(services.errors, QStringList("Could not delete last row!"));
        QCOMPARE(on.columns(), firstColumns);
    }

    void builderMayDieWithTheMenuOpen() {
        auto on = std::make_unique<ShownGrid>();
        on->press(Qt::Key_F10, Qt::ShiftModifier);
        QPointer<QMenu> menu = on->grid()->findChild<QMenu*>();
        QVERIFY(menu);
        on.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!menu);
    }

    // --- what the view shows

    void rowWhoseTableIsGoneIsMarked() {
        ShownGrid on;
        on.enter(2, 2, "V.GONE");
        QCOMPARE(on.cell(2, 1).data(Qt::ForegroundRole), QVariant());
        QVERIFY(on.cell(0, 2).data(Qt::ForegroundRole).isValid());
        QVERIFY(on.cell(2, 2).data(Qt::DecorationRole).isValid());
        QVERIFY(!on.cell(0, 2).data(Qt::DecorationRole).isValid());
        QVERIFY(on.cell(2, 2).data(Qt::ToolTipRole).toString().contains("no such table"));
        QVERIFY(on.cell(2, 2).data(Qt::AccessibleDescriptionRole).toString().contains("V.GONE"));
        on.enter(2, 2, "T.B");
        QCOMPARE(on.cell(0, 2).data(Qt::ForegroundRole), QVariant());
        QCOMPARE(on.cell(2, 2).data(Qt::ToolTipRole).toString(), QString());
    }

    void columnWithoutAValidNameIsMarked() {
        ShownGrid on;
        const auto tip = [&] { return on.cell(0, 2).data(Qt::ToolTipRole).toString(); };
        on.enter(0, 2, "my-name");
        QVERIFY(tip().contains("my-name: This is no valid name of an output column."));
        QVERIFY(on.cell(2, 2).data(Qt::DecorationRole).isValid());
        QVERIFY(on.cell(0, 2).data(Qt::ForegroundRole).isValid());
        QCOMPARE(on.cell(0, 1).data(Qt::ForegroundRole), QVariant());
        // Then it is written in quotes.
        on.builder.setKeepMeaning(true);
        QCOMPARE(tip(), QString());
        QCOMPARE(on.cell(0, 2).data(Qt::ForegroundRole), QVariant());
    }

    // As soon as another column makes the selection an aggregated one, and as long as that lasts.
    void columnThatCannotBeGroupedIsMarked() {
        ShownGrid on;
        on.enter(2, 2, "T.B + 1");
        const auto isMarked = [&](int row) {
            return on.cell(2, row).data(Qt::ToolTipRole).toString().contains("cannot be grouped");
        };
        QVERIFY(!isMarked(2));
        on.enter(1, 1, "SUM");
        QVERIFY(!isMarked(1));
        QVERIFY(isMarked(2));
        QVERIFY(!isMarked(3));
        on.enter(1, 2, "MAX");
        QVERIFY(!isMarked(2));
        on.enter(1, 2, "");
        QVERIFY(isMarked(2));
        on.enter(1, 1, "");
        QVERIFY(!isMarked(2));
    }

    // Its row was asked about before; only that one is told of.
    void marksFollowTheDiagram() {
        ShownGrid on;
        on.enter(2, 1, "T.A + U.Y");
        on.enter(1, 1, "MIN");
        on.enter(1, 3, "MAX");
        for (int row = 1; row <= 4; ++row)
            QVERIFY(!on.cell(0, row).data(Qt::ForegroundRole).isValid());
        const ModelSpy spy(&on.model());
        on.builder.ListOfTables->DeleteTable(on.table("U"));
        QCOMPARE(on.columns()[0], "A|MIN|T.A + U.Y");
        QVERIFY(on.cell(0, 1).data(Qt::ForegroundRole).isValid());
        QVERIFY(!on.cell(0, 2).data(Qt::ForegroundRole).isValid());
        QVERIFY(spy.changes.count() > 0);
        QCOMPARE(spy.changes[0][0].toModelIndex().row(), 0);
        QCOMPARE(spy.resets.count(), 0);
    }

    void tipHasWhatIsCut() {
        ShownGrid on;
        QCOMPARE(on.cell(2, 1).data(Qt::ToolTipRole).toString(), QString());
        const QString text = QString("'<b>'").repeated(60);
        on.enter(2, 1, text);
        QCOMPARE(on.cell(2, 1).data(Qt::ToolTipRole).toString(),
                 "<qt>" + text.toHtmlEscaped() + "</qt>");
    }

    void cellsSayWhatTheyAre() {
        ShownGrid on;
        on.enter(1, 1, "SUM");
        const auto said = [&](int col, int row) {
            return on.cell(col, row).data(Qt::AccessibleTextRole).toString();
        };
        QCOMPARE(said(0, 1), "Output name SUM_OF_A");
        QCOMPARE(said(1, 1), "Aggregate SUM");
        QCOMPARE(said(1, 2), "No aggregate");
        QCOMPARE(said(2, 2), "Source T.B");
        QCOMPARE(said(2, 4), "Source of a new column");
        QCOMPARE(on.grid()->accessibleName(), "Output columns");
        on.grid()->_EditText(2, 1);
        QCOMPARE(on.editor()->accessibleName(), "Source");
    }

    // --- what the view is told

    void editorFollowsItsCell() {
        TallGrid tall;
        tall.grid._EditText(0, 1001);
        auto* edit = tall.grid.viewport()->findChild<orv::ExitEdit*>();
        const QModelIndex cell = tall.grid.model()->index(1000, 0);
        QCOMPARE(edit->geometry(), tall.grid.visualRect(cell));
        tall.grid.verticalScrollBar()->setValue(tall.grid.verticalScrollBar()->value() + 3);
        QCoreApplication::processEvents();
        QCOMPARE(edit->geometry(), tall.grid.visualRect(cell));
        tall.grid.resize(400, 200);
        QCoreApplication::processEvents();
        QCOMPARE(edit->geometry(), tall.grid.visualRect(cell));
        QVERIFY(edit->isVisible());
    }

    void editRefreshesOneRow() {
        TallGrid tall;
        const ModelSpy spy(tall.grid.model());
        const int place = tall.grid.verticalScrollBar()->value();
        tall.grid._EditText(0, 1001);
        tall.grid._SetCellText("OTHER");
        QCOMPARE(spy.counts(), QList<int>({0, 1, 0, 0}));
        QCOMPARE(spy.changes[0][0].toModelIndex().row(), 1000);
        QCOMPARE(spy.changes[0][1].toModelIndex().row(), 1000);
        QCOMPARE(tall.grid.verticalScrollBar()->value(), place);
    }

    void rowsComeAndGoSingly() {
        TallGrid tall;
        ModelSpy spy(tall.grid.model());
        tall.grid.CheckField("T.NEW");
        QCOMPARE(spy.counts(), QList<int>({0, 0, 1, 0}));
        QCOMPARE(spy.inserts[0][1].toInt(), 2000);
        tall.grid.uncheckFields({"T.F0", "T.F1", "T.F500"});
        QCOMPARE(spy.counts(), QList<int>({0, 0, 1, 2}));
        QCOMPARE(tall.grid.currentIndex().row(), 997);
        QCOMPARE(tall.grid.currentIndex().data().toString(), "F1000");
        QCOMPARE(tall.grid.model()->rowCount(), 1999);
    }

    void manyScatteredRowsGoAtOnce() {
        TallGrid tall;
        ModelSpy spy(tall.grid.model());
        QSet<QString> names;
        for (int row = 0; row < 2000; row += 2) names.insert(QStringLiteral("T.F%1").arg(row));
        tall.grid.uncheckFields(names);
        QCOMPARE(spy.counts(), QList<int>({1, 0, 0, 0}));
        QCOMPARE(tall.grid.model()->rowCount(), 1001);
        QVERIFY(tall.grid.currentIndex().isValid());
    }

    void anotherListReplacesTheRows_data() {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("longer") << QStringList({"A", "B"}) << QStringList({"C", "D", "B"});
        QTest::newRow("shorter") << QStringList({"A", "B", "C"}) << QStringList({"D", "C"});
        QTest::newRow("turned") << QStringList({"A", "B", "C"}) << QStringList({"C", "B", "A"});
        QTest::newRow("doubled") << QStringList({"A", "B"}) << QStringList({"A", "A", "B", "B"});
        QTest::newRow("halved") << QStringList({"A", "A", "B", "B"}) << QStringList({"A", "B"});
        QTest::newRow("emptied") << QStringList({"A", "B"}) << QStringList();
        QTest::newRow("filled") << QStringList() << QStringList({"A", "B"});
        QTest::newRow("all new") << QStringList({"A", "B"}) << QStringList({"C"});
    }
    void anotherListReplacesTheRows() {
        QFETCH(QStringList, before);
        QFETCH(QStringList, after);
        QWidget window;
        TorvQDSelectGrid grid(&window);
        const auto columnsOf = [](const QStringList& names) {
            orv::OutputColumns columns;
            for (const QString& name : names) columns.push_back({name, {}, "T." + name});
            return columns;
        };
        grid.setColumns(columnsOf(before));
        const ModelSpy spy(grid.model());
        grid.setColumns(columnsOf(after));
        QStringList shown;
        for (int row = 0; row + 1 < grid.model()->rowCount(); ++row) {
            shown << grid.model()->index(row, 0).data().toString();
        }
        QCOMPARE(shown, after);
        QCOMPARE(spy.resets.count(), 0);
    }

    void fieldsAndAggregatesAreTypedInAnyCase() {
        const ShownGrid on;
        on.enter(2, 4, "u.y");
        QCOMPARE(on.grid()->Cells(2, 4), "U.Y");
        QCOMPARE(on.grid()->Cells(0, 4), "Y");
        QVERIFY(on.isTicked("U", "Y"));
        on.enter(1, 4, "sum");
        QCOMPARE(on.grid()->Cells(1, 4), "SUM");
        QCOMPARE(on.grid()->Cells(0, 4), "SUM_OF_Y");
        // What is no field stays as it was typed.
        on.enter(2, 5, "u.y + 1");
        QCOMPARE(on.grid()->Cells(2, 5), "u.y + 1");
        on.enter(1, 5, "total");
        QCOMPARE(on.grid()->Cells(1, 5), "total");
    }
};

QTEST_MAIN(SelectRowsTest)
#include "tst_selectrows.moc"
