#include "ZoPrimitives/BinInStream.h"

#include "Persistence/ClassNames.h"
#include "Persistence/Crc32Kernel.h"
#include "Persistence/ErrorText.h"
#include "Persistence/InstanceTables.h"
#include "Persistence/RecordFormat.h"
#include "Persistence/UidTable.h"
#include "Platform/Memory.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoStreamable.h"

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
    : supportedVersion(supportedVersion), ownsSource(ownsSource), tables(new InstanceTables),
      unresolved(new TBinUnresolvedPointers) {}

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
    throw XReadStream(TTranslatedString("Tamanho de registro corrompido").Text(), location);
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
        throw XReadStream(TTranslatedString("Tamanho de registro corrompido").Text(),
                          "TBinInStream::operator>>");
    }
    std::memset(value, 0, size);
    const unsigned inside = GetRemaining();
    if (inside != 0) std::memcpy(value, record + position, std::min(inside, size));
    position += size;
}

void TBinInStream::SetRecordPosition(unsigned newPosition) { position = std::min(newPosition, recordSize); }

// Raw reading

void TBinInStream::SetWindow(const unsigned char* begin, const unsigned char* end) {
    windowBegin = windowCursor = begin;
    windowEnd = end;
    UseBuffer(0); // the current record may lie in the window that was
}

bool TBinInStream::ReadWindow(void* data, unsigned size, unsigned& done) {
    readError = 0;
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    done = left < size ? static_cast<unsigned>(left) : size;
    if (done != 0) std::memcpy(data, windowCursor, done);
    windowCursor += done;
    return done == size;
}

bool TBinInStream::ReadAll(void* data, unsigned size) {
    readError = 0;
    if (size == 0) return true; // a source may take "any were read" to be false here
    unsigned done = 0;
    const bool read = TakesFromWindow() ? ReadWindow(data, size, done) : Read(data, size, done);
    return read && done == size;
}

/// Goes on behind the next bytes; false when there are not so many.
bool TBinInStream::PassOver(unsigned size) {
    if (!TakesFromWindow()) return ReadAll(Buffer(), size);
    readError = 0;
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    windowCursor += std::min<std::size_t>(left, size);
    return size <= left;
}

void TBinInStream::ThrowReadError(const char* location) const {
    throw XReadStream(ErrorText(readError), location);
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
        throw XReadStream(TTranslatedString("Header de arquivo inválido"_ansi).Text(),
                          "TBinInStream::LoadHeader");
    }
    UseBuffer(0);
}

bool TBinInStream::LoadHeader() {
    *this >> header.version >> header.reserved1 >> header.reserved2 >> header.recordCount >> header.release >>
        header.reserved3 >> header.extraLength;
    if (header.version >= RecordFormat::VERSION_LIMIT || header.release >= RecordFormat::RELEASE_LIMIT ||
        header.extraLength >= RecordFormat::EXTRA_LENGTH_LIMIT) {
        return false;
    }
    // Nothing looks at the extra block, so one that is cut short is the next record's concern.
    if (header.extraLength != 0 && !ReadAll(Buffer(), header.extraLength) && readError != 0) return false;
    if (supportedVersion < header.version) throw XNewerVersion();
    return true;
}

// Records

/// Where the operations fail: the reading of each part of a record. The first one is also that of what stands
/// before a record, the key's also that of what is no record.
struct TBinInStream::FailurePoints {
    const char* size;
    const char* crc;
    const char* classId;
    const char* uid;
    const char* key;
    const char* payload;
    const char* passedPayload;
};

/// The classes whose records are asked for.
struct TBinInStream::ClassFilter {
    const TZoMetaData* schema;
    const int* begin;
    const int* end;

    bool Takes(int id) const {
        return std::binary_search(begin, end, id) && (schema == nullptr || schema->FindClass(id) != nullptr);
    }
};

/// Whether the next bytes of the window are a whole record, by its head.
bool TBinInStream::HeadInWindow(RecordFormat::RecordHead& head) const {
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    if (left < HEAD_SIZE) return false;
    head = RecordFormat::ReadHead(windowCursor);
    return RecordFormat::IsMarker(head.marker) && head.size <= DEFAULT_BUFFER_SIZE &&
           head.size <= left - HEAD_SIZE;
}

