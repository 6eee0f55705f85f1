// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDOpersEditor.h"
#include "querybuilder/ORVQDWindow.h"

#include <QCoreApplication>
#include <QMap>
#include <QUndoStack>
#include <QVBoxLayout>
#include <QVariant>
#include <QWidget>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
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

/// The properties of the widgets of a class as a form holds them: by name, each with the text of
/// its element, less the space between elements.
inline QMap<QString, QString> writtenProperties(const QString& ui, const QString& className) {
    QMap<QString, QString> properties;
    QXmlStreamReader xml(ui);
    bool isInside = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) continue;
        if (xml.name() == QLatin1String("widget")) {
            isInside = xml.attributes().value(QLatin1String("class")) == className;
        }
        if (!isInside || xml.name() != QLatin1String("property")) continue;
        const QString name = xml.attributes().value(QLatin1String("name")).toString();
        QString text;
        QXmlStreamWriter writer(&text);
        for (int depth = 1; depth > 0 && !xml.atEnd();) {
            xml.readNext();
            if (xml.isStartElement()) ++depth;
            if (xml.isEndElement()) --depth;
            if (depth == 0 || (xml.isCharacters() && xml.isWhitespace())) continue;
            // An empty element is written as two tags, like any other.
            if (xml.isEndElement()) writer.writeCharacters({});
            writer.writeCurrentToken(xml);
        }
        properties.insert(name, text);
    }
    return properties;
}

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
