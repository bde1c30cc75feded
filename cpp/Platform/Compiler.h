#pragma once

// Compiler-specific features behind one portable form each.

#if defined(__x86_64__) || defined(_M_X64)
#define ZO_X86_64 // implies SSE2
#include <emmintrin.h>
#endif

#include <cstddef>
#include <cstdint>

#ifdef _MSC_VER
#include <intrin.h>
#endif

#if defined(__x86_64__) && defined(__GNUC__)
#define ZO_GNU_ASSEMBLY
#endif

/// Marks a function that uses instructions which not every processor has, such as "pclmul,sse4.1"; its caller
/// must have checked for them. Some compilers need no mark.
#if defined(__GNUC__) || defined(__clang__)
#define ZO_USES_PROCESSOR(instructions) __attribute__((target(instructions)))
#else
#define ZO_USES_PROCESSOR(instructions)
#endif

namespace ZoPrimitives {

/// Asks the processor to load the memory at `address` into its cache. Any address is allowed, null included.
inline void Prefetch([[maybe_unused]] const void* address) noexcept {
#ifdef ZO_X86_64
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#elif defined(__GNUC__)
    __builtin_prefetch(address);
#endif
}

/// The same for an object that is about to be read as a whole: fetches its first 192 bytes.
inline void PrefetchObject(const void* object) noexcept {
    for (int line = 0; line < 192; line += 64) Prefetch(static_cast<const char*>(object) + line);
}

/// How many objects ahead a loop over objects fetches.
inline constexpr std::size_t PREFETCH = 8;

/// Calls `fetch` with the item that far ahead of `index`, if it comes before `end`. `fetch` is a lambda of
/// one line: GCC leaves out other calls of what only fetches.
template <std::size_t AHEAD = PREFETCH, class Items, class Fetch>
void FetchAhead(const Items& items, std::size_t index, std::size_t end, const Fetch& fetch) {
    if (index + AHEAD < end) fetch(items[index + AHEAD]);
}

/// An address in the caller's frame. A variable's address will not do: sanitizers move variables elsewhere.
inline std::uintptr_t StackAddress() noexcept {
#ifdef __GNUC__
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#else
    return reinterpret_cast<std::uintptr_t>(_AddressOfReturnAddress());
#endif
}

/// Whether the processor has carry-less multiplication and SSE 4.1.
inline bool HasCarrylessMultiplication() noexcept {
#if !defined(ZO_X86_64)
    return false;
#elif defined(__GNUC__)
    return __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("sse4.1") != 0;
#else
    int registers[4]; // eax, ebx, ecx, edx
    __cpuid(registers, 1);
    constexpr int PCLMULQDQ = 1 << 1;
    constexpr int SSE41 = 1 << 19;
    return (registers[2] & PCLMULQDQ) != 0 && (registers[2] & SSE41) != 0;
#endif
}

#ifdef ZO_GNU_ASSEMBLY
/// Whether the processor also multiplies four pairs at once, in 512-bit registers.
inline bool HasWideCarrylessMultiplication() noexcept {
    return HasCarrylessMultiplication() && __builtin_cpu_supports("avx512f") != 0 &&
           __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("vpclmulqdq") != 0;
}
#endif

} // namespace ZoPrimitives
