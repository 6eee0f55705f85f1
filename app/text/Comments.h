// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

#include <QString>

namespace orvquery {

/// The comments of a statement that has been loaded, as findings: few of them one by one, many with
/// one finding for all behind the first ones. Comments are those that the control skips; the tail
/// of a statement keeps its own, which are in what is written then.
[[nodiscard]] orv::Findings commentFindings(const QString& statement, const QString& written);

}  // namespace orvquery
