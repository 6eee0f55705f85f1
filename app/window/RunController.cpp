// SPDX-License-Identifier: MIT
#include "window/RunController.h"

#include "core/Error.h"
#include "database/QueryableSource.h"
#include "querybuilder/ORVQDWindow.h"
#include "text/Completeness.h"
#include "text/FindingLines.h"
#include "toolkit/Services.h"
#include "window/ExportDialog.h"
#include "window/ResultModel.h"
#include "window/ResultPane.h"
#include "window/StatementPane.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>

namespace orvquery {

namespace {

constexpr std::chrono::milliseconds progressInterval(200);

QString countedRows(qint64 rows) {
    const QString number = QLocale().toString(rows);
    return rows == 1 ? RunController::tr("1 row") : RunController::tr("%1 rows").arg(number);
}

}  // namespace

RunController::RunController(TorvQueryBuilder* builder, StatementPane* statement,
                             ResultPane* result, QWidget* window)
    : QObject(window),
      m_builder(builder),
      m_statement(statement),
      m_result(result),
      m_window(window),
      m_run(makeAction("run", tr("&Run"), QKeySequence(Qt::Key_F5), &RunController::run)),
      m_stop(makeAction("stop", tr("S&top"), QKeySequence(QStringLiteral("Shift+F5")),
                        &RunController::stop)),
      m_export(makeAction("export", tr("&Export rows..."), QKeySequence(QStringLiteral("Ctrl+E")),
                          &RunController::chooseExport)) {
    m_run->setToolTip(tr("Run the statement (F5)"));
    m_export->setIconText(tr("Export"));
    m_export->setToolTip(tr("Write all rows into a file (Ctrl+E)"));
    m_result->setExportAction(m_export);
    m_result->setStopAction(m_stop);
    m_exportClock.setInterval(progressInterval);
    connectSignals();
    refreshActions();
}

void RunController::connectSignals() {
    connect(m_statement, &StatementPane::contentChanged, this,
            [this] { orv::guarded([this] { refreshProblem(); }); });
    connect(&m_exportClock, &QTimer::timeout, this, &RunController::showExportProgress);
    connect(&m_exporting, &RowsExport::finished, this,
            [this](const QueryEnd& end) { orv::guarded([&] { finishExport(end); }); });
    connect(&m_runner, &QueryRunner::begun, this, [this](const QStringList& columns) {
        if (!m_isOutdated) orv::guarded([&] { m_result->begin(columns); });
    });
    connect(&m_runner, &QueryRunner::rowsCame, this, [this](const std::vector<Row>& rows) {
        if (!m_isOutdated) orv::guarded([&] { m_result->addRows(rows); });
    });
    connect(&m_runner, &QueryRunner::finished, this,
            [this](const QueryOutcome& outcome) { orv::guarded([&] { finishQuery(outcome); }); });
}

RunController::~RunController() = default;

QAction* RunController::makeAction(const char* icon, const QString& text,
                                   const QKeySequence& shortcut, void (RunController::*slot)()) {
    auto* action = new QAction(
        QIcon(QStringLiteral(":/orvquery/icons/%1.svg").arg(QLatin1String(icon))), text, m_window);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this,
            [this, slot] { orv::guarded([&] { (this->*slot)(); }); });
    return action;
}

void RunController::setLoadAction(QAction* action) {
    m_load = action;
}

void RunController::setPatience(std::chrono::milliseconds patience) {
    m_runner.setPatience(patience);
    m_exporting.setPatience(patience);
}

void RunController::setDatabase(const QueryableSource* database) {
    m_database = database;
    clear();
}

void RunController::clear() {
    m_isOutdated = m_runner.isRunning();
    m_problem.clear();
    m_runner.stop();
    m_result->clear();
    m_result->setBusy(m_exporting.isRunning());
    refreshActions();
}

bool RunController::isBusy() const {
    return m_runner.isRunning() || m_exporting.isRunning();
}

void RunController::refreshActions() {
    m_run->setEnabled(!isBusy());
    m_stop->setEnabled(isBusy());
    m_export->setEnabled(!isBusy() && m_result->hasRows());
}

// Tells what prevents it.
bool RunController::canRun() {
    m_builder->CommitPendingEdits();
    // What was loaded may be seen beside what became of it; that is what runs.
    m_statement->leaveLoadedText();
    const QString problem = whatPreventsRunning();
    const bool isTyped = m_database != nullptr && m_statement->isEdited();
    m_result->setNotes(isTyped ? QStringList() : findingLines(m_builder->Validate()));
    if (problem.isEmpty()) return true;
    showProblem(problem);
    refreshActions();
    return false;
}

void RunController::showProblem(const QString& problem) {
    QList<QAction*> remedies;
    if (m_database != nullptr && m_statement->isEdited()) {
        remedies += m_statement->isOffered() ? m_statement->loadAnywayAction() : m_load;
        if (m_statement->hasQuery()) remedies += m_statement->backAction();
    }
    m_problem = problem;
    m_result->setProblem(problem, remedies);
}

// A problem that was told is told no longer than it is there.
void RunController::refreshProblem() {
    if (m_problem.isEmpty() || m_runner.isRunning()) return;
    const QString problem = whatPreventsRunning();
    // They were about the statement as it was.
    m_result->setNotes({});
    if (problem == m_problem) return;
    if (!problem.isEmpty()) return showProblem(problem);
    m_problem.clear();
    m_result->clear();
    m_result->setBusy(m_exporting.isRunning());
    refreshActions();
}

