// SPDX-License-Identifier: MIT
#include "window/WhyNoRowsDialog.h"

#include "norows/RowCounter.h"
#include "norows/Verdict.h"
#include "toolkit/Services.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr QSize firstSize(900, 480);
constexpr int rowPaddingPx = 6;
constexpr int textPaddingPx = 16;
constexpr int leastPartPercent = 45;
constexpr qint64 mostRows = 1000;
constexpr std::chrono::milliseconds usualTrialTime(10000);
constexpr int progressHeightPx = 3;
constexpr qreal verdictScale = 1.15;

enum Column : int { PartColumn, CountColumn, RemarkColumn };

QLabel* makeLabel(const char* name, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

QString sectionTitle(QueryPart::Kind kind) {
    switch (kind) {
    case QueryPart::Kind::Condition: return WhyNoRowsDialog::tr("Conditions on rows");
    case QueryPart::Kind::GroupCondition: return WhyNoRowsDialog::tr("Conditions on groups");
    case QueryPart::Kind::Join:
    case QueryPart::Kind::Link: return WhyNoRowsDialog::tr("Joins");
    case QueryPart::Kind::End: break;
    }
    return WhyNoRowsDialog::tr("End of the statement");
}

}  // namespace

WhyNoRowsDialog::WhyNoRowsDialog(std::unique_ptr<Inquiry> inquiry, SourceMaker makeSource,
                                 Muter mute, QWidget* parent)
    : QDialog(parent),
      m_inquiry(std::move(inquiry)),
      m_makeSource(std::move(makeSource)),
      m_mute(std::move(mute)),
      m_trialTime(usualTrialTime),
      m_verdict(makeLabel("verdict", this)),
      m_details(makeLabel("verdictDetails", this)),
      m_counts(makeLabel("trialCounts", this)),
      m_state(makeLabel("trialState", this)),
      m_progress(new QProgressBar(this)),
      m_tree(new QTreeWidget(this)),
      m_muteButton(new QPushButton(tr("&Mute it"), this)),
      m_stopButton(new QPushButton(tr("&Stop"), this)) {
    setObjectName(QStringLiteral("whyNoRows"));
    setWindowTitle(tr("Why no rows?"));
    QFont font = m_verdict->font();
    font.setPointSizeF(font.pointSizeF() * verdictScale);
    font.setBold(true);
    m_verdict->setFont(font);
    m_progress->setTextVisible(false);
    m_progress->setFixedHeight(progressHeightPx);
    QSizePolicy policy = m_progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(policy);
    buildTree();

    m_muteButton->setObjectName(QStringLiteral("muteIt"));
    m_muteButton->setToolTip(tr("Mute the chosen condition or link in the query"));
    m_stopButton->setObjectName(QStringLiteral("stopTrials"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->addButton(m_muteButton, QDialogButtonBox::ActionRole);
    buttons->addButton(m_stopButton, QDialogButtonBox::ActionRole);
    for (QPushButton* button : {m_muteButton, m_stopButton}) button->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_muteButton, &QPushButton::clicked, this,
            [this] { orv::guarded([this] { muteChosen(); }); });
    connect(m_stopButton, &QPushButton::clicked, this, &WhyNoRowsDialog::stop);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_verdict);
    layout->addWidget(m_details);
    layout->addWidget(m_counts);
    layout->addWidget(m_progress);
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_state);
    layout->addWidget(buttons);

    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] {
        m_stop = Stop::Time;
        m_thread.stop();
    });
    connect(&m_thread, &QueryThread::ended, this,
            [this](const QueryEnd& end) { orv::guarded([&] { trialEnded(end); }); });
    const QSize room = screen()->availableSize();
    resize(firstSize.boundedTo(room.isEmpty() ? firstSize : room * 0.9));
    refresh();
}

WhyNoRowsDialog::~WhyNoRowsDialog() {
    // Going from the screen it changes the sections once more.
    m_tree->header()->disconnect(this);
}

void WhyNoRowsDialog::buildTree() {
    m_tree->setObjectName(QStringLiteral("trials"));
    m_tree->setAccessibleName(tr("Parts of the query"));
    m_tree->setHeaderLabels({tr("Part of the query"), tr("Rows without it"), tr("What it tells")});
    m_tree->headerItem()->setTextAlignment(CountColumn, Qt::AlignRight | Qt::AlignVCenter);
    m_tree->setAlternatingRowColors(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setTextElideMode(Qt::ElideRight);
    QHeaderView* header = m_tree->header();
    header->setStretchLastSection(true);
    header->setSectionResizeMode(CountColumn, QHeaderView::ResizeToContents);
    connect(header, &QHeaderView::sectionResized, this, [this](int section) {
        m_isWidthChosen = m_isWidthChosen || (section == PartColumn && !m_isFitting);
    });
    for (std::size_t index = 0; index < m_inquiry->parts().size(); ++index) addItem(int(index));
    m_tree->expandAll();
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &WhyNoRowsDialog::refreshButtons);
}

