#include "ZoPrimitives/TRegion.h"

#include "Geometry/Overlay.h"
#include "Geometry/Pieces.h"
#include "Geometry/VertexNumbers.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TRegion";

/// Asserts that all coordinates are finite.
void AppendBorders(const TRegion& region, unsigned operand, std::vector<OverlayBorder>& borders) {
    for (unsigned long long i = 1; i <= region.NContours(); ++i) {
        borders.push_back({PiecesOf(region.Contour(i)), operand, region.IsHole(i)});
        for (const TPathPiece& piece : borders.back().pieces)
            ZO_ASSERT(IsFinite(piece), "finite coordinates", SOURCE);
    }
}

TRegion Overlaid(const TRegion& a, const TRegion& b, OverlayKind kind, unsigned precision) {
    Equal(0, 0, precision); // asserts the precision
    std::vector<OverlayBorder> borders;
    AppendBorders(a, 0, borders);
    AppendBorders(b, 1, borders);
    return Overlay(borders, kind, precision);
}

} // namespace

ZO_POINT_BODY(TRegion)

TZoClass* TRegion::Register(TZoMetaData* schema) {
    return RegisterPoint<TRegion>(schema, "TRegion", "NULL",
                                  {{Getfieldclassfor_vertices, Addfieldfor_vertices},
                                   {Getfieldclassfor_contours, Addfieldfor_contours}});
}

TRegion::TRegion() = default;
TRegion::TRegion(const TContour& outer) { AddContour(outer); }
TRegion::TRegion(StreamableInit init) : ZoObjectStreamable(init) {}
TRegion::TRegion(const TRegion&) = default;
TRegion& TRegion::operator=(const TRegion&) = default;

void TRegion::AddContour(const TContour& contour) { Append(contour, 1); }
void TRegion::AddHole(const TContour& hole) { Append(hole, -1); }

void TRegion::Append(const TContour& contour, int sign) {
    ZO_ASSERT(!contour.vertices.empty(), "a contour has vertices", SOURCE);
    vertices.insert(vertices.end(), contour.vertices.begin(), contour.vertices.end());
    counts.push_back(sign * static_cast<int>(contour.vertices.size()));
    ends.push_back(vertices.size());
}

TContour TRegion::Contour(unsigned long long index) const {
    TContour contour;
    for (const TPathPiece& piece : PiecesOf(index)) contour.vertices.push_back({piece.from, piece.bulge});
    return contour;
}

bool TRegion::IsHole(unsigned long long index) const {
    ZO_ASSERT(index - 1 < counts.size(), "index >= 1 && index <= NContours()", SOURCE);
    return counts[index - 1] < 0;
}

std::vector<TPathPiece> TRegion::PiecesOf(unsigned long long index) const {
    ZO_ASSERT(index - 1 < counts.size(), "index >= 1 && index <= NContours()", SOURCE);
    const auto end = static_cast<std::size_t>(ends[index - 1]);
    const auto begin = end - static_cast<std::size_t>(std::abs(counts[index - 1]));
    std::vector<TPathPiece> pieces;
    pieces.reserve(end - begin);
    for (std::size_t i = begin; i < end; ++i)
        pieces.push_back({vertices[i].point, vertices[i + 1 < end ? i + 1 : begin].point, vertices[i].bulge});
    return pieces;
}

double TRegion::Area() const {
    double area = 0;
    for (unsigned long long i = 1; i <= NContours(); ++i) {
        const double enclosed = std::abs(SignedAreaOf(PiecesOf(i)));
        area += IsHole(i) ? -enclosed : enclosed;
    }
    return area;
}

double TRegion::Length() const {
    double length = 0;
    for (unsigned long long i = 1; i <= NContours(); ++i) {
        for (const TPathPiece& piece : PiecesOf(i)) length += LengthOf(piece);
    }
    return length;
}

TAreaProperties TRegion::AreaProperties() const {
    TAreaProperties sum;
    for (unsigned long long i = 1; i <= NContours(); ++i) {
        const TAreaProperties signedPart = SignedPropertiesOf(PiecesOf(i));
        sum += (signedPart.Area() < 0) == IsHole(i) ? signedPart : -signedPart;
    }
    return sum;
}

RRect TRegion::BoundingBox() const {
    RRect box;
    for (unsigned long long i = 1; i <= NContours(); ++i) {
        for (const TPathPiece& piece : PiecesOf(i)) AddBounds(box, piece);
    }
    return box;
}

TLocation TRegion::Locate(const Point2D& point, unsigned precision) const {
    const LDPoint p(point.X(), point.Y());
    int within = 0;
    for (unsigned long long i = 1; i <= NContours(); ++i) {
        const std::vector<TPathPiece> pieces = PiecesOf(i);
        for (const TPathPiece& piece : pieces) {
            const LDPoint nearest = NearestPointOf(piece, p);
            if (nearest == p || Point2D(nearest.x, nearest.y).Equal(point, precision)) return OnBorder;
        }
        if (Encloses(pieces, p)) within += IsHole(i) ? -1 : 1;
    }
    return within > 0 ? InsideRegion : OutsideRegion;
}

TRegion TRegion::Union(const TRegion& other, unsigned precision) const {
    return Overlaid(*this, other, OverlayKind::UNION, precision);
}
TRegion TRegion::Intersection(const TRegion& other, unsigned precision) const {
    return Overlaid(*this, other, OverlayKind::INTERSECTION, precision);
}
TRegion TRegion::Difference(const TRegion& other, unsigned precision) const {
    return Overlaid(*this, other, OverlayKind::DIFFERENCE, precision);
}
TRegion TRegion::ExclusiveOr(const TRegion& other, unsigned precision) const {
    return Overlaid(*this, other, OverlayKind::EXCLUSIVE_OR, precision);
}

