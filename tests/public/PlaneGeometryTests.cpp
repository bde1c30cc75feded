#include "ZoPrimitives/ZoPrimitives.h"

#include <gtest/gtest.h>

// An application, in a namespace of its own, that sees the shared library only.
namespace drawing {

using namespace ZoPrimitives;

class Slab : public virtual ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Slab)
    DECLARE_ZO_FIELD_CHILD_VALUE(TRegion, outline)
    DECLARE_ZO_FIELD_CHILD_VALUE(TBezier2D, edge)
    DECLARE_ZO_FIELD_CHILD_VALUE(TTriangle2D, gusset)
    DECLARE_ZO_FIELD_CHILD_VALUE(TRay2D, view)
    DECLARE_ZO_FIELD_CHILD_VALUE(TDrawingGraph, drawing)
    REGISTER_ZO_END
};

TEST(PlaneGeometryTests, OverlaysArePartOfASavedModel) {
    TZoMetaData schema;
    ZoRegisterPoints(&schema);
    ZoRegisterGeometry(&schema);
    Slab::Register(&schema);
    Slab slab;
    const TRegion plan(TContour::Rectangle(RRect({0, 0}, {10, 6})));
    slab.outline = plan.Difference(TRegion(TContour(TCircle2D({10, 3}, 2)))).Offset(-0.5);
    slab.edge = TBezier2D::Quadratic({0, 0}, {1, 2}, {2, 0});
    slab.gusset = TTriangle2D({0, 0}, {1, 0}, {0, 1});
    slab.view = TRay2D({5, 5}, {1, 1});
    slab.drawing.Add(plan);
    slab.drawing.Add(TCircle2D({10, 3}, 2));
    const ZoBlob saved = ZoSaveInMemory(&slab, &schema);
    const auto opened = ZoOpenFromMemory<Slab>(saved, &schema);
    const Slab& read = *opened;
    EXPECT_TRUE(read.outline == slab.outline && read.edge == slab.edge && read.gusset == slab.gusset &&
                read.view == slab.view && read.drawing == slab.drawing);
    EXPECT_EQ(read.drawing.NFaces(), 3u);
    EXPECT_EQ(Distance(read.outline, TSegment2D({12, 0}, {12, 6})), 2.5);
    EXPECT_EQ(PlaceOf(read.gusset, plan), PathInside);
    EXPECT_TRUE(Contains(plan, read.outline));
    const TPolyline2D hits = Intersections(read.view.Beside(plan.BoundingBox()), plan.Contour(1));
    ASSERT_EQ(hits.NVertices(), 1u);
    EXPECT_EQ(hits.Vertex(1), Point2D(6, 6));
}

} // namespace drawing
