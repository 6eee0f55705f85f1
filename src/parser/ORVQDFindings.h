// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <vector>

namespace orv {

/// One place of a loaded statement that the control could not hold, or holds with another meaning.
struct Finding {
    int start = 0;   ///< position in the text that was given to LoadSQL
    int length = 0;  ///< characters from there
    QString text;    ///< the text at that place
    QString what;    ///< one English sentence: what became of it

    /// Equal when all members are.
    friend bool operator==(const Finding&, const Finding&) = default;
};

/// Findings in the order of the text.
using Findings = std::vector<Finding>;

}  // namespace orv
