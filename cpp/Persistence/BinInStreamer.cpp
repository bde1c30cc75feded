#include "ZoPrimitives/BinInStreamer.h"

#include "Persistence/InstanceTables.h"
#include "Persistence/ItemAction.h"
#include "Persistence/PointerResolver.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/DestructionHold.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/XStream.h"

#include <algorithm>
#include <iterator>
#include <typeinfo>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr unsigned PREFETCH = 8; // objects ahead

[[noreturn]] void Throw(const char* literal, const char* location) {
    throw XStream(TTranslatedString(literal).Text(), location);
}

} // namespace

/// What becomes of the records of one class of the file.
struct TBinInStreamer::Use {
    TZoClass* readAs; // the class itself, or the ancestor that stands for it; null: records are dropped
    bool substituted; // readAs is an ancestor
    bool hasValues;   // its objects have members that are objects
    unsigned hooks;   // calls that its objects answer
};

/// What one reading made. No object ends because a setter lets go of it. The finished ones stand in the
/// stream's list.
class TBinInStreamer::Made {
public:
    explicit Made(TBinInStream& readStream) : stream(readStream) {}
    Made(const Made&) = delete;
    Made& operator=(const Made&) = delete;
    ~Made() {
        if (hold.Noted()) EndHold();
        delete current;
        for (const ZoStreamableBase* object : consumed) delete object;
        if (!owned) return;
        const TDVector<ZoStreamableBase*> objects = stream.Objects();
        stream.ForgetInstances();
        for (const ZoStreamableBase* object : objects) delete object;
    }

    void Begin(ZoStreamableBase* object) { current = object; }
    void Drop() {
        delete current;
        current = nullptr;
    }
    void Finish() {
        InstanceTables::Add(stream, current);
        current = nullptr;
    }
    /// From here on the objects are the caller's.
    void HandOver() { owned = false; }
    /// The objects whose members stand for them now are to be deleted here.
    void Consume(const std::unordered_set<const ZoStreamableBase*>& taken) {
        consumed.insert(consumed.end(), taken.begin(), taken.end());
    }

    std::vector<ZoStreamableBase*> invalid;              // by their own word, while they were read
    std::unordered_set<const ZoStreamableBase*> members; // objects that stand inside others
    bool hasValues = false;
    bool mayBeInvalid = false; // some class answers GetIsValid

    /// From here on objects end when they are let go of. What was read is the caller's, held by somebody or
    /// not.
    void EndHold() {
        const auto& objects = stream.Objects();
        std::unordered_set<const ZoObject*> kept(objects.begin(), objects.end());
        kept.insert(consumed.begin(), consumed.end());
        kept.insert(current);
        hold.End([&](const ZoObject* object) { return kept.count(object) != 0; });
    }

private:
    TBinInStream& stream;
    DestructionHold hold;
    ZoStreamableBase* current = nullptr;
    std::vector<const ZoStreamableBase*> consumed;
    bool owned = true;
};

/// Copies objects that are held by value into their owners, owners first, and lets the members stand for
/// them.
class TBinInStreamer::Values : public ValueTaker {
public:
    Values(TBinInStream& stream, Made& made) : stream(stream), made(made) {}

    void Run() {
        auto& entries = stream.UnresolvedPointers().Entries();
        for (std::size_t i = 0; i < entries.size(); ++i) byUid.emplace_back(entries[i].uid, i);
        if (!std::is_sorted(byUid.begin(), byUid.end())) std::sort(byUid.begin(), byUid.end());
        claims.assign(entries.size(), NOBODY);
        collecting = true;
        for (std::size_t i = 0; i < entries.size(); ++i) Walk(i);
        collecting = false;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (claims[i] == NOBODY) waiting.push_back(i);
        }
        while (!waiting.empty()) {
            const std::size_t next = waiting.back();
            waiting.pop_back();
            Walk(next);
        }
        MoveInvalidToOwners();
        made.Consume(taken);
        TDVector<ZoStreamableBase*> gone;
        for (const ZoStreamableBase* object : taken) gone.Add(const_cast<ZoStreamableBase*>(object));
        stream.RemoveInstances(gone);
    }

    void TakeValue(TZoClassFieldPointer& field, ZoStreamableBase* owner, int uid) override {
        ZoStreamableBase* value = stream.GetHandle(uid);
        const std::size_t entry = EntryOf(uid);
        if (value == nullptr || entry == NOBODY || !field.Accepts(value)) return;
        if (collecting) {
            if (claims[entry] == NOBODY) claims[entry] = walked;
            return;
        }
        field.Set(owner, value);
        // A second owner gets a copy and no more.
        if (claims[entry] != walked) return;
        claims[entry] = NOBODY;
        waiting.push_back(entry);
        // A member of another type got a part of the object: the record's class does not fit it.
        ZoStreamableBase* member = field.Get(owner);
        if (member == nullptr || member == value || typeid(*member) != typeid(*value)) return;
        ZoReferenceCount::Add(member); // its owner ends it, whatever else lets go of it
        made.members.insert(member);
        stream.SetHandle(member, uid);
        stream.UnresolvedPointers().Entries()[entry].object = member;
        taken.insert(value);
        owners[value] = owner;
        owners[member] = owner;
    }

