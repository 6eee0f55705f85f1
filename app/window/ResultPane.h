// SPDX-License-Identifier: MIT
#pragma once

#include "window/QueryRunner.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <array>
#include <optional>

class QAction;
class QFrame;
class QHBoxLayout;
class QLabel;
class QProgressBar;
class QStackedWidget;
class QTableView;
class QToolButton;

namespace orvquery {

class ResultModel;

/// Shows the rows of a query as they come, or in their place what the database says about it, with
/// count and time below.
class ResultPane : public QWidget {
    Q_OBJECT

public:
    explicit ResultPane(QWidget* parent = nullptr);

    /// A query has started.
    void setRunning();
    /// It gives rows with these columns.
    void begin(const QStringList& columns);
    void addRows(const std::vector<Row>& rows);
    /// It has ended. The rows that came stay, with a note when they are not all.
    void setOutcome(const QueryOutcome& outcome);
    /// What is doubtful about the query, above its rows; none hides it.
    void setNotes(const QStringList& notes);
    /// Whether the rows, or what the database said in their place, are those of another statement
    /// than the present one, which is told above them.
    void setOfEarlier(bool isOfEarlier);
    /// There was nothing that could be run; what helps, two at most, is offered as buttons.
    void setProblem(const QString& reason, const QList<QAction*>& remedies = {});
    /// Back to the state before the first query.
    void clear();

    /// What becomes of an export, below the rows; empty when there is none.
    void setExportState(const QString& text);
    /// Whether something goes on, shown by a moving bar.
    void setBusy(bool isBusy);

    void setStopAction(QAction* action);
    void setExportAction(QAction* action);
    /// What is offered when a query has no rows.
    void setNoRowsAction(QAction* action);

    /// Whether a query has ended whose rows are there.
    [[nodiscard]] bool hasRows() const;
    /// Whether these are all its rows, and whole.
    [[nodiscard]] bool areRowsWhole() const;
    [[nodiscard]] const ResultModel& model() const { return *m_model; }

private:
    void buildView();
    void buildText();
    void buildLabels();
    void addViewAction(const QString& text, const QKeySequence& shortcut,
                       void (ResultPane::*slot)());
    QToolButton* addButton(QAction* action, const char* name);
    void showText(const QString& text, bool isError, const QList<QAction*>& remedies = {});
    void refreshEarlier();
    void refreshNoRows();
    void showRunningTime();
    void refreshSummary();
    [[nodiscard]] QString runningText() const;
    [[nodiscard]] QString endedText() const;
    [[nodiscard]] bool isComplete() const;
    [[nodiscard]] QString troubleText() const;
    void fitColumns();
    void fitToFirstRows();
    void copy();
    void copyWithHeader();
    void selectAll();
    void sortByColumn();

    ResultModel* m_model;
    QStackedWidget* m_pages;
    QTableView* m_view;
    QFrame* m_textPage;
    QLabel* m_text;
    std::array<QToolButton*, 2> m_remedies;
    QLabel* m_earlier;
    QLabel* m_trouble;
    QLabel* m_notes;
    QLabel* m_summary;
    QToolButton* m_noRows;
    QLabel* m_exportState;
    QProgressBar* m_busy;
    QHBoxLayout* m_header;
    QTimer m_clock;
    QElapsedTimer m_time;  ///< since the start of the query
    std::optional<QueryOutcome> m_outcome;
    bool m_isRunning = false;
    bool m_isOfEarlier = false;
    bool m_hasBegun = false;  ///< the rows are those of the present query
    int m_fittedRows = -1;    ///< those whose widths the columns have; -1 for none
    bool m_isFitting = false;
    bool m_areWidthsChosen = false;  ///< by a person
};

}  // namespace orvquery
