// SPDX-License-Identifier: MIT
// The selection grid and its panel as widgets.
#include "selection/ORVQDSelectOrder.h"

#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "selection/ORVQDSelectModel_p.h"
#include "toolkit/ExitCombo.h"
#include "toolkit/ExitEdit.h"
#include "toolkit/Services.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QVBoxLayout>

#include <algorithm>
#include <random>

namespace {

constexpr int rowHeightPx = 20;
constexpr double nameColumnShare = 0.4;
constexpr double aggregateColumnShare = 0.1;
constexpr unsigned defaultSeed = 1;

}  // namespace

TorvQDSelectGrid::TorvQDSelectGrid(QWidget* Parent) : QTableView(Parent) {
    if (!Parent) throw orv::Error(QStringLiteral("Invalide parent for SelectGrids"));
    m_model = new Model(this);
    setModel(m_model);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setSelectionMode(SingleSelection);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(rowHeightPx);
    verticalHeader()->setMinimumSectionSize(rowHeightPx);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    // A narrow column cuts its caption at the end, not on both sides.
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    viewport()->setAcceptDrops(true);
    setAccessibleName(tr("Output columns"));
    createEditors();
    randomBelow100 = [generator = std::minstd_rand(defaultSeed)]() mutable {
        return int(generator() % 100);
    };
}

// A menu outlives its command, in which the grid may die: Qt looks at it afterwards. Closed, it
// goes by itself.
TorvQDSelectGrid::~TorvQDSelectGrid() {
    m_nameEdit->committed = nullptr;
    m_choice->committed = nullptr;
    if (m_menu) {
        m_menu->close();
        m_menu->setParent(nullptr, m_menu->windowFlags());
    }
}

QString TorvQDSelectGrid::Cells(int Col, int Row) const {
    if (Row == 0) return orv::gridHeader(Col);
    if (Row < 1 || Row > int(m_columns.size())) return {};
    const orv::OutputColumn& column = m_columns[std::size_t(Row - 1)];
    switch (Col) {
    case orv::nameColumn: return column.name;
    case orv::aggregateColumn: return column.aggregate;
    case orv::sourceColumn: return column.source;
    default: return {};
    }
}

IPagesHost* TorvQDSelectGrid::host() const {
    return orv::pagesHostAbove(this);
}

void TorvQDSelectGrid::changed() {
    if (IPagesHost* owner = host()) {
        owner->statementChanged();
    } else {
        refreshView();
    }
}

void TorvQDSelectGrid::refreshView() {
    const QModelIndex current = currentIndex();
    const int row = current.row();
    const int column = current.column();
    m_model->show(m_columns);
    if (row >= 0 && !currentIndex().isValid()) setCurrentIndex(m_model->index(row, column));
    const int last = rowAt(viewport()->height() - 1);
    m_model->refreshProblems(std::max(0, rowAt(0)), last < 0 ? m_model->rowCount() : last);
    placeEditor();
}

void TorvQDSelectGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    const int width = viewport()->width();
    const int names = int(width * nameColumnShare);
    const int aggregates = int(width * aggregateColumnShare);
    setColumnWidth(0, names);
    setColumnWidth(1, aggregates);
    setColumnWidth(2, width - names - aggregates);
    placeEditor();
}

// --- rows ---

QString TorvQDSelectGrid::CreateFieldName(const QString& Agg, const QString& Source) {
    return orv::createFieldName(Agg, Source);
}

void TorvQDSelectGrid::CheckField(const QString& Name) {
    if (!commitBefore()) return;
    m_columns.push_back({CreateFieldName(QString(), Name), QString(), Name});
    changed();
}

void TorvQDSelectGrid::UnCheckField(const QString& Name) {
    uncheckFields({Name});
}

void TorvQDSelectGrid::uncheckFields(const QSet<QString>& names) {
    const auto goes = [&](const orv::OutputColumn& column) {
        return names.contains(column.source);
    };
    if (std::none_of(m_columns.begin(), m_columns.end(), goes)) return;
    if (commitBefore() && std::erase_if(m_columns, goes) > 0) changed();
}

