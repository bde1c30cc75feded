#include "Geometry/SweptWalls.h"

#include "Geometry/ChordFrame.h"
#include "Geometry/Predicates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr double ENDLESS = std::numeric_limits<double>::infinity();

/// A piece as quotients of polynomials of degree 2, from -1 to 1: as good for the flattest arc as for others.
class Conic {
public:
    /// As seen from a point.
    Conic(const TPathPiece& piece, const LDPoint& p)
        : frame(piece), middle(frame.middle - p), square(frame.bulge * frame.bulge) {}

    // The coefficients of the point times its weight, which is 1 + WeightBySquare() * t * t.
    double WeightBySquare() const { return square; }
    LDPoint First() const { return middle + frame.beside * Belly(); }
    LDPoint Second() const { return frame.along * (frame.chord * (1 + square) / 2); }
    LDPoint Third() const { return middle * square - frame.beside * Belly(); }

    LDPoint At(double t) const {
        return (First() + (Second() + Third() * t) * t) * (1 / (1 + square * t * t));
    }
    /// To the arc's side, of length 1.
    LDPoint NormalAt(double t) const {
        const double turned = frame.bulge * t, weight = 1 + turned * turned;
        return frame.along * (2 * turned / weight) + frame.beside * ((1 - turned * turned) / weight);
    }

private:
    double Belly() const { return frame.chord * frame.bulge / 2; }

    ChordFrame frame;
    LDPoint middle;
    double square;
};

/// Where a function that differs in sign at both ends changes it.
template <class Function>
double SignChange(const Function& f, double low, double high) {
    const bool negative = f(low) < 0;
    for (int i = 0; i < 64; ++i) {
        const double middle = low + (high - low) / 2;
        ((f(middle) < 0) == negative ? low : high) = middle;
    }
    return low + (high - low) / 2;
}

/// The curve in which a plane cuts the wall above a piece, as seen from a point.
class CutEdge {
public:
    CutEdge(const TPathPiece& piece, const SweptLeg::End& end, const Components& p) {
        const Conic conic(piece, {p.x, p.y});
        weight = conic.WeightBySquare();
        const double height = end.At({p.x, p.y}) - p.z;
        const auto raised = [&](const LDPoint& v, double share) {
            return Components{v.x, v.y, end.byX * v.x + end.byY * v.y + height * share};
        };
        first = raised(conic.First(), 1);
        second = raised(conic.Second(), 0);
        third = raised(conic.Third(), weight);
    }

    double Distance() const {
        if (weight == 0) return Length(NearestBetween(At(-1), At(1), {0, 0, 0}));
        double least = ENDLESS;
        for (const double t : Stops()) least = std::min(least, Length(At(t)));
        return least;
    }

private:
    Components Weighted(double t) const { return first + (second + third * t) * t; }
    Components At(double t) const { return Weighted(t) * (1 / (1 + weight * t * t)); }

    /// The ends, and where the distance is least or most nearby: where a polynomial of degree 4 changes its
    /// sign, which it does once at most between two places where its derivative does.
    std::vector<double> Stops() const {
        const int scale = ScaleOf({Length(first), Length(second), Length(third)});
        const Components a = Scaled(first, scale), b = Scaled(second, scale), c = Scaled(third, scale);
        const double ab = Dot(a, b), bc = Dot(b, c), middle = Dot(b, b) + 2 * Dot(a, c);
        std::array<std::array<double, 5>, 4> derivatives{};
        derivatives[0] = {ab, middle - 2 * weight * Dot(a, a), 3 * (bc - weight * ab),
                          2 * Dot(c, c) - weight * middle, -weight * bc};
        for (std::size_t k = 1; k < derivatives.size(); ++k)
            for (std::size_t i = 0; i + 1 < 5; ++i)
                derivatives[k][i] = derivatives[k - 1][i + 1] * static_cast<double>(i + 1);
        // As the first one, but without what cancels where the distance is almost 0.
        const auto slope = [&](double t) {
            const Components at = a + (b + c * t) * t;
            return Dot(at, b + c * (2 * t)) * (1 + weight * t * t) - 2 * weight * t * Dot(at, at);
        };
        std::vector<double> stops = {-1, 1};
        for (std::size_t k = derivatives.size(); k-- > 0;) {
            const auto& f = derivatives[k];
            const auto value = [&](double t) {
                return k == 0 ? slope(t) : f[0] + (f[1] + (f[2] + (f[3] + f[4] * t) * t) * t) * t;
            };
            std::vector<double> changes = {-1};
            for (std::size_t i = 0; i + 1 < stops.size(); ++i)
                if ((value(stops[i]) < 0) != (value(stops[i + 1]) < 0))
                    changes.push_back(SignChange(value, stops[i], stops[i + 1]));
            changes.push_back(1);
            stops = std::move(changes);
        }
        return stops;
    }

    double weight;
    // Coefficients of the point times its weight.
    Components first;
    Components second;
    Components third;
};

