// SPDX-License-Identifier: MIT
#include "window/ResultPane.h"

#include "toolkit/Services.h"
#include "window/CopiedCells.h"
#include "window/ResultModel.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int widestColumnPx = 320;
// Measuring a hundred thousand rows would take longer than most queries.
constexpr int measuredRows = 200;
constexpr int measuredCells = 10000;
constexpr int busyHeightPx = 3;
// Often enough to see that something goes on.
constexpr std::chrono::milliseconds clockInterval(100);
// A fast query shows its rows in the place of the old ones, without a blink in between.
constexpr qint64 oldRowsMilliseconds = 300;

QString counted(int rows) {
    const QString number = QLocale().toString(rows);
    return rows == 1 ? ResultPane::tr("1 row") : ResultPane::tr("%1 rows").arg(number);
}

QString timed(qint64 milliseconds) {
    if (milliseconds < 1000) return ResultPane::tr("%1 ms").arg(milliseconds);
    return ResultPane::tr("%1 s").arg(QLocale().toString(double(milliseconds) / 1000, 'f', 1));
}

void makeBar(QLabel& label) {
    label.setTextFormat(Qt::PlainText);
    label.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label.setWordWrap(true);
    label.setMargin(4);
    label.setAutoFillBackground(true);
    label.setBackgroundRole(QPalette::ToolTipBase);
    label.setForegroundRole(QPalette::ToolTipText);
}

}  // namespace

ResultPane::ResultPane(QWidget* parent)
    : QWidget(parent),
      m_model(new ResultModel(this)),
      m_pages(new QStackedWidget(this)),
      m_view(new QTableView(this)),
      m_textPage(new QFrame(this)),
      m_text(new QLabel(this)),
      m_remedies({new QToolButton(this), new QToolButton(this)}),
      m_earlier(new QLabel(this)),
      m_trouble(new QLabel(this)),
      m_notes(new QLabel(this)),
      m_summary(new QLabel(this)),
      m_noRows(new QToolButton(this)),
      m_exportState(new QLabel(this)),
      m_busy(new QProgressBar(this)),
      m_header(new QHBoxLayout) {
    buildView();
    buildText();
    buildLabels();
    m_pages->addWidget(m_textPage);
    m_pages->addWidget(m_view);

    auto* title = new QLabel(tr("&Rows"), this);
    title->setBuddy(m_view);
    m_header->addWidget(title);
    m_header->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_header);
    layout->addWidget(m_earlier);
    layout->addWidget(m_trouble);
    layout->addWidget(m_notes);
    auto* rows = new QVBoxLayout;
    rows->setSpacing(0);
    rows->addWidget(m_busy);
    rows->addWidget(m_pages, 1);
    layout->addLayout(rows, 1);
    auto* footer = new QHBoxLayout;
    footer->addWidget(m_summary, 1);
    footer->addWidget(m_noRows);
    layout->addLayout(footer);
    layout->addWidget(m_exportState);

    m_clock.setInterval(clockInterval);
    connect(&m_clock, &QTimer::timeout, this, &ResultPane::showRunningTime);
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

    QHeaderView* header = m_view->horizontalHeader();
    header->setHighlightSections(false);
    header->setSortIndicatorClearable(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    m_view->setSortingEnabled(true);
    connect(header, &QHeaderView::sortIndicatorChanged, this, &ResultPane::refreshSummary);
    connect(header, &QHeaderView::sectionResized, this,
            [this] { m_areWidthsChosen = m_areWidthsChosen || !m_isFitting; });

    addViewAction(tr("&Copy"), QKeySequence::Copy, &ResultPane::copy);
    addViewAction(tr("Copy with &header"), QKeySequence(QStringLiteral("Ctrl+Alt+C")),
                  &ResultPane::copyWithHeader);
    addViewAction(tr("Select &all"), QKeySequence::SelectAll, &ResultPane::selectAll);
    addViewAction(tr("&Sort by column"), QKeySequence(QStringLiteral("Ctrl+Alt+S")),
                  &ResultPane::sortByColumn);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ResultPane::addViewAction(const QString& text, const QKeySequence& shortcut,
                               void (ResultPane::*slot)()) {
    auto* action = new QAction(text, m_view);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this,
            [this, slot] { orv::guarded([&] { (this->*slot)(); }); });
    m_view->addAction(action);
}

