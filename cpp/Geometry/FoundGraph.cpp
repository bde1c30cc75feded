#include "Geometry/FoundGraph.h"

#include "Geometry/Rings.h"
#include "ZoPrimitives/TPolyline2D.h"

#include <algorithm>
#include <utility>

namespace ZoPrimitives {

namespace {

ClosedDrawing Closed(const DrawnThings& things, unsigned precision) {
    std::vector<Stretch> stretches;
    Ranges labels;
    things.Collect(stretches, labels);
    return {std::move(stretches), std::move(labels), precision};
}

} // namespace

FoundGraph::FoundGraph(const DrawnThings& things, unsigned precision) : drawing(Closed(things, precision)) {
    NumberAll();
}

void FoundGraph::NumberAll() {
    arrangement = &drawing.Result();
    nodes.Reset(arrangement->nodes.size());
    edges.Reset(arrangement->edges.size());
    faces.Reset(arrangement->faces.size() - 1);
    for (const unsigned node : arrangement->gone.nodes) nodes.Set(node, false);
    for (const unsigned edge : arrangement->gone.edges) edges.Set(edge, false);
    for (const unsigned face : arrangement->gone.faces) faces.Set(face - 1, false);
}

const std::vector<GapClosing::Move>& FoundGraph::Moves() const {
    if (!moves) moves = drawing.Moves();
    return *moves;
}

void FoundGraph::WillChange(unsigned thing, const std::vector<Stretch>& removed,
                            const std::vector<Stretch>& added) {
    if (!removed.empty()) {
        const auto kept =
            std::remove_if(coming.begin(), coming.end(),
                           [&](const ClosedDrawing::Labelled& one) { return one.label == thing; });
        if (kept != coming.end()) { // it has not come yet
            coming.erase(kept, coming.end());
            return;
        }
    }
    for (const Stretch& stretch : removed) going.push_back({stretch, thing});
    for (const Stretch& stretch : added) coming.push_back({stretch, thing});
}

bool FoundGraph::Change() {
    if (isChanging) return false;
    if (going.empty() && coming.empty()) return true;
    constexpr std::size_t FEW = 16;
    if (going.size() + coming.size() > drawing.Size() / 32 + FEW) return false;
    isChanging = true;
    moves.reset();
    const ClosedDrawing::Changes changes =
        drawing.Change(std::exchange(going, {}), std::exchange(coming, {}));
    if (changes.all) {
        NumberAll();
    } else {
        for (const unsigned node : changes.nodes) nodes.Set(node, arrangement->around.Size(node) != 0);
        for (const unsigned edge : changes.edges)
            edges.Set(edge, arrangement->edges[edge].from != Arrangement::NONE);
        for (const unsigned face : changes.faces) {
            if (face != 0) faces.Set(face - 1, arrangement->faces[face].half != Arrangement::NONE);
        }
    }
    isChanging = false;
    return true;
}

std::vector<unsigned> FoundGraph::Borders(unsigned number) const {
    const Arrangement::Face& face = FaceAt(number);
    std::vector<unsigned> halves;
    if (face.half != Arrangement::NONE) halves.push_back(face.half);
    halves.insert(halves.end(), face.holes.begin(), face.holes.end());
    return halves;
}

double FoundGraph::Area(unsigned number) const {
    const std::vector<unsigned> borders = Borders(number);
    const LDPoint origin = arrangement->nodes[arrangement->Origin(borders[0])].point;
    double area = 0;
    for (const unsigned border : borders) {
        unsigned half = border;
        do {
            const LDPoint a = arrangement->nodes[arrangement->Origin(half)].point - origin;
            const LDPoint b = arrangement->nodes[arrangement->Target(half)].point - origin;
            area += (a.x * b.y - b.x * a.y) / 2;
            half = arrangement->next[half];
        } while (half != border);
    }
    return area;
}

std::vector<unsigned> FoundGraph::ThingsOf(unsigned number) const {
    const Numbers labels = arrangement->LabelsOf(edges.IndexOf(number));
    std::vector<unsigned> numbers(labels.begin(), labels.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

TRegion FoundGraph::Region(unsigned number) const {
    TRegion region;
    std::vector<unsigned> halves;
    for (const unsigned border : Borders(number)) {
        unsigned h = border;
        do {
            if (!arrangement->bridge[h / 2]) halves.push_back(h);
            h = arrangement->next[h];
        } while (h != border);
    }
    std::sort(halves.begin(), halves.end());
    ForEachRing(
        *arrangement, halves, [&](unsigned half) { return !arrangement->bridge[half / 2]; },
        [&](const std::vector<unsigned>& ring) {
            TContour contour;
            contour.Reserve(ring.size());
            for (const unsigned half : ring) {
                const LDPoint& p = arrangement->nodes[arrangement->Origin(half)].point;
                contour.Add({p.x, p.y});
            }
            if (IsOuterRing(*arrangement, ring))
                region.AddContour(contour);
            else
                region.AddHole(contour);
        });
    return region;
}

} // namespace ZoPrimitives
