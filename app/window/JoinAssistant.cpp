// SPDX-License-Identifier: MIT
#include "window/JoinAssistant.h"

#include "contract/ChangeScope.h"
#include "core/Error.h"
#include "data/ProcessName.h"
#include "database/BackgroundDatabase.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/BareFields.h"
#include "tables/Host.h"
#include "text/KeptSettings.h"
#include "toolkit/Services.h"
#include "window/JoinDialog.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>

#include <algorithm>

namespace orvquery {

namespace {

const QString proposeKey = QStringLiteral("proposeJoins");

QString writtenName(const TableDescription& table, int column) {
    return ProcessName(table.columns.FieldDefs[std::size_t(column)].Name);
}

// The row of a column; none when the box has another one there, or the column is gone.
TorvQDListItem* rowOf(const TorvQDTable& box, const TableDescription& table,
                      const QString& column) {
    const int index = columnIndex(table.entries, column);
    if (index < 0 || std::size_t(index) >= table.columns.FieldDefs.size()) return nullptr;
    const QString name = writtenName(table, index);
    if (std::size_t(index) < box.Items.size()) {
        TorvQDListItem* row = box.Items[std::size_t(index)].get();
        if (row->Name == name) return row;
    }
    return box.GetFieldItem(name);
}

JoinTable joinTable(const QString& alias, const TableDescription& table) {
    JoinTable result = {table.source, alias, table.entries};
    for (std::size_t column = 0; column < table.columns.FieldDefs.size(); ++column) {
        result.written += writtenName(table, int(column));
    }
    return result;
}

}  // namespace

JoinAssistant::JoinAssistant(TorvQueryBuilder& builder, QWidget& window)
    : QObject(&window),
      m_builder(&builder),
      m_window(window),
      m_switch(new QAction(tr("&Propose joins"), this)) {
    m_switch->setObjectName(QStringLiteral("proposeJoins"));
    m_switch->setCheckable(true);
    m_switch->setChecked(keptSettings().value(proposeKey, true).toBool());
    m_switch->setToolTip(tr("Join a table that is added to those of the diagram"));
    connect(m_switch, &QAction::toggled, this,
            [](bool isOn) { keptSettings().setValue(proposeKey, isOn); });
}

void JoinAssistant::setSource(const TableSource& source, const std::vector<TableEntry>& tables) {
    disconnect(m_listing);
    if (const auto* database = dynamic_cast<const BackgroundDatabase*>(&source)) {
        m_listing = connect(database, &BackgroundDatabase::listed, this,
                            [this](const std::vector<TableEntry>& entries) { setTables(entries); });
    }
    m_source = &source;
    ++m_sourceNumber;
    setTables(tables);
}

void JoinAssistant::setTables(const std::vector<TableEntry>& tables) {
    m_tables = tables;
    m_graph.reset();
    m_described.clear();
}

void JoinAssistant::addTable(const TableName& name) {
    const QPointer<JoinAssistant> self(this);
    const int sourceNumber = m_sourceNumber;
    // A dialog may be open meanwhile, or a slow database be waited for.
    const auto isUsable = [&] { return self && m_builder && m_sourceNumber == sourceNumber; };
    const bool isAlone = m_builder->WorkArea->TablesCount() == 0;
    if (isAlone) {
        orvquery::addTable(*m_builder, *m_source, name);
        return;
    }
    const std::optional<TableDescription> table = m_source->describe(name);
    if (!isUsable()) return;
    if (!table) throw GoneTableError(name);
    if (!m_switch->isChecked()) {
        addWithJoins(*table, {});
        return;
    }
    const std::vector<Box> present = boxes();
    if (!isUsable()) return;
    const std::vector<JoinProposal> chosen = choose(*table, present);
    if (!isUsable()) return;
    std::vector<Wish> wishes;
    QString problem;
    for (const JoinProposal& proposal : chosen) {
        try {
            wishes.push_back({present[std::size_t(proposal.table)], describeAll(proposal.between),
                              proposal.steps});
        } catch (const orv::Error& error) {
            problem = error.Message();
        }
        if (!isUsable()) return;
    }
    addWithJoins(*table, std::move(wishes));
    if (!problem.isEmpty()) throw orv::Error(problem);
}

std::vector<TableDescription> JoinAssistant::describeAll(
    const std::vector<TableName>& names) const {
    const QPointer<const JoinAssistant> self(this);
    const int sourceNumber = m_sourceNumber;
    std::vector<TableDescription> tables;
    for (const TableName& name : names) {
        if (!self || m_sourceNumber != sourceNumber) return {};
        std::optional<TableDescription> table = m_source->describe(name);
        if (!table) throw GoneTableError(name);
        tables.push_back(std::move(*table));
    }
    return tables;
}

std::vector<JoinProposal> JoinAssistant::choose(const TableDescription& table,
                                                const std::vector<Box>& present) {
    const QString alias = aliasToBe(table);
    const JoinOffer offer = proposeJoins(graph(), diagramOf(present), joinTable(alias, table));
    if (offer.proposals.empty()) return {};
    const std::vector<int> numbers = offer.isCertain() ? std::vector<int>{0} : ask(alias, offer);
    std::vector<JoinProposal> chosen;
    chosen.reserve(numbers.size());
    for (const int number : numbers) chosen.push_back(offer.proposals[std::size_t(number)]);
    return chosen;
}

std::vector<int> JoinAssistant::ask(const QString& table, const JoinOffer& offer) {
    const QPointer<JoinAssistant> self(this);
    const QPointer<JoinDialog> dialog = new JoinDialog(table, offer, &m_window);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return {};
    dialog->deleteLater();
    m_switch->setChecked(dialog->isToProposeAgain());
    return isAccepted ? dialog->chosen() : std::vector<int>();
}

// None when the keys cannot be read; that stands in nobody's way.
// Where the keys cannot be read, names are left to go by.
const JoinGraph& JoinAssistant::graph() {
    if (m_graph) return *m_graph;
    std::vector<ForeignKey> keys;
    try {
        keys = m_source->foreignKeys();
    } catch (const orv::Error&) {
        keys.clear();
    }
    return m_graph.emplace(std::move(keys), m_tables);
}

// Those that are still there once all were asked for.
std::vector<JoinAssistant::Box> JoinAssistant::boxes() {
    const QPointer<JoinAssistant> self(this);
    std::vector<Box> result;
    for (TorvQDTable* box : m_builder->WorkArea->tablesByCreation()) result.push_back({box, {}});
    for (Box& box : result) {
        if (self && box.box) box.table = described(box.box->TableName);
    }
    std::erase_if(result, [](const Box& box) { return !box.box; });
    return result;
}

// A name that stands for no table, such as that of a query of a WITH clause, stays without one.
std::optional<TableDescription> JoinAssistant::described(const QString& written) {
    const auto found = m_described.constFind(written);
    if (found != m_described.cend()) return *found;
    const QPointer<JoinAssistant> self(this);
    const int sourceNumber = m_sourceNumber;
    std::optional<TableDescription> table;
    try {
        table = m_source->find(written);
    } catch (const orv::Error&) {
        table.reset();
    }
    if (self && m_sourceNumber == sourceNumber) m_described.insert(written, table);
    return table;
}

JoinDiagram JoinAssistant::diagramOf(const std::vector<Box>& boxes) const {
    JoinDiagram diagram;
    QHash<const TorvQDTable*, int> numbers;
    for (const Box& box : boxes) {
        numbers.insert(box.box, int(diagram.tables.size()));
        const QString alias = box.box->GetAlias();
        diagram.tables.push_back(box.table ? joinTable(alias, *box.table) : JoinTable{{}, alias});
    }
    const auto columnOf = [&](const TorvQDListItem& row, int number) {
        const QStringList& written = diagram.tables[std::size_t(number)].written;
        return int(written.indexOf(row.Name));
    };
    for (const TorvQDLink* link : m_builder->WorkArea->Links()) {
        const int first = numbers.value(link->Join->Table1, -1);
        const int second = numbers.value(link->Join->Table2, -1);
        if (first < 0 || second < 0) continue;
        diagram.links.push_back(
            {first, columnOf(*link->Item1, first), second, columnOf(*link->Item2, second)});
    }
    return diagram;
}

// What the control will call the box.
QString JoinAssistant::aliasToBe(const TableDescription& table) const {
    const QString name = table.alias.isEmpty() ? ProcessName(table.name) : table.alias;
    QString alias = name;
    for (int number = 1; m_builder->WorkArea->GetTable(alias) != nullptr; ++number) {
        const bool isQuoted = name.endsWith(u'"');
        alias = isQuoted ? name.chopped(1) + QString::number(number) + u'"'
                         : name + QString::number(number);
    }
    return alias;
}

JoinAssistant::Box JoinAssistant::addBox(const TableDescription& table) {
    if (!m_builder) return {};
    const std::size_t before = m_builder->WorkArea->tablesByCreation().size();
    if (!orvquery::addTable(*m_builder, *m_source, table.source) || !m_builder) return {};
    const std::vector<TorvQDTable*>& boxes = m_builder->WorkArea->tablesByCreation();
    if (boxes.size() <= before) return {};
    m_described.insert(boxes.back()->TableName, table);
    return {boxes.back(), table};
}

// The table that the person asked for comes also when one on the way to it cannot; what is wrong
// with that is told in the end.
void JoinAssistant::addWithJoins(const TableDescription& table, std::vector<Wish> wishes) {
    ChangeScope change(m_builder.data(), m_builder.data());
    qualifyFields(table, wishes);
    std::vector<std::vector<Box>> chains;
    for (const Wish& wish : wishes) {
        std::vector<Box> chain{wish.present};
        for (const TableDescription& between : wish.between) chain.push_back(addBox(between));
        chains.push_back(std::move(chain));
    }
    const Box added = addBox(table);
    for (std::size_t number = 0; number < wishes.size(); ++number) {
        std::vector<Box>& chain = chains[number];
        chain.push_back(added);
        for (std::size_t at = 1; at < chain.size(); ++at) {
            link(chain[at - 1], chain[at], wishes[number].steps[at - 1]);
        }
    }
    change.finish();
}

// That may make the boxes anew, of which the wishes know some.
void JoinAssistant::qualifyFields(const TableDescription& table, std::vector<Wish>& wishes) {
    const std::vector<TorvQDTable*> before = m_builder->WorkArea->tablesByCreation();
    std::vector<TableDescription> toCome{table};
    std::vector<std::size_t> places;
    for (const Wish& wish : wishes) {
        toCome.insert(toCome.end(), wish.between.begin(), wish.between.end());
        const auto place = std::find(before.begin(), before.end(), wish.present.box.data());
        places.push_back(std::size_t(place - before.begin()));
    }
    if (!qualifyBareFields(*m_builder, toCome)) return;
    const std::vector<TorvQDTable*>& after = m_builder->WorkArea->tablesByCreation();
    for (std::size_t number = 0; number < wishes.size(); ++number) {
        const std::size_t place = places[number];
        wishes[number].present.box = place < after.size() ? after[place] : nullptr;
    }
}

// A box may have been closed meanwhile, and the control may refuse one.
void JoinAssistant::link(const Box& left, const Box& right, const JoinStep& step) {
    if (!m_builder || !left.table || !right.table) return;
    for (qsizetype at = 0; at < step.columns.size(); ++at) {
        if (!left.box || !right.box) return;
        TorvQDListItem* row = rowOf(*left.box, *left.table, step.columns[at]);
        TorvQDListItem* newRow = rowOf(*right.box, *right.table, step.newColumns[at]);
        if (row == nullptr || newRow == nullptr) continue;
        m_builder->WorkArea->AddLink(left.box, right.box, row, newRow);
    }
}

}  // namespace orvquery