void ResultPane::buildText() {
    m_text->setObjectName(QStringLiteral("resultText"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignCenter);
    auto* remedies = new QHBoxLayout;
    remedies->addStretch(1);
    for (QToolButton* button : m_remedies) {
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setFocusPolicy(Qt::TabFocus);
        remedies->addWidget(button);
    }
    remedies->addStretch(1);
    m_remedies.front()->setObjectName(QStringLiteral("remedyButton"));
    m_remedies.back()->setObjectName(QStringLiteral("otherRemedyButton"));

    m_textPage->setFrameShape(QFrame::StyledPanel);
    m_textPage->setAutoFillBackground(true);
    m_textPage->setBackgroundRole(QPalette::Base);
    auto* layout = new QVBoxLayout(m_textPage);
    layout->addStretch(1);
    layout->addWidget(m_text);
    layout->addLayout(remedies);
    layout->addStretch(1);
}

void ResultPane::buildLabels() {
    m_earlier->setObjectName(QStringLiteral("earlier"));
    makeBar(*m_earlier);
    m_earlier->hide();
    connect(m_pages, &QStackedWidget::currentChanged, this, &ResultPane::refreshEarlier);
    m_trouble->setObjectName(QStringLiteral("trouble"));
    makeBar(*m_trouble);
    m_notes->setObjectName(QStringLiteral("notes"));
    makeBar(*m_notes);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    m_noRows->setObjectName(QStringLiteral("noRowsButton"));
    m_noRows->setFocusPolicy(Qt::TabFocus);
    m_noRows->hide();
    m_exportState->setObjectName(QStringLiteral("exportState"));
    m_exportState->setTextFormat(Qt::PlainText);
    m_exportState->setWordWrap(true);
    m_busy->setObjectName(QStringLiteral("busy"));
    m_busy->setTextVisible(false);
    m_busy->setFixedHeight(busyHeightPx);
    // The rows stay where they are when it comes and goes.
    QSizePolicy policy = m_busy->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_busy->setSizePolicy(policy);
}

void ResultPane::clear() {
    m_clock.stop();
    m_isRunning = false;
    m_outcome.reset();
    setBusy(false);
    setNotes({});
    setExportState({});
    showText(tr("Run the statement (F5) to see its rows here."), false);
}

void ResultPane::setBusy(bool isBusy) {
    m_busy->setVisible(isBusy);
    // Without a range it moves, and that costs time.
    m_busy->setRange(0, isBusy ? 0 : 1);
}

void ResultPane::setRunning() {
    m_isRunning = true;
    m_hasBegun = false;
    m_outcome.reset();
    m_time.start();
    m_clock.start();
    m_trouble->hide();
    refreshNoRows();
    setExportState({});
    setBusy(true);
    m_summary->setText(tr("Running ..."));
}

void ResultPane::begin(const QStringList& columns) {
    m_hasBegun = true;
    m_model->begin(columns);
    m_fittedRows = -1;
    m_areWidthsChosen = false;
    m_view->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    m_view->scrollToTop();
    m_pages->setCurrentWidget(m_view);
    fitToFirstRows();
}

void ResultPane::addRows(const std::vector<Row>& rows) {
    m_model->append(rows);
    fitToFirstRows();
    refreshSummary();
}

// A person who looks at the rows must not see the columns move long after they have come.
void ResultPane::fitToFirstRows() {
    const int rows = m_model->rowCount();
    if (m_areWidthsChosen || m_fittedRows >= measuredRows || rows <= m_fittedRows) return;
    m_fittedRows = rows;
    fitColumns();
}

void ResultPane::fitColumns() {
    const QScopedValueRollback<bool> fitting(m_isFitting, true);
    QHeaderView* header = m_view->horizontalHeader();
    const int rowsByCells = measuredCells / std::max(m_model->columnCount(), 1);
    header->setResizeContentsPrecision(std::clamp(rowsByCells, 1, measuredRows));
    m_view->resizeColumnsToContents();
    for (int column = 0; column < m_model->columnCount(); ++column) {
        if (header->sectionSize(column) > widestColumnPx) {
            header->resizeSection(column, widestColumnPx);
        }
    }
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

// A text that is there without a query having ended is about none.
void ResultPane::refreshEarlier() {
    const bool areRows = m_pages->currentWidget() == m_view;
    m_earlier->setText(
        areRows ? tr("These rows are of an earlier statement. Run (F5) to see those of the present "
                     "one.")
                : tr("This is about an earlier statement. Run (F5) to see the rows of the present "
                     "one."));
    m_earlier->setVisible(m_isOfEarlier && (areRows || m_outcome.has_value()));
}

void ResultPane::setOfEarlier(bool isOfEarlier) {
    m_isOfEarlier = isOfEarlier;
    refreshEarlier();
    refreshNoRows();
}

void ResultPane::refreshNoRows() {
    m_noRows->setVisible(m_noRows->defaultAction() != nullptr && hasRows() && isComplete() &&
                         m_model->rowCount() == 0 && !m_isOfEarlier);
}

void ResultPane::setProblem(const QString& reason, const QList<QAction*>& remedies) {
    m_outcome.reset();
    setExportState({});
    showText(reason, true, remedies);
}

void ResultPane::setOutcome(const QueryOutcome& outcome) {
    m_clock.stop();
    m_isRunning = false;
    setBusy(false);
    m_outcome = outcome;
    // Those that are there may be of the query before.
    if (!m_hasBegun) begin({});
    m_model->finish();
    const QueryEnd& end = outcome.end;
    if (m_model->rowCount() == 0 && !isComplete()) {
        const bool isError = !end.error.isEmpty();
        return showText(isError ? end.error : tr("Stopped after %1.").arg(timed(end.milliseconds)),
                        isError);
    }
    m_trouble->setText(troubleText());
    m_trouble->setVisible(!m_trouble->text().isEmpty());
    refreshNoRows();
    refreshSummary();
}

QString ResultPane::troubleText() const {
    const QString& error = m_outcome->end.error;
    if (error.isEmpty() || m_outcome->isCut) return error;
    return tr("%1 The rows below came before; they are incomplete.")
        .arg(error.endsWith(u'.') ? error : error + u'.');
}

bool ResultPane::hasRows() const {
    return m_outcome.has_value() && m_pages->currentWidget() == m_view;
}

bool ResultPane::areRowsWhole() const {
    if (!hasRows() || m_model->hasShortened()) return false;
    return isComplete();
}

void ResultPane::showText(const QString& text, bool isError, const QList<QAction*>& remedies) {
    m_text->setText(text);
    m_text->setForegroundRole(isError ? QPalette::Text : QPalette::PlaceholderText);
    qsizetype place = 0;
    for (QToolButton* button : m_remedies) {
        QAction* remedy = remedies.value(place++);
        button->setVisible(remedy != nullptr);
        if (remedy != nullptr) button->setDefaultAction(remedy);
    }
    m_trouble->hide();
    m_model->begin({});
    m_model->finish();
    m_summary->clear();
    m_pages->setCurrentWidget(m_textPage);
    refreshEarlier();
    refreshNoRows();
}

void ResultPane::showRunningTime() {
    if (!m_hasBegun && m_time.hasExpired(oldRowsMilliseconds)) showText(tr("Running ..."), false);
    refreshSummary();
}

void ResultPane::refreshSummary() {
    if (m_isRunning) {
        m_summary->setText(runningText());
    } else if (m_outcome) {
        m_summary->setText(endedText());
    }
}

QString ResultPane::runningText() const {
    const QString time = timed(m_time.elapsed());
    if (!m_hasBegun) return tr("Running ... %1").arg(time);
    const QString text = tr("Running ... %1, %2").arg(counted(m_model->rowCount()), time);
    return m_model->isSorted() ? tr("%1. They are sorted when all have come.").arg(text) : text;
}

QString ResultPane::endedText() const {
    const QString time = timed(m_outcome->end.milliseconds);
    const QString rows = counted(m_model->rowCount());
    QString text = tr("%1, %2").arg(rows, time);
    if (m_outcome->isCut) {
        text = tr("First %1; there are more. %2").arg(rows, time);
    } else if (m_outcome->end.isStopped) {
        text = tr("%1, then stopped after %2").arg(rows, time);
    } else if (!isComplete()) {
        text = tr("%1, incomplete, %2").arg(rows, time);
    }
    if (m_model->hasShortened()) text += tr(". Large values are shortened");
    if (!isComplete() && m_model->isSorted()) text += tr(". Only the fetched rows are sorted");
    return text;
}

bool ResultPane::isComplete() const {
    return !m_outcome->isCut && !m_outcome->end.isStopped && m_outcome->end.error.isEmpty();
}

void ResultPane::setExportState(const QString& text) {
    m_exportState->setText(text);
    m_exportState->setVisible(!text.isEmpty());
}

void ResultPane::copy() {
    const QItemSelection cells = m_view->selectionModel()->selection();
    if (cells.isEmpty()) return;
    QGuiApplication::clipboard()->setText(copiedCells(*m_model, cells, CopiedHeader::None));
}

void ResultPane::copyWithHeader() {
    const QItemSelection cells = m_view->selectionModel()->selection();
    if (cells.isEmpty()) return;
    QGuiApplication::clipboard()->setText(copiedCells(*m_model, cells, CopiedHeader::Names));
}

void ResultPane::selectAll() {
    m_view->selectAll();
}

// As a click on the title of the column does: ascending, descending, as they came.
void ResultPane::sortByColumn() {
    const QModelIndex cell = m_view->currentIndex();
    if (!cell.isValid()) return;
    QHeaderView* header = m_view->horizontalHeader();
    const bool isSorted = header->sortIndicatorSection() == cell.column();
    if (!isSorted) {
        header->setSortIndicator(cell.column(), Qt::AscendingOrder);
    } else if (header->sortIndicatorOrder() == Qt::AscendingOrder) {
        header->setSortIndicator(cell.column(), Qt::DescendingOrder);
    } else {
        header->setSortIndicator(-1, Qt::AscendingOrder);
    }
    // Who works by keys is where the cell is.
    m_view->scrollTo(m_view->currentIndex());
}

void ResultPane::setStopAction(QAction* action) {
    addButton(action, "stopButton");
}

void ResultPane::setNoRowsAction(QAction* action) {
    m_noRows->setDefaultAction(action);
    refreshNoRows();
}

void ResultPane::setExportAction(QAction* action) {
    addButton(action, "exportButton");
    auto* separator = new QAction(m_view);
    separator->setSeparator(true);
    m_view->addAction(separator);
    m_view->addAction(action);
}

QToolButton* ResultPane::addButton(QAction* action, const char* name) {
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_header->addWidget(button);
    return button;
}

}  // namespace orvquery
