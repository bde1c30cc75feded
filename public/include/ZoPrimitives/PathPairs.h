#pragma once

#include "ZoPrimitives/TRegion.h"
#include "ZoPrimitives/TSegment2D.h"

namespace ZoPrimitives {

// What two paths, or a path and a region, have to do with each other, whatever they are: each is a sequence
// of straight and circular pieces. An endless line or a ray takes part as the segment that it has beside the
// other one (`TLine2D::Beside`), a Bézier curve `Flattened`. Points and distances are right to rounding;
// whether straight pieces meet is decided exactly.

/// The points that both paths have in common, in order along the first one; of a stretch in common, its ends
/// and the vertices on it. Points that are `Equal` at the precision count once.
ZO_API TPolyline2D Intersections(const TPath2D& a, const TPath2D& b, unsigned precision = 6);
/// From the point of the first path that is nearest to the other one, to that point of the other. That a path
/// has a piece is asserted.
ZO_API TSegment2D NearestPoints(const TPath2D& a, const TPath2D& b);
/// Infinite for a path without pieces.
ZO_API double Distance(const TPath2D& a, const TPath2D& b);

/// 0 if they have a point in common, within the region too; infinite for one without pieces.
ZO_API double Distance(const TRegion& region, const TPath2D& path);
ZO_API double Distance(const TRegion& a, const TRegion& b);

/// Where a path lies: without a point inside (it may touch the border), all of it on the border, without a
/// point outside, or both inside and outside.
enum TPathPlace : int { PathOutside, PathOnBorder, PathInside, PathCrosses };
/// Points that are `Equal` to the nearest one of the border are neither inside nor outside.
ZO_API TPathPlace PlaceOf(const TPath2D& path, const TRegion& region, unsigned precision = 6);
/// Whether nothing of the second region lies outside the first one, beyond the tolerance.
ZO_API bool Contains(const TRegion& outer, const TRegion& inner, unsigned precision = 6);

} // namespace ZoPrimitives
