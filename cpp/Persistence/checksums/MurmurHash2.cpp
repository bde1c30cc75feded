#include "ZoPrimitives/MurmurHash2.h"

#include <cstdint>

namespace ZoPrimitives {

extern "C" unsigned MurmurHash2(const void* key, int length, unsigned seed) {
    constexpr std::uint32_t multiplier = 0x5BD1E995;
    const auto* data = static_cast<const unsigned char*>(key);
    std::uint32_t left = data != nullptr && length > 0 ? static_cast<std::uint32_t>(length) : 0;
    const auto byte = [&data](unsigned i) { return std::uint32_t{data[i]} << (8 * i); };

    std::uint32_t hash = seed ^ left;
    for (; left >= 4; data += 4, left -= 4) {
        std::uint32_t block = byte(0) | byte(1) | byte(2) | byte(3);
        block *= multiplier;
        block ^= block >> 24;
        block *= multiplier;
        hash = (hash * multiplier) ^ block;
    }
    if (left > 0) {
        for (unsigned i = 0; i < left; ++i) hash ^= byte(i);
        hash *= multiplier;
    }
    hash ^= hash >> 13;
    hash *= multiplier;
    hash ^= hash >> 15;
    return hash;
}

} // namespace ZoPrimitives
