// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <vector>

namespace orvquery {

/// Which elements of two lists belong together. Pairing is the same from either side: of the
/// elements that have one key, the first ones belong together, the second ones, and so on.
class Pairing {
public:
    Pairing(std::size_t before, std::size_t after) : m_after(before, none), m_before(after, none) {}

    static constexpr int none = -1;

    /// Pairs what has no partner yet by keys; those with an empty key stay alone.
    void pairByKeys(const QStringList& before, const QStringList& after);
    void pair(int before, int after);

    [[nodiscard]] int after(std::size_t before) const { return m_after[before]; }
    [[nodiscard]] int before(std::size_t after) const { return m_before[after]; }
    /// The pairs in the order of the first list.
    [[nodiscard]] std::vector<std::pair<int, int>> pairs() const;
    /// Whether those that have partners stand in one order in both lists.
    [[nodiscard]] bool keepsOrder() const;

private:
    std::vector<int> m_after;   // by place in the first list
    std::vector<int> m_before;  // by place in the second one
};

}  // namespace orvquery
