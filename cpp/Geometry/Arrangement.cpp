#include "Geometry/Arrangement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

namespace ZoPrimitives {

namespace {

using Pair = std::pair<unsigned, unsigned>;

/// Joins numbers into sets, each known by its least number.
class Sets {
public:
    explicit Sets(std::size_t count) : parents(count) { std::iota(parents.begin(), parents.end(), 0u); }
    unsigned Find(unsigned i) {
        while (parents[i] != i) i = parents[i] = parents[parents[i]];
        return i;
    }
    void Join(unsigned a, unsigned b) {
        a = Find(a);
        b = Find(b);
        parents[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<unsigned> parents;
};

bool BoxesTouch(const Stretch& s, const Stretch& t) {
    return s.a.x <= t.b.x && t.a.x <= s.b.x && std::min(s.a.y, s.b.y) <= std::max(t.a.y, t.b.y) &&
           std::min(t.a.y, t.b.y) <= std::max(s.a.y, s.b.y);
}

/// False only if they cross elsewhere.
bool MayCrossIn(const StretchTree::Leaf& leaf, const Stretch& s, const Stretch& t) {
    const Crossing at = CrossingOf(s, t);
    if (!(at.denominator > 0)) return true;
    const double fraction = at.numerator / at.denominator;
    const LDPoint way = s.b - s.a;
    const double error = (at.numeratorError + at.denominatorError) / at.denominator + 1e-15;
    const double size = std::abs(way.x) + std::abs(way.y) + std::abs(s.a.x) + std::abs(s.a.y);
    return leaf.IsNear({s.a.x + way.x * fraction, s.a.y + way.y * fraction}, 2 * error * size);
}

} // namespace

/// Where stretches meet.
struct Arrangement::Meetings {
    std::vector<Pair> crossings;   // of two stretches, away from their ends; the lesser one first
    std::vector<Pair> touches;     // of a stretch, between its ends, with a node
    std::vector<bool> overlapping; // stretches that have more than a point in common with another

