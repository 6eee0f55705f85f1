// SPDX-License-Identifier: MIT
#include "workarea/ORVQDFromText.h"

#include <QStringList>
#include <queue>

#include <functional>
#include <utility>

namespace orv {

namespace {

const QString crLf = QStringLiteral("\r\n");
const QString joinIndent = QStringLiteral("   ");
const QString conjunction = QStringLiteral(" AND ");

QString withAlias(const FromTable& table) {
    return table.alias == table.plainName ? table.name : table.name + u' ' + table.alias;
}

/// The joins of each table, in the order of their creation.
std::vector<std::vector<int>> joinsByTable(const FromDiagram& diagram) {
    std::vector<std::vector<int>> joins(diagram.tables.size());
    for (int index = 0; index < int(diagram.joins.size()); ++index) {
        const FromJoin& join = diagram.joins[std::size_t(index)];
        joins[std::size_t(join.table1)].push_back(index);
        if (join.table2 != join.table1) joins[std::size_t(join.table2)].push_back(index);
    }
    return joins;
}

QString condition(const QString& left, const QString& operation, const QString& right) {
    return u'(' + left + u' ' + operation + u' ' + right + u')';
}

/// The conditions of a join as seen from one of its tables, which stands on the left.
QStringList conditions(const FromDiagram& diagram, const FromJoin& join, bool fromFirst,
                       bool mirrors) {
    const QString alias1 = diagram.tables[std::size_t(join.table1)].alias + u'.';
    const QString alias2 = diagram.tables[std::size_t(join.table2)].alias + u'.';
    QStringList texts;
    for (const FromLink& link : join.links) {
        const QString first = alias1 + link.field1;
        const QString second = alias2 + link.field2;
        const QString swapped = mirrors ? mirroredOperator(link.operation) : link.operation;
        texts << (fromFirst ? condition(first, link.operation, second)
                            : condition(second, swapped, first));
    }
    return texts;
}

FromPlaces placesOf(const FromDiagram& diagram) {
    return {std::vector<int>(diagram.tables.size(), -1),
            std::vector<JoinPlace>(diagram.joins.size())};
}

// --- in the order of stacking ---

class StackingWriter {
public:
    explicit StackingWriter(const FromDiagram& diagram)
        : m_diagram(diagram),
          m_joins(joinsByTable(diagram)),
          m_joinUsed(diagram.joins.size(), false),
          m_places(placesOf(diagram)) {}

    [[nodiscard]] FromPlaces takePlaces() { return std::move(m_places); }

    QString text() {
        QStringList items;
        for (int table = 0; table < int(m_diagram.tables.size()); ++table) {
            if (isWritten(table)) continue;
            take(table);
            m_item = withAlias(m_diagram.tables[std::size_t(table)]);
            follow(table);
            items << m_item;
        }
        return items.join(u',' + crLf);
    }

private:
    struct Step {
        int table;
        std::size_t next;  // of its joins
    };

    [[nodiscard]] bool isWritten(int table) const {
        return m_places.tables[std::size_t(table)] >= 0;
    }
    void take(int table) { m_places.tables[std::size_t(table)] = m_written++; }

    // Depth first: the joins of a table that was reached come before the next one of its origin.
    void follow(int first) {
        std::vector<Step> steps = {{first, 0}};
        while (!steps.empty()) {
            Step& step = steps.back();
            const std::vector<int>& joins = m_joins[std::size_t(step.table)];
            if (step.next == joins.size()) {
                steps.pop_back();
                continue;
            }
            const int index = joins[step.next++];
            if (m_joinUsed[std::size_t(index)]) continue;
            m_joinUsed[std::size_t(index)] = true;
            steps.push_back({writeJoin(index, step.table), 0});
        }
    }

    int writeJoin(int index, int from) {
        const FromJoin& join = m_diagram.joins[std::size_t(index)];
        const bool fromFirst = join.table1 == from;
        const int to = fromFirst ? join.table2 : join.table1;
        const bool again = isWritten(to);
        if (!again) take(to);
        m_places.joins[std::size_t(index)] = {!fromFirst, again, index};
        const FromTable& table = m_diagram.tables[std::size_t(to)];
        const TKindOfJoin kind = fromFirst ? join.kind : mirrored(join.kind);
        QStringList parts = conditions(m_diagram, join, fromFirst, false);
        if (!join.text.isEmpty()) parts << u'(' + join.text + u')';
        m_item += crLf + joinIndent + joinWords(kind) + u' ' +
                  (again ? table.name : withAlias(table)) + QStringLiteral(" ON ") +
                  parts.join(conjunction);
        return to;
    }

