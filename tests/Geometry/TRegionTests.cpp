#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TRegion.h"
#include "ZoPrimitives/TVector2D.h"

#include "Geometry/Random.h"
#include "support/Assertions.h"

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#ifdef ZO_TEST_GEOS
#include <geos_c.h>
#endif

using namespace ZoPrimitives;

namespace {

constexpr double PI = 3.141592653589793;
constexpr unsigned EXACT = 22;

TRegion Rectangle(double x1, double y1, double x2, double y2) {
    return TRegion(TContour::Rectangle(RRect({x1, y1}, {x2, y2})));
}

TRegion Without(TRegion region, std::initializer_list<TContour> holes) {
    for (const TContour& hole : holes) region.AddHole(hole);
    return region;
}

unsigned HolesOf(const TRegion& region) {
    unsigned holes = 0;
    for (unsigned long long i = 1; i <= region.NContours(); ++i) holes += region.IsHole(i);
    return holes;
}

/// Union, intersection, difference of the first, exclusive or.
std::array<TRegion, 4> OverlaysOf(const TRegion& a, const TRegion& b, unsigned precision) {
    return {a.Union(b, precision), a.Intersection(b, precision), a.Difference(b, precision),
            a.ExclusiveOr(b, precision)};
}

TEST(TRegionTests, Overlays) {
    struct Row {
        const char* name;
        TRegion a, b;
        std::array<double, 4> areas; // as `OverlaysOf`
        std::array<unsigned, 4> outers, holes;
    };
    const TRegion square = Rectangle(0, 0, 4, 4);
    const auto circle = [](double x, double y, double r) { return TContour(TCircle2D({x, y}, r)); };
    const double lens = 2 * PI / 3 - std::sqrt(3) / 2; // of two unit circles through each other's centres
    const double thin = 18 * std::acos(std::sqrt(8) / 3) - 2 * std::sqrt(8);
    const double belly = 2.25 * std::acos(1 / 1.5) - std::sqrt(1.25);
    const TRegion ring = Without(TRegion(circle(0, 0, 2)), {circle(0, 0, 1)});
    TRegion two = Rectangle(0, 0, 2, 2);
    two.AddContour(TContour::Rectangle(RRect({1, 1}, {3, 3})));
    const Row
        rows[] =
            {
                {"nothing", {}, {}, {0, 0, 0, 0}, {}, {}},
                {"with nothing", square, {}, {16, 0, 16, 16}, {1, 0, 1, 1}, {}},
                {"two squares", square, Rectangle(2, 2, 6, 6), {28, 4, 12, 24}, {1, 1, 1, 2}, {}},
                {"the same", square, square, {16, 16, 0, 0}, {1, 1, 0, 0}, {}},
                {"apart", square, Rectangle(5, 0, 6, 1), {17, 0, 16, 17}, {2, 0, 1, 2}, {}},
                {"a side in common", square, Rectangle(4, 1, 5, 3), {18, 0, 16, 18}, {1, 0, 1, 1}, {}},
                {"a corner in common", square, Rectangle(4, 4, 5, 5), {17, 0, 16, 17}, {2, 0, 1, 2}, {}},
                {"within", square, Rectangle(1, 1, 2, 2), {16, 1, 15, 15}, {1, 1, 1, 1}, {0, 0, 1, 1}},
                {"within, at a side", square, Rectangle(1, 0, 2, 2), {16, 2, 14, 14}, {1, 1, 1, 1}, {}},
                {"within, at a corner point",
                 square,
                 TRegion(TContour({{0, 0}, {2, 1}, {1, 2}})),
                 {16, 1.5, 14.5, 14.5},
                 {1, 1, 1, 1},
                 {0, 0, 1, 1}},
                {"across", square, Rectangle(1, -1, 2, 5), {18, 4, 12, 14}, {1, 1, 2, 4}, {}},
                {"into a hole",
                 Without(square, {TContour::Rectangle(RRect({1, 1}, {3, 3}))}),
                 Rectangle(1, 1, 3, 3),
                 {16, 0, 12, 16},
                 {1, 0, 1, 1},
                 {0, 0, 1, 0}},
                {"an island",
                 Without(square, {TContour::Rectangle(RRect({1, 1}, {3, 3}))}),
                 Rectangle(1.5, 1.5, 2, 2),
                 {12.25, 0, 12, 12.25},
                 {2, 0, 1, 2},
                 {1, 0, 1, 1}},
                {"a frame across a hole",
                 Without(square, {TContour::Rectangle(RRect({1, 1}, {3, 3}))}),
                 Rectangle(0, 0, 2, 4),
                 {14, 6, 6, 8},
                 {1, 1, 1, 2},
                 {1, 0, 0, 0}},
                {"overlapping contours count once", two, {}, {7, 0, 7, 7}, {1, 0, 1, 1}, {}},
                {"clockwise",
                 TRegion(TContour({{0, 0}, {0, 4}, {4, 4}, {4, 0}})),
                 Rectangle(2, 2, 6, 6),
                 {28, 4, 12, 24},
                 {1, 1, 1, 2},
                 {}},
                {"circles",
                 TRegion(circle(0, 0, 1)),
                 TRegion(circle(1, 0, 1)),
                 {2 * PI - lens, lens, PI - lens, 2 * PI - 2 * lens},
                 {1, 1, 1, 2},
                 {}},
                {"touching circles",
                 TRegion(circle(0, 0, 1)),
                 TRegion(circle(2, 0, 1)),
                 {2 * PI, 0, PI, 2 * PI},
                 {2, 0, 1, 2},
                 {}},
                {"a thin lens",
                 TRegion(circle(0, 0, 3)),
                 TRegion(circle(4, 4, 3)),
                 {18 * PI - thin, thin, 9 * PI - thin, 18 * PI - 2 * thin},
                 {1, 1, 1, 2},
                 {}},
                {"a half circle and its chord",
                 TRegion(circle(0, 0, 1)),
                 Rectangle(-1, -1, 1, 0),
                 {2 + PI / 2, PI / 2, PI / 2, 2},
                 {1, 1, 1, 3},
                 {}},
                {"the same circle",
                 TRegion(circle(0.1, 0, 1)),
                 TRegion(circle(0.1, 0, 1)),
                 {PI, PI, 0, 0},
                 {1, 1, 0, 0},
                 {}},
                {"the same circle, from another point",
                 TRegion(circle(0, 0, 1)),
                 TRegion(
                     [] {
                         TContour turned;
                         turned.Add({0, 1}, 1);
                         turned.Add({0, -1}, 1);
                         return turned;
                     }()),
                 {PI, PI, 0, 0},
                 {1, 1, 0, 0},
                 {}},
                {"a circle in a square",
                 square,
                 TRegion(circle(2, 2, 1)),
                 {16, PI, 16 - PI, 16 - PI},
                 {1, 1, 1, 1},
                 {0, 0, 1, 1}},
                {"a circle that touches all sides",
                 square,
                 TRegion(circle(2, 2, 2)),
                 {16, 4 * PI, 16 - 4 * PI, 16 - 4 * PI},
                 {1, 1, 4, 4},
                 {}},
                {"half a circle",
                 square,
                 TRegion(circle(0, 2, 1)),
                 {16 + PI / 2, PI / 2, 16 - PI / 2, 16},
                 {1, 1, 1, 2},
                 {}},
                {"half a ring",
                 ring,
                 Rectangle(-3, 0, 3, 3),
                 {18 + 1.5 * PI, 1.5 * PI, 1.5 * PI, 18},
                 {1, 1, 1, 3},
                 {1, 0, 0, 0}},
                {"a belly without a vertex in it",
                 square,
                 TRegion(circle(2, 5, 1.5)),
                 {16 + 2.25 * PI - belly, belly, 16 - belly, 16 + 2.25 * PI - 2 * belly},
                 {1, 1, 1, 2},
                 {}},
            };
    for (const Row& row : rows) {
        for (const unsigned precision : {EXACT, 6u}) {
            for (const bool far : {false, true}) {
                const auto moved = [&](const TRegion& region) {
                    TRegion result;
                    for (unsigned long long i = 1; i <= region.NContours(); ++i) {
                        TContour contour;
                        const TContour own = region.Contour(i);
                        for (unsigned long long k = 1; k <= own.NVertices(); ++k)
                            contour.Add(own.Vertex(k).Move(far ? 1024 : 0, far ? -4096 : 0), own.Bulge(k));
                        region.IsHole(i) ? result.AddHole(contour) : result.AddContour(contour);
                    }
                    return result;
                };
                const auto found = OverlaysOf(moved(row.a), moved(row.b), precision);
                // Where arcs touch, the tolerance takes more than rounding does.
                const double error = precision != EXACT ? 1e-5 : far ? 1e-9 : 1e-13;
                for (std::size_t k = 0; k < 4; ++k) {
                    const std::string name = row.name + (" " + std::to_string(precision)) +
                                             (far ? " far " : " ") + std::to_string(k);
                    EXPECT_NEAR(found[k].Area(), row.areas[k], error) << name;
                    EXPECT_EQ(found[k].NContours() - HolesOf(found[k]), row.outers[k]) << name;
                    EXPECT_EQ(HolesOf(found[k]), row.holes[k]) << name;
                }
                EXPECT_NEAR(found[0].Area(), found[1].Area() + found[3].Area(), error + 1e-9) << row.name;
            }
        }
    }
    // What was not crossed is as it was.
    EXPECT_EQ(square.Union(Rectangle(1, 1, 2, 2)), square);
    EXPECT_EQ(square.Intersection(Rectangle(2, -1, 9, 9)), Rectangle(2, 0, 4, 4));
    const TRegion circles = TRegion(circle(0, 0, 1)).Union(TRegion(circle(1, 0, 1)));
    EXPECT_LE(circles.Contour(1).NVertices(), 6u) << "arcs stay arcs";
    const TRegion crescent = TRegion(circle(1, 0, 3)).Difference(TRegion(circle(0, 0, 2)), EXACT);
    EXPECT_NEAR(crescent.Area(), 5 * PI, 1e-12) << "circles that touch within";
    const TRegion ringed = Without(square, {TContour::Rectangle(RRect({1, 1}, {3, 3}))});
    const TRegion island = ringed.Union(Rectangle(1.5, 1.5, 2, 2));
    EXPECT_EQ(island.Locate({1.75, 1.75}), InsideRegion);
    EXPECT_NEAR(island.Difference(Rectangle(-1, -1, 1.75, 9)).Area(), 12.25 - 5.5 - 0.125, 1e-14);
    // Slips within the tolerance leave no slivers.
    EXPECT_EQ(square.Union(Rectangle(4 + 4e-7, 1e-7, 6, 4 - 1e-7)).NContours(), 1u);
    EXPECT_EQ(square.Union(Rectangle(4 + 4e-7, 1e-7, 6, 4 - 1e-7), EXACT).NContours(), 2u);
    EXPECT_EQ(square.Intersection(Rectangle(4 - 4e-7, 0, 6, 4)).NContours(), 0u);

    const std::pair<const char*, std::function<void()>> refused[] = {
        {"finite coordinates", [&] { square.Union(Rectangle(0, 0, HUGE_VAL, 1)); }},
        {"precision <= 22", [&] { square.Union(square, 23); }},
    };
    for (const auto& [text, call] : refused) EXPECT_EQ(AssertionOf(call).expression, text);
}

/// A contour around a centre, perhaps with arcs.
TContour Star(Random& random, double x, double y, double size, int vertices, bool arcs) {
    TContour contour;
    for (int i = 0; i < vertices; ++i) {
        const double angle = 2 * PI * i / vertices, r = size * random.Uniform(0.4, 1);
        contour.Add({x + r * std::cos(angle), y + r * std::sin(angle)},
                    arcs ? random.Pick(2) * random.Uniform(-0.2, 0.2) : 0);
    }
    return contour;
}
TRegion Blocks(Random& random) {
    TRegion region;
    for (int x = 0; x < 4; ++x) {
        for (int y = 0; y < 4; ++y) {
            if (random.Pick(2) == 0) continue;
            TContour block = TContour::Rectangle(RRect({2.0 * x, 2.0 * y}, {2.0 * x + 2, 2.0 * y + 2}));
            if (random.Pick(2) == 0) block.Reverse();
            region.AddContour(block);
            if (random.Pick(3) == 0)
                region.AddHole(TContour::Rectangle(
                    RRect({2.0 * x, 2.0 * y}, {2.0 * x + 1 + random.Pick(2), 2.0 * y + 1})));
        }
    }
    return region;
}
/// Any polygons, which cross themselves.
TRegion Scribble(Random& random, const std::function<double()>& coordinate, bool arcs) {
    TRegion region;
    for (int n = 1 + random.Pick(3); n > 0; --n) {
        TContour contour;
        for (int i = 3 + random.Pick(6); i > 0; --i)
            contour.Add({coordinate(), coordinate()}, arcs ? random.Pick(2) * random.Uniform(-1.5, 1.5) : 0);
        random.Pick(4) == 0 ? region.AddHole(contour) : region.AddContour(contour);
    }
    return region;
}
struct Kind {
    const char* name;
    TRegion (*make)(Random&);
    bool simple; // no contour crosses itself, and all are straight
};
const Kind KINDS[] = {
    {"stars",
     [](Random& random) {
         TRegion region(
             Star(random, random.Uniform(0, 8), random.Uniform(0, 8), 4, 5 + random.Pick(30), false));
         return region;
     },
     true},
    {"blocks", Blocks, true},
    {"stars with arcs",
     [](Random& random) {
         return TRegion(
             Star(random, random.Uniform(0, 8), random.Uniform(0, 8), 4, 5 + random.Pick(9), true));
     },
     false},
    {"circles on a grid",
     [](Random& random) {
         TRegion region;
         for (int n = 1 + random.Pick(3); n > 0; --n)
             region.AddContour(
                 TContour(TCircle2D({1.0 * random.Pick(5), 1.0 * random.Pick(5)}, 1 + random.Pick(3))));
         return region;
     },
     false},
    {"scribbles",
     [](Random& random) {
         return Scribble(
             random, [&] { return random.Uniform(0, 8); }, false);
     },
     false},
    {"scribbles on a grid",
     [](Random& random) {
         return Scribble(
             random, [&] { return 2.0 * random.Pick(5); }, false);
     },
     false},
    {"scribbles with arcs",
     [](Random& random) {
         return Scribble(
             random, [&] { return 2.0 * random.Pick(5); }, true);
     },
     false},
    {"of all sizes",
     [](Random& random) {
         return Scribble(
             random, [&] { return random.Uniform(-1, 1) * std::pow(10, random.Uniform(-9, 9)); },
             random.Pick(2) == 0);
     },
     false},
};

TEST(TRegionTests, OverlaysOfAnyRegionsAddUp) {
    Random random(31);
    for (const auto& [name, make, simple] : KINDS) {
        const bool large = std::string(name) == "of all sizes";
        for (int i = 0; i < 12; ++i) {
            const TRegion a = make(random), b = make(random);
            for (const unsigned precision : {EXACT, 6u}) {
                const std::string what = name + std::to_string(i) + " " + std::to_string(precision);
                const auto found = OverlaysOf(a, b, precision);
                const double areaA = a.Union({}, precision).Area(), areaB = b.Union({}, precision).Area();
                const double error = large            ? 1e-9 * (found[0].BoundingBox().Area() + 1)
                                     : precision == 6 ? 1e-3
                                                      : 1e-9;
                ASSERT_NEAR(areaA + areaB, found[0].Area() + found[1].Area(), error) << what;
                ASSERT_NEAR(areaA - found[1].Area(), found[2].Area(), error) << what;
                ASSERT_NEAR(found[0].Area() - found[1].Area(), found[3].Area(), error) << what;
                if (large) continue;
                // Where points lie, by the operands themselves.
                for (int k = 0; k < 15; ++k) {
                    const Point2D p(random.Uniform(-4, 12), random.Uniform(-4, 12));
                    const TLocation inA = a.Locate(p, 3), inB = b.Locate(p, 3);
                    if (inA == OnBorder || inB == OnBorder) continue;
                    const bool isA = inA == InsideRegion, isB = inB == InsideRegion;
                    const bool expected[] = {isA || isB, isA && isB, isA && !isB, isA != isB};
                    for (std::size_t n = 0; n < 4; ++n)
                        ASSERT_EQ(found[n].Locate(p, 9), expected[n] ? InsideRegion : OutsideRegion)
                            << what << ' ' << n << ' ' << p.ToString().c_str();
                }
            }
        }
    }
}

TEST(TRegionTests, Offsets) {
    const TRegion square = Rectangle(0, 0, 4, 4);
    const TRegion frame = Without(square, {TContour::Rectangle(RRect({1, 1}, {3, 3}))});
    const TRegion circle{TContour(TCircle2D({1, 2}, 3))};
    TRegion moon =
        TRegion(TContour(TCircle2D({0, 0}, 2))).Difference(TRegion(TContour(TCircle2D({0, 0}, 1))));
    const std::tuple<const char*, TRegion, double, double, unsigned, unsigned> cases[] = {
        {"outward", square, 1, 16 + 16 + PI, 1, 0},
        {"inward", square, -1, 4, 1, 0},
        {"inward to nothing", square, -2.5, 0, 0, 0},
        {"by nothing", square, 0, 16, 1, 0},
        {"a frame, outward", frame, 0.5, 16 + 8 + PI / 4 - 1, 1, 1},
        {"a frame, until the hole closes", frame, 1.5, 16 + 24 + 2.25 * PI, 1, 0},
        {"a frame, inward", frame, -0.25, 3.5 * 3.5 - 4 - 8 * 0.25 - PI / 16, 1, 1},
        {"a circle, outward", circle, 1, 16 * PI, 1, 0},
        {"a circle, inward", circle, -1, 4 * PI, 1, 0},
        {"a circle, inward to nothing", circle, -4, 0, 0, 0},
        {"a ring, inward", moon, -0.25, PI * (1.75 * 1.75 - 1.25 * 1.25), 1, 1},
        {"two that meet", Rectangle(0, 0, 1, 1).Union(Rectangle(2, 0, 3, 1)), 0.5, 2 + 4 + PI / 2, 1, 0},
        {"a corner inward", TRegion(TContour({{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}})), 0.5,
         3 + 4 + 5 * PI / 16 - 0.25, 1, 0},
    };
    for (const auto& [name, region, distance, area, outers, holes] : cases) {
        const TRegion found = region.Offset(distance);
        EXPECT_NEAR(found.Area(), area, 2e-5) << name;
        EXPECT_EQ(found.NContours() - HolesOf(found), outers) << name;
        EXPECT_EQ(HolesOf(found), holes) << name;
    }
    EXPECT_NEAR(square.Offset(1, EXACT).Area(), 32 + PI, 1e-13);
    // Of any region: points lie within it as their distance says.
    Random random(47);
    for (int i = 0; i < 20; ++i) {
        const TRegion region = TRegion(Star(random, 4, 4, 4, 5 + random.Pick(9), i % 2 == 0)).Union({});
        for (const double distance : {-0.3, 0.4, 2.0}) {
            const TRegion found = region.Offset(distance);
            for (int k = 0; k < 20; ++k) {
                const Point2D p(random.Uniform(-4, 12), random.Uniform(-4, 12));
                double least = HUGE_VAL;
                for (unsigned long long c = 1; c <= region.NContours(); ++c)
                    least = std::min(least, region.Contour(c).Distance(p));
                if (std::abs(least - std::abs(distance)) < 1e-5) continue;
                const bool inside = region.Locate(p) == InsideRegion;
                const bool expected = distance > 0 ? inside || least < distance : inside && least > -distance;
                ASSERT_EQ(found.Locate(p), expected ? InsideRegion : OutsideRegion)
                    << i << ' ' << distance << ' ' << p.ToString().c_str();
            }
        }
    }
    EXPECT_EQ(AssertionOf([&] { square.Offset(std::nan("")); }).expression, "finite coordinates");
}

#ifdef ZO_TEST_GEOS

/// The same overlays by another library.
class Peer {
public:
    Peer() : handle(GEOS_init_r()) {}
    ~Peer() { GEOS_finish_r(handle); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    struct Found {
        double area = 0;
        unsigned parts = 0;
        unsigned holes = 0;
    };
    /// As `OverlaysOf`.
    std::array<Found, 4> Overlays(const TRegion& a, const TRegion& b) {
        GEOSGeometry *p = Convert(a), *q = Convert(b);
        const std::array<Found, 4> found = {
            Tell(GEOSUnion_r(handle, p, q)), Tell(GEOSIntersection_r(handle, p, q)),
            Tell(GEOSDifference_r(handle, p, q)), Tell(GEOSSymDifference_r(handle, p, q))};
        for (GEOSGeometry* geometry : {p, q}) GEOSGeom_destroy_r(handle, geometry);
        return found;
    }

private:
    GEOSGeometry* Convert(const TRegion& region) {
        GEOSGeometry* result = GEOSGeom_createEmptyPolygon_r(handle);
        for (const bool holes : {false, true}) {
            for (unsigned long long i = 1; i <= region.NContours(); ++i) {
                if (region.IsHole(i) != holes) continue;
                GEOSGeometry* polygon = Convert(region.Contour(i));
                GEOSGeometry* both =
                    holes ? GEOSDifference_r(handle, result, polygon) : GEOSUnion_r(handle, result, polygon);
                for (GEOSGeometry* geometry : {result, polygon}) GEOSGeom_destroy_r(handle, geometry);
                result = both;
            }
        }
        return result;
    }
    GEOSGeometry* Convert(const TContour& contour) {
        const auto count = static_cast<unsigned>(contour.NVertices());
        GEOSCoordSequence* points = GEOSCoordSeq_create_r(handle, count + 1, 2);
        for (unsigned i = 0; i <= count; ++i) {
            const Point2D vertex = contour.Vertex(i % count + 1);
            GEOSCoordSeq_setXY_r(handle, points, i, vertex.X(), vertex.Y());
        }
        return GEOSGeom_createPolygon_r(handle, GEOSGeom_createLinearRing_r(handle, points), nullptr, 0);
    }
    Found Tell(GEOSGeometry* geometry) {
        Found found;
        GEOSArea_r(handle, geometry, &found.area);
        for (int i = 0; i < GEOSGetNumGeometries_r(handle, geometry); ++i) {
            const GEOSGeometry* part = GEOSGetGeometryN_r(handle, geometry, i);
            if (GEOSisEmpty_r(handle, part) != 0 || GEOSGeomTypeId_r(handle, part) != GEOS_POLYGON) continue;
            ++found.parts;
            found.holes += static_cast<unsigned>(GEOSGetNumInteriorRings_r(handle, part));
        }
        GEOSGeom_destroy_r(handle, geometry);
        return found;
    }

    GEOSContextHandle_t handle;
};

TEST(TRegionTests, OverlaysAreThoseOfAnotherLibrary) {
    Random random(17);
    Peer peer;
    for (const auto& [name, make, simple] : KINDS) {
        for (int i = 0; simple && i < 40; ++i) {
            const TRegion a = make(random), b = make(random);
            const auto expected = peer.Overlays(a, b);
            for (const unsigned precision : {EXACT, 9u}) {
                const auto found = OverlaysOf(a, b, precision);
                for (std::size_t k = 0; k < 4; ++k) {
                    ASSERT_NEAR(found[k].Area(), expected[k].area, 1e-6) << name << i << ' ' << k;
                    ASSERT_EQ(found[k].NContours() - HolesOf(found[k]), expected[k].parts)
                        << name << i << ' ' << k;
                    ASSERT_EQ(HolesOf(found[k]), expected[k].holes) << name << i << ' ' << k;
                }
            }
        }
    }
}

#endif

} // namespace
