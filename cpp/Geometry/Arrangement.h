#pragma once

#include "Geometry/StretchForest.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// Ranges of numbers, one after the other: `values` from starts[i] to starts[i + 1].
struct Ranges {
    std::vector<std::size_t> starts{0};
    std::vector<unsigned> values;

    std::size_t Count() const { return starts.size() - 1; }
    const unsigned* Begin(std::size_t i) const { return values.data() + starts[i]; }
    const unsigned* End(std::size_t i) const { return values.data() + starts[i + 1]; }
    std::size_t Size(std::size_t i) const { return starts[i + 1] - starts[i]; }
    void EndRange() { starts.push_back(values.size()); }
};

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
        unsigned label;
    };
    struct Face {
        unsigned half;               // one that goes around it; NONE for the outer face
        std::vector<unsigned> holes; // half-edges, one for each part of the drawing that lies within
    };

    /// The stretches have length, and are finite. Stretch i has the labels of range i.
    Arrangement(std::vector<Stretch> stretches, Ranges labels);

    std::vector<Node> nodes;
    std::vector<Edge> edges;
    Ranges labels;                // of an edge: range `label`, sorted; one for each time that it was drawn
    Ranges around;                // half-edges that leave a node, counter-clockwise from straight down
    std::vector<unsigned> next;   // half-edge around the same face
    std::vector<Face> faces;      // 0 is the outer one
    std::vector<unsigned> faceOf; // half-edge
    std::vector<bool> bridge;     // edge: the same face lies on both sides
    std::vector<bool> dangle;     // edge: it leads to a loose end, or only to such edges
    std::size_t components = 0;
    std::size_t cycles = 0;

    std::vector<Stretch> stretches;
    Ranges along; // edges of each stretch, in order
    StretchForest forest;

    unsigned Origin(unsigned half) const { return half % 2 == 0 ? edges[half / 2].from : edges[half / 2].to; }
    unsigned Target(unsigned half) const { return Origin(half ^ 1); }
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
    struct Meetings;
    void FindMeetings(Meetings& meetings) const;
    bool FindAcross(const unsigned* begin, const unsigned* end, Meetings& meetings) const;
    void MakeNodesAndEdges(Meetings& meetings);
    void MergeOverlapping(const std::vector<bool>& overlapping);
    void SortAround();
    void TraceCycles();
    void FindBridges();
    unsigned EdgeAt(std::size_t stretch, const LDPoint& p) const;
    int CompareX(unsigned node, std::size_t stretch, double x) const;
    const Stretch& Crosser(const Node& node, std::size_t stretch) const;

    std::vector<unsigned> cycleOf; // half-edge
    std::vector<unsigned> ends;    // nodes where stretches end: two for each
};

} // namespace ZoPrimitives
