// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"
#include "text/SqlPieces.h"

#include <QString>

namespace orvquery {

/// What a statement file loses when `after` takes the place of `before`: comments, what stands
/// behind the first statement, and what loading it has found. Words for a sentence, "1 comment and
/// what stands behind the first statement"; empty when nothing is lost.
[[nodiscard]] QString statementLosses(const QString& before, const QString& after,
                                      const orv::Findings& findings, SqlRules rules);

}  // namespace orvquery
