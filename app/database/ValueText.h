// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace orvquery {

[[nodiscard]] bool isNumber(const QVariant& value);

/// The value as a person reads it: fractions with 15 significant digits, as databases show them,
/// bytes by their count, control characters as their pictures. "NULL" for NULL.
[[nodiscard]] QString shownText(const QVariant& value);

/// The value as a program reads it: fractions with as many digits as bring back the same number,
/// bytes in hexadecimal. Empty for NULL.
[[nodiscard]] QString exactText(const QVariant& value);

}  // namespace orvquery
