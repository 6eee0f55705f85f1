// SPDX-License-Identifier: MIT
#pragma once

#include "FuzzTarget.h"

// The targets. What each of them checks stands at the head of its source.
namespace orvfuzz {

[[nodiscard]] Target parserTarget();
[[nodiscard]] Target roundtripTarget();
[[nodiscard]] Target conditionsTarget();
[[nodiscard]] Target operatorsTarget();
[[nodiscard]] Target documentsTarget();

/// All of them.
[[nodiscard]] const QList<Target>& targets();

}  // namespace orvfuzz
