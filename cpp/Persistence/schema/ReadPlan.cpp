#include "Persistence/schema/ReadPlan.h"

#include "Persistence/records/RecordChecks.h"
#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/FieldKinds.h"
#include "Persistence/schema/FieldOffset.h"

#include <climits>
#include <memory>
#include <unordered_set>

namespace ZoPrimitives {

namespace {
constexpr unsigned MOST_STEPS = 4096;

bool HoldsMember(const TZoClassField& field) {
    if (field.GetFieldType() != ftChildPointerMap) return field.GetFieldType() == ftChildValue;
    const auto& map = static_cast<const TZoClassFieldPointerMap&>(field);
    return (map.GetKeyField() != nullptr && HoldsMember(*map.GetKeyField())) ||
           (map.GetValueField() != nullptr && HoldsMember(*map.GetValueField()));
}

} // namespace

bool ReadPlan::Applies(const TZoClass& level, const TZoClass& objectClass) {
    return level.original != nullptr && objectClass.original != nullptr &&
           objectClass.original->IsInherited(level.original);
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
    }
    if (plan->hasSteps && plan->hasMembers && !repeats) plan->AwaitMembers();
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
            steps.push_back({used, FieldOffset::NONE, static_cast<std::int16_t>(used->GetFieldType()),
                             application != nullptr, false});
        }
        if (application != nullptr && field->IsPointerKind()) {
            pointers.push_back({static_cast<TZoClassFieldPointerBase*>(application),
                                {},
                                FieldCodec::IsReference(*application),
                                true});
        }
    }
}

/// Accessors that do nothing else give the member itself.
void ReadPlan::AwaitMembers() {
    awaitsMembers = true;
    for (Step& step : steps) {
        if (!step.known || !HoldsMember(*step.field)) continue;
        const auto& field = static_cast<const TZoClassFieldPointerBase&>(*step.field);
        step.awaited = step.kind == ftChildValue && field.IsPlain() && field.typeTest != nullptr;
        awaitsMembers = awaitsMembers && step.awaited;
    }
}

void ReadPlan::Measure(ZoStreamableBase* object) {
    exactType = &typeid(*object);
    for (Step& step : steps) {
        const std::ptrdiff_t offset = FieldOffset::Measure(step.known ? step.field : nullptr, object);
        step.offset = offset <= INT_MAX ? static_cast<std::int32_t>(offset) : FieldOffset::NONE;
    }
}

} // namespace ZoPrimitives
