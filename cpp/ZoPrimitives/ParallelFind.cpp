#include "ZoPrimitives/ParallelFind.h"

#include "Platform/Compiler.h"

#include <bit>
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace ZoPrimitives {

void ZoParallelFor(unsigned long long count, ZoRangeFunction function, void* context) {
    using Range = tbb::blocked_range<unsigned long long>;
    // Isolated, so that the waiting thread does not run unrelated tasks of the application.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(
            Range(0, count, 1), [&](const Range& range) { function(range.begin(), range.end(), context); },
            tbb::auto_partitioner());
    });
}

namespace {

template <class Bits>
Bits Load(const void* data, std::size_t index) {
    Bits bits;
    std::memcpy(&bits, static_cast<const char*>(data) + index * sizeof bits, sizeof bits);
    return bits;
}

template <class Bits>
std::size_t Locate(const void* data, std::size_t index, std::size_t count, Bits value) {
    while (index < count && Load<Bits>(data, index) != value) ++index;
    return index;
}

#ifdef ZO_X86_64
// Compares 64 bytes a round with a single branch; the caller locates the match within the round.
template <std::size_t ElementSize, class Compare>
std::size_t SkipRounds(const void* data, std::size_t count, const Compare& equal) {
    constexpr std::size_t round = 64 / ElementSize;
    const char* bytes = static_cast<const char*>(data);
    std::size_t index = 0;
    for (; index + round <= count; index += round, bytes += 64) {
        const auto* block = reinterpret_cast<const __m128i*>(bytes);
        const __m128i first = _mm_or_si128(equal(_mm_loadu_si128(block)), equal(_mm_loadu_si128(block + 1)));
        const __m128i second =
            _mm_or_si128(equal(_mm_loadu_si128(block + 2)), equal(_mm_loadu_si128(block + 3)));
        if (_mm_movemask_epi8(_mm_or_si128(first, second)) != 0) break;
    }
    return index;
}
#endif

} // namespace

std::size_t ZoFindBits32(const void* data, std::size_t count, std::uint32_t value) noexcept {
    std::size_t index = 0;
#ifdef ZO_X86_64
    const __m128i pattern = _mm_set1_epi32(std::bit_cast<std::int32_t>(value));
    index = SkipRounds<4>(data, count, [&](__m128i block) { return _mm_cmpeq_epi32(block, pattern); });
#endif
    return Locate(data, index, count, value);
}

std::size_t ZoFindBits64(const void* data, std::size_t count, std::uint64_t value) noexcept {
    std::size_t index = 0;
#ifdef ZO_X86_64
    const __m128i pattern = _mm_set1_epi64x(std::bit_cast<std::int64_t>(value));
    index = SkipRounds<8>(data, count, [&](__m128i block) {
        const __m128i halves = _mm_cmpeq_epi32(block, pattern);
        return _mm_and_si128(halves, _mm_shuffle_epi32(halves, _MM_SHUFFLE(2, 3, 0, 1)));
    });
#endif
    return Locate(data, index, count, value);
}

std::size_t ZoFindDouble(const double* data, std::size_t count, double value) noexcept {
    std::size_t index = 0;
#ifdef ZO_X86_64
    const __m128d pattern = _mm_set1_pd(value);
    index = SkipRounds<8>(data, count, [&](__m128i block) {
        return _mm_castpd_si128(_mm_cmpeq_pd(_mm_castsi128_pd(block), pattern));
    });
#endif
    return Locate(data, index, count, value);
}

} // namespace ZoPrimitives
