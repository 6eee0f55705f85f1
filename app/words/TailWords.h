// SPDX-License-Identifier: MIT
#pragma once

#include "words/Explanation.h"

namespace orvquery {

/// What stands behind the last clause of a statement: further queries whose rows come together with
/// its own, or any other text, which is quoted. No section without a text.
[[nodiscard]] std::vector<WordsSection> tailSections(const QString& tail);

}  // namespace orvquery
