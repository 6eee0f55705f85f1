// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldList.h"
#include "data/DraggedField.h"
#include "querybuilder/LifetimeMoments.h"
#include "querybuilder/LifetimePages.h"
#include "querybuilder/ORVQDPageTabs.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QListWidget>
#include <QTabBar>
#include <QTreeWidget>

#include <memory>

namespace orvtest {

namespace {

// The end comes when the host is told of what the hand does then.
void strikeWhenChanged(Scene& on, const std::function<void()>& hand) {
    const auto told = std::make_shared<QMetaObject::Connection>();
    *told = QObject::connect(on.builder, &TorvQueryBuilder::StatementChanged, qApp, [&on, told] {
        QObject::disconnect(*told);
        on.strikeNow();
    });
    // A command whose row has gone says so.
    (void)errorOf(hand);
}

// --- conditions ---

void editingACondition(Scene& on, RecordedServices&) {
    const QPointer<TMemoEx> memo(editArgument(on));
    QVERIFY(memo->isOpen());
    on.strikeNow();
    if (memo) memo->insertPlainText("1");
    if (memo) pressKey(memo, Qt::Key_Return);
}

void choosingAField(Scene& on, RecordedServices&) {
    editArgument(on);
    on.builder->WherePanel->InsertField();
    const QPointer<orv::FieldList> list(
        on.builder->WherePanel->viewport()->findChild<orv::FieldList*>());
    QVERIFY(list->isOpen());
    QTest::keyClicks(list->filter(), "b");
    on.strikeNow();
    if (list) pressKey(list->filter(), Qt::Key_Down);
    if (list) pressKey(list->tree(), Qt::Key_Return);
    if (list) pressKey(list->tree(), Qt::Key_Escape);
}

void seeMenu(Scene& on, RecordedServices& services, Page page, int kind, const QString& name) {
    showPage(on, page);
    TorvQDWherePanel* panel = page == wherePage ? on.builder->WherePanel : on.builder->HavingPanel;
    const TorvQDControl& clicked = kind == ekGroupOper && name == "GroupMenu"
                                       ? *panel->rootRow()->Controls[ekGroupOper]
                                       : element(*panel, kind);
    const int top = panel->elementRect(clicked).top();
    kind == ekButton ? panel->ButtonClick(clicked, top) : panel->TextClick(clicked, top);
    const QPointer<QMenu> menu(panel->findChild<QMenu*>(name));
    QVERIFY(menu && menu->isVisible());
    on.strikeNow();
    if (menu) menu->actions().constFirst()->trigger();
    if (menu) menu->actions().constLast()->trigger();
    if (menu) menu->close();
    // Items for a row that has gone say so.
    services.errors.removeIf(
        [](const QString& text) { return text.startsWith("There are no active"); });
}

void seeingTheMenuOfARow(Scene& on, RecordedServices& services) {
    // What is pasted at the end is no condition.
    QGuiApplication::clipboard()->setText("A = 1");
    seeMenu(on, services, wherePage, ekButton, "RowMenu");
}

void seeingTheMenuOfAGroup(Scene& on, RecordedServices& services) {
    seeMenu(on, services, wherePage, ekGroupOper, "GroupMenu");
}

void seeingTheMenuOfFunctions(Scene& on, RecordedServices& services) {
    seeMenu(on, services, havingPage, ekFieldFunc, "FunctionMenu");
}

void seeingTheMenuOfOperators(Scene& on, RecordedServices& services) {
    seeMenu(on, services, wherePage, ekOperator, "OperatorMenu");
}

void beingAskedAboutACondition(Scene& on, RecordedServices&) {
    showPage(on, wherePage);
    const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
        on.strikeNow();
        return orv::MessageAnswer::Yes;
    });
    on.builder->WherePanel->setActiveElement(&element(*on.builder->WherePanel, ekFieldName));
    pressKey(on.builder->WherePanel, Qt::Key_Delete, Qt::ControlModifier);
    orv::setMessageService(old);
}

void mistype(Scene& on) {
    on.box->GetFieldItem("A")->FieldType = ftInteger;
    pressKey(editArgument(on), Qt::Key_Return);
    QVERIFY(!on.builder->WherePanel->rootRow()->SubRows->Row(0)->Valid);
}

void waitingForTheTypeMessage(Scene& on, RecordedServices&) {
    mistype(on);
    on.strikeNow();
}

void seeingTheTypeMessage(Scene& on, RecordedServices&) {
    bool isStruck = false;
    const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
        if (!std::exchange(isStruck, true)) on.strikeNow();
        return orv::MessageAnswer::Ok;
    });
    mistype(on);
    runLoopOnce();
    orv::setMessageService(old);
}

