// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

#include <vector>

namespace orvquery {

/// A question with a few answers, each a button, and Cancel.
class ChoiceDialog : public QDialog {
    Q_OBJECT

public:
    struct Answer {
        QString text;
        const char* name;  ///< of the button
        int result;        ///< of the dialog, above 1; Cancel gives Rejected
    };

    /// Enter gives the first answer.
    ChoiceDialog(const QString& title, const QString& question, const std::vector<Answer>& answers,
                 QWidget* parent = nullptr);
};

}  // namespace orvquery
