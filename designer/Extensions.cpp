// SPDX-License-Identifier: MIT
#include "Extensions.h"

#include "OperatorsTaskMenu.h"
#include "QueryBuilderSheet.h"
#include "querybuilder/ORVQDWindow.h"

#include <QScopedValueRollback>
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionManager>

namespace orvdesigner {

void Extensions::install(QExtensionManager* manager) {
    const QString name = QStringLiteral("orvQueryBuilderExtensions");
    if (!manager || manager->findChild<QObject*>(name, Qt::FindDirectChildrenOnly)) return;
    auto* extensions = new Extensions(manager);
    extensions->setObjectName(name);
    manager->registerExtensions(extensions, Q_TYPEID(QDesignerTaskMenuExtension));
    manager->registerExtensions(extensions, Q_TYPEID(QDesignerPropertySheetExtension));
}

Extensions::Extensions(QExtensionManager* manager) : QExtensionFactory(manager) {}

QObject* Extensions::createExtension(QObject* object, const QString& iid, QObject* parent) const {
    auto* builder = qobject_cast<TorvQueryBuilder*>(object);
    if (!builder) return nullptr;
    if (iid == Q_TYPEID(QDesignerTaskMenuExtension)) return new OperatorsTaskMenu(builder, parent);
    if (iid != Q_TYPEID(QDesignerPropertySheetExtension) || m_asksOthers) return nullptr;

    // The manager asks one factory after the other; passed over, this one gets the sheet that there
    // would be without it.
    const QScopedValueRollback<bool> asking(m_asksOthers, true);
    auto* sheet =
        qobject_cast<QDesignerPropertySheetExtension*>(extensionManager()->extension(object, iid));
    return sheet ? new QueryBuilderSheet(builder, sheet, parent) : nullptr;
}

}  // namespace orvdesigner
