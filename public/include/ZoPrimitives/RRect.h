#pragma once

#include "ZoPrimitives/Point2D.h"

namespace ZoPrimitives {

/// An upright rectangle, its border included; a new one is empty. Compares exactly.
class ZO_API RRect : public ZoObjectStreamable {
public:
    /// Empty.
    RRect();
    /// Between two opposite corners.
    RRect(const Point2D& corner, const Point2D& opposite);
    ZO_POINT_CLASS_(RRect)

    bool IsEmpty() const { return !(x1Value <= x2Value && y1Value <= y2Value); }
    // The lower left corner is (X1, Y1), the upper right one (X2, Y2). The empty rectangle has infinities
    // there, the greater first.
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    /// 0 for the empty rectangle, as are height and area.
    double Width() const { return IsEmpty() ? 0 : x2Value - x1Value; }
    double Height() const { return IsEmpty() ? 0 : y2Value - y1Value; }
    double Area() const { return Width() * Height(); }
    Point2D Centre() const;

    /// Grows until it holds the point, or the other rectangle.
    RRect& Add(const Point2D& point);
    RRect& Add(const RRect& other);
    /// Grows by `margin` on each side, or shrinks by a negative one, perhaps to nothing.
    RRect& Inflate(double margin);
    RRect Intersection(const RRect& other) const;
    bool Contains(const Point2D& point) const;
    /// Whether both have a point in common.
    bool Intersects(const RRect& other) const;

    /// All empty rectangles are equal.
    bool operator==(const RRect& other) const;
    bool operator!=(const RRect& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not an `RRect`.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 and 11, 21 before the coordinates of the corners.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(RRect, x1, X1)
    ZO_COORDINATE_(RRect, y1, Y1)
    ZO_COORDINATE_(RRect, x2, X2)
    ZO_COORDINATE_(RRect, y2, Y2)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
