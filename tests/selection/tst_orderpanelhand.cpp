// SPDX-License-Identifier: MIT
// The sorting page under the hand: mouse, keys and drags on a shown control. Also what the hand
// does with the option of unique records.
#include "support/BuilderTools.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDrag>
#include <QDropEvent>
#include <QHelpEvent>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QToolTip>
#include <QTreeWidget>

using orvtest::HostedBuilder;

namespace {

constexpr int sortingPage = 3;

/// A shown builder with the columns A to D of T on its sorting page.
class Desk : public HostedBuilder {
public:
    explicit Desk(const QString& orderBy = {}) {
        builder.resize(800, 600);
        builder.setTabsHeight(220);
        builder.LoadSQL("select t.a, t.b, t.c, t.d from t" +
                        (orderBy.isEmpty() ? QString() : " order by " + orderBy));
        builder.PageCtrl->setCurrentIndex(sortingPage);
        builder.show();
        builder.activateWindow();
        QCoreApplication::processEvents();
        changes = 0;
    }

    [[nodiscard]] TorvQDOrderPanel* panel() const { return builder.OrderPanel; }
    [[nodiscard]] QListWidget* unsorted() const { return panel()->findChild<QListWidget*>(); }
    [[nodiscard]] QTreeWidget* sorted() const { return panel()->findChild<QTreeWidget*>(); }
    [[nodiscard]] QPushButton* button(const QString& toolTip) const {
        for (QPushButton* each : panel()->findChildren<QPushButton*>()) {
            if (each->toolTip().contains(toolTip)) return each;
        }
        return nullptr;
    }

    [[nodiscard]] QString orderBy() const { return panel()->GetSQLStatment(); }
    [[nodiscard]] QStringList names() const {
        QStringList texts;
        for (int row = 0; row < unsorted()->count(); ++row) texts << unsorted()->item(row)->text();
        return texts;
    }
    [[nodiscard]] QString selectedName() const {
        const auto items = unsorted()->selectedItems();
        return items.isEmpty() ? QString() : items.front()->text();
    }
    [[nodiscard]] QString selectedLine() const {
        const auto items = sorted()->selectedItems();
        return items.isEmpty() ? QString() : items.front()->text(0);
    }

    [[nodiscard]] QAbstractItemView* list(bool isSorted) const {
        return isSorted ? static_cast<QAbstractItemView*>(sorted()) : unsorted();
    }
    [[nodiscard]] QPoint at(bool isSorted, int row) const {
        const QAbstractItemView* view = list(isSorted);
        return view->visualRect(view->model()->index(row, 0)).topLeft() + QPoint(4, 4);
    }
    void click(bool isSorted, int row, Qt::MouseButton which = Qt::LeftButton) const {
        QTest::mouseClick(list(isSorted)->viewport(), which, {}, at(isSorted, row));
    }
    /// As a real hand does it: press, release, double click, release.
    void doubleClick(bool isSorted, const QPoint& point,
                     Qt::MouseButton which = Qt::LeftButton) const {
        QWidget* view = list(isSorted)->viewport();
        QTest::mouseClick(view, which, {}, point);
        QTest::mouseDClick(view, which, {}, point);
        QTest::mouseRelease(view, which, {}, point);
    }
    void moveTo(bool isSorted, const QPoint& point) const {
        QWidget* view = list(isSorted)->viewport();
        QMouseEvent event(QEvent::MouseMove, point, view->mapToGlobal(point), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    }
    void focus(bool isSorted, int row) const {
        list(isSorted)->setFocus();
        list(isSorted)->setCurrentIndex(list(isSorted)->model()->index(row, 0));
    }
    void key(bool isSorted, Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(list(isSorted), pressed, modifiers);
    }
};

/// Runs the drags of its life.
class DragScript {
public:
    explicit DragScript(std::function<Qt::DropAction(QDrag&)> script)
        : m_old(orv::setDragRunner([this, script = std::move(script)](QDrag& drag) {
              ++drags;
              return script(drag);
          })) {}
    ~DragScript() { orv::setDragRunner(m_old); }
    DragScript(const DragScript&) = delete;
    DragScript& operator=(const DragScript&) = delete;

