#pragma once

#include "ZoPrimitives/I3DShape.h"

namespace ZoPrimitives {

/// A circular cylinder with flat ends, at right angles to its axis. Of a negative radius the
/// magnitude counts. Without length it is a disc of two sides, whose axis is vertical. Compares exactly.
class ZO_API T3DCylinder : public ZoObjectStreamable, public I3DShape {
public:
    /// At the origin, without length and radius.
    T3DCylinder();
    /// The axis, from one end to the other.
    T3DCylinder(const Point3D& start, const Point3D& end, double radius);
    ZO_POINT_CLASS_(T3DCylinder)

    Point3D Start() const { return {x1Value, y1Value, z1Value}; }
    Point3D End() const { return {x2Value, y2Value, z2Value}; }
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double Z1() const { return z1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    double Z2() const { return z2Value; }
    double Radius() const { return radiusValue; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void Z1(double value) { z1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    void Z2(double value) { z2Value = value; }
    void Radius(double value) { radiusValue = value; }

    double Length() const;

    double Volume() const override;
    double SurfaceArea() const override;
    T3DBox BoundingBox() const override;
    double SignedDistance(const Point3D& point) const override;
    bool RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const override;
    T3DMesh Mesh(double chordError) const override;

    bool operator==(const T3DCylinder& other) const;
    bool operator!=(const T3DCylinder& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a cylinder.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20, 30 and 11, 21, 31 before the coordinates of the ends, and 40 before the
    /// radius.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(T3DCylinder, x1, X1)
    ZO_COORDINATE_(T3DCylinder, y1, Y1)
    ZO_COORDINATE_(T3DCylinder, z1, Z1)
    ZO_COORDINATE_(T3DCylinder, x2, X2)
    ZO_COORDINATE_(T3DCylinder, y2, Y2)
    ZO_COORDINATE_(T3DCylinder, z2, Z2)
    ZO_COORDINATE_(T3DCylinder, radius, Radius)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
