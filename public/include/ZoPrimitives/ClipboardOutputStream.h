#pragma once

#include "ZoPrimitives/OutputStream.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoClipboardFormat.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include <cstddef>
#include <cstdint>

namespace ZoPrimitives {

/// The bytes of one value on the clipboard.
using BinaryData = ZoBlob;

/// Writes values to the clipboard in the format "ZoCad": each as a 32-bit length in bytes and the bytes as
/// they are in memory; a text includes its terminating 0 byte.
///
/// Values are collected in memory and replace the clipboard's contents at once, in `Finalize`, which reports
/// failures, or in the destructor, which cannot. A stream without values puts an empty block there.
class ZO_API ClipboardOutputStream : public OutputStream {
public:
    ClipboardOutputStream();
    /// Puts the values on the clipboard unless `Finalize` has; does not report failures.
    ~ClipboardOutputStream() override;

    using OutputStream::operator<<;
    OutputStream& operator<<(const ZoString& value) override;
    OutputStream& operator<<(const char* value) override;
    OutputStream& operator<<(long double value) override;
    OutputStream& operator<<(double value) override;
    OutputStream& operator<<(float value) override;
    OutputStream& operator<<(unsigned int value) override;
    OutputStream& operator<<(int value) override;
    OutputStream& operator<<(unsigned short value) override;
    OutputStream& operator<<(short value) override;
    OutputStream& operator<<(bool value) override;

    /// Puts the values on the clipboard. Throws `XWriteStreamOutOfSpace`, or `XWriteStream` with the reason
    /// ("Clipboard in use" when another program keeps it open for a second); it may be called again then.
    /// After success the stream takes no more values, and neither a second call nor the destructor does
    /// anything.
    void Finalize();

private:
    OutputStream& AddBinaryData(const void* data, std::size_t size);
    void PutDataInClipboard();

    pointer<TDList<BinaryData>> records;
    std::uint32_t total = 0; // size of the block in bytes
    bool finalized = false;
};

} // namespace ZoPrimitives
