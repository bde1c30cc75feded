#include "ZoPrimitives/ZoPrimitives.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>

// An application with bodies in space, which sees the shared library only.
namespace works {

using namespace ZoPrimitives;

/// A shape of the application's own.
class Block : public ZoObjectStreamable, public I3DShape {
    REGISTER_ZO_BEGIN(Block)
    DECLARE_ZO_FIELD_CHILD_VALUE(T3DBox, box)
    REGISTER_ZO_END
    Block() = default;
    explicit Block(StreamableInit) {}

    double Volume() const override { return box.Volume(); }
    double SurfaceArea() const override { return Mesh(1).SurfaceArea(); }
    T3DBox BoundingBox() const override { return box; }
    double SignedDistance(const Point3D& point) const override { return Mesh(1).SignedDistance(point); }
    bool RayHit(const Point3D& origin, const TVector3D& direction, T3DHit& hit) const override {
        return Mesh(1).RayHit(origin, direction, hit);
    }
    T3DMesh Mesh(double chordError) const override {
        const TRegion plan(TContour::Rectangle(RRect({box.X1(), box.Y1()}, {box.X2(), box.Y2()})));
        return TExtrusionPath(plan, {{0, 0, box.Z1()}, {0, 0, box.Z2()}}).Mesh(chordError);
    }
};

class Joint : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Joint)
    DECLARE_ZO_FIELD_CHILD_VALUE(TTransformation, place)
    DECLARE_ZO_FIELD_CHILD_VALUE(FloatMatrix, stiffness)
    DECLARE_ZO_FIELD_CHILD_VALUE(TPlane3D, level)
    DECLARE_ZO_FIELD_CHILD_VALUE(T3DSegment, axis)
    DECLARE_ZO_FIELD_CHILD_VALUE(T3DMesh, hull)
    DECLARE_ZO_FIELD_CHILD_LIST(ZoObjectStreamable, shapes)
    REGISTER_ZO_END
};

TEST(SpaceTests, BodiesAreSavedAndOpenedAsMembers) {
    TZoMetaData schema;
    ZoRegisterPoints(&schema);
    ZoRegisterGeometry(&schema);
    Block::Register(&schema);
    Joint::Register(&schema);
    ZoString report;
    EXPECT_TRUE(schema.Check(&report)) << report.c_str();

    Joint joint;
    joint.place = TTransformation::Translation(1, 2, 3);
    joint.stiffness = {{2, -1}, {-1, 2}};
    joint.level = TPlane3D({0, 0, 3}, {0, 0, 1});
    joint.axis = T3DSegment({0, 0, 0}, {0, 0, 3});
    auto* column = new T3DCylinder({0, 0, 0}, {0, 0, 30}, 2);
    TRegion tube(TContour(TCircle2D({0, 0}, 2)));
    tube.AddHole(TContour(TCircle2D({0, 0}, 1)));
    auto* rail = new TExtrusionPath(tube, {{0, 0, 0}, {0, 0, 30}, {40, 0, 30}});
    auto* block = new Block;
    block->box = T3DBox({0, 0, 0}, {1, 2, 3});
    joint.hull = column->Mesh(0.1);
    joint.shapes.Add(column);
    joint.shapes.Add(rail);
    joint.shapes.Add(block);

    const Testing::TemporaryFolder folder;
    ZoSave(folder.Path("joint.zo"), &joint, &schema);
    const pointer<Joint> read = ZoOpen<Joint>(folder.Path("joint.zo"), &schema).GetRoot();
    EXPECT_TRUE(read->place == joint.place && read->stiffness == joint.stiffness &&
                read->level == joint.level && read->axis == joint.axis && read->hull == joint.hull);
    ASSERT_EQ(read->shapes.NItems(), 3u);
    for (unsigned long long i = 1; i <= 3; ++i) {
        const auto& shape = dynamic_cast<const I3DShape&>(*joint.shapes[i]);
        const auto& other = dynamic_cast<const I3DShape&>(*read->shapes[i]);
        EXPECT_EQ(other.Volume(), shape.Volume());
        EXPECT_EQ(other.BoundingBox(), shape.BoundingBox());
        EXPECT_TRUE(other.Mesh(0.1) == shape.Mesh(0.1) && other.Mesh(0.1).IsClosed());
    }
    EXPECT_NEAR(rail->Volume(), 3 * std::acos(-1) * 70, 1e-9);
    T3DHit hit;
    EXPECT_TRUE(block->RayHit({0.5, 1, 9}, {0, 0, -1}, hit) && hit.distance == 6 &&
                block->Locate({0.5, 1, 3}) == OnBorder);
}

} // namespace works
