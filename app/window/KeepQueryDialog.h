// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

namespace orvquery {

/// Asks what is to become of the query on the diagram when another database is opened.
class KeepQueryDialog : public QDialog {
    Q_OBJECT

public:
    /// The dialog's results.
    enum Choice { Cancel = Rejected, Keep = Accepted, Empty };

    explicit KeepQueryDialog(const QString& database, QWidget* parent = nullptr);
};

}  // namespace orvquery
