#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

namespace ZoPrimitives {

/// Reads records from the clipboard: from a copy, so that the clipboard is closed again at once. Zeros that
/// the system has put behind the block are no records.
class ZO_API TClipboardBinInStream : public TBinInStream {
public:
    static constexpr unsigned ANY_VERSION = 0xFFFFFFFFu;

    /// Reads nothing yet.
    explicit TClipboardBinInStream(unsigned supportedVersion = ANY_VERSION);
    ~TClipboardBinInStream() override;
    TClipboardBinInStream(const TClipboardBinInStream&) = delete;
    TClipboardBinInStream& operator=(const TClipboardBinInStream&) = delete;

    /// Takes what is on the clipboard now and reads its header. Throws as `GetDataFromClipboard`,
    /// `XReadStream` when it is no block of records, and `XNewerVersion`.
    void Initialize();
    /// Takes what is on the clipboard now, without reading its header. Throws `XReadStream`: "Invalid data
    /// handle" when there is nothing in the format "ZoCad", otherwise the reason ("Clipboard in use": another
    /// program has it open, a second long).
    void GetDataFromClipboard();
    /// Raw bytes. A derived class that overrides it is asked for every byte, header included.
    bool Read(void* data, unsigned size, unsigned& done) override;
    /// Throws `XReadStream` "Feature (seek) not implemented".
    unsigned long long Seek(unsigned offset, int origin);
    bool GetsDirectly() const override;

private:
    unsigned char* copy = nullptr;
};

} // namespace ZoPrimitives
