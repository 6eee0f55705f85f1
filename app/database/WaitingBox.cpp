// SPDX-License-Identifier: MIT
#include "database/WaitingBox.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace orvquery {

WaitingBox::WaitingBox(const QString& text, QWidget* parent) : QDialog(parent) {
    setWindowTitle(QCoreApplication::applicationName());
    auto* label = new QLabel(text, this);
    label->setTextFormat(Qt::PlainText);
    auto* progress = new QProgressBar(this);
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setAccessibleName(text);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(progress);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace orvquery
