#pragma once

#include "ZoPrimitives/TPath2D.h"

namespace ZoPrimitives {

/// A straight piece between two points, which may be the same. Compares exactly.
class ZO_API TSegment2D : public TPath2D {
public:
    TSegment2D();
    TSegment2D(const Point2D& start, const Point2D& end);
    ZO_POINT_CLASS_(TSegment2D)

    Point2D Start() const { return {x1Value, y1Value}; }
    Point2D End() const { return {x2Value, y2Value}; }
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }

    unsigned long long NPieces() const override;
    TPathPiece Piece(unsigned long long index) const override;

    bool operator==(const TSegment2D& other) const;
    bool operator!=(const TSegment2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a segment.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 and 11, 21 before the coordinates of the ends.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TSegment2D, x1, X1)
    ZO_COORDINATE_(TSegment2D, y1, Y1)
    ZO_COORDINATE_(TSegment2D, x2, X2)
    ZO_COORDINATE_(TSegment2D, y2, Y2)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
