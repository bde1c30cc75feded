#include "ZoPrimitives/TBezier2D.h"

#include "Geometry/CodedNumbers.h"
#include "Geometry/Pieces.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Geometry/TBezier2D";
constexpr int MOST_LEVELS = 48;
constexpr int MOST_HALVINGS = 52;

/// The control points.
using Curve = std::array<LDPoint, 4>;

Curve CurveOf(const TBezier2D& bezier) {
    Curve curve;
    for (unsigned i = 0; i < 4; ++i) {
        const Point2D p = bezier.ControlPoint(i + 1);
        curve[i] = {p.X(), p.Y()};
    }
    return curve;
}

LDPoint Between(const LDPoint& a, const LDPoint& b, double t) { return a * (1 - t) + b * t; }

struct Halves {
    Curve first;
    Curve second;
};
Halves Split(const Curve& c, double t) {
    const LDPoint ab = Between(c[0], c[1], t), bc = Between(c[1], c[2], t), cd = Between(c[2], c[3], t);
    const LDPoint abc = Between(ab, bc, t), bcd = Between(bc, cd, t), middle = Between(abc, bcd, t);
    return {{c[0], ab, abc, middle}, {middle, bcd, cd, c[3]}};
}

LDPoint DerivativeAt(const Curve& c, double t) {
    const double s = 1 - t;
    return ((c[1] - c[0]) * (s * s) + (c[2] - c[1]) * (2 * s * t) + (c[3] - c[2]) * (t * t)) * 3;
}

/// With the quadrature of Gauss and Legendre of 8 points.
double SpeedOver(const Curve& c, double from, double to) {
    constexpr double NODES[] = {0.1834346424956498, 0.5255324099163290, 0.7966664774136267,
                                0.9602898564975363};
    constexpr double WEIGHTS[] = {0.3626837833783620, 0.3137066458778873, 0.2223810344533745,
                                  0.1012285362903763};
    const double middle = (from + to) / 2, half = (to - from) / 2;
    double sum = 0;
    for (int i = 0; i < 4; ++i) {
        for (const double sign : {-1.0, 1.0}) {
            const LDPoint speed = DerivativeAt(c, middle + sign * half * NODES[i]);
            sum += WEIGHTS[i] * std::hypot(speed.x, speed.y);
        }
    }
    return sum * half;
}

double LengthOver(const Curve& c, double from, double to, double rough, double error, int level) {
    const double middle = (from + to) / 2;
    const double first = SpeedOver(c, from, middle), second = SpeedOver(c, middle, to);
    if (std::abs(first + second - rough) <= error || level == MOST_LEVELS) return first + second;
    return LengthOver(c, from, middle, first, error, level + 1) +
           LengthOver(c, middle, to, second, error, level + 1);
}

/// Where one coordinate's derivative is 0, between 0 and 1.
void AddTurns(double a, double b, double c, double d, std::vector<double>& turns) {
    const double p = b - a, q = c - b, r = d - c;
    const double square = p - 2 * q + r, half = q - p; // square t^2 + 2 half t + p
    const double discriminant = half * half - square * p;
    if (!(discriminant >= 0)) return;
    const double root = -(half + std::copysign(std::sqrt(discriminant), half));
    for (const double t : {root / square, p / root}) {
        if (t > 0 && t < 1) turns.push_back(t);
    }
}

/// A polynomial of the fifth degree between 0 and 1, in Bernstein's form.
using Quintic = std::array<double, 6>;

/// Where the curve's direction is at right angles to the way to a point, the value is 0.
Quintic Slope(const Curve& c, const LDPoint& p) {
    constexpr double OF_THREE[] = {1, 3, 3, 1}, OF_TWO[] = {1, 2, 1}, OF_FIVE[] = {1, 5, 10, 10, 5, 1};
    Quintic slope{};
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const LDPoint way = c[i] - p, step = c[j + 1] - c[j];
            slope[i + j] += OF_THREE[i] * OF_TWO[j] / OF_FIVE[i + j] * (way.x * step.x + way.y * step.y);
        }
    }
    return slope;
}

/// Calls `visit(t)` for each root in a part of the range from 0 to 1, for which `q` is given.
template <class Visit>
void ForEachRoot(const Quintic& q, double from, double to, int level, Visit visit) {
    int changes = 0;
    double last = 0;
    for (const double value : q) {
        if (value * last < 0) ++changes;
        if (value != 0) last = value;
    }
    if (changes == 0) return;
    const double middle = (from + to) / 2;
    if (level == MOST_HALVINGS || middle <= from || middle >= to) return visit(middle);
    Quintic first{}, second = q;
    for (std::size_t i = 0; i < 6; ++i) {
        first[i] = second[0];
        for (std::size_t k = 0; k + 1 < 6 - i; ++k) second[k] = (second[k] + second[k + 1]) / 2;
    }
    if (second[0] == 0) visit(middle);
    ForEachRoot(first, from, middle, level + 1, visit);
    ForEachRoot(second, middle, to, level + 1, visit);
}

} // namespace

ZO_POINT_BODY(TBezier2D)

