#pragma once

#include "Geometry/ArrangementChange.h"

#include <set>
#include <unordered_map>
#include <vector>

namespace ZoPrimitives {

/// Moves nodes of a drawing onto others, and onto edges, that they are `Equal` to.
class GapClosing {
public:
    struct Move {
        LDPoint from;
        LDPoint to;
    };

    GapClosing(const Arrangement& arrangement, unsigned precision);

    /// Whether anything is near enough to be moved.
    bool Moves() const { return !nearNodes.empty() || !nearEdges.empty(); }
    void TellMoves(std::vector<Move>& moves) const;
    /// From one node of an edge to the other, as they are rounded: no longer to the greater one always.
    Stretch SegmentOf(unsigned edge) const;
    /// Whether an edge stays as it is.
    bool IsLeft(unsigned edge) const;
    /// The points through which an edge leads when everything is moved. A single one if nothing is left of
    /// it.
    std::vector<LDPoint> PathOf(unsigned edge) const;
    /// After a change of the arrangement: which edges may lead elsewhere than before, those that went
    /// included.
    std::set<unsigned> Update(const ArrangementChange& change);

private:
    using NodeSet = std::set<unsigned>;
    struct NearEdge {
        unsigned edge;
        unsigned node;
        LDPoint nearest; // of the edge
    };
    template <class Visit>
    void ForEachNodeNear(const Stretch& segment, Visit visit) const;
    void FindNear(unsigned node);
    void TryEdges(unsigned node, unsigned stretch);
    void Forget(unsigned node);
    void Unlead(const NearEdge& near);
    void AddNeighbours(NodeSet& nodes) const;
    void AddEdgesNear(const NodeSet& nodes, std::set<unsigned>& edges) const;
    void Choose(const NodeSet& nodes);
    void ChooseTargets(const NodeSet& nodes);
    void MoveLooseEnd(unsigned node);
    std::vector<LDPoint> Stops(unsigned edge) const;
    LDPoint PlaceOf(unsigned node) const;
    bool IsEqual(const LDPoint& a, const LDPoint& b) const;
    bool IsLess(const NearEdge& a, const NearEdge& b) const;

    const Arrangement& arrangement;
    unsigned precision;
    double reach;                                                  // not less than the tolerance
    std::unordered_map<unsigned, NodeSet> nearNodes;               // of a node
    std::unordered_map<unsigned, std::vector<NearEdge>> nearEdges; // of a node
    std::unordered_map<unsigned, NodeSet> nodesNear;               // to an edge
    std::unordered_map<unsigned, LDPoint> places;                  // of nodes that move
    std::unordered_map<unsigned, std::vector<NearEdge>> led; // of an edge: the nodes through which it is led
};

} // namespace ZoPrimitives
