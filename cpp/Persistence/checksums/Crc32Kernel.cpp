#include "Persistence/checksums/Crc32Kernel.h"

#include "Persistence/checksums/Crc32Folding.h"
#include "Platform/Compiler.h"
#include "ZoPrimitives/CRC32.h"

#include <atomic>
#include <cstring>

#ifdef ZO_X86_64
#include <smmintrin.h>
#include <wmmintrin.h>
#endif

namespace ZoPrimitives {

namespace {

using namespace Crc32Folding;

using Slices = std::array<std::array<std::uint32_t, 256>, 16>;

constexpr Slices MakeSlices() {
    Slices slices{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1) != 0 ? polynomial : 0);
        slices[0][byte] = value;
    }
    for (std::size_t row = 1; row < slices.size(); ++row)
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t value = slices[row - 1][byte];
            slices[row][byte] = (value >> 8) ^ slices[0][value & 0xFF];
        }
    return slices;
}

} // namespace

constinit const std::array<std::array<std::uint32_t, 256>, 16> CRC32::table = MakeSlices();

std::uint32_t Crc32Kernels::Tables(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept {
    const auto& t = CRC32::table;
    for (; size >= 16; data += 16, size -= 16) {
        std::uint64_t low, high;
        std::memcpy(&low, data, 8);
        std::memcpy(&high, data + 8, 8);
        low ^= reg;
        reg = 0;
        for (unsigned i = 0; i < 8; ++i)
            reg ^= t[15 - i][(low >> (8 * i)) & 0xFF] ^ t[7 - i][(high >> (8 * i)) & 0xFF];
    }
    for (; size > 0; ++data, --size) reg = (reg >> 8) ^ t[0][(reg ^ *data) & 0xFF];
    return reg;
}

#ifdef ZO_X86_64

namespace {

#define ZO_FOLDING ZO_USES_PROCESSOR("pclmul,sse4.1")

ZO_FOLDING inline __m128i Load(const unsigned char* data) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
}

template <unsigned Blocks>
ZO_FOLDING inline __m128i Fold(__m128i block) {
    const __m128i carry = _mm_set_epi64x(static_cast<long long>(Carry<Blocks>::high),
                                         static_cast<long long>(Carry<Blocks>::low));
    return _mm_xor_si128(_mm_clmulepi64_si128(block, carry, 0x00), _mm_clmulepi64_si128(block, carry, 0x11));
}

/// The register after a message of 64 bits; the low half of `block` holds it, followed by its own 32 zeros.
ZO_FOLDING inline std::uint32_t Reduce96(__m128i block) {
    const __m128i factors = _mm_set_epi64x(static_cast<long long>(std::uint64_t{polynomial} << 1 | 1),
                                           static_cast<long long>(Inverse()));
    const __m128i quotient = _mm_clmulepi64_si128(block, factors, 0x00);
    return static_cast<std::uint32_t>(
        _mm_extract_epi32(_mm_xor_si128(block, _mm_clmulepi64_si128(quotient, factors, 0x10)), 2));
}

/// The register after a message of 128 bits.
ZO_FOLDING inline std::uint32_t Reduce128(__m128i block) {
    const __m128i carry = _mm_cvtsi64_si128(static_cast<long long>(Carry<1>::high));
    return Reduce96(_mm_xor_si128(_mm_clmulepi64_si128(block, carry, 0x00), _mm_srli_si128(block, 8)));
}

ZO_FOLDING std::uint32_t FoldBelow16(std::uint32_t reg, const unsigned char* data,
                                     std::size_t size) noexcept {
    // Right-align the message in a block: leading zeros do not change the sum.
    if (size > 8) {
        std::uint64_t first, last;
        std::memcpy(&first, data, 8);
        std::memcpy(&last, data + size - 8, 8);
        first = (first ^ reg) << (8 * (16 - size));
        last ^= std::uint64_t{reg} >> (8 * (size - 8));
        return Reduce128(_mm_set_epi64x(static_cast<long long>(last), static_cast<long long>(first)));
    }
    if (size >= 4) {
        std::uint32_t first, last;
        std::memcpy(&first, data, 4);
        std::memcpy(&last, data + size - 4, 4);
        const std::uint64_t bytes = first | std::uint64_t{last} << (8 * (size - 4));
        return Reduce96(_mm_cvtsi64_si128(static_cast<long long>((bytes ^ reg) << (8 * (8 - size)))));
    }
    if (size == 0) return reg;
    const std::size_t middle = size / 2, end = size - 1;
    const std::uint64_t bytes =
        data[0] | std::uint64_t{data[middle]} << (8 * middle) | std::uint64_t{data[end]} << (8 * end);
    return Reduce96(_mm_cvtsi64_si128(static_cast<long long>((bytes ^ reg) << (8 * (8 - size))))) ^
           reg >> (8 * size);
}

/// The 16 bytes from n on move the first n bytes of a block to its end; those from n + 16 on drop these bytes
/// and move the rest to the start. Gaps become zero.
alignas(64) constexpr unsigned char shuffles[48] = {
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80,
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};

} // namespace

