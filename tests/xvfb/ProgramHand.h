// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/Orvqdlnkprop.h"
#include "xvfb/ProgramDesk.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

namespace orvtest {

inline TdlgLnkProp* linkDialog() {
    auto* dialog = qobject_cast<TdlgLnkProp*>(QApplication::activeModalWidget());
    return dialog && dialog->isActiveWindow() ? dialog : nullptr;
}

/// The check box of the link dialog that takes all rows of a table.
inline QCheckBox* includesAll(const QString& table) {
    const TdlgLnkProp& dialog = *linkDialog();
    return dialog.CurrentLnk->Join->Table1->GetAlias() == table ? dialog.btnLeftOuter
                                                                : dialog.btnRightOuter;
}

/// The hand of a person who knows the program: what is done again and again in its window.
class ProgramHand : public Hand {
public:
    /// Borrows the desk.
    explicit ProgramHand(ProgramDesk& desk) : m_desk(desk) {}

    // --- menus and pages ---

    void chooseFromMenuBar(const QString& menu, const QString& entry) {
        openMenu(menu);
        click(ProgramDesk::menuEntry(entry)).until("the menu is gone", ProgramDesk::noMenuIsUp());
    }
    void openMenu(const QString& menu) {
        click(m_desk.menuTitle(menu)).until("the menu is up", ProgramDesk::menuIsUp());
    }
    void goTo(const QString& page) {
        click(m_desk.tab(page)).until("the page is shown", m_desk.pageIs(page));
    }

    // --- the diagram ---

    /// By a double click in the list of tables.
    void addTable(const QString& name) {
        doubleClick(ProgramDesk::itemOf(m_desk.tableList(), name))
            .until("the table is there",
                   [this, name] { return m_desk.table(name.toUpper()) != nullptr; });
    }
    /// Not all rows of a box are shown at once.
    void bringIntoSight(const QString& alias, const QString& field) {
        const ProgramDesk& desk = m_desk;
        const auto rowOf = [&desk, alias, field] {
            const auto& items = desk.table(alias)->Items;
            const auto found = std::find_if(items.begin(), items.end(),
                                            [&](const auto& item) { return item->Name == field; });
            return int(found - items.begin());
        };
        moveTo(desk.at([&desk, alias] {
            return desk.table(alias)->GetBoundsRect().toQRect().center();
        }))
            .wheelUntil(
                [=, &desk] { return rowOf() < desk.table(alias)->FirstVisibleItem ? 4 : 5; },
                [=, &desk] {
                    const TorvQDTable& box = *desk.table(alias);
                    const int place = rowOf() - box.FirstVisibleItem;
                    return place >= 0 && place < box.VisibleCount;
                });
    }
    void tick(const QString& alias, const QString& field) {
        bringIntoSight(alias, field);
        click(m_desk.checkSquare(alias, field)).until("the field is ticked", [this, alias, field] {
            return m_desk.table(alias)->GetFieldItem(field)->Checked;
        });
    }
    /// Takes a field of a box and goes with it to another one, without letting go of it.
    void carryField(const QString& alias, const QString& field, const Place& target) {
        const auto before = std::make_shared<int>(0);
        const int far = QApplication::startDragDistance();
        moveTo(m_desk.field(alias, field))
            .press()
            .call([this, before] { *before = dragMoves(); })
            .moveTo(m_desk.field(alias, field, {4, 0}))
            .moveTo(m_desk.field(alias, field, {far + 4, 0}))
            .moveTo(m_desk.field(alias, field, {far + 6, 0}))
            .until("the field is dragged", [this, before] { return dragMoves() > *before; })
            .moveTo(target);
    }

    // --- the pages ---

    void openAggregates(const QString& source) {
        doubleClick(m_desk.cell(source, 1))
            .until("the list is there", [this] { return m_desk.combo() != nullptr; })
            .moveTo([this] {
                const orv::ExitCombo* combo = m_desk.combo();
                return combo->mapToGlobal(QPoint(combo->width() - 8, combo->height() / 2));
            })
            .press()
            .release()
            .until("it is open", [this] { return m_desk.combo()->view()->isVisible(); });
    }
    void chooseAggregate(const QString& aggregate) {
        click([this, aggregate] {
            return ProgramDesk::itemOf(*m_desk.combo()->view(), aggregate)();
        }).until("it is closed", [this] { return !m_desk.combo()->view()->isVisible(); });
    }
    void sortBy(const QString& name, int line) {
        const auto* panel = m_desk.builder().OrderPanel;
        const auto* lines = panel->findChild<QTreeWidget*>();
        click(ProgramDesk::itemOf(*panel->findChild<QListWidget*>(), name))
            .click(ProgramDesk::button(panel, "Add"))
            .until("it is sorted", [=] { return lines->topLevelItemCount() == line; });
    }
    void sortDescending(const QString& name) {
        const auto* panel = m_desk.builder().OrderPanel;
        click(ProgramDesk::itemOf(*panel->findChild<QTreeWidget*>(), name))
            .click(ProgramDesk::button(panel, "Z..A"))
            .until("it is descending", [=] {
                return !panel->sortList().lines().empty() &&
                       panel->sortList().lines().front().direction == orv::descendingText();
            });
    }

