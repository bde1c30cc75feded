#pragma once

#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

#include <memory>

namespace ZoPrimitives {

class OpenedClipboard;

/// Reads the values that a `ClipboardOutputStream` put on the clipboard, each as the type that it was written
/// as. The clipboard is open, for nobody else, until the stream goes: on the thread that made it, and soon.
///
/// A value of another size throws `XReadStream` "Invalid data size", as does one that reaches beyond the
/// block; the stream stays before it. Zeros that the system has put behind the block are no values.
class ZO_API ClipboardInputStream : public InputStream {
public:
    /// Throws `XReadStream`: "Invalid data handle" when there is nothing in the format "ZoCad", otherwise the
    /// reason ("Clipboard in use": another program has it open, a second long).
    ClipboardInputStream();
    ~ClipboardInputStream() override;

    InputStream& operator>>(ZoString& value) override;
    /// Copies the value's bytes and, unless they end with one, a 0 byte. A stranger may have put a value of
    /// any length there: the size of the whole block is not known to the caller, so this is safe for blocks
    /// of the program's own only.
    InputStream& operator>>(char* buffer) override;
    InputStream& operator>>(long double& value) override;
    InputStream& operator>>(double& value) override;
    InputStream& operator>>(float& value) override;
    InputStream& operator>>(unsigned int& value) override;
    InputStream& operator>>(int& value) override;
    InputStream& operator>>(unsigned short& value) override;
    InputStream& operator>>(short& value) override;
    InputStream& operator>>(bool& value) override;
    void SkipValue() override;
    bool GetLine(char* buffer) override;
    void CheckRead() override;

private:
    void GetDataFromClipboard();
    void ReadBinaryData(void* target, unsigned size);
    void ReadString(char* target);
    void IncrementClipboardDataPointer(unsigned long long size);
    unsigned NextSize(const char* location);

    std::unique_ptr<OpenedClipboard> clipboard;
    const unsigned char* data = nullptr; // the next value
    unsigned long long consumed = 0;     // bytes of the block
    unsigned long long size = 0;
    unsigned long long valuesEnd = 0; // the last value begins before this
};

} // namespace ZoPrimitives
