// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"

#include <memory>

namespace orvquery {

/// Opens the database that a person names: a file of SQLite or Firebird, or a firebird:// address.
/// Raises orv::Error with one sentence that says what is wrong.
[[nodiscard]] std::unique_ptr<Database> openDatabase(const QString& address);

}  // namespace orvquery
