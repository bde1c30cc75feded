#include "ZoPrimitives/ClipboardOutputStream.h"

#include "Persistence/records/ClipboardAccess.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"
#include "ZoPrimitives/ZoString.h"

#include <cstring>
#include <vector>

namespace ZoPrimitives {

ClipboardOutputStream::ClipboardOutputStream() : records(new TDList<BinaryData>) {}

ClipboardOutputStream::~ClipboardOutputStream() {
    try {
        Finalize();
    } catch (...) {
        // A destructor cannot report it.
    }
}

OutputStream& ClipboardOutputStream::AddBinaryData(const void* data, std::size_t size) {
    ZO_ASSERT(!finalized, "!finalized && \"[zoerror] a stream fills the clipboard once\"",
              ZoSources::CLIPBOARD_OUTPUT_STREAM);
    const std::uint32_t room = UINT32_MAX - total;
    ZO_ASSERT(room >= sizeof total && size <= room - sizeof total,
              "size <= room && \"[zoerror] too much for the clipboard\"", ZoSources::CLIPBOARD_OUTPUT_STREAM);
    records->Add(BinaryData(data, size));
    total += static_cast<std::uint32_t>(size + sizeof total);
    return *this;
}

OutputStream& ClipboardOutputStream::operator<<(const ZoString& value) {
    return AddBinaryData(value.c_str(), std::size_t{value.length()} + 1);
}
OutputStream& ClipboardOutputStream::operator<<(const char* value) {
    if (value == nullptr) value = "";
    return AddBinaryData(value, std::strlen(value) + 1);
}
OutputStream& ClipboardOutputStream::operator<<(long double value) {
    return *this << static_cast<double>(value);
}
OutputStream& ClipboardOutputStream::operator<<(double value) { return AddBinaryData(&value, sizeof value); }
OutputStream& ClipboardOutputStream::operator<<(float value) { return AddBinaryData(&value, sizeof value); }
OutputStream& ClipboardOutputStream::operator<<(unsigned int value) {
    return AddBinaryData(&value, sizeof value);
}
OutputStream& ClipboardOutputStream::operator<<(int value) { return AddBinaryData(&value, sizeof value); }
OutputStream& ClipboardOutputStream::operator<<(unsigned short value) {
    return AddBinaryData(&value, sizeof value);
}
OutputStream& ClipboardOutputStream::operator<<(short value) { return AddBinaryData(&value, sizeof value); }
OutputStream& ClipboardOutputStream::operator<<(bool value) {
    const unsigned char byte = value ? 1 : 0;
    return AddBinaryData(&byte, 1);
}

void ClipboardOutputStream::PutDataInClipboard() {
    std::vector<unsigned char> block;
    block.reserve(total);
    for (const BinaryData& record : *records) {
        const auto size = static_cast<std::uint32_t>(record.Size());
        const auto* length = reinterpret_cast<const unsigned char*>(&size);
        const auto* bytes = static_cast<const unsigned char*>(record.Data());
        block.insert(block.end(), length, length + sizeof size);
        block.insert(block.end(), bytes, bytes + size);
    }
    PutOnClipboard(block.data(), block.size(), "ClipboardOutputStream::PutDataInClipboard");
}

void ClipboardOutputStream::Finalize() {
    if (finalized) return;
    PutDataInClipboard();
    finalized = true;
    records->RemoveAll();
}

} // namespace ZoPrimitives
