#pragma once

#include "ZoPrimitives/TCircle2D.h"

namespace ZoPrimitives {

/// A closed path through three points. Compares exactly.
class ZO_API TTriangle2D : public TPath2D {
public:
    TTriangle2D();
    TTriangle2D(const Point2D& a, const Point2D& b, const Point2D& c);
    ZO_POINT_CLASS_(TTriangle2D)

    Point2D A() const { return {x1Value, y1Value}; }
    Point2D B() const { return {x2Value, y2Value}; }
    Point2D C() const { return {x3Value, y3Value}; }
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    double X3() const { return x3Value; }
    double Y3() const { return y3Value; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    void X3(double value) { x3Value = value; }
    void Y3(double value) { y3Value = value; }

    /// The circle through its corners, which are asserted not to lie on a line.
    TCircle2D Circumcircle() const;
    /// The circle within it that touches all sides; the same is asserted.
    TCircle2D Incircle() const;

    unsigned long long NPieces() const override;
    TPathPiece Piece(unsigned long long index) const override;
    bool IsClosed() const override;

    bool operator==(const TTriangle2D& other) const;
    bool operator!=(const TTriangle2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a triangle.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20, 11, 21 and 12, 22 before the coordinates of the corners.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TTriangle2D, x1, X1)
    ZO_COORDINATE_(TTriangle2D, y1, Y1)
    ZO_COORDINATE_(TTriangle2D, x2, X2)
    ZO_COORDINATE_(TTriangle2D, y2, Y2)
    ZO_COORDINATE_(TTriangle2D, x3, X3)
    ZO_COORDINATE_(TTriangle2D, y3, Y3)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
