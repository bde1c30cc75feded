#pragma once

#include "ZoPrimitives/Point2D.h"

#include <initializer_list>
#include <vector>

namespace ZoPrimitives {

/// A matrix of doubles of any size; one without rows has no columns. Rows and columns count from 1. Indices
/// and sizes that do not fit are asserted. Compares exactly.
///
/// A matrix is singular if elimination meets no pivot, if `Condition` says that rounding alone (2^-52) could
/// make it so, or if an element is not finite. Rows and columns may be in units of any size: they are scaled
/// by powers of two first.
///
/// Streamed as the fields "rows", "columns" and "elements", a list of doubles row by row. A list of another
/// length is refused.
class ZO_API FloatMatrix : public ZoObjectStreamable {
public:
    /// Without rows.
    FloatMatrix();
    /// Of zeros.
    FloatMatrix(unsigned rows, unsigned columns);
    /// Row by row, all of one length.
    FloatMatrix(std::initializer_list<std::initializer_list<double>> rows);
    static FloatMatrix Identity(unsigned size);
    ZO_POINT_CLASS_(FloatMatrix)

    unsigned NRows() const { return rows; }
    unsigned NColumns() const { return columns; }
    double Element(unsigned row, unsigned column) const;
    void Element(unsigned row, unsigned column, double value);

    FloatMatrix operator+(const FloatMatrix& other) const;
    FloatMatrix operator-(const FloatMatrix& other) const;
    FloatMatrix operator*(const FloatMatrix& right) const;
    FloatMatrix operator*(double factor) const;
    FloatMatrix Transposed() const;

    // Of square matrices.

    /// 1 without rows. Infinite or 0 where doubles do not reach; NaN if an element is not finite.
    double Determinant() const;
    /// How many times a relative error grows from the elements to the solution, at most: the product of the
    /// largest column sums of the scaled matrix and of its inverse. Estimated from below, seldom less than a
    /// third of it. Infinite if elimination meets no pivot or an element is not finite; 1 without rows.
    double Condition() const;
    /// Solves this * solution = right, for each column of `right`, which has as many rows. False, with
    /// `solution` unchanged, if this is singular.
    [[nodiscard]] bool Solve(const FloatMatrix& right, FloatMatrix& solution) const;
    /// False, with `inverse` unchanged, if this is singular.
    [[nodiscard]] bool Invert(FloatMatrix& inverse) const;

    bool operator==(const FloatMatrix& other) const;
    bool operator!=(const FloatMatrix& other) const { return !(*this == other); }
    using ZoObject::operator!=;
    /// False when `other` is not a matrix.
    bool operator==(const ZoObject& other) const override;

    /// False when the list in the record has not one number for each element.
    bool OnRead(TBinInStream* stream, bool substituted) override;
    /// Writes the codes 70 and 71 before the numbers of rows and columns, and 40 before each element.
    void Write(OutputStreamer& streamer) override;
    /// Throws `XInvalidObject` if there is not one number for each element.
    void Read(InputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;

private:
    bool Fits() const;

    unsigned rows = 0;
    unsigned columns = 0;
    std::vector<double> elements; // row by row
};

} // namespace ZoPrimitives
