// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace orvquery {

/// The text of a condition or a column with other names in place of those that stand in it without
/// a table in front: `rename` gives the new one, or an empty text where the name stays. Sub-queries
/// stay as they are, because their names may mean tables of their own.
[[nodiscard]] QString withBareNamesRenamed(const QString& text,
                                           const std::function<QString(const QString&)>& rename);

}  // namespace orvquery
