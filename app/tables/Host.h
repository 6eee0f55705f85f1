// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

class TorvQDWorkArea;
class TorvQueryBuilder;

namespace orvquery {

/// Lets the control ask the source for its tables, and quotes the source's reserved words from now
/// on. The source must outlive the control, or its place in it until the next call.
void connectTables(TorvQueryBuilder& builder, const TableSource& source);

/// Adds a box of the table of that name, as tables() of the source gives it; false when the control
/// does not take it. Raises orv::Error when the table is gone or its columns cannot be read.
bool addTable(TorvQueryBuilder& builder, const TableSource& source, const TableName& name);

/// Lays a query out that nobody has laid out yet: boxes as wide as their texts, placed by their
/// joins.
void layOut(TorvQDWorkArea& diagram);

}  // namespace orvquery
