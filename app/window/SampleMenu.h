// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>

namespace orvquery {

/// The worked queries on the sample database.
class SampleMenu : public QMenu {
    Q_OBJECT

public:
    explicit SampleMenu(const QString& title, QWidget* parent);

Q_SIGNALS:
    void chosen(const QString& statement);
};

}  // namespace orvquery
