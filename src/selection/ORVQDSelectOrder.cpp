// SPDX-License-Identifier: MIT
// The selection grid and its panel as widgets.
#include "selection/ORVQDSelectOrder.h"

#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QHeaderView>
#include <QVBoxLayout>

#include <random>

namespace {

constexpr int rowHeightPx = 20;
constexpr int columnCount = 3;
constexpr double nameColumnShare = 0.4;
constexpr double aggregateColumnShare = 0.1;
constexpr unsigned defaultSeed = 1;

QString headerText(int column) {
    switch (column) {
    case 0: return QStringLiteral("Name of output field");
    case 1: return QStringLiteral("Agregate");
    default: return QStringLiteral("Name source field");
    }
}

}  // namespace

/// The grid's rows as a view sees them: data rows and the empty one, without the header.
class TorvQDSelectGrid::Model : public QAbstractTableModel {
public:
    explicit Model(TorvQDSelectGrid* grid) : QAbstractTableModel(grid), m_grid(grid) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : m_grid->RowCount() - 1;
    }
    [[nodiscard]] int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : ::columnCount;
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
        return m_grid->Cells(index.column(), index.row() + 1);
    }
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        return headerText(section);
    }
    void reset() {
        beginResetModel();
        endResetModel();
    }

private:
    TorvQDSelectGrid* m_grid;
};

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
    randomBelow100 = [generator = std::minstd_rand(defaultSeed)]() mutable {
        return int(generator() % 100);
    };
}

TorvQDSelectGrid::~TorvQDSelectGrid() = default;

QString TorvQDSelectGrid::Cells(int Col, int Row) const {
    if (Row == 0) return headerText(Col);
    if (Row < 1 || Row > int(m_columns.size())) return {};
    const orv::OutputColumn& column = m_columns[std::size_t(Row - 1)];
    switch (Col) {
    case 0: return column.name;
    case 1: return column.aggregate;
    case 2: return column.source;
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
    m_model->reset();
    if (current.isValid()) setCurrentIndex(m_model->index(current.row(), current.column()));
}

void TorvQDSelectGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    const int width = viewport()->width();
    const int names = int(width * nameColumnShare);
    const int aggregates = int(width * aggregateColumnShare);
    setColumnWidth(0, names);
    setColumnWidth(1, aggregates);
    setColumnWidth(2, width - names - aggregates);
}

// --- rows ---

QString TorvQDSelectGrid::CreateFieldName(const QString& Agg, const QString& Source) {
    return orv::createFieldName(Agg, Source);
}

void TorvQDSelectGrid::CheckField(const QString& Name) {
    m_columns.push_back({CreateFieldName(QString(), Name), QString(), Name});
    changed();
}

void TorvQDSelectGrid::UnCheckField(const QString& Name) {
    uncheckFields({Name});
}

void TorvQDSelectGrid::uncheckFields(const QSet<QString>& names) {
    const std::size_t removed = std::erase_if(
        m_columns, [&](const orv::OutputColumn& column) { return names.contains(column.source); });
    if (removed > 0) changed();
}

void TorvQDSelectGrid::ChangeAlias(const QString& NewAlias, const QString& OldAlias) {
    if (NewAlias == OldAlias) return;
    const QString before = OldAlias + u'.';
    const QString after = NewAlias + u'.';
    // Where the new alias contains the old one, the search would find its own result for ever.
    const bool once = after.contains(before);
    bool found = false;
    for (orv::OutputColumn& column : m_columns) {
        found = found || column.source.contains(before);
        if (once) {
            column.source.replace(before, after);
            continue;
        }
        for (qsizetype at = column.source.indexOf(before); at >= 0;
             at = column.source.indexOf(before)) {
            column.source.replace(at, before.size(), after);
        }
    }
    if (found) changed();
}

QString TorvQDSelectGrid::GetFieldName(int Row) const {
    QString source = Cells(2, Row);
    const bool plain = orv::orvTrim(Cells(1, Row)).isEmpty();
    if (plain && AllFields && AllFields->contains(source)) return source;
    return orv::orvTrim(Cells(0, Row)).isEmpty() ? source : QString::number(Row);
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
    if (m_columns.empty()) return;
    m_columns.clear();
    changed();
}

void TorvQDSelectGrid::setColumns(orv::OutputColumns columns) {
    m_columns = std::move(columns);
    changed();
}

// --- the panel ---

TorvQDSelectPanel::TorvQDSelectPanel(QWidget* AOwner) : QWidget(AOwner) {
    if (!AOwner) throw orv::Error(QStringLiteral("Invalide parent for OrderPanel"));
    m_distinct = new QCheckBox(QStringLiteral("Include only unique records"), this);
    m_distinct->setToolTip(QStringLiteral("Of equal rows only one comes out (DISTINCT)"));
    m_grid = new TorvQDSelectGrid(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_distinct);
    layout->addWidget(m_grid, 1);
    setFocusPolicy(Qt::NoFocus);
    connect(m_distinct, &QCheckBox::toggled, this, [this] {
        if (IPagesHost* owner = orv::pagesHostAbove(this)) owner->statementChanged();
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
