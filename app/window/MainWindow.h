// SPDX-License-Identifier: MIT
#pragma once

#include "batch/Options.h"
#include "parser/ORVQDFindings.h"
#include "tables/TableSource.h"
#include "window/PlaceholderDialog.h"
#include "window/QueryRunner.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QSplitter;
class TorvQDListItem;
class TorvQDTable;
class TorvQueryBuilder;

namespace orvquery {

class Database;
class ResultPane;
class StatementPane;
class TableListPane;

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

    /// Opens a database in place of the present one and empties the diagram. When it cannot be
    /// opened, a message box says so and all stays as it was; false then.
    bool openDatabase(const QString& address);

    /// Opens the sample database, as openDatabase does.
    bool openSample();

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

    void chooseDatabase();
    void chooseSample();
    void loadStatement();
    void runStatement();
    void stopQuery();
    void clearAll();
    void modifyOperators();
    void useDefaultOperators();
    void quit();
    void showAbout();

    void useTables(std::unique_ptr<TableSource> tables, Database* database);
    void addTableToDiagram(const QString& name);
    void enterParameter(TorvQDTable* box, TorvQDListItem* row);
    [[nodiscard]] std::optional<PlaceholderValues> askParameters(const QString& statement);
    bool loadText(const QString& text);
    bool tryTo(const std::function<void()>& action);
    void statementChanged();
    [[nodiscard]] QString whatPreventsRunning(const QString& text) const;
    void showDoubts();
    void queryFinished(QueryOutcome& outcome);
    void tellError(const QString& text);

    std::unique_ptr<TableSource> m_tables;
    Database* m_database = nullptr;  ///< m_tables, when it is a database
    QSplitter* m_outer = nullptr;
    QSplitter* m_inner = nullptr;
    QSplitter* m_lower = nullptr;
    TableListPane* m_tableList = nullptr;
    TorvQueryBuilder* m_builder = nullptr;
    StatementPane* m_statement = nullptr;
    ResultPane* m_result = nullptr;
    QueryRunner* m_runner = nullptr;
    QAction* m_open = nullptr;
    QAction* m_sample = nullptr;
    QAction* m_load = nullptr;
    QAction* m_run = nullptr;
    QAction* m_stop = nullptr;
    QAction* m_clear = nullptr;
    ParameterAnswers m_answers;  ///< of this session
    bool m_isLoading = false;
};

}  // namespace orvquery