    void Add(const Arrangement& arrangement, const StretchTree::Leaf& leaf, unsigned i, unsigned j);
};

Arrangement::Arrangement(std::vector<Stretch> given, Ranges givenLabels)
    : stretches(std::move(given)), labels(std::move(givenLabels)) {
    std::vector<LDPoint> points;
    points.reserve(2 * stretches.size());
    for (Stretch& s : stretches) {
        s = StretchBetween(s.a, s.b);
        points.push_back(s.a);
        points.push_back(s.b);
    }
    std::vector<unsigned> order(points.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(),
              [&](unsigned a, unsigned b) { return LexicographicallyLess(points[a], points[b]); });
    ends.resize(points.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i == 0 || points[order[i]] != points[order[i - 1]]) nodes.push_back({points[order[i]]});
        ends[order[i]] = static_cast<unsigned>(nodes.size()) - 1;
    }
    forest.Build(stretches);
    Meetings meetings;
    FindMeetings(meetings);
    MakeNodesAndEdges(meetings);
    MergeOverlapping(meetings.overlapping);
    SortAround();
    TraceCycles();
    FindBridges();
}

Meeting Meeting::Of(const Stretch& first, const Stretch& second) {
    Meeting meeting;
    if (!BoxesTouch(first, second)) return meeting;
    const int sa = SideOf(first, second.a), sb = SideOf(first, second.b);
    if (sa * sb > 0) return meeting;
    const int fa = SideOf(second, first.a), fb = SideOf(second, first.b);
    if (fa * fb > 0) return meeting;
    meeting.crosses = sa != 0 && sb != 0 && fa != 0 && fb != 0;
    if (meeting.crosses) return meeting;
    meeting.firstOn[0] = fa == 0 && InBox(second, first.a);
    meeting.firstOn[1] = fb == 0 && InBox(second, first.b);
    meeting.secondOn[0] = sa == 0 && InBox(first, second.a);
    meeting.secondOn[1] = sb == 0 && InBox(first, second.b);
    meeting.overlaps = sa == 0 && sb == 0;
    return meeting;
}

/// Of those in a leaf, unless they meet elsewhere.
void Arrangement::Meetings::Add(const Arrangement& arrangement, const StretchTree::Leaf& leaf, unsigned i,
                                unsigned j) {
    const Stretch &s = arrangement.stretches[i], &t = arrangement.stretches[j];
    const Meeting meeting = Meeting::Of(s, t);
    if (meeting.crosses) {
        if (MayCrossIn(leaf, s, t)) crossings.emplace_back(std::min(i, j), std::max(i, j));
        return;
    }
    const auto touch = [&](unsigned stretch, unsigned other, unsigned end) {
        const unsigned node = arrangement.ends[2 * other + end];
        if (leaf.IsNear(arrangement.nodes[node].point, 0) && node != arrangement.ends[2 * stretch] &&
            node != arrangement.ends[2 * stretch + 1])
            touches.emplace_back(stretch, node);
    };
    for (unsigned end = 0; end < 2; ++end) {
        if (meeting.secondOn[end]) touch(i, j, end);
        if (meeting.firstOn[end]) touch(j, i, end);
    }
    if (meeting.overlaps) overlapping[i] = overlapping[j] = true;
}

void Arrangement::FindMeetings(Meetings& meetings) const {
    meetings.overlapping.resize(stretches.size());
    constexpr std::size_t MANY = 64;
    forest.Whole().ForEachLeaf([&](const StretchTree::Leaf& leaf) {
        std::vector<unsigned> some(leaf.begin(), leaf.end());
        const std::size_t rest = some.size() > MANY ? FindHub(some, leaf, meetings) : some.size();
        for (std::size_t i = 0; i < rest; ++i) {
            for (std::size_t j = i + 1; j < some.size(); ++j) meetings.Add(*this, leaf, some[i], some[j]);
        }
    });
    SortUnique(meetings.crossings);
    SortUnique(meetings.touches);
}

/// A node on a stretch.
struct Arrangement::Stop {
    unsigned node;
    unsigned other; // the stretch that crosses there; NONE where another one ends
    Crossing crossing;
};

/// -1, 0 or 1: their order along a stretch.
int Arrangement::CompareStops(const Stretch& s, const Stop& p, const Stop& q) const {
    if (p.other == NONE && q.other == NONE) {
        const LDPoint &a = nodes[p.node].point, &b = nodes[q.node].point;
        return LexicographicallyLess(a, b) ? -1 : LexicographicallyLess(b, a) ? 1 : 0;
    }
    if (p.other == NONE) // on the start's side of the line that crosses, it comes before
        return -SideOf(stretches[q.other], nodes[p.node].point) * SideOf(stretches[q.other], s.a);
    if (q.other == NONE)
        return SideOf(stretches[p.other], nodes[q.node].point) * SideOf(stretches[p.other], s.a);
    return CompareCrossings(s, stretches[p.other], p.crossing, stretches[q.other], q.crossing);
}

/// Where another stretch meets a stretch. False if it does not, or not in one point only.
bool Arrangement::FindStop(unsigned stretch, unsigned other, Stop& stop) const {
    const Stretch &s = stretches[stretch], &t = stretches[other];
    const Meeting meeting = Meeting::Of(s, t);
    if (meeting.overlaps) return false;
    stop = {NONE, NONE, {}};
    if (meeting.crosses)
        stop = {NONE, other, CrossingOf(s, t)};
    else if (meeting.firstOn[0] || meeting.firstOn[1])
        stop.node = ends[2 * stretch + (meeting.firstOn[0] ? 0 : 1)];
    else if (meeting.secondOn[0] || meeting.secondOn[1])
        stop.node = ends[2 * other + (meeting.secondOn[0] ? 0 : 1)];
    else
        return false;
    return true;
}

/// Finds the meetings among those of many stretches that pass through one point, if most do: each meets only
/// a few others there that lead from one to the next. They go to the end of `some`; the number of those
/// before them is returned.
std::size_t Arrangement::FindHub(std::vector<unsigned>& some, const StretchTree::Leaf& leaf,
                                 Meetings& meetings) const {
    for (const std::size_t trial : {0u, 1u, 2u, 3u}) {
        const unsigned spoke = some[trial * some.size() / 4];
        const Stretch& s = stretches[spoke];
        // The place on the spoke that most others have in common, if there is one.
        Stop hub{}, stop{};
        std::size_t votes = 0;
        for (const unsigned other : some) {
            if (!FindStop(spoke, other, stop)) continue;
            if (votes == 0) hub = stop;
            if (CompareStops(s, hub, stop) == 0)
                ++votes;
            else
                --votes;
        }
        if (votes == 0) continue;
        const auto passes = [&](unsigned other) {
            return other == spoke || (FindStop(spoke, other, stop) && CompareStops(s, hub, stop) == 0);
        };
        const auto first = std::partition(some.begin(), some.end(), [&](unsigned i) { return !passes(i); });
        if (2 * (some.end() - first) < some.end() - some.begin()) continue;
        const auto turn = [&](unsigned i, unsigned j) {
            return CrossSign(stretches[i].a, stretches[i].b, stretches[j].a, stretches[j].b);
        };
        std::sort(first, some.end(), [&](unsigned i, unsigned j) {
            const int sign = turn(i, j);
            return sign != 0 ? sign > 0 : i < j;
        });
        for (auto i = first; i != some.end();) {
            const auto after = std::find_if(i, some.end(), [&](unsigned j) { return turn(*i, j) != 0; });
            for (; i != after; ++i) {
                for (auto j = i + 1; j != after; ++j) meetings.Add(*this, leaf, *i, *j);
                meetings.Add(*this, leaf, *i, after == some.end() ? *first : *after);
            }
        }
        return static_cast<std::size_t>(first - some.begin());
    }
    return some.size();
}

void Arrangement::MakeNodesAndEdges(Meetings& meetings) {
    const std::size_t endNodes = nodes.size();
    std::vector<std::size_t> first(stretches.size() + 1);
    for (const auto& [i, j] : meetings.crossings) ++first[i + 1], ++first[j + 1];
    for (const auto& [stretch, node] : meetings.touches) ++first[stretch + 1];
    std::partial_sum(first.begin(), first.end(), first.begin());
    std::vector<Stop> stops(first.back());
    std::vector<std::size_t> free(first.begin(), first.end() - 1);
    const auto addCrossing = [&](unsigned stretch, unsigned other, unsigned node) {
        stops[free[stretch]++] = {node, other, CrossingOf(stretches[stretch], stretches[other])};
    };
    for (std::size_t k = 0; k < meetings.crossings.size(); ++k) {
        const auto [i, j] = meetings.crossings[k];
        const auto node = static_cast<unsigned>(endNodes + k);
        addCrossing(i, j, node);
        addCrossing(j, i, node);
    }
    for (const auto& [stretch, node] : meetings.touches) stops[free[stretch]++] = {node, NONE, {}};

    Sets same(endNodes + meetings.crossings.size());
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        const Stretch& s = stretches[i];
        const auto compare = [&](const Stop& p, const Stop& q) { return CompareStops(s, p, q); };
        const auto begin = stops.begin() + static_cast<std::ptrdiff_t>(first[i]);
        const auto end = stops.begin() + static_cast<std::ptrdiff_t>(first[i + 1]);
        std::sort(begin, end, [&](const Stop& p, const Stop& q) { return compare(p, q) < 0; });
        for (auto stop = begin; stop != end && stop + 1 != end; ++stop) {
            if (compare(*stop, *(stop + 1)) == 0) same.Join(stop->node, (stop + 1)->node);
        }
    }
    // Joined sets are known by the node of an end, if there is one.
    std::vector<unsigned> number(endNodes + meetings.crossings.size());
    std::iota(number.begin(), number.begin() + static_cast<std::ptrdiff_t>(endNodes), 0u);
    for (std::size_t k = 0; k < meetings.crossings.size(); ++k) {
        const unsigned node = static_cast<unsigned>(endNodes + k);
        const unsigned known = same.Find(node);
        if (known != node) {
            number[node] = number[known];
            continue;
        }
        const auto [i, j] = meetings.crossings[k];
        number[node] = static_cast<unsigned>(nodes.size());
        nodes.push_back({CrossingPoint(stretches[i], stretches[j]), i, j});
    }
    edges.reserve(stretches.size() + stops.size());
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        unsigned from = ends[2 * i];
        const auto addEdge = [&](unsigned to) {
            if (to == from) return;
            along.values.push_back(static_cast<unsigned>(edges.size()));
            edges.push_back({from, to, static_cast<unsigned>(i), NONE});
            from = to;
        };
        for (std::size_t stop = first[i]; stop < first[i + 1]; ++stop) addEdge(number[stops[stop].node]);
        addEdge(ends[2 * i + 1]);
        along.EndRange();
    }
}

