#include "ZoPrimitives/TExtrusionPath.h"

#include "Geometry/Pieces.h"
#include "Geometry/Space.h"
#include "Geometry/SweptMesh.h"
#include "Geometry/SweptWalls.h"
#include "Values/NumberFields.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TExtrusionPath";

/// All pieces of the section's borders.
std::vector<TPathPiece> PiecesOf(const TRegion& section) {
    std::vector<TPathPiece> pieces;
    for (unsigned long long i = 1; i <= section.NContours(); ++i) {
        const TContour contour = section.Contour(i);
        for (unsigned long long k = 1; k <= contour.NPieces(); ++k) pieces.push_back(contour.Piece(k));
    }
    return pieces;
}

/// The range of u x + v y on pieces.
struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
};
Range RangeOf(const std::vector<TPathPiece>& pieces, double u, double v) {
    Range range;
    const auto add = [&](double value) {
        range.low = std::min(range.low, value);
        range.high = std::max(range.high, value);
    };
    const double length = std::hypot(u, v);
    for (const TPathPiece& piece : pieces) {
        for (const LDPoint& end : {piece.from, piece.to}) add(u * end.x + v * end.y);
        if (piece.bulge == 0 || length == 0) continue;
        const auto turned = [&](const LDPoint& p) {
            return LDPoint((u * p.x + v * p.y) / length, (u * p.y - v * p.x) / length);
        };
        RRect box;
        AddBounds(box, {turned(piece.from), turned(piece.to), piece.bulge});
        add(box.X1() * length);
        add(box.X2() * length);
    }
    return range;
}

/// The centroid of a piece's line.
LDPoint CentroidOf(const TPathPiece& piece) {
    const LDPoint chord = piece.to - piece.from;
    const double half = 2 * std::atan(std::abs(piece.bulge)); // of the angle
    // By how much of the chord it lies beside it; near 0 the two terms cancel.
    const double beside = half < 1e-3 ? half / 6 : (1 / half - 1 / std::tan(half)) / 2;
    const double side = piece.bulge < 0 ? -beside : beside;
    return {piece.from.x + chord.x / 2 + chord.y * side, piece.from.y + chord.y / 2 - chord.x * side};
}

/// The legs of a path with the section at each of its corners, as far as there is a body.
class Legs {
public:
    Legs(const TExtrusionPath& extrusion, std::vector<TPathPiece> border)
        : pieces(std::move(border)), fault(Place(extrusion)) {}

    TExtrusionFault Fault(unsigned long long* vertex) const {
        if (vertex != nullptr) *vertex = place;
        return fault;
    }
    const std::vector<TPathPiece>& Pieces() const { return pieces; }
    const std::vector<SweptLeg>& All() const { return legs; }
    const std::vector<Station>& Stations() const { return stations; }

    double SignedDistance(const std::vector<SectionRing>& rings, const Components& point) const;
    /// Where the line through a point is within the body, in lengths of the direction: one passage after the
    /// other, with the normals of the surface.
    struct Passage {
        double from;
        double to;
        Components entering;
        Components leaving;
    };
    std::vector<Passage> PassagesOf(const std::vector<SectionRing>& rings, const Components& point,
                                    const Components& along) const;

private:
    /// How far before or behind the plane in which a leg begins, or the last one ends, counted from 0.
    double Beyond(std::size_t plane, const Components& p) const {
        return Dot(p - points[plane], across[plane]);
    }
    void AddPassages(std::size_t leg, const std::vector<SectionRing>& rings, const Components& point,
                     const Components& along, std::vector<Passage>& passages) const;