void droppingOnACondition(Scene& on, RecordedServices&) {
    showPage(on, wherePage);
    TorvQDWherePanel& panel = *on.builder->WherePanel;
    const auto data = orv::toMimeData({on.builder->dragIdentity(), "T", "B"});
    panel._DragDrop(data.get(), panel.elementRect(element(panel, ekFieldName)).center());
    on.strikeNow();
}

void hearingOfACondition(Scene& on, RecordedServices&) {
    const QPointer<TMemoEx> memo(editArgument(on));
    strikeWhenChanged(on, [&] { pressKey(memo, Qt::Key_Return); });
}

void hearingOfACommand(Scene& on, void (TorvQDWherePanel::*command)()) {
    showPage(on, wherePage);
    TorvQDWherePanel& panel = *on.builder->WherePanel;
    panel.setCurrentElement(&element(panel, ekFieldName));
    strikeWhenChanged(on, [&] { (panel.*command)(); });
}

void hearingOfADeletedCondition(Scene& on, RecordedServices&) {
    hearingOfACommand(on, &TorvQDWherePanel::DeleteCondition);
}

void hearingOfAPastedCondition(Scene& on, RecordedServices&) {
    QGuiApplication::clipboard()->setText("T.A = 1");
    hearingOfACommand(on, &TorvQDWherePanel::PasteCondition);
}

void hearingOfTheTextBeforeADuplicate(Scene& on, RecordedServices&) {
    editArgument(on);
    TorvQDWherePanel* panel = on.builder->WherePanel;
    strikeWhenChanged(on, [&] { panel->DuplicateCondition(); });
}

void hearingOfTheTextBeforeACopy(Scene& on, RecordedServices&) {
    editArgument(on);
    TorvQDWherePanel* panel = on.builder->WherePanel;
    panel->setCurrentElement(&element(*panel, ekFieldName));
    strikeWhenChanged(on, [&] { panel->CopyCondition(); });
}

// --- the grid ---

void namingAColumn(Scene& on, RecordedServices&) {
    const QPointer<orv::ExitEdit> edit(openCell(on, 0)->viewport()->findChild<orv::ExitEdit*>());
    QVERIFY(edit->isVisible());
    on.strikeNow();
    if (edit) pressKey(edit, Qt::Key_Return);
}

void choosingASource(Scene& on, RecordedServices&) {
    const QPointer<orv::ExitCombo> choice(
        openCell(on, 2)->viewport()->findChild<orv::ExitCombo*>());
    choice->showPopup();
    QVERIFY(choice->view()->isVisible());
    on.strikeNow();
    if (choice && choice->view()->isVisible()) pressKey(choice->view(), Qt::Key_Return);
    if (choice) choice->hidePopup();
    if (choice) pressKey(choice, Qt::Key_Return);
}

void hearingOfACell(Scene& on, int column) {
    TorvQDSelectGrid* grid = openCell(on, column);
    strikeWhenChanged(on, [&] { grid->_CellKeyDown(Qt::Key_Return); });
}

void hearingOfAName(Scene& on, RecordedServices&) {
    hearingOfACell(on, 0);
}

void hearingOfAnAggregate(Scene& on, RecordedServices&) {
    hearingOfACell(on, 1);
}

void hearingOfASource(Scene& on, RecordedServices&) {
    hearingOfACell(on, 2);
}

void beingAskedAboutAColumn(Scene& on, RecordedServices&) {
    showPage(on, gridPage);
    const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
        on.strikeNow();
        return orv::MessageAnswer::Yes;
    });
    TorvQDSelectGrid* grid = on.builder->SelectPanel->grid();
    grid->setCurrentIndex(grid->model()->index(1, 0));
    pressKey(grid, Qt::Key_Delete, Qt::ControlModifier);
    orv::setMessageService(old);
}

