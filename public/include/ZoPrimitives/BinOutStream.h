#pragma once

#include "ZoPrimitives/BinHeader.h"
#include "ZoPrimitives/RecordBuffer.h"
#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoObject.h"

#include <cstddef>
#include <type_traits>
#include <vector>

namespace ZoPrimitives {

class ZoBlob;
class ZoStreamableBase;
class ZoString;

/// Abstract writer of the binary record format: values are appended to the open record, and `FlushRecord`
/// frames it (marker, size, CRC-32, class id, uid, scrambling key) and hands it to the sink.
///
/// Values are little-endian, without tags or alignment; strings and blobs are a 32-bit length and the bytes.
/// Appending past `DEFAULT_BUFFER_SIZE` fails an assertion and leaves the record unchanged.
class ZO_API TBinOutStream : public ZoObject {
public:
    TBinOutStream();
    TBinOutStream(unsigned version, unsigned release);
    /// Copies the header's values and the open record, but not the handles. What was written is copied only
    /// if both streams keep it in memory.
    TBinOutStream(const TBinOutStream& other);
    TBinOutStream& operator=(const TBinOutStream& other);
    ~TBinOutStream() override;

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// Whether the header values and the open record are equal.
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

    /// Closes the open record. An empty record is counted but not emitted. Uids should rise; this is not
    /// checked. The base class only counts.
    virtual void FlushRecord(int uid, int classId);
    /// Emits the open record's bytes raw, without a frame, and empties it.
    virtual void FlushBuffer() = 0;
    /// Releases the sink's resources (file, memory). Never throws.
    virtual void FreeResourses();
    /// Opens the sink and writes the header to it.
    virtual void Initialize() = 0;
    /// Appends the seven header fields, through `operator<<(unsigned)`, and the extra block if there is a
    /// digest.
    virtual void SaveHeader();
    /// Puts the final record count into a header that was already emitted. The base class does nothing.
    virtual void RewriteHeader();
    /// The handle of the file that the stream writes to; null if there is none.
    virtual void* GetFile() const;
    virtual void SetFile(void* file);

    /// Size of the open record in bytes.
    unsigned GetBufferSize() const { return records.Size(); }
    /// Number of `FlushRecord` calls so far.
    unsigned GetNInstances() const { return header.recordCount; }
    /// Whether `Initialize` has begun what is written; streams of the application may not tell.
    bool HasBegun() const { return begun; }
    unsigned GetVersion() const { return header.version; }
    unsigned GetRelease() const { return header.release; }

    /// The uid that this stream gave to an object; 0 if it has none.
    int GetHandle(const ZoStreamableBase* object) const { return handles.Get(object); }
    /// Gives an object a uid of the caller's choice, 0 for none; `AllocateHandle` continues after it.
    void SetHandle(const ZoStreamableBase* object, int uid) { handles.Set(object, uid); }
    /// Gives the next uid, from 1 upward, to an object and returns it.
    int AllocateHandle(const ZoStreamableBase* object);
    /// Forgets all uids and restarts at 1.
    void ResetHandles() { handles.Reset(); }

    /// Whether payloads are scrambled, which obfuscates but does not protect them. False by default.
    void SetUsesSecurity(bool uses) { usesSecurity = uses; }
    bool GetUsesSecurity() const { return usesSecurity; }
    /// Whether the next `Initialize` begins a digest of what the checksums of records leave out, the records'
    /// heads and the header (`TBinInStream::SetChecksDigest`), unless the caller has placed a header of its
    /// own. False by default. The digest stands in the header's extra block; `RewriteHeader` and the sinks'
    /// `Finalize`s fill it in. Bytes other than records behind the header, and a `Reset`, cannot be covered:
    /// the block then says that there is no digest.
    void SetWritesDigest(bool writes) { writesDigest = writes; }
    bool GetWritesDigest() const { return writesDigest; }

    /// Appends raw bytes to the open record; `data` may be null when there are none.
    void Append(const void* data, std::size_t size) { records.Append(data, size); }
    /// Appends a 32-bit length and the bytes.
    void AppendBlock(const void* data, std::size_t size) { records.AppendBlock(data, size); }
    // These do what the `operator<<`s of this class do, without the virtual call.
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
    /// Whether every `operator<<` is this library's own, so that callers may use `Put` instead.
    virtual bool PutsDirectly() const;

protected:
    TBinOutStream(unsigned version, unsigned release, RecordBuffer::Use use);

    /// The open record and the frames before it.
    RecordBuffer& Records() { return records; }
    const RecordBuffer& Records() const { return records; }
    /// CRC-32 of the open record.
    unsigned GetCrc() const;
    /// A scrambling key: 0 when security is off, otherwise 1, 2 or 4 at random.
    unsigned GetSecurityKey() const;
    static void ApplySecurityKey(unsigned key, unsigned char* data, unsigned size);

    /// Counts the open record and, unless it is empty, frames it after the frames gathered so far.
    void Frame(int uid, int classId, bool mayScramble);
    /// Begins the digest, or none. To be called by `Initialize` before it calls `SaveHeader`.
    void BeginDigest();
    /// The size of what `SaveHeader` appends.
    unsigned HeaderSize() const;
    /// The header as `SaveHeader` would write it now; the open record is unchanged.
    std::vector<unsigned char> HeaderBytes();
    /// For `HasBegun`: `Initialize` sets it, and what drops the header ends it.
    void SetBegun(bool has) { begun = has; }
    /// To be called by the destructor of a stream that is to be finalised: tells the developer (`Expect`) if
    /// that was forgotten and no exception is the reason.
    static void ExpectFinalized(bool forgotten);
    /// Forgets the frames and their count, and begins a digest; the open record is unchanged.
    void StartAnew();

private:
    friend class HandleAccess;
    friend class WriteCursor;

    TBinHeader header;
    bool usesSecurity = false;
    bool writesDigest = false;
    bool begun = false;
    RecordBuffer records;
    ZoHandleTable handles;
};

} // namespace ZoPrimitives