    int drags = 0;

private:
    orv::DragRunner m_old;
};

/// Without a display a drop has no source: this panel says where its drags come from.
class DropPanel : public TorvQDOrderPanel {
public:
    using TorvQDOrderPanel::TorvQDOrderPanel;
    QObject* source = nullptr;

protected:
    QObject* dragSource(const QDropEvent&) const override { return source; }
};

bool drop(QAbstractItemView* on, const QMimeData* data) {
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton,
                          Qt::NoModifier);
    QCoreApplication::sendEvent(on->viewport(), &enter);
    QDropEvent event(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton,
                     Qt::NoModifier);
    event.setAccepted(false);
    QCoreApplication::sendEvent(on->viewport(), &event);
    return event.isAccepted();
}

bool overrides(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent event(QEvent::ShortcutOverride, key, modifiers);
    event.ignore();
    QCoreApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

QString toolTipAt(QAbstractItemView* list, const QPoint& point) {
    QToolTip::hideText();
    QHelpEvent event(QEvent::ToolTip, point, list->viewport()->mapToGlobal(point));
    QCoreApplication::sendEvent(list->viewport(), &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

/// Counts what a list's model tells of its rows.
struct RowSpy {
    explicit RowSpy(const QAbstractItemView* list)
        : inserted(list->model(), &QAbstractItemModel::rowsInserted),
          removed(list->model(), &QAbstractItemModel::rowsRemoved),
          reset(list->model(), &QAbstractItemModel::modelReset) {}
    /// Rows that came and went; a reset counts as very many.
    [[nodiscard]] int rows() const {
        int count = int(reset.size()) * 1'000'000;
        for (const QSignalSpy* spy : {&inserted, &removed}) {
            for (const QVariantList& told : *spy) count += told[2].toInt() - told[1].toInt() + 1;
        }
        return count;
    }
    QSignalSpy inserted;
    QSignalSpy removed;
    QSignalSpy reset;
};

}  // namespace

class OrderPanelHandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }
    void cleanup() { QToolTip::hideText(); }

    // --- the mouse

    void clicksSelectAndButtonsFollow() {
        Desk on("c, d desc");
        on.click(false, 1);
        QCOMPARE(on.selectedName(), "B");
        QVERIFY(on.button("Sort by")->isEnabled());
        QVERIFY(!on.button("No longer")->isEnabled());
        on.click(true, 1);
        QCOMPARE(on.selectedLine(), "D");
        QCOMPARE(on.button("direction")->text(), "A..Z");
        QVERIFY(!on.button("down")->isEnabled());
        QTest::mouseClick(on.button("Move the selected field up"), Qt::LeftButton);
        QCOMPARE(on.orderBy(), "T.D DESC, T.C");
        QTest::mouseClick(on.button("direction"), Qt::LeftButton);
        QCOMPARE(on.orderBy(), "T.D, T.C");
        QCOMPARE(on.button("direction")->text(), "A..Z");
        on.click(true, 0);
        QCOMPARE(on.button("direction")->text(), "Z..A");
        QTest::mouseClick(on.button("No longer"), Qt::LeftButton);
        QTest::mouseClick(on.button("Sort by"), Qt::LeftButton);
        QCOMPARE(on.orderBy(), "T.C, T.B");
        QCOMPARE(on.changes, 4);
    }

    void doubleClickOnANameAddsIt() {
        Desk on("c");
        on.doubleClick(false, on.at(false, 1));
        QCOMPARE(on.orderBy(), "T.C, T.B");
        QCOMPARE(on.names(), QStringList({"A", "D"}));
        QCOMPARE(on.changes, 1);
    }

    void doubleClickOnALineRemovesIt() {
        Desk on("c, b, a");
        on.doubleClick(true, on.at(true, 1));
        QCOMPARE(on.orderBy(), "T.C, T.A");
        QCOMPARE(on.names(), QStringList({"B", "D"}));
        QCOMPARE(on.changes, 1);
    }

    void otherDoubleClicksDoNothing() {
        Desk on("c");
        on.doubleClick(false, on.at(false, 0), Qt::RightButton);
        on.doubleClick(true, on.at(true, 0), Qt::MiddleButton);
        on.click(false, 0);
        on.click(true, 0);
        for (const bool isSorted : {false, true}) {
            const QRect free = on.list(isSorted)->viewport()->rect();
            on.doubleClick(isSorted, free.bottomRight() - QPoint(3, 3));
        }
        QCOMPARE(on.orderBy(), "T.C");
        QCOMPARE(on.changes, 0);
    }

    // --- keys

    void keysOfTheLists_data() {
        QTest::addColumn<bool>("isSorted");
        QTest::addColumn<int>("row");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("selected");
        const auto row = [](const char* name, bool isSorted, int at, Qt::Key key,
                            Qt::KeyboardModifiers modifiers, const char* written,
                            const char* selected) {
            QTest::newRow(name) << isSorted << at << key << modifiers << QString(written)
                                << QString(selected);
        };
        row("Enter adds", false, 0, Qt::Key_Return, {}, "T.B, T.C DESC, T.A", "D");
        row("keypad Enter adds", false, 0, Qt::Key_Enter, Qt::KeypadModifier, "T.B, T.C DESC, T.A",
            "D");
        row("Insert adds the last", false, 1, Qt::Key_Insert, {}, "T.B, T.C DESC, T.D", "A");
        row("Delete removes", true, 0, Qt::Key_Delete, {}, "T.C DESC", "C");
        row("Delete removes the last", true, 1, Qt::Key_Delete, {}, "T.B", "B");
        row("Space descends", true, 0, Qt::Key_Space, {}, "T.B DESC, T.C DESC", "B");
        row("Space ascends", true, 1, Qt::Key_Space, {}, "T.B, T.C", "C");
        row("Alt+Up", true, 1, Qt::Key_Up, Qt::AltModifier, "T.C DESC, T.B", "C");
        row("Ctrl+Up", true, 1, Qt::Key_Up, Qt::ControlModifier, "T.C DESC, T.B", "C");
        row("Alt+Down", true, 0, Qt::Key_Down, Qt::AltModifier, "T.C DESC, T.B", "B");
        row("Ctrl+Down", true, 0, Qt::Key_Down, Qt::ControlModifier, "T.C DESC, T.B", "B");
    }
    void keysOfTheLists() {
        QFETCH(bool, isSorted);
        QFETCH(int, row);
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(QString, written);
        QFETCH(QString, selected);
        Desk on("b, c desc");
        on.focus(isSorted, row);
        QVERIFY(overrides(on.list(isSorted), key, modifiers));
        QCOMPARE(on.changes, 0);
        on.key(isSorted, key, modifiers);
        QCOMPARE(on.orderBy(), written);
        QCOMPARE(isSorted ? on.selectedLine() : on.selectedName(), selected);
        QVERIFY(on.list(isSorted)->hasFocus());
        QCOMPARE(on.changes, 1);
    }

    void keysAtTheEndsChangeNothing() {
        Desk on("a, b");
        on.focus(true, 0);
        on.key(true, Qt::Key_Up, Qt::AltModifier);
        on.key(true, Qt::Key_Down);
        on.key(true, Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(on.orderBy(), "T.A, T.B");
        QCOMPARE(on.selectedLine(), "B");
        QCOMPARE(on.changes, 0);
    }

    void keysWithoutASelectionAreTheWindows() {
        Desk on("a");
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Insert, Qt::Key_Delete}) {
            QVERIFY(!overrides(on.unsorted(), key));
            QVERIFY(!overrides(on.sorted(), key));
            on.key(false, key);
            on.key(true, key);
        }
        on.focus(false, 0);
        QVERIFY(!overrides(on.unsorted(), Qt::Key_Delete));
        QVERIFY(!overrides(on.unsorted(), Qt::Key_Return, Qt::ControlModifier));
        QCOMPARE(on.changes, 0);
    }

