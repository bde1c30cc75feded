#include "faults.h"
#include "text.h"
#include "words.h"

#include "ZoPrimitives/ZoRecords.h"

#include <fmt/format.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

using Take = std::function<void(const Fault&)>;
using Show = std::function<void(unsigned long long)>;

/// The objects of a file by uid: those that a reader would read.
class Objects {
public:
    enum Flag : unsigned char {
        Reached = 1,  ///< from the root
        Referred = 2, ///< to by any object
        Seen = 4      ///< its references have been looked at
    };
    static constexpr std::size_t NONE = SIZE_MAX;

    void Add(int uid, int classId) {
        rising = rising && (entries.empty() || entries.back().uid < uid);
        entries.push_back({uid, classId});
    }
    /// Ends adding. Returns the uids that several objects have.
    std::set<int> Sort() {
        std::set<int> shared;
        root = entries.empty() ? 0 : entries.front().uid;
        flags.resize(entries.size());
        if (rising) return shared;
        std::stable_sort(entries.begin(), entries.end(),
                         [](const Entry& a, const Entry& b) { return a.uid < b.uid; });
        for (std::size_t i = 1; i < entries.size(); ++i) {
            if (entries[i].uid == entries[i - 1].uid) shared.insert(entries[i].uid);
        }
        return shared;
    }
    /// The last one of that uid.
    std::size_t Find(int uid) const {
        if (entries.empty()) return NONE;
        const long long guess = static_cast<long long>(uid) - entries.front().uid; // uids are usually dense
        if (rising && guess >= 0 && guess < static_cast<long long>(entries.size())) {
            const auto place = static_cast<std::size_t>(guess);
            if (entries[place].uid == uid) return place;
        }
        const auto behind =
            std::upper_bound(entries.begin(), entries.end(), uid,
                             [](int wanted, const Entry& entry) { return wanted < entry.uid; });
        if (behind == entries.begin() || std::prev(behind)->uid != uid) return NONE;
        return static_cast<std::size_t>(behind - entries.begin()) - 1;
    }
    bool Rise() const { return rising; }
    std::size_t Count() const { return entries.size(); }
    int Root() const { return root; }
    int UidAt(std::size_t place) const { return entries[place].uid; }
    int ClassAt(std::size_t place) const { return entries[place].classId; }
    bool Has(std::size_t place, Flag flag) const { return (flags[place] & flag) != 0; }
    void Set(std::size_t place, Flag flag) { flags[place] = static_cast<unsigned char>(flags[place] | flag); }

private:
    struct Entry {
        int uid;
        int classId;
    };
    std::vector<Entry> entries;
    std::vector<unsigned char> flags;
    bool rising = true;
    int root = 0;
};

/// What the objects of a class refer to.
struct Reference {
    int value;               // its number in the record, from 1
    const TZoClass* wanted;  // null: any class
    bool isUndecided;        // what stands there may be no uids
    mutable int fitting = 0; // the id of a class that is right
};

/// One pass after the other.
class Search {
public:
    Search(TZoBytes& itsBytes, bool isQuick, const Take& taker, const Show& shower)
        : bytes(itsBytes), quick(isQuick), take(taker), show(shower) {}

    void Run() {
        ReadFrames();
        if (schema == nullptr) {
            Tell({FaultKind::Schema, Words("no schema can be read: its objects cannot be checked"), 0});
            return;
        }
        CheckSchema();
        const std::set<int> shared = objects.Sort();
        if (!shared.empty()) TellShared(shared);
        if (!quick) ReadRecords();
    }

private:
    void Tell(const Fault& fault) { take(fault); }
    Fault At(const TZoFrame& frame, FaultKind kind, std::string text) const;
    std::string NameOf(int classId) const;

    void ReadFrames();
    void CheckHeader(TZoFrameReader& frames);
    void TakeFrame(TZoFrameReader& frames, const TZoFrame& frame);
    bool TakeSchema(TZoFrameReader& frames, const TZoFrame& frame);
    void TakeObject(const TZoFrame& frame);
    void CheckEnd(TZoFrameReader& frames, const TZoFrame& frame);
    void CheckSchema();
    void CheckClass(TZoClass& checked);
    void TellShared(const std::set<int>& shared);

