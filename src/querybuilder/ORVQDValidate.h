// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

class TorvQueryBuilder;

namespace orv {

/// What is wrong with the present state of a query; see TorvQueryBuilder::Validate(). Linear in
/// what the query builder holds.
[[nodiscard]] Findings validate(TorvQueryBuilder& builder);

}  // namespace orv
