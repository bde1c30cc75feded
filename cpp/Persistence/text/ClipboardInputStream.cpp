#include "ZoPrimitives/ClipboardInputStream.h"

#include "Persistence/records/ClipboardAccess.h"
#include "Persistence/text/TokenRead.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoString.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ZoPrimitives {

ClipboardInputStream::ClipboardInputStream() { GetDataFromClipboard(); }

ClipboardInputStream::~ClipboardInputStream() = default;

void ClipboardInputStream::GetDataFromClipboard() {
    clipboard = std::make_unique<OpenedClipboard>("ClipboardInputStream::GetDataFromClipboard");
    std::size_t bytes = 0;
    data = clipboard->Data(bytes);
    size = valuesEnd = bytes;
    // The length of a value is never 0, so trailing zeros hold no value.
    while (valuesEnd != 0 && data[valuesEnd - 1] == 0) --valuesEnd;
}

void ClipboardInputStream::CheckRead() {
    if (consumed >= valuesEnd) throw XEndOfStream();
}

void ClipboardInputStream::IncrementClipboardDataPointer(unsigned long long step) {
    data += step;
    consumed += step;
}

/// The size of the next value. Throws, without moving, if the value reaches beyond the block.
unsigned ClipboardInputStream::NextSize(const char* location) {
    CheckRead();
    const unsigned long long left = size - consumed;
    std::uint32_t length = 0;
    if (left >= sizeof length) {
        std::memcpy(&length, data, sizeof length);
        if (length <= left - sizeof length) return length;
    }
    throw XReadStream("Invalid data size", location, TStreamFailure::Damaged);
}

void ClipboardInputStream::ReadBinaryData(void* target, unsigned wanted) {
    constexpr const char* location = "ClipboardInputStream::ReadBinaryData";
    if (NextSize(location) != wanted)
        throw XReadStream("Invalid data size", location, TStreamFailure::Damaged);
    std::memcpy(target, data + sizeof wanted, wanted);
    IncrementClipboardDataPointer(sizeof wanted + wanted);
}

void ClipboardInputStream::ReadString(char* target) {
    const unsigned length = NextSize("ClipboardInputStream::ReadString");
    if (length != 0) std::memcpy(target, data + sizeof length, length);
    if (length == 0 || target[length - 1] != '\0') target[length] = '\0';
    IncrementClipboardDataPointer(sizeof length + 0ULL + length);
}

InputStream& ClipboardInputStream::operator>>(ZoString& value) {
    const unsigned length = NextSize("ClipboardInputStream::ReadString");
    const auto* text = reinterpret_cast<const char*>(data + sizeof length);
    const bool terminated = length != 0 && text[length - 1] == '\0';
    AssignWhole(value, text, terminated ? length - 1 : length);
    IncrementClipboardDataPointer(sizeof length + 0ULL + length);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(char* buffer) {
    ReadString(buffer);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(long double& value) {
    double stored = 0;
    ReadBinaryData(&stored, sizeof stored);
    value = stored;
    return *this;
}

InputStream& ClipboardInputStream::operator>>(double& value) {
    ReadBinaryData(&value, sizeof value);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(float& value) {
    ReadBinaryData(&value, sizeof value);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(unsigned int& value) {
    ReadBinaryData(&value, sizeof value);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(int& value) {
    ReadBinaryData(&value, sizeof value);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(unsigned short& value) {
    ReadBinaryData(&value, sizeof value);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(short& value) {
    ReadBinaryData(&value, sizeof value);
    return *this;
}

InputStream& ClipboardInputStream::operator>>(bool& value) {
    unsigned char byte = 0;
    ReadBinaryData(&byte, 1);
    value = byte != 0;
    return *this;
}

void ClipboardInputStream::SkipValue() {
    const unsigned length = NextSize("ClipboardInputStream::SkipValue");
    IncrementClipboardDataPointer(sizeof length + 0ULL + length);
}

bool ClipboardInputStream::GetLine(char* buffer) {
    return ReadsToken([&] { ReadString(buffer); });
}

} // namespace ZoPrimitives
