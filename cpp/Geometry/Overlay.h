#pragma once

#include "ZoPrimitives/TRegion.h"

#include <vector>

namespace ZoPrimitives {

/// A closed path that takes part in an overlay.
struct OverlayBorder {
    std::vector<TPathPiece> pieces;
    unsigned operand = 0; // 0 or 1: that it belongs to
    bool isHole = false;
};

enum class OverlayKind { UNION, INTERSECTION, DIFFERENCE, EXCLUSIVE_OR };

/// Appends borders of the second operand around all that lies within a distance of a piece.
void AppendAround(const TPathPiece& piece, double distance, std::vector<OverlayBorder>& borders);

/// The region in which a point lies according to whether it lies in each operand: within more of its outer
/// borders than holes. A border encloses what an odd number of its turns leads around.
TRegion Overlay(const std::vector<OverlayBorder>& borders, OverlayKind kind, unsigned precision);

} // namespace ZoPrimitives
