#include "Persistence/Crc32Kernel.h"

#include "ZoPrimitives/CRC32.h"

#include <atomic>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <smmintrin.h>
#include <wmmintrin.h>
#endif

namespace ZoPrimitives {

namespace {

constexpr std::uint32_t polynomial = 0xEDB88320; // bit 31 is the coefficient of x^0; that of x^32 is implied

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

#if defined(__x86_64__)

namespace {

#define ZO_FOLDING __attribute__((target("pclmul,sse4.1")))

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

/// The factors that carry the two halves of a block over `Blocks` blocks of 16 bytes. A product of reflected
/// factors comes out one place low, hence the shift.
template <unsigned Blocks>
struct Carry {
    static constexpr std::uint64_t low = std::uint64_t{PowerOfX(128 * Blocks + 32)} << 1;
    static constexpr std::uint64_t high = std::uint64_t{PowerOfX(128 * Blocks - 32)} << 1;
};
static_assert(Carry<1>::low == 0x1751997d0 && Carry<1>::high == 0x0ccaa009e);
static_assert(Carry<4>::low == 0x154442bd4 && Carry<4>::high == 0x1c6e41596);

ZO_FOLDING inline __m128i Load(const unsigned char* data) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
}

template <unsigned Blocks>
ZO_FOLDING inline __m128i Fold(__m128i block) {
    const __m128i carry = _mm_set_epi64x(static_cast<long long>(Carry<Blocks>::high),
                                         static_cast<long long>(Carry<Blocks>::low));
    return _mm_xor_si128(_mm_clmulepi64_si128(block, carry, 0x00), _mm_clmulepi64_si128(block, carry, 0x11));
}

/// The register after a message of 64 bits, in the low half, whose own 32 zeros follow.
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
    // The message goes to the top of a block: zeros before it change nothing.
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

/// The 16 bytes from n on move the first n bytes of a block to its end; those from n + 16 on drop them and
/// bring the rest to its start. Zeros come in.
alignas(64) constexpr unsigned char shuffles[48] = {
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80,
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};

ZO_FOLDING std::uint32_t FoldBlocks(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept {
    if (size < 16) return FoldBelow16(reg, data, size);

    const __m128i start = _mm_cvtsi32_si128(static_cast<int>(reg));
    __m128i block = _mm_xor_si128(Load(data), start);
    if (size == 16) return Reduce128(block);

    // The odd bytes come first, so that whole blocks remain and nothing is left over.
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

struct alignas(64) WideFactors {
    std::uint64_t carry16[2]; // over 16 blocks, as Carry<16>
    std::uint64_t carry4[2];
    std::uint64_t finish[8]; // each of four blocks to what `Reduce96` takes
    std::uint64_t barrett[2];
};

constexpr WideFactors wideFactors = {{Carry<16>::low, Carry<16>::high},
                                     {Carry<4>::low, Carry<4>::high},
                                     {Carry<4>::high, Carry<3>::low, Carry<3>::high, Carry<2>::low,
                                      Carry<2>::high, Carry<1>::low, Carry<1>::high,
                                      std::uint64_t{PowerOfX(32)} << 1},
                                     {Inverse(), std::uint64_t{polynomial} << 1 | 1}};

/// The 64 bytes from n on mark the four bytes at 64 - n.
alignas(64) constexpr auto startMarks = [] {
    std::array<unsigned char, 128> marks{};
    for (std::size_t i = 64; i < 68; ++i) marks[i] = 0xFF;
    return marks;
}();

/// Folds four blocks at once. The compiler never sees a wide value, so that it cannot spill one: not every
/// system that we build for aligns the stack for that. Registers from 16 on belong to nobody in every calling
/// convention.
__attribute__((target("pclmul,sse4.1,avx512f,avx512bw,avx512vl,vpclmulqdq"))) std::uint32_t
FoldWide(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept {
    if (size <= 24) return FoldBlocks(reg, data, size);

    // The odd bytes come first, behind zeros: a masked load that ends with them. It reads nothing before
    // `data`, but is very slow when it spans a page that cannot be read.
    std::size_t odd = ((size - 1) & 63) + 1;
    if (odd < 4 || (reinterpret_cast<std::uintptr_t>(data) & 4095) + odd < 64) {
        reg = FoldBlocks(reg, data, odd);
        if (size == odd) return reg;
        data += odd;
        size -= odd;
        odd = 64;
    }
    const std::uint64_t mask = ~std::uint64_t{0} << (64 - odd);
    std::size_t chunks = (size - odd) / 64;
    std::uint32_t result = std::rotl(reg, static_cast<int>(8 * ((64 - odd) & 3)));
    data += odd;
    asm volatile("vpbroadcastd %[result], %%zmm16\n\t"
                 "kmovq %[mask], %%k1\n\t"
                 "vmovdqu8 -64(%[data]), %%zmm17%{%%k1%}%{z%}\n\t"
                 "vpternlogq $0x78, (%[marks]), %%zmm16, %%zmm17\n\t" // data ^ (reg & marks)
                 "test %[chunks], %[chunks]\n\t"
                 "jz 5f\n\t"
                 "vbroadcasti32x4 16(%[factors]), %%zmm19\n\t"
                 "cmp $7, %[chunks]\n\t"
                 "jb 4f\n\t"

                 "vmovdqu64 (%[data]), %%zmm20\n\t"
                 "vmovdqu64 64(%[data]), %%zmm21\n\t"
                 "vmovdqu64 128(%[data]), %%zmm22\n\t"
                 "vbroadcasti32x4 (%[factors]), %%zmm18\n\t"
                 "add $192, %[data]\n\t"
                 "sub $3, %[chunks]\n\t"
                 "2:\n\t"
                 "vpclmulqdq $0x00, %%zmm18, %%zmm17, %%zmm24\n\t"
                 "vpclmulqdq $0x11, %%zmm18, %%zmm17, %%zmm17\n\t"
                 "vpclmulqdq $0x00, %%zmm18, %%zmm20, %%zmm25\n\t"
                 "vpclmulqdq $0x11, %%zmm18, %%zmm20, %%zmm20\n\t"
                 "vpclmulqdq $0x00, %%zmm18, %%zmm21, %%zmm26\n\t"
                 "vpclmulqdq $0x11, %%zmm18, %%zmm21, %%zmm21\n\t"
                 "vpclmulqdq $0x00, %%zmm18, %%zmm22, %%zmm27\n\t"
                 "vpclmulqdq $0x11, %%zmm18, %%zmm22, %%zmm22\n\t"
                 "vpternlogq $0x96, (%[data]), %%zmm24, %%zmm17\n\t"
                 "vpternlogq $0x96, 64(%[data]), %%zmm25, %%zmm20\n\t"
                 "vpternlogq $0x96, 128(%[data]), %%zmm26, %%zmm21\n\t"
                 "vpternlogq $0x96, 192(%[data]), %%zmm27, %%zmm22\n\t"
                 "add $256, %[data]\n\t"
                 "sub $4, %[chunks]\n\t"
                 "cmp $4, %[chunks]\n\t"
                 "jae 2b\n\t"
                 "vpclmulqdq $0x00, %%zmm19, %%zmm17, %%zmm24\n\t"
                 "vpclmulqdq $0x11, %%zmm19, %%zmm17, %%zmm17\n\t"
                 "vpternlogq $0x96, %%zmm20, %%zmm24, %%zmm17\n\t"
                 "vpclmulqdq $0x00, %%zmm19, %%zmm17, %%zmm24\n\t"
                 "vpclmulqdq $0x11, %%zmm19, %%zmm17, %%zmm17\n\t"
                 "vpternlogq $0x96, %%zmm21, %%zmm24, %%zmm17\n\t"
                 "vpclmulqdq $0x00, %%zmm19, %%zmm17, %%zmm24\n\t"
                 "vpclmulqdq $0x11, %%zmm19, %%zmm17, %%zmm17\n\t"
                 "vpternlogq $0x96, %%zmm22, %%zmm24, %%zmm17\n\t"
                 "test %[chunks], %[chunks]\n\t"
                 "jz 5f\n\t"

                 "4:\n\t"
                 "vpclmulqdq $0x00, %%zmm19, %%zmm17, %%zmm24\n\t"
                 "vpclmulqdq $0x11, %%zmm19, %%zmm17, %%zmm17\n\t"
                 "vpternlogq $0x96, (%[data]), %%zmm24, %%zmm17\n\t"
                 "add $64, %[data]\n\t"
                 "dec %[chunks]\n\t"
                 "jnz 4b\n\t"

                 "5:\n\t"
                 "vmovdqu64 32(%[factors]), %%zmm19\n\t"
                 "vmovdqu64 96(%[factors]), %%xmm20\n\t"
                 "vpclmulqdq $0x00, %%zmm19, %%zmm17, %%zmm24\n\t"
                 "vpclmulqdq $0x11, %%zmm19, %%zmm17, %%zmm17\n\t"
                 "vpxorq %%zmm24, %%zmm17, %%zmm17\n\t"
                 "vextracti64x4 $1, %%zmm17, %%ymm24\n\t"
                 "vpxorq %%ymm24, %%ymm17, %%ymm17\n\t"
                 "vextracti32x4 $1, %%ymm17, %%xmm24\n\t"
                 "vpxorq %%xmm24, %%xmm17, %%xmm17\n\t"
                 "vpclmulqdq $0x00, %%xmm20, %%xmm17, %%xmm24\n\t"
                 "vpclmulqdq $0x10, %%xmm20, %%xmm24, %%xmm24\n\t"
                 "vpxorq %%xmm24, %%xmm17, %%xmm17\n\t"
                 "vpshufd $2, %%xmm17, %%xmm17\n\t"
                 "vmovd %%xmm17, %[result]\n\t"
                 : [result] "+r"(result), [data] "+r"(data), [chunks] "+r"(chunks)
                 : [mask] "r"(mask), [marks] "r"(startMarks.data() + odd), [factors] "r"(&wideFactors)
                 : "cc", "memory", "k1", "xmm16", "xmm17", "xmm18", "xmm19", "xmm20", "xmm21", "xmm22",
                   "xmm24", "xmm25", "xmm26", "xmm27");
    return result;
}

bool HasFolding() { return __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("sse4.1") != 0; }

bool HasWideFolding() {
    return HasFolding() && __builtin_cpu_supports("avx512f") != 0 &&
           __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("vpclmulqdq") != 0;
}

} // namespace

Crc32Kernels::Kernel Crc32Kernels::Folding() noexcept { return HasFolding() ? &FoldBlocks : nullptr; }
Crc32Kernels::Kernel Crc32Kernels::WideFolding() noexcept { return HasWideFolding() ? &FoldWide : nullptr; }

#else

Crc32Kernels::Kernel Crc32Kernels::Folding() noexcept { return nullptr; }
Crc32Kernels::Kernel Crc32Kernels::WideFolding() noexcept { return nullptr; }

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
