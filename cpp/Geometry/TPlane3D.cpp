#include "ZoPrimitives/TPlane3D.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Space.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZoPrimitives {

namespace {

/// The sine of an angle that rounding cannot tell from 0.
constexpr double PARALLEL = 4 * std::numeric_limits<double>::epsilon();

Components UnitNormal(const TPlane3D& plane) {
    const Components unit = Unit(Of(plane.Normal()));
    ZO_ASSERT(Length(unit) > 0, "a normal", "cpp/Geometry/TPlane3D");
    return unit;
}

} // namespace

ZO_POINT_BODY(TPlane3D)

TZoClass* TPlane3D::Register(TZoMetaData* schema) {
    return RegisterPoint<TPlane3D>(schema, "TPlane3D", "NULL",
                                   {{Getfieldclassfor_x, Addfieldfor_x},
                                    {Getfieldclassfor_y, Addfieldfor_y},
                                    {Getfieldclassfor_z, Addfieldfor_z},
                                    {Getfieldclassfor_dx, Addfieldfor_dx},
                                    {Getfieldclassfor_dy, Addfieldfor_dy},
                                    {Getfieldclassfor_dz, Addfieldfor_dz}});
}

TPlane3D::TPlane3D() : dzValue(1) {}
TPlane3D::TPlane3D(const Point3D& point, const TVector3D& normal)
    : xValue(point.X()), yValue(point.Y()), zValue(point.Z()), dxValue(normal.X()), dyValue(normal.Y()),
      dzValue(normal.Z()) {}
TPlane3D::TPlane3D(StreamableInit) : TPlane3D() {}
TPlane3D::TPlane3D(const TPlane3D&) = default;
TPlane3D& TPlane3D::operator=(const TPlane3D&) = default;

bool TPlane3D::Through(const Point3D& a, const Point3D& b, const Point3D& c, TPlane3D& plane,
                       unsigned precision) {
    const Components sides[] = {Of(b - a), Of(c - b), Of(a - c)};
    double lengths[3];
    std::transform(std::begin(sides), std::end(sides), lengths, Length);
    // Two sides that meet, the shorter ones: the height on the third is the least.
    const auto longest = static_cast<unsigned>(std::max_element(lengths, lengths + 3) - lengths);
    const Components& first = sides[(longest + 1) % 3];
    const Components& second = sides[(longest + 2) % 3];
    const Components normal = Cross(Unit(first), Unit(second));
    const double height = lengths[longest] > 0 ? Length(normal) * lengths[(longest + 1) % 3] *
                                                     (lengths[(longest + 2) % 3] / lengths[longest])
                                               : 0;
    if (!(height > 0) || Equal(height, 0, precision)) return false;
    plane = TPlane3D(a, VectorOf(Unit(normal)));
    return true;
}

double TPlane3D::SignedDistance(const Point3D& point) const {
    return Dot(UnitNormal(*this), Of(point - Point()));
}

bool TPlane3D::Contains(const Point3D& point, unsigned precision) const {
    const double distance = SignedDistance(point);
    return distance == 0 || Equal(distance, 0, precision);
}

Point3D TPlane3D::Project(const Point3D& point) const {
    return PointAt(Of(point) - UnitNormal(*this) * SignedDistance(point));
}

bool TPlane3D::Intersection(const Point3D& point, const TVector3D& direction, Point3D& crossing) const {
    const Components along = Unit(Of(direction));
    ZO_ASSERT(Length(along) > 0, "a direction", "cpp/Geometry/TPlane3D");
    const double sine = Dot(UnitNormal(*this), along);
    if (std::abs(sine) <= PARALLEL) return false;
    crossing = PointAt(Of(point) - along * (SignedDistance(point) / sine));
    return true;
}

bool TPlane3D::Intersection(const T3DSegment& segment, Point3D& crossing) const {
    const double start = SignedDistance(segment.Start()), end = SignedDistance(segment.End());
    if (start == end || (start > 0 && end > 0) || (start < 0 && end < 0)) return false;
    crossing = segment.Start().InterpolaPontoComPercentual(segment.End(), start / (start - end));
    return true;
}

bool TPlane3D::Intersection(const TPlane3D& other, Point3D& point, TVector3D& direction) const {
    const Components n = UnitNormal(*this), m = UnitNormal(other), along = Cross(n, m);
    if (Length(along) <= PARALLEL) return false;
    // From this plane's point, in this plane, straight towards the other one.
    const Components towards = Unit(Cross(along, n));
    const double distance = other.SignedDistance(Point()) / Dot(m, towards);
    point = PointAt(Of(Point()) - towards * distance);
    direction = VectorOf(Unit(along));
    return true;
}

bool TPlane3D::operator==(const TPlane3D& other) const {
    return xValue == other.xValue && yValue == other.yValue && zValue == other.zValue &&
           dxValue == other.dxValue && dyValue == other.dyValue && dzValue == other.dzValue;
}
bool TPlane3D::operator==(const ZoObject& other) const {
    const auto* plane = dynamic_cast<const TPlane3D*>(&other);
    return plane != nullptr && *this == *plane;
}

void TPlane3D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, xValue, yValue, zValue);
    WriteCoded(streamer, 210, dxValue, dyValue, dzValue);
}

bool TPlane3D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, xValue, yValue, zValue) ||
           ReadCoded(code, streamer, 210, dxValue, dyValue, dzValue) ||
           ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
