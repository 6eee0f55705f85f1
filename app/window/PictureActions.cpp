// SPDX-License-Identifier: MIT
#include "window/PictureActions.h"

#include "pictures/Picture.h"
#include "querybuilder/ORVQDWindow.h"
#include "text/KeptSettings.h"
#include "toolkit/Services.h"
#include "window/ExportDialog.h"
#include "window/SaveDialog.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QPointer>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace orvquery {

namespace {

constexpr qreal pageMarginMm = 15;

const QString folderKey = QStringLiteral("pictureFolder");
const QString fullSizeKey = QStringLiteral("printFullSize");

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
    const QPointer<SaveDialog> dialog = new SaveDialog(
        tr("Export picture"),
        {tr("Picture of pixels (*.png)"), tr("Picture of lines (*.svg)"), tr("Document (*.pdf)")},
        [](const QString& path) { return pictureFormatOfFile(path).has_value(); }, &m_window);
    const QString folder = keptSettings().value(folderKey).toString();
    dialog->setDirectory(!folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath());
    dialog->propose(name());
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    dialog->deleteLater();
    const QString file = isAccepted ? dialog->file() : QString();
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
