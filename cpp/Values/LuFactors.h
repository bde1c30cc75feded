#pragma once

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// A square matrix in triangular factors, by elimination with partial pivoting, after its rows and columns
/// were scaled by powers of two so that the largest of each is about 1.
class LuFactors {
public:
    /// `elements`, row by row, are `size` * `size`.
    LuFactors(std::vector<double> elements, std::size_t size);

    /// Infinite if there is no pivot.
    double Condition() const;
    bool IsSingular() const;
    double Determinant() const;
    /// Replaces a right-hand side by the solution. The matrix has pivots.
    void Solve(double* side) const;

private:
    void Scale();
    void Eliminate();
    void SolveScaled(std::vector<double>& side) const;
    void SolveTransposed(std::vector<double>& side) const;
    double& At(std::size_t row, std::size_t column) { return elements[row * size + column]; }
    double At(std::size_t row, std::size_t column) const { return elements[row * size + column]; }

    std::size_t size;
    std::vector<double> elements;   // below the diagonal the left factor, whose diagonal is 1
    std::vector<int> rowScales;     // exponents
    std::vector<int> columnScales;  // exponents
    std::vector<std::size_t> order; // order[i]: which row of the matrix is in row i of the factors
    double norm = 0;                // the largest column sum of the scaled matrix
    bool odd = false;               // whether the order is an odd permutation
    bool finite = true;
    bool pivots = true;
};

} // namespace ZoPrimitives
