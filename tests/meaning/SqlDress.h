// SPDX-License-Identifier: MIT
#pragma once

#include "meaning/Dice.h"

namespace orvtest {

/// The same statement as somebody else would type it: other letters, blanks, line breaks, comments.
/// `text` has one blank between its words and signs.
[[nodiscard]] QString dressed(Dice& dice, const QString& text);

}  // namespace orvtest
