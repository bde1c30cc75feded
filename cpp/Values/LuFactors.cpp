#include "Values/LuFactors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();

double SumOfMagnitudes(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0,
                           [](double sum, double value) { return sum + std::abs(value); });
}

} // namespace

LuFactors::LuFactors(std::vector<double> matrix, std::size_t count)
    : size(count), elements(std::move(matrix)), rowScales(count), columnScales(count), order(count) {
    std::iota(order.begin(), order.end(), std::size_t{0});
    finite = std::all_of(elements.begin(), elements.end(), [](double e) { return std::isfinite(e); });
    pivots = finite;
    if (!finite) return;
    Scale();
    for (std::size_t column = 0; column < size; ++column) {
        double sum = 0;
        for (std::size_t row = 0; row < size; ++row) sum += std::abs(At(row, column));
        norm = std::max(norm, sum);
    }
    Eliminate();
}

void LuFactors::Scale() {
    const auto scaleOf = [](double largest) { return largest > 0 ? -std::ilogb(largest) : 0; };
    for (std::size_t row = 0; row < size; ++row) {
        double largest = 0;
        for (std::size_t column = 0; column < size; ++column)
            largest = std::max(largest, std::abs(At(row, column)));
        rowScales[row] = scaleOf(largest);
        for (std::size_t column = 0; column < size; ++column)
            At(row, column) = std::scalbn(At(row, column), rowScales[row]);
    }
    for (std::size_t column = 0; column < size; ++column) {
        double largest = 0;
        for (std::size_t row = 0; row < size; ++row) largest = std::max(largest, std::abs(At(row, column)));
        columnScales[column] = scaleOf(largest);
        for (std::size_t row = 0; row < size; ++row)
            At(row, column) = std::scalbn(At(row, column), columnScales[column]);
    }
}

void LuFactors::Eliminate() {
    for (std::size_t step = 0; step < size; ++step) {
        std::size_t best = step;
        for (std::size_t row = step + 1; row < size; ++row)
            if (std::abs(At(row, step)) > std::abs(At(best, step))) best = row;
        if (At(best, step) == 0) {
            pivots = false;
            return;
        }
        if (best != step) {
            std::swap_ranges(&At(step, 0), &At(step, 0) + size, &At(best, 0));
            std::swap(order[step], order[best]);
            odd = !odd;
        }
        for (std::size_t row = step + 1; row < size; ++row) {
            const double factor = At(row, step) /= At(step, step);
            if (factor == 0) continue;
            for (std::size_t column = step + 1; column < size; ++column)
                At(row, column) -= factor * At(step, column);
        }
    }
}

void LuFactors::SolveScaled(std::vector<double>& side) const {
    std::vector<double> x(size);
    for (std::size_t row = 0; row < size; ++row) {
        double value = side[order[row]];
        for (std::size_t i = 0; i < row; ++i) value -= At(row, i) * x[i];
        x[row] = value;
    }
    for (std::size_t row = size; row-- > 0;) {
        for (std::size_t i = row + 1; i < size; ++i) x[row] -= At(row, i) * x[i];
        x[row] /= At(row, row);
    }
    side = std::move(x);
}

void LuFactors::SolveTransposed(std::vector<double>& side) const {
    for (std::size_t row = 0; row < size; ++row) {
        for (std::size_t i = 0; i < row; ++i) side[row] -= At(i, row) * side[i];
        side[row] /= At(row, row);
    }
    for (std::size_t row = size; row-- > 0;)
        for (std::size_t i = row + 1; i < size; ++i) side[row] -= At(i, row) * side[i];
    std::vector<double> x(size);
    for (std::size_t row = 0; row < size; ++row) x[order[row]] = side[row];
    side = std::move(x);
}

void LuFactors::Solve(double* side) const {
    std::vector<double> x(size);
    for (std::size_t i = 0; i < size; ++i) x[i] = std::scalbn(side[i], rowScales[i]);
    SolveScaled(x);
    for (std::size_t i = 0; i < size; ++i) side[i] = std::scalbn(x[i], columnScales[i]);
}

/// Hager's estimate of the inverse's norm, and Higham's second one beside it: climbs from column to column of
/// the inverse, to the one that the signs of the last result point to.
double LuFactors::Condition() const {
    if (!pivots) return INFINITE;
    if (size == 0) return 1;
    const auto count = static_cast<double>(size);
    double estimate = 0;
    std::vector<double> x(size, 1 / count);
    for (int round = 0; round < 5; ++round) {
        SolveScaled(x);
        const double sum = SumOfMagnitudes(x);
        if (!(sum > estimate)) break;
        estimate = sum;
        for (double& value : x) value = value < 0 ? -1 : 1;
        SolveTransposed(x);
        const auto largest = std::max_element(x.begin(), x.end(),
                                              [](double a, double b) { return std::abs(a) < std::abs(b); });
        const auto column = static_cast<std::size_t>(largest - x.begin());
        x.assign(size, 0);
        x[column] = 1;
    }
    for (std::size_t i = 0; i < size; ++i)
        x[i] = (i % 2 == 0 ? 1 : -1) * (1 + static_cast<double>(i) / std::max(1.0, count - 1));
    SolveScaled(x);
    estimate = std::max(estimate, 2 * SumOfMagnitudes(x) / (3 * count));
    return std::isnan(estimate) ? INFINITE : norm * estimate;
}

bool LuFactors::IsSingular() const { return !(Condition() * std::numeric_limits<double>::epsilon() < 1); }

double LuFactors::Determinant() const {
    if (!finite) return std::numeric_limits<double>::quiet_NaN();
    if (!pivots) return 0;
    double product = odd ? -1 : 1;
    long long exponent = 0;
    for (std::size_t i = 0; i < size; ++i) {
        int power = 0;
        product = std::frexp(product * At(i, i), &power);
        exponent += power - rowScales[i] - columnScales[i];
    }
    return std::scalbn(product, static_cast<int>(std::clamp(exponent, -4000LL, 4000LL)));
}

} // namespace ZoPrimitives
