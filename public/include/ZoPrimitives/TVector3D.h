#pragma once

#include "ZoPrimitives/Point3D.h"

namespace ZoPrimitives {

/// A vector in space. Angles are in radians; a NaN or an infinity makes them NaN.
class ZO_API TVector3D : public Point3D {
public:
    /// The zero vector.
    TVector3D();
    TVector3D(double x, double y, double z);
    /// From the origin to the point.
    explicit TVector3D(const Point3D& point);
    TVector3D(const Point3D& from, const Point3D& to);
    ZO_POINT_CLASS_(TVector3D)

    TVector3D operator+(const Point3D& other) const;
    TVector3D operator-(const Point3D& other) const;
    TVector3D operator-() const;
    TVector3D operator*(double factor) const;
    TVector3D operator/(double divisor) const;

    double Magnitude() const;
    /// Compares the magnitude at precision 6.
    bool MagnitudeGreaterThanZero() const;
    /// Scales to magnitude 1; the zero vector is unchanged.
    TVector3D& Normalize();
    TVector3D Normalized() const;
    double DotProduct(const Point3D& other) const;
    /// (y1 z2 - z1 y2, z1 x2 - x1 z2, x1 y2 - y1 x2): right-handed.
    TVector3D CrossProduct(const Point3D& other) const;
    /// The vector of the components' magnitudes.
    TVector3D Abs() const;

    /// The angle between the two, from 0 to pi; 0 if either is zero.
    double Angle(const TVector3D& other) const;
    /// The cosine of `Angle`: a·b / (|a| |b|) within [-1, 1]; 1 if either is zero.
    double CosAngle(const TVector3D& other) const;
    /// `Angle`, negated when (a x b)·n < 0: the turn to the other vector is then clockwise as seen by an
    /// observer at whom the normal points.
    double SignedAngle(const TVector3D& other, const TVector3D& normal) const;
    /// With the normal (0, 0, 1).
    double SignedAngle(const TVector3D& other) const;
    /// The cosine of `SignedAngle`, which equals that of `Angle` for every normal.
    double CosSignedAngle(const TVector3D& other) const;

    // These round to `precision` decimals with `ExRound`: the longer the vectors, the stricter. All hold for
    // zero vectors.
    /// |a x b| = 0.
    bool ColinearTo(const TVector3D& other, unsigned precision) const;
    /// a·b = 0.
    bool PerpendicularTo(const TVector3D& other, unsigned precision) const;
    /// a·(b x c) = 0.
    bool CoplanarTo(const TVector3D& b, const TVector3D& c, unsigned precision) const;

    /// The component along the other vector: b (a·b) / (b·b); zero if that vector is.
    TVector3D Project(const TVector3D& other) const;
    /// The component in the plane with this normal: a - n (a·n) / (n·n); a itself if n is zero.
    TVector3D ProjectionOnPlane(const TVector3D& normal) const;
    /// The components along the axes: (a·x, a·y, a·z). Inverts `WorldCoordinates` if the axes are
    /// orthonormal.
    TVector3D LocalCoordinates(const TVector3D& xAxis, const TVector3D& yAxis, const TVector3D& zAxis) const;
    /// The vector with these components along the axes: x a1 + y a2 + z a3.
    TVector3D WorldCoordinates(const TVector3D& xAxis, const TVector3D& yAxis, const TVector3D& zAxis) const;
    /// Transforms a direction: without the translation that a point would get.
    TVector3D& Transform(const TTransformation& transformation);
    /// From one point towards the other; the zero vector if they are the same.
    static TVector3D CreateUnitVector(const Point3D& from, const Point3D& to);

    /// The axes of the object coordinate system for an extrusion direction, as the drawing exchange format
    /// DXF derives them: z is the normalised normal; x is (0, 1, 0) x z if both |z.x| and |z.y| are below
    /// 1/64, otherwise (0, 0, 1) x z; y is z x x. A zero normal counts as (0, 0, 1).
    static void AcadArbitraryAxes(const TVector3D& normal, TVector3D& xAxis, TVector3D& yAxis,
                                  TVector3D& zAxis);
    /// Converts world coordinates to object coordinates.
    TVector3D AcadArbitraryOCS(const TVector3D& normal) const;
    /// Converts object coordinates to world coordinates.
    TVector3D AcadArbitraryWCS(const TVector3D& normal) const;

    /// Writes the codes 210, 220 and 230 before the components; reads those of a point too.
    void Write(OutputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
