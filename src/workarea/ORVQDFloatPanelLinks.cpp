// SPDX-License-Identifier: MIT
// The joins and links of the work area, and the FROM clause that is written from them.
#include "core/Error.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDFromLoader.h"

#include <algorithm>

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

const std::vector<TorvQDLink*>& TorvQDWorkArea::linksOf(const TorvQDJoin* join) const {
    static const std::vector<TorvQDLink*> none;
    const auto found = m_linksOfJoin.constFind(join);
    return found == m_linksOfJoin.constEnd() ? none : *found;
}

bool TorvQDWorkArea::FindLink(const TorvQDTable* Table1, const TorvQDTable* Table2,
                              const TorvQDListItem* Item1, const TorvQDListItem* Item2) const {
    bool reversed = false;
    const TorvQDJoin* join = FindJoin(Table1, Table2, reversed);
    if (reversed) std::swap(Item1, Item2);
    const std::vector<TorvQDLink*>& links = linksOf(join);
    return std::any_of(links.begin(), links.end(), [&](const TorvQDLink* link) {
        return link->Item1 == Item1 && link->Item2 == Item2;
    });
}

TorvQDLink* TorvQDWorkArea::AddLink(TorvQDTable* Table1, TorvQDTable* Table2, TorvQDListItem* Item1,
                                    TorvQDListItem* Item2) {
    if (indexOf(Table1) < 0 || indexOf(Table2) < 0) return nullptr;
    bool reversed = false;
    TorvQDJoin* join = FindJoin(Table1, Table2, reversed);
    std::unique_ptr<TorvQDJoin> made;
    if (!join) {
        made = std::make_unique<TorvQDJoin>(this, Table1, Table2);
        join = made.get();
    }
    if (reversed) std::swap(Item1, Item2);
    auto link = std::make_unique<TorvQDLink>(this, join, Item1, Item2);
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> first(Table1);
    const QPointer<TorvQDTable> second(Table2);
    if (!m_owner->DoAddRemoveLink(link.get(), araAdd) || !self || !first || !second) return nullptr;
    beginChange();
    if (made) adopt(std::move(made));
    TorvQDLink* added = adopt(std::move(link));
    if (self) endChange();
    return self ? added : nullptr;
}

void TorvQDWorkArea::adopt(std::unique_ptr<TorvQDJoin> join) {
    m_joinByPair.insert(pairOf(join->Table1, join->Table2), join.get());
    m_joinsOfTable[join->Table1].push_back(join.get());
    if (join->Table1 != join->Table2) m_joinsOfTable[join->Table2].push_back(join.get());
    m_joins.push_back(std::move(join));
}

// From here on the link is one of the diagram; those who want to know are told.
TorvQDLink* TorvQDWorkArea::adopt(std::unique_ptr<TorvQDLink> link) {
    TorvQDLink* added = link.get();
    m_linksOfJoin[added->Join].push_back(added);
    m_links.push_back(std::move(link));
    invalidate(TRect::fromQRect(added->GetClipRgn(0).boundingRect()));
    m_owner->statementChanged();
    if (const TAddEvent handler = OnAddLink) handler(this, added);
    return added;
}

TorvQDJoin* TorvQDWorkArea::restoreJoin(TorvQDTable* table1, TorvQDTable* table2) {
    adopt(std::make_unique<TorvQDJoin>(this, table1, table2));
    return m_joins.back().get();
}

TorvQDLink* TorvQDWorkArea::restoreLink(TorvQDJoin* join, TorvQDListItem* item1,
                                        TorvQDListItem* item2) {
    return adopt(std::make_unique<TorvQDLink>(this, join, item1, item2));
}

