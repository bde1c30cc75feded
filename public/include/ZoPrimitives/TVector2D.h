#pragma once

#include "ZoPrimitives/Point2D.h"

namespace ZoPrimitives {

/// A vector in the plane. Angles are in radians; a NaN or an infinity makes them NaN.
class ZO_API TVector2D : public Point2D {
public:
    /// The zero vector.
    TVector2D();
    TVector2D(double x, double y);
    /// From the origin to the point.
    explicit TVector2D(const Point2D& point);
    TVector2D(const Point2D& from, const Point2D& to);
    ZO_POINT_CLASS_(TVector2D)

    TVector2D operator+(const Point2D& other) const;
    TVector2D operator-(const Point2D& other) const;
    TVector2D operator-() const;
    TVector2D operator*(double factor) const;
    TVector2D operator/(double divisor) const;

    double Magnitude() const;
    /// Compares the magnitude at precision 6.
    bool MagnitudeGreaterThanZero() const;
    /// Scales to magnitude 1; the zero vector is unchanged.
    TVector2D& Normalize();
    TVector2D Normalized() const;
    double DotProduct(const Point2D& other) const;
    /// x1 y2 - y1 x2: positive when the other vector lies to the left.
    double CrossProduct(const Point2D& other) const;
    /// The angle between the two, from 0 to pi; 0 if either is zero.
    double Angle(const TVector2D& other) const;
    /// The angle from this vector to the other, from -pi to pi; positive when the other lies to the left.
    double SignedAngle(const TVector2D& other) const;
};

} // namespace ZoPrimitives
