#include "ZoPrimitives/TTransformation.h"

#include "Values/PointClass.h"
#include "ZoPrimitives/FloatMatrix.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/TTransformationParts.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace ZoPrimitives {

ZO_POINT_BODY(TTransformation)

namespace {

/// The first rows and columns.
FloatMatrix CornerOf(const TTransformation& transformation, unsigned size) {
    FloatMatrix corner(size, size);
    for (unsigned row = 1; row <= size; ++row) {
        for (unsigned column = 1; column <= size; ++column)
            corner.Element(row, column, transformation.Element(row, column));
    }
    return corner;
}

bool IsAffine(const TTransformation& t) {
    return t.Element(4, 1) == 0 && t.Element(4, 2) == 0 && t.Element(4, 3) == 0 && t.Element(4, 4) == 1;
}

TVector3D ColumnOf(const TTransformation& t, unsigned column) {
    return {t.Element(1, column), t.Element(2, column), t.Element(3, column)};
}

void SetColumn(TTransformation& t, unsigned column, const TVector3D& v) {
    t.Element(1, column, v.X());
    t.Element(2, column, v.Y());
    t.Element(3, column, v.Z());
}

/// Sets axis and angle of a rotation from its quaternion, whose largest part is found first: the others
/// follow without loss.
void SetAxisAndAngle(TTransformationParts& parts) {
    const auto e = [&](unsigned row, unsigned column) { return parts.rotation.Element(row, column); };
    const double squares[] = {1 + e(1, 1) + e(2, 2) + e(3, 3), 1 + e(1, 1) - e(2, 2) - e(3, 3),
                              1 - e(1, 1) + e(2, 2) - e(3, 3), 1 - e(1, 1) - e(2, 2) + e(3, 3)};
    const double x = e(3, 2) - e(2, 3), y = e(1, 3) - e(3, 1), z = e(2, 1) - e(1, 2);
    const double xy = e(2, 1) + e(1, 2), xz = e(1, 3) + e(3, 1), yz = e(3, 2) + e(2, 3);
    const double rows[4][4] = {
        {squares[0], x, y, z}, {x, squares[1], xy, xz}, {y, xy, squares[2], yz}, {z, xz, yz, squares[3]}};
    const double* q = rows[std::max_element(std::begin(squares), std::end(squares)) - std::begin(squares)];
    const TVector3D part(q[1], q[2], q[3]);
    parts.angle = 2 * std::atan2(part.Magnitude(), std::abs(q[0]));
    if (part.Magnitude() > 0) parts.axis = part.Normalized() * (q[0] < 0 ? -1 : 1);
}

} // namespace

TZoClass* TTransformation::Register(TZoMetaData* schema) {
    return RegisterPoint<TTransformation>(schema, "TTransformation", "NULL",
                                          {{Getfieldclassfor_matrix, Addfieldfor_matrix}});
}

TTransformation::TTransformation() { SetIdentity(); }
TTransformation::TTransformation(StreamableInit init) : ZoObjectStreamable(init) { SetIdentity(); }
TTransformation::TTransformation(const TTransformation&) = default;
TTransformation& TTransformation::operator=(const TTransformation&) = default;

TTransformation TTransformation::Translation(double x, double y, double z) {
    TTransformation result;
    result.matrix[0][3] = x;
    result.matrix[1][3] = y;
    result.matrix[2][3] = z;
    return result;
}

TTransformation TTransformation::Scaling(double x, double y, double z) {
    TTransformation result;
    result.matrix[0][0] = x;
    result.matrix[1][1] = y;
    result.matrix[2][2] = z;
    return result;
}

TTransformation TTransformation::Rotation(double angle, double x, double y, double z) {
    TTransformation result;
    const TVector3D direction = TVector3D(x, y, z).Normalized();
    if (direction.Magnitude() == 0) return result;
    const double axis[3] = {direction.X(), direction.Y(), direction.Z()};
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (int i = 0; i < 3; ++i) {
        const int next = (i + 1) % 3;
        const int last = (i + 2) % 3;
        result.matrix[i][i] = cosine + axis[i] * axis[i] * (1 - cosine);
        result.matrix[i][next] = axis[i] * axis[next] * (1 - cosine) - axis[last] * sine;
        result.matrix[i][last] = axis[i] * axis[last] * (1 - cosine) + axis[next] * sine;
    }
    return result;
}

double TTransformation::Element(unsigned row, unsigned column) const {
    ZO_ASSERT(row - 1 < 4 && column - 1 < 4, "row and column from 1 to 4", ZoSources::TTRANSFORMATION);
    return matrix[row - 1][column - 1];
}

void TTransformation::Element(unsigned row, unsigned column, double value) {
    ZO_ASSERT(row - 1 < 4 && column - 1 < 4, "row and column from 1 to 4", ZoSources::TTRANSFORMATION);
    matrix[row - 1][column - 1] = value;
}

TTransformation TTransformation::operator*(const TTransformation& right) const {
    TTransformation product;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int i = 0; i < 4; ++i) sum += matrix[row][i] * right.matrix[i][column];
            product.matrix[row][column] = sum;
        }
    }
    return product;
}

double TTransformation::Determinant() const { return CornerOf(*this, IsAffine(*this) ? 3 : 4).Determinant(); }

