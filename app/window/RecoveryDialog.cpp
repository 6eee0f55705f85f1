// SPDX-License-Identifier: MIT
#include "window/RecoveryDialog.h"

#include "toolkit/Services.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr int widthInCharacters = 72;
constexpr int linesShown = 5;

}  // namespace

RecoveryDialog::RecoveryDialog(const std::vector<Line>& lines, QWidget* parent)
    : QDialog(parent), m_list(new QTreeWidget(this)) {
    setWindowTitle(tr("Recover queries"));
    auto* text = new QLabel(
        tr("orvquery ended before these queries were saved. Which of them shall be opened again? "
           "The others are offered the next time."),
        this);
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    m_list->setObjectName(QStringLiteral("left"));
    m_list->setAccessibleName(tr("Queries that were not saved"));
    m_list->setRootIsDecorated(false);
    m_list->setHeaderLabels({tr("Query"), tr("Database"), tr("Kept at")});
    for (std::size_t line = 0; line < lines.size(); ++line) {
        const QString time =
            QLocale().toString(lines[line].time.toLocalTime(), QLocale::ShortFormat);
        auto* item = new QTreeWidgetItem(m_list, {lines[line].name, lines[line].database, time});
        item->setData(0, Qt::UserRole, int(line));
        item->setToolTip(0, QDir::toNativeSeparators(lines[line].path));
    }
    m_list->setCurrentItem(m_list->topLevelItem(0));
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    const QFontMetrics metrics = m_list->fontMetrics();
    m_list->setMinimumSize(metrics.averageCharWidth() * widthInCharacters,
                           metrics.lineSpacing() * (linesShown + 2));

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* recover = buttons->addButton(tr("&Recover"), QDialogButtonBox::AcceptRole);
    recover->setObjectName(QStringLiteral("recover"));
    recover->setDefault(true);
    QPushButton* discard = buttons->addButton(tr("&Discard..."), QDialogButtonBox::ActionRole);
    discard->setObjectName(QStringLiteral("discard"));
    QPushButton* later = buttons->addButton(tr("&Later"), QDialogButtonBox::RejectRole);
    later->setObjectName(QStringLiteral("later"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(discard, &QPushButton::clicked, this,
            [this] { orv::guarded([&] { discardChosen(); }); });
    connect(m_list, &QTreeWidget::itemActivated, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    m_list->setFocus();
}

int RecoveryDialog::chosen() const {
    const QTreeWidgetItem* item = m_list->currentItem();
    return item == nullptr ? -1 : item->data(0, Qt::UserRole).toInt();
}

// The dialog may go while the question is shown.
void RecoveryDialog::discardChosen() {
    const QPointer<RecoveryDialog> self(this);
    const int line = chosen();
    if (line < 0) return;
    QTreeWidgetItem* item = m_list->currentItem();
    const orv::MessageAnswer answer = orv::showMessage(
        {this, tr("Discard what was kept of %1? It cannot be brought back.").arg(item->text(0)),
         QCoreApplication::applicationName(), orv::MessageIcon::Question,
         orv::MessageButtons::YesNo});
    if (!self || answer != orv::MessageAnswer::Yes) return;
    delete item;
    Q_EMIT discarded(line);
    if (m_list->topLevelItemCount() == 0) reject();
}

}  // namespace orvquery
