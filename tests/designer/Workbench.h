// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDOpersEditor.h"
#include "querybuilder/ORVQDWindow.h"

#include <QCoreApplication>
#include <QUndoStack>
#include <QVBoxLayout>
#include <QVariant>
#include <QWidget>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtDesigner/QDesignerObjectInspectorInterface>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QDesignerWidgetBoxInterface>
#include <QtDesigner/QDesignerWidgetDataBaseInterface>
#include <QtDesigner/QDesignerWidgetDataBaseItemInterface>
#include <QtDesigner/QExtensionManager>
#include <QtDesigner/qdesigner_components.h>

#include <memory>

namespace orvtest {

/// Qt Designer without its main window: the form editor with the plugins that it finds, and one
/// form with a query builder.
class Workbench {
public:
    Workbench() {
        QDesignerComponents::initializeResources();
        core = QDesignerComponents::createFormEditor(nullptr);
        core->setTopLevel(&desk);
        core->setWidgetBox(QDesignerComponents::createWidgetBox(core, &desk));
        core->setPropertyEditor(QDesignerComponents::createPropertyEditor(core, &desk));
        core->setObjectInspector(QDesignerComponents::createObjectInspector(core, &desk));
        QDesignerComponents::createTaskMenu(core, core);
        QDesignerComponents::initializePlugins(core);
        new QDesignerIntegration(core, core);
        core->widgetBox()->setFileName(QStringLiteral(":/qt-project.org/widgetbox/widgetbox.xml"));
        core->widgetBox()->load();
    }
    // In this order; the form editor does not outlive what it shows.
    ~Workbench() {
        delete form;
        qDeleteAll(desk.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
        delete core;
    }
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    /// A form whose query builder has these properties, as .ui files have them.
    [[nodiscard]] static QString formWith(const QString& properties) {
        return QStringLiteral(
                   "<ui version=\"4.0\"><class>Form</class>"
                   "<widget class=\"QWidget\" name=\"Form\"><property name=\"geometry\"><rect>"
                   "<x>0</x><y>0</y><width>640</width><height>480</height></rect></property>"
                   "<widget class=\"TorvQueryBuilder\" name=\"queryBuilder\">"
                   "<property name=\"geometry\"><rect><x>10</x><y>10</y><width>600</width>"
                   "<height>400</height></rect></property>%1</widget></widget></ui>")
            .arg(properties);
    }

    /// Opens a form in place of the present one.
    [[nodiscard]] bool open(const QString& ui) {
        delete form;
        form = core->formWindowManager()->createFormWindow(&desk);
        const bool isRead = form->setContents(ui);
        core->formWindowManager()->setActiveFormWindow(form);
        return isRead;
    }

    [[nodiscard]] TorvQueryBuilder* builder() const { return form->findChild<TorvQueryBuilder*>(); }
    [[nodiscard]] QDesignerPropertySheetExtension* sheet() const {
        return qt_extension<QDesignerPropertySheetExtension*>(core->extensionManager(), builder());
    }
    [[nodiscard]] QDesignerTaskMenuExtension* taskMenu() const {
        return qt_extension<QDesignerTaskMenuExtension*>(core->extensionManager(), builder());
    }

    QWidget desk;
    QDesignerFormEditorInterface* core = nullptr;
    QDesignerFormWindowInterface* form = nullptr;
};

}  // namespace orvtest
