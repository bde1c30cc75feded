#include "Geometry/ArrangementChange.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

namespace ZoPrimitives {

namespace {

void Erase(std::vector<unsigned>& numbers, unsigned number) {
    numbers.erase(std::find(numbers.begin(), numbers.end(), number));
}

/// One that went, or one more.
template <class Item>
unsigned PlaceFor(std::vector<unsigned>& gone, std::vector<Item>& items) {
    if (gone.empty()) {
        items.emplace_back();
        return static_cast<unsigned>(items.size()) - 1;
    }
    const unsigned place = gone.back();
    gone.pop_back();
    return place;
}

} // namespace

unsigned ArrangementChange::Add(const Stretch& stretch, std::vector<unsigned> labels) {
    std::vector<unsigned> near;
    a.forest.ForEachNear(stretch, 0, [&](unsigned i) { near.push_back(i); });
    SortUnique(near);
    const unsigned added = PlaceFor(a.gone.stretches, a.stretches);
    a.stretches[added] = stretch;
    a.ends.resize(2 * a.stretches.size(), NONE);
    a.forest.Add(added);
    a.labels.Change(added) = std::move(labels);
    bool overlaps = false;
    const std::vector<unsigned> stops = StopsOf(added, near, overlaps);
    std::vector<unsigned>& along = a.along.Change(added);
    for (std::size_t i = 1; i < stops.size(); ++i) {
        unsigned edge = overlaps ? EdgeBetween(stops[i - 1], stops[i]) : NONE;
        if (edge == NONE)
            edge = NewEdge(stops[i - 1], stops[i], added);
        else
            Share(edge, added);
        along.push_back(edge);
    }
    return added;
}

/// The nodes of a new stretch, in order; they are made where there are none.
std::vector<unsigned> ArrangementChange::StopsOf(unsigned stretch, const std::vector<unsigned>& near,
                                                 bool& overlaps) {
    std::vector<unsigned> stops;
    const Stretch s = a.stretches[stretch];
    unsigned* const ends = &a.ends[2 * stretch];
    for (const unsigned other : near) {
        if (other == stretch) continue;
        const Meeting meeting = Meeting::Of(s, a.stretches[other]);
        if (meeting.crosses) stops.push_back(NodeAtCrossing(other, stretch));
        overlaps = overlaps || meeting.overlaps;
        for (unsigned end = 0; end < 2; ++end) {
            if (meeting.secondOn[end]) stops.push_back(a.ends[2 * other + end]);
            if (!meeting.firstOn[end]) continue;
            ends[end] = NodeAtPoint(other, end == 0 ? s.a : s.b);
            stops.push_back(ends[end]);
        }
    }
    for (unsigned end = 0; end < 2; ++end) {
        if (ends[end] == NONE) {
            ends[end] = NewNode({end == 0 ? s.a : s.b});
            stops.push_back(ends[end]);
        }
        a.nodes[ends[end]].one = a.nodes[ends[end]].other = NONE;
    }
    std::sort(stops.begin(), stops.end(),
              [&](unsigned p, unsigned q) { return a.CompareAlong(stretch, p, q) < 0; });
    stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
    return stops;
}

/// The node of a stretch at a place on it; `compare(node)` tells whether a node is before it (-1), there (0)
/// or after it (1), and `make()` makes the node if there is none.
template <class Compare, class Make>
unsigned ArrangementChange::NodeOn(unsigned stretch, Compare compare, Make make) {
    const Numbers along = a.along[stretch];
    const unsigned edge = *std::partition_point(along.begin(), along.end() - 1,
                                                [&](unsigned e) { return compare(a.edges[e].to) < 0; });
    for (const unsigned node : {a.edges[edge].from, a.edges[edge].to}) {
        if (compare(node) == 0) return node;
    }
    const unsigned node = NewNode(make());
    Split(edge, node);
    return node;
}

unsigned ArrangementChange::NodeAtCrossing(unsigned stretch, unsigned line) {
    const Stretch s = a.stretches[stretch], t = a.stretches[line];
    return NodeOn(
        stretch,
        [&](unsigned node) {
            const Arrangement::Node& at = a.nodes[node];
            if (at.one == NONE) return -SideOf(t, at.point) * SideOf(t, s.a);
            return CompareCrossings(s, a.Crosser(at, stretch), t);
        },
        [&] {
            return Arrangement::Node{CrossingPoint(s, t), stretch, line};
        });
}

unsigned ArrangementChange::NodeAtPoint(unsigned stretch, const LDPoint& p) {
    return NodeOn(
        stretch, [&](unsigned node) { return a.CompareWith(stretch, node, p); },
        [&] { return Arrangement::Node{p}; });
}

unsigned ArrangementChange::NewNode(const Arrangement::Node& node) {
    const unsigned place = PlaceFor(a.gone.nodes, a.nodes);
    a.nodes[place] = node;
    a.around.Change(place).clear();
    nodes.push_back(place);
    return place;
}

unsigned ArrangementChange::PlaceForEdge() {
    const unsigned edge = PlaceFor(a.gone.edges, a.edges);
    const std::size_t halves = 2 * a.edges.size();
    for (auto* list : {&a.next, &a.cycleOf, &a.faceOf}) list->resize(halves, NONE);
    a.bridge.resize(a.edges.size());
    a.dangle.resize(a.edges.size());
    edges.push_back(edge);
    return edge;
}

unsigned ArrangementChange::NewEdge(unsigned from, unsigned to, unsigned stretch) {
    const unsigned edge = PlaceForEdge();
    a.edges[edge] = {from, to, stretch, NONE};
    AddHalf(from, 2 * edge);
    AddHalf(to, 2 * edge + 1);
    return edge;
}

/// Puts a half-edge into its place around the node that it leaves.
void ArrangementChange::AddHalf(unsigned node, unsigned half) {
    std::vector<unsigned>& around = a.around.Change(node);
    const auto place = std::upper_bound(around.begin(), around.end(), half, [&](unsigned g, unsigned h) {
        return g % 2 != h % 2 ? g % 2 < h % 2 : a.Turn(g, h) > 0;
    });
    // It divides what lies to the left of the one before.
    if (!around.empty()) Kill(a.cycleOf[place == around.begin() ? around.back() : *(place - 1)]);
    around.insert(place, half);
    nodes.push_back(node);
}

/// A node comes to lie on an edge: the second part is a new one.
void ArrangementChange::Split(unsigned edge, unsigned node) {
    Touch(edge);
    const unsigned second = PlaceForEdge();
    const unsigned end = a.edges[edge].to;
    a.edges[second] = {node, end, a.edges[edge].stretch, NONE};
    a.edges[edge].to = node;
    if (a.edges[edge].shared != NONE) {
        const unsigned place = PlaceFor(a.gone.shared, a.shared);
        a.shared[place] = a.shared[a.edges[edge].shared];
        a.edges[second].shared = place;
    }
    for (unsigned way = 0; way < 2; ++way) {
        a.cycleOf[2 * second + way] = a.cycleOf[2 * edge + way];
        a.faceOf[2 * second + way] = a.faceOf[2 * edge + way];
    }
    for (const unsigned stretch : a.StretchesOf(edge)) {
        std::vector<unsigned>& along = a.along.Change(stretch);
        along.insert(std::find(along.begin(), along.end(), edge) + 1, second);
    }
    std::vector<unsigned>& around = a.around.Change(end);
    *std::find(around.begin(), around.end(), 2 * edge + 1) = 2 * second + 1;
    a.around.Change(node) = {2 * second, 2 * edge + 1};
    nodes.push_back(node);
}

void ArrangementChange::Remove(unsigned stretch) {
    const Numbers was = a.along[stretch];
    const std::vector<unsigned> along(was.begin(), was.end());
    std::vector<unsigned> stops{a.edges[along.front()].from};
    for (const unsigned edge : along) stops.push_back(a.edges[edge].to);
    for (const unsigned edge : along) {
        if (a.edges[edge].shared != NONE)
            Unshare(edge, stretch);
        else
            DropEdge(edge);
    }
    a.along.Change(stretch).clear();
    a.labels.Change(stretch).clear();
    a.ends[2 * stretch] = a.ends[2 * stretch + 1] = NONE;
    a.stretches[stretch] = StretchForest::Nowhere();
    a.forest.Remove();
    a.gone.stretches.push_back(stretch);
    for (const unsigned node : stops) Settle(node);
}

/// A node that a stretch has left: it may be none any more, or the crossing of others.
void ArrangementChange::Settle(unsigned node) {
    nodes.push_back(node);
    const Numbers around = a.around[node];
    if (around.size() == 0) {
        DropNode(node);
        return;
    }
    if (IsEnd(node)) return;
    if (around.size() == 2) {
        Join(node);
        return;
    }
    const unsigned one = a.edges[around[0] / 2].stretch;
    const Stretch& s = a.stretches[one];
    for (const unsigned half : around) {
        const unsigned other = a.edges[half / 2].stretch;
        const Stretch& t = a.stretches[other];
        if (CrossSign(s.a, s.b, t.a, t.b) == 0) continue;
        a.nodes[node] = {a.nodes[node].point, one, other};
        return;
    }
}

/// Whether a stretch ends in a node.
bool ArrangementChange::IsEnd(unsigned node) const {
    for (const unsigned half : a.around[node]) {
        for (const unsigned stretch : a.StretchesOf(half / 2)) {
            if (a.ends[2 * stretch] == node || a.ends[2 * stretch + 1] == node) return true;
        }
    }
    return false;
}

/// Two edges of the same stretches, between which there is nothing any more, become one.
void ArrangementChange::Join(unsigned node) {
    const Numbers around = a.around[node];
    const bool turned = around[0] % 2 != 0;
    const unsigned first = around[turned ? 0 : 1] / 2, second = around[turned ? 1 : 0] / 2;
    Touch(first);
    Touch(second);
    const unsigned end = a.edges[second].to;
    for (const unsigned stretch : a.StretchesOf(first)) Erase(a.along.Change(stretch), second);
    a.edges[first].to = end;
    std::vector<unsigned>& halves = a.around.Change(end);
    *std::find(halves.begin(), halves.end(), 2 * second + 1) = 2 * first + 1;
    ForgetEdge(second);
    DropNode(node);
}

void ArrangementChange::Share(unsigned edge, unsigned stretch) {
    if (a.edges[edge].shared == NONE) {
        const unsigned first = a.edges[edge].stretch, place = PlaceFor(a.gone.shared, a.shared);
        const Numbers drawn = a.labels[first];
        a.shared[place] = {{first}, {drawn.begin(), drawn.end()}};
        a.edges[edge].shared = place;
    }
    Arrangement::Shared& shared = a.shared[a.edges[edge].shared];
    shared.stretches.push_back(stretch);
    const Numbers drawn = a.labels[stretch];
    shared.labels.insert(shared.labels.end(), drawn.begin(), drawn.end());
    std::sort(shared.labels.begin(), shared.labels.end());
    edges.push_back(edge);
}

void ArrangementChange::Unshare(unsigned edge, unsigned stretch) {
    Arrangement::Edge& e = a.edges[edge];
    Arrangement::Shared& shared = a.shared[e.shared];
    Erase(shared.stretches, stretch);
    for (const unsigned label : a.labels[stretch]) Erase(shared.labels, label);
    e.stretch = shared.stretches.front();
    edges.push_back(edge);
    if (shared.stretches.size() > 1) return;
    a.gone.shared.push_back(e.shared);
    e.shared = NONE;
}

void ArrangementChange::DropEdge(unsigned edge) {
    Touch(edge);
    for (const unsigned way : {0u, 1u}) Erase(a.around.Change(a.Origin(2 * edge + way)), 2 * edge + way);
    ForgetEdge(edge);
}

void ArrangementChange::ForgetEdge(unsigned edge) {
    Arrangement::Edge& e = a.edges[edge];
    if (e.shared != NONE) a.gone.shared.push_back(e.shared);
    e = {NONE, NONE, NONE, NONE};
    for (auto* list : {&a.next, &a.cycleOf, &a.faceOf}) (*list)[2 * edge] = (*list)[2 * edge + 1] = NONE;
    a.gone.edges.push_back(edge);
}

void ArrangementChange::DropNode(unsigned node) {
    a.nodes[node] = {};
    a.around.Change(node).clear();
    a.gone.nodes.push_back(node);
}

/// The edge between two nodes of a line, if there is one.
unsigned ArrangementChange::EdgeBetween(unsigned from, unsigned to) const {
    for (const unsigned half : a.around[from]) {
        if (a.Target(half) == to) return half / 2;
    }
    return NONE;
}

/// An edge changes: what goes around it must be found anew.
void ArrangementChange::Touch(unsigned edge) {
    edges.push_back(edge);
    nodes.push_back(a.edges[edge].from);
    nodes.push_back(a.edges[edge].to);
    Kill(a.cycleOf[2 * edge]);
    Kill(a.cycleOf[2 * edge + 1]);
}

void ArrangementChange::Kill(unsigned cycle) {
    if (cycle == NONE || !dead.insert(cycle).second) return;
    const unsigned number = a.cycles[cycle].face;
    const auto [place, isNew] = touched.try_emplace(number);
    if (!isNew) return;
    const Arrangement::Face& face = a.faces[number];
    if (face.half != NONE) place->second.push_back(a.cycleOf[face.half]);
    for (const unsigned half : face.holes) place->second.push_back(a.cycleOf[half]);
}

void ArrangementChange::Finish() {
    for (auto* list : {&nodes, &edges}) SortUnique(*list);
    for (const unsigned node : nodes) Relink(node);
    for (const unsigned node : nodes) {
        for (const unsigned half : a.around[node]) {
            if (IsDead(a.cycleOf[half])) Trace(half);
        }
    }
    MakeFaces();
    PlaceHoles();
    FindBridges();
    for (const unsigned cycle : dead) a.gone.cycles.push_back(cycle);
    SortUnique(faces);
}

void ArrangementChange::Relink(unsigned node) {
    const Numbers around = a.around[node];
    const std::size_t count = around.size();
    for (std::size_t k = 0; k < count; ++k) a.next[around[k] ^ 1] = around[(k + count - 1) % count];
}

/// Follows a new cycle.
void ArrangementChange::Trace(unsigned half) {
    const unsigned cycle = PlaceFor(a.gone.cycles, a.cycles);
    unsigned least = a.Origin(half), h = half;
    LDPoint low = a.nodes[least].point, high = low;
    do {
        a.cycleOf[h] = cycle;
        const unsigned node = a.Origin(h);
        const LDPoint& p = a.nodes[node].point;
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        if (a.CompareNodes(node, least) < 0) least = node;
        h = a.next[h];
    } while (h != half);
    // What lies to the left of its least node is outside.
    const bool isOuter = a.cycleOf[a.LeftOf(least)] == cycle;
    a.cycles[cycle] = {half, NONE, isOuter ? least : NONE};
    if (isOuter)
        ++a.components;
    else
        boxes.push_back({low, high});
    traced.push_back(cycle);
}

/// A new cycle within a face gets the number of the face that was there, if that has none any more.
void ArrangementChange::MakeFaces() {
    std::set<unsigned> free;
    for (const auto& [face, had] : touched) {
        faces.push_back(face);
        a.faces[face].holes.clear();
        if (face != 0 && IsDead(had.front())) free.insert(face);
    }
    for (const unsigned cycle : dead) a.components -= a.cycles[cycle].least != NONE;
    for (const unsigned cycle : traced) {
        if (a.cycles[cycle].least != NONE) continue;
        const unsigned start = a.cycles[cycle].half;
        unsigned face = NONE;
        for (unsigned half = start; face == NONE;) {
            if (free.count(a.faceOf[half]) != 0) face = a.faceOf[half];
            half = a.next[half];
            if (half == start) break;
        }
        if (face == NONE)
            face = PlaceFor(a.gone.faces, a.faces);
        else
            free.erase(face);
        a.faces[face] = {start, {}};
        SetFace(cycle, face);
    }
    for (const unsigned face : free) {
        a.faces[face].half = NONE;
        a.gone.faces.push_back(face);
    }
}

void ArrangementChange::SetFace(unsigned cycle, unsigned face) {
    Arrangement::Cycle& at = a.cycles[cycle];
    at.face = face;
    faces.push_back(face);
    unsigned half = at.half;
    do {
        a.faceOf[half] = face;
        half = a.next[half];
    } while (half != at.half);
}

/// Parts of the drawing in faces that were touched stay where their face is as before, and no new cycle is
/// around them.
void ArrangementChange::PlaceHoles() {
    std::vector<unsigned> holes;
    const auto isWithin = [&](const LDPoint& p) {
        return std::any_of(boxes.begin(), boxes.end(), [&](const Stretch& box) {
            return box.a.x <= p.x && p.x <= box.b.x && box.a.y <= p.y && p.y <= box.b.y;
        });
    };
    for (const auto& [face, had] : touched) {
        const bool stays = face == 0 || !IsDead(had.front());
        for (const unsigned cycle : had) {
            if (IsDead(cycle) || a.cycles[cycle].least == NONE) continue;
            if (stays && !isWithin(a.nodes[a.cycles[cycle].least].point))
                a.faces[face].holes.push_back(a.cycles[cycle].half);
            else
                holes.push_back(cycle);
        }
    }
    for (const unsigned cycle : traced) {
        if (a.cycles[cycle].least != NONE) holes.push_back(cycle);
    }
    // What lies below a part has a lesser node: its face is known.
    std::sort(holes.begin(), holes.end(), [&](unsigned c, unsigned d) {
        return a.CompareNodes(a.cycles[c].least, a.cycles[d].least) < 0;
    });
    for (const unsigned cycle : holes) {
        const unsigned face = a.FaceLeftOf(a.HalfBelow(a.nodes[a.cycles[cycle].least].point));
        a.faces[face].holes.push_back(a.cycles[cycle].half);
        SetFace(cycle, face);
    }
}

/// Of the new cycles: an edge that dangles, or does no more, lies on one.
void ArrangementChange::FindBridges() {
    std::unordered_map<unsigned, std::size_t> degrees;
    std::vector<unsigned> loose;
    for (const unsigned cycle : traced) {
        const unsigned start = a.cycles[cycle].half;
        unsigned half = start;
        do {
            a.bridge[half / 2] = a.cycleOf[half] == a.cycleOf[half ^ 1];
            a.dangle[half / 2] = false;
            if (a.around.Size(a.Origin(half)) == 1) loose.push_back(a.Origin(half));
            half = a.next[half];
        } while (half != start);
    }
    a.Prune(loose, [&](unsigned node) -> std::size_t& {
        return degrees.try_emplace(node, a.around.Size(node)).first->second;
    });
}

} // namespace ZoPrimitives