    const FromDiagram& m_diagram;
    std::vector<std::vector<int>> m_joins;
    std::vector<bool> m_joinUsed;
    FromPlaces m_places;
    int m_written = 0;  // tables
    QString m_item;
};

// --- with the meaning kept ---

class MeaningWriter {
public:
    explicit MeaningWriter(const FromDiagram& diagram)
        : m_diagram(diagram),
          m_joins(joinsByTable(diagram)),
          m_joinUsed(diagram.joins.size(), false),
          m_lineOf(diagram.tables.size(), -1),
          m_places(placesOf(diagram)) {}

    [[nodiscard]] FromPlaces takePlaces() { return std::move(m_places); }

    QString text() {
        QStringList items;
        for (int table = 0; table < int(m_diagram.tables.size()); ++table) {
            if (m_places.tables[std::size_t(table)] >= 0) continue;
            m_lines.clear();
            bringIn(table);
            while (!m_open.empty()) {
                const int join = m_open.top();
                m_open.pop();
                writeJoin(join);
            }
            items << itemText(m_diagram.tables[std::size_t(table)]);
        }
        return items.join(u',' + crLf);
    }

private:
    struct Line {
        int join;
        QString head;
        QStringList conditions;
        QStringList texts;
    };

    void bringIn(int table) {
        m_places.tables[std::size_t(table)] = m_written++;
        m_lineOf[std::size_t(table)] = int(m_lines.size()) - 1;
        for (const int join : m_joins[std::size_t(table)]) {
            if (!m_joinUsed[std::size_t(join)]) m_open.push(join);
        }
    }

    void writeJoin(int index) {
        if (m_joinUsed[std::size_t(index)]) return;
        m_joinUsed[std::size_t(index)] = true;
        const FromJoin& join = m_diagram.joins[std::size_t(index)];
        const int place1 = m_places.tables[std::size_t(join.table1)];
        const int place2 = m_places.tables[std::size_t(join.table2)];
        const bool closesCycle = place1 >= 0 && place2 >= 0;
        const bool fromFirst = place2 < 0 || (closesCycle && place1 <= place2);
        const int to = fromFirst ? join.table2 : join.table1;
        if (!closesCycle) {
            const TKindOfJoin kind = fromFirst ? join.kind : mirrored(join.kind);
            const FromTable& table = m_diagram.tables[std::size_t(to)];
            m_lines.push_back(
                {index, joinIndent + joinWords(kind) + u' ' + withAlias(table), {}, {}});
            bringIn(to);
        }
        JoinPlace& place = m_places.joins[std::size_t(index)];
        place = {!fromFirst, closesCycle, -1};
        const int number = m_lineOf[std::size_t(to)];
        if (number < 0) return;  // a table that is compared with itself and nothing else
        Line& line = m_lines[std::size_t(number)];
        place.line = line.join;
        line.conditions << conditions(m_diagram, join, fromFirst, true);
        if (!join.text.isEmpty()) line.texts << join.text;
    }

    [[nodiscard]] QString itemText(const FromTable& first) const {
        QString text = withAlias(first);
        for (const Line& line : m_lines) {
            QStringList parts = line.conditions;
            if (!line.texts.isEmpty()) parts << u'(' + line.texts.join(conjunction) + u')';
            text += crLf + line.head + QStringLiteral(" ON ") + parts.join(conjunction);
        }
        return text;
    }

    const FromDiagram& m_diagram;
    std::vector<std::vector<int>> m_joins;
    std::vector<bool> m_joinUsed;
    std::vector<Line> m_lines;  // of the item that is being written
    std::vector<int> m_lineOf;  // the line that brought the table in; -1 for a first one
    // Joins that touch a written table, the earliest on top.
    std::priority_queue<int, std::vector<int>, std::greater<>> m_open;
    FromPlaces m_places;
    int m_written = 0;  // tables
};

}  // namespace

QString fromText(const FromDiagram& diagram, FromPlaces* places) {
    StackingWriter writer(diagram);
    QString text = writer.text();
    if (places) *places = writer.takePlaces();
    return text;
}

QString fromTextKeepingMeaning(const FromDiagram& diagram, FromPlaces* places) {
    MeaningWriter writer(diagram);
    QString text = writer.text();
    if (places) *places = writer.takePlaces();
    return text;
}

}  // namespace orv
