// SPDX-License-Identifier: MIT
// The document of a window: how it is opened, kept for the case of a crash, and left.
#include "window/DocumentController.h"

#include "core/Error.h"
#include "data/ProcessName.h"
#include "documents/RefreshedQuery.h"
#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/TableSource.h"
#include "toolkit/Services.h"
#include "window/ChoiceDialog.h"
#include "window/OpenEditor.h"
#include "window/RecoveryDialog.h"
#include "window/StatementPane.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QScopedValueRollback>

namespace orvquery {

namespace {

constexpr int autosaveIntervalMs = 5000;
constexpr int firstAnswer = 2;  // of a ChoiceDialog

// Names of a query are written as they are: those that only the present database reserves must not
// get quotes, which links and conditions do not have.
void restoreState(TorvQueryBuilder& builder, const QueryDocument& document) {
    const QScopedValueRollback<QStringList> words(lReservedWords(), QStringList());
    builder.RestoreState(document.state());
}

// What the program makes of the query when nobody changes it. Raises orv::Error when the control
// would not take it, which must be known before anything is given up for it.
QJsonObject tried(const TorvQueryBuilder& builder, const QueryDocument& document) {
    TorvQueryBuilder scratch;
    scratch.setOperators(*builder.Operators);
    scratch.setKeepMeaning(builder.KeepMeaning());
    restoreState(scratch, document);
    QueryDocument understood;
    understood.setState(scratch.SaveState());
    return understood.query;
}

QString quoted(const QStringList& names) {
    constexpr qsizetype mostNames = 5;
    const QString more = names.size() > mostNames ? QStringLiteral(", ...") : QString();
    return names.mid(0, mostNames).join(QStringLiteral(", ")) + more;
}

}  // namespace

/// A document on its way into the window.
struct DocumentController::Opened {
    QString path;  ///< empty for a copy
    OpenedFile file;
    OtherKeys others;
    QString name;  ///< for messages
    std::shared_ptr<DocumentLock> lock = nullptr;
    bool isReadOnly = false;
    bool isUnsaved = false;
    QByteArray before = {};  ///< what the person agreed to give up for it
    std::shared_ptr<LeftCopy> left = nullptr;
    QString unfinished = {};  ///< what was being typed in the diagram
    QString source = {};      ///< the file that it is read from
    QString refusal = {};     ///< why it is there as text alone
};

/// For as long as it lives a document is on its way into the window, which may go meanwhile.
class DocumentController::Showing {
public:
    explicit Showing(DocumentController& controller)
        : m_controller(&controller), m_before(std::exchange(controller.m_isShowing, true)) {}
    ~Showing() {
        if (m_controller) m_controller->m_isShowing = m_before;
    }
    Showing(const Showing&) = delete;
    Showing& operator=(const Showing&) = delete;

private:
    QPointer<DocumentController> m_controller;
    bool m_before;
};

DocumentController::DocumentController(DocumentHost host)
    : QObject(host.window),
      m_host(std::move(host)),
      m_editor(std::make_unique<OpenEditor>(*m_host.builder)),
      m_recovery(m_folder.newFile()) {
    m_clock.setSingleShot(true);
    m_clock.setInterval(autosaveIntervalMs);
    connect(&m_clock, &QTimer::timeout, this, [this] { orv::guarded([&] { autosave(); }); });
    const auto changed = [this] { orv::guarded([&] { this->changed(); }); };
    connect(m_host.builder, &TorvQueryBuilder::StatementChanged, this, changed);
    connect(m_host.builder, &TorvQueryBuilder::LayoutChanged, this, changed);
    connect(m_host.statement, &StatementPane::contentChanged, this, changed);
    connect(m_editor.get(), &OpenEditor::edited, this, changed);
}

DocumentController::~DocumentController() = default;

void DocumentController::addToMenu(QMenu* menu) {
    const auto add = [&](const QString& text, const QKeySequence& shortcut, auto command) {
        QAction* action = menu->addAction(
            text, this, [this, command] { orv::guarded([&] { (this->*command)(); }); });
        action->setShortcut(shortcut);
        return action;
    };
    add(tr("Open q&uery..."), QKeySequence(QStringLiteral("Ctrl+Alt+O")),
        &DocumentController::chooseFile)
        ->setObjectName(QStringLiteral("openQuery"));
    QMenu* recent = menu->addMenu(tr("R&ecent queries"));
    recent->setObjectName(QStringLiteral("recentQueries"));
    recent->setToolTipsVisible(true);
    connect(recent, &QMenu::aboutToShow, this,
            [this, recent] { orv::guarded([&] { buildRecent(recent); }); });
    add(tr("S&ave"), QKeySequence::Save, &DocumentController::save)
        ->setObjectName(QStringLiteral("save"));
    add(tr("Sa&ve as..."), QKeySequence(QStringLiteral("Ctrl+Shift+S")),
        &DocumentController::saveAs)
        ->setObjectName(QStringLiteral("saveAs"));
}

// Files of one name are told apart by their folders.
void DocumentController::buildRecent(QMenu* menu) {
    menu->clear();
    const QStringList paths = m_recent.paths();
    bool hasMissing = false;
    for (const QString& path : paths) {
        const QFileInfo info(path);
        const QString folder = QDir::toNativeSeparators(info.absolutePath());
        QString text = tr("%1 in %2").arg(info.fileName(), folder);
        if (!info.exists()) text = tr("%1 (not found)").arg(text);
        hasMissing = hasMissing || !info.exists();
        QAction* action = menu->addAction(text.replace(u'&', QStringLiteral("&&")), this,
                                          [this, path] { orv::guarded([&] { open(path); }); });
        action->setToolTip(QDir::toNativeSeparators(path));
        action->setEnabled(info.exists());
    }
    if (paths.isEmpty()) {
        menu->addAction(tr("Nothing was opened yet"))->setEnabled(false);
        return;
    }
    menu->addSeparator();
    if (hasMissing) {
        menu->addAction(tr("Forget those &not found"), this, [this] { m_recent.forgetMissing(); });
    }
    menu->addAction(tr("&Forget all opened"), this, [this] { m_recent.forgetAll(); });
}

int DocumentController::ask(const QString& title, const QString& question,
                            const std::vector<std::pair<QString, const char*>>& answers) {
    std::vector<ChoiceDialog::Answer> buttons;
    buttons.reserve(answers.size());
    for (const auto& [text, name] : answers) {
        buttons.push_back({text, name, firstAnswer + int(buttons.size())});
    }
    const QPointer<ChoiceDialog> dialog = new ChoiceDialog(title, question, buttons, m_host.window);
    const int result = orv::runDialog(*dialog);
    if (dialog) dialog->deleteLater();
    return result - firstAnswer;  // below 0: cancelled
}

void DocumentController::chooseFile() {
    const QPointer<DocumentController> self(this);
    const QPointer<QFileDialog> dialog = new QFileDialog(m_host.window, tr("Open query"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("Queries (*.orvq *.sql)"), tr("All files (*)")});
    dialog->setDirectory(usualFolder());
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    dialog->deleteLater();
    const QStringList files = dialog->selectedFiles();
    if (isAccepted && !files.isEmpty()) open(files.front());
}

DocumentDatabase DocumentController::databaseIn(const QString& path) {
    try {
        return openFile(path).document.database;
    } catch (const orv::Error&) {
        return {};
    }
}

bool DocumentController::open(const QString& path, bool keepsDatabase) {
    const QPointer<DocumentController> self(this);
    m_host.builder->CommitPendingEdits();
    const auto opened = std::make_shared<Opened>();
    opened->source = QFileInfo(path).absoluteFilePath();
    opened->name = QFileInfo(path).fileName();
    if (!read(*opened) || !self || !mayLeave() || !self) return false;
    // Leaving may have saved that very file.
    if (!read(*opened) || !self || !lock(*opened) || !self) return false;
    openWithDatabase(opened, keepsDatabase);
    return true;
}

// False when it cannot be, which was told.
bool DocumentController::read(Opened& opened) {
    opened.path = opened.source;
    opened.refusal.clear();
    try {
        opened.file = openFile(opened.path);
    } catch (const orv::Error& error) {
        m_host.tell(error.Message());
        return false;
    }
    return understand(opened);
}

// What the control does not take is opened as text, which is then no document of that name.
bool DocumentController::understand(Opened& opened) {
    QueryDocument& document = opened.file.document;
    try {
        opened.others = OtherKeys(document.query, tried(*m_host.builder, document));
        return true;
    } catch (const orv::Error& error) {
        QStringList texts = {document.statement, document.typed.value_or(QString())};
        texts.removeAll(QString());
        if (texts.isEmpty()) {
            m_host.tell(tr("%1 cannot be opened: %2").arg(opened.name, error.Message()));
            return false;
        }
        opened.refusal = tr("%1 cannot be shown in the diagram, and its statement is there as "
                            "text: %2")
                             .arg(opened.name, error.Message());
        QueryDocument asText;
        asText.database = document.database;
        asText.typed = texts.join(QStringLiteral("\n\n"));
        document = asText;
        opened.others = {};
        opened.path.clear();
        return true;
    }
}

// False when a person would rather not open it, as it is open elsewhere.
bool DocumentController::lock(Opened& opened) {
    if (opened.path.isEmpty() || opened.isReadOnly) return true;
    if (m_lock && DocumentLock::lockPath(opened.path) == DocumentLock::lockPath(m_lock->path())) {
        opened.lock = m_lock;
        return true;
    }
    opened.lock = std::make_shared<DocumentLock>(opened.path);
    if (!opened.lock->isElsewhere()) return true;
    const int answer =
        ask(tr("Open %1").arg(opened.name),
            tr("%1 is opened elsewhere (%2). A copy of it can be changed here, or it can be "
               "looked at as it is.")
                .arg(opened.name, opened.lock->holder()),
            {{tr("Open a &copy"), "openCopy"}, {tr("Open &read only"), "openReadOnly"}});
    opened.lock.reset();
    opened.isReadOnly = answer == 1;
    opened.isUnsaved = answer == 0;
    if (answer == 0) opened.path.clear();
    return answer >= 0;
}

void DocumentController::openWithDatabase(const std::shared_ptr<Opened>& opened,
                                          bool keepsDatabase) {
    const DocumentDatabase& wanted = opened->file.document.database;
    if (keepsDatabase || wanted.isNone() || wanted.isSame(m_host.database())) {
        return show(*opened, true, {});
    }
    // Meanwhile the window can be used.
    opened->before = snapshot();
    const QPointer<DocumentController> self(this);
    m_host.openDatabase(
        wanted, [self, opened] { return self && self->mayReplaceBy(*opened); },
        [self, opened](bool isOpen, const QString& problem) {
            // The call may not outlive its end.
            // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
            const std::shared_ptr<Opened> kept = opened;
            if (self) self->show(*kept, isOpen, problem);
        });
}

// Asked once its database is there.
bool DocumentController::mayReplaceBy(Opened& opened) {
    if (snapshot() == opened.before) return true;
    const QPointer<DocumentController> self(this);
    if (!mayLeave() || !self) return false;
    // A copy is not what is in a file.
    return opened.path.isEmpty() || opened.left || (read(opened) && self);
}

void DocumentController::show(const Opened& opened, bool hasDatabase, const QString& problem) {
    const QPointer<DocumentController> self(this);
    m_clock.stop();
    QStringList missing;
    {
        const Showing showing(*this);
        m_recovery->remove();
        m_read = opened.file.document;
        m_others = opened.others;
        m_path = opened.path;
        m_mark = opened.file.mark;
        m_lineBreak = opened.file.lineBreak;
        m_lock = opened.lock;
        m_isReadOnly = opened.isReadOnly;
        m_hasToldStatement = false;
        m_database = m_read.database.isNone() ? m_host.database() : m_read.database;
        missing = restore(opened, hasDatabase);
    }
    // Loading may ask or tell the person something, who may close the window then.
    if (!self) return;
    m_saved = opened.isUnsaved ? QByteArray() : snapshot();
    m_savedStatement.reset();
    if (!opened.isUnsaved) m_savedStatement = m_host.statement->statement();
    rememberOriginal();
    if (!m_path.isEmpty()) m_recent.use(m_path);
    showTitle();
    changed();
    if (opened.left) {
        autosave();
        opened.left->discard();
    }
    Q_EMIT shown();
    if (self) tellMissing(opened, missing, hasDatabase, problem);
}

// What the present database lacks, as sentences. The controller may be gone afterwards.
QStringList DocumentController::restore(const Opened& opened, bool hasDatabase) {
    const QPointer<DocumentController> self(this);
    const DocumentHost host = m_host;  // it has to outlive its own calls
    host.clear();
    QStringList missing;
    if (!self) return missing;
    const QueryDocument& document = opened.file.document;
    if (!document.query.isEmpty()) {
        // Tables of the same names in a database that it is not for say nothing about its own.
        missing = restoreQuery(document, hasDatabase);
    } else if (!document.statement.isEmpty()) {
        host.loadText(document.statement);
    }
    if (self && document.typed) m_host.statement->setTyped(*document.typed);
    return missing;
}

QStringList DocumentController::restoreQuery(const QueryDocument& document, bool refreshesColumns) {
    const RefreshedQuery refreshed = orvquery::refreshed(document.query, m_host.tables());
    QueryDocument shown = document;
    if (refreshesColumns) shown.query = refreshed.query;
    QStringList sentences;
    const QPointer<DocumentController> self(this);
    try {
        restoreState(*m_host.builder, shown);
    } catch (const orv::Error& error) {
        sentences += error.Message();
        if (self) restoreState(*m_host.builder, document);
    }
    if (!self) return sentences;
    const QString present = m_host.database().name;
    if (!refreshed.missingTables.isEmpty() && !present.isEmpty()) {
        sentences += tr("%1 has no %2; the query keeps what it knows of them.")
                         .arg(present, quoted(refreshed.missingTables));
    }
    if (refreshesColumns && !refreshed.missingColumns.isEmpty()) {
        const QString sentence = refreshed.missingColumns.size() == 1
                                     ? tr("%1 has no column %2; the query keeps it.")
                                     : tr("%1 has no columns %2; the query keeps them.");
        sentences += sentence.arg(present, quoted(refreshed.missingColumns));
    }
    return sentences + refreshed.problems;
}

void DocumentController::tellMissing(const Opened& opened, const QStringList& missing,
                                     bool hasDatabase, const QString& problem) {
    QStringList sentences;
    if (!opened.refusal.isEmpty()) sentences += opened.refusal;
    if (!hasDatabase) {
        const QString wanted =
            m_read.database.name.isEmpty() ? m_read.database.address : m_read.database.name;
        sentences += tr("The query is shown, but its database %1 is not open.").arg(wanted);
        if (!problem.isEmpty()) sentences += problem;
    }
    sentences += missing;
    if (!opened.unfinished.isEmpty()) {
        sentences += tr("\"%1\" was being typed in the diagram and is no part of the query yet.")
                         .arg(opened.unfinished);
    }
    if (!sentences.isEmpty()) m_host.tell(sentences.join(u' '));
}

bool DocumentController::offerRecovery() {
    const QPointer<DocumentController> self(this);
    QStringList unreadable;
    const auto left = std::make_shared<std::vector<LeftCopy>>(m_folder.left(&unreadable));
    unreadable = m_folder.untold(unreadable);
    if (!unreadable.isEmpty()) {
        m_host.tell(tr("What was kept of a query when orvquery ended could not be read; it is "
                       "kept in %1: %2.")
                        .arg(QDir::toNativeSeparators(m_folder.path()), quoted(unreadable)));
    }
    if (!self || left->empty()) return false;
    std::vector<RecoveryDialog::Line> lines;
    for (const LeftCopy& each : *left) {
        const RecoveryCopy& copy = each.copy();
        const QString name = copy.path.isEmpty() ? tr("Untitled") : QFileInfo(copy.path).fileName();
        lines.push_back({name, copy.document.database.name, copy.time, copy.path});
    }
    const QPointer<RecoveryDialog> dialog = new RecoveryDialog(lines, m_host.window);
    connect(dialog, &RecoveryDialog::discarded, dialog,
            [left](int line) { (*left)[std::size_t(line)].discard(); });
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return false;
    const int chosen = dialog->chosen();
    dialog->deleteLater();
    if (!isAccepted || chosen < 0) return false;
    return recover(std::move((*left)[std::size_t(chosen)]));
}

bool DocumentController::recover(LeftCopy left) {
    const auto opened = std::make_shared<Opened>();
    const RecoveryCopy& copy = left.copy();
    opened->path = copy.path;
    opened->name = copy.path.isEmpty() ? tr("Untitled") : QFileInfo(copy.path).fileName();
    opened->file.document = copy.document;
    opened->file.mark = copy.mark;
    opened->file.lineBreak = copy.lineBreak;
    opened->unfinished = copy.unfinished;
    opened->isReadOnly = copy.isReadOnly;
    opened->isUnsaved = true;
    const QPointer<DocumentController> self(this);
    if (!understand(*opened) || !self || !lock(*opened) || !self) return false;
    opened->isUnsaved = true;
    // What is there as text alone is less than what was kept.
    if (opened->refusal.isEmpty()) opened->left = std::make_shared<LeftCopy>(std::move(left));
    openWithDatabase(opened, false);
    return true;
}

bool DocumentController::isEmpty() const {
    return m_host.builder->WorkArea->TablesCount() == 0 && !m_host.statement->isEdited();
}

// Where the boxes stand is not kept in a statement file, and is no change of it.
QByteArray DocumentController::snapshot() const {
    const StatementPane& statement = *m_host.statement;
    const bool hasText = statement.problem().isEmpty();
    if (documentKind(m_path) == DocumentKind::Statement && hasText) {
        // Beside a text that was typed the diagram may change as well.
        const QString diagram = statement.isEdited() ? QChar() + statement.statement() : QString();
        return (statement.text() + diagram).toUtf8();
    }
    QByteArray result = orv::editedState(*m_host.builder);
    if (statement.isEdited()) result += '\0' + statement.text().toUtf8();
    if (!m_path.isEmpty())
        result += '\0' + m_database.address.toUtf8() + m_database.schema.toUtf8();
    return result;
}

bool DocumentController::isModified() const {
    if (m_path.isEmpty() && isEmpty()) return false;
    return !m_saved || *m_saved != snapshot();
}

void DocumentController::setUnmodified() {
    m_saved = snapshot();
    m_savedStatement = m_host.statement->statement();
    changed();
}

void DocumentController::changed() {
    if (m_isShowing) return;
    const bool isModified = this->isModified();
    m_host.window->setWindowModified(isModified);
    if (!isModified && m_editor->text().isEmpty()) {
        m_clock.stop();
        m_recovery->remove();
    } else if (!m_clock.isActive()) {
        m_clock.start();
    }
}

QString DocumentController::name() const {
    return m_path.isEmpty() ? tr("Untitled") : QFileInfo(m_path).fileName();
}

QString DocumentController::title() const {
    return QFileInfo(m_path).completeBaseName();
}

void DocumentController::showTitle() {
    QString title = name() + QStringLiteral("[*]");
    if (m_isReadOnly) title = tr("%1 (read only)").arg(title);
    const QString database = m_host.tables().title();
    if (!database.isEmpty()) title = tr("%1 - %2").arg(title, database);
    m_host.window->setWindowTitle(tr("%1 - orvquery").arg(title));
}

QString DocumentController::keepQuery(const QByteArray& state) {
    const Showing showing(*this);
    QueryDocument kept;
    kept.setState(state);
    return restoreQuery(kept, true).join(u' ');
}

void DocumentController::databaseReplaced(bool isQueryKept) {
    if (m_isShowing) return;
    if (!isQueryKept) becomeUntitled();
    m_database = m_host.database();
    showTitle();
    changed();
}

void DocumentController::becomeUntitled() {
    m_recovery->remove();
    m_path.clear();
    m_read = {};
    m_others = {};
    m_mark.clear();
    m_lineBreak.clear();
    m_original = {};
    m_saved.reset();
    m_savedStatement.reset();
    m_lock.reset();
    m_isReadOnly = false;
    m_hasToldStatement = false;
}

bool DocumentController::startAnew() {
    const QPointer<DocumentController> self(this);
    m_host.builder->CommitPendingEdits();
    if (!mayLeave() || !self) return false;
    {
        const Showing showing(*this);
        becomeUntitled();
        m_database = m_host.database();
        m_host.clear();
    }
    if (!self) return false;
    showTitle();
    changed();
    Q_EMIT shown();
    return !self.isNull();
}

bool DocumentController::mayLeave() {
    const QPointer<DocumentController> self(this);
    m_host.builder->CommitPendingEdits();
    if (!isModified()) return true;
    const int answer =
        ask(tr("Unsaved changes"), tr("%1 has changes that are not saved. Save them?").arg(name()),
            {{tr("&Save"), "saveChanges"}, {tr("&Discard"), "discardChanges"}});
    if (!self || answer < 0) return false;
    if (answer == 0) return save();
    return true;
}

QueryDocument DocumentController::document() const {
    QueryDocument result = m_read;
    result.database = m_database.isNone() ? m_host.database() : m_database;
    result.setState(m_host.builder->SaveState());
    result.query = m_others.addedTo(result.query);
    const StatementPane& statement = *m_host.statement;
    result.typed = statement.isEdited() ? std::optional<QString>(statement.text()) : std::nullopt;
    return result;
}

void DocumentController::finish() {
    m_clock.stop();
    m_recovery->remove();
    m_lock.reset();
}

void DocumentController::endAtOnce() {
    m_host.builder->CommitPendingEdits();
    autosave();
    m_lock.reset();
}

void DocumentController::autosave() {
    // Half a query is none.
    if (m_isShowing || m_host.isBusy()) return m_clock.start();
    m_clock.stop();
    const QString unfinished = m_editor->text();
    if (!isModified() && unfinished.isEmpty()) return m_recovery->remove();
    try {
        m_recovery->save({document(), m_path, m_mark, unfinished, m_lineBreak, m_isReadOnly});
        m_hasToldAutosave = false;
    } catch (const orv::Error& error) {
        m_clock.start();  // there may be room again
        if (std::exchange(m_hasToldAutosave, true)) return;
        m_host.tell(tr("The query cannot be kept for the case of a crash. ") + error.Message());
    }
}

}  // namespace orvquery