    // --- conditions ---

    void chooseFromMenu(TorvQDWherePanel& panel, const QString& number, int kind,
                        const QString& text) {
        click(ProgramDesk::element(panel, number, kind))
            .until("the menu is up", ProgramDesk::menuIsUp())
            .click(ProgramDesk::menuEntry(text))
            .until("the menu is gone", ProgramDesk::noMenuIsUp());
    }
    void addCondition(TorvQDWherePanel& panel, const QString& number, const QString& added) {
        chooseFromMenu(panel, number, ekButton, "Add condition");
        until("the row is there",
              [&panel, added] { return ProgramDesk::row(panel, added) != nullptr; });
    }
    /// By way of the editor's menu, the list of fields and double clicks in it.
    void chooseField(TorvQDWherePanel& panel, const QString& number, const QString& table,
                     const QString& field) {
        openFieldList(panel, number, table);
        const auto tree = [&panel]() -> TTreeViewEx& {
            return *ProgramDesk::fieldList(panel)->tree();
        };
        moveTo([tree] { return ProgramDesk::middleOf(tree().viewport())(); })
            .wheelUntil([] { return 5; },
                        [tree, field] {
                            const QRect rect = tree().visualRect(indexOf(tree(), field));
                            return tree().viewport()->rect().contains(rect.center());
                        })
            .doubleClick([tree, field] { return ProgramDesk::itemOf(tree(), field)(); })
            .until("the field is taken",
                   [&panel] { return ProgramDesk::fieldList(panel) == nullptr; })
            .click([&panel] { return emptySpot(panel); })
            .until("the text is taken over", [&panel, number, table, field] {
                return ProgramDesk::row(panel, number)->FieldName == table + u'.' + field;
            });
    }
    void openFieldList(TorvQDWherePanel& panel, const QString& number, const QString& table) {
        const auto tree = [&panel]() -> TTreeViewEx& {
            return *ProgramDesk::fieldList(panel)->tree();
        };
        click(ProgramDesk::element(panel, number, ekFieldName))
            .until("the editor is there", [&panel] { return ProgramDesk::memo(panel) != nullptr; })
            .click([&panel] { return ProgramDesk::middleOf(ProgramDesk::memo(panel))(); }, 3)
            .until("the menu is up", ProgramDesk::menuIsUp())
            .click(ProgramDesk::menuEntry("InsertField"))
            .until("the list is there",
                   [&panel] { return ProgramDesk::fieldList(panel) != nullptr; })
            .doubleClick([tree, table] { return ProgramDesk::itemOf(tree(), table)(); })
            .until("the table is open",
                   [tree, table] { return tree().isExpanded(indexOf(tree(), table)); });
    }
    void typeValue(TorvQDWherePanel& panel, const QString& number, const QString& text) {
        click(ProgramDesk::element(panel, number, ekArgument))
            .until("the editor is there", [&panel] { return ProgramDesk::memo(panel) != nullptr; })
            .type(text)
            .until("it is typed",
                   [&panel, text] { return ProgramDesk::memo(panel)->toPlainText() == text; })
            .click([&panel] { return emptySpot(panel); })
            .until("the text is taken over", [&panel, number, text] {
                return ProgramDesk::row(panel, number)->Arguments.front() == text;
            });
    }

private:
    // Below the last condition.
    static QPoint emptySpot(const TorvQDWherePanel& panel) {
        const QRect view = panel.viewport()->rect();
        return panel.viewport()->mapToGlobal(view.bottomRight() - QPoint(8, 8));
    }
    static QModelIndex indexOf(const QAbstractItemView& view, const QString& text) {
        return view.model()
            ->match(view.model()->index(0, 0), Qt::DisplayRole, text, 1,
                    Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    ProgramDesk& m_desk;
};

}  // namespace orvtest
