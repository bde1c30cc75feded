#pragma once

#include "Geometry/Arrangement.h"

#include <memory>
#include <vector>

namespace ZoPrimitives {

/// Moves nodes of a drawing onto others, and onto edges, that they are `Equal` to.
class GapClosing {
public:
    struct Move {
        LDPoint from;
        LDPoint to;
    };

    /// The precision has a tolerance.
    GapClosing(const Arrangement& arrangement, unsigned precision);

    /// Whether anything is near enough to be moved.
    bool Moves() const { return !nodePairs.empty() || !edgePairs.empty(); }
    /// The drawing with everything moved, an edge a stretch, and the labels of each.
    void Apply(std::vector<Stretch>& stretches, Ranges& labels, std::vector<Move>& moves);

private:
    struct NearEdge {
        unsigned edge;
        unsigned node;
        LDPoint nearest; // of the edge
    };
    using Nearby = std::vector<NearEdge>::const_iterator;
    std::vector<LDPoint> Stops(Nearby first, Nearby last) const;
    void FindNear(unsigned node);
    void TryEdges(unsigned node, unsigned stretch);
    void ChooseTargets();
    void MoveLooseEnds();
    bool IsEqual(const LDPoint& a, const LDPoint& b) const;

    const Arrangement& arrangement;
    unsigned precision;
    double reach; // not less than the tolerance
    std::vector<std::pair<unsigned, unsigned>> nodePairs;
    std::vector<NearEdge> edgePairs;
    std::vector<unsigned> target; // of a node: itself, or the node that it moves to
    std::vector<LDPoint> places;  // of nodes, moved
};

/// At precisions from this one on, nothing is near enough to be moved.
constexpr unsigned FIRST_WITHOUT_TOLERANCE = 21;

/// The arrangement of stretches, with everything moved onto what it is near to; `moves` get what was moved,
/// and `settled` becomes false if something was near still after 20 rounds.
std::unique_ptr<Arrangement> CloseGaps(std::vector<Stretch> stretches, Ranges labels, unsigned precision,
                                       std::vector<GapClosing::Move>& moves, bool& settled);

} // namespace ZoPrimitives
