#include "Geometry/GapClosing.h"

#include "Geometry/Pieces.h"
#include "ZoPrimitives/Math2.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ZoPrimitives {

namespace {

constexpr int MOST_ROUNDS = 20;

double Along(const LDPoint& from, const LDPoint& to, const LDPoint& p) {
    return (p.x - from.x) * (to.x - from.x) + (p.y - from.y) * (to.y - from.y);
}

} // namespace

GapClosing::GapClosing(const Arrangement& arrangement, unsigned precision)
    : arrangement(arrangement), precision(precision),
      reach(1.001 * std::pow(10.0, -static_cast<int>(precision))) {
    for (unsigned node = 0; node < arrangement.nodes.size(); ++node) FindNear(node);
    std::sort(nodePairs.begin(), nodePairs.end());
    nodePairs.erase(std::unique(nodePairs.begin(), nodePairs.end()), nodePairs.end());
    const auto key = [](const NearEdge& near) { return std::pair(near.edge, near.node); };
    std::sort(edgePairs.begin(), edgePairs.end(),
              [&](const NearEdge& a, const NearEdge& b) { return key(a) < key(b); });
    edgePairs.erase(std::unique(edgePairs.begin(), edgePairs.end(),
                                [&](const NearEdge& a, const NearEdge& b) { return key(a) == key(b); }),
                    edgePairs.end());
}

bool GapClosing::IsEqual(const LDPoint& a, const LDPoint& b) const {
    return a == b || (Equal(a.x, b.x, precision) && Equal(a.y, b.y, precision));
}

