// SPDX-License-Identifier: MIT
#include "window/MainWindow.h"

#include "database/SqliteDatabase.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "text/Completeness.h"
#include "text/FindingLines.h"
#include "text/TextFile.h"
#include "toolkit/Services.h"
#include "window/KeptOperators.h"
#include "window/ResultPane.h"
#include "window/StatementPane.h"
#include "window/TableListPane.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDKeptPlaces.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileDialog>
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

bool MainWindow::openDatabase(const QString& path) {
    return tryTo([&] {
        auto database = std::make_unique<SqliteDatabase>(path);
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
        tr("SQLite databases (*.db *.sqlite *.sqlite3 *.db3);;All files (*)"));
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
    // A text of the user's own is the user's business.
    m_result->setNotes(m_statement->isEdited() ? QStringList()
                                               : findingLines(m_builder->Validate()));
    const QString problem = whatPreventsRunning(text);
    if (!problem.isEmpty()) return m_result->setProblem(problem);
    m_stop->setEnabled(true);
    m_run->setEnabled(false);
    m_result->setRunning();
    m_runner->start(m_database->settings(), text, mostRows);
}

QString MainWindow::whatPreventsRunning(const QString& text) const {
    if (m_database == nullptr) return tr("There are no rows: no database is open.");
    if (!m_statement->problem().isEmpty()) return m_statement->problem();
    return m_statement->isEdited() ? QString() : whatIsMissing(text);
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
