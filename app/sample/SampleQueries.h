// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <vector>

namespace orvquery {

/// A worked query on the sample database.
struct SampleQuery {
    QString title;  ///< what it asks
    QString statement;
};

[[nodiscard]] std::vector<SampleQuery> sampleQueries();

}  // namespace orvquery
