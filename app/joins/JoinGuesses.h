// SPDX-License-Identifier: MIT
#pragma once

#include "joins/JoinProposals.h"

#include <vector>

namespace orvquery {

/// What names and types say of two tables between which no key is declared, the best first. The
/// steps lead from `present`, the table of that number on the diagram, to `added`.
[[nodiscard]] std::vector<JoinProposal> guessJoins(const JoinTable& present, int number,
                                                   const JoinTable& added);

/// "ORDERS.CUSTNO" for each of the columns.
[[nodiscard]] QStringList qualifiedColumns(const JoinTable& table, const std::vector<int>& columns);

/// Fills in what a person reads: `from` refers to `to`, and then why.
void describeJoin(JoinProposal& proposal, const QStringList& from, const QStringList& to);
void tellWhy(JoinProposal& proposal, const QString& why);

}  // namespace orvquery
