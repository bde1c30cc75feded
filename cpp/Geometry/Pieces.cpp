#include "Geometry/Pieces.h"

#include "Geometry/ChordFrame.h"
#include "Geometry/Predicates.h"

#include <algorithm>
#include <cmath>

namespace ZoPrimitives {

namespace {

constexpr double PI = 3.141592653589793;
constexpr unsigned MOST_PARTS = 1 << 20;

LDPoint NearestOnChord(const TPathPiece& piece, const LDPoint& point) {
    const LDPoint step = piece.to - piece.from;
    const LDPoint from = point - piece.from;
    const double square = step.x * step.x + step.y * step.y;
    if (!(square > 0)) return piece.from;
    const double t = (from.x * step.x + from.y * step.y) / square;
    if (t <= 0) return piece.from;
    if (t >= 1) return piece.to;
    return t < 0.5 ? piece.from + step * t : piece.to + step * (t - 1);
}

LDPoint NearerEnd(const TPathPiece& piece, const LDPoint& point) {
    return point.DistFrom2(piece.from) <= point.DistFrom2(piece.to) ? piece.from : piece.to;
}

/// Integrals over a figure about a point.
struct Integrals {
    double area = 0;
    double x = 0;
    double y = 0;
    double xx = 0;
    double yy = 0;
    double xy = 0;
};

/// Of the triangle from the origin to a chord.
void AddTriangle(Integrals& sum, const LDPoint& p, const LDPoint& q) {
    const double cross = p.x * q.y - q.x * p.y;
    sum.area += cross / 2;
    sum.x += cross * (p.x + q.x) / 6;
    sum.y += cross * (p.y + q.y) / 6;
    sum.xx += cross * (p.x * p.x + p.x * q.x + q.x * q.x) / 12;
    sum.yy += cross * (p.y * p.y + p.y * q.y + q.y * q.y) / 12;
    sum.xy += cross * (p.x * q.y + 2 * p.x * p.y + 2 * q.x * q.y + q.x * p.y) / 24;
}

/// Of what lies between a chord and its arc. The quadrature of Gauss and Legendre with 12 points is exact to
/// rounding for these integrands, up to a half circle, and nothing cancels in it.
void AddSegment(Integrals& sum, const TPathPiece& piece) {
    constexpr double NODES[] = {0.1252334085114689, 0.3678314989981802, 0.5873179542866175,
                                0.7699026741943047, 0.9041172563704749, 0.9815606342467192};
    constexpr double WEIGHTS[] = {0.2491470458134028, 0.2334925365383548, 0.2031674267230659,
                                  0.1600783285433462, 0.1069393259953184, 0.0471753363865118};
    const ChordFrame frame(piece);
    const double half = frame.HalfAngle();
    const double radius = frame.Radius();
    double area = 0, first = 0, across = 0, along = 0; // of 1, y, y^2 and x^2 in the frame
    const auto addPoint = [&](double angle, double weight) {
        const LDPoint p = frame.OnCircle(angle);
        const double width = weight * half * radius * std::cos(angle); // of both halves
        area += p.y * width;
        first += p.y * p.y / 2 * width;
        across += p.y * p.y * p.y / 3 * width;
        along += p.x * p.x * p.y * width;
    };
    const int parts = frame.bulge > 1 ? 2 : 1;
    for (int part = 0; part < parts; ++part) {
        for (int i = 0; i < 6; ++i) {
            addPoint(half * (part + (1 + NODES[i]) / 2) / parts, WEIGHTS[i] / parts);
            addPoint(half * (part + (1 - NODES[i]) / 2) / parts, WEIGHTS[i] / parts);
        }
    }
    const double sign = piece.bulge > 0 ? 1 : -1;
    const LDPoint m = frame.middle, u = frame.along, v = frame.beside;
    sum.area += sign * area;
    sum.x += sign * (area * m.x + first * v.x);
    sum.y += sign * (area * m.y + first * v.y);
    sum.xx += sign * (area * m.x * m.x + 2 * first * m.x * v.x + along * u.x * u.x + across * v.x * v.x);
    sum.yy += sign * (area * m.y * m.y + 2 * first * m.y * v.y + along * u.y * u.y + across * v.y * v.y);
    sum.xy +=
        sign * (area * m.x * m.y + first * (m.x * v.y + m.y * v.x) + along * u.x * u.y + across * v.x * v.y);
}

Integrals IntegralsOf(const std::vector<TPathPiece>& pieces, const LDPoint& origin) {
    Integrals sum;
    for (const TPathPiece& piece : pieces) {
        const TPathPiece moved{piece.from - origin, piece.to - origin, piece.bulge};
        AddTriangle(sum, moved.from, moved.to);
        if (piece.bulge != 0 && moved.from != moved.to) AddSegment(sum, moved);
    }
    return sum;
}

} // namespace

std::vector<TPathPiece> PiecesOf(const TPath2D& path) {
    const unsigned long long count = path.NPieces();
    std::vector<TPathPiece> pieces;
    pieces.reserve(count);
    for (unsigned long long i = 1; i <= count; ++i) pieces.push_back(path.Piece(i));
    return pieces;
}

LDPoint PointAt(const TPathPiece& piece, double fraction) {
    if (fraction <= 0) return piece.from;
    if (fraction >= 1) return piece.to;
    const ChordFrame frame(piece);
    if (piece.bulge == 0) return frame.FromFrame({frame.chord * (fraction - 0.5), 0});
    return frame.FromFrame(frame.OnCircle(frame.HalfAngle() * (2 * fraction - 1)));
}

double ParameterOf(const TPathPiece& piece, const LDPoint& point) {
    if (point == piece.from || piece.from == piece.to) return 0;
    if (point == piece.to) return 1;
    const ChordFrame frame(piece);
    const double fraction = piece.bulge == 0 ? frame.ToFrame(point).x / frame.chord + 0.5
                                             : frame.AngleOf(point) / frame.HalfAngle() / 2 + 0.5;
    return std::clamp(fraction, 0.0, 1.0);
}

double LengthOf(const TPathPiece& piece) {
    const LDPoint step = piece.to - piece.from;
    const double chord = std::hypot(step.x, step.y);
    if (piece.bulge == 0) return chord;
    const double bulge = std::abs(piece.bulge);
    return chord * std::atan(bulge) * (1 / bulge + bulge);
}

void AddBounds(RRect& box, const TPathPiece& piece) {
    box.Add(Point2D(piece.from.x, piece.from.y)).Add(Point2D(piece.to.x, piece.to.y));
    if (piece.bulge == 0 || piece.from == piece.to) return;
    const ChordFrame frame(piece);
    const double cosine = (1 - frame.bulge * frame.bulge) / (1 + frame.bulge * frame.bulge);
    for (const LDPoint& axis : {LDPoint(1, 0), LDPoint(0, 1), LDPoint(-1, 0), LDPoint(0, -1)}) {
        const double towards = axis.x * frame.beside.x + axis.y * frame.beside.y;
        if (towards <= cosine) continue; // the arc's end is farther in this direction
        const double turned = axis.x * frame.along.x + axis.y * frame.along.y;
        const LDPoint p = frame.FromFrame(frame.OnCircle(std::atan2(turned, towards)));
        box.Add(Point2D(p.x, p.y));
    }
}

LDPoint NearestPointOf(const TPathPiece& piece, const LDPoint& point) {
    if (piece.bulge == 0 || piece.from == piece.to) return NearestOnChord(piece, point);
    const ChordFrame frame(piece);
    const LDPoint p = frame.ToFrame(point);
    const double depth = frame.DepthTimesBulge();
    const LDPoint fromCentre(frame.bulge * p.x, frame.bulge * p.y + depth);
    const double size = std::hypot(fromCentre.x, fromCentre.y);
    const LDPoint direction = size > 0 ? fromCentre * (1 / size) : LDPoint(0, 1);
    const double distance = frame.PowerTimesBulge(p) / (size + frame.bulge * frame.Radius());
    const LDPoint nearest = p - direction * distance;
    if (nearest.y < 0) return NearerEnd(piece, point);
    return frame.FromFrame(nearest);
}

unsigned PartsOf(const TPathPiece& piece, double chordError) {
    if (piece.bulge == 0 || piece.from == piece.to) return 1;
    const ChordFrame frame(piece);
    const double reach = std::sqrt(std::min(1.0, chordError / (2 * frame.Radius())));
    const double parts = std::ceil(frame.HalfAngle() / std::min(2 * std::asin(reach), PI / 4) - 1e-9);
    return static_cast<unsigned>(std::clamp(parts, 1.0, static_cast<double>(MOST_PARTS)));
}

std::vector<LDPoint> PointsOf(const TPathPiece& piece, unsigned parts) {
    const ChordFrame frame(piece);
    const double half = frame.HalfAngle();
    std::vector<LDPoint> points;
    points.reserve(parts - 1);
    for (unsigned i = 1; i < parts; ++i)
        points.push_back(frame.FromFrame(frame.OnCircle(half * (2.0 * i / parts - 1))));
    return points;
}

double SignedAreaOf(const std::vector<TPathPiece>& pieces) {
    return pieces.empty() ? 0 : IntegralsOf(pieces, pieces[0].from).area;
}

TAreaProperties SignedPropertiesOf(const std::vector<TPathPiece>& pieces) {
    if (pieces.empty()) return {};
    const LDPoint start = pieces[0].from;
    const Integrals rough = IntegralsOf(pieces, start);
    if (rough.area == 0) return {0, Point2D(start.x, start.y), 0, 0, 0};
    // About the centroid, so that the shift to it takes nothing away.
    const LDPoint centre = start + LDPoint(rough.x / rough.area, rough.y / rough.area);
    const Integrals sum = IntegralsOf(pieces, centre);
    const double x = sum.x / sum.area, y = sum.y / sum.area;
    return {sum.area, Point2D(centre.x + x, centre.y + y), sum.yy - sum.area * y * y,
            sum.xx - sum.area * x * x, sum.xy - sum.area * x * y};
}

bool Encloses(const std::vector<TPathPiece>& pieces, const LDPoint& point) {
    // Counts the chords that a ray in the direction of x meets, then what lies between chord and arc. A point
    // on a chord counts as one slightly above it and to its right, in both counts.
    bool inside = false;
    for (const TPathPiece& piece : pieces) {
        if (piece.from == piece.to) continue;
        const bool upward = piece.to.y > piece.from.y;
        const bool level = piece.to.y == piece.from.y;
        int side = SideOf(piece.from, piece.to, point);
        if (side == 0) side = level ? (piece.to.x > piece.from.x ? 1 : -1) : (upward ? -1 : 1);
        if ((piece.from.y > point.y) != (piece.to.y > point.y) && (side > 0) == upward) inside = !inside;
        if (piece.bulge == 0 || side != (piece.bulge > 0 ? -1 : 1)) continue;
        const ChordFrame frame(piece);
        if (frame.PowerTimesBulge(frame.ToFrame(point)) < 0) inside = !inside;
    }
    return inside;
}

} // namespace ZoPrimitives
