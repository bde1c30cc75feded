#pragma once

#include "ZoPrimitives/BinOutStream.h"

namespace ZoPrimitives {

/// Writes records to a block of memory that grows by doubling.
class ZO_API TMemoryBinOutStream : public TBinOutStream {
public:
    TMemoryBinOutStream();
    TMemoryBinOutStream(unsigned version, unsigned release);
    /// Copies what was written, too.
    TMemoryBinOutStream(const TMemoryBinOutStream&);
    TMemoryBinOutStream& operator=(const TMemoryBinOutStream&);
    ~TMemoryBinOutStream() override;

    /// Starts a new block with the header. If the open record is not empty, its bytes (a header that
    /// `SaveHeader` placed there) are used instead.
    void Initialize() override;
    void FlushRecord(int uid, int classId) override;
    void FlushBuffer() override;
    void FreeResourses() override;
    /// Does nothing when there is no header: before `Initialize`, and after `Detach` or `FreeResourses`.
    void RewriteHeader() override;
    bool PutsDirectly() const override;

    /// The bytes written so far, valid until the next write.
    const unsigned char* GetData();
    /// The number of bytes written so far.
    unsigned long long GetSize() const { return Records().FramesSize(); }
    /// Hands over the bytes written: a block of `size` bytes on the C heap, which the caller frees.
    unsigned char* Detach(unsigned long long& size);
    /// Copies the bytes written into the caller's block and returns their number. Throws
    /// `XWriteStreamOutOfSpace`, leaving the block unchanged, when it is too small.
    unsigned long long WriteInMemory(void* block, unsigned long long size);

private:
    unsigned long long headerSize = 0; // bytes before the first record; 0: no header
};

} // namespace ZoPrimitives
