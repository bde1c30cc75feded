#pragma once

#include "ZoPrimitives/I3DShape.h"

namespace ZoPrimitives {

/// A straight piece between two points of space, which may be the same: a shape without volume and surface,
/// which no ray hits. Compares exactly.
class ZO_API T3DSegment : public ZoObjectStreamable, public I3DShape {
public:
    T3DSegment();
    T3DSegment(const Point3D& start, const Point3D& end);
    ZO_POINT_CLASS_(T3DSegment)

    Point3D Start() const { return {x1Value, y1Value, z1Value}; }
    Point3D End() const { return {x2Value, y2Value, z2Value}; }
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double Z1() const { return z1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    double Z2() const { return z2Value; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void Z1(double value) { z1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    void Z2(double value) { z2Value = value; }

    double Length() const;
    /// The point of the segment that is nearest to the other.
    Point3D NearestPoint(const Point3D& point) const;
    using I3DShape::Distance;
    /// From the other segment.
    double Distance(const T3DSegment& other) const;

    double Volume() const override;
    double SurfaceArea() const override;
    T3DBox BoundingBox() const override;
    double SignedDistance(const Point3D& point) const override;
    bool RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const override;
    /// Empty.
    T3DMesh Mesh(double chordError) const override;

    bool operator==(const T3DSegment& other) const;
    bool operator!=(const T3DSegment& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a segment.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20, 30 and 11, 21, 31 before the coordinates of the ends.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(T3DSegment, x1, X1)
    ZO_COORDINATE_(T3DSegment, y1, Y1)
    ZO_COORDINATE_(T3DSegment, z1, Z1)
    ZO_COORDINATE_(T3DSegment, x2, X2)
    ZO_COORDINATE_(T3DSegment, y2, Y2)
    ZO_COORDINATE_(T3DSegment, z2, Z2)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
