// SPDX-License-Identifier: MIT
#include "joins/JoinPaths.h"

#include <algorithm>

namespace orvquery {

namespace {

// Of more, the best cannot be told from the others without looking at all.
constexpr std::size_t mostComparedPaths = 64;

int otherTable(const JoinGraph::Key& key, int table) {
    return key.table == table ? key.referenced : key.table;
}

// Breadth first from the end, up to the first tables that are wanted.
class Search {
public:
    Search(const JoinGraph& graph, const QSet<int>& starts, int end)
        : m_graph(graph), m_distances(std::size_t(graph.tableCount()), -1) {
        m_distances[std::size_t(end)] = 0;
        std::vector<int> level{end};
        for (int distance = 1; distance <= mostKeysOfPath && !level.empty(); ++distance) {
            level = nextLevel(level, distance);
            std::copy_if(level.begin(), level.end(), std::back_inserter(m_reached),
                         [&](int table) { return starts.contains(table); });
            if (!m_reached.empty()) break;
        }
        std::sort(m_reached.begin(), m_reached.end());
    }

    [[nodiscard]] JoinPaths paths() {
        JoinPaths found;
        for (const int start : m_reached) follow({{start}, {}}, found.paths);
        found.keysSeen = m_keysSeen;
        return found;
    }

private:
    std::vector<int> nextLevel(const std::vector<int>& level, int distance) {
        std::vector<int> next;
        for (const int table : level) {
            for (const int number : m_graph.keysOf(table)) {
                ++m_keysSeen;
                const int other = otherTable(m_graph.key(number), table);
                if (m_distances[std::size_t(other)] >= 0) continue;
                m_distances[std::size_t(other)] = distance;
                next.push_back(other);
            }
        }
        return next;
    }

    // Each step leads one nearer to the end, so none of them is in vain.
    void follow(const JoinPath& begun, std::vector<JoinPath>& found) {
        const int table = begun.tables.back();
        const int distance = m_distances[std::size_t(table)];
        if (distance == 0) return found.push_back(begun);
        for (const int number : m_graph.keysOf(table)) {
            if (found.size() >= mostComparedPaths) return;
            ++m_keysSeen;
            const int other = otherTable(m_graph.key(number), table);
            if (m_distances[std::size_t(other)] != distance - 1) continue;
            JoinPath longer = begun;
            longer.tables.push_back(other);
            longer.keys.push_back(number);
            follow(longer, found);
        }
    }

    const JoinGraph& m_graph;
    std::vector<int> m_distances;  ///< by table; -1 for those that were not met
    std::vector<int> m_reached;
    std::size_t m_keysSeen = 0;
};

// How many tables of the way are referenced from both sides.
int sharedMasters(const JoinGraph& graph, const JoinPath& path) {
    int count = 0;
    for (std::size_t at = 1; at < path.keys.size(); ++at) {
        const int table = path.tables[at];
        const auto refersHere = [&](int key) { return graph.key(key).referenced == table; };
        if (refersHere(path.keys[at - 1]) && refersHere(path.keys[at])) ++count;
    }
    return count;
}

}  // namespace

JoinPaths shortestPaths(const JoinGraph& graph, const QSet<int>& starts, int end) {
    if (end < 0 || starts.isEmpty()) return {};
    JoinPaths found = Search(graph, starts, end).paths();
    std::stable_sort(found.paths.begin(), found.paths.end(),
                     [&](const JoinPath& left, const JoinPath& right) {
                         return sharedMasters(graph, left) < sharedMasters(graph, right);
                     });
    if (found.paths.size() > mostPaths) found.paths.resize(mostPaths);
    return found;
}

}  // namespace orvquery
