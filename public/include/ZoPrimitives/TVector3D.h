#pragma once

#include "ZoPrimitives/Point3D.h"

namespace ZoPrimitives {

/// A vector of space. Angles are in radians; beside a NaN or an infinity they are NaN.
class ZO_API TVector3D : public Point3D {
public:
    /// The zero vector.
    TVector3D();
    TVector3D(double x, double y, double z);
    /// From the origin to a point.
    explicit TVector3D(const Point3D& point);
    TVector3D(const Point3D& from, const Point3D& to);
    ZO_POINT_CLASS_(TVector3D)

    TVector3D operator+(const Point3D& other) const;
    TVector3D operator-(const Point3D& other) const;
    TVector3D operator-() const;
    TVector3D operator*(double factor) const;
    TVector3D operator/(double divisor) const;

    double Magnitude() const;
    /// To 6 decimals.
    bool MagnitudeGreaterThanZero() const;
    /// To magnitude 1; the zero vector stays.
    TVector3D& Normalize();
    TVector3D Normalized() const;
    double DotProduct(const Point3D& other) const;
    /// (y1 z2 - z1 y2, z1 x2 - x1 z2, x1 y2 - y1 x2): right-handed.
    TVector3D CrossProduct(const Point3D& other) const;
    /// The magnitude of each component.
    TVector3D Abs() const;

    /// Between the two, from 0 to pi; 0 beside a zero vector.
    double Angle(const TVector3D& other) const;
    /// The cosine of `Angle`: a·b / (|a| |b|) within [-1, 1]; 1 beside a zero vector.
    double CosAngle(const TVector3D& other) const;
    /// `Angle`, negative where the turn from this vector to the other is clockwise for whom the normal points
    /// at: (a x b)·n < 0.
    double SignedAngle(const TVector3D& other, const TVector3D& normal) const;
    /// Seen from above: with the normal (0, 0, 1).
    double SignedAngle(const TVector3D& other) const;
    /// The cosine of `SignedAngle`, which is that of `Angle`, whatever the normal.
    double CosSignedAngle(const TVector3D& other) const;

    // To so many decimals, by `ExRound`: the longer the vectors, the stricter. Zero vectors are all three.
    /// |a x b| = 0.
    bool ColinearTo(const TVector3D& other, unsigned precision) const;
    /// a·b = 0.
    bool PerpendicularTo(const TVector3D& other, unsigned precision) const;
    /// a·(b x c) = 0.
    bool CoplanarTo(const TVector3D& b, const TVector3D& c, unsigned precision) const;

    /// The part along the other vector: b (a·b) / (b·b); zero along a zero vector.
    TVector3D Project(const TVector3D& other) const;
    /// The part in the plane of that normal: a - n (a·n) / (n·n); the vector itself for a zero normal.
    TVector3D ProjectionOnPlane(const TVector3D& normal) const;
    /// The components along axes: (a·x, a·y, a·z), which undoes `WorldCoordinates` for axes of magnitude 1
    /// at right angles.
    TVector3D LocalCoordinates(const TVector3D& xAxis, const TVector3D& yAxis, const TVector3D& zAxis) const;
    /// The vector of components along axes: x a1 + y a2 + z a3.
    TVector3D WorldCoordinates(const TVector3D& xAxis, const TVector3D& yAxis, const TVector3D& zAxis) const;
    /// As a direction: without the translation that a point would get.
    TVector3D& Transform(const TTransformation& transformation);
    /// From one point towards the other; the zero vector where they are the same.
    static TVector3D CreateUnitVector(const Point3D& from, const Point3D& to);

    /// The axes of the object coordinate system of an extrusion direction, as the drawing exchange format DXF
    /// derives them: z is the normal, normalised; x is (0, 1, 0) x z where both |z.x| and |z.y| are below
    /// 1/64, otherwise (0, 0, 1) x z; y is z x x. A zero normal counts as (0, 0, 1).
    static void AcadArbitraryAxes(const TVector3D& normal, TVector3D& xAxis, TVector3D& yAxis,
                                  TVector3D& zAxis);
    /// From world coordinates to those of the object system.
    TVector3D AcadArbitraryOCS(const TVector3D& normal) const;
    /// From coordinates of the object system to those of the world.
    TVector3D AcadArbitraryWCS(const TVector3D& normal) const;

    /// In texts 210, 220 and 230 lead the components; those of a point are read too.
    void Write(OutputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
