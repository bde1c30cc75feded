#pragma once

#include "ZoPrimitives/LDPoint.h"

#include <algorithm>

namespace ZoPrimitives {

// Decisions on points as they are given, right for all finite doubles: a filter decides in doubles, and exact
// arithmetic where the filter cannot.

/// A straight piece from `a` to `b`, which differ.
struct Stretch {
    LDPoint a;
    LDPoint b;
};

/// The sign of (b - a) x (d - c): 1 if the second direction lies to the left of the first.
int CrossSign(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d);
/// 1 if `p` lies to the left of the line from `a` to `b`, -1 to the right, 0 on it.
int SideOf(const LDPoint& a, const LDPoint& b, const LDPoint& p);
inline int SideOf(const Stretch& line, const LDPoint& p) { return SideOf(line.a, line.b, p); }

/// Where a line crosses another, as a fraction of the stretch that it crosses; with bounds of the errors.
struct Crossing {
    double numerator;
    double denominator; // positive, or 0 for none that doubles could tell
    double numeratorError;
    double denominatorError;
};
/// `line` is not parallel to `along`.
Crossing CrossingOf(const Stretch& along, const Stretch& line);
/// -1 if `along`, from a to b, meets the first line before the second, 1 after, 0 at the same point. Each
/// crossing is that of its line.
int CompareCrossings(const Stretch& along, const Stretch& line, const Crossing& crossing,
                     const Stretch& otherLine, const Crossing& otherCrossing);
int CompareCrossings(const Stretch& along, const Stretch& line, const Stretch& otherLine);

/// The double nearest to each coordinate of the point in which two lines cross.
LDPoint CrossingPoint(const Stretch& along, const Stretch& line);
/// The same for the lines through `p` and `q` in the directions `u` and `v`, which are not parallel.
LDPoint CrossingPoint(const LDPoint& p, const LDPoint& u, const LDPoint& q, const LDPoint& v);
/// -1, 0 or 1: how the crossing of the first two lines compares with that of the others, by x, then by y.
int CompareCrossingPoints(const Stretch& a, const Stretch& b, const Stretch& c, const Stretch& d);

/// By x, then by y.
inline bool LexicographicallyLess(const LDPoint& a, const LDPoint& b) {
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

/// From the lexicographically lesser point to the greater.
inline Stretch StretchBetween(const LDPoint& p, const LDPoint& q) {
    return LexicographicallyLess(q, p) ? Stretch{q, p} : Stretch{p, q};
}

/// Whether a point lies within `reach` of the box of a stretch that runs to the right, or straight up.
inline bool InBox(const Stretch& s, const LDPoint& p, double reach = 0) {
    return p.x >= s.a.x - reach && p.x <= s.b.x + reach && p.y >= std::min(s.a.y, s.b.y) - reach &&
           p.y <= std::max(s.a.y, s.b.y) + reach;
}

} // namespace ZoPrimitives
