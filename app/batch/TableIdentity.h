// SPDX-License-Identifier: MIT
#pragma once

#include "differences/Differences.h"

namespace orvquery {

class TableSource;

/// Which table a source finds by a name; the source must outlive it.
[[nodiscard]] TableKey tableKeyOf(const TableSource& source);

}  // namespace orvquery
