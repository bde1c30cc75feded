#pragma once

#include <algorithm>
#include <cmath>

namespace ZoPrimitives {

/// Far from where doubles overflow or lose digits.
inline bool IsModerate(double positive) { return positive > 1e-280 && positive < 1e280; }

/// The power of two that brings the largest component to 1 or a little more; 0 where there is none, or an
/// infinity. Scaling by it is exact.
inline int ScaleOf(double x, double y, double z = 0) {
    const double largest = std::max({std::abs(x), std::abs(y), std::abs(z)});
    return largest > 0 && std::isfinite(largest) ? -std::ilogb(largest) : 0;
}

/// The square root of x^2 + y^2 + z^2, also where the squares are out of range.
inline double Length(double x, double y, double z = 0) {
    const double square = x * x + y * y + z * z;
    if (IsModerate(square)) return std::sqrt(square);
    const int scale = ScaleOf(x, y, z);
    if (scale == 0) return std::sqrt(square);
    return std::scalbn(Length(std::scalbn(x, scale), std::scalbn(y, scale), std::scalbn(z, scale)), -scale);
}

} // namespace ZoPrimitives
