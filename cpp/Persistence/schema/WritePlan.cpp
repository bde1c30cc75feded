#include "Persistence/schema/WritePlan.h"

#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/RecordOrder.h"

namespace ZoPrimitives {

WritePlan::WritePlan(const TZoClass& objectClass)
    : steady(objectClass.GetType() != nullptr && !objectClass.Answers(hookWillWrite)) {
    const bool tells = objectClass.Answers(hookWillWrite);
    RecordOrder::ForEachLevel(objectClass, [&](const TZoClass& level) {
        if (tells) steps.push_back({nullptr});
        for (TZoClassField* field : RecordOrder::FieldsOf(level)) {
            steps.push_back({field, field->GetFieldType()});
            steady = steady && field->IsPlain();
        }
        bool hasExternals = false;
        RecordOrder::ForEachPointer(level, [&](TZoClassFieldPointerBase& field) {
            if (field.HoldsChildren()) targets.push_back({&field, nullptr});
            hasExternals = hasExternals || RecordOrder::IsExternal(field);
        });
        if (hasExternals) targets.push_back({nullptr, &level});
    });
}

void WritePlan::Measure(ZoStreamableBase* object) {
    for (Step& step : steps) step.offset = FieldOffset::Measure(step.field, object);
    FlatRun::Find(steps);
    constexpr std::size_t MOST_BUFFERED = 2; // worth fetching ahead
    for (const Step& step : steps) {
        const bool buffers = step.offset != FieldOffset::NONE && FieldCodec::IsBuffered(step.kind);
        if (buffers && buffered.size() < MOST_BUFFERED) buffered.push_back(&step);
    }
    measured = true;
}

WritePlan& WritePlans::Make(const TZoClass& objectClass) {
    const auto id = static_cast<std::size_t>(objectClass.GetClassId());
    if (id >= byId.size()) byId.resize(id + 1);
    if (byId[id].objectClass == nullptr) {
        byId[id].plan = std::make_unique<WritePlan>(objectClass);
        byId[id].objectClass = &objectClass;
        return *byId[id].plan;
    }
    std::unique_ptr<WritePlan>& plan = others[&objectClass];
    if (plan == nullptr) plan = std::make_unique<WritePlan>(objectClass);
    return *plan;
}

} // namespace ZoPrimitives
