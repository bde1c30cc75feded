#include "ZoPrimitives/TVector2D.h"

#include "ZoPrimitives/Length.h"
#include "ZoPrimitives/PointClass.h"

#include <algorithm>
#include <cmath>

namespace ZoPrimitives {

ZO_POINT_BODY(TVector2D)

namespace {

/// Times the power of two that keeps products of its components in range.
TVector2D Scaled(const TVector2D& v) {
    const int scale = ScaleOf(v.X(), v.Y());
    return {std::scalbn(v.X(), scale), std::scalbn(v.Y(), scale)};
}

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

double TVector2D::Magnitude() const { return Length(X(), Y()); }

bool TVector2D::MagnitudeGreaterThanZero() const { return Greater(Magnitude(), 0, 6); }

TVector2D& TVector2D::Normalize() {
    const double magnitude = Magnitude();
    if (!(magnitude > 0)) return *this;
    if (IsModerate(magnitude)) return *this = *this / magnitude;
    const TVector2D scaled = Scaled(*this);
    return *this = scaled / scaled.Magnitude();
}

TVector2D TVector2D::Normalized() const { return TVector2D(*this).Normalize(); }

double TVector2D::DotProduct(const Point2D& other) const { return X() * other.X() + Y() * other.Y(); }

double TVector2D::CrossProduct(const Point2D& other) const { return X() * other.Y() - Y() * other.X(); }

double TVector2D::Angle(const TVector2D& other) const {
    const double magnitude = Magnitude();
    const double otherMagnitude = other.Magnitude();
    if (magnitude == 0 || otherMagnitude == 0) return 0;
    const double product = magnitude * otherMagnitude;
    if (IsModerate(product)) return std::acos(std::clamp(DotProduct(other) / product, -1.0, 1.0));
    const TVector2D a = Scaled(*this), b = Scaled(other);
    return std::acos(std::clamp(a.DotProduct(b) / (a.Magnitude() * b.Magnitude()), -1.0, 1.0));
}

double TVector2D::SignedAngle(const TVector2D& other) const {
    const double angle = Angle(other);
    return Scaled(*this).CrossProduct(Scaled(other)) < 0 ? -angle : angle;
}

} // namespace ZoPrimitives
