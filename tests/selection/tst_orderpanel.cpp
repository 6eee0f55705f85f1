// SPDX-License-Identifier: MIT
// The sorting page: widgets, ORDER BY written and loaded.
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>

using orvtest::HostedBuilder;

namespace {

/// The widgets of a sorting page.
class Page {
public:
    explicit Page(TorvQDOrderPanel* on)
        : panel(on),
          label(on->findChild<QLabel*>(QString(), Qt::FindDirectChildrenOnly)),
          unsorted(on->findChild<QListWidget*>()),
          sorted(on->findChild<QTreeWidget*>()) {
        for (QPushButton* button :
             on->findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly)) {
            buttons << button;
        }
    }
    [[nodiscard]] QPushButton* button(int index) const { return buttons[index]; }
    [[nodiscard]] QPushButton* add() const { return button(0); }
    [[nodiscard]] QPushButton* remove() const { return button(1); }
    [[nodiscard]] QPushButton* order() const { return button(2); }
    [[nodiscard]] QPushButton* up() const { return button(3); }
    [[nodiscard]] QPushButton* down() const { return button(4); }

    [[nodiscard]] QStringList names() const {
        QStringList texts;
        for (int row = 0; row < unsorted->count(); ++row) texts << unsorted->item(row)->text();
        return texts;
    }
    [[nodiscard]] QStringList lines() const {
        QStringList texts;
        for (int row = 0; row < sorted->topLevelItemCount(); ++row) {
            const QTreeWidgetItem* item = sorted->topLevelItem(row);
            texts << item->text(0) + u' ' + item->text(1);
        }
        return texts;
    }
    /// Which of the buttons are enabled, by their first letters: add, remove, order, up, down.
    [[nodiscard]] QString enabled() const {
        QString letters;
        const QString all = "aroud";
        for (int index = 0; index < buttons.size(); ++index) {
            if (buttons[index]->isEnabled()) letters += all[index];
        }
        return letters;
    }
    void selectName(int row) const { unsorted->setCurrentRow(row); }
    void selectLine(int row) const { sorted->setCurrentItem(sorted->topLevelItem(row)); }
    [[nodiscard]] int selectedLine() const {
        return sorted->selectedItems().isEmpty()
                   ? -1
                   : sorted->indexOfTopLevelItem(sorted->selectedItems().front());
    }

    TorvQDOrderPanel* panel;
    QLabel* label;
    QListWidget* unsorted;
    QTreeWidget* sorted;
    QList<QPushButton*> buttons;
};

/// A builder whose columns are T.A, T.B and T.C.
class SortedBuilder : public HostedBuilder {
public:
    explicit SortedBuilder(const QString& orderBy = {}) {
        builder.LoadSQL("select t.a, t.b, t.c from t" +
                        (orderBy.isEmpty() ? QString() : " order by " + orderBy));
        changes = 0;
    }
    Page page{builder.OrderPanel};
};

QString orderBy(HostedBuilder& on) {
    return on.builder.OrderPanel->GetSQLStatment();
}

/// Tells drops where they come from: only a real drag has a source.
class DropPanel : public TorvQDOrderPanel {
public:
    using TorvQDOrderPanel::TorvQDOrderPanel;
    QObject* source = nullptr;

protected:
    QObject* dragSource(const QDropEvent&) const override { return source; }
};

/// Sends an event of a drag to the list; whether it was accepted.
template <typename Event>
bool drag(QAbstractItemView* on, Event&& event) {
    event.setAccepted(!event.isAccepted());
    QCoreApplication::sendEvent(on->viewport(), &event);
    return event.isAccepted();
}

bool dragOver(QAbstractItemView* on) {
    QMimeData data;
    const bool entered = drag(on, QDragEnterEvent(QPoint(5, 5), Qt::MoveAction | Qt::CopyAction,
                                                  &data, Qt::LeftButton, Qt::NoModifier));
    const bool moved = drag(on, QDragMoveEvent(QPoint(6, 6), Qt::MoveAction | Qt::CopyAction, &data,
                                               Qt::LeftButton, Qt::NoModifier));
    return entered && moved;
}

// As in a drag, what is not accepted when it comes in is never dropped.
Qt::DropAction drop(QAbstractItemView* on) {
    if (!dragOver(on)) return Qt::IgnoreAction;
    QMimeData data;
    QDropEvent event(QPointF(5, 5), Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton,
                     Qt::NoModifier);
    return drag(on, event) ? event.dropAction() : Qt::IgnoreAction;
}

}  // namespace

class OrderPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the widgets

    void mustHaveAParent() {
        QCOMPARE(orvtest::errorOf([] { TorvQDOrderPanel panel(nullptr); }),
                 "Invalide parent for OrderPanel");
    }

    void partsHaveTheirCaptions() {
        const SortedBuilder on;
        QCOMPARE(on.page.label->text(), "Output fields");
        QStringList captions;
        for (const QPushButton* button : on.page.buttons) captions << button->text();
        QCOMPARE(captions, QStringList({"Add", "Remove", "A..Z", "Up", "Down"}));
        QCOMPARE(on.page.sorted->headerItem()->text(0), "Sorted fields");
        QCOMPARE(on.page.sorted->headerItem()->text(1), "Sort order");
        for (const QPushButton* button : on.page.buttons) QVERIFY(!button->toolTip().isEmpty());
    }

    void everythingIsDisabledAtFirst() {
        const HostedBuilder on;
        QCOMPARE(Page(on.builder.OrderPanel).enabled(), "");
        QCOMPARE(on.builder.OrderPanel->focusPolicy(), Qt::StrongFocus);
    }

    void sortedListIsAReport() {
        const SortedBuilder on("a");
        const QTreeWidget* list = on.page.sorted;
        QCOMPARE(list->columnCount(), 2);
        QVERIFY(!list->isHeaderHidden());
        QVERIFY(!list->rootIsDecorated());
        QVERIFY(list->allColumnsShowFocus());
        QCOMPARE(list->selectionBehavior(), QAbstractItemView::SelectRows);
        QCOMPARE(list->selectionMode(), QAbstractItemView::SingleSelection);
        QVERIFY(!(list->topLevelItem(0)->flags() & Qt::ItemIsEditable));
        for (int column = 0; column < 2; ++column) {
            QCOMPARE(list->header()->sectionResizeMode(column), QHeaderView::ResizeToContents);
        }
    }

    void tabVisitsThePartsInOrder() {
        const SortedBuilder on;
        const QList<QWidget*> expected = {on.page.unsorted, on.page.add(),  on.page.remove(),
                                          on.page.up(),     on.page.down(), on.page.order(),
                                          on.page.sorted};
        QList<QWidget*> chain;
        for (QWidget* widget = on.page.panel->nextInFocusChain(); chain.size() < expected.size();
             widget = widget->nextInFocusChain()) {
            if (widget->focusPolicy() & Qt::TabFocus && widget->parentWidget() == on.page.panel) {
                chain << widget;
            }
        }
        QCOMPARE(chain, expected);
    }

    void layout_data() {
        QTest::addColumn<QSize>("size");
        QTest::newRow("even") << QSize(400, 200);
        QTest::newRow("odd") << QSize(401, 151);
        QTest::newRow("wide") << QSize(1000, 80);
    }
    void layout() {
        QFETCH(QSize, size);
        QWidget window;
        TorvQDOrderPanel panel(&window);
        QFont font = panel.font();
        font.setPixelSize(11);
        panel.setFont(font);
        panel.resize(size);
        QResizeEvent event(size, QSize());
        QCoreApplication::sendEvent(&panel, &event);
        const Page page(&panel);
        const int labelWidth = (size.width() - 50) / 2;
        QCOMPARE(page.label->pos(), QPoint(0, 0));
        QCOMPARE(page.label->height(), 20);
        QCOMPARE(page.unsorted->geometry(), QRect(0, 22, labelWidth - 2, size.height() - 20));
        QCOMPARE(page.sorted->geometry(),
                 QRect(labelWidth + 52, 22, labelWidth - 2, size.height() - 22));
        QCOMPARE(page.add()->geometry(), QRect(labelWidth, 30, 50, 30));
        QCOMPARE(page.remove()->geometry(), QRect(labelWidth, 70, 50, 30));
        QCOMPARE(page.up()->geometry(), QRect(labelWidth + 52, 0, 35, 20));
        QCOMPARE(page.down()->geometry(), QRect(labelWidth + 89, 0, 35, 20));
        QCOMPARE(page.order()->geometry(), QRect(size.width() - 32, 0, 30, 20));
    }

    void largerFontsGrowTheHeights() {
        QWidget window;
        TorvQDOrderPanel panel(&window);
        panel.resize(400, 200);
        QFont font = panel.font();
        font.setPixelSize(40);
        panel.setFont(font);
        const Page page(&panel);
        const int label = page.label->height();
        QVERIFY(label >= QFontMetrics(font).height());
        QCOMPARE(page.unsorted->geometry().top(), label + 2);
        QCOMPARE(page.sorted->geometry().top(), label + 2);
        QVERIFY(page.add()->height() >= QFontMetrics(font).height());
        QVERIFY(!page.add()->geometry().intersects(page.remove()->geometry()));
    }

    // --- buttons

    void buttonsFollowTheSelection() {
        const SortedBuilder on("a, b desc");
        QCOMPARE(on.page.enabled(), "");
        on.page.selectName(0);
        QCOMPARE(on.page.enabled(), "a");
        on.page.selectLine(0);
        QCOMPARE(on.page.enabled(), "arod");
        QCOMPARE(on.page.order()->text(), "Z..A");
        on.page.selectLine(1);
        QCOMPARE(on.page.enabled(), "arou");
        QCOMPARE(on.page.order()->text(), "A..Z");
        on.page.sorted->clearSelection();
        QCOMPARE(on.page.enabled(), "a");
    }

    void onlyLineCannotMove() {
        const SortedBuilder on("a");
        on.page.selectLine(0);
        QCOMPARE(on.page.enabled(), "ro");
    }

    void keysSelectAsTheMouseDoes() {
        const SortedBuilder on("a, b");
        on.page.selectLine(0);
        QTest::keyClick(on.page.sorted, Qt::Key_Down);
        QCOMPARE(on.page.enabled(), "rou");
        QTest::keyClick(on.page.unsorted, Qt::Key_Down);
        QCOMPARE(on.page.enabled(), "arou");
    }

    void addSortsTheSelectedName() {
        SortedBuilder on("c");
        on.page.selectName(1);
        on.page.add()->click();
        QCOMPARE(on.page.lines(), QStringList({"C Ascending", "B Ascending"}));
        QCOMPARE(on.page.names(), QStringList("A"));
        QCOMPARE(orderBy(on), "T.C, T.B");
        QCOMPARE(on.changes, 1);
        on.page.unsorted->clearSelection();
        on.page.panel->_AddClick();
        QCOMPARE(on.page.lines().size(), 2);
        QCOMPARE(on.changes, 1);
    }

    void addingKeepsTheSortedSelection() {
        const SortedBuilder on("a, b");
        on.page.selectLine(0);
        on.page.selectName(0);
        on.page.add()->click();
        QCOMPARE(on.page.selectedLine(), 0);
        QCOMPARE(on.page.enabled(), "rod");
        QCOMPARE(on.page.names(), QStringList());
    }

    void removeOffersTheNameAgain() {
        SortedBuilder on("a, b, c");
        on.page.selectLine(1);
        on.page.remove()->click();
        QCOMPARE(on.page.lines(), QStringList({"A Ascending", "C Ascending"}));
        QCOMPARE(on.page.names(), QStringList("B"));
        QCOMPARE(orderBy(on), "T.A, T.C");
        QCOMPARE(on.page.selectedLine(), 1);
        QCOMPARE(on.page.enabled(), "rou");
        QCOMPARE(on.changes, 1);
        on.page.sorted->clearSelection();
        on.page.panel->_RemoveClick();
        QCOMPARE(on.changes, 1);
    }

    void orderButtonKeepsItsCaptionUntilTheSelectionChanges() {
        SortedBuilder on("a, b");
        on.page.selectLine(0);
        QCOMPARE(on.page.order()->text(), "Z..A");
        on.page.order()->click();
        QCOMPARE(on.page.lines(), QStringList({"A Descending", "B Ascending"}));
        QCOMPARE(on.page.order()->text(), "Z..A");
        QCOMPARE(on.page.selectedLine(), 0);
        QCOMPARE(on.page.enabled(), "rod");
        QCOMPARE(orderBy(on), "T.A DESC, T.B");
        QCOMPARE(on.changes, 1);
        on.page.selectLine(1);
        on.page.selectLine(0);
        QCOMPARE(on.page.order()->text(), "A..Z");
        on.page.order()->click();
        QCOMPARE(orderBy(on), "T.A, T.B");
    }

    void clickOnTheSelectedLineBringsTheCaptionUpToDate() {
        SortedBuilder on("a");
        on.page.panel->resize(400, 200);
        on.page.selectLine(0);
        on.page.order()->click();
        QCOMPARE(on.page.order()->text(), "Z..A");
        Q_EMIT on.page.sorted->itemClicked(on.page.sorted->topLevelItem(0), 0);
        QCOMPARE(on.page.order()->text(), "A..Z");
    }

    void linesMoveUpAndDown() {
        SortedBuilder on("a, b desc, c");
        on.page.selectLine(1);
        on.page.up()->click();
        QCOMPARE(orderBy(on), "T.B DESC, T.A, T.C");
        QCOMPARE(on.page.selectedLine(), 0);
        QCOMPARE(on.page.enabled(), "rod");
        on.page.down()->click();
        on.page.down()->click();
        QCOMPARE(orderBy(on), "T.A, T.C, T.B DESC");
        QCOMPARE(on.page.selectedLine(), 2);
        QCOMPARE(on.page.enabled(), "rou");
        QCOMPARE(on.changes, 3);
        on.page.panel->_MoveDown();
        on.page.sorted->clearSelection();
        on.page.panel->_MoveUp();
        on.page.panel->_MoveDown();
        on.page.panel->_ChangeOrder();
        QCOMPARE(on.changes, 3);
    }

    // A host may do anything about a change, destroying the control included.
    void hostMayClearInTheMiddleOfAChange() {
        SortedBuilder on("a, b");
        on.page.selectLine(0);
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            on.builder.disconnect(this);
            on.builder.Clear();
        });
        on.page.order()->click();
        QCOMPARE(on.page.lines(), QStringList());
        QCOMPARE(on.page.names(), QStringList());
        QCOMPARE(on.page.enabled(), "");
    }

    void errorOfASlotGoesToTheHandler() {
        SortedBuilder on("a, b");
        orvtest::RecordedServices services;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [] { throw orv::Error(QStringLiteral("slot")); });
        on.page.selectLine(0);
        on.page.order()->click();
        QCOMPARE(services.errors, QStringList("slot"));
        on.builder.disconnect(this);
        on.builder.OrderPanel->RefreshFields();
        QCOMPARE(on.page.order()->text(), "A..Z");
    }

    // --- drags between the lists

    void listsTakeDragsOfEachOtherOnly() {
        QWidget window;
        DropPanel panel(&window);
        const Page page(&panel);
        for (QObject* source :
             {static_cast<QObject*>(page.unsorted), static_cast<QObject*>(page.sorted),
              static_cast<QObject*>(nullptr), static_cast<QObject*>(&window)}) {
            panel.source = source;
            QCOMPARE(dragOver(page.sorted), source == page.unsorted);
            QCOMPARE(dragOver(page.unsorted), source == page.sorted);
        }
        QVERIFY(page.unsorted->dragEnabled());
        QVERIFY(page.sorted->dragEnabled());
        QVERIFY(page.unsorted->viewport()->acceptDrops());
        QVERIFY(page.sorted->viewport()->acceptDrops());
    }

    // The list that the drag came from would delete its rows itself after a move.
    void dropAddsOrRemovesOnceTheDragIsOver() {
        SortedBuilder on("a");
        DropPanel panel(on.page.panel->parentWidget());
        panel.grid = on.grid();
        panel.RefreshFields();
        const Page page(&panel);
        page.selectName(1);
        panel.source = page.unsorted;
        QCOMPARE(drop(page.sorted), Qt::CopyAction);
        QCOMPARE(page.lines(), QStringList());
        QCoreApplication::processEvents();
        QCOMPARE(page.lines(), QStringList("B Ascending"));
        QCOMPARE(page.names(), QStringList({"A", "C"}));
        page.selectLine(0);
        panel.source = page.sorted;
        QCOMPARE(drop(page.unsorted), Qt::CopyAction);
        QCoreApplication::processEvents();
        QCOMPARE(page.lines(), QStringList());
        QCOMPARE(page.names(), QStringList({"A", "B", "C"}));
        QCOMPARE(drop(page.sorted), Qt::IgnoreAction);
        QCoreApplication::processEvents();
        QCOMPARE(page.lines(), QStringList());
    }

    void handlersOfDrops() {
        const SortedBuilder on("a");
        bool accepted = true;
        on.page.panel->_DragOverOrder(on.page.sorted, accepted);
        QVERIFY(!accepted);
        on.page.panel->_DragOverUnOrder(on.page.sorted, accepted);
        QVERIFY(accepted);
        on.page.selectName(0);
        on.page.panel->_DragDropOrder();
        QCOMPARE(on.page.lines(), QStringList({"A Ascending", "B Ascending"}));
        on.page.selectLine(0);
        on.page.panel->_DragDropUnOrder();
        QCOMPARE(on.page.lines(), QStringList("B Ascending"));
    }

    // --- refreshing

    void renamedColumnLosesItsLine() {
        SortedBuilder on("a, b");
        on.grid()->LoadSQL(TorvQDParser(QStringLiteral("SELECT T.A Z, T.B, T.C FROM T")));
        QCOMPARE(on.page.lines(), QStringList("B Ascending"));
        QCOMPARE(on.page.names(), QStringList({"Z", "C"}));
        QCOMPARE(orderBy(on), "T.B");
    }

    void refreshingKeepsBothSelections() {
        SortedBuilder on("a, b");
        on.page.selectLine(1);
        on.page.selectName(0);
        on.tick("T", "D");
        QCOMPARE(on.page.names(), QStringList({"C", "D"}));
        QCOMPARE(on.page.unsorted->currentRow(), 0);
        QCOMPARE(on.page.selectedLine(), 1);
        QCOMPARE(on.page.enabled(), "arou");
        on.tick("T", "A", false);
        QCOMPARE(on.page.selectedLine(), 0);
        QCOMPARE(on.page.enabled(), "aro");
        on.tick("T", "B", false);
        QCOMPARE(on.page.selectedLine(), -1);
        QCOMPARE(on.page.enabled(), "a");
    }

    void selectionBeyondTheListIsDropped() {
        SortedBuilder on;
        on.page.selectName(2);
        on.tick("T", "A", false);
        QVERIFY(on.page.unsorted->selectedItems().isEmpty());
        QCOMPARE(on.page.enabled(), "");
    }

    void showingThePageRefreshesIt() {
        SortedBuilder on("a");
        on.builder.PageCtrl->setCurrentIndex(3);
        QCOMPARE(on.page.names(), QStringList({"B", "C"}));
        on.page.selectLine(0);
        on.page.panel->_ChangeOrder();
        QCOMPARE(on.page.order()->text(), "Z..A");
        on.builder.PageCtrl->setCurrentIndex(0);
        on.builder.PageCtrl->setCurrentIndex(3);
        QCOMPARE(on.page.lines(), QStringList("A Descending"));
        QCOMPARE(on.page.selectedLine(), 0);
        QCOMPARE(on.page.order()->text(), "A..Z");
    }

    void clearingEmptiesTheSortedList() {
        SortedBuilder on("a desc");
        on.builder.OrderPanel->ClearContents();
        QCOMPARE(on.page.lines(), QStringList());
        QCOMPARE(on.page.names(), QStringList({"A", "B", "C"}));
        QCOMPARE(on.changes, 1);
        on.builder.OrderPanel->ClearContents();
        QCOMPARE(on.changes, 1);
    }

    // --- writing

    void aggregateIsSortedByItsPosition() {
        HostedBuilder on;
        on.builder.LoadSQL(
            "select t.c, sum(t.a) s, lower(t.b) l from t group by t.c, lower(t.b) "
            "order by s desc, l, c");
        QCOMPARE(orderBy(on), "2 DESC, 3, T.C");
        QCOMPARE(on.findings(), QStringList());
    }

    void pageOutsideABuilderWritesNothing() {
        QWidget window;
        TorvQDOrderPanel panel(&window);
        const QString error = "Fatal error! Could not find parent for sorting page!";
        QCOMPARE(orvtest::errorOf([&] { (void)panel.GetSQLStatment(); }), error);
        const TorvQDParser root(QStringLiteral("SELECT A FROM T ORDER BY A"));
        QCOMPARE(orvtest::errorOf([&] { panel.LoadSQL(*root.Clause(inOrderBy)); }), error);
        QCOMPARE(orvtest::errorOf([&] { panel.LoadSQL(*root.Clause(inFrom)); }), error);
    }

    // --- loading

    void items_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("written");
        const auto row = [](const char* list, const char* written) {
            QTest::newRow(list) << QString::fromLatin1(list) << QString::fromLatin1(written);
        };
        row("1 desc", "T.A DESC");
        row("1", "T.A");
        row("5, 4 desc, 1 asc", "5, 4 DESC, T.A");
        row("t.b", "T.B");
        row("t.b ascending, t.a descending", "T.B, T.A DESC");
        row("x desc", "T.B DESC");
        row("X", "T.B");
        row("\"x\"", "T.B");
        row("b", "T.B");
        row("a, A desc", "T.A, T.A DESC");
        row("n", "4");
        row("count(t.d) desc", "4 DESC");
        row("lower( T.E )", "5");
        row("l", "5");
        row("e.salary", "3");
        row("\"E\".salary", "3");
    }
    void items() {
        QFETCH(QString, list);
        QFETCH(QString, written);
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select t.a, t.b x, salary, count(t.d) n, lower(t.e) l from t, employee e "
            "group by t.a, t.b, salary, lower(t.e) order by " +
            list);
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(orderBy(on), written);
    }

    void itemsThatMatchNothingAreFindings_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("findings");
        const auto row = [](const char* list, const QStringList& findings) {
            QTest::newRow(list) << QString::fromLatin1(list) << findings;
        };
        row("0", {"0"});
        row("3", {"3"});
        row("1.5 desc", {"1.5 desc"});
        row("'x'", {"'x'"});
        row("t.c", {"t.c"});
        row("lower(t.a)", {"lower(t.a)"});
        row("t.a nulls last", {"t.a nulls last"});
        row("desc", {"desc"});
        row("99999999999999999999", {"99999999999999999999"});
    }
    void itemsThatMatchNothingAreFindings() {
        QFETCH(QString, list);
        QFETCH(QStringList, findings);
        HostedBuilder on;
        on.builder.LoadSQL("select t.a, t.b from t order by t.b, " + list + ", 1");
        QCOMPARE(orderBy(on), "T.B, T.A");
        QCOMPARE(on.findings(), findings);
    }

    void columnWithoutANameIsNotSorted() {
        SortedBuilder on;
        on.grid()->CheckField("T.");
        QVERIFY(orv::isBlank(on.grid()->columns()[3].name));
        const TorvQDParser root(QStringLiteral("SELECT A FROM T ORDER BY 4, 1"));
        on.builder.OrderPanel->LoadSQL(*root.Clause(inOrderBy));
        QCOMPARE(orderBy(on), "T.A");
        QCOMPARE(on.page.names(), QStringList({"B", "C"}));
    }

    void missingItemsAreFindings() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a, t.b from t order by");
        QCOMPARE(on.findings(), QStringList("order by"));
        on.builder.LoadSQL("select t.a, t.b from t order by t.a,, t.b");
        QCOMPARE(orderBy(on), "T.A, T.B");
        QCOMPARE(on.findings(), QStringList("order by t.a,, t.b"));
    }

    // An output name comes before a field of that name.
    void outputNameComesFirst() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a b, t.b a from t order by a, t.a desc");
        QCOMPARE(orderBy(on), "T.B, T.A DESC");
    }

    void equalOutputNamesSortAsLoaded() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select t.a, u.a from t, u order by u.a desc, 1");
        QCOMPARE(orderBy(on), "U.A DESC, T.A");
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(Page(on.builder.OrderPanel).names(), QStringList());
    }

    void loadingReplacesTheLines() {
        SortedBuilder on("a, b");
        on.builder.LoadSQL("select t.a, t.b from t order by b");
        QCOMPARE(on.page.lines(), QStringList("B Ascending"));
        on.builder.LoadSQL("select t.a, t.b from t");
        QCOMPARE(on.page.lines(), QStringList());
        QCOMPARE(on.page.names(), QStringList({"A", "B"}));
    }

    void nodeOfAnotherClauseIsRefused() {
        SortedBuilder on("a");
        const TorvQDParser root(QStringLiteral("SELECT A FROM T WHERE B = 1 ORDER BY A"));
        for (const TLocationKinds location : {inFrom, inWhere}) {
            QCOMPARE(
                orvtest::errorOf([&] { on.builder.OrderPanel->LoadSQL(*root.Clause(location)); }),
                "There is not valid object for extract order list");
        }
        QCOMPARE(orderBy(on), "T.A");
    }

    void nodeIsLoadedOutsideAStatementToo() {
        SortedBuilder on("a");
        const TorvQDParser root(
            QStringLiteral("SELECT A FROM T ORDER BY T.C DESC, 1, 7, 'x', C, LOWER(A)"));
        on.builder.OrderPanel->LoadSQL(*root.Clause(inOrderBy));
        QCOMPARE(orderBy(on), "T.C DESC, T.A, T.C");
        QCOMPARE(on.changes, 1);
    }

    void manyItems() {
        HostedBuilder on;
        QStringList fields;
        for (int index = 0; index < 500; ++index) fields << QString("F%1").arg(index);
        on.host.add("WIDE", fields);
        on.builder.LoadSQL("select * from wide order by " + fields.join(", "));
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.OrderPanel->sortList().lines().size(), std::size_t(500));
    }
};

QTEST_MAIN(OrderPanelTest)
#include "tst_orderpanel.moc"