    TExtrusionFault Place(const TExtrusionPath& extrusion) {
        if (!TakePoints(extrusion)) return NotFiniteExtrusion;
        if (!(std::abs(extrusion.Section().Area()) > 0)) return EmptySection;
        if (points.size() < 2) return NoPath;
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const Components along = points[i + 1] - points[i];
            legs.push_back({points[i], {}, {}, Unit(along), {0, 0, 0}, {Length(along), 0, 0}});
        }
        for (std::size_t i = 1; i < legs.size(); ++i) {
            place = numbers[i];
            const Components turn = legs[i - 1].direction + legs[i].direction;
            if (Length(turn) < TURNS_BACK) return PathTurnsBack;
        }
        TakeStations(extrusion.Angle());
        for (std::size_t i = 0; i < legs.size(); ++i) {
            place = numbers[i];
            const auto& [origin, x, y, direction, start, end] = legs[i];
            const double byX = end.byX - start.byX, byY = end.byY - start.byY;
            if (!(end.z + RangeOf(pieces, byX, byY).low > 0)) return LegTooShort;
        }
        place = 0;
        return SoundExtrusion;
    }

    /// False if one is not finite. Leaves out those that repeat the one before.
    bool TakePoints(const TExtrusionPath& extrusion) {
        bool finite = std::isfinite(extrusion.Angle());
        for (const TPathPiece& piece : pieces)
            finite = finite && std::isfinite(piece.from.x) && std::isfinite(piece.from.y) &&
                     std::isfinite(piece.bulge);
        for (unsigned long long i = 1; finite && i <= extrusion.NVertices(); ++i) {
            const Components point = Of(extrusion.Vertex(i));
            if (!IsFinite(point)) {
                place = i;
                return false;
            }
            if (!points.empty() && Length(point - points.back()) == 0) continue;
            points.push_back(point);
            numbers.push_back(i);
        }
        return finite;
    }

    void TakeStations(double angle) {
        TVector3D first, second, along;
        TVector3D::AcadArbitraryAxes(VectorOf(legs[0].direction), first, second, along);
        Components x = Of(first) * std::cos(angle) + Of(second) * std::sin(angle);
        Components y = Cross(legs[0].direction, x);
        const auto begin = [&](SweptLeg& leg, const Components& normal) {
            leg.alongX = x;
            leg.alongY = y;
            across.push_back(normal);
        };
        stations.push_back({points[0], x, y});
        begin(legs[0], legs[0].direction);
        for (std::size_t i = 1; i < legs.size(); ++i) {
            // Along the leg onto the plane of the mitre, then on at right angles to the next leg.
            SweptLeg &before = legs[i - 1], &after = legs[i];
            const Components normal = Unit(before.direction + after.direction);
            const auto climb = [&](const Components& v) {
                return -Dot(normal, v) / Dot(normal, before.direction);
            };
            before.end.byX = climb(x);
            before.end.byY = climb(y);
            stations.push_back(
                {points[i], x + before.direction * before.end.byX, y + before.direction * before.end.byY});
            after.start.byX = Dot(after.direction, stations.back().alongX);
            after.start.byY = Dot(after.direction, stations.back().alongY);
            x = Unit(stations.back().alongX - after.direction * after.start.byX);
            y = Cross(after.direction, x);
            begin(after, normal);
        }
        stations.push_back({points.back(), x, y});
        across.push_back(legs.back().direction);
    }

    /// The sum of two directions that rounding cannot tell from opposite ones.
    static constexpr double TURNS_BACK = 1e-12;

    std::vector<TPathPiece> pieces;
    std::vector<Components> points;
    std::vector<unsigned long long> numbers; // of the vertices that the points are
    std::vector<SweptLeg> legs;
    std::vector<Components> across; // of the planes in which legs begin and end
    std::vector<Station> stations;
    unsigned long long place = 0;
    TExtrusionFault fault; // set last
};

