#include "Geometry/PiecePairs.h"

#include "Geometry/ChordFrame.h"
#include "Geometry/Predicates.h"

#include <algorithm>
#include <limits>

namespace ZoPrimitives {

namespace {

using Points = std::vector<LDPoint>;

bool IsStraight(const TPathPiece& piece) { return piece.bulge == 0 || piece.from == piece.to; }

double Apart(const LDPoint& p, const LDPoint& q) { return std::hypot(p.x - q.x, p.y - q.y); }

double SizeOf(const TPathPiece& piece) {
    return std::max(
               {std::abs(piece.from.x), std::abs(piece.from.y), std::abs(piece.to.x), std::abs(piece.to.y)}) +
           Apart(piece.from, piece.to) * std::max(1.0, std::abs(piece.bulge));
}

/// Where two straight pieces cross away from their ends.
void Cross(const TPathPiece& a, const TPathPiece& b, Points& points) {
    if (SideOf(a.from, a.to, b.from) * SideOf(a.from, a.to, b.to) >= 0) return;
    if (SideOf(b.from, b.to, a.from) * SideOf(b.from, b.to, a.to) >= 0) return;
    points.push_back(CrossingPoint({a.from, a.to}, {b.from, b.to}));
}

/// Where the straight line from `from` along `step` meets an arc's circle, on the arc's side of its chord and
/// with a fraction of the step between `least` and `most`.
void CrossCircle(const LDPoint& from, const LDPoint& step, double least, double most, const ChordFrame& frame,
                 Points& points) {
    const LDPoint start = frame.ToFrame(from);
    const LDPoint direction = frame.ToFrame(frame.middle + step);
    const auto power = [&](const LDPoint& p) { return frame.PowerTimesBulge(p); };
    const auto slope = [&](const LDPoint& p) {
        return 2 * (frame.bulge * (p.x * direction.x + p.y * direction.y) +
                    direction.y * frame.DepthTimesBulge());
    };
    // From the point of the line that is nearest to the middle of the chord, so that little cancels.
    const double square = direction.x * direction.x + direction.y * direction.y;
    if (!(square > 0)) return;
    const double nearest = -(start.x * direction.x + start.y * direction.y) / square;
    const LDPoint base = start + direction * nearest;
    const double a = frame.bulge * square, b = slope(base) / 2, c = power(base);
    const double discriminant = b * b - a * c;
    if (!(discriminant >= 0)) return;
    const double q = -(b + std::copysign(std::sqrt(discriminant), b));
    for (double t : {q / a, q == 0 ? q / a : c / q}) {
        if (!std::isfinite(t)) continue;
        LDPoint p = base + direction * t;
        const double s = slope(p);
        if (std::abs(s) > 1e-4 * std::abs(b) && s != 0) { // what rounding left
            t -= power(p) / s;
            p = base + direction * t;
        }
        if (nearest + t < least || nearest + t > most || p.y < 0) continue;
        points.push_back(from + step * (nearest + t));
    }
}

void CrossArc(const TPathPiece& straight, const TPathPiece& arc, Points& points) {
    CrossCircle(straight.from, straight.to - straight.from, 0, 1, ChordFrame(arc), points);
}

/// Two circles meet on a straight line.
void CrossArcs(const TPathPiece& a, const TPathPiece& b, Points& points) {
    const ChordFrame f(a), g(b);
    // b's middle as seen from a's, and the difference of both circles' powers there: k + n p.
    const LDPoint shift = g.middle - f.middle;
    const double bf = f.bulge, bg = g.bulge;
    const double df = 2 * f.DepthTimesBulge(), dg = 2 * g.DepthTimesBulge();
    const LDPoint n = f.beside * (bg * df) + g.beside * (-bf * dg) + shift * (2 * bf * bg);
    const double k =
        bg * bf * (g.chord * g.chord / 4 - f.chord * f.chord / 4 - (shift.x * shift.x + shift.y * shift.y)) +
        bf * dg * (shift.x * g.beside.x + shift.y * g.beside.y);
    const double square = n.x * n.x + n.y * n.y;
    if (!(square > 0)) return;
    const LDPoint along = LDPoint(-n.y, n.x) * (1 / std::sqrt(square));
    constexpr double INF = std::numeric_limits<double>::infinity();
    Points found;
    CrossCircle(f.middle + n * (-k / square), along, -INF, INF, f, found);
    for (LDPoint p : found) {
        for (int i = 0; i < 2; ++i) { // what rounding left, on both circles
            const LDPoint u = f.ToFrame(p), v = g.ToFrame(p);
            const LDPoint gu = f.along * (2 * bf * u.x) + f.beside * (2 * bf * u.y + df);
            const LDPoint gv = g.along * (2 * bg * v.x) + g.beside * (2 * bg * v.y + dg);
            const double pu = f.PowerTimesBulge(u), pv = g.PowerTimesBulge(v);
            const double cross = gu.x * gv.y - gu.y * gv.x;
            if (!(std::abs(cross) > 1e-6 * std::hypot(gu.x, gu.y) * std::hypot(gv.x, gv.y))) break;
            p = p - LDPoint(pu * gv.y - pv * gu.y, gu.x * pv - gv.x * pu) * (1 / cross);
        }
        if (f.ToFrame(p).y >= 0 && g.ToFrame(p).y >= 0) points.push_back(p);
    }
}

/// Whether an end of a piece lies on another one: exactly if that is straight.
bool IsOn(const LDPoint& end, const TPathPiece& piece, double rounding) {
    if (!IsStraight(piece)) return Apart(NearestPointOf(piece, end), end) <= rounding;
    const auto between = [](double a, double x, double b) {
        return std::min(a, b) <= x && x <= std::max(a, b);
    };
    return between(piece.from.x, end.x, piece.to.x) && between(piece.from.y, end.y, piece.to.y) &&
           SideOf(piece.from, piece.to, end) == 0;
}

} // namespace

double RoundingOf(const TPathPiece& a, const TPathPiece& b) { return 4e-15 * (SizeOf(a) + SizeOf(b)); }

std::vector<LDPoint> MeetingPoints(const TPathPiece& a, const TPathPiece& b) {
    const bool straight = IsStraight(a) && IsStraight(b);
    const double rounding = straight ? 0 : RoundingOf(a, b);
    Points points;
    const auto add = [&](const LDPoint& p) {
        const auto same = [&](const LDPoint& q) { return Apart(p, q) <= rounding; };
        if (std::none_of(points.begin(), points.end(), same)) points.push_back(p);
    };
    for (const auto& [one, other] : {std::pair(&a, &b), std::pair(&b, &a)}) {
        // Beside an arc, a straight piece is as good as its rounding, too.
        for (const LDPoint& end : {one->from, one->to}) {
            if (straight || !IsStraight(*other) ? IsOn(end, *other, rounding)
                                                : Apart(NearestPointOf(*other, end), end) <= rounding)
                add(end);
        }
    }
    Points crossings;
    if (straight)
        Cross(a, b, crossings);
    else if (IsStraight(a))
        CrossArc(a, b, crossings);
    else if (IsStraight(b))
        CrossArc(b, a, crossings);
    else
        CrossArcs(a, b, crossings);
    for (const LDPoint& p : crossings) add(p);
    return points;
}

NearestPair NearestOf(const TPathPiece& a, const TPathPiece& b) {
    const Points meetings = MeetingPoints(a, b);
    if (!meetings.empty()) return {meetings[0], meetings[0], 0};
    NearestPair best{a.from, b.from, Apart(a.from, b.from)};
    const auto tryPair = [&](const LDPoint& onA, const LDPoint& onB) {
        const double distance = Apart(onA, onB);
        if (distance < best.distance) best = {onA, onB, distance};
    };
    for (const LDPoint& end : {a.from, a.to}) tryPair(end, NearestPointOf(b, end));
    for (const LDPoint& end : {b.from, b.to}) tryPair(NearestPointOf(a, end), end);
    // Between their ends, both are at right angles to what joins the nearest points: this leads to it from
    // where an arc runs along the other piece, or where the line of both centres meets it.
    const auto tryFrom = [&](LDPoint onA) {
        for (int i = 0; i < 3; ++i) {
            const LDPoint onB = NearestPointOf(b, onA);
            onA = NearestPointOf(a, onB);
            tryPair(onA, onB);
        }
    };
    const auto tryTowards = [&](const TPathPiece& arc, const LDPoint& direction, bool arcIsA) {
        const ChordFrame frame(arc);
        for (const double sign : {1.0, -1.0}) {
            const LDPoint towards = frame.ToFrame(frame.middle + direction * sign);
            const double angle = std::atan2(towards.x, towards.y);
            if (std::abs(angle) > frame.HalfAngle()) continue;
            const LDPoint p = frame.FromFrame(frame.OnCircle(angle));
            tryFrom(arcIsA ? p : NearestPointOf(a, p));
        }
    };
    const auto centre = [](const TPathPiece& arc) {
        const ChordFrame frame(arc);
        return frame.middle - frame.beside * (frame.DepthTimesBulge() / frame.bulge);
    };
    if (!IsStraight(a) && !IsStraight(b)) {
        const LDPoint direction = centre(b) - centre(a);
        tryTowards(a, direction, true);
        tryTowards(b, direction, false);
    } else if (!IsStraight(a)) {
        tryTowards(a, {b.from.y - b.to.y, b.to.x - b.from.x}, true);
    } else if (!IsStraight(b)) {
        tryTowards(b, {a.from.y - a.to.y, a.to.x - a.from.x}, false);
    }
    return best;
}

} // namespace ZoPrimitives
