// SPDX-License-Identifier: MIT
#include "OperatorsTaskMenu.h"

#include "querybuilder/ORVQDOperatorsProperty.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"

#include <QAction>
#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>

namespace orvdesigner {

OperatorsTaskMenu::OperatorsTaskMenu(TorvQueryBuilder* builder, QObject* parent)
    : QObject(parent),
      m_builder(builder),
      m_edit(new QAction(QStringLiteral("Edit operators..."), this)) {
    connect(m_edit, &QAction::triggered, this,
            [this] { orv::guarded([this] { editOperators(); }); });
}

// The cursor of the form makes a command of it, which is undone and marks the form as modified. The
// control may be gone when the dialog closes, and this menu with it.
void OperatorsTaskMenu::editOperators() const {
    const QPointer<TorvQueryBuilder> builder = m_builder;
    if (!builder) return;
    TOperatorsListProperty().Edit(
        *builder->Operators, TOperatorsListProperty::nameOfItem(builder->objectName()),
        builder->window(), [builder](const TOperatorList& edited) {
            auto* form = QDesignerFormWindowInterface::findFormWindow(builder.data());
            if (!form || edited.toStrings() == builder->OperatorsList()) return;
            form->cursor()->setWidgetProperty(builder, QStringLiteral("OperatorsList"),
                                              edited.toStrings());
        });
}

}  // namespace orvdesigner
