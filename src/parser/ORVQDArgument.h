// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

namespace orv {

/// A sentence saying why the text cannot be written as one argument of a call: it is blank, or it
/// would end the argument, the call or the statement, or take what follows into itself. Empty when
/// nothing of that kind is wrong; whether a database accepts the text is not looked at.
[[nodiscard]] ORV_EXPORT QString argumentProblem(const QString& sql);

}  // namespace orv
