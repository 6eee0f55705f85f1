// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class QueryForm;
}

/// A form that was laid out in Qt Designer: the control, its operators and its colours come from
/// QueryForm.ui. What is written here is what a form cannot say.
class QueryForm : public QWidget {
public:
    QueryForm();
    ~QueryForm() override;

    [[nodiscard]] QString statement() const;

private:
    void showStatement();

    std::unique_ptr<Ui::QueryForm> m_ui;
};
