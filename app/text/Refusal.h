// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvquery {

/// Why the control refused a statement, for a person: its own reason, and one sentence more where
/// that reason leaves open what is wrong with the text.
[[nodiscard]] QString refusalText(const QString& reason, const QString& statement);

}  // namespace orvquery
