#include "ZoPrimitives/MemoryBinOutStream.h"

#include "Persistence/records/RecordFormat.h"
#include "ZoPrimitives/XStream.h"

#include <cstring>
#include <typeinfo>

namespace ZoPrimitives {

TMemoryBinOutStream::TMemoryBinOutStream() : TMemoryBinOutStream(0, 0) {}
TMemoryBinOutStream::TMemoryBinOutStream(unsigned version, unsigned release)
    : TBinOutStream(version, release, RecordBuffer::Use::Keep) {}
TMemoryBinOutStream::TMemoryBinOutStream(const TMemoryBinOutStream&) = default;
TMemoryBinOutStream& TMemoryBinOutStream::operator=(const TMemoryBinOutStream&) = default;
TMemoryBinOutStream::~TMemoryBinOutStream() = default;

void TMemoryBinOutStream::Initialize() {
    StartAnew();
    SetBegun(true);
    if (GetBufferSize() == 0) SaveHeader();
    FlushBuffer();
    headerSize = GetSize() >= HeaderSize() ? GetSize() : 0;
}

void TMemoryBinOutStream::FlushRecord(int uid, int classId) { Frame(uid, classId, true); }

void TMemoryBinOutStream::FlushBuffer() { Records().FrameRaw(); }

void TMemoryBinOutStream::FreeResourses() {
    SetBegun(false);
    headerSize = 0;
    Records().ReleaseFrames();
}

void TMemoryBinOutStream::RewriteHeader() {
    if (headerSize == 0) return;
    const std::vector<unsigned char> header = HeaderBytes();
    if (header.size() <= headerSize) Records().PatchFrames(header.data(), header.size());
}

bool TMemoryBinOutStream::PutsDirectly() const { return typeid(*this) == typeid(TMemoryBinOutStream); }

const unsigned char* TMemoryBinOutStream::GetData() {
    unsigned long long size = 0;
    return Records().Frames(size);
}

unsigned char* TMemoryBinOutStream::Detach(unsigned long long& size) {
    SetBegun(false);
    headerSize = 0;
    return Records().TakeFrames(size);
}

unsigned long long TMemoryBinOutStream::WriteInMemory(void* block, unsigned long long size) {
    unsigned long long written = 0;
    const unsigned char* data = Records().Frames(written);
    if (written > size) throw XWriteStreamOutOfSpace("TMemoryBinOutStream::WriteInMemory");
    if (written != 0) std::memcpy(block, data, static_cast<std::size_t>(written));
    return written;
}

} // namespace ZoPrimitives
