#pragma once

#include "ZoPrimitives/T3DSegment.h"

namespace ZoPrimitives {

/// An endless plane through a point, with a normal, which is asserted not to be zero where it is needed.
/// Compares exactly, by point and normal.
class ZO_API TPlane3D : public ZoObjectStreamable {
public:
    /// The xy plane.
    TPlane3D();
    TPlane3D(const Point3D& point, const TVector3D& normal);
    ZO_POINT_CLASS_(TPlane3D)
    /// The plane through three points, which turn counter-clockwise as seen by an observer at whom the normal
    /// points. False, with `plane` unchanged, if they lie on a line: if the distance of one from the line of
    /// the others is `Equal` to 0.
    [[nodiscard]] static bool Through(const Point3D& a, const Point3D& b, const Point3D& c, TPlane3D& plane,
                                      unsigned precision = 6);

    Point3D Point() const { return {xValue, yValue, zValue}; }
    TVector3D Normal() const { return {dxValue, dyValue, dzValue}; }
    double X() const { return xValue; }
    double Y() const { return yValue; }
    double Z() const { return zValue; }
    double Dx() const { return dxValue; }
    double Dy() const { return dyValue; }
    double Dz() const { return dzValue; }
    void X(double value) { xValue = value; }
    void Y(double value) { yValue = value; }
    void Z(double value) { zValue = value; }
    void Dx(double value) { dxValue = value; }
    void Dy(double value) { dyValue = value; }
    void Dz(double value) { dzValue = value; }

    /// Positive on the side that the normal points to.
    double SignedDistance(const Point3D& point) const;
    /// Whether the distance is `Equal` to 0.
    bool Contains(const Point3D& point, unsigned precision = 6) const;
    /// The point of the plane that is nearest to the other.
    Point3D Project(const Point3D& point) const;
    // These are false, with nothing set, if there is not exactly one point, or line, in common.
    /// With the line through a point in a direction: none if both are parallel to rounding.
    [[nodiscard]] bool Intersection(const Point3D& point, const TVector3D& direction,
                                    Point3D& crossing) const;
    /// With a segment, its ends included.
    [[nodiscard]] bool Intersection(const T3DSegment& segment, Point3D& crossing) const;
    /// With a plane, in a line through a point in a direction of length 1: none if both are parallel to
    /// rounding.
    [[nodiscard]] bool Intersection(const TPlane3D& other, Point3D& point, TVector3D& direction) const;

    bool operator==(const TPlane3D& other) const;
    bool operator!=(const TPlane3D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a plane.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20, 30 before the point and 210, 220, 230 before the normal.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TPlane3D, x, X)
    ZO_COORDINATE_(TPlane3D, y, Y)
    ZO_COORDINATE_(TPlane3D, z, Z)
    ZO_COORDINATE_(TPlane3D, dx, Dx)
    ZO_COORDINATE_(TPlane3D, dy, Dy)
    ZO_COORDINATE_(TPlane3D, dz, Dz)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
