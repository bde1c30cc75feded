#include "Persistence/schema/ReadPlan.h"

#include "Persistence/records/RecordChecks.h"
#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/RecordOrder.h"

#include <climits>
#include <memory>
#include <unordered_set>

namespace ZoPrimitives {

namespace {
constexpr unsigned MOST_STEPS = 4096;

bool HoldsMember(const TZoClassField& field) {
    bool holds = field.GetFieldType() == ftChildValue;
    RecordOrder::ForEachHalf(field, [&](const TZoClassField& half) { holds = holds || HoldsMember(half); });
    return holds;
}

} // namespace

bool ReadPlan::Applies(const TZoClass& level, const TZoClass& objectClass) {
    return objectClass.original != nullptr && objectClass.original->IsInherited(level.original);
}

ReadPlan& ReadPlan::For(TZoClass& fileClass, TBinInStream& stream) {
    const TZoClass::Extent& extent = fileClass.RecordExtent();
    if (stream.GetRemaining() < extent.bytes) ThrowRecordEnds();
    if (fileClass.readPlan != nullptr) return *fileClass.readPlan;
    auto plan = std::make_unique<ReadPlan>();
    plan->hasSteps = extent.fields <= MOST_STEPS;
    if (plan->hasSteps) plan->steps.reserve(extent.fields);
    plan->pointers.reserve(extent.pointers);
    plan->AddLevel(fileClass, fileClass);
    std::unordered_set<const TZoClassField*> later;
    bool repeats = false;
    for (auto pointer = plan->pointers.rbegin(); pointer != plan->pointers.rend(); ++pointer) {
        pointer->last = later.insert(pointer->application).second;
        pointer->single = pointer->single && pointer->last;
        repeats = repeats || !pointer->last;
        plan->hasMembers = plan->hasMembers || HoldsMember(*pointer->application);
        plan->resolves = plan->resolves || pointer->application->GetFieldType() != ftChildValue;
    }
    if (!repeats) plan->AwaitMembers();
    plan->onlyRefers = plan->OnlyRefers(fileClass.original);
    fileClass.readPlan = std::move(plan);
    return *fileClass.readPlan;
}

void ReadPlan::AddLevel(TZoClass& level, const TZoClass& objectClass) {
    for (const auto& parent : level.parents) {
        if (parent->RecordExtent().fields != 0) AddLevel(*parent, objectClass);
    }
    const bool applies = Applies(level, objectClass);
    for (TZoClassField* field : level.inOrder) {
        TZoClassField* application = applies ? field->GetOriginal() : nullptr;
        if (application == nullptr) ++excluded;
        TZoClassField* used = application != nullptr ? application : field;
        if (hasSteps) {
            steps.push_back({used, FieldOffset::NONE, static_cast<std::int8_t>(used->GetFieldType()),
                             application != nullptr ? Use::Set : Use::PassedOver, FlatRun()});
        }
        if (application != nullptr && field->IsPointerKind()) {
            pointers.push_back({static_cast<TZoClassFieldPointerBase*>(application),
                                {},
                                FieldCodec::IsReference(*application),
                                true});
        }
    }
}

/// A member may be read where it stands if its accessors do nothing but give it.
void ReadPlan::AwaitMembers() {
    awaitsMembers = true;
    for (Step& step : steps) {
        if (step.use == Use::PassedOver || !HoldsMember(*step.field)) continue;
        const auto& field = static_cast<const TZoClassFieldPointerBase&>(*step.field);
        const bool stands = step.kind == ftChildValue && field.IsPlain();
        if (stands) step.use = Use::Awaited;
        awaitsMembers = awaitsMembers && stands;
    }
}

bool ReadPlan::OnlyRefers(const TZoClass* application) const {
    for (const ZoHooks hook : {hookOnRead, hookOnReadPointer, hookCheckForExcludedFields}) {
        if (application == nullptr || application->Answers(hook)) return false;
    }
    for (const Pointer& pointer : pointers) {
        const TZoClassFieldPointerBase& field = *pointer.application;
        if (!pointer.single || field.Owns() || !field.IsPlain() || field.typeTest == nullptr) return false;
    }
    return !pointers.empty();
}

void ReadPlan::Measure(ZoStreamableBase* object) {
    exactType = &typeid(*object);
    for (Step& step : steps) {
        const std::ptrdiff_t offset =
            FieldOffset::Measure(step.use == Use::PassedOver ? nullptr : step.field, object);
        step.offset = offset <= INT_MAX ? static_cast<std::int32_t>(offset) : FieldOffset::NONE;
    }
    FlatRun::Find(steps);
}

} // namespace ZoPrimitives
