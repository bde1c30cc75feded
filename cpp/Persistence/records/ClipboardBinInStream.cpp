#include "ZoPrimitives/ClipboardBinInStream.h"

#include "Persistence/records/ClipboardAccess.h"
#include "Persistence/records/RecordFormat.h"
#include "ZoPrimitives/XStream.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <typeinfo>
#include <utility>

namespace ZoPrimitives {

namespace {

/// Finds where the records of a block end. Zeros behind the last record do not count; those that it ends
/// with do.
std::size_t EndOfRecords(const unsigned char* block, std::size_t size) {
    std::size_t zeros = size;
    while (zeros != 0 && block[zeros - 1] == 0) --zeros;
    std::size_t at = RecordFormat::HEADER_SIZE;
    if (size < at) return size;
    std::uint32_t extraLength = 0;
    std::memcpy(&extraLength, block + at - sizeof extraLength, sizeof extraLength);
    if (extraLength < size - at) at += extraLength;
    while (at < zeros) {
        std::size_t step = 1;
        if (size - at >= RecordFormat::HEAD_SIZE) {
            const RecordFormat::RecordHead head = RecordFormat::ReadHead(block + at);
            const std::size_t frame = RecordFormat::HEAD_SIZE + head.size;
            if (RecordFormat::IsMarker(head.marker) && head.size != 0 && head.size <= DEFAULT_BUFFER_SIZE &&
                frame <= size - at)
                step = frame;
        }
        at += step;
    }
    return at;
}

} // namespace

TClipboardBinInStream::TClipboardBinInStream(unsigned newest) : TBinInStream(newest, true) {}

TClipboardBinInStream::~TClipboardBinInStream() { std::free(copy); }

void TClipboardBinInStream::Initialize() {
    GetDataFromClipboard();
    ReadHeader("TClipboardBinInStream::TClipboardBinInStream");
}

void TClipboardBinInStream::GetDataFromClipboard() {
    SetWindow(nullptr, nullptr);
    std::free(std::exchange(copy, nullptr));
    const OpenedClipboard clipboard("TClipboardBinInStream::GetDataFromClipboard");
    std::size_t size = 0;
    const unsigned char* data = clipboard.Data(size);
    copy = static_cast<unsigned char*>(std::malloc(size + 1)); // never of 0 bytes
    if (copy == nullptr) throw std::bad_alloc();
    if (size != 0) std::memcpy(copy, data, size);
    SetWindow(copy, copy + EndOfRecords(copy, size));
    SetAsksRead(!TClipboardBinInStream::GetsDirectly());
}

bool TClipboardBinInStream::Read(void* data, unsigned size, unsigned& done) {
    return ReadWindow(data, size, done);
}

unsigned long long TClipboardBinInStream::Seek(unsigned, int) {
    throw XReadStream("Feature (seek) not implemented", "TClipboardBinInStream::Seek");
}

bool TClipboardBinInStream::GetsDirectly() const { return typeid(*this) == typeid(TClipboardBinInStream); }

} // namespace ZoPrimitives
