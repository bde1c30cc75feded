#include "ZoPrimitives/FileBinOutStream.h"

#include "Persistence/records/FileAccess.h"
#include "Persistence/records/FileReplacement.h"
#include "Persistence/records/HeadDigest.h"
#include "Persistence/records/RecordFormat.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace ZoPrimitives {

namespace {

constexpr const char* WRITE = "TFileBinOutStream::WriteToFile";

} // namespace

TFileBinOutStream* TFileBinOutStream::Create(const char* fileName, bool backup) {
    return new TFileBinOutStream(fileName, backup);
}

TFileBinOutStream* TFileBinOutStream::Create(const char* fileName, unsigned version, unsigned release,
                                             bool backup) {
    return new TFileBinOutStream(fileName, version, release, backup);
}

TFileBinOutStream* TFileBinOutStream::Create(const TZoPath& path, bool backup) {
    return Create(path, 0, 0, backup);
}

TFileBinOutStream* TFileBinOutStream::Create(const TZoPath& path, unsigned version, unsigned release,
                                             bool backup) {
    return new TFileBinOutStream(path, version, release, backup);
}

TFileBinOutStream::TFileBinOutStream(const char* name, bool keepBackup)
    : TFileBinOutStream(name, 0, 0, keepBackup) {}

TFileBinOutStream::TFileBinOutStream(const char* name, unsigned version, unsigned release, bool keepBackup)
    : TFileBinOutStream(TZoPath(name), version, release, keepBackup) {}

TFileBinOutStream::TFileBinOutStream(const TZoPath& name, unsigned version, unsigned release, bool keepBackup)
    : TBinOutStream(version, release), names(std::make_unique<FileReplacement>(name)),
      writtenPath(&names->Target()), backup(keepBackup) {}

TFileBinOutStream::~TFileBinOutStream() {
    ExpectFinalized(state == State::Writing && GetNInstances() != 0);
    TFileBinOutStream::FreeResourses();
    Abandon(); // closes what an exception during `Finalize` left open
}

void TFileBinOutStream::Initialize() {
    ZO_ASSERT(state == State::New, "state == State::New && \"[zoerror] a stream writes one file\"",
              ZoSources::FILE_BIN_OUT_STREAM);
    if (GetBufferSize() == 0) {
        BeginDigest();
        SaveHeader();
    }
    plainHeader = GetBufferSize() == HeaderSize();
    headerCount = GetNInstances();
    if (file == nullptr) {
        throughTemporary =
            backup || asksTemporary || Platform::Current().NetworkFile(GetFilePath().Utf8().c_str());
        writtenPath = &names->Target();
        if (throughTemporary) {
            names->CheckNames(backup);
            MakeTemporary();
        }
        OpenFile(*writtenPath);
    } else if (Platform::Current().SeekFile(file, 0, Platform::Origin::Current, headerStart)) {
        isWhole = headerStart == 0;
    } else {
        headerStart = 0;
    }
    state = State::Writing;
    SetBegun(true);
    FlushBuffer();
}

void TFileBinOutStream::MakeTemporary() {
    const std::string name = Platform::Current().TemporaryFileName(GetFilePath().Utf8().c_str());
    if (name.empty()) ThrowUnwritten(Platform::LastError(), "TFileBinOutStream::Initialize", GetFilePath());
    try {
        temporary = TZoPath::FromUtf8(name.c_str());
    } catch (...) {
        Platform::Current().DeleteWholeFile(name.c_str()); // empty still
        throw;
    }
    writtenPath = &temporary;
}

void TFileBinOutStream::OpenFile(const TZoPath& path) {
    file = Platform::Current().OpenFile(
        path.Utf8().c_str(), Platform::Access::ReadWrite, Platform::Share::Read,
        throughTemporary ? Platform::Creation::FillTemporary : Platform::Creation::CreateAlways);
    if (file != nullptr) {
        ownsFile = true;
        return;
    }
    const unsigned long error = Platform::LastError();
    if (throughTemporary) {
        // It is still empty.
        Platform::Current().DeleteWholeFile(path.Utf8().c_str());
        writtenPath = &names->Target();
    }
    ThrowUnwritten(error, "TFileBinOutStream::Initialize", GetFilePath());
}

void TFileBinOutStream::CheckWriting() const {
    if (state != State::Writing) ThrowUnwritten(Platform::ErrorInvalidHandle, WRITE, GetFilePath());
}

// Writing

void TFileBinOutStream::FlushRecord(int uid, int classId) {
    CheckWriting();
    Frame(uid, classId, true);
    if (Records().FramesSize() >= RecordFormat::GATHER_SIZE) WriteGathered();
}

void TFileBinOutStream::FlushBuffer() {
    CheckWriting();
    Records().FrameRaw();
    WriteGathered();
}

void TFileBinOutStream::WriteGathered() {
    unsigned long long size = 0;
    const unsigned char* data = Records().Frames(size);
    if (size == 0) return;
    WriteBytes(data, static_cast<unsigned>(size));
    Records().DropFrames();
}

void TFileBinOutStream::WriteToFile(const unsigned char* data, unsigned size) {
    CheckWriting();
    WriteGathered();
    InvalidateDigest();
    WriteBytes(data, size);
}

