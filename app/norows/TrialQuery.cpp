// SPDX-License-Identifier: MIT
#include "norows/TrialQuery.h"

#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "words/ConditionWords.h"
#include "words/QueryNames.h"
#include "workarea/ORVQDFloatPanel.h"

#include <algorithm>
#include <deque>

namespace orvquery {

namespace {

constexpr std::size_t mostParts = 100;

QString onOneLine(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    text.replace(u'\n', u' ');
    text.replace(u'\r', u' ');
    return orv::orvTrim(text);
}

}  // namespace

QString conditionText(const TorvQDWhereRow& row) {
    const QString text = onOneLine(row.GetSQLCondition(false));
    if (text.isEmpty()) return notFilledIn();
    // A row is written as one pair of brackets; a group may have a NOT in front of them.
    return text.startsWith(u'(') && text.endsWith(u')') ? orv::orvTrim(text.mid(1, text.size() - 2))
                                                        : text;
}

QString linkText(const TorvQDLink& link) {
    return link.Join->Table1->GetAlias() + u'.' + link.Item1->Name + u' ' + link.operatorText() +
           u' ' + link.Join->Table2->GetAlias() + u'.' + link.Item2->Name;
}

/// Parts are away while it lives.
class TrialQuery::Dropped {
public:
    explicit Dropped(TorvQueryBuilder& builder) : m_builder(builder) {}
    Dropped(const Dropped&) = delete;
    Dropped& operator=(const Dropped&) = delete;
    ~Dropped() {
        for (TorvQDWhereRow* row : m_rows) row->SetMuted(false);
        for (TorvQDLink* link : m_links) link->Muted = false;
        for (const auto& [join, kind] : m_joins) join->KindOfJoin = kind;
        if (!m_end.isEmpty()) m_builder.setTailText(m_end);
    }