// As wide as its texts where both texts have room.
void WhyNoRowsDialog::fitColumns() {
    if (m_isWidthChosen) return;
    const QScopedValueRollback<bool> fitting(m_isFitting, true);
    QHeaderView* header = m_tree->header();
    int partWidth = 0;
    int remarkWidth = 0;
    for (const QTreeWidgetItem* item : m_items) {
        int level = 1;
        for (const QTreeWidgetItem* outer = item->parent(); outer; outer = outer->parent()) ++level;
        const QFontMetrics metrics(item->font(PartColumn));
        const int indent = level * m_tree->indentation();
        partWidth = std::max(partWidth, indent + metrics.horizontalAdvance(item->text(PartColumn)));
        remarkWidth = std::max(remarkWidth, metrics.horizontalAdvance(item->text(RemarkColumn)));
    }
    const int room = m_tree->viewport()->width() - header->sectionSize(CountColumn);
    const int left = room - remarkWidth - textPaddingPx;
    header->resizeSection(PartColumn, std::max(room * leastPartPercent / 100,
                                               std::min(partWidth + textPaddingPx, left)));
}

void WhyNoRowsDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    fitColumns();
}

QSize WhyNoRowsDialog::rowSize() const {
    return {0, m_tree->fontMetrics().height() + rowPaddingPx};
}

QTreeWidgetItem* WhyNoRowsDialog::section(QueryPart::Kind kind) {
    const QString title = sectionTitle(kind);
    for (int index = 0; index < m_tree->topLevelItemCount(); ++index) {
        if (m_tree->topLevelItem(index)->text(PartColumn) == title) {
            return m_tree->topLevelItem(index);
        }
    }
    auto* item = new QTreeWidgetItem(m_tree, {title});
    item->setFlags(Qt::ItemIsEnabled);
    item->setSizeHint(PartColumn, rowSize());
    item->setFirstColumnSpanned(true);
    return item;
}

