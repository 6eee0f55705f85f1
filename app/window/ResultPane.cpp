// SPDX-License-Identifier: MIT
#include "window/ResultPane.h"

#include "database/ValueText.h"
#include "window/ResultModel.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QStackedWidget>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int widestColumnPx = 320;
// Measuring ten thousand rows would take longer than most queries.
constexpr int measuredRows = 200;

QString counted(std::size_t rows, bool isCut) {
    const QString number = QLocale().toString(qulonglong(rows));
    if (isCut) return ResultPane::tr("the first %1 rows; there are more").arg(number);
    return rows == 1 ? ResultPane::tr("1 row") : ResultPane::tr("%1 rows").arg(number);
}

QString timed(qint64 milliseconds) {
    if (milliseconds < 1000) return ResultPane::tr("%1 ms").arg(milliseconds);
    return ResultPane::tr("%1 s").arg(QLocale().toString(double(milliseconds) / 1000, 'f', 1));
}

}  // namespace

ResultPane::ResultPane(QWidget* parent)
    : QWidget(parent),
      m_model(new ResultModel(this)),
      m_pages(new QStackedWidget(this)),
      m_view(new QTableView(this)),
      m_text(new QLabel(this)),
      m_notes(new QLabel(this)),
      m_summary(new QLabel(this)),
      m_header(new QHBoxLayout) {
    buildView();
    buildText();
    m_pages->addWidget(m_text);
    m_pages->addWidget(m_view);

    auto* title = new QLabel(tr("&Rows"), this);
    title->setBuddy(m_view);
    m_header->addWidget(title);
    m_header->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_header);
    layout->addWidget(m_notes);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_summary);
    clear();
}

void ResultPane::buildView() {
    m_view->setObjectName(QStringLiteral("rows"));
    m_view->setAccessibleName(tr("Rows"));
    m_view->setModel(m_model);
    m_view->setAlternatingRowColors(true);
    m_view->setTabKeyNavigation(false);
    m_view->setWordWrap(false);
    m_view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->verticalHeader()->setDefaultSectionSize(m_view->fontMetrics().height() + 6);
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->horizontalHeader()->setHighlightSections(false);
    m_view->horizontalHeader()->setResizeContentsPrecision(measuredRows);

    auto* copy = new QAction(tr("Copy"), m_view);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &ResultPane::copySelection);
    m_view->addAction(copy);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ResultPane::buildText() {
    m_text->setObjectName(QStringLiteral("resultText"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignCenter);
    m_text->setMargin(12);
    m_text->setFrameShape(QFrame::StyledPanel);
    m_text->setAutoFillBackground(true);
    m_text->setBackgroundRole(QPalette::Base);
    m_notes->setObjectName(QStringLiteral("notes"));
    m_notes->setTextFormat(Qt::PlainText);
    m_notes->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_notes->setWordWrap(true);
    m_notes->setMargin(4);
    m_notes->setAutoFillBackground(true);
    m_notes->setBackgroundRole(QPalette::ToolTipBase);
    m_notes->setForegroundRole(QPalette::ToolTipText);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setTextFormat(Qt::PlainText);
}

void ResultPane::clear() {
    m_model->setRows({}, {});
    m_summary->clear();
    setNotes({});
    showText(tr("Run the statement (F5) to see its rows here."), false);
}

void ResultPane::setRunning() {
    m_summary->setText(tr("running ..."));
}

// More would leave no room for the rows.
void ResultPane::setNotes(const QStringList& notes) {
    constexpr qsizetype mostNotes = 3;
    QStringList shown = notes.mid(0, mostNotes);
    if (notes.size() > mostNotes) {
        shown << tr("and %n more", nullptr, int(notes.size() - mostNotes));
    }
    m_notes->setText(shown.join(u'\n'));
    m_notes->setToolTip(notes.join(u'\n'));
    m_notes->setVisible(!notes.isEmpty());
}

void ResultPane::setProblem(const QString& reason) {
    m_summary->clear();
    showText(reason, true);
}

void ResultPane::setOutcome(QueryOutcome& outcome) {
    const QString time = timed(outcome.milliseconds);
    if (outcome.isStopped) {
        showText(tr("Stopped after %1.").arg(time), false);
        m_summary->clear();
        return;
    }
    if (!outcome.error.isEmpty()) {
        setProblem(outcome.error);
        return;
    }
    m_summary->setText(counted(outcome.rows.size(), outcome.isCut) + QStringLiteral(", ") + time);
    m_model->setRows(outcome.columns, std::move(outcome.rows));
    fitColumns();
    m_pages->setCurrentWidget(m_view);
}

void ResultPane::showText(const QString& text, bool isError) {
    m_text->setText(text);
    m_text->setForegroundRole(isError ? QPalette::Text : QPalette::PlaceholderText);
    m_model->setRows({}, {});
    m_pages->setCurrentWidget(m_text);
}

void ResultPane::fitColumns() {
    m_view->resizeColumnsToContents();
    for (int column = 0; column < m_model->columnCount(); ++column) {
        m_view->setColumnWidth(column, std::min(m_view->columnWidth(column), widestColumnPx));
    }
    m_view->scrollToTop();
}

// As spreadsheets take it: cells by tabs, rows by line breaks.
void ResultPane::copySelection() {
    QModelIndexList cells = m_view->selectionModel()->selectedIndexes();
    std::sort(cells.begin(), cells.end());
    QString text;
    for (qsizetype index = 0; index < cells.size(); ++index) {
        if (index > 0) text += cells[index].row() == cells[index - 1].row() ? u'\t' : u'\n';
        text += exactText(m_model->value(cells[index]));
    }
    if (!cells.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void ResultPane::setStopAction(QAction* action) {
    auto* button = new QToolButton(this);
    button->setObjectName(QStringLiteral("stopButton"));
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_header->addWidget(button);
}

}  // namespace orvquery
