#include "Persistence/objects/KeptReader.h"

#include "Persistence/instances/InstanceTables.h"
#include "Persistence/records/RecordCursors.h"
#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/LayoutProof.h"
#include "Persistence/schema/ReadPlan.h"
#include "Persistence/schema/RecordOrder.h"

#include <algorithm>
#include <set>
#include <unordered_set>

namespace ZoPrimitives {

namespace {

constexpr std::size_t MOST_FIELDS = 65'536; // of a class, ancestors included

[[noreturn]] void Refuse(const TZoClass& fileClass, const TZoClassField* field = nullptr) {
    throw XCannotKeep(field != nullptr ? field->GetOwnerClass()->GetName() : fileClass.GetName(),
                      field != nullptr ? field->GetFieldName() : ZoString(), "TBinInStreamer::KeepUnknown");
}

/// The current record from its beginning, whatever was read of it.
std::pair<const unsigned char*, const unsigned char*> RecordOf(TBinInStream& stream) {
    const unsigned position = stream.GetRecordPosition();
    stream.SetRecordPosition(0);
    const ReadCursor cursor(stream);
    const unsigned size = cursor.Remaining();
    const unsigned char* begin = cursor.Take(size);
    stream.SetRecordPosition(position);
    return {begin, begin + size};
}

bool HasOpenLayouts(const TZoMetaData& fileSchema) {
    for (int i = 1; i <= fileSchema.GetClassCount(); ++i) {
        for (const TZoClassField* field : RecordOrder::FieldsOf(*fileSchema.GetClass(i))) {
            if (field->GetOriginal() == nullptr && AllLayouts(field->GetFieldType()).size() > 1) return true;
        }
    }
    return false;
}

} // namespace

/// How the records of a class are taken apart.
struct KeptReader::Plan {
    std::vector<RecordStep> steps;
    bool keeps = false;
    std::unique_ptr<LayoutProof> layouts;
};

/// The uids of a list, or of half a map.
struct KeptReader::List {
    const TZoClassFieldPointerBase& field; // the application's
    const std::int32_t* uids;
    int count;
};

KeptReader::KeptReader(TBinInStream& inStream, std::shared_ptr<const TZoMetaData> fileSchema,
                       TZoMetaData& applicationSchema)
    : stream(inStream), application(applicationSchema), file(std::make_shared<KeptFile>()),
      hasOpenLayouts(HasOpenLayouts(*fileSchema)) {
    file->schema = std::move(fileSchema);
}

KeptReader::~KeptReader() = default;

KeptReader::Plan& KeptReader::PlanOf(TZoClass& fileClass, TZoClass* readAs) {
    const std::pair<const TZoClass*, const TZoClass*> wanted(&fileClass, readAs);
    if (latestPlan != nullptr && latest == wanted) return *latestPlan;
    std::unique_ptr<Plan>& plan = plans[wanted];
    if (plan == nullptr) plan = MakePlan(fileClass, readAs);
    latest = wanted;
    latestPlan = plan.get();
    return *plan;
}

std::unique_ptr<KeptReader::Plan> KeptReader::MakePlan(TZoClass& fileClass, TZoClass* readAs) const {
    auto plan = std::make_unique<Plan>();
    plan->keeps = readAs != &fileClass;
    std::size_t count = 0;
    RecordOrder::ForEachLevel(fileClass, [&](const TZoClass& level) {
        count += RecordOrder::FieldsOf(level).size();
        if (RecordOrder::HasUnknownKind(level) || count > MOST_FIELDS) Refuse(level);
    });
    std::unordered_set<const TZoClassField*> takers;
    RecordOrder::ForEachLevel(fileClass, [&](const TZoClass& level) {
        const bool isRead =
            readAs != nullptr && readAs->IsInherited(&level) && ReadPlan::Applies(level, *readAs);
        for (const TZoClassField* field : RecordOrder::FieldsOf(level)) {
            TZoClassField* original = isRead || readAs == nullptr ? field->GetOriginal() : nullptr;
            const bool isTaken = isRead && original != nullptr;
            if (isTaken) takers.insert(original);
            plan->keeps = plan->keeps || !isTaken;
            plan->steps.push_back(
                {field, original != nullptr ? FieldCodec::LayoutOf(*original) : FieldLayout(),
                 original != nullptr || AllLayouts(field->GetFieldType()).size() == 1, isTaken});
        }
    });
    // A field that stands in another class here would be written there too, and count instead.
    for (const RecordStep& step : plan->steps) {
        if (step.isTaken || readAs == nullptr) continue;
        const TZoClassField* moved = readAs->GetOriginal()->FindField(step.field->GetFieldName());
        if (moved != nullptr && MergedSchema::IsAlike(*moved, *step.field) && takers.count(moved) == 0)
            Refuse(fileClass, step.field);
    }
    plan->layouts = std::make_unique<LayoutProof>(plan->steps);
    return plan;
}

void KeptReader::Check(TZoClass& fileClass, TZoClass* readAs) {
    if (hasOpenLayouts) recordClasses.emplace_back(stream.GetCurrentUID(), &fileClass);
    Plan& plan = PlanOf(fileClass, readAs);
    if (!plan.keeps || plan.layouts->FirstOpen() == nullptr) return;
    const auto [begin, end] = RecordOf(stream);
    if (!plan.layouts->Take(begin, end)) Refuse(fileClass, plan.layouts->FirstOpen());
}

KeptReader::Pending& KeptReader::Begin(int uid, const TZoClass* itsClass, const TZoClass* recordClass) {
    Pending& begun = pending[uid];
    begun = Pending();
    begun.application = itsClass;
    begun.part = std::make_unique<KeptPart>();
    begun.part->file = file;
    begun.part->recordClass = recordClass;
    return begun;
}

void KeptReader::TakeObject(TZoClass& fileClass, int uid) {
    Pending& begun = Begin(uid, nullptr, &fileClass);
    begun.object = new KeptObject;
    TakeValues(PlanOf(fileClass, nullptr), fileClass, *begun.part);
}

void KeptReader::TakeFields(TZoClass& fileClass, TZoClass& readAs, int uid) {
    Plan& plan = PlanOf(fileClass, &readAs);
    if (!plan.keeps) return;
    TakeValues(plan, fileClass, *Begin(uid, readAs.GetOriginal(), &fileClass).part);
}

void KeptReader::TakeValues(Plan& plan, const TZoClass& fileClass, KeptPart& part) {
    const auto [begin, end] = RecordOf(stream);
    const ExcludedFields& excluded = InstanceTables::Of(stream).excluded;
    ValuePasser value(begin, end);
    for (RecordStep& step : plan.steps) {
        const unsigned char* at = value.At();
        if (!value.Pass(step.field->GetFieldType(), step.layout)) Refuse(fileClass, step.field);
        if (step.isTaken) continue;
        const bool isHandled = excluded.WasTaken(step.field);
        (isHandled ? step.anyHandled : step.anyKept) = true;
        if (isHandled) continue;
        part.bytes.insert(part.bytes.end(), at, value.At());
        part.values.push_back({step.field, static_cast<unsigned>(part.bytes.size()), step.layout});
    }
    if (value.Left() != 0) Refuse(fileClass);
}

bool KeptReader::MayMean(const TZoClassField& field, int uid) const {
    const auto* found = AtUid(recordClasses, uid);
    return found != nullptr && LayoutChoices::MayRefer(field, *found->second);
}

void KeptReader::EndRecords() {
    std::sort(recordClasses.begin(), recordClasses.end());
    const auto mayMean = [this](const TZoClassField& field, int uid) { return MayMean(field, uid); };
    for (const auto& [classes, plan] : plans) {
        if (const TZoClassField* untold = plan->layouts->Untold(mayMean)) Refuse(*classes.first, untold);
    }
    ForgetHandled();
    std::vector<int> uids;
    for (const auto& [uid, kept] : pending) {
        if (kept.object) uids.push_back(uid);
    }
    InstanceTables::Of(stream).lost.Keep(std::move(uids));
    if (!pending.empty()) MergedSchema(application, {}, {file}); // throws if it cannot be saved
}

/// What the application's hooks have taken everywhere is not written again, not even as zeros.
void KeptReader::ForgetHandled() {
    std::set<const TZoClassField*> kept; // somewhere
    for (const auto& [classes, plan] : plans) {
        for (const RecordStep& step : plan->steps) {
            if (step.anyHandled) file->handled.insert(step.field);
            if (step.anyKept) kept.insert(step.field);
        }
    }
    for (const TZoClassField* field : kept) file->handled.erase(field);
}

// References that fields do not take

/// Whether the application's field does not take the object, which is there.
bool KeptReader::IsLost(const TZoClassFieldPointerBase& field, int uid) const {
    if (uid == 0) return false;
    const ZoStreamableBase* target = ObjectOf(uid);
    return target != nullptr &&
           (dynamic_cast<const KeptObject*>(target) != nullptr || !field.Accepts(target));
}

KeptPart& KeptReader::PartOf(int uid, const TZoClass* itsClass, const TZoClass* recordClass) {
    const auto found = pending.find(uid);
    if (found != pending.end() && found->second.application == itsClass) return *found->second.part;
    return *Begin(uid, itsClass, recordClass).part;
}

void KeptReader::TakeReferences(const TBinUnresolved& waits, const std::int32_t* uids) {
    const auto take = [&](const TZoClassField& field, int half, const TZoClassFieldPointerBase& taker) {
        const bool isSingle = IsKindOf<TZoClassFieldPointer>(taker.GetFieldType());
        const List list{taker, isSingle ? uids : uids + 1, isSingle ? 1 : *uids};
        uids = list.uids + list.count;
        return std::pair(list, KeptPart::Reference{&field, half, 0, 0, 0, nullptr});
    };
    RecordOrder::ForEachLevel(*waits.fileClass, [&](const TZoClass& level) {
        if (!ReadPlan::Applies(level, *waits.fileClass)) return;
        for (const TZoClassField* field : RecordOrder::FieldsOf(level)) {
            const TZoClassField* original = field->GetOriginal();
            if (original == nullptr || !original->IsPointerKind()) continue;
            if (original->GetFieldType() != ftChildPointerMap) {
                const auto [list, reference] =
                    take(*field, 0, static_cast<const TZoClassFieldPointerBase&>(*original));
                if (original->GetFieldType() != ftChildValue) TakeItems(waits, reference, list, nullptr);
                continue;
            }
            const auto halves = RecordOrder::HalvesOf(static_cast<const TZoClassFieldPointerMap&>(*original));
            const auto [keys, key] = take(*field, 0, *halves[0]);
            const auto [values, value] = take(*field, 1, *halves[1]);
            if (FieldCodec::AsList(halves[0]) != nullptr && FieldCodec::AsList(halves[1]) != nullptr) {
                TakeItems(waits, key, keys, &values);
            } else {
                TakeItems(waits, key, keys, nullptr);
                TakeItems(waits, value, values, nullptr);
            }
        }
    });
}

/// `values` (may be null) are those of the keys; a pair is lost with either half.
void KeptReader::TakeItems(const TBinUnresolved& waits, KeptPart::Reference reference, const List& keys,
                           const List* values) {
    const int count = values == nullptr ? keys.count : std::min(keys.count, values->count);
    if (const auto found = pending.find(waits.uid); found != pending.end()) { // an ancestor may come twice
        auto& before = found->second.part->references;
        const auto same = [&](const KeptPart::Reference& one) {
            return one.field == reference.field && one.half == reference.half;
        };
        before.erase(std::remove_if(before.begin(), before.end(), same), before.end());
    }
    for (int i = 0; i < count; ++i) {
        reference.uid = keys.uids[i];
        reference.valueUid = values == nullptr ? 0 : values->uids[i];
        const ZoStreamableBase* key = ObjectOf(reference.uid);
        const bool isMissing = (key == nullptr && reference.uid != 0) ||
                               (reference.valueUid != 0 && ObjectOf(reference.valueUid) == nullptr);
        if (isMissing) continue;
        if (IsLost(keys.field, reference.uid) ||
            (values != nullptr && IsLost(values->field, reference.valueUid))) {
            PartOf(waits.uid, waits.fileClass->GetOriginal(), waits.fileClass)
                .references.push_back(reference);
        } else {
            ++reference.place;
            reference.behind = key;
        }
    }
}

// Giving it to the objects

ZoStreamableBase* KeptReader::ObjectOf(int uid) const {
    const auto kept = pending.find(uid);
    if (kept != pending.end() && kept->second.object) return kept->second.object.get();
    return InstanceTables::Of(stream).handles.Get(uid);
}

/// Shares in an object's ownership, unless it is the owner itself.
void KeptReader::Hold(int uid, int owner, KeptPart& part) {
    const auto* found = AtUid(file->objects, uid);
    if (uid != owner && found != nullptr) part.holds.emplace_back(found->second);
}

void KeptReader::Attach(int rootUid) {
    if (pending.empty()) return;
    Uids all;
    Uids owned;
    Uids named; // as external
    for (const auto& [uid, kept] : pending) {
        KeptReferences::ForEachUid(*kept.part, [&](const TZoClassField& field, int target) {
            all.push_back(target);
            if (ZoPrimitives::HoldsChildren(field.GetFieldType())) owned.push_back(target);
            if (RecordOrder::IsExternal(field)) named.push_back(target);
        });
    }
    for (Uids* uids : {&owned, &named}) std::sort(uids->begin(), uids->end());
    Uids unowned;
    for (const auto& [uid, kept] : pending) {
        if (kept.object && !std::binary_search(owned.begin(), owned.end(), uid)) unowned.push_back(uid);
    }
    KeptPart* root = unowned.empty() ? nullptr : &RootPart(rootUid, unowned.front());
    all.insert(all.end(), unowned.begin(), unowned.end());
    FillFile(std::move(all));
    for (const auto& [uid, kept] : pending) HoldChildren(uid, *kept.part);
    for (const int uid : unowned) {
        Hold(uid, rootUid, *root);
        if (!std::binary_search(named.begin(), named.end(), uid)) root->roots.push_back(uid);
    }
    for (auto& [uid, kept] : pending) {
        ZoStreamableBase* object = ObjectOf(uid);
        // Another record may have had the same uid.
        const TZoClass* its =
            object == nullptr || kept.object ? nullptr : object->GetOriginalClass(&application);
        if (object != nullptr && its == kept.application) KeptParts::Set(*object, std::move(kept.part));
        kept.part = nullptr;
    }
    DropUnheld();
    pending.clear();
}

/// An object that nothing holds ends with the reader; what it owns must not.
void KeptReader::DropUnheld() {
    Uids left;
    for (const auto& [uid, kept] : pending) left.push_back(uid);
    while (!left.empty()) {
        const auto found = pending.find(left.back());
        left.pop_back();
        const KeptObject* object = found == pending.end() ? nullptr : found->second.object.get();
        if (object == nullptr || ZoReferenceCount::Count(object) != 1) continue;
        const KeptPart* part = KeptParts::Find(*object);
        if (part == nullptr) continue;
        KeptReferences::ForEachUid(*part, [&](const TZoClassField&, int uid) { left.push_back(uid); });
        KeptParts::Drop(*object);
    }
}

void KeptReader::Discard() noexcept {
    for (const auto& [uid, kept] : pending) {
        if (const ZoStreamableBase* object = ObjectOf(uid)) KeptParts::Drop(*object);
    }
    pending.clear();
}

void KeptReader::HoldChildren(int owner, KeptPart& part) {
    KeptReferences::ForEachUid(part, [&](const TZoClassField& field, int uid) {
        if (ZoPrimitives::HoldsChildren(field.GetFieldType())) Hold(uid, owner, part);
    });
}

/// The part of the file's first root, which further roots stay with, and what only external references name.
KeptPart& KeptReader::RootPart(int rootUid, int unowned) {
    ZoStreamableBase* root = ObjectOf(rootUid);
    if (root == nullptr || pending[rootUid].object) Refuse(*pending[unowned].part->recordClass);
    return PartOf(rootUid, root->GetOriginalClass(&application), nullptr);
}

void KeptReader::FillFile(Uids uids) {
    std::sort(uids.begin(), uids.end());
    uids.erase(std::unique(uids.begin(), uids.end()), uids.end());
    for (const int uid : uids) {
        if (ZoStreamableBase* object = ObjectOf(uid))
            file->objects.emplace_back(uid, KeptParts::AnchorOf(*object));
    }
}

} // namespace ZoPrimitives
