#pragma once

#include "ZoPrimitives/TSegment2D.h"
#include "ZoPrimitives/TVector2D.h"

namespace ZoPrimitives {

/// 1 if the points turn counter-clockwise, -1 clockwise, 0 if they lie on a line. Exact for all finite
/// coordinates.
ZO_API int Orientation(const Point2D& a, const Point2D& b, const Point2D& c);

/// An endless straight line through a point in a direction, which is asserted not to be zero where it is
/// needed. Compares exactly, by point and direction.
class ZO_API TLine2D : public ZoObjectStreamable {
public:
    /// The x axis.
    TLine2D();
    TLine2D(const Point2D& point, const TVector2D& direction);
    /// From the first point to the other.
    static TLine2D Through(const Point2D& a, const Point2D& b);
    ZO_POINT_CLASS_(TLine2D)

    Point2D Point() const { return {xValue, yValue}; }
    TVector2D Direction() const { return {dxValue, dyValue}; }
    double X() const { return xValue; }
    double Y() const { return yValue; }
    double Dx() const { return dxValue; }
    double Dy() const { return dyValue; }
    void X(double value) { xValue = value; }
    void Y(double value) { yValue = value; }
    void Dx(double value) { dxValue = value; }
    void Dy(double value) { dyValue = value; }

    /// Positive to the left of the line.
    double SignedDistance(const Point2D& point) const;
    /// The point of the line that is nearest to the other.
    Point2D Project(const Point2D& point) const;
    /// Whether the directions are parallel: exactly.
    bool IsParallelTo(const TLine2D& other) const;
    /// The point that both have in common, in the nearest doubles; false, and nothing set, for parallel
    /// lines.
    bool Intersection(const TLine2D& other, Point2D& point) const;
    /// The part somewhat longer than what lies beside the rectangle: for pairs with what lies within that,
    /// the line itself. Without length for an empty rectangle.
    TSegment2D Beside(const RRect& rectangle) const;

    bool operator==(const TLine2D& other) const;
    bool operator!=(const TLine2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a line.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 before the point and 11, 21 before the direction.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TLine2D, x, X)
    ZO_COORDINATE_(TLine2D, y, Y)
    ZO_COORDINATE_(TLine2D, dx, Dx)
    ZO_COORDINATE_(TLine2D, dy, Dy)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

/// Registers the values of geometry. Of the plane: `RRect`, `TLine2D`, `TRay2D`, `TSegment2D`, `TArc2D`,
/// `TCircle2D`, `TTriangle2D`, `TBezier2D`, `TPolyline2D`, `TContour` and `TRegion`. Of space: `FloatMatrix`,
/// `T3DBox`, `TPlane3D`, `T3DSegment`, `T3DCylinder`, `T3DMesh` and `TExtrusionPath`. Points, vectors and
/// transformations register on their own.
ZO_API void ZoRegisterGeometry(TZoMetaData* schema);

} // namespace ZoPrimitives
