// SPDX-License-Identifier: MIT
#include "window/JoinDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int fewestShownRows = 4;
constexpr int mostShownRows = 12;
// What is longer ends in dots, with a tool tip.
constexpr int mostLettersOfNames = 50;
constexpr int mostLettersOfReason = 110;

bool isAnyOf(const JoinOffer& offer, JoinProposal::Kind kind) {
    return std::any_of(offer.proposals.begin(), offer.proposals.end(),
                       [&](const JoinProposal& proposal) { return proposal.kind == kind; });
}

QString questionAbout(const QString& table, const JoinOffer& offer) {
    if (isAnyOf(offer, JoinProposal::Kind::ForeignKey)) {
        return JoinDialog::tr("%1 can be joined in several ways. Which one is meant?").arg(table);
    }
    if (isAnyOf(offer, JoinProposal::Kind::UsedKey)) {
        return JoinDialog::tr("What could join %1 is in use already. Is it to be linked again?")
            .arg(table);
    }
    return JoinDialog::tr("No foreign key joins %1 to a table of the diagram. Is this meant?")
        .arg(table);
}

// As wide as its columns and as high as its rows, within bounds.
class ProposalList : public QTreeWidget {
public:
    using QTreeWidget::QTreeWidget;

    [[nodiscard]] QSize sizeHint() const override {
        const int rows = std::clamp(topLevelItemCount(), fewestShownRows, mostShownRows);
        const int rowHeight = std::max(sizeHintForRow(0), 1);
        const int frame = 2 * frameWidth();
        const int bar = verticalScrollBar()->sizeHint().width();
        int width = bar + frame;
        for (int column = 0; column < columnCount(); ++column) width += wantedWidth(column);
        return {width, header()->sizeHint().height() + rows * rowHeight + bar + frame};
    }

    void fitColumns() {
        for (int column = 0; column < columnCount(); ++column) {
            setColumnWidth(column, wantedWidth(column));
        }
    }

protected:
    // As long as nothing is chosen the first arrow chooses the row that it comes from.
    void keyPressEvent(QKeyEvent* event) override {
        const bool isArrow = event->key() == Qt::Key_Down || event->key() == Qt::Key_Up;
        if (isArrow && selectedItems().isEmpty() && currentItem() != nullptr) {
            currentItem()->setSelected(true);
            return event->accept();
        }
        QTreeWidget::keyPressEvent(event);
    }

private:
    [[nodiscard]] int wantedWidth(int column) const {
        const bool isReason = column == columnCount() - 1;
        const int letters = isReason ? mostLettersOfReason : mostLettersOfNames;
        const int content = std::max(sizeHintForColumn(column), header()->sectionSizeHint(column));
        return std::min(content, letters * fontMetrics().averageCharWidth());
    }
};

}  // namespace

JoinDialog::JoinDialog(const QString& table, const JoinOffer& offer, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(tr("Join %1").arg(table));
    auto* question = new QLabel(this);
    question->setObjectName(QStringLiteral("question"));
    question->setTextFormat(Qt::PlainText);
    question->setWordWrap(true);
    question->setText(questionAbout(table, offer));
    auto* list = new ProposalList(this);
    m_list = list;
    m_again = new QCheckBox(tr("&Propose joins (also in the menu Diagram)"), this);
    m_again->setObjectName(QStringLiteral("again"));
    m_again->setChecked(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addWidget(m_list, 1);
    fill(offer);
    list->fitColumns();
    // A way over other tables brings these along: two would bring them twice.
    const bool isMany = offer.proposals.size() > 1 && !isAnyOf(offer, JoinProposal::Kind::Path);
    if (isMany) {
        m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
        auto* hint = new QLabel(tr("Ctrl and Shift choose several."), this);
        hint->setObjectName(QStringLiteral("hint"));
        layout->addWidget(hint);
    }
    layout->addWidget(m_again);
    makeButtons();
    for (const int index : offer.suggested) m_list->topLevelItem(index)->setSelected(true);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &JoinDialog::refresh);
    m_list->setFocus();
    refresh();
    // By itself a dialog takes two thirds of the screen at most.
    resize(sizeHint().boundedTo(screen()->availableGeometry().size() * 9 / 10));
}

void JoinDialog::fill(const JoinOffer& offer) {
    m_list->setObjectName(QStringLiteral("proposals"));
    m_list->setAccessibleName(tr("Proposed joins"));
    m_list->setRootIsDecorated(false);
    m_list->setAllColumnsShowFocus(true);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("From"), tr("To"), tr("Why")});
    for (const JoinProposal& proposal : offer.proposals) {
        auto* item = new QTreeWidgetItem(m_list, {proposal.from, proposal.to, proposal.why});
        for (int column = 0; column < m_list->columnCount(); ++column) {
            item->setToolTip(column, proposal.sentence);
        }
        item->setData(0, Qt::AccessibleTextRole, proposal.sentence);
    }
    const int current = offer.suggested.empty() ? 0 : offer.suggested.front();
    m_list->setCurrentItem(m_list->topLevelItem(current), 0, QItemSelectionModel::NoUpdate);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        item->setSelected(true);
        accept();
    });
}

void JoinDialog::makeButtons() {
    auto* buttons = new QDialogButtonBox(this);
    m_link = buttons->addButton(tr("&Link"), QDialogButtonBox::AcceptRole);
    m_link->setObjectName(QStringLiteral("link"));
    m_leave = buttons->addButton(tr("&Don't link"), QDialogButtonBox::RejectRole);
    m_leave->setObjectName(QStringLiteral("leave"));
    m_leave->setToolTip(tr("Add the table alone (Esc)"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout()->addWidget(buttons);
}

// Enter does what the choice says.
void JoinDialog::refresh() {
    const bool isChosen = !m_list->selectedItems().isEmpty();
    m_link->setEnabled(isChosen);
    (isChosen ? m_link : m_leave)->setDefault(true);
}

std::vector<int> JoinDialog::chosen() const {
    std::vector<int> numbers;
    for (int index = 0; index < m_list->topLevelItemCount(); ++index) {
        if (m_list->topLevelItem(index)->isSelected()) numbers.push_back(index);
    }
    return numbers;
}

bool JoinDialog::isToProposeAgain() const {
    return m_again->isChecked();
}

}  // namespace orvquery
