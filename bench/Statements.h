// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

/// The statements that the benchmarks read, and the schema that they are about.
namespace bench {

inline constexpr int largeTables = 20;
inline constexpr int conditionsPerTable = 3;

/// One table; a join; grouped; 20 tables and 60 conditions.
QString oneTable();
QString join();
QString grouped();
QString large();

/// The same of so many tables, one joined with the next: two columns and three conditions for each.
QString ofTables(int tables);

/// CREATE TABLE statements for the first four, and for as many tables as the large one has.
std::string schema();

/// A statement of about `characters`: columns, a join chain and conditions, growing alike.
QString ofLength(int characters);

/// `columns` qualified columns of one table.
QString ofColumns(int columns);

/// The same, sorted by all of them.
QString orderedColumns(int columns);

/// The same, grouped by all of them.
QString groupedColumns(int columns);

/// So many conditions in one group.
QString ofConditions(int conditions);

/// So many groups, one inside the other: AND and OR take turns, so that none is superfluous.
QString nestedGroups(int groups);

/// A tree of joined tables: each has two below it, and two links to the one above; the first join
/// has four, so that 500 tables have 1,000 links.
QString treeOfTables(int tables);

}  // namespace bench
