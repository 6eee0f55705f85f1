// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace orvquery {

[[nodiscard]] bool isNumber(const QVariant& value);

/// The value as a person reads it: fractions with 15 significant digits, as databases show them,
/// bytes by their count, control characters as their pictures, shortened texts with an ellipsis.
/// "NULL" for NULL, and its name for a type that has no text.
[[nodiscard]] QString shownText(const QVariant& value);

/// The value as a program reads it: fractions with as many digits as bring back the same number,
/// bytes in hexadecimal, the beginning of a shortened one. Empty for NULL.
[[nodiscard]] QString exactText(const QVariant& value);

}  // namespace orvquery