void draggingAColumn(Scene& on, RecordedServices&) {
    showPage(on, gridPage);
    TorvQDSelectGrid* grid = on.builder->SelectPanel->grid();
    const QPointer<QWidget> view(grid->viewport());
    const auto at = [&](int row) {
        return grid->visualRect(grid->model()->index(row, 0)).center();
    };
    const QPoint from = at(0);
    const QPoint to = at(1);
    const auto send = [&](QEvent::Type type, const QPoint& point, Qt::MouseButton button) {
        if (!view) return;
        const bool isHeld = type != QEvent::MouseButtonRelease;
        QMouseEvent event(type, point, view->mapToGlobal(point), button,
                          isHeld ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton);
    send(QEvent::MouseMove, to, Qt::NoButton);
    on.strikeNow();
    send(QEvent::MouseMove, to + QPoint(0, 1), Qt::NoButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton);
}

void droppingOnTheGrid(Scene& on, RecordedServices&) {
    showPage(on, gridPage);
    TorvQDSelectGrid* grid = on.builder->SelectPanel->grid();
    const auto data = orv::toMimeData({on.builder->dragIdentity(), "T", "C"});
    const QPoint at = grid->visualRect(grid->model()->index(0, 0)).center();
    bool accepted = false;
    grid->_DragOver(nullptr, data.get(), at.x(), at.y(), accepted);
    QVERIFY(accepted);
    grid->_DragDrop(nullptr, at.x(), at.y());
    on.strikeNow();
}

// --- sorting and the rest ---

void draggingASortedName(Scene& on, RecordedServices&) {
    showPage(on, sortingPage);
    auto* list = on.builder->OrderPanel->findChild<QListWidget*>();
    const QPointer<TorvQDOrderPanel> page(on.builder->OrderPanel);
    const auto old = orv::setDragRunner([&](QDrag&) {
        on.strikeNow();
        if (page) page->_DragDropOrder();
        return Qt::CopyAction;
    });
    const QPointer<QWidget> view(list->viewport());
    const QPoint at = list->visualItemRect(list->item(0)).center();
    QTest::mousePress(view, Qt::LeftButton, {}, at);
    const QPoint to = at + QPoint(40, 0);
    QMouseEvent event(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(view, &event);
    orv::setDragRunner(old);
}

void hearingOfASortedName(Scene& on, RecordedServices&) {
    showPage(on, sortingPage);
    TorvQDOrderPanel* page = on.builder->OrderPanel;
    page->findChild<QListWidget*>()->setCurrentRow(0);
    strikeWhenChanged(on, [&] { page->_AddClick(); });
}

void editingTheTail(Scene& on, RecordedServices&) {
    const QPointer<QLineEdit> line(editTail(on));
    on.strikeNow();
    if (line) pressKey(line, Qt::Key_Return);
}

void hearingOfTheTail(Scene& on, RecordedServices&) {
    QLineEdit* line = editTail(on);
    strikeWhenChanged(on, [&] { pressKey(line, Qt::Key_Return); });
}

void goingToAnotherPage(Scene& on, RecordedServices&) {
    editArgument(on);
    auto* pages = dynamic_cast<orv::PageTabs*>(on.builder->PageCtrl);
    pages->aboutToChange = [&on, tell = pages->aboutToChange] {
        on.strikeNow();
        if (on.builder) tell();
    };
    QTabBar* bar = pages->tabBar();
    QTest::mousePress(bar, Qt::LeftButton, {}, bar->tabRect(gridPage).center());
}

const Moment moments[] = {
    {"editing a condition", editingACondition},
    {"choosing a field", choosingAField},
    {"seeing the menu of a row", seeingTheMenuOfARow},
    {"seeing the menu of a group", seeingTheMenuOfAGroup},
    {"seeing the menu of functions", seeingTheMenuOfFunctions},
    {"seeing the menu of operators", seeingTheMenuOfOperators},
    {"being asked about a condition", beingAskedAboutACondition},
    {"waiting for the message about types", waitingForTheTypeMessage},
    {"seeing the message about types", seeingTheTypeMessage},
    {"having dropped on a condition", droppingOnACondition},
    {"hearing of a condition", hearingOfACondition},
    {"hearing of a deleted condition", hearingOfADeletedCondition},
    {"hearing of a pasted condition", hearingOfAPastedCondition},
    {"hearing of the text before a duplicate", hearingOfTheTextBeforeADuplicate},
    {"hearing of the text before a copy", hearingOfTheTextBeforeACopy},
    {"naming a column", namingAColumn},
    {"choosing a source", choosingASource},
    {"hearing of a name", hearingOfAName},
    {"hearing of an aggregate", hearingOfAnAggregate},
    {"hearing of a source", hearingOfASource},
    {"being asked about a column", beingAskedAboutAColumn},
    {"dragging a column", draggingAColumn},
    {"having dropped on the grid", droppingOnTheGrid},
    {"dragging a name that is sorted", draggingASortedName},
    {"hearing of a sorted name", hearingOfASortedName},
    {"editing the tail", editingTheTail},
    {"hearing of the tail", hearingOfTheTail},
    {"going to another page", goingToAnotherPage},
};

}  // namespace

std::span<const Moment> pageMoments() {
    return moments;
}

}  // namespace orvtest
