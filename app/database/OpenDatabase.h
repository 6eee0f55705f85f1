// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/DatabaseAddress.h"

#include <memory>

namespace orvquery {

/// What a person names: a file, whose content tells its engine, or an address of one of the engines
/// ("postgresql://user@host/shop"). Raises orv::Error with one sentence when it is neither, also
/// when the file is missing or of no engine.
[[nodiscard]] DatabaseAddress databaseAddress(const QString& fileOrAddress);

/// Opens a database. Raises orv::Error with one sentence that says what is wrong, LoginError when
/// another user or password may help.
[[nodiscard]] std::unique_ptr<Database> openDatabase(const DatabaseAddress& address);
[[nodiscard]] std::unique_ptr<Database> openDatabase(const QString& fileOrAddress);

}  // namespace orvquery
