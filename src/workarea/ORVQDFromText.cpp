// SPDX-License-Identifier: MIT
#include "workarea/ORVQDFromText.h"

#include <QHash>
#include <QStringList>
#include <queue>

#include <functional>

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

// --- in the order of stacking
// ---------------------------------------------------------------------

class StackingWriter {
public:
    explicit StackingWriter(const FromDiagram& diagram)
        : m_diagram(diagram),
          m_joins(joinsByTable(diagram)),
          m_tableUsed(diagram.tables.size(), false),
          m_joinUsed(diagram.joins.size(), false),
          m_joinPlaces(diagram.joins.size()) {}

    [[nodiscard]] const std::vector<JoinPlace>& places() const { return m_joinPlaces; }

    QString text() {
        QStringList items;
        for (int table = 0; table < int(m_diagram.tables.size()); ++table) {
            if (m_tableUsed[std::size_t(table)]) continue;
            m_tableUsed[std::size_t(table)] = true;
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
        const bool again = m_tableUsed[std::size_t(to)];
        m_tableUsed[std::size_t(to)] = true;
        m_joinPlaces[std::size_t(index)] = {!fromFirst, again, !again};
        const FromTable& table = m_diagram.tables[std::size_t(to)];
        const TKindOfJoin kind = fromFirst ? join.kind : mirrored(join.kind);
        m_item += crLf + joinIndent + joinWords(kind) + u' ' +
                  (again ? table.name : withAlias(table)) + QStringLiteral(" ON ") +
                  conditions(m_diagram, join, fromFirst, false).join(conjunction);
        return to;
    }

    const FromDiagram& m_diagram;
    std::vector<std::vector<int>> m_joins;
    std::vector<bool> m_tableUsed;
    std::vector<bool> m_joinUsed;
    std::vector<JoinPlace> m_joinPlaces;
    QString m_item;
};

// --- with the meaning kept
// ------------------------------------------------------------------------

class MeaningWriter {
public:
    explicit MeaningWriter(const FromDiagram& diagram)
        : m_diagram(diagram),
          m_joins(joinsByTable(diagram)),
          m_place(diagram.tables.size(), -1),
          m_joinUsed(diagram.joins.size(), false),
          m_joinPlaces(diagram.joins.size()) {}

    [[nodiscard]] const std::vector<JoinPlace>& places() const { return m_joinPlaces; }

    QString text() {
        QStringList items;
        for (int table = 0; table < int(m_diagram.tables.size()); ++table) {
            if (m_place[std::size_t(table)] >= 0) continue;
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
        TKindOfJoin kind;
        QString head;
        QStringList conditions;
    };

    void bringIn(int table) {
        m_place[std::size_t(table)] = m_places++;
        m_lineOf[table] = int(m_lines.size()) - 1;
        for (const int join : m_joins[std::size_t(table)]) {
            if (!m_joinUsed[std::size_t(join)]) m_open.push(join);
        }
    }

    void writeJoin(int index) {
        if (m_joinUsed[std::size_t(index)]) return;
        m_joinUsed[std::size_t(index)] = true;
        const FromJoin& join = m_diagram.joins[std::size_t(index)];
        const int place1 = m_place[std::size_t(join.table1)];
        const int place2 = m_place[std::size_t(join.table2)];
        const bool closesCycle = place1 >= 0 && place2 >= 0;
        const bool fromFirst = place2 < 0 || (closesCycle && place1 <= place2);
        const int to = fromFirst ? join.table2 : join.table1;
        if (!closesCycle) {
            const TKindOfJoin kind = fromFirst ? join.kind : mirrored(join.kind);
            m_lines.push_back(
                {kind,
                 joinIndent + joinWords(kind) + u' ' + withAlias(m_diagram.tables[std::size_t(to)]),
                 {}});
        }
        const int line = closesCycle ? m_lineOf[to] : int(m_lines.size()) - 1;
        const bool inner =
            line >= 0 && join.kind == klInnerJoin && m_lines[std::size_t(line)].kind == klInnerJoin;
        m_joinPlaces[std::size_t(index)] = {!fromFirst, closesCycle, !closesCycle || inner};
        if (line >= 0) addConditions(m_lines[std::size_t(line)], join, fromFirst);
        if (!closesCycle) bringIn(to);
    }

    void addConditions(Line& line, const FromJoin& join, bool fromFirst) const {
        line.conditions << conditions(m_diagram, join, fromFirst, true);
        if (!join.text.isEmpty()) line.conditions << u'(' + join.text + u')';
    }

    [[nodiscard]] QString itemText(const FromTable& first) const {
        QString text = withAlias(first);
        for (const Line& line : m_lines) {
            text += crLf + line.head + QStringLiteral(" ON ") + line.conditions.join(conjunction);
        }
        return text;
    }

    const FromDiagram& m_diagram;
    std::vector<std::vector<int>> m_joins;
    std::vector<int> m_place;  // when the table was written; -1 before
    std::vector<bool> m_joinUsed;
    std::vector<JoinPlace> m_joinPlaces;
    std::vector<Line> m_lines;
    QHash<int, int> m_lineOf;  // the line that brought the table in; -1 for a first one
    // Joins that touch a written table, the earliest on top.
    std::priority_queue<int, std::vector<int>, std::greater<>> m_open;
    int m_places = 0;
};

}  // namespace

QString fromText(const FromDiagram& diagram, std::vector<JoinPlace>* places) {
    StackingWriter writer(diagram);
    const QString text = writer.text();
    if (places) *places = writer.places();
    return text;
}

QString fromTextKeepingMeaning(const FromDiagram& diagram, std::vector<JoinPlace>* places) {
    MeaningWriter writer(diagram);
    const QString text = writer.text();
    if (places) *places = writer.places();
    return text;
}

}  // namespace orv
