#include "ZoPrimitives/TDrawingGraph.h"

#include "Geometry/DrawnThings.h"
#include "Geometry/GapClosing.h"
#include "Geometry/Pieces.h"
#include "Geometry/Rings.h"
#include "Values/FullTurn.h"
#include "Values/NumberFields.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/TPolyline2D.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TDrawingGraph";
constexpr unsigned MOST_PRECISION = 22; // that Math2 takes

// Of the numbers of a piece, in a text.
constexpr int PIECE_CODES[] = {10, 20, 11, 21, 42};
static_assert(std::size(PIECE_CODES) == DrawnThings::PIECE_NUMBERS);

Point2D PointOf(const LDPoint& p) { return {p.x, p.y}; }

} // namespace

class ZO_HIDDEN TDrawingGraph::Result {
public:
    Result(const DrawnThings& added, unsigned decimals) {
        std::vector<Stretch> stretches;
        Ranges labels;
        added.Collect(stretches, labels);
        arrangement = CloseGaps(std::move(stretches), std::move(labels), decimals, moves, settled);
    }

    /// Of the region that a closed walk goes around, counted from `origin`.
    double SignedArea(unsigned half, const LDPoint& origin) const {
        double area = 0;
        unsigned h = half;
        do {
            const LDPoint a = arrangement->nodes[arrangement->Origin(h)].point - origin;
            const LDPoint b = arrangement->nodes[arrangement->Target(h)].point - origin;
            area += (a.x * b.y - b.x * a.y) / 2;
            h = arrangement->next[h];
        } while (h != half);
        return area;
    }
    std::vector<unsigned> Borders(unsigned face) const {
        const Arrangement::Face& found = arrangement->faces[face];
        std::vector<unsigned> halves;
        if (found.half != Arrangement::NONE) halves.push_back(found.half);
        halves.insert(halves.end(), found.holes.begin(), found.holes.end());
        return halves;
    }
    /// Without repetition.
    std::vector<unsigned> ThingsOf(unsigned edge) const {
        const unsigned label = arrangement->edges[edge].label;
        std::vector<unsigned> numbers(arrangement->labels.Begin(label), arrangement->labels.End(label));
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
        return numbers;
    }
    TRegion Region(unsigned face) const;

    std::unique_ptr<Arrangement> arrangement;
    std::vector<GapClosing::Move> moves;
    bool settled = true;
};

TRegion TDrawingGraph::Result::Region(unsigned face) const {
    TRegion region;
    std::vector<unsigned> halves;
    for (const unsigned border : Borders(face)) {
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
            for (const unsigned half : ring)
                contour.Add(PointOf(arrangement->nodes[arrangement->Origin(half)].point));
            if (IsOuterRing(*arrangement, ring))
                region.AddContour(contour);
            else
                region.AddHole(contour);
        });
    return region;
}

ZO_POINT_BODY(TDrawingGraph)

