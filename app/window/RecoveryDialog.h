// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QDialog>

#include <vector>

class QPushButton;
class QTreeWidget;

namespace orvquery {

/// Shows the queries that were not saved when the program ended unexpectedly, and asks which of
/// them is to be opened again. What is neither recovered nor discarded is offered the next time.
class RecoveryDialog : public QDialog {
    Q_OBJECT

public:
    struct Line {
        QString name;
        QString database;
        QDateTime time;
        QString path;  ///< of the document; empty when it has none
    };

    /// The dialog's results.
    enum Choice { Later = Rejected, Recover = Accepted };

    explicit RecoveryDialog(const std::vector<Line>& lines, QWidget* parent = nullptr);

    /// Which of the lines is to be recovered.
    [[nodiscard]] int chosen() const;

Q_SIGNALS:
    /// The person wants that one no more.
    void discarded(int line);

private:
    void discardChosen();

    QTreeWidget* m_list;
};

}  // namespace orvquery
