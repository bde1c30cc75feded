#include "ZoPrimitives/BinInStreamer.h"

#include "Persistence/instances/InstanceTables.h"
#include "Persistence/objects/KeptReader.h"
#include "Persistence/objects/MadeObjects.h"
#include "Persistence/objects/MemberObjects.h"
#include "Persistence/objects/ObjectReader.h"
#include "Persistence/objects/ObjectRemoval.h"
#include "Persistence/objects/ReportBuilder.h"
#include "Persistence/records/NamingFile.h"
#include "Persistence/records/ProgressMeter.h"
#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/RecordOrder.h"
#include "Platform/Compiler.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>
#include <map>
#include <typeinfo>
#include <unordered_set>
#include <utility>

namespace ZoPrimitives {

namespace {

[[noreturn]] void Throw(UserText message, const char* location) {
    throw XStream(Translated(message), location, TStreamFailure::Damaged);
}

} // namespace

/// What becomes of the records of one class of the file.
struct TBinInStreamer::Use {
    int classId;
    TZoClass* fileClass;
    TZoClass* readAs;    // the class itself, or the ancestor that stands for it; null: records are dropped
    unsigned hooks{~0u}; // those that its objects override
    bool decided{};      // the rest is known
    bool substituted{};  // readAs is an ancestor
    bool inPlace{};      // a member of the class can be read in place
    bool hasValues{};    // its objects have members that are objects
    bool asked{};        // whether those members may be invalid is known
    unsigned long long read{}; // objects, as an ancestor's
    unsigned long long lost{}; // objects that were not made
    unsigned long long kept{}; // objects that are kept whole

