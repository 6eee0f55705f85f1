// SPDX-License-Identifier: MIT
#pragma once

#include "joins/JoinProposals.h"

#include <QDialog>

class QCheckBox;
class QPushButton;
class QTreeWidget;

namespace orvquery {

/// Asks how a table that comes to the diagram is to be joined. What the database declares is chosen
/// to begin with; otherwise nothing is, so that Enter leaves a guess alone. Modal; whoever shows it
/// owns it.
class JoinDialog : public QDialog {
    Q_OBJECT

public:
    JoinDialog(const QString& table, const JoinOffer& offer, QWidget* parent = nullptr);

    /// The numbers of the chosen proposals, the best first; they count when it was accepted.
    [[nodiscard]] std::vector<int> chosen() const;
    /// Whether the person wants to be asked again; counts whatever the answer was.
    [[nodiscard]] bool isToProposeAgain() const;

private:
    void fill(const JoinOffer& offer);
    void makeButtons();
    void refresh();

    QTreeWidget* m_list = nullptr;
    QCheckBox* m_again = nullptr;
    QPushButton* m_link = nullptr;
    QPushButton* m_leave = nullptr;
};

}  // namespace orvquery
