#pragma once

#include "ZoPrimitives/Export.h"

#include <cmath>
#include <type_traits>
#include <utility>

namespace ZoPrimitives {

/// A point of the plane for drawing; it is not streamable. Compares exactly.
struct ZO_API LDPoint {
    double x = 0;
    double y = 0;

    LDPoint() = default;
    LDPoint(double newX, double newY) : x(newX), y(newY) {}
    /// From the system's POINT, or from any other type with numeric members x and y.
    template <class T, class = std::enable_if_t<!std::is_base_of_v<LDPoint, T> &&
                                                std::is_arithmetic_v<decltype(std::declval<const T&>().x)> &&
                                                std::is_arithmetic_v<decltype(std::declval<const T&>().y)>>>
    LDPoint(const T& point) : x(static_cast<double>(point.x)), y(static_cast<double>(point.y)) {}

    bool operator==(const LDPoint& other) const { return x == other.x && y == other.y; }
    bool operator!=(const LDPoint& other) const { return !(*this == other); }

    double DistFrom(const LDPoint& other) const { return std::sqrt(DistFrom2(other)); }
    /// The square of the distance.
    double DistFrom2(const LDPoint& other) const {
        return (x - other.x) * (x - other.x) + (y - other.y) * (y - other.y);
    }

    /// In place.
    LDPoint& Offset(const LDPoint& other) { return *this = OffsetBy(other); }
    LDPoint OffsetBy(const LDPoint& other) const { return {x + other.x, y + other.y}; }
    /// In place.
    LDPoint& Scale(double factor) { return *this = ScaledBy(factor); }
    LDPoint ScaledBy(double factor) const { return {x * factor, y * factor}; }

    LDPoint operator-() const { return {-x, -y}; }
    LDPoint operator-(const LDPoint& other) const { return {x - other.x, y - other.y}; }
    LDPoint operator*(double factor) const { return ScaledBy(factor); }
};

static_assert(sizeof(LDPoint) == 2 * sizeof(double), "two doubles and nothing else");

} // namespace ZoPrimitives
