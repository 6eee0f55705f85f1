// SPDX-License-Identifier: MIT
#pragma once

#include "joins/JoinGraph.h"

#include <QSet>

#include <cstddef>
#include <vector>

namespace orvquery {

/// A way from one table to another along foreign keys.
struct JoinPath {
    std::vector<int> tables;  ///< from one end to the other, both included
    std::vector<int> keys;    ///< one less: those between neighbours

    friend bool operator==(const JoinPath&, const JoinPath&) = default;
};

struct JoinPaths {
    std::vector<JoinPath> paths;
    std::size_t keysSeen = 0;  ///< what it cost
};

/// As many keys a way may have: beyond, nobody sees at once what it means.
constexpr int mostKeysOfPath = 4;

/// As many ways are worth a person's look.
constexpr std::size_t mostPaths = 8;

/// The shortest ways from any of the tables to the one of `end`, which is none of them. When there
/// are too many of one length, those go first that meet no table of which both neighbours are
/// details: two rows of one country have little to do with each other.
[[nodiscard]] JoinPaths shortestPaths(const JoinGraph& graph, const QSet<int>& starts, int end);

}  // namespace orvquery
