#pragma once

#include "ZoPrimitives/TPolyline2D.h"

#include <vector>

namespace ZoPrimitives {

/// A part of the plane: what lies within more outer contours than holes, so that a hole may hold an island.
/// Borders do not cross, and each hole lies within an outer contour: this is the caller's duty. Contours
/// count from 1 and may run either way. Compares exactly.
///
/// Streamed as the fields "vertices", as those of a polyline, and "contours", a list of ints: the number of
/// vertices of each contour, negative for a hole. Lists that do not fit are refused.
class ZO_API TRegion : public ZoObjectStreamable {
public:
    /// Empty.
    TRegion();
    explicit TRegion(const TContour& outer);
    ZO_POINT_CLASS_(TRegion)

    // An empty contour is asserted not to be.
    void AddContour(const TContour& contour);
    void AddHole(const TContour& hole);
    unsigned long long NContours() const { return counts.size(); }
    // The index is asserted.
    TContour Contour(unsigned long long index) const;
    bool IsHole(unsigned long long index) const;

    double Area() const;
    /// Of all borders.
    double Length() const;
    TAreaProperties AreaProperties() const;
    RRect BoundingBox() const;
    /// As `TPath2D::Locate`.
    TLocation Locate(const Point2D& point, unsigned precision = 6) const;

    // Overlays. Outer contours of the result run counter-clockwise and holes clockwise, none crosses itself
    // or another, and each hole lies within an outer contour, whatever the operands' contours do: what lies
    // in several outer contours counts once. Arcs stay arcs. Points that are `Equal` at the precision become
    // one, as in a `TDrawingGraph`; at 21 and 22, straight borders are overlaid exactly as they are given,
    // and only where they cross are coordinates rounded. That all coordinates are finite is asserted.
    TRegion Union(const TRegion& other, unsigned precision = 6) const;
    TRegion Intersection(const TRegion& other, unsigned precision = 6) const;
    /// What the other one leaves of this one.
    TRegion Difference(const TRegion& other, unsigned precision = 6) const;
    /// What lies in one of both.
    TRegion ExclusiveOr(const TRegion& other, unsigned precision = 6) const;

    /// What lies within `distance` of the region, or, for a negative one, within the region and no nearer to
    /// its border: corners become arcs. As an overlay, the result is sound for any contours.
    TRegion Offset(double distance, unsigned precision = 6) const;

    bool operator==(const TRegion& other) const;
    bool operator!=(const TRegion& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a region.
    bool operator==(const ZoObject& other) const override;

    bool OnRead(TBinInStream* stream, bool substituted) override;
    /// Writes, for each contour, the code 71 before 1, or 2 for a hole, and its vertices as a polyline does.
    void Write(OutputStreamer& streamer) override;
    void Read(InputStreamer& streamer) override;

    static ZoString Getfieldclassfor_vertices(TZoMetaData* schema, TZoClass** fieldClass,
                                              TZoClassFieldType* kind);
    static TZoClassField* Addfieldfor_vertices(TZoClass* owner, TZoClass* fieldClass,
                                               const ZoString& typeName);
    static ZoString Getfieldclassfor_contours(TZoMetaData* schema, TZoClass** fieldClass,
                                              TZoClassFieldType* kind);
    static TZoClassField* Addfieldfor_contours(TZoClass* owner, TZoClass* fieldClass,
                                               const ZoString& typeName);

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    void Append(const TContour& contour, int sign);
    bool Count();
    std::vector<TPathPiece> PiecesOf(unsigned long long index) const;

    std::vector<TPathVertex> vertices;    // of all contours
    std::vector<int> counts;              // of each contour's vertices, negative for a hole
    std::vector<unsigned long long> ends; // of each contour, in `vertices`
    unsigned numbers = 0;                 // that a reader has put into the last vertex; 3 is 0
    bool readingHole = false;
};

} // namespace ZoPrimitives
