// SPDX-License-Identifier: MIT
#pragma once

#include "support/ShownBuilder.h"
#include "toolkit/ExitCombo.h"
#include "toolkit/ExitEdit.h"

#include <QAbstractItemModel>

namespace orvtest {

/// A shown builder on its "Selection" page. T.A, T.B and U.X are ticked, in this order; the grid
/// has the focus. Rows are counted as the grid counts them: from 1.
class ShownGrid : public ShownBuilder {
public:
    explicit ShownGrid(bool keepMeaning = false) : ShownBuilder(keepMeaning) {
        builder.setTabsHeight(300);
        builder.PageCtrl->setCurrentIndex(1);
        tick("T", "A");
        tick("T", "B");
        tick("U", "X");
        QCoreApplication::processEvents();
        builder.activateWindow();
        if (!builder.isActiveWindow()) static_cast<void>(QTest::qWaitForWindowActive(&builder));
        grid()->setFocus();
        go(0, 1);
        changes = 0;
        grid()->OnFieldChosen = [this, tell = grid()->OnFieldChosen](const QString& name) {
            told << '+' + name;
            tell(name);
        };
        grid()->OnFieldRemoved = [this, tell = grid()->OnFieldRemoved](const QString& name) {
            told << '-' + name;
            tell(name);
        };
    }

    [[nodiscard]] QAbstractItemModel& model() const { return *grid()->model(); }
    [[nodiscard]] QModelIndex cell(int col, int row) const { return model().index(row - 1, col); }
    void go(int col, int row) const { grid()->setCurrentIndex(cell(col, row)); }
    /// The current cell, as "column,row".
    [[nodiscard]] QString current() const {
        const QModelIndex index = grid()->currentIndex();
        return QStringLiteral("%1,%2").arg(index.column()).arg(index.row() + 1);
    }
    [[nodiscard]] QPoint centreOf(int col, int row) const {
        return grid()->visualRect(cell(col, row)).center();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(grid(), Qt::Key(key), modifiers);
    }

    // --- editors

    [[nodiscard]] orv::ExitEdit* nameEdit() const {
        return grid()->viewport()->findChild<orv::ExitEdit*>();
    }
    [[nodiscard]] orv::ExitCombo* choice() const {
        return grid()->viewport()->findChild<orv::ExitCombo*>();
    }
    /// The open editor; none when there is none, or when both are open.
    [[nodiscard]] QWidget* editor() const {
        if (nameEdit()->isVisible() == choice()->isVisible()) return nullptr;
        return nameEdit()->isVisible() ? static_cast<QWidget*>(nameEdit()) : choice();
    }
    [[nodiscard]] QString typed() const {
        return nameEdit()->isVisible() ? nameEdit()->text() : choice()->currentText();
    }
    /// Opens the editor of a cell and types over its text.
    void type(int col, int row, const QString& text) const {
        go(col, row);
        press(Qt::Key_F2);
        if (!editor()) return;
        text.isEmpty() ? QTest::keyClick(editor(), Qt::Key_Delete)
                       : QTest::keyClicks(editor(), text);
    }
    void enter(int col, int row, const QString& text) const {
        type(col, row, text);
        if (editor()) QTest::keyClick(editor(), Qt::Key_Return);
    }

    [[nodiscard]] bool isTicked(const QString& alias, const QString& field) const {
        return row(alias, field)->Checked;
    }

    QStringList told;  // what the grid told: "+T.A" for chosen, "-T.A" for removed
};

/// A grid of 2000 rows without a host.
class TallGrid {
public:
    TallGrid() : grid(&window) {
        orv::OutputColumns columns;
        for (int row = 0; row < 2000; ++row) {
            const QString field = QStringLiteral("F%1").arg(row);
            columns.push_back({field, {}, "T." + field});
        }
        window.resize(640, 300);
        grid.resize(640, 300);
        grid.setColumns(std::move(columns));
        window.show();
        grid.setCurrentIndex(grid.model()->index(1000, 0));
        QCoreApplication::processEvents();
    }
    QWidget window;
    TorvQDSelectGrid grid;
};

}  // namespace orvtest
