#include "Geometry/Overlay.h"

#include "Geometry/ChordFrame.h"
#include "Geometry/Chords.h"
#include "Geometry/ClosedDrawing.h"
#include "Geometry/PiecePairs.h"
#include "Geometry/Rings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ZoPrimitives {

namespace {

/// Which borders a place lies within, while one walks from face to face.
class Within {
public:
    Within(const std::vector<OverlayBorder>& given, OverlayKind what)
        : borders(given), kind(what), inside(given.size()) {}

    /// Crosses a border.
    void Cross(std::size_t border) {
        inside[border] = !inside[border];
        const OverlayBorder& crossed = borders[border];
        depth[crossed.operand] += inside[border] != crossed.isHole ? 1 : -1;
    }
    bool IsInResult() const {
        const bool a = depth[0] > 0, b = depth[1] > 0;
        switch (kind) {
        case OverlayKind::UNION:
            return a || b;
        case OverlayKind::INTERSECTION:
            return a && b;
        case OverlayKind::DIFFERENCE:
            return a && !b;
        case OverlayKind::EXCLUSIVE_OR:
            return a != b;
        }
        return false;
    }

private:
    const std::vector<OverlayBorder>& borders;
    OverlayKind kind;
    std::vector<bool> inside;
    int depth[2] = {}; // outer borders less holes, of each operand
};

class Overlaying {
public:
    Overlaying(const std::vector<OverlayBorder>& given, OverlayKind kind, unsigned precision) {
        std::vector<Stretch> stretches;
        Ranges labels;
        for (std::size_t border = 0; border < given.size(); ++border) {
            pieces.insert(pieces.end(), given[border].pieces.begin(), given[border].pieces.end());
            borderOf.resize(pieces.size(), border);
        }
        AddChords(pieces, precision < FIRST_WITHOUT_TOLERANCE ? std::pow(10.0, -1.0 * precision) / 4 : 0,
                  stretches, labels);
        drawing = std::make_unique<ClosedDrawing>(std::move(stretches), std::move(labels), precision);
        found = &drawing->Result();
        FindFaces(Within(given, kind));
    }
    TRegion Region() const;

private:
    bool IsBorder(unsigned half) const {
        return inResult[found->faceOf[half]] && !inResult[found->faceOf[half ^ 1]];
    }
    void FindFaces(Within within);
    using Run = std::vector<unsigned>; // the pieces that all edges of it belong to
    Run PiecesOf(unsigned half) const {
        const Numbers labels = found->LabelsOf(half / 2);
        return {labels.begin(), labels.end()};
    }
    TContour ContourOf(std::vector<unsigned> ring) const;
    static double BulgeOf(const TPathPiece& piece, const LDPoint& from, const LDPoint& to);

