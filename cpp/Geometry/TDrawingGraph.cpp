#include "ZoPrimitives/TDrawingGraph.h"

#include "Geometry/DrawnThings.h"
#include "Geometry/FoundGraph.h"
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
#include <new>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TDrawingGraph";
constexpr const char* FEW_CHORDS = "no more than 2^24 chords of arcs";
constexpr unsigned MOST_PRECISION = 22; // that Math2 takes

// Of the numbers of a piece, in a text.
constexpr int PIECE_CODES[] = {10, 20, 11, 21, 42};
static_assert(std::size(PIECE_CODES) == DrawnThings::PIECE_NUMBERS);

Point2D PointOf(const LDPoint& p) { return {p.x, p.y}; }

} // namespace

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
    ZO_ASSERT(things->HasRoomFor(things->Check(path)), FEW_CHORDS, SOURCE);
    const unsigned thing = things->Begin();
    things->Add(path);
    if (result != nullptr) Change(thing, {}, things->StretchesOf(thing));
    return thing;
}

unsigned TDrawingGraph::Add(const TRegion& region) {
    std::vector<TContour> contours;
    for (unsigned long long i = 1; i <= region.NContours(); ++i) contours.push_back(region.Contour(i));
    std::size_t chords = 0;
    for (const TContour& contour : contours) chords += things->Check(contour);
    ZO_ASSERT(things->HasRoomFor(chords), FEW_CHORDS, SOURCE);
    const unsigned thing = things->Begin();
    for (const TContour& contour : contours) things->Add(contour);
    if (result != nullptr) Change(thing, {}, things->StretchesOf(thing));
    return thing;
}

bool TDrawingGraph::Remove(unsigned thing) {
    std::vector<Stretch> stretches;
    if (result != nullptr) stretches = things->StretchesOf(thing);
    if (!things->Remove(thing)) return false;
    if (result != nullptr) Change(thing, stretches, {});
    return true;
}

void TDrawingGraph::RemoveAll() {
    things = std::make_unique<DrawnThings>(ChordError());
    result.reset();
}

/// Tells a graph that was found what has changed since. It changes when it is next asked for.
void TDrawingGraph::Change(unsigned thing, const std::vector<Stretch>& removed,
                           const std::vector<Stretch>& added) {
    try {
        result->WillChange(thing, removed, added);
    } catch (const std::bad_alloc&) {
        result.reset(); // it is found as a whole again
    }
}

const FoundGraph& TDrawingGraph::Found() const {
    if (result != nullptr && !result->Change()) result.reset();
    if (result == nullptr) result = std::make_unique<FoundGraph>(*things, precision);
    return *result;
}

unsigned TDrawingGraph::NNodes() const { return static_cast<unsigned>(Found().nodes.Count()); }
unsigned TDrawingGraph::NEdges() const { return static_cast<unsigned>(Found().edges.Count()); }
unsigned TDrawingGraph::NFaces() const { return static_cast<unsigned>(Found().faces.Count()); }
unsigned TDrawingGraph::NComponents() const { return static_cast<unsigned>(Found().Drawn().components); }

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
    const FoundGraph& found = Found();
    const Arrangement& a = found.Drawn();
    // Each part of the drawing has a closed walk around it, which is a hole of a face.
    return found.nodes.Count() + found.faces.Count() == found.edges.Count() + a.components &&
           a.cycles.size() - a.gone.cycles.size() == found.faces.Count() + a.components;
}

unsigned TDrawingGraph::NMoves() const { return static_cast<unsigned>(Found().Moves().size()); }

TGraphMove TDrawingGraph::Move(unsigned index) const {
    ZO_ASSERT(index - 1 < NMoves(), "index >= 1 && index <= NMoves()", SOURCE);
    const GapClosing::Move& move = Found().Moves()[index - 1];
    return {PointOf(move.from), PointOf(move.to)};
}

bool TDrawingGraph::IsSettled() const { return Found().IsSettled(); }

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
    const FoundGraph& found = Found();
    const Arrangement::Place place = found.Drawn().Locate(p);
    const auto number = [](const DenseNumbers& numbers, unsigned index) {
        return index == Arrangement::NONE ? 0 : numbers.NumberOf(index);
    };
    return {number(found.nodes, place.node), number(found.edges, place.edge),
            place.face == Arrangement::NONE ? 0 : found.FaceNumber(place.face)};
}

