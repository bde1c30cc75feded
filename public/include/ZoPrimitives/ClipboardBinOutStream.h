#pragma once

#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

namespace ZoPrimitives {

/// Writes records for the clipboard: a block in the format "ZoCad" with the bytes that a file would hold,
/// header included. Records are never scrambled, whatever `SetUsesSecurity` says.
///
/// `Initialize`, records, `Finalize`, which alone touches the clipboard: it is replaced as a whole or not at
/// all, and a stream that ends without `Finalize` leaves it as it is. Afterwards `Initialize` begins anew.
class ZO_API TClipboardBinOutStream : public TBinOutStream {
public:
    TClipboardBinOutStream();
    TClipboardBinOutStream(unsigned version, unsigned release);
    ~TClipboardBinOutStream() override;
    TClipboardBinOutStream(const TClipboardBinOutStream&) = delete;
    TClipboardBinOutStream& operator=(const TClipboardBinOutStream&) = delete;

    /// Starts anew with the header, or with the bytes of the open record when that is not empty (a header
    /// that `SaveHeader` placed there).
    void Initialize() override;
    /// Between `Initialize` and `Finalize` only; an assertion fails elsewhere.
    void FlushRecord(int uid, int classId) override;
    void FlushBuffer() override;
    /// Puts the record count into the header and the block on the clipboard, in place of everything that it
    /// held. Does nothing before `Initialize` and after it has succeeded. Throws `XWriteStreamOutOfSpace`, or
    /// `XWriteStream` with the reason ("Clipboard in use": another program has it open, a second long); the
    /// stream then still holds everything, and `Finalize` may be called again.
    void Finalize();
    /// Gives up what was written, without `Finalize`.
    void FreeResourses() override;
    void RewriteHeader() override;
    /// Throws `XWriteStream` "Feature (reset) not implemented".
    void Reset();
    bool PutsDirectly() const override;

private:
    bool writing = false;
    bool plainHeader = false;          // written by `SaveHeader`
    unsigned long long headerSize = 0; // of what stands before the records
};

} // namespace ZoPrimitives
