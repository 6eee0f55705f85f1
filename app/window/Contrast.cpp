// SPDX-License-Identifier: MIT
#include "window/Contrast.h"

#include <algorithm>
#include <cmath>

namespace orvquery {

namespace {

constexpr int mixtures = 20;

qreal linear(qreal channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

qreal luminance(const QColor& colour) {
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor mixed(const QColor& colour, const QColor& other, qreal part) {
    const auto mix = [part](int left, int right) {
        return int(std::lround(left + (right - left) * part));
    };
    return {mix(colour.red(), other.red()), mix(colour.green(), other.green()),
            mix(colour.blue(), other.blue())};
}

}  // namespace

qreal contrastRatio(const QColor& left, const QColor& right) {
    const auto [darker, brighter] = std::minmax({luminance(left), luminance(right)});
    return (brighter + 0.05) / (darker + 0.05);
}

QColor readableOn(const QColor& background, const QColor& colour) {
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QColor end =
        contrastRatio(background, black) > contrastRatio(background, white) ? black : white;
    for (int step = 0; step < mixtures; ++step) {
        const QColor candidate = mixed(colour, end, qreal(step) / mixtures);
        if (contrastRatio(background, candidate) >= readableContrast) return candidate;
    }
    return end;
}

}  // namespace orvquery
