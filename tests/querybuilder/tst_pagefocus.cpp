// SPDX-License-Identifier: MIT
// Editors, lists and menus of the pages, and who closes them: the page, the window, the host.
#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ORVQDFieldList.h"
#include "criteria/ORVQDWherePanel.h"
#include "support/PageRules.h"
#include "toolkit/ExitCombo.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>

using orvtest::HostedBuilder;
using orvtest::RecordedServices;

namespace {

/// A shown builder with one table and two conditions.
class Typing : public HostedBuilder {
public:
    Typing() {
        builder.resize(800, 600);
        builder.setTabsHeight(260);
        builder.LoadSQL("select t.a from t where t.a = 1 and t.b = 2");
        builder.show();
        builder.activateWindow();
        QCoreApplication::processEvents();
        changes = 0;
    }
    [[nodiscard]] TorvQDWherePanel& panel() const { return *builder.WherePanel; }
    [[nodiscard]] TorvQDWhereRow* row(int index) const {
        return panel().rootRow()->SubRows->Row(index);
    }
    [[nodiscard]] TMemoEx* memo() const { return panel().viewport()->findChild<TMemoEx*>(); }
    [[nodiscard]] orv::FieldList* list() const {
        return panel().viewport()->findChild<orv::FieldList*>();
    }
    [[nodiscard]] QMenu* menu(const QString& name) const { return panel().findChild<QMenu*>(name); }
    /// Types into the argument of the first condition.
    void type(const QString& text, bool withList = false) const {
        panel().editText(*row(0)->Controls[ekArgument]);
        memo()->selectAll();
        memo()->insertPlainText(text);
        if (withList) panel().InsertField();
    }
    void openMenu() const {
        const TorvQDControl& element = *row(0)->Controls[ekOperator];
        panel().TextClick(element, panel().elementRect(element).top());
    }
};

}  // namespace

class PageFocusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }
    void cleanup() {
        while (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    }

    // --- another page

    void pageTakesOverWithTheListOpen_data() {
        QTest::addColumn<bool>("byHand");
        QTest::newRow("by hand") << true;
        QTest::newRow("by the program") << false;
    }
    void pageTakesOverWithTheListOpen() {
        QFETCH(bool, byHand);
        Typing on;
        on.type("7", true);
        QVERIFY(on.list()->isOpen());
        QTabBar* bar = on.builder.PageCtrl->tabBar();
        if (byHand) {
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(1).center());
        } else {
            on.builder.PageCtrl->setCurrentIndex(1);
        }
        QCOMPARE(on.builder.PageCtrl->currentIndex(), 1);
        QVERIFY(!on.list()->isOpen());
        QVERIFY(!on.panel().isEditing());
        QCOMPARE(on.row(0)->Arguments, QStringList("7"));
        QCOMPARE(on.changes, 1);
        verifyPages(on.builder);
    }

    // There the editor has no focus that it could lose.
    void pageChangedInAnInactiveWindowTakesOver() {
        Typing on;
        on.type("7");
        QWidget other;
        other.show();
        other.activateWindow();
        QCoreApplication::processEvents();
        QVERIFY(!on.builder.isActiveWindow());
        QVERIFY(on.panel().isEditing());
        on.builder.PageCtrl->setCurrentIndex(2);
        QVERIFY(!on.panel().isEditing());
        QCOMPARE(on.row(0)->Arguments, QStringList("7"));
        QCOMPARE(on.changes, 1);
    }

    void hiddenWindowKeepsWhatIsTyped() {
        Typing on;
        on.type("7");
        on.builder.hide();
        QCOMPARE(on.changes, 0);
        on.builder.show();
        on.builder.CommitPendingEdits();
        QCOMPARE(on.row(0)->Arguments, QStringList("7"));
    }

    void mismatchDoesNotKeepThePage() {
        RecordedServices services;
        Typing on;
        on.table("T")->GetFieldItem("A")->FieldType = ftInteger;
        on.type("x");
        QTabBar* bar = on.builder.PageCtrl->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(3).center());
        QCOMPARE(on.builder.PageCtrl->currentIndex(), 3);
        QVERIFY(!on.row(0)->Valid);
        QCOMPARE(services.messages, QStringList());
        QCoreApplication::processEvents();
        QCOMPARE(services.messages, QStringList("Type mismatch in expression"));
    }

    // --- the window

    void deactivationLeavesEditorsAndListsOpen() {
        Typing on;
        on.type("7", true);
        QWidget other;
        other.show();
        other.activateWindow();
        QCoreApplication::processEvents();
        QVERIFY(on.list()->isOpen());
        QVERIFY(on.panel().isEditing());
        QCOMPARE(on.changes, 0);
        on.builder.activateWindow();
        QCoreApplication::processEvents();
        verifyPages(on.builder);
        QTest::keyClick(on.list()->filter(), Qt::Key_Escape);
        QVERIFY(!on.list()->isOpen());
        QVERIFY(on.memo()->hasFocus());
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.row(0)->Arguments, QStringList("7"));
    }

    // --- the diagram

    void closedBoxLeavesWhatIsTyped() {
        Typing on;
        on.type("T.B", true);
        on.builder.ListOfTables->DeleteTable(on.table("T"));
        on.builder.CommitPendingEdits();
        QCOMPARE(on.row(0)->Arguments, QStringList("T.B"));
        QVERIFY(!on.panel().isEditing());
        verifyPages(on.builder);
    }

    void renamedAliasReachesWhatTheListLiesOver() {
        Typing on;
        on.type("T.C", true);
        on.builder.WorkArea->renameTable(on.table("T"), "N");
        QCOMPARE(on.row(0)->Arguments, QStringList("N.C"));
        QCOMPARE(on.row(1)->FieldName, QString("N.B"));
        QVERIFY(!on.list()->isOpen());
        verifyPages(on.builder);
    }

    void menuChangesTheRowOfARenamedBox() {
        Typing on;
        on.openMenu();
        on.builder.WorkArea->renameTable(on.table("T"), "N");
        QMenu* menu = on.menu("OperatorMenu");
        QVERIFY(menu->isVisible());
        QAction* item = menu->actions().last();
        const auto chosen = item->data().value<TOperatorList::Entry>();
        menu->close();
        item->trigger();
        QCOMPARE(on.row(0)->Operator, chosen);
        QCOMPARE(on.row(0)->FieldName, QString("N.A"));
        verifyPages(on.builder);
    }

    // --- loading

    void loadingDropsTheListAndItsText() {
        Typing on;
        on.type("7", true);
        on.builder.LoadSQL("select u.x from u where u.y = 3");
        QVERIFY(!on.list()->isOpen());
        QVERIFY(!on.panel().isEditing());
        QCOMPARE(on.row(0)->Arguments, QStringList("3"));
        QCOMPARE(on.changes, 1);
        verifyPages(on.builder);
    }

    void loadingTheShownTextLeavesTheListOpen() {
        Typing on;
        on.type("7", true);
        on.builder.LoadSQL(on.builder.GetSQLStatment());
        QVERIFY(on.list()->isOpen());
        QVERIFY(on.panel().isEditing());
        QCOMPARE(on.changes, 0);
    }

    void menuOfALoadedRowIsForNobody() {
        RecordedServices services;
        Typing on;
        on.openMenu();
        on.builder.LoadSQL("select u.x from u where u.y = 3");
        QMenu* menu = on.menu("OperatorMenu");
        QAction* item = menu->actions().last();
        menu->close();
        item->trigger();
        QCOMPARE(on.row(0)->Operator->Name, QString("="));
        QCOMPARE(services.errors, QStringList("There are no active condition"));
    }

    void clearingDropsTheText() {
        Typing on;
        on.type("7", true);
        on.builder.Clear();
        QVERIFY(!on.list()->isOpen());
        QCOMPARE(on.panel().rootRow()->SubRows->GetCount(), 0);
        QCOMPARE(on.changes, 1);
        verifyPages(on.builder);
    }

    // --- the grid

    void tickTakesOverTheCellFirst() {
        Typing on;
        on.builder.PageCtrl->setCurrentIndex(1);
        on.grid()->_EditText(2, 1);
        on.grid()->viewport()->findChild<orv::ExitCombo*>()->setEditText("T.C");
        on.tick("T", "B");
        QCOMPARE(on.columns(), QStringList({"C||T.C", "B||T.B"}));
        QVERIFY(!on.grid()->isEditing());
        verifyPages(on.builder);
        verifyBuilder(on.builder);
    }

    void menuOfAHiddenPageEditsNothing() {
        Typing on;
        on.builder.PageCtrl->setCurrentIndex(1);
        on.grid()->setCurrentIndex(on.grid()->model()->index(0, 0));
        QTest::keyClick(on.grid(), Qt::Key_F10, Qt::ShiftModifier);
        QMenu* menu = on.grid()->findChild<QMenu*>();
        QVERIFY(menu && menu->isVisible());
        on.builder.PageCtrl->setCurrentIndex(0);
        for (QAction* item : menu->actions()) {
            if (item->text() == "Edit") item->trigger();
        }
        QVERIFY(!on.grid()->isEditing());
        verifyPages(on.builder);
    }

    // --- the end

    void commandsEndWithTheBuilder_data() {
        using Command = void (TorvQDWherePanel::*)();
        QTest::addColumn<Command>("command");
        QTest::newRow("add") << &TorvQDWherePanel::AddCondition;
        QTest::newRow("compose") << &TorvQDWherePanel::MakeCompositCondition;
        QTest::newRow("delete") << &TorvQDWherePanel::DeleteCondition;
        QTest::newRow("expand") << &TorvQDWherePanel::ExpandCollapse;
        QTest::newRow("duplicate") << &TorvQDWherePanel::DuplicateCondition;
        QTest::newRow("copy") << &TorvQDWherePanel::CopyCondition;
        QTest::newRow("cut") << &TorvQDWherePanel::CutCondition;
        QTest::newRow("paste") << &TorvQDWherePanel::PasteCondition;
    }
    void commandsEndWithTheBuilder() {
        using Command = void (TorvQDWherePanel::*)();
        QFETCH(Command, command);
        RecordedServices services;
        QGuiApplication::clipboard()->setText("X = 1");
        auto* builder = new TorvQueryBuilder;
        orvtest::Host host;
        host.attach(*builder);
        builder->LoadSQL("select t.a from t where t.a = 1");
        builder->show();
        TorvQDWherePanel* panel = builder->WherePanel;
        panel->editText(*panel->rootRow()->SubRows->Row(0)->Controls[ekArgument]);
        panel->viewport()->findChild<TMemoEx*>()->insertPlainText("7");
        connect(builder, &TorvQueryBuilder::StatementChanged, qApp, [&] { delete builder; });
        (panel->*command)();
        QCOMPARE(services.errors, QStringList());
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("X = 1"));
    }
};

QTEST_MAIN(PageFocusTest)
#include "tst_pagefocus.moc"
