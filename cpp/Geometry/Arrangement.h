#pragma once

#include "Geometry/Ranges.h"
#include "Geometry/StretchForest.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// How two stretches meet.
struct Meeting {
    bool crosses = false;  // away from the ends of both
    bool overlaps = false; // they lie on one line
    bool firstOn[2] = {};  // the ends of the first that lie on the second
    bool secondOn[2] = {};

    static Meeting Of(const Stretch& first, const Stretch& second);
};

class ArrangementChange;

/// What stretches divide the plane into, exactly as they are given: nodes where they end, cross and touch;
/// edges between them, each once; faces. Only the coordinates of nodes are rounded.
///
/// Half-edges 2 e and 2 e + 1 are the edge e from its lexicographically lesser node to the greater, and back;
/// a face lies to the left of the half-edges that go around it.
class Arrangement {
public:
    static constexpr unsigned NONE = static_cast<unsigned>(-1);

    struct Node {
        LDPoint point;
        // The stretches that cross there, both NONE where a stretch ends.
        unsigned one = NONE;
        unsigned other = NONE;
    };
    struct Edge {
        unsigned from; // the lesser node
        unsigned to;
        unsigned stretch; // that it is a part of
        unsigned shared;  // by several stretches that lie upon each other: an index; NONE if it is not
    };
    struct Shared {
        std::vector<unsigned> stretches;
        std::vector<unsigned> labels; // sorted; one for each time that it was drawn
    };
    /// A closed walk around a face.
    struct Cycle {
        unsigned half;
        unsigned face;
        unsigned least; // the node that comes first by x, then by y, if it goes around a part of the drawing;
                        // NONE if it goes around a face from inside
    };
    struct Face {
        unsigned half;               // one that goes around it; NONE for the outer face
        std::vector<unsigned> holes; // half-edges, one for each part of the drawing that lies within
    };

    /// The stretches have length, and are finite. Stretch i has the labels of range i, sorted.
    Arrangement(std::vector<Stretch> stretches, Ranges labels);

    // After changes, some have gone: nodes without edges, edges from NONE, faces without borders other than
    // the outer one. `gone` tells which; their indices are used again.

    std::vector<Node> nodes;
    std::vector<Edge> edges;
    std::vector<Shared> shared;
    Ranges around;                // half-edges that leave a node, counter-clockwise from straight down
    std::vector<unsigned> next;   // half-edge around the same face
    std::vector<Face> faces;      // 0 is the outer one
    std::vector<unsigned> faceOf; // half-edge
    std::vector<bool> bridge;     // edge: the same face lies on both sides
    std::vector<bool> dangle;     // edge: it leads to a loose end, or only to such edges
    std::vector<Cycle> cycles;
    std::size_t components = 0;

    std::vector<Stretch> stretches;
    Ranges labels; // of a stretch
    Ranges along;  // edges of each stretch, in order
    StretchForest forest;

    struct Gone {
        std::vector<unsigned> nodes, edges, faces, cycles, stretches, shared;
    };
    Gone gone;

    unsigned Origin(unsigned half) const { return half % 2 == 0 ? edges[half / 2].from : edges[half / 2].to; }
    unsigned Target(unsigned half) const { return Origin(half ^ 1); }
    /// Of the things that an edge was drawn by: sorted; one for each time.
    Numbers LabelsOf(unsigned edge) const {
        const Edge& e = edges[edge];
        return e.shared == NONE ? labels[e.stretch] : NumbersOf(shared[e.shared].labels);
    }
    /// The stretches that an edge is a part of.
    Numbers StretchesOf(unsigned edge) const {
        const Edge& e = edges[edge];
        return e.shared == NONE ? Numbers{&e.stretch, &e.stretch + 1} : NumbersOf(shared[e.shared].stretches);
    }
    /// The half-edge at a node with what lies straight to the left of the node, if no edge lies there.
    unsigned LeftOf(unsigned node) const { return *(around.End(node) - 1); }
    /// The sign of the turn from one half-edge to the other.
    int Turn(unsigned half, unsigned following) const;
    /// Exactly, by x, then by y.
    int CompareNodes(unsigned a, unsigned b) const;

    struct Place {
        unsigned face = NONE;
        unsigned edge = NONE;
        unsigned node = NONE;
    };
    /// The node, the edge, or else the face in which a point lies, exactly.
    Place Locate(const LDPoint& p) const;

private:
    friend class ArrangementChange;
    struct Meetings;
    struct Stop;
    void FindMeetings(Meetings& meetings) const;
    int CompareStops(const Stretch& along, const Stop& p, const Stop& q) const;
    bool FindStop(unsigned stretch, unsigned other, Stop& stop) const;
    std::size_t FindHub(std::vector<unsigned>& some, const StretchTree::Leaf& leaf, Meetings& meetings) const;
    void MakeNodesAndEdges(Meetings& meetings);
    void MergeOverlapping(const std::vector<bool>& overlapping);
    void SortAround();
    void TraceCycles();
    void FindBridges();
    unsigned HalfBelow(const LDPoint& p) const;
    unsigned FaceLeftOf(unsigned half) const;
    unsigned EdgeAt(std::size_t stretch, const LDPoint& p) const;
    int CompareAlong(unsigned stretch, unsigned node, unsigned other) const;
    int CompareWith(std::size_t stretch, unsigned node, const LDPoint& p) const;
    template <class Degree>
    void Prune(std::vector<unsigned>& loose, Degree degree);
    int CompareX(unsigned node, std::size_t stretch, double x) const;
    const Stretch& Crosser(const Node& node, std::size_t stretch) const;

    std::vector<unsigned> cycleOf; // half-edge
    std::vector<unsigned> ends;    // nodes where stretches end: two for each
};

/// Marks the edges that lead to loose ends. `degree(node)` is a number that is counted down, at first of its
/// edges.
template <class Degree>
void Arrangement::Prune(std::vector<unsigned>& loose, Degree degree) {
    while (!loose.empty()) {
        const unsigned node = loose.back();
        loose.pop_back();
        for (const unsigned half : around[node]) {
            if (dangle[half / 2]) continue;
            dangle[half / 2] = true;
            if (--degree(Target(half)) == 1) loose.push_back(Target(half));
        }
    }
}

} // namespace ZoPrimitives
