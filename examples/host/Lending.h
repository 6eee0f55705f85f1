// SPDX-License-Identifier: MIT
#pragma once

#include <orvquerybuilder/ORVQDWindow.h>

/// The fixed tables of a lending library. A real host asks its database instead.
namespace lending {

[[nodiscard]] QStringList tableNames();

/// The columns of a table, whatever case its name is written in; none for an unknown one.
[[nodiscard]] const TDataSet* describe(const QString& name);

/// Why a table may not be queried; empty for one that may.
[[nodiscard]] QString whyClosed(const QString& name);

/// A query to begin with.
[[nodiscard]] QString firstStatement();

}  // namespace lending
