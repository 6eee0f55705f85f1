// SPDX-License-Identifier: MIT
// The joins and links of the work area, and the FROM clause that is written from them.
#include "contract/ChangeScope.h"
#include "contract/DiagramEvents.h"
#include "core/Error.h"
#include "core/Text.h"
#include "diagram/Orvqdlnkprop.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDFromLoader.h"
#include "workarea/ORVQDGestures.h"
#include "workarea/ORVQDSProc.h"

#include <QCoreApplication>
#include <QMenu>
#include <QScopeGuard>

#include <algorithm>
#include <exception>

namespace {

std::pair<const TorvQDTable*, const TorvQDTable*> pairOf(const TorvQDTable* a,
                                                         const TorvQDTable* b) {
    return std::less<>()(a, b) ? std::pair(a, b) : std::pair(b, a);
}

}  // namespace

TorvQDJoin* TorvQDWorkArea::FindJoin(const TorvQDTable* Table1, const TorvQDTable* Table2,
                                     bool& Reversed) const {
    TorvQDJoin* join = m_joinByPair.value(pairOf(Table1, Table2));
    Reversed = join && join->Table1 != Table1;
    return join;
}

// Of a join whose last link goes, or whose first one is still to come, nobody hears: a handler that
// is told of the link would write or save what cannot be read.
std::vector<TorvQDJoin*> TorvQDWorkArea::Joins() const {
    std::vector<TorvQDJoin*> joins;
    joins.reserve(m_joins.size());
    for (const auto& [number, held] : m_joins) {
        if (!held.links.empty()) joins.push_back(held.join.get());
    }
    return joins;
}

std::vector<TorvQDLink*> TorvQDWorkArea::Links() const {
    std::vector<TorvQDLink*> links;
    links.reserve(m_links.size());
    for (const auto& [number, link] : m_links) links.push_back(link.get());
    return links;
}

std::vector<TorvQDLink*> TorvQDWorkArea::linksOf(const TorvQDJoin* join) const {
    std::vector<TorvQDLink*> links;
    const auto found = m_joins.find(m_joinNumbers.value(join, -1));
    if (found == m_joins.end()) return links;
    for (const auto& [number, link] : found->second.links) links.push_back(link);
    return links;
}

bool TorvQDWorkArea::FindLink(const TorvQDTable* Table1, const TorvQDTable* Table2,
                              const TorvQDListItem* Item1, const TorvQDListItem* Item2) const {
    bool reversed = false;
    const TorvQDJoin* join = FindJoin(Table1, Table2, reversed);
    if (reversed) std::swap(Item1, Item2);
    const std::vector<TorvQDLink*> links = linksOf(join);
    return std::any_of(links.begin(), links.end(), [&](const TorvQDLink* link) {
        return link->Item1 == Item1 && link->Item2 == Item2;
    });
}

// --- adding ---

bool TorvQDWorkArea::takesLinks(const TorvQDTable* table) const {
    return m_creationNumber.contains(table) && !table->closing;
}

TorvQDJoin* TorvQDWorkArea::holdJoin(std::unique_ptr<TorvQDJoin> join) {
    const int number = m_nextNumber++;
    TorvQDJoin* held = join.get();
    m_joinByPair.insert(pairOf(held->Table1, held->Table2), held);
    m_joinNumbers.insert(held, number);
    m_joinsOfTable[held->Table1].insert(number);
    m_joinsOfTable[held->Table2].insert(number);
    m_joins[number].join = std::move(join);
    return held;
}

TorvQDLink* TorvQDWorkArea::AddLink(TorvQDTable* Table1, TorvQDTable* Table2, TorvQDListItem* Item1,
                                    TorvQDListItem* Item2) {
    if (!takesLinks(Table1) || !takesLinks(Table2) || !Item1 || !Item2) return nullptr;
    bool reversed = false;
    TorvQDJoin* join = FindJoin(Table1, Table2, reversed);
    if (reversed) {
        std::swap(Table1, Table2);
        std::swap(Item1, Item2);
    }
    std::unique_ptr<TorvQDJoin> made;
    if (!join) {
        made = std::make_unique<TorvQDJoin>(this, Table1, Table2);
        join = made.get();
    }
    auto link = std::make_unique<TorvQDLink>(this, join, Item1, Item2);
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> first(Table1);
    const QPointer<TorvQDTable> second(Table2);
    if (!m_owner->DoAddRemoveLink(link.get(), araAdd) || !self) return nullptr;
    // The host may have closed a box meanwhile, and added one in its place in memory, or made or
    // removed the join.
    if (!first || !second || !takesLinks(Table1) || !takesLinks(Table2)) return nullptr;
    ChangeScope change(m_owner, this);
    join = FindJoin(Table1, Table2, reversed);
    if (!join) {
        if (!made) made = std::make_unique<TorvQDJoin>(this, Table1, Table2);
        join = holdJoin(std::move(made));
    }
    link->Join = join;
    if (reversed) std::swap(link->Item1, link->Item2);
    link->SetBoundaryRect();
    const int number = m_nextNumber;
    TorvQDLink* added = adopt(std::move(link));
    const bool isThere = self && m_links.count(number) > 0;
    change.finish();
    return isThere && self && m_links.count(number) > 0 ? added : nullptr;
}

