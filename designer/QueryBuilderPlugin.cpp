// SPDX-License-Identifier: MIT
#include "QueryBuilderPlugin.h"

#include "DesignedQueryBuilder.h"
#include "Extensions.h"
#include "core/Version.h"
#include "toolkit/Glyph.h"

#include <QDebug>
#include <QFile>
#include <QVersionNumber>
#include <QtDesigner/QDesignerFormEditorInterface>

namespace orvdesigner {

bool versionsFit(const QString& compiledWith, const QString& running) {
    const auto lineOf = [](const QString& version) {
        const QVersionNumber number = QVersionNumber::fromString(version);
        return QVersionNumber(number.majorVersion(), number.minorVersion());
    };
    return lineOf(compiledWith) == lineOf(running);
}

// --- the widget ---

QString QueryBuilderWidget::name() const {
    return QStringLiteral("TorvQueryBuilder");
}

QString QueryBuilderWidget::group() const {
    return QStringLiteral("ORV Software");
}

QString QueryBuilderWidget::toolTip() const {
    return QStringLiteral("Builds a SQL query by mouse");
}

QString QueryBuilderWidget::whatsThis() const {
    return QStringLiteral(
        "A diagram of tables above pages for conditions, output columns, grouping and sorting. "
        "What is drawn there becomes a SELECT statement, and a statement becomes the drawing.");
}

QString QueryBuilderWidget::includeFile() const {
    return QStringLiteral("orvquerybuilder/ORVQDWindow.h");
}

QIcon QueryBuilderWidget::icon() const {
    return orv::glyphIcon(QStringLiteral("designer/orvquerybuilder"));
}

QString QueryBuilderWidget::domXml() const {
    QFile file(QStringLiteral(":/orv/designer/querybuilder.xml"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QWidget* QueryBuilderWidget::createWidget(QWidget* parent) {
    if (isInitialized()) return new DesignedQueryBuilder(parent);
    return new TorvQueryBuilder(parent);
}

bool QueryBuilderWidget::isInitialized() const {
    return !m_core.isNull();
}

void QueryBuilderWidget::initialize(QDesignerFormEditorInterface* core) {
    if (!core || core == m_core) return;
    m_core = core;
    Extensions::install(core->extensionManager());
}

// --- the plugin ---

QueryBuilderPlugin::QueryBuilderPlugin(QObject* parent)
    : QObject(parent), m_fits(versionsFit(QStringLiteral(ORV_PLUGIN_VERSION), orv::version())) {
    if (m_fits) return;
    qWarning().noquote() << QStringLiteral(
                                "The Qt Designer plugin of OrvQueryBuilder was built for version "
                                "%1 of its library, but version %2 is loaded. TorvQueryBuilder is "
                                "not offered; install plugin and library of the same version.")
                                .arg(QStringLiteral(ORV_PLUGIN_VERSION), orv::version());
}

QList<QDesignerCustomWidgetInterface*> QueryBuilderPlugin::customWidgets() const {
    if (!m_fits) return {};
    return {&m_widget};
}

}  // namespace orvdesigner
