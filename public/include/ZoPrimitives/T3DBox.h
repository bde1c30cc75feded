#pragma once

#include "ZoPrimitives/Point3D.h"

namespace ZoPrimitives {

/// An upright box in space, its surface included; a new one is empty. Compares exactly.
class ZO_API T3DBox : public ZoObjectStreamable {
public:
    /// Empty.
    T3DBox();
    /// Between two opposite corners.
    T3DBox(const Point3D& corner, const Point3D& opposite);
    ZO_POINT_CLASS_(T3DBox)

    bool IsEmpty() const { return !(x1Value <= x2Value && y1Value <= y2Value && z1Value <= z2Value); }
    // The least corner is (X1, Y1, Z1), the greatest (X2, Y2, Z2). The empty box has infinities there, the
    // greater first.
    double X1() const { return x1Value; }
    double Y1() const { return y1Value; }
    double Z1() const { return z1Value; }
    double X2() const { return x2Value; }
    double Y2() const { return y2Value; }
    double Z2() const { return z2Value; }
    void X1(double value) { x1Value = value; }
    void Y1(double value) { y1Value = value; }
    void Z1(double value) { z1Value = value; }
    void X2(double value) { x2Value = value; }
    void Y2(double value) { y2Value = value; }
    void Z2(double value) { z2Value = value; }
    /// 0 for the empty box.
    double Volume() const;
    Point3D Centre() const;

    /// Grows until it holds the point, or the other box.
    T3DBox& Add(const Point3D& point);
    T3DBox& Add(const T3DBox& other);
    bool Contains(const Point3D& point) const;
    /// Whether both have a point in common.
    bool Intersects(const T3DBox& other) const;

    /// All empty boxes are equal.
    bool operator==(const T3DBox& other) const;
    bool operator!=(const T3DBox& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a box.
    bool operator==(const ZoObject& other) const override;

    /// Writes the codes 10, 20, 30 and 11, 21, 31 before the coordinates of the corners.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(T3DBox, x1, X1)
    ZO_COORDINATE_(T3DBox, y1, Y1)
    ZO_COORDINATE_(T3DBox, z1, Z1)
    ZO_COORDINATE_(T3DBox, x2, X2)
    ZO_COORDINATE_(T3DBox, y2, Y2)
    ZO_COORDINATE_(T3DBox, z2, Z2)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

} // namespace ZoPrimitives