/// Stretches that overlap have edges in common.
void Arrangement::MergeOverlapping(const std::vector<bool>& overlapping) {
    std::vector<unsigned> several;
    for (unsigned e = 0; e < edges.size(); ++e) {
        if (overlapping[edges[e].stretch]) several.push_back(e);
    }
    const auto between = [&](unsigned e) { return Pair(edges[e].from, edges[e].to); };
    std::sort(several.begin(), several.end(), [&](unsigned d, unsigned e) {
        return between(d) != between(e) ? between(d) < between(e) : d < e;
    });
    std::vector<unsigned> keeper(edges.size());
    std::iota(keeper.begin(), keeper.end(), 0u);
    for (std::size_t i = 0; i < several.size();) {
        std::size_t end = i + 1;
        while (end < several.size() && between(several[end]) == between(several[i])) ++end;
        if (end - i > 1) {
            Shared all;
            for (std::size_t k = i; k < end; ++k) {
                keeper[several[k]] = several[i];
                const unsigned stretch = edges[several[k]].stretch;
                all.stretches.push_back(stretch);
                all.labels.insert(all.labels.end(), labels.Begin(stretch), labels.End(stretch));
            }
            std::sort(all.labels.begin(), all.labels.end());
            edges[several[i]].shared = static_cast<unsigned>(shared.size());
            shared.push_back(std::move(all));
        }
        i = end;
    }
    std::vector<unsigned> number(edges.size());
    unsigned kept = 0;
    for (unsigned e = 0; e < edges.size(); ++e) {
        if (keeper[e] != e) continue;
        number[e] = kept;
        edges[kept++] = edges[e];
    }
    edges.resize(kept);
    for (unsigned& e : along.values) e = number[keeper[e]];
}