/// The usual case, without a copy: the next bytes of the window are a whole, plain, good record.
bool TBinInStream::NextInWindow(int* recordUid, int* recordClassId) {
    RecordFormat::RecordHead head;
    if (!HeadInWindow(head) || RecordFormat::DecodeKey(head.key) != 0) return false;
    const unsigned char* payload = windowCursor + HEAD_SIZE;
    if (~Crc32Update(0xFFFFFFFFu, payload, head.size) != head.crc) return false;
    windowCursor = payload + head.size;
    record = payload;
    recordSize = head.size;
    position = 0;
    crc = head.crc;
    key = 0;
    *recordUid = uid = currentUid = head.uid;
    *recordClassId = classId = head.classId;
    return true;
}

/// Passes over whole records of other classes, by their heads alone.
void TBinInStream::PassInWindow(const ClassFilter& filter) {
    RecordFormat::RecordHead head;
    while (HeadInWindow(head) && !filter.Takes(head.classId)) windowCursor += HEAD_SIZE + head.size;
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
    return Hunt(POINTS, nullptr, recordUid, recordClassId) == Found::Record;
}

bool TBinInStream::LoadFilteredRecord(TZoMetaData* schema, const int* ids, int* recordClassId, int* recordUid,
                                      int idCount) {
    static constexpr FailurePoints POINTS{
        "TBinInStream::LoadFilteredRecord #1", "TBinInStream::LoadFilteredRecord #2",
        "TBinInStream::LoadFilteredRecord #3", "TBinInStream::LoadFilteredRecord #4",
        "TBinInStream::LoadFilteredRecord #5", "TBinInStream::LoadFilteredRecord #7",
        "TBinInStream::LoadFilteredRecord #6"};
    const ClassFilter filter{schema, ids, ids + std::max(idCount, 0)};
    Found found = Found::OtherClass;
    while (found == Found::OtherClass) {
        if (TakesFromWindow()) {
            PassInWindow(filter);
            if (NextInWindow(recordUid, recordClassId)) return true;
        }
        found = Hunt(POINTS, &filter, recordUid, recordClassId);
    }
    return found == Found::Record;
}

/// Looks for the next good record or, with a filter, for the next one of another class, which is passed over.
TBinInStream::Found TBinInStream::Hunt(const FailurePoints& points, const ClassFilter* filter, int* recordUid,
                                       int* recordClassId) {
    position = 0;
    recordSize = 0;
    std::uint32_t window = 0;
    if (!ReadAll(&window, sizeof window)) {
        // A device that fails is not the end of the data.
        if (readError != 0) ThrowReadError(points.size);
        return Found::Nothing;
    }
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
            if (filter != nullptr && !filter->Takes(classId)) {
                if (!PassOver(size)) ThrowReadError(points.passedPayload);
                return Found::OtherClass;
            }
            ReadOrThrow(Buffer(), size, points.payload);
            if (const unsigned usedKey = GetSecurityKey(key); usedKey != 0)
                ApplySecurityKey(usedKey, buffer, size);
            if (~Crc32Update(0xFFFFFFFFu, buffer, size) == crc) {
                UseBuffer(size);
                currentUid = uid;
                *recordUid = uid;
                *recordClassId = classId;
                return Found::Record;
            }
            skipped += size + HEAD_SIZE;
            window = 0;
        } else {
            ++skipped;
            unsigned char byte = 0;
            if (!ReadAll(&byte, 1)) {
                if (readError != 0) ThrowReadError(points.key);
                return Found::Nothing;
            }
            // Seen as bytes, least significant first: (1, new, 3, 0) of the old window. Markers repeat two
            // bytes, so one is still met, starting from a cleared window.
            window = (static_cast<std::uint32_t>(byte) << 8) | ((window >> 8) & 0x00FF00FFu) | (window << 24);
        }
    }
    throw XReadStream(TTranslatedString("Arquivo corrompido").Text(), points.key);
}

// Objects

void TBinInStream::AddInstance(ZoStreamableBase* object) { InstanceTables::Add(*this, object); }

