#pragma once

#include "ZoPrimitives/Point2D.h"

namespace ZoPrimitives {

/// Area, centroid and second moments of a plane figure. Sections are put together from parts with `+=`, and
/// lose their holes with `-=`.
class ZO_API TAreaProperties {
public:
    /// Of nothing: all are 0.
    TAreaProperties() = default;
    /// The second moments are about the centroid: `ix` is the integral of y^2, `iy` that of x^2, `ixy` that
    /// of x y.
    TAreaProperties(double area, const Point2D& centroid, double ix, double iy, double ixy);

    double Area() const { return area; }
    Point2D Centroid() const { return {x, y}; }
    // About the axes through the centroid.
    double Ix() const { return ix; }
    double Iy() const { return iy; }
    double Ixy() const { return ixy; }
    double PolarMoment() const { return ix + iy; }
    // The first moments about the axes of the coordinates: the integrals of y and of x.
    double Sx() const { return area * y; }
    double Sy() const { return area * x; }
    /// The same figure's second moments about parallel axes through another point.
    double IxAbout(const Point2D& point) const;
    double IyAbout(const Point2D& point) const;
    double IxyAbout(const Point2D& point) const;

    double MaxInertia() const;
    double MinInertia() const;
    /// The direction of the axis about which the moment is largest, in radians from the x axis, above -pi/2
    /// and up to pi/2; 0 if all directions are alike.
    double PrincipalAngle() const;

    TAreaProperties& operator+=(const TAreaProperties& part);
    TAreaProperties& operator-=(const TAreaProperties& hole);
    /// The figure that lies on the other side of its border: everything counts negative.
    TAreaProperties operator-() const;

private:
    double area = 0;
    double x = 0;
    double y = 0;
    double ix = 0;
    double iy = 0;
    double ixy = 0;
};

} // namespace ZoPrimitives