double Legs::SignedDistance(const std::vector<SectionRing>& rings, const Components& point) const {
    double least = std::numeric_limits<double>::infinity();
    bool inside = false;
    for (std::size_t i = 0; i < legs.size(); ++i) {
        const Components p = legs[i].ToFrame(point);
        if (!IsFinite(p)) continue;
        const bool within = IsWithin(rings, {p.x, p.y});
        // Planes between legs belong to the next one, in the same figures for both.
        const bool last = i + 1 == legs.size();
        const double behind = Beyond(i + 1, point);
        inside = inside || (within && Beyond(i, point) >= 0 && (last ? behind <= 0 : behind < 0));
        if (within && i == 0) least = std::min(least, std::abs(p.z));
        if (within && last) least = std::min(least, std::abs(p.z - legs[i].end.z));
        for (const SectionRing& ring : rings)
            for (const TPathPiece& piece : ring.pieces) least = LesserWallDistance(legs[i], piece, p, least);
    }
    return inside ? -least : least;
}

void Legs::AddPassages(std::size_t index, const std::vector<SectionRing>& rings, const Components& point,
                       const Components& along, std::vector<Passage>& passages) const {
    const SweptLeg& leg = legs[index];
    const Components p = leg.ToFrame(point), v = leg.DirectionInFrame(along);
    if (!IsFinite(p)) return;
    constexpr double endless = std::numeric_limits<double>::infinity();
    // Between the planes: where, and which way the body ends there; nowhere in a mitre.
    struct Bound {
        double at;
        Components normal;
    };
    Bound enters{-endless, {0, 0}}, leaves{endless, {0, 0}};
    const bool first = index == 0, last = index + 1 == legs.size();
    for (const bool isStart : {true, false}) {
        const std::size_t plane = isStart ? index : index + 1;
        const double beyond = Beyond(plane, point), climb = Dot(along, across[plane]);
        if (climb == 0) {
            if (isStart ? beyond < 0 : last ? beyond > 0 : beyond >= 0) return;
            continue;
        }
        const bool isEnd = isStart ? first : last;
        const Bound bound{-beyond / climb, leg.direction * (!isEnd ? 0 : isStart ? -1 : 1)};
        if (isStart == (climb > 0))
            enters = bound.at > enters.at ? bound : enters;
        else
            leaves = bound.at < leaves.at ? bound : leaves;
    }
    const auto turned = [&](const LDPoint& n) { return Unit(leg.alongX * n.x + leg.alongY * n.y); };
    for (const SectionPassage& passage : ZoPrimitives::PassagesOf(rings, {p.x, p.y}, {v.x, v.y})) {
        Passage found{std::max(enters.at, passage.from), std::min(leaves.at, passage.to),
                      turned(passage.entering), turned(passage.leaving)};
        if (!(found.from <= found.to)) continue;
        if (enters.at > passage.from && Length(enters.normal) > 0) found.entering = enters.normal;
        if (leaves.at < passage.to && Length(leaves.normal) > 0) found.leaving = leaves.normal;
        passages.push_back(found);
    }
}

std::vector<Legs::Passage> Legs::PassagesOf(const std::vector<SectionRing>& rings, const Components& point,
                                            const Components& along) const {
    std::vector<Passage> passages;
    for (std::size_t i = 0; i < legs.size(); ++i) AddPassages(i, rings, point, along, passages);
    std::sort(passages.begin(), passages.end(),
              [](const Passage& a, const Passage& b) { return a.from < b.from; });
    std::vector<Passage> joined;
    for (const Passage& passage : passages) {
        if (joined.empty() || passage.from > joined.back().to) {
            joined.push_back(passage);
        } else if (passage.to > joined.back().to) {
            joined.back().to = passage.to;
            joined.back().leaving = passage.leaving;
        }
    }
    return joined;
}

Legs LegsOf(const TExtrusionPath& extrusion) {
    Legs legs(extrusion, PiecesOf(extrusion.Section()));
    ZO_ASSERT(legs.Fault(nullptr) == SoundExtrusion, "an extrusion without fault (FindFault)", SOURCE);
    return legs;
}

} // namespace

ZO_POINT_BODY(TExtrusionPath)

