#pragma once

// The binary object file: a header of seven fields, then framed records, all integers little-endian.
// Writer and reader share this file and nothing else.

#include "ZoPrimitives/BinOutStream.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ZoPrimitives::RecordFormat {

static_assert(std::endian::native == std::endian::little, "values are stored as they stand in memory");

inline constexpr unsigned HEADER_SIZE = sizeof(TBinHeader);
static_assert(HEADER_SIZE == 28);
inline constexpr unsigned VERSION_LIMIT = 10'000;      // refused from here on
inline constexpr unsigned RELEASE_LIMIT = 1'000'000;   // likewise
inline constexpr unsigned EXTRA_LENGTH_LIMIT = 65'536; // likewise

inline constexpr std::uint32_t MARKER = 0xABCAABCA;
inline constexpr std::uint32_t OTHER_MARKER = 0xABCDABCD; // read, never written
inline constexpr bool IsMarker(std::uint32_t window) { return window == MARKER || window == OTHER_MARKER; }

/// The head of a record as it stands in the file.
struct RecordHead {
    std::uint32_t marker;
    std::uint32_t size; // of the payload
    std::uint32_t crc;  // CRC-32 of the plain payload
    std::int32_t classId;
    std::int32_t uid;
    std::uint32_t key; // of the scrambling: 0 (plain), 1, 2 or 4
};
static_assert(sizeof(RecordHead) == 24);
inline constexpr std::size_t HEAD_SIZE = sizeof(RecordHead);

inline RecordHead ReadHead(const unsigned char* bytes) {
    RecordHead head;
    std::memcpy(&head, bytes, sizeof head);
    return head;
}
/// Stores field by field: a copy of the whole head would load it in other pieces than it has just been stored
/// in, which stalls the processor.
inline void WriteHead(unsigned char* bytes, const RecordHead& head) {
    std::memcpy(bytes, &head.marker, 4);
    std::memcpy(bytes + 4, &head.size, 4);
    std::memcpy(bytes + 8, &head.crc, 4);
    std::memcpy(bytes + 12, &head.classId, 4);
    std::memcpy(bytes + 16, &head.uid, 4);
    std::memcpy(bytes + 20, &head.key, 4);
}
inline std::uint32_t ReadSize(const unsigned char* head) {
    std::uint32_t size = 0;
    std::memcpy(&size, head + 4, 4);
    return size;
}
inline void WriteCrc(unsigned char* head, std::uint32_t crc) { std::memcpy(head + 8, &crc, 4); }

/// Scrambles in place; scrambling twice restores the data.
inline void Scramble(unsigned key, unsigned char* data, std::size_t size) {
    const unsigned char pattern[3] = {static_cast<unsigned char>(key * 11),
                                      static_cast<unsigned char>(key * 13),
                                      static_cast<unsigned char>(key * 15)};
    for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<unsigned char>(data[i] ^ pattern[i % 3]);
}

/// The key that a stored value stands for: the lowest that is set of its three lowest bits.
inline constexpr unsigned DecodeKey(unsigned stored) {
    return (stored & 1) != 0 ? 1u : (stored & 2) != 0 ? 2u : stored & 4;
}

/// A sink gathers frames and writes them in blocks of about this size.
inline constexpr std::size_t GATHER_SIZE = 256 * 1024;

/// The largest count of classes, fields or list items that may be stored.
inline constexpr unsigned MAX_INT_SIZE = 16'777'215;

} // namespace ZoPrimitives::RecordFormat
