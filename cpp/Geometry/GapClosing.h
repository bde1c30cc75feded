#pragma once

#include "Geometry/ArrangementChange.h"

#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

namespace ZoPrimitives {

/// At precisions from this one on, nothing is near enough to be moved.
constexpr unsigned FIRST_WITHOUT_TOLERANCE = 21;

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
    Stretch SegmentOf(unsigned edge) const;
    /// Whether an edge stays as it is.
    bool IsLeft(unsigned edge) const;
    /// The points through which an edge leads when everything is moved. None if nothing is left of it.
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
    std::unordered_map<unsigned, unsigned> targets;                // of nodes that move to others
    std::unordered_map<unsigned, LDPoint> places;                  // of nodes that move
    std::unordered_map<unsigned, std::vector<NearEdge>> led; // of an edge: the nodes through which it is led
};

/// A drawing whose gaps are closed, round by round, until nothing is near enough to be moved, or after 20
/// rounds.
class ClosedDrawing {
public:
    /// As for `Arrangement`. At the last precisions nothing is moved.
    ClosedDrawing(std::vector<Stretch> stretches, Ranges labels, unsigned precision);

    const Arrangement& Result() const { return *rounds[ResultRound()].arrangement; }
    bool IsSettled() const;
    std::vector<GapClosing::Move> Moves() const;

    /// A stretch and its label.
    struct Labelled {
        Stretch stretch;
        unsigned label;
    };
    /// What a change of the drawing changed in the result.
    struct Changes {
        bool all = true; // it is another round's: everything
        std::vector<unsigned> nodes, edges, faces;
    };
    /// Stretches go, and others come; those that go are there.
    Changes Change(const std::vector<Labelled>& removed, const std::vector<Labelled>& added);
    /// How many stretches were drawn.
    std::size_t Size() const { return rounds[0].arrangement->stretches.size(); }

private:
    struct Round {
        std::unique_ptr<Arrangement> arrangement;
        std::unique_ptr<GapClosing> gaps; // null where there is no tolerance
        Ranges led;                       // edge: the stretches of the next round that it leads through
    };
    std::size_t ResultRound() const;
    void AddRounds();
    unsigned Find(const Labelled& stretch) const;
    static std::vector<Stretch> LedThrough(const Round& round, unsigned edge);
    static void Pass(Round& round, const ArrangementChange& change, const Arrangement& nextDrawing,
                     ArrangementChange& next);

    unsigned precision;
    std::vector<Round> rounds;
};

} // namespace ZoPrimitives
