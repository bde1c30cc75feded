#pragma once

#include "ZoPrimitives/TPath2D.h"

#include <initializer_list>
#include <vector>

namespace ZoPrimitives {

/// A vertex of a polyline, and the bulge of the piece that begins there.
struct TPathVertex {
    LDPoint point;
    double bulge = 0;

    bool operator==(const TPathVertex& other) const { return point == other.point && bulge == other.bulge; }
};

/// A path through vertices, which count from 1; each may begin an arc. Compares exactly.
///
/// Streamed as the fields "vertices", a list of doubles that holds x, y and bulge of each vertex, and
/// "closed". A list of another length is refused.
class ZO_API TPolyline2D : public TPath2D {
public:
    /// Open, without vertices.
    TPolyline2D();
    TPolyline2D(std::initializer_list<Point2D> vertices, bool closed = false);
    ZO_POINT_CLASS_(TPolyline2D)

    unsigned long long NVertices() const { return vertices.size(); }
    void Reserve(unsigned long long count) { vertices.reserve(count); }
    void Add(const Point2D& vertex, double bulge = 0) {
        vertices.push_back({{vertex.X(), vertex.Y()}, bulge});
    }
    // The index is asserted.
    Point2D Vertex(unsigned long long index) const;
    /// Of the piece that begins at the vertex.
    double Bulge(unsigned long long index) const;
    /// Makes a piece lead from the last vertex to the first one, or not.
    virtual void Close(bool close);
    /// The same path with fewer vertices, each of them one of its own: no vertex that is left out lies
    /// farther than `tolerance` from the straight piece that replaces it. Arcs and their ends stay, and so do
    /// the first vertex and the last. The result may cross itself where parts of the path are as near to each
    /// other as that. The tolerance is asserted not to be negative.
    TPolyline2D Simplified(double tolerance) const;
    /// The same path the other way round; the first vertex stays where it is if the path is closed.
    void Reverse();

    /// Those between vertices, and the closing one.
    unsigned long long NPieces() const override;
    TPathPiece Piece(unsigned long long index) const override;
    bool IsClosed() const override;

    bool operator==(const TPolyline2D& other) const;
    bool operator!=(const TPolyline2D& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a polyline.
    bool operator==(const ZoObject& other) const override;

    /// False when the list in the record was not one of vertices.
    bool OnRead(TBinInStream* stream, bool substituted) override;
    /// Writes the code 70 before 1 if it is closed and 0 if not; then, for each vertex, the codes 10 and 20
    /// before the coordinates, and 42 before the bulge if it is not 0.
    void Write(OutputStreamer& streamer) override;
    void Read(InputStreamer& streamer) override;

    static ZoString Getfieldclassfor_vertices(TZoMetaData* schema, TZoClass** fieldClass,
                                              TZoClassFieldType* kind);
    static TZoClassField* Addfieldfor_vertices(TZoClass* owner, TZoClass* fieldClass,
                                               const ZoString& typeName);
    static ZoString Getfieldclassfor_closed(TZoMetaData* schema, TZoClass** fieldClass,
                                            TZoClassFieldType* kind);
    static TZoClassField* Addfieldfor_closed(TZoClass* owner, TZoClass* fieldClass, const ZoString& typeName);

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    friend class TRegion;
    std::vector<TPathVertex> vertices;
    bool closed = false;
    unsigned numbers = 0; // that a reader has put into the last vertex; 3 is 0
};

/// A closed polyline, such as a border of a region. Streamed as one.
class ZO_API TContour : public TPolyline2D {
public:
    TContour();
    TContour(std::initializer_list<Point2D> vertices);
    /// The same path, which is closed if it was not.
    explicit TContour(const TPath2D& path);
    ZO_POINT_CLASS_(TContour)

    static TContour Rectangle(const RRect& rectangle);
    /// That of the points, counter-clockwise from the least one, without those between two others on a line;
    /// exact. Without area, it goes forth and back; of a single place, it is one vertex.
    static TContour ConvexHull(const Point2D* points, unsigned long long count);

    /// A contour stays closed.
    void Close(bool close) override;
    bool OnRead(TBinInStream* stream, bool substituted) override;
    void Read(InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