private:
    void Walk(std::size_t index) {
        walked = index;
        const TBinUnresolved& entry = stream.UnresolvedPointers().Entries()[index];
        TZoPointerResolver resolver(stream, nullptr, this);
        resolver.Begin(stream.UnresolvedPointers().Uids() + entry.firstUid, false);
        entry.fileClass->LoadResolvePointers(resolver, entry.object);
    }

    /// Of equal uids the last entry.
    std::size_t EntryOf(int uid) const {
        const auto behind = std::upper_bound(byUid.begin(), byUid.end(), std::pair(uid, NOBODY));
        return behind == byUid.begin() || std::prev(behind)->first != uid ? NOBODY
                                                                          : std::prev(behind)->second;
    }

    void MoveInvalidToOwners() {
        for (ZoStreamableBase*& object : made.invalid) {
            for (auto owner = owners.find(object); owner != owners.end(); owner = owners.find(object)) {
                object = owner->second;
            }
        }
    }

    TBinInStream& stream;
    Made& made;
    bool collecting = false;
    static constexpr std::size_t NOBODY = static_cast<std::size_t>(-1);
    std::size_t walked = 0;                         // entry
    std::vector<std::pair<int, std::size_t>> byUid; // entries, rising
    std::vector<std::size_t> claims;                // by entry: the entry that takes it first
    std::unordered_map<const ZoStreamableBase*, ZoStreamableBase*> owners;
    std::unordered_set<const ZoStreamableBase*> taken;
    std::vector<std::size_t> waiting;
};

TBinInStreamer::TBinInStreamer(TBinInStream* stream, TZoMetaData* schema) : stream(stream), schema(schema) {}
TBinInStreamer::~TBinInStreamer() = default;

void TBinInStreamer::OnAfterLoadInstance(ZoStreamableBase*) {}
void TBinInStreamer::OnAfterResolveInstance(ZoStreamableBase*) {}

ZoStreamableBase* TBinInStreamer::CreateInstance(TZoClass* fileClass, TZoMetaData* fileMetaData,
                                                 TZoMetaData* appMetaData) {
    return fileClass->CreateInstance(fileMetaData, appMetaData);
}

void* TBinInStreamer::GetFile() const { return stream->GetFile(); }

ZoStreamableBase* TBinInStreamer::ReadObjects() {
    LoadSchema("TBinInStreamer::ReadObjects #1", "TBinInStreamer::ReadObjects #2");
    ReadRecords(nullptr);
    return stream->FirstObject();
}

void TBinInStreamer::LoadSchema(const char* noRecord, const char* noSchema) {
    int uid = 0;
    int classId = 0;
    if (!stream->LoadRecord(&uid, &classId)) Throw("Metadado corrompido", noRecord);
    if (!fileSchema.LoadFromStream(stream, schema)) Throw("Metadado inválido"_ansi, noSchema);
    uses.clear();
    rareUses.clear();
    unknown.RemoveAll();
    stream->ForgetInstances();
}

void TBinInStreamer::ReadRecords(const std::vector<int>* classIds) {
    filtered = classIds != nullptr;
    if (!filtered) stream->ReserveInstances();
    Made made(*stream);
    direct = stream->GetsDirectly();
    plain = typeid(*this) == typeid(TBinInStreamer);
    // Members that are objects are found by the entries of what was read for them.
    entryForEach = !plain;
    for (int i = 1; i <= fileSchema.GetClassCount() && !entryForEach; ++i) {
        TZoClass* original = fileSchema.GetClass(i)->GetOriginal();
        entryForEach = original != nullptr && original->HasValueChildren();
    }
    int uid = 0;
    int classId = 0;
    if (filtered) {
        const int count = static_cast<int>(classIds->size());
        while (stream->LoadFilteredRecord(&fileSchema, classIds->data(), &classId, &uid, count)) {
            ReadRecord(uid, classId, made);
        }
    } else {
        while (stream->LoadRecord(&uid, &classId)) ReadRecord(uid, classId, made);
    }
    made.HandOver();
    Resolve(made);
    Validate(made);
}

