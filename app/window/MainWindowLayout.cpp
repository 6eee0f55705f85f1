// SPDX-License-Identifier: MIT
// The window: its panes, actions and menus.
#include "querybuilder/ORVQDPageTabs.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "text/KeptSettings.h"
#include "toolkit/Services.h"
#include "window/AboutText.h"
#include "window/DiagramLook.h"
#include "window/DocumentController.h"
#include "window/FindBar.h"
#include "window/JoinAssistant.h"
#include "window/KeyboardMap.h"
#include "window/LoadedTexts.h"
#include "window/MainWindow.h"
#include "window/PictureActions.h"
#include "window/QueryComparer.h"
#include "window/RecentMenu.h"
#include "window/ResultPane.h"
#include "window/RunController.h"
#include "window/SampleMenu.h"
#include "window/SchemaBrowser.h"
#include "window/StatementCopies.h"
#include "window/StatementPane.h"
#include "window/TableDrops.h"
#include "window/UndoActions.h"
#include "window/WhyNoRows.h"
#include "window/WordsPanel.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QSplitter>
#include <QToolBar>

namespace orvquery {

namespace {

constexpr QSize firstSize(1180, 840);
constexpr int pagesHeightPx = 160;

QSplitter* makeSplitter(Qt::Orientation orientation, const char* name) {
    auto* splitter = new QSplitter(orientation);
    splitter->setObjectName(QLatin1String(name));
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(6);
    return splitter;
}

}  // namespace

//   +--------+---------------------------+
//   | tables | the control               |
//   |        |                           |
//   |        +-----------+-------+-------+
//   |        | statement | words | rows  |
//   +--------+-----------+-------+-------+
void MainWindow::buildPanes() {
    m_outer = makeSplitter(Qt::Horizontal, "outer");
    m_inner = makeSplitter(Qt::Vertical, "inner");
    m_lower = makeSplitter(Qt::Horizontal, "lower");
    m_tableList = new SchemaBrowser;
    m_builder = new TorvQueryBuilder;
    new DiagramLook(*m_builder->WorkArea);
    m_joins = new JoinAssistant(*m_builder, *this);
    m_undo = new UndoActions(*m_builder, *this);
    m_pictures = new PictureActions(*m_builder, *this);
    m_statement = new StatementPane;
    m_loadedTexts = new LoadedTexts(m_undo->stack(), *m_statement);
    m_words = new WordsPanel(*m_builder, [this] { return m_isLoading; });
    m_comparer = new QueryComparer(
        *m_builder, [this]() -> const TableSource& { return *m_tables; }, this);
    m_result = new ResultPane;
    m_running = new RunController(m_builder, m_statement, m_result, this);
    m_whyNoRows = new WhyNoRows(*m_builder, *m_running, this);
    m_whyNoRows->setCommonActions(
        {m_running->runAction(), m_undo->undoAction(), m_undo->redoAction()});
    m_result->setNoRowsAction(m_whyNoRows->action());
    m_builder->setTabsHeight(pagesHeightPx);
    // Editors elsewhere would type the digits.
    if (auto* pages = qobject_cast<orv::PageTabs*>(m_builder->PageCtrl)) pages->addNumberKeys(this);
    // What is ticked shows here at once; the pages beside it are empty so far.
    m_builder->PageCtrl->setCurrentWidget(m_builder->SelectPanel->parentWidget());

    m_lower->addWidget(m_statement);
    m_lower->addWidget(m_words);
    m_lower->addWidget(m_result);
    m_inner->addWidget(m_builder);
    m_inner->addWidget(m_lower);
    m_outer->addWidget(m_tableList);
    m_outer->addWidget(m_inner);
    m_outer->setStretchFactor(1, 1);
    m_inner->setStretchFactor(0, 3);
    m_inner->setStretchFactor(1, 1);
    m_outer->setContentsMargins(6, 6, 6, 6);
    setCentralWidget(m_outer);

    letTablesBeDropped(*m_builder, [this](const TableName& name) { addTableToDiagram(name); });
    connect(m_tableList, &SchemaBrowser::tablesChosen, this, [this](const QList<TableName>& names) {
        for (const TableName& name : names) addTableToDiagram(name);
    });
    connect(m_builder, &TorvQueryBuilder::StatementChanged, this, &MainWindow::statementChanged);
}

QAction* MainWindow::addAction(const char* icon, const QString& text, const QKeySequence& shortcut,
                               void (MainWindow::*slot)()) {
    auto* action = new QAction(text, this);
    if (icon != nullptr) {
        action->setIcon(QIcon(QStringLiteral(":/orvquery/icons/%1.svg").arg(QLatin1String(icon))));
    }
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this,
            [this, slot] { orv::guarded([&] { (this->*slot)(); }); });
    return action;
}

