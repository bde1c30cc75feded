#pragma once

#include "Geometry/Arrangement.h"

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

} // namespace ZoPrimitives
