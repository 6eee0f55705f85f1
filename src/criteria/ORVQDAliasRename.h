// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

namespace orv {

/// The text of a condition with the alias in front of field names replaced: as a whole word, in
/// exactly this case, outside quotes. A sub-select that has a table of that alias itself keeps it,
/// because there the name means that table.
[[nodiscard]] ORV_EXPORT QString renamedAlias(const QString& text, const QString& newAlias,
                                              const QString& oldAlias);

}  // namespace orv
