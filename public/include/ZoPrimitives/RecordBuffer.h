#pragma once

#include "ZoPrimitives/Export.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ZoPrimitives {

/// The largest payload of a record, in bytes.
inline constexpr unsigned DEFAULT_BUFFER_SIZE = 10'485'760;

/// The record that a stream has open, and before it the frames that nobody has taken yet, in one block.
///
/// Sums of frames are put in late, in batches; whoever asks for the frames gets them complete.
class ZO_API RecordBuffer {
public:
    /// What becomes of frames when the block is full.
    enum class Use {
        Gather, ///< they are taken from time to time; the block never grows
        Keep    ///< they stay, and the block grows
    };
    explicit RecordBuffer(Use use);
    ~RecordBuffer();
    RecordBuffer(const RecordBuffer&) = delete;
    RecordBuffer& operator=(const RecordBuffer&) = delete;

    Use GetUse() const { return use; }
    /// Copies the open record, and the frames where both keep them.
    void Assign(const RecordBuffer& other);

    // The open record

    unsigned Size() const { return static_cast<unsigned>(position - record); }
    const unsigned char* Bytes() const { return record; }
    /// `data` may be null when there are no bytes. More than a record can hold fails an assertion.
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

    /// Closes the open record, which is not empty, and scrambles it unless the key is 0.
    void Frame(int uid, int classId, unsigned key);
    /// Puts the open record's bytes behind the frames as they are.
    void FrameRaw();
    /// All that was not taken yet, `size` bytes.
    const unsigned char* Frames(unsigned long long& size);
    unsigned long long FramesSize() const { return static_cast<unsigned long long>(framesEnd - block); }
    /// Forgets the frames; the open record stays.
    void DropFrames();
    /// Writes bytes over the frames; `offset` + `size` must lie inside them.
    void PatchFrames(unsigned long long offset, const void* data, std::size_t size);
    /// Gives the block away, on the C heap, with `size` bytes of frames, and starts an empty one. The open
    /// record is lost.
    unsigned char* TakeFrames(unsigned long long& size);
    /// Frees the block and starts an empty one. The open record is lost.
    void ReleaseFrames();

private:
    friend class WriteCursor;

    void Allocate(std::size_t capacity);
    void SetBounds(std::size_t frames, std::size_t payload);
    /// Makes room for `size` + `head` bytes.
    void MakeRoom(std::size_t size, std::size_t head = 0);
    void SumFrames(const unsigned char* end);

    Use use;
    // [block, framesEnd) are frames; the head of the open record follows, then its payload [record,
    // position).
    unsigned char* block = nullptr;
    unsigned char* blockEnd = nullptr;
    unsigned char* framesEnd = nullptr;
    unsigned char* summedEnd = nullptr; // frames before this hold their sums
    unsigned char* record = nullptr;
    unsigned char* position = nullptr;
    unsigned char* limit = nullptr; // the open record may grow up to here
};

} // namespace ZoPrimitives
