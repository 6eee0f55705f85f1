// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDOperatorsProperty.h"

#include "querybuilder/ORVQDOpersEditor.h"

TPropertyAttributes TOperatorsListProperty::GetAttributes() const {
    return paDialog;
}

QString TOperatorsListProperty::GetValue() const {
    return QStringLiteral("(%1)").arg(QLatin1String(TOperatorList::staticMetaObject.className()));
}

QString TOperatorsListProperty::nameOfItem(const QString& objectName) {
    return objectName + QStringLiteral(".Operators");
}

bool TOperatorsListProperty::Edit(const TOperatorList& list, const QString& itemName,
                                  QWidget* parent, const Writer& write) const {
    const Writer writer = write;
    const std::unique_ptr<TOperatorList> edited = orv::editOperators(list, {}, itemName, parent);
    if (!edited) return false;
    if (writer) writer(*edited);
    return true;
}
