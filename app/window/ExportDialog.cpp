// SPDX-License-Identifier: MIT
#include "window/ExportDialog.h"

#include "names/NameFolding.h"
#include "window/RowsExport.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace orvquery {

namespace {

const QString folderKey = QStringLiteral("exportFolder");

QSettings keptSettings() {
    return QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery"));
}

}  // namespace

ExportDialog::ExportDialog(const QString& title, const QString& name, QWidget* parent)
    : QFileDialog(parent, title) {
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setNameFilters(
        {tr("Comma separated (*.csv)"), tr("Tab separated (*.tsv)"), tr("JSON (*.json)")});
    const QString folder = keptSettings().value(folderKey).toString();
    setDirectory(!folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath());
    selectFile(name);
    takeFormat(selectedNameFilter());
    connect(this, &QFileDialog::filterSelected, this, &ExportDialog::takeFormat);
}

// An end that a person has typed and that is no format's is a part of the name.
void ExportDialog::takeFormat(const QString& filter) {
    const QString suffix = filter.section(QStringLiteral("*."), -1).chopped(1);
    setDefaultSuffix({});
    const QString path = selectedFiles().value(0);
    if (!path.isEmpty() && !QFileInfo(path).isDir()) {
        const QFileInfo file(path);
        const QString name = rowFormatOfFile(path) ? file.completeBaseName() : file.fileName();
        selectFile(name + u'.' + suffix);
    }
    setDefaultSuffix(suffix);
}

QString ExportDialog::takeFile() const {
    const QString path = selectedFiles().value(0);
    if (!path.isEmpty()) keptSettings().setValue(folderKey, QFileInfo(path).absolutePath());
    return path;
}

QString exportName(const QString& tableInStatement) {
    const QList<NamePart> parts = nameParts(tableInStatement);
    if (parts.isEmpty()) return QStringLiteral("rows");
    const NamePart& table = parts.back();
    QString name;
    for (const QChar character : table.isQuoted ? table.text : table.text.toLower()) {
        const bool isPlain = character.isLetterOrNumber() || character == u'-';
        name += isPlain ? character : QChar(u'_');
    }
    return name.isEmpty() ? QStringLiteral("rows") : name;
}

}  // namespace orvquery
