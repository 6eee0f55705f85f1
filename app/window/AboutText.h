// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvquery {

/// What the program says about itself, as rich text: the versions of its parts, the drivers for
/// databases that are there, and its licence.
[[nodiscard]] QString aboutText();

}  // namespace orvquery
