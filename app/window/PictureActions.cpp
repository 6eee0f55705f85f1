// SPDX-License-Identifier: MIT
#include "window/PictureActions.h"

#include "pictures/Picture.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/ExportDialog.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QPointer>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSettings>

namespace orvquery {

namespace {

constexpr qreal pageMarginMm = 15;

const QString folderKey = QStringLiteral("pictureFolder");
const QString fullSizeKey = QStringLiteral("printFullSize");

QSettings keptSettings() {
    return QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery"));
}

// A name that is typed without an end gets that of the chosen format.
void takeFormat(QFileDialog& dialog, const QString& filter) {
    const QString suffix = filter.section(QStringLiteral("*."), -1).chopped(1);
    const QString path = dialog.selectedFiles().value(0);
    if (!path.isEmpty() && !QFileInfo(path).isDir()) {
        const QFileInfo file(path);
        const QString name = pictureFormatOfFile(path) ? file.completeBaseName() : file.fileName();
        dialog.setDefaultSuffix({});
        dialog.selectFile(name + u'.' + suffix);
    }
    dialog.setDefaultSuffix(suffix);
}

}  // namespace

PictureActions::PictureActions(TorvQueryBuilder& builder, QWidget& window)
    : QObject(&window),
      m_builder(builder),
      m_window(window),
      m_export(makeAction("exportPicture", tr("&Export picture..."), {},
                          &PictureActions::exportPicture)),
      m_preview(makeAction("printPreview", tr("Print pre&view..."), {}, &PictureActions::preview)),
      m_print(makeAction("print", tr("Pri&nt..."), QKeySequence::Print, &PictureActions::print)),
      m_fullSize(new QAction(tr("Print at f&ull size"), this)) {
    m_fullSize->setObjectName(QStringLiteral("printFullSize"));
    m_fullSize->setCheckable(true);
    m_fullSize->setToolTip(tr("Over as many pages as that takes, not as wide as one page"));
    m_fullSize->setChecked(keptSettings().value(fullSizeKey, false).toBool());
    connect(m_fullSize, &QAction::toggled, this,
            [](bool isFull) { keptSettings().setValue(fullSizeKey, isFull); });
}

QAction* PictureActions::makeAction(const char* name, const QString& text,
                                    const QKeySequence& shortcut, void (PictureActions::*slot)()) {
    auto* action = new QAction(text, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this,
            [this, slot] { orv::guarded([&] { (this->*slot)(); }); });
    return action;
}

void PictureActions::addTo(QMenu& menu) const {
    menu.addAction(m_export);
    menu.addSeparator();
    menu.addActions({m_preview, m_print, m_fullSize});
}

QString PictureActions::name() const {
    QString name = m_naming ? m_naming() : QString();
    if (!name.isEmpty()) return name;
    const TorvQDListOfTables& tables = *m_builder.ListOfTables;
    return tables.TablesCount() == 0 ? tr("query") : exportName(tables.Tables(0)->TableName);
}

PrintScale PictureActions::scale() const {
    return m_fullSize->isChecked() ? PrintScale::FullSize : PrintScale::FitWidth;
}

// Told before a dialog is filled in for nothing.
void PictureActions::requireTables() const {
    (void)pictureSize(*m_builder.WorkArea);
}

void PictureActions::exportPicture() {
    requireTables();
    const QPointer<PictureActions> self(this);
    const QPointer<QFileDialog> dialog = new QFileDialog(&m_window, tr("Export picture"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters(
        {tr("Picture of pixels (*.png)"), tr("Picture of lines (*.svg)"), tr("Document (*.pdf)")});
    const QString folder = keptSettings().value(folderKey).toString();
    dialog->setDirectory(!folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath());
    dialog->selectFile(name());
    takeFormat(*dialog, dialog->selectedNameFilter());
    connect(dialog, &QFileDialog::filterSelected, dialog,
            [dialog](const QString& filter) { takeFormat(*dialog, filter); });
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    dialog->deleteLater();
    const QString file = isAccepted ? dialog->selectedFiles().value(0) : QString();
    if (file.isEmpty()) return;
    keptSettings().setValue(folderKey, QFileInfo(file).absolutePath());
    writePicture(*m_builder.WorkArea, file);
}

void PictureActions::prepare(QPrinter& printer) const {
    printer.setResolution(m_builder.WorkArea->logicalDpiY());
    printer.setDocName(name());
    printer.setPageMargins(QMarginsF(pageMarginMm, pageMarginMm, pageMarginMm, pageMarginMm),
                           QPageLayout::Millimeter);
}

void PictureActions::printTo(QPrinter& printer) const {
    printDiagram(*m_builder.WorkArea, printer, scale(), name());
}

void PictureActions::preview() {
    requireTables();
    const QPointer<PictureActions> self(this);
    QPrinter printer;
    prepare(printer);
    const QPointer<QPrintPreviewDialog> dialog = new QPrintPreviewDialog(&printer, &m_window);
    dialog->setWindowTitle(tr("Print preview"));
    connect(dialog, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter* paper) { orv::guarded([&] { printTo(*paper); }); });
    orv::runDialog(*dialog);
    // It borrows the printer.
    delete dialog;
}

void PictureActions::print() {
    requireTables();
    const QPointer<PictureActions> self(this);
    QPrinter printer;
    prepare(printer);
    const QPointer<QPrintDialog> dialog = new QPrintDialog(&printer, &m_window);
    dialog->setWindowTitle(tr("Print"));
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    delete dialog;
    if (self && isAccepted) printTo(printer);
}

}  // namespace orvquery
