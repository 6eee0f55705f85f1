// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

/// The statements that the benchmarks read, and the schema that they are about.
namespace bench {

inline constexpr int largeTables = 20;
inline constexpr int largeConditions = 60;

/// One table; a join; grouped; 20 tables and 60 conditions.
QString oneTable();
QString join();
QString grouped();
QString large();

/// CREATE TABLE statements for all of them.
std::string schema();

/// A statement of about `characters`: columns, a join chain and conditions, growing alike.
QString ofLength(int characters);

/// `columns` qualified columns of one table.
QString ofColumns(int columns);

}  // namespace bench
