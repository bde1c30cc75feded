#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <string>
#include <vector>

namespace ZoTool {

// The classes of a schema as boxes of a diagram. Lengths are in SVG units: one pixel on most screens.

constexpr double BOX_LINE = 17;  // height of a field's line
constexpr double BOX_TITLE = 27; // height of a class's name
constexpr double BOX_BELOW = 6;  // below the last field
constexpr double BOX_TEXT = 12;  // size of the font
constexpr double BOX_NAME = 13;  // and of a class's name

enum class Sign { None, Owns, Refers };

struct BoxLine {
    std::string name, type;
    Sign sign = Sign::None;
    int target = -1; ///< the box that it owns or refers to
};

struct Box {
    std::string name;
    bool abstract = false;
    bool isValue = false; ///< stands at the bottom, and no lines lead to it
    std::vector<int> parents;
    std::vector<BoxLine> lines;
    std::size_t linesLeftOut = 0;
    int level = 0; ///< of inheritance
    int row = 0, column = 0;

    double Height() const;
};

using Boxes = std::vector<Box>;

/// In the schema's order, with levels, without places.
Boxes BoxesOf(const ZoPrimitives::TZoMetaData& schema);

/// The children of each box; one with several parents is a child of each.
std::vector<std::vector<int>> ChildrenOf(const Boxes& boxes);

/// Wide enough for nearly all lines; the others are cut.
double BoxWidth(const Boxes& boxes);

/// How far below the top of its box a line's middle is.
inline double LineMiddle(std::size_t index) {
    return BOX_TITLE + (static_cast<double>(index) + 0.5) * BOX_LINE;
}

struct Grid {
    int rows, columns;
};

/// Gives each box a cell of a grid: one level below the other, the children of a class side by side, those
/// that belong together near each other, and values at the bottom. `tidy`: looks for short lines, in a time
/// that grows with the square of the number of boxes.
Grid PlaceBoxes(Boxes& boxes, double boxWidth, bool tidy);

} // namespace ZoTool
