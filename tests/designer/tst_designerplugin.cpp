// SPDX-License-Identifier: MIT
// The plugin where things are not as they should be: without a form editor, initialized twice, in
// two copies, beside another library.
#include "core/Version.h"
#include "designer/Workbench.h"
#include "querybuilder/ORVQDWindow.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QPluginLoader>
#include <QTemporaryDir>
#include <QTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

using orvtest::Workbench;

namespace {

/// One copy of the plugin.
class Plugin {
public:
    explicit Plugin(const QString& folder) : m_loader(fileIn(folder)) {}

    [[nodiscard]] static QString fileIn(const QString& folder) {
        const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files);
        return files.size() == 1 ? files.first().filePath() : QString();
    }
    [[nodiscard]] QList<QDesignerCustomWidgetInterface*> widgets() {
        auto* plugin = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(m_loader.instance());
        return plugin ? plugin->customWidgets() : QList<QDesignerCustomWidgetInterface*>{nullptr};
    }

private:
    QPluginLoader m_loader;
};

std::unique_ptr<TorvQueryBuilder> made(QDesignerCustomWidgetInterface* widget, QWidget* parent) {
    return std::unique_ptr<TorvQueryBuilder>(
        qobject_cast<TorvQueryBuilder*>(widget->createWidget(parent)));
}

const auto pluginFolder = QStringLiteral(ORV_PLUGIN_PATH "/designer");

}  // namespace

class TestDesignerPlugin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(
            QStringLiteral("^(?!QOpenGLWidget is not supported|This plugin does not support)")));
    }

    void controlIsLiveWithoutAFormEditor() {
        Plugin plugin(pluginFolder);
        QCOMPARE(plugin.widgets().size(), 1);
        QDesignerCustomWidgetInterface* widget = plugin.widgets().first();
        QVERIFY(!widget->isInitialized());
        QWidget form;
        QVERIFY(made(widget, &form)->WorkArea);
        widget->initialize(nullptr);
        QVERIFY(!widget->isInitialized());
        QVERIFY(made(widget, &form)->WorkArea);
    }

    void controlIsDesignedWhileThereIsAFormEditor() {
        Plugin plugin(pluginFolder);
        QDesignerCustomWidgetInterface* widget = plugin.widgets().first();
        QWidget form;
        {
            Workbench bench;
            widget->initialize(bench.core);
            QVERIFY(widget->isInitialized());
            const auto builder = made(widget, &form);
            QVERIFY(!builder->WorkArea);
            QCOMPARE(builder->parentWidget(), &form);
            // For the designer it is of the class that is written into the form.
            QCOMPARE(builder->metaObject(), &TorvQueryBuilder::staticMetaObject);
        }
        QVERIFY(!widget->isInitialized());
        QVERIFY(made(widget, nullptr)->WorkArea);
    }

    void secondInitializationChangesNothing() {
        Plugin plugin(pluginFolder);
        Workbench bench;
        QDesignerCustomWidgetInterface* widget = plugin.widgets().first();
        widget->initialize(bench.core);
        const qsizetype children = bench.core->extensionManager()->children().size();
        widget->initialize(bench.core);
        QCOMPARE(bench.core->extensionManager()->children().size(), children);
    }

    // The same folder may be on the path twice, or an old one beside the new one.
    void twoCopiesWorkAsOne() {
        QTemporaryDir scratch;
        QVERIFY(QDir(scratch.path()).mkdir(QStringLiteral("designer")));
        const QString copy = scratch.filePath(QStringLiteral("designer"));
        const QString file = Plugin::fileIn(pluginFolder);
        QVERIFY(QFile::copy(file, copy + u'/' + QFileInfo(file).fileName()));
        Plugin first(pluginFolder);
        Plugin second(copy);
        QVERIFY(first.widgets().first() != second.widgets().first());

        Workbench bench;
        first.widgets().first()->initialize(bench.core);
        const qsizetype children = bench.core->extensionManager()->children().size();
        second.widgets().first()->initialize(bench.core);
        QCOMPARE(bench.core->extensionManager()->children().size(), children);
        QWidget form;
        for (Plugin* plugin : {&first, &second}) {
            const auto builder = made(plugin->widgets().first(), &form);
            QExtensionManager* manager = bench.core->extensionManager();
            auto* menu = qt_extension<QDesignerTaskMenuExtension*>(manager, builder.get());
            QVERIFY(menu);
            QCOMPARE(menu->taskActions().size(), 1);
            auto* sheet = qt_extension<QDesignerPropertySheetExtension*>(manager, builder.get());
            QVERIFY(sheet);
            QVERIFY(sheet->indexOf(QStringLiteral("OperatorsList")) >= 0);
        }
    }

    // The misfit was built for version 99.0.
    void otherVersionOfTheLibraryIsRefused() {
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(QStringLiteral("built for version 99\\.0\\.1 .*"
                                                            "version %1 is loaded")
                                                 .arg(QRegularExpression::escape(orv::version()))));
        Plugin misfit(QStringLiteral(ORV_MISFIT_FOLDER));
        QCOMPARE(misfit.widgets(), QList<QDesignerCustomWidgetInterface*>());
    }

    // Patches keep what programs were compiled against.
    void anotherPatchOfTheLibraryIsTaken() {
        Plugin patch(QStringLiteral(ORV_PATCH_FOLDER));
        QCOMPARE(patch.widgets().size(), 1);
        QVERIFY(patch.widgets().first());
    }
};

QTEST_MAIN(TestDesignerPlugin)
#include "tst_designerplugin.moc"