const TBinInStreamer::Use& TBinInStreamer::UseOf(int classId) {
    // Ids are small as a rule; the table never grows beyond a small multiple of the number of classes.
    const auto index = static_cast<std::size_t>(classId);
    const bool dense = classId > 0 && index < 1024 + 4 * static_cast<std::size_t>(fileSchema.GetClassCount());
    if (dense && index < uses.size() && uses[index] != nullptr) return *uses[index];
    if (!dense) {
        const auto found = rareUses.find(classId);
        if (found != rareUses.end()) return *found->second;
    }
    TZoClass* fileClass = fileSchema.FindClass(classId);
    if (fileClass == nullptr) Throw("Metadado inválido"_ansi, "TBinInStreamer::ReadObjects #3");
    auto use = std::make_unique<Use>(Use{fileClass, false, false, ~0u});
    if (fileClass->GetOriginal() == nullptr && filtered) {
        use->readAs = nullptr;
    } else if (fileClass->GetOriginal() == nullptr) {
        unknown.AddUnique(fileClass);
        use->substituted = true;
        while (use->readAs != nullptr && use->readAs->GetOriginal() == nullptr) {
            TZoClass* parent = use->readAs->GetParentClass();
            use->readAs = parent == nullptr || parent->GetAbstract() ? nullptr : parent;
        }
    }
    if (use->readAs != nullptr && use->readAs->GetOriginal() != nullptr) {
        use->hasValues = use->readAs->GetOriginal()->HasValueChildren();
        // A streamer of an application's own may make objects of other types than the class's.
        if (plain) use->hooks = use->readAs->GetOriginal()->hooks;
    }
    if (!dense) return *(rareUses[classId] = std::move(use));
    if (index >= uses.size()) uses.resize(index + 1);
    uses[index] = std::move(use);
    return *uses[index];
}

void TBinInStreamer::ReadRecord(int uid, int classId, Made& made) {
    const Use& use = UseOf(classId);
    if (use.readAs == nullptr) return;
    ZoStreamableBase* object = CreateInstance(use.readAs, &fileSchema, schema);
    if (object == nullptr) return;
    made.Begin(object);
    if (use.substituted && !object->CanBeConvertedToBaseClass()) {
        made.Drop();
        return;
    }
    made.hasValues = made.hasValues || use.hasValues;
    made.mayBeInvalid = made.mayBeInvalid || (use.hooks & hookGetIsValid) != 0;
    InstanceTables::SetHandle(*stream, object, uid);
    use.readAs->LoadObject(*stream, direct, entryForEach, object);
    if ((use.hooks & hookOnRead) != 0 && !object->OnRead(stream, use.substituted))
        made.invalid.push_back(object);
    made.Finish();
    if (!plain) OnAfterLoadInstance(object);
    if ((use.hooks & hookCheckForExcludedFields) != 0) object->CheckForExcludedFields(stream);
}

void TBinInStreamer::Resolve(Made& made) {
    if (made.hasValues) Values(*stream, made).Run();
    TBinUnresolvedPointers& unresolved = stream->UnresolvedPointers();
    TZoPointerResolver resolver(*stream, made.members.empty() ? nullptr : &made.members, nullptr);
    const auto& entries = unresolved.Entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i + PREFETCH < entries.size()) __builtin_prefetch(entries[i + PREFETCH].object);
        const TZoClass* application = entries[i].fileClass->GetOriginal();
        const unsigned hooks = plain && application != nullptr ? application->hooks : ~0u;
        resolver.Begin(unresolved.Uids() + entries[i].firstUid, (hooks & hookOnReadPointer) != 0);
        entries[i].fileClass->LoadResolvePointers(resolver, entries[i].object);
        if (!plain) OnAfterResolveInstance(entries[i].object);
    }
    unresolved.Clear();
    stream->ResetHandles();
}

void TBinInStreamer::Validate(Made& made) {
    if (made.invalid.empty() && (filtered || (!made.mayBeInvalid && !made.hasValues))) return;
    const std::unordered_set<const ZoStreamableBase*> known(made.invalid.begin(), made.invalid.end());
    TDList<ZoStreamableBase*> invalid;
    for (ZoStreamableBase* object : stream->Objects()) {
        const bool foundBefore = known.count(object) != 0;
        // What was read in part may well miss something: only its own word counts.
        const bool valid = filtered ? !foundBefore : IsValid(object, foundBefore, made.hasValues);
        if (!valid) invalid.Add(object);
    }
    if (invalid.NItems() == 0) return;
    made.EndHold(); // while all that it noted is there
    Remove(invalid);
}

bool TBinInStreamer::OnReadInstance(ZoStreamableBase* object, bool invalid) {
    return IsValid(object, invalid, true);
}

