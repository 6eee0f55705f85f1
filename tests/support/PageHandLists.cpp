// SPDX-License-Identifier: MIT
// The hand on the selection grid and on the sorting page.
#include "criteria/ORVQDWherePanel.h"
#include "support/PageHand.h"
#include "toolkit/ExitCombo.h"

#include <QApplication>
#include <QCheckBox>
#include <QDrag>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>

namespace orvtest {

namespace {

QString textOf(const QPoint& point) {
    return QStringLiteral("%1,%2").arg(point.x()).arg(point.y());
}

}  // namespace

// --- the grid ---

void PageHand::clickCell() {
    const QPoint at = cellPoint();
    note("click on the grid at " + textOf(at));
    click(grid().viewport(), at);
}

void PageHand::doubleClickCell() {
    const QPoint at = cellPoint();
    note("double click on the grid at " + textOf(at));
    doubleClick(grid().viewport(), at);
}

void PageHand::rightClickCell() {
    const QPoint at = cellPoint();
    note("right click on the grid at " + textOf(at));
    askForMenu(grid().viewport(), at);
}

void PageHand::gridKey() {
    static const Qt::Key keys[] = {
        Qt::Key_Left,   Qt::Key_Right, Qt::Key_Up,    Qt::Key_Down,   Qt::Key_Home, Qt::Key_End,
        Qt::Key_PageUp, Qt::Key_F2,    Qt::Key_Enter, Qt::Key_Delete, Qt::Key_F10,  Qt::Key_Tab,
        Qt::Key_Escape, Qt::Key_Up,    Qt::Key_Down,  Qt::Key_F2,
    };
    static const Qt::KeyboardModifiers modifiers[] = {
        Qt::NoModifier, Qt::NoModifier, Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier};
    const Qt::Key key = keys[dice().below(int(std::size(keys)))];
    const Qt::KeyboardModifiers held = modifiers[dice().below(int(std::size(modifiers)))];
    note("key in the grid " + QKeySequence(int(held) | int(key)).toString());
    if (grid().isEditing() && key == Qt::Key_Delete) return;
    if (dice().chance(70)) grid().setFocus();
    pressKey(key, held);
}

void PageHand::editCell() {
    if (!grid().isEditing()) {
        const int row = dice().below(grid().model()->rowCount());
        grid().setCurrentIndex(grid().model()->index(row, dice().below(3)));
        grid().setFocus();
        switch (dice().below(3)) {
        case 0: pressKey(Qt::Key_F2); break;
        case 1: pressKey(Qt::Key_Return); break;
        default: pressKey(Qt::Key_T, {}, QStringLiteral("t")); break;
        }
    }
    if (!grid().isEditing()) return;
    QString text;
    switch (grid().currentIndex().column()) {
    case 0: text = dice().pick({"N", "A", "a b", "", "X", "SELECT", "\"q\""}); break;
    case 1: text = dice().pick({"SUM", "COUNT", "", "MAX", oddWord, "         "}); break;
    default: text = operandText();
    }
    note("typed into the grid: " + text);
    type(text.replace(u'\n', u' '));
    endEdit();
}

void PageHand::openChoice() {
    // One cell after the other: between two of them the ticks are looked at.
    if (grid().isEditing()) return grid().commitEdit();
    const int row = dice().below(grid().model()->rowCount());
    grid().setCurrentIndex(grid().model()->index(row, dice().between(1, 2)));
    note("choice in the grid");
    grid()._StringDblClick();
    auto* choice = grid().viewport()->findChild<orv::ExitCombo*>();
    if (!grid().isEditing() || choice->isHidden()) return;
    pressKey(Qt::Key_Down, Qt::AltModifier);
    if (!choice->view()->isVisible()) choice->showPopup();
    if (dice().chance(12)) disturb();
    const QPointer<QAbstractItemView> list(choice->view());
    for (int count = dice().below(4); count > 0 && list->isVisible(); --count) {
        QTest::keyClick(list, Qt::Key_Down);
    }
    if (list->isVisible()) {
        QTest::keyClick(list, dice().chance(60) ? Qt::Key_Return : Qt::Key_Escape);
    }
    if (dice().chance(60)) endEdit();
    choice->hidePopup();
}

void PageHand::dragRow() {
    QWidget* view = grid().viewport();
    const QPoint from = cellPoint();
    const QPoint to = cellPoint();
    note("row of the grid from " + textOf(from) + " to " + textOf(to));
    const QPointer<QWidget> target(press(view, from));
    if (!target) return;
    mouse(QEvent::MouseMove, target, view, from + QPoint(0, 3), Qt::LeftButton);
    mouse(QEvent::MouseMove, target, view, to, Qt::LeftButton);
    if (dice().chance(10)) disturb();
    if (dice().chance(10)) pressKey(Qt::Key_Escape);
    mouse(QEvent::MouseButtonRelease, target, view, to, Qt::LeftButton);
}

void PageHand::callGrid() {
    const int way = dice().below(5);
    note(QStringLiteral("call of the grid, way %1").arg(way));
    switch (way) {
    case 0: return grid()._DeleteCurrentRow();
    case 1: return grid().moveRow(dice().below(5), dice().below(5));
    case 2: return grid().discardEdit();
    case 3: return grid()._EditText(dice().below(3), dice().between(0, 4));
    default: return builder().SelectPanel->SetDistinct(dice().chance(50) ? -1 : 0);
    }
}

void PageHand::clickDistinct() {
    QCheckBox* box = builder().SelectPanel->distinctBox();
    note("click on DISTINCT");
    click(box, QPoint(5, box->height() / 2));
}

// --- sorting ---

void PageHand::clickLists() {
    auto* list = builder().OrderPanel->findChild<QListWidget*>();
    auto* tree = builder().OrderPanel->findChild<QTreeWidget*>();
    QWidget* view = dice().chance(50) ? list->viewport() : tree->viewport();
    const QPoint at(dice().below(60), dice().below(60));
    note("click on the lists at " + textOf(at));
    if (view->rect().contains(at)) click(view, at);
}

void PageHand::doubleClickLists() {
    auto* list = builder().OrderPanel->findChild<QListWidget*>();
    auto* tree = builder().OrderPanel->findChild<QTreeWidget*>();
    QWidget* view = dice().chance(60) ? list->viewport() : tree->viewport();
    const QPoint at(dice().below(60), dice().below(50));
    note("double click on the lists at " + textOf(at));
    if (view->rect().contains(at)) doubleClick(view, at);
}

void PageHand::sortingKey() {
    static const Qt::Key keys[] = {
        Qt::Key_Up,  Qt::Key_Down, Qt::Key_Return, Qt::Key_Insert, Qt::Key_Delete, Qt::Key_Space,
        Qt::Key_Tab, Qt::Key_Home, Qt::Key_Insert, Qt::Key_Return, Qt::Key_Up,     Qt::Key_Down,
    };
    static const Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::NoModifier,
                                                      Qt::ControlModifier, Qt::AltModifier};
    QWidget* list = builder().OrderPanel->findChild<QListWidget*>();
    QWidget* tree = builder().OrderPanel->findChild<QTreeWidget*>();
    const Qt::Key key = keys[dice().below(int(std::size(keys)))];
    const Qt::KeyboardModifiers held = modifiers[dice().below(int(std::size(modifiers)))];
    note("key on the sorting page " + QKeySequence(int(held) | int(key)).toString());
    (dice().chance(50) ? list : tree)->setFocus(Qt::TabFocusReason);
    pressKey(key, held);
}

