// The closed regions of drawings and overlays of regions, compared with GEOS, which nodes and polygonizes the
// same lines, and with GEOS and Boost.Geometry, which overlay the same polygons.

#include "bench.h"
#include "geometry_peers.h"

#include "ZoPrimitives/TDrawingGraph.h"
#include "ZoPrimitives/TRegion.h"

#include <geos_c.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace bench {

namespace {

using ZoPrimitives::Point2D;
using ZoPrimitives::TContour;
using ZoPrimitives::TDrawingGraph;
using ZoPrimitives::TRegion;
using ZoPrimitives::TSegment2D;
using Line = std::array<double, 4>;

constexpr double SIDE = 1000;
constexpr unsigned EXACT = 22;

/// Lines of one length in all directions, with some five crossings for each.
std::vector<Line> RandomLines(std::size_t count) {
    constexpr double PI = 3.141592653589793;
    std::mt19937 engine(1);
    const auto uniform = [&] { return static_cast<double>(engine() & 0xFFFFFFFF) / 4294967296.0; };
    const double length = SIDE * std::sqrt(5 * PI / static_cast<double>(count));
    std::vector<Line> lines;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = uniform() * SIDE, y = uniform() * SIDE, angle = uniform() * 2 * PI;
        lines.push_back({x, y, x + length * std::cos(angle), y + length * std::sin(angle)});
    }
    return lines;
}

void Add(TDrawingGraph& graph, const std::vector<Line>& lines) {
    for (const auto& [x1, y1, x2, y2] : lines) graph.Add(TSegment2D({x1, y1}, {x2, y2}));
}

/// Milliseconds from lines to faces, whose number it tells.
double TimePeer(const std::vector<Line>& lines, unsigned& faces) {
    const auto handle = GEOS_init_r();
    const double start = Now();
    std::vector<GEOSGeometry*> parts;
    for (const auto& [x1, y1, x2, y2] : lines) {
        GEOSCoordSequence* ends = GEOSCoordSeq_create_r(handle, 2, 2);
        GEOSCoordSeq_setXY_r(handle, ends, 0, x1, y1);
        GEOSCoordSeq_setXY_r(handle, ends, 1, x2, y2);
        parts.push_back(GEOSGeom_createLineString_r(handle, ends));
    }
    GEOSGeometry* all = GEOSGeom_createCollection_r(handle, GEOS_MULTILINESTRING, parts.data(),
                                                    static_cast<unsigned>(parts.size()));
    GEOSGeometry* noded = GEOSUnaryUnion_r(handle, all);
    GEOSGeometry* found = GEOSPolygonize_r(handle, &noded, 1);
    const double time = (Now() - start) / 1e6;
    faces = static_cast<unsigned>(GEOSGetNumGeometries_r(handle, found));
    for (GEOSGeometry* geometry : {all, noded, found}) GEOSGeom_destroy_r(handle, geometry);
    GEOS_finish_r(handle);
    return time;
}

