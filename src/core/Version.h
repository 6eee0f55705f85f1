// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

namespace orv {

/// The version of the library that is running: "major.minor.patch". What a program was compiled
/// with may be another one when the library is shared.
[[nodiscard]] ORV_EXPORT QString version();

}  // namespace orv
