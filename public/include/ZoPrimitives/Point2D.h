#pragma once

#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/ZoRegister.h"

namespace ZoPrimitives {

// A private coordinate of a point, streamed through the virtual accessors, so that a class that overrides
// them saves what they return. For objects of exactly this class streamers access the member directly.
#define ZO_COORDINATE_(Class, field, Accessor)                                                               \
private:                                                                                                     \
    double field##Value = 0;                                                                                 \
                                                                                                             \
public:                                                                                                      \
    static void Set##field(ZoStreamableBase* object, TZoClassField*, double value) {                         \
        ZoSelf<Class>(object).Accessor(value);                                                               \
    }                                                                                                        \
    static double Get##field(ZoStreamableBase* object, TZoClassField*) {                                     \
        return ZoSelf<Class>(object).Accessor();                                                             \
    }                                                                                                        \
    static void* Member##field(ZoStreamableBase* object) {                                                   \
        return typeid(*object) == typeid(Class) ? &ZoSelf<Class>(object).field##Value : nullptr;             \
    }                                                                                                        \
    static ZoString Getfieldclassfor_##field(TZoMetaData* schema, TZoClass** fieldClass,                     \
                                             TZoClassFieldType* kind) {                                      \
        return ZoFieldClass(schema, fieldClass, kind, "double", ftDouble);                                   \
    }                                                                                                        \
    static TZoClassField* Addfieldfor_##field(TZoClass* owner, TZoClass*, const ZoString&) {                 \
        TZoClassField* newField = owner->AddFieldDouble(#field, Set##field, Get##field);                     \
        newField->SetMember(Member##field);                                                                  \
        return newField;                                                                                     \
    }

// What every point and vector declares to be streamed, under its plain class name.
#define ZO_POINT_CLASS_(Class)                                                                               \
    explicit Class(StreamableInit init);                                                                     \
    Class(const Class& other);                                                                               \
    Class& operator=(const Class& other);                                                                    \
    ~Class() override;                                                                                       \
    static TZoClass* Register(TZoMetaData* schema);                                                          \
    static void Unregister(TZoMetaData* schema);                                                             \
    TZoClass* GetClass() const override;                                                                     \
    TZoClass* GetOriginalClass(TZoMetaData* schema) const override;                                          \
    ZoString StreamableClassName() const override;

/// The quadrants of the plane; see `Point2D::Quadrant`.
enum TQuadrant : int { FirstQuadrant = 1, SecondQuadrant, ThirdQuadrant, FourthQuadrant };

/// A point of the plane. Operators compare exactly; `Equal` and `Less` compare within a tolerance, as in
/// Math2.h. Members that change the point return it.
class ZO_API Point2D : public ZoObjectStreamable {
public:
    /// The origin.
    Point2D();
    Point2D(double x, double y);
    ZO_POINT_CLASS_(Point2D)

    double X() const { return xValue; }
    double Y() const { return yValue; }
    void X(double value) { xValue = value; }
    void Y(double value) { yValue = value; }

    virtual bool operator==(const Point2D& other) const;
    bool operator!=(const Point2D& other) const;
    using ZoObject::operator!=;
    /// False when `other` is not a `Point2D`.
    bool operator==(const ZoObject& other) const override;
    // Compare by x, then by y. A NaN is neither equal nor less, so `>` and `>=` hold.
    bool operator<(const Point2D& other) const;
    bool operator<=(const Point2D& other) const;
    bool operator>(const Point2D& other) const;
    bool operator>=(const Point2D& other) const;

    Point2D operator+(const Point2D& other) const;
    Point2D operator-(const Point2D& other) const;
    Point2D operator*(double factor) const;
    Point2D operator/(double divisor) const;

    bool Equal(const Point2D& other, unsigned precision) const;
    /// Compares by x, then, if these are equal, by y.
    bool Less(const Point2D& other, unsigned precision) const;
    /// The larger of the two by `Less`; `other` if neither is less.
    Point2D Major(const Point2D& other, unsigned precision) const;
    /// The smaller of the two by `Less`; `other` if neither is less.
    Point2D Minor(const Point2D& other, unsigned precision) const;

    double Distance(const Point2D& other) const;
    Point2D& Move(double dx, double dy);
    /// Rotates counter-clockwise about the origin, in radians.
    Point2D& Rotate(double angle);
    Point2D& Rotate(double angle, const Point2D& centre);
    /// Divides the distance from the centre by the factor, then rounds the coordinates to 3 decimals
    /// (`ExRound`). A factor of 0 gives NaN.
    Point2D& Scale(const Point2D& centre, double factor);
    /// The point at `distance` from this one towards the other, or beyond it; this point if they are less
    /// than 10^-6 apart.
    Point2D InterpolaPonto(const Point2D& other, double distance) const;
    /// The origin and the positive half-axes belong to the first quadrant, the negative half-axes to the
    /// third.
    TQuadrant Quadrant(unsigned precision) const;
    /// Whether this point is `Equal` to the nearest point of the segment: an end, or a + v t with t = u·v /
    /// v·v between 0 and 1, where u runs from a to this point and v from a to b.
    bool IsInSegment(const Point2D& a, const Point2D& b, unsigned precision = 6) const;

    /// "x:1.000000 | y:2.000000".
    ZoString ToString() const override;

    /// Writes the codes 10 and 20 before the coordinates.
    void Write(OutputStreamer& streamer) override;

    ZO_COORDINATE_(Point2D, x, X)
    ZO_COORDINATE_(Point2D, y, Y)

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

/// Registers `Point2D`, `TVector2D`, `Point3D`, `TVector3D` and `TTransformation`.
ZO_API void ZoRegisterPoints(TZoMetaData* schema);

} // namespace ZoPrimitives
