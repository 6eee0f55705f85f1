// SPDX-License-Identifier: MIT
#pragma once

#include "documents/DocumentFile.h"
#include "documents/DocumentLock.h"
#include "documents/OtherKeys.h"
#include "documents/RecentDocuments.h"
#include "documents/RecoveryFolder.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class QMainWindow;
class QMenu;
class TorvQueryBuilder;

namespace orvquery {

class OpenEditor;
class StatementPane;
class TableSource;

/// What a document needs of the window that shows it. The pointers are borrowed.
struct DocumentHost {
    /// How the opening of a database has ended; without a problem a person gave it up.
    using Done = std::function<void(bool isOpen, const QString& problem)>;

    QMainWindow* window = nullptr;
    TorvQueryBuilder* builder = nullptr;
    StatementPane* statement = nullptr;
    std::function<DocumentDatabase()> database;    ///< the open one
    std::function<const TableSource&()> tables;    ///< its tables
    std::function<void()> clear;                   ///< empties diagram, text and rows
    std::function<bool(const QString&)> loadText;  ///< loads a statement, or leaves it as typed
    std::function<void(const QString&)> tell;      ///< one sentence
    std::function<bool()> isBusy;                  ///< whether the query is being replaced
    /// Opens it in place of the open one. Asks, once it is there, whether the query may still be
    /// replaced; when not, or when another opening comes between, Done is not called.
    std::function<void(const DocumentDatabase&, const std::function<bool()>& mayReplace,
                       const Done& done)>
        openDatabase;
};

/// The document of a window: opens and saves it, keeps it safe from crashes and from other windows,
/// and asks before something is lost. The window owns it, and deletes it before the control.
class DocumentController : public QObject {
    Q_OBJECT

public:
    explicit DocumentController(DocumentHost host);
    ~DocumentController() override;

    /// Open, recent, save and save as.
    void addToMenu(QMenu* menu);

    /// Offers what a crash has left; true when some of it is being opened.
    bool offerRecovery();
    /// The database that the document in the file is for; none when it cannot be read.
    [[nodiscard]] static DocumentDatabase databaseIn(const QString& path);

    /// Opens a query or statement file, with its database unless the present one is to stay. What
    /// goes wrong is told. False when it is not going to be shown.
    bool open(const QString& path, bool keepsDatabase = false);
    /// Empties everything for a new query; false when what is there must stay.
    bool startAnew();
    /// False when it was not saved, which was told.
    bool save();
    bool saveAs() { return saveAsKind(DocumentKind::None); }

    /// Asks what is to become of unsaved changes; false when they must stay here.
    [[nodiscard]] bool mayLeave();
    /// The same, but only for those of a file.
    [[nodiscard]] bool mayLeaveFile() { return m_path.isEmpty() || mayLeave(); }
    [[nodiscard]] bool isModified() const;
    /// Empty as long as it has none.
    [[nodiscard]] const QString& path() const { return m_path; }

    /// What it is called without the end of its file's name; empty as long as it has none.
    [[nodiscard]] QString title() const;

    /// The window closes: nothing is left for another start.
    void finish();
    /// The program ends without asking: what is not saved is offered at another start.
    void endAtOnce();

    /// What is shown now is nothing that a person would miss.
    void setUnmodified();
    /// Puts the query on the diagram again, in its state of before another database was opened,
    /// with the columns that its tables have there. What that database lacks, as sentences.
    [[nodiscard]] QString keepQuery(const QByteArray& state);
    /// Another database was opened, with the query or without it.
    void databaseReplaced(bool isQueryKept);
    void showTitle();

    /// Saves for the case of a crash what is not saved otherwise; done by itself a while after a
    /// change.
    void autosave();
    [[nodiscard]] int autosaveInterval() const { return m_clock.interval(); }
    void setAutosaveInterval(int ms) { m_clock.setInterval(ms); }
    [[nodiscard]] const QString& recoveryPath() const { return m_recovery->path(); }

Q_SIGNALS:
    /// Another document is shown.
    void shown();

private:
    class Showing;
    struct Opened;
    void buildRecent(QMenu* menu);
    void chooseFile();
    [[nodiscard]] bool read(Opened& opened);
    [[nodiscard]] bool understand(Opened& opened);
    [[nodiscard]] bool lock(Opened& opened);
    void openWithDatabase(const std::shared_ptr<Opened>& opened, bool keepsDatabase);
    [[nodiscard]] bool mayReplaceBy(Opened& opened);
    void show(const Opened& opened, bool hasDatabase, const QString& problem);
    [[nodiscard]] QStringList restore(const Opened& opened, bool hasDatabase);
    [[nodiscard]] QStringList restoreQuery(const QueryDocument& document, bool refreshesColumns);
    void tellMissing(const Opened& opened, const QStringList& missing, bool hasDatabase,
                     const QString& problem);
    [[nodiscard]] bool recover(LeftCopy left);
    void rememberOriginal();
    enum class Way { None, ThisFile, QueryFile };
    bool saveAsKind(DocumentKind suggested);
    [[nodiscard]] bool write();
    [[nodiscard]] bool writeContent(const QString& statement);
    [[nodiscard]] Way chooseStatement(QString& statement);
    [[nodiscard]] Way agreeToLosses(const QString& statement);
    [[nodiscard]] bool mayOverwrite(bool& isElsewhere);
    [[nodiscard]] QString usualFolder() const;
    [[nodiscard]] QString chosenPath(DocumentKind suggested);
    [[nodiscard]] int ask(const QString& title, const QString& question,
                          const std::vector<std::pair<QString, const char*>>& answers);
    [[nodiscard]] QString name() const;
    [[nodiscard]] QueryDocument document() const;
    [[nodiscard]] QByteArray snapshot() const;
    [[nodiscard]] bool isEmpty() const;
    void becomeUntitled();
    void changed();

    DocumentHost m_host;
    std::unique_ptr<OpenEditor> m_editor;
    QString m_path;
    DocumentDatabase m_database;  ///< of the document, though it may not be open
    QueryDocument m_read;         ///< as it was opened
    OtherKeys m_others;
    QByteArray m_mark;    ///< of the file when it was read or saved
    QString m_lineBreak;  ///< of a statement file
    /// The text of a statement file, as long as the window has not written it.
    struct {
        QString path;
        QString text;
        bool isInPane = false;  ///< it was not loaded: the person has had it as it is
    } m_original;
    std::optional<QString> m_savedStatement;  ///< of the diagram, when it was opened or saved
    std::optional<QByteArray>
        m_saved;  ///< what is in the file; nothing when it is worth no question
    std::shared_ptr<DocumentLock> m_lock;
    bool m_isReadOnly = false;
    bool m_isShowing = false;
    bool m_hasToldStatement = false;
    bool m_hasToldAutosave = false;
    RecentDocuments m_recent;
    RecoveryFolder m_folder;
    std::unique_ptr<RecoveryFile> m_recovery;
    QTimer m_clock;
};

}  // namespace orvquery
