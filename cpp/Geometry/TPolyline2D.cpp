#include "ZoPrimitives/TPolyline2D.h"

#include "Geometry/Pieces.h"
#include "Geometry/Predicates.h"
#include "Geometry/VertexNumbers.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TPolyline2D";

} // namespace

ZO_POINT_BODY(TPolyline2D)
ZO_POINT_BODY(TContour)

TZoClass* TPolyline2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TPolyline2D>(
        schema, "TPolyline2D", "NULL",
        {{Getfieldclassfor_vertices, Addfieldfor_vertices}, {Getfieldclassfor_closed, Addfieldfor_closed}});
}

TPolyline2D::TPolyline2D() = default;
TPolyline2D::TPolyline2D(std::initializer_list<Point2D> points, bool close) : closed(close) {
    Reserve(points.size());
    for (const Point2D& point : points) Add(point);
}
TPolyline2D::TPolyline2D(StreamableInit init) : TPath2D(init) {}
TPolyline2D::TPolyline2D(const TPolyline2D&) = default;
TPolyline2D& TPolyline2D::operator=(const TPolyline2D&) = default;

Point2D TPolyline2D::Vertex(unsigned long long index) const {
    ZO_ASSERT(index - 1 < vertices.size(), "index >= 1 && index <= NVertices()", SOURCE);
    return {vertices[index - 1].point.x, vertices[index - 1].point.y};
}

double TPolyline2D::Bulge(unsigned long long index) const {
    ZO_ASSERT(index - 1 < vertices.size(), "index >= 1 && index <= NVertices()", SOURCE);
    return vertices[index - 1].bulge;
}

void TPolyline2D::Close(bool close) { closed = close; }

void TPolyline2D::Reverse() {
    if (vertices.empty()) return;
    std::reverse(vertices.begin() + (closed ? 1 : 0), vertices.end());
    // A piece begins where it ended.
    std::vector<double> bulges;
    for (const TPathVertex& vertex : vertices) bulges.push_back(-vertex.bulge);
    const auto count = vertices.size();
    for (std::size_t i = 0; i < count; ++i)
        vertices[i].bulge = closed ? bulges[(i + 1) % count] : i + 1 < count ? bulges[i + 1] : bulges[0];
}

TPolyline2D TPolyline2D::Simplified(double tolerance) const {
    ZO_ASSERT(tolerance >= 0, "tolerance >= 0", SOURCE);
    const std::size_t count = vertices.size();
    std::vector<bool> kept(count);
    const auto point = [&](std::size_t i) { return vertices[i % count].point; };
    // Ranges of straight pieces; the vertex farthest from the piece between a range's ends divides it.
    std::vector<std::pair<std::size_t, std::size_t>> ranges;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < NPieces(); ++i) {
        if (vertices[i].bulge != 0) {
            ranges.emplace_back(begin, i);
            begin = i + 1;
        }
    }
    if (count != 0) ranges.emplace_back(begin, static_cast<std::size_t>(NPieces()));
    while (!ranges.empty()) {
        const auto [first, last] = ranges.back();
        ranges.pop_back();
        kept[first % count] = kept[last % count] = true;
        std::size_t farthest = first;
        double most = tolerance * tolerance;
        for (std::size_t i = first + 1; i < last; ++i) {
            const double distance =
                NearestPointOf({point(first), point(last), 0}, point(i)).DistFrom2(point(i));
            if (distance > most) {
                most = distance;
                farthest = i;
            }
        }
        if (farthest == first) continue;
        ranges.emplace_back(first, farthest);
        ranges.emplace_back(farthest, last);
    }
    TPolyline2D result;
    result.closed = closed;
    for (std::size_t i = 0; i < count; ++i) {
        if (kept[i]) result.vertices.push_back(vertices[i]);
    }
    return result;
}

unsigned long long TPolyline2D::NPieces() const {
    const unsigned long long count = vertices.size();
    return closed || count == 0 ? count : count - 1;
}

TPathPiece TPolyline2D::Piece(unsigned long long index) const {
    ZO_ASSERT(index - 1 < NPieces(), "index >= 1 && index <= NPieces()", SOURCE);
    const TPathVertex& start = vertices[index - 1];
    return {start.point, vertices[index == vertices.size() ? 0 : index].point, start.bulge};
}

bool TPolyline2D::IsClosed() const { return closed; }

bool TPolyline2D::operator==(const TPolyline2D& other) const {
    return closed == other.closed && vertices == other.vertices;
}
bool TPolyline2D::operator==(const ZoObject& other) const {
    const auto* polyline = dynamic_cast<const TPolyline2D*>(&other);
    return polyline != nullptr && *this == *polyline;
}

bool TPolyline2D::OnRead(TBinInStream* stream, bool substituted) {
    return TPath2D::OnRead(stream, substituted) && numbers == 0;
}

void TPolyline2D::Write(OutputStreamer& streamer) {
    TPath2D::Write(streamer);
    streamer << 70 << (closed ? 1 : 0);
    for (const TPathVertex& vertex : vertices) {
        streamer << 10 << vertex.point.x << 20 << vertex.point.y;
        if (vertex.bulge != 0) streamer << 42 << vertex.bulge;
    }
}

void TPolyline2D::Read(InputStreamer& streamer) {
    vertices.clear();
    closed = false;
    TPath2D::Read(streamer);
}

