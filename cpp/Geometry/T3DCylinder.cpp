#include "ZoPrimitives/T3DCylinder.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Space.h"
#include "Geometry/SweptMesh.h"
#include "Values/FullTurn.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/T3DCylinder";

Components AxisOf(const T3DCylinder& cylinder) {
    const Components axis = Unit(Of(cylinder.End() - cylinder.Start()));
    return Length(axis) > 0 ? axis : Components{0, 0, 1};
}

/// Where a line is within something convex; nowhere if `from` is greater.
struct Passage {
    double from = -std::numeric_limits<double>::infinity();
    double to = std::numeric_limits<double>::infinity();
};
constexpr Passage NOWHERE{1, 0};

} // namespace

ZO_POINT_BODY(T3DCylinder)

TZoClass* T3DCylinder::Register(TZoMetaData* schema) {
    return RegisterPoint<T3DCylinder>(schema, "T3DCylinder", "NULL",
                                      {{Getfieldclassfor_x1, Addfieldfor_x1},
                                       {Getfieldclassfor_y1, Addfieldfor_y1},
                                       {Getfieldclassfor_z1, Addfieldfor_z1},
                                       {Getfieldclassfor_x2, Addfieldfor_x2},
                                       {Getfieldclassfor_y2, Addfieldfor_y2},
                                       {Getfieldclassfor_z2, Addfieldfor_z2},
                                       {Getfieldclassfor_radius, Addfieldfor_radius}});
}

T3DCylinder::T3DCylinder() = default;
T3DCylinder::T3DCylinder(const Point3D& start, const Point3D& end, double radius)
    : x1Value(start.X()), y1Value(start.Y()), z1Value(start.Z()), x2Value(end.X()), y2Value(end.Y()),
      z2Value(end.Z()), radiusValue(radius) {}
T3DCylinder::T3DCylinder(StreamableInit init) : ZoObjectStreamable(init) {}
T3DCylinder::T3DCylinder(const T3DCylinder&) = default;
T3DCylinder& T3DCylinder::operator=(const T3DCylinder&) = default;

double T3DCylinder::Length() const { return Start().Distance(End()); }

double T3DCylinder::Volume() const { return FULL_TURN / 2 * radiusValue * radiusValue * Length(); }
double T3DCylinder::SurfaceArea() const {
    const double radius = std::abs(radiusValue);
    return FULL_TURN * radius * (radius + Length());
}

T3DBox T3DCylinder::BoundingBox() const {
    const Components axis = AxisOf(*this);
    // How far the ends, which are round, reach in each direction.
    const auto reach = [&](double a, double b) { return std::abs(radiusValue) * std::sqrt(a * a + b * b); };
    const Point3D margin(reach(axis.y, axis.z), reach(axis.x, axis.z), reach(axis.x, axis.y));
    T3DBox box;
    for (const Point3D& end : {Start(), End()}) box.Add(end - margin).Add(end + margin);
    return box;
}

double T3DCylinder::SignedDistance(const Point3D& point) const {
    const Components axis = AxisOf(*this), arm = Of(point - Start());
    const double height = Dot(arm, axis);
    const double side = ZoPrimitives::Length(arm - axis * height) - std::abs(radiusValue);
    const double end = std::max(-height, height - Length());
    if (side <= 0 || end <= 0) return std::max(side, end);
    return ZoPrimitives::Length({side, end});
}

bool T3DCylinder::RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const {
    const Components axis = AxisOf(*this), along = Unit(Of(direction));
    ZO_ASSERT(ZoPrimitives::Length(along) > 0, "a direction", SOURCE);
    const Components arm = Of(origin - Start());
    const double height = Dot(arm, axis), climb = Dot(along, axis), length = Length();
    Passage ends;
    if (climb != 0) {
        const double first = -height / climb, last = (length - height) / climb;
        ends = {std::min(first, last), std::max(first, last)};
    } else if (height < 0 || height > length) {
        ends = NOWHERE;
    }
    // From the point nearest to the axis, both ways: no digits are lost far away.
    const Components across = along - axis * climb, offset = arm - axis * height;
    const double square = Dot(across, across), nearest = square > 0 ? -Dot(offset, across) / square : 0;
    const Components least = offset + across * nearest;
    const double half = radiusValue * radiusValue - Dot(least, least);
    Passage side;
    if (half < 0) {
        side = NOWHERE;
    } else if (square > 0) {
        side = {nearest - std::sqrt(half / square), nearest + std::sqrt(half / square)};
    }
    const double enters = std::max(ends.from, side.from), leaves = std::min(ends.to, side.to);
    if (!(enters <= leaves) || leaves < 0) return false;
    const double distance = enters >= 0 ? enters : leaves;
    const bool atEnd = distance == (enters >= 0 ? ends.from : ends.to);
    const Components normal =
        atEnd ? axis * ((enters >= 0) == (climb > 0) ? -1 : 1) : Unit(offset + across * distance);
    hit = {PointAt(Of(origin) + along * distance), VectorOf(normal), distance};
    return true;
}

T3DMesh T3DCylinder::Mesh(double chordError) const {
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
    TVector3D x, y, z;
    TVector3D::AcadArbitraryAxes(VectorOf(AxisOf(*this)), x, y, z);
    const Station ends[] = {{Of(Start()), Of(x), Of(y)}, {Of(End()), Of(x), Of(y)}};
    return SweptMesh(FlattenedRings(TRegion(TContour(TCircle2D({0, 0}, std::abs(radiusValue)))), chordError),
                     {ends[0], ends[1]});
}

bool T3DCylinder::operator==(const T3DCylinder& other) const {
    return x1Value == other.x1Value && y1Value == other.y1Value && z1Value == other.z1Value &&
           x2Value == other.x2Value && y2Value == other.y2Value && z2Value == other.z2Value &&
           radiusValue == other.radiusValue;
}
bool T3DCylinder::operator==(const ZoObject& other) const {
    const auto* cylinder = dynamic_cast<const T3DCylinder*>(&other);
    return cylinder != nullptr && *this == *cylinder;
}

void T3DCylinder::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value, z1Value);
    WriteCoded(streamer, 11, x2Value, y2Value, z2Value);
    WriteCoded(streamer, 40, radiusValue);
}

bool T3DCylinder::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value, z1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value, z2Value) ||
           ReadCoded(code, streamer, 40, radiusValue) || ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
