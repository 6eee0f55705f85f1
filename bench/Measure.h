// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// Something that can be done again and again. What a call of `before` does is not measured; a
/// `run` that fails ends the program, since figures of something else would be told.
struct Work {
    std::function<bool()> run;
    std::function<void()> before = {};
};

/// What is measured at one size, and what it is compared with (none: nothing).
struct Pair {
    Work subject;
    Work yardstick = {};
};

/// The same at several sizes. The ratio is taken at one of them.
struct Growing {
    std::vector<int> sizes;
    int comparedSize;
    std::function<Pair(int size)> make;
};

/// Seconds, or bytes, of one time.
struct Figures {
    double subject = 0;
    double yardstick = 0;
    double ratio = 0;   ///< median of the ratios of each round
    double growth = 0;  ///< exponent of the fitted power of the size; 1 is linear
};

/// Processor time of all sizes, each in turns with what it is compared with: a busy machine slows
/// all of them alike. Takes about `seconds`.
Figures measure(const Growing& growing, double seconds);

double median(std::vector<double> values);

/// The exponent of the power of the size that lies nearest to the values (least squares of the
/// logarithms).
double fittedGrowth(const std::vector<int>& sizes, const std::vector<double>& values);

}  // namespace bench
