// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QSqlDatabase>

namespace orvquery {

/// The table-valued functions that the connection's SQLite has and that take arguments: json_each,
/// pragma_table_info and the like.
[[nodiscard]] std::vector<TableEntry> sqliteFunctions(const QSqlDatabase& database);

/// The parameters of one of these. Where the function has a value of its own for a missing argument
/// and NULL means something else, the parameter has that value.
[[nodiscard]] std::vector<TParam> sqliteFunctionParameters(const TableEntry& function);

}  // namespace orvquery