bool TPolyline2D::ReadData(int code, InputStreamer& streamer) {
    if (code == 70) {
        int value = 0;
        streamer >> value;
        closed = value != 0;
        return true;
    }
    if (code != 10 && (vertices.empty() || (code != 20 && code != 42)))
        return TPath2D::ReadData(code, streamer);
    double value = 0;
    streamer >> value;
    if (code == 10) vertices.push_back({{value, 0}, 0});
    if (code == 20) vertices.back().point.y = value;
    if (code == 42) vertices.back().bulge = value;
    return true;
}

ZoString TPolyline2D::Getfieldclassfor_vertices(TZoMetaData* schema, TZoClass** fieldClass,
                                                TZoClassFieldType* kind) {
    return ZoFieldClass(schema, fieldClass, kind, "list<double>", ftListDouble);
}

TZoClassField* TPolyline2D::Addfieldfor_vertices(TZoClass* owner, TZoClass*, const ZoString&) {
    const auto add = [](ZoStreamableBase* object, TZoClassField*, double value) {
        auto& self = ZoSelf<TPolyline2D>(object);
        AddNumber(self.vertices, self.numbers, value);
    };
    const auto elementAt = [](ZoStreamableBase* object, TZoClassField*, int index) {
        return NumberAt(ZoSelf<TPolyline2D>(object).vertices, index);
    };
    const auto count = [](ZoStreamableBase* object, TZoClassField*) -> unsigned long long {
        return 3 * ZoSelf<TPolyline2D>(object).vertices.size();
    };
    const auto create = [](ZoStreamableBase* object, int, int, int) {
        auto& self = ZoSelf<TPolyline2D>(object);
        self.vertices.clear();
        self.numbers = 0;
    };
    return owner->AddFieldListDouble("vertices", {add, elementAt, count, create, nullptr, nullptr});
}

ZoString TPolyline2D::Getfieldclassfor_closed(TZoMetaData* schema, TZoClass** fieldClass,
                                              TZoClassFieldType* kind) {
    return ZoFieldClass(schema, fieldClass, kind, "bool", ftBool);
}

TZoClassField* TPolyline2D::Addfieldfor_closed(TZoClass* owner, TZoClass*, const ZoString&) {
    return owner->AddFieldBool(
        "closed",
        [](ZoStreamableBase* object, TZoClassField*, bool value) {
            ZoSelf<TPolyline2D>(object).closed = value;
        },
        [](ZoStreamableBase* object, TZoClassField*) { return ZoSelf<TPolyline2D>(object).closed; });
}

TZoClass* TContour::Register(TZoMetaData* schema) {
    return RegisterPoint<TContour>(schema, "TContour", "TPolyline2D", {});
}

TContour::TContour() { TPolyline2D::Close(true); }
TContour::TContour(std::initializer_list<Point2D> vertices) : TPolyline2D(vertices, true) {}
TContour::TContour(StreamableInit) : TContour() {}
TContour::TContour(const TContour&) = default;
TContour& TContour::operator=(const TContour&) = default;

TContour::TContour(const TPath2D& path) : TContour() {
    const unsigned long long count = path.NPieces();
    Reserve(count + 1);
    for (unsigned long long i = 1; i <= count; ++i) {
        const TPathPiece piece = path.Piece(i);
        Add(Point2D(piece.from.x, piece.from.y), piece.bulge);
        if (i == count && !path.IsClosed()) Add(Point2D(piece.to.x, piece.to.y));
    }
}

TContour TContour::Rectangle(const RRect& rectangle) {
    if (rectangle.IsEmpty()) return {};
    const double x1 = rectangle.X1(), y1 = rectangle.Y1(), x2 = rectangle.X2(), y2 = rectangle.Y2();
    return {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}};
}

TContour TContour::ConvexHull(const Point2D* points, unsigned long long count) {
    std::vector<LDPoint> sorted;
    sorted.reserve(count);
    for (unsigned long long i = 0; i < count; ++i) sorted.emplace_back(points[i].X(), points[i].Y());
    std::sort(sorted.begin(), sorted.end(), LexicographicallyLess);
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    std::vector<LDPoint> hull;
    const auto addChain = [&](auto begin, auto end) { // the last point begins the next chain
        const std::size_t start = hull.size();
        for (; begin != end; ++begin) {
            while (hull.size() >= start + 2 && SideOf(hull[hull.size() - 2], hull.back(), *begin) <= 0)
                hull.pop_back();
            hull.push_back(*begin);
        }
        if (sorted.size() > 1) hull.pop_back();
    };
    addChain(sorted.begin(), sorted.end());
    if (sorted.size() > 1) addChain(sorted.rbegin(), sorted.rend());
    TContour contour;
    for (const LDPoint& p : hull) contour.Add(Point2D(p.x, p.y));
    return contour;
}

void TContour::Close(bool close) { ZO_ASSERT(close, "a contour is closed", SOURCE); }

bool TContour::OnRead(TBinInStream* stream, bool substituted) {
    return TPolyline2D::OnRead(stream, substituted) && IsClosed();
}

void TContour::Read(InputStreamer& streamer) {
    TPolyline2D::Read(streamer);
    TPolyline2D::Close(true);
}

} // namespace ZoPrimitives