void PageHand::clickButton() {
    const auto buttons = builder().OrderPanel->findChildren<QPushButton*>();
    QPushButton* button = buttons[dice().below(int(buttons.size()))];
    note("button " + button->accessibleName() + button->text());
    if (button->isVisible()) click(button, button->rect().center());
}

// The event of a drop does not know its source without a real drag: the page is told instead.
void PageHand::dragLine() {
    TorvQDOrderPanel& page = *builder().OrderPanel;
    auto* list = page.findChild<QListWidget*>();
    auto* tree = page.findChild<QTreeWidget*>();
    const bool isOut = dice().chance(50);
    QWidget* view = isOut ? list->viewport() : tree->viewport();
    const QPoint from(8, dice().below(40));
    if (!view->rect().contains(from)) return;
    note("name dragged from the lists at " + textOf(from));
    const orv::DragRunner old = orv::setDragRunner([&](QDrag&) {
        if (dice().chance(20)) disturb();
        isOut ? page._DragDropOrder() : page._DragDropUnOrder();
        return Qt::CopyAction;
    });
    const QPointer<QWidget> target(press(view, from));
    if (target) {
        mouse(QEvent::MouseMove, target, view, from + QPoint(25, 5), Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, target, view, from + QPoint(25, 5), Qt::LeftButton);
    }
    orv::setDragRunner(old);
}

void PageHand::editTail() {
    QLineEdit* line = nullptr;
    const auto all = builder().PageCtrl->currentWidget()->findChildren<QLineEdit*>();
    for (QLineEdit* each : all) {
        if (each->isVisible()) line = each;
    }
    if (!line) return;
    line->setFocus();
    const QString text = dice().pick({"LIMIT 5", "", "FOR UPDATE", "LIMIT 10 OFFSET 2"});
    note("typed as the tail: " + text);
    type(text);
    endEdit();
}

}  // namespace orvtest