void GapClosing::FindNear(unsigned node) {
    const LDPoint& p = arrangement.nodes[node].point;
    arrangement.forest.ForEachNear(p, reach, [&](unsigned stretch) {
        const Stretch& s = arrangement.stretches[stretch];
        if (p.x < s.a.x - reach || p.x > s.b.x + reach || p.y < std::min(s.a.y, s.b.y) - reach ||
            p.y > std::max(s.a.y, s.b.y) + reach)
            return;
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
    const bool wide = std::abs(s.b.x - s.a.x) >= std::abs(s.b.y - s.a.y);
    const bool rising = wide || s.b.y >= s.a.y;
    const auto position = [&](const LDPoint& q) { return wide ? q.x : rising ? q.y : -q.y; };
    const auto end = [&](unsigned e) { return position(arrangement.nodes[arrangement.edges[e].to].point); };
    const double at = position(p);
    const unsigned* edge =
        std::partition_point(arrangement.along.Begin(stretch), arrangement.along.End(stretch) - 1,
                             [&](unsigned e) { return end(e) < at - reach; });
    for (; edge != arrangement.along.End(stretch); ++edge) {
        const unsigned from = arrangement.edges[*edge].from, to = arrangement.edges[*edge].to;
        const LDPoint &a = arrangement.nodes[from].point, &b = arrangement.nodes[to].point;
        if (position(a) > at + reach) break;
        for (const unsigned other : {from, to}) {
            if (other != node && IsEqual(arrangement.nodes[other].point, p))
                nodePairs.emplace_back(std::min(node, other), std::max(node, other));
        }
        if (from == node || to == node || IsEqual(a, p) || IsEqual(b, p)) continue;
        // Led through the node, the edge must get shorter: otherwise two edges could take turns without end.
        const double length = a.DistFrom2(b);
        const bool loose = arrangement.around.Size(node) == 1;
        if (!loose && !(a.DistFrom2(p) < length && b.DistFrom2(p) < length)) continue;
        const LDPoint nearest = NearestPointOf({a, b, 0}, p);
        if (IsEqual(nearest, p)) edgePairs.push_back({*edge, node, nearest});
    }
}

/// Nodes with more edges stay where they are, of equal ones the lesser; those near them move there.
void GapClosing::ChooseTargets() {
    target.resize(arrangement.nodes.size());
    std::iota(target.begin(), target.end(), 0u);
    Ranges near;
    std::vector<unsigned> members;
    std::vector<std::pair<unsigned, unsigned>> both = nodePairs;
    for (const auto& [a, b] : nodePairs) both.emplace_back(b, a);
    std::sort(both.begin(), both.end());
    for (std::size_t i = 0; i < both.size();) {
        members.push_back(both[i].first);
        for (const unsigned node = both[i].first; i < both.size() && both[i].first == node; ++i)
            near.values.push_back(both[i].second);
        near.EndRange();
    }
    std::vector<std::size_t> order(members.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t i, std::size_t j) {
        const std::size_t more = arrangement.around.Size(members[i]),
                          less = arrangement.around.Size(members[j]);
        return more != less ? more > less : arrangement.CompareNodes(members[i], members[j]) < 0;
    });
    std::vector<bool> settled(arrangement.nodes.size());
    for (const std::size_t i : order) {
        if (settled[members[i]]) continue;
        settled[members[i]] = true;
        for (const unsigned* other = near.Begin(i); other != near.End(i); ++other) {
            if (settled[*other]) continue;
            settled[*other] = true;
            target[*other] = members[i];
        }
    }
    places.resize(target.size());
    for (std::size_t node = 0; node < target.size(); ++node)
        places[node] = arrangement.nodes[target[node]].point;
}

/// A loose end near edges, and near no node, moves onto the nearest one. Other nodes stay, and edges are led
/// through them.
void GapClosing::MoveLooseEnds() {
    std::vector<bool> moved(target.size());
    for (const auto& [a, b] : nodePairs) moved[a] = moved[b] = true;
    std::vector<std::size_t> byNode(edgePairs.size());
    std::iota(byNode.begin(), byNode.end(), std::size_t{0});
    const auto distance = [&](std::size_t i) {
        return edgePairs[i].nearest.DistFrom2(arrangement.nodes[edgePairs[i].node].point);
    };
    std::sort(byNode.begin(), byNode.end(), [&](std::size_t i, std::size_t j) {
        const NearEdge &a = edgePairs[i], &b = edgePairs[j];
        if (a.node != b.node) return a.node < b.node;
        return distance(i) != distance(j) ? distance(i) < distance(j) : i < j;
    });
    std::vector<bool> used(edgePairs.size());
    unsigned last = Arrangement::NONE;
    for (const std::size_t i : byNode) {
        const NearEdge& near = edgePairs[i];
        const bool first = near.node != last;
        last = near.node;
        if (target[near.node] != near.node) continue; // where it moves to has edges of its own near it
        const bool loose = arrangement.around.Size(near.node) == 1 && !moved[near.node];
        if (loose && first) places[near.node] = near.nearest;
        used[i] = !loose || first;
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < edgePairs.size(); ++i) {
        if (used[i]) edgePairs[kept++] = edgePairs[i];
    }
    edgePairs.resize(kept);
}

/// Through which places an edge is led, in order: all that are near, or only the nearest if otherwise a part
/// would be as long as the edge.
std::vector<LDPoint> GapClosing::Stops(Nearby first, Nearby last) const {
    std::vector<LDPoint> stops;
    if (first == last) return stops;
    const Arrangement::Edge& edge = arrangement.edges[first->edge];
    const LDPoint &a = arrangement.nodes[edge.from].point, &b = arrangement.nodes[edge.to].point;
    for (auto near = first; near != last; ++near) stops.push_back(places[near->node]);
    std::sort(stops.begin(), stops.end(),
              [&](const LDPoint& p, const LDPoint& q) { return Along(a, b, p) < Along(a, b, q); });
    double longest = 0;
    for (std::size_t i = 1; i < stops.size(); ++i)
        longest = std::max(longest, stops[i].DistFrom2(stops[i - 1]));
    if (longest < a.DistFrom2(b)) return stops;
    const auto distance = [&](const NearEdge& near) { return near.nearest.DistFrom2(places[near.node]); };
    const auto nearest = std::min_element(
        first, last, [&](const NearEdge& p, const NearEdge& q) { return distance(p) < distance(q); });
    return {places[nearest->node]};
}

void GapClosing::Apply(std::vector<Stretch>& stretches, Ranges& labels, std::vector<Move>& moves) {
    ChooseTargets();
    MoveLooseEnds();
    for (std::size_t node = 0; node < places.size(); ++node) {
        const LDPoint& from = arrangement.nodes[node].point;
        if (from != places[node]) moves.push_back({from, places[node]});
    }
    stretches.clear();
    labels = Ranges();
    Nearby near = edgePairs.begin(); // by edge
    std::vector<LDPoint> stops;
    for (unsigned e = 0; e < arrangement.edges.size(); ++e) {
        const Arrangement::Edge& edge = arrangement.edges[e];
        const auto first = near;
        while (near != edgePairs.cend() && near->edge == e) ++near;
        stops = Stops(first, near);
        for (auto led = first; led != near; ++led) {
            const LDPoint& to = places[led->node];
            if (led->nearest != to && std::find(stops.begin(), stops.end(), to) != stops.end())
                moves.push_back({led->nearest, to});
        }
        stops.push_back(places[edge.to]);
        LDPoint from = places[edge.from];
        for (const LDPoint& to : stops) {
            if (to == from) continue;
            stretches.push_back({from, to});
            labels.values.insert(labels.values.end(), arrangement.labels.Begin(edge.label),
                                 arrangement.labels.End(edge.label));
            labels.EndRange();
            from = to;
        }
    }
}

std::unique_ptr<Arrangement> CloseGaps(std::vector<Stretch> stretches, Ranges labels, unsigned precision,
                                       std::vector<GapClosing::Move>& moves, bool& settled) {
    auto arrangement = std::make_unique<Arrangement>(std::move(stretches), std::move(labels));
    settled = true;
    if (precision >= FIRST_WITHOUT_TOLERANCE) return arrangement;
    for (int round = 0;; ++round) {
        GapClosing gaps(*arrangement, precision);
        settled = !gaps.Moves();
        if (settled || round == MOST_ROUNDS) return arrangement;
        std::vector<Stretch> moved;
        Ranges movedLabels;
        gaps.Apply(moved, movedLabels, moves);
        arrangement = std::make_unique<Arrangement>(std::move(moved), std::move(movedLabels));
    }
}

} // namespace ZoPrimitives
