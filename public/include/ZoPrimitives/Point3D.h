#pragma once

#include "ZoPrimitives/Point2D.h"

namespace ZoPrimitives {

class TTransformation;

/// A point in space. The class itself and the streamers access its coordinates only through the virtual
/// accessors. Operators compare exactly; `Equal` and `Less` compare within a tolerance, as in Math2.h.
/// Members that change the point return it.
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
    /// False when `other` is not a `Point3D`.
    bool operator==(const ZoObject& other) const override;
    // Compare by x, then y, then z. A NaN is neither equal nor less, so `>` and `>=` hold.
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
    /// Compares by x; if these are equal, by y; if these are too, by z.
    bool Less(const Point3D& other, unsigned precision) const;

    double Distance(const Point3D& other) const;
    Point3D& Move(double dx, double dy, double dz);
    // Rotations by `angle` radians, counter-clockwise as seen by an observer at whom the axis points.
    /// About the axis through `centre` in the z direction.
    Point3D& Rotate(double angle, const Point3D& centre);
    /// About the axis from one point to the other; none if they are the same.
    Point3D& Rotate(double angle, const Point3D& from, const Point3D& to);
    /// About the axis through `base` in the direction (dx, dy, dz), of any length; none if the length is 0.
    Point3D& Rotate(double angle, const Point3D& base, double dx, double dy, double dz);
    /// Divides the distance from the centre by the factor, without rounding.
    Point3D& Scale(const Point3D& centre, double factor);
    Point3D& Transform(const TTransformation& transformation);
    Point2D InPlaneXY() const;
    /// The point at `distance` from this one towards the other, or beyond it; this point if they are less
    /// than 10^-6 apart.
    Point3D InterpolaPonto(const Point3D& other, double distance) const;
    /// Interpolates towards the other point: `t` = 0 gives this one, 1 the other.
    Point3D InterpolaPontoComPercentual(const Point3D& other, double t) const;
    /// Rounds each coordinate with `ExRound`; a negative count is taken as 0.
    Point3D GetRoundedPoint(int decimals) const;

    /// "1;2.5;-3", with six significant digits.
    ZoString CoordsToString() const;
    /// Reads what `CoordsToString` wrote. Each piece gives the number at its start, 0 if there is none.
    /// False, with the point unchanged, unless there are exactly three pieces.
    bool CoordsFromString(const ZoString& text);
    /// "(1.5, 2, 0)", with one decimal.
    ZoString ToString() const override;

    /// Writes the codes 10, 20 and 30 before the coordinates.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(Point3D, x, X)
    ZO_COORDINATE_(Point3D, y, Y)
    ZO_COORDINATE_(Point3D, z, Z)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
