#include "ZoPrimitives/PathPairs.h"
#include "ZoPrimitives/TArc2D.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/TRay2D.h"
#include "ZoPrimitives/TTriangle2D.h"

#include "Geometry/Random.h"
#include "support/Assertions.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

using namespace ZoPrimitives;

namespace {

using Path = std::shared_ptr<TPath2D>;

template <class T>
Path Make(T path) {
    return std::make_shared<T>(std::move(path));
}

TEST(PathPairsTests, IntersectionsAndDistances) {
    const double s = std::sqrt(0.5), INF = HUGE_VAL;
    const RRect box({-5, -5}, {5, 5});
    const std::tuple<const char*, Path, Path, std::vector<Point2D>, double> cases[] = {
        {"segments that cross",
         Make(TSegment2D({0, 0}, {2, 2})),
         Make(TSegment2D({0, 2}, {2, 0})),
         {{1, 1}},
         0},
        {"segments that touch",
         Make(TSegment2D({0, 0}, {2, 0})),
         Make(TSegment2D({1, 0}, {1, 5})),
         {{1, 0}},
         0},
        {"segments that overlap",
         Make(TSegment2D({0, 0}, {4, 0})),
         Make(TSegment2D({5, 0}, {1, 0})),
         {{1, 0}, {4, 0}},
         0},
        {"a gap of an ulp",
         Make(TSegment2D({0, 0}, {2, 0})),
         Make(TSegment2D({1, 4e-324}, {1, 5})),
         {},
         4e-324},
        {"parallel segments", Make(TSegment2D({0, 0}, {4, 0})), Make(TSegment2D({1, 2}, {9, 2})), {}, 2},
        {"segments beside each other",
         Make(TSegment2D({0, 0}, {4, 0})),
         Make(TSegment2D({7, 4}, {7, 9})),
         {},
         5},
        {"a segment across a circle",
         Make(TSegment2D({-9, 0}, {9, 0})),
         Make(TCircle2D({0, 0}, 2)),
         {{-2, 0}, {2, 0}},
         0},
        {"a segment into a circle",
         Make(TSegment2D({0, 0}, {0, 9})),
         Make(TCircle2D({0, 0}, 2)),
         {{0, 2}},
         0},
        {"a segment within a circle", Make(TSegment2D({0, -1}, {0, 1})), Make(TCircle2D({0, 0}, 3)), {}, 2},
        {"a tangent", Make(TSegment2D({-4, 2}, {4, 2})), Make(TCircle2D({0, 0}, 2)), {{0, 2}}, 0},
        {"beside a circle", Make(TSegment2D({-4, 3}, {4, 3})), Make(TCircle2D({0, 0}, 2)), {}, 1},
        {"obliquely beside an arc",
         Make(TSegment2D({0, 4}, {4, 0})),
         Make(TArc2D({1, 0}, {0, 1}, std::sqrt(2) - 1)),
         {},
         std::sqrt(8) - 1},
        {"beyond an arc's end",
         Make(TSegment2D({-1, -9}, {-1, 9})),
         Make(TArc2D({1, 0}, {0, 1}, std::sqrt(2) - 1)),
         {},
         1},
        {"circles that cross",
         Make(TCircle2D({0, 0}, 1)),
         Make(TCircle2D({std::sqrt(2), 0}, 1)),
         {{s, -s}, {s, s}},
         0},
        {"circles that touch", Make(TCircle2D({0, 0}, 1)), Make(TCircle2D({3, 0}, 2)), {{1, 0}}, 0},
        {"circles that touch within", Make(TCircle2D({0, 0}, 3)), Make(TCircle2D({0, 2}, 1)), {{0, 3}}, 0},
        {"circles apart", Make(TCircle2D({0, 0}, 1)), Make(TCircle2D({3, 4}, 2)), {}, 2},
        {"a circle in another", Make(TCircle2D({0, 0}, 5)), Make(TCircle2D({1, 1}, 2)), {}, 3 - std::sqrt(2)},
        {"one centre", Make(TCircle2D({0, 0}, 5)), Make(TCircle2D({0, 0}, 2)), {}, 3},
        {"arcs of one circle",
         Make(TArc2D({2, 0}, {-2, 0}, 1)),
         Make(TArc2D({0, 2}, {0, -2}, 1)),
         {{0, 2}, {-2, 0}},
         0},
        {"a flat arc",
         Make(TArc2D({-1, 0}, {1, 0}, 1e-9)),
         Make(TSegment2D({0, -1}, {0, 1})),
         {{0, -1e-9}},
         0},
        {"a triangle and a line",
         Make(TTriangle2D({0, 0}, {4, 0}, {0, 4})),
         Make(TLine2D({1, 1}, {1, 1}).Beside(box)),
         {{0, 0}, {2, 2}},
         0},
        {"a ray from within",
         Make(TRay2D({1, 1}, {1, 1}).Beside(box)),
         Make(TTriangle2D({0, 0}, {4, 0}, {0, 4})),
         {{2, 2}},
         0},
        {"a ray that leads away",
         Make(TRay2D({3, 3}, {1, 1}).Beside(box)),
         Make(TTriangle2D({0, 0}, {4, 0}, {0, 4})),
         {},
         std::sqrt(2)},
        {"a vertex once",
         Make(TSegment2D({-1, 0}, {1, 0})),
         Make(TPolyline2D({{-1, 1}, {0, 0}, {1, 1}})),
         {{0, 0}},
         0},
        {"nothing", Make(TSegment2D({-1, 0}, {1, 0})), Make(TPolyline2D()), {}, INF},
    };
    for (const auto& [name, a, b, points, distance] : cases) {
        for (const bool swapped : {false, true}) {
            const TPath2D &p = swapped ? *b : *a, &q = swapped ? *a : *b;
            const TPolyline2D found = Intersections(p, q);
            ASSERT_EQ(found.NVertices(), points.size()) << name;
            for (unsigned long long i = 1; i <= points.size(); ++i) {
                const Point2D vertex = found.Vertex(i);
                EXPECT_TRUE(std::any_of(points.begin(), points.end(),
                                        [&](const Point2D& e) { return e.Equal(vertex, 12); }))
                    << name << vertex.ToString().c_str();
                EXPECT_TRUE(swapped || vertex.Equal(points[i - 1], 12)) << name << ": in order";
            }
            const double apart = Distance(p, q);
            EXPECT_TRUE(apart == distance || std::abs(apart - distance) < (distance < 1e-300 ? 0 : 1e-14))
                << name << apart;
            if (distance == INF) continue;
            const TSegment2D nearest = NearestPoints(p, q);
            EXPECT_NEAR(nearest.Length(), distance, 1e-14) << name;
            EXPECT_LE(p.Distance(nearest.Start()), 1e-14) << name;
            EXPECT_LE(q.Distance(nearest.End()), 1e-14) << name;
        }
    }
    EXPECT_EQ(AssertionOf([] { NearestPoints(TPolyline2D(), TSegment2D()); }).expression,
              "a path has a piece");
}

TPolyline2D Wander(Random& random, int pieces) {
    TPolyline2D path;
    for (int i = 0; i <= pieces; ++i)
        path.Add({random.Uniform(0, 10), random.Uniform(0, 10)}, random.Pick(2) * random.Uniform(-3, 3));
    return path;
}

/// Random paths against the same ones flattened finely.
TEST(PathPairsTests, AgreeWithChords) {
    Random random(41);
    int crossing = 0;
    for (int i = 0; i < 100; ++i) {
        const TPolyline2D a = Wander(random, 1 + i % 3), b = Wander(random, 1 + i % 2);
        const TPolyline2D chordsA = a.Flattened(1e-4), chordsB = b.Flattened(1e-4);
        EXPECT_NEAR(Distance(a, b), Distance(chordsA, chordsB), 1e-3) << i;
        const TPolyline2D points = Intersections(a, b);
        for (unsigned long long k = 1; k <= points.NVertices(); ++k) {
            EXPECT_LE(a.Distance(points.Vertex(k)), 1e-12) << i;
            EXPECT_LE(b.Distance(points.Vertex(k)), 1e-12) << i;
        }
        crossing += points.NVertices() != 0;
        EXPECT_EQ(points.NVertices(), Intersections(chordsA, chordsB, 3).NVertices()) << i;
        const TContour contour(b);
        TRegion region;
        region.AddContour(contour);
        const TRegion chords{TContour(contour.Flattened(1e-4))};
        EXPECT_EQ(PlaceOf(a, region, 3), PlaceOf(chordsA, chords, 3)) << i;
    }
    EXPECT_TRUE(crossing > 25 && crossing < 98);
    // Among many pieces, the nearest ones of all.
    for (int i = 0; i < 20; ++i) {
        const TPolyline2D a = Wander(random, 40);
        TPolyline2D b;
        for (int k = 0; k < 40; ++k) b.Add(Wander(random, 0).Vertex(1).Move(11, 3));
        double least = HUGE_VAL;
        for (unsigned long long p = 1; p <= a.NPieces(); ++p) {
            for (unsigned long long q = 1; q <= b.NPieces(); ++q) {
                TPolyline2D one({a.Vertex(p)}), other({b.Vertex(q), b.Vertex(q + 1)});
                one = TPolyline2D();
                one.Add(a.Vertex(p), a.Bulge(p));
                one.Add(a.Vertex(p + 1));
                least = std::min(least, Distance(one, other));
            }
        }
        EXPECT_EQ(Distance(a, b), least) << i;
    }
}

TEST(PathPairsTests, PlacesInRegions) {
    TRegion plate(TContour::Rectangle(RRect({0, 0}, {10, 10})));
    plate.AddHole(TContour(TCircle2D({5, 5}, 2)));
    const std::tuple<const char*, Path, TPathPlace, double> cases[] = {
        {"within", Make(TSegment2D({1, 1}, {2, 2})), PathInside, 0},
        {"outside", Make(TSegment2D({12, 1}, {12, 2})), PathOutside, 2},
        {"through", Make(TSegment2D({-1, 1}, {12, 1})), PathCrosses, 0},
        {"across a corner", Make(TSegment2D({-1, 1}, {1, -1})), PathOutside, 0},
        {"along the border", Make(TSegment2D({0, 1}, {0, 9})), PathOnBorder, 0},
        {"along the border and beyond", Make(TSegment2D({0, 1}, {0, 12})), PathOutside, 0},
        {"from the border", Make(TSegment2D({0, 1}, {2, 1})), PathInside, 0},
        {"in the hole", Make(TCircle2D({5, 5}, 1)), PathOutside, 1},
        {"along the hole", Make(TCircle2D({5, 5}, 2)), PathOnBorder, 0},
        {"around the hole", Make(TCircle2D({5, 5}, 3)), PathInside, 0},
        {"into the hole", Make(TSegment2D({1, 5}, {5, 5})), PathCrosses, 0},
        {"beside the border by a slip", Make(TSegment2D({-1e-7, 1}, {1e-7, 9})), PathOnBorder, 0},
        {"around it", Make(TContour::Rectangle(RRect({-2, -3}, {12, 12}))), PathOutside, 2},
    };
    for (const auto& [name, path, place, distance] : cases) {
        EXPECT_EQ(PlaceOf(*path, plate), place) << name;
        EXPECT_NEAR(Distance(plate, *path), distance, 1e-14) << name;
    }
    const auto rectangle = [](double x1, double y1, double x2, double y2) {
        return TRegion(TContour::Rectangle(RRect({x1, y1}, {x2, y2})));
    };
    const std::tuple<const char*, TRegion, bool, double> regions[] = {
        {"within", rectangle(1, 1, 2, 2), true, 0},
        {"the same", plate, true, 0},
        {"with the hole in it", rectangle(1, 1, 9, 9), false, 0},
        {"in the hole", rectangle(4, 4, 6, 6), false, 2 - std::sqrt(2)},
        {"apart", rectangle(13, 14, 20, 20), false, 5},
        {"around", rectangle(-1, -1, 20, 20), false, 0},
        {"at a side", rectangle(10, 0, 20, 10), false, 0},
        {"nothing", {}, true, HUGE_VAL},
    };
    for (const auto& [name, region, within, distance] : regions) {
        EXPECT_EQ(Contains(plate, region), within) << name;
        for (const double found : {Distance(plate, region), Distance(region, plate)})
            EXPECT_TRUE(found == distance || std::abs(found - distance) < 1e-14) << name << found;
    }
}

} // namespace
