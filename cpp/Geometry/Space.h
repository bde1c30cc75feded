#pragma once

#include "Values/Components.h"
#include "ZoPrimitives/TVector3D.h"

#include <cmath>

namespace ZoPrimitives {

// Points and vectors of space as plain numbers, which bodies compute with.

inline Components Of(const Point3D& p) { return {p.X(), p.Y(), p.Z()}; }
inline Point3D PointAt(const Components& v) { return {v.x, v.y, v.z}; }
inline TVector3D VectorOf(const Components& v) { return {v.x, v.y, v.z}; }

inline Components operator+(const Components& a, const Components& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Components operator-(const Components& a, const Components& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Components operator*(const Components& v, double factor) {
    return {v.x * factor, v.y * factor, v.z * factor};
}
inline bool IsFinite(const Components& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// The point between `a` and `b` that is nearest to `p`.
inline Components NearestBetween(const Components& a, const Components& b, const Components& p) {
    const Components along = b - a;
    const int scale = ScaleOf(along);
    const Components scaled = Scaled(along, scale);
    const double square = Dot(scaled, scaled);
    if (!(square > 0)) return a;
    const double t = Dot(Scaled(p - a, scale), scaled) / square;
    // From the nearer end, for the rounding's sake.
    return t <= 0 ? a : t >= 1 ? b : t < 0.5 ? a + along * t : b - along * (1 - t);
}

} // namespace ZoPrimitives
