#include "ZoPrimitives/TVector2D.h"

#include "Values/Components.h"
#include "Values/PointClass.h"

#include <cmath>

namespace ZoPrimitives {

ZO_POINT_BODY(TVector2D)

namespace {

Components Of(const Point2D& v) { return {v.X(), v.Y()}; }

} // namespace

TZoClass* TVector2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TVector2D>(schema, "TVector2D", "Point2D", {});
}

TVector2D::TVector2D() = default;
TVector2D::TVector2D(double x, double y) : Point2D(x, y) {}
TVector2D::TVector2D(const Point2D& point) : Point2D(point) {}
TVector2D::TVector2D(const Point2D& from, const Point2D& to) : Point2D(to - from) {}
TVector2D::TVector2D(StreamableInit init) : Point2D(init) {}
TVector2D::TVector2D(const TVector2D&) = default;
TVector2D& TVector2D::operator=(const TVector2D&) = default;

TVector2D TVector2D::operator+(const Point2D& other) const { return {X() + other.X(), Y() + other.Y()}; }
TVector2D TVector2D::operator-(const Point2D& other) const { return {X() - other.X(), Y() - other.Y()}; }
TVector2D TVector2D::operator-() const { return {-X(), -Y()}; }
TVector2D TVector2D::operator*(double factor) const { return {X() * factor, Y() * factor}; }
TVector2D TVector2D::operator/(double divisor) const { return {X() / divisor, Y() / divisor}; }

double TVector2D::Magnitude() const { return Length(Of(*this)); }

bool TVector2D::MagnitudeGreaterThanZero() const { return Greater(Magnitude(), 0, 6); }

TVector2D& TVector2D::Normalize() {
    const Components unit = Unit(Of(*this));
    return *this = TVector2D(unit.x, unit.y);
}

TVector2D TVector2D::Normalized() const { return TVector2D(*this).Normalize(); }

double TVector2D::DotProduct(const Point2D& other) const { return X() * other.X() + Y() * other.Y(); }

double TVector2D::CrossProduct(const Point2D& other) const { return X() * other.Y() - Y() * other.X(); }

double TVector2D::Angle(const TVector2D& other) const { return std::acos(Cosine(Of(*this), Of(other))); }

double TVector2D::SignedAngle(const TVector2D& other) const {
    return ZoPrimitives::SignedAngle(Of(*this), Of(other), {0, 0, 1});
}

} // namespace ZoPrimitives
