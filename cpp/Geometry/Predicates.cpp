#include "Geometry/Predicates.h"

#include "Geometry/Dyadic.h"

#include <cmath>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr double EPSILON = std::numeric_limits<double>::epsilon() / 2;
// A product of two rounded differences less another one, in terms of the sum of both products' magnitudes.
constexpr double CROSS_ERROR = (4 + 64 * EPSILON) * EPSILON;
// What underflow can add to it, and more.
constexpr double UNDERFLOW_ERROR = 1e-290;

int SignOf(double value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }

// A difference or product and what rounding took from it.
struct Doubled {
    double value;
    double rest;
};

Doubled Difference(double a, double b) {
    const double value = a - b;
    const double back = a - value;
    return {value, (a - (value + back)) + (back - b)};
}

Doubled Sum(double a, double b) {
    const double value = a + b;
    const double back = value - a;
    return {value, (a - (value - back)) + (b - back)};
}

/// `a` is not less in magnitude.
Doubled FastSum(double a, double b) {
    const double value = a + b;
    return {value, b - (value - a)};
}

/// Exact unless something overflows or underflows.
Doubled Product(double a, double b) {
    constexpr double SPLITTER = 134217729; // 2^27 + 1
    const double value = a * b;
    const double bigA = SPLITTER * a;
    const double bigB = SPLITTER * b;
    const double highA = bigA - (bigA - a);
    const double highB = bigB - (bigB - b);
    const double lowA = a - highA;
    const double lowB = b - highB;
    return {value, lowA * lowB - (((value - highA * highB) - lowA * highB) - highA * lowB)};
}

Doubled operator+(const Doubled& a, const Doubled& b) {
    const Doubled sum = Sum(a.value, b.value);
    return FastSum(sum.value, sum.rest + (a.rest + b.rest));
}
Doubled operator-(const Doubled& a, const Doubled& b) { return a + Doubled{-b.value, -b.rest}; }
Doubled operator*(const Doubled& a, const Doubled& b) {
    const Doubled product = Product(a.value, b.value);
    return FastSum(product.value, product.rest + (a.value * b.rest + a.rest * b.value));
}
Doubled operator/(const Doubled& a, const Doubled& b) {
    const double first = a.value / b.value;
    const Doubled rest = a - b * Doubled{first, 0};
    return FastSum(first, rest.value / b.value);
}

Dyadic ExactCross(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d) {
    return (Dyadic(b.x) - a.x) * (Dyadic(d.y) - c.y) - (Dyadic(b.y) - a.y) * (Dyadic(d.x) - c.x);
}

/// Fails only where a difference is not exact or a product leaves the range.
bool CrossSignOfExactDifferences(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d,
                                 int& sign) {
    const Doubled x1 = Difference(b.x, a.x);
    const Doubled y2 = Difference(d.y, c.y);
    const Doubled y1 = Difference(b.y, a.y);
    const Doubled x2 = Difference(d.x, c.x);
    if (x1.rest != 0 || y1.rest != 0 || x2.rest != 0 || y2.rest != 0) return false;
    const auto inRange = [](double u, double v) {
        const double size = std::abs(u * v);
        return u == 0 || v == 0 ||
               (size > 1e-250 && size < 1e250 && std::abs(u) < 1e250 && std::abs(v) < 1e250);
    };
    if (!inRange(x1.value, y2.value) || !inRange(y1.value, x2.value)) return false;
    const Doubled left = Product(x1.value, y2.value);
    const Doubled right = Product(y1.value, x2.value);
    sign = left.value != right.value ? SignOf(left.value - right.value) : SignOf(left.rest - right.rest);
    return true;
}

/// (b - a) x (d - c), with a bound of its error; the error is not finite if the value is of no use.
struct Estimate {
    double value;
    double error;
};

Estimate CrossEstimate(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d) {
    const double left = (b.x - a.x) * (d.y - c.y);
    const double right = (b.y - a.y) * (d.x - c.x);
    return {left - right, CROSS_ERROR * (std::abs(left) + std::abs(right)) + UNDERFLOW_ERROR};
}

/// What `CrossingOf` tells, without rounding; the denominator is positive.
struct ExactCrossing {
    Dyadic numerator;
    Dyadic denominator;
};

ExactCrossing ExactCrossingOf(const Stretch& along, const Stretch& line) {
    const Dyadic numerator = ExactCross(line.a, line.b, line.a, along.a);
    const Dyadic denominator = ExactCross(line.a, line.b, along.b, along.a);
    if (denominator.Sign() < 0) return {-numerator, -denominator};
    return {numerator, denominator};
}

/// A coordinate of a crossing; `from` and `to` are those of the stretch's ends.
double ExactCoordinate(const ExactCrossing& at, double from, double to) {
    return Dyadic::Quotient(Dyadic(from) * at.denominator + at.numerator * (Dyadic(to) - from),
                            at.denominator);
}

int CompareCoordinates(const ExactCrossing& p, double pFrom, double pTo, const ExactCrossing& q, double qFrom,
                       double qTo) {
    const Dyadic left = Dyadic(pFrom) * p.denominator + p.numerator * (Dyadic(pTo) - pFrom);
    const Dyadic right = Dyadic(qFrom) * q.denominator + q.numerator * (Dyadic(qTo) - qFrom);
    return (left * q.denominator - right * p.denominator).Sign();
}

/// (b - a) x (d - c) to twice the precision, with the relative error.
struct Ratio {
    Doubled value;
    double error;
};

