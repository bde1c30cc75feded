#include "ZoPrimitives/PathPairs.h"

#include "Geometry/BoxTree.h"
#include "Geometry/PiecePairs.h"
#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/ZoAssert.h"

#include <map>

namespace ZoPrimitives {

namespace {

using Pieces = std::vector<TPathPiece>;
constexpr double INF = std::numeric_limits<double>::infinity();

BoxTree TreeOf(const Pieces& pieces) {
    std::vector<Box> boxes;
    boxes.reserve(pieces.size());
    for (const TPathPiece& piece : pieces) boxes.push_back(Box::Of(piece));
    return BoxTree(std::move(boxes));
}

NearestPair Nearest(const Pieces& a, const Pieces& b) {
    NearestPair best{{}, {}, INF};
    const BoxTree tree = TreeOf(b);
    for (const TPathPiece& piece : a) {
        tree.ForEachNearer(Box::Of(piece), best.distance, [&](std::size_t j) {
            const NearestPair found = NearestOf(piece, b[j]);
            if (found.distance < best.distance) best = found;
        });
        if (best.distance == 0) break;
    }
    return best;
}

/// The points of a piece that others have in common with it, in order along it.
std::vector<LDPoint> StopsOf(const TPathPiece& piece, const Pieces& others, const BoxTree& tree) {
    std::vector<LDPoint> stops;
    Box box = Box::Of(piece);
    const double rounding = 2 * RoundingOf(piece, piece);
    box.Add(box.low - LDPoint(rounding, rounding));
    box.Add(box.high + LDPoint(rounding, rounding));
    tree.ForEachTouching(box, [&](std::size_t j) {
        for (const LDPoint& p : MeetingPoints(piece, others[j])) stops.push_back(p);
    });
    std::sort(stops.begin(), stops.end(), [&](const LDPoint& p, const LDPoint& q) {
        return ParameterOf(piece, p) < ParameterOf(piece, q);
    });
    return stops;
}

/// Points, each once within a tolerance.
class Distinct {
public:
    explicit Distinct(unsigned decimals) : precision(decimals), reach(std::pow(10.0, -1.0 * decimals)) {}
    bool Add(const LDPoint& p) {
        for (auto near = byX.lower_bound(p.x - reach); near != byX.end() && near->first <= p.x + reach;
             ++near) {
            const LDPoint q(near->first, near->second);
            if (p == q || (Equal(p.x, q.x, precision) && Equal(p.y, q.y, precision))) return false;
        }
        byX.emplace(p.x, p.y);
        return true;
    }

private:
    unsigned precision;
    double reach;
    std::multimap<double, double> byX;
};

std::vector<Pieces> BordersOf(const TRegion& region) {
    std::vector<Pieces> borders;
    for (unsigned long long i = 1; i <= region.NContours(); ++i)
        borders.push_back(PiecesOf(region.Contour(i)));
    return borders;
}

/// Of the region, and of borders or paths whose first points tell whether they lie within it.
double DistanceTo(const TRegion& region, const std::vector<Pieces>& others) {
    double least = INF;
    for (const Pieces& other : others) {
        if (other.empty()) continue;
        const LDPoint& start = other[0].from;
        if (region.Locate({start.x, start.y}, 22) != OutsideRegion) return 0;
        for (const Pieces& border : BordersOf(region))
            least = std::min(least, Nearest(border, other).distance);
    }
    return least;
}

} // namespace

TPolyline2D Intersections(const TPath2D& a, const TPath2D& b, unsigned precision) {
    const Pieces others = PiecesOf(b);
    const BoxTree tree = TreeOf(others);
    Distinct distinct(precision);
    TPolyline2D points;
    for (const TPathPiece& piece : PiecesOf(a)) {
        for (const LDPoint& p : StopsOf(piece, others, tree)) {
            if (distinct.Add(p)) points.Add({p.x, p.y});
        }
    }
    return points;
}

TSegment2D NearestPoints(const TPath2D& a, const TPath2D& b) {
    const NearestPair found = Nearest(PiecesOf(a), PiecesOf(b));
    ZO_ASSERT(a.NPieces() != 0 && b.NPieces() != 0, "a path has a piece", "cpp/Geometry/PathPairs");
    return {{found.onA.x, found.onA.y}, {found.onB.x, found.onB.y}};
}

double Distance(const TPath2D& a, const TPath2D& b) { return Nearest(PiecesOf(a), PiecesOf(b)).distance; }

double Distance(const TRegion& region, const TPath2D& path) { return DistanceTo(region, {PiecesOf(path)}); }

double Distance(const TRegion& a, const TRegion& b) {
    // One may lie within the other.
    const double least = DistanceTo(a, BordersOf(b));
    return least == 0 || DistanceTo(b, BordersOf(a)) == 0 ? 0 : least;
}

TPathPlace PlaceOf(const TPath2D& path, const TRegion& region, unsigned precision) {
    Pieces border;
    for (const Pieces& pieces : BordersOf(region)) border.insert(border.end(), pieces.begin(), pieces.end());
    const BoxTree tree = TreeOf(border);
    bool found[3] = {};
    const auto look = [&](const LDPoint& p) { found[region.Locate({p.x, p.y}, precision)] = true; };
    for (const TPathPiece& piece : PiecesOf(path)) {
        look(piece.from);
        look(piece.to);
        // Between two stops, all of it lies on one side.
        double before = 0;
        std::vector<LDPoint> stops = StopsOf(piece, border, tree);
        stops.push_back(piece.to);
        for (const LDPoint& stop : stops) {
            const double at = ParameterOf(piece, stop);
            if (at > before) look(PointAt(piece, (before + at) / 2));
            before = std::max(before, at);
        }
        if (found[InsideRegion] && found[OutsideRegion]) return PathCrosses;
    }
    return found[InsideRegion]                        ? PathInside
           : found[OutsideRegion] || !found[OnBorder] ? PathOutside
                                                      : PathOnBorder;
}

bool Contains(const TRegion& outer, const TRegion& inner, unsigned precision) {
    return inner.Difference(outer, precision).NContours() == 0;
}

} // namespace ZoPrimitives
