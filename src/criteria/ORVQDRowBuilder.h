// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionReader.h"
#include "criteria/ORVQDWhereRows.h"

namespace orv {

/// Turns the elements of one level into sub-rows of `group`, which is a panel's root row or a row
/// that becomes a group. AND and OR are combined from left to right: where the connective changes,
/// what was read so far becomes one nested group. With `negate` the group says the opposite.
/// With `joinsNots` a NOT in front of the first of several brackets becomes one with the bracket's
/// group, as any later one does. The result
/// is the row that holds all of it: `group`, or one that was put around it.
ORV_EXPORT TorvQDWhereRow* buildRows(const std::vector<ConditionElement>& elements,
                                     TorvQDWhereRow* group, bool negate, bool joinsNots = false);

}  // namespace orv
