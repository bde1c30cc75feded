#pragma once

#include <array>
#include <vector>

namespace bench {

using Vertices = std::vector<std::array<double, 2>>;

/// In the order of the bench's table.
enum class OverlayKind { UNION, INTERSECTION, DIFFERENCE, EXCLUSIVE_OR };

/// Milliseconds that Boost.Geometry takes for the overlay of two polygons; `area` gets that of the result.
double TimeBoostOverlay(const Vertices& a, const Vertices& b, OverlayKind kind, double& area);

} // namespace bench