// From here on the link is one of the diagram; those who want to know are told.
TorvQDLink* TorvQDWorkArea::adopt(std::unique_ptr<TorvQDLink> link) {
    const int number = m_nextNumber++;
    TorvQDLink* added = link.get();
    m_joins[m_joinNumbers.value(added->Join)].links[number] = added;
    m_linkNumbers.insert(added, number);
    m_links[number] = std::move(link);
    invalidate(added->GetClipRgn(0));
    orv::accessible::tellAdded(added);
    m_owner->statementChanged();
    if (const TAddEvent handler = OnAddLink) handler(this, added);
    return added;
}

TorvQDJoin* TorvQDWorkArea::restoreJoin(TorvQDTable* table1, TorvQDTable* table2) {
    return holdJoin(std::make_unique<TorvQDJoin>(this, table1, table2));
}

TorvQDLink* TorvQDWorkArea::restoreLink(TorvQDJoin* join, TorvQDListItem* item1,
                                        TorvQDListItem* item2) {
    if (!item1 || !item2) {
        dropUnusedJoin(join);
        return nullptr;
    }
    const QPointer<TorvQDWorkArea> self(this);
    const int number = m_nextNumber;
    TorvQDLink* link = adopt(std::make_unique<TorvQDLink>(this, join, item1, item2));
    return self && m_links.count(number) > 0 ? link : nullptr;
}

// --- removing ---

void TorvQDWorkArea::RemoveLink(TorvQDLink* Link, bool Invalidate) {
    removeLink(m_linkNumbers.value(Link, -1), Invalidate);
}

void TorvQDWorkArea::removeLink(int number, bool invalidates) {
    const auto found = m_links.find(number);
    if (found == m_links.end()) return;
    const QPointer<TorvQDWorkArea> self(this);
    ChangeScope change(m_owner, this);
    TorvQDLink* link = found->second.get();
    m_gestures->forget(link);
    if (m_menu && m_menuObject == link) m_menu->close();
    if (m_hot == link) leaveHot();
    // What a handler raises is passed on once the link is gone.
    std::exception_ptr error;
    if (m_selected == link) {
        try {
            link->SetSelect(false);
        } catch (...) {
            error = std::current_exception();
        }
        if (!self || m_links.count(number) == 0) {  // a handler was faster
            if (error) std::rethrow_exception(error);
            return;
        }
        if (m_selected == link) m_selected.clear();
        selectionChanged(link);
    }
    if (invalidates) invalidate(link->GetClipRgn(0));
    orv::accessible::tellRemoved(link);
    const TorvQDJoin* join = link->Join;
    std::unique_ptr<TorvQDLink> removed = std::move(m_links[number]);
    m_links.erase(number);
    m_linkNumbers.remove(link);
    m_joins[m_joinNumbers.value(join)].links.erase(number);
    m_owner->statementChanged();
    {
        // Also when the handler raises; it may have used the join for another link.
        const auto settle = qScopeGuard([&] {
            if (!self) return;
            dropUnusedJoin(join);
            bury(std::move(removed));
        });
        if (const TRemoveEvent handler = OnRemoveLink) handler(this, link);
    }
    if (error) std::rethrow_exception(error);
    change.finish();
}

