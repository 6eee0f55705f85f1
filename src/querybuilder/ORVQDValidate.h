// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

class TorvQueryBuilder;

namespace orv {

/// What is wrong with the present state of a query; see TorvQueryBuilder::Validate(). Linear in
/// what the query builder holds.
[[nodiscard]] Findings validate(TorvQueryBuilder& builder);

/// What is wrong with the text behind the last clause, or with the clauses in front of it.
[[nodiscard]] Findings tailFindings(TorvQueryBuilder& builder);

}  // namespace orv
