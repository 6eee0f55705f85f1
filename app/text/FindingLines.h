// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

#include <QStringList>

namespace orvquery {

/// Findings about a query as lines for a person, without their places: "ORDERS: what is wrong".
[[nodiscard]] QStringList findingLines(const orv::Findings& findings);

}  // namespace orvquery