    void ReadRecords();
    void CheckRecord(const TZoRecord& record);
    void CheckPayload(const TZoRecord& record);
    const std::vector<Reference>& ReferencesOf(const TZoRecord& record);
    template <class Action>
    void ForEachReference(const TZoRecord& record, const Action& action);
    void CheckReference(const TZoRecord& record, const Reference& reference, int uid, bool isReached);
    void Reach(std::size_t place);
    bool Fits(const Reference& reference, int classId);
    void FollowReached();
    void TellUnreachable();

    TZoBytes& bytes;
    bool quick;
    const Take& take;
    const Show& show;

    std::shared_ptr<TZoMetaData> schema;
    unsigned long long schemaOffset = 0;
    bool schemaIsSought = true;
    Objects objects;
    std::set<int> damaged; // uids of records that are damaged
    unsigned long long frameCount = 0;
    unsigned long long unordered = 0;
    TZoFrame firstUnordered;
    int latestUid = INT_MIN;

    std::unique_ptr<TZoRecordReader> records;
    std::set<std::pair<const TZoClass*, const TZoClassField*>> undecided;
    std::map<const TZoClass*, std::vector<Reference>> references; // by class of the record
    const TZoClass* latestClass = nullptr;
    const std::vector<Reference>* latestReferences = nullptr;
    std::map<std::pair<const TZoClass*, int>, bool> fits; // by wanted class and id of the object's
    std::vector<std::size_t> reached;                     // objects that were seen before they were reached
};

std::string Quoted(const ZoString& text) { return fmt::format("'{}'", OnOneLine(Utf8(text))); }

/// Whether the extra block is one of a digest.
bool BeginsWithDigest(TZoBytes& bytes) {
    char name[4] = {};
    return bytes.Read(28, name, sizeof name) == sizeof name && std::string_view(name, sizeof name) == "ZoDg";
}

// Frames

std::string Search::NameOf(int classId) const {
    const TZoClass* named = schema == nullptr ? nullptr : schema->FindClass(classId);
    return named == nullptr ? std::string() : ClassName(*named);
}

Fault Search::At(const TZoFrame& frame, FaultKind kind, std::string text) const {
    return {kind, std::move(text), frame.offset, frame.number, frame.uid, NameOf(frame.classId)};
}

void Search::ReadFrames() {
    TZoFrameReader frames(bytes);
    frames.SetHeadsOnly(quick);
    CheckHeader(frames);
    TZoFrame frame;
    while (frames.Next(frame)) {
        if (frame.gap != 0) {
            Tell({FaultKind::Garbage, Words("{} bytes belong to no record", frame.gap),
                  frame.offset - frame.gap});
        }
        TakeFrame(frames, frame);
        if (show) show(frame.offset);
    }
    CheckEnd(frames, frame);
}

void Search::CheckHeader(TZoFrameReader& frames) {
    const TBinHeader& header = frames.GetHeader();
    if (frames.GetHeaderState() == TZoHeaderState::Short) {
        Tell({FaultKind::Header, Words("the file ends before its header does"), bytes.GetSize()});
    } else if (frames.GetHeaderState() == TZoHeaderState::Wrong) {
        Tell({FaultKind::Header,
              Words("this is no header of an object file: version {}, release {}, extra length {}",
                    header.version, header.release, header.extraLength)});
    } else if (frames.GetDigestState() == TZoDigestState::Unknown) {
        Tell({FaultKind::Extra, Words("the digest has a later layout: it was not checked"), 28});
    } else if (header.extraLength != 0 && !BeginsWithDigest(bytes)) {
        Tell({FaultKind::Extra, Words("the extra block is none that this program knows"), 28});
    }
}

void Search::TakeFrame(TZoFrameReader& frames, const TZoFrame& frame) {
    ++frameCount;
    const bool isWhole = frame.state == TZoFrameState::Whole;
    if (!isWhole) Tell(FrameFault(frame, frames.GetPayload() != nullptr, NameOf(frame.classId)));
    if (schemaIsSought && (frames.GetPayload() != nullptr || isWhole) && TakeSchema(frames, frame)) return;
    if (isWhole)
        TakeObject(frame);
    else if (frame.uid != 0)
        damaged.insert(frame.uid);
}

