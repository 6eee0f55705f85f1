// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionReader.h"
#include "criteria/ORVQDWhereRows.h"

namespace orv {

/// What becomes of NOT in front of the first bracket of several conditions.
enum class Nots {
    Nest,   ///< the bracket's group stands inside a "None" group
    Merge,  ///< the bracket's group is negated itself, as behind AND and OR
};

/// Turns the elements of one level into sub-rows of `group`, which is a panel's root row or a row
/// that becomes a group. AND and OR are combined from left to right: where the connective changes,
/// what was read so far becomes one nested group. With `negate` the group says the opposite. The
/// result is the row that holds all of it: `group`, or one that was put around it.
ORV_EXPORT TorvQDWhereRow* buildRows(const std::vector<ConditionElement>& elements,
                                     TorvQDWhereRow* group, bool negate, Nots nots = Nots::Nest);

/// How many groups stand one inside the other below the group into which the elements are built, at
/// the most.
[[nodiscard]] ORV_EXPORT int groupsBelow(const std::vector<ConditionElement>& elements,
                                         Nots nots = Nots::Nest);

}  // namespace orv