void WhyNoRowsDialog::addItem(int part) {
    const QueryPart& shown = m_inquiry->parts()[std::size_t(part)];
    QTreeWidgetItem* parent =
        shown.parent < 0 ? section(shown.kind) : m_items[std::size_t(shown.parent)];
    auto* item = new QTreeWidgetItem(parent, {shown.text});
    item->setSizeHint(PartColumn, rowSize());
    item->setToolTip(PartColumn, shown.text);
    item->setTextAlignment(CountColumn, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(PartColumn, Qt::UserRole, part);
    m_items.push_back(item);
}

void WhyNoRowsDialog::start() {
    runNext();
}

void WhyNoRowsDialog::runNext() {
    const std::optional<QString> statement = m_inquiry->next();
    if (statement) {
        m_counter = std::make_shared<RowCounter>(mostRows);
        m_stop = Stop::None;
        m_thread.start(m_makeSource(*statement), m_counter);
        // The person has waited for the query itself before.
        if (m_inquiry->stage() != Inquiry::Stage::Whole) m_limit.start(m_trialTime);
    }
    refresh();
    if (!statement) chooseCulprit();
}

void WhyNoRowsDialog::trialEnded(const QueryEnd& end) {
    m_limit.stop();
    if (m_isClosed) return deleteLater();
    const bool isFirst = m_inquiry->stage() == Inquiry::Stage::Whole;
    if (m_stop != Stop::Person || !end.isStopped) m_inquiry->take(countOf(end));
    // Where one connection had to be given up, the next ones would be, too.
    if (m_stop == Stop::Person || end.isAbandoned) m_inquiry->stop();
    if (isFirst)
        m_trialTime = std::max(m_trialTime, 3 * std::chrono::milliseconds(end.milliseconds));
    runNext();
}

RowCount WhyNoRowsDialog::countOf(const QueryEnd& end) const {
    if (!end.error.isEmpty()) return {0, false, end.error};
    const qint64 rows = m_counter->rows();
    if (!end.isStopped) return {rows, m_counter->isFull()};
    if (rows > 0) return {rows, true};
    return {0, false,
            tr("No row came within %1 s, so it was given up.")
                .arg(QLocale().toString(double(m_trialTime.count()) / 1000, 'g', 3))};
}

void WhyNoRowsDialog::stop() {
    if (!m_thread.isRunning()) return;
    m_stop = Stop::Person;
    m_limit.stop();
    m_thread.stop();
    m_stopButton->setEnabled(false);
}

// The thread needs this until the query has ended.
void WhyNoRowsDialog::done(int result) {
    QDialog::done(result);
    if (m_isClosed) return;
    m_isClosed = true;
    m_limit.stop();
    if (!m_thread.isRunning()) return deleteLater();
    m_thread.stop();
}

QString WhyNoRowsDialog::countsText() const {
    const std::optional<RowCount>& whole = m_inquiry->whole();
    const std::optional<RowCount>& bare = m_inquiry->bare();
    if (!whole || !whole->isKnown() || whole->hasRows() || !bare) return {};
    const bool hasConditions = std::any_of(
        m_inquiry->parts().begin(), m_inquiry->parts().end(), [](const QueryPart& part) {
            return part.isCondition() || part.kind == QueryPart::Kind::End;
        });
    if (!hasConditions) return {};
    return tr("The query as it is: %1. Without any condition: %2.")
        .arg(countWords(*whole), bare->isKnown() ? countWords(*bare) : bare->problem);
}

void WhyNoRowsDialog::refresh() {
    const QStringList sentences = verdict(*m_inquiry);
    const bool isRunning = m_inquiry->stage() != Inquiry::Stage::Ended;
    m_verdict->setText(sentences.isEmpty() ? tr("Running the query ...") : sentences.front());
    m_details->setText(sentences.mid(1).join(u'\n'));
    m_details->setVisible(sentences.size() > 1);
    m_counts->setText(countsText());
    m_counts->setVisible(!m_counts->text().isEmpty());
    m_progress->setRange(0, m_inquiry->needed());
    m_progress->setValue(m_inquiry->ended());
    m_progress->setVisible(isRunning);
    if (isRunning) {
        m_state->setText(
            tr("Trial %1 of %2 ...").arg(m_inquiry->ended() + 1).arg(m_inquiry->needed()));
    } else if (m_state->text().endsWith(QStringLiteral("..."))) {
        m_state->clear();
    }
    for (std::size_t index = 0; index < m_items.size(); ++index) refreshItem(int(index));
    fitColumns();
    refreshButtons();
}

void WhyNoRowsDialog::refreshItem(int part) {
    QTreeWidgetItem& item = *m_items[std::size_t(part)];
    const std::optional<RowCount>& count = m_inquiry->without(part);
    const bool isPresent =
        m_inquiry->stage() == Inquiry::Stage::Singles && m_inquiry->presentPart() == part;
    item.setText(CountColumn, count       ? countText(*count)
                              : isPresent ? QStringLiteral("...")
                                          : QString());
    const QString text = remark(*m_inquiry, part);
    item.setText(RemarkColumn, text);
    item.setToolTip(RemarkColumn, text);
    const std::vector<int> culprits = m_inquiry->culprits();
    const std::vector<int>& together = m_inquiry->culpritsTogether();
    const bool isCulprit = std::find(culprits.begin(), culprits.end(), part) != culprits.end() ||
                           std::find(together.begin(), together.end(), part) != together.end() ||
                           m_inquiry->losingJoin() == part;
    QFont font = m_tree->font();
    font.setBold(isCulprit);
    for (const Column column : {PartColumn, CountColumn, RemarkColumn}) item.setFont(column, font);
}

int WhyNoRowsDialog::chosenPart() const {
    const QTreeWidgetItem* item = m_tree->currentItem();
    const QVariant part = item != nullptr ? item->data(PartColumn, Qt::UserRole) : QVariant();
    return part.isValid() ? part.toInt() : -1;
}

void WhyNoRowsDialog::refreshButtons() {
    const int part = chosenPart();
    m_muteButton->setEnabled(part >= 0 && m_inquiry->parts()[std::size_t(part)].canBeMuted());
    m_stopButton->setEnabled(m_thread.isRunning() && m_stop != Stop::Person);
}

// Unless the person has chosen something.
void WhyNoRowsDialog::chooseCulprit() {
    if (chosenPart() >= 0) return;
    const std::vector<int> culprits = m_inquiry->culprits();
    const std::vector<int>& together = m_inquiry->culpritsTogether();
    int part = m_inquiry->losingJoin();
    if (!together.empty()) part = together.front();
    if (!culprits.empty()) part = culprits.front();
    if (part >= 0) m_tree->setCurrentItem(m_items[std::size_t(part)]);
}

void WhyNoRowsDialog::muteChosen() {
    const int part = chosenPart();
    if (part < 0) return;
    const QPointer<WhyNoRowsDialog> self(this);
    const QString text = m_mute(m_inquiry->parts()[std::size_t(part)]);
    if (self && m_inquiry->stage() == Inquiry::Stage::Ended) m_state->setText(text);
}

}  // namespace orvquery
