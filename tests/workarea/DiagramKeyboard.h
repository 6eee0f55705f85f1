// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

namespace orvtest {

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

}  // namespace orvtest
