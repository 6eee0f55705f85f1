// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDStateReader.h"

#include <vector>

namespace orvquery {

/// One line of a written FROM: a table that is joined to those before. Numbers are those of the
/// state.
struct FromLine {
    int join = -1;                     ///< the one that brings the table in
    std::vector<int> joins;            ///< all whose conditions stand in the line
    int table = -1;                    ///< the one that is brought in
    std::vector<int> others;           ///< those that it is compared with
    TKindOfJoin kind = klInnerJoin;    ///< as it is written
    TKindOfJoin outer = klLOuterJoin;  ///< of the join, to be written as LEFT
};

/// The written FROM of a query, without what is muted.
struct FromOrder {
    std::vector<int> firstTables;  ///< of the items that commas separate
    std::vector<FromLine> lines;
};

[[nodiscard]] FromOrder fromOrder(const orv::QueryState& state, bool keepMeaning);

/// The numbers of the lines that lose rows as soon as a line keeps rows without a match: itself,
/// and those that compare with what is missing then. Lines of inner joins alone.
[[nodiscard]] std::vector<int> linesHangingOn(const FromOrder& order, int line);

}  // namespace orvquery
