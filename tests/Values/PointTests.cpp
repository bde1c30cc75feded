#include "ZoPrimitives/ZoPrimitives.h"

#include "support/CommaLocale.h"
#include "support/RoundTrip.h"

#include <cmath>

using namespace ZoPrimitives;

namespace {

constexpr double PI = 3.141592653589793;
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// Equal to 12 decimals; the failure shows both.
void ExpectNear(const Point3D& actual, const Point3D& expected, const char* name) {
    EXPECT_TRUE(actual.Equal(expected, 12)) << name << ": " << actual.CoordsToString().c_str()
                                            << " instead of " << expected.CoordsToString().c_str();
}
void ExpectNear(const Point2D& actual, const Point2D& expected, const char* name) {
    ExpectNear(Point3D(actual.X(), actual.Y(), 0), Point3D(expected.X(), expected.Y(), 0), name);
}

/// All comparisons of two points at once.
template <class Point>
std::string Comparisons(const Point& a, const Point& b) {
    const std::string equality = std::string(a == b ? "==" : "") + (a != b ? "!=" : "");
    const std::string order = std::string(a < b ? " <" : "") + (a <= b ? " <=" : "");
    return equality + order + (a > b ? " >" : "") + (a >= b ? " >=" : "");
}

TEST(PointTests, OperatorsCompareExactly) {
    const std::tuple<const char*, Point3D, Point3D, const char*> cases[] = {
        {"equal", {1, 5, 2}, {1, 5, 2}, "== <= >="},
        {"x less", {1, 5, 9}, {2, 0, 0}, "!= < <="},
        {"x greater", {2, 0, 0}, {1, 5, 9}, "!= > >="},
        {"y less", {1, 4, 9}, {1, 5, 0}, "!= < <="},
        {"y greater", {1, 5, 0}, {1, 4, 9}, "!= > >="},
        {"nearly equal", {1, 2, 0}, {1, 2.0000001, 0}, "!= < <="},
        {"zeros", {0, 0, 0}, {-0.0, 0, -0.0}, "== <= >="},
        {"NaN", {NOT_A_NUMBER, 0, 0}, {1, 0, 0}, "!= > >="},
    };
    for (const auto& [name, a, b, held] : cases) {
        EXPECT_EQ(Comparisons(a, b), held) << name;
        EXPECT_EQ(Comparisons(a.InPlaneXY(), b.InPlaneXY()), held) << name;
    }
    EXPECT_EQ(Comparisons<Point3D>(TVector3D(1, 2, 3), Point3D(1, 2, 4)), "!= < <=");
    EXPECT_EQ(Comparisons<Point2D>(TVector2D(1, 2), Point2D(1, 2)), "== <= >=");
    const Point2D plane(1, 2);
    const Point3D space(1, 2, 3);
    const ZoObject &one = plane, &other = space;
    EXPECT_TRUE(one == Point2D(1, 2) && one != Point2D(2, 1) && one != other);
    EXPECT_TRUE(other == Point3D(1, 2, 3) && other != Point3D(1, 2, 4) && other != one);
}

TEST(PointTests, NamedComparisonsHaveATolerance) {
    const std::tuple<const char*, Point3D, Point3D, const char*, const char*> cases[] = {
        {"x less", {1, 9, 9}, {2, 0, 0}, "<", "<"},
        {"x greater", {2, 0, 0}, {1, 9, 9}, "", ""},
        {"y less", {1.00005, 1, 9}, {1, 2, 0}, "<", "<"},
        {"z less", {1, 2, 3}, {1, 2, 4}, "<", "="},
        {"y less, x greater", {3, 1, 9}, {1, 2, 0}, "", ""},
        {"z less, y greater", {1, 3, 3}, {1, 2, 4}, "", ""},
        {"z less, x greater", {2, 2, 3}, {1, 2, 4}, "", ""},
        {"all within", {1, 2, 3.00009}, {1.00009, 2.00009, 3}, "=", "="},
        {"y beyond", {1, 2.0002, 3}, {1, 2, 3}, "", ""},
    };
    for (const auto& [name, a, b, inSpace, inPlane] : cases) {
        const Point2D p = a.InPlaneXY(), q = b.InPlaneXY();
        const std::string compared = a.Less(b, 4) ? "<" : "", comparedInPlane = p.Less(q, 4) ? "<" : "";
        EXPECT_EQ(compared + (a.Equal(b, 4) ? "=" : ""), inSpace) << name;
        EXPECT_EQ(comparedInPlane + (p.Equal(q, 4) ? "=" : ""), inPlane) << name;
        EXPECT_EQ(a.XYEqual(b, 4), p.Equal(q, 4)) << name;
    }
    const Point2D small(1, 2), large(1, 3), tied(1.00001, 2);
    EXPECT_TRUE(small.Major(large, 4) == large && large.Major(small, 4) == large);
    EXPECT_TRUE(small.Minor(large, 4) == small && large.Minor(small, 4) == small);
    EXPECT_TRUE(small.Major(tied, 4) == tied && small.Minor(tied, 4) == tied);
}

TEST(PointTests, Computes) {
    const Point3D p(1, 2, 4);
    EXPECT_EQ(p + Point3D(1, 1, 1), Point3D(2, 3, 5));
    EXPECT_EQ(p - Point3D(1, 1, 1), Point3D(0, 1, 3));
    EXPECT_EQ(p * 3 / 2, Point3D(1.5, 3, 6));
    Point3D q = p;
    q += q;
    q *= 3;
    q -= p;
    EXPECT_EQ(q, Point3D(5, 10, 20));
    EXPECT_EQ(q.Move(1, 2, 3), Point3D(6, 12, 23));
    EXPECT_EQ((Point2D(1, 2) + Point2D(3, 4)) * 3 / 4 - Point2D(1, 2), Point2D(2, 2.5));
    EXPECT_EQ(Point2D(1, 2).Distance({4, 6}), 5);
    EXPECT_EQ(p.Distance({3, 5, 10}), 7);
    EXPECT_EQ(Point3D(1.005, -2.345, 1e300).GetRoundedPoint(2), Point3D(1.0, -2.35, 1e300));
    EXPECT_EQ(Point3D(1.5, -2.5, 0.7).GetRoundedPoint(-1), Point3D(2, -3, 1));

    EXPECT_EQ(Point2D(1, 2).InterpolaPonto({4, 6}, 10), Point2D(7, 10));
    EXPECT_EQ(Point3D(1, 2, 3).InterpolaPonto({3, 5, 9}, -14), Point3D(-3, -4, -9));
    EXPECT_EQ(Point3D(1, 2, 3).InterpolaPontoComPercentual({3, 5, 9}, 1.5), Point3D(4, 6.5, 12));
    // Less than 10^-6 apart, there is no direction.
    for (const double apart : {0.0, 9e-7, 1.1e-6}) {
        const double reached = apart > 1e-6 ? 10 : 0;
        EXPECT_EQ(Point2D().InterpolaPonto({0, apart}, 10), Point2D(0, reached)) << apart;
        EXPECT_EQ(Point3D().InterpolaPonto({0, 0, apart}, 10), Point3D(0, 0, reached)) << apart;
        EXPECT_EQ(TVector2D(0, apart).MagnitudeGreaterThanZero(), reached > 0) << apart;
        EXPECT_EQ(TVector3D(0, 0, apart).MagnitudeGreaterThanZero(), reached > 0) << apart;
    }
}

TEST(PointTests, RotatesAndScales) {
    Point2D self(3, 4);
    ExpectNear(self.Rotate(1, self), {3, 4}, "about itself");
    const double angle = std::atan2(3, 4); // of cosine 0.8 and sine 0.6
    ExpectNear(Point2D(1, 2).Rotate(angle), {-0.4, 2.2}, "counter-clockwise");
    ExpectNear(Point2D(3, 2).Rotate(-PI / 2, {1, -1}), {4, -3}, "about a centre");
    EXPECT_EQ(Point2D(4, 4).Scale({0, 0}, 2), Point2D(2, 2));
    EXPECT_EQ(Point2D(2, 3).Scale({1, 1}, 3), Point2D(1.333, 1.667));
    EXPECT_EQ(self.Scale(self, 2), Point2D(3, 4));
    EXPECT_TRUE(IsNan(Point2D(4, 4).Scale({0, 0}, 0).X()));
    EXPECT_EQ(Point3D(2, 1, 7).Scale({1, 1, 1}, 3), Point3D(1.0 / 3 + 1, 1, 3));

    const Point3D origin, p(3, 1, 5);
    ExpectNear(Point3D(1, 2, 5).Rotate(angle, origin), {-0.4, 2.2, 5}, "about the axis of z");
    ExpectNear(Point3D(p).Rotate(PI / 2, Point3D(1, 1, 9)), {1, 3, 5}, "about a vertical axis");
    ExpectNear(Point3D(0, 1, 0).Rotate(PI / 2, origin, {5, 0, 0}), {0, 0, 1}, "about x");
    ExpectNear(Point3D(0, 0, 1).Rotate(PI / 2, origin, 0, 9, 0), {1, 0, 0}, "about y");
    ExpectNear(Point3D(0, 0, 1).Rotate(PI / 2, origin, 0, -9, 0), {-1, 0, 0}, "about minus y");
    ExpectNear(Point3D(1, 2, 3).Rotate(2 * PI / 3, {7, 7, 7}, {9, 9, 9}), {3, 1, 2}, "about a diagonal");
    EXPECT_EQ(Point3D(0.1, 0.2, 0.3).Rotate(1, p, p), Point3D(0.1, 0.2, 0.3)) << "no axis";
    Point3D own = p;
    EXPECT_EQ(own.Rotate(1, own), p);
}

TEST(PointTests, Quadrants) {
    const std::tuple<double, double, int> cases[] = {
        {0, 0, 1},  {1, 0, 1},   {0, 1, 1},  {1, 1, 1},        {-1, 1, 2},       {-1, 0, 3},
        {0, -1, 3}, {-1, -1, 3}, {1, -1, 4}, {-0.00005, 1, 1}, {1, -0.00005, 1}, {-1, 0.00005, 3}};
    for (const auto& [x, y, quadrant] : cases)
        EXPECT_EQ(Point2D(x, y).Quadrant(4), quadrant) << x << ' ' << y;
}

TEST(PointTests, IsInSegment) {
    const Point2D a(1, 1), b(5, 3), far(65528952686927.3, 1);
    const std::tuple<const char*, Point2D, Point2D, Point2D, bool> cases[] = {
        {"inside", a, b, {3, 2}, true},
        {"end", a, b, b, true},
        {"on the line, before", a, b, {-1, 0}, false},
        {"after", a, b, {5.00001, 3.000005}, false},
        {"beyond the end, within the tolerance", a, b, {5.0000005, 3}, true},
        {"beside", a, b, {3, 2.00001}, false},
        {"beside, within the tolerance", a, b, {3, 2.0000009}, true},
        {"beside, just beyond the tolerance", a, b, {3, 2.0000013}, false},
        {"NaN", a, b, {NOT_A_NUMBER, 2}, false},
        {"no length", a, a, a, true},
        {"beside no length", a, a, b, false},
        {"end that rounding misses", {-625720678387748.2, 1}, far, far, true},
        {"inside, far away", {1e12, 1e12}, {1e12 + 4, 1e12 + 2}, {1e12 + 2, 1e12 + 1}, true},
        {"beside, far away", {1e12, 1e12}, {1e12 + 4, 1e12 + 2}, {1e12 + 2, 1e12 + 2}, false},
        {"inside a long one", {0, 0}, {0x1p600, -0x1p600}, {0x1p598, -0x1p598}, true},
        {"beside a long one", {0, 0}, {1e200, -1e200}, {3e199, 3e199}, false},
        {"inside the longest", {-1.7e308, 1e308}, {1.7e308, -1e308}, {0, 0}, true},
    };
    for (const auto& [name, from, to, point, inside] : cases) {
        EXPECT_EQ(point.IsInSegment(from, to), inside) << name;
        EXPECT_EQ(point.IsInSegment(to, from), inside) << name << ", the other way round";
    }
    EXPECT_TRUE(Point2D(3, 2.04).IsInSegment(a, b, 1));
}

TEST(PointTests, Texts) {
    const CommaLocale locale;
    EXPECT_STREQ(Point2D(1.5, -2).ToString().c_str(), "x:1.500000 | y:-2.000000");
    EXPECT_STREQ(Point3D(1.25, 2, -0.04).ToString().c_str(), "(1.3, 2, 0)");
    EXPECT_STREQ(Point3D(1234567, 0.5, -1e-7).CoordsToString().c_str(), "1.23457e+06;0.5;-1e-07");
    const std::tuple<const char*, bool, Point3D> cases[] = {
        {"1;2;3", true, {1, 2, 3}},   {" 1.5x; -2e3 ;", true, {1.5, -2000, 0}},
        {";;", true, {0, 0, 0}},      {"1;2", false, {7, 8, 9}},
        {"1;2;3;", false, {7, 8, 9}}, {"1;2;;", false, {7, 8, 9}},
        {"", false, {7, 8, 9}},       {"inf;-1e999;0x10", true, {INF, -INF, 16}},
    };
    for (const auto& [text, read, expected] : cases) {
        Point3D point(7, 8, 9);
        EXPECT_EQ(point.CoordsFromString(text), read) << text;
        EXPECT_EQ(point, expected) << text;
    }
}

TEST(PointTests, ChecksumOfCoordinates) { // expected values from a Python script
    EXPECT_EQ(CreateChecksum(Point3D(1.5, -2.25, 1e10)).GetValue(), 0xE604573C5F8AFA12u);
    EXPECT_EQ(CreateChecksum(Point3D(0.0, -0.0, 0.0)).GetValue(), 0x518FF0645034738Au);
    EXPECT_EQ(CreateChecksum(TVector3D(3, 3, 1)).GetValue(), 0x5562D26453743B70u);
}

TEST(VectorTests, Lengths) {
    TVector3D zero;
    EXPECT_EQ(zero.Normalize(), TVector3D());
    EXPECT_EQ(TVector2D().Normalize(), TVector2D());
    EXPECT_EQ(TVector3D(2, 3, 6).Magnitude(), 7);
    EXPECT_EQ(TVector3D(0, 3, 4).Normalized(), TVector3D(0, 0.6, 0.8));
    EXPECT_EQ(TVector3D(-1, 2, -3).Abs(), TVector3D(1, 2, 3));
    EXPECT_EQ(TVector2D(Point2D(1, 1), Point2D(4, 5)).Normalized(), TVector2D(0.6, 0.8));
    EXPECT_EQ(TVector3D::CreateUnitVector({1, 1, 1}, {1, 1, -4}), TVector3D(0, 0, -1));
    EXPECT_EQ(TVector3D::CreateUnitVector({1, 1, 1}, {1, 1, 1}), TVector3D());
    // Where the squares of the components are out of range.
    for (const double scale : {5e-324, 1e-200, 1e-160, 1e-141, 1e141, 1e160, 1e200, 1e308}) {
        EXPECT_EQ(TVector3D(0, scale, 0).Magnitude(), scale);
        EXPECT_EQ(TVector2D(-scale, 0).Magnitude(), scale);
        EXPECT_EQ(Point3D().Distance({0, 0, scale}), scale);
        EXPECT_EQ(Point2D(0, scale).Distance({}), scale);
        EXPECT_EQ(Distance(scale, 0, 0, 0, 0, 0), scale);
        ExpectNear(TVector3D(scale, -scale, 0).Normalized(), TVector3D(1, -1, 0).Normalized(), "unit");
        ExpectNear(TVector2D(scale, -scale).Normalized(), TVector2D(1, -1).Normalized(), "unit");
        ExpectNear(Point3D(1, 0, 0).Rotate(PI / 2, {}, 0, 0, scale), {0, 1, 0}, "about a short or long axis");
        ExpectNear(TVector3D(1, 2, 3).Project({0, scale, 0}), {0, 2, 0}, "along");
    }
    EXPECT_EQ(TVector3D(1e308, 1e308, 1e308).Magnitude(), 1.7320508075688773e308);
    EXPECT_EQ(TVector3D(1.7e308, 1.7e308, 0).Magnitude(), INF);
    EXPECT_EQ(TVector3D(3e-200, 4e-200, 0).Magnitude(), 5e-200);
    EXPECT_TRUE(std::isnan(TVector3D(1e200, NOT_A_NUMBER, 0).Magnitude()));
    EXPECT_EQ(TVector2D(-INF, 1).Magnitude(), INF);
}

TEST(VectorTests, Products) {
    const TVector3D x(1, 0, 0), y(0, 1, 0), v(1, 2, 3), w(-4, 5, 6);
    EXPECT_EQ(x.CrossProduct(y), TVector3D(0, 0, 1));
    EXPECT_EQ(v.CrossProduct(w), TVector3D(-3, -18, 13));
    EXPECT_EQ(v.DotProduct(w), 24);
    EXPECT_EQ(TVector2D(1, 2).CrossProduct(TVector2D(3, 4)), -2);
    EXPECT_EQ(-v + w * 2 - TVector3D(5, 6, 7) / 2, TVector3D(-11.5, 5, 5.5));
    EXPECT_EQ(-TVector2D(1, 2) + TVector2D(3, 5) * 3 - TVector2D(4, 10) / 4, TVector2D(7, 10.5));
    EXPECT_EQ(TVector2D(1, 2).DotProduct(TVector2D(3, 5)), 13);

    EXPECT_EQ(v.Project({0, 0, -2}), TVector3D(0, 0, 3));
    EXPECT_EQ(v.Project({0, 0, 0}), TVector3D());
    EXPECT_EQ(v.ProjectionOnPlane({0, 0, -2}), TVector3D(1, 2, 0));
    EXPECT_EQ(v.ProjectionOnPlane({0, 0, 0}), v);
}

TEST(VectorTests, Angles) {
    const TVector3D x(2, 0, 0), y(0, 3, 0), z(0, 0, 1), zero;
    const std::tuple<const char*, double, double> cases[] = {
        {"right angle", x.Angle(y), PI / 2},
        {"beside zero", zero.Angle(y), 0},
        {"cosine beside zero", y.CosAngle(zero), 1},
        {"opposite", x.Angle(-x), PI},
        {"cosine above 1 by rounding", TVector2D(0.1, 0.3).Angle({0.3, 0.9}), 0},
        {"cosine below -1 by rounding", TVector2D(0.1, 0.3).Angle({-0.3, -0.9}), PI},
        {"NaN", x.Angle({NOT_A_NUMBER, 0, 0}), NOT_A_NUMBER},
        {"infinity", x.Angle({INF, 0, 0}), NOT_A_NUMBER},
        {"long and short", TVector3D(1e-200, 1e-200, 0).Angle({0, 1e300, 0}), PI / 4},
        {"both long", TVector3D(1e200, 1e200, 0).SignedAngle({-1e200, 1e200, 0}), PI / 2},
        {"both short", TVector3D(1e-200, 1e-200, 0).SignedAngle({1e-200, -1e-200, 0}, {0, 0, 5e-324}),
         -PI / 2},
        {"long in the plane", TVector2D(1e200, 1e200).SignedAngle({1e300, -1e300}), -PI / 2},
        {"short in the plane", TVector2D(1e-200, 0).SignedAngle({0, -5e-324}), -PI / 2},
        {"cosine", x.CosAngle({1, std::sqrt(3), 0}), 0.5},
        {"to the left", x.SignedAngle(y), PI / 2},
        {"to the right", y.SignedAngle(x), -PI / 2},
        {"about a normal", y.SignedAngle(x, {0, 0, -1}), PI / 2},
        {"to the left by z alone, not x", y.SignedAngle({-1, 0, -5}), PI / 2},
        {"to the left by z alone, not y", x.SignedAngle({0, 1, 5}), PI / 2},
        {"in a vertical plane", z.SignedAngle(x, {0, 1, 0}), PI / 2},
        {"opposite, signed", x.SignedAngle(-x), PI},
        {"signed cosine", y.CosSignedAngle(x), 0},
        {"in the plane", TVector2D(1, 0).Angle({0, -1}), PI / 2},
        {"in the plane, to the right", TVector2D(1, 0).SignedAngle({0, -1}), -PI / 2},
    };
    for (const auto& [name, actual, expected] : cases) {
        const bool near = std::abs(actual - expected) < 1e-7;
        EXPECT_TRUE(near || (std::isnan(actual) && std::isnan(expected))) << name << ": " << actual;
    }
}

TEST(VectorTests, Directions) {
    const TVector3D x(1, 0, 0), y(0, 1, 0), v(1, 2, 3), infinite(INF, 0, 0);
    // At 3 decimals what rounds to 0.000 counts, not what is below 0.001.
    for (const double rest : {0.0, 0.0004, 0.0006}) {
        EXPECT_EQ(x.ColinearTo({-2, rest, 0}, 3), rest < 0.0005) << rest;
        EXPECT_EQ(x.PerpendicularTo({rest, 5, 0}, 3), rest < 0.0005) << rest;
        EXPECT_EQ(x.CoplanarTo(y, {4, 4, -rest}, 3), rest < 0.0005) << rest;
    }
    EXPECT_TRUE(v.ColinearTo({-2, -4, -6}, 6) && v.ColinearTo(TVector3D(), 6));
    EXPECT_TRUE(v.PerpendicularTo({3, 0, -1}, 6) && v.CoplanarTo(x, {0, 2, 3}, 6));
    EXPECT_FALSE(v.ColinearTo(infinite, 3) || v.PerpendicularTo(infinite, 3));
}

TEST(VectorTests, ArbitraryAxes) {
    const double limit = 1.0 / 64, rest = std::sqrt(1 - limit * limit);
    const TVector3D beside(0.01, -0.0157, 1);
    const std::tuple<const char*, TVector3D, TVector3D, TVector3D> cases[] = {
        {"up", {0, 0, 5}, {1, 0, 0}, {0, 1, 0}},
        {"down", {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},
        {"x", {2, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {"y", {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
        {"zero", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
        {"1/64 itself", {limit, 0, rest}, {0, 1, 0}, {-rest, 0, limit}},
        {"y 1/64 itself", {0, limit, rest}, {-1, 0, 0}, {0, -rest, limit}},
        {"just beyond 1/64", {0.0157, 0, 1}, {0, 1, 0}, TVector3D(-1, 0, 0.0157).Normalized()},
        {"just below 1/64", {0.0156, 0, 1}, TVector3D(1, 0, -0.0156).Normalized(), {0, 1, 0}},
        {"x beyond -1/64", {-0.0157, 0, 1}, {0, -1, 0}, TVector3D(1, 0, 0.0157).Normalized()},
        {"y beyond -1/64", beside, TVector3D(0.0157, 0.01, 0).Normalized(),
         beside.CrossProduct({0.0157, 0.01, 0}).Normalized()},
    };
    const TVector3D v(1, 2, 3);
    for (const auto& [name, normal, expectedX, expectedY] : cases) {
        TVector3D x, y, z;
        TVector3D::AcadArbitraryAxes(normal, x, y, z);
        ExpectNear(x, expectedX, name);
        ExpectNear(y, expectedY, name);
        ExpectNear(x.CrossProduct(y), z, name);
        ExpectNear(z.AcadArbitraryOCS(normal), {0, 0, 1}, name);
        ExpectNear(v.AcadArbitraryOCS(normal).AcadArbitraryWCS(normal), v, name);
    }
    TVector3D normal(0, 1, 0), x, z;
    TVector3D::AcadArbitraryAxes(normal, x, normal, z); // outputs may be the input
    EXPECT_EQ(normal, TVector3D(0, 0, 1));
    EXPECT_EQ(TVector3D(2, 3, 4).WorldCoordinates({0, 1, 0}, {0, 0, 1}, {1, 0, 0}), TVector3D(4, 2, 3));
}

TEST(TransformationTests, TransformsPointsAndDirections) {
    const auto move = TTransformation::Translation(10, 20, 30);
    const auto turn = TTransformation::Rotation(PI / 2, 0, 0, 7);
    EXPECT_EQ(Point3D(1, 2, 3).Transform(TTransformation()), Point3D(1, 2, 3));
    ExpectNear(Point3D(1, 2, 3).Transform(move * turn), {8, 21, 33}, "the right one first");
    ExpectNear(Point3D(1, 2, 3).Transform(turn * move), {-22, 11, 33}, "the other way round");
    ExpectNear(TVector3D(1, 2, 3).Transform(move * turn), {-2, 1, 3}, "a direction");
    ExpectNear(TVector3D(2, 3, 4).Transform(move * TTransformation::Scaling(3, 4, 5)), {6, 12, 20},
               "a direction");
    EXPECT_EQ(Point3D(1, 2, 3).Transform(TTransformation::Scaling(2, -1, 0)), Point3D(2, -2, 0));
    EXPECT_EQ(TTransformation::Rotation(1, 0, 0, 0), TTransformation());
    EXPECT_EQ(TTransformation(ZoStreamableBase::InitEmpty), TTransformation());
    EXPECT_FALSE(static_cast<const ZoObject&>(move) == static_cast<const ZoObject&>(turn));
    EXPECT_TRUE(move != turn && !(move != move));
    TTransformation view;
    view.Element(4, 3, 0.5);
    EXPECT_EQ(Point3D(2, 4, 2).Transform(view), Point3D(1, 2, 1));
    EXPECT_EQ(Point3D(2, 4, -2).Transform(view), Point3D(2, 4, -2)) << "w is 0";
    EXPECT_EQ(view.Element(4, 3), 0.5);
    for (const auto& place : {std::pair{0u, 1u}, {5u, 1u}, {1u, 0u}, {1u, 5u}}) {
        const auto get = [&] { view.Element(place.first, place.second); };
        const auto set = [&] { view.Element(place.first, place.second, 1); };
        for (const FailedAssertion& failed : {AssertionOf(get), AssertionOf(set)})
            EXPECT_EQ(failed.source, "cpp/ZoPrimitives/TTransformation");
    }
}

/// A point that keeps its coordinates in a way of its own.
class Mirrored : public Point3D {
    REGISTER_ZO_BEGIN(Mirrored, Point3D)
    REGISTER_ZO_END
    Mirrored() = default;
    Mirrored(double x, double y, double z) : other{-x, -y, -z} {}
    double X() const override { return -other[0]; }
    double Y() const override { return -other[1]; }
    double Z() const override { return -other[2]; }
    void X(double value) override { other[0] = -value; }
    void Y(double value) override { other[1] = -value; }
    void Z(double value) override { other[2] = -value; }
    double other[3] = {};
};

TEST(PointTests, GoesThroughTheAccessors) {
    Mirrored point(1, 2, 3);
    EXPECT_EQ(Point3D(point), Point3D(1, 2, 3));
    EXPECT_EQ(CreateChecksum(point), CreateChecksum(Point3D(1, 2, 3)));
    static_cast<Point3D&>(point) = Point3D(3, 4, 5);
    point += Point3D(1, 1, 1);
    point.Rotate(PI, {0, 0, 0});
    EXPECT_STREQ(point.ToString().c_str(), "(-4, -5, 6)");
    EXPECT_EQ(point.other[2], -6);
}

TEST(PointTests, EachIsSavedAndOpened) {
    TZoMetaData schema;
    ZoRegisterPoints(&schema);
    Mirrored::Register(&schema);
    Point2D plane(1.5, -0.0);
    TVector2D planeVector(3, 4);
    Point3D space(5, -1e-300, 6);
    TVector3D vector(7, 8, INF);
    TTransformation move = TTransformation::Translation(10, 20, 30) * TTransformation::Scaling(2, 3, 4);
    Mirrored mirrored(1, 2, 3);
    Payload matrix;
    matrix.Int(16);
    for (unsigned i = 0; i < 16; ++i) matrix.Double(move.Element(i / 4 + 1, i % 4 + 1));
    const std::tuple<ZoStreamableBase*, const char*, std::string, const char*> cases[] = {
        {&plane, "Point2D", Payload().Double(1.5).Double(-0.0), "10|1.5|20|-0.|"},
        {&planeVector, "TVector2D", Payload().Double(3).Double(4), "10|3.|20|4.|"},
        {&space, "Point3D", Payload().Double(5).Double(-1e-300).Double(6), "10|5.|20|-1.e-300|30|6.|"},
        {&vector, "TVector3D", Payload().Double(7).Double(8).Double(INF), "210|7.|220|8.|230|inf|"},
        {&move, "TTransformation", matrix,
         "40|2.|40|0.|40|0.|40|10.|40|0.|40|3.|40|0.|40|20.|40|0.|40|0.|40|4.|40|30.|40|0.|40|0.|40|0.|40|1."
         "|"},
        {&mirrored, "class (anonymous namespace)::Mirrored", Payload().Double(1).Double(2).Double(3),
         nullptr},
    };
    for (const auto& [object, name, payload, tokens] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Text(object->StreamableClassName()).find(name), 0u);
        const std::string file = ExpectOpened(schema, *object);
        EXPECT_EQ(RowsOf(file)[1].payload, payload);
        EXPECT_TRUE(tokens == nullptr || ExpectReadAsText(schema, *object) == tokens);
    }
}

TEST(PointTests, MatricesOfOtherLengths) {
    TZoMetaData schema;
    ZoRegisterPoints(&schema);
    const ClassEntry entry{.name = "TTransformation", .values = {{0, ftListDouble, "matrix"}}};
    for (const int count : {0, 3, 16, 40}) {
        Payload list;
        list.Int(count);
        TTransformation expected;
        for (int i = 0; i < count; ++i) {
            list.Double(i + 5);
            if (i < 16) expected.Element(unsigned(i) / 4 + 1, unsigned(i) % 4 + 1, i + 5);
        }
        Opened opened(FileOf({entry}, {Row{1, 1, list}}), schema);
        EXPECT_TRUE(*std::as_const(opened.root) == expected) << count;
    }
}

TEST(PointTests, TextsAreReadOverWhatThereIs) {
    const Testing::TemporaryFolder folder;
    folder.Write("text", "40\n2\n40\n3\n0\n40\n4\n0\n10\n1\n20\n2\n230\n3\n0\n");
    InputStreamer reader(new FileInputStream(folder.Path("text").c_str()), nullptr);
    TTransformation first, second = TTransformation::Scaling(5, 5, 5);
    first.Element(1, 1, 2);
    first.Element(1, 2, 3);
    second.Read(reader);
    EXPECT_TRUE(second == first) << "the matrix that was there is forgotten";
    second.Read(reader);
    EXPECT_TRUE(second == TTransformation::Scaling(4, 1, 1));
    TVector3D vector;
    vector.Read(reader);
    EXPECT_EQ(vector, TVector3D(1, 2, 3)) << "codes of a point";
}

TEST(LDPointTests, IsTwoDoubles) {
    struct POINT {
        long x, y;
    };
    const LDPoint p = POINT{3, -4}, q(1, 1);
    EXPECT_TRUE(p == LDPoint(3, -4) && p != LDPoint(3, 4));
    EXPECT_TRUE(p.DistFrom({0, 0}) == 5 && p.DistFrom2({0, 0}) == 25);
    LDPoint r = p;
    EXPECT_EQ(r.Offset(r).Scale(0.5), p);
    EXPECT_EQ(p.OffsetBy(q), LDPoint(4, -3));
    EXPECT_EQ(-(p - q) * 2, LDPoint(-4, 10));
    EXPECT_EQ(p.ScaledBy(-1), -p);
}

} // namespace
