#include "Persistence/checksums/Crc32Folding.h"
#include "Persistence/checksums/Crc32Kernel.h"
#include "Platform/Compiler.h"

#ifdef ZO_GNU_ASSEMBLY
#include <array>
#include <bit>
#endif

namespace ZoPrimitives {

#ifdef ZO_GNU_ASSEMBLY

namespace {

using namespace Crc32Folding;

struct alignas(64) WideFactors {
    std::uint64_t carry16[2]; // over 16 blocks, as Carry<16>
    std::uint64_t carry4[2];
    std::uint64_t finish[8]; // take each of four blocks to the input of `Reduce96`
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

/// Folds four blocks at once. Assembly keeps the compiler from spilling wide values, because not every target
/// system aligns the stack for them. No calling convention preserves registers from 16 on.
ZO_USES_PROCESSOR("pclmul,sse4.1,avx512f,avx512bw,avx512vl,vpclmulqdq")
std::uint32_t FoldWide(std::uint32_t reg, const unsigned char* data, std::size_t size) noexcept {
    if (size <= 24) return FoldBlocks(reg, data, size);

    // Load the odd bytes first, behind zeros, with a masked load that ends with them. It reads nothing before
    // `data`, but is very slow when it touches an unreadable page.
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

} // namespace

Crc32Kernels::Kernel Crc32Kernels::WideFolding() noexcept {
    return HasWideCarrylessMultiplication() ? &FoldWide : nullptr;
}

#else // the 16-byte kernel is used instead

Crc32Kernels::Kernel Crc32Kernels::WideFolding() noexcept { return nullptr; }

#endif

} // namespace ZoPrimitives
