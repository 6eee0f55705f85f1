// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace bench {

/// What a program used from its start to its end.
struct ChildUse {
    bool hasSucceeded = false;
    double processorSeconds = 0;
    double elapsedSeconds = 0;
    double peakBytes = 0;
};

/// Runs a program to its end; what it prints is dropped. The peak of a child counts what its parent
/// held when it began: ask while this program is small.
ChildUse runChild(const std::vector<std::string>& command);

}  // namespace bench
