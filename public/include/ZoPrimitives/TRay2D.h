#pragma once

#include "ZoPrimitives/TSegment2D.h"
#include "ZoPrimitives/TVector2D.h"

namespace ZoPrimitives {

/// A straight line that begins in a point and runs on without end in a direction, which is asserted not to be
/// zero where it is needed. Compares exactly, by point and direction.
class ZO_API TRay2D : public ZoObjectStreamable {
public:
    /// From the origin along x.
    TRay2D();
    TRay2D(const Point2D& start, const TVector2D& direction);
    /// From the first point through the other.
    static TRay2D Through(const Point2D& a, const Point2D& b);
    ZO_POINT_CLASS_(TRay2D)

    Point2D Start() const { return {xValue, yValue}; }
    TVector2D Direction() const { return {dxValue, dyValue}; }
    double X() const { return xValue; }
    double Y() const { return yValue; }
    double Dx() const { return dxValue; }
    double Dy() const { return dyValue; }
    void X(double value) { xValue = value; }
    void Y(double value) { yValue = value; }
    void Dx(double value) { dxValue = value; }
    void Dy(double value) { dyValue = value; }

    /// The point of the ray that is nearest to the other.
    Point2D NearestPoint(const Point2D& point) const;
    double Distance(const Point2D& point) const { return NearestPoint(point).Distance(point); }
    /// The part from its start to somewhat beyond all that lies beside the rectangle: for pairs with what
    /// lies within that, the ray itself.
    TSegment2D Beside(const RRect& rectangle) const;

    bool operator==(const TRay2D& other) const;
    bool operator!=(const TRay2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a ray.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 before the start and 11, 21 before the direction.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TRay2D, x, X)
    ZO_COORDINATE_(TRay2D, y, Y)
    ZO_COORDINATE_(TRay2D, dx, Dx)
    ZO_COORDINATE_(TRay2D, dy, Dy)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
