#include "ZoPrimitives/ZoFrames.h"

#include "Persistence/checksums/Crc32Kernel.h"
#include "Persistence/records/BytesWindow.h"
#include "Persistence/records/HeadDigest.h"
#include "Persistence/records/RecordCursors.h"
#include "Persistence/records/RecordFormat.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace ZoPrimitives {

using RecordFormat::HEAD_SIZE;
using RecordFormat::HEADER_SIZE;
using RecordFormat::RecordHead;
using Offset = unsigned long long;

/// Looks for frames. What it does in vain is charged to an allowance that grows with what is read, so that no
/// file makes it work much longer than its size tells.
class ZO_HIDDEN TZoFrameReader::Hunt {
public:
    explicit Hunt(TZoBytes& bytes) : window(bytes), end(window.End()) {
        ReadHeader();
        Restart();
    }

    void Restart();
    bool Next(TZoFrame& frame);
    bool ReadAt(Offset offset, TZoFrame& frame);
    TZoDigestState DigestState();
    unsigned FoundDigest() { return whole.DigestWith(digest); }

    BytesWindow window;
    DigestedHeader whole{};
    TZoHeaderState headerState = TZoHeaderState::Right;
    Offset first = 0;
    bool headsOnly = false;
    const unsigned char* payload = nullptr;
    unsigned payloadSize = 0;

private:
    static constexpr Offset ALLOWANCE = 64 * 1024 * 1024;
    static constexpr Offset ALLOWANCE_PER_BYTE = 8;
    static constexpr std::size_t NEARBY = 1024 * 1024;
    static constexpr unsigned MARKER_SIZE = 4;

    void ReadHeader();
    Offset FirstFrame();
    bool HasDigestBlock() const {
        return whole.header.extraLength == sizeof whole.block && whole.block.name == DigestBlock::NAME;
    }

    RecordHead HeadAt(Offset offset);
    bool Fits(Offset offset, const RecordHead& head) const {
        return end - offset >= HEAD_SIZE && head.size <= DEFAULT_BUFFER_SIZE &&
               head.size <= end - offset - HEAD_SIZE;
    }
    bool EndsWell(Offset offset);
    bool Afford(Offset cost);
    const unsigned char* Plain(Offset offset, const RecordHead& head, std::size_t size);
    bool Verify(Offset offset, const RecordHead& head);
    unsigned FindPayload(Offset offset, const RecordHead& head, std::size_t most);
    bool IsBelievable(Offset offset);
    static const unsigned char* FindMarker(const unsigned char* from, const unsigned char* last);
    Offset FindMarker(Offset from);
    Offset NextBelievable(Offset from);

    bool TakeHere(TZoFrame& frame);
    bool TakeDamaged(TZoFrame& frame, const RecordHead& head);
    bool Fill(TZoFrame& frame, const RecordHead& head, Offset length, TZoFrameState state);

    Offset end;
    Offset at = 0;
    Offset number = 0;
    Offset spent = 0;
    HeadDigest digest;
    std::vector<unsigned char> plain; // a payload that was scrambled
    // No frame between these two is to be believed; one begins at the second, unless it is the end.
    Offset knownFrom = 1;
    Offset knownNext = 0;
};

// Header

void TZoFrameReader::Hunt::ReadHeader() {
    const BytesWindow::Stretch bytes = window.At(0, sizeof whole);
    whole.block = {0, 0, 0};
    if (bytes.size != 0) std::memcpy(&whole, bytes.begin, bytes.size);
    const TBinHeader& header = whole.header;
    const bool isInRange = header.version < RecordFormat::VERSION_LIMIT &&
                           header.release < RecordFormat::RELEASE_LIMIT &&
                           header.extraLength < RecordFormat::EXTRA_LENGTH_LIMIT;
    if (end < HEADER_SIZE || (isInRange && end - HEADER_SIZE < header.extraLength))
        headerState = TZoHeaderState::Short;
    else if (!isInRange)
        headerState = TZoHeaderState::Wrong;
    first = FirstFrame();
}

/// Where frames begin. If the header may be wrong, not behind a frame that can be believed.
Offset TZoFrameReader::Hunt::FirstFrame() {
    const Offset told = HEADER_SIZE + Offset{whole.header.extraLength};
    if (headerState != TZoHeaderState::Right)
        return told < end && RecordFormat::IsMarker(HeadAt(told).marker) ? told : 0;
    if (told == HEADER_SIZE || HasDigestBlock()) return told;
    return NextBelievable(HEADER_SIZE) < told ? HEADER_SIZE : told;
}

