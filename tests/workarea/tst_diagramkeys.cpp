// SPDX-License-Identifier: MIT
// The diagram without a mouse: a builder between two other widgets, and nothing but keys.
#include "support/BuilderTools.h"
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

using orvtest::HostedBuilder;
using orvtest::RecordedServices;

namespace {

/// A dialog with an edit, a builder and another edit, one below the other. The builder has the
/// boxes EMPLOYEE, DEPT and ORDERS, made in this order, without links; the canvas has the focus.
class Keyboard : public HostedBuilder {
public:
    Keyboard() : before(new QLineEdit(&window)), after(nullptr) {
        window.resize(800, 700);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(before);
        layout->addWidget(&builder);
        after = new QLineEdit(&window);
        layout->addWidget(after);
        host.add("BIG", {"F0", "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9"});
        for (const char* name : {"EMPLOYEE", "DEPT", "ORDERS"}) addTable(name);
        window.show();
        window.activateWindow();
        area().setFocus();
        QCoreApplication::processEvents();
        changes = 0;
    }
    ~Keyboard() { builder.setParent(nullptr); }
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    TorvQDWorkArea& area() const { return *builder.WorkArea; }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        if (QWidget* focus = QApplication::focusWidget()) QTest::keyClick(focus, key, modifiers);
    }
    static void type(const QString& text) {
        for (const QChar letter : text)
            QTest::keyClick(QApplication::focusWidget(), letter.toLatin1());
    }
    void nextTable() const { press(Qt::Key_PageDown, Qt::ControlModifier); }
    void previousTable() const { press(Qt::Key_PageUp, Qt::ControlModifier); }
    void nextLink() const { press(Qt::Key_PageDown, Qt::AltModifier); }
    void previousLink() const { press(Qt::Key_PageUp, Qt::AltModifier); }
    /// Goes round until the box is the selected one.
    TorvQDTable* goTo(const QString& alias) const {
        for (int turn = 0; turn <= area().TablesCount() && selected() != alias; ++turn) nextTable();
        return table(alias);
    }
    /// Goes to the box and down to the row.
    TorvQDListItem* goTo(const QString& alias, const QString& field) const {
        TorvQDTable* box = goTo(alias);
        press(Qt::Key_Down);
        press(Qt::Key_Home);
        while (box->CurrentItem->Name != field) press(Qt::Key_Down);
        return box->CurrentItem;
    }
    void deselect() const { press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier); }

    /// The selected box's alias, or the selected link's comparison.
    QString selected() const {
        if (auto* box = qobject_cast<TorvQDTable*>(area().selectedObject())) return box->GetAlias();
        auto* link = qobject_cast<TorvQDLink*>(area().selectedObject());
        return link ? link->GetHint() : QString();
    }
    QString currentRow(const QString& alias) const {
        const TorvQDListItem* item = table(alias)->CurrentItem;
        return item ? item->Name : QString();
    }
    QStringList links() const {
        QStringList texts;
        for (const TorvQDLink* link : area().Links()) texts << link->GetHint();
        return texts;
    }
    TorvQDLink* addLink(const QString& alias1, const QString& field1, const QString& alias2,
                        const QString& field2) const {
        TorvQDTable* box1 = table(alias1);
        TorvQDTable* box2 = table(alias2);
        return area().AddLink(box1, box2, box1->GetFieldItem(field1), box2->GetFieldItem(field2));
    }
    bool sees(const TRect& diagramRect) const {
        const QPoint scroll = area().scrollPosition();
        const QRect rect = area().toViewport(diagramRect.translated(-scroll.x(), -scroll.y()));
        return area().viewport()->rect().contains(rect);
    }
    orv::ExitEdit* aliasEdit() const { return area().viewport()->findChild<orv::ExitEdit*>(); }
    TEditEx* searchEdit() const { return area().viewport()->findChild<TEditEx*>(); }
    QMenu* menu() const {
        for (QMenu* menu : area().findChildren<QMenu*>()) {
            if (menu->isVisible()) return menu;
        }
        return nullptr;
    }
    /// The texts of the open menu, which is closed then; empty without one.
    QStringList takeMenu() const {
        QStringList texts;
        QMenu* open = menu();
        if (!open) return texts;
        for (const QAction* action : open->actions()) {
            if (!action->isSeparator()) texts << action->text();
        }
        press(Qt::Key_Escape);
        delete open;
        return texts;
    }
    QImage picture() const { return area().viewport()->grab().toImage(); }

    QDialog window;
    QLineEdit* before;
    QLineEdit* after;
};

