#pragma once

#include "units.h"

#include <string>
#include <vector>

namespace Frame {

constexpr double WIDTH = 900; // of these pictures
/// The styles of texts above a drawing and below it.
inline const char* const CAPTION = "font-weight=\"bold\" text-anchor=\"middle\"";
inline const char* const FACT = "font-size=\"12\" text-anchor=\"middle\" fill=\"#555555\"";

/// The picture of a family of the library's geometry, as SVG. Figures in it are what the library computes.
struct FamilyPicture {
    std::string file; ///< its name
    std::string svg;
};

/// One for each family.
std::vector<FamilyPicture> DrawFamilies(const Units& units);

// pictures_plane.cpp
std::string DrawPaths(const Units& units);
std::string DrawPairs(const Units& units);
std::string DrawSections(const Units& units);
// pictures_regions.cpp
std::string DrawOverlays(const Units& units);
std::string DrawClosedRegions(const Units& units);
// pictures_space.cpp
std::string DrawTransformations();
std::string DrawSpace(const Units& units);

/// A length in mm, an area in mm2, as a text.
std::string LengthText(const Units& units, double mm);
std::string AreaText(const Units& units, double mm2);

} // namespace Frame