void MainWindow::buildActions() {
    m_open =
        addAction("open", tr("&Open file..."), QKeySequence::Open, &MainWindow::chooseDatabase);
    m_connect = addAction(nullptr, tr("&Connect..."), QKeySequence(QStringLiteral("Ctrl+Shift+O")),
                          &MainWindow::connectToDatabase);
    m_sample = addAction(nullptr, tr("&Sample database"), {}, &MainWindow::chooseSample);
    m_clear = addAction("clear", tr("&New"), QKeySequence::New, &MainWindow::startAnew);
    m_load = addAction("load", tr("&Load"), QKeySequence(QStringLiteral("Ctrl+Return")),
                       &MainWindow::loadStatement);
    m_load->setShortcuts(
        {QKeySequence(QStringLiteral("Ctrl+Return")), QKeySequence(QStringLiteral("Ctrl+Enter"))});
    m_open->setToolTip(tr("Open a database file of SQLite or Firebird"));
    m_clear->setToolTip(tr("Begin a new query"));
    m_load->setToolTip(tr("Load the statement into the diagram (Ctrl+Enter)"));
    m_statement->setWordsAction(m_words->switchAction());
    m_statement->setLoadAction(m_load);
    m_statement->setRunAction(m_running->runAction());
    connect(m_statement->loadAnywayAction(), &QAction::triggered, this,
            [this] { orv::guarded([this] { loadAnyway(); }); });
    m_running->setLoadAction(m_load);
}

void MainWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    m_recent = new RecentMenu(tr("&Recent databases"), this);
    file->addAction(m_clear);
    m_documents->addToMenu(file);
    file->addSeparator();
    file->addActions({m_open, m_connect});
    file->addMenu(m_recent);
    file->addAction(m_sample);
    file->addSeparator();
    file->addAction(m_tableList->refreshAction());
    file->addSeparator();
    QAction* quit =
        addAction(nullptr, tr("&Quit"), QKeySequence(QStringLiteral("Ctrl+Q")), &MainWindow::quit);
    quit->setMenuRole(QAction::QuitRole);
    file->addAction(quit);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->addActions({m_undo->undoAction(), m_undo->redoAction()});
    edit->addSeparator();
    const FindBar* find = m_statement->findBar();
    edit->addActions({find->findAction(), find->nextAction(), find->previousAction()});
    edit->addSeparator();
    const auto rules = [this] {
        const bool isMariadb = m_address && m_address->scheme == u"mariadb";
        return isMariadb ? SqlRules::Mariadb : SqlRules::Postgresql;
    };
    (new StatementCopies(m_statement, rules))->addTo(*edit);

    QMenu* query = menuBar()->addMenu(tr("&Query"));
    query->addAction(m_load);
    query->addSeparator();
    query->addActions({m_words->switchAction(), m_comparer->action()});
    query->addSeparator();
    query->setToolTipsVisible(true);
    query->addActions({m_running->runAction(), m_running->stopAction(), m_whyNoRows->action(),
                       m_running->exportAction()});
    query->addSeparator();
    query->addAction(addAction(nullptr, tr("&Operators..."), {}, &MainWindow::modifyOperators));
    query->addAction(
        addAction(nullptr, tr("Restore &default operators"), {}, &MainWindow::useDefaultOperators));

    query->addSeparator();
    m_sampleQueries = new SampleMenu(tr("Sample &queries"), this);
    query->addMenu(m_sampleQueries);
    connect(m_sampleQueries, &SampleMenu::chosen, this, [this](const QString& statement) {
        orv::guarded([&] { openSampleQuery(statement); });
    });

    buildDiagramMenu();

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    QAction* keys = addAction(nullptr, tr("&Keyboard map"), QKeySequence(QStringLiteral("F1")),
                              &MainWindow::showKeyboardMap);
    keys->setObjectName(QStringLiteral("showKeyboardMap"));
    help->addAction(keys);
    help->addSeparator();
    QAction* about = addAction(nullptr, tr("&About orvquery"), {}, &MainWindow::showAbout);
    about->setMenuRole(QAction::AboutRole);
    help->addAction(about);
}

