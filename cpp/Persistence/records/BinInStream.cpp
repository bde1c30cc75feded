#include "ZoPrimitives/BinInStream.h"

#include "Persistence/checksums/Crc32Kernel.h"
#include "Persistence/records/ErrorText.h"
#include "Persistence/records/HeadDigest.h"
#include "Persistence/records/NamingFile.h"
#include "Persistence/records/RecordFormat.h"
#include "Persistence/records/RecordHunt.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoBlob.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <vector>

namespace ZoPrimitives {

using RecordFormat::HEAD_SIZE;

namespace {

constexpr unsigned ROUND_LIMIT = 65'535;

} // namespace

TBinInStream::TBinInStream(unsigned supportedVersion, bool ownsSource)
    : supportedVersion(supportedVersion), ownsSource(ownsSource), instances(NewInstances()) {}

TBinInStream::TBinInStream(const TBinInStream& other) : TBinInStream(other.supportedVersion, false) {
    *this = other;
}

TBinInStream& TBinInStream::operator=(const TBinInStream& other) {
    if (this == &other) return *this;
    header = other.header;
    supportedVersion = other.supportedVersion;
    crc = other.crc;
    classId = other.classId;
    uid = other.uid;
    key = other.key;
    currentUid = other.currentUid;
    skipped = other.skipped;
    loaded = other.loaded;
    readSoFar = other.readSoFar;
    passedOver = other.passedOver;
    if (other.recordSize != 0) std::memcpy(Buffer(), other.record, other.recordSize);
    UseBuffer(other.recordSize);
    position = other.position;
    return *this;
}

TBinInStream::~TBinInStream() { std::free(buffer); }

bool TBinInStream::operator==(const TBinInStream& other) const {
    return header == other.header && recordSize == other.recordSize &&
           (recordSize == 0 || std::memcmp(record, other.record, recordSize) == 0);
}

unsigned char* TBinInStream::Buffer() {
    if (buffer == nullptr) {
        buffer = static_cast<unsigned char*>(std::malloc(DEFAULT_BUFFER_SIZE));
        if (buffer == nullptr) throw std::bad_alloc();
    }
    return buffer;
}

void TBinInStream::UseBuffer(unsigned size) {
    record = buffer;
    recordSize = size;
    position = 0;
}

void TBinInStream::SetPath(const TZoPath& file) { path = file.With(""); }

void* TBinInStream::GetFile() const { return nullptr; }

// Values

const unsigned char* TBinInStream::TakeBlock(unsigned& size, const char* location) {
    if (GetRemaining() >= sizeof size) {
        Take(size);
        if (size <= recordSize - position) {
            const unsigned char* bytes = record + position;
            position += size;
            return bytes;
        }
    } else {
        position = std::min<unsigned>(position + sizeof size, DEFAULT_BUFFER_SIZE);
    }
    throw XReadStream(Translated("Tamanho de registro corrompido"), location, TStreamFailure::Damaged);
}

void TBinInStream::Get(ZoBlob& value) {
    unsigned size = 0;
    const unsigned char* bytes = TakeBlock(size, "TBinInStream::operator>>(ZoBlob)");
    value.Assign(bytes, size);
}

void TBinInStream::Get(ZoString& value) {
    unsigned size = 0;
    const unsigned char* bytes = TakeBlock(size, "TBinInStream::operator>>(ZoString)");
    AssignWhole(value, reinterpret_cast<const char*>(bytes), size);
}

bool TBinInStream::GetsDirectly() const { return false; }

TBinInStream& TBinInStream::operator>>(ZoBlob& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(ZoString& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(char* value) {
    unsigned size = 0;
    const unsigned char* bytes = TakeBlock(size, "TBinInStream::operator>>(char*)");
    if (size != 0) std::memcpy(value, bytes, size);
    value[size] = '\0';
    return *this;
}

TBinInStream& TBinInStream::operator>>(short& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(unsigned short& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(int& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(unsigned& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(float& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(double& value) {
    Get(value);
    return *this;
}

TBinInStream& TBinInStream::operator>>(long double& value) {
    double stored = 0;
    Get(stored);
    value = stored;
    return *this;
}

TBinInStream& TBinInStream::operator>>(bool& value) {
    Get(value);
    return *this;
}

void TBinInStream::TakePastEnd(void* value, unsigned size) {
    if (size > DEFAULT_BUFFER_SIZE - std::min(position, DEFAULT_BUFFER_SIZE)) {
        throw XReadStream(Translated("Tamanho de registro corrompido"), "TBinInStream::operator>>",
                          TStreamFailure::Damaged);
    }
    std::memset(value, 0, size);
    const unsigned inside = GetRemaining();
    if (inside != 0) std::memcpy(value, record + position, std::min(inside, size));
    position += size;
}

void TBinInStream::SetRecordPosition(unsigned newPosition) { position = std::min(newPosition, recordSize); }

void TBinInStream::GetProgress(unsigned long long& done, unsigned long long& all) const {
    done = HasWindow() ? WindowPosition() : loaded;
    all = HasWindow() ? WindowSize() : std::max<unsigned long long>(loaded, header.recordCount);
}

// Raw reading

void TBinInStream::SetWindow(const unsigned char* begin, const unsigned char* end) {
    windowBegin = windowCursor = begin;
    windowEnd = end;
    UseBuffer(0); // the current record may lie in the previous window
}

bool TBinInStream::ReadWindow(void* data, unsigned size, unsigned& done) {
    readError = 0;
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    done = left < size ? static_cast<unsigned>(left) : size;
    if (done != 0) std::memcpy(data, windowCursor, done);
    windowCursor += done;
    return done == size;
}

bool TBinInStream::ReadAll(void* data, unsigned size, unsigned* count) {
    readError = 0;
    if (size == 0) return true; // a source whose `Read` tells whether any bytes came would say no
    unsigned done = 0;
    const bool read = TakesFromWindow() ? ReadWindow(data, size, done) : Read(data, size, done);
    if (count != nullptr) *count = done;
    readSoFar += done;
    return read && done == size;
}

/// Moves past the next bytes; false when there are fewer.
bool TBinInStream::PassOver(unsigned size) {
    if (!TakesFromWindow()) return ReadAll(Buffer(), size);
    readError = 0;
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    windowCursor += std::min<std::size_t>(left, size);
    return size <= left;
}

void TBinInStream::ThrowReadError(const char* location) const {
    XReadStream failure(ErrorText(readError), location,
                        readError == 0 ? TStreamCause(TStreamFailure::Truncated) : CauseOf(systemError));
    failure.SetPath(GetFilePath());
    throw failure;
}

void TBinInStream::ReadOrThrow(void* data, unsigned size, const char* location) {
    if (!ReadAll(data, size)) ThrowReadError(location);
}

unsigned TBinInStream::GetSecurityKey(unsigned stored) { return RecordFormat::DecodeKey(stored); }

void TBinInStream::ApplySecurityKey(unsigned key, unsigned char* data, unsigned size) {
    RecordFormat::Scramble(key, data, size);
}

// Header

void TBinInStream::ReadHeader(const char* location) {
    NamingFile(*this, [&] { ReadUnnamedHeader(location); });
}

void TBinInStream::ReadUnnamedHeader(const char* location) {
    if (TakesFromWindow() && WindowSize() - WindowPosition() >= RecordFormat::HEADER_SIZE) {
        record = windowCursor;
        recordSize = RecordFormat::HEADER_SIZE;
        position = 0;
        windowCursor += RecordFormat::HEADER_SIZE;
        readError = 0;
    } else {
        ReadOrThrow(Buffer(), RecordFormat::HEADER_SIZE, location);
        UseBuffer(RecordFormat::HEADER_SIZE);
    }
    if (!LoadHeader()) {
        if (readError != 0) ThrowReadError(location);
        throw XReadStream(Translated("Header de arquivo inválido"), "TBinInStream::LoadHeader",
                          TStreamFailure::WrongFile);
    }
    hasHeader = true;
    UseBuffer(0);
}

bool TBinInStream::LoadHeader() {
    *this >> header.version >> header.reserved1 >> header.reserved2 >> header.recordCount >> header.release >>
        header.reserved3 >> header.extraLength;
    if (header.version >= RecordFormat::VERSION_LIMIT || header.release >= RecordFormat::RELEASE_LIMIT ||
        header.extraLength >= RecordFormat::EXTRA_LENGTH_LIMIT) {
        return false;
    }
    digest = nullptr;
    if (header.extraLength != 0 && !ReadExtraBlock()) return false;
    if (supportedVersion < header.version) throw XNewerVersion(header.version, supportedVersion);
    return true;
}

/// False when the device fails. A block that is cut short is the next record's concern.
bool TBinInStream::ReadExtraBlock() {
    DigestedHeader whole{header, {}};
    const unsigned known = std::min<unsigned>(header.extraLength, sizeof whole.block);
    if (!ReadAll(&whole.block, known) || !PassOver(header.extraLength - known)) return readError == 0;
    if (!checksDigest || header.extraLength != sizeof whole.block) return true;
    if (whole.block.name != DigestBlock::NAME || whole.block.layout != DigestBlock::LAYOUT) return true;
    digest = std::make_unique<HeadDigest>();
    wantedDigest = whole.block.digest;
    skippedBefore = skipped;
    return true;
}

/// The record at hand, whose head was read in pieces.
void TBinInStream::AddToDigest(std::uint32_t marker, unsigned size) {
    unsigned char head[HEAD_SIZE];
    RecordFormat::WriteHead(head, {marker, size, crc, classId, uid, key});
    digest->Add(head);
}

/// At the end of the data.
void TBinInStream::CheckDigest() {
    if (digest == nullptr) return;
    const DigestedHeader whole{header, {}};
    const bool same = whole.DigestWith(*digest) == wantedDigest && skipped == skippedBefore && trailing == 0;
    digest = nullptr;
    if (!same) throw XWrongDigest("TBinInStream::CheckDigest");
}

// Records

/// Whether the next bytes of the window are a whole record, as its head tells.
bool TBinInStream::HeadInWindow(RecordFormat::RecordHead& head) const {
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    if (left < HEAD_SIZE) return false;
    head = RecordFormat::ReadHead(windowCursor);
    return RecordFormat::IsMarker(head.marker) && head.size <= DEFAULT_BUFFER_SIZE &&
           head.size <= left - HEAD_SIZE;
}

/// Takes the next record in place, the usual case; false unless it is whole, plain and has the right sum.
bool TBinInStream::NextInWindow(int* recordUid, int* recordClassId) {
    RecordFormat::RecordHead head;
    if (!HeadInWindow(head) || RecordFormat::DecodeKey(head.key) != 0) return false;
    const unsigned char* payload = windowCursor + HEAD_SIZE;
    if (~Crc32Update(0xFFFFFFFFu, payload, head.size) != head.crc) return false;
    if (digest != nullptr) digest->Add(windowCursor);
    windowCursor = payload + head.size;
    ++loaded;
    record = payload;
    recordSize = head.size;
    position = 0;
    crc = head.crc;
    key = 0;
    *recordUid = uid = currentUid = head.uid;
    *recordClassId = classId = head.classId;
    return true;
}

/// Passes over whole records of other classes; looks at their heads alone.
void TBinInStream::PassInWindow(const RecordFilter& filter) {
    RecordFormat::RecordHead head;
    while (HeadInWindow(head) && !filter.Takes(head.classId)) {
        if (digest != nullptr) digest->Add(windowCursor);
        windowCursor += HEAD_SIZE + head.size;
    }
}

bool TBinInStream::LoadRecord(int* recordUid, int* recordClassId) {
    static constexpr FailurePoints POINTS{"TBinInStream::LoadRecord #1",
                                          "TBinInStream::LoadRecord #2",
                                          "TBinInStream::LoadRecord #3",
                                          "TBinInStream::LoadRecord #4",
                                          "TBinInStream::LoadRecord #5",
                                          "TBinInStream::LoadRecord #3",
                                          nullptr};
    if (TakesFromWindow() && NextInWindow(recordUid, recordClassId)) return true;
    if (Hunt(POINTS, nullptr, recordUid, recordClassId) == Found::Record) return true;
    CheckDigest();
    return false;
}

/// Looks for the next good record or, with a filter, for the next one of another class, which is passed over.
TBinInStream::Found TBinInStream::Hunt(const FailurePoints& points, const RecordFilter* filter,
                                       int* recordUid, int* recordClassId) {
    TZoPassedOver before{StreamPosition(), 0, 0};
    unsigned frame = 0;
    const Found found = Search(points, filter, recordUid, recordClassId, frame, before.records);
    before.size = StreamPosition() - frame - before.offset;
    if (before.size != 0) NotePassedOver(before);
    return found;
}

unsigned long long TBinInStream::StreamPosition() const {
    return TakesFromWindow() ? WindowPosition() : readSoFar;
}

void TBinInStream::NotePassedOver(const TZoPassedOver& stretch) {
    constexpr unsigned long long MOST = 1000;
    if (passedOver.NItems() < MOST) return passedOver.Add(stretch);
    TZoPassedOver& last = passedOver[MOST];
    last.size = stretch.offset + stretch.size - last.offset;
    last.records += stretch.records;
}

/// `frame`: the bytes of the record that was found; `damaged` counts those that did not verify.
TBinInStream::Found TBinInStream::Search(const FailurePoints& points, const RecordFilter* filter,
                                         int* recordUid, int* recordClassId, unsigned& frame,
                                         unsigned& damaged) {
    position = 0;
    recordSize = 0;
    std::uint32_t window = 0;
    if (!ReadAll(&window, sizeof window, &trailing)) {
        // A device that fails is not the end of the data.
        if (readError != 0) ThrowReadError(points.size);
        return Found::Nothing;
    }
    trailing = 0;
    for (unsigned round = 1; round <= ROUND_LIMIT; ++round) {
        if (RecordFormat::IsMarker(window)) {
            unsigned size = 0;
            ReadOrThrow(&size, sizeof size, points.size);
            if (size > DEFAULT_BUFFER_SIZE) {
                skipped += 8;
                window = 0;
                continue;
            }
            ReadOrThrow(&crc, sizeof crc, points.crc);
            ReadOrThrow(&classId, sizeof classId, points.classId);
            ReadOrThrow(&uid, sizeof uid, points.uid);
            ReadOrThrow(&key, sizeof key, points.key);
            frame = size + HEAD_SIZE;
            if (filter != nullptr && !filter->Takes(classId)) {
                if (!PassOver(size)) ThrowReadError(points.passedPayload);
                if (digest != nullptr) AddToDigest(window, size);
                return Found::OtherClass;
            }
            ReadOrThrow(Buffer(), size, points.payload);
            if (const unsigned usedKey = GetSecurityKey(key); usedKey != 0)
                ApplySecurityKey(usedKey, buffer, size);
            if (~Crc32Update(0xFFFFFFFFu, buffer, size) == crc) {
                UseBuffer(size);
                ++loaded;
                if (digest != nullptr) AddToDigest(window, size);
                currentUid = uid;
                *recordUid = uid;
                *recordClassId = classId;
                return Found::Record;
            }
            skipped += frame;
            frame = 0;
            ++damaged;
            window = 0;
        } else {
            ++skipped;
            unsigned char byte = 0;
            if (!ReadAll(&byte, 1)) {
                if (readError != 0) ThrowReadError(points.key);
                return Found::Nothing;
            }
            // The new window, least significant byte first, is byte 1 of the old one, the new byte, then
            // bytes 3 and 0. A marker repeats two bytes, so it is still recognised after a cleared window.
            window = (static_cast<std::uint32_t>(byte) << 8) | ((window >> 8) & 0x00FF00FFu) | (window << 24);
        }
    }
    throw XReadStream(Translated("Arquivo corrompido"), points.key, TStreamFailure::Damaged);
}

} // namespace ZoPrimitives