// The text in an editor is a source like any other. It is taken over at the end, when the names of
// the diagram are known to it again.
void TorvQDSelectGrid::ChangeAlias(const QString& NewAlias, const QString& OldAlias) {
    if (NewAlias == OldAlias) return;
    const QString before = OldAlias + u'.';
    const QString after = NewAlias + u'.';
    // Where the new alias contains the old one, the search would find its own result for ever.
    const bool once = after.contains(before);
    const auto rename = [&](QString& source) {
        if (!source.contains(before)) return false;
        if (once) {
            source.replace(before, after);
            return true;
        }
        for (qsizetype at = source.indexOf(before); at >= 0; at = source.indexOf(before)) {
            source.replace(at, before.size(), after);
        }
        return true;
    };
    bool found = false;
    for (orv::OutputColumn& column : m_columns) found = rename(column.source) || found;
    if (m_edited.column() == orv::sourceColumn) {
        QString typed = m_choice->currentText();
        if (rename(typed)) m_choice->setEditText(typed);
    }
    const QPointer<TorvQDSelectGrid> self(this);
    if (found) changed();
    if (self) static_cast<void>(commitBefore());
}

QString TorvQDSelectGrid::GetFieldName(int Row) const {
    QString source = Cells(2, Row);
    const bool plain = orv::orvTrim(Cells(1, Row)).isEmpty();
    if (plain && AllFields && AllFields->contains(source)) return source;
    if (orv::orvTrim(Cells(0, Row)).isEmpty()) return source;
    // Columns in front of it that are muted have no place among those that come out.
    const auto end = m_columns.begin() + std::min<std::ptrdiff_t>(Row, std::ssize(m_columns));
    const auto muted = std::count_if(m_columns.begin(), end,
                                     [](const orv::OutputColumn& column) { return column.muted; });
    return QString::number(Row - int(muted));
}

QString TorvQDSelectGrid::GetFieldAlias(const QString& Name) const {
    for (const orv::OutputColumn& column : m_columns) {
        if (column.source == Name) return column.name;
    }
    return {};
}

orv::SelectTextRules TorvQDSelectGrid::textRules() const {
    static const QStringList noAggregates;
    const IPagesHost* owner = host();
    orv::SelectTextRules rules;
    rules.aggregates = AgrFuncs ? AgrFuncs : &noAggregates;
    rules.keepMeaning = owner && owner->KeepMeaning();
    rules.isField = [this, owner](const QString& source) {
        if (AllFields && AllFields->contains(source)) return true;
        return owner && orv::firstFullStop(source) < 0 && owner->resolveField(source).has_value();
    };
    return rules;
}

orv::SelectTexts TorvQDSelectGrid::GetSQLStatment() const {
    return orv::selectTexts(m_columns, textRules());
}

void TorvQDSelectGrid::ClearContents() {
    discardEdit();
    if (m_columns.empty()) return;
    m_columns.clear();
    changed();
}

void TorvQDSelectGrid::setColumns(orv::OutputColumns columns) {
    discardEdit();
    m_columns = std::move(columns);
    changed();
}

// --- the panel ---

namespace {

/// Knows whether it is being clicked. Qt looks at it after it has told that it was toggled, but no
/// more after it has told of the click: then the host may end it all.
class HandCheckBox : public QCheckBox {
public:
    using QCheckBox::QCheckBox;
    [[nodiscard]] bool isByHand() const { return m_isByHand; }

protected:
    void nextCheckState() override {
        m_isByHand = true;
        QCheckBox::nextCheckState();
        m_isByHand = false;
    }

private:
    bool m_isByHand = false;
};

}  // namespace

TorvQDSelectPanel::TorvQDSelectPanel(QWidget* AOwner) : QWidget(AOwner) {
    if (!AOwner) throw orv::Error(QStringLiteral("Invalide parent for OrderPanel"));
    auto* distinct = new HandCheckBox(QStringLiteral("Include only unique records"), this);
    m_distinct = distinct;
    m_distinct->setToolTip(QStringLiteral("Of equal rows only one comes out (DISTINCT)"));
    m_grid = new TorvQDSelectGrid(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_distinct);
    layout->addWidget(m_grid, 1);
    setFocusPolicy(Qt::NoFocus);
    const auto tell = [this] {
        IPagesHost* owner = orv::pagesHostAbove(this);
        if (owner) orv::guarded([owner] { owner->statementChanged(); });
    };
    connect(m_distinct, &QCheckBox::clicked, this, tell);
    connect(m_distinct, &QCheckBox::toggled, this, [distinct, tell] {
        if (!distinct->isByHand()) tell();
    });
}

int TorvQDSelectPanel::GetDistinct() const {
    return m_distinct->isChecked() ? -1 : 0;
}

void TorvQDSelectPanel::SetDistinct(int Value) {
    m_distinct->setChecked(Value != 0);
}

void TorvQDSelectPanel::ClearContents() {
    m_grid->ClearContents();
}
