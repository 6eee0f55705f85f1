// SPDX-License-Identifier: MIT
#pragma once

#include "database/DatabaseAddress.h"

#include <QSqlError>

namespace orvquery {

/// Tells in one sentence why a database on a server cannot be opened: raises LoginError when
/// another user or password may help, else orv::Error.
[[noreturn]] void failToOpen(const QSqlError& error, const DatabaseAddress& address,
                             int defaultPort);

}  // namespace orvquery
