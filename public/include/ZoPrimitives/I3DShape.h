#pragma once

#include "ZoPrimitives/T3DBox.h"
#include "ZoPrimitives/TPath2D.h"
#include "ZoPrimitives/TVector3D.h"

namespace ZoPrimitives {

class T3DMesh;

/// Where a ray meets a surface.
struct T3DHit {
    Point3D point;
    TVector3D normal; ///< of the surface, outwards, of length 1; zero where the surface has none
    double distance = 0;
};

/// A body in space: what can be asked of every shape.
class ZO_API I3DShape {
public:
    virtual ~I3DShape();

    virtual double Volume() const = 0;
    virtual double SurfaceArea() const = 0;
    virtual T3DBox BoundingBox() const = 0;
    /// Of the point from the surface, negative inside; infinite for a shape without any point.
    virtual double SignedDistance(const Point3D& point) const = 0;
    /// The first point of the surface on the ray from `origin` in `direction`, of any length but 0, which is
    /// asserted; from inside, where the ray leaves. Right to rounding. False, and nothing set, if there is
    /// none.
    virtual bool RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const = 0;
    /// The surface in triangles, which leave what is round by at most `chordError`, and by a sixteenth of a
    /// turn; that the error is above 0 is asserted. The mesh is closed.
    virtual T3DMesh Mesh(double chordError) const = 0;

    /// 0 inside.
    double Distance(const Point3D& point) const;
    /// A point whose distance from the surface is `Equal` to 0 is on the border.
    TLocation Locate(const Point3D& point, unsigned precision = 6) const;

protected:
    I3DShape();
    I3DShape(const I3DShape& other);
    I3DShape& operator=(const I3DShape& other);
};

} // namespace ZoPrimitives
