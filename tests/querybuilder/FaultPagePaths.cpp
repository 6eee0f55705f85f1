// SPDX-License-Identifier: MIT
// What the host hears of while somebody works on the pages.
#include "data/DraggedField.h"
#include "querybuilder/FaultPaths.h"
#include "querybuilder/LifetimePages.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QListWidget>
#include <QTabBar>

namespace orvtest {

namespace {

using By = FaultPath::By;

QListWidget* sortedOf(const Scene& on) {
    return on.builder->OrderPanel->findChild<QListWidget*>();
}

template <Page page>
void show(Scene& on) {
    showPage(on, page);
}

void typeCondition(Scene& on) {
    editArgument(on);
}

template <int column>
void typeCell(Scene& on) {
    openCell(on, column);
}

void typeTail(Scene& on) {
    editTail(on);
}

void chooseConditionsField(Scene& on) {
    showPage(on, wherePage);
    on.builder->WherePanel->setCurrentElement(&element(*on.builder->WherePanel, ekFieldName));
}

void typeInHaving(Scene& on) {
    showPage(on, havingPage);
    TorvQDWherePanel& panel = *on.builder->HavingPanel;
    panel.editText(element(panel, ekArgument));
    panel.viewport()->findChild<TMemoEx*>()->insertPlainText("U.Y");
}

void commitCell(Scene& on) {
    on.builder->SelectPanel->grid()->_CellKeyDown(Qt::Key_Return);
}

void commitAll(Scene& on) {
    on.builder->CommitPendingEdits();
}

QLineEdit* tailOf(const Scene& on) {
    return on.builder->PageCtrl->findChild<orv::TailLine*>()->findChild<QLineEdit*>();
}

void goToGrid(Scene& on) {
    QTabBar* bar = on.builder->PageCtrl->tabBar();
    QTest::mousePress(bar, Qt::LeftButton, {}, bar->tabRect(gridPage).center());
}

void setDefaultOperators(Scene& on) {
    TOperatorList all;
    orv::fillOperators(all);
    on.builder->setOperators(all);
}

void sortFirst(Scene& on) {
    showPage(on, sortingPage);
    sortedOf(on)->setCurrentRow(0);
}

// The command as a key or a menu of the panel runs it.
void byHand(Scene& on, Qt::Key key) {
    pressKey(on.builder->WherePanel, key, Qt::ControlModifier);
}

void armSortDrag(Scene&, RecordedServices&, const Strike& strike) {
    orv::setDragRunner([strike](QDrag& drag) {
        const QPointer<QDrag> running(&drag);
        strike(nullptr);
        return running ? Qt::CopyAction : Qt::IgnoreAction;
    });
}

void dragName(Scene& on) {
    QListWidget* list = sortedOf(on);
    const QPointer<QWidget> view(list->viewport());
    const QPoint at = list->visualItemRect(list->item(0)).center();
    QTest::mousePress(view, Qt::LeftButton, {}, at);
    const QPoint to = at + QPoint(40, 0);
    QMouseEvent event(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(view, &event);
}

void mistypeCondition(Scene& on) {
    editArgument(on);
    on.box->GetFieldItem("A")->FieldType = ftInteger;
}

void returnInCondition(Scene& on) {
    pressKey(on.builder->WherePanel->viewport()->findChild<TMemoEx*>(), Qt::Key_Return);
}

void dropOnCondition(Scene& on) {
    TorvQDWherePanel& panel = *on.builder->WherePanel;
    const auto data = orv::toMimeData({on.builder->dragIdentity(), "T", "B"});
    const QPoint at = panel.elementRect(element(panel, ekFieldName)).center();
    // Qt knows where a drop goes from the drag that has come there before.
    QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(panel.viewport(), &enter);
    QDropEvent drop(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(panel.viewport(), &drop);
}

void dropOnGrid(Scene& on) {
    TorvQDSelectGrid* grid = on.builder->SelectPanel->grid();
    const auto data = orv::toMimeData({on.builder->dragIdentity(), "T", "C"});
    const QPoint at = grid->visualRect(grid->model()->index(0, 0)).center();
    bool accepted = false;
    grid->_DragOver(nullptr, data.get(), at.x(), at.y(), accepted);
    QVERIFY(accepted);
    grid->_DragDrop(nullptr, at.x(), at.y());
}

std::vector<FaultPath> conditionPaths() {
    constexpr int none = FaultPath::None;
    const auto told = armStatementChanged;
    return {
        {"StatementChanged, condition and Enter", By::Hand, none, typeCondition, told,
         returnInCondition},
        {"StatementChanged, condition and CommitPendingEdits", By::Call, none, typeCondition, told,
         commitAll},
        {"StatementChanged, condition and another page", By::Hand, none, typeCondition, told,
         goToGrid},
        {"StatementChanged, condition and a press on the diagram", By::Hand,
         FaultPath::Twice | FaultPath::QtGoesOn, typeCondition, told,
         [](Scene& on) {
             const QPoint at = Scene::captionOf(*on.table("WIDE"));
             on.area()->setFocus(Qt::MouseFocusReason);
             on.press(at);
             on.release(at);
         }},
        {"StatementChanged, condition and setOperators", By::Call, FaultPath::Twice, typeCondition,
         told, setDefaultOperators},
        {"StatementChanged, condition below groups and setOperators", By::Call, FaultPath::Twice,
         typeInHaving, told, setDefaultOperators},
        {"StatementChanged, condition and AddCondition", By::Call, FaultPath::Twice, typeCondition,
         told, [](Scene& on) { on.builder->WherePanel->AddCondition(); }},
        {"StatementChanged, condition and hiding", By::Hand, FaultPath::QtGoesOn, typeCondition,
         told, [](Scene& on) { on.builder->PageCtrl->setCurrentIndex(gridPage); }},
        {"StatementChanged, AddCondition", By::Call, none, chooseConditionsField, told,
         [](Scene& on) { on.builder->WherePanel->AddCondition(); }},
        {"StatementChanged, DeleteCondition", By::Call, none, chooseConditionsField, told,
         [](Scene& on) { on.builder->WherePanel->DeleteCondition(); }},
        {"StatementChanged, MuteCondition", By::Call, none, chooseConditionsField, told,
         [](Scene& on) { on.builder->WherePanel->MuteCondition(); }},
        {"StatementChanged, DuplicateCondition", By::Call, none, chooseConditionsField, told,
         [](Scene& on) { on.builder->WherePanel->DuplicateCondition(); }},
        {"StatementChanged, MakeCompositCondition", By::Call, none, chooseConditionsField, told,
         [](Scene& on) { on.builder->WherePanel->MakeCompositCondition(); }},
        {"StatementChanged, PasteCondition", By::Call, none, chooseConditionsField, told,
         [](Scene& on) {
             QGuiApplication::clipboard()->setText("T.A = 1");
             on.builder->WherePanel->PasteCondition();
         }},
        {"StatementChanged, condition deleted by key", By::Hand, none, chooseConditionsField, told,
         [](Scene& on) { byHand(on, Qt::Key_Delete); }},
        {"StatementChanged, condition muted by key", By::Hand, none, chooseConditionsField, told,
         [](Scene& on) { byHand(on, Qt::Key_M); }},
        {"StatementChanged, field dropped on a condition", By::Hand, none, show<wherePage>, told,
         dropOnCondition},
        {"question about a condition, key", By::Hand, FaultPath::Keeps, chooseConditionsField,
         armMessage, [](Scene& on) { byHand(on, Qt::Key_Delete); }},
        {"question about a condition, call", By::Call, FaultPath::Keeps, chooseConditionsField,
         armMessage, [](Scene& on) { on.builder->WherePanel->DeleteCondition(); }},
        {"message about types", By::Hand, none, mistypeCondition, armMessage, returnInCondition},
    };
}

std::vector<FaultPath> columnPaths() {
    constexpr int none = FaultPath::None;
    const auto told = armStatementChanged;
    const auto chooseColumn = [](Scene& on) {
        showPage(on, gridPage);
        TorvQDSelectGrid* grid = on.builder->SelectPanel->grid();
        grid->setCurrentIndex(grid->model()->index(1, 0));
    };
    const auto deleteByKey = [](Scene& on) {
        pressKey(on.builder->SelectPanel->grid(), Qt::Key_Delete, Qt::ControlModifier);
    };
    return {
        {"StatementChanged, name of a column", By::Call, none, typeCell<0>, told, commitCell},
        {"StatementChanged, aggregate", By::Call, none, typeCell<1>, told, commitCell},
        {"StatementChanged, source", By::Call, none, typeCell<2>, told, commitCell},
        {"StatementChanged, name and Enter", By::Hand, none, typeCell<0>, told,
         [](Scene& on) {
             pressKey(on.builder->SelectPanel->grid()->viewport()->findChild<orv::ExitEdit*>(),
                      Qt::Key_Return);
         }},
        {"StatementChanged, source and Enter", By::Hand, none, typeCell<2>, told,
         [](Scene& on) {
             pressKey(on.builder->SelectPanel->grid()->viewport()->findChild<orv::ExitCombo*>(),
                      Qt::Key_Return);
         }},
        {"StatementChanged, source and a tick", By::Call, none, typeCell<2>, told,
         [](Scene& on) { on.box->toggle(on.box->GetFieldItem("D")); }},
        {"StatementChanged, source and DeleteTable", By::Call, none, typeCell<2>, told,
         [](Scene& on) { on.builder->ListOfTables->DeleteTable(on.box); }},
        {"StatementChanged, source and LoadSQL", By::Call, none, typeCell<2>, told,
         [](Scene& on) { on.builder->LoadSQL("SELECT D.BUDGET FROM DEPT D"); }},
        {"StatementChanged, column deleted by key", By::Hand, none, chooseColumn, told,
         deleteByKey},
        {"StatementChanged, column moved by key", By::Hand, none, chooseColumn, told,
         [](Scene& on) { pressKey(on.builder->SelectPanel->grid(), Qt::Key_Up, Qt::AltModifier); }},
        {"StatementChanged, column muted by key", By::Hand, none, chooseColumn, told,
         [](Scene& on) {
             pressKey(on.builder->SelectPanel->grid(), Qt::Key_M, Qt::ControlModifier);
         }},
        {"StatementChanged, field dropped on the grid", By::Hand, none, show<gridPage>, told,
         dropOnGrid},
        {"StatementChanged, setColumns", By::Call, none, chooseColumn, told,
         [](Scene& on) {
             orv::OutputColumns columns = on.builder->SelectPanel->grid()->columns();
             columns.front().name = "N";
             on.builder->SelectPanel->grid()->setColumns(columns);
         }},
        {"StatementChanged, DISTINCT", By::Hand, none, show<gridPage>, told,
         [](Scene& on) { on.builder->SelectPanel->distinctBox()->click(); }},
        {"question about a column", By::Hand, FaultPath::Keeps, chooseColumn, armMessage,
         deleteByKey},
        {"StatementChanged, name that is sorted", By::Call, none, sortFirst, told,
         [](Scene& on) { on.builder->OrderPanel->_AddClick(); }},
        {"StatementChanged, name that is sorted by key", By::Hand, none, sortFirst, told,
         [](Scene& on) { pressKey(sortedOf(on), Qt::Key_Return); }},
        {"drag of a name", By::Hand, none, show<sortingPage>, armSortDrag, dragName},
        {"StatementChanged, tail and Enter", By::Hand, none, typeTail, told,
         [](Scene& on) { pressKey(tailOf(on), Qt::Key_Return); }},
        {"StatementChanged, tail and CommitPendingEdits", By::Call, none, typeTail, told,
         commitAll},
        {"StatementChanged, tail and another page", By::Hand, none, typeTail, told, goToGrid},
    };
}

}  // namespace

std::vector<FaultPath> pageFaultPaths() {
    std::vector<FaultPath> paths = conditionPaths();
    for (FaultPath& path : columnPaths()) paths.push_back(std::move(path));
    return paths;
}

}  // namespace orvtest