bool TTransformation::Invert(TTransformation& inverse) const {
    const unsigned size = IsAffine(*this) ? 3 : 4;
    FloatMatrix inverted;
    if (!CornerOf(*this, size).Invert(inverted)) return false;
    TTransformation result;
    for (unsigned row = 1; row <= size; ++row) {
        for (unsigned column = 1; column <= size; ++column)
            result.Element(row, column, inverted.Element(row, column));
    }
    if (size == 3) {
        TVector3D back = -ColumnOf(*this, 4);
        SetColumn(result, 4, back.Transform(result));
    }
    inverse = result;
    return true;
}

bool TTransformation::Decompose(TTransformationParts& parts) const {
    FloatMatrix unused;
    if (!IsAffine(*this) || !CornerOf(*this, 3).Invert(unused)) return false;
    // Orthogonalises the columns, each twice, which is enough for the remainder of a cancellation.
    TTransformationParts found;
    TVector3D axes[3];
    double along[3][3] = {};
    for (unsigned column = 0; column < 3; ++column) {
        const TVector3D image = ColumnOf(*this, column + 1);
        TVector3D rest = image;
        for (int pass = 0; pass < 2; ++pass) {
            for (unsigned i = 0; i < column; ++i) {
                const double part = axes[i].DotProduct(rest);
                along[i][column] += part;
                rest = rest - axes[i] * part;
            }
        }
        along[column][column] = rest.Magnitude();
        axes[column] = rest.Normalized();
    }
    if (axes[0].CrossProduct(axes[1]).DotProduct(axes[2]) < 0) {
        const double diagonal[] = {axes[0].X(), axes[1].Y(), axes[2].Z()};
        const auto mirrored =
            std::min_element(std::begin(diagonal), std::end(diagonal)) - std::begin(diagonal);
        axes[mirrored] = -axes[mirrored];
        for (double& element : along[mirrored]) element = -element;
    }
    for (unsigned column = 1; column <= 3; ++column) {
        SetColumn(found.rotation, column, axes[column - 1]);
        const double factor = along[column - 1][column - 1];
        found.scaling.Element(column, column, factor);
        for (unsigned row = 1; row < column; ++row)
            found.shear.Element(row, column, along[row - 1][column - 1] / factor);
    }
    SetColumn(found.translation, 4, ColumnOf(*this, 4));
    SetAxisAndAngle(found);
    parts = found;
    return true;
}

void TTransformation::TransformPoint(double& x, double& y, double& z) const {
    double result[4];
    for (int i = 0; i < 4; ++i) {
        result[i] = matrix[i][0] * x + matrix[i][1] * y + matrix[i][2] * z + matrix[i][3];
    }
    const double w = result[3] == 0 ? 1 : result[3];
    x = result[0] / w;
    y = result[1] / w;
    z = result[2] / w;
}

void TTransformation::TransformDirection(double& x, double& y, double& z) const {
    double result[3];
    for (int i = 0; i < 3; ++i) result[i] = matrix[i][0] * x + matrix[i][1] * y + matrix[i][2] * z;
    x = result[0];
    y = result[1];
    z = result[2];
}

bool TTransformation::operator==(const TTransformation& other) const {
    return std::equal(&matrix[0][0], &matrix[0][0] + 16, &other.matrix[0][0]);
}

bool TTransformation::operator==(const ZoObject& other) const {
    const auto* transformation = dynamic_cast<const TTransformation*>(&other);
    return transformation != nullptr && *this == *transformation;
}

void TTransformation::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    for (const auto& row : matrix) {
        for (const double element : row) streamer << 40 << element;
    }
}

void TTransformation::Read(InputStreamer& streamer) {
    CreateList_matrix(this, 0, 0, 0);
    ZoObjectStreamable::Read(streamer);
}

bool TTransformation::ReadData(int code, InputStreamer& streamer) {
    if (code != 40) return ZoObjectStreamable::ReadData(code, streamer);
    double value = 0;
    streamer >> value;
    Append(value);
    return true;
}

ZoString TTransformation::Getfieldclassfor_matrix(TZoMetaData* schema, TZoClass** fieldClass,
                                                  TZoClassFieldType* kind) {
    return ZoFieldClass(schema, fieldClass, kind, "list<double>", ftListDouble);
}

TZoClassField* TTransformation::Addfieldfor_matrix(TZoClass* owner, TZoClass*, const ZoString&) {
    return owner->AddFieldListDouble(
        "matrix", {Addmatrix, ElementAtmatrix, NItemsmatrix, CreateList_matrix, nullptr, nullptr});
}

void TTransformation::Addmatrix(ZoStreamableBase* object, TZoClassField*, double value) {
    ZoSelf<TTransformation>(object).Append(value);
}

double TTransformation::ElementAtmatrix(ZoStreamableBase* object, TZoClassField*, int index) {
    const auto i = static_cast<unsigned>(index) - 1;
    return ZoSelf<TTransformation>(object).Element(i / 4 + 1, i % 4 + 1);
}

unsigned long long TTransformation::NItemsmatrix(ZoStreamableBase*, TZoClassField*) { return 16; }

void TTransformation::CreateList_matrix(ZoStreamableBase* object, int, int, int) {
    auto& self = ZoSelf<TTransformation>(object);
    self.SetIdentity();
    self.read = 0;
}

void TTransformation::SetIdentity() {
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) matrix[row][column] = row == column ? 1 : 0;
    }
}

void TTransformation::Append(double value) {
    if (read == 16) return;
    matrix[read / 4][read % 4] = value;
    ++read;
}

} // namespace ZoPrimitives