TZoClass* TDrawingGraph::Register(TZoMetaData* schema) {
    const auto addPrecision = [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
        return owner->AddFieldUnsigned(
            "precision",
            [](ZoStreamableBase* object, TZoClassField*, unsigned value) {
                ZoSelf<TDrawingGraph>(object).Incoming().precision = value;
            },
            [](ZoStreamableBase* object, TZoClassField*) { return ZoSelf<TDrawingGraph>(object).precision; });
    };
    const auto addChordError = [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
        return owner->AddFieldDouble(
            "chordError",
            [](ZoStreamableBase* object, TZoClassField*, double value) {
                ZoSelf<TDrawingGraph>(object).Incoming().things->ChordError(value);
            },
            [](ZoStreamableBase* object, TZoClassField*) {
                return ZoSelf<TDrawingGraph>(object).ChordError();
            });
    };
    const auto addPieces = [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
        const auto add = [](ZoStreamableBase* object, TZoClassField*, double value) {
            ZoSelf<TDrawingGraph>(object).Incoming().things->AddNumber(value);
        };
        const auto elementAt = [](ZoStreamableBase* object, TZoClassField*, int index) {
            return ZoSelf<TDrawingGraph>(object).things->Number(static_cast<std::size_t>(index) - 1);
        };
        const auto count = [](ZoStreamableBase* object, TZoClassField*) -> unsigned long long {
            return ZoSelf<TDrawingGraph>(object).things->NNumbers();
        };
        const auto create = [](ZoStreamableBase* object, int, int, int) {
            ZoSelf<TDrawingGraph>(object).Incoming().things->ClearNumbers();
        };
        return owner->AddFieldListDouble("pieces", {add, elementAt, count, create, nullptr, nullptr});
    };
    const auto addThings = [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
        const auto add = [](ZoStreamableBase* object, TZoClassField*, int value) {
            ZoSelf<TDrawingGraph>(object).Incoming().things->AddThing(value);
        };
        const auto elementAt = [](ZoStreamableBase* object, TZoClassField*, int index) {
            return ZoSelf<TDrawingGraph>(object).things->NPieces(static_cast<std::size_t>(index) - 1);
        };
        const auto count = [](ZoStreamableBase* object, TZoClassField*) -> unsigned long long {
            return ZoSelf<TDrawingGraph>(object).things->NThings();
        };
        const auto create = [](ZoStreamableBase* object, int, int, int) {
            ZoSelf<TDrawingGraph>(object).Incoming().things->ClearThings();
        };
        return owner->AddFieldListInt("things", {add, elementAt, count, create, nullptr, nullptr});
    };
    return RegisterPoint<TDrawingGraph>(schema, "TDrawingGraph", "NULL",
                                        {{NumberFieldClass<ftUnsigned>, addPrecision},
                                         {NumberFieldClass<ftDouble>, addChordError},
                                         {NumberFieldClass<ftListDouble>, addPieces},
                                         {NumberFieldClass<ftListInt>, addThings}});
}

TDrawingGraph::TDrawingGraph(unsigned newPrecision, double chordError)
    : precision(newPrecision), things(std::make_unique<DrawnThings>(chordError)) {
    Equal(0, 0, precision); // asserts the precision
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
}

TDrawingGraph::TDrawingGraph(StreamableInit) : TDrawingGraph() {}

TDrawingGraph::TDrawingGraph(const TDrawingGraph& other)
    : ZoObjectStreamable(other), precision(other.precision),
      things(std::make_unique<DrawnThings>(*other.things)) {}

TDrawingGraph& TDrawingGraph::operator=(const TDrawingGraph& other) {
    things = std::make_unique<DrawnThings>(*other.things);
    precision = other.precision;
    result.reset();
    ZoObjectStreamable::operator=(other);
    return *this;
}

double TDrawingGraph::ChordError() const { return things->ChordError(); }

bool TDrawingGraph::operator==(const TDrawingGraph& other) const {
    return precision == other.precision && *things == *other.things;
}
bool TDrawingGraph::operator==(const ZoObject& other) const {
    const auto* graph = dynamic_cast<const TDrawingGraph*>(&other);
    return graph != nullptr && *this == *graph;
}

unsigned TDrawingGraph::Add(const TPath2D& path) {
    things->Check(path);
    result.reset();
    const unsigned thing = things->Begin();
    things->Add(path);
    return thing;
}

unsigned TDrawingGraph::Add(const TRegion& region) {
    std::vector<TContour> contours;
    for (unsigned long long i = 1; i <= region.NContours(); ++i) contours.push_back(region.Contour(i));
    for (const TContour& contour : contours) things->Check(contour);
    result.reset();
    const unsigned thing = things->Begin();
    for (const TContour& contour : contours) things->Add(contour);
    return thing;
}

bool TDrawingGraph::Remove(unsigned thing) {
    if (!things->Remove(thing)) return false;
    result.reset();
    return true;
}

void TDrawingGraph::RemoveAll() {
    things = std::make_unique<DrawnThings>(ChordError());
    result.reset();
}

const TDrawingGraph::Result& TDrawingGraph::Found() const {
    if (result == nullptr) result = std::make_unique<Result>(*things, precision);
    return *result;
}

unsigned TDrawingGraph::NNodes() const { return static_cast<unsigned>(Found().arrangement->nodes.size()); }
unsigned TDrawingGraph::NEdges() const { return static_cast<unsigned>(Found().arrangement->edges.size()); }
unsigned TDrawingGraph::NFaces() const {
    return static_cast<unsigned>(Found().arrangement->faces.size()) - 1;
}
unsigned TDrawingGraph::NComponents() const { return static_cast<unsigned>(Found().arrangement->components); }

