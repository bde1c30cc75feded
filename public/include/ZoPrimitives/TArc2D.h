#pragma once

#include "ZoPrimitives/TPath2D.h"

namespace ZoPrimitives {

/// An arc of a circle between two points; with a bulge of 0 it is straight. Compares exactly.
class ZO_API TArc2D : public TPath2D {
public:
    TArc2D();
    /// `bulge` as in `TPathPiece`.
    TArc2D(const Point2D& start, const Point2D& end, double bulge);
    /// From the first point through the second to the third. The second one on the line of the others gives a
    /// straight piece, if it lies between them; elsewhere it is asserted not to.
    static TArc2D Through(const Point2D& start, const Point2D& middle, const Point2D& end);
    /// From one angle to the other, in radians; counter-clockwise if the second is greater. The difference is
    /// asserted to be less than a turn.
    static TArc2D About(const Point2D& centre, double radius, double startAngle, double endAngle);
    ZO_POINT_CLASS_(TArc2D)

    Point2D Start() const { return {x1Value, y1Value}; }
    Point2D End() const { return {x2Value, y2Value}; }
    /// Infinite for a straight piece; so are the coordinates of its centre, or NaN.
    double Radius() const;
    Point2D Centre() const;
    /// That it turns by, in radians; negative for a clockwise arc.
    double Angle() const;
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    double Bulge() const { return bulgeValue; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    void Bulge(double value) { bulgeValue = value; }

    unsigned long long NPieces() const override;
    TPathPiece Piece(unsigned long long index) const override;

    bool operator==(const TArc2D& other) const;
    bool operator!=(const TArc2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not an arc.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 and 11, 21 before the coordinates of the ends, and 42 before the bulge.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TArc2D, x1, X1)
    ZO_COORDINATE_(TArc2D, y1, Y1)
    ZO_COORDINATE_(TArc2D, x2, X2)
    ZO_COORDINATE_(TArc2D, y2, Y2)
    ZO_COORDINATE_(TArc2D, bulge, Bulge)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