Point2D TPointNode::Point() const {
    const FoundGraph& found = graph->Found();
    return PointOf(found.Drawn().nodes[found.nodes.IndexOf(number)].point);
}

unsigned TPointNode::NEdges() const {
    const FoundGraph& found = graph->Found();
    return static_cast<unsigned>(found.Drawn().around.Size(found.nodes.IndexOf(number)));
}

TSortedEdge TPointNode::Edge(unsigned index) const {
    ZO_ASSERT(index - 1 < NEdges(), "index >= 1 && index <= NEdges()", SOURCE);
    const FoundGraph& found = graph->Found();
    return {graph, found.Drawn().around[found.nodes.IndexOf(number)][index - 1]};
}

TPointNode TLineEdge::Start() const {
    const FoundGraph& found = graph->Found();
    return {graph, found.nodes.NumberOf(found.Drawn().Origin(2 * found.edges.IndexOf(number)))};
}
TPointNode TLineEdge::End() const {
    const FoundGraph& found = graph->Found();
    return {graph, found.nodes.NumberOf(found.Drawn().Target(2 * found.edges.IndexOf(number)))};
}
TSegment2D TLineEdge::Segment() const { return {Start().Point(), End().Point()}; }
unsigned TLineEdge::LeftFace() const {
    const FoundGraph& found = graph->Found();
    return found.FaceBeside(2 * found.edges.IndexOf(number));
}
unsigned TLineEdge::RightFace() const {
    const FoundGraph& found = graph->Found();
    return found.FaceBeside(2 * found.edges.IndexOf(number) + 1);
}

unsigned TLineEdge::NThings() const { return static_cast<unsigned>(graph->Found().ThingsOf(number).size()); }

unsigned TLineEdge::Thing(unsigned index) const {
    const std::vector<unsigned> things = graph->Found().ThingsOf(number);
    ZO_ASSERT(index - 1 < things.size(), "index >= 1 && index <= NThings()", SOURCE);
    return things[index - 1];
}

bool TLineEdge::IsBridge() const {
    const FoundGraph& found = graph->Found();
    return found.Drawn().bridge[found.edges.IndexOf(number)];
}
bool TLineEdge::IsDangle() const {
    const FoundGraph& found = graph->Found();
    return found.Drawn().dangle[found.edges.IndexOf(number)];
}

TPointNode TSortedEdge::From() const {
    const FoundGraph& found = graph->Found();
    return {graph, found.nodes.NumberOf(found.Drawn().Origin(half))};
}
TPointNode TSortedEdge::To() const {
    const FoundGraph& found = graph->Found();
    return {graph, found.nodes.NumberOf(found.Drawn().Target(half))};
}
TLineEdge TSortedEdge::Edge() const { return {graph, graph->Found().edges.NumberOf(half / 2)}; }

double TSortedEdge::Angle() const {
    const Arrangement& a = graph->Found().Drawn();
    const Stretch& s = a.stretches[a.edges[half / 2].stretch];
    const double forward = std::atan2(s.b.y / 2 - s.a.y / 2, s.b.x / 2 - s.a.x / 2);
    return half % 2 == 0 ? forward : forward + FULL_TURN / 2;
}

unsigned TSortedEdge::Face() const { return graph->Found().FaceBeside(half); }
TSortedEdge TSortedEdge::Opposite() const { return {graph, half ^ 1}; }

TSortedEdge TSortedEdge::NextAroundNode() const {
    const Arrangement& a = graph->Found().Drawn();
    const Numbers around = a.around[a.Origin(half)];
    const unsigned* const found = std::find(around.begin(), around.end(), half) + 1;
    return {graph, found == around.end() ? around[0] : *found};
}

TSortedEdge TSortedEdge::NextAroundFace() const { return {graph, graph->Found().Drawn().next[half]}; }

double TGraphFace::Area() const { return number == 0 ? 0 : graph->Found().Area(number); }

TRegion TGraphFace::Region() const { return graph->Found().Region(number); }

unsigned TGraphFace::NBorders() const { return static_cast<unsigned>(graph->Found().Borders(number).size()); }

TSortedEdge TGraphFace::Border(unsigned index) const {
    ZO_ASSERT(index - 1 < NBorders(), "index >= 1 && index <= NBorders()", SOURCE);
    return {graph, graph->Found().Borders(number)[index - 1]};
}

} // namespace ZoPrimitives