TPointNode TDrawingGraph::Node(unsigned number) const {
    ZO_ASSERT(number - 1 < NNodes(), "number >= 1 && number <= NNodes()", SOURCE);
    return {this, number};
}

TLineEdge TDrawingGraph::Edge(unsigned number) const {
    ZO_ASSERT(number - 1 < NEdges(), "number >= 1 && number <= NEdges()", SOURCE);
    return {this, number};
}

TGraphFace TDrawingGraph::Face(unsigned number) const {
    ZO_ASSERT(number <= NFaces(), "number <= NFaces()", SOURCE);
    return {this, number};
}

bool TDrawingGraph::IsConsistent() const {
    const Arrangement& a = *Found().arrangement;
    // Each part of the drawing has a closed walk around it, which is a hole of a face.
    return a.nodes.size() + a.faces.size() == a.edges.size() + 1 + a.components &&
           a.cycles == a.faces.size() - 1 + a.components;
}

unsigned TDrawingGraph::NMoves() const { return static_cast<unsigned>(Found().moves.size()); }

TGraphMove TDrawingGraph::Move(unsigned index) const {
    ZO_ASSERT(index - 1 < NMoves(), "index >= 1 && index <= NMoves()", SOURCE);
    const GapClosing::Move& move = Found().moves[index - 1];
    return {PointOf(move.from), PointOf(move.to)};
}

bool TDrawingGraph::IsSettled() const { return Found().settled; }

TDrawingGraph& TDrawingGraph::Incoming() {
    if (incoming == nullptr) incoming = std::make_unique<TDrawingGraph>();
    return *incoming;
}

bool TDrawingGraph::TakeIncoming() {
    const std::unique_ptr<TDrawingGraph> read = std::move(incoming);
    if (read == nullptr) return true;
    if (read->precision > MOST_PRECISION || !(read->ChordError() > 0) || !read->things->Complete())
        return false;
    precision = read->precision;
    things = std::move(read->things);
    result.reset();
    return true;
}

bool TDrawingGraph::OnRead(TBinInStream* stream, bool substituted) {
    return ZoObjectStreamable::OnRead(stream, substituted) && TakeIncoming();
}

void TDrawingGraph::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << 70 << precision << 40 << ChordError();
    things->NNumbers(); // forgets what was removed
    std::size_t next = 0;
    for (std::size_t thing = 0; thing < things->NThings(); ++thing) {
        const int count = things->NPieces(thing);
        streamer << 71 << (count == DrawnThings::REMOVED ? 2 : 1);
        for (int i = 0; i < count; ++i)
            for (const int code : PIECE_CODES) streamer << code << things->Number(next++);
    }
}

void TDrawingGraph::Read(InputStreamer& streamer) {
    incoming = std::make_unique<TDrawingGraph>();
    try {
        ZoObjectStreamable::Read(streamer);
    } catch (...) {
        incoming.reset();
        throw;
    }
    if (!TakeIncoming()) throw XInvalidObject();
}

bool TDrawingGraph::ReadData(int code, InputStreamer& streamer) {
    DrawnThings& read = *Incoming().things;
    double value = 0;
    if (code == PIECE_CODES[read.NPending()]) { // each in its turn
        if (read.NPending() == 0 && !read.AddPiece()) throw XInvalidObject();
        streamer >> value;
        read.AddNumber(value);
    } else if (std::find(std::begin(PIECE_CODES), std::end(PIECE_CODES), code) != std::end(PIECE_CODES)) {
        throw XInvalidObject(); // a number is missing
    } else if (code == 71) {
        int kind = 0;
        streamer >> kind;
        if (read.NPending() != 0 || (kind != 1 && kind != 2)) throw XInvalidObject();
        read.AddThing(kind == 1 ? 0 : DrawnThings::REMOVED);
    } else if (code == 70) {
        streamer >> incoming->precision;
    } else if (code == 40) {
        streamer >> value;
        read.ChordError(value);
    } else {
        return ZoObjectStreamable::ReadData(code, streamer);
    }
    return true;
}

