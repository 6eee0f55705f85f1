// SPDX-License-Identifier: MIT
#include "norows/FromOrder.h"

#include "workarea/ORVQDFromText.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace orvquery {

namespace {

/// The diagram as the control's FROM is made from it.
class Diagram {
public:
    Diagram(const orv::QueryState& state, bool keepMeaning) : m_tables(state.tables.size()) {
        std::iota(m_tables.begin(), m_tables.end(), 0);
        if (keepMeaning && state.creationOrder.size() == m_tables.size()) {
            m_tables = state.creationOrder;
        }
        std::vector<int> numbers(m_tables.size());
        for (std::size_t number = 0; number < m_tables.size(); ++number) {
            numbers[std::size_t(m_tables[number])] = int(number);
            const orv::QueryState::Table& table = state.tables[std::size_t(m_tables[number])];
            m_diagram.tables.push_back({table.name, table.alias, table.name});
        }
        for (std::size_t index = 0; index < state.joins.size(); ++index) {
            const orv::QueryState::Join& join = state.joins[index];
            orv::FromJoin from{numbers[std::size_t(join.table1)], numbers[std::size_t(join.table2)],
                               join.kind, linksOf(state, int(index)), join.text};
            if (from.links.empty() && from.text.isEmpty()) continue;
            m_joins.push_back(int(index));
            m_diagram.joins.push_back(std::move(from));
        }
        if (keepMeaning) {
            (void)orv::fromTextKeepingMeaning(m_diagram, &m_places);
        } else {
            (void)orv::fromText(m_diagram, &m_places);
        }
    }

    [[nodiscard]] FromOrder order() const {
        std::vector<FromLine> lines;
        std::vector<int> lineOf(m_diagram.joins.size(), -1);
        std::vector<bool> isJoined(m_tables.size(), false);
        for (std::size_t index = 0; index < m_diagram.joins.size(); ++index) {
            const orv::JoinPlace& place = m_places.joins[index];
            if (place.line != int(index) || place.closesCycle) continue;
            const orv::FromJoin& join = m_diagram.joins[index];
            const int to = place.swapped ? join.table1 : join.table2;
            isJoined[std::size_t(to)] = true;
            lineOf[index] = int(lines.size());
            lines.push_back({m_joins[index],
                             {},
                             to,
                             {},
                             place.swapped ? orv::mirrored(join.kind) : join.kind,
                             place.swapped ? klROuterJoin : klLOuterJoin});
        }
        for (std::size_t index = 0; index < m_diagram.joins.size(); ++index) {
            const int written = m_places.joins[index].line;
            if (written < 0 || lineOf[std::size_t(written)] < 0) continue;
            FromLine& line = lines[std::size_t(lineOf[std::size_t(written)])];
            line.joins.push_back(m_joins[index]);
            for (const int table : {m_diagram.joins[index].table1, m_diagram.joins[index].table2}) {
                if (table != line.table) line.others.push_back(m_tables[std::size_t(table)]);
            }
        }
        std::sort(lines.begin(), lines.end(), [this](const FromLine& one, const FromLine& other) {
            return placeOf(one.table) < placeOf(other.table);
        });
        for (FromLine& line : lines) line.table = m_tables[std::size_t(line.table)];
        return {firstTables(isJoined), std::move(lines)};
    }

private:
    static std::vector<orv::FromLink> linksOf(const orv::QueryState& state, int join) {
        std::vector<orv::FromLink> links;
        for (const orv::QueryState::Link& link : state.links) {
            if (link.join != join || link.muted) continue;
            links.push_back({link.field1, link.operation, link.field2});
        }
        return links;
    }
    [[nodiscard]] int placeOf(int number) const { return m_places.tables[std::size_t(number)]; }
    [[nodiscard]] std::vector<int> firstTables(const std::vector<bool>& isJoined) const {
        std::vector<int> first;
        for (std::size_t number = 0; number < isJoined.size(); ++number) {
            if (!isJoined[number]) first.push_back(int(number));
        }
        std::sort(first.begin(), first.end(),
                  [this](int one, int other) { return placeOf(one) < placeOf(other); });
        for (int& number : first) number = m_tables[std::size_t(number)];
        return first;
    }

    std::vector<int> m_tables;  // of the state, by number in the diagram
    std::vector<int> m_joins;
    orv::FromDiagram m_diagram;
    orv::FromPlaces m_places;
};

}  // namespace

FromOrder fromOrder(const orv::QueryState& state, bool keepMeaning) {
    return Diagram(state, keepMeaning).order();
}

std::vector<int> linesHangingOn(const FromOrder& order, int first) {
    std::vector<int> hanging;
    std::set<int> missing;
    for (std::size_t number = std::size_t(first); number < order.lines.size(); ++number) {
        const FromLine& line = order.lines[number];
        const bool hangs =
            int(number) == first || std::any_of(line.others.begin(), line.others.end(),
                                                [&](int table) { return missing.contains(table); });
        if (!hangs) continue;
        missing.insert(line.table);
        if (line.kind == klInnerJoin) hanging.push_back(int(number));
    }
    return hanging;
}

}  // namespace orvquery
