// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace orvquery {

/// A text that has pictures of control characters (as of shownText()), for a font that may not have
/// these: a line break becomes an arrow, or else a stroke, and others become blanks where there is
/// no picture.
[[nodiscard]] QString drawableText(QString text, const std::function<bool(QChar)>& isInFont);

}  // namespace orvquery
