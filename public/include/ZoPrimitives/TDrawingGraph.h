#pragma once

#include "ZoPrimitives/TRegion.h"
#include "ZoPrimitives/TSegment2D.h"

#include <memory>
#include <vector>

namespace ZoPrimitives {

class DrawnThings;
class FoundGraph;
struct Stretch;
class TDrawingGraph;
class TLineEdge;
class TSortedEdge;

// Nodes, edges and faces of a graph, by number. They are valid until something is added to the graph or
// removed from it; numbers mostly stay (see the graph). All counts are from 1, and indices are asserted.

/// A point in which edges end.
class ZO_API TPointNode {
public:
    unsigned Number() const { return number; }
    Point2D Point() const;
    unsigned NEdges() const;
    /// Counter-clockwise, from the direction straight down, which comes last.
    TSortedEdge Edge(unsigned index) const;

private:
    friend class TDrawingGraph;
    friend class TSortedEdge;
    friend class TLineEdge;
    TPointNode(const TDrawingGraph* owner, unsigned index) : graph(owner), number(index) {}
    const TDrawingGraph* graph;
    unsigned number;
};

/// A straight piece of the drawing between two nodes, with nothing between them.
class ZO_API TLineEdge {
public:
    unsigned Number() const { return number; }
    /// The lexicographically lesser one.
    TPointNode Start() const;
    TPointNode End() const;
    TSegment2D Segment() const;
    /// The numbers of the faces beside it; 0 for the outer one.
    unsigned LeftFace() const;
    unsigned RightFace() const;
    /// The drawn things that it belongs to, by their numbers: several where they lie upon each other.
    unsigned NThings() const;
    unsigned Thing(unsigned index) const;
    /// Whether the same face lies on both sides: without the edge, the drawing falls apart there.
    bool IsBridge() const;
    /// Whether it leads to a loose end, at once or by other dangling edges. Dangling edges are bridges, too.
    bool IsDangle() const;

private:
    friend class TDrawingGraph;
    friend class TSortedEdge;
    TLineEdge(const TDrawingGraph* owner, unsigned index) : graph(owner), number(index) {}
    const TDrawingGraph* graph;
    unsigned number;
};

/// An edge as it leaves a node, in its place among the others there; also, as it goes around the face to its
/// left.
class ZO_API TSortedEdge {
public:
    TPointNode From() const;
    TPointNode To() const;
    TLineEdge Edge() const;
    /// In radians, above -pi/2 and up to 3 pi/2.
    double Angle() const;
    /// The number of the face to its left.
    unsigned Face() const;
    /// The same edge as it leaves the other node.
    TSortedEdge Opposite() const;
    /// The next one counter-clockwise around the node.
    TSortedEdge NextAroundNode() const;
    /// The next one around the face to the left.
    TSortedEdge NextAroundFace() const;
    bool operator==(const TSortedEdge& other) const { return graph == other.graph && half == other.half; }
    bool operator!=(const TSortedEdge& other) const { return !(*this == other); }

private:
    friend class TDrawingGraph;
    friend class TGraphFace;
    friend class TPointNode;
    TSortedEdge(const TDrawingGraph* owner, unsigned index) : graph(owner), half(index) {}
    const TDrawingGraph* graph;
    unsigned half; // from 0
};

/// A closed region of the drawing, or the outer face, which has the number 0.
class ZO_API TGraphFace {
public:
    unsigned Number() const { return number; }
    /// Of the region without its holes; 0 for the outer face.
    double Area() const;
    /// The region with its holes; bridges and dangling edges within it are left out. It has no contour but
    /// holes for the outer face.
    TRegion Region() const;
    /// The parts of the border, holes included: closed walks along edges with the face to their left, bridges
    /// and dangling edges forth and back. The outer one of a closed region comes first.
    unsigned NBorders() const;
    /// An edge of that walk; `NextAroundFace` leads on.
    TSortedEdge Border(unsigned index) const;

private:
    friend class TDrawingGraph;
    TGraphFace(const TDrawingGraph* owner, unsigned index) : graph(owner), number(index) {}
    const TDrawingGraph* graph;
    unsigned number;
};

/// What was moved to close a gap: a point of the drawing, and where it is now.
struct TGraphMove {
    Point2D from;
    Point2D to;
};

/// Where a point lies in a graph: at a node, on an edge, or else in a face; the numbers of the others are 0.
struct TGraphPlace {
    unsigned node = 0;
    unsigned edge = 0;
    unsigned face = 0;
};

/// The closed regions of a drawing. Paths go in as they were drawn: crossing, overlapping, touching, nearly
/// touching, doubled, dangling. Out come nodes, edges between them, and faces: each closed region once.
///
/// Points that are `Equal` at the precision become one; a point that is `Equal` to the nearest one of an
/// edge, and nearer to its ends than these are to each other, becomes a node of it. What is moved is told
/// (`Move`). At precision 21 and 22 nothing is moved, and the graph is that of the drawing exactly as it is
/// given: only the nodes' coordinates are rounded, to the nearest doubles.
///
/// The graph is found when it is first asked for; then numbers do not depend on the order of adding. After a
/// change, what is near it is found anew when the graph is next asked, as if it were drawn like that at once,
/// and nothing else is looked at. Then nodes, edges and faces away from it keep their numbers, but for the
/// last ones, which take the numbers of those that are no more. All is numbered anew after a change of much
/// of the drawing, and where closing gaps takes more steps than before, or fewer. Use a graph on one thread
/// at a time, as any operation may find it.
///
/// Streamed is the drawing: opened, it gives the same graph, numbered as one that is found as a whole, and
/// the next thing gets the number that it would have got. Arcs stay arcs; their chords are found anew, to the
/// last bit by the same C runtime's sine and cosine. A text holds 15 digits of each number. The fields are
/// "precision", "chordError", "pieces", a list of doubles that holds x1, y1, x2, y2 and bulge of each piece
/// drawn, and "things", a list of ints that holds how many pieces each thing has, -1 if it was removed. What
/// `Add` and the constructor would not take is refused, and so are lists that do not fit each other; a graph
/// that reading fails for stays as it was. Copies, and compares exactly, the drawing.
class ZO_API TDrawingGraph : public ZoObjectStreamable {
public:
    /// Arcs become straight edges that leave them by at most `chordError`.
    explicit TDrawingGraph(unsigned precision = 6, double chordError = 0.01);
    ZO_POINT_CLASS_(TDrawingGraph)