TZoClass* TBezier2D::Register(TZoMetaData* schema) {
    return RegisterPoint<TBezier2D>(schema, "TBezier2D", "NULL",
                                    {{Getfieldclassfor_x1, Addfieldfor_x1},
                                     {Getfieldclassfor_y1, Addfieldfor_y1},
                                     {Getfieldclassfor_x2, Addfieldfor_x2},
                                     {Getfieldclassfor_y2, Addfieldfor_y2},
                                     {Getfieldclassfor_x3, Addfieldfor_x3},
                                     {Getfieldclassfor_y3, Addfieldfor_y3},
                                     {Getfieldclassfor_x4, Addfieldfor_x4},
                                     {Getfieldclassfor_y4, Addfieldfor_y4}});
}

TBezier2D::TBezier2D() = default;
TBezier2D::TBezier2D(const Point2D& p1, const Point2D& p2, const Point2D& p3, const Point2D& p4)
    : x1Value(p1.X()), y1Value(p1.Y()), x2Value(p2.X()), y2Value(p2.Y()), x3Value(p3.X()), y3Value(p3.Y()),
      x4Value(p4.X()), y4Value(p4.Y()) {}
TBezier2D::TBezier2D(StreamableInit init) : ZoObjectStreamable(init) {}
TBezier2D::TBezier2D(const TBezier2D&) = default;
TBezier2D& TBezier2D::operator=(const TBezier2D&) = default;

TBezier2D TBezier2D::Quadratic(const Point2D& p1, const Point2D& p2, const Point2D& p3) {
    const auto towards = [&](const Point2D& end) {
        return Point2D((end.X() + 2 * p2.X()) / 3, (end.Y() + 2 * p2.Y()) / 3);
    };
    return {p1, towards(p1), towards(p3), p3};
}

Point2D TBezier2D::ControlPoint(unsigned index) const {
    ZO_ASSERT(index - 1 < 4, "index >= 1 && index <= 4", SOURCE);
    const Point2D points[] = {{x1Value, y1Value}, {x2Value, y2Value}, {x3Value, y3Value}, {x4Value, y4Value}};
    return points[index - 1];
}

Point2D TBezier2D::PointAt(double t) const {
    const LDPoint p = Split(CurveOf(*this), t).second[0];
    return {p.x, p.y};
}

double TBezier2D::Length() const {
    const Curve curve = CurveOf(*this);
    const double rough = SpeedOver(curve, 0, 1);
    return LengthOver(curve, 0, 1, rough, 1e-15 * rough, 0);
}

RRect TBezier2D::BoundingBox() const {
    std::vector<double> turns = {0, 1};
    AddTurns(x1Value, x2Value, x3Value, x4Value, turns);
    AddTurns(y1Value, y2Value, y3Value, y4Value, turns);
    RRect box;
    for (const double t : turns) box.Add(PointAt(t));
    return box;
}

Point2D TBezier2D::NearestPoint(const Point2D& point) const {
    Point2D nearest = PointAt(0);
    const auto tryAt = [&](double t) {
        const Point2D candidate = PointAt(t);
        if (candidate.Distance(point) < nearest.Distance(point)) nearest = candidate;
    };
    tryAt(1);
    ForEachRoot(Slope(CurveOf(*this), {point.X(), point.Y()}), 0, 1, 0, tryAt);
    return nearest;
}

TPolyline2D TBezier2D::Flattened(double chordError) const {
    ZO_ASSERT(chordError > 0, "chordError > 0", SOURCE);
    // A chord over h leaves the curve by at most an eighth of h^2 of what the second derivative is.
    const Curve c = CurveOf(*this);
    const LDPoint first = c[0] - c[1] * 2 + c[2], second = c[1] - c[2] * 2 + c[3];
    const double most = 6 * std::max(std::hypot(first.x, first.y), std::hypot(second.x, second.y));
    const double parts = std::clamp(std::ceil(std::sqrt(most / 8 / chordError)), 1.0, 0x1p20);
    TPolyline2D result;
    for (double i = 0; i < parts; ++i) result.Add(PointAt(i / parts));
    result.Add({x4Value, y4Value});
    return result;
}

bool TBezier2D::operator==(const TBezier2D& other) const {
    for (unsigned i = 1; i <= 4; ++i) {
        if (ControlPoint(i) != other.ControlPoint(i)) return false;
    }
    return true;
}
bool TBezier2D::operator==(const ZoObject& other) const {
    const auto* bezier = dynamic_cast<const TBezier2D*>(&other);
    return bezier != nullptr && *this == *bezier;
}

void TBezier2D::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    for (int i = 0; i < 4; ++i) {
        const Point2D p = ControlPoint(static_cast<unsigned>(i) + 1);
        streamer << 10 + i << p.X() << 20 + i << p.Y();
    }
}

bool TBezier2D::ReadData(int code, InputStreamer& streamer) {
    return ReadCoded(code, streamer, 10, x1Value, y1Value) ||
           ReadCoded(code, streamer, 11, x2Value, y2Value) ||
           ReadCoded(code, streamer, 12, x3Value, y3Value) ||
           ReadCoded(code, streamer, 13, x4Value, y4Value) || ZoObjectStreamable::ReadData(code, streamer);
}

} // namespace ZoPrimitives