    void shortcutOfTheWindowDoesNotTakeTheKey() {
        Desk on("a, b");
        QAction action;
        action.setShortcut(Qt::Key_Delete);
        int fired = 0;
        connect(&action, &QAction::triggered, this, [&] { ++fired; });
        on.builder.addAction(&action);
        on.focus(true, 0);
        on.key(true, Qt::Key_Delete);
        QCOMPARE(on.orderBy(), "T.B");
        QCOMPARE(fired, 0);
        on.focus(false, 0);
        on.key(false, Qt::Key_Delete);
        QCOMPARE(fired, 1);
        QCOMPARE(on.orderBy(), "T.B");
    }

    void everythingCanBeSortedByEnterAlone() {
        Desk on;
        on.focus(false, 0);
        for (int press = 0; press < 4; ++press) on.key(false, Qt::Key_Return);
        QCOMPARE(on.orderBy(), "T.A, T.B, T.C, T.D");
        QCOMPARE(on.names(), QStringList());
        QVERIFY(on.sorted()->hasFocus());
        QCOMPARE(on.selectedLine(), "A");
        for (int press = 0; press < 4; ++press) on.key(true, Qt::Key_Delete);
        QCOMPARE(on.orderBy(), QString());
        QVERIFY(on.unsorted()->hasFocus());
        QCOMPARE(on.selectedName(), "A");
        QCOMPARE(on.changes, 8);
    }

