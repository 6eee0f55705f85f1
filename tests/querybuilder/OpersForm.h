// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDOpersEditor.h"
#include "support/TestTools.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace orvtest {

/// An operator for two operands, which is shown by its name.
inline TorvQDOperator operatorOf(const QString& name, const QString& prefix, const QString& relate,
                                 const QString& postfix) {
    TorvQDOperator entry;
    entry.Name = name;
    entry.Caption = name;
    entry.Prefix = prefix;
    entry.Relate = relate;
    entry.Postfix = postfix;
    return entry;
}

/// The operator dialog on the screen, and a user with a mouse and a keyboard at it.
class OpersUser {
public:
    explicit OpersUser(TorvQDOperatorsPropertyDlg& dialog) : m_dialog(dialog) {
        dialog.show();
        QCoreApplication::processEvents();
    }

    void select(int line) const {
        QListWidget* list = m_dialog.lbOperators;
        list->scrollToItem(list->item(line));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(line)).center());
    }
    void select(const QString& name) const { select(lines().indexOf(name)); }

    /// Replaces the text of the edit, key by key.
    static void type(QLineEdit* edit, const QString& text) {
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }
    static void click(QPushButton* button) { QTest::mouseClick(button, Qt::LeftButton); }

    [[nodiscard]] QStringList lines() const {
        QStringList texts;
        for (int line = 0; line < m_dialog.lbOperators->count(); ++line) {
            texts << m_dialog.lbOperators->item(line)->text();
        }
        return texts;
    }
    /// The names of the selected lines.
    [[nodiscard]] QStringList selected() const {
        QStringList texts;
        for (const QListWidgetItem* item : m_dialog.lbOperators->selectedItems()) {
            texts << item->text();
        }
        return texts;
    }
    /// Name, caption, count, prefix, relate and postfix, as the edits show them.
    [[nodiscard]] QStringList shown() const {
        return {m_dialog.ebName->text(),   m_dialog.ebCaption->text(), m_dialog.ebCount->text(),
                m_dialog.ebPrefix->text(), m_dialog.ebRelate->text(),  m_dialog.ebPostfix->text()};
    }

private:
    TorvQDOperatorsPropertyDlg& m_dialog;
};

/// A shown dialog with the default operators.
struct OpersForm {
    explicit OpersForm(TEditRestrictions restrictions = {}) {
        orv::fillOperators(dialog.Operators);
        dialog.SetRestrictions(restrictions);
        user.emplace(dialog);
    }

    [[nodiscard]] const TorvQDOperator& entry(int index) const {
        return *dialog.Operators.Items(index);
    }
    [[nodiscard]] const TorvQDOperator& entry(const QString& name) const {
        return *dialog.Operators.FindName(name);
    }

    RecordedServices services;
    TorvQDOperatorsPropertyDlg dialog;
    std::optional<OpersUser> user;
};

}  // namespace orvtest
