#include "Geometry/Triangulation.h"

#include "Geometry/Predicates.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ZoPrimitives {

namespace {

/// A corner of a polygon: where it is, and its number.
struct Corner {
    LDPoint point;
    int number;
};
using Polygon = std::vector<Corner>;

/// Twice.
double SignedArea(const Polygon& polygon) {
    double area = 0;
    for (std::size_t i = 2; i < polygon.size(); ++i) {
        const LDPoint u = polygon[i - 1].point - polygon[0].point, v = polygon[i].point - polygon[0].point;
        area += u.x * v.y - u.y * v.x;
    }
    return area;
}

bool IsWithin(const LDPoint& p, const Polygon& polygon) {
    bool inside = false;
    LDPoint a = polygon.back().point;
    for (const Corner& corner : polygon) {
        const LDPoint& b = corner.point;
        if ((a.y > p.y) != (b.y > p.y) && (SideOf(a, b, p) > 0) == (b.y > a.y)) inside = !inside;
        a = b;
    }
    return inside;
}

/// Whether the stretch from `a` to `b` meets an edge of the polygon elsewhere than at an end of both.
bool IsBlocked(const LDPoint& a, const LDPoint& b, const Polygon& polygon) {
    // Whether an edge leads from one end of the stretch along it.
    const auto leadsAlong = [&](const LDPoint& end, const LDPoint& to) {
        const LDPoint& other = end == a ? b : a;
        return SideOf(a, b, to) == 0 && LexicographicallyLess(end, to) == LexicographicallyLess(end, other);
    };
    LDPoint from = polygon.back().point;
    for (const Corner& corner : polygon) {
        const LDPoint c = std::exchange(from, corner.point), d = from;
        if (c == a || c == b) {
            if (leadsAlong(c, d)) return true;
        } else if (d == a || d == b) {
            if (leadsAlong(d, c)) return true;
        } else {
            const int cSide = SideOf(a, b, c), dSide = SideOf(a, b, d);
            if (cSide * dSide > 0) continue;
            if (cSide == 0 && dSide == 0) {
                const auto [low, high] = std::minmax(a, b, LexicographicallyLess);
                const auto [first, last] = std::minmax(c, d, LexicographicallyLess);
                if (!LexicographicallyLess(last, low) && !LexicographicallyLess(high, first)) return true;
            } else if (SideOf(c, d, a) * SideOf(c, d, b) <= 0) {
                return true;
            }
        }
    }
    return false;
}

/// Whether the direction from a corner to `p` leads into the polygon there.
bool LeadsInside(const Polygon& polygon, std::size_t index, const LDPoint& p) {
    const std::size_t count = polygon.size();
    const LDPoint& at = polygon[index].point;
    const LDPoint& before = polygon[(index + count - 1) % count].point;
    const LDPoint& after = polygon[(index + 1) % count].point;
    if (SideOf(before, at, after) >= 0) return SideOf(at, p, before) > 0 && SideOf(p, at, after) > 0;
    return !(SideOf(at, p, after) >= 0 && SideOf(p, at, before) >= 0);
}

bool CornerLess(const Corner& a, const Corner& b) { return LexicographicallyLess(a.point, b.point); }

/// Makes the hole a part of the polygon, along a stretch from its last corner to one of the polygon that is
/// in sight: the nearest one.
void Join(Polygon& polygon, const Polygon& hole, const std::vector<Polygon>& others) {
    const auto last = std::max_element(hole.begin(), hole.end(), CornerLess);
    const LDPoint from = last->point;
    std::vector<std::pair<double, std::size_t>> near;
    for (std::size_t i = 0; i < polygon.size(); ++i) near.emplace_back(polygon[i].point.DistFrom2(from), i);
    std::sort(near.begin(), near.end());
    const auto inSight = [&](const std::pair<double, std::size_t>& candidate) {
        const LDPoint& to = polygon[candidate.second].point;
        return to != from && LeadsInside(polygon, candidate.second, from) && !IsBlocked(from, to, polygon) &&
               !IsBlocked(from, to, hole) &&
               std::none_of(others.begin(), others.end(),
                            [&](const Polygon& other) { return IsBlocked(from, to, other); });
    };
    auto found = std::find_if(near.begin(), near.end(), inSight);
    if (found == near.end()) found = near.begin(); // the rings touch: sound all the same
    const auto index = static_cast<std::ptrdiff_t>(found->second);
    Polygon loop(last, hole.end());
    loop.insert(loop.end(), hole.begin(), last + 1);
    loop.push_back(polygon[found->second]);
    polygon.insert(polygon.begin() + index + 1, loop.begin(), loop.end());
}

/// Cuts off ears: corners whose triangle holds no other corner.
class EarCutting {
public:
    explicit EarCutting(const Polygon& all) : polygon(all), before(all.size()), after(all.size()) {
        for (std::size_t i = 0; i < all.size(); ++i) {
            after[i] = (i + 1) % all.size();
            before[after[i]] = i;
        }
        for (std::size_t i = 0; i < all.size(); ++i)
            if (Turn(i) <= 0) hollows.push_back(i);
    }

