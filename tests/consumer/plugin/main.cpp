// SPDX-License-Identifier: MIT
// Loads the designer's plugin as any program does, without the library. Arguments: the plugin, and
// the prefix below which it and its library must lie.
#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QPluginLoader>
#include <QTextStream>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>

namespace {

QTextStream out(stdout);

/// The files of the product that this process has loaded.
QStringList loadedFiles() {
    QFile maps(QStringLiteral("/proc/self/maps"));
    QStringList files;
    if (!maps.open(QFile::ReadOnly)) return files;
    const QString text = QString::fromLocal8Bit(maps.readAll());
    for (const QString& line : text.split(u'\n')) {
        const QString file = line.mid(line.indexOf(u'/'));
        if (file.contains(u"liborvquerybuilder") && !files.contains(file)) files << file;
    }
    return files;
}

bool works(const QString& file, const QString& prefix) {
    QPluginLoader loader(file);
    auto* plugin = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    if (!plugin) {
        out << loader.errorString() << '\n';
        return false;
    }
    if (plugin->customWidgets().size() != 1) return false;
    const std::unique_ptr<QWidget> widget(plugin->customWidgets().first()->createWidget(nullptr));
    out << widget->metaObject()->className() << '\n';
    bool isThere = loadedFiles().size() == 2;
    for (const QString& loaded : loadedFiles()) {
        out << loaded << '\n';
        isThere = isThere && loaded.startsWith(QFileInfo(prefix).canonicalFilePath() + u'/');
    }
    return isThere && widget->inherits("TorvQueryBuilder");
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    return arguments.size() == 3 && works(arguments[1], arguments[2]) ? 0 : 1;
}
