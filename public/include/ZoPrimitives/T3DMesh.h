#pragma once

#include "ZoPrimitives/I3DShape.h"
#include "ZoPrimitives/TZoPath.h"

#include <vector>

namespace ZoPrimitives {

/// The corners of a triangle, counter-clockwise as seen from outside: numbers of vertices.
struct T3DTriangle {
    int a = 0;
    int b = 0;
    int c = 0;
};

/// A surface of triangles between vertices; both count from 1, and indices are asserted. Compares exactly.
///
/// Streamed as the fields "vertices", a list of doubles that holds x, y and z of each vertex, and
/// "triangles", a list of ints that holds the corners of each triangle. Lists of other lengths are refused,
/// and so are corners that are no vertices.
class ZO_API T3DMesh : public ZoObjectStreamable, public I3DShape {
public:
    /// Empty, which is closed.
    T3DMesh();
    ZO_POINT_CLASS_(T3DMesh)

    int NVertices() const { return static_cast<int>(coordinates.size() / 3); }
    int NTriangles() const { return static_cast<int>(corners.size() / 3); }
    Point3D Vertex(int index) const;
    T3DTriangle Triangle(int index) const;
    /// Returns its number.
    int AddVertex(const Point3D& vertex);
    void AddTriangle(const T3DTriangle& triangle);
    /// Adds the other mesh's triangles, and its vertices behind those there are.
    void Add(const T3DMesh& other);

    /// The edges that are not those of two triangles which pass them in opposite directions.
    unsigned long long NOpenEdges() const;
    /// Whether there are none: the triangles are the whole surface of a body.
    bool IsClosed() const { return NOpenEdges() == 0; }
    /// Negative if the triangles are clockwise as seen from outside. That the mesh is closed is asserted. The
    /// error is some roundings of the body's own size, wherever it lies.
    double SignedVolume() const;

    double Volume() const override;
    double SurfaceArea() const override;
    T3DBox BoundingBox() const override;
    /// Inside is where the triangles wind around the point; a mesh that is not closed counts as if what is
    /// missing closed it, roughly. Time grows with the number of triangles, as that of a hit does.
    double SignedDistance(const Point3D& point) const override;
    /// No ray passes between triangles that have an edge in common.
    bool RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const override;
    /// The same.
    T3DMesh Mesh(double chordError) const override;

    // For other programs. Both throw `XWriteStreamOutOfSpace` when the device is full and `XWriteStream`
    // otherwise; the file may then be incomplete. That coordinates are finite is asserted.
    /// As a Wavefront OBJ text, whose numbers read back the same.
    void WriteObj(const TZoPath& path) const;
    /// As a binary STL file: its numbers have 24 bits, and vertices are repeated in each triangle.
    void WriteStl(const TZoPath& path) const;

    bool operator==(const T3DMesh& other) const;
    bool operator!=(const T3DMesh& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a mesh.
    bool operator==(const ZoObject& other) const override;

    /// False when the lists in the record do not fit.
    bool OnRead(TBinInStream* stream, bool substituted) override;
    /// Writes the codes 10, 20 and 30 before the coordinates of each vertex, and 71, 72 and 73 before the
    /// corners of each triangle.
    void Write(OutputStreamer& streamer) override;
    /// Throws `XInvalidObject` for lists that would be refused, and where a number is missing.
    void Read(InputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    bool Fits() const;

    std::vector<double> coordinates; // three of each vertex
    std::vector<int> corners;        // three of each triangle
};

} // namespace ZoPrimitives