/// The first record that is whole has the schema. False if this is none.
bool Search::TakeSchema(TZoFrameReader& frames, const TZoFrame& frame) {
    schemaIsSought = false;
    TZoFrameReader whole(bytes);
    TZoFrame same;
    const bool isThere = frames.GetPayload() != nullptr;
    if (!isThere) whole.ReadAt(frame.offset, same);
    TZoFrameReader& source = isThere ? frames : whole;
    if (source.GetPayload() != nullptr)
        schema = TZoRecordReader::ReadSchema(source.GetPayload(), source.GetPayloadSize());
    const bool isNamed = frame.uid == 0 && frame.classId == 0;
    if (schema == nullptr && !isNamed) return false;
    schemaOffset = frame.offset;
    if (schema == nullptr) {
        Tell(At(frame, FaultKind::Schema, Words("the schema contradicts itself")));
    } else if (!isNamed) {
        Tell(At(frame, FaultKind::Schema,
                Words("the schema's record has class {} and uid {}, not 0", frame.classId, frame.uid)));
    }
    return true;
}

void Search::TakeObject(const TZoFrame& frame) {
    objects.Add(frame.uid, frame.classId);
    if (frame.uid <= latestUid && unordered++ == 0) firstUnordered = frame;
    latestUid = frame.uid;
    if (frame.uid <= 0)
        Tell(At(frame, FaultKind::Uid, Words("no object can refer to the uid {}", frame.uid)));
    if (schema != nullptr && schema->FindClass(frame.classId) == nullptr)
        Tell(At(frame, FaultKind::Class, Words("the schema has no class {}", frame.classId)));
}

/// `frame`: what the reader tells of the end.
void Search::CheckEnd(TZoFrameReader& frames, const TZoFrame& frame) {
    if (frame.gap != 0) {
        Tell({FaultKind::Garbage, Words("{} bytes behind the last record belong to none", frame.gap),
              frame.offset - frame.gap});
    }
    if (frames.GetDigestState() == TZoDigestState::Wrong) {
        Tell(
            {FaultKind::Digest,
             Words("the digest 0x{:08X} is not that of the records, 0x{:08X}: one is missing, comes twice or "
                   "is damaged, or a head or the header has changed",
                   frames.GetWantedDigest(), frames.GetFoundDigest()),
             36});
    }
    if (unordered != 0) {
        Tell(At(firstUnordered, FaultKind::Order,
                Words("uids do not rise here; records with a uid below the one before: {}", unordered)));
    }
    const unsigned told = frames.GetHeader().recordCount;
    if (frames.GetHeaderState() == TZoHeaderState::Right && told != frameCount) {
        Tell({FaultKind::Count,
              Words("the header counts {} records, there are {}{}", told, frameCount,
                    told > frameCount ? Words("; objects without fields count, too, and have none") : ""),
              12});
    }
}

void Search::TellShared(const std::set<int>& shared) {
    std::map<int, unsigned long long> numbers; // of the first records
    TZoFrameReader frames(bytes);
    frames.SetHeadsOnly(quick);
    for (TZoFrame frame; frames.Next(frame);) {
        if (frame.state != TZoFrameState::Whole || shared.count(frame.uid) == 0 ||
            frame.offset == schemaOffset)
            continue;
        const auto [first, isNew] = numbers.emplace(frame.uid, frame.number);
        if (!isNew)
            Tell(At(frame, FaultKind::Uid, Words("record {} has the uid {}, too", first->second, frame.uid)));
    }
}

// Schema

void Search::CheckSchema() {
    std::set<std::string> names;
    for (int i = 1; i <= schema->GetClassCount(); ++i) {
        TZoClass& checked = *schema->GetClass(i);
        const std::string name = ClassName(checked);
        if (!names.insert(name).second)
            Tell({FaultKind::Schema, Words("two classes have the name '{}'", name), schemaOffset});
        if (!TZoRecordReader::KnowsAllKinds(checked)) {
            Tell({FaultKind::Schema,
                  Words("class '{}' has fields of a kind that this program does not know: its objects cannot "
                        "be checked",
                        name),
                  schemaOffset});
        }
        CheckClass(checked);
    }
}

void Search::CheckClass(TZoClass& checked) {
    std::set<std::string> names;
    for (int i = 1; i <= checked.GetFieldCount(); ++i) {
        const std::string name = Utf8(checked.GetField(i)->GetFieldName());
        if (!names.insert(name).second) {
            Tell({FaultKind::Schema,
                  Words("class '{}' has two fields '{}'", ClassName(checked), OnOneLine(name)),
                  schemaOffset});
        }
    }
}

