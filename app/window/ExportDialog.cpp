// SPDX-License-Identifier: MIT
#include "window/ExportDialog.h"

#include "names/NameFolding.h"
#include "text/KeptSettings.h"
#include "window/RowsExport.h"

#include <QDir>
#include <QFileInfo>

namespace orvquery {

namespace {

const QString folderKey = QStringLiteral("exportFolder");

}  // namespace

ExportDialog::ExportDialog(const QString& title, const QString& name, QWidget* parent)
    : SaveDialog(
          title, {tr("Comma separated (*.csv)"), tr("Tab separated (*.tsv)"), tr("JSON (*.json)")},
          [](const QString& path) { return rowFormatOfFile(path).has_value(); }, parent) {
    const QString folder = keptSettings().value(folderKey).toString();
    setDirectory(!folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath());
    propose(name);
}

QString ExportDialog::takeFile() const {
    QString path = file();
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