void RunController::run() {
    if (isBusy() || !canRun()) return;
    const QString text = m_statement->text();
    const QueryableSource* const database = m_database;
    const std::optional<PlaceholderValues> values = askParameters(text);
    // While the dialog was open anything may have happened.
    if (!values || m_database != database || isBusy()) return;
    const std::vector<TorvQDTable*>& boxes = m_builder->WorkArea->tablesByCreation();
    m_last = {m_database->settings(), text, *values,
              boxes.empty() ? QString() : boxes.front()->TableName};
    m_isOutdated = false;
    m_problem.clear();
    m_result->setOfEarlier(false);
    m_result->setRunning();
    m_runner.start(m_makeSource(m_last.settings, m_last.statement, m_last.values));
    refreshActions();
}

std::optional<std::function<RowSource(const QString&)>> RunController::prepareTrials() {
    if (!canRun()) return std::nullopt;
    const QPointer<RunController> self(this);
    const QString text = m_statement->text();
    const QueryableSource* const database = m_database;
    const std::optional<PlaceholderValues> values =
        text == m_last.statement ? m_last.values : askParameters(text);
    if (!self || !values || m_database != database) return std::nullopt;
    return [makeSource = m_makeSource, settings = m_database->settings(), values = *values](
               const QString& statement) { return makeSource(settings, statement, values); };
}

// None when the person thought better of it.
std::optional<PlaceholderValues> RunController::askParameters(const QString& statement) {
    const std::vector<ParameterDescription> parameters = describeParameters(
        statement, *m_builder,
        m_database->hasStrictTypes() ? ColumnTypes::AreStrict : ColumnTypes::AreLoose);
    if (parameters.empty()) return PlaceholderValues();
    const QPointer<RunController> self(this);
    const QPointer<PlaceholderDialog> dialog =
        new PlaceholderDialog(parameters, m_answers, m_window);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return std::nullopt;
    dialog->deleteLater();
    if (!isAccepted) return std::nullopt;
    m_answers.insert(dialog->answers());
    return dialog->values();
}

QString RunController::whatPreventsRunning() const {
    if (m_database == nullptr) return tr("There are no rows: no database is open.");
    const bool hasQuery = m_statement->hasQuery();
    if (m_statement->isOffered()) {
        return hasQuery ? tr("The text is not loaded, because something would be lost by that; "
                             "change it, or choose Load anyway or Back to the statement.")
                        : tr("The text is not loaded, because something would be lost by that; "
                             "change it, or choose Load anyway.");
    }
    if (m_statement->isEdited()) {
        return hasQuery ? tr("The text was changed but not loaded; Load (Ctrl+Enter) it first, or "
                             "choose Back to the statement.")
                        : tr("The text was changed but not loaded; Load (Ctrl+Enter) it first.");
    }
    if (!m_statement->problem().isEmpty()) return m_statement->problem();
    const QString text = m_statement->text();
    const QString missing = whatIsMissing(text);
    return missing.isEmpty() ? questionMarkProblem(text) : missing;
}

// What is typed and not loaded yet is no other statement so far.
bool RunController::isOfEarlierStatement() const {
    return m_statement->statement() != m_last.statement;
}

void RunController::statementChanged() {
    m_result->setOfEarlier(isOfEarlierStatement());
}

void RunController::stop() {
    m_runner.stop();
    m_exporting.stop();
}

void RunController::finishQuery(const QueryOutcome& outcome) {
    if (!m_isOutdated) {
        m_problem.clear();
        m_result->setOutcome(outcome);
    }
    m_isOutdated = false;
    refreshActions();
}

void RunController::chooseExport() {
    if (isBusy() || !m_result->hasRows()) return;
    const QPointer<RunController> self(this);
    const QPointer<ExportDialog> dialog =
        new ExportDialog(exportTitle(), exportName(m_last.firstTable), m_window);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    dialog->deleteLater();
    const QString file = isAccepted ? dialog->takeFile() : QString();
    if (!file.isEmpty()) exportRows(file);
}

QString RunController::exportTitle() const {
    QString title =
        isOfEarlierStatement() ? tr("Export the rows of the earlier statement") : tr("Export rows");
    if (m_result->areRowsWhole()) return title;
    return tr("%1: runs the statement again to get all of them").arg(title);
}

void RunController::exportRows(const QString& path) {
    // While the dialog was open anything may have happened.
    if (isBusy() || !m_result->hasRows()) return;
    const std::optional<RowFormat> format = rowFormatOfFile(path);
    if (!format) {
        throw orv::Error(tr("Rows are exported into a file named .csv, .tsv or .json, not \"%1\".")
                             .arg(QFileInfo(path).fileName()));
    }
    m_exportPath = path;
    const ResultModel& rows = m_result->model();
    m_exporting.start(m_result->areRowsWhole()
                          ? rowsOfList(rows.columns(), rows.rows())
                          : m_makeSource(m_last.settings, m_last.statement, m_last.values),
                      path, *format);
    m_result->setBusy(true);
    m_exportClock.start();
    showExportProgress();
    refreshActions();
}

void RunController::showExportProgress() {
    m_result->setExportState(
        tr("Exporting to %1: %2 ...")
            .arg(QFileInfo(m_exportPath).fileName(), countedRows(m_exporting.rowsWritten())));
}

void RunController::finishExport(const QueryEnd& end) {
    m_exportClock.stop();
    refreshActions();
    m_result->setBusy(false);
    const QString name = QFileInfo(m_exportPath).fileName();
    if (end.error.isEmpty() && !end.isStopped) {
        m_result->setExportState(
            tr("Exported %1 to %2.").arg(countedRows(m_exporting.rowsWritten()), name));
        return;
    }
    m_result->setExportState(tr("Nothing was exported to %1.").arg(name));
    if (end.error.isEmpty()) return;
    orv::showMessage({m_window, end.error, QCoreApplication::applicationName(),
                      orv::MessageIcon::Exclamation, orv::MessageButtons::Ok});
}

}  // namespace orvquery