    std::vector<TPathPiece> pieces;
    std::vector<std::size_t> borderOf; // a piece
    std::unique_ptr<ClosedDrawing> drawing;
    const Arrangement* found;
    std::vector<bool> inResult; // face
};

/// Walks from the outer face to all others, and back again the same ways.
void Overlaying::FindFaces(Within within) {
    struct Step {
        unsigned face;
        unsigned border; // the half-edges to look at next: of which of its borders, from which one on
        unsigned half;
        unsigned entry; // the half-edge through which it was entered
    };
    constexpr unsigned NONE = Arrangement::NONE;
    const auto borderAt = [&](const Step& step) {
        const Arrangement::Face& face = found->faces[step.face];
        const unsigned outer = face.half == NONE ? 0 : 1;
        if (outer == 1 && step.border == 0) return face.half;
        return step.border - outer < face.holes.size() ? face.holes[step.border - outer] : NONE;
    };
    const auto cross = [&](unsigned half) {
        for (const unsigned piece : found->LabelsOf(half / 2)) within.Cross(borderOf[piece]);
    };
    inResult.resize(found->faces.size());
    std::vector<bool> known(found->faces.size());
    std::vector<Step> path;
    const auto enter = [&](unsigned face, unsigned entry) {
        known[face] = true;
        inResult[face] = within.IsInResult();
        path.push_back({face, 0, NONE, entry});
    };
    enter(0, NONE);
    while (!path.empty()) {
        Step& step = path.back();
        const unsigned border = borderAt(step);
        if (border == NONE) {
            if (step.entry != NONE) cross(step.entry);
            path.pop_back();
            continue;
        }
        const unsigned half = step.half == NONE ? border : step.half;
        step.half = found->next[half];
        if (step.half == border) {
            ++step.border;
            step.half = NONE;
        }
        const unsigned neighbour = found->faceOf[half ^ 1];
        if (known[neighbour]) continue;
        cross(half);
        enter(neighbour, half);
    }
}

bool IsStraight(const TContour& contour) {
    for (unsigned long long i = 1; i <= contour.NVertices(); ++i) {
        if (contour.Bulge(i) != 0) return false;
    }
    return true;
}

TRegion Overlaying::Region() const {
    TRegion region;
    std::vector<unsigned> halves;
    for (unsigned half = 0; half < found->next.size(); ++half) {
        if (IsBorder(half)) halves.push_back(half);
    }
    ForEachRing(
        *found, halves, [&](unsigned half) { return IsBorder(half); },
        [&](const std::vector<unsigned>& ring) {
            const TContour contour = ContourOf(ring);
            if (contour.NVertices() < 3 && IsStraight(contour)) return;
            if (IsOuterRing(*found, ring))
                region.AddContour(contour);
            else
                region.AddHole(contour);
        });
    return region;
}

/// Edges of one piece, one after the other, become one piece again.
TContour Overlaying::ContourOf(std::vector<unsigned> ring) const {
    const auto both = [](const Run& a, const Run& b) {
        Run common;
        std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common));
        return common;
    };
    // Begins where two edges have no piece in common.
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const unsigned before = ring[i == 0 ? ring.size() - 1 : i - 1];
        if (!both(PiecesOf(before), PiecesOf(ring[i])).empty()) continue;
        std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(i), ring.end());
        break;
    }
    TContour contour;
    const auto add = [&](std::size_t begin, std::size_t end, const Run& run) {
        const TPathPiece& piece = pieces[run[0]];
        const auto addPart = [&](std::size_t until) {
            const LDPoint &from = found->nodes[found->Origin(ring[begin])].point,
                          &to = found->nodes[found->Target(ring[until - 1])].point;
            if (from != to) contour.Add({from.x, from.y}, BulgeOf(piece, from, to));
            begin = until;
        };
        const auto isBeside = [&](unsigned node) {
            const LDPoint& p = found->nodes[node].point;
            return piece.bulge != 0 && NearestPointOf(piece, p).DistFrom(p) > RoundingOf(piece, piece);
        };
        // An end beside the arc, within the tolerance, does not pull all of it aside.
        while (end - begin > 1 && isBeside(found->Origin(ring[begin]))) addPart(begin + 1);
        std::size_t good = end;
        while (good - begin > 1 && isBeside(found->Target(ring[good - 1]))) --good;
        addPart(good);
        while (begin < end) addPart(begin + 1);
    };
    std::size_t first = 0;
    Run run = PiecesOf(ring[0]);
    for (std::size_t i = 1; i < ring.size(); ++i) {
        const Run own = PiecesOf(ring[i]);
        Run common = both(run, own);
        const bool closing = found->Target(ring[i]) == found->Origin(ring[first]);
        if (common.empty() || closing) {
            add(first, i, run);
            first = i;
            common = own;
        }
        run = std::move(common);
    }
    add(first, ring.size(), run);
    return contour;
}

/// Of the part of a piece between two points of it.
double Overlaying::BulgeOf(const TPathPiece& piece, const LDPoint& from, const LDPoint& to) {
    if (piece.bulge == 0) return 0;
    if (from == piece.from && to == piece.to) return piece.bulge;
    if (from == piece.to && to == piece.from) return -piece.bulge;
    return std::tan(std::atan(piece.bulge) * (ParameterOf(piece, to) - ParameterOf(piece, from)));
}

} // namespace

void AppendAround(const TPathPiece& piece, double distance, std::vector<OverlayBorder>& borders) {
    if (piece.from == piece.to) return;
    const auto add = [&](std::vector<TPathPiece> pieces) {
        borders.push_back({std::move(pieces), 1, false});
    };
    const ChordFrame frame(piece);
    const double turn = piece.bulge > 0 ? 1 : -1;
    const double half = turn * frame.HalfAngle();
    // To the right of the piece, where it begins and where it ends.
    const LDPoint right(frame.along.y, -frame.along.x);
    const LDPoint atFrom = (right * std::cos(half) - frame.along * std::sin(half)) * distance;
    const LDPoint atTo = (right * std::cos(half) + frame.along * std::sin(half)) * distance;
    const double radius = piece.bulge == 0 ? HUGE_VAL : frame.Radius();
    if (distance < radius) {
        add({{piece.from + atFrom, piece.to + atTo, piece.bulge},
             {piece.to + atTo, piece.to - atTo, 1},
             {piece.to - atTo, piece.from - atFrom, -piece.bulge},
             {piece.from - atFrom, piece.from + atFrom, 1}});
        return;
    }
    // All of the arc's sector, and what is around its ends.
    const LDPoint centre = piece.from - atFrom * (turn * radius / distance);
    const LDPoint start = piece.from + atFrom * turn, end = piece.to + atTo * turn;
    add({{centre, start, 0}, {start, end, piece.bulge}, {end, centre, 0}});
    add({{piece.from + atFrom, piece.from - atFrom, 1}, {piece.from - atFrom, piece.from + atFrom, 1}});
    add({{piece.to + atTo, piece.to - atTo, 1}, {piece.to - atTo, piece.to + atTo, 1}});
}

TRegion Overlay(const std::vector<OverlayBorder>& borders, OverlayKind kind, unsigned precision) {
    return Overlaying(borders, kind, precision).Region();
}

} // namespace ZoPrimitives
