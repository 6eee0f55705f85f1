// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QList>

#include <functional>

class TorvQueryBuilder;

namespace orvquery {

/// Lets tables of a SchemaModel be dropped onto the diagram: `add` adds the box of one, at its
/// usual place, from where it is moved to where it was dropped. That happens once the drag is over.
void letTablesBeDropped(TorvQueryBuilder& builder,
                        const std::function<void(const TableName& name)>& add);

}  // namespace orvquery