    bool Answers(ZoHooks hook) const { return (hooks & hook) != 0; }
};

/// The uses of a file's classes, by class id.
class TBinInStreamer::Uses {
public:
    explicit Uses(const TZoMetaData& schema) {
        const int count = schema.GetClassCount();
        uses.reserve(static_cast<std::size_t>(count));
        for (int i = 1; i <= count; ++i) {
            TZoClass* fileClass = schema.GetClass(i);
            uses.push_back({fileClass->GetClassId(), fileClass, fileClass});
        }
        const auto byId = [](const Use& a, const Use& b) { return a.classId < b.classId; };
        if (!std::is_sorted(uses.begin(), uses.end(), byId)) std::sort(uses.begin(), uses.end(), byId);
        // Most ids are small.
        const std::size_t most = 1024 + 4 * uses.size();
        for (const Use& use : uses) {
            const auto id = static_cast<std::size_t>(use.classId);
            if (id < most) positions.resize(id + 1);
        }
        for (std::size_t i = 0; i < uses.size(); ++i) {
            const auto id = static_cast<std::size_t>(uses[i].classId);
            if (id < positions.size()) positions[id] = static_cast<unsigned>(i + 1);
        }
    }
    const std::vector<Use>& All() const { return uses; }
    /// Null for a class that the file does not describe.
    Use* Find(int classId) {
        const auto id = static_cast<std::size_t>(classId);
        if (classId >= 0 && id < positions.size())
            return positions[id] == 0 ? nullptr : &uses[positions[id] - 1];
        const auto found = std::lower_bound(uses.begin(), uses.end(), classId,
                                            [](const Use& use, int wanted) { return use.classId < wanted; });
        return found == uses.end() || found->classId != classId ? nullptr : &*found;
    }

private:
    std::vector<Use> uses;           // by id, rising
    std::vector<unsigned> positions; // by id: in `uses`, from 1; 0: none
};

TBinInStreamer::TBinInStreamer(TBinInStream* stream, TZoMetaData* schema)
    : stream(stream), schema(schema), fileSchema(std::make_shared<TZoMetaData>()) {}
TBinInStreamer::~TBinInStreamer() = default;

void TBinInStreamer::OnAfterLoadInstance(ZoStreamableBase*) {}
void TBinInStreamer::OnAfterResolveInstance(ZoStreamableBase*) {}

ZoStreamableBase* TBinInStreamer::CreateInstance(TZoClass* fileClass, TZoMetaData* fileMetaData,
                                                 TZoMetaData* appMetaData) {
    return fileClass->CreateInstance(fileMetaData, appMetaData);
}

void* TBinInStreamer::GetFile() const { return stream->GetFile(); }

ZoStreamableBase* TBinInStreamer::ReadObjects() {
    NamingFile(*stream, [this] {
        LoadSchema("TBinInStreamer::ReadObjects #1", "TBinInStreamer::ReadObjects #2");
        ReadRecords(nullptr);
        RefuseFaults("TBinInStreamer::ReadObjects");
    });
    return stream->FirstObject();
}

void TBinInStreamer::LoadSchema(const char* noRecord, const char* noSchema) {
    ZO_ASSERT(stream->HasHeader() || !stream->GetsDirectly(),
              "stream->HasHeader() && \"[zoerror] call Initialize of the stream before reading\"",
              ZoSources::BIN_IN_STREAMER);
    ZO_ASSERT(
        !keepsUnknown || stream->GetsDirectly(),
        "stream->GetsDirectly() && \"[zoerror] KeepUnknown takes records as they stand: the stream must "
        "not have operators of its own\"",
        ZoSources::BIN_IN_STREAMER);
    int uid = 0;
    int classId = 0;
    if (!stream->LoadRecord(&uid, &classId)) Throw(UserText("Metadado corrompido"), noRecord);
    uses = nullptr;
    if (keepsUnknown) fileSchema = std::make_shared<TZoMetaData>(); // parts of an earlier file may have it
    if (!fileSchema->LoadFromStream(stream, schema)) Throw(UserText("Metadado inválido"), noSchema);
    uses = std::make_unique<Uses>(*fileSchema);
    unknown.RemoveAll();
    rootUid = 0;
    wrongDigest = false;
    removed.RemoveAll();
    stream->ForgetInstances();
}

void TBinInStreamer::ReadRecords(const std::vector<int>* classIds) {
    scope = classIds != nullptr ? Scope::SomeClasses : Scope::AllClasses;
    InstanceTables::Of(*stream).lost.Begin(IsFiltered());
    struct EndKept {
        std::unique_ptr<KeptReader>& kept;
        ~EndKept() { kept = nullptr; }
    } const endKept{kept};
    if (!IsFiltered()) stream->ReserveInstances();
    MadeObjects made(*stream);
    operations = typeid(*this) == typeid(TBinInStreamer) ? Operations::Library : Operations::Overridden;
    // Members that are objects are found through the entries of the objects read for them.
    bool all = IsOverridden();
    for (int i = 1; i <= fileSchema->GetClassCount() && !all; ++i) {
        const TZoClass* original = fileSchema->GetClass(i)->GetOriginal();
        all = original == nullptr ? keepsUnknown : original->HasValueChildren();
    }
    kept = keepsUnknown ? std::make_unique<KeptReader>(*stream, fileSchema, *schema) : nullptr;
    const ObjectReader reader(*stream, all ? ObjectReader::Entries::All : ObjectReader::Entries::Waiting,
                              !IsOverridden() ? &made.awaited : nullptr);
    try {
        ReadAllRecords(classIds, reader, made);
    } catch (const XWrongDigest&) {
        if ((strict & strictDamage) == 0 && !acceptsDamage) throw;
        wrongDigest = true;
    }
    if (kept != nullptr) kept->EndRecords();
    made.HandOver();
    if (kept != nullptr) {
        ResolveKept(made);
    } else {
        Resolve(made);
    }
    Validate(made);
}

/// All of it or nothing.
void TBinInStreamer::ResolveKept(MadeObjects& made) {
    try {
        Resolve(made);
    } catch (...) {
        kept->Discard();
        made.EndHold();
        ReleaseObjects();
        throw;
    }
}

/// Throws `XWrongDigest` when all are read.
void TBinInStreamer::ReadAllRecords(const std::vector<int>* classIds, const ObjectReader& reader,
                                    MadeObjects& made) {
    ProgressMeter meter(progress, "TBinInStreamer::ReadObjects");
    const auto where = [this] {
        std::pair<unsigned long long, unsigned long long> doneAndAll;
        stream->GetProgress(doneAndAll.first, doneAndAll.second);
        return doneAndAll;
    };
    int uid = 0;
    int classId = 0;
    if (IsFiltered()) {
        const int count = static_cast<int>(classIds->size());
        while (stream->LoadFilteredRecord(fileSchema.get(), classIds->data(), &classId, &uid, count)) {
            ReadRecord(reader, uid, classId, made);
            meter.Step(where);
        }
    } else {
        while (stream->LoadRecord(&uid, &classId)) {
            if (rootUid == 0) rootUid = uid;
            ReadRecord(reader, uid, classId, made);
            meter.Step(where);
        }
    }
}

TBinInStreamer::Use& TBinInStreamer::UseOf(int classId) {
    Use* use = uses->Find(classId);
    if (use == nullptr) Throw(UserText("Metadado inválido"), "TBinInStreamer::ReadObjects #3");
    if (!use->decided) Decide(*use);
    return *use;
}

void TBinInStreamer::Decide(Use& use) {
    if (use.readAs->GetOriginal() == nullptr && IsFiltered()) {
        use.readAs = nullptr;
    } else if (use.readAs->GetOriginal() == nullptr) {
        unknown.Add(use.readAs);
        use.substituted = true;
        while (use.readAs != nullptr && use.readAs->GetOriginal() == nullptr) {
            TZoClass* parent = use.readAs->GetParentClass();
            use.readAs = parent == nullptr || parent->GetAbstract() ? nullptr : parent;
        }
    }
    if (use.readAs != nullptr) {
        use.hasValues = use.readAs->GetOriginal()->HasValueChildren();
        // An application's own streamer may make objects of other types than the class's.
        if (!IsOverridden()) use.hooks = use.readAs->GetOriginal()->hooks;
        use.inPlace = !use.substituted && !use.Answers(hookCreateInstance);
    }
    use.decided = true;
}

/// Of the record of that uid no object is made.
void TBinInStreamer::Lose(Use& use, int uid) {
    if (kept != nullptr) {
        ++use.kept;
        return kept->TakeObject(*use.fileClass, uid);
    }
    ++use.lost;
    InstanceTables::Of(*stream).lost.Drop(uid);
}

void TBinInStreamer::ReadRecord(const ObjectReader& reader, int uid, int classId, MadeObjects& made) {
    Use& use = UseOf(classId);
    if (kept != nullptr) kept->Check(*use.fileClass, use.readAs);
    if (use.readAs == nullptr) return Lose(use, uid);
    const AwaitedMembers::Member member = made.awaited.Take(uid);
    if (member.object != nullptr) {
        if (use.inPlace && use.readAs->GetOriginal()->GetType() == &typeid(*member.object))
            return ReadMember(reader, use, uid, member.object, member.owner, made);
        made.awaited.LeaveSome();
    }
    ZoStreamableBase* object = CreateInstance(use.readAs, fileSchema.get(), schema);
    if (object == nullptr) return Lose(use, uid);
    made.Begin(object);
    if (use.substituted && !object->CanBeConvertedToBaseClass()) {
        made.Drop();
        return Lose(use, uid);
    }
    if (use.substituted) ++use.read;
    if (use.substituted && kept != nullptr) ++use.kept;
    made.hasValues = made.hasValues || use.hasValues;
    made.mayBeInvalid = made.mayBeInvalid || use.Answers(hookGetIsValid);
    if (use.hasValues && !use.asked) {
        use.asked = !IsOverridden();
        made.membersMayBeInvalid = made.membersMayBeInvalid || IsOverridden() ||
                                   use.readAs->GetOriginal()->MembersMayBeInvalid(object);
    }
    ReadFields(reader, use, uid, object, object, made);
    made.Finish();
    if (IsOverridden()) OnAfterLoadInstance(object);
    if (use.Answers(hookCheckForExcludedFields)) object->CheckForExcludedFields(stream);
    if (kept != nullptr) kept->TakeFields(*use.fileClass, *use.readAs, uid);
}

void TBinInStreamer::ReadMember(const ObjectReader& reader, const Use& use, int uid, ZoStreamableBase* member,
                                ZoStreamableBase* owner, MadeObjects& made) {
    ZoReferenceCount::Add(member); // only its owner ends it, whatever else lets go of it
    made.members.Set(uid, member);
    ReadFields(reader, use, uid, member, owner, made);
    if (use.Answers(hookCheckForExcludedFields)) member->CheckForExcludedFields(stream);
    if (kept != nullptr) kept->TakeFields(*use.fileClass, *use.readAs, uid);
}

void TBinInStreamer::ReadFields(const ObjectReader& reader, const Use& use, int uid, ZoStreamableBase* object,
                                ZoStreamableBase* owner, MadeObjects& made) {
    UidTable& handles = InstanceTables::Of(*stream).handles;
    if (const ZoStreamableBase* before = handles.Get(uid)) made.replaced.push_back({before, uid});
    handles.Set(uid, object);
    made.awaited.Begin(uid, owner);
    reader.Read(*use.readAs, object);
    made.awaited.End();
    if (use.Answers(hookOnRead) && !object->OnRead(stream, use.substituted)) made.invalid.push_back(owner);
}

void TBinInStreamer::Resolve(MadeObjects& made) {
    if (made.hasValues && (IsOverridden() || made.awaited.LeftSome())) MemberObjects(*stream, made).Run();
    if (!made.replaced.empty()) FollowReplaced(made);
    TBinUnresolvedPointers& unresolved = InstanceTables::Of(*stream).unresolved;
    TZoPointerResolver resolver(*stream, made.hasValues ? &made.members : nullptr, nullptr);
    const auto& entries = unresolved.Entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        FetchAhead(entries, i, entries.size(), [](const TBinUnresolved& later) { Prefetch(later.object); });
        const TZoClass* application = entries[i].fileClass->GetOriginal();
        const bool tells =
            IsOverridden() || application == nullptr || application->Answers(hookOnReadPointer);
        if (!tells && !ObjectReader::Resolves(*entries[i].fileClass)) continue;
        resolver.Begin(unresolved.Uids() + entries[i].firstUid, tells);
        ObjectReader::Resolve(*entries[i].fileClass, resolver, entries[i].object);
        if (kept != nullptr && InstanceTables::Of(*stream).lost.TakeMet())
            kept->TakeReferences(entries[i], unresolved.Uids() + entries[i].firstUid);
        if (IsOverridden()) OnAfterResolveInstance(entries[i].object);
    }
    InstanceTables::Of(*stream).awaited.Call(*stream);
    if (kept != nullptr) kept->Attach(rootUid);
    InstanceTables::Of(*stream).EndReading();
}

