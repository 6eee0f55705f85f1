// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionEditor.h"
#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ORVQDFieldList.h"
#include "criteria/ORVQDWherePanel.h"
#include "support/BuilderTools.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTabWidget>

#include <memory>

namespace orvtest {

/// A form with a builder, in whose criteria panel texts are edited, and another widget. There is a
/// table T with numbers I and J, a text C and a date D. Everything is reached through `builder`,
/// which may die in between.
class EditedPanel {
public:
    explicit EditedPanel(const QString& condition = QStringLiteral("T.I = 1 AND T.C = 'x'")) {
        form = std::make_unique<QWidget>();
        builder = new TorvQueryBuilder(form.get());
        other = new QLineEdit(form.get());
        builder->setGeometry(0, 0, 700, 560);
        builder->setTabsHeight(320);
        other->setGeometry(0, 570, 100, 25);
        form->resize(700, 600);
        builder->OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>& data,
                                       std::unique_ptr<TParams>&) {
            data = std::make_unique<TDataSet>(
                TFieldDefs{{"I", ftInteger}, {"J", ftInteger}, {"C", ftString}, {"D", ftDate}});
        };
        builder->LoadSQL(QStringLiteral("SELECT T.I FROM T WHERE ") + condition);
        form->show();
        QCoreApplication::processEvents();
        QObject::connect(builder, &TorvQueryBuilder::StatementChanged, form.get(),
                         [this] { ++changes; });
    }

    [[nodiscard]] TorvQDWherePanel* panel() const { return builder->WherePanel; }
    [[nodiscard]] QWidget* view() const { return panel()->viewport(); }
    [[nodiscard]] TMemoEx* memo() const { return view()->findChild<TMemoEx*>(); }
    [[nodiscard]] orv::FieldList* list() const { return view()->findChild<orv::FieldList*>(); }
    [[nodiscard]] TorvQDWhereRow* row(int index) const {
        return panel()->rootRow()->SubRows->Row(index);
    }
    [[nodiscard]] TorvQDControl& element(int row, int kind) const {
        return *this->row(row)->Controls[std::size_t(kind)];
    }
    [[nodiscard]] QRect rectOf(int row, int kind) const {
        return panel()->elementRect(element(row, kind));
    }
    [[nodiscard]] QString condition() const {
        return orv::orvTrim(panel()->rootRow()->GetSQLCondition(false));
    }
    [[nodiscard]] bool isActive() const { return QTest::qWaitForWindowActive(form.get()); }

    void open(int row = 0, int kind = ekArgument) const { panel()->editText(element(row, kind)); }
    /// Opens the editor and replaces its text.
    void type(const QString& text, int row = 0, int kind = ekArgument) const {
        open(row, kind);
        memo()->selectAll();
        memo()->insertPlainText(text);
    }
    /// A press alone: what is pressed may be gone then.
    static void press(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(widget, &event);
    }

    std::unique_ptr<QWidget> form;
    QPointer<TorvQueryBuilder> builder;
    QLineEdit* other = nullptr;
    int changes = 0;
};

}  // namespace orvtest