/// Nanoseconds to locate a point.
double TimeLocating(const TDrawingGraph& graph) {
    std::mt19937 engine(2);
    std::vector<Point2D> points;
    for (int i = 0; i < 100'000; ++i)
        points.emplace_back(SIDE * static_cast<double>(engine() & 0xFFFFFF) / 0x1000000,
                            SIDE * static_cast<double>(engine() & 0xFFFFFF) / 0x1000000);
    unsigned long long sum = 0;
    const double start = Now();
    for (const Point2D& point : points) sum += graph.Locate(point).face;
    const double time = (Now() - start) / static_cast<double>(points.size());
    return sum == 0 ? 0 : time;
}

void RunDrawing(std::size_t count, bool withPeer, int runs) {
    const std::vector<Line> lines = RandomLines(count);
    std::printf("  %9zu lines", count);
    for (const unsigned precision : {EXACT, 6u}) {
        std::vector<double> times;
        unsigned faces = 0;
        double locating = 0;
        for (int run = 0; run < runs; ++run) {
            const double start = Now();
            TDrawingGraph graph(precision);
            Add(graph, lines);
            faces = graph.NFaces();
            times.push_back((Now() - start) / 1e6);
            if (run + 1 == runs && precision == EXACT) locating = TimeLocating(graph);
        }
        if (precision == EXACT)
            std::printf("   %7u faces   locating %5.0f ns   exact %8.0f", faces, locating, Median(times));
        else
            std::printf("   tolerance %8.0f", Median(times));
        if (precision == EXACT && withPeer) {
            unsigned theirs = 0;
            const double time = TimePeer(lines, theirs);
            std::printf("   GEOS %8.0f%s", time, theirs == faces ? "" : "   DIFFERENT FACES");
        }
    }
    std::printf("\n");
}

/// Microseconds until a graph that was found is found again, when a line has come or gone.
void RunChanges(std::size_t count) {
    constexpr int CHANGES = 200;
    const std::vector<Line> lines = RandomLines(count + CHANGES);
    std::printf("  %9zu lines", count);
    for (const unsigned precision : {EXACT, 6u}) {
        TDrawingGraph graph(precision);
        Add(graph, {lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(count)});
        graph.NFaces();
        std::vector<double> coming, going;
        for (std::size_t i = count; i < lines.size(); ++i) {
            double start = Now();
            const auto [x1, y1, x2, y2] = lines[i];
            graph.Add(TSegment2D({x1, y1}, {x2, y2}));
            graph.NFaces();
            coming.push_back((Now() - start) / 1e3);
            start = Now();
            graph.Remove(static_cast<unsigned>(i - count + 1));
            graph.NFaces();
            going.push_back((Now() - start) / 1e3);
        }
        std::printf("   %s: comes %6.0f   goes %6.0f", precision == EXACT ? "exact" : "tolerance",
                    Median(coming), Median(going));
        if (!graph.IsConsistent()) std::printf("   NOT CONSISTENT");
    }
    std::printf("\n");
}

/// A star with a rough border, about the middle.
Vertices RoughStar(std::size_t vertices, unsigned seed, double x, double y) {
    constexpr double PI = 3.141592653589793;
    std::mt19937 engine(seed);
    Vertices points;
    for (std::size_t i = 0; i < vertices; ++i) {
        const double angle = 2 * PI * static_cast<double>(i) / static_cast<double>(vertices);
        const double rough = static_cast<double>(engine() & 0xFFFF) / 0x10000;
        const double r = 400 + 10 * std::sin(37 * angle + seed) + rough;
        points.push_back({x + r * std::cos(angle), y + r * std::sin(angle)});
    }
    return points;
}

TRegion RegionOf(const Vertices& points) {
    TContour contour;
    contour.Reserve(points.size());
    for (const auto& [x, y] : points) contour.Add({x, y});
    return TRegion(contour);
}

GEOSGeometry* PolygonOf(GEOSContextHandle_t handle, const Vertices& points) {
    GEOSCoordSequence* ring = GEOSCoordSeq_create_r(handle, static_cast<unsigned>(points.size()) + 1, 2);
    for (unsigned i = 0; i <= points.size(); ++i) {
        const auto& [x, y] = points[i % points.size()];
        GEOSCoordSeq_setXY_r(handle, ring, i, x, y);
    }
    return GEOSGeom_createPolygon_r(handle, GEOSGeom_createLinearRing_r(handle, ring), nullptr, 0);
}

/// Overlays of two regions whose borders cross some hundred times.
void RunOverlays(unsigned vertices, int runs) {
    using Ours = TRegion (TRegion::*)(const TRegion&, unsigned) const;
    using Theirs = GEOSGeometry* (*)(GEOSContextHandle_t, const GEOSGeometry*, const GEOSGeometry*);
    struct Overlay {
        const char* name;
        Ours ours;
        Theirs theirs;
        OverlayKind kind;
    };
    const Overlay overlays[] = {
        {"union", &TRegion::Union, GEOSUnion_r, OverlayKind::UNION},
        {"intersection", &TRegion::Intersection, GEOSIntersection_r, OverlayKind::INTERSECTION},
        {"difference", &TRegion::Difference, GEOSDifference_r, OverlayKind::DIFFERENCE},
        {"exclusive or", &TRegion::ExclusiveOr, GEOSSymDifference_r, OverlayKind::EXCLUSIVE_OR}};
    const auto first = RoughStar(vertices, 1, 500, 500), second = RoughStar(vertices, 2, 520, 510);
    const TRegion a = RegionOf(first), b = RegionOf(second);
    const auto handle = GEOS_init_r();
    GEOSGeometry *p = PolygonOf(handle, first), *q = PolygonOf(handle, second);
    for (const auto& [name, ours, theirs, kind] : overlays) {
        std::printf("  %7u vertices each   %-12s", vertices, name);
        double area = 0, theirArea = 0;
        for (const unsigned precision : {EXACT, 6u}) {
            std::vector<double> times;
            for (int run = 0; run < runs; ++run) {
                const double start = Now();
                const TRegion found = (a.*ours)(b, precision);
                times.push_back((Now() - start) / 1e6);
                area = found.Area();
            }
            std::printf("   %s %6.0f", precision == EXACT ? "exact" : "tolerance", Median(times));
        }
        std::vector<double> times;
        for (int run = 0; run < runs; ++run) {
            const double start = Now();
            GEOSGeometry* found = theirs(handle, p, q);
            times.push_back((Now() - start) / 1e6);
            GEOSArea_r(handle, found, &theirArea);
            GEOSGeom_destroy_r(handle, found);
        }
        std::printf("   GEOS %6.0f", Median(times));
        times.clear();
        double boostArea = 0;
        for (int run = 0; run < runs; ++run)
            times.push_back(TimeBoostOverlay(first, second, kind, boostArea));
        const auto same = [&](double other) { return std::abs(area - other) < 1e-6 * area; };
        std::printf("   Boost %6.0f%s%s\n", Median(times), same(theirArea) ? "" : "   GEOS HAS ANOTHER AREA",
                    same(boostArea) ? "" : "   BOOST HAS ANOTHER AREA");
    }
    for (GEOSGeometry* geometry : {p, q}) GEOSGeom_destroy_r(handle, geometry);
    GEOS_finish_r(handle);
}

} // namespace

void RunDrawings(int runs, bool quick) {
    std::printf("\nClosed regions of random lines with 5 crossings each (no slower than GEOS; n log n; a "
                "point located "
                "among 100,000 faces in less than 2000 ns), ms\n");
    for (const unsigned count : {10'000u, 25'000u, 100'000u}) RunDrawing(count, true, runs);
    if (!quick) RunDrawing(1'000'000, false, 1);
    std::printf("\nThe same when a line comes or goes, us\n");
    for (const unsigned count : {10'000u, 100'000u}) RunChanges(count);
    std::printf("\nOverlays of two regions (no slower than GEOS), ms\n");
    for (const unsigned vertices : {10'000u, 100'000u}) RunOverlays(vertices, runs);
}

} // namespace bench
