#pragma once

#include "Geometry/Pieces.h"
#include "Geometry/Space.h"
#include "ZoPrimitives/TRegion.h"

#include <vector>

namespace ZoPrimitives {

/// A section along a straight line, between two planes. In its frame the section lies across z.
struct SweptLeg {
    struct End {
        double z; // of the plane, at the section's origin
        double byX;
        double byY;
        double At(const LDPoint& p) const { return z + byX * p.x + byY * p.y; }
    };
    Components origin;
    Components alongX;
    Components alongY;
    Components direction; // of z
    End start;
    End end;

    double LengthAt(const LDPoint& p) const { return end.At(p) - start.At(p); }
    Components DirectionInFrame(const Components& v) const {
        return {Dot(v, alongX), Dot(v, alongY), Dot(v, direction)};
    }
    Components ToFrame(const Components& p) const { return DirectionInFrame(p - origin); }
};

/// A contour of a section, which encloses something.
struct SectionRing {
    std::vector<TPathPiece> pieces;
    bool hole;
};
std::vector<SectionRing> RingsOf(const TRegion& section);
bool IsWithin(const std::vector<SectionRing>& rings, const LDPoint& p);

/// The lesser of `least` and the distance of a point, in the leg's frame, from the wall above a piece of the
/// section. To rounding: where the nearest point lies on the ellipse in which a plane cuts a round wall, all
/// places are found where the distance is least nearby.
double LesserWallDistance(const SweptLeg& leg, const TPathPiece& piece, const Components& p, double least);

/// Where a line is within a section; without end if it is a point. The normals point outwards.
struct SectionPassage {
    double from;
    double to;
    LDPoint entering;
    LDPoint leaving;
};
/// Of the line from `p` in a direction, in its lengths, from the first to the last. An odd number of
/// crossings is found around each vertex that the line passes between others, exactly, and so none is lost
/// there.
std::vector<SectionPassage> PassagesOf(const std::vector<SectionRing>& rings, const LDPoint& p,
                                       const LDPoint& direction);

} // namespace ZoPrimitives