bool TBinInStreamer::IsValid(ZoStreamableBase* object, bool invalid, bool mayHaveValues) {
    if (invalid || !object->GetIsValid()) return false;
    if (!mayHaveValues) return true;
    TZoClass* objectClass = object->GetOriginalClass(schema);
    if (objectClass == nullptr || !objectClass->HasValueChildren()) return true;
    TDVector<ZoStreamableBase*> members = ChildsByValueOfInstance(object);
    for (unsigned long long i = 1; i <= members.NItems(); ++i) {
        if (!members[i]->GetIsValid()) return false;
        members.Append(ChildsByValueOfInstance(members[i]));
    }
    return true;
}

TDVector<ZoStreamableBase*> TBinInStreamer::ChildsByValueOfInstance(ZoStreamableBase* object) {
    TDVector<ZoStreamableBase*> members;
    if (TZoClass* objectClass = object->GetOriginalClass(schema))
        objectClass->FillValueChildren(object, &members);
    return members;
}

void TBinInStreamer::RemoveInvalidObjects(TDList<ZoStreamableBase*>* invalid) { Remove(*invalid); }

void TBinInStreamer::Remove(const TDList<ZoStreamableBase*>& invalid) {
    // Nothing goes before the end, whoever lets go of it; what stays is the caller's then.
    DestructionHold hold;
    const TDVector<ZoStreamableBase*> all = stream->Objects();
    TDVector<ZoStreamableBase*> cascade;
    std::unordered_set<const ZoStreamableBase*> doomed;
    for (ZoStreamableBase* object : invalid) {
        if (doomed.insert(object).second) cascade.Add(object);
    }
    schema->FillObjectsCascade(&cascade);
    std::unordered_set<const ZoStreamableBase*> removed(cascade.begin(), cascade.end());

    // What an object that stays owns stays too, with all that hangs from it and from its members.
    TDVector<ZoStreamableBase*> staying;
    for (ZoStreamableBase* object : stream->Objects()) {
        if (removed.count(object) == 0) staying.Add(object);
    }
    ItemAction keep([&](ZoStreamableBase* item) {
        if (item != nullptr && doomed.count(item) == 0 && removed.erase(item) != 0) staying.Add(item);
    });
    std::unordered_set<const ZoStreamableBase*> members;
    for (unsigned long long i = 1; i <= staying.NItems(); ++i) {
        ZoStreamableBase* object = staying[i];
        TZoClass* objectClass = object->GetOriginalClass(schema);
        if (objectClass == nullptr) continue;
        objectClass->ChildsReferences(object, keep);
        for (ZoStreamableBase* member : ChildsByValueOfInstance(object)) {
            if (members.insert(member).second) staying.Add(member);
        }
    }

    // Members go with their owners and are not objects to delete.
    const auto isRemoved = [](const void* context, const ZoStreamableBase* object) {
        return static_cast<const std::unordered_set<const ZoStreamableBase*>*>(context)->count(object) != 0;
    };
    std::unordered_set<const ZoStreamableBase*> inside;
    for (const ZoStreamableBase* object : removed) {
        TDVector<ZoStreamableBase*> owned = ChildsByValueOfInstance(const_cast<ZoStreamableBase*>(object));
        for (unsigned long long i = 1; i <= owned.NItems(); ++i) {
            if (inside.insert(owned[i]).second) owned.Append(ChildsByValueOfInstance(owned[i]));
        }
    }
    std::unordered_set<const ZoStreamableBase*> unreachable = removed;
    unreachable.insert(inside.begin(), inside.end());
    for (const ZoStreamableBase* object : inside) removed.erase(object);

    const auto detach = [&](ZoStreamableBase* object) {
        if (TZoClass* objectClass = object->GetOriginalClass(schema)) {
            objectClass->DeleteReferences(object, isRemoved, &unreachable);
        }
    };
    for (ZoStreamableBase* object : staying) detach(object);
    for (const ZoStreamableBase* object : unreachable) detach(const_cast<ZoStreamableBase*>(object));
    TDVector<ZoStreamableBase*> ended;
    for (const ZoStreamableBase* object : removed) ended.Add(const_cast<ZoStreamableBase*>(object));
    stream->RemoveInstances(ended);
    for (const ZoStreamableBase* object : removed) delete object;
    if (!hold.Noted()) return;
    // What was removed may have been the last to hold what stays.
    std::unordered_set<const ZoObject*> passedBy(all.begin(), all.end());
    passedBy.insert(removed.begin(), removed.end());
    hold.End([&](const ZoObject* object) { return passedBy.count(object) != 0; });
}

} // namespace ZoPrimitives
