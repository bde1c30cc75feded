#pragma once

#include "ZoPrimitives/I3DShape.h"
#include "ZoPrimitives/TRegion.h"

#include <vector>

namespace ZoPrimitives {

/// What makes a body of an extrusion impossible.
enum TExtrusionFault : int {
    SoundExtrusion,
    NotFiniteExtrusion, ///< a coordinate or the angle is not finite
    EmptySection,       ///< the section has no area
    NoPath,             ///< the path has not two different points
    PathTurnsBack,      ///< at a vertex
    LegTooShort,        ///< the mitred ends of the leg from a vertex cross: the corners are too sharp
};

/// The body that a section makes along a path of straight legs: the section of a beam, a handrail, a duct or
/// a wall. Legs meet in mitres, in the plane that halves the angle; the ends are cut at right angles. The
/// section's origin runs along the path. On the first leg its axes lie as `TVector3D::AcadArbitraryAxes` says
/// for the direction of the path, turned by an angle: of a beam, y is up; of a column, x and y are those of
/// the plan. Along a path that ends where it begins, the ends are cut all the same.
///
/// Legs that meet elsewhere than at their corner are the caller's duty, as are the contours of the section.
/// Compares exactly.
///
/// Streamed as the fields "section", a region, "path", a list of doubles that holds x, y and z of each
/// vertex, and "angle". A list of another length is refused.
class ZO_API TExtrusionPath : public ZoObjectStreamable, public I3DShape {
public:
    /// Without section and path.
    TExtrusionPath();
    /// `angle` in radians, counter-clockwise as seen against the direction of the path.
    explicit TExtrusionPath(const TRegion& section, double angle = 0);
    TExtrusionPath(const TRegion& section, std::initializer_list<Point3D> path, double angle = 0);
    ZO_POINT_CLASS_(TExtrusionPath)

    const TRegion& Section() const { return section; }
    double Angle() const { return angle; }
    // Vertices count from 1; the index is asserted. A vertex that repeats the one before it changes nothing.
    unsigned long long NVertices() const { return path.size() / 3; }
    Point3D Vertex(unsigned long long index) const;
    void Add(const Point3D& vertex);

    /// Whether there is a body. `vertex`, unless null, gets the number of the vertex concerned, or 0.
    TExtrusionFault FindFault(unsigned long long* vertex = nullptr) const;

    // All of these assert that there is a body.
    /// Exact to rounding, with holes and arcs, as is the surface.
    double Volume() const override;
    double SurfaceArea() const override;
    T3DBox BoundingBox() const override;
    /// To rounding, with arcs and mitres, as hits are. Where the nearest point lies on a mitre of a round
    /// wall, which is an ellipse, it is searched for, in all places where it may be.
    double SignedDistance(const Point3D& point) const override;
    bool RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const override;
    T3DMesh Mesh(double chordError) const override;

    bool operator==(const TExtrusionPath& other) const;
    bool operator!=(const TExtrusionPath& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not an extrusion.
    bool operator==(const ZoObject& other) const override;

    /// False when the list in the record was not one of vertices.
    bool OnRead(TBinInStream* stream, bool substituted) override;
    /// Writes the code 340 before the section, an object; 50 before the angle; and 11, 21 and 31 before the
    /// coordinates of each vertex.
    void Write(OutputStreamer& streamer) override;
    /// Throws `XInvalidObject` for half a vertex.
    void Read(InputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    TRegion section;
    std::vector<double> path; // three of each vertex
    double angle = 0;
};

} // namespace ZoPrimitives
