#pragma once

#include <cstddef>
#include <cstdint>

// Shared by the folding kernels: arithmetic of polynomials modulo 2, reflected: bit 31 (or 63) is the
// coefficient of x^0.

namespace ZoPrimitives::Crc32Folding {

constexpr std::uint32_t polynomial = 0xEDB88320; // the term x^32 is implied

/// x^degree modulo the polynomial, reflected.
constexpr std::uint32_t PowerOfX(unsigned degree) {
    std::uint32_t value = 0x80000000;
    for (; degree > 0; --degree) value = (value >> 1) ^ ((value & 1) != 0 ? polynomial : 0);
    return value;
}

/// The inverse of the 33-bit polynomial as a power series, its first 64 coefficients. Multiplying the leading
/// 64 coefficients of a remainder by it gives the quotient that cancels them.
constexpr std::uint64_t Inverse() {
    std::uint64_t inverse = 0, rest = 1;
    for (unsigned i = 0; i < 64; ++i)
        if ((rest >> i & 1) != 0) {
            inverse |= std::uint64_t{1} << i;
            rest ^= (std::uint64_t{polynomial} << 1 | 1) << i;
        }
    return inverse;
}

/// The factors that move the two halves of a block over `Blocks` blocks of 16 bytes. A product of reflected
/// factors is one bit too low, hence the shift.
template <unsigned Blocks>
struct Carry {
    static constexpr std::uint64_t low = std::uint64_t{PowerOfX(128 * Blocks + 32)} << 1;
    static constexpr std::uint64_t high = std::uint64_t{PowerOfX(128 * Blocks - 32)} << 1;
};
static_assert(Carry<1>::low == 0x1751997d0 && Carry<1>::high == 0x0ccaa009e);
static_assert(Carry<4>::low == 0x154442bd4 && Carry<4>::high == 0x1c6e41596);

/// Folds 16 bytes at a time. Requires carry-less multiplication.
std::uint32_t FoldBlocks(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;

} // namespace ZoPrimitives::Crc32Folding
