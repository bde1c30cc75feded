#include "ZoPrimitives/TPath2D.h"

#include "Geometry/Pieces.h"
#include "ZoPrimitives/TPolyline2D.h"
#include "ZoPrimitives/ZoAssert.h"

#include <cmath>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TPath2D";

std::vector<TPathPiece> ClosedPiecesOf(const TPath2D& path) {
    ZO_ASSERT(path.IsClosed(), "closed path", SOURCE);
    return PiecesOf(path);
}

} // namespace

TPath2D::TPath2D() = default;
TPath2D::TPath2D(const TPath2D&) = default;
TPath2D::TPath2D(StreamableInit init) : ZoObjectStreamable(init) {}
TPath2D& TPath2D::operator=(const TPath2D&) = default;
TPath2D::~TPath2D() = default;

bool TPath2D::IsClosed() const { return false; }

double TPath2D::Length() const {
    double length = 0;
    const unsigned long long count = NPieces();
    for (unsigned long long i = 1; i <= count; ++i) length += LengthOf(Piece(i));
    return length;
}

RRect TPath2D::BoundingBox() const {
    RRect box;
    const unsigned long long count = NPieces();
    for (unsigned long long i = 1; i <= count; ++i) AddBounds(box, Piece(i));
    return box;
}

Point2D TPath2D::NearestPoint(const Point2D& point) const {
    const LDPoint p(point.X(), point.Y());
    LDPoint nearest = p;
    double least = std::numeric_limits<double>::infinity();
    const unsigned long long count = NPieces();
    for (unsigned long long i = 1; i <= count; ++i) {
        const LDPoint candidate = NearestPointOf(Piece(i), p);
        const double distance = std::hypot(candidate.x - p.x, candidate.y - p.y);
        if (!(distance < least)) continue;
        nearest = candidate;
        least = distance;
    }
    return {nearest.x, nearest.y};
}

double TPath2D::Distance(const Point2D& point) const {
    if (NPieces() == 0) return std::numeric_limits<double>::infinity();
    return NearestPoint(point).Distance(point);
}

TPolyline2D TPath2D::Flattened(double chordError) const {
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
    TPolyline2D result;
    const auto add = [&](const LDPoint& p) { result.Add(Point2D(p.x, p.y)); };
    const bool closed = IsClosed();
    const unsigned long long count = NPieces();
    for (unsigned long long i = 1; i <= count; ++i) {
        const TPathPiece piece = Piece(i);
        if (i == 1) add(piece.from);
        for (const LDPoint& p : PointsOf(piece, PartsOf(piece, chordError))) add(p);
        if (i != count || !closed) add(piece.to);
    }
    result.Close(closed);
    return result;
}

double TPath2D::SignedArea() const { return SignedAreaOf(ClosedPiecesOf(*this)); }

double TPath2D::Area() const { return std::abs(SignedArea()); }

bool TPath2D::IsCounterClockwise() const { return SignedArea() > 0; }

TAreaProperties TPath2D::AreaProperties() const {
    const TAreaProperties properties = SignedPropertiesOf(ClosedPiecesOf(*this));
    return properties.Area() < 0 ? -properties : properties;
}

TLocation TPath2D::Locate(const Point2D& point, unsigned precision) const {
    const std::vector<TPathPiece> pieces = ClosedPiecesOf(*this);
    if (IsOnPath(*this, point, precision)) return OnBorder;
    return Encloses(pieces, {point.X(), point.Y()}) ? InsideRegion : OutsideRegion;
}

bool IsOnPath(const TPath2D& path, const Point2D& point, unsigned precision) {
    const Point2D nearest = path.NearestPoint(point);
    return path.NPieces() != 0 && (nearest == point || nearest.Equal(point, precision));
}

} // namespace ZoPrimitives
