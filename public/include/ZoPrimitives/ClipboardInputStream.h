#pragma once

#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

#include <memory>

namespace ZoPrimitives {

class OpenedClipboard;

/// Reads the values that a `ClipboardOutputStream` put on the clipboard, each as the type that it was written
/// as. The stream keeps the clipboard open, and closed to everybody else, until it is destroyed: destroy it
/// soon, on the thread that created it.
///
/// A value of another size, or one that reaches beyond the block, throws `XReadStream` "Invalid data size";
/// the stream stays before it. Ignores zeros that the system has appended to the block.
class ZO_API ClipboardInputStream : public InputStream {
public:
    /// Throws `XReadStream`: "Invalid data handle" when the clipboard holds nothing in the format "ZoCad",
    /// otherwise the reason ("Clipboard in use" when another program keeps it open for a second).
    ClipboardInputStream();
    ~ClipboardInputStream() override;

    InputStream& operator>>(ZoString& value) override;
    /// Copies the value's bytes and appends a 0 byte unless they end with one. The buffer's size is not
    /// checked, and another program may have written a value of any length: use this only for blocks that
    /// this program wrote.
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
    unsigned long long consumed = 0;     // bytes of the block read so far
    unsigned long long size = 0;
    unsigned long long valuesEnd = 0; // offset before which the last value begins
};

} // namespace ZoPrimitives
