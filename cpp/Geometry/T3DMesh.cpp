#include "ZoPrimitives/T3DMesh.h"

#include "Geometry/Predicates.h"
#include "Geometry/Space.h"
#include "Persistence/records/FileAccess.h"
#include "Values/FullTurn.h"
#include "Values/NumberFields.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <tuple>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/T3DMesh";

struct Corners {
    Components a;
    Components b;
    Components c;
};

Components CrossOf(const Corners& t) { return Cross(t.b - t.a, t.c - t.a); }

Components NearestPointOf(const Corners& t, const Components& p) {
    const Components normal = Unit(CrossOf(t));
    if (Length(normal) > 0.5) {
        const Components foot = p - normal * Dot(normal, p - t.a);
        const auto inside = [&](const Components& from, const Components& to) {
            return Dot(Cross(to - from, foot - from), normal) >= 0;
        };
        if (inside(t.a, t.b) && inside(t.b, t.c) && inside(t.c, t.a)) return foot;
    }
    Components nearest = NearestBetween(t.a, t.b, p);
    for (const Components& other : {NearestBetween(t.b, t.c, p), NearestBetween(t.c, t.a, p)})
        if (Length(other - p) < Length(nearest - p)) nearest = other;
    return nearest;
}

/// The part of a sphere about `p` that the triangle covers, seen from inside: 1 is the whole sphere.
double PartOfSphere(const Corners& t, const Components& p) {
    const Components a = Unit(t.a - p), b = Unit(t.b - p), c = Unit(t.c - p);
    return 2 * std::atan2(Dot(a, Cross(b, c)), 1 + Dot(a, b) + Dot(b, c) + Dot(c, a)) / (2 * FULL_TURN);
}

/// A ray, turned so that it runs along the third axis: exact decisions in its plane let none pass between
/// triangles.
class Ray {
public:
    Ray(const Components& from, const Components& unit) : origin(from) {
        const double parts[] = {unit.x, unit.y, unit.z};
        third = 0;
        for (int i = 1; i < 3; ++i)
            if (std::abs(parts[i]) > std::abs(parts[third])) third = i;
        along = parts[third];
        slopes = {parts[(third + 1) % 3] / along, parts[(third + 2) % 3] / along};
    }

    /// The distance at which the ray meets the triangle; negative if it does not.
    double Meets(const Corners& t) const {
        const Turned a = Turn(t.a), b = Turn(t.b), c = Turn(t.c);
        const LDPoint here(0, 0);
        const int sides[] = {SideOf(b.at, c.at, here), SideOf(c.at, a.at, here), SideOf(a.at, b.at, here)};
        const auto [least, most] = std::minmax_element(std::begin(sides), std::end(sides));
        if (*least * *most < 0 || (*least == 0 && *most == 0)) return -1;
        const auto weight = [](const Turned& v, const Turned& w) {
            return std::abs(v.at.x * w.at.y - v.at.y * w.at.x);
        };
        double weights[] = {weight(b, c), weight(c, a), weight(a, b)};
        double sum = weights[0] + weights[1] + weights[2];
        if (!(sum > 0)) {
            std::fill(std::begin(weights), std::end(weights), 1.0);
            sum = 3;
        }
        const double depth =
            (a.depth * weights[0] + b.depth * weights[1] + c.depth * weights[2]) / sum / along;
        return depth;
    }

private:
    struct Turned {
        LDPoint at;
        double depth;
    };
    Turned Turn(const Components& p) const {
        const double parts[] = {p.x - origin.x, p.y - origin.y, p.z - origin.z};
        const double depth = parts[third];
        return {{parts[(third + 1) % 3] - slopes.x * depth, parts[(third + 2) % 3] - slopes.y * depth},
                depth};
    }

    Components origin;
    int third;
    double along;
    LDPoint slopes;
};

Corners CornersOf(const T3DMesh& mesh, int index) {
    const T3DTriangle triangle = mesh.Triangle(index);
    return {Of(mesh.Vertex(triangle.a)), Of(mesh.Vertex(triangle.b)), Of(mesh.Vertex(triangle.c))};
}

/// Writes a file whole, or throws.
void WriteWhole(const TZoPath& path, const std::string& bytes, const char* location) {
    Platform::Services& services = Platform::Current();
    const Platform::FileHandle file =
        services.OpenFile(path.Utf8().c_str(), Platform::Access::ReadWrite, Platform::Share::Read,
                          Platform::Creation::CreateAlways);
    if (file == nullptr) ThrowUnwritten(Platform::LastError(), location, path);
    const bool written = services.WriteFile(file, bytes.data(), bytes.size());
    const unsigned long error = Platform::LastError();
    if (!services.CloseFile(file) && written) ThrowUnwritten(Platform::LastError(), location, path);
    if (!written) ThrowUnwritten(error, location, path);
}

