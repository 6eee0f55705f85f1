// SPDX-License-Identifier: MIT
#include "window/SaveDialog.h"

#include <QFileInfo>

namespace orvquery {

SaveDialog::SaveDialog(const QString& title, const QStringList& filters, const IsFormat& isFormat,
                       QWidget* parent)
    : QFileDialog(parent, title), m_isFormat(isFormat) {
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setNameFilters(filters);
    connect(this, &QFileDialog::filterSelected, this, &SaveDialog::takeFormat);
}

void SaveDialog::propose(const QString& name) {
    setDefaultSuffix({});
    selectFile(name);
    takeFormat(selectedNameFilter());
}

void SaveDialog::takeFormat(const QString& filter) {
    const QString suffix = filter.section(QStringLiteral("*."), -1).chopped(1);
    // With a default suffix the dialog would tell another name than the one that stands there.
    setDefaultSuffix({});
    const QString path = file();
    if (!path.isEmpty() && !QFileInfo(path).isDir()) {
        const QFileInfo info(path);
        selectFile((m_isFormat(path) ? info.completeBaseName() : info.fileName()) + u'.' + suffix);
    }
    setDefaultSuffix(suffix);
}

}  // namespace orvquery
