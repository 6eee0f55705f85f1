// SPDX-License-Identifier: MIT
#include "window/MainWindow.h"

#include "core/Text.h"
#include "database/OpenDatabase.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "text/Completeness.h"
#include "text/FindingLines.h"
#include "text/TextFile.h"
#include "toolkit/Services.h"
#include "window/KeptOperators.h"
#include "window/ParameterDialog.h"
#include "window/ResultPane.h"
#include "window/StatementPane.h"
#include "window/TableListPane.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDKeptPlaces.h"
#include "workarea/ORVQDSProc.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileDialog>
#include <QPointer>
#include <QScopedValueRollback>
#include <QSplitter>

namespace orvquery {

namespace {

// More rows are no help to a person, and would take memory without a bound.
constexpr std::size_t mostRows = 10000;

}  // namespace

MainWindow::MainWindow() {
    buildPanes();
    buildActions();
    buildMenus();
    restoreLayout();
    restoreOperators(*m_builder);
    useTables(std::make_unique<SchemaFile>(QByteArray("{}"), QString()), nullptr);
}

MainWindow::~MainWindow() {
    // Going, the control may still ask for tables and tell of changes.
    disconnect(m_builder, nullptr, this, nullptr);
    delete m_builder;
}

void MainWindow::begin(const Options& options) {
    m_builder->setKeepMeaning(options.keepMeaning);
    if (options.schema) {
        tryTo([&] { useTables(SchemaFile::read(*options.schema), nullptr); });
    } else if (options.database) {
        openDatabase(*options.database);
    } else if (openSample() && !options.load) {
        loadText(sampleQuery());
    }
    if (!options.load) return;
    QString text;
    if (tryTo([&] { text = readTextFile(*options.load); })) loadText(text);
}

bool MainWindow::openDatabase(const QString& address) {
    return tryTo([&] {
        auto database = orvquery::openDatabase(address);
        Database* const opened = database.get();
        useTables(std::move(database), opened);
    });
}

bool MainWindow::openSample() {
    QString path;
    return tryTo([&] { path = sampleDatabasePath(); }) && openDatabase(path);
}

bool MainWindow::tryTo(const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const orv::Error& error) {
        tellError(error.Message());
        return false;
    }
}

void MainWindow::useTables(std::unique_ptr<TableSource> tables, Database* database) {
    // May raise; nothing has changed until then.
    const std::vector<TableEntry> entries = tables->tables();
    m_runner->stop();
    connectTables(*m_builder, *tables);
    m_tables = std::move(tables);
    m_database = database;
    m_builder->OnEnterProcParameter = [this](QObject*, TorvQDTable* box, TorvQDListItem* row) {
        enterParameter(box, row);
    };
    m_builder->Clear();
    m_tableList->setTables(entries);
    m_statement->forgetLoaded();
    m_result->clear();
    const QString title = m_tables->title();
    setWindowTitle(title.isEmpty() ? tr("orvquery") : tr("%1 - orvquery").arg(title));
    statementChanged();
}

void MainWindow::chooseDatabase() {
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open database"), QString(),
        tr("Databases (*.db *.sqlite *.sqlite3 *.db3 *.fdb *.gdb);;All files (*)"));
    if (!path.isEmpty()) openDatabase(path);
}

void MainWindow::chooseSample() {
    if (openSample()) loadText(sampleQuery());
}

void MainWindow::modifyOperators() {
    m_builder->ModifyOperators();
    keepOperators(*m_builder);
}

void MainWindow::useDefaultOperators() {
    m_builder->CommitPendingEdits();
    restoreDefaultOperators(*m_builder);
    keepOperators(*m_builder);
}

void MainWindow::quit() {
    close();
}

void MainWindow::addTableToDiagram(const QString& name) {
    orv::guarded([&] { addTable(*m_builder, *m_tables, name); });
}

// The box may be closed while the person thinks; then there is nothing left to ask.
void MainWindow::enterParameter(TorvQDTable* box, TorvQDListItem* row) {
    const QPointer<MainWindow> self(this);
    const QPointer<TorvQDSProc> procedure = qobject_cast<TorvQDSProc*>(box);
    if (!procedure) return;
    const int index = row->GetIndex();
    const ParameterDialog::Subject subject = {procedure->GetCaption(), orv::unquotedName(row->Name),
                                              row->FieldType,
                                              u':' + TorvQDSProc::placeholderName(*row)};
    const QPointer<ParameterDialog> dialog =
        new ParameterDialog(subject, TorvQDSProc::valueOf(*row), this);
    connect(procedure, &QObject::destroyed, dialog, &QDialog::reject);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    dialog->deleteLater();
    if (!isAccepted || !procedure || std::size_t(index) >= procedure->Items.size()) return;
    procedure->setParameter(procedure->Items[std::size_t(index)].get(), dialog->value());
    statementChanged();
}

