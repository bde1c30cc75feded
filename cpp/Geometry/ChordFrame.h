#pragma once

#include "Geometry/Pieces.h"

#include <cmath>

namespace ZoPrimitives {

/// A circular piece in the frame of its chord: the origin in the middle, x along the chord, y to the arc's
/// side.
struct ChordFrame {
    LDPoint middle;
    LDPoint along;
    LDPoint beside;
    double chord;
    double bulge; // not negative

    explicit ChordFrame(const TPathPiece& piece)
        : middle(piece.from + (piece.to - piece.from) * 0.5), bulge(std::abs(piece.bulge)) {
        const LDPoint step = piece.to - piece.from;
        chord = std::hypot(step.x, step.y);
        along = chord > 0 ? step * (1 / chord) : LDPoint(1, 0);
        beside = piece.bulge > 0 ? LDPoint(along.y, -along.x) : LDPoint(-along.y, along.x);
    }

    double HalfAngle() const { return 2 * std::atan(bulge); }
    double Radius() const { return chord * (1 + bulge * bulge) / (4 * bulge); }
    LDPoint ToFrame(const LDPoint& p) const {
        const LDPoint from = p - middle;
        return {from.x * along.x + from.y * along.y, from.x * beside.x + from.y * beside.y};
    }
    LDPoint FromFrame(const LDPoint& p) const { return middle + along * p.x + beside * p.y; }
    /// The point of the circle at an angle from the middle of the arc.
    LDPoint OnCircle(double angle) const {
        const double half = HalfAngle();
        const double radius = Radius();
        return {radius * std::sin(angle),
                2 * radius * std::sin((half + angle) / 2) * std::sin((half - angle) / 2)};
    }
    /// Of the point of the circle that is nearest to another, from the middle of the arc.
    double AngleOf(const LDPoint& p) const {
        const LDPoint q = ToFrame(p);
        return std::atan2(bulge * q.x, bulge * q.y + DepthTimesBulge());
    }
    /// The centre lies so far below the chord, times the bulge; finite for a straight piece too.
    double DepthTimesBulge() const { return chord * (1 - bulge * bulge) / 4; }
    /// The power of a point with regard to the circle, times the bulge: negative inside.
    double PowerTimesBulge(const LDPoint& p) const {
        return bulge * (p.x * p.x + p.y * p.y - chord * chord / 4) + 2 * p.y * DepthTimesBulge();
    }
};

} // namespace ZoPrimitives
