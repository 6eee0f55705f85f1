// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

namespace orvquery {

/// Says what is being waited for, and lets a person give it up; whoever shows it accepts it when
/// that has come.
class WaitingBox : public QDialog {
    Q_OBJECT

public:
    explicit WaitingBox(const QString& text, QWidget* parent = nullptr);
};

}  // namespace orvquery
