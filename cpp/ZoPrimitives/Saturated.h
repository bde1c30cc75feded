#pragma once

#include <cstdint>
#include <limits>

namespace ZoPrimitives {

/// Truncates towards zero; the nearest integer when out of range, 0 for NaN.
constexpr std::int32_t Saturated(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value != value) return 0;
    if (value >= Limits::max()) return Limits::max();
    if (value <= Limits::min()) return Limits::min();
    return static_cast<std::int32_t>(value);
}

} // namespace ZoPrimitives
