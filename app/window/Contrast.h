// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

namespace orvquery {

/// What texts need at least to be read without effort.
constexpr qreal readableContrast = 4.5;

/// How much two colours differ in brightness as an eye sees it: from 1, not at all, to 21, black
/// and white.
[[nodiscard]] qreal contrastRatio(const QColor& left, const QColor& right);

/// The colour, or where that cannot be read on the background, the nearest mixture of it with black
/// or white that can.
[[nodiscard]] QColor readableOn(const QColor& background, const QColor& colour);

}  // namespace orvquery