void Arrangement::SortAround() {
    std::vector<std::size_t> first(nodes.size() + 1);
    for (const Edge& edge : edges) ++first[edge.from + 1], ++first[edge.to + 1];
    std::partial_sum(first.begin(), first.end(), first.begin());
    around.starts = first;
    around.values.resize(2 * edges.size());
    // From a node, edges of greater nodes come first: they point to the right, or straight up.
    for (unsigned e = 0; e < edges.size(); ++e) around.values[first[edges[e].from]++] = 2 * e;
    for (unsigned e = 0; e < edges.size(); ++e) around.values[first[edges[e].to]++] = 2 * e + 1;
    next.resize(2 * edges.size());
    for (std::size_t node = 0; node < nodes.size(); ++node) {
        const auto begin = around.values.begin() + static_cast<std::ptrdiff_t>(around.starts[node]);
        const auto end = around.values.begin() + static_cast<std::ptrdiff_t>(around.starts[node + 1]);
        const auto count = static_cast<std::size_t>(end - begin);
        if (count > 2) {
            std::sort(begin, end, [&](unsigned g, unsigned h) {
                return g % 2 != h % 2 ? g % 2 < h % 2 : Turn(g, h) > 0;
            });
        } else if (count == 2 && *begin % 2 == *(begin + 1) % 2 && Turn(*begin, *(begin + 1)) < 0) {
            std::swap(*begin, *(begin + 1));
        }
        for (std::size_t k = 0; k < count; ++k)
            next[begin[static_cast<std::ptrdiff_t>(k)] ^ 1] =
                begin[static_cast<std::ptrdiff_t>((k + count - 1) % count)];
    }
}