ZoStreamableBase* TBinInStream::GetInstance(int wanted) const {
    const auto& uids = tables->uids;
    const auto found = tables->uidsRise ? std::lower_bound(uids.begin(), uids.end(), wanted)
                                        : std::find(uids.begin(), uids.end(), wanted);
    if (found == uids.end() || *found != wanted) return nullptr;
    return objects[static_cast<unsigned long long>(found - uids.begin()) + 1];
}

ZoStreamableBase* TBinInStream::FirstObject() const { return objects.NItems() == 0 ? nullptr : objects[1]; }

ZoStreamableBase* TBinInStream::FindFirstObject(const ZoString& className) const {
    // A class is registered without the namespaces that it stands in.
    for (ZoStreamableBase* object : objects) {
        const ZoString name = PlainClassName(object->StreamableClassName());
        const char* last = std::strrchr(name.c_str(), ':');
        if (name == className || (last != nullptr && className == last + 1)) return object;
    }
    return nullptr;
}

void TBinInStream::FillObjects(TDVector<ZoStreamableBase*>* list) const { list->Append(objects); }

void TBinInStream::TakeObjects(TIVector<ZoStreamableBase>* list) {
    list->Reserve(list->NItems() + objects.NItems());
    for (ZoStreamableBase* object : objects) list->Add(object);
    ForgetInstances();
}

void TBinInStream::RemoveInstances(const TDVector<ZoStreamableBase*>& list) {
    std::vector<const ZoStreamableBase*> removed(list.begin(), list.end());
    std::sort(removed.begin(), removed.end());
    InstanceTables::RemoveIf(*this, [&removed](const ZoStreamableBase* object) {
        return std::binary_search(removed.begin(), removed.end(), object);
    });
}

void TBinInStream::SetHandle(ZoStreamableBase* object, int handle) { tables->handles.Set(handle, object); }

ZoStreamableBase* TBinInStream::GetHandle(int handle) const { return tables->handles.Get(handle); }

const UidTable& TBinInStream::Handles() const { return tables->handles; }

void TBinInStream::ResetHandles() { tables->handles.Clear(); }

void TBinInStream::AddUnresolved(ZoStreamableBase* object, int objectUid, TZoClass* fileClass) {
    unresolved->Open(object, objectUid, fileClass);
}

const TBinUnresolved* TBinInStream::GetUnresolved(int objectUid) const { return unresolved->Find(objectUid); }

void TBinInStream::AddExcludedField(TZoClassField* field, unsigned recordPosition) {
    tables->excluded.push_back({field, recordPosition});
}

void TBinInStream::RemoveExcludedField(TZoClassField* field) {
    auto& excluded = tables->excluded;
    const auto first = excluded.begin() + static_cast<std::ptrdiff_t>(tables->firstExcluded);
    const auto found = std::find_if(first, excluded.end(), [field](const InstanceTables::Excluded& entry) {
        return entry.field == field;
    });
    if (found == excluded.end()) return;
    if (found == first) {
        ++tables->firstExcluded;
    } else {
        excluded.erase(found);
    }
}

TZoClassField* TBinInStream::GetFirstExcludedField() {
    if (tables->firstExcluded == tables->excluded.size()) return nullptr;
    const InstanceTables::Excluded& first = tables->excluded[tables->firstExcluded];
    position = first.recordPosition;
    return first.field;
}

void TBinInStream::ReserveInstances() {
    if (!HasWindow()) return;
    // Room that is not used costs address space only. How many uids there are is anybody's guess.
    constexpr std::size_t SMALLEST_RECORD = HEAD_SIZE + 1;
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    const std::size_t count = std::min<std::size_t>(header.recordCount, left / SMALLEST_RECORD);
    Platform::ExpectObjects(left);
    objects.Reserve(count);
    tables->uids.reserve(count);
    tables->handles.Reserve(count + 1);
    unresolved->Reserve(count);
}

void TBinInStream::ForgetInstances() noexcept {
    objects.RemoveAll();
    tables->uids.clear();
    tables->uidsRise = true;
    tables->handles.Clear();
    ClearExcludedFields();
    unresolved->Clear();
}

void TBinInStream::ClearExcludedFields() { InstanceTables::ForgetExcluded(*this); }

} // namespace ZoPrimitives
