#pragma once

#include "ZoPrimitives/LDPoint.h"

#include <array>
#include <vector>

namespace ZoPrimitives {

/// The triangles, counter-clockwise, of the area to the left of closed rings: outer ones, each with its
/// holes. Corners are counted from 0 through all rings, one after the other. Each side of a ring is that of
/// one triangle, each other edge that of two, whatever the coordinates; they fill the area if the rings do
/// not touch themselves and each other.
std::vector<std::array<int, 3>> Triangulated(const std::vector<std::vector<LDPoint>>& rings);

} // namespace ZoPrimitives
