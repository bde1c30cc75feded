#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZoPrimitives {

/// A number m 2^e of any size: sums and products of finite doubles without rounding. Slow; for what a filter
/// in doubles leaves undecided.
class Dyadic {
public:
    Dyadic() = default;
    /// `value` is finite.
    Dyadic(double value) : negative(std::signbit(value)) {
        if (value == 0) return;
        int exponent = 0;
        const auto mantissa =
            static_cast<std::uint64_t>(std::scalbn(std::frexp(std::abs(value), &exponent), 53));
        exponent -= 53;
        word = exponent >> 5;
        const int shift = exponent - word * 32;
        const std::uint64_t low = (mantissa & 0xFFFFFFFF) << shift;
        const std::uint64_t high = ((mantissa >> 32) << shift) + (low >> 32);
        limbs = {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(high),
                 static_cast<std::uint32_t>(high >> 32)};
        Trim();
    }

    /// -1, 0 or 1.
    int Sign() const { return limbs.empty() ? 0 : negative ? -1 : 1; }

    Dyadic operator-() const {
        Dyadic result = *this;
        result.negative = !negative;
        return result;
    }
    Dyadic operator+(const Dyadic& other) const {
        if (limbs.empty()) return other;
        if (other.limbs.empty()) return *this;
        const int lowest = std::min(word, other.word);
        const Dyadic a = WithLowest(lowest);
        const Dyadic b = other.WithLowest(lowest);
        if (a.negative == b.negative) return a.Plus(b);
        return a.MagnitudeLess(b) ? b.Minus(a) : a.Minus(b);
    }
    Dyadic operator-(const Dyadic& other) const { return *this + -other; }
    Dyadic operator*(const Dyadic& other) const {
        Dyadic result;
        if (limbs.empty() || other.limbs.empty()) return result;
        result.negative = negative != other.negative;
        result.word = word + other.word;
        result.limbs.assign(limbs.size() + other.limbs.size(), 0);
        for (std::size_t i = 0; i < limbs.size(); ++i) {
            std::uint64_t carry = 0;
            for (std::size_t j = 0; j < other.limbs.size(); ++j) {
                carry += static_cast<std::uint64_t>(limbs[i]) * other.limbs[j] + result.limbs[i + j];
                result.limbs[i + j] = static_cast<std::uint32_t>(carry);
                carry >>= 32;
            }
            result.limbs[i + other.limbs.size()] = static_cast<std::uint32_t>(carry);
        }
        result.Trim();
        return result;
    }

    /// The double nearest to numerator / denominator, which is not 0; halves go to the even one.
    static double Quotient(const Dyadic& numerator, const Dyadic& denominator) {
        if (numerator.limbs.empty()) return 0;
        Dyadic rest = numerator;
        rest.negative = false;
        Dyadic divisor = denominator;
        divisor.negative = false;
        int exponent = rest.Exponent() - divisor.Exponent();
        divisor = divisor * PowerOfTwo(exponent);
        if (rest.MagnitudeBelow(divisor)) {
            --exponent;
            divisor = divisor * PowerOfTwo(-1);
        }
        // Below the smallest normal number, fewer bits are left.
        const int bits = std::min(53, exponent + 1075);
        std::uint64_t quotient = 0;
        for (int bit = 0; bit < bits; ++bit) {
            quotient <<= 1;
            if (!rest.MagnitudeBelow(divisor)) {
                rest = rest - divisor;
                ++quotient;
            }
            divisor = divisor * PowerOfTwo(-1);
        }
        const int half = bits < 0 ? -1 : (rest - divisor).Sign();
        if (half > 0 || (half == 0 && quotient % 2 == 1)) ++quotient;
        const double result = std::scalbn(static_cast<double>(quotient), exponent - std::max(bits, 0) + 1);
        return numerator.negative == denominator.negative ? result : -result;
    }

private:
    static Dyadic PowerOfTwo(int exponent) {
        Dyadic result;
        result.word = exponent >> 5;
        result.limbs = {std::uint32_t{1} << (exponent - result.word * 32)};
        return result;
    }
    /// That of the highest bit.
    int Exponent() const {
        return (word + static_cast<int>(limbs.size()) - 1) * 32 +
               std::ilogb(static_cast<double>(limbs.back()));
    }
    bool MagnitudeBelow(const Dyadic& positive) const { return (*this - positive).Sign() < 0; }

    void Trim() {
        while (!limbs.empty() && limbs.back() == 0) limbs.pop_back();
        std::size_t zeros = 0;
        while (zeros < limbs.size() && limbs[zeros] == 0) ++zeros;
        limbs.erase(limbs.begin(), limbs.begin() + static_cast<std::ptrdiff_t>(zeros));
        word = limbs.empty() ? 0 : word + static_cast<int>(zeros);
    }
    Dyadic WithLowest(int lowest) const {
        Dyadic result = *this;
        result.limbs.insert(result.limbs.begin(), static_cast<std::size_t>(word - lowest), 0);
        result.word = lowest;
        return result;
    }
    // These three take numbers of the same lowest word.
    bool MagnitudeLess(const Dyadic& other) const {
        if (limbs.size() != other.limbs.size()) return limbs.size() < other.limbs.size();
        return std::lexicographical_compare(limbs.rbegin(), limbs.rend(), other.limbs.rbegin(),
                                            other.limbs.rend());
    }
    Dyadic Plus(const Dyadic& other) const {
        Dyadic sum = *this;
        sum.limbs.resize(std::max(limbs.size(), other.limbs.size()) + 1, 0);
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < sum.limbs.size(); ++i) {
            carry += sum.limbs[i];
            if (i < other.limbs.size()) carry += other.limbs[i];
            sum.limbs[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        sum.Trim();
        return sum;
    }
    /// The other's magnitude is not greater.
    Dyadic Minus(const Dyadic& other) const {
        Dyadic difference = *this;
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < difference.limbs.size(); ++i) {
            const std::uint64_t taken = borrow + (i < other.limbs.size() ? other.limbs[i] : 0);
            borrow = difference.limbs[i] < taken ? 1 : 0;
            difference.limbs[i] = static_cast<std::uint32_t>(difference.limbs[i] - taken);
        }
        difference.Trim();
        return difference;
    }

    // The magnitude is the sum of limbs[i] 2^(32 (word + i)), without zeros at either end; none for 0.
    std::vector<std::uint32_t> limbs;
    int word = 0;
    bool negative = false;
};

} // namespace ZoPrimitives