/// Counts how often the shortcuts of a window fire.
class Shortcuts {
public:
    Shortcuts(QWidget* window, const std::vector<QKeySequence>& keys) {
        for (const QKeySequence& key : keys) {
            auto* shortcut = new QShortcut(key, window);
            QObject::connect(shortcut, &QShortcut::activated, window,
                             [this, key] { fired << key.toString(); });
        }
    }
    QStringList fired;
};

}  // namespace

class DiagramKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- reaching

    void keysReachEachBoxRoundAndRound() {
        const Keyboard on;
        QCOMPARE(on.selected(), QString("ORDERS"));
        QStringList reached;
        for (int turn = 0; turn < 4; ++turn) {
            on.nextTable();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({"EMPLOYEE", "DEPT", "ORDERS", "EMPLOYEE"}));
        reached.clear();
        for (int turn = 0; turn < 4; ++turn) {
            on.previousTable();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({"ORDERS", "DEPT", "EMPLOYEE", "ORDERS"}));
    }

    void keysBringABoxIntoView() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(3000, 2000);
        QVERIFY(!on.sees(on.table("DEPT")->GetBoundsRect()));
        on.goTo("DEPT");
        QVERIFY(on.sees(on.table("DEPT")->GetBoundsRect()));
        QCOMPARE(on.area().Tables(0), on.table("DEPT"));
    }

    void keysReachEachLinkRoundAndRound() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "EMP_NO", "ORDERS", "CUST_NO");
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.addLink("DEPT", "BUDGET", "ORDERS", "PRICE");
        const QStringList all = on.links();
        on.deselect();
        QStringList reached;
        for (int turn = 0; turn < 4; ++turn) {
            on.nextLink();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({all[0], all[1], all[2], all[0]}));
        reached.clear();
        for (int turn = 0; turn < 3; ++turn) {
            on.previousLink();
            reached << on.selected();
        }
        QCOMPARE(reached, QStringList({all[2], all[1], all[0]}));
    }

    void keysGoFromABoxToItsOwnLinkFirst() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "EMP_NO", "ORDERS", "CUST_NO");
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.goTo("DEPT");
        on.nextLink();
        QCOMPARE(on.selected(), on.links().at(1));
        on.goTo("ORDERS");
        on.nextLink();
        QCOMPARE(on.selected(), on.links().at(0));
    }

    void keysBringALinkIntoView() {
        const Keyboard on;
        const TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.area().verticalScrollBar()->setValue(1500);
        on.nextLink();
        QVERIFY(link->Selected);
        QVERIFY(on.sees(link->GetBounds()));
    }

    void keysLetGoOfTheSelectedObject() {
        const Keyboard on;
        on.deselect();
        QVERIFY(!on.area().selectedObject());
        QVERIFY(!on.table("ORDERS")->Selected);
        on.nextTable();
        QCOMPARE(on.selected(), QString("EMPLOYEE"));
    }

    // --- rows

    void arrowsChooseARow() {
        const Keyboard on;
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("ORDERS"), QString("ORDER_NO"));
        on.press(Qt::Key_Down);
        on.press(Qt::Key_Right);
        QCOMPARE(on.currentRow("ORDERS"), QString("PRICE"));
        on.press(Qt::Key_Up);
        on.press(Qt::Key_Left);
        on.press(Qt::Key_Left);
        QCOMPARE(on.currentRow("ORDERS"), QString("ORDER_NO"));
        on.press(Qt::Key_End);
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("ORDERS"), QString("NAME"));
        on.press(Qt::Key_Home);
        QCOMPARE(on.currentRow("ORDERS"), QString("ORDER_NO"));
    }

    void pagesOfRowsScrollThem() {
        Keyboard on;
        const TorvQDTable* box = on.addTable("BIG");
        QCOMPARE(box->VisibleCount, 6);
        on.press(Qt::Key_Down);
        on.press(Qt::Key_PageDown);
        QCOMPARE(on.currentRow("BIG"), QString("F5"));
        QCOMPARE(box->FirstVisibleItem, 0);
        on.press(Qt::Key_PageDown);
        QCOMPARE(on.currentRow("BIG"), QString("F9"));
        QCOMPARE(box->FirstVisibleItem, 4);
        on.press(Qt::Key_PageUp);
        QCOMPARE(on.currentRow("BIG"), QString("F4"));
        QCOMPARE(box->FirstVisibleItem, 4);
    }

    void chosenRowIsSeenInALowView() {
        Keyboard on;
        TorvQDTable* box = on.addTable("BIG");
        on.window.resize(800, 380);
        QCoreApplication::processEvents();
        box->SetHeight(1000);
        QVERIFY(box->GetBoundsRect().height() > on.area().viewport()->height());
        on.press(Qt::Key_Down);
        on.press(Qt::Key_End);
        const QPoint scroll = on.area().scrollPosition();
        QVERIFY(on.sees(box->GetItemRect(box->CurrentItem).translated(scroll.x(), scroll.y())));
    }

    void spaceAndEnterTickTheRow() {
        const Keyboard on;
        on.goTo("DEPT", "DEPARTMENT");
        on.press(Qt::Key_Space);
        QCOMPARE(on.columns(), QStringList("DEPARTMENT||DEPT.DEPARTMENT"));
        QCOMPARE(on.changes > 0, true);
        on.press(Qt::Key_Return);
        QCOMPARE(on.columns(), QStringList());
        on.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(on.table("DEPT")->FieldState, 1);
    }

    void ctrlSpaceTicksAllRowsOrNone() {
        const Keyboard on;
        on.goTo("DEPT", "DEPARTMENT");
        on.press(Qt::Key_Space);
        on.press(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(on.table("DEPT")->FieldState, 2);
        QCOMPARE(on.columns().size(), 3);
        on.press(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(on.table("DEPT")->FieldState, 0);
        QCOMPARE(on.columns(), QStringList());
    }

    // --- a box

    void ctrlArrowsMoveTheBox() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        const QPoint place(box->Left, box->Top);
        on.press(Qt::Key_Right, Qt::ControlModifier);
        on.press(Qt::Key_Right, Qt::ControlModifier);
        on.press(Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(QPoint(box->Left, box->Top), place + QPoint(20, 10));
        on.press(Qt::Key_Left, Qt::ControlModifier);
        on.press(Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(QPoint(box->Left, box->Top), place + QPoint(10, 0));
        for (int turn = 0; turn < 100; ++turn) on.press(Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(box->Top, 0);
    }

    void movedBoxStaysInView() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        for (int turn = 0; turn < 100; ++turn) on.press(Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(box->Top, 20 + 1000);
        QVERIFY(on.area().verticalScrollBar()->value() > 0);
        QVERIFY(on.sees(box->GetBoundsRect()));
    }

    void ctrlShiftArrowsSizeTheBox() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        const QSize size(box->Width, box->Height);
        const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
        on.press(Qt::Key_Right, both);
        on.press(Qt::Key_Down, both);
        on.press(Qt::Key_Down, both);
        QCOMPARE(QSize(box->Width, box->Height), size + QSize(10, 20));
        on.press(Qt::Key_Left, both);
        on.press(Qt::Key_Up, both);
        QCOMPARE(QSize(box->Width, box->Height), size + QSize(0, 10));
    }

    void minusCollapsesAndPlusExpands() {
        const Keyboard on;
        const TorvQDTable* box = on.goTo("DEPT");
        on.press(Qt::Key_Minus);
        QVERIFY(!box->Expanded);
        QCOMPARE(box->GetBoundsRect().height(), box->CaptionHeight);
        on.press(Qt::Key_Minus);
        QVERIFY(!box->Expanded);
        on.press(Qt::Key_Plus, Qt::KeypadModifier);
        QVERIFY(box->Expanded);
    }

    void f2RenamesAndEnterKeeps() {
        const Keyboard on;
        on.goTo("DEPT");
        on.press(Qt::Key_F2);
        QVERIFY(on.aliasEdit()->hasFocus());
        QCOMPARE(on.aliasEdit()->selectedText(), QString("DEPT"));
        on.type("D1");
        on.press(Qt::Key_Return);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "DEPT D1", "ORDERS"}));
        QVERIFY(on.aliasEdit()->isHidden());
        QVERIFY(on.area().hasFocus());
        QVERIFY(on.window.isVisible());
    }

    void f2RenamesAndEscapeDoesNot() {
        const Keyboard on;
        on.goTo("DEPT");
        on.press(Qt::Key_F2);
        on.type("D1");
        on.press(Qt::Key_Escape);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "DEPT", "ORDERS"}));
        QVERIFY(on.area().hasFocus());
        QVERIFY(on.window.isVisible());
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("DEPT"), QString("DEPT_NO"));
    }

    void renamingBringsTheBoxIntoView() {
        const Keyboard on;
        on.goTo("DEPT");
        on.area().verticalScrollBar()->setValue(2000);
        on.press(Qt::Key_F2);
        QVERIFY(on.area().viewport()->rect().contains(on.aliasEdit()->geometry()));
    }

    void typingSearchesARow() {
        const Keyboard on;
        on.goTo("EMPLOYEE");
        on.type("s");
        QVERIFY(on.searchEdit()->hasFocus());
        QCOMPARE(on.searchEdit()->text(), QString("s"));
        QCOMPARE(on.currentRow("EMPLOYEE"), QString("SALARY"));
        on.press(Qt::Key_Backspace);
        on.type("first");
        QCOMPARE(on.currentRow("EMPLOYEE"), QString("FIRST_NAME"));
        on.press(Qt::Key_Return);
        QVERIFY(on.searchEdit()->isHidden());
        QVERIFY(on.area().hasFocus());
        on.press(Qt::Key_Space);
        QCOMPARE(on.columns(), QStringList("FIRST_NAME||EMPLOYEE.FIRST_NAME"));
    }

    void foundRowComesIntoView() {
        Keyboard on;
        on.host.add("LONG", {"A", "B", "C", "D", "E", "F"});
        TorvQDTable* box = on.addTable("LONG");
        on.window.resize(800, 320);
        QCoreApplication::processEvents();
        const TorvQDListItem* last = box->GetFieldItem("F");
        QVERIFY(!on.sees(last->GetBoundsRect()));
        on.type("f");
        QCOMPARE(box->CurrentItem, last);
        QVERIFY(on.sees(last->GetBoundsRect()));
    }

    void upAndDownGoOnSearchingAndEscapeEnds() {
        Keyboard on;
        on.addTable("BIG");
        on.type("f");
        on.press(Qt::Key_Down);
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("BIG"), QString("F2"));
        on.press(Qt::Key_Up);
        QCOMPARE(on.currentRow("BIG"), QString("F1"));
        on.press(Qt::Key_Escape);
        QVERIFY(on.searchEdit()->isHidden());
        QVERIFY(on.area().hasFocus());
        QVERIFY(on.window.isVisible());
    }

    void deleteClosesTheBox() {
        const Keyboard on;
        on.goTo("DEPT");
        on.press(Qt::Key_Delete);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "ORDERS"}));
        QVERIFY(on.area().hasFocus());
        on.nextTable();
        QCOMPARE(on.selected(), QString("EMPLOYEE"));
    }

    void hostMayKeepTheBox() {
        Keyboard on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& allow) {
            allow = false;
        };
        on.goTo("DEPT");
        on.press(Qt::Key_Delete);
        QCOMPARE(on.tables().size(), 3);
        QCOMPARE(on.selected(), QString("DEPT"));
    }

    void ctrlDeleteUnlinksTheBox() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "EMP_NO", "ORDERS", "CUST_NO");
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.addLink("DEPT", "BUDGET", "ORDERS", "PRICE");
        on.goTo("EMPLOYEE");
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.links(), QStringList("DEPT.BUDGET=ORDERS.PRICE"));
        QCOMPARE(on.tables().size(), 3);
    }

    // --- linking

    void insertTwiceLinksTwoRows() {
        const Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("EMPLOYEE.DEPT_NO=DEPT.DEPT_NO"));
        // That link is done: the next one begins anew.
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links().size(), 1);
    }

    void escapeGivesUpTheLink() {
        const Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.press(Qt::Key_Escape);
        QVERIFY(on.window.isVisible());
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
        on.goTo("EMPLOYEE", "EMP_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("DEPT.DEPT_NO=EMPLOYEE.EMP_NO"));
    }

    void identicalLinkIsRefused() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links().size(), 1);
    }

    void insertInTheSameBoxBeginsAnew() {
        const Keyboard on;
        on.goTo("EMPLOYEE", "EMP_NO");
        on.press(Qt::Key_Insert);
        on.press(Qt::Key_End);
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("EMPLOYEE.DEPT_NO=DEPT.DEPT_NO"));
    }

    void insertWithoutACurrentRowBeginsNothing() {
        const Keyboard on;
        on.goTo("EMPLOYEE");
        QVERIFY(!on.table("EMPLOYEE")->CurrentItem);
        on.press(Qt::Key_Insert);
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
    }

    void begunLinkIsSeen() {
        const Keyboard on;
        on.goTo("DEPT", "DEPT_NO");
        on.goTo("EMPLOYEE", "DEPT_NO");
        const QImage without = on.picture();
        on.press(Qt::Key_Insert);
        const QImage begun = on.picture();
        QVERIFY(begun != without);
        on.press(Qt::Key_Escape);
        QCOMPARE(on.picture(), without);

        on.press(Qt::Key_Insert);
        on.goTo("DEPT");
        const QImage reaching = on.picture();
        on.press(Qt::Key_Escape);
        QVERIFY(on.picture() != reaching);
    }

    void begunLinkEndsWithItsBox() {
        Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.press(Qt::Key_Delete);
        on.goTo("DEPT", "DEPT_NO");
        const QImage without = on.picture();
        on.press(Qt::Key_Escape);
        QVERIFY2(!on.window.isVisible(), "nothing is going on: the dialog has the key");
        on.window.show();
        on.area().setFocus();
        QCOMPARE(on.picture(), without);
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
    }

    void begunLinkEndsWhenAllGoes() {
        Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.builder.Clear();
        on.addTable("DEPT");
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
    }

    // --- a link

    void deleteAsksBeforeTheLinkGoes() {
        RecordedServices services;
        const Keyboard on;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        services.answer = orv::MessageAnswer::No;
        on.press(Qt::Key_Delete);
        QCoreApplication::processEvents();
        QCOMPARE(services.messages.size(), 1);
        QCOMPARE(on.links().size(), 1);
        services.answer = orv::MessageAnswer::Yes;
        on.press(Qt::Key_Delete);
        QCoreApplication::processEvents();
        QCOMPARE(services.messages.size(), 2);
        QCOMPARE(on.links(), QStringList());
        QVERIFY(!on.area().selectedObject());
    }

    void enterSpaceAndF2ShowTheProperties() {
        RecordedServices services;
        const Keyboard on;
        const TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        int shown = 0;
        services.onDialog = [&](QDialog& dialog) {
            ++shown;
            dialog.findChild<QComboBox*>()->setCurrentIndex(shown);
            for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
                if (button->isDefault()) button->click();
            }
            return int(QDialog::Accepted);
        };
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_F2}) {
            on.press(key);
            QCOMPARE(link->Operator, shown);
        }
        QCOMPARE(shown, 3);
    }

    void keysInsertChooseMoveAndDeleteBends() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(300, 100);
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        const QPoint middle = (link->points()[1] + link->points()[2]) / 2;
        on.press(Qt::Key_Insert);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{middle});
        QCOMPARE(link->chosenBend(), 2);

        on.press(Qt::Key_Up, Qt::ControlModifier);
        on.press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
        const QPoint moved = middle + QPoint(1, -10);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{moved});

        on.press(Qt::Key_Insert);
        QCOMPARE(link->bendPoints().size(), std::size_t(2));
        const std::vector<QPoint> two = link->bendPoints();
        const int added = link->chosenBend();
        QVERIFY(link->points()[std::size_t(added)] != moved);
        on.press(Qt::Key_Right);
        on.press(Qt::Key_Right);
        QCOMPARE(link->chosenBend(), 3);
        on.press(Qt::Key_Left);
        QCOMPARE(link->chosenBend(), 2);

        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{two[1]});
        QCOMPARE(link->chosenBend(), 2);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>());
        QCOMPARE(link->chosenBend(), -1);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.links().size(), 1);
    }

    void theChosenBendIsTheOneThatIsDeleted() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(300, 100);
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{300, 200}, {302, 201}});
        on.nextLink();
        on.press(Qt::Key_Left);
        QCOMPARE(link->chosenBend(), 3);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{QPoint(300, 200)});
    }

    void chosenBendIsSeen() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(300, 100);
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{300, 200}, {360, 220}});
        on.nextLink();
        const QImage none = on.picture();
        on.press(Qt::Key_Right);
        QCOMPARE(link->chosenBend(), 2);
        const QImage first = on.picture();
        on.press(Qt::Key_Right);
        const QImage second = on.picture();
        QVERIFY(none != first);
        QVERIFY(first != second);
        // A white ring in the place of the dot, and nothing else.
        QCOMPARE(none.pixelColor(300, 200), QColor(Qt::black));
        QCOMPARE(first.pixelColor(300, 200), QColor(Qt::white));
        QCOMPARE(first.pixelColor(304, 200), QColor(Qt::black));
        QImage beside = first;
        for (int y = 196; y <= 204; ++y) {
            for (int x = 296; x <= 304; ++x) beside.setPixelColor(x, y, none.pixelColor(x, y));
        }
        QCOMPARE(beside, none);
        on.nextTable();
        QCOMPARE(on.picture().pixelColor(300, 200), QColor(Qt::black));
        QCOMPARE(on.picture().pixelColor(360, 220), QColor(Qt::black));
    }

    void chosenBendComesIntoView() {
        const Keyboard on;
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{200, 100}, {2000, 1500}});
        on.nextLink();
        on.press(Qt::Key_Left);
        QCOMPARE(link->chosenBend(), 3);
        QVERIFY(on.sees({1995, 1495, 2005, 1505}));
        on.press(Qt::Key_Left);
        QVERIFY(on.sees({195, 95, 205, 105}));
    }

    // --- the view

    void ctrlPlusMinusAndZeroZoom() {
        const Keyboard on;
        for (const bool hasSelection : {true, false}) {
            if (!hasSelection) on.deselect();
            on.press(Qt::Key_Plus, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 1.25);
            on.press(Qt::Key_0, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 1.0);
            on.press(Qt::Key_Minus, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 0.8);
            on.press(Qt::Key_Equal, Qt::ControlModifier);
            QCOMPARE(on.area().zoom(), 1.0);
        }
    }

    void keysScrollWhenNothingIsSelected() {
        const Keyboard on;
        on.deselect();
        const QScrollBar* vertical = on.area().verticalScrollBar();
        const QScrollBar* horizontal = on.area().horizontalScrollBar();
        on.press(Qt::Key_Down);
        QCOMPARE(vertical->value(), 20);
        on.press(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(horizontal->value(), 10);
        on.press(Qt::Key_PageDown);
        QCOMPARE(vertical->value(), 20 + vertical->pageStep());
        on.press(Qt::Key_PageUp);
        QCOMPARE(vertical->value(), 20);
        on.press(Qt::Key_Up);
        on.press(Qt::Key_Left);
        QCOMPARE(vertical->value(), 0);
        QCOMPARE(horizontal->value(), 0);
        on.press(Qt::Key_PageDown);
        on.press(Qt::Key_Home);
        QCOMPARE(vertical->value(), 0);
    }

    // --- menus

    void menuKeyOpensTheMenuOfTheSelectedObject() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        const auto menuKey = [&] {
            QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
            QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        };
        const auto shiftF10 = [&] { on.press(Qt::Key_F10, Qt::ShiftModifier); };
        for (const std::function<void()>& open : {std::function<void()>(menuKey), {shiftF10}}) {
            TorvQDTable* box = on.goTo("DEPT");
            on.area().verticalScrollBar()->setValue(1000);
            open();
            QVERIFY(on.menu());
            const QRect bounds = on.area().toViewport(box->toView(box->GetBoundsRect()));
            QVERIFY(bounds.contains(on.area().viewport()->mapFromGlobal(on.menu()->pos())));
            QVERIFY(on.sees(box->GetBoundsRect()));
            QCOMPARE(on.takeMenu(), QStringList({"Delete table", "Rename table"}));

            on.nextLink();
            const auto* link = qobject_cast<TorvQDLink*>(on.area().selectedObject());
            open();
            QVERIFY(on.menu());
            const QPoint place = on.area().viewport()->mapFromGlobal(on.menu()->pos());
            QVERIFY(link->HitTest(on.area().toViewPoint(place)) != htTOutSide);
            QCOMPARE(on.takeMenu(), QStringList({"Insert point", "Delete link", "Property"}));

            on.deselect();
            open();
            QVERIFY(on.menu());
            const QRect view(QPoint(0, 0), on.area().viewport()->size());
            QVERIFY(view.contains(on.area().viewport()->mapFromGlobal(on.menu()->pos())));
            QVERIFY(on.takeMenu().contains("&Arrange"));
        }
    }

    void menuOfAChosenBendDeletesIt() {
        const Keyboard on;
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{200, 200}});
        on.nextLink();
        on.press(Qt::Key_Right);
        on.press(Qt::Key_F10, Qt::ShiftModifier);
        QMenu* menu = on.menu();
        QVERIFY(menu);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>());
    }

    // --- the focus

    void tabComesAndGoesInTheOrderOfTheScreen() {
        const Keyboard on;
        on.before->setFocus();
        on.press(Qt::Key_Tab);
        QVERIFY(on.area().hasFocus());
        on.press(Qt::Key_Backtab);
        QVERIFY(on.before->hasFocus());
    }

    void tabLeavesTheCanvasInEveryState() {
        RecordedServices services;
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
            for (const QString state :
                 {"box", "row", "link", "nothing", "begun link", "rename", "search", "empty"}) {
                Keyboard on;
                on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
                if (state == "row") on.goTo("DEPT", "DEPT_NO");
                if (state == "link") on.nextLink();
                if (state == "nothing") on.deselect();
                if (state == "begun link") {
                    on.goTo("DEPT", "DEPT_NO");
                    on.press(Qt::Key_Insert);
                }
                if (state == "rename") on.press(Qt::Key_F2);
                if (state == "search") on.type("o");
                if (state == "empty") on.builder.Clear();
                const QWidget* inside = QApplication::focusWidget();
                QVERIFY2(&on.area() == inside || on.area().isAncestorOf(inside), qPrintable(state));
                // An edit lies inside: from there the canvas may be the next stop.
                on.press(key);
                if (on.area().hasFocus() && inside != &on.area()) on.press(key);
                const QWidget* outside = QApplication::focusWidget();
                QVERIFY2(outside && outside != &on.area() && !on.area().isAncestorOf(outside),
                         qPrintable(state));
                QVERIFY2(on.aliasEdit()->isHidden(), qPrintable(state));
                QVERIFY2(on.searchEdit()->isHidden(), qPrintable(state));
                // The way goes on to the widgets of the host.
                const QWidget* end = key == Qt::Key_Tab ? on.after : on.before;
                for (int turn = 0; turn < 20 && !end->hasFocus(); ++turn) on.press(key);
                QVERIFY2(end->hasFocus(), qPrintable(state));
            }
        }
        QCOMPARE(services.errors, QStringList());
    }

    void focusByKeysIsFramedWhenNothingIsSelected() {
        const Keyboard on;
        on.deselect();
        const QImage focused = on.picture();
        on.press(Qt::Key_Backtab);
        QVERIFY(on.before->hasFocus());
        const QImage left = on.picture();
        QVERIFY(focused != left);
        const QRect inner = left.rect().adjusted(1, 1, -1, -1);
        QCOMPARE(focused.copy(inner), left.copy(inner));
        on.press(Qt::Key_Tab);
        QCOMPARE(on.picture(), focused);
        on.goTo("DEPT");
        const QImage selected = on.picture();
        QCOMPARE(selected.copy(0, 0, selected.width(), 4), left.copy(0, 0, left.width(), 4));
    }

    void escapeReachesTheDialogWhenNothingIsGoingOn() {
        for (const bool hasSelection : {true, false}) {
            const Keyboard on;
            if (!hasSelection) on.deselect();
            on.press(Qt::Key_Escape);
            QVERIFY(!on.window.isVisible());
        }
    }

    void escapeEndsAGestureFirst() {
        const Keyboard on;
        const TorvQDTable* box = on.table("ORDERS");
        const int left = box->Left;
        const TRect caption = box->toView(box->GetCaptionRect());
        const QPoint place(caption.Left + 10, caption.Top + 5);
        QTest::mousePress(on.area().viewport(), Qt::LeftButton, {}, place);
        QMouseEvent move(QEvent::MouseMove, place + QPoint(60, 0),
                         on.area().viewport()->mapToGlobal(place + QPoint(60, 0)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(on.area().viewport(), &move);
        QVERIFY(box->Left != left);
        on.press(Qt::Key_Escape);
        QCOMPARE(box->Left, left);
        QVERIFY(on.window.isVisible());
        QTest::mouseRelease(on.area().viewport(), Qt::LeftButton, {}, place);
        on.press(Qt::Key_Escape);
        QVERIFY(!on.window.isVisible());
    }

    // --- shortcuts and the host

    void canvasTakesItsKeysFromShortcuts() {
        Keyboard on;
        Shortcuts shortcuts(&on.window, {QKeySequence("Del"), QKeySequence("Ctrl+Right"),
                                         QKeySequence("d"), QKeySequence("F2")});
        const TorvQDTable* box = on.goTo("EMPLOYEE");
        const int left = box->Left;
        on.press(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(box->Left, left + 10);
        on.type("d");
        QCOMPARE(on.currentRow("EMPLOYEE"), QString("DEPT_NO"));
        on.press(Qt::Key_Escape);
        on.press(Qt::Key_F2);
        QVERIFY(on.aliasEdit()->hasFocus());
        on.type("d");
        QCOMPARE(on.aliasEdit()->text(), QString("d"));
        on.press(Qt::Key_Escape);
        on.press(Qt::Key_Delete);
        QCOMPARE(on.tables(), QStringList({"DEPT", "ORDERS"}));
        QCOMPARE(shortcuts.fired, QStringList());
    }

    void shortcutsFireWhereTheCanvasHasNoUseForTheKey() {
        Keyboard on;
        Shortcuts shortcuts(&on.window,
                            {QKeySequence("Del"), QKeySequence("d"), QKeySequence("F2"),
                             QKeySequence("End"), QKeySequence("Ctrl+Return"), QKeySequence("Esc"),
                             QKeySequence("Ctrl+Ins"), QKeySequence("Space")});
        on.deselect();
        on.press(Qt::Key_Delete);
        on.type("d");
        on.press(Qt::Key_F2);
        on.press(Qt::Key_End);
        on.press(Qt::Key_Space);
        QCOMPARE(shortcuts.fired, QStringList({"Del", "D", "F2", "End", "Space"}));
        shortcuts.fired.clear();

        // A box has no use for these.
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Return, Qt::ControlModifier);
        on.press(Qt::Key_Insert, Qt::ControlModifier);
        on.press(Qt::Key_Escape);
        QCOMPARE(shortcuts.fired, QStringList({"Ctrl+Return", "Ctrl+Ins", "Esc"}));
        QCOMPARE(on.columns(), QStringList());
        shortcuts.fired.clear();

        // Nor a link for these.
        RecordedServices services;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        on.type("d");
        on.press(Qt::Key_End);
        on.press(Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(shortcuts.fired, QStringList({"D", "End", "Ctrl+Return"}));
        QCOMPARE(services.dialogs, QStringList());
    }

    void shortcutsFireElsewhereInTheWindow() {
        Keyboard on;
        Shortcuts shortcuts(&on.window, {QKeySequence("F2"), QKeySequence("Ctrl+Ins")});
        auto* button = new QPushButton(&on.window);
        button->show();
        button->setFocus();
        on.press(Qt::Key_F2);
        QCOMPARE(shortcuts.fired, QStringList("F2"));
        QVERIFY(on.aliasEdit()->isHidden());
    }

    void editsTakeTheirKeysFromShortcuts() {
        Keyboard on;
        Shortcuts shortcuts(&on.window, {QKeySequence("Esc"), QKeySequence("Return"),
                                         QKeySequence("Down"), QKeySequence("Ctrl+Return")});
        on.goTo("DEPT");
        on.press(Qt::Key_F2);
        on.type("D1");
        on.press(Qt::Key_Return);
        on.press(Qt::Key_F2);
        on.type("D2");
        on.press(Qt::Key_Escape);
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "DEPT D1", "ORDERS"}));
        on.type("d");
        on.press(Qt::Key_Down);
        QCOMPARE(on.currentRow("D1"), QString("DEPARTMENT"));
        on.press(Qt::Key_Return);
        QVERIFY(on.area().hasFocus());
        QCOMPARE(shortcuts.fired, QStringList());
        on.press(Qt::Key_F2);
        on.press(Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(shortcuts.fired, QStringList("Ctrl+Return"));
    }

    void hostMaySwallowAKey() {
        const Keyboard on;
        TorvQDTable* box = on.goTo("DEPT", "DEPT_NO")->Table;
        QList<int> seen;
        box->OnKeyDown = [&](QObject* sender, int& key, Qt::KeyboardModifiers) {
            QCOMPARE(sender, box);
            seen << std::exchange(key, 0);
        };
        on.press(Qt::Key_Down);
        on.press(Qt::Key_Space);
        on.press(Qt::Key_Delete);
        on.type("d");
        QCOMPARE(seen, QList<int>({Qt::Key_Down, Qt::Key_Space, Qt::Key_Delete, Qt::Key_D}));
        QCOMPARE(on.currentRow("DEPT"), QString("DEPT_NO"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.tables().size(), 3);
        QVERIFY(on.searchEdit()->isHidden());
        box->OnKeyDown = nullptr;
    }

    void hostMayChangeAKey() {
        const Keyboard on;
        TorvQDTable* box = on.goTo("DEPT", "DEPT_NO")->Table;
        box->OnKeyDown = [](QObject*, int& key, Qt::KeyboardModifiers) {
            if (key == Qt::Key_X) key = Qt::Key_Minus;
            if (key == Qt::Key_Y) key = Qt::Key_B;
        };
        on.type("y");
        QCOMPARE(on.currentRow("DEPT"), QString("BUDGET"));
        on.press(Qt::Key_Escape);
        on.type("x");
        QVERIFY(!box->Expanded);
        QVERIFY(on.searchEdit()->isHidden());
    }

    void hostMayCloseTheBoxInItsKey() {
        const Keyboard on;
        on.goTo("DEPT", "DEPT_NO");
        on.table("DEPT")->OnKeyDown = [](QObject* sender, int&, Qt::KeyboardModifiers) {
            static_cast<TorvQDTable*>(sender)->CloseTable();
        };
        on.press(Qt::Key_Down);
        QCoreApplication::processEvents();
        QCOMPARE(on.tables(), QStringList({"EMPLOYEE", "ORDERS"}));
        on.nextTable();
        QCOMPARE(on.selected(), QString("EMPLOYEE"));
    }
};

QTEST_MAIN(DiagramKeysTest)
#include "tst_diagramkeys.moc"
