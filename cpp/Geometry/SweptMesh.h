#pragma once

#include "Geometry/Space.h"
#include "ZoPrimitives/LDPoint.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/TRegion.h"

#include <vector>

namespace ZoPrimitives {

/// Where a section stands: its point (x, y) is at origin + x * alongX + y * alongY.
struct Station {
    Components origin;
    Components alongX;
    Components alongY;

    Components At(const LDPoint& p) const { return origin + alongX * p.x + alongY * p.y; }
};

/// The borders of a section in straight pieces: the area lies to their left. What encloses nothing is left
/// out.
std::vector<std::vector<LDPoint>> FlattenedRings(const TRegion& section, double chordError);

/// The closed mesh between the first and the last station; the section is seen against the direction from one
/// station to the next.
T3DMesh SweptMesh(const std::vector<std::vector<LDPoint>>& rings, const std::vector<Station>& stations);

} // namespace ZoPrimitives
