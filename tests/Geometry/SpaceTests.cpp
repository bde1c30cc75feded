#include "ZoPrimitives/FloatMatrix.h"
#include "ZoPrimitives/T3DCylinder.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TExtrusionPath.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/TPlane3D.h"
#include "ZoPrimitives/TTransformation.h"

#include "Geometry/Random.h"
#include "Geometry/Triangulation.h"
#include "support/Assertions.h"
#include "support/FaultyServices.h"
#include "support/RoundTrip.h"

#include <cmath>
#include <cstring>
#include <memory>

using namespace ZoPrimitives;
using ZoPrimitives::Testing::FaultyServices;

namespace {

constexpr double PI = 3.141592653589793;
const double QUARTER = std::sqrt(2.0) - 1;

TContour Rectangle(double x1, double y1, double x2, double y2) {
    return TContour::Rectangle(RRect({x1, y1}, {x2, y2}));
}

/// A box's outside, twelve triangles.
T3DMesh Cube(double size) {
    return TExtrusionPath(TRegion(Rectangle(0, 0, size, size)), {{0, 0, 0}, {0, 0, size}}).Mesh(1);
}

void ExpectNear(const Point3D& found, const Point3D& expected, double error, const std::string& name) {
    EXPECT_LE(found.Distance(expected), error) << name << found.ToString().c_str();
}

TEST(SpaceTests, Planes) {
    const TPlane3D level({0, 0, 3}, {0, 0, 2}), wall({5, 0, 0}, {1, 0, 0}), slope({0, 0, 0}, {1, 1, 1});
    TPlane3D plane;
    Point3D point(7, 7, 7);
    TVector3D direction(7, 7, 7);
    EXPECT_TRUE(level.SignedDistance({9, 9, 1}) == -2 && level.Project({9, 9, 1}) == Point3D(9, 9, 3));
    EXPECT_TRUE(level.Contains({1, 1, 3 + 9e-7}) && !level.Contains({1, 1, 3 + 2e-6}) &&
                level.Contains({1, 1, 3}, 22));
    EXPECT_FALSE(TPlane3D::Through({0, 0, 0}, {1, 1, 1}, {3, 3, 3}, plane) || plane != TPlane3D());
    EXPECT_FALSE(TPlane3D::Through({0, 0, 0}, {1e3, 0, 0}, {500, 9e-7, 0}, plane)) << "within the tolerance";
    EXPECT_FALSE(TPlane3D::Through({1, 1, 1}, {1, 1, 1}, {2, 3, 4}, plane, 22));
    EXPECT_TRUE(TPlane3D::Through({0, 0, 3}, {2, 0, 3}, {0, 4, 3}, plane) &&
                plane == TPlane3D({0, 0, 3}, {0, 0, 1}));
    EXPECT_TRUE(level.Intersection({1, 2, 0}, {1, 0, 3}, point) && point == Point3D(2, 2, 3));
    EXPECT_FALSE(level.Intersection({1, 2, 0}, {1, 1, 0}, point));
    EXPECT_FALSE(level.Intersection(level, point, direction) || point != Point3D(2, 2, 3));
    EXPECT_TRUE(level.Intersection(wall, point, direction) && point == Point3D(5, 0, 3) &&
                direction == TVector3D(0, 1, 0));
    const std::tuple<const char*, T3DSegment, bool, Point3D> segments[] = {
        {"through", {{0, 0, 1}, {4, 0, 5}}, true, {2, 0, 3}},
        {"touching by its end", {{0, 0, 1}, {4, 0, 3}}, true, {4, 0, 3}},
        {"short of it", {{0, 0, 1}, {4, 0, 2.9999999}}, false, {}},
        {"beyond it", {{0, 0, 4}, {4, 0, 5}}, false, {}},
        {"parallel", {{0, 0, 1}, {4, 0, 1}}, false, {}},
        {"within", {{0, 0, 3}, {4, 0, 3}}, false, {}},
    };
    for (const auto& [name, segment, meets, at] : segments) {
        EXPECT_EQ(level.Intersection(segment, point), meets) << name;
        EXPECT_TRUE(!meets || point == at) << name;
    }
    EXPECT_EQ(AssertionOf([] { TPlane3D({0, 0, 0}, {0, 0, 0}).Project({1, 1, 1}); }).expression, "a normal");
    EXPECT_EQ(AssertionOf([&] { static_cast<void>(level.Intersection({}, TVector3D(), point)); }).expression,
              "a direction");

    Random random(21);
    for (int i = 0; i < 1000; ++i) {
        const double size = std::pow(10, random.Uniform(-9, 9)), error = 1e-13 * size;
        const auto any = [&] {
            return Point3D(random.Uniform(-size, size), random.Uniform(-size, size),
                           random.Uniform(-size, size));
        };
        const Point3D a = any(), b = any(), c = any(), d = any();
        TPlane3D other;
        ASSERT_TRUE(TPlane3D::Through(a, b, c, plane, 22) && TPlane3D::Through(b, c, d, other, 22));
        for (const Point3D& p : {a, b, c}) ASSERT_LE(std::abs(plane.SignedDistance(p)), error);
        ASSERT_LE(std::abs(plane.SignedDistance(plane.Project(d))), error);
        if (TVector3D(plane.Normal().CrossProduct(other.Normal())).Magnitude() < 1e-2) continue;
        ASSERT_TRUE(plane.Intersection(other, point, direction));
        const TVector3D side(b, c); // both planes hold it
        ASSERT_LE(direction.CrossProduct(side).Magnitude(), 1e-11 * side.Magnitude()) << i;
        ASSERT_LE(direction.CrossProduct(b - point).Magnitude(), 1e-11 * size) << i;
    }
}

TEST(SpaceTests, SegmentsAndBoxes) {
    const T3DSegment segment({0, 0, 0}, {4, 0, 0});
    const std::tuple<const char*, T3DSegment, double> cases[] = {
        {"crossing above", {{2, -1, 3}, {2, 1, 3}}, 3},
        {"crossing", {{1, -1, 0}, {1, 1, 0}}, 0},
        {"beside an end", {{7, -1, 4}, {7, 1, 4}}, 5},
        {"parallel", {{1, 2, 0}, {9, 2, 0}}, 2},
        {"parallel, behind", {{7, 4, 0}, {9, 4, 0}}, 5},
        {"a point", {{1, 0, 2}, {1, 0, 2}}, 2},
        {"from its end on", {{4, 0, 0}, {9, 9, 9}}, 0},
        {"the line's nearest point beyond", {{2, 1, 0}, {2, 5, 1}}, 1},
    };
    for (const auto& [name, other, distance] : cases) {
        EXPECT_NEAR(segment.Distance(other), distance, 1e-14) << name;
        EXPECT_NEAR(other.Distance(segment), distance, 1e-14) << name;
    }
    EXPECT_EQ(segment.NearestPoint({9, 9, 9}), Point3D(4, 0, 0));
    EXPECT_TRUE(segment.Locate({1, 5e-7, 0}) == OnBorder && segment.Locate({1, 2e-6, 0}) == OutsideRegion);
    EXPECT_EQ(T3DSegment({1e300, 0, 0}, {-1e300, 0, 0}).Distance(Point3D(0, 3, 0)), 3);
    T3DHit hit;
    EXPECT_TRUE(!segment.RayHit({1, 1, 0}, {0, -1, 0}, hit) && segment.Mesh(1).IsClosed() &&
                segment.Length() == 4 && segment.Volume() == 0);
    T3DBox box;
    EXPECT_TRUE(box.IsEmpty() && box.Volume() == 0 && !box.Contains({}) && box == T3DMesh().BoundingBox());
    box.Add(Point3D(3, 5, 7)).Add(Point3D(1, 2, 3)).Add(T3DBox());
    EXPECT_TRUE(box == T3DBox({1, 5, 3}, {3, 2, 7}) && box.Volume() == 24 &&
                box.Centre() == Point3D(2, 3.5, 5));
    EXPECT_TRUE(box.Contains({3, 5, 7}) && !box.Contains({3, 5, 7.1}) && !box.Contains({0.9, 3, 4}));
    EXPECT_TRUE(box.Intersects(T3DBox({3, 5, 7}, {9, 9, 9})) &&
                !box.Intersects(T3DBox({3, 5.1, 7}, {9, 9, 9})));
}

TEST(SpaceTests, Cylinders) {
    const T3DCylinder column({0, 0, 0}, {0, 0, 10}, 2);
    EXPECT_DOUBLE_EQ(column.Volume(), 40 * PI);
    EXPECT_DOUBLE_EQ(column.SurfaceArea(), 48 * PI);
    EXPECT_EQ(column.BoundingBox(), T3DBox({-2, -2, 0}, {2, 2, 10}));
    EXPECT_EQ(T3DCylinder({0, 0, 0}, {0, 0, 10}, -2).BoundingBox(), column.BoundingBox());
    const double s = std::sqrt(0.5);
    ExpectNear(Point3D(T3DCylinder({0, 0, 0}, {1, 0, 1}, 2).BoundingBox().X2(), 0, 0), {1 + 2 * s, 0, 0},
               1e-14, "sloping");
    const std::tuple<const char*, Point3D, double, TLocation> points[] = {
        {"beside", {5, 0, 5}, 3, OutsideRegion},
        {"above", {1, 0, 12}, 2, OutsideRegion},
        {"off the rim", {5, 0, 14}, 5, OutsideRegion},
        {"on the axis", {0, 0, 5}, -2, InsideRegion},
        {"near the lower end", {0, 1, 0.5}, -0.5, InsideRegion},
        {"on the side", {2, 0, 5}, 0, OnBorder},
        {"on the rim", {0, 2, 10}, 0, OnBorder},
    };
    for (const auto& [name, point, distance, location] : points) {
        EXPECT_NEAR(column.SignedDistance(point), distance, 1e-14) << name;
        EXPECT_EQ(column.Locate(point), location) << name;
        EXPECT_EQ(column.Distance(point), std::max(column.SignedDistance(point), 0.0)) << name;
    }
    const std::tuple<const char*, Point3D, TVector3D, double, TVector3D> rays[] = {
        {"at the side", {5, 0, 5}, {-3, 0, 0}, 3, {1, 0, 0}},
        {"from above", {1, 0, 12}, {0, 0, -1}, 2, {0, 0, 1}},
        {"from below", {1, 0, -4}, {0, 0, 9}, 4, {0, 0, -1}},
        {"from inside, out by the end", {1, 0, 4}, {0, 0, 1}, 6, {0, 0, 1}},
        {"from inside, out by the side", {0, 0, 4}, {0, 1, 0}, 2, {0, 1, 0}},
        {"from far away", {1e9, 0, 5}, {-1, 0, 0}, 1e9 - 2, {1, 0, 0}},
        {"past it", {5, 3, 5}, {-1, 0, 0}, -1, {}},
        {"away from it", {5, 0, 5}, {1, 0, 0}, -1, {}},
        {"beside it, upward", {5, 0, 5}, {0, 0, 1}, -1, {}},
        {"above it, level", {5, 0, 11}, {-1, 0, 0}, -1, {}},
    };
    for (const auto& [name, from, towards, distance, normal] : rays) {
        T3DHit hit;
        ASSERT_EQ(column.RayHit(from, towards, hit), distance >= 0) << name;
        if (distance < 0) continue;
        EXPECT_NEAR(hit.distance, distance, 1e-14 * std::max(1.0, distance)) << name;
        ExpectNear(hit.normal, normal, 1e-14, name);
    }
    EXPECT_EQ(T3DCylinder({0, 0, 0}, {0, 0, 5}, 0).Mesh(1), T3DMesh());
    const T3DCylinder disc({1, 1, 1}, {1, 1, 1}, 3);
    EXPECT_TRUE(disc.Mesh(0.1).IsClosed() && disc.Mesh(0.1).Volume() == 0 && disc.Volume() == 0);
    EXPECT_NEAR(disc.SurfaceArea(), 18 * PI, 1e-13);
    EXPECT_EQ(AssertionOf([&] { column.Mesh(0); }).expression, "chordError > 0");
}

/// What must hold of any shape: its mesh is closed, comes to its closed forms with the chord error, and
/// agrees on distances and hits.
void ExpectConsistent(const I3DShape& shape, const std::string& name, Random& random) {
    const T3DBox box = shape.BoundingBox();
    const double size = Point3D(box.X1(), box.Y1(), box.Z1()).Distance({box.X2(), box.Y2(), box.Z2()});
    double before = HUGE_VAL;
    for (const double error : {size * 1e-2, size * 1e-3, size * 1e-4}) {
        const T3DMesh mesh = shape.Mesh(error);
        ASSERT_EQ(mesh.NOpenEdges(), 0u) << name;
        ASSERT_GT(mesh.SignedVolume(), 0) << name;
        const double off = std::abs(mesh.SignedVolume() - shape.Volume());
        ASSERT_LE(off, error * shape.SurfaceArea() + 1e-12 * size * shape.SurfaceArea()) << name;
        ASSERT_LE(mesh.SurfaceArea(), shape.SurfaceArea() * (1 + 1e-12)) << name;
        ASSERT_LE(shape.SurfaceArea() - mesh.SurfaceArea(), (error / size + 1e-12) * 20 * shape.SurfaceArea())
            << name;
        ASSERT_TRUE(off <= before || off < 1e-11 * shape.Volume()) << name;
        before = off;
        const T3DBox inner = mesh.BoundingBox();
        const double slack = error + 1e-13 * size;
        for (const auto& [a, b] : {std::pair(inner.X1(), box.X1()),
                                   {inner.Y1(), box.Y1()},
                                   {inner.Z1(), box.Z1()},
                                   {-inner.X2(), -box.X2()},
                                   {-inner.Y2(), -box.Y2()},
                                   {-inner.Z2(), -box.Z2()}})
            ASSERT_TRUE(a >= b - 1e-13 * size && a <= b + slack) << name << a - b;
    }
    const T3DMesh mesh = shape.Mesh(size * 1e-4);
    const auto any = [&] {
        const auto between = [&](double low, double high) {
            return low - 0.2 * size + (high - low + 0.4 * size) * random.Uniform(0, 1);
        };
        return Point3D(between(box.X1(), box.X2()), between(box.Y1(), box.Y2()), between(box.Z1(), box.Z2()));
    };
    for (int i = 0; i < 40; ++i) {
        const Point3D from = any(), to = any();
        const double distance = shape.SignedDistance(from);
        ASSERT_NEAR(distance, mesh.SignedDistance(from), 2e-4 * size) << name;
        T3DHit hit, meshHit;
        const TVector3D towards(from, to);
        const bool hits = shape.RayHit(from, towards, hit);
        ASSERT_TRUE(hits || distance > 0) << name << ": a ray leaves from inside";
        if (hits) {
            ASSERT_NEAR(shape.SignedDistance(hit.point), 0, 1e-12 * size) << name;
            ASSERT_GE(hit.distance, std::abs(distance) * (1 - 1e-9) - 2e-4 * size) << name;
            // On the way there, the ray is on the side where it began.
            const Point3D half = from.InterpolaPontoComPercentual(hit.point, 0.5);
            ASSERT_TRUE(shape.SignedDistance(half) * distance >= -1e-3 * size * size) << name;
            ASSERT_EQ(hit.normal.DotProduct(towards) > 0, distance < 0) << name;
            ASSERT_NEAR(hit.normal.Magnitude(), 1, 1e-12) << name;
        }
        if (mesh.RayHit(from, towards, meshHit) && hits && meshHit.normal.DotProduct(hit.normal) > 0.9) {
            ASSERT_NEAR(hit.distance, meshHit.distance, 0.02 * size) << name;
        }
    }
}

TEST(SpaceTests, ShapesAgreeWithTheirMeshes) {
    TContour rounded;
    rounded.Add({0, 0}, 0);
    rounded.Add({4, 0}, 1);
    rounded.Add({4, 4}, 0);
    rounded.Add({0, 4}, -QUARTER);
    TRegion duct(Rectangle(-3, -2, 3, 2)), plate(rounded),
        angle(TContour({{0, 0}, {6, 0}, {6, 1}, {1, 1}, {1, 9}, {0, 9}}));
    duct.AddHole(Rectangle(-2, -1, 2, 1));
    plate.AddHole(TContour(TCircle2D({3, 2}, 1)));
    plate.AddHole(TContour({{0.7, 0.5}, {1.5, 0.5}, {1.5, 1.5}}));
    const std::initializer_list<Point3D> path = {{0, 0, 0},   {0, 0, 40},   {30, 0, 60},
                                                 {30, 0, 60}, {30, 50, 60}, {80, 50, 30}};
    Random random(31);
    for (const double scale : {1.0, 1e-9, 1e9}) {
        const auto sized = [&](const TRegion& section) {
            TRegion all;
            for (unsigned long long i = 1; i <= section.NContours(); ++i) {
                const TContour contour = section.Contour(i);
                TContour copy;
                for (unsigned long long k = 1; k <= contour.NVertices(); ++k)
                    copy.Add(contour.Vertex(k) * scale, contour.Bulge(k));
                section.IsHole(i) ? all.AddHole(copy) : all.AddContour(copy);
            }
            return all;
        };
        const auto along = [&](const TRegion& section, std::initializer_list<Point3D> points, double turned) {
            auto extrusion = std::make_unique<TExtrusionPath>(sized(section), turned);
            for (const Point3D& p : points) extrusion->Add(p * scale);
            return extrusion;
        };
        const std::pair<const char*, std::unique_ptr<I3DShape>> shapes[] = {
            {"cylinder",
             std::make_unique<T3DCylinder>(Point3D(1, 2, 3) * scale, Point3D(5, -2, 9) * scale, 2 * scale)},
            {"flat cylinder",
             std::make_unique<T3DCylinder>(Point3D(1, 2, 3) * scale, Point3D(1, 2, 3.5) * scale, 9 * scale)},
            {"beam", along(duct, {{0, 0, 3}, {50, 0, 3}}, 0)},
            {"duct with corners", along(duct, path, 0.3)},
            {"angle with corners", along(angle, path, -2)},
            {"rounded with holes", along(plate, path, 1)},
            {"mesh", std::make_unique<T3DMesh>(along(angle, path, 0)->Mesh(1))},
        };
        for (const auto& [name, shape] : shapes) {
            ExpectConsistent(*shape, name + std::string(" x ") + std::to_string(scale), random);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(SpaceTests, ExtrusionsOfRoundSections) {
    Random random(61);
    const auto any = [&](double size) {
        return Point3D(random.Uniform(-size, size), random.Uniform(-size, size), random.Uniform(-size, size));
    };
    // Straight, a circle makes a cylinder.
    for (int i = 0; i < 60; ++i) {
        const double size = std::pow(10, random.Uniform(-9, 9)), radius = size * random.Uniform(0.01, 1);
        const Point3D start = any(size), end = i % 4 == 0 ? start + Point3D(0, 0, size) : any(size);
        const T3DCylinder cylinder(start, end, radius);
        const TExtrusionPath round(TRegion(TContour(TCircle2D({0, 0}, radius))), {start, end}, i);
        for (int k = 0; k < 40; ++k) {
            const Point3D from = any(2 * size), to = any(2 * size);
            ASSERT_NEAR(round.SignedDistance(from), cylinder.SignedDistance(from), 1e-12 * size) << i;
            T3DHit hit, expected;
            ASSERT_EQ(round.RayHit(from, TVector3D(from, to), hit),
                      cylinder.RayHit(from, TVector3D(from, to), expected))
                << i;
            const double slope = std::abs(expected.normal.DotProduct(TVector3D(from, to).Normalized()));
            ASSERT_LE(hit.point.Distance(expected.point) * slope, 1e-12 * size) << i;
            ASSERT_LE((hit.normal - expected.normal).Magnitude(), slope < 0.01 ? 1 : 1e-9) << i;
        }
    }
    // Around a corner, in the plane of the mitre and beside it.
    const TExtrusionPath bend(TRegion(TContour(TCircle2D({0, 0}, 1))), {{0, 0, 0}, {0, 0, 20}, {-20, 0, 20}});
    const std::tuple<const char*, Point3D, double> points[] = {
        {"off the outer vertex of the ellipse", {4, 0, 24}, std::sqrt(18)},
        {"off its side", {0, 3, 20}, 2},
        {"within the outer vertex", {0.5, 0, 20.5}, -0.5},
        {"in its middle", {0, 0, 20}, -1},
        {"on the outer vertex", {1, 0, 21}, 0},
        {"at the inner vertex", {-1, 0, 19}, 0},
        {"in the corner", {-3, 0, 17}, 2},
        {"above a wall", {-9, 0, 23}, 2},
        {"below the end", {0.5, 0.5, -3}, 3},
        {"off the end's rim", {4, 0, -4}, 5},
    };
    for (const auto& [name, point, distance] : points)
        EXPECT_NEAR(bend.SignedDistance(point), distance, 1e-14) << name;

    const auto contour = [](std::initializer_list<std::pair<Point2D, double>> vertices) {
        TContour all;
        for (const auto& [vertex, bulge] : vertices) all.Add(vertex, bulge);
        return TRegion(all);
    };
    TRegion tube(TContour(TCircle2D({0.5, 0}, 2)));
    tube.AddHole(TContour(TCircle2D({0.5, 0.2}, 1.5)));
    const std::pair<const char*, TRegion> sections[] = {
        {"straight", contour({{{-1, -1}, 0}, {{2, 0}, 0}, {{0, 0}, 0}, {{0, 2}, 0}})},
        {"tube", tube},
        {"sector", contour({{{0, 0}, 0}, {{3, 0}, QUARTER}, {{0, 3}, 0}})},
        {"flat arcs", contour({{{-2, -1}, 1e-3}, {{2, -1}, 0}, {{2, 1}, -1e-9}, {{-2, 1}, 0}})},
        {"almost a circle", contour({{{0, 2}, 50}, {{0.01, 2}, 0}})},
        {"drop", contour({{{0, 0}, 0.8}, {{2, 2}, -0.3}})},
    };
    const std::initializer_list<Point3D> path = {{0, 0, 0}, {0, 0, 30}, {20, 5, 5}, {50, -20, 8}};
    for (const auto& [name, section] : sections) {
        const bool straight = std::string(name) == "straight";
        const TExtrusionPath body(section, path, 0.7);
        // Along the mitres, chords leave ellipses by more than arcs.
        const double error = straight ? 1e-11 : 4e-4;
        const T3DMesh mesh = body.Mesh(error / 4), coarse = body.Mesh(0.5);
        for (int i = 0; i < 150; ++i) {
            const Point3D corner = coarse.Vertex(1 + random.Pick(coarse.NVertices()));
            const double away = std::pow(10, random.Uniform(-3, 2));
            const Point3D from = corner + any(away);
            ASSERT_NEAR(body.SignedDistance(from), mesh.SignedDistance(from), error) << name << i;
            // No ray slips out where walls meet, nor in.
            T3DHit hit, meshHit;
            const TVector3D towards = i % 2 == 0 ? TVector3D(from, corner) : TVector3D(from, from + any(1));
            const bool hits = body.RayHit(from, towards, hit);
            if (body.SignedDistance(from) < 0) {
                ASSERT_TRUE(hits) << name << i;
            }
            if (hits) {
                ASSERT_NEAR(body.SignedDistance(hit.point), 0, 1e-12 * (100 + away)) << name << i;
            }
            if (i % 2 == 0) continue;
            const bool meets = mesh.RayHit(from, towards, meshHit);
            ASSERT_TRUE(hits == meets || !straight) << name << i;
            const double slope = std::abs(hit.normal.DotProduct(towards.Normalized()));
            if (hits && meets && (straight || hit.normal.DotProduct(meshHit.normal) > 0.99)) {
                ASSERT_LE(std::abs(hit.distance - meshHit.distance) * slope, 2 * error) << name << i;
            }
        }
    }
    T3DHit hit;
    const double nan = std::nan("");
    EXPECT_FALSE(bend.RayHit({nan, 0, 0}, {1, 0, 0}, hit) || bend.RayHit({1e308, 0, 0}, {1, 1, 0}, hit));
    EXPECT_EQ(bend.SignedDistance({nan, 0, 0}), HUGE_VAL);
    EXPECT_EQ(AssertionOf([&] { bend.RayHit({1, 0, 0}, {0, 0, 0}, hit); }).expression, "a direction");
}

TEST(SpaceTests, ExtrusionsInClosedForm) {
    // A frame of a square section around three sides of a rectangle.
    const TRegion square(Rectangle(-1, -1, 1, 1));
    const TExtrusionPath frame(square, {{0, 0, 0}, {0, 0, 20}, {30, 0, 20}, {30, 0, 0}});
    EXPECT_NEAR(frame.Volume(), 4 * 70, 1e-12);
    EXPECT_NEAR(frame.SurfaceArea(), 8 * 70 + 8, 1e-12);
    EXPECT_TRUE(frame.BoundingBox() == T3DBox({-1, -1, 0}, {31, 1, 21})) << frame.BoundingBox().Z2();
    // The plan's axes for what goes up; y upward for what lies.
    EXPECT_EQ(TExtrusionPath(TRegion(Rectangle(1, 2, 3, 5)), {{0, 0, 0}, {0, 0, 7}}).BoundingBox(),
              T3DBox({1, 2, 0}, {3, 5, 7}));
    EXPECT_EQ(TExtrusionPath(TRegion(Rectangle(1, 2, 3, 5)), {{0, 0, 0}, {7, 0, 0}}).BoundingBox(),
              T3DBox({0, 1, 2}, {7, 3, 5}));
    // Beside the path: the outer lines of a corner are longer.
    const TExtrusionPath outside(TRegion(TContour(TCircle2D({3, 0}, 1))),
                                 {{0, 0, 0}, {0, 0, 20}, {-20, 0, 20}});
    EXPECT_NEAR(outside.Volume(), PI * 46, 1e-11);
    EXPECT_NEAR(outside.SurfaceArea(), 2 * PI * 46 + 2 * PI, 1e-11);
    ExpectNear({outside.BoundingBox().X2(), outside.BoundingBox().Y2(), outside.BoundingBox().Z2()},
               {4, 1, 24}, 1e-13, "round");

    TRegion hollow(Rectangle(-2, -2, 2, 2));
    hollow.AddHole(Rectangle(-1, -1, 1, 1));
    const double nan = std::nan("");
    struct Row {
        const char* name;
        TExtrusionPath extrusion;
        TExtrusionFault fault;
        unsigned long long vertex;
    };
    const Row rows[] = {
        {"sound", frame, SoundExtrusion, 0},
        {"nothing", {}, EmptySection, 0},
        {"a section without area",
         {TRegion(TContour({{0, 0}, {1, 1}})), {{0, 0, 0}, {1, 0, 0}}},
         EmptySection,
         0},
        {"no path", TExtrusionPath(square), NoPath, 0},
        {"a single place", {square, {{1, 1, 1}, {1, 1, 1}}}, NoPath, 0},
        {"no number", {square, {{0, 0, 0}, {1, nan, 0}}}, NotFiniteExtrusion, 2},
        {"an infinite angle", {square, {{0, 0, 0}, {1, 0, 0}}, HUGE_VAL}, NotFiniteExtrusion, 0},
        {"back on itself", {square, {{0, 0, 0}, {9, 0, 0}, {9, 0, 0}, {4, 0, 0}}}, PathTurnsBack, 2},
        {"a leg as long as its mitre", {square, {{0, 0, 0}, {0, 0, 1}, {9, 0, 1}}}, LegTooShort, 1},
        {"one just longer", {square, {{0, 0, 0}, {0, 0, 1.0001}, {9, 0, 1.0001}}}, SoundExtrusion, 0},
        {"too short between two corners",
         {square, {{0, 0, 0}, {0, 0, 9}, {1.9, 0, 9}, {1.9, 0, 0}}},
         LegTooShort,
         2},
        {"a step, which may be short",
         {square, {{0, 0, 0}, {0, 0, 9}, {0.1, 0, 9}, {0.1, 0, 20}}},
         SoundExtrusion,
         0},
        {"hollow", {hollow, {{0, 0, 0}, {0, 0, 9}, {9, 0, 9}}}, SoundExtrusion, 0},
    };
    for (const auto& [name, extrusion, fault, vertex] : rows) {
        unsigned long long at = 99;
        EXPECT_EQ(extrusion.FindFault(&at), fault) << name;
        EXPECT_EQ(at, vertex) << name;
        EXPECT_EQ(AssertionOf([&, &e = extrusion] { e.Mesh(1), e.Volume(); }).expression,
                  fault == SoundExtrusion ? "" : "an extrusion without fault (FindFault)")
            << name;
    }
}

double AreaOf(const std::vector<LDPoint>& points) {
    double area = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const LDPoint &a = points[i], &b = points[(i + 1) % points.size()];
        area += a.x * b.y - a.y * b.x;
    }
    return area / 2;
}

TEST(SpaceTests, TrianglesFillPolygonsWithHoles) {
    const auto box = [](double x1, double y1, double x2, double y2, bool hole) {
        std::vector<LDPoint> ring = {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}};
        if (hole) std::reverse(ring.begin(), ring.end());
        return ring;
    };
    std::vector<std::vector<std::vector<LDPoint>>> cases = {
        {box(0, 0, 9, 9, false)},
        {box(0, 0, 9, 9, false), box(1, 1, 2, 2, true), box(4, 1, 5, 8, true), box(6, 1, 7, 2, true),
         box(1, 7, 2, 8, true)},
        {box(0, 0, 9, 9, false), box(10, 0, 19, 9, false), box(11, 1, 12, 2, true), box(1, 1, 2, 2, true)},
        {{{0, 0}, {3, 0}, {6, 0}, {6, 3}, {6, 6}, {3, 6}, {0, 6}, {0, 3}}},
        {{{0, 0}, {9, 0}, {9, 9}, {5, 1}, {4, 9}, {3, 1}, {0, 9}}},
    };
    // A comb of holes in a row, and stars about holes.
    cases.push_back({box(0, 0, 100, 3, false)});
    for (int i = 0; i < 20; ++i) cases.back().push_back(box(1 + 4 * i, 1, 3 + 4 * i, 2, true));
    Random random(41);
    for (int i = 0; i < 100; ++i) {
        std::vector<LDPoint> star, hole;
        for (int k = 0; k < 5 + random.Pick(40); ++k) star.emplace_back(0, 0);
        for (std::size_t k = 0; k < star.size(); ++k) {
            const double a = 2 * PI * double(k) / double(star.size()), r = random.Uniform(1.5, 9),
                         h = random.Uniform(0.1, 1.1);
            star[k] = {r * std::cos(a), r * std::sin(a)};
            hole.insert(hole.begin(), {h * std::cos(a), h * std::sin(a)});
        }
        cases.push_back({star});
        if (star.size() > 16) cases.back().push_back(hole);
    }
    for (std::size_t i = 0; i < cases.size(); ++i) {
        double expected = 0, found = 0, least = 0;
        std::vector<LDPoint> all;
        for (const auto& ring : cases[i]) {
            expected += AreaOf(ring);
            all.insert(all.end(), ring.begin(), ring.end());
        }
        for (const auto& [a, b, c] : Triangulated(cases[i])) {
            const double area = AreaOf({all[std::size_t(a)], all[std::size_t(b)], all[std::size_t(c)]});
            found += area;
            least = std::min(least, area);
        }
        EXPECT_NEAR(found, expected, 1e-12 * expected) << i;
        EXPECT_GE(least, 0) << i << ": none is turned over";
    }
    // Whatever the rings are, the body is closed.
    for (int i = 0; i < 300; ++i) {
        TRegion section;
        for (int k = 1 + random.Pick(3); k > 0; --k) {
            TContour contour;
            for (int n = 3 + random.Pick(6); n > 0; --n)
                contour.Add(Point2D(random.Pick(5), random.Pick(5)),
                            random.Pick(4) == 0 ? random.Uniform(-2, 2) : 0);
            random.Pick(2) == 0 ? section.AddHole(contour) : section.AddContour(contour);
        }
        const TExtrusionPath extrusion(section, {{0, 0, 0}, {0, 0, 40}, {90, 10, 40}});
        if (extrusion.FindFault() != SoundExtrusion) continue;
        const T3DMesh mesh = extrusion.Mesh(0.01);
        // Of each edge as many triangles pass one way as the other.
        std::map<std::pair<int, int>, int> edges;
        for (int k = 1; k <= mesh.NTriangles(); ++k) {
            const auto [a, b, c] = mesh.Triangle(k);
            for (const auto& [from, to] : {std::pair(a, b), {b, c}, {c, a}})
                ++edges[{from, to}], --edges[{to, from}];
        }
        for (const auto& [edge, count] : edges) ASSERT_EQ(count, 0) << i;
    }
}

TEST(SpaceTests, MeshesTellWhatIsMissing) {
    T3DMesh cube = Cube(2), open, turned, doubled;
    EXPECT_TRUE(cube.IsClosed() && cube.NVertices() == 8 && cube.NTriangles() == 12);
    EXPECT_DOUBLE_EQ(cube.SignedVolume(), 8);
    for (int i = 1; i <= 8; ++i) open.AddVertex(cube.Vertex(i)), turned.AddVertex(cube.Vertex(i));
    for (int i = 1; i <= 12; ++i) {
        const auto [a, b, c] = cube.Triangle(i);
        if (i > 1) open.AddTriangle({a, b, c});
        turned.AddTriangle({c, b, a});
    }
    EXPECT_TRUE(turned.IsClosed() && turned.SignedVolume() == -8 && turned.Volume() == 8);
    EXPECT_EQ(turned.Locate({1, 1, 1}), OutsideRegion) << "its triangles wind the other way";
    EXPECT_EQ(open.NOpenEdges(), 3u);
    EXPECT_EQ(AssertionOf([&] { open.Volume(); }).expression, "a closed mesh");
    EXPECT_EQ(open.Locate({1, 1, 1}), InsideRegion);
    open.AddTriangle(turned.Triangle(1));
    EXPECT_EQ(open.NOpenEdges(), 3u) << "a triangle turned over";
    doubled = cube;
    doubled.AddTriangle(cube.Triangle(5));
    EXPECT_EQ(doubled.NOpenEdges(), 3u);
    doubled = cube;
    doubled.Add(doubled);
    EXPECT_TRUE(doubled.IsClosed() && doubled.NVertices() == 16 && doubled.SignedVolume() == 16);
    open.AddTriangle({1, 1, 2});
    EXPECT_FALSE(open.IsClosed());
    EXPECT_EQ(T3DMesh().SignedDistance({1, 2, 3}), HUGE_VAL);
    EXPECT_EQ(AssertionOf([&] { cube.AddTriangle({1, 2, 9}); }).expression, "corners are vertices");
    EXPECT_EQ(AssertionOf([&] { cube.Vertex(0); }).expression, "index >= 1 && index <= NVertices()");
    EXPECT_EQ(AssertionOf([&] { cube.Triangle(13); }).expression, "index >= 1 && index <= NTriangles()");
    // Far from the origin, and rays through corners, edges and diagonals.
    T3DMesh far;
    for (int i = 1; i <= 8; ++i) far.AddVertex(cube.Vertex(i) + Point3D(0x1p40, 0x1p40, -0x1p40));
    for (int i = 1; i <= 12; ++i) far.AddTriangle(cube.Triangle(i));
    EXPECT_EQ(far.SignedVolume(), 8);
    Random random(51);
    for (int i = 0; i < 3000; ++i) {
        const auto on = [&] { return random.Pick(5) * 0.5; };
        const Point3D target(random.Pick(3), random.Pick(2) * 2, random.Pick(3)),
            inside(0.5 + random.Pick(3) * 0.5, 1, 0.25 + on() / 2);
        T3DHit hit;
        ASSERT_TRUE(cube.RayHit(inside, TVector3D(inside, target), hit)) << "no ray slips out";
        ASSERT_LE(hit.point.Distance(target), 1e-14);
        const Point3D from(random.Uniform(-9, 9), -3, random.Uniform(-9, 9));
        ASSERT_TRUE(cube.RayHit(from, TVector3D(from, inside), hit)) << "nor in";
        ASSERT_TRUE(hit.normal.DotProduct(inside - from) < 0);
    }
}

TEST(SpaceTests, MeshesAreWrittenForOtherPrograms) {
    T3DMesh corner;
    for (const Point3D& p : {Point3D(0, 0, 0), {0.1, 0, 0}, {0, 1e-9, 0}, {0, 0, -123456789.125}})
        corner.AddVertex(p);
    corner.AddTriangle({1, 3, 2});
    corner.AddTriangle({1, 2, 4});
    const Testing::TemporaryFolder folder;
    corner.WriteObj(folder.Path("corner.obj"));
    EXPECT_EQ(folder.Read("corner.obj"),
              "v 0 0 0\nv 0.1 0 0\nv 0 1e-09 0\nv 0 0 -123456789.125\nf 1 3 2\nf 1 2 4\n");
    corner.WriteStl(folder.Path("corner.stl"));
    const std::string bytes = folder.Read("corner.stl");
    ASSERT_EQ(bytes.size(), 84 + 2 * 50u);
    EXPECT_NE(bytes.find("solid"), 0u);
    EXPECT_EQ(bytes.substr(80, 4), std::string("\2\0\0\0", 4));
    // The second triangle: its normal along y, then its corners, then no attributes.
    std::string expected;
    for (const float f : {0.f, 1.f, 0.f, 0.f, 0.f, 0.f, 0.1f, 0.f, 0.f, 0.f, 0.f, -123456792.f}) {
        char raw[4];
        std::memcpy(raw, &f, 4); // of the tests' machines the least byte is first, too
        expected.append(raw, 4);
    }
    EXPECT_EQ(bytes.substr(134), expected + std::string(2, '\0'));

    const std::function<void(const T3DMesh&, const TZoPath&)> writers[] = {
        [](const T3DMesh& mesh, const TZoPath& path) { mesh.WriteObj(path); },
        [](const T3DMesh& mesh, const TZoPath& path) { mesh.WriteStl(path); }};
    const char* const places[] = {"T3DMesh::WriteObj", "T3DMesh::WriteStl"};
    for (int i = 0; i < 2; ++i) {
        const auto write = [&] { writers[i](corner, folder.Path("out")); };
        for (const char* operation : {"WriteFile", "CloseFile"}) {
            FaultyServices services;
            services.Fail(operation, 1, Platform::ErrorDiskFull, FaultyServices::Half);
            EXPECT_EQ(FailureOf(write), std::string("full @ ") + places[i]) << operation;
            EXPECT_EQ(services.OpenHandles(), 0u);
        }
        try {
            writers[i](corner, folder.Path("none/out"));
            ADD_FAILURE();
        } catch (const XWriteStream& e) {
            EXPECT_EQ(e.Kind(), TStreamFailure::NotFound);
            EXPECT_EQ(e.Path(), ZoString(folder.Path("none/out").c_str()));
        }
        T3DMesh endless = corner;
        endless.AddVertex({0, HUGE_VAL, 0});
        endless.AddTriangle({1, 2, 5});
        folder.Write("kept", "as it was");
        EXPECT_EQ(AssertionOf([&] { writers[i](endless, folder.Path("kept")); }).expression,
                  i == 0 ? "finite coordinates" : "coordinates that a float holds");
        EXPECT_EQ(folder.Read("kept"), "as it was");
    }
}

TEST(SpaceTests, EachIsSavedAndOpened) {
    TZoMetaData schema;
    ZoRegisterGeometry(&schema);
    ZoString report;
    EXPECT_TRUE(schema.Check(&report)) << report.c_str();
    T3DBox box({1, 2, 3}, {4, 5, 6}), nothing;
    TPlane3D plane({1, 2, 3}, {0, 0, 2});
    T3DSegment segment({1, 2, 3}, {4, 5, 6});
    T3DCylinder cylinder({1, 2, 3}, {4, 5, 6}, 7);
    T3DMesh mesh, empty;
    for (const int x : {1, 4, 7}) mesh.AddVertex(Point3D(x, x + 1, x + 2));
    mesh.AddTriangle({1, 2, 3});
    TRegion triangle(TContour({{1, 2}, {3, 4}, {5, 7}}));
    TExtrusionPath extrusion(triangle, {{1, 2, 3}, {4, 5, 6}}, 0.5), bare;
    const std::string corners = "10|1.|20|2.|30|3.|11|4.|21|5.|31|6.|";
    const std::tuple<ZoStreamableBase*, const char*, std::string> cases[] = {
        {&box, "T3DBox", corners},
        {&nothing, "T3DBox", "10|inf|20|inf|30|inf|11|-inf|21|-inf|31|-inf|"},
        {&plane, "TPlane3D", "10|1.|20|2.|30|3.|210|0.|220|0.|230|2.|"},
        {&segment, "T3DSegment", corners},
        {&cylinder, "T3DCylinder", corners + "40|7.|"},
        {&mesh, "T3DMesh", "10|1.|20|2.|30|3.|10|4.|20|5.|30|6.|10|7.|20|8.|30|9.|71|1|72|2|73|3|"},
        {&empty, "T3DMesh", ""},
        {&extrusion, "TExtrusionPath",
         "340|0|TRegion|3|2|71|1|10|1.|20|2.|10|3.|20|4.|10|5.|20|7.|7|50|0.5|11|1.|21|2.|31|3.|11|4.|21|5.|"
         "31|6.|"},
        {&bare, "TExtrusionPath", "340|0|TRegion|3|2|7|50|0.|"},
    };
    for (const auto& [object, name, tokens] : cases) {
        SCOPED_TRACE(name);
        EXPECT_STREQ(object->StreamableClassName().c_str(), name);
        ExpectOpened(schema, *object);
        EXPECT_EQ(ExpectReadAsText(schema, *object), tokens);
    }
    const auto list = [](std::initializer_list<double> numbers) {
        Payload payload;
        payload.Int(static_cast<long long>(numbers.size()));
        for (const double number : numbers) payload.Double(number);
        return payload;
    };
    const ClassEntry entry{.name = "T3DMesh",
                           .values = {{0, ftListDouble, "vertices"}, {0, ftListInt, "triangles"}}};
    const std::tuple<const char*, Payload, std::string, bool> meshes[] = {
        {"fitting", list({1, 2, 3}).Int(3).Ints({1, 1, 1}), "10 1 20 2 30 3 71 1 72 1 73 1", true},
        {"half a vertex", list({1, 2}).Int(0), "10 1 20 2", false},
        {"half a triangle", list({1, 2, 3}).Int(2).Ints({1, 1}), "10 1 20 2 30 3 71 1 72 1", false},
        {"a corner that is no vertex", list({1, 2, 3}).Int(3).Ints({1, 2, 1}),
         "10 1 20 2 30 3 71 1 72 2 73 1", false},
        {"a corner below the first", list({1, 2, 3}).Int(3).Ints({1, 0, 1}), "10 1 20 2 30 3 71 1 72 0 73 1",
         false},
        {"a number out of turn", list({1, 2, 3, 4}).Int(0), "10 1 20 2 30 3 30 3", false},
    };
    for (const auto& [name, payload, tokens, accepted] : meshes) {
        Opened opened(FileOf({entry}, {Row{1, 1, payload}}), schema);
        EXPECT_EQ(opened.root != nullptr, accepted) << name;
        std::string text = tokens + "\n0\n";
        std::replace(text.begin(), text.end(), ' ', '\n');
        const Testing::TemporaryFolder folder;
        folder.Write("text", text);
        InputStreamer reader(new FileInputStream(folder.Path("text").c_str()), nullptr);
        EXPECT_EQ(FailureOf([&] { T3DMesh().Read(reader); }),
                  accepted ? "" : "Invalid object : data still incomplete after read. @ ")
            << name;
    }
}

} // namespace
