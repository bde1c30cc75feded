#pragma once

#include "ZoPrimitives/Point2D.h"

namespace ZoPrimitives {

class TTransformation;

/// A point of space. Its coordinates are read and written through the virtual accessors only, in this class
/// and by streamers. Operators compare exactly; `Equal` and `Less` within the tolerance of a precision, as in
/// Math2.h. Members that change the point return it.
class ZO_API Point3D : public ZoObjectStreamable {
public:
    /// The origin.
    Point3D();
    Point3D(double x, double y, double z);
    ZO_POINT_CLASS_(Point3D)

    virtual double X() const;
    virtual double Y() const;
    virtual double Z() const;
    virtual void X(double value);
    virtual void Y(double value);
    virtual void Z(double value);

    bool operator==(const Point3D& other) const;
    bool operator!=(const Point3D& other) const;
    using ZoObject::operator!=;
    /// False when `other` is no `Point3D`.
    bool operator==(const ZoObject& other) const override;
    // By x, then y, then z. With a NaN, which is neither equal nor less, `>` and `>=` hold.
    bool operator<(const Point3D& other) const;
    bool operator<=(const Point3D& other) const;
    bool operator>(const Point3D& other) const;
    bool operator>=(const Point3D& other) const;

    Point3D operator+(const Point3D& other) const;
    Point3D operator-(const Point3D& other) const;
    Point3D operator*(double factor) const;
    Point3D operator/(double divisor) const;
    Point3D& operator+=(const Point3D& other);
    Point3D& operator-=(const Point3D& other);
    Point3D& operator*=(double factor);

    bool Equal(const Point3D& other, unsigned precision) const;
    bool XYEqual(const Point3D& other, unsigned precision) const;
    /// By x, then y where the x are equal, then z where the y are too.
    bool Less(const Point3D& other, unsigned precision) const;

    double Distance(const Point3D& other) const;
    Point3D& Move(double dx, double dy, double dz);
    // By `angle` radians, counter-clockwise for whom the axis points at.
    /// About the axis through `centre` in the direction of z.
    Point3D& Rotate(double angle, const Point3D& centre);
    /// About the axis from one point to the other; no rotation where they are the same.
    Point3D& Rotate(double angle, const Point3D& from, const Point3D& to);
    /// About the axis through `base` in the direction (dx, dy, dz), of any length; none for length 0.
    Point3D& Rotate(double angle, const Point3D& base, double dx, double dy, double dz);
    /// Divides the distance from the centre by the factor, without rounding.
    Point3D& Scale(const Point3D& centre, double factor);
    Point3D& Transform(const TTransformation& transformation);
    Point2D InPlaneXY() const;
    /// The point `distance` units from this one towards the other, or beyond it; this one where they are less
    /// than 10^-6 apart.
    Point3D InterpolaPonto(const Point3D& other, double distance) const;
    /// Of the way to the other point the part `t`: 0 gives this one, 1 the other.
    Point3D InterpolaPontoComPercentual(const Point3D& other, double t) const;
    /// Each coordinate through `ExRound`; a negative count is 0.
    Point3D GetRoundedPoint(int decimals) const;

    /// "1;2.5;-3", to six significant digits.
    ZoString CoordsToString() const;
    /// Reads what `CoordsToString` wrote. A piece counts with the number it starts with, 0 without one.
    /// False, and the point stays, unless there are exactly three pieces.
    bool CoordsFromString(const ZoString& text);
    /// "(1.5, 2, 0)", to one decimal.
    ZoString ToString() const override;

    /// In texts 10, 20 and 30 lead the coordinates.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(Point3D, x, X)
    ZO_COORDINATE_(Point3D, y, Y)
    ZO_COORDINATE_(Point3D, z, Z)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
