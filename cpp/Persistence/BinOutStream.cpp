#include "ZoPrimitives/BinOutStream.h"

#include "Persistence/Crc32Kernel.h"
#include "Persistence/HandleAccess.h"
#include "Persistence/RecordFormat.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoString.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Persistence/BinOutStream";

constexpr std::size_t GATHER_CAPACITY =
    RecordFormat::GATHER_SIZE + DEFAULT_BUFFER_SIZE + 2 * RecordFormat::HEAD_SIZE;
constexpr std::size_t FIRST_KEEP_CAPACITY = 64 * 1024;

// A sum reads 16 bytes at a time what was stored in smaller pieces: right after the stores the processor
// stalls. Frames are summed once they lie this far behind.
constexpr std::ptrdiff_t SUM_LAG = 4 * 1024;
constexpr std::ptrdiff_t SUM_BATCH = 8 * 1024;

} // namespace

TBinOutStream::TBinOutStream() : TBinOutStream(0, 0) {}

TBinOutStream::TBinOutStream(unsigned version, unsigned release)
    : TBinOutStream(version, release, Buffering::Gather) {}

TBinOutStream::TBinOutStream(unsigned version, unsigned release, Buffering buffering) : buffering(buffering) {
    header.version = version;
    header.release = release;
    Allocate(buffering == Buffering::Gather ? GATHER_CAPACITY : FIRST_KEEP_CAPACITY);
    SetBounds(0, 0);
    summedEnd = buffer;
}

TBinOutStream::TBinOutStream(const TBinOutStream& other) : TBinOutStream(0, 0, other.buffering) {
    *this = other;
}

TBinOutStream& TBinOutStream::operator=(const TBinOutStream& other) {
    if (this == &other) return *this;
    header = other.header;
    usesSecurity = other.usesSecurity;
    const std::size_t payload = other.GetBufferSize();
    if (buffering == Buffering::Keep && other.buffering == Buffering::Keep) {
        const auto gathered = static_cast<std::size_t>(other.gatheredEnd - other.buffer);
        const std::size_t needed = gathered + payload + 2 * RecordFormat::HEAD_SIZE;
        if (needed > static_cast<std::size_t>(bufferEnd - buffer)) Allocate(needed);
        std::memcpy(buffer, other.buffer, gathered);
        summedEnd = buffer + (other.summedEnd - other.buffer);
        SetBounds(gathered, payload);
        std::memcpy(record, other.record, payload);
    } else {
        DropRecord();
        Append(other.record, payload);
    }
    return *this;
}

TBinOutStream::~TBinOutStream() { std::free(buffer); }

bool TBinOutStream::operator==(const TBinOutStream& other) const {
    return header == other.header && GetBufferSize() == other.GetBufferSize() &&
           std::memcmp(record, other.record, GetBufferSize()) == 0;
}

void TBinOutStream::Allocate(std::size_t capacity) {
    auto* bytes = static_cast<unsigned char*>(std::realloc(buffer, capacity));
    if (bytes == nullptr) throw std::bad_alloc();
    buffer = bytes;
    bufferEnd = bytes + capacity;
}

void TBinOutStream::SetBounds(std::size_t gathered, std::size_t payload) {
    gatheredEnd = buffer + gathered;
    record = gatheredEnd + RecordFormat::HEAD_SIZE;
    position = record + payload;
    // A head's room stays behind the record, so that the next one can always begin.
    const std::ptrdiff_t room = bufferEnd - record - static_cast<std::ptrdiff_t>(RecordFormat::HEAD_SIZE);
    limit = record + std::clamp<std::ptrdiff_t>(room, 0, DEFAULT_BUFFER_SIZE);
}

void TBinOutStream::MakeRoom(std::size_t size, std::size_t head) {
    const std::size_t payload = GetBufferSize();
    const std::size_t room = DEFAULT_BUFFER_SIZE - payload;
    ZO_ASSERT(head <= room && size <= room - head,
              "size <= DEFAULT_BUFFER_SIZE - GetBufferSize() && \"[zoerror] the record is too big\"", SOURCE);
    const auto gathered = static_cast<std::size_t>(gatheredEnd - buffer);
    const auto summed = static_cast<std::size_t>(summedEnd - buffer);
    const auto capacity = static_cast<std::size_t>(bufferEnd - buffer);
    const std::size_t needed = gathered + payload + head + size + 2 * RecordFormat::HEAD_SIZE;
    Allocate(std::max(capacity * 2, needed));
    SetBounds(gathered, payload);
    summedEnd = buffer + summed;
}

void TBinOutStream::Put(const ZoBlob& value) {
    ZO_ASSERT_AT(value.Size() <= UINT_MAX && value.Size() <= DEFAULT_BUFFER_SIZE,
                 "blob.Size() <= UINT_MAX && blob.Size() <= DEFAULT_BUFFER_SIZE && "
                 "\"[zoerror] the blob is too big\"",
                 SOURCE, 211);
    AppendBlock(value.Data(), static_cast<std::size_t>(value.Size()));
}

void TBinOutStream::Put(const ZoString& value) { AppendBlock(value.c_str(), value.length()); }

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
    AppendBlock(value, value == nullptr ? 0 : std::strlen(value));
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
    Put(static_cast<double>(value)); // wider than a double on some systems, never in the file
    return *this;
}

TBinOutStream& TBinOutStream::operator<<(bool value) {
    Put(value);
    return *this;
}

// Uids may come in any order: that they rise is the object writer's to keep, and nothing is checked here.
void TBinOutStream::FlushRecord(int, int) { ++header.recordCount; }

