#pragma once

#include "ZoPrimitives/TPath2D.h"

#include <vector>

namespace ZoPrimitives {

// What two pieces of paths have to do with each other: one function for each pair of kinds, straight and
// circular, behind these.

/// Points nearer to each other than this are the same to rounding, for what is computed from the pieces.
double RoundingOf(const TPathPiece& a, const TPathPiece& b);

/// The points that two pieces have in common; of what they share along a stretch, its ends. A point that is
/// an end of either, to rounding, is that end exactly, of the first piece before the second. Straight pieces
/// decide exactly whether they meet.
std::vector<LDPoint> MeetingPoints(const TPathPiece& a, const TPathPiece& b);

struct NearestPair {
    LDPoint onA;
    LDPoint onB;
    double distance;
};
/// The points in which two pieces are nearest to each other.
NearestPair NearestOf(const TPathPiece& a, const TPathPiece& b);

} // namespace ZoPrimitives
