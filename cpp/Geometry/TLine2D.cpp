#include "ZoPrimitives/TLine2D.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Predicates.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/TSegment2D.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZoPrimitives {

ZO_POINT_BODY(TLine2D)

TZoClass* TLine2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TLine2D>(schema, "TLine2D", "NULL",
                                  {{Getfieldclassfor_x, Addfieldfor_x},
                                   {Getfieldclassfor_y, Addfieldfor_y},
                                   {Getfieldclassfor_dx, Addfieldfor_dx},
                                   {Getfieldclassfor_dy, Addfieldfor_dy}});
}

namespace {

LDPoint Of(const Point2D& point) { return {point.X(), point.Y()}; }

} // namespace

int Orientation(const Point2D& a, const Point2D& b, const Point2D& c) { return SideOf(Of(a), Of(b), Of(c)); }

TLine2D::TLine2D() : dxValue(1) {}
TLine2D::TLine2D(const Point2D& point, const TVector2D& direction)
    : xValue(point.X()), yValue(point.Y()), dxValue(direction.X()), dyValue(direction.Y()) {}
TLine2D::TLine2D(StreamableInit) : TLine2D() {}
TLine2D::TLine2D(const TLine2D&) = default;
TLine2D& TLine2D::operator=(const TLine2D&) = default;

TLine2D TLine2D::Through(const Point2D& a, const Point2D& b) { return {a, TVector2D(a, b)}; }

double TLine2D::SignedDistance(const Point2D& point) const {
    const TVector2D unit = Direction().Normalized();
    ZO_ASSERT(unit.Magnitude() > 0, "a direction", "cpp/Geometry/TLine2D");
    return unit.CrossProduct(point - Point());
}

Point2D TLine2D::Project(const Point2D& point) const {
    const TVector2D unit = Direction().Normalized();
    ZO_ASSERT(unit.Magnitude() > 0, "a direction", "cpp/Geometry/TLine2D");
    return Point() + unit * unit.DotProduct(point - Point());
}

bool TLine2D::IsParallelTo(const TLine2D& other) const {
    return CrossSign({0, 0}, {dxValue, dyValue}, {0, 0}, {other.dxValue, other.dyValue}) == 0;
}

bool TLine2D::Intersection(const TLine2D& other, Point2D& point) const {
    if (IsParallelTo(other)) return false;
    const LDPoint crossing = CrossingPoint({xValue, yValue}, {dxValue, dyValue}, {other.xValue, other.yValue},
                                           {other.dxValue, other.dyValue});
    point = Point2D(crossing.x, crossing.y);
    return true;
}

TSegment2D TLine2D::Beside(const RRect& rectangle) const {
    const TVector2D unit = Direction().Normalized();
    ZO_ASSERT(unit.Magnitude() > 0, "a direction", "cpp/Geometry/TLine2D");
    if (rectangle.IsEmpty()) return {Point(), Point()};
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (const double x : {rectangle.X1(), rectangle.X2()}) {
        for (const double y : {rectangle.Y1(), rectangle.Y2()}) {
            const double at = unit.DotProduct(Point2D(x, y) - Point());
            low = std::min(low, at);
            high = std::max(high, at);
        }
    }
    const double more = 1e-6 * (high - low) + 1e-12 * std::max(std::abs(low), std::abs(high));
    return {Point() + unit * (low - more), Point() + unit * (high + more)};
}

bool TLine2D::operator==(const TLine2D& other) const {
    return xValue == other.xValue && yValue == other.yValue && dxValue == other.dxValue &&
           dyValue == other.dyValue;
}
bool TLine2D::operator==(const ZoObject& other) const {
    const auto* line = dynamic_cast<const TLine2D*>(&other);
    return line != nullptr && *this == *line;
}

void TLine2D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, xValue, yValue);
    WriteCoded(streamer, 11, dxValue, dyValue);
}

bool TLine2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, xValue, yValue) || ReadCoded(code, streamer, 11, dxValue, dyValue) ||
           ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
