// SPDX-License-Identifier: MIT
// The document of a window: how it is saved, and what is asked before something is lost by that.
#include "core/Error.h"
#include "documents/StatementLosses.h"
#include "querybuilder/ORVQDWindow.h"
#include "text/EditorText.h"
#include "text/TextFile.h"
#include "toolkit/Services.h"
#include "window/DocumentController.h"
#include "window/SaveDialog.h"
#include "window/StatementPane.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QFileInfo>
#include <QMainWindow>
#include <QPointer>
#include <QStandardPaths>

#include <utility>

namespace orvquery {

bool DocumentController::save() {
    m_host.builder->CommitPendingEdits();
    if (m_path.isEmpty() || m_isReadOnly) return saveAs();
    // It may say the same in other words, with comments.
    const bool isStatement = documentKind(m_path) == DocumentKind::Statement;
    if (isStatement && !isModified() && QFileInfo::exists(m_path)) return true;
    bool isElsewhere = false;
    if (!mayOverwrite(isElsewhere)) return isElsewhere && saveAs();
    return write();
}

// Another program may have saved it since.
bool DocumentController::mayOverwrite(bool& isElsewhere) {
    if (m_mark.isEmpty() || !QFileInfo::exists(m_path) || markOfFile(m_path) == m_mark) return true;
    const QPointer<DocumentController> self(this);
    const int answer = ask(tr("Save %1").arg(name()),
                           tr("%1 was changed by another program since it was opened here. "
                              "Saving it would lose those changes.")
                               .arg(name()),
                           {{tr("Save &as..."), "saveElsewhere"}, {tr("&Overwrite"), "overwrite"}});
    if (!self) return false;
    isElsewhere = answer == 0;
    return answer == 1;
}

// What is replaced by the first saving; of a recovered query the file tells it, too.
void DocumentController::rememberOriginal() {
    m_original = {};
    if (documentKind(m_path) != DocumentKind::Statement || markOfFile(m_path) != m_mark) return;
    try {
        const QString text = readTextFile(m_path);
        const StatementPane& pane = *m_host.statement;
        const bool isInPane = pane.isEdited() && pane.text() == withSingleBreaks(text);
        m_original = {m_path, text, isInPane};
    } catch (const orv::Error&) {
        m_original = {};  // there is nothing to lose
    }
}

// A statement file can hold one text.
DocumentController::Way DocumentController::chooseStatement(QString& statement) {
    const StatementPane& pane = *m_host.statement;
    statement = pane.text();
    const QString diagram = pane.statement();
    if (m_host.builder->WorkArea->TablesCount() == 0) return Way::ThisFile;
    if (!pane.isEdited() && diagram.isEmpty()) {
        const int answer =
            ask(tr("Save %1").arg(name()),
                tr("The query has no statement that %1 could hold: %2").arg(name(), pane.problem()),
                {{tr("Save as a &query file..."), "saveAsQuery"}});
        return answer == 0 ? Way::QueryFile : Way::None;
    }
    if (!pane.isEdited() || m_savedStatement == diagram) return Way::ThisFile;
    std::vector<std::pair<QString, const char*>> answers = {
        {tr("Save as a &query file..."), "saveAsQuery"}, {tr("Save the &text"), "saveText"}};
    if (!diagram.isEmpty()) answers.emplace_back(tr("Save the &diagram"), "saveDiagram");
    const int answer = ask(tr("Save %1").arg(name()),
                           tr("%1 can hold either the text that was typed or the statement of the "
                              "diagram, which has changed as well. A query file holds both.")
                               .arg(name()),
                           answers);
    if (answer == 2) statement = diagram;
    return answer < 0 ? Way::None : answer == 0 ? Way::QueryFile : Way::ThisFile;
}

DocumentController::Way DocumentController::agreeToLosses(const QString& statement) {
    const StatementPane& pane = *m_host.statement;
    const bool isTyped = pane.isEdited() && statement == pane.text();
    if (m_path != m_original.path || (isTyped && m_original.isInPane)) return Way::ThisFile;
    orv::Findings findings = m_host.builder->LoadReport();
    const QString written = statement.simplified();
    if (isTyped) {
        std::erase_if(findings, [&](const orv::Finding& finding) {
            return written.contains(finding.text.simplified());
        });
    }
    const bool isMariadb = m_host.database().address.startsWith(QStringLiteral("mariadb:"));
    const QString losses = statementLosses(m_original.text, statement, findings,
                                           isMariadb ? SqlRules::Mariadb : SqlRules::Postgresql);
    if (losses.isEmpty()) return Way::ThisFile;
    const int answer =
        ask(tr("Save %1").arg(name()),
            tr("Saving %1 would lose %2. A query file of its own leaves it as it "
               "is.")
                .arg(name(), losses),
            {{tr("Save as a &query file..."), "saveAsQuery"}, {tr("&Save anyway"), "saveAnyway"}});
    return answer < 0 ? Way::None : answer == 0 ? Way::QueryFile : Way::ThisFile;
}

bool DocumentController::write() {
    QString statement;
    if (documentKind(m_path) == DocumentKind::Statement) {
        const QPointer<DocumentController> self(this);
        Way way = chooseStatement(statement);
        if (self && way == Way::ThisFile) way = agreeToLosses(statement);
        if (!self || way == Way::None) return false;
        if (way == Way::QueryFile) return saveAsKind(DocumentKind::Query);
    }
    return writeContent(statement);
}

bool DocumentController::writeContent(const QString& statement) {
    try {
        if (documentKind(m_path) == DocumentKind::Statement) {
            const StatementPane& pane = *m_host.statement;
            const bool isTyped = pane.isEdited() && statement == pane.text();
            m_mark = saveFile(m_path, statementText(statement, m_lineBreak, isTyped));
        } else {
            QueryDocument written = document();
            written.database = written.database.relativeTo(QFileInfo(m_path).absolutePath());
            m_mark = saveFile(m_path, documentText(written));
        }
    } catch (const orv::Error& error) {
        const int answer =
            ask(tr("Save %1").arg(name()), error.Message(), {{tr("Save &as..."), "saveElsewhere"}});
        return answer == 0 && saveAs();
    }
    m_original = {};
    m_recent.use(m_path);
    setUnmodified();
    showTitle();
    if (documentKind(m_path) == DocumentKind::Statement && !m_hasToldStatement) {
        m_hasToldStatement = true;
        m_host.tell(tr("%1 holds the statement alone: where the boxes stand is not kept in a .sql "
                       "file, but in a .orvq file.")
                        .arg(name()));
    }
    return true;
}

QString DocumentController::usualFolder() const {
    const QStringList recent = m_recent.paths();
    const QString path = m_path.isEmpty() && !recent.isEmpty() ? recent.front() : m_path;
    const QString folder = QFileInfo(path).absolutePath();
    const bool isUsable = !path.isEmpty() && QFileInfo(folder).isDir();
    return isUsable ? folder : QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

QString DocumentController::chosenPath(DocumentKind suggested) {
    const QPointer<DocumentController> self(this);
    const QPointer<SaveDialog> dialog = new SaveDialog(
        tr("Save query as"), {tr("Query with its layout (*.orvq)"), tr("Statement alone (*.sql)")},
        [](const QString& path) { return documentKind(path) != DocumentKind::None; },
        m_host.window);
    if (suggested == DocumentKind::Statement) {
        dialog->selectNameFilter(dialog->nameFilters().last());
    }
    dialog->setDirectory(usualFolder());
    dialog->propose(m_path.isEmpty() ? tr("query") : QFileInfo(m_path).completeBaseName());
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return {};
    dialog->deleteLater();
    const QString file = dialog->file();
    return isAccepted && !file.isEmpty() ? QFileInfo(file).absoluteFilePath() : QString();
}

// Without a suggestion it is a file of the same kind.
bool DocumentController::saveAsKind(DocumentKind suggested) {
    const QPointer<DocumentController> self(this);
    m_host.builder->CommitPendingEdits();
    const QString path =
        chosenPath(suggested == DocumentKind::None ? documentKind(m_path) : suggested);
    if (!self || path.isEmpty()) return false;
    if (documentKind(path) == DocumentKind::None) {
        m_host.tell(tr("A query is saved into a file named .orvq or .sql, not \"%1\".")
                        .arg(QFileInfo(path).fileName()));
        return false;
    }
    std::shared_ptr<DocumentLock> lock = m_lock;
    if (!lock || DocumentLock::lockPath(path) != DocumentLock::lockPath(lock->path())) {
        lock = std::make_shared<DocumentLock>(path);
    }
    if (lock->isElsewhere()) {
        m_host.tell(tr("%1 is opened elsewhere (%2); choose another name.")
                        .arg(QFileInfo(path).fileName(), lock->holder()));
        return false;
    }
    const QString pathBefore = std::exchange(m_path, path);
    const bool wasReadOnly = std::exchange(m_isReadOnly, false);
    const std::shared_ptr<DocumentLock> lockBefore = std::exchange(m_lock, lock);
    if (write()) return true;
    if (!self) return false;
    m_path = pathBefore;
    m_isReadOnly = wasReadOnly;
    m_lock = lockBefore;
    return false;
}

}  // namespace orvquery
