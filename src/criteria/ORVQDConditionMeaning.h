// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionReader.h"

namespace orv {

/// One text for all conditions that say the same but for brackets, blanks, letters outside quotes,
/// "!=" for "<>" and NOT NOT; AND binds tighter than OR, as databases have it.
[[nodiscard]] ORV_EXPORT QString meaningOf(const std::vector<ConditionElement>& level);

}  // namespace orv
