// SPDX-License-Identifier: MIT
#include "Refs.h"

#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <algorithm>

namespace {

template <typename Object>
Object& checked(const QPointer<Object>& object) {
    if (!object) throw GoneError("the query builder of this object has been deleted");
    return *object;
}

int checkedIndex(int index, int count) {
    const int fromStart = index < 0 ? index + count : index;
    if (fromStart < 0 || fromStart >= count) throw std::out_of_range("list index out of range");
    return fromStart;
}

// What a handler is being asked about; the innermost last.
std::vector<const TorvQDFloatObject*> offered;

}  // namespace

// --- what is on the diagram ---

Offer::Offer(const TorvQDFloatObject* object) {
    offered.push_back(object);
}

Offer::~Offer() {
    offered.pop_back();
}

bool isOnDiagram(const TorvQDFloatObject* object) {
    if (!object) return false;
    const auto* area = qobject_cast<const TorvQDWorkArea*>(object->Parent.data());
    if (area && area->holds(object)) return true;
    return std::find(offered.begin(), offered.end(), object) != offered.end();
}

// --- boxes ---

TorvQDTable* TableRef::get() const {
    if (!isAlive()) throw GoneError("this table is no longer on the diagram");
    return m_table;
}

void TableRef::SetFieldState(int state) {
    if (state < 0 || state > 2) throw std::invalid_argument("the field state is 0, 1 or 2");
    get()->SetFieldState(state);
}

std::vector<RowRef> TableRef::Items() const {
    std::vector<RowRef> rows;
    for (const auto& item : get()->Items) rows.emplace_back(item.get());
    return rows;
}

RowRef* TableRef::GetFieldItem(const QString& name) const {
    TorvQDListItem* item = get()->GetFieldItem(name);
    return item ? new RowRef(item) : nullptr;
}

bool TableRef::isProcedure() const {
    return qobject_cast<TorvQDSProc*>(get()) != nullptr;
}

QString TableRef::GetParameters() const {
    const auto* procedure = qobject_cast<TorvQDSProc*>(get());
    return procedure ? procedure->GetParameters() : QString();
}

void TableRef::setParameter(const RowRef& row, const QVariant& value) {
    auto* procedure = qobject_cast<TorvQDSProc*>(get());
    if (!procedure) throw std::invalid_argument("this table is no stored procedure");
    if (!procedure->owns(row.get())) throw std::invalid_argument("a row of another table");
    procedure->setParameter(row.get(), value);
}

QString TableRef::repr() const {
    return isAlive() ? QStringLiteral("<TorvQDTable %1>").arg(m_table->GetCaption())
                     : QStringLiteral("<TorvQDTable, deleted>");
}

// --- rows ---

TorvQDListItem* RowRef::get() const {
    if (!isAlive()) throw GoneError("the table of this row is no longer on the diagram");
    return m_item;
}

void RowRef::SetCheck(bool value) {
    TorvQDListItem* item = get();
    if (!item->Table->owns(item)) return;
    if (item->ParamType == ptInput) {
        item->SetCheck(value);
    } else if (item->Checked != value) {
        item->Table->toggle(item);
    }
}

template <typename Change>
void RowRef::changeParameter(const Change& change) {
    TorvQDListItem* item = get();
    auto* procedure = qobject_cast<TorvQDSProc*>(item->Table);
    if (!procedure || item->ParamType == ptOutput || !procedure->owns(item)) {
        throw std::invalid_argument(
            "only a row of a parameter takes this; SetCheck() ticks a field");
    }
    change(*item);
    auto* area = qobject_cast<TorvQDWorkArea*>(procedure->Parent.data());
    if (area) area->parameterChanged(procedure, item);
}

void RowRef::setChecked(bool value) {
    changeParameter([&](TorvQDListItem& item) { item.UpdateCheck(value ? -1 : 0); });
}

void RowRef::setIsNull(bool value) {
    changeParameter([&](TorvQDListItem& item) { item.IsNull = value; });
}

void RowRef::setValue(const QVariant& value) {
    changeParameter([&](TorvQDListItem& item) { item.Value = value; });
}

QString RowRef::repr() const {
    return isAlive() ? QStringLiteral("<TorvQDListItem %1>").arg(m_item->qualifiedName())
                     : QStringLiteral("<TorvQDListItem, deleted>");
}

// --- links ---

TorvQDLink* LinkRef::get() const {
    if (!isAlive()) throw GoneError("this link is no longer on the diagram");
    return m_link;
}

QString LinkRef::repr() const {
    return isAlive() ? QStringLiteral("<TorvQDLink %1>").arg(m_link->GetHint())
                     : QStringLiteral("<TorvQDLink, deleted>");
}

// --- the list of tables ---

TorvQDListOfTables& TableListRef::get() const {
    return *checked(m_builder).ListOfTables;
}

TableRef* TableListRef::item(int index) const {
    return Tables(checkedIndex(index, TablesCount()));
}

TableRef* TableListRef::tableByAlias(const QString& alias) const {
    TorvQDTable* table = get().tableByAlias(alias);
    return table ? new TableRef(table) : nullptr;
}

TableRef* TableListRef::AddTable(const QString& name, const TDataSet* dataSet) const {
    TorvQDTable* table = get().AddTable(name, dataSet);
    return table ? new TableRef(table) : nullptr;
}

TableRef* TableListRef::AddProc(const QString& name, const TDataSet* dataSet,
                                const TParams* params) const {
    TorvQDTable* table = get().AddProc(name, dataSet, params);
    return table ? new TableRef(table) : nullptr;
}

// --- the diagram ---

WorkAreaRef::WorkAreaRef(TorvQDWorkArea* area) : m_area(area) {}

void WorkAreaRef::setLinkColor(const QColor& color) const {
    checked(m_area).setLinkColor(color);
}

// --- operators and options ---

TOperatorList& OperatorListRef::get() const {
    return checked(m_list);
}

TorvQDOperator* OperatorListRef::item(int index) const {
    return Items(checkedIndex(index, Count()));
}

QString OperatorListRef::repr() const {
    if (!m_list) return QStringLiteral("<TOperatorList, deleted>");
    QStringList names;
    for (int index = 0; index < m_list->Count(); ++index) names << m_list->Items(index)->Name;
    return QStringLiteral("<TOperatorList %1>").arg(names.join(u", "));
}

TorvQDWorkAreaOptions& WorkAreaOptionsRef::get() const {
    return checked(m_options);
}

TorvQDConditionOptions& ConditionOptionsRef::get() const {
    return checked(m_options);
}