// Objects

void Search::ReadRecords() {
    records = std::make_unique<TZoRecordReader>(bytes, schema);
    for (const TZoRecordReader::Undecided& one : records->GetUndecided()) {
        undecided.emplace(one.recordClass, one.field);
        Tell({FaultKind::Undecided,
              Words("the records of '{}' do not tell how the field {} stands in them",
                    ClassName(*one.recordClass), Quoted(one.field->GetFieldName())),
              schemaOffset});
    }
    if (objects.Count() != 0) objects.Set(objects.Find(objects.Root()), Objects::Reached);
    for (TZoRecord record; records->Next(record);) {
        if (record.GetFrame().state == TZoFrameState::Whole && record.GetOffset() != schemaOffset)
            CheckRecord(record);
        if (show) show(bytes.GetSize() + record.GetOffset());
    }
    FollowReached();
    TellUnreachable();
}

void Search::CheckRecord(const TZoRecord& record) {
    CheckPayload(record);
    const std::size_t place = objects.Find(record.GetUid());
    if (place == Objects::NONE) return; // the file has changed
    const bool isReached = objects.Has(place, Objects::Reached);
    objects.Set(place, Objects::Seen);
    ForEachReference(record, [&](const Reference& reference, int uid) {
        CheckReference(record, reference, uid, isReached);
    });
}

void Search::CheckPayload(const TZoRecord& record) {
    const TZoFrame& frame = record.GetFrame();
    switch (record.GetState()) {
    case TZoRecordState::NotConsumed: {
        unsigned used = 0;
        for (int i = 1; i <= record.NValues(); ++i) used += record.Value(i).GetSize();
        return Tell(At(frame, FaultKind::Payload,
                       Words("{} of its {} bytes are left behind its last field", record.GetSize() - used,
                             record.GetSize())));
    }
    case TZoRecordState::PastEnd:
        return Tell(At(frame, FaultKind::Payload,
                       Words("its fields need more than its {} bytes, from the {}. field on",
                             record.GetSize(), record.NValues() + 1)));
    case TZoRecordState::Whole:
    case TZoRecordState::UnknownClass: // is told already
    case TZoRecordState::UnknownKind:
        return;
    }
}

const std::vector<Reference>& Search::ReferencesOf(const TZoRecord& record) {
    const TZoClass* const itsClass = record.GetClass();
    if (itsClass == latestClass && latestReferences != nullptr) return *latestReferences;
    const auto [found, isNew] = references.try_emplace(itsClass);
    for (int i = 1; isNew && i <= record.NValues(); ++i) {
        const TZoClassField& field = record.Value(i).GetField();
        if (!field.IsPointerKind()) continue;
        found->second.push_back({i, WantedClass(field), undecided.count({itsClass, &field}) != 0});
    }
    latestClass = itsClass;
    latestReferences = &found->second;
    return found->second;
}

/// Calls `action(reference, uid)` with what the object refers to, as far as that can be known.
template <class Action>
void Search::ForEachReference(const TZoRecord& record, const Action& action) {
    if (record.GetState() != TZoRecordState::Whole) return;
    for (const Reference& reference : ReferencesOf(record)) {
        const TZoValue value = record.Value(reference.value);
        const int halves = value.GetKind() == ftChildPointerMap ? 2 : 1;
        for (int half = 1; half <= halves; ++half) {
            for (int i = 1, count = value.NItems(half); i <= count; ++i) {
                if (const int uid = value.Uid(i, half); uid != 0) action(reference, uid);
            }
        }
    }
}

void Search::CheckReference(const TZoRecord& record, const Reference& reference, int uid, bool isReached) {
    const std::size_t place = objects.Find(uid);
    if (place != Objects::NONE) {
        objects.Set(place, Objects::Referred);
        if (isReached) Reach(place);
    }
    if (reference.isUndecided) return;
    const bool isWrong =
        place != Objects::NONE && reference.wanted != nullptr && !Fits(reference, objects.ClassAt(place));
    if (place != Objects::NONE && !isWrong) return;
    const std::string field = Quoted(record.Value(reference.value).GetField().GetFieldName());
    if (isWrong) {
        return Tell(At(record.GetFrame(), FaultKind::WrongClass,
                       Words("its field {} wants a '{}' and refers to uid {}, which is a '{}'", field,
                             ClassName(*reference.wanted), uid, NameOf(objects.ClassAt(place)))));
    }
    const std::string why =
        damaged.count(uid) != 0 ? Words("whose record is damaged") : Words("which is not in the file");
    Tell(At(record.GetFrame(), FaultKind::Dangling,
            Words("its field {} refers to uid {}, {}", field, uid, why)));
}

