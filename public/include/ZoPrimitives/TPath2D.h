#pragma once

#include "ZoPrimitives/LDPoint.h"
#include "ZoPrimitives/Point2D.h"
#include "ZoPrimitives/RRect.h"
#include "ZoPrimitives/TAreaProperties.h"

namespace ZoPrimitives {

class TPolyline2D;

/// A straight or circular piece of a path. `bulge` is the tangent of a quarter of the angle of the arc: 0 for
/// a straight piece, 1 for a half circle; positive where the arc turns counter-clockwise, to the right of the
/// chord.
struct TPathPiece {
    LDPoint from;
    LDPoint to;
    double bulge = 0;
};

/// Where a point lies.
enum TLocation : int { OutsideRegion, OnBorder, InsideRegion };

/// A path in the plane, of straight and circular pieces: what segments, arcs, circles, polylines and contours
/// have in common. What is asked of an arc is right to rounding, however flat it is.
class ZO_API TPath2D : public ZoObjectStreamable {
public:
    ~TPath2D() override;

    /// Pieces count from 1, each from the end of the one before; this is asserted.
    virtual unsigned long long NPieces() const = 0;
    virtual TPathPiece Piece(unsigned long long index) const = 0;
    /// Whether the last piece ends where the first begins, by the nature of the path. False by default.
    virtual bool IsClosed() const;

    double Length() const;
    /// With the arcs' bellies; empty for a path without pieces.
    RRect BoundingBox() const;
    /// The point of the path that is nearest to the other; that point itself for a path without pieces.
    Point2D NearestPoint(const Point2D& point) const;
    /// Infinite for a path without pieces.
    double Distance(const Point2D& point) const;
    /// The same path of straight pieces only, closed if this one is: they leave each arc by at most
    /// `chordError`, which is above 0, and by a sixteenth of a turn; this is asserted. An arc gets at most
    /// 2^20 pieces.
    TPolyline2D Flattened(double chordError) const;

    // Of closed paths that do not cross themselves; that the path is closed is asserted.

    /// Negative if the path runs clockwise.
    double SignedArea() const;
    double Area() const;
    bool IsCounterClockwise() const;
    /// Of what the path encloses, whichever way it runs. The error is some roundings of the figure's own
    /// size, wherever it lies.
    TAreaProperties AreaProperties() const;
    /// A point that is `Equal` to the nearest one of the path lies on the border. Otherwise straight pieces
    /// decide exactly, and arcs to rounding.
    TLocation Locate(const Point2D& point, unsigned precision = 6) const;

protected:
    TPath2D();
    TPath2D(const TPath2D& other);
    explicit TPath2D(StreamableInit init);
    TPath2D& operator=(const TPath2D& other);
};

/// Of the point's distance and the path's closest point: whether both are `Equal`.
ZO_API bool IsOnPath(const TPath2D& path, const Point2D& point, unsigned precision);

} // namespace ZoPrimitives
