#pragma once

#include "Persistence/checksums/Crc32Kernel.h"
#include "Persistence/records/RecordFormat.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ZoPrimitives {

/// The digest of a file: the CRC-32 of what the checksums of its records leave out, which are the heads of
/// all records in file order, then the header and the extra block up to the digest itself.
///
/// Heads are gathered and summed in batches.
class HeadDigest {
public:
    void Add(const unsigned char* head) {
        std::memcpy(batch + used, head, RecordFormat::HEAD_SIZE);
        used += RecordFormat::HEAD_SIZE;
        if (used == sizeof batch) Sum();
    }
    /// The digest with these bytes behind the heads; heads may follow nevertheless.
    std::uint32_t With(const void* header, std::size_t size) {
        Sum();
        return ~Crc32Update(sum, static_cast<const unsigned char*>(header), size);
    }
    /// Notes bytes that are not a record. The first ones are the header; others are not covered.
    void AddRaw() { ++raws; }
    void Invalidate() { raws = 2; }
    bool Covers() const { return raws <= 1; }

private:
    void Sum() {
        sum = Crc32Update(sum, batch, used);
        used = 0;
    }

    std::uint32_t sum = 0xFFFFFFFF;
    unsigned raws = 0;
    std::size_t used = 0;
    unsigned char batch[128 * RecordFormat::HEAD_SIZE];
};

/// The extra block that holds a digest.
struct DigestBlock {
    static constexpr std::uint32_t NAME = 0x67446F5A; // "ZoDg"
    static constexpr std::uint32_t NONE = 0;
    static constexpr std::uint32_t LAYOUT = 1;

    std::uint32_t name = NAME;
    std::uint32_t layout = LAYOUT;
    std::uint32_t digest = 0;
};
static_assert(sizeof(DigestBlock) == 12);

/// The header and the block as they stand in a file.
struct DigestedHeader {
    static constexpr std::size_t SUMMED = RecordFormat::HEADER_SIZE + offsetof(DigestBlock, digest);

    TBinHeader header;
    DigestBlock block;

    std::uint32_t DigestWith(HeadDigest& heads) const { return heads.With(this, SUMMED); }
};
static_assert(sizeof(DigestedHeader) == RecordFormat::HEADER_SIZE + sizeof(DigestBlock));

} // namespace ZoPrimitives
