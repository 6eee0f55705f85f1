// SPDX-License-Identifier: MIT
#include "HostWindow.h"

#include "Lending.h"
#include <orvquerybuilder/Error.h>
#include <orvquerybuilder/ORVQDFloatPanel.h>
#include <orvquerybuilder/ORVQDFloatTable.h>
#include <orvquerybuilder/ORVQDLinks.h>

#include <QBoxLayout>
#include <QCheckBox>
#include <QFontDatabase>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>

namespace {

// The widget below a title whose key leads to it.
QWidget* titled(const QString& title, QWidget* widget) {
    auto* pane = new QWidget;
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(title, pane);
    label->setBuddy(widget);
    layout->addWidget(label);
    layout->addWidget(widget);
    return pane;
}

}  // namespace

HostWindow::HostWindow()
    : m_builder(new TorvQueryBuilder(this)),
      m_tables(new QListWidget(this)),
      m_statement(new QPlainTextEdit(this)),
      m_findings(new QListWidget(this)) {
    setWindowTitle(tr("Lending library"));
    createPanes();
    addOperators();
    answerQuestions();
    takeDrops();
    connect(m_builder, &TorvQueryBuilder::StatementChanged, this, &HostWindow::showStatement);
    tell(tr("Drag tables onto the diagram, or double click them."));
}

void HostWindow::createPanes() {
    m_tables->addItems(lending::tableNames());
    m_tables->setDragDropMode(QAbstractItemView::DragOnly);
    connect(m_tables, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem* item) { addTable(item->text(), nullptr); });

    auto* loadButton = new QPushButton(tr("&Load this statement"), this);
    connect(loadButton, &QPushButton::clicked, this, [this] { load(m_statement->toPlainText()); });

    // With it, the written statement asks for the same rows as the loaded one.
    auto* keepMeaning = new QCheckBox(tr("&Keep the meaning of loaded statements"), this);
    connect(keepMeaning, &QCheckBox::toggled, m_builder, &TorvQueryBuilder::setKeepMeaning);
    keepMeaning->setChecked(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(loadButton);
    buttons->addWidget(keepMeaning);
    buttons->addStretch();

    m_statement->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    QWidget* statementPane = titled(tr("&Statement"), m_statement);
    qobject_cast<QBoxLayout*>(statementPane->layout())->addLayout(buttons);

    connect(m_findings, &QListWidget::currentRowChanged, this, &HostWindow::showFinding);
    m_findings->setWordWrap(true);

    auto* bottom = new QSplitter(Qt::Horizontal, this);
    bottom->addWidget(statementPane);
    bottom->addWidget(titled(tr("L&oading"), m_findings));
    bottom->setSizes({560, 300});

    auto* right = new QSplitter(Qt::Vertical, this);
    right->addWidget(m_builder);
    right->addWidget(bottom);
    right->setSizes({500, 240});
    m_builder->setTabsHeight(180);

    auto* all = new QSplitter(Qt::Horizontal, this);
    all->addWidget(titled(tr("&Tables"), m_tables));
    all->addWidget(right);
    all->setSizes({140, 860});
    all->setContentsMargins(6, 6, 6, 0);
    setCentralWidget(all);
    resize(1000, 780);
}

// Operators of the database at hand, behind those that every one has.
void HostWindow::addOperators() {
    for (const QString& name : {QString("CONTAINING"), QString("STARTING WITH")}) {
        TorvQDOperator entry;
        entry.Name = name;
        entry.Caption = name.toLower();
        m_builder->Operators->Add(entry);
    }
}