void TBinOutStream::FreeResourses() {}

void TBinOutStream::SaveHeader() {
    *this << header.version << header.reserved1 << header.reserved2 << header.recordCount << header.release
          << header.reserved3 << header.extraLength;
}

void TBinOutStream::RewriteHeader() {}

void* TBinOutStream::GetFile() const { return nullptr; }

void TBinOutStream::SetFile(void*) {}

void TBinOutStream::SetHandle(const ZoStreamableBase* object, int uid) {
    handles.Set(object, uid);
    if (object != nullptr && uid >= nextHandle) nextHandle = uid == INT_MAX ? INT_MAX : uid + 1;
}

int TBinOutStream::AllocateHandle(const ZoStreamableBase* object) {
    ZO_ASSERT(object != nullptr, "object != nullptr", SOURCE);
    HandleAccess::Allocate(*this, object);
    return nextHandle - 1;
}

void TBinOutStream::RefuseHandle() {
    AssertWithFunctor("nextHandle < INT_MAX && \"[zoerror] too many objects\"", "", SOURCE, __LINE__);
}

void TBinOutStream::ResetHandles() {
    handles.Reset();
    nextHandle = 1;
}

unsigned TBinOutStream::GetCrc() const { return ~Crc32Update(0xFFFFFFFFu, record, GetBufferSize()); }

unsigned TBinOutStream::GetSecurityKey() const { return usesSecurity ? 1u << (std::rand() % 3) : 0u; }

void TBinOutStream::ApplySecurityKey(unsigned key, unsigned char* data, unsigned size) {
    RecordFormat::Scramble(key, data, size);
}

bool TBinOutStream::Frame(int uid, int classId, bool mayScramble) {
    TBinOutStream::FlushRecord(uid, classId);
    const unsigned size = GetBufferSize();
    if (size == 0) return false;
    RecordFormat::RecordHead head{RecordFormat::MARKER, size, 0, classId, uid, 0};
    unsigned char* frame = gatheredEnd;
    const bool scramble = mayScramble && usesSecurity;
    if (scramble) {
        // The sum is of the plain payload, so it cannot wait.
        SumGathered(frame);
        head.crc = GetCrc();
        head.key = GetSecurityKey();
        ApplySecurityKey(head.key, record, size);
    }
    RecordFormat::WriteHead(frame, head);
    gatheredEnd = position;
    if (scramble) summedEnd = gatheredEnd;
    SetBounds(static_cast<std::size_t>(gatheredEnd - buffer), 0);
    if (gatheredEnd - summedEnd > SUM_BATCH + SUM_LAG) SumGathered(gatheredEnd - SUM_LAG);
    return true;
}

void TBinOutStream::SumGathered(const unsigned char* end) {
    while (summedEnd < end) {
        unsigned char* payload = summedEnd + RecordFormat::HEAD_SIZE;
        const std::uint32_t size = RecordFormat::ReadSize(summedEnd);
        if (payload + size > end) break;
        RecordFormat::WriteCrc(summedEnd, ~Crc32Update(0xFFFFFFFFu, payload, size));
        summedEnd = payload + size;
    }
}

void TBinOutStream::FrameRaw() {
    SumGathered(gatheredEnd);
    const unsigned size = GetBufferSize();
    std::memmove(gatheredEnd, record, size);
    gatheredEnd += size;
    summedEnd = gatheredEnd;
    SetBounds(static_cast<std::size_t>(gatheredEnd - buffer), 0);
}

const unsigned char* TBinOutStream::Gathered(unsigned long long& size) {
    SumGathered(gatheredEnd);
    size = GatheredSize();
    return buffer;
}

void TBinOutStream::DropGathered() {
    const unsigned size = GetBufferSize();
    std::memmove(buffer + RecordFormat::HEAD_SIZE, record, size);
    summedEnd = buffer;
    SetBounds(0, size);
}

void TBinOutStream::PatchGathered(unsigned long long offset, const void* data, std::size_t size) {
    const unsigned long long gathered = GatheredSize();
    ZO_ASSERT(offset <= gathered && size <= gathered - offset,
              "offset <= GatheredSize() && size <= GatheredSize() - offset", SOURCE);
    SumGathered(gatheredEnd);
    std::memcpy(buffer + offset, data, size);
}

std::vector<unsigned char> TBinOutStream::HeaderBytes() {
    // `SaveHeader` appends to the open record, which may be full: it is set aside.
    const std::vector<unsigned char> open(record, position);
    const auto restore = [&] {
        if (!open.empty()) std::memcpy(record, open.data(), open.size());
        position = record + open.size();
    };
    DropRecord();
    try {
        SaveHeader();
        std::vector<unsigned char> bytes(record, position);
        restore();
        return bytes;
    } catch (...) {
        restore();
        throw;
    }
}

void TBinOutStream::StartAnew() {
    DropGathered();
    header.recordCount = 0;
}

void TBinOutStream::ReleaseGathered() {
    DropRecord();
    DropGathered();
    try {
        unsigned long long size = 0;
        std::free(TakeGathered(size));
    } catch (const std::bad_alloc&) {
        return; // the block at hand stays, empty
    }
}

unsigned char* TBinOutStream::TakeGathered(unsigned long long& size) {
    SumGathered(gatheredEnd);
    size = GatheredSize();
    unsigned char* taken = std::exchange(buffer, nullptr);
    try {
        Allocate(FIRST_KEEP_CAPACITY);
    } catch (...) {
        buffer = taken;
        throw;
    }
    SetBounds(0, 0);
    summedEnd = buffer;
    return taken;
}

} // namespace ZoPrimitives
