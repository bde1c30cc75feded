#include "ZoPrimitives/I3DShape.h"

#include <algorithm>

namespace ZoPrimitives {

I3DShape::I3DShape() = default;
I3DShape::I3DShape(const I3DShape&) = default;
I3DShape& I3DShape::operator=(const I3DShape&) = default;
I3DShape::~I3DShape() = default;

double I3DShape::Distance(const Point3D& point) const { return std::max(SignedDistance(point), 0.0); }

TLocation I3DShape::Locate(const Point3D& point, unsigned precision) const {
    const double distance = SignedDistance(point);
    if (distance == 0 || Equal(distance, 0, precision)) return OnBorder;
    return distance < 0 ? InsideRegion : OutsideRegion;
}

} // namespace ZoPrimitives
