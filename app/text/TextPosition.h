// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

namespace orvquery {

/// A place in a text as editors count it: lines and characters from 1. A character outside the
/// basic plane counts once; CR LF, LF and CR each end a line.
struct TextPosition {
    int line = 1;
    int column = 1;

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// The place behind `before`, the part of a text in front of the place.
[[nodiscard]] TextPosition textPosition(QStringView before);

}  // namespace orvquery
