// The closed regions of drawings, compared with GEOS, which nodes and polygonizes the same lines.

#include "bench.h"

#include "ZoPrimitives/TDrawingGraph.h"

#include <geos_c.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace bench {

namespace {

using ZoPrimitives::Point2D;
using ZoPrimitives::TDrawingGraph;
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

} // namespace

void RunDrawings(int runs, bool quick) {
    std::printf("\nClosed regions of random lines with 5 crossings each (no slower than GEOS; n log n; a "
                "point located "
                "among 100,000 faces in less than 2000 ns), ms\n");
    for (const unsigned count : {10'000u, 25'000u, 100'000u}) RunDrawing(count, true, runs);
    if (!quick) RunDrawing(1'000'000, false, 1);
}

} // namespace bench
