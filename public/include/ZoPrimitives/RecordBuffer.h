#pragma once

#include "ZoPrimitives/Export.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace ZoPrimitives {

class HeadDigest;

/// The largest payload of a record, in bytes.
inline constexpr unsigned DEFAULT_BUFFER_SIZE = 10'485'760;

/// The open record of a stream and, before it, the frames not yet taken, in one block.
///
/// Checksums of frames are computed late, in batches; frames are complete when they are handed out.
class ZO_API RecordBuffer {
public:
    /// What happens to frames when the block is full.
    enum class Use {
        Gather, ///< they are taken from time to time; the block never grows
        Keep    ///< they stay, and the block grows
    };
    explicit RecordBuffer(Use use);
    ~RecordBuffer();
    RecordBuffer(const RecordBuffer&) = delete;
    RecordBuffer& operator=(const RecordBuffer&) = delete;

    Use GetUse() const { return use; }
    /// Copies the open record, and the frames if both buffers keep them.
    void Assign(const RecordBuffer& other);

    // The open record

    unsigned Size() const { return static_cast<unsigned>(position - record); }
    const unsigned char* Bytes() const { return record; }
    /// `data` may be null when `size` is 0. Fails an assertion for more than a record can hold.
    void Append(const void* data, std::size_t size) {
        if (size > static_cast<std::size_t>(limit - position)) MakeRoom(size);
        if (size != 0) std::memcpy(position, data, size);
        position += size;
    }
    /// Appends a 32-bit length and the bytes.
    void AppendBlock(const void* data, std::size_t size) {
        const auto room = static_cast<std::size_t>(limit - position);
        if (room < 4 || size > room - 4) MakeRoom(size, 4);
        const auto length = static_cast<std::uint32_t>(size);
        std::memcpy(position, &length, 4);
        if (size != 0) std::memcpy(position + 4, data, size);
        position += size + 4;
    }
    void Drop() { position = record; }
    unsigned Crc() const;

    // Frames

    /// Closes the open record, which must not be empty, and scrambles it unless the key is 0.
    void Frame(int uid, int classId, unsigned key);
    /// Adds the open record's bytes to the frames without a head.
    void FrameRaw();
    /// All frames not yet taken, `size` bytes.
    const unsigned char* Frames(unsigned long long& size);
    unsigned long long FramesSize() const { return static_cast<unsigned long long>(framesEnd - block); }
    /// Forgets the frames; the open record is unchanged.
    void DropFrames();
    /// Begins a digest of the frames, or none.
    void StartDigest(bool wanted);
    bool HasDigest() const { return digest != nullptr; }
    /// The digest so far, all frames included; null if there is none.
    HeadDigest* Digest();
    /// Overwrites the first bytes of the frames: those that `FrameRaw` added before any other.
    void PatchFrames(const void* data, std::size_t size);
    /// Hands over the block, on the C heap, with `size` bytes of frames, and starts an empty one. The open
    /// record is lost.
    unsigned char* TakeFrames(unsigned long long& size);
    /// Forgets the frames and the open record, and gives their memory back.
    void ReleaseFrames();

private:
    friend class WriteCursor;

    void Allocate(std::size_t capacity);
    void SetBounds(std::size_t frames, std::size_t payload);
    void StartEmpty();
    /// Makes room for `head` + `size` bytes.
    void MakeRoom(std::size_t size, std::size_t head = 0);
    void SumFrames(const unsigned char* end);

    Use use;
    // Frames are in [block, framesEnd); after them the open record's head, then its payload [record,
    // position).
    unsigned char* block = nullptr;
    unsigned char* blockEnd = nullptr;
    unsigned char* framesEnd = nullptr;
    unsigned char* summedEnd = nullptr; // frames before this have their checksums
    unsigned char* record = nullptr;
    unsigned char* position = nullptr;
    unsigned char* limit = nullptr; // the open record may grow up to here
    std::unique_ptr<HeadDigest> digest;
};

} // namespace ZoPrimitives
