#pragma once

#include "ZoPrimitives/BinOutStream.h"

namespace ZoPrimitives {

/// Writes records into memory, into a block that grows by doubling.
class ZO_API TMemoryBinOutStream : public TBinOutStream {
public:
    TMemoryBinOutStream();
    TMemoryBinOutStream(unsigned version, unsigned release);
    /// What was written is copied, too.
    TMemoryBinOutStream(const TMemoryBinOutStream&);
    TMemoryBinOutStream& operator=(const TMemoryBinOutStream&);
    ~TMemoryBinOutStream() override;

    /// Starts anew with the header, or with the bytes of the open record when that is not empty (a header
    /// that `SaveHeader` placed there).
    void Initialize() override;
    void FlushRecord(int uid, int classId) override;
    void FlushBuffer() override;
    void FreeResourses() override;
    /// Does nothing where there is no header: before `Initialize`, and after `Detach` or `FreeResourses`.
    void RewriteHeader() override;
    bool PutsDirectly() const override;

    /// What was written so far, valid until the next write.
    const unsigned char* GetData();
    /// Its size in bytes.
    unsigned long long GetSize() const { return Records().FramesSize(); }
    /// Gives what was written away: a block of `size` bytes on the C heap, the caller's to free.
    unsigned char* Detach(unsigned long long& size);
    /// Copies what was written into the caller's block and returns its size. A block that is too small throws
    /// `XWriteStreamOutOfSpace` and stays as it was.
    unsigned long long WriteInMemory(void* block, unsigned long long size);

private:
    unsigned long long headerSize = 0; // of what stands before the records; 0: no header
};

} // namespace ZoPrimitives