int Arrangement::Turn(unsigned half, unsigned following) const {
    const Stretch& s = stretches[edges[half / 2].stretch];
    const Stretch& t = stretches[edges[following / 2].stretch];
    const int sign = CrossSign(s.a, s.b, t.a, t.b);
    return half % 2 == following % 2 ? sign : -sign;
}

int Arrangement::CompareNodes(unsigned a, unsigned b) const {
    if (a == b) return 0;
    const Node &p = nodes[a], &q = nodes[b];
    if (p.point.x != q.point.x) return p.point.x < q.point.x ? -1 : 1; // rounding keeps the order
    const auto through = [&](const Node& node) -> std::pair<Stretch, Stretch> {
        if (node.one != NONE) return {stretches[node.one], stretches[node.other]};
        const double x = node.point.x, y = node.point.y;
        const auto beside = [](double value) { return std::abs(value) < 1 ? value + 1 : value / 2; };
        return {{node.point, {beside(x), y}}, {node.point, {x, beside(y)}}};
    };
    if (p.one == NONE && q.one == NONE) return p.point.y < q.point.y ? -1 : 1;
    const auto [a1, a2] = through(p);
    const auto [b1, b2] = through(q);
    return CompareCrossingPoints(a1, a2, b1, b2);
}

void Arrangement::TraceCycles() {
    cycleOf.assign(next.size(), NONE);
    for (unsigned half = 0; half < next.size(); ++half) {
        if (cycleOf[half] != NONE) continue;
        const auto cycle = static_cast<unsigned>(cycles.size());
        cycles.push_back({half, NONE, NONE});
        for (unsigned h = half; cycleOf[h] == NONE; h = next[h]) cycleOf[h] = cycle;
    }

    // The part of the drawing that a node belongs to, and its least node: the end of a stretch. Ends are
    // sorted.
    Sets parts(nodes.size());
    for (const Edge& edge : edges) parts.Join(edge.from, edge.to);
    std::vector<unsigned> leasts;
    for (unsigned node = 0; node < nodes.size(); ++node) {
        if (parts.Find(node) == node) leasts.push_back(node);
    }
    components = leasts.size();
    // What lies straight to the left of it is outside this part.
    for (const unsigned least : leasts) cycles[cycleOf[LeftOf(least)]].least = least;

    faces.push_back({NONE, {}});
    for (Cycle& cycle : cycles) {
        if (cycle.least != NONE) continue;
        cycle.face = static_cast<unsigned>(faces.size());
        faces.push_back({cycle.half, {}});
    }
    // A part that lies below another's least node, or around it, has a lesser one: its face is known.
    for (const unsigned least : leasts) {
        const unsigned half = LeftOf(least), face = FaceLeftOf(HalfBelow(nodes[least].point));
        cycles[cycleOf[half]].face = face;
        faces[face].holes.push_back(half);
    }
    faceOf.resize(next.size());
    for (std::size_t h = 0; h < next.size(); ++h) faceOf[h] = cycles[cycleOf[h]].face;
}

/// The half-edge with the face just to the left of a point, on which no edge lies there; NONE for the outer
/// face.
unsigned Arrangement::HalfBelow(const LDPoint& p) const {
    const std::size_t below = forest.Below(p);
    return below == StretchTree::NONE ? NONE : 2 * EdgeAt(below, p);
}

/// The face to the left of a half-edge while faces are being found.
unsigned Arrangement::FaceLeftOf(unsigned half) const {
    return half == NONE ? 0 : cycles[cycleOf[half]].face;
}