/// Points references that were resolved early to the object that has their uid in the end.
void TBinInStreamer::FollowReplaced(MadeObjects& made) {
    using Replaced = MadeObjects::Replaced;
    const auto byObject = [](const Replaced& a, const Replaced& b) { return a.object < b.object; };
    std::sort(made.replaced.begin(), made.replaced.end(), byObject);
    const auto follow = [&](ZoStreamableBase* object, TZoClassFieldPointerBase& field) {
        if (!FieldCodec::IsReference(field) || field.Owns() || !field.IsPlain()) return;
        auto& reference = static_cast<TZoClassFieldPointer&>(field);
        const Replaced wanted{reference.Get(object), {}};
        const auto found = std::lower_bound(made.replaced.begin(), made.replaced.end(), wanted, byObject);
        if (found == made.replaced.end() || found->object != wanted.object) return;
        ZoStreamableBase* target = stream->GetHandle(found->uid);
        reference.Set(object, field.Accepts(target) ? target : nullptr);
    };
    for (ZoStreamableBase* object : stream->Objects()) {
        const TZoClass* objectClass = object->GetOriginalClass(schema);
        if (objectClass == nullptr) continue;
        RecordOrder::ForEachLevel(*objectClass, [&](const TZoClass& level) {
            RecordOrder::ForEachPointer(level, [&](auto& field) { follow(object, field); });
        });
    }
}