TZoClass* TExtrusionPath::Register(TZoMetaData* schema) {
    const auto sectionClass = [](TZoMetaData* owner, TZoClass** fieldClass, TZoClassFieldType* kind) {
        return ZoFieldClass(owner, fieldClass, kind, "TRegion", ftChildValue);
    };
    const auto addSection = [](TZoClass* owner, TZoClass* fieldClass,
                               const ZoString& typeName) -> TZoClassField* {
        auto* field = ZoBind<TRegion>(owner->AddFieldChildValue(
            "section", fieldClass,
            [](ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* value) {
                ZoSelf<TExtrusionPath>(object).section = ZoSelf<TRegion>(value);
            },
            [](ZoStreamableBase* object, TZoClassField*) -> ZoStreamableBase* {
                return &ZoSelf<TExtrusionPath>(object).section;
            }));
        field->SetFieldClassName(typeName);
        return field;
    };
    const auto addPath = [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
        return owner->AddFieldListDouble("path", NumbersOf<TExtrusionPath, double, &TExtrusionPath::path>());
    };
    const auto addAngle = [](TZoClass* owner, TZoClass*, const ZoString&) -> TZoClassField* {
        return owner->AddFieldDouble(
            "angle",
            [](ZoStreamableBase* object, TZoClassField*, double value) {
                ZoSelf<TExtrusionPath>(object).angle = value;
            },
            [](ZoStreamableBase* object, TZoClassField*) { return ZoSelf<TExtrusionPath>(object).angle; });
    };
    return RegisterPoint<TExtrusionPath>(schema, "TExtrusionPath", "NULL",
                                         {{sectionClass, addSection},
                                          {NumberFieldClass<ftListDouble>, addPath},
                                          {NumberFieldClass<ftDouble>, addAngle}});
}

TExtrusionPath::TExtrusionPath() = default;
TExtrusionPath::TExtrusionPath(const TRegion& shape, double turned) : section(shape), angle(turned) {}
TExtrusionPath::TExtrusionPath(const TRegion& shape, std::initializer_list<Point3D> vertices, double turned)
    : TExtrusionPath(shape, turned) {
    for (const Point3D& vertex : vertices) Add(vertex);
}
TExtrusionPath::TExtrusionPath(StreamableInit init) : ZoObjectStreamable(init) {}
TExtrusionPath::TExtrusionPath(const TExtrusionPath&) = default;
TExtrusionPath& TExtrusionPath::operator=(const TExtrusionPath&) = default;

Point3D TExtrusionPath::Vertex(unsigned long long index) const {
    ZO_ASSERT(index - 1 < NVertices(), "index >= 1 && index <= NVertices()", SOURCE);
    const double* const vertex = path.data() + 3 * (index - 1);
    return {vertex[0], vertex[1], vertex[2]};
}

void TExtrusionPath::Add(const Point3D& vertex) {
    path.insert(path.end(), {vertex.X(), vertex.Y(), vertex.Z()});
}

TExtrusionFault TExtrusionPath::FindFault(unsigned long long* vertex) const {
    return Legs(*this, PiecesOf(section)).Fault(vertex);
}

double TExtrusionPath::Volume() const {
    const Legs legs = LegsOf(*this);
    const TAreaProperties properties = section.AreaProperties();
    const Point2D centroid = properties.Centroid();
    double length = 0; // of the centroid's line
    for (const SweptLeg& leg : legs.All()) length += leg.LengthAt({centroid.X(), centroid.Y()});
    return std::abs(properties.Area()) * length;
}

double TExtrusionPath::SurfaceArea() const {
    const Legs legs = LegsOf(*this);
    double area = 2 * std::abs(section.Area());
    for (const TPathPiece& piece : legs.Pieces()) {
        const LDPoint centroid = CentroidOf(piece);
        double length = 0;
        for (const SweptLeg& leg : legs.All()) length += leg.LengthAt(centroid);
        area += LengthOf(piece) * length;
    }
    return area;
}

