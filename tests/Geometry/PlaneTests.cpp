#include "ZoPrimitives/TArc2D.h"
#include "ZoPrimitives/TBezier2D.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/TRay2D.h"
#include "ZoPrimitives/TRegion.h"
#include "ZoPrimitives/TSegment2D.h"
#include "ZoPrimitives/TTriangle2D.h"

#include "Geometry/Random.h"
#include "support/Assertions.h"
#include "support/RoundTrip.h"

#include <cmath>

using namespace ZoPrimitives;

namespace {

constexpr double PI = 3.141592653589793;
const double QUARTER = std::sqrt(2.0) - 1; // the bulge of a quarter of a circle

TContour Moved(const TContour& contour, double dx, double dy) {
    TContour moved;
    for (unsigned long long i = 1; i <= contour.NVertices(); ++i)
        moved.Add(contour.Vertex(i).Move(dx, dy), contour.Bulge(i));
    return moved;
}

TContour WithBulges(std::initializer_list<std::tuple<double, double, double>> vertices) {
    TContour contour;
    for (const auto& [x, y, bulge] : vertices) contour.Add({x, y}, bulge);
    return contour;
}

/// A rolled section with its fillets, about the origin.
TContour RolledSection(double h, double b, double web, double flange, double r) {
    TContour contour;
    const double x = web / 2, y = h / 2 - flange;
    for (const double s :
         {-1.0, 1.0}) { // the lower flange, the right side up, the upper flange, the left side down
        contour.Add({s * b / 2, s * h / 2});
        contour.Add({-s * b / 2, s * h / 2});
        contour.Add({-s * b / 2, s * y});
        contour.Add({-s * (x + r), s * y}, -QUARTER);
        contour.Add({-s * x, s * (y - r)});
        contour.Add({-s * x, -s * (y - r)}, -QUARTER);
        contour.Add({-s * (x + r), -s * y});
        contour.Add({-s * b / 2, -s * y});
    }
    contour.Reverse();
    return contour;
}

TEST(PlaneTests, AreaProperties) {
    const auto halfRing = WithBulges({{2, 0, 1}, {-2, 0, 0}, {-1, 0, -1}, {1, 0, 0}});
    const double ring = PI / 2 * 3, ringY = 4 * 7 / (9 * PI), ringI = PI / 8 * 15;
    const std::tuple<const char*, TContour, double, Point2D, double, double, double> cases[] = {
        {"rectangle", {{1, 1}, {4, 1}, {4, 3}, {1, 3}}, 6, {2.5, 2}, 2, 4.5, 0},
        {"clockwise", {{1, 3}, {4, 3}, {4, 1}, {1, 1}}, 6, {2.5, 2}, 2, 4.5, 0},
        {"triangle", {{0, 0}, {3, 0}, {0, 6}}, 9, {1, 2}, 18, 4.5, -4.5},
        {"circle", TContour(TCircle2D({1, -2}, 2)), 4 * PI, {1, -2}, 4 * PI, 4 * PI, 0},
        {"half ring", halfRing, ring, {0, ringY}, ringI - ring * ringY * ringY, ringI, 0},
        {"nearly a circle, in one piece",
         WithBulges({{-1e-9, 1, 2e9}, {1e-9, 1, 0}}),
         PI,
         {0, 0},
         PI / 4,
         PI / 4,
         0},
        {"flat belly",
         WithBulges({{0, 0, 0}, {4, 0, 0}, {4, 1, 1e-9}, {0, 1, 0}}),
         4 + 16 * 1e-9 / 3,
         {2, 0.5},
         4 / 12.0,
         64 / 12.0,
         0},
        {"no area", {{1, 2}, {5, 2}}, 0, {1, 2}, 0, 0, 0},
        {"IPE 300", RolledSection(30, 15, 0.71, 1.07, 1.5), 53.81, {0, 0}, 8356, 603.8, 0},
        {"HEB 200", RolledSection(20, 20, 0.9, 1.5, 1.8), 78.08, {0, 0}, 5696, 2003, 0},
    };
    for (const auto& [name, contour, area, centroid, ix, iy, ixy] : cases) {
        const std::string text = name;
        const bool table = text.find("IPE") == 0 || text.find("HEB") == 0;
        // A belly of 1e-9 is in the area, and not in the second moments.
        const double error = table ? 2e-4 : 1e-12, loose = text == "flat belly" ? 1e-7 : error;
        const double far = 0x1p30; // exact for all but the table's sections
        for (const double shift : {0.0, far}) {
            if (shift != 0 && (table || text.find("ring") != text.npos || text.find("nearly") != text.npos))
                continue;
            const TAreaProperties found = Moved(contour, shift, -shift).AreaProperties();
            EXPECT_NEAR(found.Area(), area, error * std::max(1.0, area)) << name << shift;
            EXPECT_NEAR(found.Centroid().X() - shift, centroid.X(), loose + shift * 1e-15) << name << shift;
            EXPECT_NEAR(found.Centroid().Y() + shift, centroid.Y(), loose + shift * 1e-15) << name << shift;
            EXPECT_NEAR(found.Ix(), ix, loose * std::max(1.0, ix)) << name << shift;
            EXPECT_NEAR(found.Iy(), iy, loose * std::max(1.0, iy)) << name << shift;
            EXPECT_NEAR(found.Ixy(), ixy, loose * std::max(1.0, ix)) << name << shift;
        }
        TContour reversed = contour;
        reversed.Reverse();
        EXPECT_NEAR(reversed.SignedArea(), -contour.SignedArea(), 1e-12 * std::max(1.0, area)) << name;
        EXPECT_EQ(reversed.Vertex(1), contour.Vertex(1)) << name;
        EXPECT_NEAR(reversed.Length(), contour.Length(), 1e-12 * contour.Length()) << name;
    }
}

TEST(PlaneTests, SectionsOfParts) {
    const auto rectangle = [](double x1, double y1, double x2, double y2) {
        return TContour::Rectangle(RRect({x1, y1}, {x2, y2}));
    };
    // An angle of two plates, and one cut from a rectangle.
    TAreaProperties plates = rectangle(0, 0, 1, 10).AreaProperties();
    plates += rectangle(1, 0, 6, 1).AreaProperties();
    TAreaProperties cut = rectangle(0, 0, 6, 10).AreaProperties();
    cut -= rectangle(1, 1, 6, 10).AreaProperties();
    TRegion region(rectangle(0, 0, 6, 10));
    region.AddHole(rectangle(1, 1, 6, 10));
    for (const TAreaProperties& angle : {plates, cut, region.AreaProperties()}) {
        EXPECT_NEAR(angle.Area(), 15, 1e-13);
        EXPECT_NEAR(angle.Sx(), 52.5, 1e-12);
        EXPECT_NEAR(angle.Sy(), 22.5, 1e-12);
        EXPECT_NEAR(angle.IxAbout({0, 0}), 1000 / 3.0 + 5 / 3.0, 1e-11);
        EXPECT_NEAR(angle.IyAbout({0, 0}), 10 / 3.0 + 215 / 3.0, 1e-11);
        EXPECT_NEAR(angle.IxyAbout({0, 0}), 25 + 8.75, 1e-11);
        EXPECT_NEAR(angle.MaxInertia() + angle.MinInertia(), angle.PolarMoment(), 1e-11);
        EXPECT_NEAR(angle.MaxInertia() * angle.MinInertia(),
                    angle.Ix() * angle.Iy() - angle.Ixy() * angle.Ixy(), 1e-9);
    }
    // The principal axes turn with the section.
    for (const double angle : {0.0, 0.3, 1.2, -1.2}) {
        TContour turned;
        for (const Point2D& p : {Point2D(0, 0), {8, 0}, {8, 1}, {0, 1}}) turned.Add(Point2D(p).Rotate(angle));
        const TAreaProperties plate = turned.AreaProperties();
        EXPECT_NEAR(plate.MinInertia(), 8 / 12.0, 1e-12) << angle;
        EXPECT_NEAR(plate.MaxInertia(), 512 / 12.0, 1e-11) << angle;
        EXPECT_NEAR(std::sin(plate.PrincipalAngle() - angle - PI / 2), 0, 1e-12) << angle;
    }
    const std::tuple<double, double, double, double> angles[] = {{0, 0, 0, 0},       {2, 1, 0, 0},
                                                                 {1, 2, 0, PI / 2},  {1, 2, -0.0, PI / 2},
                                                                 {1, 1, -1, PI / 4}, {1, 1, 1, -PI / 4}};
    for (const auto& [ix, iy, ixy, angle] : angles)
        EXPECT_DOUBLE_EQ(TAreaProperties(1, {}, ix, iy, ixy).PrincipalAngle(), angle) << ix << iy << ixy;
    EXPECT_NEAR(region.Area(), 15, 1e-13);
    EXPECT_NEAR(region.Length(), 32 + 28, 1e-12);
    EXPECT_TRUE(region.IsHole(2) && !region.IsHole(1) && region.Contour(2) == rectangle(1, 1, 6, 10));
}

TEST(PlaneTests, Arcs) {
    const double s = std::sqrt(0.5);
    const std::tuple<const char*, TArc2D, double, double, Point2D, RRect> cases[] = {
        {"lower half", {{0, 0}, {2, 0}, 1}, 1, PI, {1, 0}, RRect({0, -1}, {2, 0})},
        {"upper half, clockwise", {{0, 0}, {2, 0}, -1}, 1, -PI, {1, 0}, RRect({0, 0}, {2, 1})},
        {"quarter", {{1, 0}, {0, 1}, QUARTER}, 1, PI / 2, {0, 0}, RRect({0, 0}, {1, 1})},
        {"three quarters", {{0, 1}, {1, 0}, 1 / QUARTER}, 1, 1.5 * PI, {0, 0}, RRect({-1, -1}, {1, 1})},
        {"through", TArc2D::Through({5, 0}, {3, 4}, {-5, 0}), 5, PI, {0, 0}, RRect({-5, 0}, {5, 5})},
        {"through, clockwise",
         TArc2D::Through({-1, 0}, {0, 1}, {s, s}),
         1,
         -0.75 * PI,
         {0, 0},
         RRect({-1, 0}, {s, 1})},
        {"about",
         TArc2D::About({2, 3}, 2, -PI / 4, PI / 4),
         2,
         PI / 2,
         {2, 3},
         RRect({2 + 2 * s, 3 - 2 * s}, {4, 3 + 2 * s})},
    };
    for (const auto& [name, arc, radius, angle, centre, box] : cases) {
        EXPECT_NEAR(arc.Radius(), radius, 1e-14) << name;
        EXPECT_NEAR(arc.Angle(), angle, 1e-14) << name;
        EXPECT_TRUE(arc.Centre().Equal(centre, 13)) << name;
        EXPECT_NEAR(arc.Length(), radius * std::abs(angle), 1e-13) << name;
        const RRect found = arc.BoundingBox();
        EXPECT_TRUE(Point2D(found.X1(), found.Y1()).Equal({box.X1(), box.Y1()}, 13)) << name;
        EXPECT_TRUE(Point2D(found.X2(), found.Y2()).Equal({box.X2(), box.Y2()}, 13)) << name;

        Random random(7);
        for (int i = 0; i < 50; ++i) { // the nearest of very many points of the arc
            const Point2D p(random.Uniform(-6, 6), random.Uniform(-6, 6));
            double least = 1e9;
            for (int k = 0; k <= 2000; ++k) {
                Point2D on = arc.Start();
                least = std::min(least, on.Rotate(angle * k / 2000, centre).Distance(p));
            }
            EXPECT_NEAR(arc.Distance(p), least, 1e-4) << name;
            EXPECT_NEAR(arc.NearestPoint(p).Distance(centre), radius, 1e-13) << name;
        }
        for (const double error : {1.0, 0.1, 1e-3}) {
            const TPolyline2D chords = arc.Flattened(error);
            ASSERT_GE(chords.NPieces(), std::abs(angle) > PI / 2 + 0.1 ? 2u : 1u) << name;
            EXPECT_TRUE(chords.Vertex(1) == arc.Start() && chords.Vertex(chords.NVertices()) == arc.End())
                << name;
            double most = 0;
            for (unsigned long long i = 1; i <= chords.NPieces(); ++i) {
                const TPathPiece piece = chords.Piece(i);
                most = std::max(
                    most, arc.Distance({(piece.from.x + piece.to.x) / 2, (piece.from.y + piece.to.y) / 2}));
            }
            EXPECT_LE(most, error) << name;
            EXPECT_GE(most, error < 0.1 ? error / 4 : 0) << name << ": no more pieces than it takes";
        }
    }
    const TArc2D flat({0, 0}, {1, 0}, 1e-12);
    EXPECT_NEAR(flat.Distance({0.5, 1}) - 1, 5e-13, 1e-15) << "a belly of 5e-13";
    EXPECT_EQ(TArc2D({0, 0}, {4, 0}, 0).Distance({2, 3}), 3);
    EXPECT_EQ(TArc2D::Through({0, 0}, {1, 1}, {3, 3}), TArc2D({0, 0}, {3, 3}, 0));
    EXPECT_EQ(TCircle2D({0, 0}, 3).Distance({0, 0}), 3);
    EXPECT_EQ(TPolyline2D().Distance({0, 0}), HUGE_VAL);
    const std::pair<const char*, std::function<void()>> refused[] = {
        {"the middle lies between the ends, or beside their line",
         [] {
             TArc2D::Through({0, 0}, {9, 9}, {3, 3});
         }},
        {"less than a turn",
         [] {
             TArc2D::About({0, 0}, 1, 0, 7);
         }},
        {"chordError > 0", [&] { flat.Flattened(0); }},
        {"closed path", [&] { flat.Area(); }},
        {"index >= 1 && index <= NVertices()",
         [] {
             TContour({{1, 1}}).Vertex(2);
         }},
        {"a contour is closed", [] { TContour().Close(false); }},
    };
    for (const auto& [text, call] : refused) EXPECT_EQ(AssertionOf(call).expression, text);
}

TEST(PlaneTests, Locates) {
    // A plate with a round end to the right, a round notch on the left, and a hole.
    TRegion plate(WithBulges({{0, 0, 0}, {4, 0, 1}, {4, 4, 0}, {0, 4, 0}, {0, 3, -1}, {0, 1, 0}}));
    plate.AddHole(TContour(TCircle2D({4, 2}, 1)));
    const std::tuple<const char*, Point2D, TLocation> cases[] = {
        {"inside", {2, 2}, InsideRegion},
        {"outside", {-1, 2}, OutsideRegion},
        {"in the notch", {0.5, 2}, OutsideRegion},
        {"level with a corner", {-5, 4}, OutsideRegion},
        {"beside the notch", {0.5, 0.5}, InsideRegion},
        {"in the belly", {5.5, 2}, InsideRegion},
        {"on the belly's chord", {4, 0.5}, InsideRegion},
        {"beyond the belly", {5.5, 0.5}, OutsideRegion},
        {"in the hole", {4, 2}, OutsideRegion},
        {"on the hole's border", {5, 2}, OnBorder},
        {"on a side", {1, 0}, OnBorder},
        {"beside it, within the tolerance", {1, 9e-7}, OnBorder},
        {"beside it, just beyond", {1, 1.1e-6}, InsideRegion},
        {"at a corner", {0, 4}, OnBorder},
        {"on the notch", {1, 2}, OnBorder},
    };
    for (const auto& [name, p, location] : cases) EXPECT_EQ(plate.Locate(p), location) << name;
    EXPECT_EQ(plate.Locate({1, 0}, 22), OnBorder) << "exactly, without a tolerance";

    // Random contours with arcs, which may cross themselves, and the same ones flattened finely: the points
    // near the border apart, both agree.
    Random random(3);
    int counted[3] = {};
    for (int i = 0; i < 300; ++i) {
        TContour contour;
        for (int k = 3 + random.Pick(5); k > 0; --k)
            contour.Add(Point2D(random.Pick(5), random.Pick(5)), random.Pick(2) * random.Uniform(-2, 2));
        const TContour chords(contour.Flattened(1e-4));
        for (int k = 0; k < 40; ++k) {
            const Point2D p(random.Pick(17) * 0.25, random.Pick(17) * 0.25);
            const TLocation location = contour.Locate(p, 3);
            ++counted[location];
            if (location == OnBorder) continue;
            ASSERT_EQ(chords.Locate(p, 6), location) << i << p.ToString().c_str();
        }
    }
    EXPECT_TRUE(counted[0] > 500 && counted[1] > 500 && counted[2] > 500);
}

TEST(PlaneTests, ConvexHulls) {
    Random random(5);
    for (int i = 0; i < 200; ++i) {
        std::vector<Point2D> points;
        for (int k = random.Pick(12); k >= 0; --k)
            points.emplace_back(random.Pick(5) * 0.1,
                                i % 3 == 0 ? random.Pick(5) * 0.1 : random.Uniform(0, 1));
        const TContour hull = TContour::ConvexHull(points.data(), points.size());
        const unsigned long long count = hull.NVertices();
        for (unsigned long long k = 1; k <= count; ++k) {
            const Point2D a = hull.Vertex(k), b = hull.Vertex(k % count + 1),
                          c = hull.Vertex((k + 1) % count + 1);
            ASSERT_NE(std::find(points.begin(), points.end(), a), points.end());
            ASSERT_EQ(Orientation(a, b, c), count > 2 ? 1 : 0);
            for (const Point2D& p : points) ASSERT_GE(Orientation(a, b, p), 0);
        }
    }
    EXPECT_EQ(TContour::ConvexHull(nullptr, 0), TContour());
    const Point2D line[] = {{1, 1}, {3, 3}, {2, 2}, {1, 1}};
    EXPECT_EQ(TContour::ConvexHull(line, 4), TContour({{1, 1}, {3, 3}}));
    EXPECT_EQ(TContour::ConvexHull(line, 1), TContour({{1, 1}}));
}

TEST(PlaneTests, Lines) {
    const TLine2D line({1, 1}, {3, 4}), other = TLine2D::Through({0, 0}, {4, 3});
    EXPECT_DOUBLE_EQ(line.SignedDistance({-3, 4}), 5);
    EXPECT_TRUE(line.Project({-3, 4}).Equal({1, 1}, 12));
    Point2D point(7, 7);
    EXPECT_TRUE(line.Intersection(other, point) && point == Point2D(4 / 7.0, 3 / 7.0));
    EXPECT_FALSE(line.Intersection({{5, 5}, {-6, -8}}, point) || point != Point2D(4 / 7.0, 3 / 7.0));
    // An ulp from parallel, they cross far away.
    EXPECT_TRUE(TLine2D({0, 0}, {1, 1}).Intersection({{0, 1}, {1, std::nextafter(1, 0)}}, point));
    EXPECT_EQ(point, Point2D(0x1p53, 0x1p53));
    EXPECT_EQ(AssertionOf([] { TLine2D({1, 1}, {0, 0}).Project({2, 2}); }).expression, "a direction");
}

TEST(PlaneTests, BezierCurves) {
    const double k = 4 * (std::sqrt(2.0) - 1) / 3; // nearly a quarter of a circle
    const double parabola = std::sqrt(5.0) / 2 + std::asinh(2.0) / 4;
    const std::tuple<const char*, TBezier2D, double, RRect> cases[] = {
        {"straight", {{0, 0}, {1, 0}, {2, 0}, {3, 0}}, 3, RRect({0, 0}, {3, 0})},
        {"straight, beyond its ends", {{0, 0}, {3, 0}, {-2, 0}, {1, 0}}, 0, RRect()},
        {"a parabola", TBezier2D::Quadratic({0, 0}, {0.5, 0}, {1, 1}), parabola, RRect({0, 0}, {1, 1})},
        {"an arch", TBezier2D::Quadratic({-1, 0}, {0, 4}, {1, 0}), 0, RRect({-1, 0}, {1, 2})},
        {"a quarter", {{1, 0}, {1, k}, {k, 1}, {0, 1}}, 0, RRect({0, 0}, {1, 1})},
        {"a loop", {{0, 0}, {3, 2}, {-2, 2}, {1, 0}}, 0, RRect()},
        {"a cusp", {{0, 0}, {2, 2}, {-1, 2}, {1, 0}}, 0, RRect()},
        {"a point", {{2, 3}, {2, 3}, {2, 3}, {2, 3}}, 0, RRect({2, 3}, {2, 3})},
    };
    Random random(13);
    for (const auto& [name, curve, length, box] : cases) {
        EXPECT_TRUE(length == 0 || std::abs(curve.Length() - length) < 1e-14) << name << curve.Length();
        if (!box.IsEmpty()) {
            const RRect found = curve.BoundingBox();
            EXPECT_TRUE(Point2D(found.X1(), found.Y1()).Equal({box.X1(), box.Y1()}, 14)) << name;
            EXPECT_TRUE(Point2D(found.X2(), found.Y2()).Equal({box.X2(), box.Y2()}, 14)) << name;
        }
        const TPolyline2D fine = curve.Flattened(1e-9);
        EXPECT_NEAR(fine.Length(), curve.Length(), 2e-8) << name;
        EXPECT_TRUE(RRect(curve.BoundingBox())
                        .Inflate(1e-12)
                        .Contains({fine.BoundingBox().X1(), fine.BoundingBox().Y2()}))
            << name;
        EXPECT_NEAR(fine.BoundingBox().Width(), curve.BoundingBox().Width(), 3e-9) << name;
        EXPECT_NEAR(fine.BoundingBox().Height(), curve.BoundingBox().Height(), 3e-9) << name;
        for (int i = 0; i < 12; ++i) {
            const Point2D p(random.Uniform(-2, 4), random.Uniform(-2, 4));
            EXPECT_NEAR(curve.Distance(p), fine.Distance(p), 2e-9) << name;
            EXPECT_LE(fine.Distance(curve.NearestPoint(p)), 2e-9) << name;
        }
        for (const double error : {0.3, 1e-3}) {
            const TPolyline2D chords = curve.Flattened(error);
            double most = 0;
            for (unsigned long long i = 1; i <= fine.NVertices(); i += 1 + fine.NVertices() / 200)
                most = std::max(most, chords.Distance(fine.Vertex(i)));
            EXPECT_LE(most, error) << name;
        }
    }
    EXPECT_EQ(TBezier2D().NearestPoint({1, 1}), Point2D(0, 0));
    EXPECT_EQ(AssertionOf([] { TBezier2D().Flattened(0); }).expression, "chordError > 0");
    EXPECT_EQ(AssertionOf([] { TBezier2D().ControlPoint(5); }).expression, "index >= 1 && index <= 4");
}

TEST(PlaneTests, TrianglesAndRays) {
    const TTriangle2D triangle({0, 0}, {4, 0}, {0, 3});
    EXPECT_TRUE(triangle.Area() == 6 && triangle.Length() == 12 && triangle.IsCounterClockwise());
    EXPECT_TRUE(triangle.Circumcircle() == TCircle2D({2, 1.5}, 2.5) &&
                triangle.Incircle() == TCircle2D({1, 1}, 1));
    EXPECT_TRUE(triangle.Locate({1, 1}) == InsideRegion && triangle.Locate({3, 3}) == OutsideRegion);
    EXPECT_EQ(AssertionOf([] {
                  TTriangle2D({0, 0}, {1, 1}, {3, 3}).Incircle();
              }).expression,
              "corners that lie on no line");
    const TRay2D ray({1, 1}, {2, 0});
    EXPECT_TRUE(ray.NearestPoint({4, 5}) == Point2D(4, 1) && ray.NearestPoint({-4, 5}) == Point2D(1, 1));
    EXPECT_EQ(ray.Distance({-2, 5}), 5);
    EXPECT_TRUE(ray.Beside(RRect({-9, -9}, {-8, 9})) == TSegment2D({1, 1}, {1, 1}));
    EXPECT_TRUE(ray.Beside(RRect({3, 3}, {5, 9})).End().Equal({5, 1}, 4));
    EXPECT_EQ(AssertionOf([] { TRay2D({1, 1}, {0, 0}).Beside(RRect()); }).expression, "a direction");
}

TEST(PlaneTests, Simplifies) {
    TPolyline2D arched({{0, 0}, {1, 0.05}, {2, 0}});
    arched.Add({3, 0.05}, 0.5);
    arched.Add({4, 0.05});
    arched.Add({5, 0});
    TPolyline2D archedLess({{0, 0}});
    archedLess.Add({3, 0.05}, 0.5);
    archedLess.Add({4, 0.05});
    archedLess.Add({5, 0});
    const std::tuple<const char*, TPolyline2D, double, TPolyline2D> cases[] = {
        {"nothing", {}, 1, {}},
        {"a vertex", {{1, 2}}, 1, {{1, 2}}},
        {"on a line", {{0, 0}, {1, 1}, {2, 2}}, 0, {{0, 0}, {2, 2}}},
        {"beside it", {{0, 0}, {1, 1.1}, {2, 2}}, 0.07, {{0, 0}, {1, 1.1}, {2, 2}}},
        {"beside it, within", {{0, 0}, {1, 1.1}, {2, 2}}, 0.072, {{0, 0}, {2, 2}}},
        {"forth and back", {{0, 0}, {5, 0}, {1, 0}}, 0.5, {{0, 0}, {5, 0}, {1, 0}}},
        {"closed",
         {{{0, 0}, {2, 0}, {4, 0}, {4, 4}, {2, 4}, {0, 4}, {0, 2}}, true},
         0.1,
         {{{0, 0}, {4, 0}, {4, 4}, {0, 4}}, true}},
        {"with an arc", arched, 0.1, archedLess},
    };
    for (const auto& [name, path, tolerance, expected] : cases)
        EXPECT_EQ(path.Simplified(tolerance), expected) << name;
    Random random(19);
    for (int i = 0; i < 50; ++i) {
        TPolyline2D path;
        for (int k = 0; k < 60; ++k) path.Add({k * 0.2 + random.Uniform(0, 0.1), random.Uniform(0, 1)});
        path.Close(i % 2 == 0);
        const double tolerance = random.Uniform(0, 1);
        const TPolyline2D less = path.Simplified(tolerance);
        EXPECT_LE(less.NVertices(), path.NVertices());
        for (unsigned long long k = 1; k <= path.NVertices(); ++k)
            EXPECT_LE(less.Distance(path.Vertex(k)), tolerance) << i;
    }
    EXPECT_EQ(AssertionOf([&] { arched.Simplified(-1); }).expression, "tolerance >= 0");
}

TEST(PlaneTests, Rectangles) {
    RRect box;
    EXPECT_TRUE(box.IsEmpty() && box.Area() == 0 && !box.Contains({0, 0}) && box == RRect().Inflate(5));
    box.Add(Point2D(3, 5)).Add(Point2D(1, 2)).Add(RRect());
    EXPECT_EQ(box, RRect({3, 2}, {1, 5}));
    EXPECT_TRUE(box.Area() == 6 && box.Centre() == Point2D(2, 3.5));
    EXPECT_TRUE(box.Contains({3, 5}) && !box.Contains({3.1, 5}) && !box.Contains({2, 1.9}));
    EXPECT_TRUE(box.Intersects(RRect({3, 5}, {9, 9})) && !box.Intersects(RRect({3.5, 5}, {9, 9})) &&
                !box.Intersects({}));
    EXPECT_EQ(box.Intersection(RRect({2, 3}, {9, 9})), RRect({2, 3}, {3, 5}));
    EXPECT_TRUE(box.Intersection(RRect({2, 6}, {9, 9})).IsEmpty());
    EXPECT_EQ(RRect(box).Add(RRect({0, 3}, {2, 9})), RRect({0, 2}, {3, 9}));
    EXPECT_EQ(RRect(box).Inflate(1), RRect({0, 1}, {4, 6}));
    EXPECT_TRUE(RRect(box).Inflate(-1.1).IsEmpty());
    EXPECT_EQ(TContour::Rectangle(box).BoundingBox(), box);
}

TEST(PlaneTests, EachIsSavedAndOpened) {
    TZoMetaData schema;
    ZoRegisterGeometry(&schema);
    RRect box({1, 2}, {3, 4}), nothing;
    TLine2D line({1, 2}, {3, 4});
    TRay2D ray({1, 2}, {3, 4});
    TTriangle2D triangle({1, 2}, {3, 4}, {5, 6});
    TBezier2D bezier({1, 2}, {3, 4}, {5, 6}, {7, 8});
    TSegment2D segment({1, 2}, {3, 4});
    TArc2D arc({1, 2}, {3, 4}, 0.5);
    TCircle2D circle({1, 2}, 3);
    TPolyline2D open({{1, 2}, {3, 4}}), closed({{1, 2}, {3, 4}}, true), empty;
    TContour contour({{1, 2}, {3, 4}});
    contour.Add({5, 6}, 0.5);
    TRegion region(contour);
    region.AddHole(TContour({{7, 8}}));
    const std::tuple<ZoStreamableBase*, const char*, std::string> cases[] = {
        {&box, "RRect", "10|1.|20|2.|11|3.|21|4.|"},
        {&nothing, "RRect", "10|inf|20|inf|11|-inf|21|-inf|"},
        {&line, "TLine2D", "10|1.|20|2.|11|3.|21|4.|"},
        {&ray, "TRay2D", "10|1.|20|2.|11|3.|21|4.|"},
        {&triangle, "TTriangle2D", "10|1.|20|2.|11|3.|21|4.|12|5.|22|6.|"},
        {&bezier, "TBezier2D", "10|1.|20|2.|11|3.|21|4.|12|5.|22|6.|13|7.|23|8.|"},
        {&segment, "TSegment2D", "10|1.|20|2.|11|3.|21|4.|"},
        {&arc, "TArc2D", "10|1.|20|2.|11|3.|21|4.|42|0.5|"},
        {&circle, "TCircle2D", "10|1.|20|2.|40|3.|"},
        {&open, "TPolyline2D", "70|0|10|1.|20|2.|10|3.|20|4.|"},
        {&closed, "TPolyline2D", "70|1|10|1.|20|2.|10|3.|20|4.|"},
        {&empty, "TPolyline2D", "70|0|"},
        {&contour, "TContour", "70|1|10|1.|20|2.|10|3.|20|4.|10|5.|20|6.|42|0.5|"},
        {&region, "TRegion", "71|1|10|1.|20|2.|10|3.|20|4.|10|5.|20|6.|42|0.5|71|2|10|7.|20|8.|"},
    };
    for (const auto& [object, name, tokens] : cases) {
        SCOPED_TRACE(name);
        EXPECT_STREQ(object->StreamableClassName().c_str(), name);
        ExpectOpened(schema, *object);
        EXPECT_EQ(ExpectReadAsText(schema, *object), tokens);
    }
    EXPECT_EQ(AssertionOf([&] { region.AddContour({}); }).expression, "a contour has vertices");
}

TEST(PlaneTests, RefusesListsThatDoNotFit) {
    TZoMetaData schema;
    ZoRegisterGeometry(&schema);
    const auto numbers = [](int count) {
        Payload list;
        list.Int(count);
        for (int i = 0; i < count; ++i) list.Double(i);
        return list;
    };
    const std::vector<FieldEntry> polyline = {{0, ftListDouble, "vertices"}, {0, ftBool, "closed"}};
    const std::vector<FieldEntry> regions = {{0, ftListDouble, "vertices"}, {0, ftListInt, "contours"}};
    const std::tuple<const char*, const char*, Payload, bool> cases[] = {
        {"whole vertices", "TPolyline2D", numbers(6).Bool(false), true},
        {"half a vertex", "TPolyline2D", numbers(4).Bool(false), false},
        {"an open contour", "TContour", numbers(6).Bool(false), false},
        {"counts that fit", "TRegion", numbers(9).Int(2).Int(2).Int(-1), true},
        {"too few counted", "TRegion", numbers(9).Int(1).Int(2), false},
        {"too many counted", "TRegion", numbers(9).Int(2).Int(2).Int(2), false},
        {"none counted", "TRegion", numbers(3).Int(2).Int(1).Int(0), false},
        {"the least count", "TRegion", numbers(3).Int(1).Int(-2147483647 - 1), false},
    };
    for (const auto& [name, type, payload, accepted] : cases) {
        const bool region = std::string(type) == "TRegion";
        const ClassEntry entry{.name = type, .values = region ? regions : polyline};
        Opened opened(FileOf({entry}, {Row{1, 1, payload}}), schema);
        EXPECT_EQ(opened.root != nullptr, accepted) << name;
    }
}

} // namespace
