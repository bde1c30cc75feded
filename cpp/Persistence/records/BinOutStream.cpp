#include "ZoPrimitives/BinOutStream.h"

#include "Persistence/records/HeadDigest.h"
#include "Persistence/records/RecordFormat.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoSources.h"
#include "ZoPrimitives/ZoString.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace ZoPrimitives {

TBinOutStream::TBinOutStream() : TBinOutStream(0, 0) {}

TBinOutStream::TBinOutStream(unsigned version, unsigned release)
    : TBinOutStream(version, release, RecordBuffer::Use::Gather) {}

TBinOutStream::TBinOutStream(unsigned version, unsigned release, RecordBuffer::Use use) : records(use) {
    header.version = version;
    header.release = release;
}

TBinOutStream::TBinOutStream(const TBinOutStream& other) : TBinOutStream(0, 0, other.records.GetUse()) {
    *this = other;
}

TBinOutStream& TBinOutStream::operator=(const TBinOutStream& other) {
    if (this == &other) return *this;
    header = other.header;
    usesSecurity = other.usesSecurity;
    writesDigest = other.writesDigest;
    records.Assign(other.records);
    header.extraLength = records.HasDigest() ? sizeof(DigestBlock) : 0;
    return *this;
}

TBinOutStream::~TBinOutStream() = default;

bool TBinOutStream::operator==(const TBinOutStream& other) const {
    return header == other.header && GetBufferSize() == other.GetBufferSize() &&
           std::memcmp(records.Bytes(), other.records.Bytes(), GetBufferSize()) == 0;
}

void TBinOutStream::Put(const ZoBlob& value) {
    ZO_ASSERT_SITE(value.Size() <= UINT_MAX && value.Size() <= DEFAULT_BUFFER_SIZE,
                   "blob.Size() <= UINT_MAX && blob.Size() <= DEFAULT_BUFFER_SIZE && "
                   "\"[zoerror] the blob is too big\"",
                   ZoSources::PUT_BLOB);
    records.AppendBlock(value.Data(), static_cast<std::size_t>(value.Size()));
}

void TBinOutStream::Put(const ZoString& value) { records.AppendBlock(value.c_str(), value.length()); }

bool TBinOutStream::PutsDirectly() const { return false; }

TBinOutStream& TBinOutStream::operator<<(const ZoBlob& value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(const ZoString& value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(const char* value) {
    records.AppendBlock(value, value == nullptr ? 0 : std::strlen(value));
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(short value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(unsigned short value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(int value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(unsigned value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(float value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(double value) {
    Put(value);
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(long double value) {
    Put(static_cast<double>(value)); // some systems have a wider one, files do not
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(bool value) {
    Put(value);
    return *this;
}

// Uids may come in any order: the object writer makes them rise, and nothing is checked here.
void TBinOutStream::FlushRecord(int, int) { ++header.recordCount; }

void TBinOutStream::FreeResourses() {}

void TBinOutStream::SaveHeader() {
    *this << header.version << header.reserved1 << header.reserved2 << header.recordCount << header.release
          << header.reserved3 << header.extraLength;
    HeadDigest* heads = records.Digest();
    if (heads == nullptr) return;
    DigestedHeader whole{header, {}};
    if (heads->Covers())
        whole.block.digest = whole.DigestWith(*heads);
    else
        whole.block.layout = DigestBlock::NONE;
    *this << whole.block.name << whole.block.layout << whole.block.digest;
}

void TBinOutStream::BeginDigest() {
    records.StartDigest(writesDigest && GetBufferSize() == 0);
    header.extraLength = records.HasDigest() ? sizeof(DigestBlock) : 0;
}

unsigned TBinOutStream::HeaderSize() const { return RecordFormat::HEADER_SIZE + header.extraLength; }

void TBinOutStream::RewriteHeader() {}

void* TBinOutStream::GetFile() const { return nullptr; }

void TBinOutStream::SetFile(void*) {}

int TBinOutStream::AllocateHandle(const ZoStreamableBase* object) {
    ZO_ASSERT(object != nullptr, "object != nullptr", ZoSources::BIN_OUT_STREAM);
    return handles.Give(object);
}

unsigned TBinOutStream::GetCrc() const { return records.Crc(); }

unsigned TBinOutStream::GetSecurityKey() const { return usesSecurity ? 1u << (std::rand() % 3) : 0u; }

void TBinOutStream::ApplySecurityKey(unsigned key, unsigned char* data, unsigned size) {
    RecordFormat::Scramble(key, data, size);
}

void TBinOutStream::Frame(int uid, int classId, bool mayScramble) {
    TBinOutStream::FlushRecord(uid, classId);
    if (GetBufferSize() != 0) records.Frame(uid, classId, mayScramble ? GetSecurityKey() : 0);
}

void TBinOutStream::ExpectFinalized(bool forgotten) {
    // What an exception ends is given up.
    if (!forgotten || std::uncaught_exceptions() != 0) return;
    Expect("finalized", "[zoerror] Finalize was not called: what was written is not complete",
           ZoSources::BIN_OUT_STREAM, __LINE__);
}

std::vector<unsigned char> TBinOutStream::HeaderBytes() {
    // `SaveHeader` appends to the open record, which may be full, so the record is set aside.
    struct SetAside {
        explicit SetAside(RecordBuffer& itsBuffer)
            : buffer(itsBuffer), open(buffer.Bytes(), buffer.Bytes() + buffer.Size()) {
            buffer.Drop();
        }
        ~SetAside() {
            buffer.Drop();
            buffer.Append(open.data(), open.size()); // its room is still there
        }
        RecordBuffer& buffer;
        const std::vector<unsigned char> open;
    };
    const SetAside record(records);
    SaveHeader();
    return {records.Bytes(), records.Bytes() + records.Size()};
}

void TBinOutStream::StartAnew() {
    records.DropFrames();
    BeginDigest();
    header.recordCount = 0;
}

} // namespace ZoPrimitives
