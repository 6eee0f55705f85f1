// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "parser/ORVQDFindings.h"

#include <QStringList>

class TorvQueryBuilder;

namespace orv {

/// What is wrong with the present state of a query; see TorvQueryBuilder::Validate(). Linear in
/// what the query builder holds.
[[nodiscard]] Findings validate(TorvQueryBuilder& builder);

/// The texts of what is muted, as validate() gives them; of what stands in a muted group only that
/// of the group.
[[nodiscard]] ORV_EXPORT QStringList mutedParts(TorvQueryBuilder& builder);

/// What is wrong with the text behind the last clause, or with the clauses in front of it.
[[nodiscard]] Findings tailFindings(TorvQueryBuilder& builder);

}  // namespace orv
