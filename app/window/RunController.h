// SPDX-License-Identifier: MIT
#pragma once

#include "window/PlaceholderDialog.h"
#include "window/QueryRunner.h"
#include "window/RowsExport.h"

#include <QObject>
#include <QTimer>

#include <optional>

class QAction;
class QWidget;
class TorvQueryBuilder;

namespace orvquery {

class QueryableSource;
class ResultPane;
class StatementPane;

/// All about running the statement: what prevents it, the values it needs, what is doubtful about
/// it, the query itself, its end, and the export of its rows. One of the two goes on at a time.
/// Owned by the window; borrows the control and the panes.
class RunController : public QObject {
    Q_OBJECT

public:
    /// Makes the rows of a query; tests replace it.
    using SourceMaker = std::function<RowSource(
        const ConnectionSettings& settings, const QString& statement, const PlaceholderValues&)>;

    RunController(TorvQueryBuilder* builder, StatementPane* statement, ResultPane* result,
                  QWidget* window);
    ~RunController() override;

    /// The database whose rows are asked for from now on; none, when only tables are known. A query
    /// on the present one is stopped; an export goes on.
    void setDatabase(const QueryableSource* database);

    /// The diagram's statement may be another than that of the rows.
    void statementChanged();

    /// Stops the query and forgets its rows; an export goes on.
    void clear();

    /// Writes the rows that are shown into a file, by its name as CSV, TSV or JSON. When not all
    /// of them are there, or not all of a value, the statement runs again for it. Raises orv::Error
    /// when the name is none of these.
    void exportRows(const QString& path);

    /// What runs statements like the present one, with the values for its placeholders: those of
    /// its last run, or asked for. None when the person gave that up or it cannot be run; the pane
    /// says why.
    [[nodiscard]] std::optional<std::function<RowSource(const QString& statement)>> prepareTrials();

    /// What loads a typed text.
    void setLoadAction(QAction* action);
    [[nodiscard]] QAction* runAction() const { return m_run; }
    [[nodiscard]] QAction* stopAction() const { return m_stop; }
    [[nodiscard]] QAction* exportAction() const { return m_export; }

    /// Replaces the connection to a database.
    void setSourceMaker(SourceMaker maker) { m_makeSource = std::move(maker); }
    /// How long what was stopped may take until it is abandoned.
    void setPatience(std::chrono::milliseconds patience);

private:
    /// What was run last.
    struct LastQuery {
        ConnectionSettings settings;
        QString statement;
        PlaceholderValues values;
        QString firstTable;  ///< as it is called in the statement
    };

    QAction* makeAction(const char* icon, const QString& text, const QKeySequence& shortcut,
                        void (RunController::*slot)());
    void connectSignals();
    void run();
    void stop();
    void chooseExport();
    void refreshProblem();
    void showProblem(const QString& problem);
    [[nodiscard]] bool isOfEarlierStatement() const;
    [[nodiscard]] QString exportTitle() const;
    [[nodiscard]] bool isBusy() const;
    void refreshActions();
    [[nodiscard]] bool canRun();
    [[nodiscard]] QString whatPreventsRunning() const;
    [[nodiscard]] std::optional<PlaceholderValues> askParameters(const QString& statement);
    void finishQuery(const QueryOutcome& outcome);
    void finishExport(const QueryEnd& end);
    void showExportProgress();

    TorvQueryBuilder* m_builder;
    StatementPane* m_statement;
    ResultPane* m_result;
    QWidget* m_window;
    const QueryableSource* m_database = nullptr;
    QueryRunner m_runner;
    RowsExport m_exporting;
    QAction* m_run;
    QAction* m_stop;
    QAction* m_export;
    QAction* m_load = nullptr;
    QTimer m_exportClock;
    SourceMaker m_makeSource = rowsOfQuery;
    LastQuery m_last;
    QString m_exportPath;
    bool m_isOutdated = false;   ///< nobody waits for the query that runs
    QString m_problem;           ///< the one that is shown; empty for none
    ParameterAnswers m_answers;  ///< of this session
};

}  // namespace orvquery
