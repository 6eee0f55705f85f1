// SPDX-License-Identifier: MIT
#pragma once

#include "batch/Options.h"
#include "connections/SavedConnections.h"
#include "database/DatabaseAddress.h"
#include "documents/QueryDocument.h"
#include "parser/ORVQDFindings.h"
#include "tables/TableSource.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QSplitter;
class TorvQDListItem;
class TorvQDTable;
class TorvQueryBuilder;

namespace orvquery {

class BackgroundDatabase;
class DatabaseOpener;
class DocumentController;
class JoinAssistant;
class KeyboardMap;
class LoadedTexts;
class PictureActions;
class RecentMenu;
class QueryComparer;
class ResultPane;
class RunController;
class SampleMenu;
class StatementPane;
class SchemaBrowser;
class UndoActions;
class WhyNoRows;
class WordsPanel;

/// The program's window: the tables of a database, the control, its statement as text, and the rows
/// of the statement.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// Opens what the command line names, or the sample database with a query to begin with. What
    /// goes wrong is told in a message box; the window can be used all the same.
    void begin(const Options& options);

    /// Opens a database in place of the present one, and asks what is to become of the query on the
    /// diagram. The window can be used until that has ended, which this waits for. When it cannot
    /// be opened, a message box says so and all stays as it was; false then, also when a person
    /// gave it up. Of the present one itself the list of tables is read anew, and all else stays.
    bool openDatabase(const QString& fileOrAddress);

    /// Opens the sample database, as openDatabase does, with a query to begin with.
    bool openSample();

    /// The query file of the window.
    [[nodiscard]] DocumentController& documents() { return *m_documents; }

    /// Replaces how databases are opened.
    [[nodiscard]] DatabaseOpener& opener() { return *m_opener; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildPanes();
    void buildActions();
    void buildMenus();
    void buildDiagramMenu();
    QAction* addAction(const char* icon, const QString& text, const QKeySequence& shortcut,
                       void (MainWindow::*slot)());
    void restoreLayout();
    void saveLayout() const;

    /// One wish to open a database, and how it goes on.
    struct OpeningWish {
        DatabaseAddress address;
        bool isRemembered = true;
        QString name = {};  ///< under which it is saved once it is open; empty for none
        std::function<void(bool isQueryKept)> opened = [](bool) {};
        std::function<void(const QString& problem)> failed = {};  ///< tells, when there is none
        std::function<bool()> mayReplace = {};                    ///< asked in place of the person
    };

    void buildDocuments();
    void openForDocument(const DocumentDatabase& database, const std::function<bool()>& mayReplace,
                         const std::function<void(bool isOpen, const QString& problem)>& done);
    void tellNotOpened(const Options& options);
    void buildOpening();
    void open(const OpeningWish& wish);
    [[nodiscard]] bool isPresent(const DatabaseAddress& address) const;
    void reopen(const OpeningWish& wish);
    void waitFor(int opening);
    void takeDatabase(std::unique_ptr<BackgroundDatabase> database, const OpeningWish& wish);
    void useSchema(const QString& path);
    void loadSampleQuery();
    void openSampleQuery(const QString& statement);
    void offerSampleQueries();
    [[nodiscard]] bool showsSampleQuery() const;
    [[nodiscard]] int askAboutQuery(const QString& database);
    void openDropped(const QList<QUrl>& urls);
    void chooseDatabase();
    void chooseSample();
    void connectToDatabase();
    void showConnectionDialog(const DatabaseAddress& address, const QString& name,
                              const QString& problem);
    void loadStatement();
    void startAnew();
    void loadAnyway();
    void clearAll();
    void modifyOperators();
    void useDefaultOperators();
    void quit();
    void showKeyboardMap();
    void showAbout();

    void useTables(std::unique_ptr<TableSource> tables, BackgroundDatabase* database);
    void addTableToDiagram(const TableName& name);
    void enterParameter(TorvQDTable* box, TorvQDListItem* row);
    bool loadText(const QString& text);
    [[nodiscard]] bool isAgreedTo(const QString& text);
    bool tryTo(const std::function<void()>& action);
    void statementChanged();
    void tellError(const QString& text);

    std::unique_ptr<TableSource> m_tables;
    std::optional<DatabaseAddress> m_address;  ///< of the tables, when they are a database's
    QSplitter* m_outer = nullptr;
    QSplitter* m_inner = nullptr;
    QSplitter* m_lower = nullptr;
    SchemaBrowser* m_tableList = nullptr;
    TorvQueryBuilder* m_builder = nullptr;
    JoinAssistant* m_joins = nullptr;
    UndoActions* m_undo = nullptr;
    PictureActions* m_pictures = nullptr;
    StatementPane* m_statement = nullptr;
    LoadedTexts* m_loadedTexts = nullptr;
    WordsPanel* m_words = nullptr;
    QueryComparer* m_comparer = nullptr;
    ResultPane* m_result = nullptr;
    RunController* m_running = nullptr;
    WhyNoRows* m_whyNoRows = nullptr;
    DatabaseOpener* m_opener = nullptr;
    DocumentController* m_documents = nullptr;
    DocumentDatabase m_database;  ///< the open one
    SavedConnections m_connections;
    RecentMenu* m_recent = nullptr;
    SampleMenu* m_sampleQueries = nullptr;
    QAction* m_open = nullptr;
    QAction* m_connect = nullptr;
    QAction* m_sample = nullptr;
    QAction* m_load = nullptr;
    QAction* m_clear = nullptr;
    QString m_sampleStatement;  ///< as it is written while nobody has changed it
    QPointer<KeyboardMap> m_keyboardMap;
    bool m_isLoading = false;
};

}  // namespace orvquery
