// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <vector>

class TorvQueryBuilder;

namespace orvquery {

/// Puts the table in front of the fields that the query names without one and that a table to come
/// has as well: with that one on the diagram they would mean neither. The boxes are made anew then,
/// in the same order; whether they were.
bool qualifyBareFields(TorvQueryBuilder& builder, const std::vector<TableDescription>& toCome);

}  // namespace orvquery
