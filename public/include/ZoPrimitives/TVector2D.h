#pragma once

#include "ZoPrimitives/Point2D.h"

namespace ZoPrimitives {

/// A vector of the plane. Angles are in radians; beside a NaN or an infinity they are NaN.
class ZO_API TVector2D : public Point2D {
public:
    /// The zero vector.
    TVector2D();
    TVector2D(double x, double y);
    /// From the origin to a point.
    explicit TVector2D(const Point2D& point);
    TVector2D(const Point2D& from, const Point2D& to);
    ZO_POINT_CLASS_(TVector2D)

    TVector2D operator+(const Point2D& other) const;
    TVector2D operator-(const Point2D& other) const;
    TVector2D operator-() const;
    TVector2D operator*(double factor) const;
    TVector2D operator/(double divisor) const;

    double Magnitude() const;
    /// To 6 decimals.
    bool MagnitudeGreaterThanZero() const;
    /// To magnitude 1; the zero vector stays.
    TVector2D& Normalize();
    TVector2D Normalized() const;
    double DotProduct(const Point2D& other) const;
    /// x1 y2 - y1 x2: positive where the other vector lies to the left.
    double CrossProduct(const Point2D& other) const;
    /// Between the two, from 0 to pi; 0 beside a zero vector.
    double Angle(const TVector2D& other) const;
    /// From this vector to the other, from -pi to pi: positive where it lies to the left.
    double SignedAngle(const TVector2D& other) const;
};

} // namespace ZoPrimitives
