#pragma once

#include <algorithm>
#include <cmath>

namespace ZoPrimitives {

/// The components of a vector; z is 0 in the plane. Lengths, directions and angles are right for all finite
/// doubles, even where squares of the components overflow or underflow.
struct Components {
    double x;
    double y;
    double z = 0;
};

inline double Dot(const Components& a, const Components& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Components Cross(const Components& a, const Components& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// The exponent of the power of two that scales the largest magnitude into [1, 2); 0 if all are 0 or one is
/// infinite.
inline int ScaleOf(const Components& v) {
    const double largest = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
    return largest > 0 && std::isfinite(largest) ? -std::ilogb(largest) : 0;
}

/// Multiplies by a power of two, which is exact.
inline Components Scaled(const Components& v, int scale) {
    return {std::scalbn(v.x, scale), std::scalbn(v.y, scale), std::scalbn(v.z, scale)};
}

/// Scaled so that products of components are in range.
inline Components Scaled(const Components& v) { return Scaled(v, ScaleOf(v)); }

inline double Length(const Components& v) {
    const double square = Dot(v, v);
    if (square > 1e-280 && square < 1e280) return std::sqrt(square); // the usual case, fast
    const int scale = ScaleOf(v);
    const Components scaled = Scaled(v, scale);
    return std::scalbn(std::sqrt(Dot(scaled, scaled)), -scale);
}

/// Scaled to length 1; a vector of length 0 or NaN is unchanged.
inline Components Unit(const Components& v) {
    const Components scaled = Scaled(v);
    const double length = Length(scaled);
    if (!(length > 0)) return v;
    return {scaled.x / length, scaled.y / length, scaled.z / length};
}

/// The cosine of the angle between the two, within [-1, 1] despite rounding; 1 if either length is 0.
inline double Cosine(const Components& v, const Components& w) {
    const Components a = Scaled(v);
    const Components b = Scaled(w);
    const double lengths = Length(a) * Length(b);
    return lengths == 0 ? 1 : std::clamp(Dot(a, b) / lengths, -1.0, 1.0);
}

/// The angle between the two, negated if the turn from `a` to `b` is clockwise as seen by an observer at whom
/// `normal` points.
inline double SignedAngle(const Components& a, const Components& b, const Components& normal) {
    const double angle = std::acos(Cosine(a, b));
    return Dot(Cross(Scaled(a), Scaled(b)), Scaled(normal)) < 0 ? -angle : angle;
}

} // namespace ZoPrimitives
