// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/LifetimeScene.h"
#include "querybuilder/ORVQDTailLine.h"
#include "toolkit/ExitCombo.h"
#include "toolkit/ExitEdit.h"

#include <QLineEdit>
#include <QTabWidget>

// The pages of a scene, and what a user is typing on them.
namespace orvtest {

enum Page { wherePage, gridPage, havingPage, sortingPage };

inline void addCondition(TorvQDWherePanel& panel, const QString& field, const QString& argument) {
    panel.setCurrentElement(panel.rootRow()->Controls[ekGroupOper].get());
    panel.AddCondition();
    TorvQDWhereRow* row = panel.ActiveElement()->Row;
    row->FieldName = field;
    row->Arguments[0] = argument;
    row->Changed(false);
    panel.refreshView();
}

// Columns and conditions of the box that goes and of another one.
inline void showPage(Scene& on, Page page) {
    on.builder->setTabsHeight(240);
    on.box->toggle(on.box->GetFieldItem("A"));
    on.box->toggle(on.box->GetFieldItem("B"));
    on.table("U")->toggle(on.table("U")->GetFieldItem("X"));
    for (TorvQDWherePanel* panel : {on.builder->WherePanel, on.builder->HavingPanel}) {
        addCondition(*panel, "T.A", "1");
        addCondition(*panel, "U.X", "T.B");
    }
    on.builder->PageCtrl->setCurrentIndex(page);
    on.builder->activateWindow();
    QCoreApplication::processEvents();
    QVERIFY(on.builder->isActiveWindow());
}

inline TorvQDControl& element(const TorvQDWherePanel& panel, int kind) {
    return *panel.rootRow()->SubRows->Row(0)->Controls[std::size_t(kind)];
}

inline TMemoEx* editArgument(Scene& on) {
    showPage(on, wherePage);
    TorvQDWherePanel& panel = *on.builder->WherePanel;
    panel.editText(element(panel, ekArgument));
    auto* memo = panel.viewport()->findChild<TMemoEx*>();
    memo->insertPlainText("U.Y");
    return memo;
}

inline void pressKey(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::sendKeyEvent(QTest::Press, widget, key, QString(), modifiers);
}

inline TorvQDSelectGrid* openCell(Scene& on, int column) {
    showPage(on, gridPage);
    TorvQDSelectGrid* grid = on.builder->SelectPanel->grid();
    grid->_EditText(column, 1);
    if (column == 0) grid->viewport()->findChild<orv::ExitEdit*>()->setText("OTHER");
    if (column > 0) grid->viewport()->findChild<orv::ExitCombo*>()->setEditText("T.C");
    return grid;
}

inline QLineEdit* editTail(Scene& on) {
    showPage(on, sortingPage);
    auto* line = on.builder->PageCtrl->findChild<orv::TailLine*>()->findChild<QLineEdit*>();
    line->setFocus();
    QTest::keyClicks(line, "LIMIT 5");
    return line;
}

}  // namespace orvtest