    // A button that is disabled for a moment would lose the focus.
    void buttonsKeepTheFocusBetweenPresses() {
        Desk on("a, b, c");
        on.click(true, 0);
        QPushButton* remove = on.button("No longer");
        remove->setFocus();
        QTest::keyClick(remove, Qt::Key_Space);
        QVERIFY(remove->hasFocus());
        QTest::keyClick(remove, Qt::Key_Space);
        QVERIFY(remove->hasFocus());
        QCOMPARE(on.orderBy(), "T.C");
        on.click(false, 0);
        QPushButton* add = on.button("Sort by");
        add->setFocus();
        QTest::keyClick(add, Qt::Key_Space);
        QVERIFY(add->hasFocus());
        QTest::keyClick(add, Qt::Key_Space);
        QCOMPARE(on.orderBy(), "T.C, T.A, T.B");
    }

    void tabGoesFromListToButtonsToList() {
        Desk on("c, d");
        on.panel()->setFocus();
        QVERIFY(on.unsorted()->hasFocus());
        on.focus(false, 0);
        on.click(true, 1);
        on.unsorted()->setFocus();
        const auto press = [](Qt::Key key) {
            QWidget* widget = QApplication::focusWidget();
            if (widget) QTest::keyClick(widget, key);
        };
        // The selected line is the last one: there is no way down.
        const QList<QWidget*> expected = {on.button("Sort by"), on.button("No longer"),
                                          on.button("Move the selected field up"),
                                          on.button("direction"), on.sorted()};
        QList<QWidget*> visited;
        for (int step = 0; step < expected.size(); ++step) {
            press(Qt::Key_Tab);
            visited << QApplication::focusWidget();
        }
        QCOMPARE(visited, expected);
        for (int step = 0; step < expected.size(); ++step) press(Qt::Key_Backtab);
        QVERIFY(on.unsorted()->hasFocus());
    }

    void tabIntoAListSelectsItsFirstName() {
        Desk on("c");
        on.unsorted()->setFocus(Qt::TabFocusReason);
        QCOMPARE(on.selectedName(), "A");
        on.focus(false, 1);
        on.sorted()->setFocus(Qt::BacktabFocusReason);
        QCOMPARE(on.selectedLine(), "C");
        on.unsorted()->setFocus(Qt::TabFocusReason);
        QCOMPARE(on.selectedName(), "B");
    }

    void partsHaveAccessibleNames() {
        const Desk on;
        QCOMPARE(on.unsorted()->accessibleName(), "Output fields");
        QCOMPARE(on.sorted()->accessibleName(), "Sorted fields");
        QCOMPARE(on.panel()->findChild<QLabel*>()->buddy(), on.unsorted());
        QCOMPARE(on.button("direction")->accessibleName(), "Change the direction");
        for (const QPushButton* button : on.panel()->findChildren<QPushButton*>()) {
            QVERIFY(!button->accessibleDescription().isEmpty());
        }
    }

    // --- tool tips

    void namesThatAreCutOffAreShownInFull() {
        Desk on;
        const QString longName(120, u'X');
        on.grid()->setColumns({{"SHORT", "", "T.A", false},
                               {longName, "", "T.B", false},
                               {"a<b>" + longName, "", "T.C", false}});
        QCoreApplication::processEvents();
        QCOMPARE(toolTipAt(on.unsorted(), on.at(false, 0)), QString());
        QCOMPARE(toolTipAt(on.unsorted(), on.at(false, 1)), "<qt>" + longName + "</qt>");
        QCOMPARE(toolTipAt(on.unsorted(), on.at(false, 2)), "<qt>a&lt;b&gt;" + longName + "</qt>");
        for (const int row : {0, 0}) {
            on.focus(false, row);
            on.key(false, Qt::Key_Return);
        }
        QCoreApplication::processEvents();
        QCOMPARE(toolTipAt(on.sorted(), on.at(true, 0)), QString());
        QCOMPARE(toolTipAt(on.sorted(), on.at(true, 1)), "<qt>" + longName + "</qt>");
    }