void TorvQDWorkArea::dropUnusedJoin(const TorvQDJoin* join) {
    const auto found = m_joins.find(m_joinNumbers.value(join, -1));
    if (found == m_joins.end() || !found->second.links.empty()) return;
    m_joinNumbers.remove(join);
    m_joinByPair.remove(pairOf(join->Table1, join->Table2));
    for (const TorvQDTable* table : {join->Table1, join->Table2}) {
        const auto joins = m_joinsOfTable.find(table);
        if (joins == m_joinsOfTable.end()) continue;
        joins->erase(found->first);
        if (joins->empty()) m_joinsOfTable.erase(joins);
    }
    m_dyingJoins.push_back(std::move(found->second.join));
    m_joins.erase(found);
}

void TorvQDWorkArea::deleteLink(TorvQDLink* link) {
    const int number = m_linkNumbers.value(link, -1);
    if (number < 0) return;
    const QPointer<TorvQDWorkArea> self(this);
    if (m_owner->DoAddRemoveLink(link, araRemove) && self) removeLink(number, true);
}

// In the order of creation. What a handler raises is passed on once all links are gone.
void TorvQDWorkArea::unlinkTable(TorvQDTable* table) {
    std::vector<int> numbers;
    for (const int join : m_joinsOfTable.value(table)) {
        for (const auto& [number, link] : m_joins[join].links) numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    const QPointer<TorvQDWorkArea> self(this);
    ChangeScope change(m_owner, this);
    std::exception_ptr error;
    for (const int number : numbers) {
        try {
            if (self) removeLink(number, true);
        } catch (...) {
            if (!error) error = std::current_exception();
        }
    }
    if (error) std::rethrow_exception(error);
    change.finish();
}

// --- changing ---

void TorvQDWorkArea::attachLink(TorvQDLink* link, bool atStart, TorvQDListItem* item) {
    const int number = m_linkNumbers.value(link, -1);
    if (number < 0) return;
    TorvQDListItem*& end = atStart ? link->Item1 : link->Item2;
    if (end == item || end->Table != item->Table) return;
    ChangeScope change(m_owner, this);
    const bool wasSelected = m_selected == link;
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> table(item->Table);
    const int row = item->GetIndex();
    if (wasSelected) selectObject(nullptr);
    // The host may have removed the link, or its boxes with it, when it was told.
    if (!self || m_linkNumbers.value(link, -1) != number || !table) return;
    if (row >= int(table->Items.size())) return;
    invalidate(link->GetClipRgn(0));
    end = item;
    link->SetBoundaryRect();
    invalidate(link->GetClipRgn(0));
    orv::accessible::tellRenamed(link);
    m_owner->statementChanged();
    if (wasSelected) selectObject(link);
    change.finish();
}

void TorvQDWorkArea::replaceLink(TorvQDLink* link, bool atStart, TorvQDListItem* item) {
    const int number = m_linkNumbers.value(link, -1);
    if (number < 0) return;
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> table(item->Table);
    const int row = item->GetIndex();
    TorvQDListItem* other = atStart ? link->Item2 : link->Item1;
    const int operation = link->Operator;
    const QString source = link->OperatorSource;
    const QString text = link->operatorText();
    const TKindOfJoin kind = link->Join->KindOfJoin;
    const bool isMuted = link->Muted;
    const bool allowed = m_owner->DoAddRemoveLink(link, araRemove);
    // The host may have removed the box or the link while it was asked.
    if (!self || !allowed || !table || m_links.count(number) == 0) return;
    if (row >= int(table->Items.size()) || table->Items[std::size_t(row)].get() != item) return;
    ChangeScope change(m_owner, this);
    bool reversed = false;
    const bool makesJoin = !FindJoin(table, other->Table, reversed);
    TorvQDLink* added = atStart ? AddLink(table, other->Table, item, other)
                                : AddLink(other->Table, table, other, item);
    if (!self || !added) return;
    if (added->Item1->Table == (atStart ? table.data() : other->Table)) {
        added->Operator = operation;
        added->OperatorSource = source;
    } else {
        // The join that was there has its boxes the other way round.
        added->setOperatorText(orv::mirroredOperator(text));
    }
    if (makesJoin) added->Join->KindOfJoin = kind;
    added->Muted = isMuted;
    removeLink(number, true);
    if (self && holds(added)) selectObject(added);
    change.finish();
}

void TorvQDWorkArea::postDeleteLink(TorvQDLink* link) {
    QCoreApplication::postEvent(this, new TorvDiagramEvent(CMDELETELINK, link));
}

void TorvQDWorkArea::editLink(TorvQDLink* link) {
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDLink> edited(link);
    const QPointer<TdlgLnkProp> dialog(m_linkDialog);
    const auto settle = [&](bool changed) {
        if (!self || !edited || !holds(edited)) return;
        for (TorvQDLink* line : linksOf(edited->Join)) {
            invalidate(line->GetClipRgn(0));
            if (changed) orv::accessible::tellRenamed(line);
        }
        if (changed) m_owner->statementChanged();
    };
    bool changed = false;
    try {
        changed = m_linkDialog->edit(link);
    } catch (...) {
        orv::guarded([&] { settle(dialog && dialog->hasChanged()); });
        throw;
    }
    settle(changed);
}

// Names of links are made from those of their boxes.
void TorvQDWorkArea::tellJoinChanged(const HeldJoin& held) {
    for (const auto& [number, link] : held.links) orv::accessible::tellRenamed(link);
}

// The lines of a box that moved, changed its shape or scrolled its rows.
void TorvQDWorkArea::reroute(const TorvQDTable* table) {
    const auto joins = m_joinsOfTable.constFind(table);
    if (joins == m_joinsOfTable.constEnd()) return;
    for (const int join : *joins) {
        for (const auto& [number, link] : m_joins[join].links) {
            invalidate(link->GetClipRgn(0));
            link->SetBoundaryRect();
            invalidate(link->GetClipRgn(0));
        }
    }
}

void TorvQDWorkArea::SelectLink(TorvQDListItem* Item1, TorvQDListItem* Item2, bool State) {
    const TSelectionLinkEvent handler = OnSelectionLink;
    if (handler) handler(this, Item1->Table, Item2->Table, Item1, Item2, State);
}

void TorvQDWorkArea::linkSelected(TorvQDLink* link, bool selected) {
    SelectLink(link->Item1, link->Item2, selected);
}

// --- FROM ---

bool TorvQDWorkArea::createdBefore(const TorvQDTable* first, const TorvQDTable* second) const {
    return m_creationNumber.value(first) < m_creationNumber.value(second);
}

// The tables as the text of FROM is made from them.
std::vector<const TorvQDTable*> TorvQDWorkArea::tablesOfFrom() const {
    if (m_owner->KeepMeaning()) return {m_creation.begin(), m_creation.end()};
    std::vector<const TorvQDTable*> tables;
    for (const auto& table : m_tables) tables.push_back(table.get());
    return tables;
}

bool TorvQDWorkArea::isWritten(const TorvQDJoin& join) const {
    const auto& links = m_joins.at(m_joinNumbers.value(&join)).links;
    if (!join.Text.isEmpty()) return !links.empty();
    return std::any_of(links.begin(), links.end(),
                       [](const auto& entry) { return !entry.second->Muted; });
}

void TorvQDWorkArea::muteLink(TorvQDLink* link, bool muted) {
    if (!link || link->Muted == muted) return;
    link->Muted = muted;
    invalidate(link->GetClipRgn(0));
    m_owner->statementChanged();
}

orv::FromDiagram TorvQDWorkArea::fromDiagram() const {
    orv::FromDiagram diagram;
    QHash<const TorvQDTable*, int> numbers;
    for (const TorvQDTable* table : tablesOfFrom()) {
        numbers.insert(table, int(diagram.tables.size()));
        const auto* procedure = qobject_cast<const TorvQDSProc*>(table);
        const QString name = procedure ? procedure->call() : table->TableName;
        diagram.tables.push_back({name, table->GetAlias(), table->TableName});
    }
    for (const auto& [joinNumber, held] : m_joins) {
        const TorvQDJoin& join = *held.join;
        orv::FromJoin from{
            numbers.value(join.Table1), numbers.value(join.Table2), join.KindOfJoin, {}, join.Text};
        for (const auto& [number, link] : held.links) {
            if (link->Muted) continue;
            from.links.push_back({link->Item1->Name, link->operatorText(), link->Item2->Name});
        }
        if (isWritten(join)) diagram.joins.push_back(std::move(from));
    }
    return diagram;
}

std::vector<TorvQDJoin*> TorvQDWorkArea::brokenCircles() const {
    orv::FromPlaces places;
    (void)writeFrom(&places);
    std::vector<TorvQDJoin*> joins = Joins();
    std::erase_if(joins, [this](const TorvQDJoin* join) { return !isWritten(*join); });
    std::vector<TorvQDJoin*> broken;
    for (std::size_t index = 0; index < joins.size(); ++index) {
        const orv::JoinPlace& place = places.joins[index];
        if (!place.closesCycle) continue;
        const bool isInner = place.line >= 0 && joins[index]->KindOfJoin == klInnerJoin &&
                             joins[std::size_t(place.line)]->KindOfJoin == klInnerJoin;
        if (!m_owner->KeepMeaning() || !isInner) broken.push_back(joins[index]);
    }
    return broken;
}

std::vector<TorvQDListItem*> TorvQDWorkArea::earlyArguments() const {
    std::vector<std::pair<TorvQDListItem*, const TorvQDTable*>> mentions;
    for (TorvQDTable* table : m_creation) {
        const auto* procedure = qobject_cast<const TorvQDSProc*>(table);
        if (!procedure) continue;
        for (TorvQDListItem* row : procedure->parameterRows()) {
            for (const TorvQDTable* named : tablesNamedBy(*row)) mentions.emplace_back(row, named);
        }
    }
    if (mentions.empty()) return {};
    orv::FromPlaces places;
    (void)writeFrom(&places);
    QHash<const TorvQDTable*, int> placeOf;
    for (const TorvQDTable* table : tablesOfFrom()) {
        placeOf.insert(table, places.tables[std::size_t(placeOf.size())]);
    }
    std::vector<TorvQDListItem*> early;
    for (const auto& [row, named] : mentions) {
        const bool isTold = !early.empty() && early.back() == row;
        if (!isTold && placeOf.value(named) >= placeOf.value(row->Table)) early.push_back(row);
    }
    return early;
}

namespace {

// The tables that have such a field. The columns of a call cannot be meant by its own arguments.
std::vector<const TorvQDTable*> otherOwners(const TorvQDWorkArea& area, const QString& field,
                                            const TorvQDListItem& row) {
    std::vector<const TorvQDTable*> others;
    for (const TorvQDTable* owner : area.tablesWithField(field)) {
        if (owner != row.Table && owner->findItem(field)) others.push_back(owner);
    }
    return others;
}

}  // namespace

// The tables that the SQL of a parameter names. A bare name in a sub-query is taken for a field of
// its own tables; one that several tables have, for a field of those that were there before.
std::vector<const TorvQDTable*> TorvQDWorkArea::tablesNamedBy(const TorvQDListItem& row) const {
    const QString text = orv::withJoinedNames(TorvQDSProc::sqlOf(row).value_or(QString()));
    const orv::SqlTokens tokens = orv::tokenise(text);
    const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    const std::vector<bool> inSubQuery = orv::insideSubQueries(run);
    std::vector<const TorvQDTable*> tables;
    for (int index = 0; index < run.size(); ++index) {
        const bool isCall = index + 1 < run.size() && run[index + 1].kind == orv::SqlToken::Open;
        if (isCall || !orv::namesField(run, index)) continue;
        const orv::QualifiedName name = orv::splitQualifiedName(run.textOf(index).toString());
        if (!name.alias.isEmpty()) {
            if (const TorvQDTable* table = findTable(name.alias)) tables.push_back(table);
            continue;
        }
        if (inSubQuery[std::size_t(index)]) continue;
        const std::vector<const TorvQDTable*> owners = otherOwners(*this, name.field, row);
        for (const TorvQDTable* owner : owners) {
            if (owners.size() == 1 || createdBefore(owner, row.Table)) tables.push_back(owner);
        }
    }
    return tables;
}

QString TorvQDWorkArea::writeFrom(orv::FromPlaces* places) const {
    const orv::FromDiagram diagram = fromDiagram();
    return m_owner->KeepMeaning() ? orv::fromTextKeepingMeaning(diagram, places)
                                  : orv::fromText(diagram, places);
}

QString TorvQDWorkArea::GetSQLStatment() const {
    return writeFrom(nullptr);
}

void TorvQDWorkArea::LoadSQL(const TorvQDParser& Node) {
    if (Node.Location() != inFrom) {
        throw orv::Error(QStringLiteral("There is not valid object for extract tables"));
    }
    if (!m_owner->canGetTableFields()) {
        throw orv::Error(QStringLiteral(
            "Event OnGetTableFields of TorvQueryBuilder class must be assigned for getting proper "
            "information about fields of tables"));
    }
    const QPointer<TorvQDWorkArea> self(this);
    ClearContents();
    if (!self) return;
    ChangeScope change(m_owner, this);
    FromLoader(*this, Node).load();
    if (!self) return;
    viewport()->update();
    change.finish();
}
