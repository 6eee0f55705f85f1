// SPDX-License-Identifier: MIT
#pragma once

#include "database/DatabaseAddress.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;

namespace orvquery {

/// A box beside a field for a password that shows what is typed there. Belongs to the parent.
[[nodiscard]] QCheckBox* makeShowBox(QLineEdit* password, QWidget* parent);

/// Asks for the user and the password of a database that refused to be opened.
class PasswordDialog : public QDialog {
    Q_OBJECT

public:
    /// The problem is what the database said to the last password; empty before the first.
    PasswordDialog(const DatabaseAddress& address, const QString& problem,
                   QWidget* parent = nullptr);

    /// The address with what was typed.
    [[nodiscard]] DatabaseAddress address() const;

private:
    DatabaseAddress m_address;
    QLineEdit* m_user;
    QLineEdit* m_password;
};

}  // namespace orvquery
