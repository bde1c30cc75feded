#include "Geometry/GapClosing.h"

#include "Geometry/Pieces.h"
#include "ZoPrimitives/Math2.h"

#include <algorithm>
#include <cmath>

namespace ZoPrimitives {

namespace {

double Along(const LDPoint& from, const LDPoint& to, const LDPoint& p) {
    return (p.x - from.x) * (to.x - from.x) + (p.y - from.y) * (to.y - from.y);
}

/// Stretches are asked for a range of their edges by this coordinate, which grows along them.
class Position {
public:
    explicit Position(const Stretch& s)
        : wide(std::abs(s.b.x - s.a.x) >= std::abs(s.b.y - s.a.y)), rising(wide || s.b.y >= s.a.y) {}
    double Of(const LDPoint& p) const { return wide ? p.x : rising ? p.y : -p.y; }

private:
    bool wide;
    bool rising;
};

/// Removes an item of a list, and the list when it is empty.
template <class Lists, class Remove>
void EraseFrom(Lists& lists, unsigned list, Remove remove) {
    const auto found = lists.find(list);
    if (found == lists.end()) return;
    remove(found->second);
    if (found->second.empty()) lists.erase(found);
}

} // namespace

GapClosing::GapClosing(const Arrangement& drawing, unsigned decimals)
    : arrangement(drawing), precision(decimals), reach(1.001 * std::pow(10.0, -static_cast<int>(decimals))) {
    for (unsigned node = 0; node < arrangement.nodes.size(); ++node) FindNear(node);
    NodeSet nodes;
    for (const auto& [node, others] : nearNodes) nodes.insert(node);
    for (const auto& [node, edges] : nearEdges) nodes.insert(node);
    Choose(nodes);
}

bool GapClosing::IsEqual(const LDPoint& a, const LDPoint& b) const {
    return a == b || (Equal(a.x, b.x, precision) && Equal(a.y, b.y, precision));
}

Stretch GapClosing::SegmentOf(unsigned edge) const {
    const Arrangement::Edge& e = arrangement.edges[edge];
    return {arrangement.nodes[e.from].point, arrangement.nodes[e.to].point};
}

LDPoint GapClosing::PlaceOf(unsigned node) const {
    const auto found = places.find(node);
    return found == places.end() ? arrangement.nodes[node].point : found->second;
}

void GapClosing::FindNear(unsigned node) {
    if (arrangement.around.Size(node) == 0) return; // it has gone
    const LDPoint& p = arrangement.nodes[node].point;
    arrangement.forest.ForEachNear(p, reach, [&](unsigned stretch) {
        const Stretch& s = arrangement.stretches[stretch];
        if (!InBox(s, p, reach)) return;
        // A square of twice the reach about the point does not touch the line.
        const double dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
        const double cross = dx * (p.y - s.a.y) - dy * (p.x - s.a.x);
        if (std::abs(cross) > 2 * reach * (std::abs(dx) + std::abs(dy))) return;
        TryEdges(node, stretch);
    });
}

/// Of a stretch that passes near a node.
void GapClosing::TryEdges(unsigned node, unsigned stretch) {
    const LDPoint& p = arrangement.nodes[node].point;
    const Stretch& s = arrangement.stretches[stretch];
    const Position position(s);
    const auto end = [&](unsigned e) {
        return position.Of(arrangement.nodes[arrangement.edges[e].to].point);
    };
    const double at = position.Of(p);
    const Numbers along = arrangement.along[stretch];
    const unsigned* edge =
        std::partition_point(along.begin(), along.end() - 1, [&](unsigned e) { return end(e) < at - reach; });
    for (; edge != along.end(); ++edge) {
        const unsigned from = arrangement.edges[*edge].from, to = arrangement.edges[*edge].to;
        const LDPoint &a = arrangement.nodes[from].point, &b = arrangement.nodes[to].point;
        if (position.Of(a) > at + reach) break;
        for (const unsigned other : {from, to}) {
            if (other == node || !IsEqual(arrangement.nodes[other].point, p)) continue;
            nearNodes[node].insert(other);
            nearNodes[other].insert(node);
        }
        if (from == node || to == node || IsEqual(a, p) || IsEqual(b, p)) continue;
        // Led through the node, the edge must get shorter: otherwise two edges could take turns without end.
        const double length = a.DistFrom2(b);
        const bool loose = arrangement.around.Size(node) == 1;
        if (!loose && !(a.DistFrom2(p) < length && b.DistFrom2(p) < length)) continue;
        const LDPoint nearest = NearestPointOf({a, b, 0}, p);
        if (!IsEqual(nearest, p)) continue;
        if (nodesNear[*edge].insert(node).second) nearEdges[node].push_back({*edge, node, nearest});
    }
}

/// For the nodes within reach of a segment's box, several times for one.
template <class Visit>
void GapClosing::ForEachNodeNear(const Stretch& segment, Visit visit) const {
    arrangement.forest.ForEachNear(segment, reach, [&](unsigned stretch) {
        const Numbers along = arrangement.along[stretch];
        if (along.size() == 0) return;
        const Position position(arrangement.stretches[stretch]);
        const auto visitNear = [&](unsigned node) {
            if (InBox(segment, arrangement.nodes[node].point, reach)) visit(node);
        };
        const double one = position.Of(segment.a), other = position.Of(segment.b);
        const double low = std::min(one, other) - reach, high = std::max(one, other) + reach;
        const auto place = [&](unsigned node) { return position.Of(arrangement.nodes[node].point); };
        const unsigned* edge = std::partition_point(
            along.begin(), along.end() - 1, [&](unsigned e) { return place(arrangement.edges[e].to) < low; });
        for (; edge != along.end() && place(arrangement.edges[*edge].from) <= high; ++edge) {
            visitNear(arrangement.edges[*edge].from);
            visitNear(arrangement.edges[*edge].to);
        }
    });
}

/// Forgets what a node is near to.
void GapClosing::Forget(unsigned node) {
    const auto others = nearNodes.find(node);
    if (others != nearNodes.end()) {
        for (const unsigned other : others->second)
            EraseFrom(nearNodes, other, [&](NodeSet& near) { near.erase(node); });
        nearNodes.erase(node);
    }
    const auto edges = nearEdges.find(node);
    if (edges == nearEdges.end()) return;
    for (const NearEdge& near : edges->second) {
        EraseFrom(nodesNear, near.edge, [&](NodeSet& nodes) { nodes.erase(node); });
        Unlead(near);
    }
    nearEdges.erase(edges);
}

/// The edge is not led through the node any more.
void GapClosing::Unlead(const NearEdge& near) {
    EraseFrom(led, near.edge, [&](std::vector<NearEdge>& nodes) {
        nodes.erase(std::remove_if(nodes.begin(), nodes.end(),
                                   [&](const NearEdge& other) { return other.node == near.node; }),
                    nodes.end());
    });
}

/// All that are near to one of the nodes, or to one that is, and so on: they choose together where they move.
void GapClosing::AddNeighbours(NodeSet& nodes) const {
    std::vector<unsigned> left(nodes.begin(), nodes.end());
    while (!left.empty()) {
        const auto near = nearNodes.find(left.back());
        left.pop_back();
        if (near == nearNodes.end()) continue;
        for (const unsigned node : near->second) {
            if (nodes.insert(node).second) left.push_back(node);
        }
    }
}

void GapClosing::AddEdgesNear(const NodeSet& nodes, std::set<unsigned>& edges) const {
    for (const unsigned node : nodes) {
        const auto near = nearEdges.find(node);
        if (near == nearEdges.end()) continue;
        for (const NearEdge& one : near->second) edges.insert(one.edge);
    }
}

std::set<unsigned> GapClosing::Update(const ArrangementChange& change) {
    std::set<unsigned> edges(change.edges.begin(), change.edges.end());
    NodeSet changed(change.nodes.begin(), change.nodes.end());
    for (const unsigned edge : change.edges) {
        const auto near = nodesNear.find(edge);
        if (near != nodesNear.end()) changed.insert(near->second.begin(), near->second.end());
        if (arrangement.edges[edge].from == Arrangement::NONE) continue;
        ForEachNodeNear(SegmentOf(edge), [&](unsigned node) { changed.insert(node); });
    }
    NodeSet nodes = changed;
    AddNeighbours(nodes);
    AddEdgesNear(nodes, edges);
    for (const unsigned node : changed) Forget(node);
    for (const unsigned node : changed) FindNear(node);
    AddNeighbours(nodes);
    AddEdgesNear(nodes, edges);
    std::vector<LDPoint> before;
    for (const unsigned node : nodes) before.push_back(PlaceOf(node));
    Choose(nodes);
    auto was = before.begin();
    for (const unsigned node : nodes) {
        if (PlaceOf(node) == *was++) continue;
        for (const unsigned half : arrangement.around[node]) edges.insert(half / 2);
    }
    return edges;
}

/// Chooses where nodes move to, and through which nodes the edges near them lead.
void GapClosing::Choose(const NodeSet& nodes) {
    for (const unsigned node : nodes) {
        places.erase(node);
        const auto near = nearEdges.find(node);
        if (near == nearEdges.end()) continue;
        for (const NearEdge& one : near->second) Unlead(one);
    }
    ChooseTargets(nodes);
    for (const unsigned node : nodes) MoveLooseEnd(node);
}

/// Nodes with more edges stay where they are, of equal ones the lesser; those near them move there.
void GapClosing::ChooseTargets(const NodeSet& nodes) {
    std::vector<unsigned> order;
    for (const unsigned node : nodes) {
        if (nearNodes.count(node) != 0) order.push_back(node);
    }
    std::sort(order.begin(), order.end(), [&](unsigned i, unsigned j) {
        const std::size_t more = arrangement.around.Size(i), less = arrangement.around.Size(j);
        return more != less ? more > less : arrangement.CompareNodes(i, j) < 0;
    });
    std::set<unsigned> settled;
    for (const unsigned node : order) {
        if (!settled.insert(node).second) continue;
        for (const unsigned other : nearNodes[node]) {
            if (!settled.insert(other).second) continue;
            places[other] = arrangement.nodes[node].point;
        }
    }
}

/// By the distance; of equal ones, by where the edges are.
bool GapClosing::IsLess(const NearEdge& a, const NearEdge& b) const {
    const double ours = a.nearest.DistFrom2(arrangement.nodes[a.node].point);
    const double theirs = b.nearest.DistFrom2(arrangement.nodes[b.node].point);
    if (ours != theirs) return ours < theirs;
    const Arrangement::Edge &e = arrangement.edges[a.edge], &f = arrangement.edges[b.edge];
    const int from = arrangement.CompareNodes(e.from, f.from);
    return from != 0 ? from < 0 : arrangement.CompareNodes(e.to, f.to) < 0;
}

/// A loose end near edges, and near no node, moves onto the nearest one. Other nodes stay, and edges are led
/// through them.
void GapClosing::MoveLooseEnd(unsigned node) {
    const auto found = nearEdges.find(node);
    if (found == nearEdges.end()) return;
    if (places.count(node) != 0) return; // moved to another node, which has edges of its own near it
    const std::vector<NearEdge>& near = found->second;
    if (arrangement.around.Size(node) == 1 && nearNodes.count(node) == 0) {
        const NearEdge& nearest = *std::min_element(
            near.begin(), near.end(), [&](const NearEdge& a, const NearEdge& b) { return IsLess(a, b); });
        places[node] = nearest.nearest;
        led[nearest.edge].push_back(nearest);
        return;
    }
    for (const NearEdge& one : near) led[one.edge].push_back(one);
}

/// Through which places an edge is led, in order: all that are near, or only the nearest if otherwise a part
/// would be as long as the edge.
std::vector<LDPoint> GapClosing::Stops(unsigned edge) const {
    std::vector<LDPoint> stops;
    const auto found = led.find(edge);
    if (found == led.end()) return stops;
    const auto [a, b] = SegmentOf(edge);
    for (const NearEdge& near : found->second) stops.push_back(PlaceOf(near.node));
    std::sort(stops.begin(), stops.end(), [a = a, b = b](const LDPoint& p, const LDPoint& q) {
        const double first = Along(a, b, p), second = Along(a, b, q);
        return first != second ? first < second : LexicographicallyLess(p, q);
    });
    double longest = 0;
    for (std::size_t i = 1; i < stops.size(); ++i)
        longest = std::max(longest, stops[i].DistFrom2(stops[i - 1]));
    if (longest < a.DistFrom2(b)) return stops;
    const auto distance = [&](const NearEdge& near) { return near.nearest.DistFrom2(PlaceOf(near.node)); };
    const auto nearest = std::min_element(
        found->second.begin(), found->second.end(), [&](const NearEdge& p, const NearEdge& q) {
            return distance(p) != distance(q) ? distance(p) < distance(q)
                                              : LexicographicallyLess(PlaceOf(p.node), PlaceOf(q.node));
        });
    return {PlaceOf(nearest->node)};
}

bool GapClosing::IsLeft(unsigned edge) const {
    const Arrangement::Edge& e = arrangement.edges[edge];
    return places.count(e.from) == 0 && places.count(e.to) == 0 && led.count(edge) == 0;
}

std::vector<LDPoint> GapClosing::PathOf(unsigned edge) const {
    const Arrangement::Edge& e = arrangement.edges[edge];
    std::vector<LDPoint> path = Stops(edge);
    path.insert(path.begin(), PlaceOf(e.from));
    path.push_back(PlaceOf(e.to));
    path.erase(std::unique(path.begin(), path.end()), path.end());
    return path;
}

void GapClosing::TellMoves(std::vector<Move>& moves) const {
    std::vector<unsigned> moved;
    for (const auto& [node, to] : places) moved.push_back(node);
    std::sort(moved.begin(), moved.end());
    for (const unsigned node : moved) {
        const LDPoint &from = arrangement.nodes[node].point, to = PlaceOf(node);
        if (from != to) moves.push_back({from, to});
    }
    moved.clear();
    for (const auto& [edge, nodes] : led) moved.push_back(edge);
    std::sort(moved.begin(), moved.end());
    for (const unsigned edge : moved) {
        const std::vector<LDPoint> stops = Stops(edge);
        for (const NearEdge& near : led.at(edge)) {
            const LDPoint to = PlaceOf(near.node);
            if (near.nearest != to && std::find(stops.begin(), stops.end(), to) != stops.end())
                moves.push_back({near.nearest, to});
        }
    }
}

} // namespace ZoPrimitives
