// SPDX-License-Identifier: MIT
#pragma once

#include "window/QueryRunner.h"

#include <QStringList>
#include <QWidget>

class QAction;
class QHBoxLayout;
class QLabel;
class QStackedWidget;
class QTableView;

namespace orvquery {

class ResultModel;

/// Shows the rows of a query, or in their place what the database says about it, with count and
/// time below.
class ResultPane : public QWidget {
    Q_OBJECT

public:
    explicit ResultPane(QWidget* parent = nullptr);

    /// A query has started.
    void setRunning();
    /// It has ended; takes the rows out of the outcome.
    void setOutcome(QueryOutcome& outcome);
    /// What is doubtful about the query, above its rows; none hides it.
    void setNotes(const QStringList& notes);
    /// There was nothing that could be run.
    void setProblem(const QString& reason);
    /// Back to the state before the first query.
    void clear();

    void setStopAction(QAction* action);

private:
    void buildView();
    void buildText();
    void showText(const QString& text, bool isError);
    void fitColumns();
    void copySelection();

    ResultModel* m_model;
    QStackedWidget* m_pages;
    QTableView* m_view;
    QLabel* m_text;
    QLabel* m_notes;
    QLabel* m_summary;
    QHBoxLayout* m_header;
};

}  // namespace orvquery
