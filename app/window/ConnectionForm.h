// SPDX-License-Identifier: MIT
#pragma once

#include "database/DatabaseAddress.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace orvquery {

struct Engine;

/// Lets a person choose a file that may be a database; empty when none was chosen.
[[nodiscard]] QString chooseDatabaseFile(QWidget* parent);

/// The parts of an address as fields; which there are depends on where the engine has its
/// databases. Engines whose driver is missing cannot be chosen.
class ConnectionForm : public QWidget {
    Q_OBJECT

public:
    explicit ConnectionForm(QWidget* parent = nullptr);

    [[nodiscard]] DatabaseAddress address() const;
    /// Fills the fields. Raises orv::Error when no engine can open the address.
    void setAddress(const DatabaseAddress& address);

    /// Puts one more field in front of its own or behind them, in line with them.
    void addInFront(const QString& label, QWidget* field);
    void addBehind(const QString& label, QWidget* field);

    /// The field in which a person goes on.
    [[nodiscard]] QWidget* fieldToBeginWith() const;
    /// The field of what missingPart() says of the address.
    [[nodiscard]] QWidget* missingField() const;

Q_SIGNALS:
    /// A person changed one of the fields.
    void edited();

private:
    void buildKinds();
    void buildFields();
    void showFields();
    void browse();
    [[nodiscard]] const Engine* engine() const;

    QFormLayout* m_layout;
    QComboBox* m_kind;
    QLineEdit* m_host;
    QLineEdit* m_port;
    QLineEdit* m_user;
    QLineEdit* m_password;
    QWidget* m_passwordRow;
    QLabel* m_databaseLabel;
    QLineEdit* m_database;
    QWidget* m_databaseRow;
    QPushButton* m_browse;
    QLineEdit* m_options;
};

}  // namespace orvquery