/// Where a line through the origin crosses a piece: none, one or two places.
struct LinePlaces {
    double places[2];
    int count = 0;
};
/// `before` and `after`: whether the piece's ends lie to the line's left. If they differ, there is one.
LinePlaces CrossingsOf(const Conic& conic, const LDPoint& unit, bool before, bool after) {
    const auto beside = [&](const LDPoint& v) { return unit.x * v.y - unit.y * v.x; };
    const double a = beside(conic.Third()), b = beside(conic.Second()), c = beside(conic.First());
    const double radicand = b * b - 4 * a * c;
    const bool parted = before != after;
    // Else there are two if the curve turns back in between, beyond the line.
    if (!parted && !(std::abs(b) < 2 * std::abs(a) && (a > 0) == before && radicand >= 0)) return {};
    const double root = std::sqrt(std::max(radicand, 0.0));
    const double sum = -(b < 0 ? b - root : b + root) / 2;
    const double one = sum / a, other = c / sum;
    const auto within = [](double t) { return std::isfinite(t) ? std::clamp(t, -1.0, 1.0) : 0; };
    if (!parted) return {{within(one), within(other)}, 2};
    return {{within(std::abs(one) < std::abs(other) ? one : other)}, 1};
}

} // namespace

std::vector<SectionRing> RingsOf(const TRegion& section) {
    std::vector<SectionRing> rings;
    for (unsigned long long i = 1; i <= section.NContours(); ++i) {
        std::vector<TPathPiece> pieces = PiecesOf(section.Contour(i));
        if (SignedAreaOf(pieces) != 0) rings.push_back({std::move(pieces), section.IsHole(i)});
    }
    return rings;
}

bool IsWithin(const std::vector<SectionRing>& rings, const LDPoint& p) {
    int within = 0;
    for (const auto& [pieces, hole] : rings)
        if (Encloses(pieces, p)) within += hole ? -1 : 1;
    return within > 0;
}

double LesserWallDistance(const SweptLeg& leg, const TPathPiece& piece, const Components& p, double least) {
    const LDPoint foot = NearestPointOf(piece, {p.x, p.y});
    const double beside = std::hypot(foot.x - p.x, foot.y - p.y);
    if (beside >= least) return least;
    if (leg.start.At(foot) <= p.z && p.z <= leg.end.At(foot)) return beside;
    // Else the nearest point lies on the wall's border.
    for (const LDPoint& corner : {piece.from, piece.to}) {
        const double z = std::max(leg.start.At(corner), std::min(p.z, leg.end.At(corner)));
        least = std::min(least, Length({corner.x - p.x, corner.y - p.y, z - p.z}));
    }
    for (const SweptLeg::End& end : {leg.start, leg.end})
        least = std::min(least, CutEdge(piece, end, p).Distance());
    return least;
}

std::vector<SectionPassage> PassagesOf(const std::vector<SectionRing>& rings, const LDPoint& p,
                                       const LDPoint& direction) {
    const double length = std::hypot(direction.x, direction.y);
    if (length == 0) {
        if (IsWithin(rings, p)) return {{-ENDLESS, ENDLESS, {}, {}}};
        return {};
    }
    const LDPoint unit(direction.x / length, direction.y / length);
    struct Event {
        double at;
        LDPoint normal;
        std::size_t ring;
    };
    std::vector<Event> events;
    const auto isLeft = [&](const LDPoint& q) { return CrossSign({0, 0}, unit, p, q) >= 0; };
    for (std::size_t ring = 0; ring < rings.size(); ++ring) {
        for (const TPathPiece& piece : rings[ring].pieces) {
            const bool before = isLeft(piece.from), after = isLeft(piece.to);
            if (piece.from == piece.to || (piece.bulge == 0 && before == after)) continue;
            const Conic conic(piece, p);
            const LinePlaces found = CrossingsOf(conic, unit, before, after);
            for (int i = 0; i < found.count; ++i) {
                const LDPoint at = conic.At(found.places[i]);
                events.push_back(
                    {(at.x * unit.x + at.y * unit.y) / length, conic.NormalAt(found.places[i]), ring});
            }
        }
    }
    std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) { return a.at < b.at; });
    std::vector<bool> enclosed(rings.size());
    std::vector<SectionPassage> passages;
    int within = 0;
    for (const auto& [at, normal, ring] : events) {
        enclosed[ring] = !enclosed[ring];
        const int before = std::exchange(within, within + (enclosed[ring] == rings[ring].hole ? -1 : 1));
        if ((before > 0) == (within > 0)) continue;
        const bool along = normal.x * unit.x + normal.y * unit.y > 0;
        const LDPoint outwards = along == (within <= 0) ? normal : -normal;
        if (within > 0)
            passages.push_back({at, at, outwards, {}});
        else
            passages.back().to = at, passages.back().leaving = outwards;
    }
    return passages;
}

} // namespace ZoPrimitives