void MainWindow::buildDiagramMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Diagram"));
    const auto add = [&](const QString& text, const QKeySequence& shortcut,
                         void (TorvQDWorkArea::*command)()) {
        TorvQDWorkArea* area = m_builder->WorkArea;
        QAction* action = menu->addAction(
            text, area, [area, command] { orv::guarded([&] { (area->*command)(); }); });
        action->setShortcut(shortcut);
    };
    add(tr("&Arrange"), QKeySequence(QStringLiteral("Ctrl+Shift+L")), &TorvQDWorkArea::arrange);
    menu->addAction(m_joins->switchAction());
    menu->addSeparator();
    add(tr("&Fit"), QKeySequence(QStringLiteral("Ctrl+9")), &TorvQDWorkArea::fit);
    add(tr("Actual &size"), QKeySequence(QStringLiteral("Ctrl+0")), &TorvQDWorkArea::actualSize);
    add(tr("Zoom &in"), QKeySequence::ZoomIn, &TorvQDWorkArea::zoomIn);
    add(tr("Zoom &out"), QKeySequence::ZoomOut, &TorvQDWorkArea::zoomOut);
    menu->addSeparator();
    add(tr("&Copy as picture"), QKeySequence(QStringLiteral("Ctrl+Shift+C")),
        &TorvQDWorkArea::copyAsPicture);
    m_pictures->addTo(*menu);
}

void MainWindow::restoreLayout() {
    setWindowIcon(QIcon(QStringLiteral(":/orvquery/icons/orvquery.svg")));
    const QSettings stored = keptSettings();
    // At a large scale the screen may be smaller than that.
    const QSize room = screen()->availableSize();
    resize(firstSize.boundedTo(room.isEmpty() ? firstSize : room));
    restoreGeometry(stored.value(QStringLiteral("geometry")).toByteArray());
    m_outer->setSizes({190, firstSize.width() - 190});
    m_inner->setSizes({590, 240});
    m_lower->setSizes({420, 300, 560});
    m_words->switchAction()->setChecked(stored.value(QStringLiteral("words")).toBool());
    for (QSplitter* splitter : {m_outer, m_inner, m_lower}) {
        splitter->restoreState(stored.value(splitter->objectName()).toByteArray());
    }
}

void MainWindow::saveLayout() const {
    QSettings stored = keptSettings();
    stored.setValue(QStringLiteral("geometry"), saveGeometry());
    stored.setValue(QStringLiteral("words"), m_words->switchAction()->isChecked());
    for (const QSplitter* splitter : {m_outer, m_inner, m_lower}) {
        stored.setValue(splitter->objectName(), splitter->saveState());
    }
}

void MainWindow::showKeyboardMap() {
    if (!m_keyboardMap) m_keyboardMap = new KeyboardMap(this);
    m_keyboardMap->show();
    m_keyboardMap->raise();
    m_keyboardMap->activateWindow();
}

void MainWindow::showAbout() {
    QMessageBox::about(this, tr("About orvquery"), aboutText());
}

}  // namespace orvquery
