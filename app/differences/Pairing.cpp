// SPDX-License-Identifier: MIT
#include "differences/Pairing.h"

#include <QHash>

#include <algorithm>

namespace orvquery {

void Pairing::pair(int before, int after) {
    m_after[std::size_t(before)] = after;
    m_before[std::size_t(after)] = before;
}

void Pairing::pairByKeys(const QStringList& before, const QStringList& after) {
    QHash<QString, std::vector<int>> free;  // places in the second list, the last one in front
    for (int place = int(after.size()) - 1; place >= 0; --place) {
        if (m_before[std::size_t(place)] == none) free[after[place]].push_back(place);
    }
    for (int place = 0; place < int(before.size()); ++place) {
        if (m_after[std::size_t(place)] != none || before[place].isEmpty()) continue;
        const auto found = free.find(before[place]);
        if (found == free.end() || found->empty()) continue;
        pair(place, found->back());
        found->pop_back();
    }
}

std::vector<std::pair<int, int>> Pairing::pairs() const {
    std::vector<std::pair<int, int>> pairs;
    for (std::size_t place = 0; place < m_after.size(); ++place) {
        if (m_after[place] != none) pairs.emplace_back(int(place), m_after[place]);
    }
    return pairs;
}

bool Pairing::keepsOrder() const {
    const auto list = pairs();
    return std::is_sorted(list.begin(), list.end(), [](const auto& one, const auto& other) {
        return one.second < other.second;
    });
}

}  // namespace orvquery