// What the control asks: which columns a table has, and whether a table or a link may be added.
void HostWindow::answerQuestions() {
    m_builder->OnGetTableFields = [](const QString& NameOfTable,
                                     std::unique_ptr<TDataSet>& ADataSet,
                                     std::unique_ptr<TParams>&) {
        const TDataSet* columns = lending::describe(NameOfTable);
        if (columns) ADataSet = std::make_unique<TDataSet>(*columns);
    };
    m_builder->OnAddRemoveTable = [this](QObject*, TorvQDTable* Table, TAddRemove Action,
                                         bool& CanDo) {
        const QString reason = lending::whyClosed(Table->TableName);
        CanDo = Action == araRemove || reason.isEmpty();
        if (!CanDo) tell(reason + '.');
    };
    m_builder->OnAddRemoveLink = [this](QObject*, TorvQDLink* Link, TAddRemove Action,
                                        bool& CanDo) {
        CanDo = Action == araRemove || Link->Item1->FieldType == Link->Item2->FieldType;
        if (CanDo) return;
        tell(tr("%1 (%2) and %3 (%4) cannot be compared.")
                 .arg(Link->Item1->Name, Link->Item1->GetDataName(), Link->Item2->Name,
                      Link->Item2->GetDataName()));
    };
}

// Names from the list can be dropped on the diagram.
void HostWindow::takeDrops() {
    m_builder->OnDragOver = [this](QObject*, QObject* Source, int, int, bool& Accept) {
        Accept = Source == m_tables && m_tables->currentItem();
    };
    m_builder->OnDragDrop = [this](QObject*, QObject*, int X, int Y) {
        const QPoint viewPoint(X, Y);
        addTable(m_tables->currentItem()->text(), &viewPoint);
    };
}

void HostWindow::addTable(const QString& name, const QPoint* viewPoint) {
    TorvQDTable* box = m_builder->ListOfTables->AddTable(name, lending::describe(name));
    if (!box) return;  // it was refused, and the reason told
    tell(tr("%1 was added.").arg(box->GetCaption()));
    TorvQDWorkArea* diagram = m_builder->WorkArea;
    diagram->fitWidth(*box);
    if (viewPoint) {
        const QPoint place = *viewPoint + diagram->scrollPosition();
        diagram->placeBox(*box, place, place);
    } else {
        diagram->placeAgain({box});
    }
    diagram->ensureVisible(box->GetBoundsRect());
}

void HostWindow::load(const QString& text) {
    m_findings->clear();
    try {
        m_builder->LoadSQL(text);
    } catch (const orv::Error& error) {  // it is no SELECT; everything stays as it was
        tell(error.Message());
        return;
    }
    TorvQDWorkArea* diagram = m_builder->WorkArea;
    for (TorvQDTable* box : diagram->tablesByCreation()) diagram->fitWidth(*box);
    diagram->arrange();
    // What the control shows is now written anew; the findings are about the text that was loaded.
    m_statement->setPlainText(text);
    for (const orv::Finding& finding : m_builder->LoadReport()) {
        auto* item = new QListWidgetItem(finding.text + ": " + finding.what, m_findings);
        item->setData(Qt::UserRole, QPoint(finding.start, finding.start + finding.length));
    }
    if (m_builder->LoadReport().empty()) {
        showStatement();
        m_findings->addItem(tr("The whole statement was loaded."));
    }
}

void HostWindow::showFinding(int row) {
    const QListWidgetItem* item = m_findings->item(row);
    if (!item || item->data(Qt::UserRole).isNull()) return;
    const QPoint range = item->data(Qt::UserRole).toPoint();
    QTextCursor cursor = m_statement->textCursor();
    cursor.setPosition(range.x());
    cursor.setPosition(range.y(), QTextCursor::KeepAnchor);
    m_statement->setTextCursor(cursor);
}

QString HostWindow::statement() const {
    return m_builder->GetSQLStatment();
}

void HostWindow::showStatement() {
    m_findings->clear();
    try {
        m_statement->setPlainText(statement());
    } catch (const orv::Error& error) {
        m_statement->clear();
        tell(error.Message());
    }
}

void HostWindow::tell(const QString& text) {
    statusBar()->showMessage(text);
}
