#pragma once

#include "ZoPrimitives/BinHeader.h"
#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoObject.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace ZoPrimitives {

class ZoBlob;
class ZoStreamableBase;
class ZoString;

/// The largest payload of a record, in bytes.
inline constexpr unsigned DEFAULT_BUFFER_SIZE = 10'485'760;

/// Abstract writer of the binary record format: values are appended to the open record, and `FlushRecord`
/// frames it (marker, size, CRC-32, class id, uid, scrambling key) and hands it to the sink.
///
/// Values are little-endian, without tags or alignment; strings and blobs are a 32-bit length and the bytes.
/// Appending past `DEFAULT_BUFFER_SIZE` fails an assertion and leaves the record as it was.
class ZO_API TBinOutStream : public ZoObject {
public:
    TBinOutStream();
    TBinOutStream(unsigned version, unsigned release);
    /// Copies the header's values and the open record, and from a stream that keeps what it wrote to another
    /// that does, that too; not the handles.
    TBinOutStream(const TBinOutStream& other);
    TBinOutStream& operator=(const TBinOutStream& other);
    ~TBinOutStream() override;

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// Whether header values and the open record are the same.
    bool operator==(const TBinOutStream& other) const;
    bool operator!=(const TBinOutStream& other) const { return !(*this == other); }

    virtual TBinOutStream& operator<<(const ZoBlob& value);
    virtual TBinOutStream& operator<<(const ZoString& value);
    /// Null is written as the empty string.
    virtual TBinOutStream& operator<<(const char* value);
    virtual TBinOutStream& operator<<(short value);
    virtual TBinOutStream& operator<<(unsigned short value);
    virtual TBinOutStream& operator<<(int value);
    virtual TBinOutStream& operator<<(unsigned value);
    virtual TBinOutStream& operator<<(float value);
    virtual TBinOutStream& operator<<(double value);
    /// Written as a double.
    virtual TBinOutStream& operator<<(long double value);
    virtual TBinOutStream& operator<<(bool value);

    /// Closes the open record. A record without values is counted and not emitted. Uids are meant to rise;
    /// that is the caller's to keep and is not enforced. This base does the bookkeeping only.
    virtual void FlushRecord(int uid, int classId);
    /// Emits the open record's bytes raw, without a frame, and empties it.
    virtual void FlushBuffer() = 0;
    /// Releases what the sink holds (file, memory); never throws.
    virtual void FreeResourses();
    /// Opens the sink and writes the header to it.
    virtual void Initialize() = 0;
    /// Appends the seven header fields, through `operator<<(unsigned)`.
    virtual void SaveHeader();
    /// Puts the final record count into a header that was already emitted. Nothing here.
    virtual void RewriteHeader();
    /// The handle of the file that the stream writes to; null where there is none.
    virtual void* GetFile() const;
    virtual void SetFile(void* file);

    /// Bytes of the open record so far.
    unsigned GetBufferSize() const { return static_cast<unsigned>(position - record); }
    /// Number of `FlushRecord` calls so far.
    unsigned GetNInstances() const { return header.recordCount; }
    unsigned GetVersion() const { return header.version; }
    unsigned GetRelease() const { return header.release; }

    /// The uid that this stream gave to an object; 0 when it has none.
    int GetHandle(const ZoStreamableBase* object) const { return handles.Get(object); }
    /// Gives an object a uid of the caller's choice, 0 for none; `AllocateHandle` goes on behind it.
    void SetHandle(const ZoStreamableBase* object, int uid);
    /// Gives the next uid, from 1 upward, to an object.
    int AllocateHandle(const ZoStreamableBase* object);
    /// Forgets all uids and begins at 1 again.
    void ResetHandles();

    /// Whether payloads are scrambled (an obfuscation, no protection). False at first.
    void SetUsesSecurity(bool uses) { usesSecurity = uses; }
    bool GetUsesSecurity() const { return usesSecurity; }

    /// Appends raw bytes to the open record; `data` may be null when there are none.
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
    // What the `operator<<`s of this class do, without the virtual call.
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, long double>>>
    void Put(T value) {
        Append(&value, sizeof value);
    }
    void Put(bool value) {
        const unsigned char byte = value ? 1 : 0;
        Append(&byte, 1);
    }
    void Put(const ZoString& value);
    void Put(const ZoBlob& value);
    /// Whether `operator<<` is this library's own for all types, so that `Put` may stand for it.
    virtual bool PutsDirectly() const;

protected:
    /// What becomes of frames when the buffer is full.
    enum class Buffering {
        Gather, ///< the sink takes them out from time to time; the buffer never grows
        Keep    ///< the buffer grows and is the sink
    };
    TBinOutStream(unsigned version, unsigned release, Buffering buffering);

    /// CRC-32 of the open record.
    unsigned GetCrc() const;
    /// A key to scramble with: 0 when security is off, otherwise 1, 2 or 4 by chance.
    unsigned GetSecurityKey() const;
    static void ApplySecurityKey(unsigned key, unsigned char* data, unsigned size);

    /// Frames the open record behind the frames gathered before, after the bookkeeping. False when it was
    /// empty.
    bool Frame(int uid, int classId, bool mayScramble);
    /// Puts the open record's bytes behind the frames gathered before, as they are.
    void FrameRaw();
    /// Everything framed and not yet taken, complete with its sums; `size` in bytes.
    const unsigned char* Gathered(unsigned long long& size);
    unsigned long long GatheredSize() const { return static_cast<unsigned long long>(gatheredEnd - buffer); }
    /// Forgets what was gathered; the open record stays.
    void DropGathered();
    /// Writes bytes over gathered ones; `offset` + `size` must lie inside them.
    void PatchGathered(unsigned long long offset, const void* data, std::size_t size);
    /// The header as `SaveHeader` writes it now; the open record stays.
    std::vector<unsigned char> HeaderBytes();
    /// Forgets what was gathered and counted; the open record stays.
    void StartAnew();
    /// Gives the gathered bytes away, on the C heap, and starts an empty buffer. The open record is lost.
    unsigned char* TakeGathered(unsigned long long& size);
    /// Frees the gathered bytes and starts an empty buffer. The open record is lost.
    void ReleaseGathered();
    /// Drops the open record.
    void DropRecord() { position = record; }
    const unsigned char* RecordBytes() const { return record; }

private:
    friend class HandleAccess;
    friend class WriteCursor;

    void Allocate(std::size_t capacity);
    void SetBounds(std::size_t gathered, std::size_t payload);
    /// Makes room for `size` + `head` bytes; an assertion fails when the record cannot hold them.
    void MakeRoom(std::size_t size, std::size_t head = 0);
    [[noreturn]] void RefuseHandle();
    void SumGathered(const unsigned char* end);

    TBinHeader header;
    bool usesSecurity = false;
    Buffering buffering;

    // [buffer, gatheredEnd) are frames; the head of the open record follows, then its payload [record,
    // position).
    unsigned char* buffer = nullptr;
    unsigned char* bufferEnd = nullptr;
    unsigned char* gatheredEnd = nullptr;
    unsigned char* summedEnd = nullptr; // frames before this hold their sums
    unsigned char* record = nullptr;
    unsigned char* position = nullptr;
    unsigned char* limit = nullptr; // the open record may grow up to here

    ZoHandleTable handles;
    int nextHandle = 1;
};

} // namespace ZoPrimitives
