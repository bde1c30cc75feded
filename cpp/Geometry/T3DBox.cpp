#include "ZoPrimitives/T3DBox.h"

#include "Geometry/CodedNumbers.h"
#include "Values/PointClass.h"

#include <algorithm>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr double UNBOUNDED = std::numeric_limits<double>::infinity();

} // namespace

ZO_POINT_BODY(T3DBox)

TZoClass* T3DBox::Register(TZoMetaData* schema) {
    return RegisterPoint<T3DBox>(schema, "T3DBox", "NULL",
                                 {{Getfieldclassfor_x1, Addfieldfor_x1},
                                  {Getfieldclassfor_y1, Addfieldfor_y1},
                                  {Getfieldclassfor_z1, Addfieldfor_z1},
                                  {Getfieldclassfor_x2, Addfieldfor_x2},
                                  {Getfieldclassfor_y2, Addfieldfor_y2},
                                  {Getfieldclassfor_z2, Addfieldfor_z2}});
}

T3DBox::T3DBox()
    : x1Value(UNBOUNDED), y1Value(UNBOUNDED), z1Value(UNBOUNDED), x2Value(-UNBOUNDED), y2Value(-UNBOUNDED),
      z2Value(-UNBOUNDED) {}
T3DBox::T3DBox(const Point3D& corner, const Point3D& opposite) : T3DBox() { Add(corner).Add(opposite); }
T3DBox::T3DBox(StreamableInit) : T3DBox() {}
T3DBox::T3DBox(const T3DBox&) = default;
T3DBox& T3DBox::operator=(const T3DBox&) = default;

double T3DBox::Volume() const {
    return IsEmpty() ? 0 : (x2Value - x1Value) * (y2Value - y1Value) * (z2Value - z1Value);
}

Point3D T3DBox::Centre() const {
    if (IsEmpty()) return {};
    const auto middle = [](double low, double high) { return low + (high - low) / 2; };
    return {middle(x1Value, x2Value), middle(y1Value, y2Value), middle(z1Value, z2Value)};
}

T3DBox& T3DBox::Add(const Point3D& point) {
    x1Value = std::min(x1Value, point.X());
    y1Value = std::min(y1Value, point.Y());
    z1Value = std::min(z1Value, point.Z());
    x2Value = std::max(x2Value, point.X());
    y2Value = std::max(y2Value, point.Y());
    z2Value = std::max(z2Value, point.Z());
    return *this;
}

T3DBox& T3DBox::Add(const T3DBox& other) {
    if (other.IsEmpty()) return *this;
    return Add(Point3D(other.x1Value, other.y1Value, other.z1Value))
        .Add(Point3D(other.x2Value, other.y2Value, other.z2Value));
}

bool T3DBox::Contains(const Point3D& point) const { return Intersects(T3DBox(point, point)); }

bool T3DBox::Intersects(const T3DBox& other) const {
    return !IsEmpty() && !other.IsEmpty() && x1Value <= other.x2Value && other.x1Value <= x2Value &&
           y1Value <= other.y2Value && other.y1Value <= y2Value && z1Value <= other.z2Value &&
           other.z1Value <= z2Value;
}

bool T3DBox::operator==(const T3DBox& other) const {
    if (IsEmpty() || other.IsEmpty()) return IsEmpty() && other.IsEmpty();
    return x1Value == other.x1Value && y1Value == other.y1Value && z1Value == other.z1Value &&
           x2Value == other.x2Value && y2Value == other.y2Value && z2Value == other.z2Value;
}
bool T3DBox::operator==(const ZoObject& other) const {
    const auto* box = dynamic_cast<const T3DBox*>(&other);
    return box != nullptr && *this == *box;
}

void T3DBox::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    WriteCoded(streamer, 10, x1Value, y1Value, z1Value);
    WriteCoded(streamer, 11, x2Value, y2Value, z2Value);
}

bool T3DBox::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value, z1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value, z2Value) ||
           ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
