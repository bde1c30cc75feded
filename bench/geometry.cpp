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
#include <utility>

namespace bench {

namespace {

using ZoPrimitives::Point2D;
using ZoPrimitives::TContour;
using ZoPrimitives::TDrawingGraph;
using ZoPrimitives::TRegion;
using ZoPrimitives::TSegment2D;
using Line = std::array<double, 4>;

constexpr double PI = 3.141592653589793;
constexpr double SIDE = 1000;
constexpr unsigned EXACT = 22;

/// Lines of one length in all directions, with some five crossings for each.
std::vector<Line> RandomLines(std::size_t count) {
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

/// Diagonals side by side, which the sides of a square cut.
std::vector<Line> Hatch(std::size_t count) {
    std::vector<Line> lines = {
        {0, 0, SIDE, 0}, {SIDE, 0, SIDE, SIDE}, {SIDE, SIDE, 0, SIDE}, {0, SIDE, 0, 0}};
    for (std::size_t i = 0; i < count; ++i) {
        const double beside = SIDE * (2 * (static_cast<double>(i) + 0.5) / static_cast<double>(count) - 1);
        const double left = std::max(0.0, -beside) - 1, right = std::min(SIDE, SIDE - beside) + 1;
        lines.push_back({left, left + beside, right, right + beside});
    }
    return lines;
}

/// Lines from one point, which a square around it cuts.
std::vector<Line> Fan(std::size_t count) {
    std::vector<Line> lines = {
        {0, 0, SIDE, 0}, {SIDE, 0, SIDE, SIDE}, {SIDE, SIDE, 0, SIDE}, {0, SIDE, 0, 0}};
    for (std::size_t i = 0; i < count; ++i) {
        const double angle = 2 * PI * (static_cast<double>(i) + 0.5) / static_cast<double>(count);
        const double x = 0.4 * SIDE, y = 0.45 * SIDE;
        lines.push_back({x, y, x + SIDE * std::cos(angle), y + SIDE * std::sin(angle)});
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

void RunDrawing(const char* name, const std::vector<Line>& lines, bool withPeer, int runs) {
    std::printf("  %-8s %9zu", name, lines.size());
    unsigned faces = 0;
    for (const unsigned precision : {EXACT, 6u}) {
        std::vector<double> times;
        double locating = 0;
        unsigned edges = 0;
        for (int run = 0; run < runs; ++run) {
            const double start = Now();
            TDrawingGraph graph(precision);
            Add(graph, lines);
            edges = graph.NEdges();
            times.push_back((Now() - start) / 1e6);
            if (precision != EXACT) continue;
            faces = graph.NFaces();
            if (run + 1 == runs) locating = TimeLocating(graph);
        }
        const double time = Median(times);
        if (precision == EXACT)
            std::printf(" %9u %9u %12.0f %10.0f %15.1f", edges, faces, locating, time,
                        time * 1e6 / edges / std::log2(edges));
        else
            std::printf(" %14.0f", time);
    }
    if (withPeer) {
        unsigned theirs = 0;
        const double time = TimePeer(lines, theirs);
        std::printf(" %9.0f%s", time, theirs == faces ? "" : "   DIFFERENT FACES");
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

/// Diagonal teeth side by side, with a back in common.
Vertices Comb(std::size_t vertices, double along, double across) {
    const std::size_t teeth = vertices / 4;
    const double width = SIDE / static_cast<double>(teeth);
    Vertices points;
    const auto add = [&](double u, double v) {
        points.push_back({(u + along) - (v + across * width), (u + along) + (v + across * width)});
    };
    for (std::size_t i = 0; i < teeth; ++i) {
        const double v = static_cast<double>(i) * width;
        for (const auto& [u, beside] :
             {std::pair(10.0, 0.0), std::pair(SIDE, 0.0), std::pair(SIDE, 0.5), std::pair(10.0, 0.5)})
            add(u, v + beside * width);
    }
    add(0, SIDE);
    add(0, 0);
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

void RunOverlays(const char* regions, const Vertices& first, const Vertices& second, bool withPeers,
                 int runs) {
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
    const TRegion a = RegionOf(first), b = RegionOf(second);
    const auto handle = GEOS_init_r();
    GEOSGeometry *p = PolygonOf(handle, first), *q = PolygonOf(handle, second);
    for (const auto& [name, ours, theirs, kind] : overlays) {
        std::printf("  %-8s %9zu   %-12s", regions, first.size(), name);
        double area = 0, theirArea = 0;
        for (const unsigned precision : {EXACT, 6u}) {
            std::vector<double> times;
            for (int run = 0; run < runs; ++run) {
                const double start = Now();
                const TRegion found = (a.*ours)(b, precision);
                times.push_back((Now() - start) / 1e6);
                area = found.Area();
            }
            std::printf(precision == EXACT ? " %10.0f" : " %14.0f", Median(times));
        }
        if (!withPeers) {
            std::printf("\n");
            continue;
        }
        std::vector<double> times;
        for (int run = 0; run < runs; ++run) {
            const double start = Now();
            GEOSGeometry* found = theirs(handle, p, q);
            times.push_back((Now() - start) / 1e6);
            GEOSArea_r(handle, found, &theirArea);
            GEOSGeom_destroy_r(handle, found);
        }
        std::printf(" %9.0f", Median(times));
        times.clear();
        double boostArea = 0;
        for (int run = 0; run < runs; ++run)
            times.push_back(TimeBoostOverlay(first, second, kind, boostArea));
        const auto same = [&](double other) { return std::abs(area - other) < 1e-6 * area; };
        std::printf(" %10.0f%s%s\n", Median(times), same(theirArea) ? "" : "   GEOS HAS ANOTHER AREA",
                    same(boostArea) ? "" : "   BOOST HAS ANOTHER AREA");
    }
    for (GEOSGeometry* geometry : {p, q}) GEOSGeom_destroy_r(handle, geometry);
    GEOS_finish_r(handle);
}

} // namespace

void RunDrawings(int runs, bool quick) {
    std::printf(
        "\nClosed regions of drawings, from lines to faces (no slower than GEOS; ns / (n log2 n) with n "
        "edges much "
        "the same for\nany number of lines; a point located among 100,000 faces in less than 2000 ns)\n"
        "  drawing      lines     edges     faces  locating, ns  exact, ms   ns/(n log2 n)  tolerance, ms  "
        "GEOS, ms\n");
    for (const unsigned count : {10'000u, 25'000u, 100'000u})
        RunDrawing("random", RandomLines(count), true, runs);
    if (!quick) RunDrawing("random", RandomLines(1'000'000), false, 1);
    // Boxes around diagonals overlap: it takes the other library minutes to look at all pairs of many.
    for (const unsigned count : {10'000u, 100'000u})
        RunDrawing("hatch", Hatch(count), count == 10'000u, runs);
    if (!quick) RunDrawing("hatch", Hatch(1'000'000), false, 1);
    for (const unsigned count : {10'000u, 100'000u}) RunDrawing("fan", Fan(count), count == 10'000u, runs);
    std::printf("\nUntil a graph of random lines is found again when one comes or goes, us\n");
    for (const unsigned count : {10'000u, 100'000u}) RunChanges(count);
    std::printf("\nOverlays of two regions, ms (no slower than GEOS)\n"
                "  regions   vertices   overlay       exact, ms  tolerance, ms  GEOS, ms  Boost, ms\n");
    for (const unsigned vertices : {10'000u, 100'000u})
        RunOverlays("stars", RoughStar(vertices, 1, 500, 500), RoughStar(vertices, 2, 520, 510), true, runs);
    for (const unsigned vertices : {10'000u, 100'000u})
        RunOverlays("combs", Comb(vertices, 0, 0), Comb(vertices, 100, 0.2), vertices == 10'000u, runs);
}

} // namespace bench