TZoDigestState TZoFrameReader::Hunt::DigestState() {
    if (headerState != TZoHeaderState::Right || !HasDigestBlock() || whole.block.layout == DigestBlock::NONE)
        return TZoDigestState::None;
    if (whole.block.layout != DigestBlock::LAYOUT) return TZoDigestState::Unknown;
    if (at != end) return TZoDigestState::Open;
    return FoundDigest() == whole.block.digest ? TZoDigestState::Right : TZoDigestState::Wrong;
}

void TZoFrameReader::Hunt::Restart() {
    at = first;
    number = 0;
    spent = 0;
    digest = HeadDigest();
    payload = nullptr;
    payloadSize = 0;
}

// Pieces of frames

/// What lies beyond the end is 0.
RecordHead TZoFrameReader::Hunt::HeadAt(Offset offset) {
    const BytesWindow::Stretch bytes = window.At(offset, HEAD_SIZE);
    if (bytes.size == HEAD_SIZE) return RecordFormat::ReadHead(bytes.begin);
    unsigned char part[HEAD_SIZE] = {};
    std::memcpy(part, bytes.begin, bytes.size);
    return RecordFormat::ReadHead(part);
}

/// Whether a frame may end there: the bytes end, too, or another frame begins.
bool TZoFrameReader::Hunt::EndsWell(Offset offset) {
    if (offset == end) return true;
    std::uint32_t marker = 0;
    return window.Peek(offset, &marker, MARKER_SIZE) == MARKER_SIZE && RecordFormat::IsMarker(marker);
}

/// Whether work that may be in vain can be done.
bool TZoFrameReader::Hunt::Afford(Offset cost) {
    if (spent + cost > ALLOWANCE + ALLOWANCE_PER_BYTE * at) return false;
    spent += cost;
    return true;
}

/// The payload of the frame at `offset`, if it has that size.
const unsigned char* TZoFrameReader::Hunt::Plain(Offset offset, const RecordHead& head, std::size_t size) {
    const BytesWindow::Stretch bytes = window.At(offset + HEAD_SIZE, size);
    if (bytes.size != size) return nullptr; // the file has become shorter
    const unsigned key = RecordFormat::DecodeKey(head.key);
    if (key == 0) return bytes.begin;
    plain.assign(bytes.begin, bytes.begin + size);
    RecordFormat::Scramble(key, plain.data(), size);
    return plain.data();
}

bool TZoFrameReader::Hunt::Verify(Offset offset, const RecordHead& head) {
    const unsigned char* bytes = Plain(offset, head, head.size);
    if (bytes == nullptr || ~Crc32Update(0xFFFFFFFFu, bytes, head.size) != head.crc) return false;
    payload = bytes;
    payloadSize = head.size;
    return true;
}

/// Looks for the end of a payload whose size is not what its head tells: where its checksum is right, and
/// another frame begins or the bytes end. Returns the size; 0: there is no such end.
unsigned TZoFrameReader::Hunt::FindPayload(Offset offset, const RecordHead& head, std::size_t most) {
    const Offset begin = offset + HEAD_SIZE;
    most = static_cast<std::size_t>(std::min<Offset>(end - begin, most));
    if (most == 0 || !Afford(most)) return 0;
    const BytesWindow::Stretch raw = window.At(begin, most + MARKER_SIZE);
    const unsigned char* bytes = Plain(offset, head, most);
    if (bytes == nullptr) return 0;
    std::uint32_t reg = 0xFFFFFFFF;
    std::size_t size = 0;
    const auto fits = [&](std::size_t until) {
        reg = Crc32Update(reg, bytes + size, until - size);
        size = until;
        return ~reg == head.crc;
    };
    const unsigned char* last = raw.begin + raw.size;
    bool found = false;
    for (const unsigned char* marker = FindMarker(raw.begin + 1, last); !found && marker != last;
         marker = FindMarker(marker + 1, last))
        found = fits(static_cast<std::size_t>(marker - raw.begin));
    if (!found && (begin + most != end || !fits(most))) return 0;
    payload = bytes;
    payloadSize = static_cast<unsigned>(size);
    return payloadSize;
}

