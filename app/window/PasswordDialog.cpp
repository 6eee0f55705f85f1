// SPDX-License-Identifier: MIT
#include "window/PasswordDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr int passwordWidthInCharacters = 32;

}  // namespace

QCheckBox* makeShowBox(QLineEdit* password, QWidget* parent) {
    password->setEchoMode(QLineEdit::Password);
    auto* box = new QCheckBox(PasswordDialog::tr("Sho&w"), parent);
    box->setObjectName(QStringLiteral("showPassword"));
    box->setAccessibleName(PasswordDialog::tr("Show the password"));
    QObject::connect(box, &QCheckBox::toggled, password, [password](bool isShown) {
        password->setEchoMode(isShown ? QLineEdit::Normal : QLineEdit::Password);
    });
    return box;
}

PasswordDialog::PasswordDialog(const DatabaseAddress& address, const QString& problem,
                               QWidget* parent)
    : QDialog(parent),
      m_address(address),
      m_user(new QLineEdit(address.user, this)),
      m_password(new QLineEdit(this)) {
    setWindowTitle(tr("Password"));
    auto* subject = new QLabel(tr("The database %1 asks who you are.").arg(address.title()), this);
    subject->setObjectName(QStringLiteral("subject"));
    auto* told = new QLabel(problem, this);
    told->setObjectName(QStringLiteral("problem"));
    for (QLabel* label : {subject, told}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setMinimumWidth(label->fontMetrics().averageCharWidth() *
                               (passwordWidthInCharacters + 16));
    }
    told->setVisible(!problem.isEmpty());
    m_user->setObjectName(QStringLiteral("user"));
    m_password->setObjectName(QStringLiteral("password"));
    m_password->setMinimumWidth(m_password->fontMetrics().averageCharWidth() *
                                passwordWidthInCharacters);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* row = new QHBoxLayout;
    row->addWidget(m_password, 1);
    row->addWidget(makeShowBox(m_password, this));
    auto* form = new QFormLayout;
    form->addRow(tr("&User:"), m_user);
    auto* label = new QLabel(tr("&Password:"), this);
    label->setBuddy(m_password);
    form->addRow(label, row);
    m_password->setAccessibleName(tr("Password"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(subject);
    layout->addWidget(told);
    layout->addLayout(form);
    layout->addStretch(1);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetMinimumSize);
    (address.user.isEmpty() ? m_user : m_password)->setFocus();
}

DatabaseAddress PasswordDialog::address() const {
    DatabaseAddress address = m_address;
    address.user = m_user->text();
    address.password = m_password->text();
    return address;
}

}  // namespace orvquery
