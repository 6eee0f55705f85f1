// SPDX-License-Identifier: MIT
#pragma once

#include "parameters/DiagramParameters.h"
#include "parameters/Placeholders.h"

#include <QDialog>

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;

namespace orvquery {

/// What a person answered for a placeholder, to begin with the next time. A plain value.
struct ParameterAnswer {
    QString text;
    bool isNull = false;
};
using ParameterAnswers = QHash<QString, ParameterAnswer>;

/// Asks for the values of all placeholders of a statement before it runs. Modal; whoever shows it
/// owns it.
class PlaceholderDialog : public QDialog {
    Q_OBJECT

public:
    /// Begins with the answers of before, and where there is none with the parameter's default.
    PlaceholderDialog(const std::vector<ParameterDescription>& parameters,
                      const ParameterAnswers& answers, QWidget* parent = nullptr);

    [[nodiscard]] PlaceholderValues values() const;
    [[nodiscard]] ParameterAnswers answers() const;

private:
    // The widgets of one placeholder.
    struct Row {
        ParameterDescription parameter;
        QLineEdit* field = nullptr;
        QCheckBox* null = nullptr;
        QLabel* problem = nullptr;
    };

    [[nodiscard]] Row makeRow(const ParameterDescription& parameter, QGridLayout& grid, int line);
    void begin(const Row& row, const ParameterAnswers& answers);
    [[nodiscard]] static QString problemOf(const Row& row);
    void refresh();
    void growToRows();

    std::vector<Row> m_rows;
    QScrollArea* m_rowsArea = nullptr;
    QPushButton* m_run = nullptr;
};

}  // namespace orvquery
