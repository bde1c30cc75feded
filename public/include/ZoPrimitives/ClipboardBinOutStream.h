#pragma once

#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

namespace ZoPrimitives {

/// Writes records to the clipboard: a block in the format "ZoCad" with the bytes that a file would hold,
/// header included. Records are never scrambled, whatever `SetUsesSecurity` says.
///
/// Call `Initialize`, write records, call `Finalize`, which alone touches the clipboard: it replaces the
/// contents completely or not at all. A stream destroyed before `Finalize` leaves the clipboard unchanged.
/// After `Finalize`, `Initialize` starts a new block.
class ZO_API TClipboardBinOutStream : public TBinOutStream {
public:
    TClipboardBinOutStream();
    TClipboardBinOutStream(unsigned version, unsigned release);
    ~TClipboardBinOutStream() override;
    TClipboardBinOutStream(const TClipboardBinOutStream&) = delete;
    TClipboardBinOutStream& operator=(const TClipboardBinOutStream&) = delete;

    /// Starts a new block with the header. If the open record is not empty, its bytes (a header that
    /// `SaveHeader` placed there) are used instead.
    void Initialize() override;
    /// Fails an assertion outside `Initialize` and `Finalize`.
    void FlushRecord(int uid, int classId) override;
    void FlushBuffer() override;
    /// Puts the record count into the header and replaces the clipboard's contents with the block. Does
    /// nothing before `Initialize` and after a successful call. Throws `XWriteStreamOutOfSpace`, or
    /// `XWriteStream` with the reason ("Clipboard in use" when another program keeps it open for a second);
    /// the stream then still holds everything, and `Finalize` may be called again.
    void Finalize();
    /// Discards what was written since `Initialize`.
    void FreeResourses() override;
    void RewriteHeader() override;
    /// Throws `XWriteStream` "Feature (reset) not implemented".
    void Reset();
    bool PutsDirectly() const override;

private:
    bool writing = false;
    bool plainHeader = false;          // written by `SaveHeader`
    unsigned long long headerSize = 0; // bytes before the first record
};

} // namespace ZoPrimitives
