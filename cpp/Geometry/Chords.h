#pragma once

#include "Geometry/Arrangement.h"
#include "ZoPrimitives/TPath2D.h"

#include <vector>

namespace ZoPrimitives {

/// Straight stretches in place of pieces, arranged as the pieces are: arcs are divided where they meet other
/// pieces, then halved until nothing else reaches between an arc and its chord, or no more than `narrow` or
/// what rounding makes of it is left there; many times halved, 1e-8 of the arc's length. Arcs that lie upon
/// each other get the same chords. The label of a stretch is the index of its piece; the stretches of a piece
/// lead from its one end to the other.
void AddChords(const std::vector<TPathPiece>& pieces, double narrow, std::vector<Stretch>& stretches,
               Ranges& labels);

} // namespace ZoPrimitives