    // --- drags

    void dragBeginsAtTheDistanceOnly() {
        Desk on("c");
        QStringList dragged;
        const DragScript script([&](const QDrag& drag) {
            dragged << drag.mimeData()->formats();
            return Qt::CopyAction;
        });
        const int far = QApplication::startDragDistance();
        for (const bool isSorted : {false, true}) {
            const QPoint from = on.at(isSorted, 0);
            QTest::mousePress(on.list(isSorted)->viewport(), Qt::LeftButton, {}, from);
            on.moveTo(isSorted, from + QPoint(0, far - 1));
            QCOMPARE(script.drags, isSorted ? 1 : 0);
            on.moveTo(isSorted, from + QPoint(0, far));
            QCOMPARE(script.drags, isSorted ? 2 : 1);
            on.moveTo(isSorted, from + QPoint(0, 2 * far));
            QCOMPARE(script.drags, isSorted ? 2 : 1);
            QTest::mouseRelease(on.list(isSorted)->viewport(), Qt::LeftButton, {}, from);
        }
        // The name on which the press was is dragged, and nothing is selected on the way.
        QCOMPARE(on.selectedName(), "A");
        QCOMPARE(on.selectedLine(), "C");
        // No text: an edit would take it.
        QVERIFY(!dragged.contains("text/plain"));
        QCOMPARE(on.changes, 0);
    }

    void pressBesideTheNamesDragsNothing() {
        Desk on;
        const DragScript script([](QDrag&) { return Qt::CopyAction; });
        const QPoint free = on.unsorted()->viewport()->rect().bottomRight() - QPoint(3, 3);
        QTest::mousePress(on.unsorted()->viewport(), Qt::LeftButton, {}, free);
        on.moveTo(false, free - QPoint(40, 0));
        QTest::mousePress(on.unsorted()->viewport(), Qt::RightButton, {}, on.at(false, 0));
        on.moveTo(false, on.at(false, 0) + QPoint(40, 0));
        QCOMPARE(script.drags, 0);
    }