template <class Number>
void AppendText(std::string& text, Number number) {
    char digits[32];
    text += ' ';
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// The least significant byte first.
template <class Number>
void AppendBits(std::string& bytes, Number number) {
    for (unsigned shift = 0; shift < 8 * sizeof number; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
}

void AppendFloats(std::string& bytes, const Components& v) {
    for (const double component : {v.x, v.y, v.z}) {
        const auto number = static_cast<float>(component + 0.0); // 0 without a sign
        std::uint32_t bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        AppendBits(bytes, bits);
    }
}

} // namespace

ZO_POINT_BODY(T3DMesh)

TZoClass* T3DMesh::Register(TZoMetaData* schema) {
    return RegisterPoint<T3DMesh>(
        schema, "T3DMesh", "NULL",
        {{NumberFieldClass<ftListDouble>,
          [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
              return owner->AddFieldListDouble("vertices",
                                               NumbersOf<T3DMesh, double, &T3DMesh::coordinates>());
          }},
         {NumberFieldClass<ftListInt>, [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
              return owner->AddFieldListInt("triangles", NumbersOf<T3DMesh, int, &T3DMesh::corners>());
          }}});
}

T3DMesh::T3DMesh() = default;
T3DMesh::T3DMesh(StreamableInit init) : ZoObjectStreamable(init) {}
T3DMesh::T3DMesh(const T3DMesh&) = default;
T3DMesh& T3DMesh::operator=(const T3DMesh&) = default;

Point3D T3DMesh::Vertex(int index) const {
    ZO_ASSERT(index >= 1 && index <= NVertices(), "index >= 1 && index <= NVertices()", SOURCE);
    const double* const vertex = coordinates.data() + 3 * (static_cast<std::size_t>(index) - 1);
    return {vertex[0], vertex[1], vertex[2]};
}

T3DTriangle T3DMesh::Triangle(int index) const {
    ZO_ASSERT(index >= 1 && index <= NTriangles(), "index >= 1 && index <= NTriangles()", SOURCE);
    const int* const triangle = corners.data() + 3 * (static_cast<std::size_t>(index) - 1);
    return {triangle[0], triangle[1], triangle[2]};
}

int T3DMesh::AddVertex(const Point3D& vertex) {
    ZO_ASSERT(NVertices() < std::numeric_limits<int>::max(), "fewer than 2^31 vertices", SOURCE);
    coordinates.insert(coordinates.end(), {vertex.X(), vertex.Y(), vertex.Z()});
    return NVertices();
}

void T3DMesh::AddTriangle(const T3DTriangle& triangle) {
    for (const int corner : {triangle.a, triangle.b, triangle.c})
        ZO_ASSERT(corner >= 1 && corner <= NVertices(), "corners are vertices", SOURCE);
    corners.insert(corners.end(), {triangle.a, triangle.b, triangle.c});
}

void T3DMesh::Add(const T3DMesh& other) {
    const T3DMesh added(other); // which may be this one
    const int first = NVertices();
    for (int i = 1; i <= added.NVertices(); ++i) AddVertex(added.Vertex(i));
    for (int i = 1; i <= added.NTriangles(); ++i) {
        const auto [a, b, c] = added.Triangle(i);
        AddTriangle({first + a, first + b, first + c});
    }
}

unsigned long long T3DMesh::NOpenEdges() const {
    struct Edge {
        int low;
        int high;
        bool forward;
        bool operator<(const Edge& other) const {
            return std::tie(low, high, forward) < std::tie(other.low, other.high, other.forward);
        }
    };
    std::vector<Edge> edges;
    edges.reserve(corners.size());
    for (int i = 1; i <= NTriangles(); ++i) {
        const auto [a, b, c] = Triangle(i);
        for (const auto& [from, to] : {std::pair(a, b), std::pair(b, c), std::pair(c, a)})
            edges.push_back({std::min(from, to), std::max(from, to), from < to});
    }
    std::sort(edges.begin(), edges.end());
    unsigned long long open = 0;
    for (std::size_t first = 0, last; first < edges.size(); first = last) {
        const auto same = [&](const Edge& e) {
            return e.low == edges[first].low && e.high == edges[first].high;
        };
        for (last = first; last < edges.size() && same(edges[last]);) ++last;
        if (last - first != 2 || edges[first].forward == edges[first + 1].forward) ++open;
    }
    return open;
}

double T3DMesh::SignedVolume() const {
    ZO_ASSERT(IsClosed(), "a closed mesh", SOURCE);
    const Components centre = Of(BoundingBox().Centre());
    double sum = 0;
    for (int i = 1; i <= NTriangles(); ++i) {
        const Corners t = CornersOf(*this, i);
        sum += Dot(t.a - centre, Cross(t.b - centre, t.c - centre));
    }
    return sum / 6;
}

double T3DMesh::Volume() const { return std::abs(SignedVolume()); }

double T3DMesh::SurfaceArea() const {
    double sum = 0;
    for (int i = 1; i <= NTriangles(); ++i) sum += Length(CrossOf(CornersOf(*this, i)));
    return sum / 2;
}

T3DBox T3DMesh::BoundingBox() const {
    T3DBox box;
    for (const int corner : corners) box.Add(Vertex(corner));
    return box;
}

double T3DMesh::SignedDistance(const Point3D& point) const {
    const Components p = Of(point);
    double least = std::numeric_limits<double>::infinity(), around = 0;
    for (int i = 1; i <= NTriangles(); ++i) {
        const Corners t = CornersOf(*this, i);
        least = std::min(least, Length(NearestPointOf(t, p) - p));
        around += PartOfSphere(t, p);
    }
    return around > 0.5 ? -least : least;
}

bool T3DMesh::RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const {
    const Components along = Unit(Of(direction));
    ZO_ASSERT(Length(along) > 0, "a direction", SOURCE);
    const Ray ray(Of(origin), along);
    bool found = false;
    for (int i = 1; i <= NTriangles(); ++i) {
        const Corners t = CornersOf(*this, i);
        const double distance = ray.Meets(t);
        if (!(distance >= 0) || (found && hit.distance <= distance)) continue;
        found = true;
        hit = {PointAt(Of(origin) + along * distance), VectorOf(Unit(CrossOf(t))), distance};
    }
    return found;
}

T3DMesh T3DMesh::Mesh(double chordError) const {
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
    return *this;
}

void T3DMesh::WriteObj(const TZoPath& path) const {
    std::string text;
    for (int i = 1; i <= NVertices(); ++i) {
        const Components vertex = Of(Vertex(i));
        ZO_ASSERT(IsFinite(vertex), "finite coordinates", SOURCE);
        text += 'v';
        for (const double coordinate : {vertex.x, vertex.y, vertex.z}) AppendText(text, coordinate);
        text += '\n';
    }
    for (int i = 1; i <= NTriangles(); ++i) {
        const auto [a, b, c] = Triangle(i);
        text += 'f';
        for (const int corner : {a, b, c}) AppendText(text, corner);
        text += '\n';
    }
    WriteWhole(path, text, "T3DMesh::WriteObj");
}

void T3DMesh::WriteStl(const TZoPath& path) const {
    std::string bytes = "binary STL"; // not to begin with "solid", which announces a text
    bytes.resize(80, ' ');
    AppendBits(bytes, static_cast<std::uint32_t>(NTriangles()));
    for (int i = 1; i <= NTriangles(); ++i) {
        const Corners t = CornersOf(*this, i);
        AppendFloats(bytes, Length(CrossOf(t)) > 0 ? Unit(CrossOf(t)) : Components{0, 0, 0});
        for (const Components& corner : {t.a, t.b, t.c}) {
            ZO_ASSERT(std::max({std::abs(corner.x), std::abs(corner.y), std::abs(corner.z)}) <=
                              std::numeric_limits<float>::max() &&
                          IsFinite(corner),
                      "coordinates that a float holds", SOURCE);
            AppendFloats(bytes, corner);
        }
        AppendBits(bytes, std::uint16_t{0});
    }
    WriteWhole(path, bytes, "T3DMesh::WriteStl");
}

bool T3DMesh::operator==(const T3DMesh& other) const {
    return coordinates == other.coordinates && corners == other.corners;
}
bool T3DMesh::operator==(const ZoObject& other) const {
    const auto* mesh = dynamic_cast<const T3DMesh*>(&other);
    return mesh != nullptr && *this == *mesh;
}

bool T3DMesh::Fits() const {
    return coordinates.size() % 3 == 0 && corners.size() % 3 == 0 &&
           coordinates.size() / 3 <= static_cast<std::size_t>(std::numeric_limits<int>::max()) &&
           std::all_of(corners.begin(), corners.end(),
                       [&](int corner) { return corner >= 1 && corner <= NVertices(); });
}

bool T3DMesh::OnRead(TBinInStream* stream, bool substituted) {
    return ZoObjectStreamable::OnRead(stream, substituted) && Fits();
}

void T3DMesh::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    for (int i = 1; i <= NVertices(); ++i) {
        const Point3D vertex = Vertex(i);
        streamer << 10 << vertex.X() << 20 << vertex.Y() << 30 << vertex.Z();
    }
    for (int i = 1; i <= NTriangles(); ++i) {
        const auto [a, b, c] = Triangle(i);
        streamer << 71 << a << 72 << b << 73 << c;
    }
}

void T3DMesh::Read(InputStreamer& streamer) {
    coordinates.clear();
    corners.clear();
    ZoObjectStreamable::Read(streamer);
    if (Fits()) return;
    *this = T3DMesh();
    throw XInvalidObject();
}

bool T3DMesh::ReadData(int code, InputStreamer& streamer) {
    // Each in its turn.
    if (code == 10 + 10 * static_cast<int>(coordinates.size() % 3)) {
        double value = 0;
        streamer >> value;
        coordinates.push_back(value);
    } else if (code == 71 + static_cast<int>(corners.size() % 3)) {
        int value = 0;
        streamer >> value;
        corners.push_back(value);
    } else if (code == 10 || code == 20 || code == 30 || (code >= 71 && code <= 73)) {
        throw XInvalidObject(); // a number is missing
    } else {
        return ZoObjectStreamable::ReadData(code, streamer);
    }
    return true;
}

} // namespace ZoPrimitives
