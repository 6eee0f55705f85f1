// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "database/DatabaseAddress.h"

namespace orvquery {

/// The name of a database on a server; the address of one on no named host has it behind a slash.
[[nodiscard]] QString nameOnServer(const DatabaseAddress& address);

/// What a person reads as the name of a database on a server: "shop on db.example.org".
[[nodiscard]] QString titleOnServer(const DatabaseAddress& address);

/// What every driver of a server is told of an address: which database, where and for whom.
[[nodiscard]] ConnectionSettings settingsOnServer(const char* driver,
                                                  const DatabaseAddress& address);

/// Raises orv::Error that says so.
[[noreturn]] void refuseOption(const QString& name);

/// The options of an address as Qt's drivers take them: "NAME=value". Those that are not among the
/// known ones, in upper case, would be ignored by the driver and raise orv::Error.
[[nodiscard]] QStringList driverOptions(const DatabaseAddress& address, const QStringList& known);

}  // namespace orvquery
