#include "ZoPrimitives/TTransformation.h"

#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/TVector3D.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace ZoPrimitives {

ZO_POINT_BODY(TTransformation)

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