    void dropDuringTheDragActsAfterIt() {
        Desk on("d");
        DropPanel panel(on.panel()->parentWidget());
        panel.grid = on.grid();
        panel.resize(400, 200);
        panel.RefreshFields();
        panel.show();
        auto* unsorted = panel.findChild<QListWidget*>();
        auto* sorted = panel.findChild<QTreeWidget*>();
        panel.source = unsorted;
        const DragScript script([&](const QDrag& drag) {
            return drop(sorted, drag.mimeData()) ? Qt::CopyAction : Qt::IgnoreAction;
        });
        const QPoint from = unsorted->visualItemRect(unsorted->item(1)).center();
        QTest::mousePress(unsorted->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, from + QPoint(60, 0), QCursor::pos(), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(unsorted->viewport(), &move);
        QCOMPARE(script.drags, 1);
        QCOMPARE(panel.GetSQLStatment(), QString());
        QCoreApplication::processEvents();
        QCOMPARE(panel.GetSQLStatment(), "T.B");
    }

    // What is selected when the drop comes to be done is another name then.
    void dropIsForgottenWhenTheHostLoadsDuringTheDrag() {
        Desk on;
        DropPanel panel(on.panel()->parentWidget());
        panel.grid = on.grid();
        panel.resize(400, 200);
        panel.RefreshFields();
        panel.show();
        auto* unsorted = panel.findChild<QListWidget*>();
        panel.source = unsorted;
        const DragScript script([&](const QDrag& drag) {
            const bool taken = drop(panel.findChild<QTreeWidget*>(), drag.mimeData());
            on.builder.LoadSQL("select u.x, u.y from u");
            panel.RefreshFields();
            unsorted->setCurrentRow(0);
            return taken ? Qt::CopyAction : Qt::IgnoreAction;
        });
        const QPoint from = unsorted->visualItemRect(unsorted->item(0)).center();
        QTest::mousePress(unsorted->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, from + QPoint(60, 0), QCursor::pos(), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(unsorted->viewport(), &move);
        QCoreApplication::processEvents();
        QCOMPARE(script.drags, 1);
        QCOMPARE(panel.GetSQLStatment(), QString());
    }

    void builderMayGoDuringADrag() {
        auto on = std::make_unique<Desk>("c");
        const DragScript script([&](QDrag&) {
            on.reset();
            return Qt::IgnoreAction;
        });
        const QPoint from = on->at(false, 0);
        QTest::mousePress(on->unsorted()->viewport(), Qt::LeftButton, {}, from);
        on->moveTo(false, from + QPoint(60, 0));
        QVERIFY(!on);
        QCOMPARE(script.drags, 1);
    }

    // --- what a change costs

    void oneTickInsertsOneItem() {
        Desk on("b");
        const RowSpy names(on.unsorted());
        const RowSpy lines(on.sorted());
        on.tick("T", "E");
        QCOMPARE(on.names(), QStringList({"A", "C", "D", "E"}));
        QCOMPARE(names.rows(), 1);
        on.tick("T", "C", false);
        QCOMPARE(on.names(), QStringList({"A", "D", "E"}));
        QCOMPARE(names.rows(), 2);
        QCOMPARE(lines.rows(), 0);
        on.tick("T", "B", false);
        QCOMPARE(lines.rows(), 1);
        QCOMPARE(names.rows(), 2);
    }

    void changesElsewhereLeaveTheListsAlone() {
        Desk on("b, c");
        const RowSpy names(on.unsorted());
        const RowSpy lines(on.sorted());
        on.builder.setTailText("LIMIT 5");
        on.builder.SelectPanel->SetDistinct(-1);
        on.builder.PageCtrl->setCurrentIndex(0);
        on.builder.PageCtrl->setCurrentIndex(sortingPage);
        on.panel()->RefreshFields();
        on.focus(true, 0);
        on.key(true, Qt::Key_Space);
        on.key(true, Qt::Key_Down, Qt::AltModifier);
        QCOMPARE(on.orderBy(), "T.C, T.B DESC");
        QCOMPARE(names.rows() + lines.rows(), 0);
    }

    void refreshingKeepsTheIndexOfTheSelectedName() {
        Desk on("d");
        on.focus(false, 1);
        on.tick("T", "A", false);
        QCOMPARE(on.names(), QStringList({"B", "C"}));
        QCOMPARE(on.selectedName(), "C");
        on.tick("T", "B", false);
        QCOMPARE(on.selectedName(), QString());
    }

    void manyColumnsAreShownInOneGo() {
        HostedBuilder on;
        QStringList fields;
        for (int index = 0; index < 2000; ++index) fields << QString("F%1").arg(index);
        on.host.add("WIDE", fields);
        on.addTable("WIDE");
        auto* unsorted = on.builder.OrderPanel->findChild<QListWidget*>();
        const RowSpy names(unsorted);
        on.table("WIDE")->SetFieldState(2);
        QCOMPARE(unsorted->count(), 2000);
        QCOMPARE(names.rows(), 2000);
        QCOMPARE(names.inserted.size(), 1);
        on.table("WIDE")->SetFieldState(0);
        QCOMPARE(unsorted->count(), 0);
        QCOMPARE(names.removed.size(), 1);
    }

    // --- unique records

    void uniqueRecordsAreChosenByKeys() {
        Desk on;
        on.builder.PageCtrl->setCurrentIndex(1);
        QCheckBox* box = on.builder.SelectPanel->distinctBox();
        QVERIFY(!box->toolTip().isEmpty());
        box->setFocus();
        QVERIFY(box->hasFocus());
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), 0);
        QTest::keyClick(box, Qt::Key_Space);
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), -1);
        QCOMPARE(on.changes, 1);
        QVERIFY(on.builder.GetSQLStatment().startsWith("SELECT DISTINCT "));
        QTest::keyClick(box, Qt::Key_Tab);
        QVERIFY(on.grid()->hasFocus());
        QTest::keyClick(on.grid(), Qt::Key_Backtab);
        QVERIFY(box->hasFocus());
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), 0);
        QCOMPARE(on.changes, 2);
    }
};

QTEST_MAIN(OrderPanelHandTest)
#include "tst_orderpanelhand.moc"