ZO_FOLDING std::uint32_t Crc32Folding::FoldBlocks(std::uint32_t reg, const unsigned char* data,
                                                  std::size_t size) noexcept {
    if (size < 16) return FoldBelow16(reg, data, size);

    const __m128i start = _mm_cvtsi32_si128(static_cast<int>(reg));
    __m128i block = _mm_xor_si128(Load(data), start);
    if (size == 16) return Reduce128(block);

    // Sum the odd bytes first, so that only complete blocks remain.
    const std::size_t odd = ((size - 1) & 15) + 1;
    block = _mm_shuffle_epi8(block, Load(shuffles + odd));
    block = _mm_xor_si128(Fold<1>(block), Load(data + odd));
    block = _mm_xor_si128(block, _mm_shuffle_epi8(start, Load(shuffles + odd + 16)));
    data += odd + 16;
    size -= odd + 16;

    if (size >= 240) {
        __m128i lanes[8] = {block,           Load(data),      Load(data + 16), Load(data + 32),
                            Load(data + 48), Load(data + 64), Load(data + 80), Load(data + 96)};
        data += 112;
        size -= 112;
        do {
            for (int i = 0; i < 8; ++i) lanes[i] = _mm_xor_si128(Fold<8>(lanes[i]), Load(data + 16 * i));
            data += 128;
            size -= 128;
        } while (size >= 128);
        for (int i = 0; i < 4; ++i) lanes[i] = _mm_xor_si128(Fold<4>(lanes[i]), lanes[i + 4]);
        for (int i = 0; i < 2; ++i) lanes[i] = _mm_xor_si128(Fold<2>(lanes[i]), lanes[i + 2]);
        block = _mm_xor_si128(Fold<1>(lanes[0]), lanes[1]);
    }
    for (; size > 0; data += 16, size -= 16) block = _mm_xor_si128(Fold<1>(block), Load(data));
    return Reduce128(block);
}

#undef ZO_FOLDING

Crc32Kernels::Kernel Crc32Kernels::Folding() noexcept {
    return HasCarrylessMultiplication() ? &FoldBlocks : nullptr;
}

#else

Crc32Kernels::Kernel Crc32Kernels::Folding() noexcept { return nullptr; }

#endif

namespace {

std::uint32_t Choose(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept;

constinit std::atomic<Crc32Kernels::Kernel> chosen{&Choose};

std::uint32_t Choose(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept {
    Crc32Kernels::Kernel kernel = Crc32Kernels::WideFolding();
    if (kernel == nullptr) kernel = Crc32Kernels::Folding();
    if (kernel == nullptr) kernel = &Crc32Kernels::Tables;
    chosen.store(kernel, std::memory_order_relaxed);
    return kernel(reg, data, size);
}

} // namespace

std::uint32_t Crc32Update(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept {
    return chosen.load(std::memory_order_relaxed)(reg, data, size);
}

} // namespace ZoPrimitives