/// -1, 0 or 1: where a node of a stretch lies beside the upright line at x.
int Arrangement::CompareX(unsigned node, std::size_t stretch, double x) const {
    const Node& at = nodes[node];
    if (at.point.x != x) return at.point.x < x ? -1 : 1; // rounding keeps the order
    if (at.one == NONE) return 0;
    const double y = at.point.y;
    const Stretch upright{{x, y}, {x, std::abs(y) < 1 ? y + 1 : y / 2}};
    return CompareCrossings(stretches[stretch], Crosser(at, stretch), upright);
}

/// -1, 0 or 1: where a node of a stretch lies beside a point on it. Along a stretch, an upright one too, the
/// order is that of the nodes.
int Arrangement::CompareWith(std::size_t stretch, unsigned node, const LDPoint& p) const {
    const Node& at = nodes[node];
    if (at.one == NONE) return at.point == p ? 0 : LexicographicallyLess(at.point, p) ? -1 : 1;
    const Stretch& crosser = Crosser(at, stretch);
    return SideOf(crosser, p) * SideOf(crosser, stretches[stretch].a);
}

/// -1, 0 or 1: which of two nodes of a stretch comes first.
int Arrangement::CompareAlong(unsigned stretch, unsigned node, unsigned other) const {
    if (node == other) return 0;
    const Node &p = nodes[node], &q = nodes[other];
    if (q.one == NONE) return CompareWith(stretch, node, q.point);
    if (p.one == NONE) return -CompareWith(stretch, other, p.point);
    return CompareCrossings(stretches[stretch], Crosser(p, stretch), Crosser(q, stretch));
}

/// A stretch that crosses another one at a node of it.
const Stretch& Arrangement::Crosser(const Node& node, std::size_t stretch) const {
    const Stretch &s = stretches[stretch], &one = stretches[node.one];
    return CrossSign(s.a, s.b, one.a, one.b) != 0 ? one : stretches[node.other];
}

/// The edge of a stretch just to the left of a point above it.
unsigned Arrangement::EdgeAt(std::size_t stretch, const LDPoint& p) const {
    const unsigned* const found =
        std::partition_point(along.Begin(stretch), along.End(stretch) - 1,
                             [&](unsigned e) { return CompareX(edges[e].to, stretch, p.x) < 0; });
    return *found;
}

void Arrangement::FindBridges() {
    bridge.resize(edges.size());
    dangle.resize(edges.size());
    for (std::size_t e = 0; e < edges.size(); ++e) bridge[e] = cycleOf[2 * e] == cycleOf[2 * e + 1];
    std::vector<std::size_t> degree(nodes.size());
    std::vector<unsigned> loose;
    for (unsigned node = 0; node < nodes.size(); ++node) {
        degree[node] = around.Size(node);
        if (degree[node] == 1) loose.push_back(node);
    }
    Prune(loose, [&](unsigned node) -> std::size_t& { return degree[node]; });
}

Arrangement::Place Arrangement::Locate(const LDPoint& p) const {
    Place place;
    std::size_t on = StretchTree::NONE;
    forest.ForEachNear(p, 0, [&](unsigned i) {
        if (on == StretchTree::NONE && InBox(stretches[i], p) && SideOf(stretches[i], p) == 0) on = i;
    });
    if (on == StretchTree::NONE) {
        const unsigned half = HalfBelow(p);
        place.face = half == NONE ? 0 : faceOf[half];
        return place;
    }
    const auto before = [&](unsigned node) { return CompareWith(on, node, p); };
    const unsigned* const found = std::partition_point(along.Begin(on), along.End(on) - 1,
                                                       [&](unsigned e) { return before(edges[e].to) < 0; });
    if (before(edges[*found].from) == 0)
        place.node = edges[*found].from;
    else if (before(edges[*found].to) == 0)
        place.node = edges[*found].to;
    else
        place.edge = *found;
    return place;
}

} // namespace ZoPrimitives
