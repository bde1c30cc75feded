#pragma once

#include "ZoPrimitives/BinHeader.h"
#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/TZoPath.h"

#include <memory>

namespace ZoPrimitives {

class TBinOutStream;

/// Bytes that are read at any position. One thread at a time uses them.
class ZO_API TZoBytes {
public:
    virtual ~TZoBytes();

    /// In bytes; does not change.
    virtual unsigned long long GetSize() const = 0;
    /// Reads up to `size` bytes from `offset` on, and returns how many: fewer only at the end. Throws
    /// `XReadStream` when the device fails.
    virtual unsigned Read(unsigned long long offset, void* data, unsigned size) = 0;
    /// All bytes, if they are in memory and stay there unchanged; otherwise null.
    virtual const unsigned char* GetMemory() const;

protected:
    TZoBytes();
    TZoBytes(const TZoBytes&) = delete;
    TZoBytes& operator=(const TZoBytes&) = delete;
};

/// A file, opened for viewing (`TFileReading::Viewing`): it keeps nobody out and is never loaded as a whole.
class ZO_API TZoFileBytes : public TZoBytes {
public:
    /// Throws `XReadStream` when the file cannot be opened or, as a device, has no size.
    explicit TZoFileBytes(const TZoPath& path);
    ~TZoFileBytes() override;

    unsigned long long GetSize() const override { return size; }
    unsigned Read(unsigned long long offset, void* data, unsigned size) override;
    const TZoPath& GetFilePath() const { return path; }

private:
    TZoPath path;
    void* file = nullptr;
    unsigned long long size = 0;
    unsigned long long position = 0; // of the file
};

/// A block of memory, which is not copied.
class ZO_API TZoMemoryBytes : public TZoBytes {
public:
    /// A null block is empty.
    TZoMemoryBytes(const void* block, unsigned long long size);
    ~TZoMemoryBytes() override;

    unsigned long long GetSize() const override { return size; }
    unsigned Read(unsigned long long offset, void* data, unsigned size) override;
    const unsigned char* GetMemory() const override { return block; }

private:
    const unsigned char* block;
    unsigned long long size;
};

/// How much of a frame is as it was written.
enum class TZoFrameState {
    Whole,       ///< with heads only: as far as its head and what follows tell
    WrongCrc,    ///< the payload, or the checksum itself, is damaged
    WrongMarker, ///< the marker alone is damaged, and the payload is whole
    /// The size is not that of the payload. The frame ends where its checksum proves right, and its payload
    /// is then whole; otherwise where the next frame begins.
    WrongSize,
    Torn ///< the bytes end before the frame does, and no other frame follows
};

/// A record as it stands in a file. What lies beyond the end of the bytes is 0.
struct TZoFrame {
    unsigned long long offset = 0; ///< of the marker, from the beginning of the bytes
    unsigned long long length = 0; ///< of head and payload, as far as they are there
    unsigned long long number = 0; ///< in file order, from 1, damaged frames included
    unsigned long long gap = 0;    ///< bytes before the frame that belong to none
    unsigned marker = 0;
    unsigned size = 0; ///< of the payload, as the head tells
    unsigned crc = 0;  ///< of the plain payload, as the head tells
    int classId = 0;   ///< 0 for the schema
    int uid = 0;       ///< 0 for the schema
    unsigned key = 0;  ///< of the scrambling, as stored
    TZoFrameState state = TZoFrameState::Whole;
};

enum class TZoHeaderState {
    Right,
    Short, ///< the bytes end before header and extra block do
    Wrong  ///< its values are out of range: the bytes are of another format, or damaged
};

enum class TZoDigestState {
    None,    ///< the file has no digest
    Unknown, ///< it has one of a later layout
    Open,    ///< the frames have not been read to the end
    Right,   ///< all records are there; bytes that belong to none may stand between them
    Wrong    ///< a record is missing or comes twice, or a head or the header has changed
};

/// Finds every frame of a file, at any alignment, in one pass and in bounded memory (some 25 MiB at most).
///
/// Unlike `TBinInStream`, which loses the record after stray bytes and gives up after 65,535 of them, it
/// looks for a frame at each byte. Behind damage it believes a frame whose checksum is right, or one that
/// ends where another begins; a frame that is damaged but ends well is passed over as a whole, so what looks
/// like frames inside its payload is left alone. The work is bounded by a small multiple of the size,
/// whatever the bytes are. The frames of a file that was saved are its records: the schema, then one for each
/// object.
class ZO_API TZoFrameReader {
public:
    /// The bytes must outlive the reader. Reads the header; never throws for what the bytes hold.
    explicit TZoFrameReader(TZoBytes& bytes);
    ~TZoFrameReader();
    TZoFrameReader(const TZoFrameReader&) = delete;
    TZoFrameReader& operator=(const TZoFrameReader&) = delete;

    TZoHeaderState GetHeaderState() const;
    /// Fields beyond the end of the bytes are 0.
    const TBinHeader& GetHeader() const;
    /// Where the frames begin: behind the extra block.
    unsigned long long GetFirstOffset() const;
    TZoDigestState GetDigestState() const;
    /// The digest that the file holds, and the one of the frames read so far.
    unsigned GetWantedDigest() const;
    unsigned GetFoundDigest();

    /// Payloads are then neither read nor checked while nothing is damaged. False by default.
    void SetHeadsOnly(bool only);
    /// False at the end; `frame.offset` is then the end, and `frame.gap` tells how many bytes before it
    /// belong to no frame. Throws `XReadStream` when the device fails.
    bool Next(TZoFrame& frame);
    /// Begins anew.
    void Restart();
    /// Reads the frame at an offset, with its payload, and does not move on. Its number is 0, and what
    /// follows it does not count: its state is none of `WrongMarker`. False if no frame begins there.
    bool ReadAt(unsigned long long offset, TZoFrame& frame);

    /// The plain payload of the latest frame, until the next call; null unless its checksum was found right.
    const unsigned char* GetPayload() const;
    unsigned GetPayloadSize() const;

    TZoBytes& GetBytes() const;

private:
    class Hunt;
    std::unique_ptr<Hunt> hunt;
};

/// Writes a record as it is: for those who copy records from one file to another. `payload` is plain; one
/// without bytes is counted and not written, as by `FlushRecord`.
ZO_API void ZoWriteRecord(TBinOutStream& stream, int uid, int classId, const void* payload, unsigned size);

} // namespace ZoPrimitives
