// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "tables/TableSource.h"

namespace orvquery {

/// A table source with rows behind the tables. One class for each kind of database knows how to
/// open it, how to read its catalog and how its names travel.
class Database : public TableSource {
public:
    /// How to open further connections that read it.
    [[nodiscard]] virtual ConnectionSettings settings() const = 0;
};

}  // namespace orvquery
