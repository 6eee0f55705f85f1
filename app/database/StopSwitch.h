// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlDatabase>

#include <atomic>

namespace orvquery {

/// Lets queries on the open connection fail soon after the flag has become true, which any thread
/// may do at any time. The flag must outlive the connection. Does nothing for a database that
/// offers no such way: a query then ends at its next row.
void letStop(const QSqlDatabase& database, const std::atomic<bool>& isStopped);

}  // namespace orvquery
