#include "pictures.h"

namespace Frame {

using namespace ZoPrimitives;

std::vector<FamilyPicture> DrawFamilies(const Units& units) {
    return {{"geometry-paths.svg", DrawPaths(units)},
            {"geometry-pairs.svg", DrawPairs(units)},
            {"geometry-sections.svg", DrawSections(units)},
            {"geometry-overlays.svg", DrawOverlays(units)},
            {"geometry-regions.svg", DrawClosedRegions(units)},
            {"geometry-transformations.svg", DrawTransformations()},
            {"geometry-space.svg", DrawSpace(units)}};
}

std::string LengthText(const Units& units, double mm) {
    return units.Text(units.depth, GComprimento(mm, TComprimento::mm));
}

std::string AreaText(const Units& units, double mm2) {
    return units.Text(units.area, GArea(mm2 / 100, TArea::cm2));
}

} // namespace Frame
