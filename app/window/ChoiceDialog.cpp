// SPDX-License-Identifier: MIT
#include "window/ChoiceDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr int questionWidthInCharacters = 56;

}  // namespace

ChoiceDialog::ChoiceDialog(const QString& title, const QString& question,
                           const std::vector<Answer>& answers, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(title);
    auto* text = new QLabel(question, this);
    text->setObjectName(QStringLiteral("question"));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setMinimumWidth(text->fontMetrics().averageCharWidth() * questionWidthInCharacters);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    bool isFirst = true;
    for (const Answer& answer : answers) {
        QPushButton* button = buttons->addButton(answer.text, QDialogButtonBox::ActionRole);
        button->setObjectName(QLatin1String(answer.name));
        connect(button, &QPushButton::clicked, this,
                [this, result = answer.result] { done(result); });
        button->setDefault(isFirst);
        if (isFirst) button->setFocus();
        isFirst = false;
    }
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addStretch(1);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetMinimumSize);
}

}  // namespace orvquery