T3DBox TExtrusionPath::BoundingBox() const {
    const Legs legs = LegsOf(*this);
    T3DBox box;
    for (const Station& station : legs.Stations()) {
        const Components &o = station.origin, &x = station.alongX, &y = station.alongY;
        const Range byX = RangeOf(legs.Pieces(), x.x, y.x), byY = RangeOf(legs.Pieces(), x.y, y.y),
                    byZ = RangeOf(legs.Pieces(), x.z, y.z);
        box.Add(Point3D(o.x + byX.low, o.y + byY.low, o.z + byZ.low));
        box.Add(Point3D(o.x + byX.high, o.y + byY.high, o.z + byZ.high));
    }
    return box;
}

double TExtrusionPath::SignedDistance(const Point3D& point) const {
    return LegsOf(*this).SignedDistance(RingsOf(section), Of(point));
}

bool TExtrusionPath::RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const {
    const Legs legs = LegsOf(*this);
    const Components along = Unit(Of(direction));
    ZO_ASSERT(Length(along) > 0, "a direction", SOURCE);
    // From the point nearest to the path's start, both ways: no digits are lost far away.
    const double ahead = Dot(legs.Stations()[0].origin - Of(origin), along);
    const Components middle = Of(origin) + along * ahead;
    for (const Legs::Passage& passage : legs.PassagesOf(RingsOf(section), middle, along)) {
        if (!(passage.to + ahead >= 0)) continue;
        const bool enters = passage.from + ahead >= 0;
        const double at = enters ? passage.from : passage.to;
        hit = {PointAt(middle + along * at), VectorOf(enters ? passage.entering : passage.leaving),
               at + ahead};
        return true;
    }
    return false;
}

T3DMesh TExtrusionPath::Mesh(double chordError) const {
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
    return SweptMesh(FlattenedRings(section, chordError), LegsOf(*this).Stations());
}

bool TExtrusionPath::operator==(const TExtrusionPath& other) const {
    return section == other.section && path == other.path && angle == other.angle;
}
bool TExtrusionPath::operator==(const ZoObject& other) const {
    const auto* extrusion = dynamic_cast<const TExtrusionPath*>(&other);
    return extrusion != nullptr && *this == *extrusion;
}

bool TExtrusionPath::OnRead(TBinInStream* stream, bool substituted) {
    return ZoObjectStreamable::OnRead(stream, substituted) && path.size() % 3 == 0;
}

void TExtrusionPath::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << 340 << static_cast<ZoStreamableBase*>(&section) << 7 << 50 << angle;
    for (unsigned long long i = 1; i <= NVertices(); ++i) {
        const Point3D vertex = Vertex(i);
        streamer << 11 << vertex.X() << 21 << vertex.Y() << 31 << vertex.Z();
    }
}

void TExtrusionPath::Read(InputStreamer& streamer) {
    section = TRegion();
    path.clear();
    angle = 0;
    ZoObjectStreamable::Read(streamer);
    if (path.size() % 3 == 0) return;
    *this = TExtrusionPath();
    throw XInvalidObject();
}

bool TExtrusionPath::ReadData(int code, InputStreamer& streamer) {
    if (code == 340) {
        int kind = 0;
        streamer >> kind;
        if (kind != 0) throw XInvalidObject();
        streamer >> static_cast<ZoStreamableBase&>(section);
    } else if (code == 50) {
        streamer >> angle;
    } else if (code == 11 + 10 * static_cast<int>(path.size() % 3)) {
        double value = 0;
        streamer >> value;
        path.push_back(value);
    } else if (code == 11 || code == 21 || code == 31) {
        throw XInvalidObject(); // a number is missing
    } else {
        return ZoObjectStreamable::ReadData(code, streamer);
    }
    return true;
}

} // namespace ZoPrimitives
