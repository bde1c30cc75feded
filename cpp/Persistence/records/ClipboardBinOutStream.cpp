#include "ZoPrimitives/ClipboardBinOutStream.h"

#include "Persistence/records/ClipboardAccess.h"
#include "Persistence/records/RecordFormat.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <typeinfo>

namespace ZoPrimitives {

TClipboardBinOutStream::TClipboardBinOutStream() : TClipboardBinOutStream(0, 0) {}
TClipboardBinOutStream::TClipboardBinOutStream(unsigned version, unsigned release)
    : TBinOutStream(version, release, RecordBuffer::Use::Keep) {}
TClipboardBinOutStream::~TClipboardBinOutStream() { ExpectFinalized(writing && GetNInstances() != 0); }

void TClipboardBinOutStream::Initialize() {
    StartAnew();
    if (GetBufferSize() == 0) SaveHeader();
    plainHeader = GetBufferSize() == HeaderSize();
    writing = true;
    SetBegun(true);
    FlushBuffer();
    headerSize = Records().FramesSize();
}

void TClipboardBinOutStream::FlushRecord(int uid, int classId) {
    ZO_ASSERT(writing, "writing && \"[zoerror] records go between Initialize and Finalize\"",
              ZoSources::CLIPBOARD_BIN_OUT_STREAM);
    Frame(uid, classId, false);
}

void TClipboardBinOutStream::FlushBuffer() {
    ZO_ASSERT(writing, "writing && \"[zoerror] bytes go between Initialize and Finalize\"",
              ZoSources::CLIPBOARD_BIN_OUT_STREAM);
    Records().FrameRaw();
}

void TClipboardBinOutStream::RewriteHeader() {
    if (!writing || headerSize < HeaderSize()) return;
    const std::vector<unsigned char> header = HeaderBytes();
    if (header.size() <= headerSize) Records().PatchFrames(header.data(), header.size());
}

void TClipboardBinOutStream::Finalize() {
    if (!writing) return;
    if (plainHeader) RewriteHeader();
    unsigned long long size = 0;
    const unsigned char* data = Records().Frames(size);
    PutOnClipboard(data, static_cast<std::size_t>(size), "TClipboardBinOutStream::Finalize");
    FreeResourses();
}

void TClipboardBinOutStream::FreeResourses() {
    writing = false;
    Records().ReleaseFrames();
}

void TClipboardBinOutStream::Reset() {
    throw XWriteStream("Feature (reset) not implemented", "TClipboardBinOutStream::Reset");
}

bool TClipboardBinOutStream::PutsDirectly() const { return typeid(*this) == typeid(TClipboardBinOutStream); }

} // namespace ZoPrimitives
