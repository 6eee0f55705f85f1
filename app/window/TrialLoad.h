// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

class TorvQueryBuilder;

namespace orvquery {

class TableSource;

/// What came of a text that was loaded elsewhere first.
struct TrialLoad {
    orv::Findings findings;
    /// Why nothing of it would be on the diagram; empty when there would be a table.
    QString refusal;
};

/// What loading the text into the control would come to, without loading it there. Raises what
/// loading it would raise.
[[nodiscard]] TrialLoad tryLoading(const TorvQueryBuilder& control, const TableSource& tables,
                                   const QString& text);

}  // namespace orvquery