bool Search::Fits(const Reference& reference, int classId) {
    if (reference.wanted == nullptr || reference.fitting == classId) return true;
    const auto [found, isNew] = fits.try_emplace({reference.wanted, classId}, false);
    if (isNew) {
        const TZoClass* target = schema->FindClass(classId);
        found->second = target == nullptr || target->IsInherited(reference.wanted);
    }
    if (found->second) reference.fitting = classId;
    return found->second;
}

// What the root leads to

void Search::Reach(std::size_t place) {
    if (objects.Has(place, Objects::Reached)) return;
    objects.Set(place, Objects::Reached);
    if (objects.Has(place, Objects::Seen)) reached.push_back(place);
}

/// From objects that were reached after they had been seen.
void Search::FollowReached() {
    TZoRecord record;
    while (!reached.empty()) {
        const int uid = objects.UidAt(reached.back());
        reached.pop_back();
        if (!records->Find(uid, record)) continue;
        ForEachReference(record, [&](const Reference&, int target) {
            if (const std::size_t place = objects.Find(target); place != Objects::NONE) Reach(place);
        });
    }
}

/// Tells one object of each part that the root does not lead to: those that nothing refers to, then any of
/// those that only refer to each other.
void Search::TellUnreachable() {
    for (const bool isReferred : {false, true}) {
        for (std::size_t place = 0; place < objects.Count(); ++place) {
            if (objects.Has(place, Objects::Reached) || objects.Has(place, Objects::Referred) != isReferred ||
                objects.Find(objects.UidAt(place)) != place) // another has its uid
                continue;
            TZoRecord record;
            if (records->Find(objects.UidAt(place), record)) {
                Tell(At(record.GetFrame(), FaultKind::Unreachable,
                        isReferred ? Words("the root does not lead to it, nor to those that refer to it")
                                   : Words("nothing refers to it, and it is not the root")));
            }
            Reach(place);
            FollowReached();
        }
    }
}

} // namespace

std::string PlaceOf(const Fault& fault) {
    std::string place = Words("offset {}", fault.offset);
    if (fault.number != 0) place += Words(", record {}", fault.number);
    if (fault.number != 0 || fault.uid != 0) place += Words(", uid {}", fault.uid);
    if (!fault.className.empty()) place += fmt::format(" ({})", fault.className);
    return place;
}

Fault FrameFault(const TZoFrame& frame, bool hasPayload, std::string className) {
    const std::string whole = hasPayload ? Words("its payload is whole") : Words("its payload is lost");
    Fault fault{FaultKind::Torn, Words("the file ends after {} bytes of it", frame.length),
                frame.offset,    frame.number,
                frame.uid,       std::move(className)};
    switch (frame.state) {
    case TZoFrameState::Whole:
    case TZoFrameState::Torn:
        break;
    case TZoFrameState::WrongCrc:
        fault.kind = FaultKind::Checksum;
        fault.text = Words("the checksum 0x{:08X} is not that of its {} bytes", frame.crc, frame.size);
        break;
    case TZoFrameState::WrongMarker:
        fault.kind = FaultKind::Marker;
        fault.text = Words("the marker is 0x{:08X}; {}", frame.marker, whole);
        break;
    case TZoFrameState::WrongSize:
        fault.kind = FaultKind::Size;
        fault.text = Words("the size {} is wrong: the record ends after {} bytes; {}", frame.size,
                           frame.length, whole);
        break;
    }
    return fault;
}

const TZoClass* WantedClass(const TZoClassField& field) {
    // The class of a map need not be that of its keys, nor of values that declare their own.
    const TZoClass* wanted = field.GetFieldType() == ftChildPointerMap ? nullptr : field.GetFieldClass();
    return wanted == nullptr || TZoMetaData::IsGenericBase(wanted->GetName()) ? nullptr : wanted;
}

void FaultFinder::Find(const std::function<void(const Fault&)>& take,
                       const std::function<void(unsigned long long)>& show) {
    Search(bytes, quick, take, show).Run();
}

} // namespace ZoTool
