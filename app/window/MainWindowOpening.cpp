// SPDX-License-Identifier: MIT
// The window: the database and the query that it opens.
#include "database/BackgroundDatabase.h"
#include "database/OpenDatabase.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "text/TextFile.h"
#include "toolkit/Services.h"
#include "window/ConnectionDialog.h"
#include "window/ConnectionForm.h"
#include "window/DatabaseOpener.h"
#include "window/DocumentController.h"
#include "window/FileDrop.h"
#include "window/KeepQueryDialog.h"
#include "window/MainWindow.h"
#include "window/PictureActions.h"
#include "window/RecentMenu.h"
#include "window/SampleMenu.h"
#include "window/SchemaBrowser.h"
#include "window/StatementPane.h"
#include "window/UndoActions.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QEventLoop>
#include <QFileInfo>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScopedValueRollback>

namespace orvquery {

void MainWindow::buildDocuments() {
    DocumentHost host;
    host.window = this;
    host.builder = m_builder;
    host.statement = m_statement;
    host.database = [this] { return m_database; };
    host.tables = [this]() -> const TableSource& { return *m_tables; };
    host.clear = [this] { clearAll(); };
    host.loadText = [this](const QString& text) { return loadText(text); };
    host.tell = [this](const QString& text) { tellError(text); };
    host.isBusy = [this] { return m_isLoading; };
    host.openDatabase =
        [this](const DocumentDatabase& database, const std::function<bool()>& mayReplace,
               const DocumentHost::Done& done) { openForDocument(database, mayReplace, done); };
    m_documents = new DocumentController(std::move(host));
    connect(m_documents, &DocumentController::shown, m_undo, &UndoActions::reset);
    connect(m_documents, &DocumentController::shown, m_statement, &StatementPane::forgetHistory);
    m_pictures->setNaming([this] { return m_documents->title(); });
}

void MainWindow::buildOpening() {
    m_opener = new DatabaseOpener(this);
    connect(m_opener, &DatabaseOpener::reading, m_tableList, &SchemaBrowser::watchOpening);
    auto* drop = new FileDrop(this);
    // Dropped there, the file's name would become a part of the text.
    const auto fields = findChildren<QLineEdit*>();
    for (QLineEdit* field : fields) drop->watch(field);
    const auto editors = findChildren<QPlainTextEdit*>();
    for (QPlainTextEdit* editor : editors) drop->watch(editor->viewport());
    connect(drop, &FileDrop::dropped, this,
            [this](const QList<QUrl>& urls) { orv::guarded([&] { openDropped(urls); }); });
    connect(m_recent, &RecentMenu::chosen, this,
            [this](const DatabaseAddress& address) { orv::guarded([&] { open({address}); }); });
}

// A text is loaded also when there is no database for it: what it lacks is told then.
void MainWindow::begin(const Options& options) {
    m_builder->setKeepMeaning(options.keepMeaning);
    const QPointer<MainWindow> self(this);
    const bool isRecovered = m_documents->offerRecovery();
    if (!self) return;
    if (isRecovered) return tellNotOpened(options);
    const bool isChosen = options.database || options.schema;
    std::optional<QString> document = options.document;
    if (document && !isChosen && !DocumentController::databaseIn(*document).isNone()) {
        if (m_documents->open(*document) || !self) return;
        document.reset();
    }
    const auto load = [this, self, file = options.load, document, isChosen] {
        if (self && document) m_documents->open(*document, isChosen);
        QString text;
        if (!self || !file || !tryTo([&] { text = readTextFile(*file); })) return;
        loadText(text);
        if (self && !m_statement->isEdited()) m_documents->setUnmodified();
    };
    if (options.schema) {
        tryTo([&] { useSchema(*options.schema); });
        return load();
    }
    OpeningWish wish;
    wish.isRemembered = options.database.has_value();
    wish.opened = [this, load, isSample = !options.database && !options.load && !options.document](
                      bool) { isSample ? loadSampleQuery() : load(); };
    wish.failed = [this, load](const QString& problem) {
        if (!problem.isEmpty()) tellError(problem);
        load();
    };
    try {
        wish.address = databaseAddress(options.database ? *options.database : sampleDatabasePath());
    } catch (const orv::Error& error) {
        return wish.failed(error.Message());
    }
    open(wish);
}

// A recovered query comes in place of what the command line names.
void MainWindow::tellNotOpened(const Options& options) {
    QStringList names;
    for (const auto& file : {options.document, options.load, options.schema}) {
        if (!file) continue;
        const QString path = QFileInfo(*file).absoluteFilePath();
        const bool isOpen = path == m_documents->path() || path == m_database.schema;
        if (!isOpen) names += *file == u"-" ? tr("standard input") : QFileInfo(path).fileName();
    }
    tryTo([&] {
        if (!options.database) return;
        const DatabaseAddress address = databaseAddress(*options.database);
        if (!isPresent(address)) names += address.title();
    });
    if (names.isEmpty()) return;
    tellError(tr("As a query was recovered, this was not opened: %1.")
                  .arg(names.join(QStringLiteral(", "))));
}

bool MainWindow::openDatabase(const QString& fileOrAddress) {
    const auto isOpen = std::make_shared<bool>(false);
    tryTo([&] {
        OpeningWish wish{databaseAddress(fileOrAddress)};
        wish.opened = [isOpen](bool) { *isOpen = true; };
        open(wish);
    });
    return *isOpen;
}

bool MainWindow::openSample() {
    const auto isOpen = std::make_shared<bool>(false);
    tryTo([&] {
        OpeningWish wish{databaseAddress(sampleDatabasePath()), false};
        wish.opened = [this, isOpen](bool isQueryKept) {
            *isOpen = true;
            if (!isQueryKept) loadSampleQuery();
        };
        open(wish);
    });
    return *isOpen;
}

// Another password is no other database, but wants to be tried.
bool MainWindow::isPresent(const DatabaseAddress& address) const {
    if (!m_address) return false;
    const bool isTried = address.password.isEmpty() || address.password == m_address->password;
    return isTried && isSameDatabase(address, *m_address);
}

// On a new connection: a file may have been replaced by another one.
void MainWindow::reopen(const OpeningWish& wish) {
    m_opener->giveUp();
    dynamic_cast<BackgroundDatabase&>(*m_tables).cancel();
    m_tableList->refreshAction()->trigger();
    if (wish.isRemembered) m_connections.use(*m_address);
    wish.opened(m_builder->ListOfTables->TablesCount() > 0);
}

void MainWindow::open(const OpeningWish& wish) {
    if (isPresent(wish.address)) return reopen(wish);
    OpeningWish taken = wish;
    if (!taken.failed) {
        taken.failed = [this](const QString& problem) {
            if (!problem.isEmpty()) tellError(problem);
        };
    }
    const int number = m_opener->open(
        taken.address,
        [this, taken](std::unique_ptr<BackgroundDatabase> database,
                      const DatabaseAddress& address) {
            OpeningWish opened = taken;
            opened.address = address;
            try {
                takeDatabase(std::move(database), opened);
            } catch (const orv::Error& error) {
                opened.failed(error.Message());
            }
        },
        taken.failed);
    waitFor(number);
}

// The window stays alive meanwhile, and may even go.
void MainWindow::waitFor(int opening) {
    if (!m_opener->isOpening(opening)) return;
    QEventLoop loop;
    const QPointer<DatabaseOpener> opener(m_opener);
    connect(opener, &DatabaseOpener::ended, &loop, &QEventLoop::quit);
    connect(opener, &QObject::destroyed, &loop, &QEventLoop::quit);
    while (opener && opener->isOpening(opening)) loop.exec();
}

// Asked once the database is there: a query is not given up for one that cannot be opened.
void MainWindow::takeDatabase(std::unique_ptr<BackgroundDatabase> database,
                              const OpeningWish& wish) {
    const QPointer<MainWindow> self(this);
    m_builder->CommitPendingEdits();
    if (wish.mayReplace && !wish.mayReplace()) return;
    const bool isAsked =
        !wish.mayReplace && m_builder->ListOfTables->TablesCount() > 0 && !showsSampleQuery();
    const int choice =
        isAsked ? askAboutQuery(database->title()) : int(KeepQueryDialog::Choice::Empty);
    if (!self) return;
    if (choice == KeepQueryDialog::Cancel) return wish.failed({});
    const bool isKept = choice == KeepQueryDialog::Keep;
    const bool isLeft = !isKept && !wish.mayReplace;
    const bool mayLeave = !isLeft || m_documents->mayLeaveFile();
    if (!self) return;
    if (!mayLeave) return wish.failed({});
    const QByteArray state = isKept ? m_builder->SaveState() : QByteArray();
    BackgroundDatabase* const opened = database.get();
    {
        // One that is kept is the same statement all the time.
        const QScopedValueRollback<bool> loading(m_isLoading, isKept);
        useTables(std::move(database), opened);
    }
    if (!isKept) m_builder->WorkArea->scrollTo({0, 0});
    const bool isSample = !wish.isRemembered;
    m_database = {opened->title(), wish.address.absolute().toUrl(), {}, isSample};
    if (isSample) m_database.address.clear();
    m_tableList->setDatabase(*opened);
    m_address = wish.address;
    offerSampleQueries();
    if (!wish.name.isEmpty()) m_connections.save({wish.name, wish.address});
    if (wish.isRemembered) m_connections.use(wish.address);
    QString missing;
    if (isKept) {
        {
            const QScopedValueRollback<bool> loading(m_isLoading, true);
            missing = m_documents->keepQuery(state);
        }
        statementChanged();
    }
    if (self && !wish.mayReplace) m_documents->databaseReplaced(isKept);
    if (self) wish.opened(isKept);
    if (!self) return;
    // Steps of another database's query would bring back boxes of its tables.
    m_undo->reset();
    if (!missing.isEmpty()) tellError(missing);
}

void MainWindow::useSchema(const QString& path) {
    useTables(SchemaFile::read(path), nullptr);
    m_database = {m_tables->title(), {}, QFileInfo(path).absoluteFilePath()};
}

void MainWindow::openForDocument(
    const DocumentDatabase& database, const std::function<bool()>& mayReplace,
    const std::function<void(bool isOpen, const QString& problem)>& done) {
    try {
        if (!database.schema.isEmpty()) {
            useSchema(database.schema);
            return done(true, {});
        }
        OpeningWish wish;
        wish.address = databaseAddress(database.isSample ? sampleDatabasePath() : database.address);
        wish.isRemembered = !database.isSample;
        wish.mayReplace = mayReplace;
        wish.opened = [done](bool) { done(true, {}); };
        wish.failed = [done](const QString& problem) { done(false, problem); };
        open(wish);
    } catch (const orv::Error& error) {
        done(false, error.Message());
    }
}

// They ask for its tables.
void MainWindow::offerSampleQueries() {
    DatabaseAddress sample = m_address.value_or(DatabaseAddress());
    sample.database = sampleDatabasePlace();
    const bool isSample = m_address && isSameDatabase(*m_address, sample);
    m_sampleQueries->menuAction()->setVisible(isSample);
}

void MainWindow::loadSampleQuery() {
    if (!loadText(sampleQuery())) return;
    m_statement->forgetHistory();
    m_sampleStatement = m_builder->GetSQLStatment();
    m_documents->setUnmodified();
}

// It is a document of its own, which nobody has made.
void MainWindow::openSampleQuery(const QString& statement) {
    const QPointer<MainWindow> self(this);
    if (!m_documents->startAnew() || !self || !loadText(statement) || !self) return;
    m_undo->reset();
    m_statement->forgetHistory();
    m_documents->setUnmodified();
}

// Nobody misses it: it was not made by the person, and the sample database brings it back.
bool MainWindow::showsSampleQuery() const {
    try {
        return m_builder->GetSQLStatment() == m_sampleStatement;
    } catch (const orv::Error&) {
        return false;
    }
}

int MainWindow::askAboutQuery(const QString& database) {
    const QPointer<KeepQueryDialog> dialog = new KeepQueryDialog(database, this);
    const int choice = orv::runDialog(*dialog);
    if (dialog) dialog->deleteLater();
    return choice;
}

void MainWindow::openDropped(const QList<QUrl>& urls) {
    tryTo([&] {
        const QString path = FileDrop::singleFile(urls);
        if (documentKind(path) == DocumentKind::None) return open({databaseAddress(path)});
        m_documents->open(path);
    });
}

void MainWindow::chooseDatabase() {
    const QString path = chooseDatabaseFile(this);
    if (path.isEmpty()) return;
    if (documentKind(path) == DocumentKind::None) {
        openDatabase(path);
    } else {
        m_documents->open(path);
    }
}

void MainWindow::chooseSample() {
    openSample();
}

void MainWindow::connectToDatabase() {
    showConnectionDialog({}, {}, {});
}

// When it fails the dialog comes again as it was, with what is wrong.
void MainWindow::showConnectionDialog(const DatabaseAddress& address, const QString& name,
                                      const QString& problem) {
    const QPointer<MainWindow> self(this);
    const QPointer<ConnectionDialog> dialog = new ConnectionDialog(this);
    if (!address.scheme.isEmpty()) dialog->setAddress(address, name);
    if (!problem.isEmpty()) dialog->setProblem(problem);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    const DatabaseAddress chosen = dialog->address();
    const QString typedName = dialog->typedName();
    dialog->deleteLater();
    if (!isAccepted) return;
    OpeningWish wish{chosen};
    wish.name = typedName;
    wish.failed = [this, chosen, typedName](const QString& sentence) {
        if (!sentence.isEmpty()) showConnectionDialog(chosen, typedName, sentence);
    };
    open(wish);
}

}  // namespace orvquery
