// Boost.Geometry's overlays, in doubles: where lines nearly touch, its results can be wrong.

#include "geometry_peers.h"

#include "bench.h"

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

namespace bench {

namespace {

namespace bg = boost::geometry;
using Point = bg::model::d2::point_xy<double>;
using Polygon = bg::model::polygon<Point>;

Polygon PolygonOf(const Vertices& vertices) {
    Polygon polygon;
    for (const auto& [x, y] : vertices) bg::append(polygon.outer(), Point(x, y));
    bg::correct(polygon);
    return polygon;
}

} // namespace

double TimeBoostOverlay(const Vertices& a, const Vertices& b, OverlayKind kind, double& area) {
    const Polygon p = PolygonOf(a), q = PolygonOf(b);
    bg::model::multi_polygon<Polygon> result;
    const double start = Now();
    switch (kind) {
    case OverlayKind::UNION:
        bg::union_(p, q, result);
        break;
    case OverlayKind::INTERSECTION:
        bg::intersection(p, q, result);
        break;
    case OverlayKind::DIFFERENCE:
        bg::difference(p, q, result);
        break;
    case OverlayKind::EXCLUSIVE_OR:
        bg::sym_difference(p, q, result);
        break;
    }
    const double time = (Now() - start) / 1e6;
    area = bg::area(result);
    return time;
}

} // namespace bench
