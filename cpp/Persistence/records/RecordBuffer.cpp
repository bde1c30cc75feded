#include "ZoPrimitives/RecordBuffer.h"

#include "Persistence/checksums/Crc32Kernel.h"
#include "Persistence/records/HeadDigest.h"
#include "Persistence/records/RecordFormat.h"
#include "Platform/Memory.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr std::size_t GATHER_CAPACITY =
    RecordFormat::GATHER_SIZE + DEFAULT_BUFFER_SIZE + 2 * RecordFormat::HEAD_SIZE;
constexpr std::size_t FIRST_KEEP_CAPACITY = 64 * 1024;

// Summing loads 16 bytes at a time, and the processor stalls where smaller stores have only just been made.
// So frames are summed once they lie this far behind.
constexpr std::ptrdiff_t SUM_LAG = 4 * 1024;
constexpr std::ptrdiff_t SUM_BATCH = 8 * 1024;

} // namespace

RecordBuffer::RecordBuffer(Use itsUse) : use(itsUse) {
    Allocate(use == Use::Gather ? GATHER_CAPACITY : FIRST_KEEP_CAPACITY);
    StartEmpty();
}

RecordBuffer::~RecordBuffer() { std::free(block); }

void RecordBuffer::Assign(const RecordBuffer& other) {
    if (use == Use::Gather || other.use == Use::Gather) {
        Drop();
        Append(other.record, other.Size());
        digest = nullptr;
        return;
    }
    const std::size_t payload = other.Size();
    const auto frames = static_cast<std::size_t>(other.framesEnd - other.block);
    const std::size_t needed = frames + payload + 2 * RecordFormat::HEAD_SIZE;
    if (needed > static_cast<std::size_t>(blockEnd - block)) Allocate(needed);
    std::memcpy(block, other.block, frames);
    summedEnd = block + (other.summedEnd - other.block);
    SetBounds(frames, payload);
    std::memcpy(record, other.record, payload);
    digest = other.digest == nullptr ? nullptr : std::make_unique<HeadDigest>(*other.digest);
}

void RecordBuffer::Allocate(std::size_t capacity) {
    auto* bytes = static_cast<unsigned char*>(std::realloc(block, capacity));
    if (bytes == nullptr) throw std::bad_alloc();
    if (use == Use::Keep) Platform::AdviseLargePages(bytes, capacity); // the other kind is rarely filled
    block = bytes;
    blockEnd = bytes + capacity;
}

void RecordBuffer::SetBounds(std::size_t frames, std::size_t payload) {
    framesEnd = block + frames;
    record = framesEnd + RecordFormat::HEAD_SIZE;
    position = record + payload;
    // Room for a head stays free behind the record, so that the next one can always begin.
    const std::ptrdiff_t room = blockEnd - record - static_cast<std::ptrdiff_t>(RecordFormat::HEAD_SIZE);
    limit = record + std::clamp<std::ptrdiff_t>(room, 0, DEFAULT_BUFFER_SIZE);
}

void RecordBuffer::StartEmpty() {
    SetBounds(0, 0);
    summedEnd = block;
}

void RecordBuffer::MakeRoom(std::size_t size, std::size_t head) {
    const std::size_t payload = Size();
    const std::size_t room = DEFAULT_BUFFER_SIZE - payload;
    ZO_ASSERT(head <= room && size <= room - head,
              "size <= DEFAULT_BUFFER_SIZE - GetBufferSize() && \"[zoerror] the record is too big\"",
              ZoSources::BIN_OUT_STREAM);
    const auto frames = static_cast<std::size_t>(framesEnd - block);
    const auto summed = static_cast<std::size_t>(summedEnd - block);
    const auto capacity = static_cast<std::size_t>(blockEnd - block);
    const std::size_t needed = frames + payload + head + size + 2 * RecordFormat::HEAD_SIZE;
    Allocate(std::max(capacity * 2, needed));
    SetBounds(frames, payload);
    summedEnd = block + summed;
}

unsigned RecordBuffer::Crc() const { return ~Crc32Update(0xFFFFFFFFu, record, Size()); }

void RecordBuffer::Frame(int uid, int classId, unsigned key) {
    const unsigned size = Size();
    RecordFormat::RecordHead head{RecordFormat::MARKER, size, 0, classId, uid, key};
    unsigned char* frame = framesEnd;
    if (key != 0) {
        // The sum covers the plain payload, so it cannot wait.
        SumFrames(frame);
        head.crc = Crc();
        RecordFormat::Scramble(key, record, size);
    }
    RecordFormat::WriteHead(frame, head);
    framesEnd = position;
    if (key != 0) {
        summedEnd = framesEnd;
        if (digest != nullptr) digest->Add(frame);
    }
    SetBounds(static_cast<std::size_t>(framesEnd - block), 0);
    if (framesEnd - summedEnd > SUM_BATCH + SUM_LAG) SumFrames(framesEnd - SUM_LAG);
}

void RecordBuffer::SumFrames(const unsigned char* end) {
    while (summedEnd < end) {
        unsigned char* payload = summedEnd + RecordFormat::HEAD_SIZE;
        const std::uint32_t size = RecordFormat::ReadSize(summedEnd);
        if (payload + size > end) break;
        RecordFormat::WriteCrc(summedEnd, ~Crc32Update(0xFFFFFFFFu, payload, size));
        if (digest != nullptr) digest->Add(summedEnd);
        summedEnd = payload + size;
    }
}

void RecordBuffer::FrameRaw() {
    SumFrames(framesEnd);
    const unsigned size = Size();
    if (digest != nullptr && size != 0) digest->AddRaw();
    std::memmove(framesEnd, record, size);
    framesEnd += size;
    summedEnd = framesEnd;
    SetBounds(static_cast<std::size_t>(framesEnd - block), 0);
}

const unsigned char* RecordBuffer::Frames(unsigned long long& size) {
    SumFrames(framesEnd);
    size = FramesSize();
    return block;
}

void RecordBuffer::DropFrames() {
    const unsigned size = Size();
    std::memmove(block + RecordFormat::HEAD_SIZE, record, size);
    summedEnd = block;
    SetBounds(0, size);
}

void RecordBuffer::StartDigest(bool wanted) { digest = wanted ? std::make_unique<HeadDigest>() : nullptr; }

HeadDigest* RecordBuffer::Digest() {
    if (digest != nullptr) SumFrames(framesEnd);
    return digest.get();
}

void RecordBuffer::PatchFrames(const void* data, std::size_t size) {
    ZO_ASSERT(size <= FramesSize(), "size <= FramesSize()", ZoSources::BIN_OUT_STREAM);
    std::memcpy(block, data, size);
}

void RecordBuffer::ReleaseFrames() {
    try {
        Allocate(FIRST_KEEP_CAPACITY);
    } catch (const std::bad_alloc&) {
        // The block stays as large as it is.
    }
    StartEmpty();
}

unsigned char* RecordBuffer::TakeFrames(unsigned long long& size) {
    SumFrames(framesEnd);
    size = FramesSize();
    unsigned char* taken = std::exchange(block, nullptr);
    try {
        Allocate(FIRST_KEEP_CAPACITY);
    } catch (...) {
        block = taken;
        throw;
    }
    StartEmpty();
    return taken;
}

} // namespace ZoPrimitives
