#include "ZoPrimitives/RRect.h"

#include "Geometry/CodedNumbers.h"
#include "Values/PointClass.h"

#include <algorithm>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr double UNBOUNDED = std::numeric_limits<double>::infinity();

} // namespace

ZO_POINT_BODY(RRect)

TZoClass* RRect::Register(TZoMetaData* schema) {
    return RegisterPoint<RRect>(schema, "RRect", "NULL",
                                {{Getfieldclassfor_x1, Addfieldfor_x1},
                                 {Getfieldclassfor_y1, Addfieldfor_y1},
                                 {Getfieldclassfor_x2, Addfieldfor_x2},
                                 {Getfieldclassfor_y2, Addfieldfor_y2}});
}

RRect::RRect() : x1Value(UNBOUNDED), y1Value(UNBOUNDED), x2Value(-UNBOUNDED), y2Value(-UNBOUNDED) {}
RRect::RRect(const Point2D& corner, const Point2D& opposite)
    : x1Value(std::min(corner.X(), opposite.X())), y1Value(std::min(corner.Y(), opposite.Y())),
      x2Value(std::max(corner.X(), opposite.X())), y2Value(std::max(corner.Y(), opposite.Y())) {}
RRect::RRect(StreamableInit) : RRect() {}
RRect::RRect(const RRect&) = default;
RRect& RRect::operator=(const RRect&) = default;

Point2D RRect::Centre() const { return {x1Value + Width() / 2, y1Value + Height() / 2}; }

RRect& RRect::Add(const Point2D& point) {
    x1Value = std::min(x1Value, point.X());
    y1Value = std::min(y1Value, point.Y());
    x2Value = std::max(x2Value, point.X());
    y2Value = std::max(y2Value, point.Y());
    return *this;
}

RRect& RRect::Add(const RRect& other) {
    if (other.IsEmpty()) return *this;
    return Add(Point2D(other.x1Value, other.y1Value)).Add(Point2D(other.x2Value, other.y2Value));
}

RRect& RRect::Inflate(double margin) {
    if (IsEmpty()) return *this;
    x1Value -= margin;
    y1Value -= margin;
    x2Value += margin;
    y2Value += margin;
    return IsEmpty() ? *this = RRect() : *this;
}

RRect RRect::Intersection(const RRect& other) const {
    RRect result;
    if (!Intersects(other)) return result;
    result.x1Value = std::max(x1Value, other.x1Value);
    result.y1Value = std::max(y1Value, other.y1Value);
    result.x2Value = std::min(x2Value, other.x2Value);
    result.y2Value = std::min(y2Value, other.y2Value);
    return result;
}

bool RRect::Contains(const Point2D& point) const {
    return x1Value <= point.X() && point.X() <= x2Value && y1Value <= point.Y() && point.Y() <= y2Value;
}

bool RRect::Intersects(const RRect& other) const {
    return !IsEmpty() && !other.IsEmpty() && x1Value <= other.x2Value && other.x1Value <= x2Value &&
           y1Value <= other.y2Value && other.y1Value <= y2Value;
}

bool RRect::operator==(const RRect& other) const {
    if (IsEmpty() || other.IsEmpty()) return IsEmpty() && other.IsEmpty();
    return x1Value == other.x1Value && y1Value == other.y1Value && x2Value == other.x2Value &&
           y2Value == other.y2Value;
}
bool RRect::operator==(const ZoObject& other) const {
    const auto* rectangle = dynamic_cast<const RRect*>(&other);
    return rectangle != nullptr && *this == *rectangle;
}

void RRect::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value);
    WriteCoded(streamer, 11, x2Value, y2Value);
}

bool RRect::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value) || ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
