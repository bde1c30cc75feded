#include "ZoPrimitives/T3DSegment.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Space.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/T3DSegment";

} // namespace

ZO_POINT_BODY(T3DSegment)

TZoClass* T3DSegment::Register(TZoMetaData* schema) {
    return RegisterPoint<T3DSegment>(schema, "T3DSegment", "NULL",
                                     {{Getfieldclassfor_x1, Addfieldfor_x1},
                                      {Getfieldclassfor_y1, Addfieldfor_y1},
                                      {Getfieldclassfor_z1, Addfieldfor_z1},
                                      {Getfieldclassfor_x2, Addfieldfor_x2},
                                      {Getfieldclassfor_y2, Addfieldfor_y2},
                                      {Getfieldclassfor_z2, Addfieldfor_z2}});
}

T3DSegment::T3DSegment() = default;
T3DSegment::T3DSegment(const Point3D& start, const Point3D& end)
    : x1Value(start.X()), y1Value(start.Y()), z1Value(start.Z()), x2Value(end.X()), y2Value(end.Y()),
      z2Value(end.Z()) {}
T3DSegment::T3DSegment(StreamableInit init) : ZoObjectStreamable(init) {}
T3DSegment::T3DSegment(const T3DSegment&) = default;
T3DSegment& T3DSegment::operator=(const T3DSegment&) = default;

double T3DSegment::Length() const { return Start().Distance(End()); }

Point3D T3DSegment::NearestPoint(const Point3D& point) const {
    return PointAt(NearestBetween(Of(Start()), Of(End()), Of(point)));
}

double T3DSegment::Distance(const T3DSegment& other) const {
    const Components a = Of(Start()), u = Of(End()) - a, c = Of(other.Start()), v = Of(other.End()) - c;
    double least = std::min({SignedDistance(other.Start()), SignedDistance(other.End()),
                             other.SignedDistance(Start()), other.SignedDistance(End())});
    // Where the lines are nearest, if that is within both; else an end is as near.
    const Components alongU = Unit(u), alongV = Unit(v), n = Cross(alongU, alongV);
    const double square = Dot(n, n);
    if (!(square > 0)) return least;
    const double s = Dot(Cross(c - a, alongV), n) / square, t = Dot(Cross(c - a, alongU), n) / square;
    if (s >= 0 && s <= ZoPrimitives::Length(u) && t >= 0 && t <= ZoPrimitives::Length(v))
        least = std::min(least, ZoPrimitives::Length((a + alongU * s) - (c + alongV * t)));
    return least;
}

double T3DSegment::Volume() const { return 0; }
double T3DSegment::SurfaceArea() const { return 0; }
T3DBox T3DSegment::BoundingBox() const { return {Start(), End()}; }
double T3DSegment::SignedDistance(const Point3D& point) const { return NearestPoint(point).Distance(point); }

bool T3DSegment::RayHit(const Point3D&, const TVector3D& direction, T3DHit&) const {
    ZO_ASSERT(direction.Magnitude() > 0, "a direction", SOURCE);
    return false;
}

T3DMesh T3DSegment::Mesh(double chordError) const {
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
    return {};
}

bool T3DSegment::operator==(const T3DSegment& other) const {
    return x1Value == other.x1Value && y1Value == other.y1Value && z1Value == other.z1Value &&
           x2Value == other.x2Value && y2Value == other.y2Value && z2Value == other.z2Value;
}
bool T3DSegment::operator==(const ZoObject& other) const {
    const auto* segment = dynamic_cast<const T3DSegment*>(&other);
    return segment != nullptr && *this == *segment;
}

void T3DSegment::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value, z1Value);
    WriteCoded(streamer, 11, x2Value, y2Value, z2Value);
}

bool T3DSegment::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value, z1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value, z2Value) ||
           ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
