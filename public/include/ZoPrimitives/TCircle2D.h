#pragma once

#include "ZoPrimitives/TPath2D.h"

namespace ZoPrimitives {

/// A circle, counter-clockwise, in two pieces: the lower half and the upper one. Compares exactly.
class ZO_API TCircle2D : public TPath2D {
public:
    TCircle2D();
    TCircle2D(const Point2D& centre, double radius);
    ZO_POINT_CLASS_(TCircle2D)

    Point2D Centre() const { return {xValue, yValue}; }
    double X() const { return xValue; }
    double Y() const { return yValue; }
    double Radius() const { return radiusValue; }
    void X(double value) { xValue = value; }
    void Y(double value) { yValue = value; }
    void Radius(double value) { radiusValue = value; }

    unsigned long long NPieces() const override;
    TPathPiece Piece(unsigned long long index) const override;
    bool IsClosed() const override;

    bool operator==(const TCircle2D& other) const;
    bool operator!=(const TCircle2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a circle.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20 and 40 before centre and radius.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(TCircle2D, x, X)
    ZO_COORDINATE_(TCircle2D, y, Y)
    ZO_COORDINATE_(TCircle2D, radius, Radius)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