void MainWindow::loadStatement() {
    m_builder->CommitPendingEdits();
    loadText(m_statement->text());
}

bool MainWindow::loadText(const QString& text) {
    try {
        const QScopedValueRollback<bool> loading(m_isLoading, true);
        const orv::KeptPlaces places(*m_builder->WorkArea);
        m_builder->LoadSQL(text);
        // Another query: nobody has laid it out yet.
        if (!places.keepsAny(*m_builder->WorkArea)) layOut(*m_builder->WorkArea);
    } catch (const std::exception& error) {
        m_statement->setRefused(text, QString::fromUtf8(error.what()));
        return false;
    }
    m_statement->setLoaded(text, m_builder->LoadReport());
    statementChanged();
    return true;
}

// Loading tells of many changes on its way; its end is what counts.
void MainWindow::statementChanged() {
    if (m_isLoading) return;
    try {
        const QString statement = m_builder->GetSQLStatment();
        // Without a table there are but the names of two clauses.
        const bool isEmpty = m_builder->ListOfTables->TablesCount() == 0;
        m_statement->setStatement(isEmpty ? QString() : statement);
    } catch (const std::exception& error) {
        m_statement->setProblem(QString::fromUtf8(error.what()));
    }
}

void MainWindow::runStatement() {
    if (m_runner->isRunning()) return;
    m_builder->CommitPendingEdits();
    const QString text = m_statement->text();
    const QString problem = whatPreventsRunning(text);
    if (!problem.isEmpty()) {
        showDoubts();
        return m_result->setProblem(problem);
    }
    const Database* const database = m_database;
    const std::optional<PlaceholderValues> values = askParameters(text);
    // While the dialog was open anything may have happened.
    if (!values || m_database != database || m_runner->isRunning()) return;
    showDoubts();
    m_stop->setEnabled(true);
    m_run->setEnabled(false);
    m_result->setRunning();
    m_runner->start(m_database->settings(), text, *values, mostRows);
}

// A text of the user's own is the user's business.
void MainWindow::showDoubts() {
    m_result->setNotes(m_statement->isEdited() ? QStringList()
                                               : findingLines(m_builder->Validate()));
}

// None when the person thought better of it.
std::optional<PlaceholderValues> MainWindow::askParameters(const QString& statement) {
    const std::vector<ParameterDescription> parameters = describeParameters(
        statement, *m_builder,
        m_database->hasStrictTypes() ? ColumnTypes::AreStrict : ColumnTypes::AreLoose);
    if (parameters.empty()) return PlaceholderValues();
    const QPointer<MainWindow> self(this);
    const QPointer<PlaceholderDialog> dialog = new PlaceholderDialog(parameters, m_answers, this);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return std::nullopt;
    dialog->deleteLater();
    if (!isAccepted) return std::nullopt;
    m_answers.insert(dialog->answers());
    return dialog->values();
}

QString MainWindow::whatPreventsRunning(const QString& text) const {
    if (m_database == nullptr) return tr("There are no rows: no database is open.");
    if (!m_statement->problem().isEmpty()) return m_statement->problem();
    const QString missing = m_statement->isEdited() ? QString() : whatIsMissing(text);
    return missing.isEmpty() ? questionMarkProblem(text) : missing;
}

void MainWindow::stopQuery() {
    m_runner->stop();
}

void MainWindow::queryFinished(QueryOutcome& outcome) {
    m_stop->setEnabled(false);
    m_run->setEnabled(true);
    m_result->setOutcome(outcome);
}

void MainWindow::clearAll() {
    m_builder->Clear();
    m_statement->forgetLoaded();
    m_result->clear();
    statementChanged();
}

void MainWindow::tellError(const QString& text) {
    orv::showMessage({this, text, QCoreApplication::applicationName(),
                      orv::MessageIcon::Exclamation, orv::MessageButtons::Ok});
}

void MainWindow::closeEvent(QCloseEvent* event) {
    saveLayout();
    event->accept();
}

}  // namespace orvquery
