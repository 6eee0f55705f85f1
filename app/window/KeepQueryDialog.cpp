// SPDX-License-Identifier: MIT
#include "window/KeepQueryDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr int questionWidthInCharacters = 56;

}  // namespace

KeepQueryDialog::KeepQueryDialog(const QString& database, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Open %1").arg(database));
    auto* question = new QLabel(
        tr("There is a query on the diagram. Shall it be kept, with the columns that its tables "
           "have in %1? What is not there stays in the query, and is told.")
            .arg(database),
        this);
    question->setObjectName(QStringLiteral("question"));
    question->setTextFormat(Qt::PlainText);
    question->setWordWrap(true);
    question->setMinimumWidth(question->fontMetrics().averageCharWidth() *
                              questionWidthInCharacters);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    const auto add = [&](const QString& text, const char* name, Choice choice) {
        QPushButton* button = buttons->addButton(text, QDialogButtonBox::ActionRole);
        button->setObjectName(QLatin1String(name));
        connect(button, &QPushButton::clicked, this, [this, choice] { done(choice); });
        return button;
    };
    add(tr("&Keep it"), "keep", Keep)->setDefault(true);
    add(tr("&Empty the diagram"), "empty", Empty);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addStretch(1);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetMinimumSize);
}

}  // namespace orvquery
