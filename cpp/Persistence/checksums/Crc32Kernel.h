#pragma once

#include <cstddef>
#include <cstdint>

namespace ZoPrimitives {

/// The kernels behind `Crc32Update`. All take and return the plain register, without inversion.
struct Crc32Kernels {
    using Kernel = std::uint32_t (*)(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;

    static std::uint32_t Tables(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;
    /// Multiplies 16 bytes at a time without carries; null if the processor cannot.
    static Kernel Folding() noexcept;
    /// As `Folding`, 64 bytes at a time, in assembly; null if the processor or the compiler does not support
    /// it.
    static Kernel WideFolding() noexcept;
};

/// Feeds `size` bytes into a CRC-32 register, which starts at 0xFFFFFFFF and is inverted at the very end.
/// `data` may be null when `size` is 0. The first call picks the processor's fastest kernel.
std::uint32_t Crc32Update(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;

} // namespace ZoPrimitives
