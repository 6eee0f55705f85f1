// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QtDesigner/QDesignerTaskMenuExtension>

class QAction;
class TorvQueryBuilder;

namespace orvdesigner {

/// What the context menu of a query builder on a form has more than that of other controls:
/// "Edit operators...". A double click does the same. The form designer's extension manager owns
/// it.
class OperatorsTaskMenu : public QObject, public QDesignerTaskMenuExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    OperatorsTaskMenu(TorvQueryBuilder* builder, QObject* parent);

    [[nodiscard]] QAction* preferredEditAction() const override { return m_edit; }
    [[nodiscard]] QList<QAction*> taskActions() const override { return {m_edit}; }

private:
    void editOperators() const;

    QPointer<TorvQueryBuilder> m_builder;
    QAction* m_edit;
};

}  // namespace orvdesigner