void TBinInStreamer::Validate(MadeObjects& made) {
    if (made.invalid.empty() && (IsFiltered() || (!made.mayBeInvalid && !made.membersMayBeInvalid))) return;
    const std::unordered_set<const ZoStreamableBase*> known(made.invalid.begin(), made.invalid.end());
    TDList<ZoStreamableBase*> invalid;
    for (ZoStreamableBase* object : stream->Objects()) {
        const bool foundBefore = known.count(object) != 0;
        // In a partial read objects may well miss others: only what they said while they were read counts.
        const bool valid =
            IsFiltered() ? !foundBefore : IsValid(object, foundBefore, made.membersMayBeInvalid);
        if (!valid) invalid.Add(object);
    }
    if (invalid.NItems() == 0) return;
    made.EndHold(); // while every object that it noted exists
    Remove(invalid);
}

/// Removes them and counts what is gone.
void TBinInStreamer::Remove(const TDList<ZoStreamableBase*>& invalid) {
    std::map<ZoString, TZoReadReport::Removed> byClass;
    std::vector<std::pair<const ZoStreamableBase*, TZoReadReport::Removed*>> before;
    for (ZoStreamableBase* object : stream->Objects()) {
        const TZoClass* objectClass = object->GetOriginalClass(schema);
        const ZoString name = objectClass != nullptr ? WholeText(objectClass->GetName()) : ZoString();
        before.emplace_back(object,
                            &byClass.try_emplace(name, TZoReadReport::Removed{name, 0, 0}).first->second);
    }
    const std::unordered_set<const ZoStreamableBase*> named(invalid.begin(), invalid.end());
    ObjectRemoval(*stream, schema).Run(invalid);
    const auto& left = stream->Objects();
    const std::unordered_set<const ZoStreamableBase*> staying(left.begin(), left.end());
    for (const auto& [object, count] : before) {
        if (staying.count(object) == 0) ++(named.count(object) != 0 ? count->invalid : count->owned);
    }
    for (const auto& [name, count] : byClass) {
        if (count.invalid + count.owned != 0) removed.Add(count);
    }
}

