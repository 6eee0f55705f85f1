// SPDX-License-Identifier: MIT
#include "joins/JoinProposals.h"

#include "joins/JoinGuesses.h"
#include "joins/JoinPaths.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <numeric>

namespace orvquery {

namespace {

using Kind = JoinProposal::Kind;

QString translated(const char* text) {
    return QCoreApplication::translate("orvquery", text);
}

// None when a column is missing: the list of columns may be newer than the key, or a view's.
std::vector<int> columnIndexes(const JoinTable& table, const QStringList& names) {
    std::vector<int> indexes;
    for (const QString& name : names) {
        const int index = columnIndex(table.columns, name);
        if (index < 0) return {};
        indexes.push_back(index);
    }
    return indexes;
}

QString listed(const QStringList& texts) {
    if (texts.size() < 2) return texts.join(QString());
    return texts.mid(0, texts.size() - 1).join(QStringLiteral(", ")) + translated(" and ") +
           texts.back();
}

// Which tables of the diagram are joined, directly or over others.
class Connected {
public:
    explicit Connected(const JoinDiagram& diagram) : m_parents(diagram.tables.size()) {
        std::iota(m_parents.begin(), m_parents.end(), 0);
        for (const JoinLink& link : diagram.links) {
            m_parents[std::size_t(root(link.table1))] = root(link.table2);
        }
    }

    int root(int table) {
        while (m_parents[std::size_t(table)] != table) {
            int& parent = m_parents[std::size_t(table)];
            parent = m_parents[std::size_t(parent)];
            table = parent;
        }
        return table;
    }

private:
    std::vector<int> m_parents;
};

class Proposer {
public:
    Proposer(const JoinGraph& graph, const JoinDiagram& diagram, const JoinTable& added)
        : m_graph(graph), m_diagram(diagram), m_added(added) {
        for (std::size_t index = 0; index < diagram.tables.size(); ++index) {
            m_boxes[diagram.tables[index].table].push_back(int(index));
        }
    }

    [[nodiscard]] JoinOffer offer() {
        addForeignKeys();
        if (m_offer.proposals.empty()) {
            addGuesses();
            addPaths();
        }
        std::stable_sort(m_offer.proposals.begin(), m_offer.proposals.end(),
                         [](const JoinProposal& left, const JoinProposal& right) {
                             return left.kind < right.kind;
                         });
        suggest();
        return std::move(m_offer);
    }

private:
    void addForeignKeys() {
        const int table = m_graph.numberOf(m_added.table);
        for (const int number : m_graph.keysOf(table)) {
            ++m_offer.keysSeen;
            const JoinGraph::Key& key = m_graph.key(number);
            // A key onto the table itself fits in both directions.
            if (key.referenced == table) addForeignKey(key, false);
            if (key.table == table) addForeignKey(key, true);
        }
        std::stable_sort(m_offer.proposals.begin(), m_offer.proposals.end(),
                         [](const JoinProposal& left, const JoinProposal& right) {
                             return left.table < right.table;
                         });
    }

    void addForeignKey(const JoinGraph::Key& key, bool isReferringNew) {
        const TableName& other = m_graph.table(isReferringNew ? key.referenced : key.table);
        if (!m_boxes.contains(other)) return;
        const QStringList& names = isReferringNew ? key.columns : key.referencedColumns;
        const QStringList& otherNames = isReferringNew ? key.referencedColumns : key.columns;
        const std::vector<int> newColumns = columnIndexes(m_added, names);
        if (newColumns.empty()) return;
        for (const int box : m_boxes.value(other)) {
            const JoinTable& present = m_diagram.tables[std::size_t(box)];
            const std::vector<int> columns = columnIndexes(present, otherNames);
            if (columns.empty()) continue;
            JoinProposal proposal;
            proposal.table = box;
            proposal.steps = {{otherNames, names}};
            const QStringList texts = qualifiedColumns(present, columns);
            const QStringList newTexts = qualifiedColumns(m_added, newColumns);
            describeJoin(proposal, isReferringNew ? newTexts : texts,
                         isReferringNew ? texts : newTexts);
            const int user = isReferringNew ? -1 : userOf(box, columns, newColumns);
            if (user >= 0) {
                proposal.kind = Kind::UsedKey;
                tellWhy(proposal, translated("foreign key, by which %1 is joined already")
                                      .arg(m_diagram.tables[std::size_t(user)].alias));
            } else {
                tellWhy(proposal, translated("foreign key"));
            }
            m_offer.proposals.push_back(std::move(proposal));
        }
    }

    // Another box of the new table that these columns of a box are linked to: what they refer to is
    // one row, and a second box of it would show it again.
    [[nodiscard]] int userOf(int box, const std::vector<int>& columns,
                             const std::vector<int>& newColumns) const {
        for (const int other : m_boxes.value(m_added.table)) {
            bool isUser = true;
            for (std::size_t at = 0; at < columns.size(); ++at) {
                isUser = isUser && isLinked(box, columns[at], other, newColumns[at]);
            }
            if (isUser) return other;
        }
        return -1;
    }

    [[nodiscard]] bool isLinked(int table1, int column1, int table2, int column2) const {
        return std::any_of(m_diagram.links.begin(), m_diagram.links.end(),
                           [&](const JoinLink& link) {
                               return (link.table1 == table1 && link.column1 == column1 &&
                                       link.table2 == table2 && link.column2 == column2) ||
                                      (link.table1 == table2 && link.column1 == column2 &&
                                       link.table2 == table1 && link.column2 == column1);
                           });
    }

