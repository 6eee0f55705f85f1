// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Services.h"
#include "window/MainWindow.h"
#include "window/ResultPane.h"
#include "window/StatementPane.h"
#include "window/TableListPane.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QToolBar>

namespace orvquery {

namespace {

constexpr QSize firstSize(1180, 840);
constexpr int pagesHeightPx = 160;

QSettings settings() {
    return QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery"));
}

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
//   |        +-------------+-------------+
//   |        | statement   | rows        |
//   +--------+-------------+-------------+
void MainWindow::buildPanes() {
    m_outer = makeSplitter(Qt::Horizontal, "outer");
    m_inner = makeSplitter(Qt::Vertical, "inner");
    m_lower = makeSplitter(Qt::Horizontal, "lower");
    m_tableList = new TableListPane;
    m_builder = new TorvQueryBuilder;
    m_statement = new StatementPane;
    m_result = new ResultPane;
    m_runner = new QueryRunner(this);
    m_builder->setTabsHeight(pagesHeightPx);
    // What is ticked shows here at once; the pages beside it are empty so far.
    m_builder->PageCtrl->setCurrentWidget(m_builder->SelectPanel->parentWidget());

    m_lower->addWidget(m_statement);
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

    connect(m_tableList, &TableListPane::tableChosen, this, &MainWindow::addTableToDiagram);
    connect(m_builder, &TorvQueryBuilder::StatementChanged, this, &MainWindow::statementChanged);
    connect(m_runner, &QueryRunner::finished, this,
            [this](const std::shared_ptr<QueryOutcome>& outcome) {
                orv::guarded([&] { queryFinished(*outcome); });
            });
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
        addAction("open", tr("&Open database..."), QKeySequence::Open, &MainWindow::chooseDatabase);
    m_sample = addAction(nullptr, tr("&Sample database"), {}, &MainWindow::chooseSample);
    m_clear = addAction("clear", tr("&New"), QKeySequence::New, &MainWindow::clearAll);
    m_load = addAction("load", tr("&Load"), QKeySequence(QStringLiteral("Ctrl+Return")),
                       &MainWindow::loadStatement);
    m_run = addAction("run", tr("&Run"), QKeySequence(Qt::Key_F5), &MainWindow::runStatement);
    m_stop = addAction("stop", tr("S&top"), QKeySequence(QStringLiteral("Shift+F5")),
                       &MainWindow::stopQuery);
    m_load->setShortcuts(
        {QKeySequence(QStringLiteral("Ctrl+Return")), QKeySequence(QStringLiteral("Ctrl+Enter"))});
    m_open->setToolTip(tr("Open a database file of SQLite or Firebird"));
    m_clear->setToolTip(tr("Empty the diagram"));
    m_load->setToolTip(tr("Load the statement into the diagram (Ctrl+Enter)"));
    m_run->setToolTip(tr("Run the statement (F5)"));
    m_stop->setEnabled(false);
    m_statement->setLoadAction(m_load);
    m_statement->setRunAction(m_run);
    m_result->setStopAction(m_stop);
}

void MainWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addActions({m_open, m_sample});
    file->addSeparator();
    QAction* quit =
        addAction(nullptr, tr("&Quit"), QKeySequence(QStringLiteral("Ctrl+Q")), &MainWindow::quit);
    quit->setMenuRole(QAction::QuitRole);
    file->addAction(quit);

    QMenu* query = menuBar()->addMenu(tr("&Query"));
    query->addActions({m_clear, m_load});
    query->addSeparator();
    query->addActions({m_run, m_stop});
    query->addSeparator();
    query->addAction(addAction(nullptr, tr("&Operators..."), {}, &MainWindow::modifyOperators));
    query->addAction(
        addAction(nullptr, tr("Restore &default operators"), {}, &MainWindow::useDefaultOperators));

    buildDiagramMenu();

    QMenu* help = menuBar()->addMenu(tr("&Help"));
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
    menu->addSeparator();
    add(tr("&Fit"), QKeySequence(QStringLiteral("Ctrl+9")), &TorvQDWorkArea::fit);
    add(tr("Actual &size"), QKeySequence(QStringLiteral("Ctrl+0")), &TorvQDWorkArea::actualSize);
    add(tr("Zoom &in"), QKeySequence::ZoomIn, &TorvQDWorkArea::zoomIn);
    add(tr("Zoom &out"), QKeySequence::ZoomOut, &TorvQDWorkArea::zoomOut);
    menu->addSeparator();
    add(tr("&Copy as picture"), QKeySequence(QStringLiteral("Ctrl+Shift+C")),
        &TorvQDWorkArea::copyAsPicture);
}

void MainWindow::restoreLayout() {
    setWindowIcon(QIcon(QStringLiteral(":/orvquery/icons/orvquery.svg")));
    const QSettings stored = settings();
    // At a large scale the screen may be smaller than that.
    const QSize room = screen()->availableSize();
    resize(firstSize.boundedTo(room.isEmpty() ? firstSize : room));
    restoreGeometry(stored.value(QStringLiteral("geometry")).toByteArray());
    m_outer->setSizes({190, firstSize.width() - 190});
    m_inner->setSizes({590, 240});
    m_lower->setSizes({420, 560});
    for (QSplitter* splitter : {m_outer, m_inner, m_lower}) {
        splitter->restoreState(stored.value(splitter->objectName()).toByteArray());
    }
}

void MainWindow::saveLayout() const {
    QSettings stored = settings();
    stored.setValue(QStringLiteral("geometry"), saveGeometry());
    for (const QSplitter* splitter : {m_outer, m_inner, m_lower}) {
        stored.setValue(splitter->objectName(), splitter->saveState());
    }
}

void MainWindow::showAbout() {
    QMessageBox::about(this, tr("About orvquery"),
                       tr("<p><b>orvquery %1</b></p><p>Puts a SQL query together by mouse, and "
                          "runs it.</p>")
                           .arg(QCoreApplication::applicationVersion()));
}

}  // namespace orvquery
