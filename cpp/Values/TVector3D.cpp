#include "ZoPrimitives/TVector3D.h"

#include "Values/Components.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/TTransformation.h"

#include <cmath>

namespace ZoPrimitives {

ZO_POINT_BODY(TVector3D)

namespace {

Components Of(const Point3D& v) { return {v.X(), v.Y(), v.Z()}; }

TVector3D Vector(const Components& v) { return {v.x, v.y, v.z}; }

} // namespace

TZoClass* TVector3D::Register(TZoMetaData* schema) {
    return RegisterPoint<TVector3D>(schema, "TVector3D", "Point3D", {});
}

TVector3D::TVector3D() = default;
TVector3D::TVector3D(double x, double y, double z) : Point3D(x, y, z) {}
TVector3D::TVector3D(const Point3D& point) : Point3D(point) {}
TVector3D::TVector3D(const Point3D& from, const Point3D& to) : Point3D(to - from) {}
TVector3D::TVector3D(StreamableInit init) : Point3D(init) {}
TVector3D::TVector3D(const TVector3D&) = default;
TVector3D& TVector3D::operator=(const TVector3D&) = default;

TVector3D TVector3D::operator+(const Point3D& other) const {
    return {X() + other.X(), Y() + other.Y(), Z() + other.Z()};
}
TVector3D TVector3D::operator-(const Point3D& other) const {
    return {X() - other.X(), Y() - other.Y(), Z() - other.Z()};
}
TVector3D TVector3D::operator-() const { return {-X(), -Y(), -Z()}; }
TVector3D TVector3D::operator*(double factor) const { return {X() * factor, Y() * factor, Z() * factor}; }
TVector3D TVector3D::operator/(double divisor) const { return {X() / divisor, Y() / divisor, Z() / divisor}; }

double TVector3D::Magnitude() const { return Length(Of(*this)); }

bool TVector3D::MagnitudeGreaterThanZero() const { return Greater(Magnitude(), 0, 6); }

TVector3D& TVector3D::Normalize() { return *this = Vector(Unit(Of(*this))); }

TVector3D TVector3D::Normalized() const { return TVector3D(*this).Normalize(); }

double TVector3D::DotProduct(const Point3D& other) const { return Dot(Of(*this), Of(other)); }

TVector3D TVector3D::CrossProduct(const Point3D& other) const { return Vector(Cross(Of(*this), Of(other))); }

TVector3D TVector3D::Abs() const { return {std::abs(X()), std::abs(Y()), std::abs(Z())}; }

double TVector3D::Angle(const TVector3D& other) const { return std::acos(CosAngle(other)); }

double TVector3D::CosAngle(const TVector3D& other) const { return Cosine(Of(*this), Of(other)); }

double TVector3D::SignedAngle(const TVector3D& other, const TVector3D& normal) const {
    return ZoPrimitives::SignedAngle(Of(*this), Of(other), Of(normal));
}

double TVector3D::SignedAngle(const TVector3D& other) const { return SignedAngle(other, {0, 0, 1}); }

double TVector3D::CosSignedAngle(const TVector3D& other) const { return CosAngle(other); }

bool TVector3D::ColinearTo(const TVector3D& other, unsigned precision) const {
    return ExRound(CrossProduct(other).Magnitude(), precision) == 0;
}

bool TVector3D::PerpendicularTo(const TVector3D& other, unsigned precision) const {
    return ExRound(DotProduct(other), precision) == 0;
}

bool TVector3D::CoplanarTo(const TVector3D& b, const TVector3D& c, unsigned precision) const {
    return ExRound(DotProduct(b.CrossProduct(c)), precision) == 0;
}

TVector3D TVector3D::Project(const TVector3D& other) const {
    const TVector3D axis = Vector(Scaled(Of(other)));
    const double square = axis.DotProduct(axis);
    return square == 0 ? TVector3D() : axis * (DotProduct(axis) / square);
}

TVector3D TVector3D::ProjectionOnPlane(const TVector3D& normal) const { return *this - Project(normal); }

TVector3D TVector3D::LocalCoordinates(const TVector3D& xAxis, const TVector3D& yAxis,
                                      const TVector3D& zAxis) const {
    return {DotProduct(xAxis), DotProduct(yAxis), DotProduct(zAxis)};
}

TVector3D TVector3D::WorldCoordinates(const TVector3D& xAxis, const TVector3D& yAxis,
                                      const TVector3D& zAxis) const {
    return xAxis * X() + yAxis * Y() + zAxis * Z();
}

TVector3D& TVector3D::Transform(const TTransformation& transformation) {
    double newX = X(), newY = Y(), newZ = Z();
    transformation.TransformDirection(newX, newY, newZ);
    return *this = TVector3D(newX, newY, newZ);
}

TVector3D TVector3D::CreateUnitVector(const Point3D& from, const Point3D& to) {
    return TVector3D(from, to).Normalized();
}

void TVector3D::AcadArbitraryAxes(const TVector3D& normal, TVector3D& xAxis, TVector3D& yAxis,
                                  TVector3D& zAxis) {
    const TVector3D z = normal.Magnitude() == 0 ? TVector3D(0, 0, 1) : normal.Normalized();
    const bool nearZ = std::abs(z.X()) < 0.015625 && std::abs(z.Y()) < 0.015625;
    const TVector3D x = (nearZ ? TVector3D(0, 1, 0) : TVector3D(0, 0, 1)).CrossProduct(z).Normalized();
    yAxis = z.CrossProduct(x).Normalized();
    xAxis = x;
    zAxis = z;
}

TVector3D TVector3D::AcadArbitraryOCS(const TVector3D& normal) const {
    TVector3D x, y, z;
    AcadArbitraryAxes(normal, x, y, z);
    return LocalCoordinates(x, y, z);
}

TVector3D TVector3D::AcadArbitraryWCS(const TVector3D& normal) const {
    TVector3D x, y, z;
    AcadArbitraryAxes(normal, x, y, z);
    return WorldCoordinates(x, y, z);
}

void TVector3D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << 210 << X() << 220 << Y() << 230 << Z();
}

bool TVector3D::ReadData(int code, InputStreamer& streamer) {
    if (code != 210 && code != 220 && code != 230) return Point3D::ReadData(code, streamer);
    double value = 0;
    streamer >> value;
    if (code == 210) X(value);
    if (code == 220) Y(value);
    if (code == 230) Z(value);
    return true;
}

} // namespace ZoPrimitives
