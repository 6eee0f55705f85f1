// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

#include <QSet>
#include <QString>

namespace orvquery {

/// Puts those words of a statement in double quotes that are the name of a table, or of a schema in
/// front of a full stop, and not in upper case throughout: the control would write them in upper
/// case. Quotes, comments and what is called or typed ("DATE '2024-01-31'") stay as they are.
[[nodiscard]] QString withNamesInQuotes(const QString& statement, const QSet<QString>& tables,
                                        const QSet<QString>& schemas);

/// What was found in a statement with such quotes, at its places in the statement as it was before.
[[nodiscard]] orv::Findings findingsBefore(const orv::Findings& findings, const QString& quoted,
                                           const QString& statement);

}  // namespace orvquery