TRegion TRegion::Offset(double distance, unsigned precision) const {
    Equal(0, 0, precision); // asserts the precision
    ZO_ASSERT(std::isfinite(distance), "finite coordinates", SOURCE);
    std::vector<OverlayBorder> borders;
    AppendBorders(*this, 0, borders);
    const std::size_t count = borders.size();
    for (std::size_t i = 0; distance != 0 && i < count; ++i) {
        const std::vector<TPathPiece> pieces = borders[i].pieces;
        for (const TPathPiece& piece : pieces) AppendAround(piece, std::abs(distance), borders);
    }
    return Overlay(borders, distance < 0 ? OverlayKind::DIFFERENCE : OverlayKind::UNION, precision);
}

bool TRegion::operator==(const TRegion& other) const {
    return counts == other.counts && vertices == other.vertices;
}
bool TRegion::operator==(const ZoObject& other) const {
    const auto* region = dynamic_cast<const TRegion*>(&other);
    return region != nullptr && *this == *region;
}

/// Sets the ends from the counts; false if they do not fit the vertices.
bool TRegion::Count() {
    ends.clear();
    unsigned long long end = 0;
    for (const int count : counts) {
        if (count == 0) return false;
        end += static_cast<unsigned long long>(std::abs(static_cast<long long>(count)));
        ends.push_back(end);
    }
    return end == vertices.size();
}

bool TRegion::OnRead(TBinInStream* stream, bool substituted) {
    return ZoObjectStreamable::OnRead(stream, substituted) && numbers == 0 && Count();
}

void TRegion::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    std::size_t next = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        streamer << 71 << (counts[i] < 0 ? 2 : 1);
        for (; next < ends[i]; ++next) {
            streamer << 10 << vertices[next].point.x << 20 << vertices[next].point.y;
            if (vertices[next].bulge != 0) streamer << 42 << vertices[next].bulge;
        }
    }
}

void TRegion::Read(InputStreamer& streamer) {
    vertices.clear();
    counts.clear();
    ends.clear();
    readingHole = false;
    ZoObjectStreamable::Read(streamer);
    counts.erase(std::remove(counts.begin(), counts.end(), 0), counts.end());
    Count();
}

bool TRegion::ReadData(int code, InputStreamer& streamer) {
    if (code == 71) {
        int kind = 0;
        streamer >> kind;
        readingHole = kind == 2;
        counts.push_back(0);
        return true;
    }
    if (code != 10 && (vertices.empty() || (code != 20 && code != 42)))
        return ZoObjectStreamable::ReadData(code, streamer);
    double value = 0;
    streamer >> value;
    if (code == 10) {
        vertices.push_back({{value, 0}, 0});
        if (counts.empty()) counts.push_back(0);
        counts.back() += readingHole ? -1 : 1;
    }
    if (code == 20) vertices.back().point.y = value;
    if (code == 42) vertices.back().bulge = value;
    return true;
}

ZoString TRegion::Getfieldclassfor_vertices(TZoMetaData* schema, TZoClass** fieldClass,
                                            TZoClassFieldType* kind) {
    return ZoFieldClass(schema, fieldClass, kind, "list<double>", ftListDouble);
}

TZoClassField* TRegion::Addfieldfor_vertices(TZoClass* owner, TZoClass*, const ZoString&) {
    const auto add = [](ZoStreamableBase* object, TZoClassField*, double value) {
        auto& self = ZoSelf<TRegion>(object);
        AddNumber(self.vertices, self.numbers, value);
    };
    const auto elementAt = [](ZoStreamableBase* object, TZoClassField*, int index) {
        return NumberAt(ZoSelf<TRegion>(object).vertices, index);
    };
    const auto count = [](ZoStreamableBase* object, TZoClassField*) -> unsigned long long {
        return 3 * ZoSelf<TRegion>(object).vertices.size();
    };
    const auto create = [](ZoStreamableBase* object, int, int, int) {
        auto& self = ZoSelf<TRegion>(object);
        self.vertices.clear();
        self.numbers = 0;
    };
    return owner->AddFieldListDouble("vertices", {add, elementAt, count, create, nullptr, nullptr});
}

ZoString TRegion::Getfieldclassfor_contours(TZoMetaData* schema, TZoClass** fieldClass,
                                            TZoClassFieldType* kind) {
    return ZoFieldClass(schema, fieldClass, kind, "list<int>", ftListInt);
}

TZoClassField* TRegion::Addfieldfor_contours(TZoClass* owner, TZoClass*, const ZoString&) {
    const auto add = [](ZoStreamableBase* object, TZoClassField*, int value) {
        ZoSelf<TRegion>(object).counts.push_back(value);
    };
    const auto elementAt = [](ZoStreamableBase* object, TZoClassField*, int index) {
        return ZoSelf<TRegion>(object).counts[static_cast<std::size_t>(index) - 1];
    };
    const auto count = [](ZoStreamableBase* object, TZoClassField*) -> unsigned long long {
        return ZoSelf<TRegion>(object).counts.size();
    };
    const auto create = [](ZoStreamableBase* object, int, int, int) {
        ZoSelf<TRegion>(object).counts.clear();
    };
    return owner->AddFieldListInt("contours", {add, elementAt, count, create, nullptr, nullptr});
}

} // namespace ZoPrimitives
