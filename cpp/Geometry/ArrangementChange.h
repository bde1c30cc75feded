#pragma once

#include "Geometry/Arrangement.h"

#include <map>
#include <unordered_set>
#include <vector>

namespace ZoPrimitives {

/// A change of an arrangement: stretches come and go, what they meet is divided and joined, and the faces
/// there are found anew. Nothing else is looked at.
class ArrangementChange {
public:
    explicit ArrangementChange(Arrangement& changed) : a(changed) {}

    void Remove(unsigned stretch);
    /// Runs from the lexicographically lesser end, and has length. The labels are sorted. Returns its number.
    unsigned Add(const Stretch& stretch, std::vector<unsigned> labels);
    /// Finds the faces. It is the last thing to do.
    void Finish();

    // What came, went, or has other edges, ends or labels, or another border; sorted, each once, when it is
    // finished.
    std::vector<unsigned> nodes;
    std::vector<unsigned> edges;
    std::vector<unsigned> faces;

private:
    static constexpr unsigned NONE = Arrangement::NONE;

    // Nodes and edges
    template <class Compare, class Make>
    unsigned NodeOn(unsigned stretch, Compare compare, Make make);
    unsigned NodeAtCrossing(unsigned stretch, unsigned line);
    unsigned NodeAtPoint(unsigned stretch, const LDPoint& p);
    unsigned NewNode(const Arrangement::Node& node);
    unsigned PlaceForEdge();
    unsigned NewEdge(unsigned from, unsigned to, unsigned stretch);
    void AddHalf(unsigned node, unsigned half);
    void Split(unsigned edge, unsigned node);
    void Settle(unsigned node);
    void Join(unsigned node);
    void Share(unsigned edge, unsigned stretch);
    void Unshare(unsigned edge, unsigned stretch);
    void DropEdge(unsigned edge);
    void ForgetEdge(unsigned edge);
    void DropNode(unsigned node);
    std::vector<unsigned> StopsOf(unsigned stretch, const std::vector<unsigned>& near, bool& overlaps);
    unsigned EdgeBetween(unsigned from, unsigned to) const;
    bool IsEnd(unsigned node) const;

    // Faces
    void Touch(unsigned edge);
    void Kill(unsigned cycle);
    bool IsDead(unsigned cycle) const { return cycle == NONE || dead.count(cycle) != 0; }
    void Relink(unsigned node);
    void Trace(unsigned half);
    void MakeFaces();
    void PlaceHoles();
    void SetFace(unsigned cycle, unsigned face);
    void FindBridges();

    Arrangement& a;
    std::unordered_set<unsigned> dead;                 // cycles
    std::map<unsigned, std::vector<unsigned>> touched; // faces: the cycles that they had
    std::vector<unsigned> traced;                      // new cycles
    std::vector<Stretch> boxes; // of those that go around a face from inside: least and most
};

} // namespace ZoPrimitives