Ratio DoubledCross(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d) {
    const Doubled left = Difference(b.x, a.x) * Difference(d.y, c.y);
    const Doubled right = Difference(b.y, a.y) * Difference(d.x, c.x);
    const Doubled value = left - right;
    const double size = std::abs(left.value) + std::abs(right.value);
    return {value, 0x1p-98 * size / std::abs(value.value)};
}

/// Whether twice the precision tells which double is nearest to from + fraction (to - from).
bool NearestCoordinate(const Doubled& fraction, double error, double from, double to, double& nearest) {
    const Doubled step = fraction * Difference(to, from);
    const Doubled result = Doubled{from, 0} + step;
    const double bound = std::abs(step.value) * error + 0x1p-98 * (std::abs(from) + std::abs(step.value));
    nearest = result.value;
    return std::abs(nearest) > 1e-200 && result.value + (result.rest - bound) == nearest &&
           result.value + (result.rest + bound) == nearest;
}

} // namespace

int CrossSign(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d) {
    const Estimate cross = CrossEstimate(a, b, c, d);
    if (cross.value > cross.error) return 1;
    if (-cross.value > cross.error) return -1;
    int sign = 0;
    if (CrossSignOfExactDifferences(a, b, c, d, sign)) return sign;
    return ExactCross(a, b, c, d).Sign();
}

int SideOf(const LDPoint& a, const LDPoint& b, const LDPoint& p) { return CrossSign(a, b, a, p); }

Crossing CrossingOf(const Stretch& along, const Stretch& line) {
    const Estimate numerator = CrossEstimate(line.a, line.b, line.a, along.a);
    const Estimate denominator = CrossEstimate(line.a, line.b, along.b, along.a);
    if (denominator.value > denominator.error)
        return {numerator.value, denominator.value, numerator.error, denominator.error};
    if (-denominator.value > denominator.error)
        return {-numerator.value, -denominator.value, numerator.error, denominator.error};
    return {0, 0, 0, 0};
}

int CompareCrossings(const Stretch& along, const Stretch& line, const Crossing& p, const Stretch& otherLine,
                     const Crossing& q) {
    if (p.denominator > 0 && q.denominator > 0) {
        const double left = p.numerator * q.denominator;
        const double right = q.numerator * p.denominator;
        const double error = p.numeratorError * q.denominator + q.denominatorError * std::abs(p.numerator) +
                             q.numeratorError * p.denominator + p.denominatorError * std::abs(q.numerator);
        const double bound = 2 * error + 4 * EPSILON * (std::abs(left) + std::abs(right)) + UNDERFLOW_ERROR;
        if (left - right > bound) return 1;
        if (right - left > bound) return -1;
    }
    const ExactCrossing first = ExactCrossingOf(along, line);
    const ExactCrossing second = ExactCrossingOf(along, otherLine);
    return (first.numerator * second.denominator - second.numerator * first.denominator).Sign();
}

int CompareCrossings(const Stretch& along, const Stretch& line, const Stretch& otherLine) {
    return CompareCrossings(along, line, CrossingOf(along, line), otherLine, CrossingOf(along, otherLine));
}

LDPoint CrossingPoint(const Stretch& along, const Stretch& line) {
    const Ratio numerator = DoubledCross(line.a, line.b, line.a, along.a);
    const Ratio denominator = DoubledCross(line.a, line.b, along.b, along.a);
    const double error = numerator.error + denominator.error + 0x1p-98;
    LDPoint point;
    const auto inRange = [](const Ratio& ratio) {
        return std::abs(ratio.value.value) > 1e-150 && std::abs(ratio.value.value) < 1e150;
    };
    if (inRange(numerator) && inRange(denominator)) {
        const Doubled fraction = numerator.value / denominator.value;
        // Level and upright lines tell their own coordinate, which is often 0.
        const auto found = [&](double LDPoint::*coordinate) {
            const double from = along.a.*coordinate, to = along.b.*coordinate;
            point.*coordinate = from == to ? from : line.a.*coordinate;
            return from == to || line.a.*coordinate == line.b.*coordinate ||
                   NearestCoordinate(fraction, error, from, to, point.*coordinate);
        };
        if (found(&LDPoint::x) && found(&LDPoint::y)) return point;
    }
    const ExactCrossing exact = ExactCrossingOf(along, line);
    return {ExactCoordinate(exact, along.a.x, along.b.x), ExactCoordinate(exact, along.a.y, along.b.y)};
}

LDPoint CrossingPoint(const LDPoint& p, const LDPoint& u, const LDPoint& q, const LDPoint& v) {
    const Dyadic numerator = (Dyadic(q.x) - p.x) * Dyadic(v.y) - (Dyadic(q.y) - p.y) * Dyadic(v.x);
    const Dyadic denominator = Dyadic(u.x) * Dyadic(v.y) - Dyadic(u.y) * Dyadic(v.x);
    const auto coordinate = [&](double from, double step) {
        return Dyadic::Quotient(Dyadic(from) * denominator + numerator * Dyadic(step), denominator);
    };
    return {coordinate(p.x, u.x), coordinate(p.y, u.y)};
}

int CompareCrossingPoints(const Stretch& a, const Stretch& b, const Stretch& c, const Stretch& d) {
    const ExactCrossing p = ExactCrossingOf(a, b);
    const ExactCrossing q = ExactCrossingOf(c, d);
    const int byX = CompareCoordinates(p, a.a.x, a.b.x, q, c.a.x, c.b.x);
    return byX != 0 ? byX : CompareCoordinates(p, a.a.y, a.b.y, q, c.a.y, c.b.y);
}

} // namespace ZoPrimitives
