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

/// Writes values for the clipboard: in the format "ZoCad", each as its length in bytes, of 32 bits, and its
/// bytes as they stand in memory; a text has a terminating 0 byte.
///
/// Values are collected in memory and replace what the clipboard holds at once, in `Finalize`, which reports
/// failures, or in the destructor, which cannot. Without values it is an empty block that does so.
class ZO_API ClipboardOutputStream : public OutputStream {
public:
    ClipboardOutputStream();
    /// Puts on the clipboard what `Finalize` has not put there; a failure is not reported.
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
    /// ("Clipboard in use": another program has it open, a second long); it may be called again then. After
    /// a success the stream takes no more values; a second call, and the destructor, do nothing.
    void Finalize();

private:
    OutputStream& AddBinaryData(const void* data, std::size_t size);
    void PutDataInClipboard();

    pointer<TDList<BinaryData>> records;
    std::uint32_t total = 0; // bytes of the block
    bool finalized = false;
};

} // namespace ZoPrimitives
