// SPDX-License-Identifier: MIT
#include "window/MainWindow.h"

#include "core/Text.h"
#include "database/BackgroundDatabase.h"
#include "names/KeptCase.h"
#include "querybuilder/ORVQDValidate.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "text/Comments.h"
#include "toolkit/Services.h"
#include "window/DatabaseOpener.h"
#include "window/DocumentController.h"
#include "window/JoinAssistant.h"
#include "window/KeptOperators.h"
#include "window/KeyboardMap.h"
#include "window/LoadedTexts.h"
#include "window/ParameterDialog.h"
#include "window/RunController.h"
#include "window/SchemaBrowser.h"
#include "window/StatementPane.h"
#include "window/TrialLoad.h"
#include "window/UndoActions.h"
#include "window/WhyNoRows.h"
#include "window/WordsPanel.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDKeptPlaces.h"
#include "workarea/ORVQDSProc.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QPointer>
#include <QScopeGuard>
#include <QSplitter>

#include <utility>

namespace orvquery {

namespace {

QString writtenBy(TorvQueryBuilder& builder) {
    try {
        return builder.GetSQLStatment();
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace

MainWindow::MainWindow() {
    buildPanes();
    buildDocuments();
    buildActions();
    buildMenus();
    buildOpening();
    restoreLayout();
    restoreOperators(*m_builder);
    useTables(std::make_unique<SchemaFile>(QByteArray("{}"), QString()), nullptr);
}

MainWindow::~MainWindow() {
    delete m_documents;
    // Going, the control may still ask for tables and tell of changes.
    disconnect(m_builder, nullptr, this, nullptr);
    delete m_builder;
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

void MainWindow::useTables(std::unique_ptr<TableSource> tables, BackgroundDatabase* database) {
    // May raise; nothing has changed until then.
    const std::vector<TableEntry> entries = tables->tables();
    m_running->setDatabase(database);
    m_whyNoRows->setDatabase(database);
    connectTables(*m_builder, *tables);
    m_joins->setSource(*tables, entries);
    m_tables = std::move(tables);
    m_address.reset();
    offerSampleQueries();
    m_builder->OnEnterProcParameter = [this](QObject*, TorvQDTable* box, TorvQDListItem* row) {
        enterParameter(box, row);
    };
    m_builder->Clear();
    m_undo->reset();
    m_tableList->setSource(*m_tables, entries);
    m_statement->forgetLoaded();
    m_loadedTexts->take();
    m_database = {};
    m_documents->showTitle();
    statementChanged();
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

// A list that shows what is gone is read anew.
void MainWindow::addTableToDiagram(const TableName& name) {
    const orv::UndoRecorder::Group step(m_undo->recorder());
    orv::guarded([&] {
        try {
            m_joins->addTable(name);
        } catch (const GoneTableError&) {
            m_tableList->refreshAction()->trigger();
            throw;
        }
    });
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
    const QString text = m_statement->text();
    if (isAgreedTo(text)) loadText(text);
}

void MainWindow::loadAnyway() {
    // It may have been changed since it was offered.
    if (!m_statement->isOffered()) return loadStatement();
    m_builder->CommitPendingEdits();
    loadText(m_statement->text());
}

// What is on the diagram is never given up for nothing, and not for a text of which it cannot hold
// all, or which lacks what is muted, before the person says so. The diagram's own statement changes
// nothing.
bool MainWindow::isAgreedTo(const QString& text) {
    if (text == m_statement->statement()) return true;
    const QPointer<MainWindow> self(this);
    try {
        const TrialLoad trial = tryLoading(*m_builder, *m_tables, text);
        if (!self) return false;
        if (!trial.refusal.isEmpty()) {
            m_statement->setRefused(text, trial.refusal);
            return false;
        }
        const QStringList muted = orv::mutedParts(*m_builder);
        if (trial.findings.empty() && muted.isEmpty()) return true;
        m_statement->setOffered(text, trial.findings, muted);
        return false;
    } catch (const std::exception& error) {
        if (self) m_statement->setRefused(text, QString::fromUtf8(error.what()));
        return false;
    }
}

// False, too, when the window was closed for good by the person whom loading has told something.
bool MainWindow::loadText(const QString& text) {
    const QPointer<MainWindow> self(this);
    QString loaded;
    // Once there is a step of it.
    const auto kept = qScopeGuard([self] {
        if (self) self->m_loadedTexts->take();
    });
    const orv::UndoRecorder::Group step(m_undo->recorder(), tr("loading the statement"));
    try {
        const auto over = qScopeGuard([self, before = std::exchange(m_isLoading, true)] {
            if (self) self->m_isLoading = before;
        });
        const orv::KeptPlaces places(*m_builder->WorkArea);
        loaded = m_tables->forLoading(text);
        m_builder->LoadSQL(loaded);
        if (!self) return false;
        // Another query: nobody has laid it out yet.
        if (!places.keepsAny(*m_builder->WorkArea)) layOut(*m_builder->WorkArea);
    } catch (const std::exception& error) {
        if (self) m_statement->setRefused(text, QString::fromUtf8(error.what()));
        return false;
    }
    orv::Findings findings = findingsBefore(m_builder->LoadReport(), loaded, text);
    for (orv::Finding& comment : commentFindings(text, writtenBy(*m_builder))) {
        findings.push_back(std::move(comment));
    }
    m_statement->setLoaded(text, findings);
    statementChanged();
    return true;
}

// Loading tells of many changes on its way; its end is what counts.
void MainWindow::statementChanged() {
    if (m_isLoading) return;
    m_words->queryChanged();
    try {
        const QString statement = m_builder->GetSQLStatment();
        // Without a table there are but the names of two clauses.
        const bool isEmpty = m_builder->ListOfTables->TablesCount() == 0;
        m_statement->setStatement(isEmpty ? QString() : statement);
    } catch (const std::exception& error) {
        m_statement->setProblem(QString::fromUtf8(error.what()));
    }
    m_running->statementChanged();
}

void MainWindow::startAnew() {
    m_documents->startAnew();
}

void MainWindow::clearAll() {
    m_builder->Clear();
    m_builder->WorkArea->scrollTo({0, 0});
    m_statement->forgetLoaded();
    m_loadedTexts->take();
    m_statement->showStatement();
    m_running->clear();
    statementChanged();
}

void MainWindow::tellError(const QString& text) {
    orv::showMessage({this, text, QCoreApplication::applicationName(),
                      orv::MessageIcon::Exclamation, orv::MessageButtons::Ok});
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!m_documents->mayLeave()) {
        event->ignore();
        return;
    }
    m_documents->finish();
    saveLayout();
    m_opener->giveUp();
    event->accept();
}

}  // namespace orvquery