unsigned long long TBinInStreamer::GetDropped() const {
    return InstanceTables::Of(*stream).lost.DroppedCount();
}

TZoReadReport TBinInStreamer::Report() const {
    TZoReadReport report = ReportBuilder(*stream, *fileSchema, IsFiltered()).report;
    for (TZoReadReport::Field& field : report.fields)
        field.kept = keepsUnknown && field.fault != TFieldFault::NotInFile;
    if (uses != nullptr) {
        for (const Use& use : uses->All()) {
            if (use.read + use.lost + use.kept == 0) continue;
            report.lostClasses.Add(
                {use.fileClass->GetName(), use.fileClass->GetOriginal() != nullptr,
                 use.substituted && use.readAs != nullptr ? use.readAs->GetName() : ZoString(), use.read,
                 use.lost, use.kept});
        }
    }
    report.removed = removed;
    report.wrongDigest = wrongDigest;
    return report;
}

void TBinInStreamer::RefuseFaults(const char* location) {
    if (strict == strictNothing) return;
    const TZoReadReport report = Report();
    if ((report.Faults() & strict) == 0) return;
    ReleaseObjects();
    throw XRefusedData(report, location);
}

void TBinInStreamer::ReleaseObjects() noexcept {
    try {
        TDList<ZoStreamableBase*> all;
        for (ZoStreamableBase* object : stream->Objects()) all.Add(object);
        RemoveInvalidObjects(&all);
    } catch (...) {
        MadeObjects::ReleaseAll(*stream); // an accessor threw, or memory is short
    }
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
    return ObjectRemoval::MembersOf(object, schema);
}

void TBinInStreamer::RemoveInvalidObjects(TDList<ZoStreamableBase*>* invalid) {
    ObjectRemoval(*stream, schema).Run(*invalid);
}

} // namespace ZoPrimitives
