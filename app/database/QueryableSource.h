// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "tables/TableSource.h"

#include <QStringList>

namespace orvquery {

/// A table source with rows behind the tables, which queries can ask for.
class QueryableSource : public TableSource {
public:
    /// How to open further connections that run queries.
    [[nodiscard]] virtual const ConnectionSettings& settings() const = 0;

    /// Whether a comparison with a value of another type than the column's is an error, or worse,
    /// made into one of that type.
    [[nodiscard]] virtual bool hasStrictTypes() const = 0;

    /// The schemas in which names without one are looked for, in that order. Tables without a
    /// schema are in all of them.
    [[nodiscard]] virtual QStringList defaultSchemas() const = 0;
};

}  // namespace orvquery
