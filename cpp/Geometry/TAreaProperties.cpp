#include "ZoPrimitives/TAreaProperties.h"

#include "Values/FullTurn.h"

#include <cmath>

namespace ZoPrimitives {

TAreaProperties::TAreaProperties(double area, const Point2D& centroid, double ix, double iy, double ixy)
    : area(area), x(centroid.X()), y(centroid.Y()), ix(ix), iy(iy), ixy(ixy) {}

double TAreaProperties::IxAbout(const Point2D& point) const {
    return ix + area * (y - point.Y()) * (y - point.Y());
}
double TAreaProperties::IyAbout(const Point2D& point) const {
    return iy + area * (x - point.X()) * (x - point.X());
}
double TAreaProperties::IxyAbout(const Point2D& point) const {
    return ixy + area * (x - point.X()) * (y - point.Y());
}

double TAreaProperties::MaxInertia() const { return (ix + iy) / 2 + std::hypot((ix - iy) / 2, ixy); }

double TAreaProperties::MinInertia() const {
    const double larger = MaxInertia();
    // The product of both is the determinant, which keeps the digits of a slender section's lesser one.
    return larger > 0 ? (ix * iy - ixy * ixy) / larger : (ix + iy) / 2 - std::hypot((ix - iy) / 2, ixy);
}

double TAreaProperties::PrincipalAngle() const {
    if (ix == iy && ixy == 0) return 0;
    return ixy == 0 && ix < iy ? FULL_TURN / 4 : std::atan2(-2 * ixy, ix - iy) / 2;
}

TAreaProperties& TAreaProperties::operator+=(const TAreaProperties& part) {
    const double whole = area + part.area;
    const double dx = part.x - x;
    const double dy = part.y - y;
    // The parts' own areas, reduced as masses are.
    const double reduced = whole == 0 ? 0 : area / whole * part.area;
    ix += part.ix + reduced * dy * dy;
    iy += part.iy + reduced * dx * dx;
    ixy += part.ixy + reduced * dx * dy;
    if (whole != 0) {
        x += dx * (part.area / whole);
        y += dy * (part.area / whole);
    }
    area = whole;
    return *this;
}

TAreaProperties& TAreaProperties::operator-=(const TAreaProperties& hole) { return *this += -hole; }

TAreaProperties TAreaProperties::operator-() const { return {-area, Centroid(), -ix, -iy, -ixy}; }

} // namespace ZoPrimitives
