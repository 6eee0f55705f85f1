// SPDX-License-Identifier: MIT
#pragma once

#include "database/QueryThread.h"
#include "norows/Inquiry.h"

#include <QDialog>
#include <QTimer>

#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace orvquery {

class RowCounter;

/// Runs the trials of an inquiry one after another in the background and shows what they tell. Can
/// be closed at any time, and goes by itself then.
class WhyNoRowsDialog : public QDialog {
    Q_OBJECT

public:
    /// Makes the rows of a statement.
    using SourceMaker = std::function<RowSource(const QString& statement)>;
    /// Mutes a part of the query that is shown, and says what became of it.
    using Muter = std::function<QString(const QueryPart& part)>;

    WhyNoRowsDialog(std::unique_ptr<Inquiry> inquiry, SourceMaker makeSource, Muter mute,
                    QWidget* parent = nullptr);
    ~WhyNoRowsDialog() override;

    /// Runs the first trial.
    void start();

    /// How long a trial may take; at least three times as long as the query itself, which takes as
    /// long as it takes.
    void setTrialTime(std::chrono::milliseconds time) { m_trialTime = time; }
    /// How long what was stopped may take until it is abandoned.
    void setPatience(std::chrono::milliseconds patience) { m_thread.setPatience(patience); }

    void done(int result) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Stop { None, Time, Person };

    void buildTree();
    [[nodiscard]] QSize rowSize() const;
    void fitColumns();
    [[nodiscard]] QTreeWidgetItem* section(QueryPart::Kind kind);
    void addItem(int part);
    void runNext();
    void trialEnded(const QueryEnd& end);
    [[nodiscard]] RowCount countOf(const QueryEnd& end) const;
    void stop();
    void refresh();
    void refreshItem(int part);
    void refreshButtons();
    void chooseCulprit();
    void muteChosen();
    [[nodiscard]] int chosenPart() const;
    [[nodiscard]] QString countsText() const;

    std::unique_ptr<Inquiry> m_inquiry;
    SourceMaker m_makeSource;
    Muter m_mute;
    QueryThread m_thread;
    std::shared_ptr<RowCounter> m_counter;  ///< of the present trial
    QTimer m_limit;
    std::chrono::milliseconds m_trialTime;
    Stop m_stop = Stop::None;
    bool m_isClosed = false;
    bool m_isFitting = false;
    bool m_isWidthChosen = false;  ///< by a person
    QLabel* m_verdict;
    QLabel* m_details;
    QLabel* m_counts;
    QLabel* m_state;
    QProgressBar* m_progress;
    QTreeWidget* m_tree;
    QPushButton* m_muteButton;
    QPushButton* m_stopButton;
    std::vector<QTreeWidgetItem*> m_items;  ///< by part
};

}  // namespace orvquery
