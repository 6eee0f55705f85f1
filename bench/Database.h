// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace bench {

/// Compiles a statement with SQLite against the schema of the benchmarks and drops it again;
/// whether that succeeded.
bool prepare(const QByteArray& statement);

}  // namespace bench
