#pragma once

#include "ZoPrimitives/TPath2D.h"

#include <cmath>
#include <vector>

namespace ZoPrimitives {

// What paths and regions compute, piece by piece. Circular pieces are computed from the chord, so that the
// flattest ones are as good as any.

inline LDPoint operator+(const LDPoint& a, const LDPoint& b) { return a.OffsetBy(b); }

inline bool IsFinite(const LDPoint& p) { return std::isfinite(p.x) && std::isfinite(p.y); }
inline bool IsFinite(const TPathPiece& piece) {
    return IsFinite(piece.from) && IsFinite(piece.to) && std::isfinite(piece.bulge);
}

std::vector<TPathPiece> PiecesOf(const TPath2D& path);

double LengthOf(const TPathPiece& piece);
/// The point at a fraction of the length, from 0 to 1.
LDPoint PointAt(const TPathPiece& piece, double fraction);
/// The fraction at which a point of the piece lies, or the one nearest to it.
double ParameterOf(const TPathPiece& piece, const LDPoint& point);
void AddBounds(RRect& box, const TPathPiece& piece);
LDPoint NearestPointOf(const TPathPiece& piece, const LDPoint& point);
/// The points of a circular piece that divide it into `parts` equal ones, without its ends.
std::vector<LDPoint> PointsOf(const TPathPiece& piece, unsigned parts);
/// How many equal parts leave chords within `chordError` of a circular piece.
unsigned PartsOf(const TPathPiece& piece, double chordError);

// Of the figure that pieces enclose, which form closed paths; negative for clockwise ones.

double SignedAreaOf(const std::vector<TPathPiece>& pieces);
TAreaProperties SignedPropertiesOf(const std::vector<TPathPiece>& pieces);
/// Whether an odd number of turns leads around a point that is on no piece: for straight pieces exactly.
bool Encloses(const std::vector<TPathPiece>& pieces, const LDPoint& point);

} // namespace ZoPrimitives
