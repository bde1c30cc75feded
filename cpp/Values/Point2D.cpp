#include "ZoPrimitives/Point2D.h"

#include "Values/Components.h"
#include "Values/FullTurn.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/Point3D.h"
#include "ZoPrimitives/TTransformation.h"
#include "ZoPrimitives/TVector2D.h"
#include "ZoPrimitives/TVector3D.h"

#include <cmath>

namespace ZoPrimitives {

ZO_POINT_BODY(Point2D)

TZoClass* Point2D::Register(TZoMetaData* schema) {
    return RegisterPoint<Point2D>(schema, "Point2D", "NULL",
                                  {{Getfieldclassfor_x, Addfieldfor_x}, {Getfieldclassfor_y, Addfieldfor_y}});
}

Point2D::Point2D() = default;
Point2D::Point2D(double x, double y) : xValue(x), yValue(y) {}
Point2D::Point2D(StreamableInit init) : ZoObjectStreamable(init) {}
Point2D::Point2D(const Point2D&) = default;
Point2D& Point2D::operator=(const Point2D&) = default;

bool Point2D::operator==(const Point2D& other) const {
    return xValue == other.xValue && yValue == other.yValue;
}
bool Point2D::operator!=(const Point2D& other) const {
    return xValue != other.xValue || yValue != other.yValue;
}
bool Point2D::operator==(const ZoObject& other) const {
    const auto* point = dynamic_cast<const Point2D*>(&other);
    return point != nullptr && *this == *point;
}
bool Point2D::operator<(const Point2D& other) const {
    return xValue < other.xValue || (xValue == other.xValue && yValue < other.yValue);
}
bool Point2D::operator<=(const Point2D& other) const { return *this == other || *this < other; }
bool Point2D::operator>(const Point2D& other) const { return !(*this <= other); }
bool Point2D::operator>=(const Point2D& other) const { return *this == other || !(*this < other); }

Point2D Point2D::operator+(const Point2D& other) const {
    return {xValue + other.xValue, yValue + other.yValue};
}
Point2D Point2D::operator-(const Point2D& other) const {
    return {xValue - other.xValue, yValue - other.yValue};
}
Point2D Point2D::operator*(double factor) const { return {xValue * factor, yValue * factor}; }
Point2D Point2D::operator/(double divisor) const { return {xValue / divisor, yValue / divisor}; }

bool Point2D::Equal(const Point2D& other, unsigned precision) const {
    return ZoPrimitives::Equal(xValue, other.xValue, precision) &&
           ZoPrimitives::Equal(yValue, other.yValue, precision);
}

bool Point2D::Less(const Point2D& other, unsigned precision) const {
    return ZoPrimitives::Less(xValue, other.xValue, precision) ||
           (ZoPrimitives::Equal(xValue, other.xValue, precision) &&
            ZoPrimitives::Less(yValue, other.yValue, precision));
}

Point2D Point2D::Major(const Point2D& other, unsigned precision) const {
    return other.Less(*this, precision) ? *this : other;
}

Point2D Point2D::Minor(const Point2D& other, unsigned precision) const {
    return Less(other, precision) ? *this : other;
}

double Point2D::Distance(const Point2D& other) const {
    return Length({other.xValue - xValue, other.yValue - yValue});
}

Point2D& Point2D::Move(double dx, double dy) {
    xValue += dx;
    yValue += dy;
    return *this;
}

Point2D& Point2D::Rotate(double angle) {
    const double theta = FULL_TURN - angle;
    const double cosine = std::cos(theta);
    const double sine = std::sin(theta);
    const double oldX = xValue;
    xValue = oldX * cosine + yValue * sine;
    yValue = yValue * cosine - oldX * sine;
    return *this;
}

Point2D& Point2D::Rotate(double angle, const Point2D& centre) {
    const Point2D fixed = centre; // `centre` may be this point
    return Move(-fixed.xValue, -fixed.yValue).Rotate(angle).Move(fixed.xValue, fixed.yValue);
}

Point2D& Point2D::Scale(const Point2D& centre, double factor) {
    const Point2D scaled = (*this - centre) / factor + centre;
    xValue = ExRound(scaled.xValue, 3);
    yValue = ExRound(scaled.yValue, 3);
    return *this;
}

Point2D Point2D::InterpolaPonto(const Point2D& other, double distance) const {
    const double whole = Distance(other);
    if (!Greater(whole, 0, 6)) return *this;
    return *this + (other - *this) * distance / whole;
}

TQuadrant Point2D::Quadrant(unsigned precision) const {
    const auto equal = [&](double value) { return ZoPrimitives::Equal(value, 0, precision); };
    const auto less = [&](double value) { return ZoPrimitives::Less(value, 0, precision); };
    if ((equal(xValue) && less(yValue)) || (less(xValue) && equal(yValue))) return ThirdQuadrant;
    const bool above = GreaterEqual(yValue, 0, precision);
    if (GreaterEqual(xValue, 0, precision)) return above ? FirstQuadrant : FourthQuadrant;
    return above ? SecondQuadrant : ThirdQuadrant;
}

bool Point2D::IsInSegment(const Point2D& a, const Point2D& b, unsigned precision) const {
    if (Equal(a, precision) || Equal(b, precision)) return true;
    const Point2D start = a / 2; // halved, so that differences do not overflow
    const TVector2D whole(start, b / 2), part(start, *this / 2);
    const Components axis{whole.X(), whole.Y()};
    const int scale = ScaleOf(axis);
    const Components scaled = Scaled(axis, scale);
    const double t = Dot(Scaled({part.X(), part.Y()}, scale), scaled) / Dot(scaled, scaled);
    return t > 0 && t < 1 && ((part - whole * t) * 2).Equal({}, precision);
}

ZoString Point2D::ToString() const { return ZoString("x:") + xValue + " | y:" + yValue; }

void Point2D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << 10 << X() << 20 << Y();
}

bool Point2D::ReadData(int code, InputStreamer& streamer) {
    if (code != 10 && code != 20) return ZoObjectStreamable::ReadData(code, streamer);
    double value = 0;
    streamer >> value;
    if (code == 10) X(value);
    if (code == 20) Y(value);
    return true;
}

void ZoRegisterPoints(TZoMetaData* schema) {
    Point2D::Register(schema);
    TVector2D::Register(schema);
    Point3D::Register(schema);
    TVector3D::Register(schema);
    TTransformation::Register(schema);
}

} // namespace ZoPrimitives