    unsigned Precision() const { return precision; }
    double ChordError() const;

    /// Adds a path and returns its number, from 1. It is asserted that its coordinates are finite, and that
    /// all arcs together have no more than 2^24 chords. A piece without length leaves no trace.
    unsigned Add(const TPath2D& path);
    /// Adds the borders of a region as one thing.
    unsigned Add(const TRegion& region);
    /// Removes what was added under a number; others keep theirs. False if there is nothing.
    bool Remove(unsigned thing);
    void RemoveAll();

    unsigned NNodes() const;
    TPointNode Node(unsigned number) const;
    unsigned NEdges() const;
    TLineEdge Edge(unsigned number) const;
    /// The closed regions.
    unsigned NFaces() const;
    /// 0 for the outer one.
    TGraphFace Face(unsigned number) const;
    /// Parts of the drawing that do not touch each other.
    unsigned NComponents() const;
    /// Euler's formula: nodes - edges + faces = 1 + components, counting the outer face.
    bool IsConsistent() const;

    unsigned NMoves() const;
    TGraphMove Move(unsigned index) const;
    /// Whether nothing is left within the tolerance. After 20 rounds of moving, the graph stays as it is; it
    /// is sound all the same.
    bool IsSettled() const;

    /// Exactly, among the edges where they are drawn; a point beside one is not on it.
    TGraphPlace Locate(const Point2D& point) const;

    bool operator==(const TDrawingGraph& other) const;
    bool operator!=(const TDrawingGraph& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a graph.
    bool operator==(const ZoObject& other) const override;

    /// False when what was read is refused.
    bool OnRead(TBinInStream* stream, bool substituted) override;
    /// Writes the codes 70 before the precision and 40 before the chord error; before each thing 71 with 1,
    /// or with 2 if it was removed; and 10, 20, 11, 21 and 42 before the numbers of each piece.
    void Write(OutputStreamer& streamer) override;
    /// Throws `XInvalidObject` for what is refused, and where a number is missing.
    void Read(InputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    friend class TGraphFace;
    friend class TLineEdge;
    friend class TPointNode;
    friend class TSortedEdge;
    const FoundGraph& Found() const;
    void Change(unsigned thing, const std::vector<Stretch>& removed, const std::vector<Stretch>& added);
    TDrawingGraph& Incoming();
    bool TakeIncoming();

    unsigned precision;
    std::unique_ptr<DrawnThings> things;
    mutable std::unique_ptr<FoundGraph> result; // null: not found yet
    std::unique_ptr<TDrawingGraph> incoming;    // while it is read
};

} // namespace ZoPrimitives
