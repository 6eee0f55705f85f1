// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldList.h"
#include "support/PagesHostStandIn.h"
#include "support/TestTools.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPointer>
#include <QShortcut>
#include <QSignalSpy>

#include <memory>

using orvtest::PagesHostStandIn;

namespace {

// A page with a list, and something else that can take the focus.
class Page : public PagesHostStandIn {
public:
    Page() {
        addTable(QStringLiteral("STAFF"), {"SALARY", "EMP_NO", "NAME"});
        addTable(QStringLiteral("DEPT"), {"DEPT_NO", "NAME"});
        other = new QLineEdit(this);
        other->setGeometry(250, 0, 50, 20);
        list = new orv::FieldList(this);
        list->setGeometry(QRect(QPoint(5, 5), orv::FieldList::sizeWithin(QSize(400, 300))));
        list->chosen = [this](const QString& name) { told << "chosen " + name; };
        list->cancelled = [this] { told << QStringLiteral("cancelled"); };
        list->exited = [this](QWidget* focus) {
            told << QStringLiteral("exited");
            newFocus = focus;
        };
        resize(400, 300);
        show();
    }
    // More rows than are shown at once.
    void addManyTables() {
        for (int table = 0; table < 20; ++table) {
            addTable(QStringLiteral("X%1").arg(table, 2, 10, QChar(u'0')), {"F", "G"});
        }
    }
    void open() { list->open(*this); }
    [[nodiscard]] TTreeViewEx* tree() const { return list->tree(); }
    [[nodiscard]] QLineEdit* filter() const { return list->filter(); }
    [[nodiscard]] QModelIndex table(int row) const { return tree()->model()->index(row, 0); }
    [[nodiscard]] QModelIndex field(int row, int of) const {
        return tree()->model()->index(row, 0, table(of));
    }
    [[nodiscard]] QString current() const { return tree()->currentIndex().data().toString(); }
    // A real double click begins with a press.
    void doubleClick(const QModelIndex& index) const {
        const QPoint place = tree()->visualRect(index).center();
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, place);
    }

    orv::FieldList* list;
    QLineEdit* other;
    QStringList told;
    QWidget* newFocus = nullptr;
};

}  // namespace

class FieldListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void isHiddenUntilItIsOpened() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        QVERIFY(page.list->isHidden());
        QVERIFY(!page.list->isOpen());
        page.open();
        QVERIFY(page.list->isVisible());
        QVERIFY(page.list->isOpen());
        QCOMPARE(page.list->pos(), QPoint(5, 5));
        QVERIFY(page.filter()->hasFocus());
        QCOMPARE(page.children().last(), page.list);  // in front
    }

    void treeIsPlain() {
        const Page page;
        QCOMPARE(page.tree()->frameShape(), QFrame::NoFrame);
        QCOMPARE(page.tree()->editTriggers(), QAbstractItemView::NoEditTriggers);
        QVERIFY(page.tree()->isHeaderHidden());
        QVERIFY(!page.filter()->hasFrame());
        QCOMPARE(page.filter()->placeholderText(), "Filter");
        for (const QWidget* part :
             {static_cast<QWidget*>(page.list), static_cast<QWidget*>(page.filter()),
              static_cast<QWidget*>(page.tree())}) {
            QVERIFY(!part->accessibleName().isEmpty());
        }
    }

    void isNeverLargerThanTheAreaItLiesOn() {
        const QSize usual = orv::FieldList::sizeWithin(QSize(1000, 1000));
        QVERIFY(usual.width() >= 200 && usual.height() >= 150);
        QCOMPARE(orv::FieldList::sizeWithin(QSize(100, 1000)), QSize(100, usual.height()));
        QCOMPARE(orv::FieldList::sizeWithin(QSize(1000, 60)), QSize(usual.width(), 60));
    }

    // --- what is shown

    void fewFieldsAreShownAtOnceManyAreNot() {
        Page page;
        page.open();
        QVERIFY(page.tree()->isExpanded(page.table(0)));
        QVERIFY(page.tree()->isExpanded(page.table(1)));
        page.list->discard();
        page.addManyTables();
        page.open();
        QVERIFY(!page.tree()->isExpanded(page.table(0)));
        QVERIFY(!page.tree()->isExpanded(page.table(1)));
    }

    void onlyTableIsOpen() {
        Page page;
        page.removeTables();
        QStringList names;
        for (int number = 100; number < 200; ++number) names << "F" + QString::number(number);
        page.addTable("T", names);
        page.open();
        QVERIFY(page.tree()->isExpanded(page.table(0)));
        QCOMPARE(page.tree()->model()->rowCount(page.table(0)), 100);
    }

    void filterShowsWhatMatchesAndTakesTheFirst() {
        Page page;
        page.addManyTables();
        page.open();
        QTest::keyClicks(page.filter(), "name");
        QCOMPARE(page.tree()->model()->rowCount(), 2);
        QVERIFY(page.tree()->isExpanded(page.table(0)));
        QVERIFY(page.tree()->isExpanded(page.table(1)));
        QCOMPARE(page.tree()->currentIndex(), page.field(0, 0));
        QTest::keyClick(page.filter(), Qt::Key_Return);
        QCOMPARE(page.told, QStringList("chosen DEPT.NAME"));
        QVERIFY(page.list->isOpen());  // the owner closes it
        page.filter()->clear();
        QCOMPARE(page.tree()->model()->rowCount(), 22);
        QVERIFY(!page.tree()->isExpanded(page.table(0)));
    }

    // Each table is opened by itself; opening all at once would keep an index of every field.
    void manyFieldsAreFoundAtOnce() {
        Page page;
        page.removeTables();
        for (int table = 0; table < 200; ++table) {
            QStringList names;
            for (int field = 0; field < 300; ++field) names << "F" + QString::number(field);
            page.addTable("T" + QString::number(table), names);
        }
        QElapsedTimer watch;
        watch.start();
        page.open();
        QTest::keyClicks(page.filter(), "F1");
        page.tree()->grab();
        QVERIFY(page.tree()->isExpanded(page.table(199)));
        QCOMPARE(page.current(), "F1");
        // Some hundredths of a second; what it must not be is seconds for each key.
        QVERIFY2(watch.elapsed() < 3000, qPrintable(QString::number(watch.elapsed())));
    }

    void openingAgainForgetsTheFilter() {
        Page page;
        page.open();
        QTest::keyClicks(page.filter(), "sal");
        page.list->discard();
        page.open();
        QCOMPARE(page.filter()->text(), "");
        QCOMPARE(page.tree()->model()->rowCount(), 2);
    }

    void openingAgainShowsTheTablesOfNow() {
        Page page;
        page.open();
        page.list->discard();
        page.removeTables();
        page.addTable("LATER", {"A"});
        page.open();
        QCOMPARE(page.table(0).data().toString(), "LATER");
        QCOMPARE(page.tree()->model()->rowCount(), 1);
    }

    void tablesThatGoWhileItIsOpenStayInIt() {
        Page page;
        page.open();
        page.removeTables();
        QTest::keyClicks(page.filter(), "salary");
        QTest::keyClick(page.filter(), Qt::Key_Return);
        QCOMPARE(page.told, QStringList("chosen STAFF.SALARY"));
    }

    void nothingIsChosenAtFirst() {
        Page page;
        page.open();
        QVERIFY(!page.tree()->currentIndex().isValid());
        QTest::keyClick(page.filter(), Qt::Key_Return);
        QVERIFY(page.told.isEmpty());
    }

    // --- choosing

    void downGoesFromTheFilterToTheTree() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        QTest::keyClick(page.filter(), Qt::Key_Down);
        QVERIFY(page.tree()->hasFocus());
        QCOMPARE(page.current(), "DEPT");
        QTest::keyClick(page.tree(), Qt::Key_Down);
        QCOMPARE(page.current(), "DEPT_NO");
        QTest::keyClick(page.tree(), Qt::Key_Return);
        QCOMPARE(page.told, QStringList("chosen DEPT.DEPT_NO"));
    }

    void downFromAFilterWithAMatchGoesOn() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        QTest::keyClicks(page.filter(), "no");
        QCOMPARE(page.current(), "DEPT_NO");
        QTest::keyClick(page.filter(), Qt::Key_Down);
        QVERIFY(page.tree()->hasFocus());
        QCOMPARE(page.current(), "STAFF");
    }

    void upFromTheFirstRowGoesToTheFilter() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        QTest::keyClick(page.filter(), Qt::Key_Down);
        QTest::keyClick(page.tree(), Qt::Key_Down);
        QTest::keyClick(page.tree(), Qt::Key_Up);
        QVERIFY(page.tree()->hasFocus());
        QTest::keyClick(page.tree(), Qt::Key_Up);
        QVERIFY(page.filter()->hasFocus());
        QVERIFY(page.told.isEmpty());
    }

    void typingInTheTreeGoesToTheFilter() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        QTest::keyClick(page.filter(), Qt::Key_Down);
        QTest::keyClick(page.tree(), Qt::Key_S);
        QVERIFY(page.filter()->hasFocus());
        QCOMPARE(page.filter()->text(), "s");
        QTest::keyClicks(page.filter(), "al");
        QCOMPARE(page.current(), "SALARY");
        page.tree()->setFocus();
        QTest::keyClick(page.tree(), Qt::Key_Backspace);
        QCOMPARE(page.filter()->text(), "sa");
        QVERIFY(page.told.isEmpty());
    }

    void enterOnATableOpensAndClosesIt() {
        Page page;
        page.addManyTables();
        page.open();
        QTest::keyClick(page.filter(), Qt::Key_Down);
        for (const bool isOpen : {true, false, true}) {
            QTest::keyClick(page.tree(), Qt::Key_Enter, Qt::KeypadModifier);
            QCOMPARE(page.tree()->isExpanded(page.table(0)), isOpen);
        }
        QVERIFY(page.told.isEmpty());
    }

    void doubleClickOnAFieldChoosesIt() {
        Page page;
        page.open();
        page.doubleClick(page.field(1, 1));
        QCOMPARE(page.told, QStringList("chosen STAFF.NAME"));
    }

    void doubleClickOnATableOpensIt() {
        Page page;
        page.addManyTables();
        page.open();
        page.doubleClick(page.table(1));
        QVERIFY(page.tree()->isExpanded(page.table(1)));
        page.doubleClick(page.table(1));
        QVERIFY(!page.tree()->isExpanded(page.table(1)));
        QVERIFY(page.told.isEmpty());
    }

    // --- leaving

    void escapeCancels_data() {
        QTest::addColumn<bool>("inTree");
        QTest::newRow("in the filter") << false;
        QTest::newRow("in the tree") << true;
    }
    void escapeCancels() {
        QFETCH(bool, inTree);
        Page page;
        page.open();
        QWidget* part = page.filter();
        if (inTree) part = page.tree();
        QTest::keyClick(part, Qt::Key_Escape);
        QCOMPARE(page.told, QStringList("cancelled"));
        QVERIFY(page.list->isOpen());  // the owner closes it
    }

    void focusMovesFreelyInside() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        page.tree()->setFocus(Qt::MouseFocusReason);
        page.filter()->setFocus(Qt::MouseFocusReason);
        page.tree()->setFocus(Qt::TabFocusReason);
        QVERIFY(page.told.isEmpty());
        QVERIFY(page.list->isVisible());
    }

    void focusElsewhereIsAnExitThatTellsWhereTo_data() { escapeCancels_data(); }
    void focusElsewhereIsAnExitThatTellsWhereTo() {
        QFETCH(bool, inTree);
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        if (inTree) page.tree()->setFocus();
        page.other->setFocus(Qt::MouseFocusReason);
        QCOMPARE(page.told, QStringList("exited"));
        QCOMPARE(page.newFocus, page.other);
        QVERIFY(page.list->isHidden());
        QVERIFY(!page.list->isOpen());
        QVERIFY(page.other->hasFocus());
    }

    void reasonOfTheLossDecides_data() {
        QTest::addColumn<int>("reason");
        QTest::newRow("popup") << int(Qt::PopupFocusReason);
        QTest::newRow("another window") << int(Qt::ActiveWindowFocusReason);
    }
    void reasonOfTheLossDecides() {
        QFETCH(int, reason);
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        // A window that is not active has no focus widget.
        QCOMPARE(QApplication::focusWidget(), page.filter());
        page.list->exited = [&](QWidget*) { QFAIL("an exit"); };
        QFocusEvent event(QEvent::FocusOut, Qt::FocusReason(reason));
        QCoreApplication::sendEvent(page.filter(), &event);
        QCoreApplication::sendEvent(page.tree(), &event);
        QVERIFY(page.list->isOpen());
    }

    void discardTellsNobodyAndGivesTheFocusToTheParent() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        page.list->discard();
        QVERIFY(page.told.isEmpty());
        QVERIFY(page.list->isHidden());
        QVERIFY(page.hasFocus());
    }

    void discardLeavesTheFocusOfOthersAlone() {
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.open();
        page.list->exited = nullptr;
        page.other->setFocus();
        page.list->discard();
        QVERIFY(page.other->hasFocus());
    }

    void handlerMayCloseTheListWhileItChooses_data() { escapeCancels_data(); }
    void handlerMayCloseTheListWhileItChooses() {
        QFETCH(bool, inTree);
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        page.list->chosen = [&](const QString& name) {
            page.told << name;
            page.list->discard();
        };
        page.open();
        if (inTree) {
            page.doubleClick(page.field(0, 0));
        } else {
            QTest::keyClicks(page.filter(), "d");
            QTest::keyClick(page.filter(), Qt::Key_Return);
        }
        QCOMPARE(page.told, QStringList("DEPT.DEPT_NO"));
        QVERIFY(page.list->isHidden());
    }

    void handlerOfTheExitMayDestroyTheList_data() { escapeCancels_data(); }
    void handlerOfTheExitMayDestroyTheList() {
        QFETCH(bool, inTree);
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        const QPointer<orv::FieldList> list = page.list;
        list->exited = [&](QWidget*) { delete list; };
        page.open();
        if (inTree) page.tree()->setFocus();
        page.other->setFocus();
        QVERIFY(!list);
        QVERIFY(page.other->hasFocus());
    }

    void errorOfAHandlerGoesToTheErrorHandler() {
        orvtest::RecordedServices services;
        Page page;
        page.list->cancelled = [] { throw orv::Error(QStringLiteral("cannot")); };
        page.open();
        QTest::keyClick(page.filter(), Qt::Key_Escape);
        QCOMPARE(services.errors, QStringList("cannot"));
    }

    void shortcutsOfTheWindowDoNotTakeItsKeys_data() {
        QTest::addColumn<bool>("inTree");
        QTest::addColumn<QKeySequence>("keys");
        for (const int key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Down, Qt::Key_S}) {
            const QString name = QKeySequence(key).toString();
            QTest::addRow("%s in the filter", qPrintable(name)) << false << QKeySequence(key);
            QTest::addRow("%s in the tree", qPrintable(name)) << true << QKeySequence(key);
        }
    }
    void shortcutsOfTheWindowDoNotTakeItsKeys() {
        QFETCH(bool, inTree);
        QFETCH(QKeySequence, keys);
        Page page;
        QVERIFY(QTest::qWaitForWindowActive(&page));
        int shortcuts = 0;
        const QShortcut shortcut(keys, &page, [&] { ++shortcuts; });
        page.open();
        if (inTree) page.tree()->setFocus();
        QTest::keySequence(page.windowHandle(), keys);
        QCOMPARE(shortcuts, 0);
        page.list->discard();
        QTest::keySequence(page.windowHandle(), keys);
        QCOMPARE(shortcuts, 1);
    }

    // --- looks

    void typeIsGreyBehindTheName() {
        Page page;
        page.removeTables();
        page.addTable("T", {"A"}, ftInteger);
        page.open();
        const auto inkRight = [&] {
            const QRect row = page.tree()->visualRect(page.field(0, 0));
            const QImage image = page.tree()->viewport()->grab(row).toImage();
            const QColor ground = page.tree()->palette().color(QPalette::Base);
            int right = 0;
            for (int x = 0; x < image.width(); ++x) {
                for (int y = 0; y < image.height(); ++y) {
                    if (image.pixelColor(x, y) != ground) right = x;
                }
            }
            return right;
        };
        const int withType = inkRight();
        page.list->discard();
        page.removeTables();
        page.addTable("T", {"A"}, ftUnknown);
        page.open();
        const int typeWidth = page.tree()->fontMetrics().horizontalAdvance("Integer");
        QVERIFY2(withType - inkRight() > typeWidth / 2, qPrintable(QString::number(withType)));
    }

    void liesWhereThereIsRoom_data() {
        QTest::addColumn<QRect>("editor");
        QTest::addColumn<QSize>("area");
        QTest::addColumn<QRect>("expected");
        const auto row = [](const char* name, const QRect& editor, const QSize& area,
                            const QRect& expected) {
            QTest::newRow(name) << editor << area << expected;
        };
        row("below", {20, 10, 200, 20}, {400, 300}, {20, 30, 240, 180});
        row("above", {20, 250, 200, 20}, {400, 300}, {20, 70, 240, 180});
        row("less high than it wants", {20, 100, 200, 20}, {400, 260}, {20, 120, 240, 140});
        row("beside", {20, 40, 100, 30}, {400, 150}, {120, 0, 240, 150});
        row("not beyond the right end", {300, 10, 90, 20}, {400, 300}, {160, 30, 240, 180});
        row("over the editor where nothing else is left", {0, 0, 200, 60}, {200, 60},
            {0, 0, 200, 60});
    }
    void liesWhereThereIsRoom() {
        QFETCH(QRect, editor);
        QFETCH(QSize, area);
        QFETCH(QRect, expected);
        QCOMPARE(orv::FieldList::rectBeside(editor, QRect(QPoint(), area)), expected);
    }
};

QTEST_MAIN(FieldListTest)
#include "tst_fieldlist.moc"