bool TZoFrameReader::Hunt::IsBelievable(Offset offset) {
    const RecordHead head = HeadAt(offset);
    if (!Fits(offset, head)) return false;
    return EndsWell(offset + HEAD_SIZE + head.size) || (Afford(head.size) && Verify(offset, head));
}

/// The next bytes that are a marker; `last` if there are none.
const unsigned char* TZoFrameReader::Hunt::FindMarker(const unsigned char* from, const unsigned char* last) {
    // The second and the fourth byte of either marker.
    constexpr auto SECOND = static_cast<unsigned char>(RecordFormat::MARKER >> 8 & 0xFF);
    static_assert(SECOND == (RecordFormat::OTHER_MARKER >> 8 & 0xFF));
    while (static_cast<std::size_t>(last - from) >= MARKER_SIZE) {
        const auto searched = static_cast<std::size_t>(last - from) - MARKER_SIZE + 1;
        const void* found = std::memchr(from + 1, SECOND, searched);
        if (found == nullptr) break;
        from = static_cast<const unsigned char*>(found) - 1;
        std::uint32_t marker = 0;
        std::memcpy(&marker, from, MARKER_SIZE);
        if (RecordFormat::IsMarker(marker)) return from;
        ++from;
    }
    return last;
}

Offset TZoFrameReader::Hunt::FindMarker(Offset from) {
    while (from < end) {
        const BytesWindow::Stretch bytes = window.From(from, MARKER_SIZE);
        if (bytes.size < MARKER_SIZE) break;
        const unsigned char* last = bytes.begin + bytes.size;
        const unsigned char* marker = FindMarker(bytes.begin, last);
        if (marker != last) return from + static_cast<Offset>(marker - bytes.begin);
        from += bytes.size - MARKER_SIZE + 1;
    }
    return end;
}

/// The next place where a frame begins that is to be believed; the end if there is none.
Offset TZoFrameReader::Hunt::NextBelievable(Offset from) {
    if (from >= knownFrom && from <= knownNext) return knownNext;
    Offset marker = FindMarker(from);
    while (marker != end && !IsBelievable(marker)) marker = FindMarker(marker + 1);
    knownFrom = from;
    knownNext = marker;
    payload = nullptr; // of what was looked at
    payloadSize = 0;
    return marker;
}

// Frames

namespace {

void Describe(TZoFrame& frame, const RecordHead& head, Offset offset, Offset length, TZoFrameState state) {
    frame.offset = offset;
    frame.length = length;
    frame.marker = head.marker;
    frame.size = head.size;
    frame.crc = head.crc;
    frame.classId = head.classId;
    frame.uid = head.uid;
    frame.key = head.key;
    frame.state = state;
}

} // namespace

bool TZoFrameReader::Hunt::Fill(TZoFrame& frame, const RecordHead& head, Offset length, TZoFrameState state) {
    Describe(frame, head, at, length, state);
    frame.number = ++number;
    at += length;
    if (state != TZoFrameState::Whole) return true;
    unsigned char bytes[HEAD_SIZE];
    RecordFormat::WriteHead(bytes, head);
    digest.Add(bytes);
    return true;
}

/// Takes the frame that begins here, if one does.
bool TZoFrameReader::Hunt::TakeHere(TZoFrame& frame) {
    const RecordHead head = HeadAt(at);
    const bool isMarker = RecordFormat::IsMarker(head.marker);
    if (Fits(at, head)) {
        const Offset length = HEAD_SIZE + head.size;
        if (!headsOnly) window.At(at, static_cast<std::size_t>(length) + MARKER_SIZE); // at once
        // Whether the frame is taken as a whole in any case; what is not is looked at for a price.
        const bool endsWell = isMarker && EndsWell(at + length);
        if (endsWell && headsOnly) return Fill(frame, head, length, TZoFrameState::Whole);
        const bool isLookedAt =
            isMarker ? endsWell || at == knownNext || Afford(head.size) : head.size != 0 && Afford(head.size);
        if (isLookedAt && Verify(at, head))
            return Fill(frame, head, length, isMarker ? TZoFrameState::Whole : TZoFrameState::WrongMarker);
    }
    return isMarker && TakeDamaged(frame, head);
}