void TFileBinOutStream::WriteBytes(const unsigned char* data, unsigned size) {
    if (Platform::Current().WriteFile(file, data, size)) return NoteEnd();
    const unsigned long error = Platform::LastError();
    Abandon();
    ThrowUnwritten(error, WRITE, GetFilePath());
}

/// Notes how far the file was written: the stream, or the caller by the handle, may go back before it ends.
void TFileBinOutStream::NoteEnd() {
    unsigned long long position = 0;
    if (isWhole && Platform::Current().SeekFile(file, 0, Platform::Origin::Current, position)) {
        writtenEnd = std::max(writtenEnd, position);
    }
}

void TFileBinOutStream::SeekTo(unsigned long long offset, const char* location) {
    unsigned long long reached = 0;
    if (Platform::Current().SeekFile(file, static_cast<long long>(offset), Platform::Origin::Begin, reached))
        return;
    const unsigned long error = Platform::LastError();
    Abandon();
    ThrowUnwritten(error, location, GetFilePath());
}

unsigned long long TFileBinOutStream::GetPosition() {
    CheckWriting();
    WriteGathered();
    unsigned long long position = 0;
    if (Platform::Current().SeekFile(file, 0, Platform::Origin::Current, position)) return position;
    const unsigned long error = Platform::LastError();
    Abandon();
    ThrowUnwritten(error, "TFileBinOutStream::GetPosition", GetFilePath());
}

void TFileBinOutStream::Reset() {
    CheckWriting();
    WriteGathered();
    InvalidateDigest();
    SeekTo(headerStart, "TFileBinOutStream::Reset");
}

void TFileBinOutStream::InvalidateDigest() {
    if (HeadDigest* heads = Records().Digest()) heads->Invalidate();
}

void TFileBinOutStream::RewriteHeader() {
    if (state != State::Writing) return;
    const std::vector<unsigned char> header = HeaderBytes();
    const unsigned long long after = GetPosition();
    SeekTo(headerStart, "TFileBinOutStream::RewriteHeader");
    WriteBytes(header.data(), static_cast<unsigned>(header.size()));
    headerCount = GetNInstances();
    SeekTo(after, "TFileBinOutStream::RewriteHeader");
}

void* TFileBinOutStream::GetFile() const {
    // The caller is to find all that was written so far in the file; the stream itself stays the same.
    if (state == State::Writing) const_cast<TFileBinOutStream*>(this)->WriteGathered();
    return file;
}

void TFileBinOutStream::SetFile(void* openFile) {
    ZO_ASSERT(state == State::New,
              "state == State::New && \"[zoerror] the file is chosen before writing begins\"",
              ZoSources::FILE_BIN_OUT_STREAM);
    file = openFile;
}

// Ending

void TFileBinOutStream::Abandon() {
    state = State::Ended;
    Records().DropFrames();
    if (ownsFile && file != nullptr) Platform::Current().CloseFile(std::exchange(file, nullptr));
}

void TFileBinOutStream::FreeResourses() {
    if (state != State::Writing) return;
    unsigned long long size = 0;
    const unsigned char* data = Records().Frames(size);
    if (size != 0) Platform::Current().WriteFile(file, data, static_cast<std::size_t>(size));
    Abandon();
}

void TFileBinOutStream::Discard() {
    Abandon();
    if (writtenPath != &temporary) return;
    Platform::Current().DeleteWholeFile(temporary.Utf8().c_str());
    writtenPath = &names->Target();
}

void TFileBinOutStream::Finalize() {
    if (state != State::Writing) return;
    if (plainHeader && (headerCount != GetNInstances() || Records().HasDigest())) RewriteHeader();
    WriteGathered();
    if (isWhole) EndFile();
    state = State::Ended;
    if (!ownsFile) return;
    CloseWritten();
    if (backup) names->MakeBackup();
    if (throughTemporary) ReplaceTarget();
    names->Conclude();
    writtenPath = &names->Target();
}

/// Cuts off what an earlier, longer version left: it would be read as records of this one.
void TFileBinOutStream::EndFile() {
    NoteEnd();
    unsigned long long size = 0;
    const bool known = Platform::Current().FileSize(file, size);
    if (!known && Platform::LastError() == Platform::ErrorInvalidFunction) return; // a device
    if (known && (size <= writtenEnd || Platform::Current().TruncateFile(file, writtenEnd))) return;
    const unsigned long error = Platform::LastError();
    Abandon();
    ThrowUnwritten(error, FINALIZE, GetFilePath());
}

void TFileBinOutStream::CloseWritten() {
    const bool synchronised = !throughTemporary || Platform::Current().SynchroniseFile(file);
    const unsigned long error = Platform::LastError();
    const bool closed = Platform::Current().CloseFile(std::exchange(file, nullptr));
    if (!synchronised) ThrowUnwritten(error, FINALIZE, GetFilePath());
    if (!closed) ThrowUnwritten(Platform::LastError(), FINALIZE, GetFilePath());
    complete = true;
}

void TFileBinOutStream::ReplaceTarget() {
    names->Announce(temporary);
    writtenPath = &names->Fresh();
    names->Perform();
}

const ZoString& TFileBinOutStream::GetFileName() const { return names->Target().Text(); }
const TZoPath& TFileBinOutStream::GetFilePath() const { return names->Target(); }

bool TFileBinOutStream::PutsDirectly() const { return typeid(*this) == typeid(TFileBinOutStream); }

} // namespace ZoPrimitives
