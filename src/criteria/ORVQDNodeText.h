// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

class TorvQDParser;

namespace orv {

/// The text of a condition put together from the nodes below a clause, for trees whose source is
/// not at hand. Nodes keep no commas: one is set between two operands that stand side by side.
[[nodiscard]] ORV_EXPORT QString nodeText(const TorvQDParser& clause);

}  // namespace orv
