#include "Geometry/Predicates.h"

#include "Geometry/Random.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

// The exact rationals of another library tell what is right.
#if __has_include(<boost/multiprecision/cpp_int.hpp>)
#include <boost/multiprecision/cpp_int.hpp>
#define ZO_TEST_RATIONALS
#endif

using namespace ZoPrimitives;

namespace {

TEST(PredicatesTests, Sides) {
    constexpr double TINY = std::numeric_limits<double>::denorm_min(), HUGE_ONE = 1e308;
    const std::tuple<const char*, LDPoint, LDPoint, LDPoint, int> cases[] = {
        {"left", {0, 0}, {1, 0}, {0, 1}, 1},
        {"right", {0, 0}, {1, 0}, {5, -1}, -1},
        {"on it", {0, 0}, {1, 1}, {7, 7}, 0},
        {"a tenth is not the third of three", {0, 0}, {0.1, 0.1}, {0.3, 0.1 + 0.2}, 1},
        {"an ulp beside, far away", {1e9, 1e9}, {1e9 + 1, 1e9 + 1}, {0.5, std::nextafter(0.5, 1)}, 1},
        {"on it, far and near", {1e9, 1e9}, {-1e9, -1e9}, {1e-9, 1e-9}, 0},
        {"the smallest", {0, 0}, {TINY, 0}, {TINY, TINY}, 1},
        {"on it, the smallest", {0, 0}, {TINY, TINY}, {3 * TINY, 3 * TINY}, 0},
        {"the largest", {-HUGE_ONE, -HUGE_ONE}, {HUGE_ONE, HUGE_ONE}, {HUGE_ONE, -HUGE_ONE}, -1},
        {"on it, the largest", {-HUGE_ONE, -HUGE_ONE}, {HUGE_ONE, HUGE_ONE}, {TINY, TINY}, 0},
    };
    for (const auto& [name, a, b, p, side] : cases) {
        EXPECT_EQ(SideOf(a, b, p), side) << name;
        EXPECT_EQ(SideOf(b, a, p), -side) << name;
        EXPECT_EQ(SideOf(p, a, b), side) << name;
    }
}

#ifdef ZO_TEST_RATIONALS

using Rational = boost::multiprecision::cpp_rational;
using Integer = boost::multiprecision::cpp_int;

Rational Exact(double value) {
    int exponent = 0;
    const double mantissa = std::frexp(value, &exponent);
    const Integer number = static_cast<long long>(std::scalbn(mantissa, 53));
    exponent -= 53;
    if (exponent >= 0) return Rational(number << exponent);
    return Rational(number, Integer(1) << -exponent);
}

Rational Cross(const LDPoint& a, const LDPoint& b, const LDPoint& c, const LDPoint& d) {
    return (Exact(b.x) - Exact(a.x)) * (Exact(d.y) - Exact(c.y)) -
           (Exact(b.y) - Exact(a.y)) * (Exact(d.x) - Exact(c.x));
}

int Sign(const Rational& value) { return value.sign(); }

Rational Fraction(const Stretch& along, const Stretch& line) {
    return Cross(line.a, line.b, line.a, along.a) / Cross(line.a, line.b, along.b, along.a);
}

void ExpectNearest(double actual, const Rational& exact, const std::string& name) {
    const Rational error = abs(exact - Exact(actual));
    for (const double towards : {-1e308, 1e308}) {
        const double neighbour = std::nextafter(actual, towards);
        EXPECT_LE(error, abs(exact - Exact(neighbour))) << name << ": " << actual;
    }
}

/// Points that are hard to tell apart, each in a way of its own.
const std::pair<const char*, LDPoint (*)(Random&)> SOURCES[] = {
    {"anywhere", [](Random& random) { return LDPoint(random.Uniform(-1, 1), random.Uniform(-1, 1)); }},
    {"a small grid", [](Random& random) { return LDPoint(random.Pick(5), random.Pick(5)); }},
    {"a grid of tenths", [](Random& random) { return LDPoint(random.Pick(9) * 0.1, random.Pick(9) * 0.1); }},
    {"nearly on a line",
     [](Random& random) {
         const double t = random.Uniform(-1e9, 1e9);
         return LDPoint(t, std::nextafter(t / 3, t + random.Pick(3) - 1));
     }},
    {"far away",
     [](Random& random) { return LDPoint(1e9 + random.Pick(64) * 1e-6, 1e9 + random.Pick(64) * 1e-6); }},
    {"of all sizes",
     [](Random& random) {
         const auto any = [&] { return random.Uniform(-1, 1) * std::pow(10, random.Uniform(-9, 9)); };
         return LDPoint(any(), any());
     }},
    {"of extreme sizes",
     [](Random& random) {
         const auto any = [&] { return std::scalbn(random.Pick(5) - 2, random.Pick(2095) - 1074); };
         return LDPoint(any(), any());
     }},
};

TEST(PredicatesTests, AgreeWithRationals) {
    Random random(1);
    std::array<int, 4> zeros{};
    for (const auto& [name, source] : SOURCES) {
        const bool slow = std::string(name) == "of extreme sizes";
        for (int i = 0; i < (slow ? 30 : 500); ++i) {
            std::array<LDPoint, 8> p;
            for (LDPoint& point : p) point = source(random);
            const Stretch along{p[0], p[1]}, one{p[2], p[3]}, two{p[4], p[5]}, three{p[6], p[7]};
            const auto side = SideOf(p[0], p[1], p[2]);
            ASSERT_EQ(side, Sign(Cross(p[0], p[1], p[0], p[2]))) << name;
            ASSERT_EQ(CrossSign(p[0], p[1], p[2], p[3]), Sign(Cross(p[0], p[1], p[2], p[3]))) << name;
            if (CrossSign(p[0], p[1], p[2], p[3]) == 0 || CrossSign(p[0], p[1], p[4], p[5]) == 0) continue;
            const Rational first = Fraction(along, one), second = Fraction(along, two);
            ASSERT_EQ(CompareCrossings(along, one, two), Sign(first - second)) << name;
            zeros[0] += side == 0;
            zeros[1] += first == second;

            const LDPoint point = CrossingPoint(along, one);
            const Rational x = Exact(p[0].x) + first * (Exact(p[1].x) - Exact(p[0].x));
            const Rational y = Exact(p[0].y) + first * (Exact(p[1].y) - Exact(p[0].y));
            if (abs(x) < Exact(1e308) && abs(y) < Exact(1e308)) {
                ExpectNearest(point.x, x, name);
                ExpectNearest(point.y, y, name);
            }
            if (CrossSign(p[4], p[5], p[6], p[7]) == 0) continue;
            const Rational fraction = Fraction(two, three);
            const Rational x2 = Exact(p[4].x) + fraction * (Exact(p[5].x) - Exact(p[4].x));
            const Rational y2 = Exact(p[4].y) + fraction * (Exact(p[5].y) - Exact(p[4].y));
            const int order = x != x2 ? Sign(x - x2) : Sign(y - y2);
            ASSERT_EQ(CompareCrossingPoints(along, one, two, three), order) << name;
            zeros[2] += order == 0;
            zeros[3] += x == x2 && order != 0;
        }
    }
    for (const int count : zeros) EXPECT_GT(count, 0) << "what is hard has come up";
}

#endif

} // namespace