bool TZoFrameReader::Hunt::TakeDamaged(TZoFrame& frame, const RecordHead& head) {
    const Offset left = end - at;
    if (left < HEAD_SIZE) return Fill(frame, head, left, TZoFrameState::Torn);
    const bool fits = Fits(at, head);
    const Offset length = HEAD_SIZE + Offset{head.size};
    const bool endsWell = fits && EndsWell(at + length);
    const std::size_t most = endsWell ? std::max<std::size_t>(head.size, NEARBY) : DEFAULT_BUFFER_SIZE;
    if (const unsigned size = FindPayload(at, head, most))
        return Fill(frame, head, HEAD_SIZE + size, TZoFrameState::WrongSize);
    if (endsWell) return Fill(frame, head, length, TZoFrameState::WrongCrc);
    const Offset next = NextBelievable(at + MARKER_SIZE);
    if (fits && next >= at + length) return Fill(frame, head, length, TZoFrameState::WrongCrc);
    const bool isTorn = next == end && head.size <= DEFAULT_BUFFER_SIZE;
    return Fill(frame, head, next - at, isTorn ? TZoFrameState::Torn : TZoFrameState::WrongSize);
}

bool TZoFrameReader::Hunt::Next(TZoFrame& frame) {
    payload = nullptr;
    payloadSize = 0;
    frame.gap = 0;
    if (at != end && TakeHere(frame)) return true;
    if (at != end) {
        const Offset next = NextBelievable(at + 1);
        frame.gap = next - at;
        at = next;
        if (at != end && TakeHere(frame)) return true;
    }
    const Offset gap = frame.gap;
    frame = TZoFrame();
    frame.offset = end;
    frame.gap = gap;
    return false;
}

bool TZoFrameReader::Hunt::ReadAt(Offset offset, TZoFrame& frame) {
    payload = nullptr;
    payloadSize = 0;
    frame = TZoFrame();
    if (offset >= end) return false;
    const RecordHead head = HeadAt(offset);
    if (!RecordFormat::IsMarker(head.marker)) return false;
    const bool fits = Fits(offset, head);
    TZoFrameState state = head.size > DEFAULT_BUFFER_SIZE ? TZoFrameState::WrongSize
                          : fits                          ? TZoFrameState::WrongCrc
                                                          : TZoFrameState::Torn;
    if (fits && Verify(offset, head)) state = TZoFrameState::Whole;
    Describe(frame, head, offset, fits ? HEAD_SIZE + head.size : end - offset, state);
    return true;
}

// The reader

TZoFrameReader::TZoFrameReader(TZoBytes& bytes) : hunt(std::make_unique<Hunt>(bytes)) {}
TZoFrameReader::~TZoFrameReader() = default;

TZoHeaderState TZoFrameReader::GetHeaderState() const { return hunt->headerState; }
const TBinHeader& TZoFrameReader::GetHeader() const { return hunt->whole.header; }
unsigned long long TZoFrameReader::GetFirstOffset() const { return hunt->first; }
TZoDigestState TZoFrameReader::GetDigestState() const { return hunt->DigestState(); }
unsigned TZoFrameReader::GetWantedDigest() const { return hunt->whole.block.digest; }
unsigned TZoFrameReader::GetFoundDigest() { return hunt->FoundDigest(); }
void TZoFrameReader::SetHeadsOnly(bool only) { hunt->headsOnly = only; }
bool TZoFrameReader::Next(TZoFrame& frame) { return hunt->Next(frame); }
void TZoFrameReader::Restart() { hunt->Restart(); }
bool TZoFrameReader::ReadAt(unsigned long long offset, TZoFrame& frame) {
    return hunt->ReadAt(offset, frame);
}
const unsigned char* TZoFrameReader::GetPayload() const { return hunt->payload; }
unsigned TZoFrameReader::GetPayloadSize() const { return hunt->payloadSize; }
TZoBytes& TZoFrameReader::GetBytes() const { return hunt->window.Bytes(); }

void ZoWriteRecord(TBinOutStream& stream, int uid, int classId, const void* payload, unsigned size) {
    const WriteCursor record(stream);
    if (size != 0) std::memcpy(record.Take(size), payload, size);
    record.Commit();
    stream.FlushRecord(uid, classId);
}

} // namespace ZoPrimitives
