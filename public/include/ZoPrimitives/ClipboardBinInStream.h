#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

namespace ZoPrimitives {

/// Reads records from a copy of the clipboard's block, so that the clipboard is closed again at once. Ignores
/// zeros that the system has appended to the block.
class ZO_API TClipboardBinInStream : public TBinInStream {
public:
    static constexpr unsigned ANY_VERSION = 0xFFFFFFFFu;

    /// Reads nothing yet.
    explicit TClipboardBinInStream(unsigned supportedVersion = ANY_VERSION);
    ~TClipboardBinInStream() override;
    TClipboardBinInStream(const TClipboardBinInStream&) = delete;
    TClipboardBinInStream& operator=(const TClipboardBinInStream&) = delete;

    /// Copies the clipboard's current block and reads its header. Throws as `GetDataFromClipboard` does,
    /// `XReadStream` when the block holds no records, and `XNewerVersion`.
    void Initialize();
    /// Copies the clipboard's current block without reading its header. Throws `XReadStream`: "Invalid data
    /// handle" when the clipboard holds nothing in the format "ZoCad", otherwise the reason ("Clipboard in
    /// use" when another program keeps it open for a second).
    void GetDataFromClipboard();
    /// Reads raw bytes. An override in a derived class is called for every byte, the header's included.
    bool Read(void* data, unsigned size, unsigned& done) override;
    /// Throws `XReadStream` "Feature (seek) not implemented".
    unsigned long long Seek(unsigned offset, int origin);
    bool GetsDirectly() const override;

private:
    unsigned char* copy = nullptr;
};

} // namespace ZoPrimitives
