#include "ZoPrimitives/Point3D.h"

#include "Values/Components.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/Checksum.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/NumberText.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/TTransformation.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace ZoPrimitives {

ZO_POINT_BODY(Point3D)

TZoClass* Point3D::Register(TZoMetaData* schema) {
    return RegisterPoint<Point3D>(schema, "Point3D", "NULL",
                                  {{Getfieldclassfor_x, Addfieldfor_x},
                                   {Getfieldclassfor_y, Addfieldfor_y},
                                   {Getfieldclassfor_z, Addfieldfor_z}});
}

Point3D::Point3D() = default;
Point3D::Point3D(double x, double y, double z) : xValue(x), yValue(y), zValue(z) {}
Point3D::Point3D(StreamableInit init) : ZoObjectStreamable(init) {}
Point3D::Point3D(const Point3D& other)
    : ZoObjectStreamable(other), xValue(other.X()), yValue(other.Y()), zValue(other.Z()) {}

Point3D& Point3D::operator=(const Point3D& other) {
    ZoObjectStreamable::operator=(other);
    X(other.X());
    Y(other.Y());
    Z(other.Z());
    return *this;
}

double Point3D::X() const { return xValue; }
double Point3D::Y() const { return yValue; }
double Point3D::Z() const { return zValue; }
void Point3D::X(double value) { xValue = value; }
void Point3D::Y(double value) { yValue = value; }
void Point3D::Z(double value) { zValue = value; }

bool Point3D::operator==(const Point3D& other) const {
    return X() == other.X() && Y() == other.Y() && Z() == other.Z();
}
bool Point3D::operator!=(const Point3D& other) const { return !(*this == other); }
bool Point3D::operator==(const ZoObject& other) const {
    const auto* point = dynamic_cast<const Point3D*>(&other);
    return point != nullptr && *this == *point;
}
bool Point3D::operator<(const Point3D& other) const {
    if (X() != other.X()) return X() < other.X();
    if (Y() != other.Y()) return Y() < other.Y();
    return Z() < other.Z();
}
bool Point3D::operator<=(const Point3D& other) const { return *this == other || *this < other; }
bool Point3D::operator>(const Point3D& other) const { return !(*this <= other); }
bool Point3D::operator>=(const Point3D& other) const { return *this == other || !(*this < other); }

Point3D Point3D::operator+(const Point3D& other) const {
    return {X() + other.X(), Y() + other.Y(), Z() + other.Z()};
}
Point3D Point3D::operator-(const Point3D& other) const {
    return {X() - other.X(), Y() - other.Y(), Z() - other.Z()};
}
Point3D Point3D::operator*(double factor) const { return {X() * factor, Y() * factor, Z() * factor}; }
Point3D Point3D::operator/(double divisor) const { return {X() / divisor, Y() / divisor, Z() / divisor}; }
Point3D& Point3D::operator+=(const Point3D& other) { return *this = *this + other; }
Point3D& Point3D::operator-=(const Point3D& other) { return *this = *this - other; }
Point3D& Point3D::operator*=(double factor) { return *this = *this * factor; }

bool Point3D::Equal(const Point3D& other, unsigned precision) const {
    return XYEqual(other, precision) && ZoPrimitives::Equal(Z(), other.Z(), precision);
}

bool Point3D::XYEqual(const Point3D& other, unsigned precision) const {
    return ZoPrimitives::Equal(X(), other.X(), precision) && ZoPrimitives::Equal(Y(), other.Y(), precision);
}

bool Point3D::Less(const Point3D& other, unsigned precision) const {
    using ZoPrimitives::Equal;
    using ZoPrimitives::Less;
    return Less(X(), other.X(), precision) ||
           (Equal(X(), other.X(), precision) && Less(Y(), other.Y(), precision)) ||
           (XYEqual(other, precision) && Less(Z(), other.Z(), precision));
}

double Point3D::Distance(const Point3D& other) const {
    return Length({other.X() - X(), other.Y() - Y(), other.Z() - Z()});
}

Point3D& Point3D::Move(double dx, double dy, double dz) { return *this += Point3D(dx, dy, dz); }

Point3D& Point3D::Rotate(double angle, const Point3D& centre) { return Rotate(angle, centre, 0, 0, 1); }

Point3D& Point3D::Rotate(double angle, const Point3D& from, const Point3D& to) {
    return Rotate(angle, from, to.X() - from.X(), to.Y() - from.Y(), to.Z() - from.Z());
}

Point3D& Point3D::Rotate(double angle, const Point3D& base, double dx, double dy, double dz) {
    if (dx == 0 && dy == 0 && dz == 0) return *this;
    Point3D arm = *this - base;
    arm.Transform(TTransformation::Rotation(angle, dx, dy, dz));
    return *this = arm + base;
}

Point3D& Point3D::Scale(const Point3D& centre, double factor) {
    return *this = (*this - centre) / factor + centre;
}

Point3D& Point3D::Transform(const TTransformation& transformation) {
    double newX = X(), newY = Y(), newZ = Z();
    transformation.TransformPoint(newX, newY, newZ);
    return *this = Point3D(newX, newY, newZ);
}

Point2D Point3D::InPlaneXY() const { return {X(), Y()}; }

Point3D Point3D::InterpolaPonto(const Point3D& other, double distance) const {
    const double whole = Distance(other);
    if (!Greater(whole, 0, 6)) return *this;
    return *this + (other - *this) * distance / whole;
}

Point3D Point3D::InterpolaPontoComPercentual(const Point3D& other, double t) const {
    return *this + (other - *this) * t;
}

Point3D Point3D::GetRoundedPoint(int decimals) const {
    const auto count = static_cast<unsigned>(std::max(decimals, 0));
    return {ExRound(X(), count), ExRound(Y(), count), ExRound(Z(), count)};
}

ZoString Point3D::CoordsToString() const { return ZoString::FormatString("%g;%g;%g", X(), Y(), Z()); }

bool Point3D::CoordsFromString(const ZoString& text) {
    const std::string_view all = text.c_str();
    const auto first = all.find(';');
    if (first == all.npos) return false;
    const auto second = all.find(';', first + 1);
    if (second == all.npos || all.find(';', second + 1) != all.npos) return false;
    X(RealOf(all));
    Y(RealOf(all.substr(first + 1)));
    Z(RealOf(all.substr(second + 1)));
    return true;
}

ZoString Point3D::ToString() const {
    const auto number = [](double value) { return FormatFloat(value, 1, false, '.'); };
    return "(" + number(X()) + ", " + number(Y()) + ", " + number(Z()) + ")";
}

void Point3D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << 10 << X() << 20 << Y() << 30 << Z();
}

bool Point3D::ReadData(int code, InputStreamer& streamer) {
    if (code != 10 && code != 20 && code != 30) return ZoObjectStreamable::ReadData(code, streamer);
    double value = 0;
    streamer >> value;
    if (code == 10) X(value);
    if (code == 20) Y(value);
    if (code == 30) Z(value);
    return true;
}

TChecksumType CreateChecksum(const Point3D& point) {
    return (CreateChecksum(point.Z()).GetValue() ^ CreateChecksum(point.Y()).GetValue() ^
            CreateChecksum(point.X()).GetValue())
           << 1;
}

} // namespace ZoPrimitives
