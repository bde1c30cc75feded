#include "ZoPrimitives/TRay2D.h"

#include "Geometry/CodedNumbers.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/ZoAssert.h"

namespace ZoPrimitives {

ZO_POINT_BODY(TRay2D)

TZoClass* TRay2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TRay2D>(schema, "TRay2D", "NULL",
                                 {{Getfieldclassfor_x, Addfieldfor_x},
                                  {Getfieldclassfor_y, Addfieldfor_y},
                                  {Getfieldclassfor_dx, Addfieldfor_dx},
                                  {Getfieldclassfor_dy, Addfieldfor_dy}});
}

TRay2D::TRay2D() : dxValue(1) {}
TRay2D::TRay2D(const Point2D& start, const TVector2D& direction)
    : xValue(start.X()), yValue(start.Y()), dxValue(direction.X()), dyValue(direction.Y()) {}
TRay2D::TRay2D(StreamableInit) : TRay2D() {}
TRay2D::TRay2D(const TRay2D&) = default;
TRay2D& TRay2D::operator=(const TRay2D&) = default;

TRay2D TRay2D::Through(const Point2D& a, const Point2D& b) { return {a, TVector2D(a, b)}; }

Point2D TRay2D::NearestPoint(const Point2D& point) const {
    const Point2D projected = TLine2D(Start(), Direction()).Project(point);
    return Direction().DotProduct(point - Start()) <= 0 ? Start() : projected;
}

TSegment2D TRay2D::Beside(const RRect& rectangle) const {
    const TSegment2D part = TLine2D(Start(), Direction()).Beside(rectangle);
    const bool ahead = Direction().DotProduct(part.End() - Start()) > 0;
    return {Start(), ahead ? part.End() : Start()};
}

bool TRay2D::operator==(const TRay2D& other) const {
    return xValue == other.xValue && yValue == other.yValue && dxValue == other.dxValue &&
           dyValue == other.dyValue;
}
bool TRay2D::operator==(const ZoObject& other) const {
    const auto* ray = dynamic_cast<const TRay2D*>(&other);
    return ray != nullptr && *this == *ray;
}

void TRay2D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, xValue, yValue);
    WriteCoded(streamer, 11, dxValue, dyValue);
}

bool TRay2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, xValue, yValue) || ReadCoded(code, streamer, 11, dxValue, dyValue) ||
           ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
