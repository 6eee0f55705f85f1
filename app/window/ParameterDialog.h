// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QDialog>
#include <QVariant>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace orvquery {

/// Asks for the value of one parameter of a procedure: a value of its type, a piece of SQL that
/// stands for it, NULL, or none, which leaves a placeholder in the statement. Modal; whoever shows
/// it owns it.
class ParameterDialog : public QDialog {
    Q_OBJECT

public:
    /// Which parameter it asks for. A plain value.
    struct Subject {
        QString procedure;
        QString parameter;
        TFieldType type = ftUnknown;
        QString placeholder;  ///< as it stands in the statement without a value: ":X"
    };

    /// Begins with the value that the parameter has: an invalid one when it has none, a null one
    /// for NULL.
    ParameterDialog(const Subject& subject, const QVariant& value, QWidget* parent = nullptr);

    /// The value that was chosen, in the same way.
    [[nodiscard]] QVariant value() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildChoices(const Subject& subject);
    void begin(const QVariant& value);
    void fieldEdited();
    void refresh();
    [[nodiscard]] bool holdsGiven() const;
    [[nodiscard]] QString problem() const;

    TFieldType m_type;
    QVariant m_given;
    QRadioButton* m_asValue;
    QRadioButton* m_asSql;
    QRadioButton* m_asNull;
    QRadioButton* m_unset;
    QLineEdit* m_field;
    QLabel* m_problem;
    QPushButton* m_ok = nullptr;
};

}  // namespace orvquery