TGraphPlace TDrawingGraph::Locate(const Point2D& point) const {
    const LDPoint p(point.X(), point.Y());
    ZO_ASSERT(IsFinite(p), "finite coordinates", SOURCE);
    const Arrangement::Place place = Found().arrangement->Locate(p);
    const auto number = [](unsigned index) { return index == Arrangement::NONE ? 0 : index + 1; };
    return {number(place.node), number(place.edge), place.face == Arrangement::NONE ? 0 : place.face};
}

Point2D TPointNode::Point() const { return PointOf(graph->Found().arrangement->nodes[number - 1].point); }

unsigned TPointNode::NEdges() const {
    return static_cast<unsigned>(graph->Found().arrangement->around.Size(number - 1));
}

TSortedEdge TPointNode::Edge(unsigned index) const {
    ZO_ASSERT(index - 1 < NEdges(), "index >= 1 && index <= NEdges()", SOURCE);
    return {graph, graph->Found().arrangement->around.Begin(number - 1)[index - 1]};
}

TPointNode TLineEdge::Start() const {
    return {graph, graph->Found().arrangement->edges[number - 1].from + 1};
}
TPointNode TLineEdge::End() const { return {graph, graph->Found().arrangement->edges[number - 1].to + 1}; }
TSegment2D TLineEdge::Segment() const { return {Start().Point(), End().Point()}; }
unsigned TLineEdge::LeftFace() const { return graph->Found().arrangement->faceOf[2 * (number - 1)]; }
unsigned TLineEdge::RightFace() const { return graph->Found().arrangement->faceOf[2 * (number - 1) + 1]; }

unsigned TLineEdge::NThings() const {
    return static_cast<unsigned>(graph->Found().ThingsOf(number - 1).size());
}

unsigned TLineEdge::Thing(unsigned index) const {
    const std::vector<unsigned> things = graph->Found().ThingsOf(number - 1);
    ZO_ASSERT(index - 1 < things.size(), "index >= 1 && index <= NThings()", SOURCE);
    return things[index - 1];
}

bool TLineEdge::IsBridge() const { return graph->Found().arrangement->bridge[number - 1]; }
bool TLineEdge::IsDangle() const { return graph->Found().arrangement->dangle[number - 1]; }

TPointNode TSortedEdge::From() const { return {graph, graph->Found().arrangement->Origin(half) + 1}; }
TPointNode TSortedEdge::To() const { return {graph, graph->Found().arrangement->Target(half) + 1}; }
TLineEdge TSortedEdge::Edge() const { return {graph, half / 2 + 1}; }

double TSortedEdge::Angle() const {
    const Arrangement& a = *graph->Found().arrangement;
    const Stretch& s = a.stretches[a.edges[half / 2].stretch];
    const double forward = std::atan2(s.b.y / 2 - s.a.y / 2, s.b.x / 2 - s.a.x / 2);
    return half % 2 == 0 ? forward : forward + FULL_TURN / 2;
}

unsigned TSortedEdge::Face() const { return graph->Found().arrangement->faceOf[half]; }
TSortedEdge TSortedEdge::Opposite() const { return {graph, half ^ 1}; }

TSortedEdge TSortedEdge::NextAroundNode() const {
    const Arrangement& a = *graph->Found().arrangement;
    const unsigned node = a.Origin(half);
    const unsigned* const found = std::find(a.around.Begin(node), a.around.End(node), half) + 1;
    return {graph, found == a.around.End(node) ? *a.around.Begin(node) : *found};
}

TSortedEdge TSortedEdge::NextAroundFace() const { return {graph, graph->Found().arrangement->next[half]}; }

double TGraphFace::Area() const {
    if (number == 0) return 0;
    const TDrawingGraph::Result& found = graph->Found();
    const std::vector<unsigned> borders = found.Borders(number);
    const LDPoint origin = found.arrangement->nodes[found.arrangement->Origin(borders[0])].point;
    double area = 0;
    for (const unsigned border : borders) area += found.SignedArea(border, origin);
    return area;
}

TRegion TGraphFace::Region() const { return graph->Found().Region(number); }

unsigned TGraphFace::NBorders() const { return static_cast<unsigned>(graph->Found().Borders(number).size()); }

TSortedEdge TGraphFace::Border(unsigned index) const {
    ZO_ASSERT(index - 1 < NBorders(), "index >= 1 && index <= NBorders()", SOURCE);
    return {graph, graph->Found().Borders(number)[index - 1]};
}

} // namespace ZoPrimitives