    void mute(TorvQDWhereRow& row) {
        if (row.Muted) return;
        m_rows.push_back(&row);
        row.SetMuted(true);
    }
    void muteAll(const TorvQDWherePanel& panel) {
        const TorvQDWhereRows& rows = *panel.rootRow()->SubRows;
        for (int index = 0; index < rows.GetCount(); ++index) mute(*rows.Row(index));
    }
    void mute(TorvQDLink& link) {
        if (link.Muted) return;
        m_links.push_back(&link);
        link.Muted = true;
    }
    void setKind(TorvQDJoin& join, TKindOfJoin kind) {
        if (join.KindOfJoin == kind) return;
        m_joins.emplace_back(&join, join.KindOfJoin);
        join.KindOfJoin = kind;
    }
    void dropEnd() {
        if (orv::isBlank(m_builder.TailText())) return;
        m_end = m_builder.TailText();
        m_builder.setTailText({});
    }

private:
    TorvQueryBuilder& m_builder;
    std::vector<TorvQDWhereRow*> m_rows;
    std::vector<TorvQDLink*> m_links;
    std::vector<std::pair<TorvQDJoin*, TKindOfJoin>> m_joins;
    QString m_end;
};

TrialQuery::TrialQuery(TorvQueryBuilder& shown) : m_builder(std::make_unique<TorvQueryBuilder>()) {
    const QByteArray state = shown.SaveState();
    m_state = orv::readState(state);
    m_builder->setOperators(*shown.Operators);
    m_builder->setKeepMeaning(shown.KeepMeaning());
    m_builder->RestoreState(state);
    m_whole = m_builder->GetSQLStatment();
    // Which rows an end such as LIMIT leaves may depend on their order, and how many do not.
    if (orv::isBlank(m_builder->TailText())) m_builder->OrderPanel->setSortedLines({});
    m_base = without({});
    const orv::SelectTexts select = m_builder->SelectPanel->grid()->GetSQLStatment();
    m_isAlwaysOneRow = select.aggregated && orv::isBlank(select.groupBy);
    m_from = fromOrder(m_state, m_builder->KeepMeaning());
    const QueryNames names(m_state);
    for (const int table : m_from.firstTables) m_firstTables += names.table(table);

    addRows(QueryPart::Kind::Condition);
    addRows(QueryPart::Kind::GroupCondition);
    addJoins();
    if (!orv::isBlank(m_builder->TailText())) {
        addPart({QueryPart::Kind::End, onOneLine(m_builder->TailText())});
    }
    addNested();
}

TrialQuery::~TrialQuery() = default;

bool TrialQuery::hasPlainJoins() const {
    return std::all_of(m_from.lines.begin(), m_from.lines.end(), [](const FromLine& line) {
        return line.kind == klInnerJoin || line.kind == klLOuterJoin;
    });
}

TorvQDWhereRow& TrialQuery::rowOf(const QueryPart& part) const {
    const bool isOfGroups = part.kind == QueryPart::Kind::GroupCondition;
    TorvQDWhereRow* row = (isOfGroups ? m_builder->HavingPanel : m_builder->WherePanel)->rootRow();
    for (const int index : part.path) row = row->SubRows->Row(index);
    return *row;
}

void TrialQuery::addPart(QueryPart part) {
    const int number = int(m_parts.size());
    for (int outer = part.parent; outer >= 0; outer = m_parts[std::size_t(outer)].parent) {
        m_parts[std::size_t(outer)].covered.push_back(number);
    }
    m_parts.push_back(std::move(part));
}

// Without a GROUP BY those of groups are not written, and nowhere those that are muted.
void TrialQuery::addRows(QueryPart::Kind kind) {
    QueryPart part{kind, {}};
    const std::size_t before = m_parts.size();
    const TorvQDWhereRow& root = rowOf(part);
    const int count = root.SubRows->GetCount();
    for (int index = 0; index < count; ++index) {
        part.path = {index};
        const TorvQDWhereRow& row = rowOf(part);
        if (!row.isWritten()) continue;
        part.ownText = conditionText(row);
        part.text = part.ownText;
        m_parts.push_back(part);
        if (without({int(m_parts.size()) - 1}) == m_base) m_parts.pop_back();
    }
    const GroupKind group = groupKind(root.GroupOper);
    const bool isNegated = group == GroupKind::NotAll || group == GroupKind::NotAny;
    if (isNegated && m_parts.size() == before + 1) m_parts.back().text = conditionText(root);
}

// The outer ones come first, as long as there is room. A group of one condition is that condition.
void TrialQuery::addNested() {
    struct Group {
        int part;
        QList<int> path;
    };
    std::deque<Group> groups;
    for (std::size_t index = 0; index < m_parts.size(); ++index) {
        if (m_parts[index].isCondition()) groups.push_back({int(index), m_parts[index].path});
    }
    for (; !groups.empty(); groups.pop_front()) {
        const auto [outer, path] = groups.front();
        QueryPart part{m_parts[std::size_t(outer)].kind, {}, outer, path};
        const TorvQDWhereRows& rows = *rowOf(part).SubRows;
        std::vector<int> written;
        for (int index = 0; index < rows.GetCount(); ++index) {
            if (rows.Row(index)->isWritten()) written.push_back(index);
        }
        for (const int index : written) {
            part.path = path + QList<int>{index};
            if (written.size() == 1) {
                groups.push_back({outer, part.path});
            } else if (m_parts.size() >= mostParts) {
                ++m_passedOver;
            } else {
                part.ownText = conditionText(*rows.Row(index));
                part.text = part.ownText;
                groups.push_back({int(m_parts.size()), part.path});
                addPart(part);
            }
        }
    }
}

// Without it, are the tables of the join apart?
bool TrialQuery::isBridge(int join) const {
    std::vector<int> side(m_state.tables.size(), 0);
    const orv::QueryState::Join& removed = m_state.joins[std::size_t(join)];
    std::deque<int> reached = {removed.table1};
    side[std::size_t(removed.table1)] = 1;
    for (; !reached.empty(); reached.pop_front()) {
        for (const FromLine& line : m_from.lines) {
            for (const int number : line.joins) {
                const orv::QueryState::Join& other = m_state.joins[std::size_t(number)];
                const bool touches =
                    other.table1 == reached.front() || other.table2 == reached.front();
                if (number == join || !touches) continue;
                for (const int table : {other.table1, other.table2}) {
                    if (std::exchange(side[std::size_t(table)], 1) == 0) reached.push_back(table);
                }
            }
        }
    }
    return side[std::size_t(removed.table2)] == 0;
}

void TrialQuery::addJoins() {
    const QueryNames names(m_state);
    std::vector<int> partOf;  // by line
    for (std::size_t index = 0; index < m_from.lines.size(); ++index) {
        const FromLine& line = m_from.lines[index];
        QueryPart part{QueryPart::Kind::Join, {}};
        part.number = int(index);
        part.table = names.table(line.table);
        part.isInner = line.kind == klInnerJoin;
        QStringList texts;
        const std::vector<TorvQDLink*> links = m_builder->WorkArea->Links();
        for (std::size_t number = 0; number < links.size(); ++number) {
            const int join = m_state.links[number].join;
            const bool isHere =
                std::find(line.joins.begin(), line.joins.end(), join) != line.joins.end();
            if (isHere && !links[number]->Muted) texts += linkText(*links[number]);
        }
        for (const int join : line.joins) {
            const QString text = onOneLine(m_state.joins[std::size_t(join)].text);
            if (!text.isEmpty()) texts += text;
        }
        part.text = part.table + QStringLiteral(": ") + texts.join(QStringLiteral(" AND "));
        partOf.push_back(int(m_parts.size()));
        addPart(std::move(part));
        addLinks(int(index), partOf.back());
    }
    for (std::size_t index = 0; index < partOf.size(); ++index) {
        std::vector<int>& covered = m_parts[std::size_t(partOf[index])].covered;
        for (const int line : linesHangingOn(m_from, int(index))) {
            if (line != int(index)) covered.push_back(partOf[std::size_t(line)]);
        }
    }
}

// One that holds two parts of the diagram together is tried with its join alone: without it each
// row of the one part would be combined with each row of the other.
void TrialQuery::addLinks(int line, int parent) {
    const std::vector<TorvQDLink*> links = m_builder->WorkArea->Links();
    for (const int join : m_from.lines[std::size_t(line)].joins) {
        std::vector<int> written;
        for (std::size_t number = 0; number < links.size(); ++number) {
            if (m_state.links[number].join == join && !links[number]->Muted) {
                written.push_back(int(number));
            }
        }
        const bool hasMore = written.size() > 1 || !m_state.joins[std::size_t(join)].text.isEmpty();
        if (!hasMore && isBridge(join)) continue;
        for (const int number : written) {
            QueryPart part{QueryPart::Kind::Link, linkText(*links[std::size_t(number)]), parent};
            part.ownText = part.text;
            part.number = number;
            addPart(std::move(part));
        }
    }
}

QString TrialQuery::without(const std::vector<int>& parts, Conditions conditions) {
    Dropped dropped(*m_builder);
    if (conditions == Conditions::Dropped) {
        dropped.muteAll(*m_builder->WherePanel);
        dropped.muteAll(*m_builder->HavingPanel);
        dropped.dropEnd();
    }
    for (const int index : parts) {
        const QueryPart& part = m_parts[std::size_t(index)];
        switch (part.kind) {
        case QueryPart::Kind::Condition:
        case QueryPart::Kind::GroupCondition: dropped.mute(rowOf(part)); break;
        case QueryPart::Kind::Link:
            dropped.mute(*m_builder->WorkArea->Links()[std::size_t(part.number)]);
            break;
        case QueryPart::Kind::Join:
            for (const int number : linesHangingOn(m_from, part.number)) {
                const FromLine& line = m_from.lines[std::size_t(number)];
                dropped.setKind(*m_builder->WorkArea->Joins()[std::size_t(line.join)], line.outer);
            }
            break;
        case QueryPart::Kind::End: dropped.dropEnd(); break;
        }
    }
    return m_builder->GetSQLStatment();
}

}  // namespace orvquery
