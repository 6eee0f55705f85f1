// SPDX-License-Identifier: MIT
#include "diagram/Orvvisualutils.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orv {

namespace {

bool isBetween(int value, int a, int b) {
    return value >= std::min(a, b) && value <= std::max(a, b);
}

// To the nearest integer, halves to the even neighbour.
int rounded(double value) {
    return int(std::nearbyint(value));
}

/// A slanted segment searched along its longer axis: `main` runs along it, `cross` across.
struct Slant {
    int low;
    int high;
    double slope;  // cross per main
    int mainEnd;   // coordinates of the segment's second point
    int crossEnd;
    int mainOfPoint;
    int crossOfPoint;

    [[nodiscard]] int distance(int main) const {
        const int cross = rounded((main - mainEnd) * slope + crossEnd);
        return std::abs(main - mainOfPoint) + std::abs(cross - crossOfPoint);
    }
};

// The distance falls and then rises along the segment: the lowest place is found by halving.
bool isNearSlant(const Slant& slant, double tolerance) {
    int low = slant.low;
    int high = slant.high;
    while (true) {
        const int middle = low + (high - low) / 2;
        const int next = slant.distance(middle + 1);
        const int here = slant.distance(middle);
        if (here <= tolerance) return true;
        if (middle == low) return next <= tolerance;
        if (next < here) {
            low = middle;
        } else {
            high = middle;
        }
    }
}

bool isNearSegment(const QPoint& a, const QPoint& b, const QPoint& point, double tolerance) {
    if (a.x() == b.x()) {
        return isBetween(point.y(), a.y(), b.y()) && std::abs(a.x() - point.x()) <= tolerance;
    }
    if (a.y() == b.y()) {
        return isBetween(point.x(), a.x(), b.x()) && std::abs(a.y() - point.y()) <= tolerance;
    }
    const double yPerX = double(a.y() - b.y()) / (a.x() - b.x());
    const double xPerY = double(a.x() - b.x()) / (a.y() - b.y());
    if (std::abs(xPerY) >= std::abs(yPerX)) {
        return isNearSlant({std::min(a.x(), b.x()), std::max(a.x(), b.x()), yPerX, b.x(), b.y(),
                            point.x(), point.y()},
                           tolerance);
    }
    return isNearSlant(
        {std::min(a.y(), b.y()), std::max(a.y(), b.y()), xPerY, b.y(), b.x(), point.y(), point.x()},
        tolerance);
}

}  // namespace

int IsPointNearLine(const std::vector<QPoint>& points, const QPoint& point, double tolerance) {
    for (std::size_t index = 0; index + 1 < points.size(); ++index) {
        if (isNearSegment(points[index], points[index + 1], point, tolerance)) return int(index);
    }
    return -1;
}

bool TransparentBlt(QImage& dst, int dstX, int dstY, int width, int height, const QImage& src,
                    int srcX, int srcY, const QImage& mask, int maskX, int maskY) {
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const QPoint to(dstX + x, dstY + y);
            const QPoint from(srcX + x, srcY + y);
            const QPoint at(maskX + x, maskY + y);
            if (!dst.rect().contains(to) || !src.rect().contains(from)) continue;
            const bool keeps = mask.rect().contains(at) && qGray(mask.pixel(at)) == 255;
            if (!keeps) dst.setPixel(to, src.pixel(from));
        }
    }
    return true;
}

}  // namespace orv
