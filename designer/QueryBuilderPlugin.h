// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

class QDesignerFormEditorInterface;

namespace orvdesigner {

/// Whether a plugin that was compiled with one version of the library may use another: as for any
/// program, only patches may differ.
[[nodiscard]] bool versionsFit(const QString& compiledWith, const QString& running);

/// The query builder as Qt Designer and QUiLoader know it. The plugin owns it.
class QueryBuilderWidget : public QDesignerCustomWidgetInterface {
public:
    [[nodiscard]] QString name() const override;
    [[nodiscard]] QString group() const override;
    [[nodiscard]] QString toolTip() const override;
    [[nodiscard]] QString whatsThis() const override;
    [[nodiscard]] QString includeFile() const override;
    [[nodiscard]] QIcon icon() const override;
    [[nodiscard]] QString domXml() const override;
    [[nodiscard]] bool isContainer() const override { return false; }

    /// On a form that is being designed the control only shows what it is; a program that loads a
    /// form has no form editor, never initializes the plugin, and gets a live one.
    QWidget* createWidget(QWidget* parent) override;
    [[nodiscard]] bool isInitialized() const override;
    void initialize(QDesignerFormEditorInterface* core) override;

private:
    QPointer<QDesignerFormEditorInterface> m_core;
};

/// The plugin. Beside a library of another version it offers nothing, and says why.
class QueryBuilderPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit QueryBuilderPlugin(QObject* parent = nullptr);

    [[nodiscard]] QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

private:
    mutable QueryBuilderWidget m_widget;
    bool m_fits;
};

}  // namespace orvdesigner
