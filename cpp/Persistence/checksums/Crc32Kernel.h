#pragma once

#include <cstddef>
#include <cstdint>

namespace ZoPrimitives {

/// The kernels behind `Crc32Update`. All take and give the plain register: neither end is inverted.
struct Crc32Kernels {
    using Kernel = std::uint32_t (*)(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;

    static std::uint32_t Tables(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;
    /// By carry-less multiplication of 16 bytes at a time; null where the processor has none.
    static Kernel Folding() noexcept;
    /// By that of 64 bytes at a time, in assembly; null where the processor or the compiler has none.
    static Kernel WideFolding() noexcept;
};

/// Feeds `size` bytes into a CRC-32 register, which starts at 0xFFFFFFFF and is inverted at the very end.
/// `data` may be null when `size` is 0. The processor's best kernel is chosen at the first call.
std::uint32_t Crc32Update(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;

} // namespace ZoPrimitives