    void addGuesses() {
        for (std::size_t index = 0; index < m_diagram.tables.size(); ++index) {
            for (JoinProposal& guess : guessJoins(m_diagram.tables[index], int(index), m_added)) {
                m_offer.proposals.push_back(std::move(guess));
            }
        }
    }

    void addPaths() {
        QSet<int> starts;
        for (const JoinTable& table : m_diagram.tables) {
            const int number = m_graph.numberOf(table.table);
            if (number >= 0) starts.insert(number);
        }
        const int end = m_graph.numberOf(m_added.table);
        // From a table to itself there is no way.
        starts.remove(end);
        const JoinPaths found = shortestPaths(m_graph, starts, end);
        m_offer.keysSeen += found.keysSeen;
        for (const JoinPath& path : found.paths) {
            // Keys that name no column of their table may be left; the way is none then.
            if (path.keys.size() < 2) continue;
            const TableName& start = m_graph.table(path.tables.front());
            for (const int box : m_boxes.value(start)) addPath(path, box, found.paths);
        }
    }

    void addPath(const JoinPath& path, int box, const std::vector<JoinPath>& all) {
        JoinProposal proposal;
        proposal.kind = Kind::Path;
        proposal.table = box;
        for (std::size_t at = 0; at < path.keys.size(); ++at) {
            const JoinGraph::Key& key = m_graph.key(path.keys[at]);
            const bool isForward = key.table == path.tables[at];
            proposal.steps.push_back(isForward ? JoinStep{key.columns, key.referencedColumns}
                                               : JoinStep{key.referencedColumns, key.columns});
            if (at > 0) proposal.between.push_back(m_graph.table(path.tables[at]));
        }
        QStringList names;
        for (const int table : path.tables) names += nameOf(table, path);
        proposal.from = m_diagram.tables[std::size_t(box)].alias;
        proposal.to = m_added.alias;
        proposal.why =
            translated("%1: also add %2")
                .arg(names.join(QStringLiteral(" - ")), listed(names.mid(1, names.size() - 2)));
        const QStringList differences = differingColumns(path, all);
        if (!differences.isEmpty()) proposal.why += translated(", by %1").arg(listed(differences));
        proposal.sentence = proposal.why;
        m_offer.proposals.push_back(std::move(proposal));
    }

    // Schemas are told where they differ.
    [[nodiscard]] QString nameOf(int table, const JoinPath& path) const {
        const TableName& name = m_graph.table(table);
        const bool isElsewhere =
            std::any_of(path.tables.begin(), path.tables.end(),
                        [&](int other) { return m_graph.table(other).schema != name.schema; });
        return isElsewhere && !name.schema.isEmpty() ? name.schema + u'.' + name.name : name.name;
    }

    // The columns that tell the path from others over the same tables.
    [[nodiscard]] QStringList differingColumns(const JoinPath& path,
                                               const std::vector<JoinPath>& all) const {
        QStringList texts;
        for (std::size_t at = 0; at < path.keys.size(); ++at) {
            const bool differs = std::any_of(all.begin(), all.end(), [&](const JoinPath& other) {
                return other.tables == path.tables && other.keys[at] != path.keys[at];
            });
            if (!differs) continue;
            const JoinGraph::Key& key = m_graph.key(path.keys[at]);
            for (const QString& column : key.columns) {
                texts += nameOf(key.table, path) + u'.' + column;
            }
        }
        return texts;
    }

    // A table that stands between two others joins both of them; no column is used twice, and
    // nothing that is connected is connected again.
    void suggest() {
        Connected connected(m_diagram);
        QSet<int> reached;
        QSet<QString> used;
        for (std::size_t index = 0; index < m_offer.proposals.size(); ++index) {
            const JoinProposal& proposal = m_offer.proposals[index];
            if (proposal.kind != Kind::ForeignKey) break;
            const QStringList& columns = proposal.steps.front().newColumns;
            const int group = connected.root(proposal.table);
            const bool isUsed = std::any_of(columns.begin(), columns.end(),
                                            [&](const QString& c) { return used.contains(c); });
            if (isUsed || reached.contains(group)) continue;
            reached.insert(group);
            used.unite({columns.begin(), columns.end()});
            m_offer.suggested.push_back(int(index));
        }
    }

    const JoinGraph& m_graph;
    const JoinDiagram& m_diagram;
    const JoinTable& m_added;
    QHash<TableName, std::vector<int>> m_boxes;
    JoinOffer m_offer;
};

}  // namespace

JoinOffer proposeJoins(const JoinGraph& graph, const JoinDiagram& diagram, const JoinTable& added) {
    return Proposer(graph, diagram, added).offer();
}

int columnIndex(const std::vector<ColumnEntry>& columns, const QString& name) {
    int found = -1;
    int count = 0;
    for (std::size_t at = 0; at < columns.size(); ++at) {
        if (columns[at].name == name) return int(at);
        if (columns[at].name.compare(name, Qt::CaseInsensitive) != 0) continue;
        found = int(at);
        ++count;
    }
    return count == 1 ? found : -1;
}

}  // namespace orvquery