void TorvQDWorkArea::RemoveLink(TorvQDLink* Link, bool Invalidate) {
    const auto found = std::find_if(m_links.begin(), m_links.end(),
                                    [&](const auto& link) { return link.get() == Link; });
    if (found == m_links.end()) return;
    beginChange();
    if (m_selected == Link) {
        Link->SetSelect(false);
        m_selected.clear();
    }
    if (Invalidate) invalidate(TRect::fromQRect(Link->GetClipRgn(0).boundingRect()));
    TorvQDJoin* join = Link->Join;
    std::unique_ptr<TorvQDLink> removed = std::move(*found);
    m_links.erase(found);
    std::erase(m_linksOfJoin[join], Link);
    m_owner->statementChanged();
    if (const TRemoveEvent handler = OnRemoveLink) handler(this, Link);
    if (linksOf(join).empty()) dropJoin(join);
    bury(std::move(removed));
    endChange();
}

void TorvQDWorkArea::dropJoin(TorvQDJoin* join) {
    m_linksOfJoin.remove(join);
    m_joinByPair.remove(pairOf(join->Table1, join->Table2));
    std::erase(m_joinsOfTable[join->Table1], join);
    std::erase(m_joinsOfTable[join->Table2], join);
    const auto found = std::find_if(m_joins.begin(), m_joins.end(),
                                    [&](const auto& owned) { return owned.get() == join; });
    m_dyingJoins.push_back(std::move(*found));
    m_joins.erase(found);
}

void TorvQDWorkArea::deleteLink(TorvQDLink* link) {
    if (!link) return;
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDLink> asked(link);
    if (m_owner->DoAddRemoveLink(link, araRemove) && self && asked) RemoveLink(link, true);
}

void TorvQDWorkArea::unlinkTable(TorvQDTable* table) {
    beginChange();
    const std::vector<TorvQDJoin*> joins = m_joinsOfTable.value(table);
    for (const TorvQDJoin* join : joins) {
        const std::vector<TorvQDLink*> links = linksOf(join);
        for (TorvQDLink* link : links) RemoveLink(link, true);
    }
    m_joinsOfTable.remove(table);
    endChange();
}

// The lines of a box that moved, changed its shape or scrolled its rows.
void TorvQDWorkArea::reroute(const TorvQDTable* table) {
    const auto joins = m_joinsOfTable.constFind(table);
    if (joins == m_joinsOfTable.constEnd()) return;
    for (const TorvQDJoin* join : *joins) {
        for (TorvQDLink* link : linksOf(join)) {
            invalidate(TRect::fromQRect(link->GetClipRgn(0).boundingRect()));
            link->SetBoundaryRect();
            invalidate(TRect::fromQRect(link->GetClipRgn(0).boundingRect()));
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

orv::FromDiagram TorvQDWorkArea::fromDiagram() const {
    orv::FromDiagram diagram;
    QHash<const TorvQDTable*, int> numbers;
    const auto add = [&](const TorvQDTable* table) {
        numbers.insert(table, int(diagram.tables.size()));
        diagram.tables.push_back({table->TableName, table->GetAlias(), table->TableName});
    };
    if (m_owner->KeepMeaning()) {
        for (const TorvQDTable* table : m_creation) add(table);
    } else {
        for (const auto& table : m_tables) add(table.get());
    }
    for (const auto& join : m_joins) {
        orv::FromJoin from{numbers.value(join->Table1),
                           numbers.value(join->Table2),
                           join->KindOfJoin,
                           {},
                           join->Text};
        for (const TorvQDLink* link : linksOf(join.get())) {
            from.links.push_back({link->Item1->Name, link->operatorText(), link->Item2->Name});
        }
        diagram.joins.push_back(std::move(from));
    }
    return diagram;
}

QString TorvQDWorkArea::writeFrom(std::vector<orv::JoinPlace>* places) const {
    const orv::FromDiagram diagram = fromDiagram();
    return m_owner->KeepMeaning() ? orv::fromTextKeepingMeaning(diagram, places)
                                  : orv::fromText(diagram, places);
}

std::vector<orv::JoinPlace> TorvQDWorkArea::joinPlaces() const {
    std::vector<orv::JoinPlace> places;
    (void)writeFrom(&places);
    return places;
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
    ClearContents();
    beginChange();
    const QPointer<TorvQDWorkArea> self(this);
    try {
        FromLoader(*this, Node).load();
    } catch (...) {
        if (self) endChange();
        throw;
    }
    if (!self) return;
    viewport()->update();
    endChange();
}
