#include "ZoPrimitives/FloatMatrix.h"

#include "Values/LuFactors.h"
#include "Values/NumberFields.h"
#include "Values/PointClass.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Values/FloatMatrix";

std::size_t Size(const FloatMatrix& matrix) { return matrix.NRows(); }

} // namespace

ZO_POINT_BODY(FloatMatrix)

TZoClass* FloatMatrix::Register(TZoMetaData* schema) {
    return RegisterPoint<FloatMatrix>(
        schema, "FloatMatrix", "NULL",
        {{NumberFieldClass<ftUnsigned>,
          [](TZoClass* owner, TZoClass*, const ZoString&) {
              return AddUnsigned<FloatMatrix, &FloatMatrix::rows>(owner, "rows");
          }},
         {NumberFieldClass<ftUnsigned>,
          [](TZoClass* owner, TZoClass*, const ZoString&) {
              return AddUnsigned<FloatMatrix, &FloatMatrix::columns>(owner, "columns");
          }},
         {NumberFieldClass<ftListDouble>, [](TZoClass* owner, TZoClass*, const ZoString&) {
              return owner->AddFieldListDouble("elements",
                                               NumbersOf<FloatMatrix, double, &FloatMatrix::elements>());
          }}});
}

FloatMatrix::FloatMatrix() = default;
FloatMatrix::FloatMatrix(StreamableInit init) : ZoObjectStreamable(init) {}
FloatMatrix::FloatMatrix(const FloatMatrix&) = default;
FloatMatrix& FloatMatrix::operator=(const FloatMatrix&) = default;

FloatMatrix::FloatMatrix(unsigned rowCount, unsigned columnCount) : rows(rowCount), columns(columnCount) {
    ZO_ASSERT((rows == 0) == (columns == 0), "rows and columns, or neither", SOURCE);
    elements.resize(std::size_t{rows} * columns);
}

FloatMatrix::FloatMatrix(std::initializer_list<std::initializer_list<double>> all)
    : FloatMatrix(static_cast<unsigned>(all.size()),
                  all.size() == 0 ? 0 : static_cast<unsigned>(all.begin()->size())) {
    auto next = elements.begin();
    for (const auto& row : all) {
        ZO_ASSERT(row.size() == columns, "rows of one length", SOURCE);
        next = std::copy(row.begin(), row.end(), next);
    }
}

FloatMatrix FloatMatrix::Identity(unsigned size) {
    FloatMatrix identity(size, size);
    for (unsigned i = 1; i <= size; ++i) identity.Element(i, i, 1);
    return identity;
}

double FloatMatrix::Element(unsigned row, unsigned column) const {
    ZO_ASSERT(row - 1 < rows && column - 1 < columns, "row and column from 1 to those there are", SOURCE);
    return elements[std::size_t{row - 1} * columns + (column - 1)];
}

void FloatMatrix::Element(unsigned row, unsigned column, double value) {
    ZO_ASSERT(row - 1 < rows && column - 1 < columns, "row and column from 1 to those there are", SOURCE);
    elements[std::size_t{row - 1} * columns + (column - 1)] = value;
}

FloatMatrix FloatMatrix::operator+(const FloatMatrix& other) const {
    ZO_ASSERT(rows == other.rows && columns == other.columns, "matrices of one size", SOURCE);
    FloatMatrix sum(*this);
    std::transform(elements.begin(), elements.end(), other.elements.begin(), sum.elements.begin(),
                   std::plus<>());
    return sum;
}

FloatMatrix FloatMatrix::operator-(const FloatMatrix& other) const { return *this + other * -1; }

FloatMatrix FloatMatrix::operator*(const FloatMatrix& right) const {
    ZO_ASSERT(columns == right.rows, "as many columns as the right one has rows", SOURCE);
    FloatMatrix product(rows, right.columns);
    for (std::size_t row = 0; row < rows; ++row) {
        double* const target = product.elements.data() + row * right.columns;
        for (std::size_t i = 0; i < columns; ++i) {
            const double factor = elements[row * columns + i];
            const double* const source = right.elements.data() + i * right.columns;
            for (std::size_t column = 0; column < right.columns; ++column)
                target[column] += factor * source[column];
        }
    }
    return product;
}

FloatMatrix FloatMatrix::operator*(double factor) const {
    FloatMatrix product(*this);
    for (double& element : product.elements) element *= factor;
    return product;
}

FloatMatrix FloatMatrix::Transposed() const {
    FloatMatrix transposed(columns, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column)
            transposed.elements[column * rows + row] = elements[row * columns + column];
    }
    return transposed;
}

double FloatMatrix::Determinant() const {
    ZO_ASSERT(rows == columns, "a square matrix", SOURCE);
    return LuFactors(elements, rows).Determinant();
}

double FloatMatrix::Condition() const {
    ZO_ASSERT(rows == columns, "a square matrix", SOURCE);
    return LuFactors(elements, rows).Condition();
}

bool FloatMatrix::Solve(const FloatMatrix& right, FloatMatrix& solution) const {
    ZO_ASSERT(rows == columns, "a square matrix", SOURCE);
    ZO_ASSERT(rows == right.rows, "as many rows on the right", SOURCE);
    const LuFactors factors(elements, rows);
    if (factors.IsSingular()) return false;
    FloatMatrix sides = right.Transposed(); // a row each
    for (std::size_t i = 0; i < Size(sides); ++i) factors.Solve(sides.elements.data() + i * rows);
    solution = sides.Transposed();
    return true;
}

bool FloatMatrix::Invert(FloatMatrix& inverse) const { return Solve(Identity(rows), inverse); }

bool FloatMatrix::operator==(const FloatMatrix& other) const {
    return rows == other.rows && columns == other.columns && elements == other.elements;
}
bool FloatMatrix::operator==(const ZoObject& other) const {
    const auto* matrix = dynamic_cast<const FloatMatrix*>(&other);
    return matrix != nullptr && *this == *matrix;
}

bool FloatMatrix::Fits() const {
    return (rows == 0) == (columns == 0) && elements.size() == 1ULL * rows * columns;
}

bool FloatMatrix::OnRead(TBinInStream* stream, bool substituted) {
    return ZoObjectStreamable::OnRead(stream, substituted) && Fits();
}

void FloatMatrix::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << 70 << rows << 71 << columns;
    for (const double element : elements) streamer << 40 << element;
}

void FloatMatrix::Read(InputStreamer& streamer) {
    rows = columns = 0;
    elements.clear();
    ZoObjectStreamable::Read(streamer);
    if (Fits()) return;
    *this = FloatMatrix();
    throw XInvalidObject();
}

bool FloatMatrix::ReadData(int code, InputStreamer& streamer) {
    if (code == 70) {
        streamer >> rows;
    } else if (code == 71) {
        streamer >> columns;
    } else if (code == 40) {
        double value = 0;
        streamer >> value;
        elements.push_back(value);
    } else {
        return ZoObjectStreamable::ReadData(code, streamer);
    }
    return true;
}

} // namespace ZoPrimitives