    void AddTriangles(std::vector<std::array<int, 3>>& triangles) {
        std::size_t left = polygon.size(), at = 0, refused = 0;
        while (left >= 3) {
            // Where no corner is an ear, the ring crosses itself: any corner will do.
            if (left > 3 && refused < left && !IsEar(at)) {
                at = after[at];
                ++refused;
                continue;
            }
            triangles.push_back({polygon[before[at]].number, polygon[at].number, polygon[after[at]].number});
            Cut(at);
            at = after[after[at]]; // not its neighbour, which would make a fan of slivers
            --left;
            refused = 0;
        }
    }

private:
    const LDPoint& At(std::size_t i) const { return polygon[i].point; }
    int Turn(std::size_t i) const { return SideOf(At(before[i]), At(i), At(after[i])); }

    bool IsEar(std::size_t i) const {
        if (Turn(i) <= 0) return false;
        const LDPoint &a = At(before[i]), &b = At(i), &c = At(after[i]);
        return std::none_of(hollows.begin(), hollows.end(), [&](std::size_t other) {
            const LDPoint& p = At(other);
            return p != a && p != b && p != c && SideOf(a, b, p) >= 0 && SideOf(b, c, p) >= 0 &&
                   SideOf(c, a, p) >= 0;
        });
    }

    void Cut(std::size_t i) {
        after[before[i]] = after[i];
        before[after[i]] = before[i];
        for (const std::size_t changed : {before[i], i, after[i]}) {
            const auto found = std::find(hollows.begin(), hollows.end(), changed);
            if (found != hollows.end() && (changed == i || Turn(changed) > 0)) hollows.erase(found);
        }
    }

    const Polygon& polygon;
    std::vector<std::size_t> before;
    std::vector<std::size_t> after;
    std::vector<std::size_t> hollows; // corners that do not turn left, of those that are left
};

} // namespace

std::vector<std::array<int, 3>> Triangulated(const std::vector<std::vector<LDPoint>>& rings) {
    std::vector<Polygon> outers, holes;
    int number = 0;
    for (const auto& ring : rings) {
        Polygon polygon;
        for (const LDPoint& point : ring) polygon.push_back({point, number++});
        (SignedArea(polygon) < 0 ? holes : outers).push_back(polygon);
    }
    if (outers.empty()) outers.swap(holes);
    // From the right: the last corner of each hole then sees the polygon past those that are to come.
    std::sort(holes.begin(), holes.end(), [](const Polygon& a, const Polygon& b) {
        return CornerLess(*std::max_element(a.begin(), a.end(), CornerLess),
                          *std::max_element(b.begin(), b.end(), CornerLess));
    });
    while (!holes.empty()) {
        const Polygon hole = std::move(holes.back());
        holes.pop_back();
        const auto around = std::find_if(outers.begin(), outers.end(), [&](const Polygon& outer) {
            return IsWithin(hole.front().point, outer);
        });
        Join(around == outers.end() ? outers.front() : *around, hole, holes);
    }
    std::vector<std::array<int, 3>> triangles;
    for (const Polygon& outer : outers) EarCutting(outer).AddTriangles(triangles);
    return triangles;
}

} // namespace ZoPrimitives
