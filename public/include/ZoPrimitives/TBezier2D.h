#pragma once

#include "ZoPrimitives/TPolyline2D.h"

namespace ZoPrimitives {

/// A cubic Bézier curve between its first control point and its last. Compares exactly.
class ZO_API TBezier2D : public ZoObjectStreamable {
public:
    TBezier2D();
    TBezier2D(const Point2D& p1, const Point2D& p2, const Point2D& p3, const Point2D& p4);
    /// The same curve as the quadratic one with these control points, to rounding.
    static TBezier2D Quadratic(const Point2D& p1, const Point2D& p2, const Point2D& p3);
    ZO_POINT_CLASS_(TBezier2D)

    /// The control points count from 1 to 4; this is asserted.
    Point2D ControlPoint(unsigned index) const;
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    double X3() const { return x3Value; }
    double Y3() const { return y3Value; }
    double X4() const { return x4Value; }
    double Y4() const { return y4Value; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    void X3(double value) { x3Value = value; }
    void Y3(double value) { y3Value = value; }
    void X4(double value) { x4Value = value; }
    void Y4(double value) { y4Value = value; }

    /// `t` from 0 at the start to 1 at the end.
    Point2D PointAt(double t) const;
    /// To about 13 digits.
    double Length() const;
    RRect BoundingBox() const;
    Point2D NearestPoint(const Point2D& point) const;
    double Distance(const Point2D& point) const { return NearestPoint(point).Distance(point); }
    /// Points of the curve, joined by chords that leave it by at most `chordError`, which is asserted to be
    /// above 0. A curve gets at most 2^20 pieces.
    TPolyline2D Flattened(double chordError) const;

    bool operator==(const TBezier2D& other) const;
    bool operator!=(const TBezier2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a Bézier curve.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 to 13, 23 before the coordinates of the control points.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TBezier2D, x1, X1)
    ZO_COORDINATE_(TBezier2D, y1, Y1)
    ZO_COORDINATE_(TBezier2D, x2, X2)
    ZO_COORDINATE_(TBezier2D, y2, Y2)
    ZO_COORDINATE_(TBezier2D, x3, X3)
    ZO_COORDINATE_(TBezier2D, y3, Y3)
    ZO_COORDINATE_(TBezier2D, x4, X4)
    ZO_COORDINATE_(TBezier2D, y4, Y4)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
