// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvquery {

/// What a statement as the control writes it lacks before a database takes it, as one sentence for
/// a person; empty when it has tables and columns. The control writes its clauses in any case.
[[nodiscard]] QString whatIsMissing(const QString& writtenStatement);

}  // namespace orvquery
