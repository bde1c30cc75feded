#pragma once

#include "ZoPrimitives/ZoRegister.h"

namespace ZoPrimitives {

struct TTransformationParts;

/// A transformation of space: a 4x4 matrix M that maps a point, as the column (x, y, z, 1), to M (x, y, z,
/// 1). The translation is in the last column. If the fourth coordinate w of a result is neither 1 nor 0, the
/// others are divided by it.
///
/// Streamed as the field "matrix", a list of 16 doubles row by row. Of a longer list the first 16 count;
/// missing elements are those of the identity.
class ZO_API TTransformation : public ZoObjectStreamable {
public:
    /// The identity.
    TTransformation();
    explicit TTransformation(StreamableInit init);
    TTransformation(const TTransformation& other);
    TTransformation& operator=(const TTransformation& other);
    ~TTransformation() override;

    static TTransformation Translation(double x, double y, double z);
    static TTransformation Scaling(double x, double y, double z);
    /// Rotates by `angle` radians about the axis through the origin in the direction (x, y, z), of any
    /// length: counter-clockwise as seen by an observer at whom the axis points. The identity for length 0.
    static TTransformation Rotation(double angle, double x, double y, double z);

    /// Rows and columns count from 1 to 4; this is asserted.
    double Element(unsigned row, unsigned column) const;
    void Element(unsigned row, unsigned column, double value);
    /// Applies `right` first, then this transformation.
    TTransformation operator*(const TTransformation& right) const;
    /// Negative for a mirror image.
    double Determinant() const;
    /// False, with `inverse` unchanged, for a transformation that flattens space: whose matrix is singular,
    /// as `FloatMatrix` says.
    [[nodiscard]] bool Invert(TTransformation& inverse) const;
    /// False, with `parts` unchanged, for a transformation that flattens space, or whose last row is not (0,
    /// 0, 0, 1).
    [[nodiscard]] bool Decompose(TTransformationParts& parts) const;

    void TransformPoint(double& x, double& y, double& z) const;
    /// Applies no translation.
    void TransformDirection(double& x, double& y, double& z) const;

    bool operator==(const TTransformation& other) const;
    bool operator!=(const TTransformation& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a transformation.
    bool operator==(const ZoObject& other) const override;

    static TZoClass* Register(TZoMetaData* schema);
    static void Unregister(TZoMetaData* schema);
    TZoClass* GetClass() const override;
    TZoClass* GetOriginalClass(TZoMetaData* schema) const override;
    ZoString StreamableClassName() const override;

    /// Writes the code 40 before each of the 16 elements, row by row.
    void Write(OutputStreamer& streamer) override;
    void Read(InputStreamer& streamer) override;

    static ZoString Getfieldclassfor_matrix(TZoMetaData* schema, TZoClass** fieldClass,
                                            TZoClassFieldType* kind);
    static TZoClassField* Addfieldfor_matrix(TZoClass* owner, TZoClass* fieldClass, const ZoString& typeName);
    static void Addmatrix(ZoStreamableBase* object, TZoClassField* field, double value);
    static double ElementAtmatrix(ZoStreamableBase* object, TZoClassField* field, int index);
    static unsigned long long NItemsmatrix(ZoStreamableBase* object, TZoClassField* field);
    static void CreateList_matrix(ZoStreamableBase* object, int count, int first, int second);

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    void SetIdentity();
    void Append(double value);

    double matrix[4][4]; // [row][column]
    unsigned read = 0;   // number of elements that a reader has added
};

} // namespace ZoPrimitives
